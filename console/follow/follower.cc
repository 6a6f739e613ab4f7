#include "console/follow/follower.h"

#include <algorithm>

#include "app/resources/desktop_id.h"

namespace kelvaro::console {

Follower::Follower(const FollowRules& rules, const FollowReach& reach, const FollowNews& news)
    : rules(rules), reach(reach), news(news) {}

void Follower::SeeWindow(const std::optional<FrontWindow>& window) {
  if (window && IsOwnWindow(*window)) return;
  front = window;
  const std::size_t before = rule;
  rule = rules.RuleFor(window);
  const bool same = sawWindow && rules.ProfileOf(rule) == rules.ProfileOf(before);
  sawWindow = true;
  const bool refused =
      std::any_of(asked.begin(), asked.end(), [](const auto& each) { return each.second.refused; });
  if (!same || refused) SelectEverywhere();
}

void Follower::SeeInstances() {
  if (sawWindow) SelectEverywhere();
}

void Follower::SelectEverywhere() {
  const std::string& profile = rules.ProfileOf(rule);
  const std::vector<std::uint32_t> running = reach.running();
  std::erase_if(asked, [&](const auto& each) {
    return std::find(running.begin(), running.end(), each.first) == running.end();
  });
  bool selected = false;
  for (const std::uint32_t process : running) {
    const auto last = asked.find(process);
    const bool again = last != asked.end() && last->second.profile == profile;
    if (again && !last->second.refused) continue;
    std::string error;
    const bool done = reach.select(process, profile, &error);
    if (!done && error.empty()) continue;
    asked[process] = {profile, !done};
    selected |= done;
    if (!done && !again) news.failed(error);
  }
  if (selected) news.selected(front, rule);
  if (asked.empty() && !saidNobody) news.nobodyRuns();
  saidNobody = asked.empty();
}

bool IsOwnWindow(const FrontWindow& window) {
  if (window.program.empty()) return window.kind == kDesktopId;
  return window.program == "kelvaro" || window.program == "kelvaro.exe";
}

}  // namespace kelvaro::console
