// What the shell reads in a shortcut.
#pragma once

#include <optional>
#include <string>

#include "rendlink/shortcuts.h"

namespace kelvaro::rendlink {

// Null where the shell takes the file for none.
std::optional<Shortcut> ReadShortcut(const std::string& path);

}  // namespace kelvaro::rendlink
