// The key language and its replay, told a second time and as plainly as can be: nothing of engine/
// or keys/ is used here, and no rule is put in another way than the rules themselves are. A reader
// checks this page by page against what Kelvaro promises; a random run then checks Kelvaro against
// this.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kelvaro::plain {

struct Event {
  std::uint64_t t = 0;  // ms
  bool isKey = false;
  std::uint32_t flags = 0;
  std::uint32_t vk = 0;  // keys
  std::uint32_t scan = 0;
  std::int32_t dx = 0;  // mouse
  std::int32_t dy = 0;
  std::int32_t data = 0;
};

struct Step {
  std::uint8_t vk = 0;
  std::uint8_t scan = 0;
  std::uint8_t flags = 0;
};

struct Action {
  bool holdAll = false;
  std::vector<Step> steps;
};

struct Reading {
  std::vector<Step> steps;  // those before the fault, where there is one
  int result = -1;          // -1, or the offset of the fault
  bool duplicateKey = false;
};

Reading ReadKeys(const std::string& text, bool holdAll);

// What a replay does next: it sends an event, whose time is then, or waits so many ms.
struct Moment {
  std::uint32_t wait = 0;  // 0: it sends
  Event event;
};

std::vector<Moment> Replay(const Action& action, bool repeat, std::uint32_t holdTime,
                           std::uint32_t releasePause);
std::vector<Moment> Release(const Action& action);

}  // namespace kelvaro::plain
