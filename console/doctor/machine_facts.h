// What this machine is like, as far as Kelvaro depends on it. linux/ and windows/ answer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "console/doctor/diagnosis.h"

namespace kelvaro::console {

// Looks at all of it, without sending anything, and says what it means. Takes seconds at most. No
// other platform is installed behind the seam meanwhile.
std::vector<Remark> ExamineMachine();

// What the machine is, on one line: the system with its version, processor, desktop.
std::string SystemText();

// Of the user; empty where the environment names none.
std::string HomeFolder();

// On Linux alone: the first file in `folders`, in this order, that ends in `suffix` and has a line
// with `word` that is no comment; empty for none.
std::string FileWith(const std::vector<std::string>& folders, const std::string& suffix,
                     const std::string& word);

// On Linux alone: whether this user may make files in the folder, or make the folder where it is
// missing.
bool CanWriteInto(const std::string& folder);

}  // namespace kelvaro::console
