// Each example profile is played by the recording beside it, on the simulated machine, and sends
// the events that stand beside it, too.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "app/platform/recording/recording.h"
#include "tests/cases/case_file.h"
#include "tests/console/console_run.h"
#include "tests/host/json.h"

namespace kelvaro {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Of all files with that ending in the folder of the examples, sorted.
Lines NamesOf(const std::string& ending) {
  Lines names;
  for (const fs::directory_entry& entry : fs::directory_iterator(KELVARO_EXAMPLES)) {
    if (entry.path().extension() == ending) names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string Example(const std::string& file) {
  return tests::Content(std::string(KELVARO_EXAMPLES "/") + file);
}

// Without empty lines and those that start with "#".
Lines LinesOf(const std::string& text) {
  std::istringstream in(text);
  Lines lines;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  }
  return lines;
}

platform::Recording RecordingOf(const std::string& name) {
  platform::Recording recording;
  std::string error;
  std::istringstream in(Example(name + ".recording"));
  EXPECT_TRUE(platform::ReadRecording(in, &recording, &error)) << name << ":" << error;
  return recording;
}

// What `kelvaroctl run --simulate` prints.
Lines Played(const std::string& profile, const std::string& recording) {
  const console::TestFile profileFile("profile.json", profile);
  const console::TestFile recordingFile("recording", recording);
  const console::Outcome run =
      console::Kelvaroctl({"run", "--simulate", "--replay", recordingFile.path, profileFile.path});
  EXPECT_EQ(run.status, 0) << run.err;
  return LinesOf(run.out);
}

TEST(Examples, EachHasARecordingAndItsEvents) {
  const Lines profiles = NamesOf(".json");
  EXPECT_EQ(profiles.size(), 9U);
  EXPECT_EQ(NamesOf(".recording"), profiles);
  EXPECT_EQ(NamesOf(".events"), profiles);
}

class ExampleTest : public testing::TestWithParam<std::string> {
 protected:
  const std::string name = GetParam();
};

TEST_P(ExampleTest, SendsTheEventsBesideIt) {
  const Lines wanted = LinesOf(Example(name + ".events"));
  const Lines sent = Played(Example(name + ".json"), Example(name + ".recording"));
  EXPECT_FALSE(wanted.empty());
  EXPECT_TRUE(sent == wanted) << cases::SideBySide(wanted, sent);
}

// Whatever is taken out of the profile, other events come.
TEST_P(ExampleTest, ItsRecordingShowsAllThatTheProfileDoes) {
  const tests::Json whole = tests::Parsed(Example(name + ".json"));
  const std::string recording = Example(name + ".recording");
  const Lines events = Played(tests::Written(whole), recording);
  const auto without = [&](const tests::Json& member, const char* nothing) {
    return Played(tests::Written(whole, &member, nothing), recording);
  };
  for (const tests::Json& control : whole["controls"].Elements()) {
    EXPECT_NE(without(control, "{}"), events) << control["description"].Text();
  }
  for (const auto& [name, nothing] : std::map<std::string, const char*>{{"mouseX", "{}"},
                                                                        {"mouseY", "{}"},
                                                                        {"mouseWheel", "{}"},
                                                                        {"leftMask", "0"},
                                                                        {"middleMask", "0"},
                                                                        {"rightMask", "0"}}) {
    const tests::Json* const member = whole["mouse"].Find(name);
    if (!member) continue;
    EXPECT_NE(without(*member, nothing), events) << name;
  }
}

// Many sticks never come quite to rest, and each of their trembles is a change of the device. A
// Control that fires when let go would take it for that.
TEST_P(ExampleTest, TrembleOfAnAxisChangesNothing) {
  platform::Recording recording = RecordingOf(name);
  recording.device.axes = 8;  // no example uses the last ones
  std::string text = platform::RecordingHeaderLine(recording.device) + "\n";
  std::uint64_t t = 0;
  for (const platform::StateChange& change : recording.changes) {
    for (; t < change.t; ++t) {
      platform::StateChange tremble;
      tremble.t = t;
      tremble.axes = {{{6, 0}, t % 2 == 0 ? 90 : -90}};
      text += platform::RecordingChangeLine(tremble) + "\n";
    }
    text += platform::RecordingChangeLine(change) + "\n";
  }
  const Lines wanted = LinesOf(Example(name + ".events"));
  const Lines sent = Played(Example(name + ".json"), text);
  EXPECT_TRUE(sent == wanted) << cases::SideBySide(wanted, sent);
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleTest, testing::ValuesIn(NamesOf(".json")),
                         [](const auto& info) {
                           std::string name = info.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace kelvaro
