// The windows of Kelvaro that are there now.
#pragma once

#include <cstdint>
#include <vector>

namespace kelvaro::console {

// Their processes. A socket may be left of a program that crashed; it isn't counted.
std::vector<std::uint32_t> RunningInstances();

}  // namespace kelvaro::console
