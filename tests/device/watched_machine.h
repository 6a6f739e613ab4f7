// A simulated machine that writes down each operation with its arguments, in call order, the
// sleeps and the ends of threads among them. It forwards everything and decides nothing; a few
// switches give failures of operations that the simulation has no single name for.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/platform.h"
#include "app/platform/simulation/simulation.h"

namespace kelvaro::test {

class WatchedMachine : public platform::Clock,
                       public platform::Threads,
                       public platform::Timers,
                       public platform::Devices {
 public:
  explicit WatchedMachine(platform::simulation::Simulation& simulation)
      : machine(simulation.Groups()), installed(Replaced()) {}

  std::vector<std::string> calls;
  std::vector<std::uint32_t> exitCodes;  // of threads, as they end
  std::vector<std::int32_t> priorities;  // as threads set them for themselves
  bool refuseManualResetEvents = false;  // CreateEventA gives no such event
  bool refuseAutoResetEvents = false;
  bool failWaits = false;                                 // WaitForMultipleObjects
  platform::DirectInputDevice* leftByAFailure = nullptr;  // what CreateDevice gives then, if any

  void Note(const std::string& call) { calls.push_back(call); }
  std::int64_t Count(const std::string& call) const {
    return std::count(calls.begin(), calls.end(), call);
  }

  void Sleep(std::uint32_t ms) override {
    Note("Sleep " + std::to_string(ms));
    machine.clock->Sleep(ms);
  }
  std::uint32_t GetTickCount() override { return machine.clock->GetTickCount(); }

  std::int32_t GetCurrentThreadId() override { return machine.threads->GetCurrentThreadId(); }
  platform::Handle CreateThread(platform::ThreadEntry entry, void* parameter, const char* name,
                                std::int32_t* threadId) override {
    Note(std::string("CreateThread ") + name);
    started.push_back(std::make_unique<Started>(Started{this, entry, parameter, name}));
    return machine.threads->CreateThread(&WatchedMachine::Entry, started.back().get(), name,
                                         threadId);
  }
  bool GetExitCodeThread(platform::Handle thread, std::uint32_t* exitCode) override {
    return machine.threads->GetExitCodeThread(thread, exitCode);
  }
  bool TerminateThread(platform::Handle thread, std::uint32_t exitCode) override {
    Note("TerminateThread " + std::to_string(exitCode));
    return machine.threads->TerminateThread(thread, exitCode);
  }
  bool SetCurrentThreadPriority(std::int32_t priority) override {
    priorities.push_back(priority);
    return machine.threads->SetCurrentThreadPriority(priority);
  }
  bool SetPriorityClass(std::uint32_t priorityClass) override {
    return machine.threads->SetPriorityClass(priorityClass);
  }
  std::int32_t GetCurrentThreadPriority() override {
    return machine.threads->GetCurrentThreadPriority();
  }
  platform::Handle CreateEventA(bool manualReset, bool initialState) override {
    const std::string kind = manualReset ? "manual" : "auto";
    Note("CreateEventA " + kind + (initialState ? " signalled" : ""));
    if (manualReset ? refuseManualResetEvents : refuseAutoResetEvents) {
      return platform::kInvalidHandle;
    }
    const platform::Handle event = machine.threads->CreateEventA(manualReset, initialState);
    eventKinds[event] = kind;
    return event;
  }
  bool SetEvent(platform::Handle event) override {
    Note("SetEvent " + eventKinds[event]);
    return machine.threads->SetEvent(event);
  }
  bool ResetEvent(platform::Handle event) override {
    Note("ResetEvent " + eventKinds[event]);
    return machine.threads->ResetEvent(event);
  }
  std::uint32_t WaitForSingleObject(platform::Handle handle, std::uint32_t timeoutMs) override {
    return machine.threads->WaitForSingleObject(handle, timeoutMs);
  }
  std::uint32_t WaitForMultipleObjects(std::uint32_t count, const platform::Handle* handles,
                                       std::uint32_t timeoutMs) override {
    if (failWaits) return platform::WAIT_FAILED;
    return machine.threads->WaitForMultipleObjects(count, handles, timeoutMs);
  }
  bool CloseHandle(platform::Handle handle) override {
    return machine.threads->CloseHandle(handle);
  }

  std::uint32_t timeGetDevCaps(platform::TIMECAPS* caps) override {
    Note("timeGetDevCaps");
    return machine.timers->timeGetDevCaps(caps);
  }
  std::uint32_t timeBeginPeriod(std::uint32_t periodMs) override {
    Note("timeBeginPeriod " + std::to_string(periodMs));
    return machine.timers->timeBeginPeriod(periodMs);
  }
  std::uint32_t timeEndPeriod(std::uint32_t periodMs) override {
    Note("timeEndPeriod " + std::to_string(periodMs));
    return machine.timers->timeEndPeriod(periodMs);
  }
  std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                             platform::TimerCallback callback, void* user,
                             std::uint32_t flags) override {
    Note("timeSetEvent " + std::to_string(delayMs) + " " + std::to_string(resolutionMs) + " " +
         std::to_string(flags));
    return machine.timers->timeSetEvent(delayMs, resolutionMs, callback, user, flags);
  }
  std::uint32_t timeKillEvent(std::uint32_t timerId) override {
    Note("timeKillEvent");
    return machine.timers->timeKillEvent(timerId);
  }

  platform::HRESULT DirectInput8Create(std::uint32_t version,
                                       platform::DirectInput** directInput) override {
    Note("DirectInput8Create " + std::to_string(version));
    const platform::HRESULT result = machine.devices->DirectInput8Create(version, &directory.real);
    if (result == platform::DI_OK) *directInput = &directory;
    return result;
  }

 private:
  struct Started {
    WatchedMachine* owner;
    platform::ThreadEntry entry;
    void* parameter;
    std::string name;
  };

  static std::uint32_t Entry(void* parameter) {
    Started* self = static_cast<Started*>(parameter);
    const std::uint32_t exitCode = self->entry(self->parameter);
    self->owner->exitCodes.push_back(exitCode);
    self->owner->Note(self->name + " ended");
    return exitCode;
  }

  struct Device final : platform::DirectInputDevice {
    Device(WatchedMachine& owner, platform::DirectInputDevice* real) : owner(owner), real(real) {}

    platform::HRESULT SetDataFormat() override {
      owner.Note("SetDataFormat");
      return real->SetDataFormat();
    }
    platform::HRESULT SetCooperativeLevel(platform::Handle window, std::uint32_t flags) override {
      owner.Note("SetCooperativeLevel " + std::to_string(window) + " " + std::to_string(flags));
      return real->SetCooperativeLevel(window, flags);
    }
    platform::HRESULT GetCapabilities(platform::DIDEVCAPS* caps) override {
      owner.Note("GetCapabilities " + std::to_string(caps->dwSize));
      return real->GetCapabilities(caps);
    }
    platform::HRESULT EnumObjects(const std::function<bool(std::uint32_t)>& visit,
                                  std::uint32_t flags) override {
      owner.Note("EnumObjects " + std::to_string(flags));
      return real->EnumObjects(
          [&](std::uint32_t id) {
            axisIds.push_back(id);
            return visit(id);
          },
          flags);
    }
    // The axis is told by its place in the enumeration.
    platform::HRESULT SetProperty(std::uint32_t property,
                                  const platform::DIPROPRANGE& range) override {
      const auto axis = std::find(axisIds.begin(), axisIds.end(), range.diph.dwObj);
      owner.Note("SetProperty " + std::to_string(property) + " how " +
                 std::to_string(range.diph.dwHow) + " axis " +
                 (axis == axisIds.end() ? "?" : std::to_string(axis - axisIds.begin())) + " " +
                 std::to_string(range.lMin) + " to " + std::to_string(range.lMax));
      return real->SetProperty(property, range);
    }
    platform::HRESULT Acquire() override {
      owner.Note("Acquire");
      return real->Acquire();
    }
    platform::HRESULT Unacquire() override {
      owner.Note("Unacquire");
      return real->Unacquire();
    }
    platform::HRESULT Poll() override {
      owner.Note("Poll");
      return real->Poll();
    }
    platform::HRESULT GetDeviceState(std::uint32_t size, platform::DIJOYSTATE2* state) override {
      owner.Note("GetDeviceState " + std::to_string(size));
      return real->GetDeviceState(size, state);
    }
    void Release() override {
      owner.Note("Release");
      real->Release();
      real = nullptr;
    }

    WatchedMachine& owner;
    platform::DirectInputDevice* real;
    std::vector<std::uint32_t> axisIds;
  };

  struct Directory final : platform::DirectInput {
    explicit Directory(WatchedMachine& owner) : owner(owner) {}

    platform::HRESULT EnumDevices(
        std::uint32_t deviceClass,
        const std::function<bool(const platform::DIDEVICEINSTANCE&)>& visit,
        std::uint32_t flags) override {
      owner.Note("EnumDevices " + std::to_string(deviceClass) + " " + std::to_string(flags));
      return real->EnumDevices(deviceClass, visit, flags);
    }
    // The device is told by the first part of its identity.
    platform::HRESULT CreateDevice(const platform::GUID& instance,
                                   platform::DirectInputDevice** device) override {
      owner.Note("CreateDevice " + std::to_string(instance.Data1));
      platform::DirectInputDevice* made = nullptr;
      const platform::HRESULT result = real->CreateDevice(instance, &made);
      if (result == platform::DI_OK) {
        owner.opened.push_back(std::make_unique<Device>(owner, made));
        *device = owner.opened.back().get();
      } else if (owner.leftByAFailure) {
        *device = owner.leftByAFailure;
      }
      return result;
    }
    void Release() override {
      owner.Note("DirectInput Release");
      real->Release();
      real = nullptr;
    }

    WatchedMachine& owner;
    platform::DirectInput* real = nullptr;
  };

  platform::Platform Replaced() {
    platform::Platform replaced = machine;
    replaced.clock = this;
    replaced.threads = this;
    replaced.timers = this;
    replaced.devices = this;
    return replaced;
  }

  const platform::Platform machine;
  Directory directory{*this};
  std::vector<std::unique_ptr<Device>> opened;
  std::vector<std::unique_ptr<Started>> started;
  std::map<platform::Handle, std::string> eventKinds;
  platform::InstalledPlatform installed;
};

}  // namespace kelvaro::test
