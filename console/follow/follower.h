// Has each running Kelvaro play the profile of the window in front. It asks each only for a change:
// who selects another profile by hand keeps it until the rules want another one.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "console/follow/follow_rules.h"

namespace kelvaro::console {

// How those that run are reached.
struct FollowReach {
  // Their processes.
  std::function<std::vector<std::uint32_t>()> running;
  // False with *error where one can't; an empty error says that it isn't there (yet, or any more).
  std::function<bool(std::uint32_t process, const std::string& profile, std::string* error)> select;
};

// What a person is told, each as it happens.
struct FollowNews {
  std::function<void(const std::optional<FrontWindow>& window, std::size_t rule)> selected;
  std::function<void()> nobodyRuns;
  std::function<void(const std::string& error)> failed;
};

// On one thread.
class Follower {
 public:
  // Borrowed for the life of this.
  Follower(const FollowRules& rules, const FollowReach& reach, const FollowNews& news);

  // Whoever has refused, such as a window with a dialog open, is asked anew at each of these.

  // Another window is in front, or its title is another; nothing for no window. A window of
  // Kelvaro's own changes nothing: who edits the game's profile wants that one.
  void SeeWindow(const std::optional<FrontWindow>& window);

  // One of those that run may have come or gone.
  void SeeInstances();

 private:
  void SelectEverywhere();

  const FollowRules& rules;
  const FollowReach& reach;
  const FollowNews& news;
  bool sawWindow = false;
  std::optional<FrontWindow> front;
  std::size_t rule = 0;
  struct Asked {
    std::string profile;
    bool refused = false;  // it can't just now, which was told
  };
  std::map<std::uint32_t, Asked> asked;  // what each was asked for last
  bool saidNobody = false;
};

// Whether that is a window of the program whose profiles are selected.
bool IsOwnWindow(const FrontWindow& window);

}  // namespace kelvaro::console
