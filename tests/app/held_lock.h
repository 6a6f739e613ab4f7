// Another thread of the simulated machine that holds a lock for a while.
#pragma once

#include <cstdint>

#include "app/platform/clock.h"
#include "app/platform/simulation/simulation.h"
#include "app/platform/threads.h"
#include "foundation/recursive_lock.h"

namespace kelvaro {

class HeldLock {
 public:
  // Held on return, and for `ms` milliseconds from then on.
  HeldLock(platform::simulation::Simulation& sim, RecursiveLock& lock, std::uint32_t ms)
      : lock(lock),
        ms(ms),
        thread(platform::threads().CreateThread(&Hold, this, "holder", nullptr)) {
    sim.RunFor(0);
  }
  ~HeldLock() {
    platform::threads().WaitForSingleObject(thread, platform::WAIT_FOREVER);
    platform::threads().CloseHandle(thread);
  }
  HeldLock(const HeldLock&) = delete;
  HeldLock& operator=(const HeldLock&) = delete;

 private:
  static std::uint32_t Hold(void* self) {
    auto* held = static_cast<HeldLock*>(self);
    LockGuard guard(held->lock);
    platform::clock().Sleep(held->ms);
    return 0;
  }

  RecursiveLock& lock;
  const std::uint32_t ms;
  const platform::Handle thread;
};

}  // namespace kelvaro
