// kelvaroctl play: a key text's keys, once.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/event_printer.h"
#include "console/json_text.h"
#include "console/key_text.h"
#include "console/real_machine.h"
#include "console/stop_signals.h"

namespace kelvaro::console {
namespace {

constexpr int kCountdown = 3;  // seconds

void Press(const PlayOptions& options, KeyAction* action) {
  action->Replay(options.repeat ? 1 : 0, options.holdTime, options.releasePause);
}

int PlaySimulated(const PlayOptions& options, KeyAction* action, Streams streams) {
  platform::simulation::Simulation simulation;
  simulation.KeepEvents(false);
  EventPrinter printer(streams.out, options.json);
  simulation.OnEvent([&printer](const SentEvent& event) { printer.Print(event); });
  Press(options, action);
  if (!options.repeat) {
    platform::Sleep(options.releaseAfter);
    action->Release();
  }
  return kDone;
}

int PlayForReal(const PlayOptions& options, KeyAction* action, Streams streams) {
  StopSignals signals;
  EventPrinter printer(streams.out, true, &StopSignals::Ask);
  RealMachine machine;
  std::string error;
  if (!machine.OpenOutput(options.json ? &printer : nullptr, &error)) {
    return Complain(streams.err, error);
  }
  for (int left = kCountdown; left > 0; --left) {
    streams.err << "Sending " << options.text << " in " << left
                << " s to whatever has the focus; Ctrl-C breaks off." << std::endl;
    if (signals.Wait(1000)) return Complain(streams.err, "broken off, nothing was sent");
  }
  machine.StartOfTime();
  Press(options, action);
  if (!options.repeat) {
    signals.Wait(options.releaseAfter);
    action->Release();
  }
  return machine.EndOfOutput(streams);
}

}  // namespace

int PlayCommand(const PlayOptions& options, Streams streams) {
  KeyAction action;
  if (options.holdAll) action.actionFlags = KeyAction::HoldAllKeys;
  const KeyTextResult parsed = ParseKeyText(FromBytes(options.text), &action);
  if (parsed.faulty) return Complain(streams.err, parsed.what, parsed.detail);
  return options.simulate ? PlaySimulated(options, &action, streams)
                          : PlayForReal(options, &action, streams);
}

}  // namespace kelvaro::console
