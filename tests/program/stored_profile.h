// Profiles beside the program under test.
#pragma once

#include <string>

#include "tests/program/machine.h"

namespace kelvaro::tests {

// Stores one in the folder Profiles of `folder`. `members`: what it has beside its name, in JSON,
// such as R"("deviceName":"Pad")".
void StoreProfile(const Home& home, const std::string& folder, const std::string& name,
                  const std::string& members);

}  // namespace kelvaro::tests
