// The published numbers of the errors that more than one group of operations tells.
#pragma once

#include <cstdint>

namespace platform {

constexpr std::uint32_t ERROR_SUCCESS = 0;
constexpr std::uint32_t ERROR_FILE_NOT_FOUND = 2;
constexpr std::uint32_t ERROR_ACCESS_DENIED = 5;
constexpr std::uint32_t ERROR_INVALID_HANDLE = 6;
constexpr std::uint32_t ERROR_INVALID_PARAMETER = 87;
constexpr std::uint32_t ERROR_DISK_FULL = 112;
constexpr std::uint32_t ERROR_INVALID_NAME = 123;
constexpr std::uint32_t ERROR_BUSY = 170;
constexpr std::uint32_t ERROR_MORE_DATA = 234;
constexpr std::uint32_t ERROR_NO_MORE_ITEMS = 259;

}  // namespace platform
