// kelvaroctl play: a key text's keys, once.

#include "app/platform/simulation/simulation.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/event_printer.h"
#include "console/json_text.h"
#include "console/key_text.h"
#include "console/real_machine.h"
#include "console/stop_signals.h"
#include "console/stoppable_replay.h"

namespace kelvaro::console {
namespace {

constexpr int kCountdown = 3;  // seconds

void Play(const PlayOptions& options, KeyAction* action) {
  action->Replay(options.repeat ? 1 : 0, options.holdTime, options.releasePause);
  if (options.repeat) return;
  platform::clock().Sleep(options.releaseAfter);
  action->Release();
}

int PlaySimulated(const PlayOptions& options, KeyAction* action, Streams streams) {
  platform::simulation::Simulation simulation;
  simulation.KeepEvents(false);
  EventPrinter printer(streams.out, options.json);
  simulation.OnEvent([&printer](const SentEvent& event) { printer.Print(event); });
  Play(options, action);
  return kDone;
}

int PlayForReal(const PlayOptions& options, KeyAction* action, StopSignals* signals,
                Streams streams) {
  EventPrinter printer(streams.out, true, &StopSignals::Ask);
  RealMachine machine;
  std::string error;
  if (!machine.OpenOutput(options.json ? &printer : nullptr, &error)) {
    return Complain(streams.err, error);
  }
  for (int left = kCountdown; left > 0; --left) {
    streams.err << "Sending " << options.text << " in " << left
                << " s to whatever has the focus; Ctrl-C breaks off." << std::endl;
    if (signals->Wait(1000)) return Complain(streams.err, "broken off, nothing was sent");
  }
  machine.StartOfTime();

  platform::Platform groups = machine.Groups();
  StoppableReplay stoppable(*groups.clock, *groups.input, *signals);
  groups.clock = &stoppable;
  groups.input = &stoppable;
  {
    const platform::InstalledPlatform installed(groups);
    Play(options, action);
  }
  if (signals->Wait(0)) {
    stoppable.LetGo();
    Complain(streams.err, "broken off, what was down is let go");
  }
  return machine.EndOfOutput(streams);
}

}  // namespace

int PlayCommand(const PlayOptions& options, Streams streams) {
  KeyAction action;
  if (options.holdAll) action.actionFlags = KeyAction::HoldAllKeys;
  const KeyTextResult parsed = ParseKeyText(TextOf(options.text), &action);
  if (parsed.faulty) return Complain(streams.err, parsed.what, parsed.detail);
  if (options.simulate) return PlaySimulated(options, &action, streams);
  StopSignals signals;
  const int status = PlayForReal(options, &action, &signals, streams);
  // If the output broke off, that is the one thing to tell.
  if (streams.out) signals.EndAsAsked();
  return status;
}

}  // namespace kelvaro::console
