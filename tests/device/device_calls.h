// What the simulated machine was asked for on behalf of a device. Event 1 is the one that stops the
// notification thread, event 2 tells it of a change.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro::test {

using Calls = std::vector<std::string>;

// In call order, without what a thread is asked about itself and the closing of handles.
inline Calls DeviceCalls(const platform::simulation::Simulation& simulation) {
  Calls calls = simulation.Calls();
  std::erase_if(calls, [](const std::string& call) {
    return call.starts_with("GetExitCodeThread") || call.starts_with("CloseHandle") ||
           call.starts_with("SetCurrentThreadPriority");
  });
  return calls;
}

inline std::int64_t CountDeviceCalls(const platform::simulation::Simulation& simulation,
                                     const std::string& call) {
  return std::count(simulation.Calls().begin(), simulation.Calls().end(), call);
}

}  // namespace kelvaro::test
