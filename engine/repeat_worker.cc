#include "engine/repeat_worker.h"

#include "app/platform/clock.h"
#include "app/platform/threads.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kGrainMs = 10;

}  // namespace

RepeatWorker::RepeatWorker()
    : WorkerThread("repeat"), started(platform::threads().CreateEventA(false, false)) {}

RepeatWorker::~RepeatWorker() {
  Stop();
  if (started != platform::kInvalidHandle) platform::threads().CloseHandle(started);
}

void RepeatWorker::Start(Control* control) {
  {
    LockGuard guard(repeatLock);
    const Control* const earlier = Repeating();
    DispatchObserver* const told = observer;
    if (told && earlier && earlier != control) told->RepeatLost(*earlier, *control);
    repeatControl.store(control, std::memory_order_relaxed);
    control->repeatStarted = 0;
    control->repeatLastTick = platform::clock().GetTickCount();
  }
  platform::threads().SetEvent(started);
}

void RepeatWorker::Clear() {
  LockGuard guard(repeatLock);
  repeatControl.store(nullptr, std::memory_order_relaxed);
}

std::uint32_t RepeatWorker::Run() {
  while (!StopRequested()) {
    RepeatWhenDue();
    if (Repeating()) {
      platform::clock().Sleep(kGrainMs);
    } else {
      SleepUntilStart(platform::clock().GetTickCount());
    }
  }
  return 0;
}

void RepeatWorker::SleepUntilStart(std::uint32_t lastLook) {
  const platform::Handle events[] = {stopEvent, started};
  if (platform::threads().WaitForMultipleObjects(2, events, platform::WAIT_FOREVER) ==
      platform::WAIT_OBJECT_0)
    return;
  const std::uint32_t elapsed = platform::clock().GetTickCount() - lastLook;
  const std::uint32_t sinceLook = elapsed % kGrainMs;
  // At the very time of a look it is made now, but not twice. Without events there is no sleep.
  if (sinceLook != 0 || elapsed == 0) platform::clock().Sleep(kGrainMs - sinceLook);
}

void RepeatWorker::RepeatWhenDue() {
  LockGuard guard(repeatLock);
  Control* control = Repeating();
  if (!control || !control->repeatEnabled) return;

  const std::uint32_t elapsed = platform::clock().GetTickCount() - control->repeatLastTick;
  if (elapsed < (control->repeatStarted ? control->repeatSpeed : control->repeatDelay)) return;

  if (DispatchObserver* const told = observer) told->Repeats(*control);
  for (InputAction* action : control->actions) {
    action->Replay(control->repeatEnabled, control->keyHoldTime, control->keyReleasePause);
  }
  // Only now: the time that a slow replay takes isn't part of the interval.
  control->repeatLastTick = platform::clock().GetTickCount();
  control->repeatStarted = 1;
}

}  // namespace kelvaro
