// Which profile belongs to the window in front: a list of rules, read from JSON. The first rule
// that fits counts; where none does, and where there is no window, the default.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/json_reader.h"

namespace kelvaro::console {

// What a desktop tells of a window, in UTF-8; empty where it doesn't.
struct FrontWindow {
  std::string program;  // name of its program's file, without the folder
  std::string kind;     // its class on X11 and Windows, its app_id on Wayland
  std::string title;

  bool operator==(const FrontWindow&) const = default;
};

struct FollowRule {
  // Patterns (file_pattern.h); what has none isn't looked at. A text that the desktop doesn't tell
  // fits none.
  std::optional<std::string> program;
  std::optional<std::string> kind;
  std::optional<std::string> title;
  std::string profile;

  bool Fits(const FrontWindow& window) const;
};

class FollowRules {
 public:
  // What keeps a profile of that name from being selected; empty for nothing.
  using ProfileFault = std::function<std::string(const std::string& profile)>;

  // False with *fault, and unchanged, for a text that isn't such a list.
  bool Read(const std::string& text, const ProfileFault& profileFault, JsonFault* fault);

  // The number of the first rule that fits, from 1; 0 for the default.
  std::size_t RuleFor(const std::optional<FrontWindow>& window) const;
  const std::string& ProfileOf(std::size_t rule) const;

 private:
  std::string fallback;
  std::vector<FollowRule> rules;
};

}  // namespace kelvaro::console
