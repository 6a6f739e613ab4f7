// Scripts at random: few inputs, so that Triggers meet, nest and overlap, and numbers that lie at
// the edges of the rules more often than chance would have it.
#pragma once

#include "tests/console/random.h"
#include "tests/model/script.h"

namespace kelvaro::plain {

Script RandomScript(std::uint32_t seed);

// A text in the key language, not always a right one.
std::string RandomKeys(Random& random);

}  // namespace kelvaro::plain
