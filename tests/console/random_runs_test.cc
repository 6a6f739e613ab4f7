// Random profiles on random recordings: whatever comes out, it is the same a second time, its times
// never fall, and at the end nothing is down.

#include <memory>

#include "tests/console/console_run.h"
#include "tests/console/held_inputs.h"
#include "tests/console/random_change.h"
#include "tests/console/random_json.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

using platform::simulation::SentEvent;
using platform::simulation::SentKey;
using platform::simulation::SentMouse;

constexpr std::uint32_t kRuns = 150;

std::string RandomRecording(Random& random) {
  std::string text = RecordingHeaderLine(platform::DeviceDescription{"Pad", {}, 8, 6, 1}) + "\n";
  std::uint32_t held = 0;
  std::uint64_t t = 0;
  for (std::uint32_t count = random.Between(1, 150); count > 0; --count) {
    platform::StateChange change = RandomChange(random, &held);
    change.t = t += random.Below(60);
    change.hasLost = random.OneIn(20);
    change.lost = random.OneIn(2);
    text += RecordingChangeLine(change) + "\n";
  }
  return text;
}

SentEvent EventOf(const std::string& line) {
  const tests::Json value = tests::Parsed(line);
  const auto number = [&value](const char* name) { return value[name].Signed().value_or(0); };
  const auto t = static_cast<std::uint64_t>(number("t"));
  const auto flags = static_cast<std::uint32_t>(number("flags"));
  if (value["event"].Text() == "key") {
    return SentKey(t, static_cast<std::uint8_t>(number("vk")),
                   static_cast<std::uint8_t>(number("scan")), flags);
  }
  EXPECT_EQ(value["event"].Text(), "mouse") << line;
  return SentMouse(t, flags, static_cast<std::int32_t>(number("dx")),
                   static_cast<std::int32_t>(number("dy")),
                   static_cast<std::int32_t>(number("data")));
}

TEST(RandomRuns, AreTheSameTwiceAndLeaveNothingDown) {
  std::uint64_t presses = 0;
  for (std::uint32_t seed = 1; seed <= kRuns; ++seed) {
    Random random(seed);
    const TestFile profile("profile", RandomJson(random).Profile());
    const TestFile recording("recording", RandomRecording(random));
    std::vector<std::string> words{"run",      "--simulate",   "--json",
                                   "--replay", recording.path, profile.path};
    if (random.OneIn(3)) words.push_back("--mouse-active");
    if (random.OneIn(3)) {
      words.insert(words.end(), {"--until", std::to_string(random.Below(4000))});
    }
    const Outcome run = Kelvaroctl(words);
    ASSERT_EQ(run.status, 0) << "seed " << seed << "\n" << run.err;
    ASSERT_EQ(Kelvaroctl(words).out, run.out) << "seed " << seed;

    HeldInputs held;
    std::uint64_t last = 0;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
      const SentEvent event = EventOf(line);
      ASSERT_GE(event.t, last) << "seed " << seed << " " << line;
      last = event.t;
      held.See(event);
    }
    ASSERT_EQ(held.Text(), "") << "seed " << seed;
    presses += held.presses;
  }
  EXPECT_GT(presses, 20 * kRuns);  // they are busy enough to mean something
}

}  // namespace
}  // namespace kelvaro::console
