#include "tests/swarm/script.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "tests/console/random.h"
#include "tests/model/take_out.h"

namespace kelvaro::swarm {
namespace {

// How often each comes, among others.
constexpr struct {
  const char* name;
  std::uint32_t weight;
} kNames[] = {
    {"Wait", 4},     {"Pad", 60},     {"HandsOff", 4},  {"Lose", 2},       {"Return", 3},
    {"Unplug", 2},   {"PlugIn", 3},   {"ReadsFail", 1}, {"StartFails", 2}, {"Begin", 4},
    {"End", 2},      {"Select", 5},   {"Pause", 2},     {"Resume", 3},     {"ReleaseAll", 2},
    {"TestMode", 2}, {"AlwaysOn", 2}, {"Slider", 1},    {"Detect", 2},     {"Edit", 5},
    {"Copy", 2},     {"Rename", 2},   {"Delete", 1},    {"Cut", 2},        {"Wrap", 1}};
static_assert(std::size(kNames) == kActs);
constexpr const char* kTroubleNames[] = {"None", "Fails", "Full", "PowerCut"};
static_assert(std::size(kTroubleNames) == kTroubles);

constexpr std::uint32_t kSteps = 150;
constexpr std::uint32_t kHour = 60 * 60 * 1000;  // ms

bool Writes(Act act) {
  return act == Act::Edit || act == Act::Copy || act == Act::Rename || act == Act::Delete;
}

Act RandomAct(Random& random) {
  std::uint32_t all = 0;
  for (const auto& each : kNames) all += each.weight;
  std::uint32_t place = random.Below(all);
  int act = 0;
  while (place >= kNames[act].weight) place -= kNames[act++].weight;
  return static_cast<Act>(act);
}

// Mostly as between two moves of a thumb, now and then the length of a film.
std::uint32_t RandomWait(Random& random) {
  if (random.OneIn(60)) return random.Below(3 * kHour);
  return random.OneIn(12) ? random.Below(20'000) : random.Below(300);
}

template <typename Names>
int Find(const Names& names, const std::string& word) {
  const auto found = std::find_if(std::begin(names), std::end(names), [&word](const auto& each) {
    if constexpr (requires { each.name; })
      return word == each.name;
    else
      return word == each;
  });
  return found == std::end(names) ? -1 : static_cast<int>(found - std::begin(names));
}

bool ReadStep(const std::string& line, Step* step) {
  std::istringstream words(line);
  std::string act;
  std::string wait;
  if (!(words >> act >> step->a >> step->b >> wait >> step->wait) || wait != "wait") return false;
  const int number = Find(kNames, act);
  if (number < 0) return false;
  step->act = static_cast<Act>(number);
  std::string trouble;
  if (!(words >> trouble)) return true;
  const int kind = Find(kTroubleNames, trouble);
  step->trouble = static_cast<Trouble>(std::max(kind, 0));
  return kind > 0 && static_cast<bool>(words >> step->at);
}

}  // namespace

Script RandomScript(std::uint32_t seed) {
  Random random(seed);
  Script script = {{Act::Begin, 0, random.Below(8), 50}};
  for (std::uint32_t n = 0; n < kSteps; ++n) {
    Step step;
    step.act = RandomAct(random);
    step.a = random.Below(6);
    step.b = random.Below(1000);
    step.wait = RandomWait(random);
    if (Writes(step.act) && random.OneIn(3)) {
      step.trouble = static_cast<Trouble>(random.Between(1, kTroubles - 1));
      step.at = random.Between(1, 40);
    }
    script.push_back(step);
  }
  return script;
}

Script WakefulScript(std::uint32_t seed) {
  constexpr std::uint32_t kLongestWait = 2000;  // ms
  Script script = RandomScript(seed);
  std::erase_if(script, [](const Step& step) {
    return step.act == Act::ReadsFail || step.act == Act::StartFails;
  });
  for (Step& step : script) step.wait = std::min(step.wait, kLongestWait);
  return script;
}

std::string Text(const Script& script) {
  std::string text;
  for (const Step& step : script) {
    text += std::string(kNames[static_cast<int>(step.act)].name) + " " + std::to_string(step.a) +
            " " + std::to_string(step.b) + " wait " + std::to_string(step.wait);
    if (step.trouble != Trouble::None) {
      text += std::string(" ") + kTroubleNames[static_cast<int>(step.trouble)] + " " +
              std::to_string(step.at);
    }
    text += "\n";
  }
  return text;
}

bool ReadScript(const std::string& text, Script* script) {
  script->clear();
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    Step step;
    if (!ReadStep(line, &step)) return false;
    script->push_back(step);
  }
  return true;
}

Script Shrink(const Script& script, const std::function<bool(const Script&)>& fails) {
  Script best = script;
  bool shorter = true;
  const auto tryWith = [&](auto change) {
    Script next = best;
    change(next);
    if (!fails(next)) return false;
    best = next;
    shorter = true;
    return true;
  };
  while (shorter) {
    shorter = false;
    plain::TakeOut([&] { return best.size(); },
                   [&](std::size_t first, std::size_t count) {
                     return tryWith([=](Script& next) {
                       const auto begin = next.begin() + static_cast<std::ptrdiff_t>(first);
                       next.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
                     });
                   });
    for (std::size_t i = 0; i < best.size(); ++i) {
      if (best[i].trouble != Trouble::None)
        tryWith([i](Script& next) { next[i].trouble = Trouble::None; });
      for (std::uint32_t Step::*number : {&Step::a, &Step::b, &Step::wait}) {
        if (best[i].*number != 0) tryWith([=](Script& next) { next[i].*number = 0; });
      }
    }
  }
  return best;
}

}  // namespace kelvaro::swarm
