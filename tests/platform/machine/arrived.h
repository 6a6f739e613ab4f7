// Who is told of by a watch of arrivals.
#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <vector>

#include "app/platform/calls.h"
#include "tests/host/patience.h"

namespace platform {

// The processes that answer once the watch tells of one; none when it doesn't within patience.
inline std::vector<std::uint32_t> Arrived(Calls& calls, Arrivals& arrivals) {
  auto arrived = std::async(std::launch::async, [&] {
    std::vector<std::uint32_t> answering;
    while (answering.empty() && arrivals.Wait()) answering = calls.Answering();
    return answering;
  });
  if (arrived.wait_for(kelvaro::tests::patience) != std::future_status::ready) arrivals.End();
  return arrived.get();
}

}  // namespace platform
