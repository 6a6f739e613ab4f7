// One running program, with what it sends.
#pragma once

#include <string>

#include "console/engine_session.h"
#include "engine/dispatch_observer.h"
#include "storage/profile_file.h"
#include "tests/console/held_inputs.h"
#include "tests/swarm/reasons.h"
#include "tests/swarm/world.h"

namespace kelvaro::swarm {

class Instance final : private DispatchObserver {
 public:
  Instance(World& world, int number) : number(number), world(world) { session.SetObserver(this); }

  ControlEngine& Engine() { return session.Engine(); }
  bool AnyLockTaken();
  void NoteExceptions() { reasons.NoteExceptions(Engine(), held); }
  // See Reasons.
  std::string Disagreement() {
    return runs ? reasons.Disagreement(Engine(), held) : reasons.LeftAtTheEnd(held);
  }
  // Another content for the profile.
  void Take(std::uint32_t content);

  const int number;
  ProfileFile profile;
  console::EngineSession session{profile};
  HeldInputs held;
  bool runs = false;
  // The exception to seeing its pad: a timer or thread that couldn't be had when it was selected.
  bool isDeaf = false;

 private:
  void ChangeBegins(const DeviceSnapshot&) override { world.NoteSender(number); }
  void ChangeEnds() override {}
  void MouseTakes(std::uint64_t) override {}
  void ControlJudged(const Control&, Verdict, const Control*) override {}
  void MouseSwitched(bool) override {}
  void RepeatLost(const Control&, const Control&) override {}
  void Repeats(const Control&) override { world.NoteSender(number); }

  World& world;
  Reasons reasons;
};

// A profile's content by number; 0 is a plain one.
void FillProfile(std::uint32_t content, Profile* profile);

}  // namespace kelvaro::swarm
