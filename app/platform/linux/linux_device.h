// One game device in use.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "app/platform/devices.h"
#include "app/platform/linux/device_layout.h"
#include "app/platform/linux/device_nodes.h"
#include "app/platform/linux/device_return.h"

namespace platform {

class LinuxDevice : public DirectInputDevice {
 public:
  // `attached` has its node.
  LinuxDevice(std::shared_ptr<DeviceSource> source, AttachedDevice attached);
  virtual ~LinuxDevice() = default;

  HRESULT SetDataFormat() override;
  // An exclusive device is grabbed: of all that can read it, programs that go by its event or
  // joystick node get nothing, those that read its raw reports (hidraw) go on as before.
  HRESULT SetCooperativeLevel(Handle window, std::uint32_t flags) override;
  HRESULT GetCapabilities(DIDEVCAPS* caps) override;
  HRESULT EnumObjects(const std::function<bool(std::uint32_t id)>& visit,
                      std::uint32_t flags) override;
  HRESULT SetProperty(std::uint32_t property, const DIPROPRANGE& range) override;

  // Takes up a lost device again once it has been found, on a thread of its own (DeviceReturn). No
  // system call, but for the one that grabs.
  HRESULT Acquire() override;
  HRESULT Unacquire() override;

  // One read when the device has nothing to say. A device that goes away is put to rest first, and
  // that is delivered: the kernel lets go of its buttons too, but doesn't let its readers see it.
  // From the next call on the result is DIERR_INPUTLOST.
  HRESULT Poll() override;
  std::optional<Handle> WaitForNews() override;
  // A device that has lost events is brought up to date in one go.
  void SetTapsApart(bool apart) override { tapsApart = apart; }
  HRESULT GetDeviceState(std::uint32_t size, DIJOYSTATE2* state) override;
  void Release() override;

 private:
  enum class Condition {
    Attached,
    AtRest,  // gone; its last state has not been followed by a failing Poll yet
    Lost
  };
  struct Range {
    std::int32_t lowest = 0;
    std::int32_t highest = 65535;  // until one is set
  };

  void Adopt(std::unique_ptr<DeviceNode> opened);
  void Apply(const input_event& event);
  // Whether it is a second change of a button in this poll, and taps are to be kept apart.
  bool MustWait(const input_event& event);
  void PutHat(std::uint32_t hat);
  void Lose();  // the node, with all put to rest

  DeviceReturn itsReturn;
  std::unique_ptr<DeviceNode> node;  // null while lost
  DeviceLayout layout;
  std::array<AxisFacts, ABS_CNT> axes;
  std::array<std::optional<Range>, kAxisSlots> ranges;  // of all axes that it has or once had
  Range newestRange;
  DIJOYSTATE2 state;
  bool tapsApart = false;
  std::bitset<sizeof DIJOYSTATE2::rgbButtons>
      changedButtons;                   // in this poll, while taps are kept apart
  std::optional<input_event> heldBack;  // for the next poll
  Condition condition = Condition::Attached;
  bool exclusive = false;
  bool acquired = false;
};

}  // namespace platform
