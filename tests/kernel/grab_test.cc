// A pad that is kept from other programs.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "app/platform/linux/descriptor.h"
#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

using platform::Descriptor;

// A game, say: it reads a pad's node along with others.
class OtherReader {
 public:
  explicit OtherReader(const std::string& node)
      : fd(open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    EXPECT_TRUE(fd);
  }

  // How many buttons it has seen go down since the last call.
  int Presses() const {
    int presses = 0;
    input_event event;
    while (read(fd.Get(), &event, sizeof event) == sizeof event)
      presses += event.type == EV_KEY && event.value == 1 ? 1 : 0;
    return presses;
  }

 private:
  const Descriptor fd;
};

bool IsGrabbed(const std::string& node) {
  const Descriptor fd(open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (ioctl(fd.Get(), EVIOCGRAB, 1) != 0) return true;
  ioctl(fd.Get(), EVIOCGRAB, 0);
  return false;
}

std::string Presses() { return ProfileOf({ButtonControl(0, "a")}); }

TEST(Grab, WithoutTheOptionEverybodyGetsThePad) {
  UinputPad pad(OrdinaryPad("Shared Pad"));
  const OtherReader game(pad.Node());
  ProfileRun run(Presses(), "Shared Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Tap(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down", "KEY_A up"}));
  EXPECT_EQ(game.Presses(), 1);
  EXPECT_FALSE(IsGrabbed(pad.Node()));
}

class GrabEnds : public ::testing::TestWithParam<int> {};

TEST_P(GrabEnds, OthersGetNothingUntilTheProgramEnds) {
  UinputPad pad(OrdinaryPad("Kept Pad"));
  const OtherReader game(pad.Node());
  pad.Tap(0);
  EXPECT_EQ(game.Presses(), 1);
  ProfileRun run(Presses(), "Kept Pad", pad.Node(), {"--grab"});
  ASSERT_TRUE(run.Started());
  pad.Tap(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down", "KEY_A up"}));
  EXPECT_EQ(game.Presses(), 0);
  EXPECT_TRUE(IsGrabbed(pad.Node()));
  run.Process().Signal(GetParam());
  run.Process().WaitForEnd(5s);
  EXPECT_TRUE(Eventually([&] { return !IsGrabbed(pad.Node()); }, 5000));
  pad.Tap(0);
  EXPECT_EQ(game.Presses(), 1);
}

INSTANTIATE_TEST_SUITE_P(Signals, GrabEnds, ::testing::Values(SIGTERM, SIGKILL),
                         [](const testing::TestParamInfo<int>& info) {
                           return info.param == SIGTERM ? "Terminate" : "Kill";
                         });

TEST(Grab, ASecondInstanceSaysWhyItCantHaveThePad) {
  UinputPad pad(OrdinaryPad("Kept Pad"));
  ProfileRun run(Presses(), "Kept Pad", pad.Node(), {"--grab"});
  ASSERT_TRUE(run.Started());
  const std::vector<std::string> words = {KelvaroctlPath(), "run",      "--grab",
                                          "--device",       "Kept Pad", WriteFile(Presses())};
  const Finished second = RunToEnd(words);
  EXPECT_EQ(second.status, 1);
  EXPECT_NE(second.err.find("another program keeps the device 'Kept Pad' for itself"),
            std::string::npos)
      << second.err;
  pad.Tap(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down", "KEY_A up"}));
}

TEST(Grab, OneThatOnlyReadsAlongSaysThatNothingComes) {
  UinputPad pad(OrdinaryPad("Kept Pad"));
  ProfileRun run(Presses(), "Kept Pad", pad.Node(), {"--grab"});
  ASSERT_TRUE(run.Started());
  Child second({KelvaroctlPath(), "run", "--device", "Kept Pad", WriteFile(Presses())});
  EXPECT_TRUE(Eventually(
      [&] {
        return second.Err().find("Another program keeps 'Kept Pad' for itself") !=
               std::string::npos;
      },
      10000))
      << second.Err();
  second.Signal(SIGTERM);
  EXPECT_EQ(second.WaitForEnd(5s), 0);
}

TEST(Grab, APadThatIsBackIsGrabbedAgain) {
  auto pad = std::make_unique<UinputPad>(OrdinaryPad("Kept Pad"));
  ProfileRun run(Presses(), "Kept Pad", pad->Node(), {"--grab"});
  ASSERT_TRUE(run.Started());
  pad.reset();
  WaitMs(500);
  pad = std::make_unique<UinputPad>(OrdinaryPad("Kept Pad"));
  ASSERT_TRUE(Eventually([&] { return IsGrabbed(pad->Node()); }, 20000)) << run.Process().Err();
  const OtherReader game(pad->Node());
  pad->Press(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down"}));
  EXPECT_EQ(game.Presses(), 0);
}

// The doctor takes the name of a program for its own.
TEST(Grab, TheDoctorSeesNoFaultInAPadThatKelvaroHas) {
  UinputPad pad(OrdinaryPad("Kept Pad"));
  const std::filesystem::path folder = std::filesystem::path(WriteFile("")).parent_path();
  const std::string named = folder / "kelvaroctl";
  std::filesystem::create_symlink(KelvaroctlPath(), named);
  Child run({named, "run", "--grab", "--device", "Kept Pad", WriteFile(Presses())});
  ASSERT_TRUE(Polls(run, pad.Node()));
  const Finished doctor = RunToEnd({KelvaroctlPath(), "doctor", "--json"});
  int pads = 0;
  for (const std::string& line : Lines(doctor.out)) {
    const tests::Json remark = tests::Parsed(line);
    if (remark["topic"].Text() != "pad") continue;
    ++pads;
    EXPECT_EQ(remark["state"].Text(), "note") << line;
    EXPECT_NE(remark["what"].Text().find("is grabbed; open in kelvaroctl ("), std::string::npos)
        << line;
  }
  EXPECT_EQ(pads, 1) << doctor.out;
  run.Signal(SIGTERM);
  EXPECT_EQ(run.WaitForEnd(5s), 0);
}

}  // namespace
}  // namespace kelvaro::kernel
