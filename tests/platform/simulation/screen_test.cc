#include "app/platform/simulation/screen.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "app/platform/platform.h"
#include "app/platform/simulation/desktop_simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

using Simulation = DesktopSimulation;

constexpr const char* const kFruits[] = {"pear", "Apple", "plum"};

constexpr ControlTemplate kControls[] = {
    {ControlKind::Label, 10, "&Name", 4, 4, 40, 8},
    {ControlKind::Edit, 11, "", 50, 4, 100, 14},
    {ControlKind::Edit, 12, "", 50, 24, 100, 14, kStyleDigits},
    {ControlKind::Edit, 13, "fixed", 50, 44, 100, 14, kStyleReadOnly},
    {ControlKind::Button, IDOK, "OK", 4, 100, 40, 14, kStyleDefault},
    {ControlKind::Button, IDCANCEL, "Cancel", 50, 100, 40, 14},
    {ControlKind::Button, 20, "&More && more", 100, 100, 40, 14},
    {ControlKind::CheckBox, 21, "&Quick", 100, 120, 40, 14},
    {ControlKind::RadioButton, 22, "Left", 4, 60, 40, 10},
    {ControlKind::RadioButton, 23, "Right", 4, 72, 40, 10},
    {ControlKind::Label, 24, "or", 4, 84, 40, 8},
    {ControlKind::RadioButton, 25, "Up", 4, 92, 40, 8},
    {ControlKind::Button, 26, "Hidden", 100, 140, 40, 14, kStyleHidden},
    {ControlKind::Button, 27, "Disabled", 100, 160, 40, 14, kStyleDisabled},
    {ControlKind::DropList, 30, "", 160, 4, 80, 14, kStyleSorted, nullptr, kFruits},
    {ControlKind::ListView, 31, "", 160, 24, 80, 40, kStyleMultiSelect},
    {ControlKind::TabControl, 32, "", 160, 70, 80, 40},
    {ControlKind::Slider, 33, "", 160, 116, 80, 14},
    {ControlKind::DrawnButton, 34, "Test", 160, 134, 40, 14},
    {ControlKind::Link, 35, "elsewhere", 160, 152, 40, 8},
    {ControlKind::Picture, 36, "", 160, 164, 40, 10},
    {ControlKind::Box, 37, "", 0, 0, 260, 200},
};

constexpr DialogTemplate kDialog{
    100,      "Test Dialog", 260, 200, kWindowResizable | kWindowMinimiseBox | kWindowMaximiseBox,
    kControls};

constexpr ControlTemplate kSmallControls[] = {
    {ControlKind::Button, IDOK, "OK", 4, 4, 40, 14},
};

constexpr DialogTemplate kSmallDialog{200, "Small", 80, 40, 0, kSmallControls};

// Writes down what happens, and does what a test wants done at it.
class Listener : public WindowListener {
 public:
  explicit Listener(const DialogTemplate& dialog = kDialog) : dialog(dialog) {}

  std::int32_t Run(WindowHandle owner = kNoWindow) {
    return desktop().RunDialog(dialog, owner, *this);
  }

  void OnInitDialog(WindowHandle handle) override {
    window = handle;
    Note("init");
    if (onInit) onInit();
  }
  void OnNotice(std::uint32_t id, Notice notice, std::int32_t value) override {
    static const char* const names[] = {
        "clicked", "double",          "selection",      "changed", "left",    "scrolled",
        "key",     "changing column", "changed column", "dragged", "painted", "message to"};
    if (notice == Notice::Painted && !notePaints) return;
    std::string line =
        std::string(names[static_cast<std::size_t>(notice)]) + ' ' + std::to_string(id);
    if (value != 0) line += ' ' + std::to_string(value);
    Note(line);
    if (onNotice) onNotice(id, notice, value);
    if (notice == Notice::Clicked && (id == IDOK || id == IDCANCEL)) {
      desktop().EndDialog(window, static_cast<std::int32_t>(id));
    }
  }
  void OnClose() override {
    Note("close");
    desktop().EndDialog(window, IDCANCEL);
  }
  void OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) override {
    Note("message " + std::to_string(message) + ' ' + std::to_string(wParam) + ' ' +
         std::to_string(lParam));
    if (onMessage) onMessage(message);
  }
  void OnTimer(std::uint32_t id) override {
    Note("timer " + std::to_string(id) + '@' + std::to_string(clock().GetTickCount()));
    if (onTimer) onTimer();
  }
  void OnSize(std::uint32_t type, std::int32_t width, std::int32_t height) override {
    if (notePlaces) {
      Note("size " + std::to_string(type) + ' ' + std::to_string(width) + 'x' +
           std::to_string(height));
    }
  }
  void OnMove(std::int32_t x, std::int32_t y) override {
    if (notePlaces) Note("move " + std::to_string(x) + ',' + std::to_string(y));
  }
  void OnGetMinMaxInfo(MinMaxInfo* info) override { *info = limits; }
  void OnPaint(Canvas& canvas) override { canvas.FillRect({0, 0, 10, 10}, Rgb(1, 2, 3)); }
  std::int32_t OnNcHitTest(Point screen) override {
    pressed = screen;
    return HTBOTTOMRIGHT;
  }
  void OnDrawItem(const DrawItem& item, Canvas& canvas) override {
    canvas.DrawFocusRect(item.rect);
    if (noteDrawing) {
      Note("draw " + std::to_string(item.id) + (item.pressed ? " pressed" : "") +
           (item.focused ? " focused" : "") + (item.focusAction ? " action" : ""));
    }
  }
  std::string OnToolTip(std::uint32_t id) override { return "tip " + std::to_string(id); }
  void OnDestroy() override { Note("destroy"); }

  void Note(const std::string& line) { diary.push_back(line); }
  // What came since it was last asked.
  std::vector<std::string> Diary() { return std::exchange(diary, {}); }

  const DialogTemplate& dialog;
  WindowHandle window = kNoWindow;
  std::function<void()> onInit;
  std::function<void(std::uint32_t, Notice, std::int32_t)> onNotice;
  std::function<void(std::uint32_t)> onMessage;
  std::function<void()> onTimer;
  MinMaxInfo limits;
  Point pressed;
  bool notePlaces = false;
  bool notePaints = false;
  bool noteDrawing = false;

 private:
  std::vector<std::string> diary;
};

using Lines = std::vector<std::string>;

class ScreenTest : public testing::Test {
 protected:
  // A program that is left running is dropped as it stands; what it holds must go first.
  ~ScreenTest() override {
    for (int round = 0; round < 20 && screen.Running(); ++round) {
      if (screen.MenuUp()) {
        screen.DismissMenu();
      } else if (screen.BoxUp()) {
        screen.Answer(screen.Box().type & MB_YESNO ? IDNO : IDOK);
      } else {
        desktop().EndDialog(screen.Window(), IDCANCEL);
        desktop().PostMessageA(screen.Window(), WM_NULL, 0, 0);
        screen.Settle();
      }
    }
  }

  void Start() {
    screen.Start([this] { return main.Run(); });
    main.Diary();
  }

  // The sentence with which an act is refused; empty for one that isn't.
  static std::string Refusal(const std::function<void()>& act) {
    try {
      act();
    } catch (const std::logic_error& error) {
      return error.what();
    }
    return {};
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  Listener main;
  Listener small{kSmallDialog};
};

// ---- The program and its dialogs

TEST_F(ScreenTest, ADialogIsMadeShownAndDestroyed) {
  main.onInit = [&] {
    EXPECT_FALSE(desktop().IsWindowVisible(main.window));
    EXPECT_TRUE(controls().HasControl(main.window, 11));
    EXPECT_FALSE(controls().HasControl(main.window, 99));
  };
  screen.Start([&] { return main.Run(); });
  EXPECT_TRUE(screen.Running());
  EXPECT_EQ(screen.Front(), 100u);
  EXPECT_EQ(screen.Window(), main.window);
  EXPECT_TRUE(screen.Shown());
  EXPECT_EQ(screen.Title(), "Test Dialog");
  screen.Click(IDOK);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(screen.Front(), 0u);
  EXPECT_EQ(screen.Window(), kNoWindow);
  EXPECT_EQ(main.Diary(), (Lines{"init", "left 11", "clicked 1", "destroy"}));
}

TEST_F(ScreenTest, ADialogThatEndsInItsSetUpIsNeverShown) {
  main.notePlaces = true;
  main.onInit = [&] { EXPECT_TRUE(desktop().EndDialog(main.window, 7)); };
  screen.Start([&] { return main.Run(); });
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), 7);
  EXPECT_EQ(main.Diary(), (Lines{"init", "destroy"}));
}

TEST_F(ScreenTest, ADialogEndsWhenItsHandlerReturns) {
  Start();
  main.onNotice = [&](std::uint32_t id, Notice, std::int32_t) {
    if (id != 20) return;
    desktop().EndDialog(main.window, 5);
    main.Note("after the end");
    EXPECT_TRUE(desktop().IsWindowVisible(main.window));
  };
  screen.Click(20);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 20", "after the end", "destroy"}));
  EXPECT_EQ(screen.Result(), 5);
  EXPECT_FALSE(desktop().EndDialog(main.window, 5));
}

TEST_F(ScreenTest, WithoutAProgramThereIsNoDialog) {
  EXPECT_EQ(main.Run(), -1);
  EXPECT_TRUE(main.Diary().empty());
  EXPECT_EQ(Refusal([&] { screen.Title(); }), "screen: there is no dialog");
  EXPECT_EQ(Refusal([&] { screen.Click(1); }), "Click 1: the program doesn't run");
}

TEST_F(ScreenTest, OnlyTheUserInterfacesThreadHasDialogs) {
  Start();
  Bodies bodies;
  std::int32_t result = 0;
  bodies.Start("other", [&] {
    result = small.Run();
    return 0u;
  });
  sim.RunFor(0);
  EXPECT_EQ(result, -1);
}

TEST_F(ScreenTest, OneProgramRunsAtATime) {
  Start();
  EXPECT_EQ(Refusal([&] { Start(); }), "Start: a program runs already");
  EXPECT_EQ(Refusal([&] { screen.Result(); }), "Result: the program still runs");
  screen.Close();
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_EQ(Refusal([&] { screen.Close(); }), "Close: the program doesn't run");
  Start();
  EXPECT_TRUE(screen.Running());
}

TEST_F(ScreenTest, TheProgramRunsOnAThreadOfItsOwn) {
  const std::int32_t here = threads().GetCurrentThreadId();
  main.onInit = [&] { EXPECT_NE(threads().GetCurrentThreadId(), here); };
  Start();
  EXPECT_TRUE(screen.Running());
}

TEST_F(ScreenTest, TimePassesAsFarAsTheProgramWaits) {
  Start();
  EXPECT_EQ(sim.Now(), 0u);
  main.onNotice = [](std::uint32_t id, Notice, std::int32_t) {
    if (id == 20) clock().Sleep(30);
  };
  screen.Click(21);
  EXPECT_EQ(sim.Now(), 0u);
  screen.Click(20);
  EXPECT_EQ(sim.Now(), 30u);
}

TEST_F(ScreenTest, AnActComesAfterWhatTheProgramStillDoes) {
  Start();
  main.onMessage = [](std::uint32_t) { clock().Sleep(50); };
  main.Diary();
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  sim.RunFor(10);
  screen.Click(21);
  EXPECT_EQ(sim.Now(), 50u);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 0 0", "left 11", "clicked 21"}));
}

TEST_F(ScreenTest, AProgramThatNeverWaitsForThePersonIsRefused) {
  bool enough = false;
  EXPECT_EQ(Refusal([&] {
              screen.Start([&] {
                while (!enough) clock().Sleep(1000);
                return 0;
              });
            }),
            "screen: the program doesn't wait for the person, in five minutes");
  EXPECT_EQ(sim.Now(), 300'000u);
  enough = true;
  screen.Settle();
  EXPECT_FALSE(screen.Running());
}

TEST_F(ScreenTest, TheUserInterfaceComesBehindTheOtherThreads) {
  Start();
  Bodies bodies;
  main.onTimer = [&] { EXPECT_EQ(clock().GetTickCount(), 20u); };
  main.onNotice = [](std::uint32_t, Notice, std::int32_t) {};
  desktop().PostMessageA(main.window, WM_APP, 1, 0);
  bodies.Start("other", [&] {
    main.Note("other");
    return 0u;
  });
  sim.RunFor(0);
  EXPECT_EQ(main.Diary(), (Lines{"other", "message 32768 1 0"}));
}

TEST(ScreenEnd, ARunningProgramIsDroppedWithTheSimulation) {
  Listener main;
  Listener small(kSmallDialog);
  {
    Simulation sim;
    main.onMessage = [&](std::uint32_t) { small.Run(main.window); };
    sim.Screen().Start([&] { return main.Run(); });
    desktop().SetTimer(main.window, 1, 100);
    desktop().PostMessageA(main.window, WM_APP, 0, 0);
    sim.Screen().Settle();
    EXPECT_EQ(sim.Screen().Front(), 200u);
  }
  EXPECT_EQ(small.Diary(), (Lines{"init"}));
  Simulation next;
  next.Screen().Start([&] { return main.Run(); });
  next.Screen().Close();
  EXPECT_EQ(next.Screen().Result(), IDCANCEL);
}

// ---- Dialogs in front of dialogs

TEST_F(ScreenTest, ThePersonReachesTheDialogInFrontAlone) {
  Start();
  main.onNotice = [&](std::uint32_t id, Notice notice, std::int32_t) {
    if (id != 20 || notice != Notice::Clicked) return;
    main.Note("result " + std::to_string(small.Run(main.window)));
  };
  screen.Click(20);
  EXPECT_EQ(screen.Front(), 200u);
  EXPECT_EQ(screen.WindowOf(100), main.window);
  EXPECT_EQ(screen.WindowOf(200), small.window);
  EXPECT_EQ(screen.WindowOf(300), kNoWindow);
  EXPECT_EQ(Refusal([&] { screen.Click(21); }), "Click 21: dialog 200 has no such control");
  EXPECT_EQ(Refusal([&] { screen.Text(21); }), "screen: dialog 200 has no control 21");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), 100u);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 20", "result 1"}));
}

TEST_F(ScreenTest, MessagesAndTimersOfTheWindowBelowGoOn) {
  Start();
  main.onNotice = [&](std::uint32_t id, Notice, std::int32_t) {
    if (id == 20) small.Run(main.window);
  };
  screen.Click(20);
  main.Diary();
  EXPECT_EQ(desktop().SetTimer(main.window, 3, 40), 3u);
  EXPECT_TRUE(desktop().PostMessageA(main.window, WM_APP, 7, -1));
  sim.RunFor(100);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 7 -1", "timer 3@40", "timer 3@80"}));
  EXPECT_EQ(screen.Front(), 200u);
}

TEST_F(ScreenTest, ADialogThatIsEndedBelowAnotherWaitsForIt) {
  Start();
  main.onMessage = [&](std::uint32_t message) {
    if (message == WM_APP) small.Run(main.window);
    if (message == WM_APP + 1) desktop().EndDialog(main.window, 9);
  };
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
  screen.Settle();
  EXPECT_EQ(screen.Front(), 200u);
  EXPECT_TRUE(screen.Running());
  screen.Close();
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), 9);
}

TEST_F(ScreenTest, ADialogInTheSetUpOfAnotherComesFirst) {
  main.onInit = [&] { small.Run(main.window); };
  Start();
  EXPECT_EQ(screen.Front(), 200u);
  EXPECT_FALSE(desktop().IsWindowVisible(main.window));
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), 100u);
  EXPECT_TRUE(screen.Shown());
}

// ---- Messages and timers

TEST_F(ScreenTest, PostedMessagesComeInTheirOrderAndTimersBehindThem) {
  Start();
  desktop().SetTimer(main.window, 1, 10);
  main.onMessage = [&](std::uint32_t message) {
    if (message != WM_APP) return;
    clock().Sleep(25);
    desktop().PostMessageA(main.window, WM_APP + 2, 0, 0);
  };
  desktop().PostMessageA(main.window, WM_APP, 1, 2);
  desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
  sim.RunFor(31);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 1 2", "message 32769 0 0", "message 32770 0 0",
                                 "timer 1@25", "timer 1@30"}));
}

TEST_F(ScreenTest, AnActComesBehindWhatWasPostedBefore) {
  Start();
  main.onMessage = [&](std::uint32_t message) {
    if (message == WM_APP) desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
  };
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  screen.Click(24);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 0 0", "message 32769 0 0", "clicked 24"}));
}

TEST_F(ScreenTest, PeriodsOfATimerThatPassDuringAHandlerFold) {
  Start();
  bool slow = true;
  main.onTimer = [&] {
    if (std::exchange(slow, false)) clock().Sleep(35);
  };
  desktop().SetTimer(main.window, 1, 10);
  sim.RunFor(60);
  // From 10 to 45 the handler runs; 20, 30 and 40 come as one.
  EXPECT_EQ(main.Diary(), (Lines{"timer 1@10", "timer 1@45", "timer 1@50", "timer 1@60"}));
}

TEST_F(ScreenTest, TimersAreSetAnewAndKilled) {
  Start();
  desktop().SetTimer(main.window, 1, 10);
  desktop().SetTimer(main.window, 1, 25);
  desktop().SetTimer(main.window, 2, 1);  // 10, as the published system has it
  sim.RunFor(12);
  EXPECT_TRUE(desktop().KillTimer(main.window, 2));
  EXPECT_FALSE(desktop().KillTimer(main.window, 2));
  sim.RunFor(40);
  EXPECT_EQ(main.Diary(), (Lines{"timer 2@10", "timer 1@25", "timer 1@50"}));
  EXPECT_EQ(desktop().SetTimer(99, 1, 10), 0u);
}

TEST_F(ScreenTest, MessagesAndTimersEndWithTheirWindow) {
  Start();
  desktop().SetTimer(main.window, 1, 10);
  main.onMessage = [&](std::uint32_t) {
    desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
    desktop().EndDialog(main.window, 0);
  };
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  sim.RunFor(50);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 0 0", "destroy"}));
  EXPECT_FALSE(desktop().PostMessageA(main.window, WM_APP, 0, 0));
}

TEST_F(ScreenTest, AnyThreadPostsMessagesAndSetsTexts) {
  Start();
  Bodies bodies;
  bodies.Start("other", [&] {
    clock().Sleep(5);
    EXPECT_TRUE(desktop().PostMessageA(main.window, WM_APP, 3, 4));
    EXPECT_TRUE(controls().SetDlgItemTextA(main.window, 10, "from afar"));
    EXPECT_TRUE(controls().CheckDlgButton(main.window, 21, true));
    EXPECT_EQ(controls().GetDlgItemTextA(main.window, 10), "from afar");
    return 0u;
  });
  sim.RunFor(5);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 3 4"}));
  EXPECT_EQ(screen.Text(10), "from afar");
  EXPECT_TRUE(screen.Checked(21));
}

// ---- Places and states of windows

TEST_F(ScreenTest, DialogUnitsBecomePixelsAndTheWindowStandsCentred) {
  Start();
  // 260 by 200 units are 390 by 325 pixels, and the frame takes 8 by 31.
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 711, 562}));
  EXPECT_EQ(screen.Inside(), (Rect{0, 0, 390, 325}));
  // 50 units across are 75, 4 down are 6.5; 100 are 150, 14 are 22.75.
  EXPECT_EQ(screen.ControlPlace(11), (Rect{75, 7, 225, 30}));
  Rect rect;
  ASSERT_TRUE(controls().GetControlRect(main.window, 11, &rect));
  EXPECT_EQ(rect, screen.ControlPlace(11));
}

TEST_F(ScreenTest, AWindowIsToldItsPlaceWhenItIsFirstShown) {
  main.notePlaces = true;
  screen.Start([&] { return main.Run(); });
  EXPECT_EQ(main.Diary(), (Lines{"init", "move 317,233", "size 0 390x325"}));
}

TEST_F(ScreenTest, MovingAndSizingTellTheWindow) {
  main.notePlaces = true;
  Start();
  screen.MoveTo(100, 50);
  EXPECT_EQ(main.Diary(), (Lines{"move 104,77"}));
  screen.Resize(408, 400);
  EXPECT_EQ(main.Diary(), (Lines{"size 0 400x369"}));
  EXPECT_TRUE(desktop().MoveWindow(main.window, {0, 0, 308, 231}));
  EXPECT_EQ(main.Diary(), (Lines{"move 4,27", "size 0 300x200"}));
  EXPECT_TRUE(desktop().MoveWindow(main.window, {0, 0, 308, 231}));
  EXPECT_TRUE(main.Diary().empty());
  Rect rect;
  EXPECT_TRUE(desktop().GetClientRect(main.window, &rect));
  EXPECT_EQ(rect, (Rect{0, 0, 300, 200}));
  EXPECT_FALSE(desktop().MoveWindow(99, {0, 0, 10, 10}));
}

TEST_F(ScreenTest, TheWindowsOwnLimitsHold) {
  main.limits = {400, 360, 500, 450};
  Start();
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 713, 566}));
  screen.Resize(10, 10);
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 713, 566}));
  screen.Resize(1000, 1000);
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 813, 656}));
  desktop().MoveWindow(main.window, {5, 6, 7, 8});
  EXPECT_EQ(screen.Place(), (Rect{5, 6, 405, 366}));
  screen.Maximise();
  EXPECT_EQ(screen.Place(), (Rect{0, 0, 500, 450}));
}

TEST_F(ScreenTest, AWindowOfFixedSizeHasNothingToPullAt) {
  screen.Start([&] { return small.Run(); });
  EXPECT_EQ(Refusal([&] { screen.Resize(1, 1); }), "Resize: the window has a fixed size");
  EXPECT_EQ(Refusal([&] { screen.Minimise(); }), "Minimise: the window has no box for it");
  EXPECT_EQ(Refusal([&] { screen.Maximise(); }), "Maximise: the window has no box for it");
  EXPECT_EQ(Refusal([&] { screen.Restore(); }),
            "Restore: the window is neither minimised nor maximised");
}

WindowHandle hookedWindow = kNoWindow;
Lines hookCalls;
HookHandle firstHook = 0;
HookHandle secondHook = 0;

std::intptr_t FirstHook(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam) {
  hookCalls.push_back("first " + std::to_string(code) + ' ' + std::to_string(lParam));
  hookedWindow = wParam;
  EXPECT_FALSE(desktop().IsIconic(wParam));
  desktop().PostMessageA(wParam, WM_APP + 1, 0, 0);
  desktop().CallNextHookEx(firstHook, code, wParam, lParam);
  return 0;
}

std::intptr_t SecondHook(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam) {
  hookCalls.push_back("second");
  return desktop().CallNextHookEx(secondHook, code, wParam, lParam);
}

std::intptr_t ForbiddingHook(std::int32_t, std::uintptr_t, std::intptr_t) { return 1; }

TEST_F(ScreenTest, AHookHearsOfAMinimiseBeforeIt) {
  main.notePlaces = true;
  Start();
  hookCalls.clear();
  firstHook = desktop().SetWindowsHookExA(WH_CBT, &FirstHook);
  ASSERT_NE(firstHook, 0u);
  screen.Minimise();
  EXPECT_EQ(hookCalls, (Lines{"first 1 6"}));
  EXPECT_EQ(hookedWindow, main.window);
  EXPECT_EQ(main.Diary(), (Lines{"move -32000,-32000", "size 1 0x0", "message 32769 0 0"}));
  EXPECT_TRUE(screen.Minimised());
  EXPECT_EQ(screen.Place(), (Rect{-32000, -32000, -31840, -31973}));
  EXPECT_EQ(screen.Inside(), (Rect{}));
  EXPECT_TRUE(desktop().UnhookWindowsHookEx(firstHook));
  EXPECT_FALSE(desktop().UnhookWindowsHookEx(firstHook));
  hookCalls.clear();
  screen.Restore();
  EXPECT_EQ(main.Diary(), (Lines{"move 317,233", "size 0 390x325"}));
  screen.Minimise();
  EXPECT_TRUE(hookCalls.empty());
}

TEST_F(ScreenTest, TheNewestHookIsAskedAndHandsOn) {
  Start();
  hookCalls.clear();
  firstHook = desktop().SetWindowsHookExA(WH_CBT, &FirstHook);
  secondHook = desktop().SetWindowsHookExA(WH_CBT, &SecondHook);
  EXPECT_TRUE(desktop().ShowWindow(main.window, SW_MINIMIZE));
  EXPECT_EQ(hookCalls, (Lines{"second", "first 1 6"}));
  EXPECT_TRUE(desktop().IsIconic(main.window));
  EXPECT_EQ(desktop().SetWindowsHookExA(2, &FirstHook), 0u);
  EXPECT_EQ(desktop().SetWindowsHookExA(WH_CBT, nullptr), 0u);
}

TEST_F(ScreenTest, AHookCanForbidAMinimise) {
  Start();
  desktop().SetWindowsHookExA(WH_CBT, &ForbiddingHook);
  screen.Minimise();
  EXPECT_FALSE(screen.Minimised());
}

TEST_F(ScreenTest, AHiddenWindowStaysMinimisedAndComesBackByRestore) {
  Start();
  screen.Minimise();
  EXPECT_TRUE(desktop().ShowWindow(main.window, SW_HIDE));
  EXPECT_FALSE(screen.Shown());
  EXPECT_TRUE(screen.Minimised());
  EXPECT_EQ(screen.Front(), 100u);
  EXPECT_EQ(Refusal([&] { screen.Restore(); }), "Restore: the window is hidden");
  EXPECT_TRUE(desktop().ShowWindow(main.window, SW_SHOW));
  EXPECT_TRUE(screen.Shown());
  EXPECT_TRUE(screen.Minimised());
  EXPECT_EQ(Refusal([&] { screen.Click(21); }), "Click 21: the window is minimised");
  EXPECT_TRUE(desktop().ShowWindow(main.window, SW_RESTORE));
  EXPECT_FALSE(screen.Minimised());
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 711, 562}));
}

TEST_F(ScreenTest, AMaximisedWindowIsThatAgainAfterBeingMinimised) {
  main.notePlaces = true;
  Start();
  screen.Maximise();
  EXPECT_TRUE(screen.Maximised());
  EXPECT_EQ(main.Diary(), (Lines{"move 4,27", "size 2 1016x737"}));
  EXPECT_EQ(Refusal([&] { screen.Resize(500, 500); }), "Resize: the window is maximised");
  screen.Minimise();
  EXPECT_FALSE(screen.Maximised());
  screen.Restore();
  EXPECT_TRUE(desktop().IsZoomed(main.window));
  screen.Minimise();
  EXPECT_TRUE(desktop().ShowWindow(main.window, SW_SHOWNORMAL));
  EXPECT_FALSE(desktop().IsZoomed(main.window));
  EXPECT_FALSE(desktop().IsIconic(main.window));
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 711, 562}));
}

TEST_F(ScreenTest, WindowOperationsOnNoWindowAreFalse) {
  Start();
  Rect rect;
  EXPECT_FALSE(desktop().ShowWindow(99, SW_SHOW));
  EXPECT_FALSE(desktop().ShowWindow(main.window, 77));
  EXPECT_FALSE(desktop().IsWindowVisible(99));
  EXPECT_FALSE(desktop().IsIconic(99));
  EXPECT_FALSE(desktop().IsZoomed(99));
  EXPECT_FALSE(desktop().SetForegroundWindow(99));
  EXPECT_TRUE(desktop().SetForegroundWindow(main.window));
  EXPECT_FALSE(desktop().SetWindowTextA(99, "x"));
  EXPECT_FALSE(desktop().SetWindowIcon(99, 1, true));
  EXPECT_FALSE(desktop().GetWindowRect(99, &rect));
  EXPECT_FALSE(desktop().GetClientRect(99, &rect));
  EXPECT_FALSE(desktop().InvalidateRect(99, rect));
  EXPECT_FALSE(desktop().UpdateWindow(99));
}

TEST_F(ScreenTest, TitleIconsAndDesktopAreAsTheProgramSetsThem) {
  Start();
  EXPECT_TRUE(desktop().SetWindowTextA(main.window, "Other"));
  EXPECT_EQ(screen.Title(), "Other");
  EXPECT_EQ(desktop().LoadIconA(128), 128u);
  EXPECT_EQ(desktop().LoadIconA(0), 0u);
  EXPECT_EQ(desktop().LoadBitmapA(145), 145u);
  desktop().SetWindowIcon(main.window, 128, true);
  EXPECT_EQ(screen.Icon(true), 128u);
  EXPECT_EQ(screen.Icon(false), 0u);
  EXPECT_TRUE(desktop().DestroyIcon(128));
  EXPECT_FALSE(desktop().DestroyIcon(128));
  Rect rect;
  EXPECT_TRUE(desktop().GetDesktopRect(&rect));
  EXPECT_EQ(rect, (Rect{0, 0, 1024, 768}));
  screen.SetDesktop(800, 600);
  EXPECT_TRUE(desktop().GetDesktopRect(&rect));
  EXPECT_EQ(rect, (Rect{0, 0, 800, 600}));
  EXPECT_EQ(desktop().GetSystemMetrics(SM_CXVSCROLL), 16);
  EXPECT_EQ(desktop().GetSystemMetrics(SM_CYICON), 32);
  EXPECT_EQ(desktop().GetSysColor(COLOR_3DHILIGHT), Rgb(255, 255, 255));
}

TEST_F(ScreenTest, APointOfTheInsideIsAskedForByItsPlaceOnTheScreen) {
  Start();
  EXPECT_EQ(screen.HitTest(385, 320), HTBOTTOMRIGHT);
  EXPECT_EQ(main.pressed, (Point{702, 553}));
  EXPECT_EQ(Refusal([&] { screen.HitTest(80, 10); }), "HitTest: control 11 is there");
  EXPECT_EQ(Refusal([&] { screen.HitTest(390, 10); }),
            "HitTest: the point isn't inside of the window");
}

TEST_F(ScreenTest, ThePersonSeesWhatIsDrawn) {
  Start();
  EXPECT_EQ(screen.Paint(), (Drawing{"fill 0,0,10,10 030201"}));
  EXPECT_EQ(screen.PaintButton(34), (Drawing{"focus 0,0,60,23"}));
  EXPECT_EQ(Refusal([&] { screen.PaintButton(20); }), "screen: control 20 is no drawn button");
}

// ---- Message boxes

TEST_F(ScreenTest, ABoxWithoutAProgramGetsZeroOrThePreparedAnswer) {
  EXPECT_EQ(desktop().MessageBoxA(0, "text", "caption", MB_YESNO), 0);
  screen.AnswerNext(IDNO);
  sim.AnswerMessageBox(IDYES);
  EXPECT_EQ(desktop().MessageBoxA(0, "text", "caption", MB_YESNO), IDNO);
  EXPECT_EQ(desktop().MessageBoxA(5, "other", "caption", MB_YESNO), IDYES);
  ASSERT_EQ(screen.Boxes().size(), 3u);
  EXPECT_EQ(sim.MessageBoxes()[2].text, "other");
  EXPECT_EQ(screen.Boxes()[2].owner, 5u);
}

TEST_F(ScreenTest, ABoxStaysUntilItIsAnsweredWhileAllElseGoesOn) {
  Start();
  main.onNotice = [&](std::uint32_t id, Notice, std::int32_t) {
    if (id != 24) return;
    main.Note("answer " + std::to_string(desktop().MessageBoxA(main.window, "Really?", "Question",
                                                               MB_YESNO | MB_ICONQUESTION)));
  };
  desktop().SetTimer(main.window, 1, 10);
  screen.Click(24);
  EXPECT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().text, "Really?");
  EXPECT_EQ(screen.Box().caption, "Question");
  EXPECT_EQ(screen.Box().owner, main.window);
  EXPECT_EQ(screen.Box().type, MB_YESNO | MB_ICONQUESTION);
  EXPECT_EQ(screen.Front(), 100u);
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  sim.RunFor(10);
  EXPECT_EQ(main.Diary(), (Lines{"clicked 24", "message 32768 0 0", "timer 1@10"}));
  EXPECT_EQ(Refusal([&] { screen.Click(21); }), "Click 21: a message box is in front: \"Really?\"");
  EXPECT_EQ(Refusal([&] { screen.Close(); }), "Close: a message box is in front: \"Really?\"");
  EXPECT_EQ(Refusal([&] { screen.Answer(IDOK); }), "Answer: the message box has no button 1");
  screen.Answer(IDYES);
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(main.Diary(), (Lines{"answer 6"}));
  EXPECT_EQ(Refusal([&] { screen.Answer(IDYES); }), "Answer: there is no message box");
  EXPECT_EQ(Refusal([&] { screen.Box(); }), "Box: there is no message box");
}

TEST_F(ScreenTest, BoxesAreAnsweredFromTheNewestOn) {
  Start();
  main.onMessage = [&](std::uint32_t message) {
    main.Note(
        std::to_string(message) + " got " +
        std::to_string(desktop().MessageBoxA(main.window, std::to_string(message), "", MB_YESNO)));
  };
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
  screen.Settle();
  main.Diary();
  EXPECT_EQ(screen.Box().text, "32769");
  screen.Answer(IDNO);
  EXPECT_EQ(screen.Box().text, "32768");
  screen.Answer(IDYES);
  EXPECT_EQ(main.Diary(), (Lines{"32769 got 7", "32768 got 6"}));
}

TEST_F(ScreenTest, APreparedAnswerKeepsTheBoxFromStaying) {
  Start();
  main.onMessage = [&](std::uint32_t) {
    main.Note("got " + std::to_string(desktop().MessageBoxA(main.window, "text", "", MB_OK)));
  };
  main.Diary();
  screen.AnswerNext(IDOK);
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  screen.Settle();
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 0 0", "got 1"}));
  EXPECT_EQ(screen.Boxes().size(), 1u);
}

TEST_F(ScreenTest, ABoxOfAnotherThreadStopsThatThreadAlone) {
  Start();
  Bodies bodies;
  std::int32_t button = -1;
  bodies.Start("launcher", [&] {
    button = desktop().MessageBoxA(kNoWindow, "failed", "Launch", MB_OK);
    return 0u;
  });
  sim.RunFor(5);
  EXPECT_TRUE(screen.BoxUp());
  screen.Click(21);
  EXPECT_TRUE(screen.Checked(21));
  EXPECT_EQ(button, -1);
  screen.Answer(IDOK);
  EXPECT_EQ(button, IDOK);
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(ScreenTest, ABoxOfAnotherThreadCoversItsOwner) {
  Start();
  Bodies bodies;
  bodies.Start("launcher", [&] {
    desktop().MessageBoxA(main.window, "failed", "Launch", MB_OK);
    return 0u;
  });
  sim.RunFor(0);
  EXPECT_EQ(Refusal([&] { screen.Click(21); }), "Click 21: a message box is in front: \"failed\"");
  screen.Answer(IDOK);
  screen.Click(21);
  EXPECT_TRUE(screen.Checked(21));
}

TEST_F(ScreenTest, ABoxGoesWithItsThread) {
  Start();
  Bodies bodies;
  const Handle thread = bodies.Start("launcher", [&] {
    desktop().MessageBoxA(main.window, "failed", "Launch", MB_OK);
    return 0u;
  });
  sim.RunFor(0);
  EXPECT_TRUE(screen.BoxUp());
  EXPECT_TRUE(threads().TerminateThread(thread, 1));
  EXPECT_FALSE(screen.BoxUp());
  screen.Click(21);
  EXPECT_TRUE(screen.Checked(21));
}

TEST_F(ScreenTest, ABoxBelowADialogWaitsForIt) {
  Start();
  main.onMessage = [&](std::uint32_t message) {
    if (message == WM_APP) desktop().MessageBoxA(main.window, "below", "", MB_OK);
    if (message == WM_APP + 1) small.Run(main.window);
  };
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
  screen.Settle();
  EXPECT_EQ(Refusal([&] { screen.Answer(IDOK); }),
            "Answer: a dialog or a menu is in front of the message box");
  screen.Click(IDOK);
  screen.Answer(IDOK);
  EXPECT_FALSE(screen.BoxUp());
}

// ---- Controls

TEST_F(ScreenTest, AMnemonicMarkOfTheTemplateIsNotShownAndIsKept) {
  Start();
  EXPECT_EQ(screen.Text(10), "Name");
  EXPECT_EQ(screen.Text(20), "More & more");
  EXPECT_EQ(controls().GetDlgItemTextA(main.window, 10), "&Name");
  EXPECT_TRUE(controls().SetDlgItemTextA(main.window, 11, "a && b"));
  EXPECT_EQ(screen.Text(11), "a && b");
  EXPECT_TRUE(controls().SetDlgItemTextA(main.window, 10, "Tom && Jerry & Co"));
  EXPECT_EQ(screen.Text(10), "Tom && Jerry & Co");
  EXPECT_FALSE(controls().SetDlgItemTextA(main.window, 30, "no text"));
  EXPECT_EQ(controls().GetDlgItemTextA(main.window, 30), "");
}

TEST_F(ScreenTest, WhatIsHiddenDisabledOrNoButtonIsNotClicked) {
  Start();
  EXPECT_EQ(Refusal([&] { screen.Click(26); }), "Click 26: the control is hidden");
  EXPECT_EQ(Refusal([&] { screen.Click(27); }), "Click 27: the control is disabled");
  EXPECT_EQ(Refusal([&] { screen.Click(36); }), "Click 36: there is nothing to click on");
  EXPECT_EQ(Refusal([&] { screen.FocusOn(10); }), "FocusOn 10: the control takes no focus");
  EXPECT_FALSE(screen.Visible(26));
  EXPECT_FALSE(screen.Enabled(27));
  EXPECT_FALSE(screen.Visible(37));
  EXPECT_TRUE(controls().ShowControl(main.window, 26, SW_SHOWNOACTIVATE));
  EXPECT_TRUE(controls().EnableControl(main.window, 27, true));
  screen.Click(26);
  screen.Click(27);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 26", "clicked 27"}));
  EXPECT_TRUE(controls().ShowControl(main.window, 26, SW_HIDE));
  EXPECT_FALSE(controls().IsControlVisible(main.window, 26));
  EXPECT_TRUE(controls().IsControlEnabled(main.window, 27));
  EXPECT_FALSE(controls().ShowControl(main.window, 99, SW_SHOW));
  EXPECT_FALSE(controls().EnableControl(main.window, 99, true));
}

TEST_F(ScreenTest, ClicksGiveTheFocusButALabelHasNone) {
  Start();
  EXPECT_EQ(screen.Focus(), 11u);
  screen.Click(20);
  EXPECT_EQ(screen.Focus(), 20u);
  screen.Click(10);
  EXPECT_EQ(screen.Focus(), 20u);
  screen.Click(35);
  EXPECT_EQ(controls().GetControlFocus(main.window), 35u);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 20", "clicked 10", "clicked 35"}));
}

TEST_F(ScreenTest, TheProgramSetsTheFocusWithoutANotice) {
  main.onInit = [&] { EXPECT_TRUE(controls().SetControlFocus(main.window, 20)); };
  Start();
  EXPECT_EQ(screen.Focus(), 20u);
  controls().SetControlFocus(main.window, 11);
  controls().SetControlFocus(main.window, 12);
  EXPECT_TRUE(main.Diary().empty());
  EXPECT_FALSE(controls().SetControlFocus(main.window, 26));
  EXPECT_FALSE(controls().SetControlFocus(main.window, 27));
  EXPECT_FALSE(controls().SetControlFocus(main.window, 10));
  EXPECT_EQ(screen.Focus(), 12u);
}

TEST_F(ScreenTest, AClickIsLostWhenTheProgramAsksAsTheFocusGoes) {
  Start();
  main.onNotice = [&](std::uint32_t id, Notice notice, std::int32_t) {
    if (id != 11 || notice != Notice::FocusLost) return;
    desktop().MessageBoxA(main.window, "Not that", "", MB_OK);
    controls().SetControlFocus(main.window, 11);
  };
  screen.Click(20);
  EXPECT_TRUE(screen.BoxUp());
  screen.Answer(IDOK);
  EXPECT_EQ(main.Diary(), (Lines{"left 11"}));
  EXPECT_EQ(screen.Focus(), 11u);
  main.onNotice = nullptr;
}

TEST_F(ScreenTest, ACheckBoxFlipsByItself) {
  Start();
  screen.Click(21);
  EXPECT_TRUE(controls().IsDlgButtonChecked(main.window, 21));
  screen.Click(21);
  EXPECT_FALSE(screen.Checked(21));
  EXPECT_TRUE(controls().CheckDlgButton(main.window, 21, true));
  EXPECT_FALSE(controls().CheckDlgButton(main.window, 20, true));
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 21", "clicked 21"}));
}

TEST_F(ScreenTest, ARunOfRadioButtonsIsOneChoice) {
  Start();
  screen.Click(22);
  screen.Click(25);
  EXPECT_TRUE(screen.Checked(22));
  EXPECT_TRUE(screen.Checked(25));
  screen.Click(23);
  EXPECT_FALSE(screen.Checked(22));
  EXPECT_TRUE(screen.Checked(25));
  controls().CheckDlgButton(main.window, 22, true);
  EXPECT_FALSE(screen.Checked(23));
  screen.FocusOn(22);
  screen.Press(0x28);
  EXPECT_TRUE(screen.Checked(23));
  EXPECT_EQ(screen.Focus(), 23u);
}

TEST_F(ScreenTest, TypingReplacesTheTextAndDigitsMayBeAllThatIsTaken) {
  Start();
  screen.Type(11, "My Game");
  EXPECT_EQ(controls().GetDlgItemTextA(main.window, 11), "My Game");
  EXPECT_EQ(screen.Caret(11), 7u);
  screen.Type(12, "1a2.3");
  EXPECT_EQ(screen.Text(12), "123");
  EXPECT_EQ(main.Diary(), (Lines{"changed 11", "left 11", "changed 12"}));
  EXPECT_EQ(Refusal([&] { screen.Type(13, "x"); }), "Type 13: the text can't be changed");
  EXPECT_EQ(Refusal([&] { screen.Type(20, "x"); }), "Type 20: the control is no edit");
  controls().SetDlgItemTextA(main.window, 12, "any");
  EXPECT_EQ(screen.Text(12), "any");
  EXPECT_TRUE(main.Diary().empty());
}

TEST_F(ScreenTest, TheCaretStaysWithinTheText) {
  Start();
  controls().SetDlgItemTextA(main.window, 11, "abc");
  EXPECT_TRUE(controls().SetCaret(main.window, 11, 2));
  EXPECT_EQ(screen.Caret(11), 2u);
  screen.Press('X');
  EXPECT_EQ(screen.Text(11), "abxc");
  EXPECT_TRUE(controls().SetCaret(main.window, 11, 99));
  EXPECT_EQ(screen.Caret(11), 4u);
  EXPECT_FALSE(controls().SetCaret(main.window, 20, 0));
  screen.Press(0x24);
  screen.Press(0x2E);
  EXPECT_EQ(screen.Text(11), "bxc");
  screen.Press(0x23);
  screen.Press(0x08);
  EXPECT_EQ(screen.Text(11), "bx");
}

TEST_F(ScreenTest, ATextThatTheTabKeyComesToIsSelected) {
  Start();
  controls().SetDlgItemTextA(main.window, 12, "123");
  screen.FocusOn(12);
  screen.Press('7');
  EXPECT_EQ(screen.Text(12), "7");
  screen.Press('X');
  EXPECT_EQ(screen.Text(12), "7");
}

TEST_F(ScreenTest, EnterPressesTheFocusedButtonOrTheDefaultOne) {
  main.onNotice = [&](std::uint32_t id, Notice, std::int32_t) {
    if (id == IDOK) main.Note("default");
  };
  Start();
  screen.FocusOn(20);
  screen.Press(0x0D);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 20"}));
  EXPECT_TRUE(controls().SetDefaultButton(main.window, 27));
  EXPECT_FALSE(controls().SetDefaultButton(main.window, 11));
  screen.FocusOn(11);
  screen.Press(0x0D);
  EXPECT_TRUE(main.Diary().empty());  // it is disabled
  controls().SetDefaultButton(main.window, IDOK);
  controls().ShowControl(main.window, IDOK,
                         SW_HIDE);  // as on another page: it is pressed all the same
  screen.Press(0x0D);
  EXPECT_EQ(main.Diary(), (Lines{"clicked 1", "default", "destroy"}));
}

TEST_F(ScreenTest, EnterPressesAHiddenDefaultButton) {
  Start();
  controls().SetDefaultButton(main.window, 26);
  screen.Press(0x0D);
  EXPECT_EQ(main.Diary(), (Lines{"clicked 26"}));
}

TEST_F(ScreenTest, WithoutADefaultButtonEnterIsOK) {
  screen.Start([&] { return small.Run(); });
  small.Diary();
  controls().SetControlFocus(small.window, IDOK);
  screen.Press(0x0D);
  EXPECT_EQ(small.Diary(), (Lines{"clicked 1", "destroy"}));
}

TEST_F(ScreenTest, EscIsCancelUnlessThatIsDisabled) {
  Start();
  controls().EnableControl(main.window, IDCANCEL, false);
  screen.Press(0x1B);
  EXPECT_TRUE(screen.Running());
  controls().EnableControl(main.window, IDCANCEL, true);
  screen.Press(0x1B);
  EXPECT_EQ(main.Diary(), (Lines{"clicked 2", "destroy"}));
}

TEST_F(ScreenTest, TheSpaceBarPressesWhatHasTheFocus) {
  Start();
  screen.FocusOn(21);
  screen.Press(0x20);
  EXPECT_TRUE(screen.Checked(21));
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "clicked 21"}));
}

TEST_F(ScreenTest, TheTabKeyGoesByTheOrderOfTheTable) {
  Start();
  screen.Press(0x09);
  EXPECT_EQ(screen.Focus(), 12u);
  screen.FocusOn(25);
  screen.Press(0x09);
  EXPECT_EQ(screen.Focus(), 30u);  // past what is hidden or disabled
  screen.FocusOn(35);
  screen.Press(0x09);
  EXPECT_EQ(screen.Focus(), 11u);
}

TEST_F(ScreenTest, AMnemonicPressesItsControlOrLeadsToTheNextOne) {
  Start();
  screen.FocusOn(20);
  main.Diary();
  screen.Press('Q');
  EXPECT_TRUE(screen.Checked(21));
  screen.Press('N');
  EXPECT_EQ(screen.Focus(), 11u);
  EXPECT_EQ(main.Diary(), (Lines{"clicked 21"}));
}

TEST_F(ScreenTest, AKeyThatNoControlUsesReachesTheWindow) {
  Start();
  main.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
    if (notice == Notice::KeyDown)
      main.Note(desktop().GetKeyState(0x11) & 0x8000 ? "control" : "plain");
  };
  screen.FocusOn(31);
  screen.Press('C', true);
  screen.FocusOn(20);
  screen.Press('C', true);
  screen.Press(0x70);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "key 31 67", "control", "key 0 67", "control",
                                 "key 0 112", "plain"}));
  EXPECT_EQ(desktop().GetKeyState(0x11), 0);
}

TEST_F(ScreenTest, ADropListKeepsItsOrderAndFindsWithoutRegardToCase) {
  Start();
  EXPECT_EQ(screen.Rows(30), (Lines{"Apple", "pear", "plum"}));
  EXPECT_EQ(controls().ComboGetCurSel(main.window, 30), kNoRow);
  EXPECT_EQ(screen.Chosen(30), "");
  EXPECT_TRUE(controls().ComboSetCurSel(main.window, 30, 1));
  EXPECT_EQ(controls().ComboAddString(main.window, 30, "Orange"), 1);
  EXPECT_EQ(controls().ComboGetCurSel(main.window, 30), 2);  // still the pear
  EXPECT_EQ(controls().ComboGetCount(main.window, 30), 4);
  EXPECT_EQ(controls().ComboFindString(main.window, 30, "P"), 2);
  EXPECT_EQ(controls().ComboFindString(main.window, 30, "PL"), 3);
  EXPECT_EQ(controls().ComboFindStringExact(main.window, 30, "ORANGE"), 1);
  EXPECT_EQ(controls().ComboFindStringExact(main.window, 30, "PEA"), kNoRow);
  EXPECT_EQ(controls().ComboGetLBText(main.window, 30, 1), "Orange");
  EXPECT_EQ(controls().ComboGetLBText(main.window, 30, 4), "");
  EXPECT_EQ(controls().ComboGetItemData(main.window, 30, 1), 0);
  EXPECT_TRUE(controls().ComboSetItemData(main.window, 30, 1, -2));
  EXPECT_EQ(controls().ComboGetItemData(main.window, 30, 1), -2);
  EXPECT_TRUE(controls().ComboDeleteString(main.window, 30, 0));
  EXPECT_EQ(controls().ComboGetItemData(main.window, 30, 0), -2);
  EXPECT_EQ(controls().ComboGetCurSel(main.window, 30), 1);
  EXPECT_TRUE(controls().ComboDeleteString(main.window, 30, 1));
  EXPECT_EQ(controls().ComboGetCurSel(main.window, 30), kNoRow);
  EXPECT_FALSE(controls().ComboDeleteString(main.window, 30, 2));
  controls().ComboSetCurSel(main.window, 30, 0);
  EXPECT_FALSE(controls().ComboSetCurSel(main.window, 30, 9));
  EXPECT_EQ(controls().ComboGetCurSel(main.window, 30), kNoRow);
  EXPECT_TRUE(controls().ComboResetContent(main.window, 30));
  EXPECT_EQ(controls().ComboGetCount(main.window, 30), 0);
  EXPECT_EQ(controls().ComboGetCount(main.window, 31), -1);
  EXPECT_EQ(controls().ComboAddString(main.window, 99, "x"), -1);
  EXPECT_TRUE(main.Diary().empty());
}

TEST_F(ScreenTest, ChoosingARowTellsTheProgramEachTime) {
  Start();
  screen.Choose(30, "plum");
  screen.Choose(30, "plum");
  EXPECT_EQ(screen.Chosen(30), "plum");
  EXPECT_EQ(screen.ChosenRow(30), 2);
  EXPECT_EQ(Refusal([&] { screen.Choose(30, "PLUM"); }), "Choose 30: there is no row \"PLUM\"");
  screen.Press(0x26);
  screen.Press('A');
  EXPECT_EQ(screen.Chosen(30), "Apple");
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "selection 30 2", "selection 30 2", "selection 30 1",
                                 "selection 30"}));
}

class ListTest : public ScreenTest {
 protected:
  ListTest() {
    main.onInit = [&] {
      EXPECT_EQ(controls().ListInsertColumn(main.window, 31, "A", 40), 0);
      EXPECT_EQ(controls().ListInsertColumn(main.window, 31, "B", 30), 1);
      EXPECT_EQ(controls().ListInsertColumn(main.window, 31, "C", 20), 2);
      for (std::int32_t row = 0; row < 3; ++row) {
        EXPECT_EQ(
            controls().ListInsertItem(main.window, 31, 100u + static_cast<std::uint32_t>(row)),
            row);
      }
    };
    Start();
  }
};

TEST_F(ListTest, RowsHaveTextsAndANumber) {
  EXPECT_TRUE(controls().ListSetItemText(main.window, 31, 1, 2, "x"));
  EXPECT_FALSE(controls().ListSetItemText(main.window, 31, 1, 3, "x"));
  EXPECT_FALSE(controls().ListSetItemText(main.window, 31, 3, 0, "x"));
  EXPECT_EQ(controls().ListGetItemText(main.window, 31, 1, 2), "x");
  EXPECT_EQ(controls().ListGetItemText(main.window, 31, 1, 0), "");
  EXPECT_EQ(controls().ListGetItemData(main.window, 31, 2), 102u);
  EXPECT_EQ(controls().ListGetItemCount(main.window, 31), 3);
  EXPECT_EQ(screen.Cells(31), (std::vector<Lines>{{"", "", ""}, {"", "", "x"}, {"", "", ""}}));
  EXPECT_TRUE(controls().ListEnsureVisible(main.window, 31, 2));
  EXPECT_FALSE(controls().ListEnsureVisible(main.window, 31, 3));
  EXPECT_TRUE(controls().ListDeleteAllItems(main.window, 31));
  EXPECT_EQ(controls().ListGetItemCount(main.window, 31), 0);
  EXPECT_EQ(controls().ListGetItemCount(main.window, 30), -1);
}

TEST_F(ListTest, SeveralRowsCanBeSelected) {
  screen.SelectRows(31, {0, 2});
  EXPECT_EQ(screen.SelectedRows(31), (std::vector<std::int32_t>{0, 2}));
  EXPECT_EQ(controls().ListGetNextSelected(main.window, 31, -1), 0);
  EXPECT_EQ(controls().ListGetNextSelected(main.window, 31, 0), 2);
  EXPECT_EQ(controls().ListGetNextSelected(main.window, 31, 2), kNoRow);
  EXPECT_TRUE(controls().ListSelectItem(main.window, 31, 0, false));
  EXPECT_TRUE(controls().ListSelectItem(main.window, 31, 1, true));
  EXPECT_EQ(screen.SelectedRows(31), (std::vector<std::int32_t>{1, 2}));
  EXPECT_FALSE(controls().ListSelectItem(main.window, 31, 3, true));
  EXPECT_EQ(Refusal([&] { screen.SelectRows(31, {3}); }), "SelectRows: there is no 3 among 3");
  EXPECT_EQ(screen.Focus(), 31u);
}

TEST_F(ListTest, ADoubleClickTellsTheRowBelowThePointer) {
  screen.DoubleClickRow(31, 1);
  EXPECT_EQ(screen.SelectedRows(31), (std::vector<std::int32_t>{1}));
  screen.DoubleClickRow(31, -1);
  EXPECT_TRUE(screen.SelectedRows(31).empty());
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "double 31 1", "double 31 -1"}));
}

TEST_F(ListTest, KeysInAListAreToldAndMoveTheSelection) {
  screen.SelectRows(31, {0});
  main.Diary();
  screen.Press(0x28);
  screen.Press(0x2E);
  EXPECT_EQ(screen.SelectedRows(31), (std::vector<std::int32_t>{1}));
  EXPECT_EQ(main.Diary(), (Lines{"key 31 40", "key 31 46"}));
}

TEST_F(ListTest, AWidthIsToldBeforeAndAfterWhoeverSetsIt) {
  main.onNotice = [&](std::uint32_t, Notice notice, std::int32_t column) {
    if (notice != Notice::HeaderItemChanging && notice != Notice::HeaderItemChanged) return;
    main.Note("width " + std::to_string(controls().ListGetColumnWidth(main.window, 31, column)));
  };
  EXPECT_TRUE(controls().ListSetColumnWidth(main.window, 31, 1, 33));
  EXPECT_EQ(main.Diary(),
            (Lines{"changing column 31 1", "width 30", "changed column 31 1", "width 33"}));
  screen.DragDivider(31, 2, 8);
  EXPECT_EQ(main.Diary(),
            (Lines{"changing column 31 2", "width 20", "changed column 31 2", "width 8"}));
  EXPECT_EQ(screen.ColumnWidths(31), (std::vector<std::int32_t>{40, 33, 8}));
  EXPECT_FALSE(controls().ListSetColumnWidth(main.window, 31, 3, 8));
  EXPECT_EQ(controls().ListGetColumnWidth(main.window, 31, 3), -1);
}

TEST_F(ListTest, ADraggedHeaderCountsAfterItsNotice) {
  std::vector<std::int32_t> during;
  std::vector<std::int32_t> later;
  main.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
    if (notice == Notice::HeaderDragEnded) {
      EXPECT_TRUE(controls().ListGetColumnOrder(main.window, 31, &during));
      EXPECT_TRUE(controls().PostControlMessage(main.window, 31, 0x8000));
    }
    if (notice == Notice::ControlMessage) controls().ListGetColumnOrder(main.window, 31, &later);
  };
  screen.DragHeader(31, 0, 2);
  EXPECT_EQ(during, (std::vector<std::int32_t>{0, 1, 2}));
  EXPECT_EQ(later, (std::vector<std::int32_t>{1, 2, 0}));
  EXPECT_EQ(screen.ColumnOrder(31), later);
  EXPECT_EQ(main.Diary(), (Lines{"dragged 31", "message to 31 32768"}));
  EXPECT_FALSE(controls().PostControlMessage(main.window, 99, 1));
}

TEST_F(ListTest, AnOrderMustBeOneOfTheColumns) {
  EXPECT_TRUE(controls().ListSetColumnOrder(main.window, 31, {2, 0, 1}));
  EXPECT_FALSE(controls().ListSetColumnOrder(main.window, 31, {2, 0}));
  EXPECT_FALSE(controls().ListSetColumnOrder(main.window, 31, {2, 0, 0}));
  EXPECT_FALSE(controls().ListSetColumnOrder(main.window, 31, {2, 0, 3}));
  EXPECT_EQ(screen.ColumnOrder(31), (std::vector<std::int32_t>{2, 0, 1}));
}

TEST_F(ListTest, ColumnsShareTheListWithoutItsFrameAndScrollBar) {
  // 80 units are 120 pixels.
  EXPECT_EQ(controls().ListGetClientWidth(main.window, 31), 100);
  EXPECT_EQ(controls().ListGetClientWidth(main.window, 30), -1);
}

TEST_F(ScreenTest, AListIsPaintedOnceItIsShownAndWheneverItNeedsIt) {
  main.notePaints = true;
  main.onInit = [&] { main.Note("hidden"); };
  screen.Start([&] { return main.Run(); });
  EXPECT_EQ(main.Diary(), (Lines{"init", "hidden", "painted 31"}));
  screen.Settle();
  EXPECT_TRUE(main.Diary().empty());
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  controls().InvalidateControl(main.window, 31);
  controls().InvalidateControl(main.window, 31);
  screen.Settle();
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 0 0", "painted 31"}));
  controls().ShowControl(main.window, 31, SW_HIDE);
  controls().InvalidateControl(main.window, 31);
  screen.Settle();
  EXPECT_TRUE(main.Diary().empty());
  controls().ShowControl(main.window, 31, SW_SHOW);
  screen.Settle();
  EXPECT_EQ(main.Diary(), (Lines{"painted 31"}));
  desktop().SetTimer(main.window, 1, 1000);
  Bodies bodies;
  bodies.Start("other", [&] {
    clock().Sleep(7);
    return controls().InvalidateControl(main.window, 31) ? 0u : 1u;
  });
  sim.RunFor(7);
  EXPECT_EQ(main.Diary(), (Lines{"painted 31"}));
}

TEST_F(ScreenTest, AListOfAHiddenWindowWaitsForItsPainting) {
  main.notePaints = true;
  main.onMessage = [&](std::uint32_t message) {
    desktop().ShowWindow(main.window, message == WM_APP ? SW_HIDE : SW_SHOW);
  };
  main.onInit = [&] { desktop().PostMessageA(main.window, WM_APP, 0, 0); };
  screen.Start([&] { return main.Run(); });
  EXPECT_EQ(main.Diary(), (Lines{"init", "message 32768 0 0"}));
  desktop().PostMessageA(main.window, WM_APP + 1, 0, 0);
  screen.Settle();
  EXPECT_EQ(main.Diary(), (Lines{"message 32769 0 0", "painted 31"}));
}

TEST_F(ScreenTest, RedrawsAreCountedUntilTheyAreAskedFor) {
  Start();
  EXPECT_TRUE(controls().InvalidateControl(main.window, 34));
  EXPECT_TRUE(controls().InvalidateControl(main.window, 34));
  EXPECT_FALSE(controls().InvalidateControl(main.window, 99));
  EXPECT_EQ(screen.Redraws(34), 2u);
  EXPECT_EQ(screen.Redraws(34), 0u);
}

TEST_F(ScreenTest, ADrawnButtonIsDrawnWhenItIsShownPressedOrFocused) {
  main.noteDrawing = true;
  screen.Start([&] { return main.Run(); });
  EXPECT_EQ(main.Diary(), (Lines{"init", "draw 34"}));
  screen.Click(34);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "draw 34 focused action", "draw 34 pressed focused",
                                 "draw 34 focused", "clicked 34"}));
  screen.FocusOn(20);
  EXPECT_EQ(main.Diary(), (Lines{"draw 34 action"}));
}

TEST_F(ScreenTest, TabsStandSideBySide) {
  main.onInit = [&] {
    EXPECT_EQ(controls().TabGetCurSel(main.window, 32), -1);
    EXPECT_EQ(controls().TabInsertItem(main.window, 32, "Control"), 0);
    EXPECT_EQ(controls().TabInsertItem(main.window, 32, "Mouse"), 1);
  };
  Start();
  EXPECT_EQ(screen.Tabs(32), (Lines{"Control", "Mouse"}));
  EXPECT_EQ(screen.Tab(32), 0);
  Rect rect;
  EXPECT_TRUE(controls().TabGetItemRect(main.window, 32, 0, &rect));
  EXPECT_EQ(rect, (Rect{2, 2, 56, 22}));
  EXPECT_TRUE(controls().TabGetItemRect(main.window, 32, 1, &rect));
  EXPECT_EQ(rect, (Rect{56, 2, 98, 22}));
  EXPECT_FALSE(controls().TabGetItemRect(main.window, 32, 2, &rect));
  screen.ChooseTab(32, 1);
  screen.ChooseTab(32, 1);
  EXPECT_EQ(controls().TabGetCurSel(main.window, 32), 1);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "selection 32 1"}));
  EXPECT_TRUE(controls().TabSetCurSel(main.window, 32, 0));
  EXPECT_FALSE(controls().TabSetCurSel(main.window, 32, 2));
  EXPECT_EQ(screen.Tab(32), 0);
  EXPECT_TRUE(main.Diary().empty());
  EXPECT_EQ(Refusal([&] { screen.ChooseTab(32, 2); }), "ChooseTab: there is no 2 among 2");
}

TEST_F(ScreenTest, ASliderStaysWithinItsRange) {
  Start();
  EXPECT_TRUE(controls().SliderSetRange(main.window, 33, 0, 50));
  EXPECT_TRUE(controls().SliderSetTicFreq(main.window, 33, 5));
  EXPECT_EQ(screen.SliderScale(33), "0 to 50, a tick each 5");
  EXPECT_TRUE(controls().SliderSetPos(main.window, 33, 60));
  EXPECT_EQ(controls().SliderGetPos(main.window, 33), 50);
  EXPECT_TRUE(controls().SliderSetPos(main.window, 33, -1));
  EXPECT_EQ(screen.Slider(33), 0);
  EXPECT_TRUE(main.Diary().empty());
  screen.MoveSlider(33, 20);
  screen.Press(0x27);
  screen.Press(0x21);
  EXPECT_EQ(screen.Slider(33), 11);
  EXPECT_EQ(main.Diary(), (Lines{"left 11", "scrolled 33 20", "scrolled 33 21", "scrolled 33 11"}));
  EXPECT_EQ(Refusal([&] { screen.MoveSlider(33, 51); }),
            "MoveSlider 33: the slider doesn't reach that far");
  EXPECT_EQ(controls().SliderGetPos(main.window, 30), -1);
}

TEST_F(ScreenTest, ControlsMoveAtOnceOrTogether) {
  Start();
  EXPECT_TRUE(controls().SetControlPos(main.window, 20, {1, 2, 31, 42}, SWP_NOZORDER));
  EXPECT_EQ(screen.ControlPlace(20), (Rect{1, 2, 31, 42}));
  EXPECT_TRUE(controls().SetControlPos(main.window, 20, {5, 6, 7, 8}, SWP_NOSIZE));
  EXPECT_EQ(screen.ControlPlace(20), (Rect{5, 6, 35, 46}));
  DeferHandle defer = controls().BeginDeferWindowPos(2);
  ASSERT_NE(defer, 0u);
  defer = controls().DeferWindowPos(defer, main.window, 20, {0, 0, 9, 9}, 0);
  ASSERT_NE(defer, 0u);
  EXPECT_EQ(screen.ControlPlace(20), (Rect{5, 6, 35, 46}));
  EXPECT_TRUE(controls().EndDeferWindowPos(defer));
  EXPECT_EQ(screen.ControlPlace(20), (Rect{0, 0, 9, 9}));
  EXPECT_FALSE(controls().EndDeferWindowPos(defer));
  defer = controls().BeginDeferWindowPos(1);
  EXPECT_EQ(controls().DeferWindowPos(defer, main.window, 99, {0, 0, 9, 9}, 0), 0u);
  EXPECT_FALSE(controls().EndDeferWindowPos(defer));
  EXPECT_FALSE(controls().SetControlPos(main.window, 99, {}, 0));
}

TEST_F(ScreenTest, LooksAreAsTheProgramSetsThem) {
  Start();
  EXPECT_TRUE(controls().SetControlFont(main.window, 35, "Arial", 14, 800, true));
  EXPECT_EQ(screen.Font(35), "Arial 14 800 underlined");
  EXPECT_TRUE(controls().SetControlFont(main.window, 35, "", 0, 0, false));
  EXPECT_EQ(screen.Font(35), "Arial 14 800");
  EXPECT_TRUE(controls().SetTextColour(main.window, 35, Rgb(0, 0, 64)));
  EXPECT_EQ(screen.TextColour(35), Rgb(0, 0, 64));
  EXPECT_TRUE(controls().SetBackgroundColour(main.window, 35, Rgb(255, 255, 255)));
  EXPECT_EQ(screen.BackgroundColour(35), Rgb(255, 255, 255));
  EXPECT_FALSE(screen.HandCursor(35));
  EXPECT_TRUE(controls().SetHandCursor(main.window, 35));
  EXPECT_TRUE(screen.HandCursor(35));
  EXPECT_TRUE(controls().SetPicture(main.window, 36, 148));
  EXPECT_EQ(screen.Picture(36), 148u);
  EXPECT_FALSE(controls().SetPicture(main.window, 20, 148));
  EXPECT_FALSE(controls().SetControlFont(main.window, 99, "", 0, 0, false));
}

// ---- Tool tips

TEST_F(ScreenTest, ATipComesForAToolWhileTipsAreActive) {
  Start();
  EXPECT_FALSE(controls().AddTool(main.window, 20));
  EXPECT_EQ(screen.Hover(20), "");
  EXPECT_TRUE(controls().CreateToolTip(main.window));
  EXPECT_FALSE(controls().CreateToolTip(main.window));
  EXPECT_TRUE(controls().SetToolTipWidth(main.window, 300));
  EXPECT_TRUE(controls().SetToolTipTime(main.window, 10000));
  EXPECT_TRUE(controls().AddTool(main.window, 20));
  EXPECT_EQ(screen.Hover(20), "");
  EXPECT_TRUE(controls().ActivateToolTip(main.window, true));
  EXPECT_EQ(screen.Hover(20), "tip 20");
  EXPECT_EQ(screen.Hover(21), "");
  EXPECT_EQ(screen.ToolTipWidth(), 300);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
  EXPECT_EQ(Refusal([&] { screen.Hover(26); }), "Hover 26: the control is hidden");
}

TEST_F(ScreenTest, WithTipsEnabledEveryControlIsAskedFor) {
  Start();
  EXPECT_FALSE(controls().SetToolTipWidth(main.window, 300));
  EXPECT_TRUE(controls().EnableToolTips(main.window));
  EXPECT_TRUE(controls().SetToolTipWidth(main.window, 300));
  EXPECT_EQ(screen.Hover(21), "tip 21");
  EXPECT_FALSE(controls().ActivateToolTip(main.window, true));
  EXPECT_FALSE(controls().EnableToolTips(99));
}

TEST_F(ScreenTest, ATabHasATipOfItsOwn) {
  Start();
  controls().TabInsertItem(main.window, 32, "Control");
  controls().CreateToolTip(main.window);
  controls().ActivateToolTip(main.window, true);
  EXPECT_EQ(screen.HoverTab(32, 0), "");
  EXPECT_TRUE(controls().AddTabTool(main.window, 32, 0, "the first"));
  EXPECT_FALSE(controls().AddTabTool(main.window, 32, 1, "none"));
  EXPECT_EQ(screen.HoverTab(32, 0), "the first");
}

// ---- The notification area

class IconTest : public ScreenTest {
 protected:
  IconTest() {
    Start();
    data.hWnd = main.window;
    data.uID = 4;
    data.uCallbackMessage = WM_APP;
    data.hIcon = 128;
  }

  NOTIFYICONDATA data;
};

TEST_F(IconTest, AnIconIsAddedAndRemovedOnce) {
  EXPECT_EQ(Refusal([&] { screen.IconDoubleClick(); }), "the icon: it isn't there");
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_FALSE(desktop().Shell_NotifyIconA(NIM_ADD, data));
  EXPECT_TRUE(screen.IconShown());
  EXPECT_EQ(screen.NotificationIcon().hIcon, 128u);
  EXPECT_TRUE(desktop().Shell_NotifyIconA(NIM_DELETE, data));
  EXPECT_FALSE(screen.IconShown());
  EXPECT_FALSE(desktop().Shell_NotifyIconA(1, data));
}

TEST_F(IconTest, TheMouseAboveTheIconSendsItsMessages) {
  desktop().Shell_NotifyIconA(NIM_ADD, data);
  desktop().ShowWindow(main.window, SW_HIDE);
  screen.IconDoubleClick();
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 4 513", "message 32768 4 514",
                                 "message 32768 4 515", "message 32768 4 514"}));
  screen.IconRightClick();
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 4 516", "message 32768 4 517"}));
  screen.IconMessage(9, 0x200);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 9 512"}));
}

TEST_F(IconTest, AMenuStaysUntilItIsChosenFromOrDismissed) {
  desktop().Shell_NotifyIconA(NIM_ADD, data);
  const MenuItem items[] = {{"Exit", 50}, {nullptr, 0}, {"Show", 51}};
  main.onMessage = [&](std::uint32_t) {
    if (screen.MenuUp()) return;
    Point point;
    EXPECT_TRUE(desktop().GetCursorPos(&point));
    EXPECT_TRUE(desktop().TrackPopupMenu(main.window, items, TPM_RIGHTBUTTON, point));
    main.Note("menu gone");
    main.onMessage = nullptr;
  };
  screen.IconMessage(4, WM_RBUTTONDOWN);
  EXPECT_TRUE(screen.MenuUp());
  EXPECT_EQ(screen.Menu(), (Lines{"Exit", "", "Show"}));
  EXPECT_EQ(Refusal([&] { screen.Click(20); }), "Click 20: a menu is up");
  EXPECT_EQ(Refusal([&] { screen.ChooseMenu("Other"); }),
            "ChooseMenu: there is no entry \"Other\"");
  EXPECT_EQ(Refusal([&] { screen.ChooseMenu(""); }), "ChooseMenu: there is no entry \"\"");
  screen.IconMessage(4, WM_RBUTTONDOWN);  // once more, while it is up
  EXPECT_EQ(screen.MenusShown(), 1u);
  main.Diary();
  screen.ChooseMenu("Show");
  EXPECT_EQ(main.Diary(), (Lines{"menu gone", "clicked 51"}));
  EXPECT_FALSE(screen.MenuUp());
  EXPECT_EQ(Refusal([&] { screen.DismissMenu(); }), "DismissMenu: there is no menu");
}

TEST_F(IconTest, AnIconsOwnMenuGivesItsCommandsWhileNoMenuIsUp) {
  const MenuItem items[] = {{"Exit", 50}, {nullptr, 0}, {"Show", 51}};
  EXPECT_FALSE(desktop().SetNotifyIconMenu(main.window, 4, items)) << "there is no icon";
  desktop().Shell_NotifyIconA(NIM_ADD, data);
  EXPECT_FALSE(desktop().SetNotifyIconMenu(main.window, 3, items));
  EXPECT_TRUE(desktop().SetNotifyIconMenu(main.window, 4, items));
  EXPECT_EQ(screen.IconMenu(), (Lines{"Exit", "", "Show"}));
  screen.ChooseIconMenu("Show");
  EXPECT_EQ(main.Diary(), (Lines{"clicked 51"}));
  EXPECT_FALSE(screen.MenuUp());
  EXPECT_EQ(Refusal([&] { screen.ChooseIconMenu(""); }), "ChooseIconMenu: there is no entry \"\"");
  desktop().Shell_NotifyIconA(NIM_DELETE, data);
  EXPECT_EQ(Refusal([&] { screen.ChooseIconMenu("Exit"); }), "the icon: it isn't there");
  desktop().Shell_NotifyIconA(NIM_ADD, data);
  EXPECT_EQ(screen.IconMenu(), Lines{}) << "it went with the icon";
}

TEST_F(IconTest, AMenuThatFailsIsNotShown) {
  desktop().Shell_NotifyIconA(NIM_ADD, data);
  const MenuItem items[] = {{"Exit", 50}};
  main.onMessage = [&](std::uint32_t) {
    main.Note(desktop().TrackPopupMenu(main.window, items, 0, {}) ? "shown" : "failed");
  };
  sim.FailNext("TrackPopupMenu");
  screen.IconMessage(4, WM_RBUTTONDOWN);
  EXPECT_EQ(main.Diary(), (Lines{"message 32768 4 516", "failed"}));
  EXPECT_EQ(screen.MenusShown(), 0u);
  EXPECT_FALSE(desktop().TrackPopupMenu(main.window, items, 0, {}));  // not from this thread
}

TEST_F(IconTest, ADismissedMenuGivesNoCommand) {
  desktop().Shell_NotifyIconA(NIM_ADD, data);
  const MenuItem items[] = {{"Exit", 50}};
  main.onMessage = [&](std::uint32_t) {
    desktop().TrackPopupMenu(main.window, items, 0, {});
    main.Note("menu gone");
  };
  screen.IconMessage(4, WM_RBUTTONDOWN);
  main.Diary();
  screen.DismissMenu();
  EXPECT_EQ(main.Diary(), (Lines{"menu gone"}));
}

// ---- The shell

TEST_F(ScreenTest, AddressesBeepsAndTheCommandLineAreKept) {
  EXPECT_GT(shell().ShellExecuteA("https://kelvaro.example/"), 32);
  EXPECT_EQ(screen.OpenedAddresses(), (Lines{"https://kelvaro.example/"}));
  sim.FailNext("ShellExecuteA", 2);
  EXPECT_EQ(shell().ShellExecuteA("https://kelvaro.example/"), 2);
  EXPECT_EQ(screen.OpenedAddresses().size(), 1u);
  EXPECT_TRUE(shell().MessageBeep(0));
  EXPECT_EQ(screen.Beeps(), 1u);
  EXPECT_EQ(shell().GetCommandLineA('|'), "kelvaro");
  screen.SetCommandLine("kelvaro profile=x");
  EXPECT_EQ(shell().GetCommandLineA('|'), "kelvaro profile=x");
}

TEST_F(ScreenTest, FilesAndFoldersAreChosenBeforehandAndQuestionsAreKept) {
  std::string path = "before";
  EXPECT_FALSE(shell().ChooseFile(5, "Open", false, "/a/b", &path));
  screen.ChooseNextPath("");
  screen.ChooseNextPath("/c");
  screen.ChooseNextPath("/d");
  EXPECT_FALSE(shell().ChooseFile(5, "Save", true, "", &path));
  EXPECT_EQ(path, "before");
  EXPECT_TRUE(shell().ChooseFile(5, "Save", true, "", &path));
  EXPECT_EQ(path, "/c");
  sim.FailNext("ChooseFolder");
  EXPECT_FALSE(shell().ChooseFolder(5, "Folder", "/a", &path));
  EXPECT_TRUE(shell().ChooseFolder(5, "Folder", "/a", &path));
  EXPECT_EQ(path, "/d");
  ASSERT_EQ(screen.AskedPaths().size(), 4u);
  EXPECT_EQ(screen.AskedPaths()[0].owner, 5u);
  EXPECT_EQ(screen.AskedPaths()[0].title, "Open");
  EXPECT_EQ(screen.AskedPaths()[0].suggested, "/a/b");
  EXPECT_FALSE(screen.AskedPaths()[0].forSaving);
  EXPECT_TRUE(screen.AskedPaths()[1].forSaving);
  EXPECT_FALSE(screen.AskedPaths()[1].folder);
  EXPECT_TRUE(screen.AskedPaths()[3].folder);
}

TEST_F(ScreenTest, HelpComesFromItsLibrary) {
  const LibraryHandle library = shell().LoadLibraryA("hhctrl.ocx");
  ASSERT_NE(library, 0u);
  EXPECT_EQ(shell().GetHelpFunction(library, 13), nullptr);
  const HtmlHelpFunction help = shell().GetHelpFunction(library, 14);
  ASSERT_NE(help, nullptr);
  std::uint32_t cookie = 0;
  EXPECT_NE(help(0, nullptr, HH_INITIALIZE, reinterpret_cast<std::uintptr_t>(&cookie)), 0u);
  EXPECT_EQ(cookie, 1u);
  EXPECT_NE(help(0, "a.chm", HH_DISPLAY_TOPIC, reinterpret_cast<std::uintptr_t>("Start.htm")), 0u);
  EXPECT_NE(help(0, nullptr, HH_CLOSE_ALL, 0), 0u);
  EXPECT_NE(help(0, nullptr, HH_UNINITIALIZE, cookie), 0u);
  sim.FailNext("HtmlHelp");
  EXPECT_EQ(help(0, nullptr, HH_CLOSE_ALL, 0), 0u);
  ASSERT_EQ(screen.HelpCalls().size(), 4u);
  EXPECT_EQ(screen.HelpCalls()[0].cookie, 1u);
  EXPECT_EQ(screen.HelpCalls()[1].file, "a.chm");
  EXPECT_EQ(screen.HelpCalls()[1].topic, "Start.htm");
  EXPECT_EQ(screen.HelpCalls()[2].command, HH_CLOSE_ALL);
  EXPECT_EQ(screen.HelpCalls()[3].cookie, 1u);
}

TEST_F(ScreenTest, ALibraryCanBeMissing) {
  screen.SetHelpLibrary("hhctrl.ocx", false);
  screen.SetHelpLibrary("C:\\help.ocx", true);
  EXPECT_EQ(shell().LoadLibraryA("hhctrl.ocx"), 0u);
  EXPECT_EQ(shell().GetHelpFunction(0, 14), nullptr);
  EXPECT_NE(shell().LoadLibraryA("C:\\help.ocx"), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), (Lines{"hhctrl.ocx", "C:\\help.ocx"}));
}

// ---- The log and the faults

TEST_F(ScreenTest, CallsAreKeptInOrder) {
  sim.LogCalls(true);
  Start();
  desktop().SetTimer(main.window, 1, 5000);
  desktop().PostMessageA(main.window, WM_APP, 0, 0);
  desktop().SetWindowIcon(main.window, 1, false);
  controls().ComboSetCurSel(main.window, 30, 1);
  controls().TabSetCurSel(main.window, 32, 0);
  controls().DeferWindowPos(controls().BeginDeferWindowPos(3), main.window, 20, {},
                            SWP_NOZORDER | SWP_NOSIZE);
  controls().ShowControl(main.window, 20, SW_SHOW);
  desktop().ShowWindow(main.window, SW_HIDE);
  shell().GetHelpFunction(0, 14);
  desktop().EndDialog(main.window, 3);
  EXPECT_EQ(sim.Calls(), (Lines{"RunDialog 100", "SetTimer 1 5000", "PostMessageA 32768",
                                "SetWindowIcon small", "ComboSetCurSel 30 1", "TabSetCurSel 32 0",
                                "BeginDeferWindowPos 3", "DeferWindowPos 20 5", "ShowControl 20 5",
                                "ShowWindow 0", "GetHelpFunction 14", "EndDialog 3"}));
}

TEST_F(ScreenTest, AFailingOperationDoesNothing) {
  sim.FailNext("RunDialog");
  screen.Start([&] { return main.Run(); });
  EXPECT_EQ(screen.Result(), -1);
  EXPECT_TRUE(main.Diary().empty());
  Start();
  const WindowHandle window = main.window;
  NOTIFYICONDATA data;
  data.hWnd = window;
  Rect rect;
  Point point;
  std::vector<std::int32_t> order;
  struct Case {
    const char* operation;
    std::function<bool()> succeeds;
  };
  const Case cases[] = {
      {"ShowWindow", [&] { return desktop().ShowWindow(window, SW_HIDE); }},
      {"SetTimer", [&] { return desktop().SetTimer(window, 1, 10) != 0; }},
      {"KillTimer", [&] { return desktop().KillTimer(window, 1); }},
      {"SetWindowsHookExA",
       [&] { return (firstHook = desktop().SetWindowsHookExA(WH_CBT, &FirstHook)) != 0; }},
      {"UnhookWindowsHookEx", [&] { return desktop().UnhookWindowsHookEx(firstHook); }},
      {"LoadIconA", [&] { return desktop().LoadIconA(128) != 0; }},
      {"DestroyIcon", [&] { return desktop().DestroyIcon(128); }},
      {"LoadBitmapA", [&] { return desktop().LoadBitmapA(145) != 0; }},
      {"Shell_NotifyIconA", [&] { return desktop().Shell_NotifyIconA(NIM_ADD, data); }},
      {"GetCursorPos", [&] { return desktop().GetCursorPos(&point); }},
      {"GetDesktopRect", [&] { return desktop().GetDesktopRect(&rect); }},
      {"PostMessageA", [&] { return desktop().PostMessageA(window, WM_APP, 0, 0); }},
      {"SetForegroundWindow", [&] { return desktop().SetForegroundWindow(window); }},
      {"SetWindowIcon", [&] { return desktop().SetWindowIcon(window, 1, true); }},
      {"MoveWindow",
       [&] {
         return desktop().MoveWindow(window, {0, 0, 500, 500});
       }},
      {"InvalidateRect", [&] { return desktop().InvalidateRect(window, {}); }},
      {"UpdateWindow", [&] { return desktop().UpdateWindow(window); }},
      {"SetControlPos", [&] { return controls().SetControlPos(window, 20, {}, 0); }},
      {"BeginDeferWindowPos", [&] { return controls().BeginDeferWindowPos(1) != 0; }},
      {"DeferWindowPos",
       [&] {
         return controls().DeferWindowPos(controls().BeginDeferWindowPos(1), window, 20, {}, 0) !=
                0;
       }},
      {"EndDeferWindowPos",
       [&] { return controls().EndDeferWindowPos(controls().BeginDeferWindowPos(1)); }},
      {"InvalidateControl", [&] { return controls().InvalidateControl(window, 20); }},
      {"ShowControl", [&] { return controls().ShowControl(window, 21, SW_HIDE); }},
      {"SetControlFocus", [&] { return controls().SetControlFocus(window, 20); }},
      {"PostControlMessage", [&] { return controls().PostControlMessage(window, 20, 1); }},
      {"ComboAddString", [&] { return controls().ComboAddString(window, 30, "x") >= 0; }},
      {"ComboDeleteString", [&] { return controls().ComboDeleteString(window, 30, 0); }},
      {"ComboSetCurSel", [&] { return controls().ComboSetCurSel(window, 30, 0); }},
      {"ListGetColumnOrder", [&] { return controls().ListGetColumnOrder(window, 31, &order); }},
      {"ListSetColumnOrder", [&] { return controls().ListSetColumnOrder(window, 31, {0}); }},
      {"ListSetColumnWidth", [&] { return controls().ListSetColumnWidth(window, 31, 0, 9); }},
      {"TabSetCurSel", [&] { return controls().TabSetCurSel(window, 32, 0); }},
      {"SetPicture", [&] { return controls().SetPicture(window, 36, 1); }},
      {"SetHandCursor", [&] { return controls().SetHandCursor(window, 35); }},
      {"CreateToolTip", [&] { return controls().CreateToolTip(window); }},
      {"EnableToolTips", [&] { return controls().EnableToolTips(window); }},
      {"SetToolTipWidth", [&] { return controls().SetToolTipWidth(window, 1); }},
      {"SetToolTipTime", [&] { return controls().SetToolTipTime(window, 1); }},
      {"ActivateToolTip", [&] { return controls().ActivateToolTip(window, true); }},
      {"AddTabTool", [&] { return controls().AddTabTool(window, 32, 0, "x"); }},
      {"AddTool", [&] { return controls().AddTool(window, 20); }},
      {"MessageBeep", [&] { return shell().MessageBeep(0); }},
      {"LoadLibraryA", [&] { return shell().LoadLibraryA("hhctrl.ocx") != 0; }},
      {"GetHelpFunction", [&] { return shell().GetHelpFunction(1, 14) != nullptr; }},
      {"MessageBoxA", [&] { return desktop().MessageBoxA(window, "", "", MB_OK) != 0; }},
      {"EndDialog", [&] { return desktop().EndDialog(window, 1); }},
  };
  controls().TabInsertItem(window, 32, "Control");
  controls().ListInsertColumn(window, 31, "A", 40);
  main.Diary();
  sim.LogCalls(true);
  for (const Case& one : cases) {
    sim.ClearCalls();
    sim.FailNext(one.operation);
    EXPECT_FALSE(one.succeeds()) << one.operation;
    ASSERT_FALSE(sim.Calls().empty()) << one.operation;
    EXPECT_EQ(sim.Calls().back().substr(0, sim.Calls().back().find(' ')), one.operation);
  }
  screen.Settle();
  sim.RunFor(20);
  EXPECT_TRUE(main.Diary().empty());
  EXPECT_TRUE(screen.Shown());
  EXPECT_EQ(screen.Rows(30), (Lines{"Apple", "pear", "plum"}));
  EXPECT_TRUE(screen.Visible(21));
  EXPECT_FALSE(screen.IconShown());
  EXPECT_EQ(screen.Beeps(), 0u);
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(screen.Place(), (Rect{313, 206, 711, 562}));
  // Without a plan each of them would have been carried out.
  screen.AnswerNext(IDOK);
  for (const Case& one : cases) EXPECT_TRUE(one.succeeds()) << one.operation;
}

}  // namespace
}  // namespace platform::simulation
