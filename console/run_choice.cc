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

}  // namespace

int ReadRun(const RunOptions& options, ProfileFile* profile, platform::Recording* recording,
            Streams streams) {
  {
    const FileMachine machine;
    if (!FindProfile(options.profile, profile, streams.err)) return kBad;
  }
  return options.replay ? ReadReplay(*options.replay, recording, streams) : kDone;
}

int ReadReplay(const std::string& file, platform::Recording* recording, Streams streams) {
  std::string text;
  std::string error;
  if (!ReadWholeFile(file, kMostRecording, &text, &error)) {
    return Complain(streams.err, file + ": " + error);
  }
  std::istringstream lines(std::move(text));
  if (!platform::ReadRecording(lines, recording, &error)) {
    return Complain(streams.err, file + ":" + error);
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
