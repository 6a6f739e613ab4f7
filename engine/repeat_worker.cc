#include "engine/repeat_worker.h"

#include "app/platform/clock.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kGrainMs = 10;

}  // namespace

RepeatWorker::RepeatWorker() : WorkerThread("repeat") {}

RepeatWorker::~RepeatWorker() { Stop(); }

void RepeatWorker::Start(Control* control) {
  LockGuard guard(repeatLock);
  repeatControl.store(control, std::memory_order_relaxed);
  control->repeatStarted = 0;
  control->repeatLastTick = platform::clock().GetTickCount();
}

void RepeatWorker::Clear() {
  LockGuard guard(repeatLock);
  repeatControl.store(nullptr, std::memory_order_relaxed);
}

std::uint32_t RepeatWorker::Run() {
  while (!StopRequested()) {
    RepeatWhenDue();
    platform::clock().Sleep(kGrainMs);
  }
  return 0;
}

void RepeatWorker::RepeatWhenDue() {
  LockGuard guard(repeatLock);
  Control* control = Repeating();
  if (!control || !control->repeatEnabled) return;

  const std::uint32_t elapsed = platform::clock().GetTickCount() - control->repeatLastTick;
  if (elapsed < (control->repeatStarted ? control->repeatSpeed : control->repeatDelay)) return;

  for (InputAction* action : control->actions) {
    action->Replay(control->repeatEnabled, control->keyHoldTime, control->keyReleasePause);
  }
  // Only now: the time that a slow replay takes isn't part of the interval.
  control->repeatLastTick = platform::clock().GetTickCount();
  control->repeatStarted = 1;
}

}  // namespace kelvaro
