// Makes a failing script short: takes away what it can, piece by piece, as long as it still fails.
#pragma once

#include <functional>
#include <string>

#include "tests/model/script.h"

namespace kelvaro::plain {

Script Shrink(const Script& script, const std::function<bool(const Script&)>& fails);

// For a person to read, and to make a test of: profiles in JSON, the pad's changes as a recording,
// and what the person does.
std::string Text(const Script& script);

}  // namespace kelvaro::plain
