// kelvaroctl watch and record: what a device does, for people and for --replay.

#include <functional>
#include <mutex>
#include <optional>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/device_choice.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/stop_signals.h"
#include "engine/input_text.h"

namespace kelvaro::console {
namespace {

using platform::AxisField;
using platform::AxisName;
using platform::DIJOYSTATE2;
using platform::StateChange;

constexpr std::uint32_t kPollInterval = 5;  // ms

// A device that is only looked at.
class DeviceWatch {
 public:
  // Gets each changed state with its time in ms, on the notification thread.
  using Visit = std::function<void(std::uint64_t t, const DIJOYSTATE2& state)>;

  DeviceWatch() : manager(platform::kNoWindow) {}
  ~DeviceWatch() { manager.StopDevice(); }

  bool Begin(const std::optional<std::string>& name, Visit visitor, std::string* error) {
    visit = std::move(visitor);
    manager.SetPollInterval(kPollInterval);
    manager.SetChangeCallback(OnChange, this);
    manager.EnableChangeCallback();
    begin = platform::GetTickCount();
    DeviceChoice choice;
    choice.name = name;
    return SelectChosenDevice(&manager, choice, error);
  }

  const DeviceManager& Manager() const { return manager; }

 private:
  static void OnChange(DeviceManager*, const DIJOYSTATE2* state, void* self) {
    auto* watch = static_cast<DeviceWatch*>(self);
    watch->visit(platform::GetTickCount() - watch->begin, *state);
  }

  Visit visit;
  std::uint32_t begin = 0;
  DeviceManager manager;
};

std::string StateText(const DIJOYSTATE2& state) {
  DeviceSnapshot snapshot;
  UpdateSnapshot(&snapshot, state);
  ByteString text;
  Trigger trigger;
  CaptureTrigger(DeviceManager::axisMax, snapshot, &text, &trigger);
  return Bytes(text);
}

// What a state has that the one before it hadn't.
StateChange Difference(const DIJOYSTATE2& before, const DIJOYSTATE2& after) {
  StateChange change;
  for (std::uint32_t i = 0; i < 128; ++i) {
    change.hasButtons |= (before.rgbButtons[i] != 0) != (after.rgbButtons[i] != 0);
    if (after.rgbButtons[i] != 0) change.buttons.push_back(i + 1);
  }
  DIJOYSTATE2 old = before;
  DIJOYSTATE2 now = after;
  for (std::uint16_t bank = 0; bank < 4; ++bank) {
    for (std::uint16_t kind = 0; kind <= input_kind::kSliderB; ++kind) {
      const AxisName axis{kind, bank};
      const std::int32_t value = *AxisField(&now, axis);
      if (value != *AxisField(&old, axis)) change.axes.emplace_back(axis, value);
    }
  }
  for (std::uint32_t hat = 0; hat < 4; ++hat) {
    if (before.rgdwPOV[hat] != after.rgdwPOV[hat]) {
      change.povs.emplace_back(hat, after.rgdwPOV[hat]);
    }
  }
  return change;
}

bool IsEmpty(const StateChange& change) {
  return !change.hasButtons && change.axes.empty() && change.povs.empty();
}

}  // namespace

int WatchCommand(const WatchOptions& options, Streams streams) {
  StopSignals signals;
  RealMachine machine;
  std::optional<std::string> last;
  // Many states read alike: a stick that moves within its first half changes no name.
  const auto show = [&](std::uint64_t t, const DIJOYSTATE2& state) {
    const std::string text = StateText(state);
    if (text == last) return;
    last = text;
    if (options.json) {
      streams.out << "{\"t\":" << t << ",\"text\":" << JsonText(text) << "}" << std::endl;
    } else {
      streams.out << (text.empty() ? "(nothing)" : text) << std::endl;
    }
    if (!streams.out) StopSignals::Ask();
  };
  DeviceWatch watch;  // behind what its thread uses, so that it ends first
  std::string error;
  if (!watch.Begin(options.device, show, &error)) return Complain(streams.err, error);
  streams.err << "Watching '" << Bytes(watch.Manager().SelectedName()) << "'; Ctrl-C ends it."
              << std::endl;
  signals.Wait(options.until);
  return kDone;
}

int RecordCommand(const RecordOptions& options, Streams streams) {
  StopSignals signals;
  RealMachine machine;
  std::mutex outMutex;  // the first line is this thread's, the others the notification thread's
  bool headerWritten = false;
  DIJOYSTATE2 last = platform::StateAtRest();
  std::string pending;
  const auto note = [&](std::uint64_t t, const DIJOYSTATE2& state) {
    StateChange change = Difference(last, state);
    last = state;
    if (IsEmpty(change)) return;
    change.t = t;
    const std::string line = RecordingChangeLine(change) + "\n";
    const std::lock_guard<std::mutex> whole(outMutex);
    if (headerWritten) {
      streams.out << line << std::flush;
    } else {
      pending += line;
    }
    if (!streams.out) StopSignals::Ask();
  };
  DeviceWatch watch;  // behind what its thread uses, so that it ends first
  std::string error;
  if (!watch.Begin(options.device, note, &error)) return Complain(streams.err, error);
  {
    const DeviceManager& manager = watch.Manager();
    platform::DeviceDescription device;
    device.name = Bytes(manager.SelectedName());
    device.guid = manager.SelectedGuid();
    device.buttons = manager.DeviceCaps().dwButtons;
    device.axes = manager.DeviceCaps().dwAxes;
    device.povs = manager.DeviceCaps().dwPOVs;
    const std::lock_guard<std::mutex> whole(outMutex);
    streams.out << platform::RecordingHeaderLine(device) << '\n' << pending << std::flush;
    headerWritten = true;
  }
  streams.err << "Recording '" << Bytes(watch.Manager().SelectedName()) << "'; Ctrl-C ends it."
              << std::endl;
  signals.Wait(options.until);
  return kDone;
}

}  // namespace kelvaro::console
