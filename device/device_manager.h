// The list of attached game devices, the one selected device, its polling on a multimedia timer
// and the hand-over of changed states to a second thread. Every good poll goes to the poll callback
// on the timer's thread; a state that differs from the last one in any byte goes to the change
// callback on the notification thread. Both run with deviceLock held, and a period that finds it
// taken is lost: the timer's thread never waits, and several changes during a long callback come
// out as one, the latest. While the device doesn't answer, nothing is delivered; that it doesn't is
// told to the presence callback alone.
//
// A period in which nothing could happen is left out, and the timer sleeps until the device has
// something new: the last good state was as the one before, and the poll callback, if there is one,
// has called NothingUntilChange. What it went by is the owner's to watch: Wake tells of a change.
//
// The list and the selection belong to the thread that made the object; a change callback may ask
// for the selected name and whether there is one, and for the interval. Its many methods share
// deviceLock and the order in which its two threads are started and ended.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "app/platform/desktop.h"
#include "app/platform/devices.h"
#include "app/platform/timers.h"
#include "device/device_error.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "foundation/recursive_lock.h"
#include "foundation/relaxed.h"
#include "foundation/worker_thread.h"

namespace kelvaro {

class DeviceManager;

// `state` is valid during the call only.
using DeviceCallback = void (*)(DeviceManager* device, const platform::DIJOYSTATE2* state,
                                void* context);
// On the timer's thread, with deviceLock held: must not wait.
using PresenceCallback = void (*)(bool answers, void* context);

class DeviceManager : public WorkerThread, public DeviceErrorObject {
 public:
  // Limits that are set on every axis.
  static constexpr std::int32_t axisMin = -32000;
  static constexpr std::int32_t axisMax = 32000;

  // DirectInputCreated tells whether it worked; the error text then says why not.
  explicit DeviceManager(platform::WindowHandle windowHandle);
  ~DeviceManager() override;

  bool DirectInputCreated() const { return directInput != nullptr; }

  // Lists the attached devices anew. False without DirectInput, with nothing changed, or when the
  // enumeration fails (the error text says why). The selected device keeps running, and
  // SelectedIndex() keeps its value even if the new list has another device, or none, at that
  // place.
  bool EnumerateDevices();
  std::int32_t DeviceCount() const { return devices.count; }
  ByteString DeviceName(std::int32_t index) const;      // empty outside the list
  platform::GUID DeviceGuid(std::int32_t index) const;  // all zero outside the list

  // Stops what runs, opens the device and polls it at PollInterval(). True when the device now
  // runs. False for an index outside the list, with nothing changed, and for any later failure; no
  // device runs then. Takes 100 ms and more (StopDevice). Selection failures leave no error text.
  bool SelectDevice(std::int32_t index);
  // Selects the selected device again; false when there is none.
  bool ReselectDevice();
  // Select the first in the list that matches; false, with nothing changed, if none does.
  bool SelectDeviceByGuid(const platform::GUID& guid);
  bool SelectDeviceByName(const ByteString& name);  // byte for byte

  // Ends polling and gives up the device; no callback runs after it. Takes 100 ms at least, also
  // when nothing runs, and as long as the tick that is under way and a change callback need to end
  // (the latter stopTimeout at most). Not to be called from a callback.
  void StopDevice();

  bool DeviceSelected() const { return selectedIndex >= 0; }
  std::int32_t SelectedIndex() const { return selectedIndex; }  // -1 for none
  platform::GUID SelectedGuid() const;  // that of the list at SelectedIndex(); all zero for none
  const ByteString& SelectedName() const { return selectedName; }
  // Of the device that was opened last.
  const platform::DIDEVCAPS& DeviceCaps() const { return deviceCaps; }

  // False, with no change, outside TimerMin() to TimerMax(). A running timer keeps its interval:
  // the new one (ms) counts from the next selection.
  bool SetPollInterval(std::uint32_t ms);
  std::uint32_t PollInterval() const { return pollInterval; }
  std::uint32_t TimerMin() const { return timerMin; }
  std::uint32_t TimerMax() const { return timerMax; }

  // A callback runs once it is both set (not null) and enabled; once enabled, it stays so. These
  // wait for a callback that is under way. `context` is handed on as it is.
  void SetChangeCallback(DeviceCallback callback, void* context);
  void SetPollCallback(DeviceCallback callback, void* context);
  void EnableChangeCallback();
  void EnablePollCallback();

  // Called when a poll finds that the selected device has gone, or is back. Null for nobody. Waits
  // for a tick that is under way.
  void SetPresenceCallback(PresenceCallback callback, void* context);
  // Whether the selected device answered the last poll; before the first one it counts as
  // answering. Any thread.
  bool Answers() const { return answers; }

  // The next good poll counts as a change, as the first one of a selection does. Waits for a
  // callback that is under way.
  void DeliverAnew();

  // For the poll callback, during its call: as long as the state stays as it is, each further call
  // would do nothing.
  void NothingUntilChange() KELVARO_NEEDS(deviceLock) { pollMayRest = true; }
  // Something else than the state that the poll callback goes by may have changed. Costs a tick at
  // most. Any thread; the end of a change callback does the same.
  void Wake();

  // How many periods were lost since this was made, because deviceLock was taken when they came:
  // mostly by a change callback that took its time. Any thread; it wraps.
  std::uint32_t LostPolls() const { return lostPolls; }

  // At once: a change of the device is read when it comes, and the next a full interval later at
  // the earliest; and a button that was pressed and let go meanwhile is delivered as two changes.
  // Otherwise, as at first, each is read at the next point of the interval's grid. To be set before
  // the device is selected.
  void SetAnswerAtOnce(bool atOnce) { answerAtOnce = atOnce; }

  // Which devices, by their names, no other program is to get anything of while they are selected;
  // `wanted` is asked at each selection, none is at first. To be set before the device is selected.
  void SetExclusive(std::function<bool(const ByteString& name)> wanted) {
    exclusive = std::move(wanted);
  }
  // Whether no device is selected since another program has the one asked for to itself.
  bool TakenByAnother() const { return takenByAnother; }

  // Held over each poll and each callback. Outermost of all locks.
  RecursiveLock deviceLock{LockRank::Device};

 protected:
  std::uint32_t Run() override;  // the notification thread

 private:
  // Of Poll and Acquire.
  static bool Succeeded(platform::HRESULT result) {
    return result == platform::DI_OK || result == platform::DI_NOEFFECT;
  }
  bool CreateDirectInput();
  bool FillDeviceList();
  const platform::DIDEVICEINSTANCE* Entry(std::int32_t index) const;  // null outside the list
  template <typename Matches>
  bool SelectFirst(Matches matches);
  // All that a created device needs before it is polled.
  bool PrepareDevice(std::uint32_t cooperativeLevel);
  void ReadTimerLimits();
  void StartPolling();
  // On the timer's thread, each period. No waiting, no allocation.
  static void tick(std::uint32_t timerId, void* user);
  // Whether the next poll can wait until the device has news, or Wake is called.
  bool PollDevice() KELVARO_NEEDS(deviceLock);
  void NoteAnswer(bool answered) KELVARO_NEEDS(deviceLock);

  // Of the thread that made the object. The two of the selection stay as they are while the
  // notification thread runs, which therefore may look at them.
  const platform::WindowHandle windowHandle;
  std::int32_t selectedIndex = -1;
  ByteString selectedName;
  LinkedList<platform::DIDEVICEINSTANCE> devices;  // in enumeration order
  platform::DirectInput* directInput = nullptr;    // null once its devices couldn't be listed
  platform::DIDEVCAPS deviceCaps;
  Relaxed<std::uint32_t> pollInterval{33};
  std::uint32_t timerMin = 33;  // both where the timer doesn't tell
  std::uint32_t timerMax = 33;
  std::uint32_t activePeriod = 0;     // as passed to timeBeginPeriod, 0 when none is active
  Relaxed<std::uint32_t> timerId{0};  // 0 when none is active
  Relaxed<bool> answerAtOnce{false};
  std::function<bool(const ByteString&)> exclusive;
  bool takenByAnother = false;
  Relaxed<std::uint32_t> lostPolls{0};  // written by the timer's thread alone
  Relaxed<bool> answers{true};          // the same, once polling goes on

  // Set before the timer and the notification thread start, and theirs until they have ended; the
  // timer's thread touches them under deviceLock only.
  platform::DirectInputDevice* device = nullptr;
  platform::DIJOYSTATE2 stateBuffers[2];
  std::uint32_t writeIndex{};  // the next read's block; the other holds the last good read
  // What the change callback gets.
  platform::DIJOYSTATE2 changedState KELVARO_GUARDED_BY(deviceLock);
  platform::Handle changeEvent = platform::kInvalidHandle;  // auto-reset

  // Set under deviceLock. The notification thread looks at the first two before it takes the lock,
  // so that a change that nobody wants costs no tick.
  Relaxed<bool> changeEnabled{false};
  Relaxed<DeviceCallback> changeCallback{nullptr};
  void* changeContext KELVARO_GUARDED_BY(deviceLock) = nullptr;
  bool pollEnabled KELVARO_GUARDED_BY(deviceLock) = false;
  DeviceCallback pollCallback KELVARO_GUARDED_BY(deviceLock) = nullptr;
  // Of the call of pollCallback that is under way.
  bool pollMayRest KELVARO_GUARDED_BY(deviceLock){};
  void* pollContext KELVARO_GUARDED_BY(deviceLock) = nullptr;
  PresenceCallback presenceCallback KELVARO_GUARDED_BY(deviceLock) = nullptr;
  void* presenceContext KELVARO_GUARDED_BY(deviceLock) = nullptr;
};

}  // namespace kelvaro
