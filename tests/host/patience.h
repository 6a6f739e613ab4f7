// Waiting for what takes a moment on the machine on which the tests run, and what must be there.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace kelvaro::tests {

using namespace std::chrono_literals;

// How long what takes a moment may take. To be changed where the clock isn't the real one.
inline std::chrono::milliseconds patience = 60s;

// True as soon as `holds` is; false if it wasn't within `limit`. Looks once a `step`.
bool Eventually(const std::function<bool()>& holds, std::chrono::milliseconds limit = patience,
                std::chrono::milliseconds step = 20ms);

// Whether KELVARO_REQUIRE names a thing, whose absence is then a failure, not a skip.
bool Required(const std::string& thing);
// Ends a test where that thing doesn't work.
#define SKIP_UNLESS(works, thing, reason)                  \
  if (!(works)) {                                          \
    if (kelvaro::tests::Required(thing)) FAIL() << reason; \
    GTEST_SKIP() << reason;                                \
  }

}  // namespace kelvaro::tests
