#include "app/platform/qt/tool_tips.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QToolTip>
#include <QTreeView>

#include "app/platform/qt/text.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

TEST(Wrapped, NoLineIsWiderThanTheWidth) {
  const QString text = QStringLiteral("word ").repeated(60).trimmed();
  const QStringList lines = Wrapped(text, 300).split(u'\n');
  EXPECT_GT(lines.size(), 1);
  for (const QString& line : lines) {
    EXPECT_LE(QFontMetrics(QToolTip::font()).horizontalAdvance(line), 300);
  }
  EXPECT_EQ(lines.join(u' '), text);
}

TEST(Wrapped, LineEndsOfTheTextStay) {
  EXPECT_EQ(Wrapped(QStringLiteral("a\n\nb"), 300), QStringLiteral("a\n\nb"));
}

TEST(Wrapped, WithoutAWidthTheTextStaysAsItIs) {
  const QString text = QStringLiteral("word ").repeated(60);
  EXPECT_EQ(Wrapped(text, 0), text);
}

class ToolTipsTest : public QtTest {
 protected:
  // What comes up above the middle of a control, or above a point of it.
  QString Hover(std::uint32_t id, QPoint point = {-1, -1}) {
    QWidget* const widget = Dialog()->Find(id)->Widget();
    if (point.x() < 0) point = widget->rect().center();
    QToolTip::hideText();
    EXPECT_TRUE(WaitFor([] { return !QToolTip::isVisible(); }));
    QHelpEvent event(QEvent::ToolTip, point, widget->mapToGlobal(point));
    QApplication::sendEvent(widget, &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
  }
};

TEST_F(ToolTipsTest, AToolShowsTheTextThatTheProgramGives) {
  recorder.tip = [](std::uint32_t id) { return "tip of " + std::to_string(id); };
  Run([&] {
    EXPECT_EQ(Hover(kButton), QString()) << "it isn't a tool yet";
    EXPECT_TRUE(controls().CreateToolTip(Window()));
    EXPECT_TRUE(controls().AddTool(Window(), kButton));
    EXPECT_TRUE(Hover(kButton).contains(QStringLiteral("tip of 105")));
    EXPECT_EQ(Hover(kCheck), QString());
    EXPECT_TRUE(controls().EnableToolTips(Window()));
    EXPECT_TRUE(Hover(kCheck).contains(QStringLiteral("tip of 108")));
    EXPECT_TRUE(Hover(kSlider).contains(QStringLiteral("tip of 119")));
  });
}

IN_WINDOW(ToolTipsTest, AnEmptyTextIsNoTip) {
  controls().EnableToolTips(Window());
  EXPECT_EQ(Hover(kButton), QString());
}

TEST_F(ToolTipsTest, ACellThatIsCutShowsItsWholeText) {
  recorder.tip = [](std::uint32_t) { return std::string("told"); };
  Run([&] {
    controls().EnableToolTips(Window());
    controls().ListInsertColumn(Window(), kList, "Trigger", 100);
    controls().ListInsertColumn(Window(), kList, "Action", 50);
    controls().ListInsertItem(Window(), kList, 0);
    controls().ListSetItemText(Window(), kList, 0, 0, "B1");
    controls().ListSetItemText(Window(), kList, 0, 1, "<Ctrl><Shift>abc");
    auto* const list = static_cast<QTreeView*>(Widget(kList));
    const auto place = [&](int column) {
      return list->viewport()->mapToParent(
          list->visualRect(list->model()->index(0, column)).center());
    };
    EXPECT_TRUE(Hover(kList, place(1)).contains(QStringLiteral("&lt;Ctrl&gt;&lt;Shift&gt;abc")));
    EXPECT_TRUE(Hover(kList, place(0)).contains(QStringLiteral("told")));
    controls().ListSetColumnWidth(Window(), kList, 1, 200);
    EXPECT_TRUE(Hover(kList, place(1)).contains(QStringLiteral("told")));
  });
}

TEST_F(ToolTipsTest, AnInactiveOneShowsNothing) {
  recorder.tip = [](std::uint32_t) { return std::string("tip"); };
  Run([&] {
    controls().EnableToolTips(Window());
    EXPECT_TRUE(controls().ActivateToolTip(Window(), false));
    EXPECT_EQ(Hover(kButton), QString());
    EXPECT_TRUE(controls().ActivateToolTip(Window(), true));
    EXPECT_NE(Hover(kButton), QString());
  });
}

IN_WINDOW(ToolTipsTest, EachTabHasATextOfItsOwn) {
  controls().TabInsertItem(Window(), kTabs, "One");
  controls().TabInsertItem(Window(), kTabs, "Two");
  EXPECT_TRUE(controls().AddTabTool(Window(), kTabs, 0, "the first"));
  EXPECT_TRUE(controls().AddTabTool(Window(), kTabs, 1, "the second"));
  EXPECT_FALSE(controls().AddTabTool(Window(), kTabs, 2, "none"));
  EXPECT_FALSE(controls().AddTabTool(Window(), kButton, 0, "no tabs"));
  Rect second;
  ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 1, &second));
  EXPECT_TRUE(Hover(kTabs, {3, 3}).contains(QStringLiteral("the first")));
  EXPECT_TRUE(Hover(kTabs, {second.left + 3, 3}).contains(QStringLiteral("the second")));
  EXPECT_EQ(Hover(kTabs), QString()) << "the page";
}

TEST_F(ToolTipsTest, AngleBracketsAreShownAsTheyStand) {
  recorder.tip = [](std::uint32_t) { return std::string("brackets \"<>\""); };
  Run([&] {
    controls().EnableToolTips(Window());
    EXPECT_TRUE(controls().SetToolTipWidth(Window(), 300));
    EXPECT_TRUE(controls().SetToolTipTime(Window(), 10000));
    EXPECT_TRUE(Hover(kButton).contains(QStringLiteral("&lt;&gt;")));
  });
}

TEST_F(ToolTipsTest, AWindowThatIsntThereHasNone) {
  EXPECT_FALSE(controls().CreateToolTip(99));
  EXPECT_FALSE(controls().SetToolTipWidth(99, 1));
  EXPECT_FALSE(controls().SetToolTipTime(99, 1));
  EXPECT_FALSE(controls().ActivateToolTip(99, true));
  EXPECT_FALSE(controls().AddTool(99, kButton));
  EXPECT_FALSE(controls().EnableToolTips(99));
}

TEST_F(ToolTipsTest, AScreenReaderReadsThemAloud) {
  recorder.tip = [](std::uint32_t id) { return "tip of " + std::to_string(id); };
  recorder.onInit = [&](WindowHandle window) {
    controls().CreateToolTip(window);
    controls().AddTool(window, kButton);
    controls().TabInsertItem(window, kTabs, "First");
    controls().AddTabTool(window, kTabs, 0, "tip of the tab");
  };
  Run([&] {
    const auto description = [](QAccessibleInterface* object) {
      return object->text(QAccessible::Description).toStdString();
    };
    EXPECT_EQ(description(QAccessible::queryAccessibleInterface(Widget(kButton))),
              "tip of " + std::to_string(kButton));
    EXPECT_EQ(description(QAccessible::queryAccessibleInterface(Widget(kCheck))), "");
    EXPECT_EQ(description(QAccessible::queryAccessibleInterface(Widget(kTabs))->child(0)),
              "tip of the tab");
  });
}

}  // namespace
}  // namespace platform::qt
