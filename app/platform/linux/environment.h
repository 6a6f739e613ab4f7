#pragma once

#include <cstdlib>
#include <string>

namespace platform {

// The text of an environment variable; empty for one that isn't set, too.
inline std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

}  // namespace platform
