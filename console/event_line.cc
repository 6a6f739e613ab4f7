#include "console/event_line.h"

#include <cstdio>

#include "app/platform/input.h"
#include "console/json_text.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

struct ModifierName {
  std::uint8_t vk;
  const char* name;
};

// Modifiers stand in the key language's tables without a virtual key of their own.
const ModifierName kModifiers[] = {
    {0x10, "<Shift>"}, {0xA0, "<LShift>"}, {0xA1, "<RShift>"}, {0x11, "<Ctrl>"}, {0xA2, "<LCtrl>"},
    {0xA3, "<RCtrl>"}, {0x12, "<Alt>"},    {0xA4, "<LAlt>"},   {0xA5, "<RAlt>"},
};

std::string Signed(std::int32_t value) { return (value > 0 ? "+" : "") + std::to_string(value); }

std::string MouseWords(const SentEvent& event) {
  struct Edge {
    std::uint32_t flag;
    const char* words;
  };
  static const Edge edges[] = {
      {platform::MOUSEEVENTF_LEFTDOWN, "left mouse button down"},
      {platform::MOUSEEVENTF_LEFTUP, "left mouse button up"},
      {platform::MOUSEEVENTF_MIDDLEDOWN, "middle mouse button down"},
      {platform::MOUSEEVENTF_MIDDLEUP, "middle mouse button up"},
      {platform::MOUSEEVENTF_RIGHTDOWN, "right mouse button down"},
      {platform::MOUSEEVENTF_RIGHTUP, "right mouse button up"},
  };
  std::string words;
  const auto add = [&words](const std::string& more) {
    words += (words.empty() ? "" : ", ") + more;
  };
  if ((event.flags & platform::MOUSEEVENTF_MOVE) && (event.dx != 0 || event.dy != 0)) {
    add("pointer " + Signed(event.dx) + " " + Signed(event.dy));
  }
  for (const Edge& edge : edges) {
    if (event.flags & edge.flag) add(edge.words);
  }
  if (event.flags & platform::MOUSEEVENTF_WHEEL) add("wheel " + Signed(event.data));
  return words;
}

}  // namespace

std::string KeyName(std::uint8_t vk, std::uint8_t scan) {
  for (const ModifierName& modifier : kModifiers) {
    if (modifier.vk == vk) return modifier.name;
  }
  KeyAction action;
  action.steps.AddTail(KeyStep{vk, scan, 0});
  const std::string name = Bytes(action.FormatKeys());
  return name.empty() ? "key " + std::to_string(vk) + " scan " + std::to_string(scan) : name;
}

std::string JsonEventLine(const SentEvent& event) {
  char line[160];
  if (event.kind == SentEvent::Kind::Key) {
    std::snprintf(line, sizeof line,
                  "{\"t\":%llu,\"event\":\"key\",\"vk\":%u,\"scan\":%u,\"flags\":%u}",
                  static_cast<unsigned long long>(event.t), unsigned{event.vk},
                  unsigned{event.scan}, event.flags);
  } else {
    std::snprintf(line, sizeof line,
                  "{\"t\":%llu,\"event\":\"mouse\",\"flags\":%u,\"dx\":%d,\"dy\":%d,\"data\":%d}",
                  static_cast<unsigned long long>(event.t), event.flags, event.dx, event.dy,
                  event.data);
  }
  return line;
}

std::string TextEventLine(const SentEvent& event) {
  char time[32];
  std::snprintf(time, sizeof time, "%8llu ms  ", static_cast<unsigned long long>(event.t));
  if (event.kind == SentEvent::Kind::Mouse) return time + MouseWords(event);
  return time + KeyName(event.vk, event.scan) +
         (event.flags & platform::KEYEVENTF_KEYUP ? " up" : " down");
}

}  // namespace kelvaro::console
