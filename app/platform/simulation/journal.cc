#include "app/platform/simulation/journal.h"

#include <cstdio>
#include <cstdlib>

namespace platform::simulation {

Journal::~Journal() {
  for (const auto& [operation, fault] : plans) {
    if (fault.came) continue;
    std::fprintf(stderr, "simulation: the fault of %s never came\n", operation.c_str());
    std::abort();
  }
}

void Journal::Plan(const std::string& operation, HRESULT result, std::uint64_t times) {
  if (times == 0) {
    plans.erase(operation);
  } else {
    plans[operation] = Fault{result, times};
  }
}

void Journal::Mend(const std::string& operation) { plans.erase(operation); }

std::optional<HRESULT> Journal::Planned(std::string_view operation) {
  const auto plan = plans.find(operation);
  if (plan == plans.end()) return std::nullopt;
  plan->second.came = true;
  const HRESULT result = plan->second.result;
  if (plan->second.times != UINT64_MAX && --plan->second.times == 0) plans.erase(plan);
  return result;
}

}  // namespace platform::simulation
