// Random worlds, and the scripts that were left of those in which something didn't hold.
// KELVARO_SWARM_WORLDS says how many worlds, KELVARO_SWARM_FIRST from which seed on. A world that
// fails prints the short script that still does; put into scripts/ it becomes a test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/swarm/script.h"
#include "tests/swarm/world.h"

namespace kelvaro::swarm {
namespace {

constexpr double kHour = 60 * 60 * 1000;  // ms

std::uint32_t Setting(const char* name, std::uint32_t otherwise) {
  const char* const text = std::getenv(name);
  return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

std::vector<std::string> ScriptFiles() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(KELVARO_SWARM_SCRIPTS)) {
    if (entry.path().extension() == ".script") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

TEST(Swarm, HoldsTogether) {
  const std::uint32_t first = Setting("KELVARO_SWARM_FIRST", 1);
  const std::uint32_t worlds = Setting("KELVARO_SWARM_WORLDS", 50);
  Lived lived;
  for (std::uint32_t seed = first; seed - first < worlds; ++seed) {
    const Script script = RandomScript(seed);
    const std::string fault = Play(script, &lived);
    if (fault.empty()) continue;
    const Script shorter = Shrink(script, [](const Script& each) { return !Play(each).empty(); });
    ADD_FAILURE() << "seed " << seed << ", " << fault << "\nshortened, " << Play(shorter) << "\n"
                  << Text(shorter);
    return;
  }
  std::printf("%.1f virtual hours, %llu steps, %llu presses\n",
              static_cast<double>(lived.ms) / kHour, static_cast<unsigned long long>(lived.steps),
              static_cast<unsigned long long>(lived.presses));
  EXPECT_GT(lived.presses, 20 * worlds) << "they are too quiet to show anything";
}

TEST(Swarm, TheScriptsOfEarlierFaultsHoldTogether) {
  for (const std::string& path : ScriptFiles()) {
    SCOPED_TRACE(path);
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    Script script;
    ASSERT_TRUE(ReadScript(text.str(), &script));
    EXPECT_EQ(Play(script), "");
  }
}

TEST(Swarm, AWorldIsTheSameTwice) {
  Script script = RandomScript(5);
  script.resize(40);
  Lived lived[2];
  for (Lived& each : lived) EXPECT_EQ(Play(script, &each), "");
  EXPECT_EQ(lived[0].ms, lived[1].ms);
  EXPECT_EQ(lived[0].presses, lived[1].presses);
}

// Whatever a sleeping timer isn't woken for is missing, or comes too late.
TEST(Swarm, SendsTheSameWhetherTheTimersSleepOrNot) {
  const auto differs = [](const Script& script) {
    return Sent(script, true) != Sent(script, false);
  };
  std::size_t sent = 0;
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    const Script script = WakefulScript(seed);
    ASSERT_FALSE(differs(script)) << "seed " << seed << "\n" << Text(Shrink(script, differs));
    sent += Sent(script, true).size();
  }
  EXPECT_GT(sent, 50'000u) << "they are too quiet to show anything";
}

TEST(SwarmScript, ComesBackFromItsText) {
  const Script script = RandomScript(3);
  Script read;
  ASSERT_TRUE(ReadScript("# from somewhere\n" + Text(script), &read));
  EXPECT_EQ(Text(read), Text(script));
  for (const char* bad : {"Pad", "Pad 1 2", "Pud 1 2 wait 3", "Pad 1 2 weit 3",
                          "Pad 1 2 wait 3 Fire 1", "Edit 1 2 wait 3 Full"}) {
    EXPECT_FALSE(ReadScript(bad, &read)) << bad;
  }
}

TEST(SwarmScript, ShrinksToWhatFails) {
  const auto fails = [](const Script& script) {
    return std::count_if(script.begin(), script.end(),
                         [](const Step& step) { return step.act == Act::Pad; }) >= 2;
  };
  EXPECT_EQ(Text(Shrink(RandomScript(1), fails)), "Pad 0 0 wait 0\nPad 0 0 wait 0\n");
}

}  // namespace
}  // namespace kelvaro::swarm
