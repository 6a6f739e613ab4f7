#include "console/profile_check.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "app/platform/simulation/virtual_disk.h"
#include "console/file_machine.h"
#include "console/profile_text.h"
#include "console/stored_profile_check.h"

namespace kelvaro::console {
namespace {

constexpr char kInMemory[] = "/profile";

// What decides when a Trigger fires.
struct Inputs {
  bool onPress;
  std::uint64_t buttons;
  std::vector<std::tuple<std::uint16_t, std::uint16_t, std::uint16_t>> items;
  auto operator<=>(const Inputs&) const = default;
};

Inputs InputsOf(const Trigger& trigger) {
  Inputs inputs{trigger.activateOnPress != 0, trigger.buttonMask, {}};
  bool known = true;
  for (auto* node = trigger.triggerItems.head; node; node = node->next) {
    const TriggerItem& item = *node->value;
    known &= item.kind <= input_kind::kPov;
    inputs.items.emplace_back(item.kind, item.index, item.value & 0xFF);
  }
  // Their order is no matter, unless there are kinds among them that spoil what stands before them.
  if (known) {
    std::sort(inputs.items.begin(), inputs.items.end());
    inputs.items.erase(std::unique(inputs.items.begin(), inputs.items.end()), inputs.items.end());
  }
  return inputs;
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
  for (auto* node = profile.DispatchList.head; node; node = node->next) {
    const Control& control = *node->value;
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

ProfileReport CheckProfile(const std::string& bytes, const std::string& name) {
  ProfileReport report;
  ProfileFile profile;
  report.loads = ReadProfileBytes(bytes, name, &profile, &report.fault);
  if (IsStoredProfile(bytes)) {
    platform::simulation::VirtualDisk disk;
    disk.PutFile(kInMemory, bytes);
    const FileMachine memory(disk);
    StoredProfileCheck(&report.findings).Run(kInMemory, bytes.size());
    if (!report.loads)
      report.fault.message = name + ": doesn't load" + FirstDamage(report.findings);
  }
  if (report.loads || IsStoredProfile(bytes)) {
    report.profileName = profile.profileName;
    report.controls = profile.controls.count;
  }
  if (report.loads) FindControlsThatNeverFire(profile, &report.findings);
  return report;
}

}  // namespace kelvaro::console
