#include <algorithm>
#include <iterator>

#include "desktop_fixture.h"

namespace platform {
namespace {

class WindowCase : public DesktopTest {};

TEST_F(WindowCase, IsMadeBeforeItIsShownAndTakesItsResultFromItsEnd) {
  recorder.onInit = [&](WindowHandle window) {
    EXPECT_FALSE(desktop().IsWindowVisible(window));
    EXPECT_TRUE(controls().HasControl(window, kButton));
    Rect client;
    EXPECT_TRUE(desktop().GetClientRect(window, &client));
    EXPECT_GT(client.Width(), 0);
  };
  const std::int32_t result = Run([&] {
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
    EXPECT_TRUE(desktop().EndDialog(Window(), 7));
    EXPECT_TRUE(controls().HasControl(Window(), kButton)) << "it goes when its handler returns";
    EXPECT_TRUE(desktop().EndDialog(Window(), 8));
  });
  EXPECT_EQ(result, IDOK) << "the last one counts";
  EXPECT_TRUE(recorder.destroyed);
  EXPECT_FALSE(controls().HasControl(recorder.window, kButton));
  EXPECT_FALSE(desktop().EndDialog(recorder.window, 1));
}

TEST_F(WindowCase, OneThatEndsInItsFirstMessageIsNeverSeen) {
  recorder.onInit = [&](WindowHandle window) { desktop().EndDialog(window, 5); };
  EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), 5);
  EXPECT_TRUE(recorder.destroyed);
  EXPECT_TRUE(recorder.LinesOf(kButton).empty());
}

TEST_F(WindowCase, AnOwnerThatIsntThereMakesNone) {
  EXPECT_EQ(desktop().RunDialog(kAllKinds, 99, recorder), -1);
  EXPECT_EQ(recorder.window, kNoWindow);
}

TEST_F(WindowCase, TheCloseBoxIsTheListeners) {
  recorder.onClose = [] {};
  Run([&] {
    PressCloseBox();
    EXPECT_EQ(recorder.TakeLines(), (Lines{"close"}));
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
  });
}

TEST_F(WindowCase, WhatWasPostedWhileItWasMadeComesBeforeItIsSeen) {
  bool seen = true;
  recorder.onInit = [&](WindowHandle window) { desktop().PostMessageA(window, 0x8001, 0, 0); };
  recorder.onMessage = [&](std::uint32_t) { seen = desktop().IsWindowVisible(recorder.window); };
  Run([&] { EXPECT_FALSE(seen); });
}

TEST_F(WindowCase, OneThatIsToBeHiddenAtOnceIsNeverSeen) {
  recorder.onInit = [&](WindowHandle window) {
    desktop().PostMessageA(window, 0x8001, 0, 0);
    desktop().SetTimer(window, 1, 50);
  };
  recorder.onMessage = [&](std::uint32_t) { desktop().ShowWindow(recorder.window, SW_HIDE); };
  int looks = 0;
  recorder.onTimer = [&](std::uint32_t) {
    EXPECT_FALSE(desktop().IsWindowVisible(recorder.window));
    if (++looks == 1) {
      desktop().ShowWindow(recorder.window, SW_SHOW);
      desktop().ShowWindow(recorder.window, SW_RESTORE);
      EXPECT_TRUE(desktop().IsWindowVisible(recorder.window));
      desktop().EndDialog(recorder.window, IDOK);
    }
  };
  EXPECT_EQ(desktop().RunDialog(kAllKinds, kNoWindow, recorder), IDOK);
  EXPECT_EQ(looks, 1);
}

IN_WINDOW(WindowCase, EnterPressesTheDefaultButton) {
  controls().SetControlFocus(Window(), kNameEdit);
  Key(key::kReturn);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"105 clicked", "105 clicked"}));
  EXPECT_TRUE(controls().SetDefaultButton(Window(), kDrawnButton));
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"107 clicked"}));
  EXPECT_FALSE(controls().SetDefaultButton(Window(), kCheck));
}

IN_WINDOW(WindowCase, EnterPressesAHiddenDefaultButtonAndNotADisabledOne) {
  controls().SetControlFocus(Window(), kNameEdit);
  controls().ShowControl(Window(), kButton, SW_HIDE);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"105 clicked"}));
  controls().EnableControl(Window(), kButton, false);
  Key(key::kReturn);
  EXPECT_TRUE(recorder.lines.empty());
}

IN_WINDOW(WindowCase, EnterPressesTheButtonThatHasTheFocus) {
  controls().SetControlFocus(Window(), IDCANCEL);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"2 clicked"}));
  controls().SetControlFocus(Window(), kPictureButton);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"106 clicked"}));
  controls().SetControlFocus(Window(), kButton);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"105 clicked"})) << "once, though it is the default";
  controls().SetControlFocus(Window(), kCheck);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"105 clicked"})) << "a check box is no push button";
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kCheck));
}

IN_WINDOW(WindowCase, EscIsCancel) {
  Key(key::kEscape);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"2 clicked"}));
  controls().EnableControl(Window(), IDCANCEL, false);
  Key(key::kEscape);
  EXPECT_TRUE(recorder.lines.empty());
}

TEST_F(WindowCase, EscIsCancelWithoutSuchAButton) {
  Run(kOneButton, [&] {
    Key(key::kEscape);
    EXPECT_EQ(recorder.TakeLines(), (Lines{"2 clicked"}));
  });
}

IN_WINDOW(WindowCase, F1IsTheWindowsWhateverHasTheFocus) {
  for (const std::uint32_t id : {kNameEdit, kReadOnlyEdit, kArea, kButton, kDrawnButton, kCheck,
                                 kRadioA, kDropList, kList, kTabs, kSlider, kLink}) {
    EXPECT_TRUE(controls().SetControlFocus(Window(), id));
    recorder.lines.clear();
    Key(key::kF1);
    EXPECT_EQ(recorder.TakeLines(), (Lines{"0 key down 112"})) << id;
  }
}

IN_WINDOW(WindowCase, AMnemonicPressesItsButton) {
  Key('E', kAlt);
  EXPECT_TRUE(WaitFor([&] { return !recorder.LinesOf(kButton).empty(); }));
  EXPECT_EQ(recorder.LinesOf(kButton), (Lines{"105 clicked"}));
}

TEST_F(WindowCase, TheFocusCanBeSetBeforeItIsSeen) {
  recorder.onInit = [](WindowHandle window) {
    EXPECT_TRUE(controls().SetControlFocus(window, kCheck));
  };
  Run([&] {
    EXPECT_EQ(controls().GetControlFocus(Window()), kCheck);
    EXPECT_FALSE(controls().SetControlFocus(Window(), kNameLabel));
    EXPECT_FALSE(controls().SetControlFocus(Window(), 999));
    EXPECT_EQ(controls().GetControlFocus(99), 0u);
  });
}

IN_WINDOW(WindowCase, SeveralMoveAtOnce) {
  Rect before;
  controls().GetControlRect(Window(), kButton, &before);
  const DeferHandle defer = controls().BeginDeferWindowPos(2);
  ASSERT_NE(defer, 0u);
  EXPECT_EQ(controls().DeferWindowPos(defer, Window(), kButton, {1, 2, 11, 12}, 0), defer);
  EXPECT_EQ(controls().DeferWindowPos(defer, Window(), 999, {}, 0), 0u);
  Rect rect;
  controls().GetControlRect(Window(), kButton, &rect);
  EXPECT_EQ(rect, before);
  EXPECT_TRUE(controls().EndDeferWindowPos(defer));
  controls().GetControlRect(Window(), kButton, &rect);
  EXPECT_EQ(rect, (Rect{1, 2, 11, 12}));
  EXPECT_FALSE(controls().EndDeferWindowPos(defer));
  EXPECT_EQ(controls().BeginDeferWindowPos(-1), 0u);
}

TEST_F(WindowCase, VisibleIsWhatTheProgramSetWhetherTheWindowIsSeenOrNot) {
  recorder.onInit = [](WindowHandle window) {
    EXPECT_TRUE(controls().IsControlVisible(window, kButton));
    EXPECT_FALSE(controls().IsControlVisible(window, kHiddenButton));
    EXPECT_TRUE(controls().ShowControl(window, kHiddenButton, SW_SHOWNOACTIVATE));
    EXPECT_TRUE(controls().IsControlVisible(window, kHiddenButton));
    EXPECT_TRUE(controls().ShowControl(window, kButton, SW_HIDE));
    EXPECT_FALSE(controls().IsControlVisible(window, kButton));
    EXPECT_FALSE(controls().ShowControl(window, 999, SW_HIDE));
  };
  Run([&] {
    EXPECT_TRUE(IsSeen(kHiddenButton));
    EXPECT_FALSE(IsSeen(kButton));
  });
}

TEST_F(WindowCase, AMoveBeforeItIsSeenTellsTheSizeAtOnce) {
  recorder.onInit = [&](WindowHandle window) {
    EXPECT_TRUE(desktop().MoveWindow(window, {30, 40, 830, 640}));
    Rect client;
    desktop().GetClientRect(window, &client);
    EXPECT_EQ(recorder.lines.back(), SizeLine(client));
  };
  Run([&] {
    Rect rect;
    desktop().GetWindowRect(Window(), &rect);
    EXPECT_EQ(rect, (Rect{30, 40, 830, 640})) << "with the frame that it has got meanwhile";
  });
}

IN_WINDOW(WindowCase, AMinimisedOneThatIsOnlyShownStaysMinimised) {
  desktop().ShowWindow(Window(), SW_MINIMIZE);
  desktop().ShowWindow(Window(), SW_HIDE);
  desktop().ShowWindow(Window(), SW_SHOW);
  EXPECT_TRUE(desktop().IsWindowVisible(Window()));
  Settle();
  EXPECT_TRUE(desktop().IsIconic(Window()));
}

IN_WINDOW(WindowCase, TabGoesInTheOrderOfTheTable) {
  controls().TabInsertItem(Window(), kTabs, "One");
  const std::uint32_t order[] = {kDropList, kSortedList, kList,    kTabs,     kSlider,
                                 kLink,     kSingleList, IDCANCEL, kNameEdit, kDigitsEdit};
  controls().SetControlFocus(Window(), order[0]);
  for (std::size_t i = 1; i < std::size(order); ++i) {
    Key(key::kTab);
    EXPECT_EQ(controls().GetControlFocus(Window()), order[i]);
  }
  for (std::size_t i = std::size(order) - 1; i > 0; --i) {
    Key(key::kTab, kShift);
    EXPECT_EQ(controls().GetControlFocus(Window()), order[i - 1]);
  }
}

IN_WINDOW(WindowCase, AControlThatGoesHandsTheFocusOn) {
  controls().SetControlFocus(Window(), kNameEdit);
  controls().EnableControl(Window(), kNameEdit, false);
  EXPECT_EQ(controls().GetControlFocus(Window()), kDigitsEdit);
  controls().ShowControl(Window(), kDigitsEdit, SW_HIDE);
  EXPECT_EQ(controls().GetControlFocus(Window()), kReadOnlyEdit);
  Settle();
  EXPECT_TRUE(recorder.lines.empty()) << "the program's doing";
}

IN_WINDOW(WindowCase, KeysReachTheWindowItselfWhereverTheFocusHasNoUseForThem) {
  controls().TabInsertItem(Window(), kTabs, "One");
  for (const std::uint32_t id :
       {kButton, kPictureButton, kDrawnButton, kCheck, kDropList, kTabs, kSlider, kLink}) {
    ASSERT_TRUE(controls().SetControlFocus(Window(), id));
    recorder.lines.clear();
    Key('C', kControl);
    const Lines told = recorder.LinesOf(0);
    EXPECT_TRUE(std::find(told.begin(), told.end(), "0 key down 67") != told.end()) << id;
  }
  for (const std::uint32_t id : {kNameEdit, kDigitsEdit, kReadOnlyEdit, kArea, kList}) {
    ASSERT_TRUE(controls().SetControlFocus(Window(), id));
    recorder.lines.clear();
    Key('C', kControl);
    EXPECT_TRUE(recorder.LinesOf(0).empty()) << id;
  }
}

IN_WINDOW(WindowCase, AMaximisedOneComesBackMaximised) {
  recorder.TakeLines();
  PressMaximiseBox();
  EXPECT_TRUE(desktop().IsZoomed(Window()));
  EXPECT_EQ(recorder.TakeLines().back().substr(0, 6), "size 2");
  desktop().ShowWindow(Window(), SW_MINIMIZE);
  EXPECT_FALSE(desktop().IsZoomed(Window()));
  desktop().ShowWindow(Window(), SW_RESTORE);
  Settle();
  EXPECT_TRUE(desktop().IsZoomed(Window()));
  desktop().ShowWindow(Window(), SW_RESTORE);
  Settle();
  EXPECT_FALSE(desktop().IsZoomed(Window()));
}

}  // namespace
}  // namespace platform
