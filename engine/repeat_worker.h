// The thread that repeats the one Control that is held and repeats. A later one takes the place of
// an earlier one, which never resumes. The thread looks every 10 ms, so each interval is rounded up
// to that grain. While nothing repeats it sleeps; then it looks when it would have looked without.
#pragma once

#include <atomic>

#include "engine/control.h"
#include "engine/dispatch_observer.h"
#include "foundation/relaxed.h"
#include "foundation/worker_thread.h"

namespace kelvaro {

class RepeatWorker : public WorkerThread {
 public:
  RepeatWorker();
  ~RepeatWorker() override;

  using WorkerThread::Start;  // of the thread

  // Makes `control`, of the DispatchList, the repeating one; its delay counts from now. This and
  // Clear wait for a replay that is under way on the thread.
  void Start(Control* control);
  // To be called before the Controls of the DispatchList are replaced or destroyed.
  void Clear();
  // A look without the lock: a stale answer costs nothing, as only the caller's thread starts.
  Control* Repeating() const { return repeatControl.load(std::memory_order_relaxed); }

  RecursiveLock repeatLock{LockRank::Repeat};
  Relaxed<DispatchObserver*> observer{nullptr};  // borrowed; see ControlEngine::SetObserver

 protected:
  std::uint32_t Run() override;

 private:
  void RepeatWhenDue();
  // From a look that found nothing to repeat, at `lastLook`, to the next that may find something.
  void SleepUntilStart(std::uint32_t lastLook);

  const platform::Handle started;  // auto-reset

  std::atomic<Control*> repeatControl{nullptr};  // written under repeatLock
};

}  // namespace kelvaro
