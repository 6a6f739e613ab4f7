#include "tests/swarm/reasons.h"

#include <cstdio>
#include <map>

#include "keys/key_action.h"
#include "tests/model/plain_keys.h"

namespace kelvaro::swarm {
namespace {

using Inputs = Reasons::Inputs;

plain::Action PlainAction(const InputAction& action) {
  const auto& keys = dynamic_cast<const KeyAction&>(action);
  plain::Action plain{keys.HoldsAllKeys(), {}};
  for (const KeyStep& step : keys.steps) plain.steps.push_back({step.vk, step.scan, step.flags});
  return plain;
}

platform::simulation::SentEvent SentOf(const plain::Event& event) {
  return event.isKey
             ? platform::simulation::SentKey(0, static_cast<std::uint8_t>(event.vk),
                                             static_cast<std::uint8_t>(event.scan), event.flags)
             : platform::simulation::SentMouse(0, event.flags, 0, 0, 0);
}

// What a Control's replay leaves down when nothing else interferes.
Inputs LeftDown(const Control& control) {
  HeldInputs left;
  for (const InputAction* action : control.actions) {
    for (const plain::Moment& moment : plain::Replay(PlainAction(*action), false, 0, 0)) {
      if (moment.wait == 0) left.See(SentOf(moment.event));
    }
  }
  return left.Down();
}

// How many actions of the profile have to do with each input.
std::map<HeldInputs::Input, int> Mentions(const Profile& profile) {
  std::map<HeldInputs::Input, int> mentions;
  for (const Control& control : profile.controls) {
    for (const InputAction* action : control.actions) {
      Inputs mentioned;
      for (const plain::Moment& moment : plain::Replay(PlainAction(*action), true, 0, 0)) {
        if (moment.wait != 0) continue;
        plain::Event event = moment.event;
        if (event.isKey) event.flags = 0;  // as a press
        HeldInputs one;
        one.See(SentOf(event));
        mentioned.insert(one.Down().begin(), one.Down().end());
      }
      for (const HeldInputs::Input& input : mentioned) ++mentions[input];
    }
  }
  return mentions;
}

std::string Name(const HeldInputs::Input& input) {
  char name[48];
  std::snprintf(name, sizeof name, input.first == HeldInputs::kMouse ? "mouse %u %u" : "key %x %x",
                input.first, input.second);
  return name;
}

}  // namespace

Inputs Reasons::Explained(ControlEngine& engine) const {
  LockGuard mouse(engine.mouseLock);
  LockGuard guard(engine.profile.profileLock);
  Inputs explained = heldByDetection;
  for (const Control& control : engine.profile.DispatchList) {
    if (control.triggerDown != Control::kDown || control.repeatEnabled) continue;
    explained.merge(LeftDown(control));
  }
  using namespace platform;
  if (engine.leftDown) explained.insert({HeldInputs::kMouse, MOUSEEVENTF_LEFTDOWN});
  if (engine.middleDown) explained.insert({HeldInputs::kMouse, MOUSEEVENTF_MIDDLEDOWN});
  if (engine.rightDown) explained.insert({HeldInputs::kMouse, MOUSEEVENTF_RIGHTDOWN});
  return explained;
}

Inputs Reasons::Demanded(ControlEngine& engine) {
  LockGuard guard(engine.profile.profileLock);
  const auto mentions = Mentions(engine.profile);
  Inputs demanded;
  for (const Control& control : engine.profile.DispatchList) {
    if (control.triggerDown != Control::kDown || control.repeatEnabled) continue;
    for (const HeldInputs::Input& input : LeftDown(control)) {
      if (input.first != HeldInputs::kMouse && mentions.at(input) == 1) demanded.insert(input);
    }
  }
  return demanded;
}

void Reasons::NoteExceptions(const ControlEngine& engine, const HeldInputs& held) {
  for (const HeldInputs::Input& input : held.Down()) {
    if (input.first == HeldInputs::kMouse && engine.IsDetecting()) heldByDetection.insert(input);
  }
  std::erase_if(heldByDetection, [&](const auto& input) { return !held.Down().contains(input); });
}

std::string Reasons::Disagreement(ControlEngine& engine, const HeldInputs& held) {
  NoteExceptions(engine, held);
  const Inputs explained = Explained(engine);
  std::string text;
  for (const HeldInputs::Input& input : held.Down()) {
    if (!explained.contains(input)) text += Name(input) + " is down for no reason; ";
  }
  for (const HeldInputs::Input& input : Demanded(engine)) {
    if (!held.Down().contains(input)) text += Name(input) + " ought to be down; ";
  }
  return text;
}

std::string Reasons::LeftAtTheEnd(const HeldInputs& held) const {
  std::string text;
  for (const HeldInputs::Input& input : held.Down()) {
    if (!heldByDetection.contains(input)) text += Name(input) + " is still down; ";
  }
  return text;
}

}  // namespace kelvaro::swarm
