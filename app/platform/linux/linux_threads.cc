#include "app/platform/linux/linux_threads.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "app/platform/cut_off.h"
#include "app/platform/linux/detached_thread.h"
#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/thread_priority.h"
#include "app/platform/linux/waiting.h"

namespace platform {
namespace {

constexpr std::uint32_t kMostWaitedFor = 64;

std::int32_t CachedThreadId() {
  constinit thread_local std::int32_t id = 0;
  if (id == 0) id = static_cast<std::int32_t>(gettid());
  return id;
}

}  // namespace

// An event or a thread; a thread is signalled when it has ended. All but cutOff is guarded by the
// state's mutex.
struct LinuxThreads::Object {
  bool isThread = false;
  bool manualReset = true;
  bool signalled = false;
  std::uint32_t exitCode = STILL_ACTIVE;
  std::int32_t threadId = 0;
  std::atomic<bool> cutOff{false};
};

// One wait that is under way, on the stack of its thread and in the state's list.
struct LinuxThreads::Waiter {
  const std::shared_ptr<Object>* const objects;
  const std::uint32_t count;
  MonotonicCondition condition = {};
  Waiter* next = nullptr;

  bool WaitsFor(const Object& object) const {
    return std::any_of(objects, objects + count,
                       [&](const std::shared_ptr<Object>& one) { return one.get() == &object; });
  }
};

// What a wait is for. Only as many as there are come into being: a full array would have to be
// cleared at each wait.
class LinuxThreads::Held {
 public:
  Held() {}
  ~Held() { std::destroy_n(objects, count); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  void Add(std::shared_ptr<Object> object) {
    std::construct_at(&objects[count++], std::move(object));
  }
  const std::shared_ptr<Object>* Objects() const { return objects; }

 private:
  std::uint32_t count = 0;
  union {
    std::shared_ptr<Object> objects[kMostWaitedFor];
  };
};

struct LinuxThreads::State {
  PriorityMutex mutex;
  std::unordered_map<Handle, std::shared_ptr<Object>> objects;
  Handle nextHandle = 1;
  Waiter* waiters = nullptr;

  std::shared_ptr<Object> Find(Handle handle, bool isThread) const {
    const auto found = objects.find(handle);
    if (found == objects.end() || found->second->isThread != isThread) return nullptr;
    return found->second;
  }

  Handle Add(std::shared_ptr<Object> object) {
    objects.emplace(nextHandle, std::move(object));
    return nextHandle++;
  }

  void WakeWaitersFor(const Object& object) {
    for (Waiter* waiter = waiters; waiter; waiter = waiter->next)
      if (waiter->WaitsFor(object)) waiter->condition.WakeAll();
  }

  void Link(Waiter* waiter) {
    waiter->next = waiters;
    waiters = waiter;
  }

  void Unlink(Waiter* gone) {
    Waiter** link = &waiters;
    while (*link != gone) link = &(*link)->next;
    *link = gone->next;
  }

  std::uint32_t Wait(const std::shared_ptr<Object>* held, std::uint32_t count,
                     std::uint32_t timeoutMs, std::unique_lock<PriorityMutex>& lock);
};

struct LinuxThreads::Start {
  std::shared_ptr<State> state;
  std::shared_ptr<Object> object;
  ThreadEntry entry;
  void* parameter;
  const char* name;
};

std::uint32_t LinuxThreads::State::Wait(const std::shared_ptr<Object>* held, std::uint32_t count,
                                        std::uint32_t timeoutMs,
                                        std::unique_lock<PriorityMutex>& lock) {
  const auto take = [&]() -> std::uint32_t {
    for (std::uint32_t i = 0; i < count; ++i) {
      if (!held[i]->signalled) continue;
      if (!held[i]->manualReset) held[i]->signalled = false;
      return WAIT_OBJECT_0 + i;
    }
    return WAIT_TIMEOUT;
  };
  std::uint32_t result = take();
  if (result != WAIT_TIMEOUT || timeoutMs == 0) return result;

  const std::int64_t deadline =
      MonotonicNow() + std::int64_t{timeoutMs} * kNanosecondsPerMillisecond;
  Waiter self{held, count};
  Link(&self);
  bool inTime = true;
  // A thread that was cut off takes no event away from the living.
  while (inTime && !IsCutOff()) {
    if (timeoutMs == WAIT_FOREVER) {
      self.condition.Wait(lock);
    } else {
      inTime = self.condition.WaitUntil(lock, deadline);
    }
    if (IsCutOff()) break;
    result = take();
    if (result != WAIT_TIMEOUT) break;
  }
  Unlink(&self);
  return result;
}

LinuxThreads::LinuxThreads() : state(std::make_shared<State>()) {}

LinuxThreads::~LinuxThreads() = default;

std::int32_t LinuxThreads::GetCurrentThreadId() { return CachedThreadId(); }

void* LinuxThreads::RunThread(void* argument) {
  const std::unique_ptr<Start> start(static_cast<Start*>(argument));
  // Kept on this stack for as long as the thread exists, also when it is parked.
  const std::shared_ptr<State> state = start->state;
  const std::shared_ptr<Object> self = start->object;
  const ThreadEntry entry = start->entry;
  void* const parameter = start->parameter;
  NameCurrentThread(start->name);
  StartAtNormalPriority();
  cutOffFlag = &self->cutOff;
  {
    const std::lock_guard<PriorityMutex> lock(state->mutex);
    self->threadId = CachedThreadId();
    state->WakeWaitersFor(*self);
  }
  const std::uint32_t exitCode = entry(parameter);
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  cutOffFlag = nullptr;
  if (!self->signalled) {
    self->exitCode = exitCode;
    self->signalled = true;
    state->WakeWaitersFor(*self);
  }
  return nullptr;
}

Handle LinuxThreads::CreateThread(ThreadEntry entry, void* parameter, const char* name,
                                  std::int32_t* threadId) {
  if (!entry) return kInvalidHandle;
  auto object = std::make_shared<Object>();
  object->isThread = true;
  auto start = std::make_unique<Start>(Start{state, object, entry, parameter, name});
  if (!StartDetachedThread(RunThread, start.get())) return kInvalidHandle;
  (void)start.release();  // the thread's now

  std::unique_lock<PriorityMutex> lock(state->mutex);
  // Until the thread has told its id and has read `name`.
  Waiter self{&object, 1};
  state->Link(&self);
  while (object->threadId == 0) self.condition.Wait(lock);
  state->Unlink(&self);
  if (threadId) *threadId = object->threadId;
  return state->Add(std::move(object));
}

bool LinuxThreads::GetExitCodeThread(Handle thread, std::uint32_t* exitCode) {
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  const std::shared_ptr<Object> object = state->Find(thread, true);
  if (!object) return false;
  *exitCode = object->exitCode;
  return true;
}

bool LinuxThreads::TerminateThread(Handle thread, std::uint32_t exitCode) {
  {
    const std::lock_guard<PriorityMutex> lock(state->mutex);
    const std::shared_ptr<Object> object = state->Find(thread, true);
    if (!object || object->signalled) return false;
    object->cutOff.store(true, std::memory_order_release);
    object->exitCode = exitCode;
    object->signalled = true;
    state->WakeWaitersFor(*object);
  }
  StopHereIfCutOff();  // it may have been the calling thread
  return true;
}

bool LinuxThreads::SetCurrentThreadPriority(std::int32_t priority) {
  return SetPriorityOfCurrentThread(priority);
}

std::int32_t LinuxThreads::GetCurrentThreadPriority() { return PriorityOfCurrentThread(); }

bool LinuxThreads::SetPriorityClass(std::uint32_t priorityClass) {
  return SetPriorityClassOfProcess(priorityClass);
}

Handle LinuxThreads::CreateEventA(bool manualReset, bool initialState) {
  auto object = std::make_shared<Object>();
  object->manualReset = manualReset;
  object->signalled = initialState;
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  return state->Add(std::move(object));
}

bool LinuxThreads::SetEvent(Handle event) {
  const HeldWakes untilUnlocked;
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  const std::shared_ptr<Object> object = state->Find(event, false);
  if (!object) return false;
  object->signalled = true;
  state->WakeWaitersFor(*object);
  return true;
}

bool LinuxThreads::ResetEvent(Handle event) {
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  const std::shared_ptr<Object> object = state->Find(event, false);
  if (!object) return false;
  object->signalled = false;
  return true;
}

std::uint32_t LinuxThreads::WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) {
  std::uint32_t result = WAIT_FAILED;
  {
    std::unique_lock<PriorityMutex> lock(state->mutex);
    std::shared_ptr<Object> held = state->Find(handle, false);
    if (!held) held = state->Find(handle, true);
    if (held) result = state->Wait(&held, 1, timeoutMs, lock);
  }
  StopHereIfCutOff();
  return result;
}

std::uint32_t LinuxThreads::WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                                   std::uint32_t timeoutMs) {
  if (count == 0 || count > kMostWaitedFor || !handles) return WAIT_FAILED;
  Held held;
  std::uint32_t result = WAIT_FAILED;
  {
    std::unique_lock<PriorityMutex> lock(state->mutex);
    for (std::uint32_t i = 0; i < count; ++i) {
      std::shared_ptr<Object> object = state->Find(handles[i], false);
      if (!object) object = state->Find(handles[i], true);
      if (!object) return WAIT_FAILED;
      held.Add(std::move(object));
    }
    result = state->Wait(held.Objects(), count, timeoutMs, lock);
  }
  StopHereIfCutOff();
  return result;
}

bool LinuxThreads::CloseHandle(Handle handle) {
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  return state->objects.erase(handle) != 0;
}

}  // namespace platform
