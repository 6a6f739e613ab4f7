// One event that was sent.
#pragma once

#include <cstdint>
#include <string>

namespace platform::simulation {

// As it was given.
struct SentEvent {
  enum class Kind { Key, Mouse };
  std::uint64_t t = 0;  // ms since the start of the Simulation
  Kind kind = Kind::Key;
  std::uint32_t flags = 0;
  std::uint8_t vk = 0;    // keys
  std::uint8_t scan = 0;  // keys
  std::int32_t dx = 0;    // mouse
  std::int32_t dy = 0;
  std::int32_t data = 0;
  friend bool operator==(const SentEvent&, const SentEvent&) = default;
};

inline SentEvent SentKey(std::uint64_t t, std::uint8_t vk, std::uint8_t scan, std::uint32_t flags) {
  return {.t = t, .kind = SentEvent::Kind::Key, .flags = flags, .vk = vk, .scan = scan};
}

inline SentEvent SentMouse(std::uint64_t t, std::uint32_t flags, std::int32_t dx, std::int32_t dy,
                           std::int32_t data) {
  return {.t = t, .kind = SentEvent::Kind::Mouse, .flags = flags, .dx = dx, .dy = dy, .data = data};
}

// "120 key 41 1e 0" (vk and scan in hexadecimal, flags decimal), "120 mouse 1 4 -1 0" (flags, dx,
// dy, data, decimal).
std::string EventText(const SentEvent& event);

}  // namespace platform::simulation
