#include "engine/members.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kelvaro {
namespace {

using Visited = std::vector<std::pair<std::string, const void*>>;

template <typename T>
Visited VisitedOf(T& item) {
  Visited found;
  VisitMembers(item,
               [&](const char* name, const auto& member) { found.emplace_back(name, &member); });
  return found;
}

TEST(LastingMembers, OfAProfileAreVisitedInOrder) {
  Profile profile;
  const Visited members = {
      {"profileName", &profile.profileName}, {"nextControlId", &profile.nextControlId},
      {"deviceName", &profile.deviceName},   {"pollInterval", &profile.pollInterval},
      {"deviceGuid", &profile.deviceGuid},   {"mouse", static_cast<const MouseSettings*>(&profile)},
      {"controls", &profile.controls},
  };
  EXPECT_EQ(VisitedOf(profile), members);
  EXPECT_EQ(VisitedOf(std::as_const(profile)), members);
}

TEST(LastingMembers, OfTheMouseSettingsAreVisitedInOrder) {
  const MouseSettings mouse;
  EXPECT_EQ(VisitedOf(mouse), (Visited{
                                  {"acceleration", &mouse.acceleration},
                                  {"movementSensitivity", &mouse.movementSensitivity},
                                  {"movementDamper", &mouse.movementDamper},
                                  {"wheelSensitivity", &mouse.wheelSensitivity},
                                  {"wheelDamper", &mouse.wheelDamper},
                                  {"leftButton", &mouse.leftButton},
                                  {"middleButton", &mouse.middleButton},
                                  {"rightButton", &mouse.rightButton},
                                  {"leftMask", &mouse.leftMask},
                                  {"middleMask", &mouse.middleMask},
                                  {"rightMask", &mouse.rightMask},
                                  {"mouseX", &mouse.mouseX},
                                  {"mouseY", &mouse.mouseY},
                                  {"mouseWheel", &mouse.mouseWheel},
                                  {"mouseAlwaysActive", &mouse.mouseAlwaysActive},
                              }));
}

TEST(LastingMembers, OfAControlAreVisitedInOrder) {
  Control control;
  const Visited members = {
      {"controlId", &control.controlId},
      {"description", &control.description},
      {"activateOnPress", &control.activateOnPress},
      {"triggerOption", &control.triggerOption},
      {"buttonMask", &control.buttonMask},
      {"triggerItems", &control.triggerItems},
      {"triggerText", static_cast<const Trigger*>(&control)},
      {"toggleMouseControls", &control.toggleMouseControls},
      {"repeatEnabled", &control.repeatEnabled},
      {"repeatDelay", &control.repeatDelay},
      {"repeatSpeed", &control.repeatSpeed},
      {"keyHoldTime", &control.keyHoldTime},
      {"keyReleasePause", &control.keyReleasePause},
      {"actions", &control.actions},
  };
  EXPECT_EQ(VisitedOf(control), members);
  EXPECT_EQ(VisitedOf(std::as_const(control)), members);
}

TEST(LastingMembers, OfAnInputAreVisitedInOrder) {
  const TriggerItem item;
  EXPECT_EQ(VisitedOf(item),
            (Visited{{"kind", &item.kind}, {"index", &item.index}, {"value", &item.value}}));
}

}  // namespace
}  // namespace kelvaro
