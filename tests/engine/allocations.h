// How often this test program asked for memory.
#pragma once

#include <cstdint>

namespace kelvaro {

// Allocations by new, of all kinds, on this thread since its start.
std::uint64_t AllocationCount();

}  // namespace kelvaro
