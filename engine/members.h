// The members of a profile that last, once for all who show, read or compare them: visit(name,
// member) for each, in the order in which they are shown. What is made up of members is visited as
// a whole, and VisitMembers goes on from there.
#pragma once

#include <concepts>
#include <type_traits>

#include "engine/profile.h"

namespace kelvaro {

// T is Of, or const Of.
template <typename T, typename Of>
concept EitherConst = std::same_as<std::remove_const_t<T>, Of>;

template <EitherConst<MouseSettings> T, typename Visit>
void VisitMembers(T& mouse, Visit&& visit) {
  visit("acceleration", mouse.acceleration);
  visit("movementSensitivity", mouse.movementSensitivity);
  visit("movementDamper", mouse.movementDamper);
  visit("wheelSensitivity", mouse.wheelSensitivity);
  visit("wheelDamper", mouse.wheelDamper);
  visit("leftButton", mouse.leftButton);
  visit("middleButton", mouse.middleButton);
  visit("rightButton", mouse.rightButton);
  visit("leftMask", mouse.leftMask);
  visit("middleMask", mouse.middleMask);
  visit("rightMask", mouse.rightMask);
  visit("mouseX", mouse.mouseX);
  visit("mouseY", mouse.mouseY);
  visit("mouseWheel", mouse.mouseWheel);
  visit("mouseAlwaysActive", mouse.mouseAlwaysActive);
}

template <EitherConst<TriggerItem> T, typename Visit>
void VisitMembers(T& item, Visit&& visit) {
  visit("kind", item.kind);
  visit("index", item.index);
  visit("value", item.value);
}

template <EitherConst<Control> T, typename Visit>
void VisitMembers(T& control, Visit&& visit) {
  visit("controlId", control.controlId);
  visit("description", control.description);
  visit("activateOnPress", control.activateOnPress);
  visit("triggerOption", control.triggerOption);
  visit("buttonMask", control.buttonMask);
  visit("triggerItems", control.triggerItems);
  // The Trigger as a whole, for people: it says nothing new.
  std::conditional_t<std::is_const_v<T>, const Trigger&, Trigger&> trigger = control;
  visit("triggerText", trigger);
  visit("toggleMouseControls", control.toggleMouseControls);
  visit("repeatEnabled", control.repeatEnabled);
  visit("repeatDelay", control.repeatDelay);
  visit("repeatSpeed", control.repeatSpeed);
  visit("keyHoldTime", control.keyHoldTime);
  visit("keyReleasePause", control.keyReleasePause);
  visit("actions", control.actions);
}

template <std::derived_from<Profile> T, typename Visit>
void VisitMembers(T& profile, Visit&& visit) {
  visit("profileName", profile.profileName);
  visit("nextControlId", profile.nextControlId);
  visit("deviceName", profile.deviceName);
  visit("pollInterval", profile.pollInterval);
  visit("deviceGuid", profile.deviceGuid);
  std::conditional_t<std::is_const_v<T>, const MouseSettings&, MouseSettings&> mouse = profile;
  visit("mouse", mouse);
  visit("controls", profile.controls);
}

}  // namespace kelvaro
