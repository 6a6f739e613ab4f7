// kelvaroctl.exe as a process: a press on the pad arrives as a key in another program, and it can
// be steered while it runs.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "app/platform/machine/this_machine.h"
#include "tests/windows/own_kelvaroctl.h"

// Last.
#include "tests/windows/dinput8/pad_hands.h"
#include "tests/windows/key_window.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

constexpr unsigned kButton = 2;
constexpr char kADown[] = "down 65 scan 30";
constexpr char kAUp[] = "up 65 scan 30";

class KelvaroctlRun : public KeyWindow {
 protected:
  KelvaroctlRun() {
    const fs::path own = WindowsFiles().GetModuleFileNameA();
    fs::copy_file(own.parent_path() / "dinput8.dll", ctl.In("dinput8.dll"));
    ctl.Store("Walk", ButtonTypes(kButton, "a"));
    ctl.Store("Run", ButtonTypes(kButton, "b"));
  }

  // One that can be steered.
  std::unique_ptr<Child> Run() {
    auto run = ctl.Start({"run", "Walk"});
    EXPECT_TRUE(ctl.Tells(std::to_string(run->Id()) + ", run: profile 'Walk'")) << run->Log();
    return run;
  }
  std::unique_ptr<Child> Follower(const Child& run) {
    auto follower = ctl.Start({"follow-events", "-i", std::to_string(run.Id())});
    EXPECT_TRUE(Says(*follower, "\"following\""));
    return follower;
  }

  PadHands pad;
  const OwnKelvaroctl ctl;
};

TEST_F(KelvaroctlRun, APressArrivesAsItsKeyInAnotherProgram) {
  const auto run = Run();
  pad.Button(kButton, true);
  ExpectGot({kADown});
  pad.Button(kButton, false);
  ExpectGot({kADown, kAUp});
}

TEST_F(KelvaroctlRun, PauseLetsGoOfTheKeyAndResumePressesItAgain) {
  const auto run = Run();
  pad.Button(kButton, true);
  ExpectGot({kADown});
  const std::string process = std::to_string(run->Id());
  EXPECT_EQ(ctl.Do({"pause"}).out, process + ": paused\n");
  ExpectGot({kADown, kAUp});
  EXPECT_TRUE(ctl.Tells("paused"));
  EXPECT_EQ(ctl.Do({"resume"}).out, process + ": goes on\n");
  ExpectGot({kADown, kAUp, kADown});
  EXPECT_EQ(ctl.Do({"release-all", "-i", process}).status, 0);
  ExpectGot({kADown, kAUp, kADown, kAUp});
}

TEST_F(KelvaroctlRun, SelectGoesOnWithTheOtherProfile) {
  const auto run = Run();
  const auto follower = Follower(*run);
  EXPECT_EQ(ctl.Do({"select", "Run"}).status, 0);
  EXPECT_TRUE(ctl.Tells("profile 'Run'"));
  pad.Button(kButton, true);
  ExpectGot({"down 66 scan 48"});
  EXPECT_TRUE(Says(*follower, R"("event":"profile")"));
  EXPECT_TRUE(Says(*follower, R"("event":"controlFired")"));
  const OwnKelvaroctl::Said none = ctl.Do({"select", "Jump"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("there is no stored profile 'Jump'"), std::string::npos) << none.err;
  EXPECT_TRUE(ctl.Tells("profile 'Run'"));
}

TEST_F(KelvaroctlRun, OfTwoRunsOneIsNamedOrBothDoIt) {
  const auto first = Run();
  const auto second = Run();
  const std::string named = std::to_string(second->Id());
  EXPECT_EQ(ctl.Do({"select", "Run", "-i", named}).status, 0);
  EXPECT_TRUE(ctl.Tells(named + ", run: profile 'Run'"));
  EXPECT_TRUE(ctl.Tells(std::to_string(first->Id()) + ", run: profile 'Walk'"));
  const OwnKelvaroctl::Said both = ctl.Do({"pause"});
  EXPECT_EQ(both.status, 0) << both.err;
  for (const Child* const run : {first.get(), second.get()})
    EXPECT_NE(both.out.find(std::to_string(run->Id()) + ": paused\n"), std::string::npos);
}

TEST_F(KelvaroctlRun, OneThatIsKilledIsGoneForAll) {
  const auto run = Run();
  const auto follower = Follower(*run);
  run->Kill();
  EXPECT_TRUE(Says(*follower, "\"ended\""));
  EXPECT_EQ(follower->WaitForEnd(), 0) << follower->Log();
  const OwnKelvaroctl::Said status = ctl.Do({"status"});
  EXPECT_EQ(status.status, 1);
  EXPECT_NE(status.err.find("no Kelvaro is running that could be asked"), std::string::npos);
}

TEST_F(KelvaroctlRun, FollowersThatAreKilledHoldUpNobody) {
  const auto run = Run();
  const auto killed = Follower(*run);
  const auto other = Follower(*run);
  killed->Kill();
  EXPECT_EQ(ctl.Do({"pause"}).status, 0);
  EXPECT_TRUE(Says(*other, R"("event":"paused")"));
}

TEST_F(KelvaroctlRun, AFollowerHearsOfOneThatStartsLater) {
  const auto follower = ctl.Start({"follow-events"});
  EXPECT_TRUE(Says(*follower, "No Kelvaro runs"));
  const auto run = Run();
  EXPECT_TRUE(
      Says(*follower, "{\"process\":" + std::to_string(run->Id()) + ",\"event\":\"following\"}"));
}

}  // namespace
}  // namespace platform
