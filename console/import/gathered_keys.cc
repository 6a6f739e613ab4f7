#include "console/import/gathered_keys.h"

#include <algorithm>

#include "console/import/foreign_keys.h"
#include "console/key_text.h"

namespace kelvaro::console {
namespace {

constexpr std::size_t kLongestText = 1000;

std::string Pause(std::uint32_t ms) {
  return "<P:" + std::to_string(std::min(ms, GatheredKeys::kLongestPause)) + ">";
}

bool IsPause(const std::string& key) { return key.starts_with("<P:"); }

// Whether a text has one step for them, so that they go down together.
bool IsOneStep(const std::vector<std::string>& keys) {
  if (keys.size() < 2) return true;
  std::size_t plain = 0;
  for (const std::string& key : keys) {
    if (IsPause(key) || IsMouseKey(key)) return false;
    if (!IsModifierKey(key)) ++plain;
  }
  return plain == 1;
}

}  // namespace

GatheredKeys::Step& GatheredKeys::Open() {
  if (steps.empty() || steps.back().letGo) {
    steps.emplace_back();
    down.clear();
  }
  return steps.back();
}

void GatheredKeys::Press(const std::string& key) {
  Step& step = Open();
  if (down.insert(key).second) step.keys.push_back(key);
}

void GatheredKeys::Wait(std::uint32_t ms) { Open().keys.push_back(Pause(ms)); }

void GatheredKeys::LetGo(std::uint32_t ms) {
  if (!steps.empty()) steps.back().letGo = true;
  steps.push_back({{Pause(ms)}, true, false});
}

bool GatheredKeys::Type(const std::string& text) {
  if (typed + text.size() > kLongestText) return false;
  std::vector<Step> added;
  for (const char character : text) {
    const std::string key = KeyOfCharacter(character);
    if (key.empty()) return false;
    added.push_back({{key}, true, true});
  }
  if (!steps.empty()) steps.back().letGo = true;
  steps.insert(steps.end(), added.begin(), added.end());
  typed += text.size();
  return true;
}

bool GatheredKeys::HasTaps() const {
  return !steps.empty() && std::any_of(steps.begin(), steps.end() - 1, [](const Step& step) {
    return !std::all_of(step.keys.begin(), step.keys.end(), IsPause);
  });
}

std::string GatheredKeys::Text(bool heldTogether, bool* oneByOne) const {
  std::string text;
  for (const Step& step : steps) {
    std::vector<std::string> keys = step.keys;
    // A modifier joins the key behind it.
    if (!heldTogether && std::none_of(keys.begin(), keys.end(), IsPause)) {
      std::stable_partition(keys.begin(), keys.end(), IsModifierKey);
    }
    if (!heldTogether && !IsOneStep(keys)) *oneByOne = true;
    for (const std::string& key : keys) text += key;
  }
  // Behind a pause nothing is held.
  if (!heldTogether && !steps.empty() && steps.back().typed) text += Pause(1);
  return text;
}

std::unique_ptr<KeyAction> GatheredKeys::Make(bool repeats, std::string* difference) const {
  auto action = std::make_unique<KeyAction>();
  if (steps.size() == 1 && !repeats && !IsOneStep(steps[0].keys)) {
    action->actionFlags = KeyAction::HoldAllKeys;
    if (!ParseKeyText(TextOf(Text(true, nullptr)), action.get()).faulty) return action;
    // The left and the right one of two equal modifiers: the key language counts them as one key.
    action->Clear();
  }
  bool oneByOne = false;
  ParseKeyText(TextOf(Text(false, &oneByOne)), action.get());
  if (oneByOne) *difference = "keys that were down together come one after the other";
  return action;
}

}  // namespace kelvaro::console
