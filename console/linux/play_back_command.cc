// kelvaroctl play-back: a recording as a pad for all programs of the machine.

#include <chrono>
#include <memory>

#include "app/platform/linux/linux_input.h"
#include "app/platform/linux/virtual_pad.h"
#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/run_choice.h"
#include "console/stop_signals.h"

namespace kelvaro::console {
namespace {

using platform::Recording;
using platform::VirtualPad;
using Clock = std::chrono::steady_clock;

// What the recording is of. A recording says how many axes there were, and names those that moved.
platform::VirtualPadShape ShapeOf(const Recording& recording) {
  platform::VirtualPadShape shape;
  shape.name = recording.device.name;
  shape.buttons = recording.device.buttons;
  shape.hats = recording.device.povs;
  for (const platform::StateChange& change : recording.changes)
    for (const auto& [axis, value] : change.axes) shape.axes.set(axis.kind);
  for (std::size_t slot = 0; slot < shape.axes.size(); ++slot)
    if (shape.axes.count() < recording.device.axes) shape.axes.set(slot);
  return shape;
}

// The first axis that no pad of the kernel's has; empty where there is none.
std::string Unplayable(const Recording& recording) {
  for (const platform::StateChange& change : recording.changes)
    for (const auto& [axis, value] : change.axes)
      if (axis.bank != 0)
        return "at " + std::to_string(change.t) + " ms: a pad can't have " + AxisNameText(axis);
  return {};
}

class Playing {
 public:
  explicit Playing(const Recording& recording)
      : recording(recording), state(platform::StateAtRest()) {}

  // False with the reason where the pad can't be made.
  bool PlugIn(std::string* error) {
    int errorCode = 0;
    pad = VirtualPad::Open(ShapeOf(recording), &errorCode);
    if (!pad) *error = "can't make a pad: " + platform::UinputAdvice(errorCode);
    return pad != nullptr;
  }

  // To the end, or until a signal comes. False with the reason where the kernel doesn't take it.
  bool Play(std::optional<std::uint64_t> until, StopSignals* signals, std::string* error) {
    const auto begin = Clock::now();
    const auto waitFor = [&](std::uint64_t t) {
      const auto left = begin + std::chrono::milliseconds(t) - Clock::now();
      const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
      return signals->Wait(ms > 0 ? static_cast<std::uint64_t>(ms) : 0);
    };
    for (const platform::StateChange& change : recording.changes) {
      if (until && change.t > *until) return waitFor(*until), true;
      if (waitFor(change.t)) return true;
      if (!Make(change, error)) return false;
    }
    waitFor(until ? *until : recording.Length() + kAfterRecording);
    return true;
  }

 private:
  bool Make(const platform::StateChange& change, std::string* error) {
    ApplyChange(change, &state);
    if (change.hasLost && change.lost) pad.reset();
    if (change.hasLost && !change.lost && !pad && !PlugIn(error)) return false;
    int errorCode = 0;
    if (!pad || pad->Send(pad->ReportOf(state), &errorCode)) return true;
    *error = "the pad can't be moved: " + platform::UinputAdvice(errorCode);
    return false;
  }

  const Recording& recording;
  platform::DIJOYSTATE2 state;
  std::unique_ptr<VirtualPad> pad;  // null while it is pulled out
};

}  // namespace

int PlayBackCommand(const PlayBackOptions& options, Streams streams) {
  Recording recording;
  if (const int status = ReadReplay(options.recording, &recording, streams); status != kDone)
    return status;
  const auto complain = [&](const std::string& what) {
    return Complain(streams.err, options.recording + ": " + what);
  };
  if (const std::string fault = Unplayable(recording); !fault.empty()) return complain(fault);
  StopSignals signals;
  Playing playing(recording);
  std::string error;
  if (!playing.PlugIn(&error)) return Complain(streams.err, error);
  streams.err << "'" << recording.device.name << "' is plugged in, for all programs, and moves in "
              << options.delay << " ms; Ctrl-C ends it." << std::endl;
  if (signals.Wait(options.delay)) return kDone;
  return playing.Play(options.until, &signals, &error) ? kDone : complain(error);
}

}  // namespace kelvaro::console
