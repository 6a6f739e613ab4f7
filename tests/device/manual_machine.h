// A machine of one device in memory, whose timer ticks when it is told to and on which no second
// thread ever runs. It allocates nothing while it ticks, so that what a tick costs can be counted
// and measured.
#pragma once

#include <cstdint>
#include <functional>

#include "app/platform/platform.h"
#include "tests/device/one_pad.h"

namespace kelvaro::test {

class ManualMachine : public platform::Clock,
                      public platform::Threads,
                      public platform::Timers,
                      public OnePad {
 public:
  ManualMachine() : installed(Groups()) {}

  platform::DIJOYSTATE2 state = AtRest();                 // what the device gives
  std::uint32_t eventsSet = 0;                            // calls of SetEvent
  std::uint32_t rests = 0;                                // calls of SleepTimer
  std::uint32_t wakes = 0;                                // calls of WakeTimer
  platform::HRESULT enumDevicesResult = platform::DI_OK;  // after the device has been listed

  // One period of the timer that was set last.
  void Tick() { callback(kTimerId, user); }
  // The notification thread's turn, which finds one change, however late.
  void Notify() {
    changesToFind = 1;
    threadEntry(threadParameter);
  }

  void Sleep(std::uint32_t) override {}
  std::uint32_t GetTickCount() override { return 0; }

  std::int32_t GetCurrentThreadId() override { return 1; }
  platform::Handle CreateThread(platform::ThreadEntry entry, void* parameter, const char*,
                                std::int32_t* threadId) override {
    threadEntry = entry;
    threadParameter = parameter;
    threadLives = true;
    if (threadId) *threadId = 2;
    return kThread;
  }
  bool GetExitCodeThread(platform::Handle, std::uint32_t* exitCode) override {
    *exitCode = threadLives ? platform::STILL_ACTIVE : 0;
    return true;
  }
  bool TerminateThread(platform::Handle, std::uint32_t) override { return false; }
  bool SetCurrentThreadPriority(std::int32_t) override { return true; }
  std::int32_t GetCurrentThreadPriority() override { return platform::THREAD_PRIORITY_NORMAL; }
  bool SetPriorityClass(std::uint32_t) override { return true; }
  platform::Handle CreateEventA(bool, bool) override { return ++lastEvent; }
  bool SetEvent(platform::Handle) override {
    ++eventsSet;
    return true;
  }
  bool ResetEvent(platform::Handle) override { return true; }
  // The thread ends as soon as it is waited for.
  std::uint32_t WaitForSingleObject(platform::Handle, std::uint32_t) override {
    threadLives = false;
    return platform::WAIT_OBJECT_0;
  }
  std::uint32_t WaitForMultipleObjects(std::uint32_t, const platform::Handle*,
                                       std::uint32_t) override {
    return changesToFind-- != 0 ? platform::WAIT_OBJECT_0 + 1 : platform::WAIT_FAILED;
  }
  bool CloseHandle(platform::Handle) override { return true; }

  std::uint32_t timeGetDevCaps(platform::TIMECAPS* caps) override {
    *caps = {1, 1000};
    return platform::TIMERR_NOERROR;
  }
  std::uint32_t timeBeginPeriod(std::uint32_t) override { return platform::TIMERR_NOERROR; }
  std::uint32_t timeEndPeriod(std::uint32_t) override { return platform::TIMERR_NOERROR; }
  std::uint32_t timeSetEvent(std::uint32_t, std::uint32_t, platform::TimerCallback timerCallback,
                             void* timerUser, std::uint32_t) override {
    callback = timerCallback;
    user = timerUser;
    return kTimerId;
  }
  void SleepTimer(std::uint32_t, platform::Handle, bool) override { ++rests; }
  void WakeTimer(std::uint32_t) override { ++wakes; }
  std::uint32_t timeKillEvent(std::uint32_t) override { return platform::TIMERR_NOERROR; }

  platform::HRESULT EnumDevices(std::uint32_t deviceClass,
                                const std::function<bool(const platform::DIDEVICEINSTANCE&)>& visit,
                                std::uint32_t flags) override {
    // Anything but game controllers that are attached is not what this machine has.
    if (deviceClass != 4 || flags != 1) return platform::DIERR_INVALIDPARAM;
    OnePad::EnumDevices(deviceClass, visit, flags);
    return enumDevicesResult;
  }
  std::optional<platform::Handle> WaitForNews() override { return 0; }
  platform::HRESULT GetDeviceState(std::uint32_t size, platform::DIJOYSTATE2* out) override {
    if (size != sizeof state) return platform::DIERR_INVALIDPARAM;
    *out = state;
    return platform::DI_OK;
  }

 private:
  static constexpr std::uint32_t kTimerId = 1;
  static constexpr platform::Handle kThread = 1000;

  platform::Platform Groups() {
    platform::Platform groups;
    groups.clock = this;
    groups.threads = this;
    groups.timers = this;
    groups.devices = this;
    return groups;
  }

  bool threadLives = false;
  platform::ThreadEntry threadEntry = nullptr;
  void* threadParameter = nullptr;
  std::uint32_t changesToFind = 0;
  platform::Handle lastEvent = 0;
  platform::TimerCallback callback = nullptr;
  void* user = nullptr;
  platform::InstalledPlatform installed;
};

}  // namespace kelvaro::test
