// kelvaroctl watch: what a device does, for people.

#include <optional>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/device_watch.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/stop_signals.h"
#include "engine/input_text.h"

namespace kelvaro::console {
namespace {

using platform::DIJOYSTATE2;

std::string StateText(const DIJOYSTATE2& state) {
  DeviceSnapshot snapshot;
  UpdateSnapshot(&snapshot, state);
  ByteString text;
  Trigger trigger;
  CaptureTrigger(DeviceManager::axisMax, snapshot, &text, &trigger);
  return Bytes(text);
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
  streams.err << "Watching '" << watch.Description().name << "'; Ctrl-C ends it." << std::endl;
  signals.Wait(options.until);
  return kDone;
}

}  // namespace kelvaro::console
