#include "app/platform/simulation/scheduler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <tuple>
#include <utility>

namespace platform::simulation {
namespace {

// Behind all others that are due at the same time, those that gave way included.
constexpr std::uint32_t kLastRound = UINT32_MAX;

thread_local Scheduler* running = nullptr;

bool GoesBefore(const VirtualThread& a, const VirtualThread& b) {
  return std::tie(a.due, a.round, a.rank, a.id) < std::tie(b.due, b.round, b.rank, b.id);
}

}  // namespace

std::string Event::Text() const { return "event " + std::to_string(number); }

std::string VirtualThread::Text() const {
  return "thread " + std::to_string(id) + " \"" + name + "\"";
}

Scheduler::Scheduler() : outermost(std::make_shared<VirtualThread>()) {
  outermost->id = ++lastId;
  outermost->name = "outermost";
  outermost->rank = Rank::Outermost;
  outermost->fiber = std::make_unique<Fiber>();
  threads.push_back(outermost);
  current = outermost.get();
  running = this;
}

Scheduler::~Scheduler() {
  if (!OnOutermost()) GiveUp("the simulation ends on a thread that is not the outermost one");
  for (const std::shared_ptr<VirtualThread>& thread : threads) {
    LeaveQueues(*thread);
    thread->body = nullptr;
    thread->fiber.reset();
  }
  running = nullptr;
}

std::shared_ptr<VirtualThread> Scheduler::Spawn(Rank rank, const std::string& name,
                                                std::function<std::uint32_t()> body) {
  auto thread = std::make_shared<VirtualThread>();
  thread->fiber = std::make_unique<Fiber>(stacks, &Scheduler::Main, thread.get());
  if (!thread->fiber->HasStack()) return nullptr;
  thread->id = ++lastId;
  thread->name = name;
  thread->rank = rank;
  thread->due = now;
  thread->body = std::move(body);
  threads.push_back(thread);
  return thread;
}

void Scheduler::Main(void* thread) {
  running->FreeGone();
  running->EndCurrent(static_cast<VirtualThread*>(thread)->body());
}

void Scheduler::EndCurrent(std::uint32_t exitCode) {
  MarkEnded(*current, exitCode);
  GiveWay(true);
  std::abort();
}

void Scheduler::Terminate(VirtualThread& thread, std::uint32_t exitCode) {
  if (thread.ended) return;
  if (&thread == current) EndCurrent(exitCode);
  MarkEnded(thread, exitCode);
  FreeGone();
}

void Scheduler::MarkEnded(VirtualThread& thread, std::uint32_t exitCode) {
  LeaveQueues(thread);
  thread.ended = true;
  thread.exitCode = exitCode;
  const auto place = std::find_if(threads.begin(), threads.end(),
                                  [&](const auto& living) { return living.get() == &thread; });
  gone = std::move(*place);
  threads.erase(place);
  WakeWaiters(thread);
}

void Scheduler::FreeGone() {
  if (!gone) return;
  gone->fiber.reset();
  gone.reset();
}

void Scheduler::LeaveQueues(VirtualThread& thread) {
  for (const std::shared_ptr<Waitable>& object : thread.waitingFor) {
    std::erase(object->waiters, &thread);
  }
  thread.waitingFor.clear();
}

void Scheduler::SleepUntil(std::uint64_t t) {
  current->round = t > now ? 0 : current->round + 1;
  current->due = std::max(t, now);
  GiveWay();
}

void Scheduler::RunUntil(std::uint64_t t) {
  if (!OnOutermost()) GiveUp("time is let pass by a thread that is not the outermost one");
  current->due = std::clamp(t, now, kNever - 1);
  current->round = kLastRound;
  GiveWay();
  current->round = 0;
}

std::int32_t Scheduler::Wait(std::vector<std::shared_ptr<Waitable>> objects, std::uint64_t t) {
  for (std::size_t index = 0; index < objects.size(); ++index) {
    if (objects[index]->IsSignalled()) {
      objects[index]->Take();
      return static_cast<std::int32_t>(index);
    }
  }
  if (t <= now) return -1;
  VirtualThread& self = *current;
  self.waitingFor = std::move(objects);
  for (const std::shared_ptr<Waitable>& object : self.waitingFor) {
    object->waiters.push_back(&self);
  }
  self.signalledIndex = -1;
  self.due = t;
  self.round = 0;
  GiveWay();
  LeaveQueues(self);
  return self.signalledIndex;
}

void Scheduler::WakeWaiters(Waitable& object) {
  while (object.IsSignalled() && !object.waiters.empty()) {
    VirtualThread& thread = *object.waiters.front();
    object.Take();
    for (std::size_t index = 0; index < thread.waitingFor.size(); ++index) {
      if (thread.waitingFor[index].get() == &object) {
        thread.signalledIndex = static_cast<std::int32_t>(index);
        break;
      }
    }
    LeaveQueues(thread);
    thread.due = now;
    thread.round = 0;
  }
}

void Scheduler::GiveWay(bool goodbye) {
  if (running != this) GiveUp("a system thread calls that is not the simulation's own");
  VirtualThread* next = nullptr;
  for (const std::shared_ptr<VirtualThread>& thread : threads) {
    if (!next || GoesBefore(*thread, *next)) next = thread.get();
  }
  if (!next || next->due == kNever) {
    GiveUp("nothing is due, and every thread waits for what no other will do");
  }
  if (next->due > now) {
    now = next->due;
    turns = 0;
  } else if (++turns > kMostTurnsAtOnce) {
    GiveUp("the threads go round and round without time moving on");
  }
  if (next == current) return;
  VirtualThread* self = current;
  current = next;
  self->fiber->SwitchTo(*next->fiber, goodbye);
  FreeGone();
}

void Scheduler::GiveUp(const char* why) const {
  std::string text = "simulation: at " + std::to_string(now) + " ms " + why + "\n";
  for (const std::shared_ptr<VirtualThread>& thread : threads) {
    text += "  " + thread->Text();
    if (thread.get() == current && thread->waitingFor.empty() && thread->due <= now) {
      text += " runs";
    } else if (!thread->waitingFor.empty()) {
      text += " waits for ";
      for (std::size_t index = 0; index < thread->waitingFor.size(); ++index) {
        text += (index ? ", " : "") + thread->waitingFor[index]->Text();
      }
      text += thread->due == kNever ? " without end" : " until " + std::to_string(thread->due);
    } else {
      text += " is due at " + std::to_string(thread->due);
    }
    text += "\n";
  }
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
  std::abort();
}

}  // namespace platform::simulation
