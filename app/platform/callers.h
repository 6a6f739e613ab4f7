// Who may call a running program (calls.h), on every system.
#pragma once

#include <cstddef>
#include <string>

namespace platform {

constexpr std::size_t kMostCallers = 64;  // further ones are turned away

// Names of files without folders, as the system tells them; `own` is that of this program. ".exe"
// may follow.
bool BearsOurName(const std::string& program, const std::string& own);

}  // namespace platform
