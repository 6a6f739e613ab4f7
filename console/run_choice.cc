#include "console/run_choice.h"

#include <sstream>
#include <utility>

#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/profile_source.h"
#include "console/read_file.h"

namespace kelvaro::console {
namespace {

// More than any recording needs: some hours of a busy pad.
constexpr std::size_t kMostRecording = 256;  // MiB

// A recording ends this much after its last line, so that what it started can be seen.
constexpr std::uint64_t kAfterRecording = 1000;  // ms

}  // namespace

int ReadRun(const RunOptions& options, ProfileFile* profile, platform::Recording* recording,
            Streams streams) {
  {
    const FileMachine machine;
    ProfileFault fault;
    if (!FindProfile(options.profile, profile, &fault)) {
      return Complain(streams.err, fault.message, fault.detail);
    }
  }
  if (!options.replay) return kDone;
  std::string text;
  std::string error;
  if (!ReadWholeFile(*options.replay, kMostRecording, &text, &error)) {
    return Complain(streams.err, *options.replay + ": " + error);
  }
  std::istringstream lines(std::move(text));
  if (!platform::ReadRecording(lines, recording, &error)) {
    return Complain(streams.err, *options.replay + ":" + error);
  }
  return kDone;
}

std::optional<std::uint64_t> EndOfRun(const RunOptions& options,
                                      const platform::Recording& recording) {
  if (options.until) return options.until;
  if (options.replay) return recording.Length() + kAfterRecording;
  return std::nullopt;
}

DeviceChoice ChosenDevice(const RunOptions& options, const Profile& profile) {
  DeviceChoice choice;
  choice.name = options.device;
  // A recording is the device, whatever the profile says.
  if (!options.replay) {
    choice.profileGuid = profile.deviceGuid;
    choice.profileName = profile.deviceName;
  }
  return choice;
}

}  // namespace kelvaro::console
