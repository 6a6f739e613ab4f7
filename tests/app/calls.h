// Looks at what a simulated machine has logged.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {

using Strings = std::vector<std::string>;

// The calls that begin with one of these, in their order.
inline Strings CallsOf(const platform::simulation::Simulation& sim, const Strings& beginnings) {
  Strings found;
  for (const std::string& call : sim.Calls()) {
    if (std::any_of(beginnings.begin(), beginnings.end(),
                    [&](const std::string& beginning) { return call.starts_with(beginning); }))
      found.push_back(call);
  }
  return found;
}

inline std::size_t CountCalls(const platform::simulation::Simulation& sim,
                              const std::string& beginning) {
  return CallsOf(sim, {beginning}).size();
}

}  // namespace kelvaro
