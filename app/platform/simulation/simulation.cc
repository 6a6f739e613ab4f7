#include "app/platform/simulation/simulation.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <utility>

#include "app/platform/recording/device_directory.h"
#include "app/platform/simulation/scheduler.h"
#include "app/platform/simulation/virtual_threads.h"
#include "app/platform/simulation/virtual_timers.h"

namespace platform::simulation {
namespace {

bool alive = false;

bool ClaimTheMachine() {
  if (alive) {
    std::fputs("simulation: there is one already\n", stderr);
    std::abort();
  }
  return alive = true;
}

// What is sent carries no word for those who listen in.
void RequireNone(std::uint32_t extra) {
  if (extra == 0) return;
  std::fputs("simulation: an event is sent with an extra word\n", stderr);
  std::abort();
}

class KeptInput final : public Input {
 public:
  KeptInput(Scheduler& scheduler, Journal& journal) : scheduler(scheduler), journal(journal) {}

  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t extra) override {
    RequireNone(extra);
    if (journal.EnterUnnoted("keybd_event")) return;
    Send(SentKey(scheduler.Now(), vk, scan, flags));
  }

  void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::uint32_t extra) override {
    RequireNone(extra);
    if (journal.EnterUnnoted("mouse_event")) return;
    Send(SentMouse(scheduler.Now(), flags, dx, dy, data));
  }

  bool keep = true;
  std::vector<SentEvent> events;
  std::function<void(const SentEvent&)> listener;

 private:
  void Send(const SentEvent& event) {
    if (keep) events.push_back(event);
    if (listener) listener(event);
  }

  Scheduler& scheduler;
  Journal& journal;
};

class ListedMessages final : public System {
 public:
  explicit ListedMessages(Journal& journal) : journal(journal) {}

  std::string FormatMessageA(std::uint32_t code) override {
    if (journal.Enter("FormatMessageA", code)) return {};
    const auto found = texts.find(code);
    return found == texts.end() ? std::string() : found->second;
  }

  std::string GetUserDataFolder() override { return dataFolder; }

  std::string dataFolder = "/home/player/.local/share";
  std::map<std::uint32_t, std::string> texts{{2, "The system cannot find the file specified.\r\n"},
                                             {5, "Access is denied.\r\n"}};

 private:
  Journal& journal;
};

}  // namespace

std::string EventText(const SentEvent& event) {
  char text[96];
  if (event.kind == SentEvent::Kind::Key) {
    std::snprintf(text, sizeof text, "%llu key %x %x %u", static_cast<unsigned long long>(event.t),
                  event.vk, event.scan, event.flags);
  } else {
    std::snprintf(text, sizeof text, "%llu mouse %u %d %d %d",
                  static_cast<unsigned long long>(event.t), event.flags, event.dx, event.dy,
                  event.data);
  }
  return text;
}

struct Simulation::Machine {
  explicit Machine(simulation::Journal& journal) : journal(journal) {}
  ~Machine() { alive = false; }

  platform::Platform Gathered() {
    platform::Platform all;
    all.clock = &clock;
    all.threads = &threads;
    all.timers = &timers;
    all.devices = &devices;
    all.input = &input;
    all.files = &disk;
    all.system = &system;
    all.registry = &registry;
    all.processes = &processes;
    return all;
  }

  const bool claimed = ClaimTheMachine();
  simulation::Journal& journal;
  simulation::Scheduler scheduler;
  VirtualClock clock{scheduler, journal};
  VirtualThreads threads{scheduler, journal};
  VirtualTimers timers{scheduler, journal};
  DeviceDirectory devices{[this] { return scheduler.Now(); },
                          [this](std::string_view operation, const auto& arguments) {
                            return journal.Enter(operation, arguments);
                          },
                          [this](std::uint64_t t) { timers.TellOfNews(t); }};
  KeptInput input{scheduler, journal};
  VirtualDisk disk{[this] { return scheduler.Now(); }};
  ListedMessages system{journal};
  VirtualRegistry registry{&journal};
  VirtualProcesses processes{scheduler, journal, threads, disk};
  platform::Platform groups = Gathered();
  std::optional<InstalledPlatform> installed{groups};
};

Simulation::Simulation() : machine(std::make_unique<Machine>(*this)) {}

Simulation::~Simulation() = default;

const platform::Platform& Simulation::Groups() const { return machine->groups; }

void Simulation::AddGroups(Desktop& desktop, Controls& controls, Shell& shell) {
  machine->groups.desktop = &desktop;
  machine->groups.controls = &controls;
  machine->groups.shell = &shell;
  machine->installed.reset();
  machine->installed.emplace(machine->groups);
}

simulation::Scheduler& Simulation::Scheduler() { return machine->scheduler; }

std::uint64_t Simulation::Now() const { return machine->scheduler.Now(); }

void Simulation::SetTickOffset(std::uint32_t offset) { machine->clock.offset = offset; }

void Simulation::RunFor(std::uint64_t ms) {
  const std::uint64_t end = Now() + ms;
  machine->scheduler.RunUntil(end < ms ? UINT64_MAX : end);
}

void Simulation::RunUntil(std::uint64_t t) { machine->scheduler.RunUntil(t); }

SimulatedDevice& Simulation::AddDevice(const DeviceDescription& description) {
  return machine->devices.Add(description);
}

VirtualDisk& Simulation::Disk() { return machine->disk; }

VirtualProcesses& Simulation::Processes() { return machine->processes; }

VirtualRegistry& Simulation::Registry() { return machine->registry; }

const std::vector<SentEvent>& Simulation::Events() const { return machine->input.events; }

std::string Simulation::EventText() const {
  std::string text;
  for (const SentEvent& event : Events()) text += simulation::EventText(event) + "\n";
  return text;
}

void Simulation::ClearEvents() { machine->input.events.clear(); }

void Simulation::OnEvent(std::function<void(const SentEvent&)> listener) {
  machine->input.listener = std::move(listener);
}

void Simulation::KeepEvents(bool keep) { machine->input.keep = keep; }

void Simulation::SetTimerLimits(std::uint32_t minMs, std::uint32_t maxMs) {
  machine->timers.limits = {minMs, maxMs};
}

void Simulation::LetTimersSleep(bool sleep) { machine->timers.maySleep = sleep; }

void Simulation::SetSystemMessage(std::uint32_t code, const std::string& text) {
  machine->system.texts[code] = text;
}

void Simulation::SetUserDataFolder(const std::string& path) { machine->system.dataFolder = path; }

std::uint32_t Simulation::LivingThreads() const { return machine->threads.Living(); }

std::uint32_t Simulation::OpenHandles() const { return machine->threads.OpenHandles(); }

std::uint32_t Simulation::OpenDeviceObjects() const { return machine->devices.OpenObjects(); }

std::uint32_t Simulation::OpenTimerPeriods() const { return machine->timers.OpenPeriods(); }

}  // namespace platform::simulation
