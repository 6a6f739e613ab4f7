// Spin lock that knows its owner. A thread may take it again; others try once a millisecond.
// It is not fair, and there is neither a time-out nor a search for deadlocks: locks nest in the
// order of LockRank. A debug build asserts that order at the first acquire of each thread, and ends
// the program with both ranks named; two locks of one rank don't nest either.
#pragma once

#include <atomic>
#include <cstdint>

#include "foundation/thread_safety.h"

namespace kelvaro {

// Locks are taken in rising order; None takes no part in it.
enum class LockRank : std::uint8_t { None, Device, Mouse, Profile, Repeat };

class KELVARO_LOCK_TYPE RecursiveLock {
 public:
  explicit RecursiveLock(LockRank rank = LockRank::None);
  ~RecursiveLock();
  RecursiveLock(const RecursiveLock&) = delete;
  RecursiveLock& operator=(const RecursiveLock&) = delete;

  // waitMs 0: TryAcquire. Otherwise tries every `waitMs` milliseconds (this system always passes 1)
  // until the lock is taken, and returns true. Waits forever for an owner that never releases.
  bool Acquire(std::uint32_t waitMs) KELVARO_TRIES(true);

  // One try, without waiting. True when the caller now holds the lock (once more); false while
  // another thread holds it or is just being quicker.
  bool TryAcquire() KELVARO_TRIES(true);

  // False, with nothing changed, when the caller isn't the owner or the lock is free.
  bool Release() KELVARO_GIVES_BACK();

  // Whether anyone holds it at this moment, the caller included: how a thread that must not wait
  // gives up early. Says nothing about the next moment.
  bool IsTaken() const { return holders.load(std::memory_order_acquire) != 0; }

  // For the compiler alone: what this lock guards may be touched from here on. No other thread
  // knows of it, or the lock is held by a caller who can't say so.
  void NotNeeded() const KELVARO_VOUCHES(this) {}

  // For assertions: id of the owner, -1 when free; the owner's nested acquires, to be asked by the
  // owner only; 0 free, 1 taken, for a moment more while several threads try at once.
  std::int32_t Owner() const { return owner.load(std::memory_order_relaxed); }
  std::int32_t Depth() const { return depth; }
  std::int32_t Holders() const { return holders.load(std::memory_order_relaxed); }
  LockRank Rank() const { return rank; }

 private:
  bool TryTake(std::int32_t id);

  std::atomic<std::int32_t> owner{-1};
  std::atomic<std::int32_t> holders{0};
  std::int32_t depth = 0;  // touched by the owner only
  const LockRank rank;
};

// Holds a lock for a scope, acquired with the system's wait of 1 ms between tries.
class KELVARO_LOCK_SCOPE LockGuard {
 public:
  explicit LockGuard(RecursiveLock& guarded) KELVARO_TAKES(guarded) : lock(guarded) { Take(); }
  ~LockGuard() KELVARO_GIVES_BACK() { lock.Release(); }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  // With that wait it comes back with the lock alone.
  void Take() KELVARO_UNCHECKED { lock.Acquire(1); }

  RecursiveLock& lock;
};

}  // namespace kelvaro
