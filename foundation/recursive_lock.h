// Spin lock that knows its owner. A thread may take it again; others try once a millisecond.
// It is not fair, and there is neither a time-out nor a search for deadlocks: locks nest in the
// order of LockRank, and a debug build asserts that order at each acquire.
#pragma once

#include <atomic>
#include <cstdint>

namespace kelvaro {

// Locks are taken in rising order; None takes no part in it.
enum class LockRank : std::uint8_t { None, Device, Mouse, Profile, Repeat };

class RecursiveLock {
 public:
  explicit RecursiveLock(LockRank rank = LockRank::None);
  ~RecursiveLock();
  RecursiveLock(const RecursiveLock&) = delete;
  RecursiveLock& operator=(const RecursiveLock&) = delete;

  // waitMs 0: one try. Otherwise tries until the lock is taken, `waitMs` apart (all of this
  // system passes 1), and returns true.
  bool Acquire(std::uint32_t waitMs);

  // True when the caller now holds the lock (once more).
  bool TryAcquire();

  // False, with nothing changed, when the caller isn't the owner or the lock is free.
  bool Release();

  // Whether anyone holds it at this moment, the caller included: how a thread that must not wait
  // gives up early. Says nothing about the next moment.
  bool IsTaken() const { return holders.load(std::memory_order_acquire) != 0; }

  // For assertions: id of the owner, -1 when free; the owner's nested acquires; 0 free, 1 taken.
  std::int32_t Owner() const { return owner.load(std::memory_order_relaxed); }
  std::int32_t Depth() const { return depth; }
  std::int32_t Holders() const { return holders.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::int32_t> owner{-1};
  std::atomic<std::int32_t> holders{0};
  std::int32_t depth = 0;  // touched by the owner only
  const LockRank rank;
};

// Holds a lock for a scope, acquired with the system's wait of 1 ms between tries.
class LockGuard {
 public:
  explicit LockGuard(RecursiveLock& guarded) : lock(guarded) { lock.Acquire(1); }
  ~LockGuard() { lock.Release(); }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  RecursiveLock& lock;
};

}  // namespace kelvaro
