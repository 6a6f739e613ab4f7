#include "app/platform/linux/xtest_input.h"

// Before X11, whose macros hide its names.
#include <gtest/gtest.h>

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include "app/platform/linux/linux_clock.h"
#include "tests/host/files.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"

// Where a connection breaks and the library's handlers return, it gives its own lock back twice.
// The connection isn't used again, so nothing comes of it.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __tsan_default_suppressions() { return "mutex:libX11.so\n"; }

namespace platform {
namespace {

using namespace kelvaro::tests;

// A server, an input on it, and a second connection that sees what arrives in a window.
class XTestInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SKIP_UNLESS(server.Id() > 0 && !server.Address().empty(), "xvfb", "Xvfb can't be started");
    std::string error;
    input = XTestInput::Open(name, &error);
    ASSERT_NE(input, nullptr) << error;
    viewer = XOpenDisplay(name.c_str());
    ASSERT_NE(viewer, nullptr);
    window = XCreateSimpleWindow(viewer, DefaultRootWindow(viewer), 0, 0, 640, 480, 0, 0, 0);
    XSelectInput(viewer, window,
                 KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask);
    XSetWindowAttributes direct{};
    direct.override_redirect = True;
    XChangeWindowAttributes(viewer, window, CWOverrideRedirect, &direct);
    XMapRaised(viewer, window);
    XSync(viewer, False);
    XSetInputFocus(viewer, window, RevertToParent, CurrentTime);
    XSync(viewer, False);
  }
  void TearDown() override {
    input.reset();
    if (viewer) XCloseDisplay(viewer);
  }

  // The next event in the window, such as "key 38 down" or "button 4 up"; "" after two seconds.
  std::string Next() {
    for (int waited = 0; waited < 2000; ++waited) {
      while (XPending(viewer) > 0) {
        XEvent event;
        XNextEvent(viewer, &event);
        switch (event.type) {
          case KeyPress:
          case KeyRelease:
            return "key " + std::to_string(event.xkey.keycode) +
                   (event.type == KeyPress ? " down" : " up");
          case ButtonPress:
          case ButtonRelease:
            return "button " + std::to_string(event.xbutton.button) +
                   (event.type == ButtonPress ? " down" : " up");
          default:
            break;
        }
      }
      LinuxClock().Sleep(1);
    }
    return {};
  }

  void ExpectNext(std::initializer_list<const char*> events) {
    for (const char* const event : events) EXPECT_EQ(Next(), event);
  }

  bool IsDown(unsigned keycode) {
    char keys[32];
    XQueryKeymap(viewer, keys);
    return (keys[keycode / 8] >> (keycode % 8)) & 1;
  }

  // 0 when there is none.
  static pid_t Guard() {
    for (const auto& [child, name] : ChildrenOf(getpid()))
      if (name == "key-guard") return child;
    return 0;
  }
  Server server{[](const std::string& pipe) { return XServerCommand(pipe, "640x480"); }};
  const std::string name = ":" + server.Address();
  std::unique_ptr<XTestInput> input;
  Display* viewer = nullptr;
  Window window = 0;
};

TEST_F(XTestInputTest, AKeyArrivesInTheFocusedWindow) {
  input->keybd_event('A', 0x1E, 0, 0);
  EXPECT_EQ(Next(), "key 38 down");  // KEY_A is 30
  EXPECT_TRUE(IsDown(38));
  input->keybd_event('A', 0x1E, KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(Next(), "key 38 up");
  EXPECT_FALSE(IsDown(38));
}

TEST_F(XTestInputTest, AKeyTypesItsSymbolOnAUnitedStatesKeyboard) {
  EXPECT_EQ(XkbKeycodeToKeysym(viewer, 38, 0, 0), static_cast<KeySym>('a'));
}

TEST_F(XTestInputTest, ModifiersAndExtendedKeysArrive) {
  input->keybd_event(0xA3, 0x9D, KEYEVENTF_EXTENDEDKEY, 0);
  input->keybd_event(0x25, 0xCB, KEYEVENTF_EXTENDEDKEY, 0);
  input->keybd_event(0x25, 0xCB, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, 0);
  input->keybd_event(0xA3, 0x9D, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP, 0);
  // KEY_RIGHTCTRL is 97, KEY_LEFT is 105.
  ExpectNext({"key 105 down", "key 113 down", "key 113 up", "key 105 up"});
}

// Which releases those are stands in kernel_events_test.cc. This stray is the one behind <P:800>.
TEST_F(XTestInputTest, AReleaseIsSentOnlyWhereItsOwnVirtualKeyPressedThatKey) {
  input->keybd_event('D', 0x20, 0, 0);
  input->keybd_event(0x03, 0x20, KEYEVENTF_KEYUP, 0);
  input->mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  input->mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  input->keybd_event('D', 0x20, KEYEVENTF_KEYUP, 0);
  ExpectNext({"key 40 down", "button 1 down", "button 1 up", "key 40 up"});
}

TEST_F(XTestInputTest, MouseButtonsHaveTheirNumbersInX) {
  input->mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  input->mouse_event(MOUSEEVENTF_LEFTUP | MOUSEEVENTF_MIDDLEDOWN, 0, 0, 0, 0);
  input->mouse_event(MOUSEEVENTF_MIDDLEUP, 0, 0, 0, 0);
  input->mouse_event(MOUSEEVENTF_RIGHTDOWN, 0, 0, 0, 0);
  input->mouse_event(MOUSEEVENTF_RIGHTUP, 0, 0, 0, 0);
  input->keybd_event(5, 0, 0, 0);
  input->keybd_event(5, 0, KEYEVENTF_KEYUP, 0);
  input->keybd_event(6, 0, 0, 0);
  input->keybd_event(6, 0, KEYEVENTF_KEYUP, 0);
  ExpectNext({"button 1 down", "button 2 down", "button 1 up", "button 2 up", "button 3 down",
              "button 3 up", "button 8 down", "button 8 up", "button 9 down", "button 9 up"});
}

TEST_F(XTestInputTest, AFullNotchIsAClickOfTheWheelsButton) {
  input->mouse_event(MOUSEEVENTF_WHEEL, 0, 0, 100, 0);
  input->mouse_event(MOUSEEVENTF_WHEEL, 0, 0, 20, 0);
  input->mouse_event(MOUSEEVENTF_WHEEL, 0, 0, -240, 0);
  ExpectNext({"button 4 down", "button 4 up", "button 5 down", "button 5 up", "button 5 down",
              "button 5 up"});
}

TEST_F(XTestInputTest, MotionIsRelative) {
  const auto pointer = [&] {
    Window root, child;
    int x = 0, y = 0, windowX, windowY;
    unsigned mask;
    XQueryPointer(viewer, window, &root, &child, &x, &y, &windowX, &windowY, &mask);
    return std::pair<int, int>(x, y);
  };
  XWarpPointer(viewer, None, DefaultRootWindow(viewer), 0, 0, 0, 0, 100, 100);
  XSync(viewer, False);
  input->mouse_event(MOUSEEVENTF_MOVE, 20, -30, 0, 0);
  for (int waited = 0; waited < 2000 && pointer() != std::pair<int, int>(120, 70); ++waited)
    LinuxClock().Sleep(1);
  EXPECT_EQ(pointer(), (std::pair<int, int>(120, 70)));
}

TEST_F(XTestInputTest, AKeyAboveWhatXCanNameSendsNothing) {
  input->keybd_event(0xFE, 0, 0, 0);  // KEY_CLEAR, 0x163
  input->keybd_event('A', 0x1E, 0, 0);
  EXPECT_EQ(Next(), "key 38 down");
}

TEST_F(XTestInputTest, TheEndOfTheObjectLetsGoOfWhatIsDown) {
  input->keybd_event('A', 0x1E, 0, 0);
  input->mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  ExpectNext({"key 38 down", "button 1 down"});
  input.reset();
  ExpectNext({"key 38 up", "button 1 up"});
}

// SIGKILL, and Ctrl-C, which reaches every process that the terminal sees in front.
TEST_F(XTestInputTest, AProgramThatIsKilledLeavesNothingDown) {
  for (const int signal : {SIGKILL, SIGINT}) {
    const pid_t program = Fork([this]() -> int {
      setpgid(0, 0);
      ::signal(SIGINT, SIG_DFL);  // ignored where the tests run in the background
      const std::unique_ptr<XTestInput> own = XTestInput::Open(name, nullptr);
      if (!own) return 1;
      own->keybd_event(0xA0, 0x2A, 0, 0);
      own->mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
      for (;;) pause();
    });
    ExpectNext({"key 50 down", "button 1 down"});
    kill(-program, signal);
    StatusOf(program);
    ExpectNext({"key 50 up", "button 1 up"});
  }
}

TEST_F(XTestInputTest, TheGuardHasASessionOfItsOwnAndOneDescriptor) {
  const pid_t guard = Guard();
  ASSERT_GT(guard, 0);
  EXPECT_EQ(getsid(guard), guard);
  const std::map<int, std::string> open = OpenFiles(guard);
  ASSERT_EQ(open.size(), 3u);
  auto file = open.begin();
  EXPECT_EQ(file->second.rfind("socket:", 0), 0u) << file->second;
  EXPECT_EQ((++file)->second, "/dev/null");
  EXPECT_EQ((++file)->second, "/dev/null");
}

TEST_F(XTestInputTest, TheGuardOutlivesWhatEndsThePrograms) {
  const pid_t guard = Guard();
  ASSERT_GT(guard, 0);
  for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) kill(guard, signal);
  input->keybd_event('A', 0x1E, 0, 0);
  EXPECT_EQ(Next(), "key 38 down");
  input.reset();
  EXPECT_EQ(Next(), "key 38 up");
}

TEST_F(XTestInputTest, TheGuardEndsWithTheObject) {
  const pid_t guard = Guard();
  ASSERT_GT(guard, 0);
  input.reset();
  EXPECT_EQ(Guard(), 0);
  EXPECT_EQ(kill(guard, 0), -1);
}

TEST_F(XTestInputTest, WithoutAGuardNothingOpens) {
  const std::string told = "the process that is to let go of keys can't be started: ";
  const auto length = static_cast<std::uint32_t>(sizeof(XTestGuard::Held));
  const std::pair<std::vector<Refusal>, std::string> rows[] = {
      {kNoThreads, "Resource temporarily unavailable"},
      {{{SYS_socketpair, EMFILE}}, "Too many open files"},
      {{{SYS_mmap, ENOMEM, length}}, "Cannot allocate memory"},
      {{{SYS_chdir, EACCES}}, "No child processes"},  // in the guard, which ends then
  };
  for (const auto& [refusals, why] : rows)
    WhereRefused(refusals, [&, &why = why] {
      std::string error;
      EXPECT_EQ(XTestInput::Open(name, &error), nullptr);
      EXPECT_EQ(error, told + why);
    });
}

TEST_F(XTestInputTest, AServerThatGoesAwayIsCountedAndReportedOnce) {
  std::vector<std::string> reports;
  input->OnFailure([&](const std::string& text) { reports.push_back(text); });
  input->keybd_event('A', 0x1E, 0, 0);
  EXPECT_EQ(Next(), "key 38 down");
  XCloseDisplay(viewer);
  viewer = nullptr;
  server.Stop();
  for (int i = 0; i < 10; ++i) input->keybd_event('A', 0x1E, 0, 0);
  EXPECT_GE(input->FailedEvents(), 8u);  // the first ones find out
  EXPECT_EQ(reports, std::vector<std::string>{"the X server has gone away"});
}

TEST_F(XTestInputTest, IsWhatOpensWhereItIsAskedForOrAllThereIs) {
  const Variable display("DISPLAY", name.c_str());
  std::string error;
  std::unique_ptr<LinuxInput> opened = OpenLinuxInput(InputChoice::XTest, &error);
  ASSERT_NE(opened, nullptr) << error;
  EXPECT_STREQ(opened->Name(), "XTest");
  opened->keybd_event('A', 0x1E, 0, 0);
  EXPECT_EQ(Next(), "key 38 down");
  if (access("/dev/uinput", F_OK) != 0) {
    opened = OpenLinuxInput(InputChoice::Auto, &error);
    ASSERT_NE(opened, nullptr) << error;
    EXPECT_STREQ(opened->Name(), "XTest");
  }
}

TEST(XTestInput, NoServerIsTold) {
  std::string error;
  EXPECT_EQ(XTestInput::Open(":987", &error), nullptr);
  EXPECT_EQ(error, "no X server answers at :987");
}

}  // namespace
}  // namespace platform
