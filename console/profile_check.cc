#include "console/profile_check.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>

#include "console/engine_trial.h"
#include "console/event_line.h"
#include "console/fitting_states.h"
#include "console/profile_text.h"
#include "console/stored_profile_check.h"
#include "console/terminal_text.h"
#include "console/this_system.h"
#include "engine/input_text.h"
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

// Whether it fires when its inputs are as it wants them, as far as a pad can have them so.
bool CanFire(const Control& control) {
  const auto isHeld = [&](const DIJOYSTATE2& state) { return IsHeld(control, state); };
  return FindState({&control}, isHeld).has_value();
}

// Without the masks that other buttons can have a Control of them fire by: one of several buttons,
// or of the 32nd (MouseButtonStep).
MouseSettings WithPlainMasks(MouseSettings mouse) {
  for (const MouseRoleInput& input : kMouseRoles) {
    if (!input.mask) continue;
    const std::uint64_t mask = mouse.*input.mask;
    if (CountButtons(mask) != 1 || mask >= std::uint64_t{1} << 31) mouse.*input.mask = 0;
  }
  return mouse;
}

// "B1+Axis_X0": the mouse has an axis or a hat to both sides.
std::string NamesText(const Trigger& trigger) {
  ByteString text;
  ButtonsText(trigger.buttonMask, &text);
  for (const TriggerItem& item : trigger.triggerItems) {
    if (!text.IsEmpty()) text.Append("+");
    InputText({item.kind, item.index, 0}, &text, false);
  }
  return Bytes(text);
}

// Why the Control can't fire even alone; "" where it can. With a trial the mouse controls are
// always on.
std::string WhyUnfit(EngineTrial* mouseTrial, const Control& control) {
  if (control.Weight() == 0) return "it has no inputs";
  if (!CanFire(control)) {
    ByteString inputs;
    TriggerText(control, &inputs);
    return "no state of a pad fits " + TerminalText(inputs);
  }
  Trigger taken;
  if (!mouseTrial || !mouseTrial->TakenInputs(control, &taken)) return "";
  return "the mouse controls are always on and have " + NamesText(taken);
}

// The character that the step types on a United States keyboard, aside from modifiers that are held
// with it for their own sake; 0 for a key that types none.
char TypedCharacter(KeyStep step) {
  if ((step.flags & KeyFlagPause) != 0 || step.vk == 0) return 0;
  step.flags &= KeyFlagImpliedShift;
  KeyAction alone;
  alone.steps.AddTail(step);
  const std::string text = Bytes(alone.FormatKeys());
  if (text == "<<") return '<';
  return text.size() == 1 ? text[0] : '\0';
}

// ": list 3 (profile name): field 0 is missing"
std::string FirstDamage(const std::vector<Finding>& findings) {
  for (const Finding& finding : findings) {
    if (finding.kind == Finding::Kind::Damage) return ": " + finding.where + ": " + finding.what;
  }
  return "";
}

// A file that is listed, and that a save of its profile leaves as it is.
void FindOtherFile(const std::string& bytes, const std::string& path, const ProfileFile& profile,
                   std::vector<Finding>* findings) {
  if (!IsStoredProfile(bytes) || !path.ends_with(ProfileLibrary::kExtension)) return;
  const std::string saved = Bytes(ProfileLibrary::ProfileFileName(profile.profileName));
  if (saved.empty() || path.substr(path.find_last_of("\\/") + 1) == saved) return;
  findings->push_back({Finding::Kind::OtherFile, "root",
                       "a save of '" + TerminalText(profile.profileName) + "' goes to '" + saved +
                           "', not to this file"});
}

}  // namespace

std::vector<UnfitControl> ControlsThatNeverFire(const Profile& profile) {
  std::vector<UnfitControl> unfit;
  std::map<Inputs, const Control*> before;
  std::optional<EngineTrial> mouseTrial;
  if (profile.mouseAlwaysActive) mouseTrial.emplace(WithPlainMasks(profile));
  profile.profileLock.NotNeeded();
  for (const Control& control : profile.DispatchList) {
    std::string why = WhyUnfit(mouseTrial ? &*mouseTrial : nullptr, control);
    if (why.empty()) {
      const auto [first, isFirst] = before.emplace(InputsOf(control), &control);
      if (!isFirst) why = "it has the same inputs as " + ControlName(*first->second);
    }
    if (!why.empty()) unfit.push_back({&control, why});
  }
  return unfit;
}

void FindControlsThatNeverFire(const Profile& profile, std::vector<Finding>* findings) {
  for (const UnfitControl& unfit : ControlsThatNeverFire(profile)) {
    findings->push_back({Finding::Kind::NeverFires, ControlName(*unfit.control), unfit.why});
  }
}

void FindOtherCharacters(const Profile& profile, const Typing& types,
                         std::vector<Finding>* findings) {
  for (const Control& control : profile.controls) {
    std::set<char> looked;
    std::string others;
    for (const InputAction* each : control.actions) {
      const auto* const action = dynamic_cast<const KeyAction*>(each);
      if (!action) continue;
      for (const KeyStep& step : action->steps) {
        const char wanted = TypedCharacter(step);
        if (wanted == 0 || !looked.insert(wanted).second) continue;
        const std::string typed = types(KeyCodeOf(step), (step.flags & KeyFlagImpliedShift) != 0);
        if (typed == std::string(1, wanted)) continue;
        others += (others.empty() ? "" : ", ") + std::string(1, wanted) + " into " +
                  (typed.empty() ? "nothing" : TerminalText(typed));
      }
    }
    if (others.empty()) continue;
    findings->push_back({Finding::Kind::OtherCharacter, ControlName(control),
                         "the layout of this desktop turns " + others});
  }
}

void FindPausesAtTheEnd(const Profile& profile, std::vector<Finding>* findings) {
  for (const Control& control : profile.controls) {
    const auto* const action = control.actions.tail
                                   ? dynamic_cast<const KeyAction*>(*control.actions.tail->value)
                                   : nullptr;
    if (!action || !action->steps.tail) continue;
    if ((action->steps.tail->value->flags & KeyFlagPause) == 0) continue;
    const bool holdsTheLast = !action->HoldsAllKeys() && !control.repeatEnabled;
    findings->push_back({Finding::Kind::PauseLast, ControlName(control),
                         holdsTheLast
                             ? "its keys end in a pause, so that none stays down"
                             : "its keys end in a pause, which only keeps the pad waiting"});
  }
}

void FindUnsureKeys(const Profile& profile, std::vector<Finding>* findings) {
  for (const Control& control : profile.controls) {
    std::set<std::string> told;
    for (const InputAction* each : control.actions) {
      const auto* const action = dynamic_cast<const KeyAction*>(each);
      if (!action) continue;
      for (const KeyStep& step : action->steps) {
        const std::string doubt = KeyDoubt(step);
        if (doubt.empty() || !told.insert(doubt).second) continue;
        findings->push_back({Finding::Kind::UnsureKey, ControlName(control), doubt});
      }
    }
  }
}

ProfileReport CheckProfile(const std::string& bytes, const std::string& name, const Typing& types) {
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
    report.isWhole = false;
    report.fault.message = name + ": isn't whole; " + std::to_string(profile.controls.count) +
                           (profile.controls.count == 1 ? " Control" : " Controls") +
                           " of it can be read";
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
    if (types) FindOtherCharacters(profile, types, &report.findings);
    FindPausesAtTheEnd(profile, &report.findings);
    FindOtherFile(bytes, name, profile, &report.findings);
  }
  return report;
}

}  // namespace kelvaro::console
