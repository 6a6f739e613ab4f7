#include "foundation/recursive_lock.h"

#include "app/platform/clock.h"
#include "app/platform/threads.h"

#ifndef NDEBUG
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>

#include "foundation/linked_list.h"
#endif

namespace kelvaro {
namespace {

#ifndef NDEBUG

// The ranked locks that exist. Which of them a thread holds is asked of the locks themselves, by
// the id that the seam gives it: virtual threads share one system thread, and a thread that was
// cut off leaves nothing behind here.
struct RankedLocks {
  std::mutex mutex;
  LinkedList<const RecursiveLock*> locks;  // guarded by mutex
};

// Never destroyed, since locks of static duration leave it late.
RankedLocks& Ranked() {
  alignas(RankedLocks) static unsigned char storage[sizeof(RankedLocks)];
  static RankedLocks* const ranked = new (storage) RankedLocks;
  return *ranked;
}

const char* NameOf(LockRank rank) {
  constexpr const char* kNames[] = {"None", "Device", "Mouse", "Profile", "Repeat"};
  return kNames[static_cast<std::size_t>(rank)];
}

void EnterRanked(const RecursiveLock* lock, LockRank rank) {
  if (rank == LockRank::None) return;
  RankedLocks& ranked = Ranked();
  const std::lock_guard<std::mutex> guard(ranked.mutex);
  ranked.locks.AddTail(lock);  // without memory the lock goes unwatched
}

void LeaveRanked(const RecursiveLock* lock, LockRank rank) {
  if (rank == LockRank::None) return;
  RankedLocks& ranked = Ranked();
  const std::lock_guard<std::mutex> guard(ranked.mutex);
  for (auto* node = ranked.locks.head; node; node = node->next) {
    if (*node->value == lock) {
      ranked.locks.RemoveNode(node);
      return;
    }
  }
}

// Comes before the try for the lock, so that a wrong order also shows in a run where it happens to
// do no harm.
void CheckOrder(const RecursiveLock* lock, LockRank rank, std::int32_t id) {
  if (rank == LockRank::None || lock->Owner() == id) return;
  RankedLocks& ranked = Ranked();
  const std::lock_guard<std::mutex> guard(ranked.mutex);
  for (const RecursiveLock* held : ranked.locks) {
    if (held->Owner() != id || held->Rank() < rank) continue;
    std::fprintf(stderr, "Lock order: %s is taken while %s is held\n", NameOf(rank),
                 NameOf(held->Rank()));
    std::abort();
  }
}

#else

void EnterRanked(const RecursiveLock*, LockRank) {}
void LeaveRanked(const RecursiveLock*, LockRank) {}
void CheckOrder(const RecursiveLock*, LockRank, std::int32_t) {}

#endif

}  // namespace

RecursiveLock::RecursiveLock(LockRank rank) : rank(rank) { EnterRanked(this, rank); }

RecursiveLock::~RecursiveLock() { LeaveRanked(this, rank); }

// Only the owner ever finds its own id in `owner`, so that a relaxed look will do; what the lock
// guards is handed over by `holders`.
bool RecursiveLock::TryTake(std::int32_t id) {
  if (holders.load(std::memory_order_relaxed) == 0) {
    if (holders.fetch_add(1, std::memory_order_acq_rel) == 0) {
      owner.store(id, std::memory_order_relaxed);
      ++depth;
      return true;
    }
    // Another thread was quicker: the count goes back.
    holders.fetch_sub(1, std::memory_order_acq_rel);
    return false;
  }
  if (owner.load(std::memory_order_relaxed) != id) return false;
  ++depth;
  return true;
}

bool RecursiveLock::Acquire(std::uint32_t waitMs) {
  if (waitMs == 0) return TryAcquire();
  const std::int32_t id = platform::threads().GetCurrentThreadId();
  CheckOrder(this, rank, id);
  while (!TryTake(id)) platform::clock().Sleep(waitMs);
  return true;
}

bool RecursiveLock::TryAcquire() {
  const std::int32_t id = platform::threads().GetCurrentThreadId();
  CheckOrder(this, rank, id);
  return TryTake(id);
}

bool RecursiveLock::Release() {
  const std::int32_t id = platform::threads().GetCurrentThreadId();
  if (holders.load(std::memory_order_relaxed) == 0) return false;
  if (owner.load(std::memory_order_relaxed) != id) return false;
  if (--depth == 0) {
    owner.store(-1, std::memory_order_relaxed);
    holders.fetch_sub(1, std::memory_order_acq_rel);
  }
  return true;
}

}  // namespace kelvaro
