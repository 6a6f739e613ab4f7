// The real dialogs under a person's hands: where keys and clicks lead, and what they leave behind.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTabBar>
#include <QTest>
#include <QTreeView>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/window/main_window.h"
#include "tests/program/looks/stage.h"

namespace kelvaro::looks {
namespace {

using namespace main_window;

class Use : public testing::Test {
 protected:
  void OnMainWindow(const std::function<void()>& script) {
    EXPECT_TRUE(stage.Open(main_window::kDialog, [&](DialogWindow& opened) {
      window = &opened;
      script();
    }));
  }
  QWidget* Widget(std::uint32_t id) { return window->Find(id)->FocusWidget(); }
  QTabBar& Tabs() { return dynamic_cast<QTabBar&>(*Widget(kTabControl)); }
  QTreeView& List() { return dynamic_cast<QTreeView&>(*Widget(kControlList)); }
  int Rows() { return List().model()->rowCount(); }
  void Click(QWidget* widget, const QPoint& at) {
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, widget->mapTo(window, at));
    Stage::Settle();
  }
  void ClickTab(int tab) { Click(&Tabs(), Tabs().tabRect(tab).center()); }
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window->windowHandle(), key, modifiers);
    Stage::Settle();
  }

  Stage stage;
  DialogWindow* window = nullptr;
};

TEST_F(Use, EnterInTheListEditsAfterTheTestButtonHadTheFocus) {
  bool edited = false;
  OnMainWindow([&] {
    ClickTab(MainWindow::kMouseTab);
    Widget(kTestMode)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(window->DefaultButton(), kTestMode);
    ClickTab(MainWindow::kControlTab);
    EXPECT_EQ(window->DefaultButton(), kEditControl);
    Click(List().viewport(), List().visualRect(List().model()->index(0, 0)).center());
    stage.WhenUp("Define Control", [&](QWidget&) { edited = true; });
    Key(Qt::Key_Return);
  });
  EXPECT_TRUE(edited);
}

TEST_F(Use, TheTestButtonIsTheDefaultOnlyWhileItHasTheFocus) {
  OnMainWindow([&] {
    ClickTab(MainWindow::kMouseTab);
    Widget(kTestMode)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(window->DefaultButton(), kTestMode);
    Widget(kMouseAlwaysActive)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(window->DefaultButton(), kEditControl);
  });
}

TEST_F(Use, ANameThatIsTooLongForAFileIsRefusedBeforeARenameDeletesAnything) {
  const std::vector<std::string> before = stage.Disk().List("/game/Profiles");
  bool refused = false;
  OnMainWindow([&] {
    stage.WhenUp("Rename Profile", [&](QWidget& dialog) {
      auto& renaming = dynamic_cast<DialogWindow&>(dialog);
      QWidget* const edit = renaming.Find(profile_name::kName)->FocusWidget();
      edit->setFocus();
      QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(edit, QString(245, 'n'));
      stage.WhenUp("Invalid Profile File Name", [&](QWidget&) { refused = true; });
      QTest::mouseClick(renaming.Find(platform::IDOK)->Widget(), Qt::LeftButton);
    });
    QTest::mouseClick(Widget(kRenameProfile), Qt::LeftButton);
  });
  EXPECT_TRUE(refused);
  EXPECT_EQ(stage.Disk().List("/game/Profiles"), before);
}

TEST_F(Use, ARefusedIntervalKeepsTheTabAndHasTheFocus) {
  int boxes = 0;
  OnMainWindow([&] {
    ClickTab(MainWindow::kDeviceTab);
    auto& field = dynamic_cast<QLineEdit&>(*Widget(kInterval));
    for (const int tab : {MainWindow::kControlTab, MainWindow::kSettingsTab}) {
      field.setFocus(Qt::TabFocusReason);
      field.selectAll();
      QTest::keyClicks(&field, QStringLiteral("0"));
      stage.WhenUp("Value Out of Range", [&](QWidget&) { ++boxes; });
      ClickTab(tab);
      EXPECT_EQ(Tabs().currentIndex(), MainWindow::kDeviceTab);
      EXPECT_TRUE(field.isVisible());
      EXPECT_TRUE(field.hasFocus());
    }
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("20"));
    ClickTab(MainWindow::kControlTab);
    EXPECT_EQ(Tabs().currentIndex(), MainWindow::kControlTab) << "a good one";
  });
  EXPECT_EQ(boxes, 2);
}

TEST_F(Use, ControlsAreCopiedAndPastedByTheirKeysWhateverButAFieldHasTheFocus) {
  OnMainWindow([&] {
    const int before = Rows();
    Click(List().viewport(), List().visualRect(List().model()->index(0, 0)).center());
    Widget(kRefreshDeviceList)->setFocus();  // on a tab that isn't shown: the list keeps it
    Key(Qt::Key_C, Qt::ControlModifier);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Rows(), before + 1) << "in the list, and once";
    for (const std::uint32_t id : {kTabControl, kEditControl, kProfileList, kHelp}) {
      const int rows = Rows();
      Widget(id)->setFocus(Qt::TabFocusReason);
      ASSERT_TRUE(Widget(id)->hasFocus()) << id;
      Key(Qt::Key_V, Qt::ControlModifier);
      EXPECT_EQ(Rows(), rows + 1) << id;
    }
    ClickTab(MainWindow::kDeviceTab);
    const int rows = Rows();
    Widget(kInterval)->setFocus(Qt::TabFocusReason);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Rows(), rows) << "an edit has its own paste";
  });
}

TEST_F(Use, TheColumnsSayWhatTheyShow) {
  OnMainWindow([&] {
    const QAbstractItemModel& model = *List().model();
    ASSERT_EQ(model.columnCount(), 3);
    const char* const headings[] = {"Trigger", "Action", "Description"};
    for (int column = 0; column < 3; ++column)
      EXPECT_EQ(model.headerData(column, Qt::Horizontal).toString().toStdString(),
                headings[column]);
    EXPECT_EQ(model.index(4, 0).data().toString().toStdString(), "B1");
    EXPECT_EQ(model.index(4, 2).data().toString().toStdString(), "Jump");
  });
}

TEST_F(Use, APastedControlIsScrolledIntoViewUnselected) {
  Stage::AddControls(60);
  OnMainWindow([&] {
    Click(List().viewport(), List().visualRect(List().model()->index(0, 0)).center());
    Key(Qt::Key_C, Qt::ControlModifier);
    Key(Qt::Key_V, Qt::ControlModifier);
    const QRect last = List().visualRect(List().model()->index(Rows() - 1, 0));
    EXPECT_TRUE(List().viewport()->rect().contains(last.center()));
    EXPECT_TRUE(List().selectionModel()->selectedRows().isEmpty());
  });
}

TEST_F(Use, ANewControlIsScrolledIntoViewUnselected) {
  Stage::AddControls(60);
  OnMainWindow([&] {
    const int before = Rows();
    stage.WhenUp("Define Control", [](QWidget& dialog) {
      auto& define = dynamic_cast<DialogWindow&>(dialog);
      QTest::keyClicks(define.Find(define_control::kDescriptionText)->FocusWidget(),
                       QStringLiteral("new"));
      define.SendNotice(platform::IDOK, platform::Notice::Clicked, 0);
    });
    window->SendNotice(kNewControl, platform::Notice::Clicked, 0);
    ASSERT_EQ(Rows(), before + 1);
    const QRect last = List().visualRect(List().model()->index(Rows() - 1, 0));
    EXPECT_TRUE(List().viewport()->rect().contains(last.center()));
    EXPECT_TRUE(List().selectionModel()->selectedRows().isEmpty());
  });
}

TEST_F(Use, TypingInRenameTakesThePlaceOfTheOldName) {
  EXPECT_TRUE(stage.Open(profile_name::kDialog, [&](DialogWindow& dialog) {
    QTest::keyClick(dialog.windowHandle(), Qt::Key_Z);
    EXPECT_EQ(dialog.Find(profile_name::kName)->Text(), "z");
  }));
}

}  // namespace
}  // namespace kelvaro::looks
