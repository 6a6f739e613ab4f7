// The version of all programs, which the build tells.
#pragma once

#include <cstdint>

#include "foundation/byte_string.h"

namespace kelvaro {

struct Version {
  std::uint8_t major = 0;
  std::uint8_t minor = 0;
  std::uint8_t revision = 0;
};

extern const Version kVersion;

// "3.5", or "3.5.2": a revision of 0 isn't shown.
ByteString VersionNumber(const Version& version = kVersion);

}  // namespace kelvaro
