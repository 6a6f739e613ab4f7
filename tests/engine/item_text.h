// Inputs as text, so that one comparison shows them whole.
#pragma once

#include <string>

#include "engine/control.h"

namespace kelvaro {

// "kind index value".
inline std::string ItemText(const TriggerItem& item) {
  return std::to_string(item.kind) + " " + std::to_string(item.index) + " " +
         std::to_string(item.value);
}

// Those of a Trigger, joined by ", ".
inline std::string ItemsText(const Trigger& trigger) {
  std::string text;
  for (const TriggerItem& item : trigger.triggerItems) {
    text += (text.empty() ? "" : ", ") + ItemText(item);
  }
  return text;
}

}  // namespace kelvaro
