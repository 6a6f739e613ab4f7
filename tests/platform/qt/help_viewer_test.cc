#include "app/platform/qt/help_viewer.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextBrowser>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class HelpViewerTest : public QtTest {
 protected:
  HelpViewerTest() {
    QDir(folder.path()).mkpath(QStringLiteral("Help/Kelvaro"));
    Write("index.htm", "Contents", "<a href=\"First Page.htm\">first</a>");
    Write("First Page.htm", "First", "The first page.");
    Write("Second.htm", "Second", "The second page.");
    help = shell().GetHelpFunction(shell().LoadLibraryA("hhctrl.ocx"), 14);
    file = folder.filePath(QStringLiteral("Help/Kelvaro.chm")).toStdString();
  }

  void Write(const char* name, const char* title, const char* text) {
    QFile page(folder.filePath(QStringLiteral("Help/Kelvaro/") + QString::fromLatin1(name)));
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    page.write(QByteArray("<html><head><title>") + title + "</title></head><body>" + text +
               "</body></html>");
  }
  std::uintptr_t Show(const char* topic) {
    return help(kNoWindow, file.c_str(), HH_DISPLAY_TOPIC, reinterpret_cast<std::uintptr_t>(topic));
  }
  static QTextBrowser* Browser() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* const browser = widget->findChild<QTextBrowser*>();
      if (browser && widget->isVisible()) return browser;
    }
    return nullptr;
  }

  QTemporaryDir folder;
  std::string file;
  HtmlHelpFunction help = nullptr;
};

TEST_F(HelpViewerTest, IsInitialisedWithACookie) {
  std::uint32_t cookie = 0;
  EXPECT_NE(help(kNoWindow, nullptr, HH_INITIALIZE, reinterpret_cast<std::uintptr_t>(&cookie)), 0u);
  EXPECT_NE(cookie, 0u);
  EXPECT_NE(help(kNoWindow, nullptr, HH_UNINITIALIZE, cookie), 0u);
  EXPECT_EQ(help(kNoWindow, nullptr, 12345, 0), 0u);
}

TEST_F(HelpViewerTest, ShowsAPageOfTheFolderBesideItsFile) {
  EXPECT_NE(Show("First Page.htm"), 0u);
  ASSERT_NE(Browser(), nullptr);
  EXPECT_EQ(Browser()->toPlainText(), QStringLiteral("The first page."));
  EXPECT_EQ(Browser()->window()->windowTitle(), QStringLiteral("First"));
  EXPECT_NE(Show("Second.htm"), 0u);
  EXPECT_EQ(Browser()->toPlainText(), QStringLiteral("The second page."));
  Browser()->backward();
  EXPECT_EQ(Browser()->toPlainText(), QStringLiteral("The first page."));
  EXPECT_NE(help(kNoWindow, nullptr, HH_CLOSE_ALL, 0), 0u);
  EXPECT_EQ(Browser(), nullptr);
}

TEST_F(HelpViewerTest, ATopicMayBeAPlaceOfAPage) {
  const std::string lines = "<p>line</p>";
  std::string text;
  for (int i = 0; i < 200; ++i) text += lines;
  Write("Long.htm", "Long", (text + "<h2><a name=\"there\">There</a></h2>" + text).c_str());
  Show("Long.htm");
  ASSERT_NE(Browser(), nullptr);
  EXPECT_EQ(Browser()->verticalScrollBar()->value(), 0);
  Show("Long.htm#there");
  EXPECT_GT(Browser()->verticalScrollBar()->value(), 0);
  const QTextCursor top = Browser()->cursorForPosition(QPoint(5, 10));
  EXPECT_EQ(top.block().text(), QStringLiteral("There"));
}

TEST_F(HelpViewerTest, ABackslashInTheFilesPathWillDo) {
  file = folder.path().toStdString() + "/Help\\Kelvaro.chm";
  Show("Second.htm");
  ASSERT_NE(Browser(), nullptr);
  EXPECT_EQ(Browser()->toPlainText(), QStringLiteral("The second page."));
}

TEST_F(HelpViewerTest, AMissingPageSaysSoAndWhereItWasLookedFor) {
  EXPECT_NE(Show("Gone.htm"), 0u);
  ASSERT_NE(Browser(), nullptr);
  EXPECT_TRUE(Browser()->toPlainText().contains(QStringLiteral("This page is missing")));
  EXPECT_TRUE(Browser()->toPlainText().contains(QStringLiteral("Help/Kelvaro/Gone.htm")));
}

TEST_F(HelpViewerTest, EscClosesIt) {
  Show("Second.htm");
  ASSERT_NE(Browser(), nullptr);
  ASSERT_TRUE(QTest::qWaitForWindowActive(Browser()->window(), kSoon));
  QTest::keyClick(Browser()->window()->windowHandle(), Qt::Key_Escape);
  EXPECT_EQ(Browser(), nullptr);
  Show("Second.htm");
  EXPECT_NE(Browser(), nullptr) << "and it comes back";
}

TEST_F(HelpViewerTest, StaysOfUseWhileADialogAsks) {
  Show("index.htm");
  Run([&] {
    Recorder inner;
    QObject context;
    QTimer::singleShot(0, &context, [&] {
      QTextBrowser* const browser = Browser();
      ASSERT_NE(browser, nullptr);
      const QPoint link = browser->viewport()->mapTo(browser->window(), QPoint(12, 12));
      QTest::mouseClick(browser->window()->windowHandle(), Qt::LeftButton, {}, link);
      EXPECT_EQ(browser->toPlainText(), QStringLiteral("The first page."));
      desktop().EndDialog(inner.window, IDOK);
    });
    desktop().RunDialog(kOneButton, Window(), inner);
  });
}

TEST_F(HelpViewerTest, WithoutAFileOrATopicNothingIsShown) {
  EXPECT_EQ(help(kNoWindow, nullptr, HH_DISPLAY_TOPIC, reinterpret_cast<std::uintptr_t>("x")), 0u);
  EXPECT_EQ(help(kNoWindow, file.c_str(), HH_DISPLAY_TOPIC, 0), 0u);
  EXPECT_EQ(Browser(), nullptr);
}

// The words that are marked, and the page's title.
class HelpSearchTest : public HelpViewerTest {
 protected:
  HelpSearchTest() {
    Write("A.htm", "A", "<p>One <b>lamp</b> and another Lamp.</p>");
    Write("B.htm", "B", "<p>The lamp is green.</p>");
    Write("C.htm", "C", "<p>A third lamp.</p>");
    Show("A.htm");
    EXPECT_TRUE(QTest::qWaitForWindowActive(Browser()->window(), kSoon));
  }

  static QLineEdit* Field() { return Browser()->window()->findChild<QLineEdit*>(); }
  static void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(Browser()->window()->windowHandle(), key, modifiers);
  }
  static void SearchFor(const char* text) {
    Key(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(Field()->hasFocus());
    QTest::keyClicks(Field(), QString::fromLatin1(text));
    Key(Qt::Key_Return);
  }
  // "A 4-8 lamp": the page's title, and what is marked there.
  static std::string Marked() {
    const QTextCursor cursor = Browser()->textCursor();
    return (Browser()->documentTitle() +
            QStringLiteral(" %1-%2 ").arg(cursor.selectionStart()).arg(cursor.selectionEnd()) +
            cursor.selectedText())
        .toStdString();
  }
  static bool SaysNotFound() {
    for (const QLabel* label : Browser()->window()->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text().contains(QStringLiteral("Not found"))) return true;
    }
    return false;
  }
};

TEST_F(HelpSearchTest, EnterFindsOnePlaceAfterTheOtherOnAllPages) {
  SearchFor("lamp");
  EXPECT_EQ(Marked(), "A 4-8 lamp");
  Key(Qt::Key_Return);
  EXPECT_EQ(Marked(), "A 21-25 Lamp");
  Key(Qt::Key_F3);
  EXPECT_EQ(Marked(), "B 4-8 lamp");
  Key(Qt::Key_F3);
  EXPECT_EQ(Marked(), "C 8-12 lamp");
  Key(Qt::Key_F3);
  EXPECT_EQ(Marked(), "A 4-8 lamp");
  Key(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(Marked(), "C 8-12 lamp");
  Key(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(Marked(), "B 4-8 lamp");
  Key(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(Marked(), "A 21-25 Lamp");
  EXPECT_FALSE(SaysNotFound());
}

TEST_F(HelpSearchTest, TheOnlyPlaceIsFoundAgain) {
  SearchFor("green");
  EXPECT_EQ(Marked(), "B 12-17 green");
  Key(Qt::Key_Return);
  EXPECT_EQ(Marked(), "B 12-17 green");
  EXPECT_FALSE(SaysNotFound());
}

TEST_F(HelpSearchTest, WithNothingToSearchForTheKeyAsksForIt) {
  Key(Qt::Key_F3);
  EXPECT_TRUE(Field()->hasFocus());
  EXPECT_EQ(Marked(), "A 0-0 ");
}

TEST_F(HelpSearchTest, ASearchForWhatNoPageHasSaysSoAndStaysOnItsPage) {
  SearchFor("htm");
  EXPECT_TRUE(SaysNotFound());
  EXPECT_EQ(Browser()->documentTitle(), QStringLiteral("A"));
  QTest::keyClicks(Field(), QStringLiteral("x"));
  EXPECT_FALSE(SaysNotFound());
}

TEST_F(HelpSearchTest, EscapeLeavesTheFieldAndThenClosesTheWindow) {
  SearchFor("lamp");
  Key(Qt::Key_Escape);
  ASSERT_NE(Browser(), nullptr);
  EXPECT_TRUE(Browser()->hasFocus());
  Key(Qt::Key_Escape);
  EXPECT_EQ(Browser(), nullptr);
}

}  // namespace
}  // namespace platform::qt
