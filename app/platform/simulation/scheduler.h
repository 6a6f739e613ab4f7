// Virtual time and virtual threads. One thread runs at a time, until it waits; then the one that
// is due first goes on. Nothing here knows handles or the seam: threads, timers and clock of the
// simulation are built on it.
//
// Order: of all threads that are due, the one with the earliest time; at equal times the one that
// has given way least often at that time (Sleep of 0), then the lowest rank, then the oldest.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/simulation/fiber.h"

namespace platform::simulation {

// Places at equal times.
enum class Rank : std::uint8_t { Timer, Notification, Repeat, Other, UserInterface, Outermost };

struct VirtualThread;

// What a thread can wait for.
struct Waitable {
  virtual ~Waitable() = default;
  virtual bool IsSignalled() const = 0;
  virtual void Take() {}  // a wait on it has just ended
  virtual std::string Text() const = 0;

  std::vector<VirtualThread*> waiters;  // the longest waiting first
};

struct Event final : Waitable {
  bool IsSignalled() const override { return signalled; }
  void Take() override {
    if (!manualReset) signalled = false;
  }
  std::string Text() const override;

  std::intptr_t number = 0;
  bool manualReset = false;
  bool signalled = false;
};

struct VirtualThread final : Waitable {
  bool IsSignalled() const override { return ended; }
  std::string Text() const override;

  std::int32_t id = 0;
  std::string name;
  Rank rank = Rank::Other;
  std::int32_t priority = 0;
  bool ended = false;
  std::uint32_t exitCode = 0;

  // When it is to go on; kNever while only a signal can wake it.
  std::uint64_t due = 0;
  std::uint32_t round = 0;  // how often it gave way at that time
  std::vector<std::shared_ptr<Waitable>> waitingFor;
  std::int32_t signalledIndex = -1;  // of waitingFor, once a signal has woken it

  std::function<std::uint32_t()> body;
  std::unique_ptr<Fiber> fiber;
};

class Scheduler {
 public:
  static constexpr std::uint64_t kNever = UINT64_MAX;
  // A program that goes round this often without time moving on hangs.
  static constexpr std::uint64_t kMostTurnsAtOnce = 10'000'000;

  // The caller becomes the outermost thread.
  Scheduler();
  // Threads that are still alive are dropped as they stand.
  ~Scheduler();
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  std::uint64_t Now() const { return now; }
  VirtualThread& Current() { return *current; }
  bool OnOutermost() const { return current == outermost.get(); }

  // A thread that is due at once; its exit code is body's result. Null when there is no stack.
  std::shared_ptr<VirtualThread> Spawn(Rank rank, const std::string& name,
                                       std::function<std::uint32_t()> body);

  // Ends a thread where it stands; doesn't return if it is the current one. Nothing if it has
  // ended.
  void Terminate(VirtualThread& thread, std::uint32_t exitCode);

  // Lets the current thread wait until `t`; a `t` that isn't ahead gives way to the others that
  // are due now.
  void SleepUntil(std::uint64_t t);

  // Lets the current thread, the outermost one, wait until everything that is due up to `t` has
  // run.
  void RunUntil(std::uint64_t t);

  // Lets the current thread wait for the first of `objects` to be signalled, until `t` at the
  // latest. The lowest index of those that are signalled already is taken without waiting. The
  // index, or -1 for none in time.
  std::int32_t Wait(std::vector<std::shared_ptr<Waitable>> objects, std::uint64_t t);

  // `object` has just been signalled: hands it to those who wait for it, in the order of their
  // coming, as long as it stays signalled.
  void WakeWaiters(Waitable& object);

 private:
  static void Main(void* thread);
  [[noreturn]] void EndCurrent(std::uint32_t exitCode);
  void MarkEnded(VirtualThread& thread, std::uint32_t exitCode);
  void FreeGone();
  static void LeaveQueues(VirtualThread& thread);
  // Goes on with the thread that is due first. `goodbye`: the present one has ended.
  void GiveWay(bool goodbye = false);
  [[noreturn]] void GiveUp(const char* why) const;

  StackPool stacks;
  std::uint64_t now = 0;
  std::uint64_t turns = 0;  // at this time
  std::int32_t lastId = 0;
  std::shared_ptr<VirtualThread> outermost;
  std::vector<std::shared_ptr<VirtualThread>> threads;  // the living, oldest first
  VirtualThread* current = nullptr;
  std::shared_ptr<VirtualThread> gone;  // has ended, its stack was in use until just now
};

}  // namespace platform::simulation
