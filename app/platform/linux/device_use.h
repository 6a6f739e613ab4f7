// Which other programs use an event device, as far as the system tells it to this user.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

struct OtherProgram {
  std::uint32_t process = 0;
  std::string name;  // as in lists of processes: at most 15 bytes
};

// Programs other than this one that have the file at `path` open, by their numbers. A program of
// another user is seen by root only. Any thread.
std::vector<OtherProgram> ProgramsWithOpen(const std::string& path);

// Whether another program has grabbed the event device at `path`, so that nobody else gets its
// events. The kernel doesn't tell which one, and tells this much only to one who tries to grab it:
// the device is grabbed for an instant. False, too, where it can't be opened. Any thread.
bool IsGrabbed(const std::string& path);

}  // namespace platform
