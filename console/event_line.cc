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

std::string EventMembers(const SentEvent& event) {
  char members[120];
  if (event.kind == SentEvent::Kind::Key) {
    std::snprintf(members, sizeof members, "\"event\":\"key\",\"vk\":%u,\"scan\":%u,\"flags\":%u",
                  unsigned{event.vk}, unsigned{event.scan}, event.flags);
  } else {
    std::snprintf(members, sizeof members,
                  "\"event\":\"mouse\",\"flags\":%u,\"dx\":%d,\"dy\":%d,\"data\":%d", event.flags,
                  event.dx, event.dy, event.data);
  }
  return members;
}

std::string JsonEventLine(const SentEvent& event) {
  return "{\"t\":" + std::to_string(event.t) + "," + EventMembers(event) + "}";
}

std::string EventWords(const SentEvent& event) {
  if (event.kind == SentEvent::Kind::Mouse) return MouseWords(event);
  return KeyName(event.vk, event.scan) +
         (event.flags & platform::KEYEVENTF_KEYUP ? " up" : " down");
}

std::string TimeText(std::uint64_t ms) {
  char time[32];
  std::snprintf(time, sizeof time, "%8llu ms  ", static_cast<unsigned long long>(ms));
  return time;
}

std::string TextEventLine(const SentEvent& event) { return TimeText(event.t) + EventWords(event); }

}  // namespace kelvaro::console
