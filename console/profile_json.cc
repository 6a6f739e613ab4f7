#include "console/profile_json.h"

#include <algorithm>
#include <memory>
#include <set>
#include <vector>

#include "app/platform/recording/recording.h"
#include "console/json_text.h"
#include "console/key_text.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

constexpr std::uint64_t kMost32 = UINT32_MAX;

// Far more than a pad has use for. Sorting them takes time with the square of their number.
constexpr Json::ArrayIndex kMostControls = 10'000;

std::string Element(const std::string& list, std::size_t index) {
  return list + "[" + std::to_string(index) + "]";
}

// Calls read(element, name) for each element of a member that is a list, up to the first fault.
template <typename Read>
void ForEach(JsonObject& object, const char* name, Read read) {
  const Json::Value* list = object.Find(name);
  if (!list) return;
  if (!list->isArray()) {
    object.Document().Fail(*list, object.MemberName(name), "not a list");
    return;
  }
  for (Json::ArrayIndex i = 0; i < list->size() && !object.Document().Failed(); ++i) {
    read((*list)[i], Element(object.MemberName(name), i));
  }
}

void ReadMouseInput(JsonObject& mouse, const char* name, Relaxed<TriggerItem>* target) {
  const Json::Value* value = mouse.Find(name);
  if (!value) return;
  JsonObject input(mouse.Document(), *value, mouse.MemberName(name));
  TriggerItem item = *target;
  input.Number("kind", &item.kind, UINT16_MAX);
  input.Number("index", &item.index, UINT16_MAX);
  input.RefuseOthers();
  AxisFieldOffset(&item);
  *target = item;
}

void ReadMouse(JsonObject& root, Profile* profile) {
  const Json::Value* value = root.Find("mouse");
  if (!value) return;
  JsonObject mouse(root.Document(), *value, "mouse");
  mouse.Signed("acceleration", &profile->acceleration);
  mouse.Signed("movementSensitivity", &profile->movementSensitivity);
  mouse.Signed("movementDamper", &profile->movementDamper);
  mouse.Signed("wheelSensitivity", &profile->wheelSensitivity);
  mouse.Signed("wheelDamper", &profile->wheelDamper);
  mouse.Number("leftButton", &profile->leftButton, UINT16_MAX);
  mouse.Number("middleButton", &profile->middleButton, UINT16_MAX);
  mouse.Number("rightButton", &profile->rightButton, UINT16_MAX);
  mouse.Mask("leftMask", &profile->leftMask);
  mouse.Mask("middleMask", &profile->middleMask);
  mouse.Mask("rightMask", &profile->rightMask);
  ReadMouseInput(mouse, "mouseX", &profile->mouseX);
  ReadMouseInput(mouse, "mouseY", &profile->mouseY);
  ReadMouseInput(mouse, "mouseWheel", &profile->mouseWheel);
  mouse.Flag("mouseAlwaysActive", &profile->mouseAlwaysActive);
  mouse.RefuseOthers();
}

void ReadTriggerItem(JsonDocument& document, const Json::Value& value, const std::string& name,
                     Control* control) {
  JsonObject object(document, value, name);
  TriggerItem item;
  object.Number("kind", &item.kind, UINT16_MAX);
  object.Number("index", &item.index, UINT16_MAX);
  object.Number("value", &item.value, UINT16_MAX);
  object.RefuseOthers();
  control->triggerItems.AddTail(item);
}

void ReadStep(JsonDocument& document, const Json::Value& value, const std::string& name,
              KeyAction* action) {
  if (!value.isArray() || value.size() != 3) {
    document.Fail(value, name, "not a step such as [65,30,0]");
    return;
  }
  std::uint64_t numbers[3] = {};
  for (Json::ArrayIndex i = 0; i < 3; ++i) {
    if (!ReadWholeNumber(document, value[i], Element(name, i), UINT8_MAX, &numbers[i])) return;
  }
  action->steps.AddTail(KeyStep{static_cast<std::uint8_t>(numbers[0]),
                                static_cast<std::uint8_t>(numbers[1]),
                                static_cast<std::uint8_t>(numbers[2])});
}

void ReadAction(JsonDocument& document, const Json::Value& value, const std::string& name,
                Control* control) {
  JsonObject object(document, value, name);
  auto action = std::make_unique<KeyAction>();
  object.Number("actionFlags", &action->actionFlags, kMost32);
  ByteString text;
  object.Text("text", &text);
  if (object.Find("steps")) {
    ForEach(object, "steps", [&](const Json::Value& step, const std::string& stepName) {
      ReadStep(document, step, stepName, action.get());
    });
  } else if (const Json::Value* member = object.Find("text"); member && !document.Failed()) {
    const KeyTextResult parsed = ParseKeyText(text, action.get());
    if (parsed.faulty) {
      document.Fail(*member, object.MemberName("text"), parsed.what, parsed.detail);
    }
  }
  object.RefuseOthers();
  if (control->actions.AddTail(action.get()))
    static_cast<void>(action.release());  // the list's now
}

// Whether the Control named its own controlId.
bool ReadControl(JsonDocument& document, const Json::Value& value, const std::string& name,
                 Control* control) {
  JsonObject object(document, value, name);
  const bool hasId = object.Find("controlId") != nullptr;
  object.Number("controlId", &control->controlId, kMost32);
  object.Text("description", &control->description);
  object.Flag("activateOnPress", &control->activateOnPress);
  object.Flag("triggerOption", &control->triggerOption);
  std::uint64_t mask = 0;
  object.Mask("buttonMask", &mask);
  control->SetButtonMask(mask);
  ForEach(object, "triggerItems", [&](const Json::Value& item, const std::string& itemName) {
    ReadTriggerItem(document, item, itemName, control);
  });
  ByteString unused;
  object.Text("triggerText", &unused);  // follows from the others
  object.Flag("toggleMouseControls", &control->toggleMouseControls);
  object.Flag("repeatEnabled", &control->repeatEnabled);
  object.Number("repeatDelay", &control->repeatDelay, kMost32);
  object.Number("repeatSpeed", &control->repeatSpeed, kMost32);
  object.Number("keyHoldTime", &control->keyHoldTime, kMost32);
  object.Number("keyReleasePause", &control->keyReleasePause, kMost32);
  ForEach(object, "actions", [&](const Json::Value& action, const std::string& actionName) {
    ReadAction(document, action, actionName, control);
  });
  object.RefuseOthers();
  return hasId;
}

void NumberControls(Profile* profile, const std::vector<bool>& hasId, bool counterGiven) {
  std::set<std::uint32_t> taken;
  std::uint32_t highest = 0;
  std::size_t i = 0;
  for (const Control& control : profile->controls) {
    if (!hasId[i++]) continue;
    taken.insert(control.controlId);
    highest = std::max(highest, control.controlId);
  }
  std::uint32_t next = profile->nextControlId;
  i = 0;
  for (Control& control : profile->controls) {
    if (hasId[i++]) continue;
    while (taken.contains(next)) ++next;
    control.controlId = next++;
  }
  if (!counterGiven && highest >= next && highest != UINT32_MAX) next = highest + 1;
  profile->nextControlId = next;
}

}  // namespace

bool ReadProfile(const std::string& text, Profile* profile, JsonFault* fault) {
  JsonDocument document;
  if (!document.Parse(text)) {
    *fault = document.Fault();
    return false;
  }
  JsonObject root(document, document.Root(), {});
  root.Text("profileName", &profile->profileName);
  const bool counterGiven = root.Find("nextControlId") != nullptr;
  root.Number("nextControlId", &profile->nextControlId, kMost32);
  root.Text("deviceName", &profile->deviceName);
  root.Number("pollInterval", &profile->pollInterval, kMost32);
  if (const Json::Value* guid = root.Find("deviceGuid");
      guid && (!guid->isString() || !platform::ParseGuid(guid->asString(), &profile->deviceGuid))) {
    document.Fail(*guid, "deviceGuid", "not 32 hex digits");
  }
  ReadMouse(root, profile);
  if (const Json::Value* list = root.Find("controls");
      list && list->isArray() && list->size() > kMostControls) {
    document.Fail(*list, "controls", "more than " + std::to_string(kMostControls));
  }
  std::vector<bool> hasId;
  ForEach(root, "controls", [&](const Json::Value& value, const std::string& name) {
    if (!profile->controls.AddTail({})) return;
    hasId.push_back(ReadControl(document, value, name, profile->controls.tail->value));
  });
  root.RefuseOthers();
  if (document.Failed()) {
    *fault = document.Fault();
    return false;
  }
  NumberControls(profile, hasId, counterGiven);
  profile->RebuildDispatchList();
  return true;
}

}  // namespace kelvaro::console
