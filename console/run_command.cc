// kelvaroctl run: the engine on one profile.

#include "app/platform/simulation/simulation.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/engine_session.h"
#include "console/event_printer.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/run_choice.h"
#include "console/steering/steered_run.h"
#include "console/stop_signals.h"
#include "console/this_system.h"

namespace kelvaro::console {
namespace {

using platform::Recording;
using platform::simulation::Simulation;

int RunSimulated(const RunOptions& options, Profile& profile, const Recording& recording,
                 Streams streams) {
  Simulation simulation;
  simulation.KeepEvents(false);
  simulation.AddDevice(recording.device).Play(recording.changes);
  EventPrinter printer(streams.out, options.json);
  std::uint64_t begin = 0;
  simulation.OnEvent([&](SentEvent event) {
    event.t -= begin;
    printer.Print(event);
  });

  EngineSession session(profile);
  session.SetAnswerAtOnce(options.wake);
  std::string error;
  if (!session.Begin(ChosenDevice(options, profile), options.mouseActive, &error)) {
    return Complain(streams.err, options.profile + ": " + error);
  }
  begin = simulation.Now();
  simulation.RunFor(*EndOfRun(options, recording));
  session.End();
  return kDone;
}

// A pad that another program has grabbed looks like one that nobody touches.
void TellOfGrab(RealMachine& machine, const EngineSession& session, Streams streams) {
  if (!IsTakenByAnother(session.DeviceGuid(), machine)) return;
  streams.err << "Another program keeps '" << Bytes(session.DeviceName())
              << "' for itself, so that nothing comes of it until that one ends; kelvaroctl doctor "
                 "tells which ones use it."
              << std::endl;
}

int RunForReal(const RunOptions& options, ProfileFile& profile, const Recording& recording,
               Streams streams) {
  StopSignals signals;
  EventPrinter printer(streams.out, true, &StopSignals::Ask);
  RealMachine machine;
  std::string error;
  if (options.replay) machine.PlayRecording(recording);
  // A missing pad is told before a missing way out: it is what a person looks for first.
  const DeviceChoice choice = ChosenDevice(options, profile);
  if (!HasChosenDevice(choice, &error)) {
    return Complain(streams.err, options.profile + ": " + error);
  }
  if (!machine.OpenOutput(options.json ? &printer : nullptr, &error)) {
    return Complain(streams.err, error);
  }
  machine.TakeCalls();

  EngineSession session(profile);
  SteeredRun steered(session, profile, options);
  session.SetAnswerAtOnce(options.wake);
  if (options.grab) session.TakeDeviceAlone();
  if (!session.Begin(choice, options.mouseActive, &error)) {
    return Complain(streams.err, options.profile + ": " + error);
  }
  machine.StartOfTime();
  streams.err << "Running " << options.profile << " on '" << Bytes(session.DeviceName())
              << "'; Ctrl-C ends it." << std::endl;
  if (!options.grab && !options.replay) TellOfGrab(machine, session, streams);
  steered.Begin();
  signals.Wait(EndOfRun(options, recording));
  steered.End();
  session.End();
  return machine.EndOfOutput(streams);
}

}  // namespace

int RunCommand(const RunOptions& options, Streams streams) {
  ProfileFile profile;
  Recording recording;
  if (const int status = ReadRun(options, &profile, &recording, streams); status != kDone) {
    return status;
  }
  return options.simulate ? RunSimulated(options, profile, recording, streams)
                          : RunForReal(options, profile, recording, streams);
}

}  // namespace kelvaro::console
