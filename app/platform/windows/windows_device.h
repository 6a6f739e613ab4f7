// One device in use, by DirectInput.
#pragma once

#include <bitset>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>

#include "app/platform/devices.h"
#include "app/platform/windows/direct_input_header.h"
#include "app/platform/windows/owned_handle.h"

namespace platform {

class WindowsDevice final : public DirectInputDevice {
 public:
  // Takes over the reference. It is asked each `lookMs` while it tells nothing.
  WindowsDevice(IDirectInputDevice8A* system, std::uint32_t lookMs)
      : system(system), lookMs(lookMs) {}
  virtual ~WindowsDevice();
  WindowsDevice(const WindowsDevice&) = delete;
  WindowsDevice& operator=(const WindowsDevice&) = delete;

  HRESULT SetDataFormat() override;
  HRESULT SetCooperativeLevel(Handle window, std::uint32_t flags) override;
  HRESULT GetCapabilities(DIDEVCAPS* caps) override;
  HRESULT EnumObjects(const std::function<bool(std::uint32_t id)>& visit,
                      std::uint32_t flags) override;
  HRESULT SetProperty(std::uint32_t property, const DIPROPRANGE& range) override;
  HRESULT Acquire() override;
  HRESULT Unacquire() override;
  HRESULT Poll() override;
  // The event that DirectInput signals for a change and mostly for the loss of the device, too; it
  // also comes each `lookMs`. None for a device that tells of nothing by itself, and none while it
  // is lost: nothing tells of its return.
  std::optional<Handle> WaitForNews() override;
  // By DirectInput's buffer of changes; set before Acquire.
  void SetTapsApart(bool apart) override { tapsApart = apart; }
  HRESULT GetDeviceState(std::uint32_t size, DIJOYSTATE2* state) override;
  void Release() override;

 private:
  using Change = ::DIDEVICEOBJECTDATA;

  void Prepare();
  bool TakeChanges();
  bool StartAnew();
  void ApplyUpToASecondTap();
  void Apply(const Change& change);

  IDirectInputDevice8A* const system;
  const std::uint32_t lookMs;
  OwnedHandle news;
  HANDLE look = nullptr;  // a timer that reports news
  bool isPrepared = false;
  bool tellsOfNews = false;
  bool answers = false;  // as the last operation on it found

  // Of taps kept apart.
  bool tapsApart = false;
  bool isBehind = true;  // `state` is to be read as a whole
  DIJOYSTATE2 state;
  std::deque<Change> waiting;  // for their poll
};

}  // namespace platform
