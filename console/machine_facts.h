// What this machine is like, as far as Kelvaro depends on it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "console/diagnosis.h"

namespace kelvaro::console {

// Looks at all of it, without sending anything. Takes seconds at most. No other program is
// installed behind the seam meanwhile.
MachineFacts LookAtMachine();

// What the machine is, on one line: distribution, kernel, processor, desktop.
std::string SystemText();

// The first file in `folders`, in this order, that ends in `suffix` and has a line with `word` that
// is no comment; empty for none.
std::string FileWith(const std::vector<std::string>& folders, const std::string& suffix,
                     const std::string& word);

// Whether this user may make files in the folder, or make the folder where it is missing.
bool CanWriteInto(const std::string& folder);

}  // namespace kelvaro::console
