// What a Control does: a key sequence, read from and written as text in the key language, and sent
// to the system as timed key and mouse button events. Parsing works on an action that no other
// thread can see yet; replay keeps all its state on the stack, so two threads may replay one
// action.
#pragma once

#include <cstdint>

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
  // Presses the steps in turn and lets go of each before the next; of the last one with repeat
  // only. Under HoldAllKeys it lets go of nothing but, with repeat, the last step, and without
  // repeat the two times, in ms, count as 0. Blocks as long as the sequence takes. Always true.
  bool Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause) override;
  // Lets go of what Replay without repeat left down: the last step, or all under HoldAllKeys, each
  // with its modifiers before its key. Always true.
  bool Release() override;
  void Clear() override;
  InputAction* Clone() const override;
  // Makes this action a copy of the other: type, steps and flags.
  virtual void CopyFrom(const KeyAction& other);

  // Replaces steps by those of `text`; actionFlags tells whether all keys are held. The result is
  // kParsed, or the offset of a fault in `text`: then *duplicateKey, unless null, tells a key held
  // twice from a text that can't be read, and steps has what stands before the fault. With
  // shiftReminder it is kParsedRemind for a text with an upper case letter, of which the user is to
  // be reminded.
  int ParseKeys(const ByteString& text, bool* duplicateKey = nullptr, bool shiftReminder = false);
  // The loop of ParseKeys: appends to steps while it eats *text from the front, and leaves *text at
  // the fault, empty on success. Sets the two flags where they are due, never clears them.
  void ParseSteps(ByteString* text, bool* sawUppercase, bool* duplicateKey);
  // The token, brackets included, whose name `text` is, in any case; empty for any other text. The
  // user may have forgotten the brackets: the caller asks.
  static ByteString SmartCheck(const ByteString& text);
  // Whether a step has the same vk (not 0), or shares one of the modifiers in flags & 7.
  bool HasKeyOrModifier(std::uint8_t vk, std::uint8_t flags) const;

  // The canonical text of steps, which always parses. Not every list of steps comes back from it:
  // left and right go to the modifiers in the order of printing, and a key that no row fits is left
  // out.
  ByteString FormatKeys() const;

  bool HoldsAllKeys() const { return (actionFlags & HoldAllKeys) != 0; }

  std::uint32_t actionFlags = 0;
  KeySequence steps;
};

// Send the modifiers and mouse button of one step's flags: shift, ctrl, alt, mouse, down as up.
void PressModifiers(std::uint8_t flags);
void ReleaseModifiers(std::uint8_t flags);

}  // namespace kelvaro
