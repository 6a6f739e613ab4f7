// kelvaroctl tune: what a pad does, and which of the mouse's settings fit it.

#include <algorithm>
#include <functional>
#include <mutex>
#include <optional>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/device_watch.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/profile_output.h"
#include "console/profile_source.h"
#include "console/read_file.h"
#include "console/real_machine.h"
#include "console/run_choice.h"
#include "console/running_instances.h"
#include "console/stop_signals.h"
#include "console/terminal_text.h"
#include "console/text_table.h"
#include "console/tune/pad_study.h"
#include "console/tune/tuning.h"

namespace kelvaro::console {
namespace {

using platform::DeviceDescription;
using platform::Recording;

constexpr std::uint64_t kProgressEach = 5000;  // ms

// By then `kelvaroctl record` has written the first state.
constexpr std::uint64_t kSettled = 500;  // ms

constexpr struct {
  std::uint64_t end;  // ms from the start
  const char* task;
} kPhases[] = {
    {kRestEnds, "Put the pad down and leave it alone"},
    {kSticksEnd, "Turn each stick in full circles, pull each trigger; then let go"},
    {kStudyEnds, "Press each button a few times"},
};

std::string NumberOrNull(const std::optional<std::int32_t>& number) {
  return number ? std::to_string(*number) : "null";
}

void StudyRecording(const Recording& recording, PadStudy* study) {
  platform::DIJOYSTATE2 state = platform::StateAtRest();
  bool lost = false;
  // What it was before the first line is known where that line comes later.
  if (recording.changes.empty() || recording.changes.front().t > kSettled) study->See(0, state);
  for (const platform::StateChange& change : recording.changes) {
    platform::ApplyChange(change, &state);
    if (change.hasLost) lost = change.lost;
    if (!lost) study->See(change.t, state);
  }
  study->End(recording.Length());
}

std::size_t MovedAxes(const PadStudy& study) {
  const std::vector<AxisStudy> axes = study.Axes();
  return static_cast<std::size_t>(
      std::count_if(axes.begin(), axes.end(), [](const AxisStudy& axis) { return axis.moved; }));
}

// "2 axes moved, 3 buttons pressed"
std::string Progress(const PadStudy& study) {
  const std::size_t moved = MovedAxes(study);
  const std::size_t pressed = study.Buttons().size();
  return std::to_string(moved) + (moved == 1 ? " axis" : " axes") + " moved, " +
         std::to_string(pressed) + (pressed == 1 ? " button" : " buttons") + " pressed";
}

// Waits to the end of a phase, and tells each few seconds what was seen. False if a signal came.
bool WaitForPhase(std::uint64_t end, const DeviceWatch& watch, StopSignals* signals,
                  const std::function<std::string()>& progress, std::ostream& err) {
  for (std::uint64_t now = watch.Elapsed(); now < end; now = watch.Elapsed()) {
    const std::uint64_t left = end - now;
    const std::uint64_t wait = left % kProgressEach == 0 ? kProgressEach : left % kProgressEach;
    if (signals->Wait(wait)) return false;
    if (left > wait) {
      err << "  " << (left - wait) / 1000 << " s left; " << progress() << std::endl;
    }
  }
  return true;
}

int StudyPad(const TuneOptions& options, StopSignals* signals, PadStudy* study,
             DeviceDescription* device, Streams streams) {
  RealMachine machine;
  std::mutex mutex;  // of the study
  const auto see = [&](std::uint64_t t, const platform::DIJOYSTATE2& state) {
    const std::lock_guard<std::mutex> lock(mutex);
    study->See(t, state);
  };
  const auto progress = [&] {
    const std::lock_guard<std::mutex> lock(mutex);
    return Progress(*study);
  };
  DeviceWatch watch;  // behind what its thread uses, so that it ends first
  watch.SeeEachReport();
  std::string error;
  if (!watch.Begin(options.device, see, &error)) return Complain(streams.err, error);
  *device = watch.Description();
  streams.err << "Watching '" << TerminalText(device->name) << "' for a minute; Ctrl-C breaks off."
              << std::endl;
  std::uint64_t begin = 0;
  for (const auto& phase : kPhases) {
    streams.err << phase.task << ": " << (phase.end - begin) / 1000 << " s" << std::endl;
    if (!WaitForPhase(phase.end, watch, signals, progress, streams.err)) {
      return Complain(streams.err, "broken off, nothing is known of the pad");
    }
    begin = phase.end;
  }
  const std::lock_guard<std::mutex> lock(mutex);
  study->End(watch.Elapsed());
  return kDone;
}

void PrintText(const DeviceDescription& device, const PadStudy& study,
               const std::vector<Proposal>& proposals, std::ostream& out) {
  out << TerminalText(device.name);
  if (const auto interval = study.ReportInterval()) {
    out << ", a report each " << *interval / 10 << "." << *interval % 10 << " ms";
  }
  out << '\n';
  std::vector<std::vector<std::string>> rows = {
      {"Axis", "at rest", "noise", "drift", "from", "to", "damper"}};
  for (const AxisStudy& axis : study.Axes()) {
    const auto damper = DamperFor(axis);
    rows.push_back({platform::AxisNameText(axis.name), Percent(axis.rest), Percent(axis.noise),
                    Percent(axis.drift), Percent(axis.from), Percent(axis.to),
                    damper ? std::to_string(*damper) + " %" : "-"});
  }
  if (rows.size() > 1) out << TextTable(rows);
  std::string pressed;
  for (const auto& [number, button] : study.Buttons()) {
    pressed += (pressed.empty() ? "" : ", ") + ("B" + std::to_string(number)) + ": " +
               std::to_string(button.presses);
  }
  out << "  Presses  " << (pressed.empty() ? "none" : pressed) << "; " << study.Buttons().size()
      << " of " << device.buttons << " buttons, and " << MovedAxes(study) << " of " << device.axes
      << " axes, were seen\n";
  for (const std::string& warning : Warnings(study)) out << "  Note: " << warning << '\n';
  rows = {{"Proposed", "", "now"}};
  for (const Proposal& proposal : proposals) {
    rows.push_back({proposal.label, std::to_string(proposal.value), std::to_string(proposal.was),
                    proposal.lack});
  }
  if (rows.size() > 1) out << TextTable(rows);
  out << std::flush;
}

void PrintJson(const DeviceDescription& device, const PadStudy& study,
               const std::vector<Proposal>& proposals, std::ostream& out) {
  const auto interval = study.ReportInterval();
  out << "{\"topic\":\"pad\",\"name\":" << JsonText(device.name)
      << ",\"buttons\":" << device.buttons << ",\"axes\":" << device.axes << ",\"interval\":";
  if (interval) {
    out << *interval / 10 << "." << *interval % 10 << "}\n";
  } else {
    out << "null}\n";
  }
  for (const AxisStudy& axis : study.Axes()) {
    out << "{\"topic\":\"axis\",\"axis\":\"" << platform::AxisNameText(axis.name)
        << "\",\"rest\":" << axis.rest << ",\"noise\":" << axis.noise << ",\"drift\":" << axis.drift
        << ",\"furthest\":" << axis.furthest << ",\"returned\":" << NumberOrNull(axis.returned)
        << ",\"from\":" << axis.from << ",\"to\":" << axis.to
        << ",\"damper\":" << NumberOrNull(DamperFor(axis)) << "}\n";
  }
  for (const auto& [number, button] : study.Buttons()) {
    out << "{\"topic\":\"button\",\"button\":" << number << ",\"presses\":" << button.presses
        << ",\"bounces\":" << button.bounces << "}\n";
  }
  for (const std::string& warning : Warnings(study)) {
    out << "{\"topic\":\"note\",\"what\":" << JsonText(warning) << "}\n";
  }
  for (const Proposal& proposal : proposals) {
    out << "{\"topic\":\"proposal\",\"setting\":\"" << proposal.name
        << "\",\"value\":" << proposal.value << ",\"was\":" << proposal.was
        << ",\"lack\":" << JsonText(proposal.lack) << "}\n";
  }
  out << std::flush;
}

// The file of the profile that is to be changed, read into *profile. Complains where it can't be.
int ReadStored(const std::string& fileOrName, std::string* path, ProfileFile* profile,
               Streams streams) {
  ProfileFault fault;
  if (!FindProfilePath(fileOrName, path, &fault)) {
    return Complain(streams.err, fault.message, fault.detail);
  }
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(*path, kMostProfile, &bytes, &error)) {
    return Complain(streams.err, *path + ": " + error);
  }
  if (!IsStoredProfile(bytes)) {
    return Complain(streams.err,
                    *path + ": not a stored profile (kelvaroctl pack makes one of JSON)");
  }
  if (!profile->Load(TextOf(*path))) return Complain(streams.err, *path + ": doesn't load");
  return kDone;
}

// Whether the person says yes; nothing where nobody answers.
std::optional<bool> AskWhether(const std::string& question, std::ostream& err) {
  err << question << " [y/N] " << std::flush;
  char answer[80];
  if (!std::fgets(answer, sizeof answer, stdin)) {
    err << std::endl;
    return std::nullopt;
  }
  return answer[0] == 'y' || answer[0] == 'Y';
}

// Read anew: somebody may have changed the profile while the pad was watched.
int Write(const TuneOptions& options, const std::vector<Proposal>& proposals, Streams streams) {
  if (proposals.empty()) {
    return Complain(streams.err, "no axis moves the pointer or turns the wheel in '" +
                                     *options.profile + "', so there is nothing to write");
  }
  const FileMachine machine;
  std::string path;
  ProfileFile profile;
  if (const int status = ReadStored(*options.profile, &path, &profile, streams); status != kDone) {
    return status;
  }
  if (!RunningInstances().empty()) {
    streams.err << "A window of Kelvaro runs. If it has this profile open, choose it there anew "
                   "afterwards, before anything else is changed."
                << std::endl;
  }
  if (!options.yes) {
    const auto answer =
        AskWhether("Write what is proposed into " + TerminalText(path) + "?", streams.err);
    if (!answer) {
      return Complain(streams.err, "nothing was written: nobody says yes (--yes does)");
    }
    if (!*answer) {
      streams.err << "Nothing was written." << std::endl;
      return kDone;
    }
  }
  Apply(proposals, &profile);
  std::string error;
  if (!WriteProfile(profile, path, &error)) return Complain(streams.err, error);
  if (options.json) {
    streams.out << "{\"topic\":\"written\",\"file\":" << JsonText(path) << "}" << std::endl;
  } else {
    streams.out << "  Written into " << TerminalText(path) << std::endl;
  }
  return kDone;
}

// Of the pad, or of the recording in its place.
int Study(const TuneOptions& options, PadStudy* study, DeviceDescription* device, Streams streams) {
  if (options.replay) {
    Recording recording;
    const int status = ReadReplay(*options.replay, &recording, streams);
    if (status != kDone) return status;
    *device = recording.device;
    StudyRecording(recording, study);
  } else {
    StopSignals signals;
    const int status = StudyPad(options, &signals, study, device, streams);
    signals.EndAsAsked();
    if (status != kDone) return status;
  }
  if (study->SawRest()) return kDone;
  return Complain(streams.err, (options.replay ? *options.replay : device->name) +
                                   ": too short: at least four seconds of rest come first");
}

}  // namespace

int TuneCommand(const TuneOptions& options, Streams streams) {
  MouseSettings settings;
  if (options.profile) {
    const FileMachine machine;
    std::string path;
    ProfileFile profile;
    const int status = ReadStored(*options.profile, &path, &profile, streams);
    if (status != kDone) return status;
    settings = profile;
  }
  PadStudy study;
  DeviceDescription device;
  if (const int status = Study(options, &study, &device, streams); status != kDone) return status;
  const std::vector<Proposal> proposals = ProposeFor(study, settings, !options.profile);
  if (options.json) {
    PrintJson(device, study, proposals, streams.out);
  } else {
    PrintText(device, study, proposals, streams.out);
  }
  return options.profile ? Write(options, proposals, streams) : kDone;
}

}  // namespace kelvaro::console
