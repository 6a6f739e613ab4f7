// What the system tells of processes: which there are, and the file of the program that one runs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Full path of it, where the system tells it, else empty; where it was for one that was deleted or
// replaced meanwhile. `process` is a number, or "self".
//
// errno tells why it is empty.
std::string ProgramFileOf(const std::string& process);

// The entries of a folder that are called after a process, its number and then `suffix`, in rising
// order; as far as it can be read. "/proc" has all processes.
std::vector<std::uint32_t> ProcessesIn(const std::string& folder, std::string_view suffix = {});

}  // namespace platform
