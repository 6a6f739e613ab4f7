// kelvaroctl record: what a device does, for --replay.

#include <mutex>

#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/device_watch.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/stop_signals.h"

namespace kelvaro::console {
int RecordCommand(const RecordOptions& options, Streams streams) {
  StopSignals signals;
  RealMachine machine;
  std::mutex outMutex;  // the first line is this thread's, the others the notification thread's
  bool headerWritten = false;
  platform::DIJOYSTATE2 last = platform::StateAtRest();
  std::string pending;
  const auto note = [&](std::uint64_t t, const platform::DIJOYSTATE2& state) {
    platform::StateChange change = platform::ChangeBetween(last, state);
    if (change == platform::StateChange()) return;
    last = state;
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
  const platform::DeviceDescription device = watch.Description();
  {
    const std::lock_guard<std::mutex> whole(outMutex);
    streams.out << platform::RecordingHeaderLine(device) << '\n' << pending << std::flush;
    headerWritten = true;
  }
  streams.err << "Recording '" << device.name << "'; Ctrl-C ends it." << std::endl;
  signals.Wait(options.until);
  return kDone;
}

}  // namespace kelvaro::console
