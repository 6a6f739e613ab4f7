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

// ---- Controls

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

TEST_F(ScreenTest, RedrawsAreCountedUntilTheyAreAskedFor) {
  Start();
  EXPECT_TRUE(controls().InvalidateControl(main.window, 34));
  EXPECT_TRUE(controls().InvalidateControl(main.window, 34));
  EXPECT_FALSE(controls().InvalidateControl(main.window, 99));
  EXPECT_EQ(screen.Redraws(34), 2u);
  EXPECT_EQ(screen.Redraws(34), 0u);
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
  HookHandle hook = 0;
  IconHandle icon = 0;
  const Rect place = screen.Place();
  struct Case {
    const char* operation;
    std::function<bool()> succeeds;
  };
  const Case cases[] = {
      {"SetTimer", [&] { return desktop().SetTimer(window, 1, 10) != 0; }},
      {"KillTimer", [&] { return desktop().KillTimer(window, 1); }},
      {"SetWindowsHookExA",
       [&] {
         return (hook = desktop().SetWindowsHookExA(
                     WH_CBT, [](auto...) -> std::intptr_t { return 0; })) != 0;
       }},
      {"UnhookWindowsHookEx", [&] { return desktop().UnhookWindowsHookEx(hook); }},
      {"LoadIconA", [&] { return (icon = desktop().LoadIconA(128)) != 0; }},
      {"DestroyIcon", [&] { return desktop().DestroyIcon(icon); }},
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
      {"ShowWindow", [&] { return desktop().ShowWindow(window, SW_HIDE); }},
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
  EXPECT_EQ(screen.Place(), place);
  // Without a plan each of them would have been carried out.
  screen.AnswerNext(IDOK);
  for (const Case& one : cases) EXPECT_TRUE(one.succeeds()) << one.operation;
}

}  // namespace
}  // namespace platform::simulation
