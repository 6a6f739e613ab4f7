// Time as the logic sees it: milliseconds since some start, 32 bits, wrapping after 49.7 days.
#pragma once

#include <cstdint>

namespace platform {

class Clock {
 public:
  virtual ~Clock() = default;

  // Blocks the calling thread for at least `ms` milliseconds; 0 only lets others run.
  virtual void Sleep(std::uint32_t ms) = 0;

  // Milliseconds since an arbitrary start. Differences are taken unsigned, so that a wrap does no
  // harm. Any thread.
  virtual std::uint32_t GetTickCount() = 0;
};

// Of the installed platform; see platform.h.
Clock& clock();

}  // namespace platform
