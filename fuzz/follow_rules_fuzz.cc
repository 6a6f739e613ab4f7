// Rules of `follow` of any bytes. Checked: a fault has words, and leaves the rules that were there;
// and rules that are read send every window, and none, to a profile that may be selected.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "console/follow/follow_rules.h"
#include "fuzz/check.h"

namespace {

using kelvaro::console::FollowRules;
using kelvaro::console::FrontWindow;
using kelvaro::console::JsonFault;

constexpr char kBefore[] = R"({"default": "before", "rules": []})";

std::string ProfileFault(const std::string& profile) {
  return profile.empty() || profile[0] == '-' ? "no such profile" : "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  FollowRules rules;
  JsonFault fault;
  Check(rules.Read(kBefore, ProfileFault, &fault), "sound rules can't be read");
  const bool read = rules.Read(text, ProfileFault, &fault);
  if (!read) Check(!fault.what.empty(), "a fault without words", text);

  // Texts that the rules' own patterns are likely to fit.
  const std::string half = text.substr(size / 2);
  const std::optional<FrontWindow> windows[] = {
      std::nullopt, FrontWindow{}, FrontWindow{"game", "Game", "The Game"},
      FrontWindow{text, half, text}, FrontWindow{half, "", half}};
  for (const auto& window : windows) {
    const std::size_t rule = rules.RuleFor(window);
    const std::string& profile = rules.ProfileOf(rule);
    if (!read) {
      Check(rule == 0 && profile == "before", "a fault has changed the rules", text);
    } else {
      Check(window || rule == 0, "a rule for no window", text);
      Check(ProfileFault(profile).empty(), "a profile that can't be selected", text);
    }
  }
  return 0;
}
