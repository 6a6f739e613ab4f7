// What the conflicts of random profiles are, against a plain telling of the rules: Triggers as sets
// of inputs, and the play of two Controls as a list of moments.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "app/platform/recording/recording.h"
#include "console/conflicts/conflicts.h"
#include "console/file_machine.h"
#include "tests/console/random.h"
#include "tests/engine/trigger_model.h"

namespace kelvaro::console {
namespace {

using Moments = std::set<int>;
using States = std::vector<DIJOYSTATE2>;

struct ModelControl {
  ModelTrigger trigger;
  bool repeats = false;
};

// "B3", "X0", "hat 1"
std::set<std::string> InputNames(const ModelTrigger& trigger) {
  std::set<std::string> names;
  for (const int button : trigger.buttons) names.insert("B" + std::to_string(button));
  for (const TriggerItem& item : trigger.items) {
    names.insert((item.kind == 8 ? "hat " : "axis " + std::to_string(item.kind) + " ") +
                 std::to_string(item.index));
  }
  return names;
}

bool Includes(const std::set<std::string>& all, const std::set<std::string>& some) {
  return std::includes(all.begin(), all.end(), some.begin(), some.end());
}

bool IsComplete(ModelTrigger trigger, const DIJOYSTATE2& state) {
  trigger.press = true;
  trigger.armed = false;
  return ModelEvaluate(&trigger, state);
}

// All states in which exactly these inputs are pushed, the first hat turning fastest.
States StatesOf(const std::vector<const ModelControl*>& controls) {
  DIJOYSTATE2 state = platform::StateAtRest();
  std::vector<int> hats;
  for (const ModelControl* control : controls) {
    for (const int button : control->trigger.buttons) state.rgbButtons[button] = 255;
    for (const TriggerItem& item : control->trigger.items) {
      if (item.kind == 0) state.lX = item.value == 1 ? -32000 : 32000;
      if (item.kind == 1) state.lY = item.value == 1 ? -32000 : 32000;
      if (item.kind == 8 && std::count(hats.begin(), hats.end(), item.index) == 0) {
        hats.push_back(item.index);
      }
    }
  }
  States states = {state};
  for (auto hat = hats.rbegin(); hat != hats.rend(); ++hat) {
    States more;
    for (const DIJOYSTATE2& each : states) {
      for (std::uint32_t angle = 0; angle < 36000; angle += 4500) {
        more.push_back(each);
        more.back().rgdwPOV[*hat] = angle;
      }
    }
    states = more;
  }
  return states;
}

std::optional<DIJOYSTATE2> StateWith(const std::vector<const ModelControl*>& held,
                                     const ModelControl* notHeld = nullptr) {
  for (const DIJOYSTATE2& state : StatesOf(held)) {
    bool fits = !notHeld || !IsComplete(notHeld->trigger, state);
    for (const ModelControl* each : held) fits = fits && IsComplete(each->trigger, state);
    if (fits) return state;
  }
  return std::nullopt;
}

// When each of them fires, and whether the first and the second lose their repeat.
struct Play {
  std::vector<Moments> firings;
  std::set<int> losers;
};

Play Played(const std::vector<ModelControl>& controls, States states) {
  states.push_back(platform::StateAtRest());
  std::vector<ModelTrigger> triggers;
  for (const ModelControl& each : controls) triggers.push_back(each.trigger);
  std::vector<bool> down(controls.size());
  Play play;
  play.firings.resize(controls.size());
  int slot = -1;
  for (int moment = 0; moment < static_cast<int>(states.size()); ++moment) {
    std::vector<std::set<std::string>> active;
    for (std::size_t i = 0; i < controls.size(); ++i) {
      if (!ModelEvaluate(&triggers[i], states[moment])) {
        down[i] = false;
        if (slot == static_cast<int>(i)) slot = -1;
        continue;
      }
      const std::set<std::string> inputs = InputNames(triggers[i]);
      if (std::any_of(active.begin(), active.end(),
                      [&](const auto& other) { return Includes(other, inputs); })) {
        continue;
      }
      active.push_back(inputs);
      if (down[i]) continue;
      play.firings[i].insert(moment);
      if (!triggers[i].press) continue;
      down[i] = true;
      if (!controls[i].repeats) continue;
      if (slot >= 0) play.losers.insert(slot);
      slot = static_cast<int>(i);
    }
  }
  return play;
}

std::string ModelOutcome(const ModelControl& outer, const ModelControl& inner, States states) {
  const Moments without = Played({inner}, states).firings[0];
  const Moments with = Played({outer, inner}, states).firings[1];
  if (with == without) return with.empty() ? "rests" : "fires";
  if (!with.empty()) return "late";
  const auto alone = StateWith({&inner}, &outer);
  if (!alone) return "silent";
  states.push_back(*alone);
  return Played({outer, inner}, states).firings[1].empty() ? "silent" : "late";
}

// "at once, first, last"; "" where nothing is silenced.
std::string ModelSilencing(const ModelControl& outer, const ModelControl& inner) {
  if (!Includes(InputNames(outer.trigger), InputNames(inner.trigger))) return "";
  const auto both = StateWith({&outer, &inner});
  if (!both) return "";
  const auto alone = StateWith({&inner}, &outer);
  DIJOYSTATE2 others = *both;
  for (const int button : inner.trigger.buttons) others.rgbButtons[button] = 0;
  for (const TriggerItem& item : inner.trigger.items) {
    if (item.kind == 0) others.lX = 0;
    if (item.kind == 1) others.lY = 0;
    if (item.kind == 8) others.rgdwPOV[item.index] = 0xFFFFFFFF;
  }
  const bool hasOthers = InputNames(outer.trigger) != InputNames(inner.trigger);
  const std::string text = ModelOutcome(outer, inner, {*both}) + ", " +
                           (alone ? ModelOutcome(outer, inner, {*alone, *both}) : "-") + ", " +
                           (hasOthers ? ModelOutcome(outer, inner, {others, *both}) : "-");
  const bool any = text.find("late") != std::string::npos || text.find("silent") != text.npos;
  return any ? text : "";
}

bool ModelLosesRepeat(const std::vector<ModelControl>& both, int loser) {
  for (const ModelControl& each : both) {
    if (!each.repeats || !each.trigger.press) return false;
  }
  const auto shared = StateWith({&both[loser], &both[1 - loser]});
  if (!shared) return false;
  States states = {*shared};
  if (const auto alone = StateWith({&both[loser]}, &both[1 - loser])) {
    states.insert(states.begin(), *alone);
  }
  return Played(both, states).losers.count(loser) > 0;
}

// Few inputs, so that many contain others.
ModelControl MakeControl(Random* random) {
  ModelControl control;
  control.trigger.press = !random->OneIn(3);
  control.repeats = random->OneIn(2);
  for (std::uint32_t n = random->Below(3); n > 0; --n) {
    control.trigger.buttons.insert(static_cast<int>(random->Below(3)));
  }
  for (std::uint16_t kind : {0, 1}) {
    if (!random->OneIn(4)) continue;
    control.trigger.items.push_back({kind, 0, static_cast<std::uint16_t>(random->Between(1, 2))});
  }
  for (std::uint32_t n = random->OneIn(3) ? random->Between(1, 2) : 0; n > 0; --n) {
    control.trigger.items.push_back({8, static_cast<std::uint16_t>(random->Below(2)),
                                     static_cast<std::uint16_t>(random->Between(0, 15))});
  }
  return control;
}

void AddTo(Profile* profile, const ModelControl& from) {
  profile->controls.AddTail({});
  Control& control = *profile->controls.tail->value;
  control.controlId = static_cast<std::uint32_t>(profile->controls.count);
  control.activateOnPress = from.trigger.press;
  control.repeatEnabled = from.repeats;
  std::uint64_t mask = 0;
  for (const int button : from.trigger.buttons) mask |= std::uint64_t{1} << button;
  control.SetButtonMask(mask);
  for (const TriggerItem& item : from.trigger.items) control.triggerItems.AddTail(item);
}

// What of the Control the mouse has, as text; "" for nothing.
std::string TakenInputs(const ModelControl& control, int mouseButton, TriggerItem mouseX) {
  if (!StateWith({&control})) return "";
  std::string text;
  const auto add = [&text](const std::string& name) { text += (text.empty() ? "" : "+") + name; };
  if (control.trigger.buttons.count(mouseButton)) add("B" + std::to_string(mouseButton + 1));
  for (const TriggerItem& item : control.trigger.items) {
    if (item.kind != mouseX.kind || item.index != mouseX.index) continue;
    if (item.kind < 8) {
      add(std::string(item.kind == 0 ? "Axis_X0" : "Axis_Y0") +
          (item.value == 1 ? "(neg)" : "(pos)"));
      continue;
    }
    add("POV" + std::to_string(item.index));
  }
  return text;
}

// Without the directions of hats.
std::string Plain(std::string text) {
  for (std::size_t at; (at = text.find("POV")) != std::string::npos;) {
    const std::size_t end = text.find(')', at);
    text = text.substr(0, at) + "hat " + text[at + 3] + text.substr(end + 1);
  }
  for (std::size_t at; (at = text.find("hat ")) != std::string::npos;) text.replace(at, 4, "POV");
  return text;
}

// Of Triggers that want the same, on press or when let go.
using Wishes = std::tuple<bool, std::set<int>, std::set<std::tuple<int, int, int>>>;
Wishes WishesOf(const ModelTrigger& trigger) {
  std::set<std::tuple<int, int, int>> items;
  for (const TriggerItem& item : trigger.items) items.insert({item.kind, item.index, item.value});
  return {trigger.press, trigger.buttons, items};
}

// What the model makes of the Controls, in the order of the DispatchList, a text for each finding.
std::set<std::string> Expected(const std::vector<ModelControl>& controls, int mouseButton,
                               TriggerItem mouseX) {
  std::set<std::string> expected;
  std::set<Wishes> before;
  std::vector<std::size_t> firing;
  for (std::size_t i = 0; i < controls.size(); ++i) {
    const std::string place = std::to_string(i);
    if (StateWith({&controls[i]}) && before.insert(WishesOf(controls[i].trigger)).second) {
      firing.push_back(i);
    } else {
      expected.insert(place + " never");
    }
    const std::string taken = TakenInputs(controls[i], mouseButton, mouseX);
    if (!taken.empty()) expected.insert(place + " loses " + taken);
  }
  for (const std::size_t i : firing) {
    for (const std::size_t j : firing) {
      if (i >= j) continue;
      const std::string a = std::to_string(i);
      const std::string b = std::to_string(j);
      const std::string silencing = ModelSilencing(controls[i], controls[j]);
      if (!silencing.empty()) expected.insert(a + " over " + b + ": " + silencing);
      if (ModelLosesRepeat({controls[i], controls[j]}, 0)) expected.insert(a + " lost to " + b);
      if (ModelLosesRepeat({controls[i], controls[j]}, 1)) expected.insert(b + " lost to " + a);
    }
  }
  return expected;
}

// The same of what is found; *seen counts the kinds.
std::set<std::string> Found(const Conflicts& conflicts, std::map<std::string, int>* seen) {
  static const char* const kWords[] = {"-", "fires", "late", "silent", "rests"};
  const auto word = [](Effect effect) {
    return std::string(kWords[static_cast<std::size_t>(effect)]);
  };
  std::set<std::string> found;
  const auto add = [&](std::size_t place, const std::string& what, const std::string& kind) {
    found.insert(std::to_string(place) + what);
    ++(*seen)[kind];
  };
  for (const NeverFiring& each : conflicts.neverFiring) add(each.control, " never", "never");
  for (const MouseTaking& each : conflicts.mouseTakings) {
    add(each.control, " loses " + Plain(each.inputs), "loses");
  }
  for (const Silencing& each : conflicts.silencings) {
    const std::string effects =
        word(each.atOnce) + ", " + word(each.first) + ", " + word(each.last);
    add(each.by, " over " + std::to_string(each.silenced) + ": " + effects, effects);
  }
  for (const RepeatLoss& each : conflicts.repeatLosses) {
    add(each.loser, " lost to " + std::to_string(each.winner), "lost");
  }
  return found;
}

TEST(ConflictsModel, AgreesOnRandomProfiles) {
  const FileMachine machine;
  std::map<std::string, int> seen;
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    Random random(seed);
    std::vector<ModelControl> made;
    Profile profile;
    for (std::uint32_t n = random.Between(2, 9); n > 0; --n) {
      made.push_back(MakeControl(&random));
      AddTo(&profile, made.back());
    }
    profile.RebuildDispatchList();
    const int mouseButton = static_cast<int>(random.Below(4));
    const TriggerItem mouseX =
        MouseInput(static_cast<std::uint16_t>(random.OneIn(3) ? 8 : random.Below(2)));
    profile.rightMask = std::uint64_t{1} << mouseButton;
    profile.mouseX = mouseX;
    std::vector<ModelControl> controls;
    for (const Control& control : profile.DispatchList) {
      controls.push_back(made[control.controlId - 1]);
    }
    ASSERT_EQ(Found(FindConflicts(profile), &seen), Expected(controls, mouseButton, mouseX))
        << "seed " << seed;
  }
  // The profiles got everywhere.
  for (const char* what : {"never", "loses", "lost", "late, fires, late", "fires, late, rests",
                           "silent, fires, silent", "late, fires, rests"}) {
    EXPECT_GT(seen[what], 20) << what;
  }
}

}  // namespace
}  // namespace kelvaro::console
