// Reads layouts in the format .lyt.
#pragma once

#include <string>

#include "console/import/foreign_profile.h"

namespace kelvaro::console {

// Takes one joystick of the layout and lists the others. False, with *fault set, for a text that
// isn't a layout.
bool ReadLyt(const std::string& bytes, const ForeignChoice& choice, ForeignProfile* profile,
             ForeignFault* fault);

}  // namespace kelvaro::console
