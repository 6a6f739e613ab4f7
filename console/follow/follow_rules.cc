#include "console/follow/follow_rules.h"

#include <utility>

#include "app/platform/file_pattern.h"

namespace kelvaro::console {
namespace {

bool Fits(const std::optional<std::string>& pattern, const std::string& text) {
  return !pattern || (!text.empty() && platform::FitsPattern(text, *pattern));
}

void ReadPattern(JsonObject* object, const char* name, std::optional<std::string>* pattern) {
  const auto member = object->Find(name);
  if (!member) return;
  ByteString text;
  Read(*member, text);
  *pattern = Bytes(text);
  if ((*pattern)->empty()) member->Fail("empty, which no window is");
}

// The member may be missing.
void ReadProfile(const JsonElement& owner, const char* name,
                 const std::optional<JsonElement>& member,
                 const FollowRules::ProfileFault& profileFault, std::string* profile) {
  if (!member) return owner.Fail(std::string("no ") + name);
  ByteString text;
  Read(*member, text);
  if (owner.document.Failed()) return;
  *profile = Bytes(text);
  if (const std::string fault = profileFault(*profile); !fault.empty()) member->Fail(fault);
}

FollowRule ReadRule(const JsonElement& element, const FollowRules::ProfileFault& profileFault) {
  FollowRule rule;
  JsonObject object(element);
  ReadPattern(&object, "program", &rule.program);
  ReadPattern(&object, "class", &rule.kind);
  ReadPattern(&object, "title", &rule.title);
  const auto profile = object.Find("profile");
  object.RefuseOthers();
  if (!rule.program && !rule.kind && !rule.title) element.Fail("no program, class or title");
  ReadProfile(element, "profile", profile, profileFault, &rule.profile);
  return rule;
}

}  // namespace

bool FollowRule::Fits(const FrontWindow& window) const {
  return console::Fits(program, window.program) && console::Fits(kind, window.kind) &&
         console::Fits(title, window.title);
}

bool FollowRules::Read(const std::string& text, const ProfileFault& profileFault,
                       JsonFault* fault) {
  JsonDocument document;
  FollowRules read;
  if (document.Parse(text)) {
    const JsonElement root = document.Root();
    JsonObject object(root);
    const auto profile = object.Find("default");
    const auto list = object.Find("rules");
    object.RefuseOthers();
    ReadProfile(root, "default", profile, profileFault, &read.fallback);
    if (!list) {
      root.Fail("no rules");
    } else {
      ForEach(*list,
              [&](const JsonElement& each) { read.rules.push_back(ReadRule(each, profileFault)); });
    }
  }
  if (document.Failed()) {
    *fault = document.Fault();
    return false;
  }
  *this = std::move(read);
  return true;
}

std::size_t FollowRules::RuleFor(const std::optional<FrontWindow>& window) const {
  for (std::size_t i = 0; window && i < rules.size(); ++i)
    if (rules[i].Fits(*window)) return i + 1;
  return 0;
}

const std::string& FollowRules::ProfileOf(std::size_t rule) const {
  return rule == 0 ? fallback : rules[rule - 1].profile;
}

}  // namespace kelvaro::console
