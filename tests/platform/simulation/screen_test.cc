#include "app/platform/simulation/screen.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "app/platform/platform.h"
#include "app/platform/simulation/simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

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

  std::int32_t Run(WindowHandle owner = kNoWindow) { return RunDialog(dialog, owner, *this); }

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
      EndDialog(window, static_cast<std::int32_t>(id));
    }
  }
  void OnClose() override {
    Note("close");
    EndDialog(window, IDCANCEL);
  }
  void OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) override {
    Note("message " + std::to_string(message) + ' ' + std::to_string(wParam) + ' ' +
         std::to_string(lParam));
    if (onMessage) onMessage(message);
  }
  void OnTimer(std::uint32_t id) override {
    Note("timer " + std::to_string(id) + '@' + std::to_string(GetTickCount()));
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
        EndDialog(screen.Window(), IDCANCEL);
        PostMessageA(screen.Window(), WM_NULL, 0, 0);
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
  main.onInit = [&] { EXPECT_FALSE(IsWindowVisible(main.window)); };
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
  EXPECT_EQ(main.Diary(), (Lines{"init", "left 11", "clicked 1", "destroy"}));
}

}  // namespace
}  // namespace platform::simulation
