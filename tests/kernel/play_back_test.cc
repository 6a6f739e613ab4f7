// A recording as a pad of its own, seen by programs that know nothing of it.

#include <gtest/gtest.h>

#include <csignal>
#include <regex>

#include "tests/host/files.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

// The values are whole milliseconds and counts, so that they come back as they were.
constexpr char kRecording[] =
    "{\"recording\":1,\"device\":\"Played Pad\",\"guid\":\"000102030405060708090a0b0c0d0e0f\","
    "\"buttons\":30,\"axes\":4,\"povs\":2}\n"
    "{\"t\":100,\"buttons\":[1,30]}\n"
    "{\"t\":200,\"buttons\":[30],\"axes\":{\"Axis_X0\":12345,\"SliderA0\":-32000}}\n"
    "{\"t\":300,\"povs\":{\"POV0\":31500,\"POV1\":18000}}\n"
    "{\"t\":400,\"buttons\":[],\"axes\":{\"Axis_X0\":0,\"SliderA0\":0},\"povs\":{\"POV0\":-1,"
    "\"POV1\":-1}}\n";

// The event node of that name; empty where the kernel has none.
std::string NodeOf(const std::string& name) {
  for (const InputNode& node : InputNodes())
    if (node.name == name) return node.path;
  return {};
}
bool IsThere(const std::string& name) { return !NodeOf(name).empty(); }

// Its lines, without the times and what the header can't know.
std::string Changes(const std::string& text) {
  return std::regex_replace(text, std::regex(R"re("guid":"[^"]*"|"t":\d+)re"), "");
}

TEST(PlayBack, WhatIsPlayedIsRecordedAgain) {
  Child player({KelvaroctlPath(), "play-back", "--delay", "5000", WriteFile(kRecording)});
  ASSERT_TRUE(Eventually(
      [] {
        const std::vector<tests::Json> devices = Devices();
        return !devices.empty() && devices[0]["name"].Text() == "Played Pad";
      },
      20000))
      << player.Err();
  Child record({KelvaroctlPath(), "record", "Played Pad"});
  EXPECT_EQ(player.WaitForEnd(20s), 0) << player.Err();
  record.Signal(SIGINT);
  EXPECT_EQ(record.WaitForEnd(5s), 0) << record.Err();
  const std::vector<tests::Json> recorded = tests::ParsedLines(record.Out());
  EXPECT_EQ(Changes(record.Out()), Changes(kRecording)) << record.Out();
  ASSERT_EQ(recorded.size(), 5U);
  for (std::size_t i = 2; i < recorded.size(); ++i)
    EXPECT_NEAR(recorded[i]["t"].Real() - recorded[i - 1]["t"].Real(), 100, 7) << i;
}

TEST(PlayBack, APadThatTheRecordingLosesIsPulledOut) {
  Child player({KelvaroctlPath(), "play-back", "--delay", "0",
                WriteFile("{\"recording\":1,\"device\":\"Lost Pad\",\"guid\":"
                          "\"000102030405060708090a0b0c0d0e0f\",\"buttons\":4,\"axes\":0,"
                          "\"povs\":0}\n{\"t\":3000,\"lost\":true}\n"
                          "{\"t\":9000,\"lost\":false}\n{\"t\":12000,\"buttons\":[]}\n")});
  const auto isThere = [] { return IsThere("Lost Pad"); };
  EXPECT_TRUE(Eventually(isThere, 2900));
  EXPECT_TRUE(Eventually([&] { return !isThere(); }, 5000));
  EXPECT_TRUE(Eventually(isThere, 8000));
  player.Signal(SIGINT);
  EXPECT_EQ(player.WaitForEnd(5s), 0) << player.Err();
  EXPECT_FALSE(isThere());
}

TEST(PlayBack, KilledItTakesItsPadAlongAndWhatThatHeldIsLetGo) {
  // Held for long, and again and again, as the run may begin within the first times.
  std::string recording =
      "{\"recording\":1,\"device\":\"Held Pad\",\"guid\":"
      "\"000102030405060708090a0b0c0d0e0f\",\"buttons\":4,\"axes\":0,\"povs\":0}\n";
  for (int time = 1; time < 20; ++time) {
    recording += "{\"t\":" + std::to_string(time * 11000) +
                 ",\"buttons\":[1]}\n{\"t\":" + std::to_string(time * 11000 + 10000) +
                 ",\"buttons\":[]}\n";
  }
  Child player({KelvaroctlPath(), "play-back", "--delay", "0", WriteFile(recording)});
  ASSERT_TRUE(Eventually([] { return IsThere("Held Pad"); }, 20000)) << player.Err();
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}), "Held Pad", NodeOf("Held Pad"));
  ASSERT_TRUE(run.Started());
  ASSERT_TRUE(run.Keyboard().WaitFor(1, 30000));
  player.Signal(SIGKILL);
  EXPECT_EQ(player.WaitForEnd(5s), 128 + SIGKILL);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down", "KEY_A up"}));
  EXPECT_TRUE(Eventually([] { return !IsThere("Held Pad"); }, 5000));
}

}  // namespace
}  // namespace kelvaro::kernel
