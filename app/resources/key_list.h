// The rows of "Help: Special Key List" in the dialog "Define Control": what can stand in angle
// brackets in "Key(s)". Sections begin with a line between "==", groups with a blank row.
#pragma once

namespace kelvaro::resources {

constexpr int kSpecialKeyRows = 132;
extern const char* const kSpecialKeys[kSpecialKeyRows];

}  // namespace kelvaro::resources
