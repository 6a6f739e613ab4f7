// What the options of a run name: the profile, the recording, the device, the end.
#pragma once

#include <cstdint>
#include <optional>

#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/device_choice.h"
#include "storage/profile_file.h"

namespace kelvaro::console {

// Fills both, the recording only where one is to be replayed. Complains of what can't be read; the
// result is the exit status.
int ReadRun(const RunOptions& options, ProfileFile* profile, platform::Recording* recording,
            Streams streams);

// The same of a recording alone.
int ReadReplay(const std::string& file, platform::Recording* recording, Streams streams);

// A recording ends this much after its last line, so that what it started can be seen.
constexpr std::uint64_t kAfterRecording = 1000;  // ms

// In ms; nothing where only a signal ends the run.
std::optional<std::uint64_t> EndOfRun(const RunOptions& options,
                                      const platform::Recording& recording);

DeviceChoice ChosenDevice(const RunOptions& options, const Profile& profile);

}  // namespace kelvaro::console
