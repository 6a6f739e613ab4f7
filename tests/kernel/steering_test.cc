// A run on a real pad, steered while its keys are held down at the kernel's keyboard.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/host/home.h"
#include "tests/host/json.h"
#include "tests/kernel/asking.h"
#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

constexpr char kPad[] = "Steered Pad";

class Steered : public ::testing::Test {
 protected:
  bool Begin(const std::vector<std::string>& controls, const std::string& more = "") {
    run = std::make_unique<ProfileRun>(
        ProfileOf(controls, "\"profileName\":\"First\"" + (more.empty() ? "" : "," + more)), kPad,
        pad.Node(), std::vector<std::string>{}, options);
    return run->Started() &&
           tests::Eventually([&] { return Status()["profile"].Text() == "First"; }, 60s);
  }
  Finished Ctl(const std::vector<std::string>& words) const {
    std::vector<std::string> command = {KelvaroctlPath()};
    command.insert(command.end(), words.begin(), words.end());
    return RunToEnd(command, options);
  }
  void Tell(const std::string& word) const {
    const Finished done = Ctl({word});
    EXPECT_EQ(done.status, 0) << word << done.err;
  }
  tests::Json Status() const {
    const Finished status = Ctl({"status", "--json"});
    return status.status == 0 ? tests::Parsed(status.out) : tests::Json();
  }

  const tests::Home home{"/dev/shm"};
  const ChildOptions options{home.Environment()};
  UinputPad pad{OrdinaryPad(kPad)};
  std::unique_ptr<ProfileRun> run;
};

TEST_F(Steered, PauseLetsGoOfWhatIsHeldAndResumeTakesThePadAsItIs) {
  ASSERT_TRUE(
      Begin({ButtonControl(0, "<Ctrl>a"), ButtonControl(1, "b")},
            "\"mouse\":{\"leftButton\":2,\"leftMask\":\"0x4\",\"mouseAlwaysActive\":true}"));
  pad.Press(0);
  WaitMs(30);
  pad.Press(2);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_LEFTCTRL down", "KEY_A down"}));
  EXPECT_TRUE(Sent(run->Mouse(), {"BTN_LEFT down"}));
  EXPECT_TRUE(Status()["mouseControls"].Bool());
  Tell("pause");
  EXPECT_TRUE(
      Sent(run->Keyboard(), {"KEY_LEFTCTRL down", "KEY_A down", "KEY_LEFTCTRL up", "KEY_A up"}));
  EXPECT_TRUE(Sent(run->Mouse(), {"BTN_LEFT down", "BTN_LEFT up"}));
  EXPECT_FALSE(run->Keyboard().AnyDown() || run->Mouse().AnyDown());
  EXPECT_TRUE(Status()["paused"].Bool());
  run->Keyboard().Clear();
  run->Mouse().Clear();
  pad.Release(0);
  pad.Release(2);
  WaitMs(50);
  pad.Tap(1);
  pad.Press(1);
  WaitMs(50);
  EXPECT_TRUE(Sent(run->Keyboard(), {}));
  Tell("resume");
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_B down"})) << "it is held now";
  pad.Release(1);
  WaitMs(50);
  pad.Tap(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_B down", "KEY_B up", "KEY_LEFTCTRL down", "KEY_A down",
                                     "KEY_LEFTCTRL up", "KEY_A up"}));
  EXPECT_TRUE(Sent(run->Mouse(), {}));
}

TEST_F(Steered, ReleaseAllLetsGoAndTheHeldButtonDoesNothingUntilItWasLetGo) {
  ASSERT_TRUE(Begin({ButtonControl(0, "a"), ButtonControl(1, "b")}));
  pad.Press(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down"}));
  Tell("release-all");
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up"}));
  pad.Tap(1);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up", "KEY_B down", "KEY_B up"}));
  pad.Release(0);
  WaitMs(50);
  pad.Tap(0);
  EXPECT_TRUE(Sent(run->Keyboard(),
                   {"KEY_A down", "KEY_A up", "KEY_B down", "KEY_B up", "KEY_A down", "KEY_A up"}));
}

TEST_F(Steered, SelectGoesOnWithAStoredProfileOnTheSamePad) {
  // Profiles lie beside the program.
  const auto folder = std::filesystem::path(KelvaroctlPath()).parent_path() / "Profiles";
  std::filesystem::create_directories(folder);
  const std::string json =
      WriteFile(ProfileOf({ButtonControl(0, "c")}, "\"profileName\":\"Second\""));
  ASSERT_EQ(Ctl({"pack", json, folder / "Second.idprof"}).status, 0);
  ASSERT_TRUE(Begin({ButtonControl(0, "a")}));
  pad.Press(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down"}));
  const Finished selected = Ctl({"select", "Second"});
  EXPECT_EQ(selected.status, 0) << selected.err;
  EXPECT_EQ(Status()["profile"].Text(), "Second");
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up", "KEY_C down"}));
  pad.Release(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up", "KEY_C down", "KEY_C up"}));
  run->Process().Signal(SIGTERM);
  EXPECT_EQ(run->Process().WaitForEnd(60s), 0) << run->Process().Log();
}

TEST_F(Steered, AFollowerIsToldWhatFiresAndTheEnd) {
  ASSERT_TRUE(Begin({ButtonControl(0, "a")}));
  Child follower({KelvaroctlPath(), "follow-events"}, options);
  const auto tells = [&](const char* text) {
    return tests::Eventually([&] { return follower.Out().find(text) != std::string::npos; }, 60s);
  };
  ASSERT_TRUE(tells("following"));
  pad.Tap(0);
  EXPECT_TRUE(tells("\"event\":\"controlFired\"")) << follower.Log();
  run->Process().Signal(SIGTERM);
  EXPECT_TRUE(tells("\"event\":\"ended\"")) << follower.Log();
}

// 200 Controls: each of 40 buttons alone, and with a stick to one of its four sides.
constexpr std::size_t kWideButtons = 40;
struct Side {
  unsigned int axis;
  int value;
};
constexpr Side kSides[] = {
    {ABS_X, 0}, {ABS_X, -32000}, {ABS_X, 32000}, {ABS_Y, -32000}, {ABS_Y, 32000}};

char LetterOf(std::size_t control) { return static_cast<char>('a' + control % 26); }

std::string WideControl(std::size_t side, std::size_t button) {
  const std::size_t control = side * kWideButtons + button;
  const std::string text = (control % 3 == 0 ? "<Ctrl>" : "") + std::string(1, LetterOf(control));
  if (side == 0) return ButtonControl(button, text);
  const Side& to = kSides[side];
  return ButtonControl(button, text,
                       "\"triggerItems\":[{\"kind\":" + std::to_string(to.axis) +
                           ",\"index\":0,\"value\":" + (to.value < 0 ? "1" : "2") + "}]");
}

void AddKeys(std::size_t control, std::vector<std::string>* keys) {
  const std::string key = std::string("KEY_") + static_cast<char>(LetterOf(control) - 'a' + 'A');
  const bool withCtrl = control % 3 == 0;
  for (const char* way : {" down", " up"}) {
    if (withCtrl) keys->push_back(std::string("KEY_LEFTCTRL") + way);
    keys->push_back(key + way);
  }
}

TEST(SteeredLoad, AThousandRequestsASecondChangeNoKeyOf200Controls) {
  const tests::Home home("/dev/shm");
  const ChildOptions options{home.Environment()};
  PadShape shape;
  shape.name = "Wide Pad";
  shape.buttons = ManyButtons(kWideButtons);
  shape.axes = {{ABS_X}, {ABS_Y}};
  UinputPad pad(shape);
  std::vector<std::string> controls;
  std::vector<std::string> expected;
  for (std::size_t side = 0; side < std::size(kSides); ++side) {
    for (std::size_t button = 0; button < kWideButtons; ++button) {
      controls.push_back(WideControl(side, button));
      AddKeys(side * kWideButtons + button, &expected);
    }
  }
  ProfileRun run(ProfileOf(controls), shape.name, pad.Node(), {}, options);
  ASSERT_TRUE(run.Started());
  Asking asking(run.Process().Id(), 1000, options);
  for (const Side& side : kSides) {
    pad.Move(side.axis, side.value);
    WaitMs(20);
    for (std::size_t button = 0; button < kWideButtons; ++button) pad.Tap(button, 20);
    pad.Move(side.axis, 0);
    WaitMs(20);
  }
  EXPECT_TRUE(Sent(run.Keyboard(), expected));
  // Eight seconds of play; of the requests nearly half are answered by another thread later.
  EXPECT_GE(asking.End(), 4000) << asking.Err();
}

}  // namespace
}  // namespace kelvaro::kernel
