#include "app/platform/windows/held_wakes.h"

#include <cstddef>

namespace platform {
namespace {

constexpr std::size_t kMost = 8;

struct Kept {
  int depth = 0;
  std::size_t count = 0;
  HANDLE events[kMost] = {};
};

constinit thread_local Kept kept;

}  // namespace

HeldWakes::HeldWakes() { ++kept.depth; }

HeldWakes::~HeldWakes() {
  if (--kept.depth == 0) LetOut();
}

bool HeldWakes::Keep(HANDLE event) {
  DWORD flags = 0;
  if (kept.depth == 0 || kept.count == kMost || !GetHandleInformation(event, &flags)) return false;
  kept.events[kept.count++] = event;
  return true;
}

void HeldWakes::LetOut() {
  while (kept.count != 0) ::SetEvent(kept.events[--kept.count]);
}

}  // namespace platform
