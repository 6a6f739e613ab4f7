#include "tests/host/patience.h"

#include <cstdlib>
#include <thread>

namespace kelvaro::tests {

bool Eventually(const std::function<bool()>& holds, std::chrono::milliseconds limit,
                std::chrono::milliseconds step) {
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (holds()) return true;
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(step);
  }
}

bool Required(const std::string& thing) {
  const char* const list = std::getenv("KELVARO_REQUIRE");
  return list && ("," + std::string(list) + ",").find("," + thing + ",") != std::string::npos;
}

}  // namespace kelvaro::tests
