// Key sequences as the tests of this folder write them.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

#include "keys/key_action.h"

namespace kelvaro {

// "41 1e 00, 42 30 08": vk, scan and flags of each step in hexadecimal.
inline std::string StepText(const KeySequence& steps) {
  std::string text;
  for (const KeyStep& step : steps) {
    char shown[16];
    std::snprintf(shown, sizeof shown, "%s%02x %02x %02x", text.empty() ? "" : ", ", step.vk,
                  step.scan, step.flags);
    text += shown;
  }
  return text;
}

inline std::string StepText(const KeyStep& step) {
  KeySequence steps;
  steps.AddTail(step);
  return StepText(steps);
}

inline KeyAction ActionOf(std::initializer_list<KeyStep> steps, bool holdAll = false) {
  KeyAction action;
  for (const KeyStep& step : steps) action.steps.AddTail(step);
  if (holdAll) action.actionFlags = KeyAction::HoldAllKeys;
  return action;
}

struct Parsed {
  int result;
  bool duplicate;
  KeyAction action;

  std::string Steps() const { return StepText(action.steps); }
  std::string Text() const { return Bytes(action.FormatKeys()); }
};

inline Parsed Parse(std::string_view text, bool holdAll = false) {
  Parsed parsed{0, false, {}};
  if (holdAll) parsed.action.actionFlags = KeyAction::HoldAllKeys;
  parsed.result = parsed.action.ParseKeys(TextOf(text), &parsed.duplicate);
  return parsed;
}

inline Parsed ParseHoldingAll(std::string_view text) { return Parse(text, true); }

}  // namespace kelvaro
