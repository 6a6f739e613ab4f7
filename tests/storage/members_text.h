// What lasts of a profile or of a Control, as text: a line for each member, to be compared.
#pragma once

#include <concepts>
#include <string>

#include "engine/members.h"
#include "keys/key_action.h"
#include "tests/storage/chunks.h"

namespace kelvaro {

class MembersText {
 public:
  static std::string Of(const Profile& profile) { return All(profile); }
  static std::string Of(const Control& control) { return Shown(control); }
  static std::string Of(const LinkedList<Control>& controls) { return Shown(controls); }

  template <typename T>
  void operator()(const char* name, const T& member) {
    text += std::string(name) + ": " + Shown(member) + "\n";
  }

 private:
  template <typename T>
  static std::string All(const T& item) {
    MembersText made;
    VisitMembers(item, made);
    return made.text;
  }
  template <std::integral T>
  static std::string Shown(T number) {
    return std::to_string(number);
  }
  static std::string Shown(const ByteString& bytes) { return Bytes(bytes); }
  static std::string Shown(const platform::GUID& guid) {
    std::string shown = Shown(guid.Data1) + " " + Shown(guid.Data2) + " " + Shown(guid.Data3);
    for (const std::uint8_t byte : guid.Data4) shown += " " + Shown(byte);
    return shown;
  }
  static std::string Shown(const TriggerItem& item) {
    return Shown(item.kind) + " " + Shown(item.index) + " " + Shown(item.value);
  }
  static std::string Shown(const KeyStep& step) {
    return Shown(step.vk) + " " + Shown(step.scan) + " " + Shown(step.flags);
  }
  static std::string Shown(const InputAction* action) {
    const auto* const keys = dynamic_cast<const KeyAction*>(action);
    return keys ? Shown(keys->actionFlags) + " " + Shown(keys->steps) : "not of keys";
  }
  static std::string Shown(const Trigger& trigger) { return "weight " + Shown(trigger.Weight()); }
  static std::string Shown(const Control& control) {
    return All(control) + (control.actionsBorrowed ? "actions borrowed" : "actions owned");
  }
  static std::string Shown(const MouseSettings& mouse) { return All(mouse); }
  template <typename T>
  static std::string Shown(const Relaxed<T>& member) {
    return Shown(static_cast<T>(member));
  }
  template <typename T>
  static std::string Shown(const LinkedList<T>& list) {
    std::string shown = "[";
    for (const T& each : list) shown += "\n " + Shown(each);
    return shown + "]";
  }

  std::string text;
};

}  // namespace kelvaro
