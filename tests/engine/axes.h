// What an engine is told of the axes of a pad.
#pragma once

#include <cstdint>

namespace kelvaro {

constexpr std::int32_t kAxisMax = 32000;  // either way from the centre, of every axis

}  // namespace kelvaro
