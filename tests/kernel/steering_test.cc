// A run on a real pad, steered while its keys are held down at the kernel's keyboard.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/host/home.h"
#include "tests/host/json.h"
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

}  // namespace
}  // namespace kelvaro::kernel
