// The program with its window on a real kernel: off-screen, where its device counts alone, and on
// an X server under a person's hands.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"
#include "tests/kernel/window_program.h"
#include "tests/kernel/x_client.h"
#include "tests/program/machine.h"

namespace kelvaro::kernel {
namespace {

constexpr char kPad[] = "Window Pad";
constexpr char kSerial[] = "serial-1";
constexpr char kProfile[] = "Window Profile";
constexpr long kFew = 3;             // wake-ups
constexpr int kPluginPeriod = 5000;  // ms between two looks for a device

// While files come from the host, the machine's clock runs far ahead.
constexpr auto kPatience = std::chrono::minutes(20);

// Looks every 20 ms, since each look costs more than what is waited for.
bool InTime(const std::function<bool()>& done) { return tests::Eventually(done, kPatience); }

std::unique_ptr<UhidPad> PlugIn() { return std::make_unique<UhidPad>(kPad, kSerial); }

std::string NamingThePad(const std::vector<std::string>& controls) {
  return ProfileOf(controls, std::string("\"profileName\":\"") + kProfile + "\",\"deviceName\":\"" +
                                 kPad + "\"");
}

std::string Named(const char* name) {
  return FindInput([&](const InputNode& node) { return node.name == name; });
}

class Window : public ::testing::Test {
 protected:
  void AddProfile(const std::vector<std::string>& controls) {
    program.AddProfile(kProfile, NamingThePad(controls));
  }

  // Comes back once its virtual keyboard is being read and its start is over; false, and a failure,
  // if there is no keyboard.
  bool Start(const std::string& display = "") {
    child = program.Start(display);
    std::string keys;
    InTime([&] {
      keys = Named(kKeyboardName);
      return (!keys.empty() && !Named(kMouseName).empty()) || !child->Running();
    });
    if (keys.empty()) {
      ADD_FAILURE() << "no virtual keyboard: " << child->Err();
      return false;
    }
    keyboard = std::make_unique<Reader>(keys);
    // The start's last thread, which comes to life after the profile's device has been looked for.
    return InTime([&] { return tests::ThreadOf(child->Id(), "repeat") != 0 || !child->Running(); });
  }

  bool Polls(const UhidPad& pad) const { return DescriptorOf(child->Id(), pad.Node()) >= 0; }

  // That it polls the pad from its start on.
  bool Begins(const UhidPad& pad) {
    const bool begins = InTime([&] { return Polls(pad) || !child->Running(); });
    WaitMs(200);  // its first polls
    return begins && child->Running();
  }

  // Once the window has been where it is for a while.
  long SwitchesInAMinute() const {
    WaitMs(60000);
    const long before = SwitchesOf(child->Id());
    EXPECT_GT(before, 0);
    WaitMs(60000);
    return SwitchesOf(child->Id()) - before;
  }

  void EndsInOrder() {
    child->Signal(SIGTERM);
    EXPECT_EQ(child->WaitForEnd(10s), 0) << child->Err();
  }

  WindowProgram program;
  std::unique_ptr<Child> child;
  std::unique_ptr<Reader> keyboard;
};

// Without the looks for a device, so that it is the device itself that comes back.
TEST_F(Window, PulledPadLetsGoAndWorksAgainWithoutAClick) {
  AddProfile({ButtonControl(0, "a"), ItemControl(8, 0, 4, "<Right>")});
  program.Set("Autodetect Device Plugin", 0);
  auto pad = PlugIn();
  ASSERT_TRUE(Start());
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  std::vector<std::string> expected;
  for (const int awayMs : {0, 200, 2 * kPluginPeriod}) {
    SCOPED_TRACE(awayMs);
    pad->Report(1);
    WaitMs(50);
    pad->Report(1, {128, 128, 128, 128}, 2);
    expected.insert(expected.end(), {"KEY_A down", "KEY_RIGHT down"});
    ASSERT_TRUE(Sent(*keyboard, expected));
    pad.reset();
    expected.insert(expected.end(), {"KEY_A up", "KEY_RIGHT up"});
    ASSERT_TRUE(Sent(*keyboard, expected)) << "both were held when the pad went away";
    WaitMs(awayMs);
    pad = PlugIn();
    ASSERT_TRUE(Eventually([&] { return Polls(*pad); }, 1000));
    WaitMs(100);
    ASSERT_TRUE(Sent(*keyboard, expected));
  }
  pad->Report(1);
  expected.push_back("KEY_A down");
  ASSERT_TRUE(Sent(*keyboard, expected));
  EndsInOrder();
  expected.push_back("KEY_A up");
  EXPECT_TRUE(Sent(*keyboard, expected)) << "it was held when the program ended";
  EXPECT_EQ(Named(kKeyboardName), "");
}

TEST_F(Window, NothingWakesItWhileThePadLiesStill) {
  AddProfile({ButtonControl(0, "a")});
  program.Set("Autodetect Device Plugin", 1);
  program.Set("Start Minimized", 1);
  const auto pad = PlugIn();
  ASSERT_TRUE(Start());
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  EXPECT_LE(SwitchesInAMinute(), kFew);
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down"}));
  EndsInOrder();
}

// Each tap is over long before the poll that follows it.
TEST_F(Window, WithAnswerAtOnceATapBetweenTwoPollsGivesItsKey) {
  AddProfile({ButtonControl(0, "a")});
  program.Set("Answer At Once", 1);
  const auto pad = PlugIn();
  ASSERT_TRUE(Start());
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  std::vector<std::string> expected;
  for (int tap = 0; tap < 5; ++tap) {
    pad->Report(1);
    pad->Report(0);
    expected.insert(expected.end(), {"KEY_A down", "KEY_A up"});
    ASSERT_TRUE(Sent(*keyboard, expected));
  }
  EndsInOrder();
}

TEST_F(Window, IsPausedResumedAndGivenAnotherProfileFromOutside) {
  const std::string other = "Other Profile";
  program.AddProfile(
      other, ProfileOf({ButtonControl(0, "b")},
                       "\"profileName\":\"" + other + "\",\"deviceName\":\"" + kPad + "\""));
  AddProfile({ButtonControl(0, "a")});
  const auto pad = PlugIn();
  ASSERT_TRUE(Start());
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  const auto steer = [&](const std::vector<std::string>& words) { return program.Steer(words); };
  ASSERT_TRUE(InTime([&] { return steer({"status"}).out.find(kProfile) != std::string::npos; }))
      << child->Err();
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down"}));
  EXPECT_EQ(steer({"pause"}).status, 0);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down", "KEY_A up"}));
  pad->Report(0);
  WaitMs(50);
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down", "KEY_A up"}));
  pad->Report(0);
  WaitMs(50);
  EXPECT_EQ(steer({"resume"}).status, 0);
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down", "KEY_A up", "KEY_A down"}));
  pad->Report(0);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down", "KEY_A up", "KEY_A down", "KEY_A up"}));
  const Finished selected = steer({"select", other});
  EXPECT_EQ(selected.status, 0) << selected.err;
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down", "KEY_A up", "KEY_A down", "KEY_A up", "KEY_B down"}));
  EndsInOrder();
}

TEST_F(Window, PadThatComesAfterTheStartIsFoundByTheNextLook) {
  AddProfile({ButtonControl(0, "a")});
  program.Set("Autodetect Device Plugin", 1);
  program.Set("No Device Error Msg", 1);
  ASSERT_TRUE(Start());
  WaitMs(2 * kPluginPeriod);  // looks that find nothing
  const auto pad = PlugIn();
  ASSERT_TRUE(InTime([&] { return Polls(*pad); })) << child->Err();
  WaitMs(100);
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down"}));
  EndsInOrder();
  EXPECT_TRUE(Sent(*keyboard, {"KEY_A down", "KEY_A up"}));
}

TEST_F(Window, WithoutTheSettingAPadThatComesAfterTheStartIsLeftAlone) {
  AddProfile({ButtonControl(0, "a")});
  program.Set("Autodetect Device Plugin", 0);
  program.Set("No Device Error Msg", 1);
  ASSERT_TRUE(Start());
  WaitMs(kPluginPeriod);
  const auto pad = PlugIn();
  WaitMs(2 * kPluginPeriod);
  EXPECT_FALSE(Polls(*pad));
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {}));
  EndsInOrder();
}

class WindowOnScreen : public Window {
 protected:
  static void SetUpTestSuite() { tests::patience = kPatience; }
  void SetUp() override { SKIP_UNLESS(desktop.Works(), "xvfb", "Xvfb and icewm can't be started"); }

  bool HasKeyboard(const std::string& title, bool transient) {
    return InTime([&] {
      const tests::XWindow found = desktop.Find(title, transient);
      return found.id != 0 && desktop.Active(found.id);
    });
  }

  // What a person does who has button 1 of the pad type an "x".
  void MakeTheControl(UhidPad& pad) {
    ASSERT_TRUE(HasKeyboard("Kelvaro", false)) << child->Err();
    desktop.Type("Alt_L+w");  // "New..." of the Control tab
    ASSERT_TRUE(HasKeyboard("Define Control", true));
    desktop.Type("Alt_L+d j u m p Alt_L+t space");  // the description; detection begins
    ASSERT_TRUE(ComesToRest(kPatience));
    pad.Report(1);
    ASSERT_TRUE(ComesToRest(kPatience));
    desktop.Type("space");  // and ends while the button is held
    ASSERT_TRUE(ComesToRest(kPatience));
    pad.Report(0);
    ASSERT_TRUE(ComesToRest(kPatience));
    desktop.Type("Alt_L+k x Return");
    ASSERT_TRUE(InTime([&] { return desktop.Find("Define Control", true).id == 0; }));
    const Finished shown =
        RunToEnd({KelvaroctlPath(), "show", "--json", program.ProfilePath(kProfile)});
    EXPECT_NE(shown.out.find("\"description\":\"jump\""), std::string::npos) << shown.out;
    EXPECT_NE(shown.out.find("\"triggerText\":\"B1\""), std::string::npos) << shown.out;
  }

  tests::XDesktop desktop{false};
};

TEST_F(WindowOnScreen, ControlMadeByHandSendsItsKeyToTheKernel) {
  AddProfile({});
  auto pad = PlugIn();
  ASSERT_TRUE(Start(desktop.Name()));
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  ASSERT_NO_FATAL_FAILURE(MakeTheControl(*pad));
  EXPECT_TRUE(Sent(*keyboard, {})) << "no Control fires while the dialog is open";
  pad->Report(1);
  EXPECT_TRUE(Sent(*keyboard, {"KEY_X down"}));
  EndsInOrder();
  EXPECT_TRUE(Sent(*keyboard, {"KEY_X down", "KEY_X up"}));
}

// What a person does whose pad is there at the first start.
TEST_F(WindowOnScreen, AnExampleOfTheFirstStartPlaysOnceItsDeviceIsChosen) {
  std::filesystem::copy_file(KELVARO_STORED_EXAMPLES "/Platformer.idprof",
                             program.ProfilePath("Platformer"));
  program.Set("Welcome Display", 0);
  const auto pad = PlugIn();
  child = program.Start(desktop.Name());
  ASSERT_TRUE(HasKeyboard("Welcome to Kelvaro", true)) << child->Err();
  desktop.Type("Return");
  ASSERT_TRUE(HasKeyboard("Kelvaro", true)) << "no word of the missing device: " << child->Err();
  EXPECT_FALSE(Polls(*pad)) << "it took a device by itself";
  desktop.Type("Return");
  ASSERT_TRUE(HasKeyboard("Kelvaro", false));
  desktop.Type("Alt_L+v Down");  // the list of devices, and the first below "-- None --"
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  Reader keys(Named(kKeyboardName));
  pad->Report(1);
  EXPECT_TRUE(Sent(keys, {"KEY_SPACE down"}));
  pad->Report(0);
  EXPECT_TRUE(Sent(keys, {"KEY_SPACE down", "KEY_SPACE up"}));
  pad->Report(0, {255, 128, 128, 128});
  EXPECT_TRUE(Sent(keys, {"KEY_SPACE down", "KEY_SPACE up", "KEY_RIGHT down"}));
  EndsInOrder();
}

TEST_F(WindowOnScreen, NothingWakesItWhileThePadLiesStill) {
  AddProfile({});
  const auto pad = PlugIn();
  ASSERT_TRUE(Start(desktop.Name()));
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  ASSERT_TRUE(HasKeyboard("Kelvaro", false)) << child->Err();
  EXPECT_LE(SwitchesInAMinute(), kFew) << "open";
  const auto window = desktop.Find("Kelvaro", false).id;
  desktop.Minimise(window);
  ASSERT_TRUE(InTime([&] { return desktop.Iconic(window); }));
  EXPECT_LE(SwitchesInAMinute(), kFew) << "minimised";
  EndsInOrder();
}

// Where /dev/uinput is closed to the person, keys go out through the X server.
TEST_F(WindowOnScreen, ControlMadeByHandSendsItsKeyToTheWindowInFrontWithoutUinput) {
  AddProfile({});
  auto pad = PlugIn();
  const auto openToAll = [&] { ASSERT_EQ(chmod(pad->Node().c_str(), 0666), 0); };
  openToAll();
  ASSERT_EQ(chmod("/dev/uinput", 0600), 0);
  program.GiveToNobody();
  child = program.Start(desktop.Name(), true);
  ASSERT_TRUE(Begins(*pad)) << child->Err();
  ASSERT_NO_FATAL_FAILURE(MakeTheControl(*pad));
  EXPECT_EQ(Named(kKeyboardName), "") << "keys would go through uinput";
  XClient other(desktop.Name(), "Another program");
  ASSERT_TRUE(InTime([&] { return desktop.Active(other.Window()); }));
  const auto typed = [&](const std::vector<std::string>& expected) {
    Eventually([&] { return other.Texts().size() >= expected.size(); }, 2000);
    WaitMs(100);
    return SameColumns(expected, other.Texts());
  };
  pad->Report(1);
  EXPECT_TRUE(typed({"x down"}));
  pad->Report(0);
  EXPECT_TRUE(typed({"x down", "x up"}));
  pad->Report(1);
  EXPECT_TRUE(typed({"x down", "x up", "x down"}));
  EndsInOrder();
  EXPECT_TRUE(typed({"x down", "x up", "x down", "x up"}));
}

}  // namespace
}  // namespace kelvaro::kernel
