#include "console/stoppable_replay.h"

#include <algorithm>

namespace kelvaro::console {

using namespace platform;

void StoppableReplay::Sleep(std::uint32_t ms) { signals.Wait(ms); }

void StoppableReplay::keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                                  std::uint32_t extra) {
  if (signals.Wait(0)) return;
  Note({true, vk, scan, flags | KEYEVENTF_KEYUP}, (flags & KEYEVENTF_KEYUP) == 0);
  target.keybd_event(vk, scan, flags, extra);
}

void StoppableReplay::mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy,
                                  std::int32_t data, std::uint32_t extra) {
  if (signals.Wait(0)) return;
  for (const std::uint32_t press :
       {MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_MIDDLEDOWN}) {
    const std::uint32_t release = press << 1;
    if (flags & press) Note({false, 0, 0, release}, true);
    if (flags & release) Note({false, 0, 0, release}, false);
  }
  target.mouse_event(flags, dx, dy, data, extra);
}

void StoppableReplay::LetGo() {
  for (const Press& press : down) {
    if (press.isKey) {
      target.keybd_event(press.vk, press.scan, press.upFlags, 0);
    } else {
      target.mouse_event(press.upFlags, 0, 0, 0, 0);
    }
  }
  down.clear();
}

void StoppableReplay::Note(const Press& press, bool isDown) {
  const auto known = std::find(down.begin(), down.end(), press);
  if (isDown && known == down.end()) down.push_back(press);
  if (!isDown && known != down.end()) down.erase(known);
}

}  // namespace kelvaro::console
