// What happens in a world, step by step, as text that a person can read and a test can keep. A step
// means something in any world: its numbers are taken modulo what there is. So each script that is
// left when steps are taken out is a script, too.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelvaro::swarm {

enum class Act : std::uint8_t {
  Wait,
  Pad,         // pad `a` changes as the number `b` says
  HandsOff,    // pad `a`
  Lose,        // pad `a` answers no more
  Return,      // and does again
  Unplug,      // pad `a`
  PlugIn,      //
  ReadsFail,   // of each pad, `a` chooses which, up to `b` times
  StartFails,  // the operation `a` of those that a selected pad needs fails once
  Begin,       // instance `a` opens the profile `b`
  End,         // instance `a`
  Select,      // instance `a` opens the profile `b` instead
  Pause,       // instance `a`
  Resume,      //
  ReleaseAll,  //
  TestMode,    // instance `a`, on or off
  AlwaysOn,    // the mouse controls of instance `a`
  Slider,      // of the mouse of instance `a`, to `b`
  Detect,      // instance `a` begins or ends to detect an input of the mouse
  Edit,        // the profile of instance `a` gets the content that the number `b` stands for
  Copy,        // the profile of instance `a` under the name `b`
  Rename,      // the same, and the old file goes
  Delete,      // the stored profile `b`
  Cut,         // the file of the stored profile `a` to so many of its bytes
  Wrap,        // the tick count is about to wrap, in `a` ms
};
constexpr int kActs = static_cast<int>(Act::Wrap) + 1;

// What goes wrong with the disk at a step.
enum class Trouble : std::uint8_t { None, Fails, Full, PowerCut };
constexpr int kTroubles = static_cast<int>(Trouble::PowerCut) + 1;

struct Step {
  Act act = Act::Wait;
  std::uint32_t a = 0;
  std::uint32_t b = 0;
  std::uint32_t wait = 0;  // ms that pass afterwards
  Trouble trouble = Trouble::None;
  std::uint32_t at = 0;  // which operation of the disk from the step's beginning on, from 1
};

using Script = std::vector<Step>;

Script RandomScript(std::uint32_t seed);
// One without long waits, and without what fails so often, or at its next call, whoever makes it:
// for timers that never sleep, which make more calls.
Script WakefulScript(std::uint32_t seed);

// A line for each step, such as "Pad 1 17 wait 40" or "Edit 0 5 wait 20 PowerCut 7".
std::string Text(const Script& script);
// Lines that begin with '#' are left out. False for what isn't a script.
bool ReadScript(const std::string& text, Script* script);

// As short as can be while it still fails.
Script Shrink(const Script& script, const std::function<bool(const Script&)>& fails);

}  // namespace kelvaro::swarm
