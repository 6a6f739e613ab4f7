#include "tests/swarm/instance.h"

#include <cstdio>
#include <cstdlib>

#include "console/profile_json.h"
#include "keys/key_action.h"
#include "tests/console/random_json.h"

namespace kelvaro::swarm {

bool Instance::AnyLockTaken() {
  ControlEngine& engine = Engine();
  return engine.device.deviceLock.IsTaken() || engine.mouseLock.IsTaken() ||
         profile.profileLock.IsTaken() || engine.repeatWorker.repeatLock.IsTaken();
}

void Instance::Take(std::uint32_t content) {
  Profile next;
  FillProfile(content, &next);
  LockGuard guard(profile.profileLock);
  profile.controls.Clear();
  for (const Control& control : next.controls) {
    profile.controls.AddTail(Control());
    profile.controls.tail->value->CopyDeep(control);
  }
  static_cast<MouseSettings&>(profile) = next;
  profile.pollInterval = next.pollInterval;
  profile.RebuildDispatchList();
}

void FillProfile(std::uint32_t content, Profile* profile) {
  if (content == 0) {
    profile->controls.AddTail(Control());
    profile->controls.tail->value->SetButtonMask(1);
    auto* const action = new KeyAction;
    action->ParseKeys("a");
    profile->controls.tail->value->actions.AddTail(action);
    profile->RebuildDispatchList();
    return;
  }
  Random random(content);
  console::JsonFault fault;
  if (console::ReadProfile(RandomJson(random).Profile(), profile, &fault)) return;
  std::fprintf(stderr, "content %u: %s\n", content, fault.Text("profile").c_str());
  std::abort();
}

}  // namespace kelvaro::swarm
