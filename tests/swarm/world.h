// A simulated machine with three pads, a folder of profiles and two instances of the program, and
// what always holds there: a script's steps happen, and after each one all of it is looked at.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/swarm/script.h"

namespace kelvaro::swarm {

class Instance;

class World {
 public:
  World();
  ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  // The first thing that doesn't hold after it; empty when all does.
  std::string Do(const Step& step);
  // Ends what runs.
  std::string End();

  std::uint64_t Now() const { return simulation.Now(); }
  platform::simulation::Simulation& Machine() { return simulation; }
  std::uint64_t presses = 0;  // sent so far

  // For the instances: who sends what the calling thread sends from now on.
  void NoteSender(int instance);

 private:
  struct Pad {
    platform::SimulatedDevice* device = nullptr;
    std::uint32_t held = 0;
    bool isLost = false;
    bool isUnplugged = false;
  };
  // What a file may hold after the step; none for no file.
  using States = std::vector<std::optional<std::string>>;
  // Bytes of a file that an instance found damaged: they must not be lost.
  struct Found {
    std::string path;
    std::string bytes;
  };

  void Fault(const std::string& text);
  void Require(bool holds, const std::string& text) {
    if (!holds) Fault(text);
  }

  void Perform(const Step& step);
  void PlayPad(const Step& step);
  void Begin(int number, const std::string& name);
  void AfterSelection(Instance& instance);
  void EndInstance(int number);
  void Steer(Instance& instance, const Step& step);
  void Select(Instance& instance, const std::string& name);
  void Edit(Instance& instance, const Step& step);
  void SaveAs(Instance& instance, const std::string& name, const Step& step);
  void Rename(Instance& instance, const std::string& name, const Step& step);
  void Delete(const std::string& name, const Step& step);
  void Cut(const std::string& name, std::uint32_t bytes);
  void Arm(const Step& step);
  void EndTrouble(const Step& step);
  // The instance's thread of the caller's calls until the next of these.
  void ActFor(int number);
  bool Loaded(Instance& instance, const std::string& path);
  // `path` is written by an instance: what it had found damaged there may go where it never read
  // it.
  void Written(const Instance& instance, const std::string& path);

  void Settle(Instance& instance);
  void Check();
  void CheckKeys(Instance& instance);
  void CheckFollows(Instance& instance);
  void CheckFiles();
  void CheckList();
  void CheckFound();
  void CheckHandles();

  const Pad* PadOf(Instance& instance) const;
  std::optional<std::string> BytesAt(const std::string& path);
  // Of the profile as a save would write it.
  std::string BytesOf(Instance& instance);

  platform::simulation::Simulation simulation;
  std::vector<Pad> pads;
  std::vector<std::unique_ptr<Instance>> instances;  // null where none runs
  std::map<std::int32_t, int> senders;               // threads
  std::string fault;
  bool startFails = false;  // at the next selection of a device

  std::map<std::string, std::string> files;     // what the profiles' files hold
  std::map<std::string, States> changing;       // in this step
  bool isTroubled = false;                      // the disk, in this step
  std::map<std::string, std::string> leftOver;  // temporaries, at the last look
  std::set<std::string> cut;
  std::vector<Found> found;
  std::function<void()> afterTrouble;  // looks at a change that concerns two files
};

// The whole script in a world of its own: "step 7, Edit: ..." of the first thing that doesn't hold,
// or empty. Adds up what was lived through.
struct Lived {
  std::uint64_t ms = 0;
  std::uint64_t presses = 0;
  std::uint64_t steps = 0;
};
std::string Play(const Script& script, Lived* lived = nullptr);

// All that is sent in it, with timers that sleep where nothing can happen or with such that never
// do. What fails by its count, such as the next ten polls, has no place in such a script.
std::string Sent(const Script& script, bool timersSleep);

}  // namespace kelvaro::swarm
