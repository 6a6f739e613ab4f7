// One game device in use, and how it comes back after it was lost.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/devices.h"
#include "app/platform/linux/device_identity.h"
#include "app/platform/linux/device_layout.h"
#include "app/platform/linux/device_nodes.h"

namespace platform {

// What the directory and all devices made by it share.
struct DeviceSource {
  std::unique_ptr<DeviceNodes> nodes;
  IdentityTable identities;
  std::function<std::int64_t()> nowMs;  // any start; never runs backwards
};

// The nodes that are attached, by their number; the table of identities forgets all others.
std::vector<NodePlace> AttachedNodes(DeviceSource& source);

// A game device that is attached and open.
struct AttachedDevice {
  NodePlace place;
  GUID identity;
  std::unique_ptr<DeviceNode> node;
};

class LinuxDevice : public DirectInputDevice {
 public:
  // `attached` has its node.
  LinuxDevice(std::shared_ptr<DeviceSource> source, AttachedDevice attached);
  virtual ~LinuxDevice() = default;

  HRESULT SetDataFormat() override;
  HRESULT SetCooperativeLevel(Handle window, std::uint32_t flags) override;
  HRESULT GetCapabilities(DIDEVCAPS* caps) override;
  HRESULT EnumObjects(const std::function<bool(std::uint32_t id)>& visit,
                      std::uint32_t flags) override;
  HRESULT SetProperty(std::uint32_t property, const DIPROPRANGE& range) override;

  // On a lost device: a search when it is first called, later only when a node of the same make is
  // reported, and for as long as such a node can't be opened yet, ever less often. Otherwise it
  // costs one system call.
  HRESULT Acquire() override;
  HRESULT Unacquire() override;

  // One read when the device has nothing to say. A device that goes away is put to rest first, and
  // that is delivered: the kernel lets go of its buttons too, but doesn't let its readers see it.
  // From the next call on the result is DIERR_INPUTLOST.
  HRESULT Poll() override;
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

  void Adopt(AttachedDevice attached);
  void Apply(const input_event& event);
  void PutHat(std::uint32_t hat);
  void PutToRest();
  bool LookForReturn();
  bool Search();

  const std::shared_ptr<DeviceSource> source;
  const GUID identity;
  const GUID make;  // what the identity starts from, without an ordinal
  NodePlace place;
  std::unique_ptr<DeviceNode> node;  // null while lost
  DeviceLayout layout;
  std::array<AxisFacts, ABS_CNT> axes;
  std::array<Range, kAxisSlots> ranges;
  DIJOYSTATE2 state;
  Condition condition = Condition::Attached;
  bool acquired = false;

  // While lost.
  bool watchDue = false;             // to be made at the next Acquire
  std::unique_ptr<NodeWatch> watch;  // null where there can be none
  bool searchDue = false;
  bool retrying = false;
  std::int64_t retryAtMs = 0;
  std::int64_t retryDelayMs = 0;
};

}  // namespace platform
