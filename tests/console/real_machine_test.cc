// The commands that look at this machine's own devices, whatever they are.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "app/platform/input.h"
#include "console/real_machine.h"
#include "tests/console/console_run.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

constexpr char kNobodysPad[] = "A pad that nobody has";

TEST(RealDevices, AreListedInOrderWithTheirNodes) {
  const Outcome listed = Kelvaroctl({"devices", "--json"});
  std::istringstream lines(listed.out);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    const tests::Json device = tests::Parsed(line);
    EXPECT_EQ(device["index"].Signed(), count) << line;
    EXPECT_EQ(device["guid"].Text().size(), 32u) << line;
  }
  // In text, a line each for its name, its make and its node; more where there is more to say.
  const Outcome text = Kelvaroctl({"devices"});
  EXPECT_GE(std::count(text.out.begin(), text.out.end(), '\n'), 3 * count);
  EXPECT_EQ(text.err.find("No game pad is plugged in.") != std::string::npos, count == 0);
  EXPECT_EQ(text.status, listed.status);
}

TEST(RealMachine, KeptEventsAreTold) {
  RealMachine machine;
  std::vector<std::string> told;
  machine.KeepEvents([&told](const SentEvent& event) { told.push_back(EventWords(event)); });
  platform::input().keybd_event('A', 0x1E, 0, 0);
  platform::input().keybd_event('A', 0x1E, platform::KEYEVENTF_KEYUP, 0);
  platform::input().mouse_event(platform::MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
  EXPECT_EQ(told, (std::vector<std::string>{"a down", "a up", "left mouse button down"}));
}

TEST(RealDevices, OneThatIsNotThereIsNamed) {
  for (const char* command : {"watch", "record"}) {
    const Outcome outcome = Kelvaroctl({command, kNobodysPad});
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.out, "") << command;
    EXPECT_NE(outcome.err.find("there is no device 'A pad that nobody has'"), std::string::npos)
        << outcome.err;
  }
}

// Whether or not keys could go out here.
TEST(RealDevices, RunTellsAMissingPadBeforeAllElse) {
  const TestFile profile("profile", "{}");
  const Outcome outcome = Kelvaroctl({"run", "--device", kNobodysPad, profile.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("there is no device 'A pad that nobody has'"), std::string::npos)
      << outcome.err;
}

}  // namespace
}  // namespace kelvaro::console
