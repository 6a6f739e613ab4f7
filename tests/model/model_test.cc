// Random scripts, played by the plain engine of this folder and by the real one: each event is the
// same, at the same millisecond. KELVARO_MODEL_RUNS says how many, KELVARO_MODEL_SEED from which
// seed on. A seed that fails is shrunk to a short script.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "keys/key_action.h"
#include "tests/model/plain_engine.h"
#include "tests/model/random_script.h"
#include "tests/model/real_run.h"
#include "tests/model/shrink.h"

namespace kelvaro::plain {
namespace {

std::uint32_t Setting(const char* name, std::uint32_t otherwise) {
  const char* const value = std::getenv(name);
  return value ? static_cast<std::uint32_t>(std::strtoul(value, nullptr, 10)) : otherwise;
}

std::string TextOf(const Event& event) {
  std::string text = std::to_string(event.t) + (event.isKey ? " key" : " mouse");
  for (const std::int64_t number :
       event.isKey ? std::vector<std::int64_t>{event.vk, event.scan, event.flags}
                   : std::vector<std::int64_t>{event.flags, event.dx, event.dy, event.data}) {
    text += " " + std::to_string(number);
  }
  return text;
}

// The first difference in words; empty when there is none.
std::string Difference(const Script& script, std::size_t* compared = nullptr) {
  const std::vector<Event> plain = Play(script);
  const std::vector<Event> real = PlayReally(script);
  for (std::size_t i = 0; i < std::max(plain.size(), real.size()); ++i) {
    const std::string wanted = i < plain.size() ? TextOf(plain[i]) : "nothing";
    const std::string sent = i < real.size() ? TextOf(real[i]) : "nothing";
    if (wanted != sent) {
      return "event " + std::to_string(i) + " is to be " + wanted + " and is " + sent;
    }
  }
  if (compared) *compared += plain.size();
  return "";
}

TEST(Model, SendsTheSameEventsAsTheEngine) {
  const std::uint32_t first = Setting("KELVARO_MODEL_SEED", 1);
  const std::uint32_t runs = Setting("KELVARO_MODEL_RUNS", 6000);
  std::size_t compared = 0;
  for (std::uint32_t seed = first; seed - first < runs; ++seed) {
    const Script script = RandomScript(seed);
    if (Difference(script, &compared).empty()) continue;
    const Script little =
        Shrink(script, [](const Script& each) { return !Difference(each).empty(); });
    FAIL() << "seed " << seed << ": " << Difference(little) << "\n" << Text(little);
  }
  EXPECT_GT(compared, std::size_t{20} * runs);  // they are busy enough to mean something
}

std::string TextOf(const Reading& reading) {
  std::string text = std::to_string(reading.result) + (reading.duplicateKey ? " twice" : "");
  for (const Step& step : reading.steps) {
    text += " (" + std::to_string(step.vk) + " " + std::to_string(step.scan) + " " +
            std::to_string(step.flags) + ")";
  }
  return text;
}

TEST(Model, ReadsKeysAsTheParserDoes) {
  for (std::uint32_t seed = 1; seed <= 5 * Setting("KELVARO_MODEL_RUNS", 6000); ++seed) {
    Random random(seed);
    const std::string text = RandomKeys(random);
    const bool holdAll = random.OneIn(2);
    KeyAction action;
    action.actionFlags = holdAll ? KeyAction::HoldAllKeys : 0;
    Reading real;
    real.result = action.ParseKeys(ByteString(text.c_str()), &real.duplicateKey);
    for (const KeyStep& step : action.steps) {
      real.steps.push_back({step.vk, step.scan, step.flags});
    }
    ASSERT_EQ(TextOf(real), TextOf(ReadKeys(text, holdAll)))
        << "\"" << text << "\"" << (holdAll ? ", all held" : "");
  }
}

// A difference that needs one Control, one change of the pad and no person is found to need that.
TEST(Model, ShrinksAScriptToWhatItsFailureNeeds) {
  const auto sendsA = [](const Script& script) {
    const std::vector<Event> events = Play(script);
    return std::any_of(events.begin(), events.end(), [](const Event& event) {
      return event.isKey && event.vk == 'A' && event.flags == 0;
    });
  };
  std::uint32_t seed = 1;
  while (!sendsA(RandomScript(seed))) ++seed;
  const Script little = Shrink(RandomScript(seed), sendsA);
  ASSERT_TRUE(sendsA(little)) << Text(little);
  std::size_t controls = 0;
  for (const ScriptProfile& profile : little.profiles) controls += profile.controls.size();
  EXPECT_EQ(controls, 1U) << Text(little);
  EXPECT_EQ(little.pad.size(), 1U) << Text(little);
  EXPECT_EQ(little.person.size(), 0U) << Text(little);
}

}  // namespace
}  // namespace kelvaro::plain
