// kelvaroctl.exe follow, with the windows of two programs that come to the front in turn.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "app/platform/machine/this_machine.h"
#include "tests/windows/own_kelvaroctl.h"

// Last.
#include "app/platform/windows/win32.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

constexpr char kRules[] = R"({"default":"Desk","rules":[
  {"program":"doom*","profile":"Doom"},
  {"class":"blocks","title":"*level 2*","profile":"Second"},
  {"class":"blocks","profile":"Tetris"}]})";

// One that tells what becomes of it as Windows' own windows do; Wine's tell nothing.
class ShownWindow {
 public:
  ShownWindow(const char* kind, const char* title) {
    WNDCLASSA made{};
    made.lpfnWndProc = DefWindowProcA;
    made.hInstance = GetModuleHandleA(nullptr);
    made.lpszClassName = kind;
    RegisterClassA(&made);
    window = CreateWindowExA(0, kind, title, WS_POPUP | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                             nullptr, made.hInstance, nullptr);
  }
  ~ShownWindow() { DestroyWindow(window); }
  ShownWindow(const ShownWindow&) = delete;
  ShownWindow& operator=(const ShownWindow&) = delete;

  bool ComesToTheFront() {
    const bool came = Eventually([this] {
      SetForegroundWindow(window);
      TakeMessages();
      return GetForegroundWindow() == window;
    });
    Tells(EVENT_SYSTEM_FOREGROUND);
    return came;
  }
  void IsCalled(const char* title) const {
    SetWindowTextA(window, title);
    Tells(EVENT_OBJECT_NAMECHANGE);
  }

 private:
  // By a message that it takes in Wine learns whether anybody wants to hear of events.
  void Tells(DWORD event) const {
    PostMessageA(window, WM_NULL, 0, 0);
    TakeMessages();
    NotifyWinEvent(event, window, OBJID_WINDOW, CHILDID_SELF);
  }
  static void TakeMessages() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
  }

  HWND window;
};

// Run from a copy of this program by the tests below, and killed by them.
TEST(DISABLED_AGame, IsInFront) {
  ShownWindow window("Doom", "Level 1");
  ASSERT_TRUE(window.ComesToTheFront());
  for (;;) Sleep(1000);
}

class FollowOnWindows : public testing::Test {
 protected:
  FollowOnWindows() {
    for (const char* name : {"Desk", "Doom", "Second", "Tetris"})
      ctl.Store(name, ButtonTypes(0, "a"));
    fs::copy_file(WindowsFiles().GetModuleFileNameA(), ctl.In("doom2.exe"));
  }

  std::unique_ptr<Child> Follow(const std::vector<std::string>& options = {}) {
    std::vector<std::string> words = {"follow", Put(ctl.In("rules.json"), kRules)};
    words.insert(words.end(), options.begin(), options.end());
    auto follow = ctl.Start(words);
    EXPECT_TRUE(Says(*follow, "Ctrl-C ends it"));
    return follow;
  }
  std::unique_ptr<Child> Game() {
    return std::make_unique<Child>(std::vector<std::string>{
        ctl.In("doom2.exe"), "--gtest_also_run_disabled_tests", "--gtest_filter=DISABLED_AGame.*"});
  }
  // Whether that comes to be its last line.
  static testing::AssertionResult EndsWith(const Child& follow, const std::string& line) {
    if (Eventually([&] { return follow.Out().ends_with(line + "\n"); }))
      return testing::AssertionSuccess();
    return testing::AssertionFailure() << follow.Log();
  }

  const OwnKelvaroctl ctl;
};

TEST_F(FollowOnWindows, ADryRunTellsEachWindowAndItsRule) {
  ShownWindow blocks("Blocks", "Level 1");
  ASSERT_TRUE(blocks.ComesToTheFront());
  const auto follow = Follow({"--dry-run"});
  EXPECT_TRUE(EndsWith(*follow,
                       "program 'test_windows.exe', class 'Blocks', title 'Level 1': rule "
                       "3, profile 'Tetris'"));
  blocks.IsCalled("Level 2 \xE2\x82\xAC");
  EXPECT_TRUE(EndsWith(*follow, "title 'Level 2 \xE2\x82\xAC': rule 2, profile 'Second'"));
  {
    const auto game = Game();
    EXPECT_TRUE(EndsWith(*follow,
                         "program 'doom2.exe', class 'Doom', title 'Level 1': rule 1, "
                         "profile 'Doom'"))
        << game->Log();
  }
  ASSERT_TRUE(blocks.ComesToTheFront());
  EXPECT_TRUE(EndsWith(*follow, "rule 2, profile 'Second'"));
  ShownWindow other("Other", "");
  ASSERT_TRUE(other.ComesToTheFront());
  EXPECT_TRUE(EndsWith(*follow, "class 'Other': the default, profile 'Desk'"));
}

TEST_F(FollowOnWindows, ARunGetsTheProfileOfTheWindowInFront) {
  const std::string recording =
      Put(ctl.In("still.recording"),
          R"({"recording":1,"device":"Test Pad","guid":"000102030405060708090a0b0c0d0e0f",)"
          R"("buttons":11,"axes":6,"povs":1})"
          "\n");
  ShownWindow blocks("Blocks", "Level 1");
  ASSERT_TRUE(blocks.ComesToTheFront());
  const auto follow = Follow();
  EXPECT_TRUE(Says(*follow, "No Kelvaro runs"));
  const auto run = ctl.Start({"run", "Desk", "--replay", recording, "--until", "600000"});
  EXPECT_TRUE(ctl.Tells("profile 'Tetris'")) << run->Log() << follow->Log();
  {
    const auto game = Game();
    EXPECT_TRUE(ctl.Tells("profile 'Doom'")) << game->Log() << follow->Log();
  }
  ShownWindow other("Other", "");
  ASSERT_TRUE(other.ComesToTheFront());
  EXPECT_TRUE(EndsWith(*follow, "class 'Other': the default, profile 'Desk'"));
  EXPECT_TRUE(ctl.Tells("profile 'Desk'"));
}

}  // namespace
}  // namespace platform
