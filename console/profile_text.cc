#include "console/profile_text.h"

#include <algorithm>
#include <vector>

#include "app/platform/recording/recording.h"
#include "console/terminal_text.h"
#include "engine/input_text.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

// A column grows with its longest text up to here.
constexpr std::size_t kWidestColumn = 32;

std::string Ms(std::uint32_t value) { return std::to_string(value) + " ms"; }

std::string InputName(TriggerItem input) {
  if (input.kind == input_kind::kNone) return "none";
  if (input.kind > input_kind::kPovVertical) return "unknown kind " + std::to_string(input.kind);
  const std::string name = TerminalText(kelvaro::InputName(input.kind));
  const std::string direction = input.kind == input_kind::kPov           ? " left and right"
                                : input.kind == input_kind::kPovVertical ? " up and down"
                                                                         : "";
  return name + std::to_string(input.index) + direction;
}

std::string ButtonName(std::uint16_t button, std::uint64_t mask) {
  return mask == 0 ? "none" : "B" + std::to_string(button + 1);
}

std::string DeviceText(const Profile& profile) {
  const bool hasGuid = profile.deviceGuid != platform::GUID{};
  std::string text = profile.deviceName.IsEmpty() ? "" : TerminalText(profile.deviceName);
  if (hasGuid) {
    text += (text.empty() ? "" : ", ") + platform::GuidText(profile.deviceGuid);
  }
  return text.empty() ? "any" : text;
}

std::string MouseText(const MouseSettings& mouse) {
  return "pointer " + InputName(mouse.mouseX) + " by " + InputName(mouse.mouseY) +
         ", sensitivity " + std::to_string(mouse.movementSensitivity) + ", damper " +
         std::to_string(mouse.movementDamper) + " %\n            wheel " +
         InputName(mouse.mouseWheel) + ", sensitivity " + std::to_string(mouse.wheelSensitivity) +
         ", damper " + std::to_string(mouse.wheelDamper) + " %\n            buttons left " +
         ButtonName(mouse.leftButton, mouse.leftMask) + ", middle " +
         ButtonName(mouse.middleButton, mouse.middleMask) + ", right " +
         ButtonName(mouse.rightButton, mouse.rightMask) +
         (mouse.mouseAlwaysActive ? "; always on" : "");
}

std::string FlagsText(const Control& control) {
  std::string text;
  const auto add = [&text](const std::string& flag) { text += (text.empty() ? "" : ", ") + flag; };
  if (!control.activateOnPress) add("when let go");
  if (control.repeatEnabled) {
    add("repeats after " + Ms(control.repeatDelay) + " every " + Ms(control.repeatSpeed));
  }
  if (control.keyHoldTime > 0) add("keys held " + Ms(control.keyHoldTime));
  if (control.keyReleasePause > 0) add("pauses " + Ms(control.keyReleasePause));
  if (control.toggleMouseControls) add("mouse on and off");
  if (text.empty()) return "";
  return (control.description.IsEmpty() ? "[" : " [") + text + "]";
}

std::string Padded(const std::string& text, std::size_t width) {
  const std::size_t length = Characters(text);
  return length < width ? text + std::string(width - length, ' ') : text;
}

// Width of a column over all rows.
template <typename Row>
std::size_t Width(const std::vector<Row>& rows, std::string Row::*column) {
  std::size_t width = 0;
  for (const Row& row : rows) width = std::max(width, Characters(row.*column));
  return std::min(width, kWidestColumn);
}

struct ControlRow {
  std::string id;
  std::string trigger;
  std::string keys;
  std::string rest;
};

std::string ControlLines(const LinkedList<Control>& controls) {
  std::vector<ControlRow> rows;
  for (const Control& control : controls) {
    ByteString trigger;
    TriggerText(control, &trigger);
    rows.push_back({std::to_string(control.controlId),
                    trigger.IsEmpty() ? "no input" : TerminalText(trigger), KeysText(control),
                    TerminalText(control.description) + FlagsText(control)});
  }
  const std::size_t id = Width(rows, &ControlRow::id);
  const std::size_t trigger = Width(rows, &ControlRow::trigger);
  const std::size_t keys = Width(rows, &ControlRow::keys);
  std::string text;
  for (const ControlRow& row : rows) {
    std::string line = "  " + std::string(id - row.id.size(), ' ') + row.id + "  " +
                       Padded(row.trigger, trigger) + "  " + Padded(row.keys, keys) + "  " +
                       row.rest;
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace

std::string ControlName(const Control& control) {
  std::string name = "Control " + std::to_string(control.controlId);
  if (!control.description.IsEmpty()) name += " '" + TerminalText(control.description) + "'";
  return name;
}

std::string KeysText(const Control& control) {
  std::string text;
  for (const InputAction* each : control.actions) {
    const auto* const action = dynamic_cast<const KeyAction*>(each);
    if (!action) continue;
    if (!text.empty()) text += " then ";
    text += TerminalText(action->FormatKeys());
    if (action->HoldsAllKeys()) text += " (all held)";
  }
  return text.empty() ? "-" : text;
}

std::string ProfileText(const Profile& profile) {
  const std::string name = TerminalText(profile.profileName);
  return (name.empty() ? "(no name)" : name) + "\n  device    " + DeviceText(profile) +
         "\n  polled    every " + Ms(profile.pollInterval) + "\n  mouse     " + MouseText(profile) +
         "\n  Controls  " + std::to_string(profile.controls.count) + "\n" +
         ControlLines(profile.controls);
}

}  // namespace kelvaro::console
