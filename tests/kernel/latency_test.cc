// kelvaroctl latency: what it measures, and that nobody else gets anything of it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <tuple>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/press_timing.h"
#include "tests/host/files.h"
#include "tests/host/json.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"
#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

constexpr char kMeasured[] = "Kelvaro Measured ";  // the pad's and the keys' names begin so

std::vector<InputNode> MeasuredNodes() {
  std::vector<InputNode> nodes = InputNodes();
  std::erase_if(nodes, [](const InputNode& node) { return node.name.rfind(kMeasured, 0) != 0; });
  return nodes;
}

void ExpectOrdered(const tests::Json& times) {
  const char* const kNames[] = {"least", "median", "p95", "p99", "slowest"};
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    ASSERT_TRUE(times[kNames[i]].IsNumber()) << kNames[i];
    EXPECT_GT(times[kNames[i]].Real(), 0) << kNames[i];
    if (i == 0) continue;
    EXPECT_GE(times[kNames[i]].Real(), times[kNames[i - 1]].Real()) << kNames[i];
  }
}

TEST(Latency, AnIdleMachineLosesNothing) {
  const std::string profile = WriteFile("{\"pollInterval\":3}");
  const std::string picture = WriteFile("");
  Child latency(
      {KelvaroctlPath(), "latency", "--json", "--presses", "20", "--svg", picture, profile});
  ASSERT_EQ(latency.WaitForEnd(120s), 0) << latency.Err();
  const std::vector<tests::Json> ways = tests::ParsedLines(latency.Out());
  ASSERT_EQ(ways.size(), 3U);
  for (const tests::Json& way : ways) {
    SCOPED_TRACE(way["way"].Text());
    EXPECT_EQ(way["presses"].Signed(), 20);
    EXPECT_EQ(way["lost"].Signed(), 0);
    ExpectOrdered(way["kernel"]);
    ExpectOrdered(way["read"]);
    EXPECT_LE(way["kernel"]["median"].Real(), way["read"]["median"].Real());
  }
  EXPECT_EQ(ways[0]["way"].Text(), "machine");
  EXPECT_EQ(ways[1]["way"].Text(), "interval");
  EXPECT_EQ(ways[1]["interval"].Signed(), 3);
  EXPECT_EQ(ways[1]["taps"].Signed(), 20);
  EXPECT_LE(ways[1]["tapsLost"].Signed(), 20);
  EXPECT_EQ(ways[2]["taps"].Signed(), 20);
  EXPECT_EQ(ways[2]["way"].Text(), "wake");
  EXPECT_EQ(ways[2]["tapsLost"].Signed(), 0);
  const std::string svg = tests::Content(picture);
  EXPECT_EQ(svg.rfind("<svg ", 0), 0U) << svg;
  EXPECT_TRUE(MeasuredNodes().empty());
}

// The buttons and keys that an open node has told of.
int Told(const platform::Descriptor& node) {
  int told = 0;
  input_event event;
  while (read(node.Get(), &event, sizeof event) == sizeof event) told += event.type == EV_KEY;
  return told;
}

TEST(Latency, NobodyElseGetsThePadOrTheKeys) {
  Child latency({KelvaroctlPath(), "latency", "--presses", "10"});
  std::vector<InputNode> nodes;
  ASSERT_TRUE(Eventually(
      [&] {
        nodes = MeasuredNodes();
        return nodes.size() == 2;
      },
      10000))
      << latency.Err();
  std::vector<platform::Descriptor> others;
  for (const InputNode& node : nodes) {
    others.emplace_back(open(node.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(others.back()) << node.path;
  }
  ASSERT_EQ(latency.WaitForEnd(120s), 0) << latency.Err();
  for (const platform::Descriptor& other : others) EXPECT_EQ(Told(other), 0);
  EXPECT_NE(latency.Out().find("the machine alone"), std::string::npos) << latency.Out();
}

// That is how the user at the machine gets the right to read them.
TEST(Latency, TheSystemTakesBothForGamePads) {
  Child latency({KelvaroctlPath(), "latency"});
  const auto arePads = [] {
    const std::vector<InputNode> nodes = MeasuredNodes();
    for (const InputNode& node : nodes) {
      struct stat status = {};
      stat(node.path.c_str(), &status);
      const std::string told =
          tests::Content("/run/udev/data/c" + std::to_string(major(status.st_rdev)) + ":" +
                         std::to_string(minor(status.st_rdev)));
      if (told.find("E:ID_INPUT_JOYSTICK=1\n") == std::string::npos) return false;
    }
    return nodes.size() == 2;
  };
  EXPECT_TRUE(Eventually(arePads, 20000)) << latency.Err();
  // Kelvaro itself takes the keys for none.
  for (const tests::Json& device : Devices())
    EXPECT_NE(device["name"].Text(), "Kelvaro Measured Keys");
  latency.Signal(SIGINT);
  latency.WaitForEnd(10s);
}

TEST(Latency, CtrlCEndsItWithoutAWord) {
  const std::string picture = WriteFile("as it was");
  Child latency({KelvaroctlPath(), "latency", "--presses", "20", "--svg", picture});
  ASSERT_TRUE(Eventually([&] { return latency.Err().find("2 of 3") != std::string::npos; }, 120000))
      << latency.Err();
  latency.Signal(SIGINT);
  EXPECT_NE(latency.WaitForEnd(10s), 0);
  EXPECT_EQ(latency.Out(), "");
  EXPECT_EQ(latency.Err().find("kelvaroctl: "), std::string::npos) << latency.Err();
  EXPECT_EQ(tests::Content(picture), "as it was");
  EXPECT_TRUE(Eventually([] { return MeasuredNodes().empty(); }, 5000));
}

TEST(Latency, KilledItLeavesNoDeviceBehind) {
  Child latency({KelvaroctlPath(), "latency"});
  ASSERT_TRUE(Eventually([] { return MeasuredNodes().size() == 2; }, 20000)) << latency.Err();
  latency.Signal(SIGKILL);
  EXPECT_EQ(latency.WaitForEnd(5s), 128 + SIGKILL);
  EXPECT_TRUE(Eventually([] { return MeasuredNodes().empty(); }, 5000));
}

TEST(Latency, MissingUinputIsSaidWithWhatToDo) {
  ASSERT_EQ(rename("/dev/uinput", "/dev/uinput.away"), 0);
  const Finished latency = RunToEnd({KelvaroctlPath(), "latency"});
  ASSERT_EQ(rename("/dev/uinput.away", "/dev/uinput"), 0);
  EXPECT_EQ(latency.status, 1);
  EXPECT_EQ(latency.out, "");
  EXPECT_NE(latency.err.find("uinput is not loaded"), std::string::npos) << latency.err;
}

// The bare forwarder, on a pad of the test's, with a pipe in the keyboard's place.
class ForwarderTest : public ::testing::Test {
 protected:
  void Start(int to) {
    forwarder = platform::Forwarder::Start(pad->Node(), BTN_SOUTH, to, KEY_F24, &errorCode);
  }
  // Its process, 0 without one.
  static pid_t Process() {
    const auto children = tests::ChildrenOf(getpid());
    return children.empty() ? 0 : children.begin()->first;
  }
  static bool HasEnded(pid_t process) { return tests::StatusWord(process, "State:") == "Z"; }

  std::unique_ptr<UinputPad> pad = std::make_unique<UinputPad>(OrdinaryPad("Forwarded Pad"));
  std::unique_ptr<platform::Forwarder> forwarder;
  int errorCode = 0;
};

TEST_F(ForwarderTest, SendsTheKeyForTheButtonAloneAndEndsWithThePad) {
  int pipe[2];
  ASSERT_EQ(pipe2(pipe, O_CLOEXEC), 0);
  const platform::Descriptor from(pipe[0]), to(pipe[1]);
  Start(to.Get());
  ASSERT_TRUE(forwarder) << strerror(errorCode);
  const pid_t process = Process();
  ASSERT_GT(process, 0);
  pad->Press(1);
  pad->Move(ABS_X, 20000);
  pad->Press(0);
  pad->Release(0);
  const input_event expected[] = {{{}, EV_KEY, KEY_F24, 1},
                                  {{}, EV_SYN, SYN_REPORT, 0},
                                  {{}, EV_KEY, KEY_F24, 0},
                                  {{}, EV_SYN, SYN_REPORT, 0}};
  for (const input_event& each : expected) {
    input_event sent{};
    ASSERT_EQ(read(from.Get(), &sent, sizeof sent), ssize_t{sizeof sent});
    EXPECT_EQ(std::tie(sent.type, sent.code, sent.value),
              std::tie(each.type, each.code, each.value));
  }
  EXPECT_FALSE(HasEnded(process));
  pad.reset();
  EXPECT_TRUE(tests::Eventually([&] { return HasEnded(process); }));
}

TEST_F(ForwarderTest, EndsWhereTheKeyIsNotTaken) {
  const platform::Descriptor notForWriting(open("/dev/null", O_RDONLY | O_CLOEXEC));
  Start(notForWriting.Get());
  ASSERT_TRUE(forwarder) << strerror(errorCode);
  const pid_t process = Process();
  pad->Press(0);
  EXPECT_TRUE(tests::Eventually([&] { return HasEnded(process); }));
}

TEST_F(ForwarderTest, ThereIsNoneWithoutAProcess) {
  tests::WhereRefused(tests::kNoThreads, [&] { Start(-1); });
  EXPECT_FALSE(forwarder);
  EXPECT_EQ(errorCode, EAGAIN);
}

// Nobody sits at this machine.
TEST(Latency, AUserWhoMayNotReadPadsIsToldSo) {
  ASSERT_EQ(chmod("/dev/uinput", 0666), 0);
  const Finished latency = RunToEnd({KelvaroctlPath(), "latency"}, {.asNobody = true});
  ASSERT_EQ(chmod("/dev/uinput", 0600), 0);
  EXPECT_EQ(latency.status, 1);
  EXPECT_EQ(latency.out, "");
  EXPECT_NE(latency.err.find("can't be kept for itself: Permission denied"), std::string::npos)
      << latency.err;
}

}  // namespace
}  // namespace kelvaro::kernel
