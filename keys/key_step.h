// One step of a key sequence, and the flag bits that steps and key tokens share.
#pragma once

#include <cstdint>

#include "foundation/linked_list.h"

namespace kelvaro {

constexpr std::uint8_t KeyFlagShift = 0x01;
constexpr std::uint8_t KeyFlagCtrl = 0x02;
constexpr std::uint8_t KeyFlagAlt = 0x04;
constexpr std::uint8_t KeyFlagImpliedShift = 0x08;  // the typed character's own shift
constexpr std::uint8_t KeyFlagMouse = 0x10;         // a mouse button; alone it is the middle one
constexpr std::uint8_t KeyFlagLeft = 0x20;
constexpr std::uint8_t KeyFlagRight = 0x40;
constexpr std::uint8_t KeyFlagPause = 0x80;  // vk * 256 + scan is a length in ms

struct KeyStep {
  std::uint8_t vk = 0;    // virtual-key code; 0 for modifiers alone or a mouse button
  std::uint8_t scan = 0;  // DIK numbering, bit 7 = extended
  std::uint8_t flags = 0;
};

using KeySequence = LinkedList<KeyStep>;

}  // namespace kelvaro
