// kelvaroctl explain and test: what the engine makes of a pad, with nothing sent.

#include "app/platform/simulation/simulation.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/explanation.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/run_choice.h"
#include "console/stop_signals.h"

namespace kelvaro::console {
namespace {

using platform::Recording;
using platform::simulation::Simulation;
using Detail = Explanation::Detail;

// False, having complained, where it can't begin.
bool Begin(const RunOptions& options, const Profile& profile, Explanation* explanation,
           EngineSession* session, Streams streams) {
  session->SetAnswerAtOnce(options.wake);
  session->SetObserver(explanation);
  std::string error;
  if (!session->Begin(ChosenDevice(options, profile), options.mouseActive, &error)) {
    session->End();  // while there still is somebody to tell
    Complain(streams.err, options.profile + ": " + error);
    return false;
  }
  explanation->StartOfTime();
  return true;
}

int ExplainRecording(const RunOptions& options, Detail detail, Profile& profile,
                     const Recording& recording, Streams streams) {
  Simulation simulation;
  simulation.KeepEvents(false);
  simulation.AddDevice(recording.device).Play(recording.changes);
  EngineSession session(profile);
  Explanation explanation(session, detail, streams.out, options.json);
  simulation.OnEvent([&](const SentEvent& event) { explanation.Sent(event); });
  if (!Begin(options, profile, &explanation, &session, streams)) return kBad;
  simulation.RunFor(*EndOfRun(options, recording));
  session.End();
  return kDone;
}

int ExplainPad(const RunOptions& options, Detail detail, Profile& profile, Streams streams) {
  StopSignals signals;
  RealMachine machine;
  EngineSession session(profile);
  Explanation explanation(session, detail, streams.out, options.json, &StopSignals::Ask);
  machine.KeepEvents([&](const SentEvent& event) { explanation.Sent(event); });
  if (!Begin(options, profile, &explanation, &session, streams)) return kBad;
  streams.err << "Trying " << options.profile << " on '" << Bytes(session.DeviceName())
              << "'; nothing is sent. Ctrl-C ends it." << std::endl;
  signals.Wait(options.until);
  session.End();
  return kDone;
}

int Explain(const RunOptions& options, Detail detail, Streams streams) {
  ProfileFile profile;
  Recording recording;
  if (const int status = ReadRun(options, &profile, &recording, streams); status != kDone) {
    return status;
  }
  return options.replay ? ExplainRecording(options, detail, profile, recording, streams)
                        : ExplainPad(options, detail, profile, streams);
}

}  // namespace

int ExplainCommand(const RunOptions& options, Streams streams) {
  return Explain(options, Detail::All, streams);
}

int TestCommand(const RunOptions& options, Streams streams) {
  return Explain(options, Detail::Outcome, streams);
}

}  // namespace kelvaro::console
