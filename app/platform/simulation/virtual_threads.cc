#include "app/platform/simulation/virtual_threads.h"

#include <algorithm>
#include <string>
#include <utility>

namespace platform::simulation {
namespace {

constexpr std::uint32_t kMostObjects = 64;

Rank RankOf(const std::string& name) {
  if (name == "notification") return Rank::Notification;
  if (name == "repeat") return Rank::Repeat;
  return Rank::Other;
}

}  // namespace

VirtualThreads::VirtualThreads(Scheduler& scheduler, Journal& journal)
    : scheduler(scheduler), journal(journal) {}

std::int32_t VirtualThreads::GetCurrentThreadId() { return scheduler.Current().id; }

Handle VirtualThreads::CreateThread(ThreadEntry entry, void* parameter, const char* name,
                                    std::int32_t* threadId) {
  const std::string called = name ? name : "";
  if (journal.Enter("CreateThread", called)) return kInvalidHandle;
  if (!entry) return kInvalidHandle;
  std::shared_ptr<VirtualThread> thread =
      scheduler.Spawn(RankOf(called), called, [this, entry, parameter, called] {
        const std::uint32_t exitCode = entry(parameter);
        journal.Enter("ThreadEnded", called, exitCode);
        return exitCode;
      });
  if (!thread) return kInvalidHandle;
  if (threadId) *threadId = thread->id;
  std::erase_if(made, [](const auto& earlier) { return earlier->ended; });
  made.push_back(thread);
  return Keep(std::move(thread));
}

bool VirtualThreads::GetExitCodeThread(Handle thread, std::uint32_t* exitCode) {
  if (journal.Enter("GetExitCodeThread", thread)) return false;
  const std::shared_ptr<VirtualThread> found = FindThread(thread);
  if (!found || !exitCode) return false;
  *exitCode = found->ended ? found->exitCode : STILL_ACTIVE;
  return true;
}

bool VirtualThreads::TerminateThread(Handle thread, std::uint32_t exitCode) {
  if (journal.Enter("TerminateThread", thread, exitCode)) return false;
  VirtualThread* found = FindThread(thread).get();
  if (!found) return false;
  // May not come back, so nothing that must be let go of is held here.
  scheduler.Terminate(*found, exitCode);
  return true;
}

bool VirtualThreads::SetCurrentThreadPriority(std::int32_t priority) {
  if (journal.Enter("SetCurrentThreadPriority", priority)) return false;
  if (priority < -15 || priority > 15) return false;
  scheduler.Current().priority = priority;
  return true;
}

std::int32_t VirtualThreads::GetCurrentThreadPriority() {
  if (journal.Enter("GetCurrentThreadPriority")) return THREAD_PRIORITY_ERROR_RETURN;
  return scheduler.Current().priority;
}

bool VirtualThreads::SetPriorityClass(std::uint32_t priorityClass) {
  return !journal.Enter("SetPriorityClass", priorityClass);
}

Handle VirtualThreads::CreateEventA(bool manualReset, bool initialState) {
  if (journal.Enter(manualReset ? "CreateEventA manual" : "CreateEventA auto")) {
    return kInvalidHandle;
  }
  auto event = std::make_shared<Event>();
  event->manualReset = manualReset;
  event->signalled = initialState;
  Event& made = *event;
  made.number = Keep(std::move(event));
  return made.number;
}

bool VirtualThreads::SetEvent(Handle event) {
  if (journal.Enter("SetEvent", event)) return false;
  const std::shared_ptr<Event> found = FindEvent(event);
  if (!found) return false;
  found->signalled = true;
  scheduler.WakeWaiters(*found);
  return true;
}

bool VirtualThreads::ResetEvent(Handle event) {
  if (journal.Enter("ResetEvent", event)) return false;
  const std::shared_ptr<Event> found = FindEvent(event);
  if (!found) return false;
  found->signalled = false;
  return true;
}

std::uint32_t VirtualThreads::WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) {
  if (journal.EnterUnnoted("WaitForSingleObject")) return WAIT_FAILED;
  return Wait(1, &handle, timeoutMs);
}

std::uint32_t VirtualThreads::WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                                     std::uint32_t timeoutMs) {
  if (journal.EnterUnnoted("WaitForMultipleObjects")) return WAIT_FAILED;
  return Wait(count, handles, timeoutMs);
}

std::uint32_t VirtualThreads::Wait(std::uint32_t count, const Handle* wanted,
                                   std::uint32_t timeoutMs) {
  if (count == 0 || count > kMostObjects || !wanted) return WAIT_FAILED;
  std::vector<std::shared_ptr<Waitable>> objects(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    objects[index] = Find(wanted[index]);
    if (!objects[index]) return WAIT_FAILED;
  }
  const std::uint64_t end =
      timeoutMs == WAIT_FOREVER ? Scheduler::kNever : scheduler.Now() + timeoutMs;
  const std::int32_t index = scheduler.Wait(std::move(objects), end);
  return index < 0 ? WAIT_TIMEOUT : WAIT_OBJECT_0 + static_cast<std::uint32_t>(index);
}

bool VirtualThreads::CloseHandle(Handle handle) {
  if (journal.Enter("CloseHandle", handle)) return false;
  if (!Find(handle)) return false;
  handles[static_cast<std::size_t>(handle) - 1].reset();
  return true;
}

std::uint32_t VirtualThreads::Living() const {
  return static_cast<std::uint32_t>(
      std::count_if(made.begin(), made.end(), [](const auto& thread) { return !thread->ended; }));
}

std::uint32_t VirtualThreads::OpenHandles() const {
  return static_cast<std::uint32_t>(std::count_if(
      handles.begin(), handles.end(), [](const auto& object) { return object != nullptr; }));
}

std::shared_ptr<Waitable> VirtualThreads::Find(Handle handle) const {
  if (handle < 1 || static_cast<std::size_t>(handle) > handles.size()) return nullptr;
  return handles[static_cast<std::size_t>(handle) - 1];
}

std::shared_ptr<VirtualThread> VirtualThreads::FindThread(Handle handle) const {
  return std::dynamic_pointer_cast<VirtualThread>(Find(handle));
}

std::shared_ptr<Event> VirtualThreads::FindEvent(Handle handle) const {
  return std::dynamic_pointer_cast<Event>(Find(handle));
}

Handle VirtualThreads::Keep(std::shared_ptr<Waitable> object) {
  handles.push_back(std::move(object));
  return static_cast<Handle>(handles.size());
}

}  // namespace platform::simulation
