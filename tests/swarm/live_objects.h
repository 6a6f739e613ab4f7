// How many objects the test program has made by operator new and not yet given back, on whatever
// thread. None under a sanitizer, which has these operators itself and tells of what leaks.
#pragma once

#include <cstdint>
#include <optional>

namespace kelvaro {

std::optional<std::int64_t> LiveObjects();

}  // namespace kelvaro
