#include "app/platform/qt/dialog_window.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QPixmapCache>

#include "app/platform/qt/qt_canvas.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

class DialogWindowTest : public QtTest {
 protected:
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(Dialog()->windowHandle(), key, modifiers);
  }
};

// --- Its life

IN_WINDOW(DialogWindowTest, OneThatIsHiddenKeepsNoPictures) {
  const QString picture = QStringLiteral("a picture");
  ASSERT_TRUE(QPixmapCache::insert(picture, QPixmap(8, 8)));
  Settle();
  EXPECT_TRUE(QPixmapCache::find(picture, nullptr));
  desktop().ShowWindow(Window(), SW_HIDE);
  EXPECT_TRUE(WaitFor([&] { return !QPixmapCache::find(picture, nullptr); }));
}

// --- Keys

IN_WINDOW(DialogWindowTest, TheFirstControlHasTheFocusAndTabGoesInTheOrderOfTheTable) {
  std::vector<std::uint32_t> order;
  for (int i = 0; i < 10; ++i) {
    order.push_back(controls().GetControlFocus(Window()));
    Key(Qt::Key_Tab);
  }
  // A run of radio buttons is one stop.
  EXPECT_EQ(order,
            (std::vector<std::uint32_t>{kNameEdit, kDigitsEdit, kReadOnlyEdit, kArea, kButton,
                                        kPictureButton, kDrawnButton, kCheck, kRadioA, kRadioC}));
}

IN_WINDOW(DialogWindowTest, TabPassesWhatIsHiddenOrDisabled) {
  controls().SetControlFocus(Window(), kNameEdit);
  controls().EnableControl(Window(), kDigitsEdit, false);
  controls().ShowControl(Window(), kReadOnlyEdit, SW_HIDE);
  Key(Qt::Key_Tab);
  EXPECT_EQ(controls().GetControlFocus(Window()), kArea);
  Key(Qt::Key_Backtab);
  EXPECT_EQ(controls().GetControlFocus(Window()), kNameEdit);
}

IN_WINDOW(DialogWindowTest, EnterOfTheKeypadPressesTheDefaultButton) {
  controls().SetControlFocus(Window(), kNameEdit);
  Key(Qt::Key_Enter);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"105 clicked"}));
}

IN_WINDOW(DialogWindowTest, KeysReachTheWindowItselfWhereverTheFocusHasNoUseForThem) {
  QWidget* const focused = Dialog()->focusWidget();
  if (focused) focused->clearFocus();
  EXPECT_EQ(controls().GetControlFocus(Window()), 0u);
  recorder.lines.clear();
  Key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(recorder.LinesOf(0), (Lines{"0 key down 17", "0 key down 67"}));
  controls().TabInsertItem(Window(), kTabs, "One");
  for (const std::uint32_t id :
       {kButton, kPictureButton, kDrawnButton, kCheck, kRadioA, kDropList, kTabs, kSlider, kLink}) {
    ASSERT_TRUE(controls().SetControlFocus(Window(), id));
    recorder.lines.clear();
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(recorder.LinesOf(0), (Lines{"0 key down 17", "0 key down 67"})) << id;
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(recorder.LinesOf(0).size(), 4u) << id << ", the V too";
  }
  for (const std::uint32_t id : {kNameEdit, kDigitsEdit, kReadOnlyEdit, kArea, kList}) {
    ASSERT_TRUE(controls().SetControlFocus(Window(), id));
    recorder.lines.clear();
    for (const Qt::Key key : {Qt::Key_C, Qt::Key_V, Qt::Key_X, Qt::Key_F5, Qt::Key_Up})
      Key(key, Qt::ControlModifier);
    EXPECT_TRUE(recorder.LinesOf(0).empty()) << id;
  }
}

// --- Places

constexpr ControlTemplate kWordyControls[] = {
    {ControlKind::Label, kNameLabel, "", 5, 5, 90, 8, kStyleWrap},
    {ControlKind::Label, 200, "beside", 96, 5, 20, 8},
    {ControlKind::Button, IDOK, "OK", 25, 20, 50, 14, kStyleDefault},
};
constexpr DialogTemplate kWordy = {3, "Wordy", 120, 40, 0, kWordyControls};

// Names have blanks or not.
TEST_F(DialogWindowTest, ALongTextIsSeenWhole) {
  for (const std::string& name :
       {std::string(240, 'w'), std::string("x ") + std::string(20, 'y')}) {
    QSize size;
    int button = 0;
    recorder.onInit = [&](WindowHandle window) {
      size = Dialog()->size();
      button = Widget(IDOK)->y();
      controls().SetDlgItemTextA(window, kNameLabel, name);
    };
    Run(kWordy, [&] {
      const QFontMetrics metrics(Widget(kNameLabel)->font());
      const int lines =
          metrics.horizontalAdvance(QString::fromStdString(name)) / Widget(kNameLabel)->width();
      EXPECT_GE(Widget(kNameLabel)->height(), lines * metrics.height());
      const int more = Dialog()->height() - size.height();
      EXPECT_EQ(Widget(IDOK)->y(), button + more);
      EXPECT_EQ(Dialog()->width(), size.width());
      EXPECT_EQ(Widget(200)->y(), Widget(kNameLabel)->y());
      EXPECT_EQ(more > 0, lines > 1) << name;
    });
  }
}

IN_WINDOW(DialogWindowTest, ControlsStandWhereTheyAreSet) {
  EXPECT_TRUE(controls().SetControlPos(Window(), kButton, {10, 20, 17, 23}, 0));
  Rect rect;
  EXPECT_TRUE(controls().GetControlRect(Window(), kButton, &rect));
  EXPECT_EQ(rect, (Rect{10, 20, 17, 23})) << "smaller than it would like";
  EXPECT_TRUE(controls().SetControlPos(Window(), kButton, {1, 2, 99, 99}, SWP_NOSIZE));
  controls().GetControlRect(Window(), kButton, &rect);
  EXPECT_EQ(rect, (Rect{1, 2, 8, 5}));
}

IN_WINDOW(DialogWindowTest, IsMovedAsAWholeAndToldItsNewInside) {
  EXPECT_TRUE(desktop().MoveWindow(Window(), {40, 50, 740, 550}));
  Rect rect;
  EXPECT_TRUE(desktop().GetWindowRect(Window(), &rect));
  EXPECT_EQ(rect, (Rect{40, 50, 740, 550}));
  Rect client;
  EXPECT_TRUE(desktop().GetClientRect(Window(), &client));
  EXPECT_EQ(recorder.lines.back(), SizeLine(client));
  const QPoint inside = Dialog()->mapToGlobal(QPoint(0, 0));
  EXPECT_EQ(recorder.place, (Point{inside.x(), inside.y()}));
  EXPECT_TRUE(desktop().InvalidateRect(Window(), client));
  EXPECT_TRUE(desktop().UpdateWindow(Window()));
  EXPECT_TRUE(desktop().SetWindowTextA(Window(), "Title"));
  EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Title"));
  EXPECT_TRUE(desktop().SetForegroundWindow(Window()));
}

TEST_F(DialogWindowTest, TheFrameThatItGetsLeavesItsInsideAsItIs) {
  Rect given;
  recorder.onInit = [&](WindowHandle window) {
    desktop().MoveWindow(window, {30, 40, 830, 640});
    desktop().GetClientRect(window, &given);
  };
  Run([&] {
    Settle();
    EXPECT_NE(Dialog()->frameGeometry().size(), Dialog()->size())
        << "there is no frame to speak of";
    Rect now;
    desktop().GetClientRect(Window(), &now);
    EXPECT_EQ(now, given);
  });
}

IN_WINDOW(DialogWindowTest, OneThatThePersonMovedStaysThereWhenItIsHiddenAndComesBack) {
  Dialog()->move(17, 23);
  desktop().ShowWindow(Window(), SW_HIDE);
  desktop().ShowWindow(Window(), SW_SHOW);
  desktop().ShowWindow(Window(), SW_RESTORE);
  EXPECT_EQ(Dialog()->pos(), QPoint(17, 23));
  desktop().ShowWindow(Window(), SW_SHOWNORMAL);
  EXPECT_EQ(Dialog()->pos(), QPoint(17, 23)) << "seen all the time";
}

TEST_F(DialogWindowTest, KeepsToItsLimits) {
  recorder.limits.minTrackWidth = 500;
  recorder.limits.minTrackHeight = 300;
  recorder.limits.maxTrackHeight = 400;
  Run([&] {
    desktop().MoveWindow(Window(), {0, 0, 10, 10});
    EXPECT_EQ(Dialog()->size(), QSize(500, 300));
    desktop().MoveWindow(Window(), {0, 0, 2000, 2000});
    EXPECT_EQ(Dialog()->height(), 400);
    EXPECT_GT(Dialog()->width(), 1900);
    Dialog()->resize(20, 20);
    EXPECT_EQ(Dialog()->size(), QSize(500, 300));
  });
}

TEST_F(DialogWindowTest, AFixedOneCantBeSized) {
  Run(kOneButton, [&] { EXPECT_EQ(Dialog()->minimumSize(), Dialog()->maximumSize()); });
}

IN_WINDOW(DialogWindowTest, FramesAndTabsLieBelowWhatStandsInThem) {
  const QPoint inGroup = Widget(kRadioC)->geometry().center();
  EXPECT_EQ(Dialog()->childAt(inGroup), Widget(kRadioC));
  EXPECT_EQ(Dialog()->childAt(Widget(kSlider)->geometry().center()), Widget(kSlider));
  controls().SetControlPos(Window(), kButton, RectOf(Dialog()->Find(kTabs)->Widget()->geometry()),
                           SWP_NOSIZE);
  EXPECT_EQ(Dialog()->childAt(Widget(kButton)->geometry().center()), Widget(kButton));
}

// --- Painting

TEST_F(DialogWindowTest, TheListenerPaintsBehindTheControls) {
  recorder.onPaint = [](Canvas& canvas) { canvas.FillRect({0, 0, 2000, 2000}, Rgb(9, 8, 7)); };
  Run([&] {
    EXPECT_EQ(PixelOf(Dialog(), Dialog()->width() - 1, Dialog()->height() - 1), QColor(9, 8, 7));
    const QPoint check = Widget(kButton)->geometry().center();
    EXPECT_NE(PixelOf(Dialog(), check.x(), Widget(kButton)->geometry().top() + 2), QColor(9, 8, 7));
  });
}

// --- Shown, hidden, minimised

IN_WINDOW(DialogWindowTest, HasTheIconThatItIsGiven) {
  const IconHandle icon = desktop().LoadIconA(128);
  EXPECT_TRUE(desktop().SetWindowIcon(Window(), icon, true));
  EXPECT_FALSE(Dialog()->windowIcon().isNull());
  EXPECT_FALSE(desktop().SetWindowIcon(99, icon, true));
}

IN_WINDOW(DialogWindowTest, AScreenReaderIsToldOfAWindow) {
  QAccessibleInterface* const window = QAccessible::queryAccessibleInterface(Dialog());
  EXPECT_EQ(window->role(), QAccessible::Window);
  EXPECT_EQ(window->text(QAccessible::Name), QStringLiteral("All kinds"));
  EXPECT_FALSE(window->state().modal);
}

IN_WINDOW(DialogWindowTest, AMinimisedOneThatIsOnlyShownIsSeenMinimised) {
  desktop().ShowWindow(Window(), SW_MINIMIZE);
  desktop().ShowWindow(Window(), SW_HIDE);
  desktop().ShowWindow(Window(), SW_SHOW);
  Settle();
  EXPECT_TRUE(Dialog()->isMinimized());
}

}  // namespace
}  // namespace platform::qt
