#include "app/platform/linux/linux_devices.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/udev_nodes.h"

namespace platform {
namespace {

// Published device types, and the usages of the generic desktop page.
constexpr std::uint32_t kTypeJoystick = 0x14;
constexpr std::uint32_t kTypeGamepad = 0x15;
constexpr std::uint16_t kGenericDesktopPage = 1;
constexpr std::uint16_t kUsageJoystick = 4;
constexpr std::uint16_t kUsageGamepad = 5;

constexpr std::uint32_t kAllDevices = 0;

void CopyName(const std::string& name, char (&to)[kMaxPath]) {
  const std::string& shown = name.empty() ? std::string("Game device") : name;
  const std::size_t length = std::min(shown.size(), kMaxPath - 1);
  std::memcpy(to, shown.data(), length);
  to[length] = '\0';
}

// Calls visit for each game device that is attached, until it returns false.
void ForEachDevice(DeviceSource& source, const std::function<bool(AttachedDevice)>& visit) {
  for (const NodePlace& place : AttachedNodes(source)) {
    int errorCode = 0;
    std::unique_ptr<DeviceNode> node = source.nodes->Open(place, &errorCode);
    if (!node || !IsGameDevice(node->Facts())) continue;
    const GUID identity = source.identities.Assign(place.place, place.ids);
    if (!visit({place, identity, std::move(node)})) return;
  }
}

class LinuxDirectInput : public DirectInput {
 public:
  explicit LinuxDirectInput(std::shared_ptr<DeviceSource> sharedSource)
      : source(std::move(sharedSource)) {}
  virtual ~LinuxDirectInput() = default;

  HRESULT EnumDevices(std::uint32_t deviceClass,
                      const std::function<bool(const DIDEVICEINSTANCE&)>& visit,
                      std::uint32_t flags) override {
    if (!visit || (deviceClass != DI8DEVCLASS_GAMECTRL && deviceClass != kAllDevices) ||
        (flags & ~DIEDFL_ATTACHEDONLY) != 0)
      return DIERR_INVALIDPARAM;
    ForEachDevice(*source, [&](const AttachedDevice& attached) {
      DIDEVICEINSTANCE instance;
      const bool isGamepad = attached.node->Facts().keys[BTN_GAMEPAD];
      instance.guidInstance = attached.identity;
      instance.guidProduct = ProductIdentity(attached.place.ids);
      instance.dwDevType = isGamepad ? kTypeGamepad : kTypeJoystick;
      instance.wUsagePage = kGenericDesktopPage;
      instance.wUsage = isGamepad ? kUsageGamepad : kUsageJoystick;
      CopyName(attached.place.ids.name, instance.tszInstanceName);
      CopyName(attached.place.ids.name, instance.tszProductName);
      return visit(instance);
    });
    return DI_OK;
  }

  HRESULT CreateDevice(const GUID& instance, DirectInputDevice** device) override {
    if (!device) return DIERR_INVALIDPARAM;
    HRESULT result = DIERR_DEVICENOTREG;
    ForEachDevice(*source, [&](AttachedDevice attached) {
      if (attached.identity != instance) return true;
      *device = new LinuxDevice(source, std::move(attached));
      result = DI_OK;
      return false;
    });
    return result;
  }

  void Release() override { delete this; }

 private:
  const std::shared_ptr<DeviceSource> source;
};

}  // namespace

LinuxDevices::LinuxDevices()
    : LinuxDevices(std::make_unique<UdevNodes>(),
                   [] { return MonotonicNow() / kNanosecondsPerMillisecond; }) {}

LinuxDevices::LinuxDevices(std::unique_ptr<DeviceNodes> nodes, std::function<std::int64_t()> nowMs)
    : source(std::make_shared<DeviceSource>()) {
  source->nodes = std::move(nodes);
  source->nowMs = std::move(nowMs);
}

HRESULT LinuxDevices::DirectInput8Create(std::uint32_t version, DirectInput** directInput) {
  if (!directInput) return DIERR_INVALIDPARAM;
  if (version > DIRECTINPUT_VERSION_8) return DIERR_OLDDIRECTINPUTVERSION;
  if (version < DIRECTINPUT_VERSION_8) return DIERR_BETADIRECTINPUTVERSION;
  *directInput = new LinuxDirectInput(source);
  return DI_OK;
}

std::optional<NodePlace> LinuxDevices::PlaceOf(const GUID& identity) {
  std::optional<NodePlace> place;
  ForEachDevice(*source, [&](const AttachedDevice& attached) {
    if (attached.identity == identity) place = attached.place;
    return !place;
  });
  return place;
}

}  // namespace platform
