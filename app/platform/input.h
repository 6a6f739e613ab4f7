// Where simulated input leaves the program. One call is one event, in call order, for whatever has
// the focus. The logic needs no result, so there is none. Any thread; a call must not come back
// into the engine.
#pragma once

#include <cstdint>

namespace platform {

constexpr std::uint32_t KEYEVENTF_EXTENDEDKEY = 1;
constexpr std::uint32_t KEYEVENTF_KEYUP = 2;

constexpr std::uint32_t MOUSEEVENTF_MOVE = 0x0001;
constexpr std::uint32_t MOUSEEVENTF_LEFTDOWN = 0x0002;
constexpr std::uint32_t MOUSEEVENTF_LEFTUP = 0x0004;
constexpr std::uint32_t MOUSEEVENTF_RIGHTDOWN = 0x0008;
constexpr std::uint32_t MOUSEEVENTF_RIGHTUP = 0x0010;
constexpr std::uint32_t MOUSEEVENTF_MIDDLEDOWN = 0x0020;
constexpr std::uint32_t MOUSEEVENTF_MIDDLEUP = 0x0040;
constexpr std::uint32_t MOUSEEVENTF_WHEEL = 0x0800;

class Input {
 public:
  virtual ~Input() = default;

  // vk: Windows virtual-key code. scan: DIK numbering, bit 7 = extended, as it is stored.
  // flags: KEYEVENTF_ bits. extra: always 0.
  virtual void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                           std::uint32_t extra) = 0;

  // flags: MOUSEEVENTF_ bits, several edges may travel in one call. dx, dy: relative counts, right
  // and down positive. data: wheel counts, 120 to a notch, positive away from the user. extra:
  // always 0.
  virtual void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                           std::uint32_t extra) = 0;
};

// Of the installed platform; see platform.h.
Input& input();

}  // namespace platform
