#include "console/profile_check.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "app/platform/linux/key_map.h"
#include "console/event_line.h"
#include "console/profile_text.h"
#include "console/stored_profile_check.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

using Item = std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>;

// What decides when a Trigger fires: on press, the buttons, the other inputs with their sides.
using Inputs = std::tuple<bool, std::uint64_t, std::vector<Item>>;

Inputs InputsOf(const Trigger& trigger) {
  std::vector<Item> items;
  bool known = true;
  for (const TriggerItem& item : trigger.triggerItems) {
    known &= item.kind <= input_kind::kPov;
    items.emplace_back(item.kind, item.index, item.value & 0xFF);
  }
  // Their order doesn't matter, unless a kind among them spoils what stands before it.
  if (known) {
    std::sort(items.begin(), items.end());
    items.erase(std::unique(items.begin(), items.end()), items.end());
  }
  return {trigger.activateOnPress != 0, trigger.buttonMask, items};
}

// Why the key may come out otherwise than written; "" where it doesn't.
std::string Doubt(const KeyStep& step) {
  if ((step.flags & KeyFlagPause) || step.vk == 0) return "";
  const std::uint16_t code = platform::KernelKeyCode(step.vk, step.scan);
  const std::string name = KeyName(step.vk, step.scan);
  if (code == 0) return "Linux has no key for " + name + ", so nothing is sent";
  if (platform::DependsOnNumLock(code)) return "Num Lock decides what " + name + " types";
  if (!platform::IsInX(code)) return name + " needs /dev/uinput; by XTest nothing is sent";
  return "";
}

// ": list 3 (profile name): field 0 is missing"
std::string FirstDamage(const std::vector<Finding>& findings) {
  for (const Finding& finding : findings) {
    if (finding.kind == Finding::Kind::Damage) return ": " + finding.where + ": " + finding.what;
  }
  return "";
}

}  // namespace

void FindControlsThatNeverFire(const Profile& profile, std::vector<Finding>* findings) {
  std::map<Inputs, const Control*> before;
  for (const Control& control : profile.DispatchList) {
    if (control.Weight() == 0) {
      findings->push_back({Finding::Kind::NeverFires, ControlName(control), "it has no inputs"});
      continue;
    }
    const auto [first, isFirst] = before.emplace(InputsOf(control), &control);
    if (isFirst) continue;
    findings->push_back({Finding::Kind::NeverFires, ControlName(control),
                         "it has the same inputs as " + ControlName(*first->second)});
  }
}

void FindUnsureKeys(const Profile& profile, std::vector<Finding>* findings) {
  for (const Control& control : profile.controls) {
    std::set<std::string> told;
    for (const InputAction* each : control.actions) {
      const auto* const action = dynamic_cast<const KeyAction*>(each);
      if (!action) continue;
      for (const KeyStep& step : action->steps) {
        const std::string doubt = Doubt(step);
        if (doubt.empty() || !told.insert(doubt).second) continue;
        findings->push_back({Finding::Kind::UnsureKey, ControlName(control), doubt});
      }
    }
  }
}

ProfileReport CheckProfile(const std::string& bytes, const std::string& name) {
  ProfileReport report;
  StoredProfileCheck profile(bytes.size(), &report.findings);
  report.loads = ReadProfileBytes(bytes, name, &profile, &report.fault);
  if (!report.loads && IsStoredProfile(bytes)) {
    if (report.findings.empty()) {
      report.findings.push_back({Finding::Kind::Damage, "root", "no list can be read"});
    }
    report.fault.message = name + ": doesn't load" + FirstDamage(report.findings);
  }
  if (report.loads && !profile.DamagedFile().IsEmpty()) {
    report.findings.push_back({Finding::Kind::NotWhole, "root",
                               "the first save over it keeps its bytes in a file whose name ends "
                               "in .damaged"});
  }
  if (report.loads || IsStoredProfile(bytes)) {
    report.profileName = profile.profileName;
    report.controls = profile.controls.count;
  }
  if (report.loads) {
    FindControlsThatNeverFire(profile, &report.findings);
    FindUnsureKeys(profile, &report.findings);
  }
  return report;
}

}  // namespace kelvaro::console
