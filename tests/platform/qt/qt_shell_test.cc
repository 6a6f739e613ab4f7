#include "app/platform/qt/qt_shell.h"

#include <QDir>
#include <QFileDialog>
#include <QTemporaryDir>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

TEST(CommandLine, AnArgumentWithBlanksHasItsValueInQuotes) {
  struct Case {
    const char* argument;
    const char* written;
  };
  const Case cases[] = {
      {"profile=One", "profile=One"},
      {"profile=My Game", "profile=\"My Game\""},
      {"My Game", "\"My Game\""},
      {"args=-a b=c", "args=\"-a b=c\""},
      {"a b=c", "\"a b=c\""},                          // the blank comes before any key's end
      {"", "\"\""},                                    //
      {"a\tb", "\"a\tb\""},                            // a tab parts arguments as well
      {"profile=\"My Game\"", "profile=\"My Game\""},  // quotes of its own stay
      {"profile=|My Game|", "profile=|My Game|"},      // and what stands for them
      {"args=|-map [My Level]|", "args=|-map [My Level]|"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(JoinCommandLine("/p/kelvaro", {c.argument}, '|'),
              std::string("/p/kelvaro ") + c.written);
  }
}

TEST(CommandLine, APathWithBlanksIsInQuotes) {
  EXPECT_EQ(JoinCommandLine("/my programs/kelvaro", {}, '|'), "\"/my programs/kelvaro\"");
}

class ShellTest : public QtTest {};

TEST_F(ShellTest, TheCommandLineBeginsWithTheProgramsPath) {
  const std::string line = shell().GetCommandLineA('|');
  EXPECT_EQ(line.front(), '/');
  EXPECT_NE(line.find("test_qt"), std::string::npos);
}

TEST_F(ShellTest, WhatIsNoAddressCantBeOpened) {
  EXPECT_LE(shell().ShellExecuteA(""), 32);
  EXPECT_LE(shell().ShellExecuteA("kelvaro"), 32);
  EXPECT_LE(shell().ShellExecuteA("http://[broken"), 32);
}

TEST_F(ShellTest, AnAddressThatNoProgramTakesGivesAFailure) {
  EXPECT_LE(shell().ShellExecuteA("no-such-scheme-of-kelvaro:x"),
            32);  // no session to open it here
}

TEST_F(ShellTest, TheHelpLibraryGoesByItsPublishedNameAlone) {
  EXPECT_EQ(shell().LoadLibraryA("other.dll"), 0u);
  const LibraryHandle library = shell().LoadLibraryA("HHCTRL.ocx");
  ASSERT_NE(library, 0u);
  EXPECT_EQ(shell().GetHelpFunction(library, 13), nullptr);
  EXPECT_NE(shell().GetHelpFunction(library, 14), nullptr);
  EXPECT_EQ(shell().GetHelpFunction(0, 14), nullptr);
}

TEST_F(ShellTest, ABeepSucceeds) { EXPECT_TRUE(shell().MessageBeep(0)); }

// Does something with the dialog for files as soon as it is up.
void AtFileDialog(std::function<void(QFileDialog&)> act) {
  QTimer::singleShot(0, qApp, [act = std::move(act)] {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      auto* const dialog = qobject_cast<QFileDialog*>(widget);
      if (dialog && dialog->isVisible()) return act(*dialog);
    }
    AtFileDialog(act);
  });
}

TEST_F(ShellTest, AFileToReadIsOneThatIsThere) {
  const QTemporaryDir folder;
  const std::string file = folder.filePath(QStringLiteral("a b.sh")).toStdString();
  QFile made(QString::fromStdString(file));
  ASSERT_TRUE(made.open(QIODevice::WriteOnly));
  Run([&] {
    std::string path = "before";
    AtFileDialog([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Target"));
      EXPECT_EQ(dialog.parentWidget(), Dialog());
      EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
      EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
      EXPECT_EQ(dialog.directory(), QDir(folder.path()));
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_TRUE(shell().ChooseFile(Window(), "Target", false, file, &path));
    EXPECT_EQ(path, file);
  });
}

TEST_F(ShellTest, AFileToSaveToIsSuggestedByItsName) {
  const QTemporaryDir folder;
  const std::string file = folder.filePath(QStringLiteral("Race.desktop")).toStdString();
  Run([&] {
    std::string path;
    AtFileDialog([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_TRUE(shell().ChooseFile(Window(), "Save", true, file, &path));
    EXPECT_EQ(path, file);
  });
}

TEST_F(ShellTest, AFolderIsChosen) {
  const QTemporaryDir folder;
  Run([&] {
    std::string path;
    AtFileDialog([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_TRUE(shell().ChooseFolder(Window(), "Folder", folder.path().toStdString(), &path));
    EXPECT_EQ(path, folder.path().toStdString());
  });
}

IN_WINDOW(ShellTest, WhereNoneIsChosenThePathStays) {
  std::string path = "before";
  AtFileDialog([](QFileDialog& dialog) { dialog.reject(); });
  EXPECT_FALSE(shell().ChooseFile(Window(), "Target", false, "", &path));
  EXPECT_EQ(path, "before");
}

IN_WINDOW(ShellTest, AskingForAFileGoesWithTheRestWhenTheProgramIsToEnd) {
  std::string path = "before";
  AtFileDialog([&](QFileDialog&) { qt.Desktop().CloseAll(); });
  EXPECT_FALSE(shell().ChooseFile(Window(), "Target", false, "", &path));
  EXPECT_EQ(path, "before");
}

}  // namespace
}  // namespace platform::qt
