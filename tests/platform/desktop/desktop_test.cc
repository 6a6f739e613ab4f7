#include <atomic>
#include <thread>

#include "desktop_fixture.h"

namespace platform {
namespace {

int hookCalls = 0;
std::intptr_t CountingHook(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam) {
  if (code == HCBT_MINMAX && lParam == SW_MINIMIZE && wParam != kNoWindow) ++hookCalls;
  return 0;
}

class DesktopCase : public DesktopTest {};

// --- Boxes

IN_WINDOW(DesktopCase, ABoxGivesTheButtonThatWasPressed) {
  for (const std::int32_t button : {IDYES, IDNO}) {
    Later([this, button] {
      ASSERT_TRUE(Box().has_value());
      EXPECT_EQ(Box()->text, "Delete <it> & \xC3\xBC?");
      EXPECT_EQ(Box()->caption, "Question");
      Answer(button);
    });
    EXPECT_EQ(desktop().MessageBoxA(Window(), "Delete <it> & \xC3\xBC?", "Question",
                                    MB_YESNO | MB_ICONQUESTION),
              button);
  }
  Later([this] { Answer(IDOK); });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "!", "Failure", MB_OK | MB_ICONSTOP), IDOK);
}

TEST_F(DesktopCase, ABoxWorksWithoutAWindow) {
  Later([this] { Answer(IDOK); });
  EXPECT_EQ(desktop().MessageBoxA(kNoWindow, "!", "", MB_OK), IDOK);
}

TEST_F(DesktopCase, TimersAndMessagesGoOnBehindABox) {
  int ticks = 0;
  recorder.onTimer = [&](std::uint32_t) {
    if (++ticks == 3) Answer(IDOK);
  };
  Run([&] {
    controls().SetControlFocus(Window(), kCheck);
    EXPECT_EQ(desktop().SetTimer(Window(), 1, 20), 1u);
    desktop().PostMessageA(Window(), 0x8001, 1, 2);
    EXPECT_EQ(desktop().MessageBoxA(Window(), "!", "", MB_OK), IDOK);
    EXPECT_GE(ticks, 3);
    desktop().KillTimer(Window(), 1);
    EXPECT_EQ(recorder.lines, (Lines{"message 32769 1 2"}));
  });
}

TEST_F(DesktopCase, ABoxOfAnotherThreadBlocksThatThreadAlone) {
  int ticks = 0;
  recorder.onTimer = [&](std::uint32_t) { ++ticks; };
  std::thread other;
  Run([&] {
    desktop().SetTimer(Window(), 1, 10);
    other = Ask(MB_YESNO);
    ASSERT_TRUE(ABoxComesUp());
    EXPECT_EQ(answer, -1);
    EXPECT_TRUE(WaitFor([&] { return ticks > 2; })) << "the window goes on";
    Answer(IDYES);
    EXPECT_TRUE(WaitFor([&] { return answer == IDYES; }));
  });
  other.join();
}

// Nothing but the dismissal answers: the loop stands still until the thread has ended.
IN_WINDOW(DesktopCase, ABoxOfAnotherThreadIsDismissedBeforeThatThreadIsWaitedFor) {
  std::thread other = Ask(MB_YESNO);
  EXPECT_TRUE(ABoxComesUp());
  desktop().DismissBoxesOfOtherThreads();
  other.join();
  EXPECT_EQ(answer, IDNO) << "as if it had been closed";
  EXPECT_FALSE(Box().has_value());
}

IN_WINDOW(DesktopCase, AfterADismissalOnlyOtherThreadsGetNoBox) {
  desktop().DismissBoxesOfOtherThreads();
  std::thread other = Ask(MB_OK);
  other.join();
  EXPECT_EQ(answer, 0);
  Later([this] { Answer(IDYES); });
  EXPECT_EQ(desktop().MessageBoxA(Window(), "?", "", MB_YESNO), IDYES);
}

TEST_F(DesktopCase, WhatThePersonShouldKnowIsToldOnceAWindowIsUp) {
  desktop().Tell("The settings were damaged.");
  Run([&] {
    ASSERT_TRUE(ABoxComesUp());
    EXPECT_EQ(Box()->text, "The settings were damaged.");
    Answer(IDOK);
    EXPECT_TRUE(WaitFor([&] { return !Box().has_value(); }));
  });
}

// --- Dialogs in front of one another

IN_WINDOW(DesktopCase, ADialogInFrontOfAnotherTakesItsInput) {
  const WindowHandle behind = Window();
  Recorder inner;
  Later([&] {
    Click(kButton);
    EXPECT_TRUE(recorder.LinesOf(kButton).empty());
    EXPECT_TRUE(desktop().PostMessageA(behind, 0x8001, 0, 0));
    Settle();
    EXPECT_EQ(recorder.lines.back(), "message 32769 0 0");
    desktop().EndDialog(inner.window, 7);
  });
  EXPECT_EQ(desktop().RunDialog(kOneButton, behind, inner), 7);
  EXPECT_TRUE(inner.destroyed);
  EXPECT_TRUE(desktop().IsWindowVisible(behind));
  Click(kButton);
  EXPECT_EQ(recorder.LinesOf(kButton), (Lines{"105 clicked"}));
}

TEST_F(DesktopCase, EndingADialogEndsWhatIsInFrontOfIt) {
  std::int32_t innerResult = -5;
  const std::int32_t result = Run([&] {
    Recorder inner;
    const WindowHandle behind = Window();
    Later([&] {
      Later([&] { desktop().EndDialog(behind, 9); });
      desktop().MessageBoxA(inner.window, "?", "", MB_OK);
    });
    innerResult = desktop().RunDialog(kOneButton, behind, inner);
    EXPECT_TRUE(inner.destroyed);
  });
  EXPECT_EQ(innerResult, IDCANCEL);
  EXPECT_EQ(result, IDOK) << "the script's own end came last";
}

TEST_F(DesktopCase, MinimisingIsToldToTheHookOnce) {
  hookCalls = 0;
  Run([&] {
    const HookHandle hook = desktop().SetWindowsHookExA(WH_CBT, &CountingHook);
    EXPECT_NE(hook, 0u);
    EXPECT_EQ(desktop().SetWindowsHookExA(WH_CBT + 1, &CountingHook), 0u);
    PressMinimiseBox();
    EXPECT_EQ(hookCalls, 1);
    EXPECT_TRUE(desktop().IsIconic(Window()));
    EXPECT_EQ(recorder.TakeLines().back(), "size 1 0x0");
    EXPECT_TRUE(desktop().ShowWindow(Window(), SW_RESTORE));
    Settle();
    EXPECT_FALSE(desktop().IsIconic(Window()));
    EXPECT_TRUE(desktop().IsWindowVisible(Window()));
    EXPECT_TRUE(desktop().ShowWindow(Window(), SW_MINIMIZE));
    Settle();
    EXPECT_EQ(hookCalls, 2);
    desktop().ShowWindow(Window(), SW_SHOWNORMAL);
    EXPECT_TRUE(desktop().UnhookWindowsHookEx(hook));
    EXPECT_FALSE(desktop().UnhookWindowsHookEx(hook));
    desktop().ShowWindow(Window(), SW_MINIMIZE);
    Settle();
    EXPECT_EQ(hookCalls, 2);
  });
}

// --- Pictures and the notification area

TEST_F(DesktopCase, PicturesAreKnownByTheirNumbers) {
  const IconHandle icon = desktop().LoadIconA(128);
  EXPECT_NE(icon, 0u);
  EXPECT_EQ(desktop().LoadIconA(99), 0u);
  EXPECT_TRUE(desktop().DestroyIcon(icon));
  EXPECT_FALSE(desktop().DestroyIcon(icon));
  for (const std::uint32_t drawing : {145u, 146u, 148u})
    EXPECT_NE(desktop().LoadBitmapA(drawing), 0u);
  EXPECT_EQ(desktop().LoadBitmapA(99), 0u);
}

IN_WINDOW(DesktopCase, AnIconIsAddedOnceAndRemovedOnce) {
  NOTIFYICONDATA data;
  data.hWnd = Window();
  data.hIcon = desktop().LoadIconA(128);
  data.uFlags = NIF_ICON;
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_ADD, data)) << "it is there";
  EXPECT_TRUE(desktop().SetNotifyIconMenu(Window(), 0, {}));
  EXPECT_FALSE(desktop().SetNotifyIconMenu(Window(), 1, {}));
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
  data.hWnd = 99;
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(77, data));
}

TEST_F(DesktopCase, AChosenEntryOfAMenuComesAsAClick) {
  constexpr MenuItem items[] = {{"Exit", 32772}, {"", 0}, {"Show Kelvaro", 32771}};
  Run([&] {
    controls().SetControlFocus(Window(), kCheck);
    Later([this] {
      Key(key::kUp);
      Key(key::kReturn);
    });
    EXPECT_TRUE(desktop().TrackPopupMenu(Window(), items, TPM_RIGHTBUTTON, {10, 10}));
    Settle();
    EXPECT_EQ(recorder.lines, (Lines{"32771 clicked"}));
    EXPECT_FALSE(desktop().TrackPopupMenu(99, items, 0, {}));
  });
}

// --- Messages, timers, other threads

TEST_F(DesktopCase, ATimerTicksUntilItIsKilled) {
  std::vector<std::uint32_t> ticks;
  recorder.onTimer = [&](std::uint32_t id) { ticks.push_back(id); };
  Run([&] {
    EXPECT_EQ(desktop().SetTimer(Window(), 3, 5), 3u);
    EXPECT_TRUE(WaitFor([&] { return ticks.size() >= 3; }));
    EXPECT_TRUE(desktop().KillTimer(Window(), 3));
    EXPECT_FALSE(desktop().KillTimer(Window(), 3));
    ticks.clear();
    Settle();
    EXPECT_TRUE(ticks.empty());
    EXPECT_EQ(desktop().SetTimer(99, 1, 5), 0u);
  });
}

TEST_F(DesktopCase, ATimerThatSleepsTicksOnceItIsWoken) {
  int ticks = 0;
  recorder.onTimer = [&](std::uint32_t id) {
    ++ticks;
    EXPECT_TRUE(desktop().SleepTimer(Window(), id));
  };
  Run([&] {
    desktop().SetTimer(Window(), 3, 5);
    for (const int before : {0, 1, 2}) {
      EXPECT_TRUE(desktop().WakeTimer(Window(), 3));
      EXPECT_TRUE(WaitFor([&] { return ticks > before; }));
      Settle();
      EXPECT_EQ(ticks, before + 1);
    }
    desktop().KillTimer(Window(), 3);
    EXPECT_FALSE(desktop().SleepTimer(Window(), 3));
    EXPECT_FALSE(desktop().WakeTimer(Window(), 3));
    EXPECT_FALSE(desktop().SleepTimer(99, 3));
    EXPECT_FALSE(desktop().WakeTimer(99, 3));
  });
}

IN_WINDOW(DesktopCase, TextOfAnotherThreadIsShownWithoutItsWaiting) {
  // The user interface's thread is busy here until the other one has ended.
  std::thread other([&] {
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kNameEdit, "first"));
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kNameEdit, "second"));
    EXPECT_TRUE(controls().CheckDlgButton(Window(), kCheck, true));
    EXPECT_TRUE(controls().InvalidateControl(Window(), kNameEdit));
    EXPECT_FALSE(controls().SetDlgItemTextA(Window(), 999, "x"));
    EXPECT_FALSE(controls().SetDlgItemTextA(99, kNameEdit, "x"));
    EXPECT_TRUE(desktop().PostMessageA(Window(), 0x8001, 0, 0));
  });
  other.join();
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "");
  Settle();
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "second");
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  EXPECT_EQ(recorder.lines, (Lines{"message 32769 0 0"}));
}

IN_WINDOW(DesktopCase, WhatWasSetLastIsWhatIsShown) {
  std::thread other([&] {
    controls().SetDlgItemTextA(Window(), kNameEdit, "older");
    controls().CheckDlgButton(Window(), kCheck, true);
    controls().SetDlgItemTextA(Window(), kDigitsEdit, "1");
  });
  other.join();
  controls().SetDlgItemTextA(Window(), kNameEdit, "newer");
  controls().CheckDlgButton(Window(), kCheck, false);
  Settle();
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "newer");
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kCheck));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kDigitsEdit), "1");
}

TEST_F(DesktopCase, AWindowThatGoesMeanwhileDoesAnotherThreadNoHarm) {
  std::atomic<bool> go{true};
  std::atomic<WindowHandle> window{kNoWindow};
  std::thread other([&] {
    while (go) {
      controls().SetDlgItemTextA(window, kNameEdit, "text");
      desktop().PostMessageA(window, 0x8001, 0, 0);
    }
  });
  for (int i = 0; i < 5; ++i) {
    Run([&] {
      window = Window();
      Settle();
    });
  }
  go = false;
  other.join();
  EXPECT_FALSE(controls().SetDlgItemTextA(window, kNameEdit, "text"));
  EXPECT_FALSE(desktop().PostMessageA(window, 0x8001, 0, 0));
}

TEST_F(DesktopCase, KnowsItsSizesAndColours) {
  Rect whole;
  EXPECT_TRUE(desktop().GetDesktopRect(&whole));
  EXPECT_EQ(whole.left, 0);
  EXPECT_GT(whole.Width(), 100);
  EXPECT_EQ(desktop().GetSystemMetrics(SM_CXICON), 32);
  EXPECT_EQ(desktop().GetSystemMetrics(SM_CYICON), 32);
  EXPECT_GT(desktop().GetSystemMetrics(SM_CXVSCROLL), 0);
  EXPECT_EQ(desktop().GetSystemMetrics(SM_CYHSCROLL), desktop().GetSystemMetrics(SM_CXVSCROLL));
  EXPECT_EQ(desktop().GetSystemMetrics(12345), 0);
  EXPECT_NE(desktop().GetSysColor(COLOR_3DFACE), desktop().GetSysColor(COLOR_BTNTEXT));
  EXPECT_NE(desktop().GetSysColor(COLOR_3DSHADOW), desktop().GetSysColor(COLOR_3DHILIGHT));
  EXPECT_EQ(desktop().GetSysColor(12345), 0u);
  EXPECT_NE(desktop().GetSysColor(COLOR_3DHILIGHT), desktop().GetSysColor(COLOR_3DDKSHADOW));
  Point point;
  EXPECT_TRUE(desktop().GetCursorPos(&point));
}

}  // namespace
}  // namespace platform
