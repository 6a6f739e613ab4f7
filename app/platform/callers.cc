#include "app/platform/callers.h"

#include <string_view>

namespace platform {
namespace {

std::string_view WithoutEnding(std::string_view program) {
  constexpr std::string_view kEnding = ".exe";
  if (program.ends_with(kEnding)) program.remove_suffix(kEnding.size());
  return program;
}

}  // namespace

bool BearsOurName(const std::string& program, const std::string& own) {
  if (program.empty()) return false;
  const std::string_view name = WithoutEnding(program);
  return name == "kelvaro" || name == "kelvaroctl" || program == own;
}

}  // namespace platform
