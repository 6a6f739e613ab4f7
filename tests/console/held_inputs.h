// What a stream of sent events leaves down.
#pragma once

#include <cstdint>
#include <cstdio>
#include <set>
#include <string>
#include <utility>

#include "app/platform/input.h"
#include "app/platform/simulation/sent_event.h"

namespace kelvaro {

class HeldInputs {
 public:
  void See(const platform::simulation::SentEvent& event) {
    using Kind = platform::simulation::SentEvent::Kind;
    ++events;
    if (event.kind == Kind::Key) {
      Set(event.flags & platform::KEYEVENTF_KEYUP, {event.vk, event.scan});
      return;
    }
    const struct {
      std::uint32_t down;
      std::uint32_t up;
    } buttons[] = {{platform::MOUSEEVENTF_LEFTDOWN, platform::MOUSEEVENTF_LEFTUP},
                   {platform::MOUSEEVENTF_MIDDLEDOWN, platform::MOUSEEVENTF_MIDDLEUP},
                   {platform::MOUSEEVENTF_RIGHTDOWN, platform::MOUSEEVENTF_RIGHTUP}};
    for (const auto& button : buttons) {
      const Input name{kMouse, button.down};
      if (event.flags & button.down) Set(false, name);
      if (event.flags & button.up) Set(true, name);
    }
  }

  // What is down: a key as {virtual key, scan code}, a mouse button as {kMouse, its down event}.
  static constexpr std::uint32_t kMouse = 256;  // no virtual key
  using Input = std::pair<std::uint32_t, std::uint32_t>;
  const std::set<Input>& Down() const { return held; }

  // "key 41 scan 1e", "mouse 2" (its down event), parted by blanks; empty when all is up.
  std::string Text() const {
    std::string text;
    for (const auto& [first, second] : held) {
      char name[40];
      if (first == kMouse) {
        std::snprintf(name, sizeof name, "mouse %u ", second);
      } else {
        std::snprintf(name, sizeof name, "key %x scan %x ", first, second);
      }
      text += name;
    }
    return text;
  }

  std::uint64_t events = 0;  // seen so far
  std::uint64_t presses = 0;

 private:
  void Set(bool up, Input name) {
    if (up) {
      held.erase(name);
    } else {
      held.insert(name);
      ++presses;
    }
  }

  std::set<Input> held;
};

}  // namespace kelvaro
