#include "console/profile_json_writer.h"

#include <cstdio>

#include "app/platform/recording/recording.h"
#include "console/json_text.h"
#include "engine/input_text.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

// The members of one object, in the order in which they are added.
class JsonMembers {
 public:
  JsonMembers& Raw(const char* name, const std::string& json) {
    text += text.empty() ? "{\"" : ",\"";
    text += name;
    text += "\":";
    text += json;
    return *this;
  }
  JsonMembers& Number(const char* name, std::int64_t value) {
    return Raw(name, std::to_string(value));
  }
  JsonMembers& Flag(const char* name, bool value) { return Raw(name, value ? "true" : "false"); }
  JsonMembers& Text(const char* name, const ByteString& value) {
    return Raw(name, JsonText(value));
  }
  JsonMembers& Mask(const char* name, std::uint64_t value) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "\"0x%llx\"", static_cast<unsigned long long>(value));
    return Raw(name, digits);
  }
  std::string Object() const { return text + "}"; }

 private:
  std::string text;
};

// The elements of one list.
class JsonList {
 public:
  void Add(const std::string& json) {
    if (!text.empty()) text += ',';
    text += json;
  }
  std::string List() const { return "[" + text + "]"; }

 private:
  std::string text;
};

std::string MouseInputJson(TriggerItem input) {
  return JsonMembers().Number("kind", input.kind).Number("index", input.index).Object();
}

std::string MouseJson(const MouseSettings& mouse) {
  return JsonMembers()
      .Number("acceleration", mouse.acceleration)
      .Number("movementSensitivity", mouse.movementSensitivity)
      .Number("movementDamper", mouse.movementDamper)
      .Number("wheelSensitivity", mouse.wheelSensitivity)
      .Number("wheelDamper", mouse.wheelDamper)
      .Number("leftButton", mouse.leftButton)
      .Number("middleButton", mouse.middleButton)
      .Number("rightButton", mouse.rightButton)
      .Mask("leftMask", mouse.leftMask)
      .Mask("middleMask", mouse.middleMask)
      .Mask("rightMask", mouse.rightMask)
      .Raw("mouseX", MouseInputJson(mouse.mouseX))
      .Raw("mouseY", MouseInputJson(mouse.mouseY))
      .Raw("mouseWheel", MouseInputJson(mouse.mouseWheel))
      .Flag("mouseAlwaysActive", mouse.mouseAlwaysActive)
      .Object();
}

std::string TriggerItemsJson(const Trigger& trigger) {
  JsonList items;
  for (const TriggerItem& item : trigger.triggerItems) {
    items.Add(JsonMembers()
                  .Number("kind", item.kind)
                  .Number("index", item.index)
                  .Number("value", item.value)
                  .Object());
  }
  return items.List();
}

std::string ActionsJson(const Control& control) {
  JsonList actions;
  for (const InputAction* each : control.actions) {
    const auto* const action = dynamic_cast<const KeyAction*>(each);
    if (!action) continue;
    actions.Add(JsonMembers()
                    .Number("actionFlags", action->actionFlags)
                    .Raw("steps", JsonSteps(action->steps))
                    .Text("text", action->FormatKeys())
                    .Object());
  }
  return actions.List();
}

std::string ControlJson(const Control& control) {
  ByteString trigger;
  TriggerText(control, &trigger);
  return JsonMembers()
      .Number("controlId", control.controlId)
      .Text("description", control.description)
      .Flag("activateOnPress", control.activateOnPress)
      .Flag("triggerOption", control.triggerOption)
      .Mask("buttonMask", control.buttonMask)
      .Raw("triggerItems", TriggerItemsJson(control))
      .Text("triggerText", trigger)
      .Flag("toggleMouseControls", control.toggleMouseControls)
      .Flag("repeatEnabled", control.repeatEnabled)
      .Number("repeatDelay", control.repeatDelay)
      .Number("repeatSpeed", control.repeatSpeed)
      .Number("keyHoldTime", control.keyHoldTime)
      .Number("keyReleasePause", control.keyReleasePause)
      .Raw("actions", ActionsJson(control))
      .Object();
}

}  // namespace

std::string ProfileJson(const Profile& profile) {
  JsonList controls;
  for (const Control& control : profile.controls) {
    controls.Add(ControlJson(control));
  }
  return JsonMembers()
      .Text("profileName", profile.profileName)
      .Number("nextControlId", profile.nextControlId)
      .Text("deviceName", profile.deviceName)
      .Number("pollInterval", profile.pollInterval)
      .Raw("deviceGuid", "\"" + platform::GuidText(profile.deviceGuid) + "\"")
      .Raw("mouse", MouseJson(profile))
      .Raw("controls", controls.List())
      .Object();
}

}  // namespace kelvaro::console
