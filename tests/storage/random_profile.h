// Random profiles, the same ones for the same seed on every machine, and their comparison member by
// member.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "keys/key_action.h"
#include "storage/profile_file.h"
#include "tests/keys/random_keys.h"

namespace kelvaro {

class RandomProfile {
 public:
  explicit RandomProfile(std::uint32_t seed) : random(seed) {}

  void Fill(ProfileFile* profile, std::uint32_t mostControls = 12) {
    profile->profileName = "p";  // so that there is a file name in it
    profile->profileName.Append(Text());
    profile->nextControlId = U32();
    profile->deviceName = Text();
    profile->pollInterval = U32();
    profile->deviceGuid.Data1 = U32();
    profile->deviceGuid.Data2 = U16();
    profile->deviceGuid.Data3 = U16();
    for (std::uint8_t& byte : profile->deviceGuid.Data4) byte = random.Byte();
    profile->acceleration = Number();
    profile->movementDamper = Number();
    profile->movementSensitivity = Number();
    profile->wheelDamper = Number();
    profile->wheelSensitivity = Number();
    profile->leftButton = U16();
    profile->middleButton = U16();
    profile->rightButton = U16();
    profile->leftMask = U64();
    profile->middleMask = U64();
    profile->rightMask = U64();
    profile->mouseX = MouseInput();
    profile->mouseY = MouseInput();
    profile->mouseWheel = MouseInput();
    profile->mouseAlwaysActive = random.OneIn(2);
    for (std::uint32_t n = random.Below(mostControls + 1); n > 0; --n) AddControl(profile);
    profile->RebuildDispatchList();
  }

  void AddControl(ProfileFile* profile) {
    Control control;
    control.actionsBorrowed = 1;
    control.description = Text();
    control.controlId = U32();
    control.toggleMouseControls = Flag();
    control.activateOnPress = Flag();
    control.triggerOption = Flag();
    control.SetButtonMask(U64());
    for (std::uint32_t n = random.Below(4); n > 0; --n) {
      control.triggerItems.AddTail({U16(), U16(), U16()});
    }
    control.repeatEnabled = Flag();
    control.repeatDelay = U32();
    control.repeatSpeed = U32();
    control.keyHoldTime = U32();
    control.keyReleasePause = U32();
    for (std::uint32_t n = random.Below(4); n > 0; --n) {
      auto* action = new KeyAction;
      action->actionFlags = random.OneIn(2) ? 1 : U32();
      for (std::uint32_t steps = random.Below(20); steps > 0; --steps) {
        action->steps.AddTail(random.AnyStep());
      }
      control.actions.AddTail(action);
    }
    profile->controls.AddTail(control);
  }

 private:
  std::uint8_t Flag() { return random.OneIn(2) ? 1 : 0; }
  std::uint16_t U16() { return static_cast<std::uint16_t>(random.Below(0x10000)); }
  // The ends of the range more often than by chance.
  std::uint32_t U32() {
    if (random.OneIn(8)) return random.OneIn(2) ? 0 : 0xFFFFFFFF;
    return std::uint32_t{U16()} << 16 | U16();
  }
  std::uint64_t U64() { return std::uint64_t{U32()} << 32 | U32(); }
  std::int32_t Number() { return static_cast<std::int32_t>(U32()); }
  TriggerItem MouseInput() {
    TriggerItem item{static_cast<std::uint16_t>(random.Below(14)),
                     static_cast<std::uint16_t>(random.Below(6)), 0};
    AxisFieldOffset(&item);
    return item;
  }
  ByteString Text() {
    ByteString text;
    for (std::uint32_t n = random.Below(30); n > 0; --n) {
      text.AppendChar(static_cast<char>(random.Byte()));
    }
    return text;
  }

  RandomKeys random;
};

// Compares the items of a mouse input or a Trigger.
inline bool Same(const TriggerItem& a, const TriggerItem& b) {
  return a.kind == b.kind && a.index == b.index && a.value == b.value;
}

inline void ExpectSameAction(const KeyAction& a, const KeyAction& b) {
  EXPECT_EQ(a.actionType, b.actionType);
  EXPECT_EQ(a.actionFlags, b.actionFlags);
  ASSERT_EQ(a.steps.count, b.steps.count);
  auto* other = b.steps.head;
  for (auto* node = a.steps.head; node; node = node->next, other = other->next) {
    EXPECT_EQ(node->value->vk, other->value->vk);
    EXPECT_EQ(node->value->scan, other->value->scan);
    EXPECT_EQ(node->value->flags, other->value->flags);
  }
}

inline void ExpectSameControl(const Control& a, const Control& b) {
  EXPECT_TRUE(a.description.Equals(b.description));
  EXPECT_EQ(a.controlId, b.controlId);
  EXPECT_EQ(a.toggleMouseControls, b.toggleMouseControls);
  EXPECT_EQ(a.activateOnPress, b.activateOnPress);
  EXPECT_EQ(a.triggerOption, b.triggerOption);
  EXPECT_EQ(a.buttonMask, b.buttonMask);
  EXPECT_EQ(a.buttonCount, b.buttonCount);
  EXPECT_EQ(a.repeatEnabled, b.repeatEnabled);
  EXPECT_EQ(a.repeatDelay, b.repeatDelay);
  EXPECT_EQ(a.repeatSpeed, b.repeatSpeed);
  EXPECT_EQ(a.keyHoldTime, b.keyHoldTime);
  EXPECT_EQ(a.keyReleasePause, b.keyReleasePause);
  EXPECT_EQ(a.actionsBorrowed, b.actionsBorrowed);
  ASSERT_EQ(a.triggerItems.count, b.triggerItems.count);
  auto* item = b.triggerItems.head;
  for (auto* node = a.triggerItems.head; node; node = node->next, item = item->next) {
    EXPECT_TRUE(Same(*node->value, *item->value));
  }
  ASSERT_EQ(a.actions.count, b.actions.count);
  auto* action = b.actions.head;
  for (auto* node = a.actions.head; node; node = node->next, action = action->next) {
    ExpectSameAction(*dynamic_cast<KeyAction*>(*node->value),
                     *dynamic_cast<KeyAction*>(*action->value));
  }
}

inline void ExpectSameControls(const LinkedList<Control>& a, const LinkedList<Control>& b) {
  ASSERT_EQ(a.count, b.count);
  auto* other = b.head;
  for (auto* node = a.head; node; node = node->next, other = other->next) {
    ExpectSameControl(*node->value, *other->value);
  }
}

inline void ExpectSameProfile(const ProfileFile& a, const ProfileFile& b) {
  EXPECT_TRUE(a.profileName.Equals(b.profileName));
  EXPECT_TRUE(a.deviceName.Equals(b.deviceName));
  EXPECT_EQ(a.nextControlId, b.nextControlId);
  EXPECT_EQ(a.pollInterval, b.pollInterval);
  EXPECT_TRUE(a.deviceGuid == b.deviceGuid);
  EXPECT_EQ(a.acceleration, b.acceleration);
  EXPECT_EQ(a.movementDamper, b.movementDamper);
  EXPECT_EQ(a.movementSensitivity, b.movementSensitivity);
  EXPECT_EQ(a.wheelDamper, b.wheelDamper);
  EXPECT_EQ(a.wheelSensitivity, b.wheelSensitivity);
  EXPECT_EQ(a.leftButton, b.leftButton);
  EXPECT_EQ(a.middleButton, b.middleButton);
  EXPECT_EQ(a.rightButton, b.rightButton);
  EXPECT_EQ(a.leftMask, b.leftMask);
  EXPECT_EQ(a.middleMask, b.middleMask);
  EXPECT_EQ(a.rightMask, b.rightMask);
  EXPECT_TRUE(Same(a.mouseX, b.mouseX));
  EXPECT_TRUE(Same(a.mouseY, b.mouseY));
  EXPECT_TRUE(Same(a.mouseWheel, b.mouseWheel));
  EXPECT_EQ(a.mouseAlwaysActive, b.mouseAlwaysActive);
  ExpectSameControls(a.controls, b.controls);
  ExpectSameControls(a.DispatchList, b.DispatchList);
}

}  // namespace kelvaro
