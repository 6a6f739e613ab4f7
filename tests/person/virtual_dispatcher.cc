#include "tests/person/virtual_dispatcher.h"

#include <qpa/qwindowsysteminterface.h>

#include <QCoreApplication>
#include <QTimerEvent>
#include <algorithm>
#include <utility>
#include <vector>

namespace platform::simulation {

VirtualDispatcher::VirtualDispatcher() : wake(std::make_shared<Event>()) {}

VirtualDispatcher& VirtualDispatcher::Get() {
  return *static_cast<VirtualDispatcher*>(QAbstractEventDispatcher::instance());
}

void VirtualDispatcher::SetMachine(Scheduler* one) {
  const std::uint64_t before = Now();
  machine = one;
  wake = std::make_shared<Event>();
  idle = false;
  for (Timer& timer : timers) timer.due = Now() + (timer.due > before ? timer.due - before : 0);
}

bool VirtualDispatcher::processEvents(QEventLoop::ProcessEventsFlags flags) {
  interrupted = false;
  woken = false;
  Q_EMIT awake();
  QCoreApplication::sendPostedEvents();
  bool did = QWindowSystemInterface::sendWindowSystemEvents(flags);
  if (!interrupted && !woken) did = RunDueTimers() || did;
  if (did || woken || interrupted || !(flags & QEventLoop::WaitForMoreEvents) || !machine) {
    return did;
  }
  Q_EMIT aboutToBlock();
  Wait();
  return true;
}

void VirtualDispatcher::Wait() {
  std::uint64_t next = Scheduler::kNever;
  for (const Timer& timer : std::as_const(timers)) {
    if (!timer.running) next = std::min(next, timer.due);
  }
  wake->signalled = false;
  idle = true;
  ++waits;
  std::vector<std::shared_ptr<Waitable>> objects{wake};
  machine->Wait(std::move(objects), next);
  idle = false;
}

bool VirtualDispatcher::RunDueTimers() {
  std::vector<int> due;
  for (auto timer = timers.begin(); timer != timers.end(); ++timer) {
    if (!timer->running && timer->due <= Now()) due.push_back(timer.key());
  }
  for (const int id : due) {
    const auto timer = timers.find(id);
    if (timer == timers.end() || timer->due > Now()) continue;
    const std::uint64_t step = std::max<std::uint64_t>(timer->interval, 1);
    if (timer->interval > 0) timer->due += (Now() - timer->due) / step * step + step;
    timer->running = true;
    QTimerEvent event(id);
    QCoreApplication::sendEvent(timer->object, &event);
    if (const auto still = timers.find(id); still != timers.end()) still->running = false;
  }
  return !due.empty();
}

void VirtualDispatcher::registerTimer(int id, qint64 interval, Qt::TimerType type,
                                      QObject* object) {
  const auto ms = static_cast<std::uint64_t>(interval);
  timers[id] = {ms, Now() + ms, type, object, false};
  wakeUp();
}

bool VirtualDispatcher::unregisterTimer(int id) { return timers.remove(id) > 0; }

bool VirtualDispatcher::unregisterTimers(QObject* object) {
  return timers.removeIf([&](const auto& entry) { return entry.value().object == object; }) > 0;
}

QList<VirtualDispatcher::TimerInfo> VirtualDispatcher::registeredTimers(QObject* object) const {
  QList<TimerInfo> all;
  for (auto timer = timers.begin(); timer != timers.end(); ++timer) {
    if (timer->object == object) {
      all.append(TimerInfo(timer.key(), static_cast<int>(timer->interval), timer->type));
    }
  }
  return all;
}

int VirtualDispatcher::remainingTime(int id) {
  const auto timer = timers.find(id);
  if (timer == timers.end()) return -1;
  return timer->due > Now() ? static_cast<int>(timer->due - Now()) : 0;
}

void VirtualDispatcher::wakeUp() {
  woken = true;
  if (!machine || !idle) return;
  wake->signalled = true;
  machine->WakeWaiters(*wake);
}

void VirtualDispatcher::interrupt() {
  interrupted = true;
  wakeUp();
}

}  // namespace platform::simulation
