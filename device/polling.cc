#include <algorithm>
#include <cstring>

#include "app/platform/clock.h"
#include "device/device_manager.h"

namespace kelvaro {

namespace {
// Kept, though the end of the timer has waited for its last tick by then.
constexpr std::uint32_t kLastTickMs = 100;
constexpr std::uint32_t kTimerResolutionMs = 1;

// Exit codes of the notification thread.
constexpr std::uint32_t kStopped = 0;
constexpr std::uint32_t kNoEvents = 1;
constexpr std::uint32_t kWaitFailed = 2;
}  // namespace

void DeviceManager::ReadTimerLimits() {
  platform::TIMECAPS caps;
  if (platform::timers().timeGetDevCaps(&caps) == platform::TIMERR_NOERROR) {
    timerMin = caps.wPeriodMin;
    timerMax = caps.wPeriodMax;
  }
  pollInterval = std::min(std::max<std::uint32_t>(pollInterval, timerMin), timerMax);
}

bool DeviceManager::SetPollInterval(std::uint32_t ms) {
  if (ms < timerMin || ms > timerMax) return false;
  pollInterval = ms;
  return true;
}

void DeviceManager::SetChangeCallback(DeviceCallback callback, void* context) {
  LockGuard guard(deviceLock);
  changeCallback = callback;
  changeContext = context;
}

void DeviceManager::Wake() {
  if (timerId != 0) platform::timers().WakeTimer(timerId);
}

void DeviceManager::SetPollCallback(DeviceCallback callback, void* context) {
  LockGuard guard(deviceLock);
  pollCallback = callback;
  pollContext = context;
  Wake();
}

void DeviceManager::SetPresenceCallback(PresenceCallback callback, void* context) {
  LockGuard guard(deviceLock);
  presenceCallback = callback;
  presenceContext = context;
}

// Against a zero block, as at the start of polling.
void DeviceManager::DeliverAnew() {
  LockGuard guard(deviceLock);
  stateBuffers[writeIndex ^ 1] = {};
  Wake();
}

void DeviceManager::EnableChangeCallback() {
  LockGuard guard(deviceLock);
  changeEnabled = true;
}

void DeviceManager::EnablePollCallback() {
  LockGuard guard(deviceLock);
  pollEnabled = true;
  Wake();
}

void DeviceManager::StartPolling() {
  // Against a zero block the first good read almost always counts as a change: a centred hat is
  // not 0.
  writeIndex = 0;
  stateBuffers[0] = {};
  stateBuffers[1] = {};
  answers = true;
  platform::threads().ResetEvent(changeEvent);
  Start(false, platform::THREAD_PRIORITY_TIME_CRITICAL);
  activePeriod = pollInterval;
  platform::timers().timeBeginPeriod(pollInterval);
  timerId = platform::timers().timeSetEvent(pollInterval, kTimerResolutionMs, &DeviceManager::tick,
                                            this, platform::TIME_PERIODIC);
  // Its first call may have come before others could know its number.
  Wake();
}

void DeviceManager::tick(std::uint32_t id, void* user) {
  DeviceManager* self = static_cast<DeviceManager*>(user);
  // If any thread holds it, this one included, or takes it first, this period is lost.
  if (self->deviceLock.IsTaken() || !self->deviceLock.TryAcquire()) {
    self->lostPolls = self->lostPolls + 1;
    return;
  }
  // Null for a timer that couldn't be ended.
  if (self->device && self->PollDevice()) {
    if (const auto news = self->device->WaitForNews())
      platform::timers().SleepTimer(id, *news, self->answerAtOnce);
  }
  self->deviceLock.Release();
}

bool DeviceManager::PollDevice() {
  if (!Succeeded(device->Poll())) {
    // A lost device: this tries to get it back, and what isn't back is waited for. Nothing stays
    // held: the device itself puts a pulled pad to rest, in one last good poll before (devices.h).
    NoteAnswer(false);
    return !Succeeded(device->Acquire());
  }
  NoteAnswer(true);
  platform::DIJOYSTATE2& state = stateBuffers[writeIndex];
  if (device->GetDeviceState(sizeof state, &state) != platform::DI_OK) return false;
  const bool changed = std::memcmp(&stateBuffers[0], &stateBuffers[1], sizeof state) != 0;
  if (changed) {
    changedState = state;
    platform::threads().SetEvent(changeEvent);
  }
  pollMayRest = !pollEnabled || !pollCallback;
  if (!pollMayRest) pollCallback(this, &state, pollContext);
  writeIndex ^= 1;
  return !changed && pollMayRest;
}

void DeviceManager::NoteAnswer(bool answered) {
  if (answers == answered) return;
  answers = answered;
  if (presenceCallback) presenceCallback(answered, presenceContext);
}

std::uint32_t DeviceManager::Run() {
  if (stopEvent == platform::kInvalidHandle || changeEvent == platform::kInvalidHandle) {
    return kNoEvents;
  }
  const platform::Handle events[] = {stopEvent, changeEvent};
  for (;;) {
    const std::uint32_t woken =
        platform::threads().WaitForMultipleObjects(2, events, platform::WAIT_FOREVER);
    if (woken == platform::WAIT_FAILED) return kWaitFailed;
    if (woken == platform::WAIT_OBJECT_0) return kStopped;
    if (!changeEnabled || !changeCallback) continue;
    LockGuard guard(deviceLock);
    const DeviceCallback callback = changeCallback;
    // It may have been taken away while this waited for the lock.
    if (!callback) continue;
    callback(this, &changedState, changeContext);
    Wake();
  }
}

void DeviceManager::StopDevice() {
  if (timerId != 0) {
    platform::timers().timeKillEvent(timerId);
    timerId = 0;
  }
  if (activePeriod != 0) {
    platform::timers().timeEndPeriod(activePeriod);
    activePeriod = 0;
  }
  Stop();
  platform::clock().Sleep(kLastTickMs);
  // Only tried: a callback that was ended by force holds the lock for ever. With it, this thread
  // sees all that the last tick wrote.
  const bool locked = deviceLock.TryAcquire();
  if (device) {
    device->Unacquire();
    device->Release();
    device = nullptr;
  }
  if (locked) deviceLock.Release();
  takenByAnother = false;
  selectedIndex = -1;
  selectedName.Empty();
}

}  // namespace kelvaro
