#include "tests/person/screen.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "app/platform/platform.h"
#include "tests/person/desktop_simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

using Simulation = DesktopSimulation;

constexpr ControlTemplate kControls[] = {
    {ControlKind::Label, 10, "&Name", 4, 4, 40, 8},
    {ControlKind::Edit, 11, "", 50, 4, 100, 14},
    {ControlKind::Edit, 13, "fixed", 50, 44, 100, 14, kStyleReadOnly},
    {ControlKind::Button, IDOK, "OK", 4, 100, 40, 14, kStyleDefault},
    {ControlKind::Button, IDCANCEL, "Cancel", 50, 100, 40, 14},
    {ControlKind::Button, 20, "&More && more", 100, 100, 40, 14},
    {ControlKind::CheckBox, 21, "&Quick", 100, 120, 40, 14},
    {ControlKind::Label, 24, "or", 4, 84, 40, 8},
    {ControlKind::Button, 26, "Hidden", 100, 140, 40, 14, kStyleHidden},
    {ControlKind::Button, 27, "Disabled", 100, 160, 40, 14, kStyleDisabled},
    {ControlKind::DrawnButton, 34, "Test", 160, 134, 40, 14},
    {ControlKind::Picture, 36, "", 160, 164, 40, 10},
};

constexpr DialogTemplate kDialog{100, "Test Dialog", 260, 200, 0, kControls};

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
    if (onInit) onInit();
  }
  void OnNotice(std::uint32_t id, Notice notice, std::int32_t) override {
    if (notice != Notice::Clicked && notice != Notice::FocusLost) return;
    Note((notice == Notice::Clicked ? "clicked " : "left ") + std::to_string(id));
    if (notice == Notice::Clicked && onClick) onClick(id);
    if (notice == Notice::Clicked && id == IDOK) desktop().EndDialog(window, IDOK);
  }
  void OnClose() override { desktop().EndDialog(window, IDCANCEL); }
  void OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) override {
    Note("message " + std::to_string(message) + ' ' + std::to_string(wParam) + ' ' +
         std::to_string(lParam));
    if (onMessage) onMessage(message);
  }
  void OnTimer(std::uint32_t id) override {
    Note("timer " + std::to_string(id) + '@' + std::to_string(clock().GetTickCount()));
    if (onTimer) onTimer();
  }
  void OnSize(std::uint32_t, std::int32_t, std::int32_t) override {}
  void OnMove(std::int32_t, std::int32_t) override {}
  void OnGetMinMaxInfo(MinMaxInfo*) override {}
  void OnPaint(Canvas&) override {}
  std::int32_t OnNcHitTest(Point) override { return HTCLIENT; }
  void OnDrawItem(const DrawItem&, Canvas&) override {}
  std::string OnToolTip(std::uint32_t) override { return {}; }
  void OnDestroy() override {}

  void Note(const std::string& line) { diary.push_back(line); }
  // What came since it was last asked.
  std::vector<std::string> Diary() { return std::exchange(diary, {}); }

  const DialogTemplate& dialog;
  WindowHandle window = kNoWindow;
  std::function<void()> onInit;
  std::function<void(std::uint32_t)> onClick;
  std::function<void(std::uint32_t)> onMessage;
  std::function<void()> onTimer;

 private:
  std::vector<std::string> diary;
};

using Lines = std::vector<std::string>;

class ScreenTest : public testing::Test {
 protected:
  ~ScreenTest() override { screen.Leave(); }

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
  desktop().PostMessageA(main.window, WM_APP, 1, 0);
  bodies.Start("other", [&] {
    main.Note("other");
    return 0u;
  });
  sim.RunFor(0);
  EXPECT_EQ(main.Diary(), (Lines{"other", "message 32768 1 0"}));
}

// ---- Dialogs in front of dialogs

TEST_F(ScreenTest, ThePersonReachesTheDialogInFrontAlone) {
  Start();
  main.onClick = [&](std::uint32_t id) {
    if (id == 20) main.Note("result " + std::to_string(small.Run(main.window)));
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

TEST_F(ScreenTest, ATimerThatHasSleptGoesOnWhenItWouldHaveCome) {
  Start();
  controls().SetControlFocus(main.window, 20);  // which has no caret that blinks
  main.Diary();
  sim.RunFor(60003);  // what was kept of drawing has gone
  desktop().SetTimer(main.window, 1, 10);
  main.onTimer = [&] { desktop().SleepTimer(main.window, 1); };
  sim.RunFor(24);
  const std::uint64_t wakes = screen.Wakes();
  sim.RunFor(100000);
  EXPECT_EQ(screen.Wakes(), wakes);
  desktop().WakeTimer(main.window, 1);
  desktop().WakeTimer(main.window, 1);
  main.onTimer = nullptr;
  sim.RunFor(20);
  EXPECT_EQ(main.Diary(), (Lines{"timer 1@60013", "timer 1@160033", "timer 1@160043"}));
}

// ---- Message boxes

TEST_F(ScreenTest, ABoxWithoutAProgramGetsZeroOrThePreparedAnswer) {
  EXPECT_EQ(desktop().MessageBoxA(0, "text", "caption", MB_YESNO), 0);
  screen.AnswerNext(IDNO);
  screen.AnswerNext(IDYES);
  EXPECT_EQ(desktop().MessageBoxA(0, "text", "caption", MB_YESNO), IDNO);
  EXPECT_EQ(desktop().MessageBoxA(5, "other", "caption", MB_YESNO), IDYES);
  ASSERT_EQ(screen.Boxes().size(), 3u);
  EXPECT_EQ(screen.Boxes()[2].text, "other");
  EXPECT_EQ(screen.Boxes()[2].owner, 5u);
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

// ---- Controls

TEST_F(ScreenTest, WhatNoPersonCouldDoIsRefused) {
  Start();
  EXPECT_EQ(Refusal([&] { screen.Click(26); }), "Click 26: the control is hidden");
  EXPECT_EQ(Refusal([&] { screen.Click(27); }), "Click 27: the control is disabled");
  EXPECT_EQ(Refusal([&] { screen.Click(36); }), "Click 36: there is nothing to click on");
  EXPECT_EQ(Refusal([&] { screen.FocusOn(10); }), "FocusOn 10: the control takes no focus");
  EXPECT_EQ(Refusal([&] { screen.Type(13, "x"); }), "Type 13: the text can't be changed");
  EXPECT_EQ(Refusal([&] { screen.Type(20, "x"); }), "Type 20: the control is of another kind");
  EXPECT_EQ(Refusal([&] { screen.Minimise(); }), "Minimise: the window has no box for it");
  EXPECT_EQ(Refusal([&] { screen.Maximise(); }), "Maximise: the window has no box for it");
  EXPECT_EQ(Refusal([&] { screen.Resize(9, 9); }), "Resize: the window has a fixed size");
  EXPECT_EQ(Refusal([&] { screen.Answer(IDOK); }), "Answer: there is no message box");
  desktop().ShowWindow(main.window, SW_HIDE);
  EXPECT_EQ(Refusal([&] { screen.Click(20); }), "Click 20: the window is hidden");
  EXPECT_TRUE(main.Diary().empty());
}

TEST_F(ScreenTest, ABoxKeepsThePersonFromTheWindowBehindIt) {
  Start();
  main.onClick = [&](std::uint32_t) { desktop().MessageBoxA(main.window, "Wait", "", MB_OK); };
  screen.Click(20);
  EXPECT_EQ(Refusal([&] { screen.Click(21); }), "Click 21: a message box is in front: \"Wait\"");
  EXPECT_EQ(Refusal([&] { screen.Answer(IDYES); }), "Answer: the message box has no button 6");
  screen.Answer(IDOK);
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

// ---- The log and the faults

TEST_F(ScreenTest, CallsAreKeptAndOneThatIsToFailDoesNothing) {
  sim.LogCalls(true);
  sim.FailNext("RunDialog");
  Start();
  EXPECT_EQ(screen.Result(), -1);
  Start();
  sim.FailNext("PostMessageA");
  EXPECT_FALSE(desktop().PostMessageA(main.window, WM_APP, 0, 0));
  sim.FailNext("ShowControl");
  EXPECT_FALSE(controls().ShowControl(main.window, 20, SW_HIDE));
  EXPECT_TRUE(screen.Visible(20));
  sim.FailNext("ShellExecuteA", 2);
  EXPECT_EQ(shell().ShellExecuteA("https://kelvaro.example/"), 2);
  EXPECT_TRUE(screen.OpenedAddresses().empty());
  screen.Settle();
  EXPECT_TRUE(main.Diary().empty());
  EXPECT_EQ(sim.Calls(), (Lines{"RunDialog 100", "RunDialog 100", "PostMessageA 32768",
                                "ShowControl 20 0", "ShellExecuteA https://kelvaro.example/"}));
}

}  // namespace
}  // namespace platform::simulation
