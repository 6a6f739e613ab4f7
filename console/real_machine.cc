#include "console/real_machine.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "app/platform/machine/this_machine.h"
#include "app/platform/recording/recorded_devices.h"
#include "console/console_error.h"

namespace kelvaro::console {
namespace {

// Tells of each event, and passes it on where there is something to pass it to.
class ToldInput : public platform::Input {
 public:
  using Listener = std::function<void(const SentEvent&)>;

  ToldInput(platform::Input* target, platform::Clock& clock, Listener listener)
      : target(target), clock(clock), listener(std::move(listener)), begin(clock.GetTickCount()) {}

  void StartOfTime() { begin = clock.GetTickCount(); }

  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t extra) override {
    if (target) target->keybd_event(vk, scan, flags, extra);
    listener(platform::simulation::SentKey(Elapsed(), vk, scan, flags));
  }

  void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::uint32_t extra) override {
    if (target) target->mouse_event(flags, dx, dy, data, extra);
    listener(platform::simulation::SentMouse(Elapsed(), flags, dx, dy, data));
  }

 private:
  std::uint32_t Elapsed() const { return clock.GetTickCount() - begin; }

  platform::Input* const target;  // null for none
  platform::Clock& clock;
  const Listener listener;
  std::atomic<std::uint32_t> begin;
};

}  // namespace

struct RealMachine::Parts {
  // To the system's output, or to the listener alone.
  void TellEvents(platform::Input* target, ToldInput::Listener listener) {
    told = std::make_unique<ToldInput>(target, *groups.clock, std::move(listener));
    groups.input = told.get();
  }

  // Makes the groups as they stand now the ones behind the seam.
  void Install() {
    installed.reset();
    installed = std::make_unique<platform::InstalledPlatform>(groups);
  }

  std::mutex refusalMutex;
  std::string refusal;  // the system's reason for the first refused event; guarded by refusalMutex
  platform::ThisMachine system;
  std::unique_ptr<platform::RecordedDevices> recorded;
  std::unique_ptr<platform::ThisCalls> calls;
  std::unique_ptr<ToldInput> told;
  platform::Platform groups;
  std::unique_ptr<platform::InstalledPlatform> installed;
};

RealMachine::RealMachine() : parts(std::make_unique<Parts>()) {
  parts->groups = parts->system.Groups();
  parts->Install();
}

RealMachine::~RealMachine() = default;

void RealMachine::PlayRecording(const platform::Recording& recording) {
  parts->recorded = std::make_unique<platform::RecordedDevices>(recording, *parts->groups.clock);
  parts->groups.devices = parts->recorded.get();
  parts->Install();
}

platform::ThisMachine& RealMachine::System() { return parts->system; }

void RealMachine::TakeCalls() {
  parts->calls = std::make_unique<platform::ThisCalls>();
  parts->groups.calls = parts->calls.get();
  parts->Install();
}

bool RealMachine::OpenOutput(EventPrinter* printer, [[maybe_unused]] std::string* error) {
#ifdef _WIN32
  platform::Input* const output = parts->system.Groups().input;
#else
  if (!parts->system.OpenInput(platform::InputChoice::Auto, error)) return false;
  platform::LinuxInput* output = parts->system.Sender();
  output->OnFailure([this](const std::string& text) {
    const std::lock_guard<std::mutex> guard(parts->refusalMutex);
    parts->refusal = text;
  });
#endif
  parts->groups.input = output;
  if (printer) {
    parts->TellEvents(output, [printer](const SentEvent& event) { printer->Print(event); });
  }
  parts->Install();
  return true;
}

void RealMachine::KeepEvents(std::function<void(const SentEvent&)> listener) {
  parts->TellEvents(nullptr, std::move(listener));
  parts->Install();
}

void RealMachine::SendTo(platform::Input& output) {
  parts->groups.input = &output;
  parts->Install();
}

const platform::Platform& RealMachine::Groups() const { return parts->groups; }

void RealMachine::StartOfTime() {
  if (parts->told) parts->told->StartOfTime();
}

int RealMachine::EndOfOutput([[maybe_unused]] Streams streams) {
#ifdef _WIN32
  return kDone;  // the system tells nothing
#else
  const std::uint32_t failed = parts->system.Sender()->FailedEvents();
  if (failed == 0) return kDone;
  const std::lock_guard<std::mutex> guard(parts->refusalMutex);
  return Complain(streams.err, "the system refused " + std::to_string(failed) +
                                   " of the events: " + parts->refusal);
#endif
}

}  // namespace kelvaro::console
