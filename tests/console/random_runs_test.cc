// Random profiles on random recordings: whatever comes out, it is the same a second time, its times
// never fall, and at the end nothing is down.

#include <json/json.h>

#include <memory>

#include "tests/console/console_run.h"
#include "tests/console/held_inputs.h"
#include "tests/console/random_profile.h"

namespace kelvaro::console {
namespace {

using platform::simulation::SentEvent;

constexpr std::uint32_t kRuns = 150;

std::string RandomRecording(Random& random) {
  std::string text = R"({"recording":1,"device":"Pad","guid":"000102030405060708090a0b0c0d0e0f",)"
                     R"("buttons":8,"axes":6,"povs":1})"
                     "\n";
  std::uint32_t held = 0;
  std::uint32_t t = 0;
  for (std::uint32_t count = random.Between(1, 150); count > 0; --count) {
    t += random.Below(60);
    text += "{\"t\":" + std::to_string(t);
    if (random.OneIn(2)) {
      held ^= 1u << random.Below(8);
      text += ",\"buttons\":[";
      const char* separator = "";
      for (std::uint32_t button = 0; button < 8; ++button) {
        if (!(held >> button & 1)) continue;
        text += separator + std::to_string(button + 1);
        separator = ",";
      }
      text += "]";
    }
    if (random.OneIn(3)) {
      const std::string axis =
          random.OneOf({"Axis_X0", "Axis_Y0", "Axis_Z0", "Axis_RX0", "Axis_RY0", "SliderA0"});
      text += ",\"axes\":{\"" + axis +
              "\":" + std::to_string(static_cast<int>(random.Below(64001)) - 32000) + "}";
    }
    if (random.OneIn(4)) {
      text += ",\"povs\":{\"POV0\":" + random.OneOf({"-1", "0", "4500", "9000", "18000", "27000"}) +
              "}";
    }
    if (random.OneIn(20)) text += ",\"lost\":" + random.OneOf({"true", "false"});
    text += "}\n";
  }
  return text;
}

SentEvent Parse(const std::string& line) {
  Json::Value value;
  std::string errors;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  EXPECT_TRUE(reader->parse(line.data(), line.data() + line.size(), &value, &errors)) << line;
  SentEvent event;
  event.t = value["t"].asUInt64();
  event.flags = value["flags"].asUInt();
  if (value["event"] == "key") {
    event.vk = static_cast<std::uint8_t>(value["vk"].asUInt());
    event.scan = static_cast<std::uint8_t>(value["scan"].asUInt());
  } else {
    EXPECT_EQ(value["event"], "mouse") << line;
    event.kind = SentEvent::Kind::Mouse;
    event.dx = value["dx"].asInt();
    event.dy = value["dy"].asInt();
    event.data = value["data"].asInt();
  }
  return event;
}

TEST(RandomRuns, AreTheSameTwiceAndLeaveNothingDown) {
  std::uint64_t presses = 0;
  for (std::uint32_t seed = 1; seed <= kRuns; ++seed) {
    Random random(seed);
    const TestFile profile("profile", RandomProfile(random).Json());
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
      const SentEvent event = Parse(line);
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
