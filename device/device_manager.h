// The list of attached game devices, the one selected device, its polling on a multimedia timer
// and the hand-over of changed states to a second thread. Every good poll goes to the poll callback
// on the timer's thread; a state that differs from the last one goes to the change callback on the
// notification thread. Both run with deviceLock held. The list and the selection belong to the
// thread that made the object.
#pragma once

#include <cstdint>

#include "app/platform/desktop.h"
#include "app/platform/devices.h"
#include "app/platform/timers.h"
#include "device/device_error.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "foundation/recursive_lock.h"
#include "foundation/worker_thread.h"

namespace kelvaro {

class DeviceManager;

// `state` is good for the call only.
using DeviceCallback = void (*)(DeviceManager* device, const platform::DIJOYSTATE2* state,
                                void* context);

class DeviceManager : public WorkerThread, public DeviceErrorObject {
 public:
  // Limits that are set on every axis.
  static constexpr std::int32_t axisMin = -32000;
  static constexpr std::int32_t axisMax = 32000;

  // directInputCreated tells whether it worked; the error text then says why not.
  explicit DeviceManager(platform::WindowHandle windowHandle);
  ~DeviceManager() override;

  bool DirectInputCreated() const { return directInputCreated; }

  // Lists the attached devices anew; the selected one stays as it is. False without DirectInput.
  bool EnumerateDevices();
  std::int32_t DeviceCount() const { return devices.count; }
  ByteString DeviceName(std::int32_t index) const;      // empty outside the list
  platform::GUID DeviceGuid(std::int32_t index) const;  // all zero outside the list

  // True when the device now runs. An index outside the list changes nothing; on any later failure
  // no device runs.
  bool SelectDevice(std::int32_t index);
  bool ReselectDevice();
  bool SelectDeviceByGuid(const platform::GUID& guid);
  bool SelectDeviceByName(const ByteString& name);  // byte for byte, the first of that name
  void StopDevice();

  bool DeviceSelected() const { return deviceSelected; }
  std::int32_t SelectedIndex() const { return selectedIndex; }  // -1 for none
  platform::GUID SelectedGuid() const;                          // all zero for none
  const ByteString& SelectedName() const { return selectedName; }
  const platform::DIDEVCAPS& DeviceCaps() const { return deviceCaps; }

  // False, with no change, outside TimerMin() to TimerMax(). A running timer goes on as it is: the
  // new interval (ms) counts from the next selection.
  bool SetPollInterval(std::uint32_t ms);
  std::uint32_t PollInterval() const { return pollInterval; }
  std::uint32_t TimerMin() const { return timerMin; }
  std::uint32_t TimerMax() const { return timerMax; }

  // Once enabled, a callback stays so.
  void SetChangeCallback(DeviceCallback callback, void* context);
  void SetPollCallback(DeviceCallback callback, void* context);
  void EnableChangeCallback();
  void EnablePollCallback();

  // Held over each poll and each callback. Outermost of all locks.
  RecursiveLock deviceLock{LockRank::Device};

 protected:
  std::uint32_t Run() override;  // the notification thread

 private:
  // Members and helpers are the implementation's.
  platform::WindowHandle windowHandle;
  bool directInputCreated = false;
  bool deviceSelected = false;
  std::int32_t selectedIndex = -1;
  ByteString selectedName;
  LinkedList<platform::DIDEVICEINSTANCE> devices;
  platform::DirectInput* directInput = nullptr;
  platform::DirectInputDevice* device = nullptr;
  platform::DIDEVCAPS deviceCaps;
  std::uint32_t pollInterval = 33;
  std::uint32_t timerMin = 33;
  std::uint32_t timerMax = 33;
};

}  // namespace kelvaro
