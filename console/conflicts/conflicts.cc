#include "console/conflicts/conflicts.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "app/platform/recording/recording.h"
#include "console/engine_trial.h"
#include "console/fitting_states.h"
#include "console/profile_check.h"
#include "engine/input_text.h"
#include "engine/precedence.h"

namespace kelvaro::console {
namespace {

using platform::StateAtRest;
using States = std::vector<DIJOYSTATE2>;

// What comes of `inner` when these states lead to the one in which both are held. `alone`, where
// there is one, is that in which only the inner is.
Effect Judge(EngineTrial* trial, const Control& outer, const Control& inner, const States& states,
             const std::optional<DIJOYSTATE2>& alone) {
  trial->Play({&inner}, false, states);
  const std::vector<std::size_t> without = trial->firings;
  trial->Play({&outer, &inner}, false, states);
  if (trial->firings == without) return without.empty() ? Effect::Rests : Effect::Fires;
  if (!trial->firings.empty()) return Effect::Late;
  if (!alone) return Effect::Silent;
  States slowly = states;
  slowly.push_back(*alone);
  trial->Play({&outer, &inner}, false, slowly);
  return trial->firings.empty() ? Effect::Silent : Effect::Late;
}

// A state in which the inputs of `control` are held and `other` isn't.
std::optional<DIJOYSTATE2> AloneState(const Control& control, const Control& other) {
  return FindState({&control}, [&](const DIJOYSTATE2& state) {
    return IsHeld(control, state) && !IsHeld(other, state);
  });
}

std::optional<DIJOYSTATE2> SharedState(const Control& one, const Control& other) {
  return FindState({&one, &other}, [&](const DIJOYSTATE2& state) {
    return IsHeld(one, state) && IsHeld(other, state);
  });
}

bool IsAtRest(const DIJOYSTATE2& state) {
  return platform::ChangeBetween(StateAtRest(), state) == platform::StateChange();
}

// Whether it keeps the inner silent in any order.
bool JudgeOrders(EngineTrial* trial, const Control& outer, const Control& inner,
                 Silencing* silencing) {
  const auto both = SharedState(outer, inner);
  if (!both) return false;
  const auto alone = AloneState(inner, outer);
  const DIJOYSTATE2 others = Without(inner, *both);
  silencing->atOnce = Judge(trial, outer, inner, {*both}, alone);
  silencing->first =
      alone ? Judge(trial, outer, inner, {*alone, *both}, alone) : Effect::Impossible;
  silencing->last =
      IsAtRest(others) ? Effect::Impossible : Judge(trial, outer, inner, {others, *both}, alone);
  for (const Effect effect : {silencing->atOnce, silencing->first, silencing->last}) {
    if (effect == Effect::Late || effect == Effect::Silent) return true;
  }
  return false;
}

bool Repeats(const Control& control) { return control.repeatEnabled && control.activateOnPress; }

// Whether `loser`, which is held, stops to repeat when `winner` is held as well.
bool LosesRepeat(EngineTrial* trial, const std::vector<const Control*>& both,
                 std::size_t loserPlace) {
  const Control& loser = *both[loserPlace];
  const Control& winner = *both[1 - loserPlace];
  const auto shared = SharedState(loser, winner);
  if (!shared) return false;
  States states;
  if (const auto alone = AloneState(loser, winner)) states.push_back(*alone);
  states.push_back(*shared);
  trial->Play(both, false, states);
  return trial->repeatLosers.count(static_cast<std::uint32_t>(loserPlace) + 1) > 0;
}

}  // namespace

Conflicts FindConflicts(const Profile& profile) {
  Conflicts conflicts;
  const std::vector<UnfitControl> unfit = ControlsThatNeverFire(profile);
  EngineTrial trial(profile);
  std::vector<std::pair<std::size_t, const Control*>> fit;
  std::size_t place = 0;
  profile.profileLock.NotNeeded();
  for (const Control& control : profile.DispatchList) {
    const auto found = std::find_if(unfit.begin(), unfit.end(), [&](const UnfitControl& each) {
      return each.control == &control;
    });
    if (found == unfit.end()) {
      fit.emplace_back(place, &control);
    } else {
      conflicts.neverFiring.push_back({place, found->why});
    }
    if (Trigger taken; trial.TakenInputs(control, &taken)) {
      ByteString inputs;
      TriggerText(taken, &inputs);
      conflicts.mouseTakings.push_back({place, Bytes(inputs)});
    }
    ++place;
  }
  for (auto later = fit.begin(); later != fit.end(); ++later) {
    for (auto earlier = fit.begin(); earlier != later; ++earlier) {
      Silencing silencing{earlier->first, later->first};
      if (IsContained(*later->second, *earlier->second) &&
          JudgeOrders(&trial, *earlier->second, *later->second, &silencing)) {
        conflicts.silencings.push_back(silencing);
      }
      if (!Repeats(*earlier->second) || !Repeats(*later->second)) continue;
      const std::vector<const Control*> both = {earlier->second, later->second};
      if (LosesRepeat(&trial, both, 0)) {
        conflicts.repeatLosses.push_back({earlier->first, later->first});
      }
      if (LosesRepeat(&trial, both, 1)) {
        conflicts.repeatLosses.push_back({later->first, earlier->first});
      }
    }
  }
  return conflicts;
}

}  // namespace kelvaro::console
