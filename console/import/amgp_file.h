// Reads profiles in the format .amgp.
#pragma once

#include <string>

#include "console/import/foreign_profile.h"

namespace kelvaro::console {

// Whether a file's first character is that of XML.
bool LooksLikeAmgp(const std::string& bytes);
// Takes one set of the profile and lists the others. False, with *fault set, for anything else.
bool ReadAmgp(const std::string& bytes, const ForeignChoice& choice, ForeignProfile* profile,
              ForeignFault* fault);

}  // namespace kelvaro::console
