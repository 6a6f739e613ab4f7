#include "console/profile_json.h"

#include <concepts>
#include <cstdio>
#include <memory>
#include <set>

#include "app/platform/recording/recording.h"
#include "console/json_text.h"
#include "console/key_text.h"
#include "engine/input_text.h"
#include "engine/members.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

// Reading: each member by its type.

void Read(const JsonElement& element, platform::GUID& guid) {
  if (!element.value.IsText() || !platform::ParseGuid(element.value.Text(), &guid)) {
    element.Fail("not 32 hex digits");
  }
}

// What a Trigger's text says follows from the others.
void Read(const JsonElement& element, Trigger&) {
  ByteString unused;
  Read(element, unused);
}

template <typename T>
void Read(const JsonElement& element, Relaxed<T>& member) {
  T plain = member;
  Read(element, plain);
  member = plain;
}

void Read(const JsonElement& element, Relaxed<TriggerItem>& mouseInput) {
  JsonObject object(element);
  TriggerItem item = mouseInput;
  object.Member("kind", item.kind);
  object.Member("index", item.index);
  object.RefuseOthers();
  mouseInput = MouseInput(item.kind, item.index);
}

void Read(const JsonElement& element, MouseSettings& mouse);
void Read(const JsonElement& element, LinkedList<TriggerItem>& items);
void Read(const JsonElement& element, LinkedList<InputAction*>& actions);
void Read(const JsonElement& element, LinkedList<Control>& controls);

template <typename T>
void ReadObject(const JsonElement& element, T& target) {
  JsonObject object(element);
  VisitMembers(target, [&object](const char* name, auto& member) {
    if (const auto found = object.Find(name)) Read(*found, member);
  });
  object.RefuseOthers();
}

void Read(const JsonElement& element, MouseSettings& mouse) { ReadObject(element, mouse); }

void Read(const JsonElement& element, LinkedList<TriggerItem>& items) {
  ForEach(element, [&items](const JsonElement& each) {
    TriggerItem item;
    ReadObject(each, item);
    items.AddTail(item);
  });
}

void ReadStep(const JsonElement& element, KeyAction* action) {
  if (element.value.Elements().size() != 3) {
    element.Fail("not a step such as [65,30,0]");
    return;
  }
  KeyStep step;
  std::uint8_t* const bytes[] = {&step.vk, &step.scan, &step.flags};
  std::size_t i = 0;
  ForEach(element, [&](const JsonElement& each) { ReadByte(each, bytes[i++]); });
  action->steps.AddTail(step);
}

void Read(const JsonElement& element, LinkedList<InputAction*>& actions) {
  ForEach(element, [&actions](const JsonElement& each) {
    JsonObject object(each);
    auto action = std::make_unique<KeyAction>();
    object.Member("actionFlags", action->actionFlags);
    ByteString text;
    object.Member("text", text);
    if (const auto steps = object.Find("steps")) {
      ForEach(*steps, [&action](const JsonElement& step) { ReadStep(step, action.get()); });
    } else if (const auto member = object.Find("text"); member && !each.document.Failed()) {
      const KeyTextResult parsed = ParseKeyText(text, action.get());
      if (parsed.faulty) member->Fail(parsed.what, parsed.detail);
    }
    object.RefuseOthers();
    if (actions.AddTail(action.get())) static_cast<void>(action.release());  // the list's now
  });
}

void Read(const JsonElement& element, LinkedList<Control>& controls) {
  if (element.value.Elements().size() > kMostControls) {
    element.Fail("more than " + std::to_string(kMostControls));
  }
  ForEach(element, [&controls](const JsonElement& each) {
    if (!controls.AddTail({})) return;
    Control& control = *controls.tail->value;
    ReadObject(each, control);
    control.SetButtonMask(control.buttonMask);
  });
}

// Numbers the Controls that have no number.
void NumberControls(const platform::json::Value& root, Profile* profile) {
  const platform::json::Value* const list = root.Find("controls");
  if (!list) return;
  const auto isNumbered = [&](std::size_t i) {
    return list->Elements()[i].Find("controlId") != nullptr;
  };
  std::set<std::uint32_t> taken;
  std::size_t i = 0;
  for (const Control& control : profile->controls) {
    if (isNumbered(i++)) taken.insert(control.controlId);
  }
  std::uint32_t& next = profile->nextControlId;
  i = 0;
  for (Control& control : profile->controls) {
    if (isNumbered(i++)) continue;
    while (taken.contains(next)) ++next;
    control.controlId = next++;
  }
  const std::uint32_t highest = taken.empty() ? 0 : *taken.rbegin();
  if (!root.Find("nextControlId") && highest >= next && highest != UINT32_MAX) {
    next = highest + 1;
  }
}

// Writing: each member by its type.

std::string JsonOf(bool value) { return value ? "true" : "false"; }
std::string JsonOf(std::uint8_t flag) { return JsonOf(flag != 0); }
template <std::integral T>
std::string JsonOf(T number) {
  return std::to_string(number);
}
std::string JsonOf(std::uint64_t mask) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "\"0x%llx\"", static_cast<unsigned long long>(mask));
  return digits;
}
std::string JsonOf(const ByteString& text) { return JsonText(text); }
std::string JsonOf(const platform::GUID& guid) { return "\"" + platform::GuidText(guid) + "\""; }
std::string JsonOf(const Trigger& trigger) {
  ByteString text;
  TriggerText(trigger, &text);
  return JsonText(text);
}
std::string JsonOf(TriggerItem mouseInput) {
  return "{\"kind\":" + JsonOf(mouseInput.kind) + ",\"index\":" + JsonOf(mouseInput.index) + "}";
}
template <typename T>
std::string JsonOf(const Relaxed<T>& member) {
  return JsonOf(static_cast<T>(member));
}
std::string JsonOf(const MouseSettings& mouse);
std::string JsonOf(const LinkedList<TriggerItem>& items);
std::string JsonOf(const LinkedList<InputAction*>& actions);
std::string JsonOf(const LinkedList<Control>& controls);

template <typename T>
std::string Object(const T& item) {
  std::string text;
  VisitMembers(item, [&text](const char* name, const auto& member) {
    text.append(text.empty() ? "{\"" : ",\"").append(name).append("\":").append(JsonOf(member));
  });
  return text + "}";
}

// What write(element) gives for each element; an empty text is left out.
template <typename T, typename Write>
std::string List(const LinkedList<T>& list, Write write) {
  std::string text;
  for (const T& each : list) {
    const std::string element = write(each);
    if (!element.empty()) text += (text.empty() ? "" : ",") + element;
  }
  return "[" + text + "]";
}

std::string JsonOf(const MouseSettings& mouse) { return Object(mouse); }

std::string JsonOf(const LinkedList<TriggerItem>& items) {
  return List(items, Object<TriggerItem>);
}

std::string JsonOf(const LinkedList<InputAction*>& actions) {
  return List(actions, [](const InputAction* each) -> std::string {
    const auto* const action = dynamic_cast<const KeyAction*>(each);
    if (!action) return "";
    return "{\"actionFlags\":" + JsonOf(action->actionFlags) +
           ",\"steps\":" + JsonSteps(action->steps) + ",\"text\":" + JsonOf(action->FormatKeys()) +
           "}";
  });
}

std::string JsonOf(const LinkedList<Control>& controls) { return List(controls, Object<Control>); }

}  // namespace

bool ReadProfile(const std::string& text, Profile* profile, JsonFault* fault) {
  JsonDocument document;
  if (document.Parse(text)) ReadObject(document.Root(), *profile);
  if (document.Failed()) {
    *fault = document.Fault();
    return false;
  }
  NumberControls(document.Root().value, profile);
  profile->profileLock.NotNeeded();
  profile->RebuildDispatchList();
  return true;
}

std::string ProfileJson(const Profile& profile) { return Object(profile); }

}  // namespace kelvaro::console
