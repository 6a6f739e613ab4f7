// What the system tells of another process: the file of its program, and whose it is.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

// Full path; empty where the system doesn't tell.
std::string ProgramFileOf(std::uint32_t process);

// The file's name without the folder.
std::string ProgramNameOf(std::uint32_t process);

// Whether it runs as the user of this process.
bool IsOfThisUser(std::uint32_t process);

// The user as security descriptors write them, "S-1-..."; empty where the system doesn't tell.
std::string ThisUser();

}  // namespace platform
