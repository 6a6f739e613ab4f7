// Qt's event loop in the virtual time of a simulated machine: timers are due by its clock, and a
// loop that has nothing to do lets the virtual thread that runs it wait. Made before the
// QApplication, which takes it over; without a machine no loop waits.
#pragma once

#include <QAbstractEventDispatcher>
#include <QMap>
#include <cstdint>
#include <memory>

#include "app/platform/simulation/scheduler.h"

namespace platform::simulation {

class VirtualDispatcher final : public QAbstractEventDispatcher {
 public:
  VirtualDispatcher();

  // The one of this process.
  static VirtualDispatcher& Get();

  // Null for none. Timers of the machine before get new due times, by the clock of this one.
  void SetMachine(Scheduler* machine);
  // A loop waits for something to do.
  bool Idle() const { return idle; }
  // How often one went to wait.
  std::uint64_t Waits() const { return waits; }

  bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
  void registerSocketNotifier(QSocketNotifier*) override {}
  void unregisterSocketNotifier(QSocketNotifier*) override {}
  void registerTimer(int id, qint64 interval, Qt::TimerType type, QObject* object) override;
  bool unregisterTimer(int id) override;
  bool unregisterTimers(QObject* object) override;
  QList<TimerInfo> registeredTimers(QObject* object) const override;
  int remainingTime(int id) override;
  void wakeUp() override;
  void interrupt() override;

 private:
  struct Timer {
    std::uint64_t interval = 0;  // ms
    std::uint64_t due = 0;
    Qt::TimerType type = Qt::CoarseTimer;
    QObject* object = nullptr;
    bool running = false;  // its event is being handled
  };

  std::uint64_t Now() const { return machine ? machine->Now() : 0; }
  bool RunDueTimers();
  void Wait();

  Scheduler* machine = nullptr;
  QMap<int, Timer> timers;
  std::shared_ptr<Event> wake;
  bool woken = false;  // since the last look for something to do
  bool interrupted = false;
  bool idle = false;
  std::uint64_t waits = 0;
};

}  // namespace platform::simulation
