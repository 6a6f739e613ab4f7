#include "app/platform/simulation/journal.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace platform::simulation {

Journal::~Journal() {
  for (const auto& [operation, fault] : plans) {
    if (fault.came || std::uncaught_exceptions() > 0) continue;
    std::fprintf(stderr, "simulation: the fault of %s never came\n", operation.c_str());
    std::abort();
  }
}

void Journal::FailNext(const std::string& operation, HRESULT result, std::uint64_t times) {
  plans[operation] = Fault{result, times};
}

std::optional<HRESULT> Journal::Planned(std::string_view operation) {
  const auto plan = plans.find(operation);
  if (plan == plans.end()) return std::nullopt;
  plan->second.came = true;
  const HRESULT result = plan->second.result;
  if (plan->second.times != UINT64_MAX && --plan->second.times == 0) plans.erase(plan);
  return result;
}

}  // namespace platform::simulation
