// What a Control does: a key sequence, read from and written as text in the key language, and sent
// to the system as timed key and mouse button events. Parsing works on an action that no other
// thread can see yet; replay keeps all its state on the stack, so two threads may replay one
// action.
#pragma once

#include <cstdint>

#include "app/platform/desktop.h"
#include "engine/control.h"
#include "foundation/byte_string.h"
#include "keys/key_step.h"

namespace kelvaro {

class KeyAction : public InputAction {
 public:
  static constexpr std::uint32_t HoldAllKeys = 1;  // bit 0 of actionFlags

  // Results of ParseKeys beside the offset of a fault.
  static constexpr int kParsed = -1;
  static constexpr int kParsedRemind = -2;

  KeyAction();
  bool Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause) override;
  bool Release() override;
  void Clear() override;
  InputAction* Clone() const override;
  virtual void CopyFrom(const KeyAction& other);

  // Replaces steps by those of `text`, under HoldAllKeys as actionFlags has it. kParsed;
  // kParsedRemind when the caller must show the reminder about upper case letters; or the offset in
  // `text` of the fault, with *duplicateKey telling a key held twice from a text that can't be
  // read, and the steps before the fault in `steps`. Without a window neither the Smart Check nor
  // the reminder takes place.
  int ParseKeys(const ByteString& text, bool* duplicateKey, bool smartCheck, bool shiftReminder,
                platform::WindowHandle window);
  // The loop of ParseKeys: eats *text from the front and leaves it at the fault, empty on success.
  void ParseSteps(ByteString* text, bool* sawUppercase, bool* duplicateKey);
  // Offers to put the forgotten brackets around a text that is a token's name. The text to parse.
  static ByteString SmartCheck(const ByteString& text, platform::WindowHandle window);
  // Whether a step has the same vk (not 0), or shares one of the modifiers in flags & 7.
  bool HasKeyOrModifier(std::uint8_t vk, std::uint8_t flags) const;

  // The canonical text of steps, which parses back.
  ByteString FormatKeys() const;

  std::uint32_t actionFlags = 0;
  KeySequence steps;
};

// Send the modifiers and mouse button of one step's flags: shift, ctrl, alt, mouse, down as up.
void PressModifiers(std::uint8_t flags);
void ReleaseModifiers(std::uint8_t flags);

}  // namespace kelvaro
