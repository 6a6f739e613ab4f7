// What every registry does alike, wherever it keeps its keys: taking a path apart, and handing a
// name or a value to a caller's buffers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/platform/registry.h"

namespace platform {

struct StoredValue {
  std::string name;
  std::uint32_t type = 0;
  std::string data;  // bytes
};

// The names in a path; none for an empty one.
std::vector<std::string> KeyNames(std::string_view path);

// ERROR_MORE_DATA where it and its terminator don't fit into `room` bytes.
std::uint32_t GiveName(const std::string& name, char* buffer, std::uint32_t room);

// As RegQueryValueExA gives its results.
std::uint32_t GiveValue(const StoredValue& value, std::uint32_t* type, void* data,
                        std::uint32_t* size);

// As RegEnumValueA gives its results.
std::uint32_t GiveNamedValue(const StoredValue& value, char* name, std::uint32_t* nameSize,
                             std::uint32_t* type, void* data, std::uint32_t* size);

}  // namespace platform
