// What is remembered for each device, by its name.
#include "app/resources/settings_keys.h"
#include "app/window/session.h"
#include "foundation/registry_key.h"

namespace kelvaro {
namespace {

ByteString DeviceKey(const ByteString& deviceName) {
  ByteString path(kProductKey);
  path.Append("\\Devices\\");
  path.Append(deviceName);
  return path;
}

// The stored values of a device. Behind the first missing one they are still read, but not taken.
class StoredValues {
 public:
  explicit StoredValues(const ByteString& deviceName)
      : key(platform::HKEY_CURRENT_USER, DeviceKey(deviceName), false) {}

  bool Take(const char* name, std::uint32_t* value) {
    std::uint32_t stored{};
    if (!key.GetDword(nullptr, name, &stored)) complete = false;
    if (complete) *value = stored;
    return complete;
  }
  void Take(const char* name, Relaxed<std::int32_t>* setting) {
    std::uint32_t value{};
    if (Take(name, &value)) *setting = static_cast<std::int32_t>(value);
  }
  void TakeButton(const char* name, Relaxed<std::uint16_t>* index, Relaxed<std::uint64_t>* mask) {
    std::uint32_t value{};
    if (!Take(name, &value)) return;
    const auto button = static_cast<std::uint16_t>(value);
    *index = button;
    *mask = MouseButtonMask(button);
  }
  void TakeInput(const char* kindName, const char* indexName, Relaxed<TriggerItem>* input) {
    std::uint32_t value{};
    TriggerItem item = *input;
    if (Take(kindName, &value)) {
      item.kind = static_cast<std::uint16_t>(value);
      *input = item;
    }
    if (Take(indexName, &value)) {
      item.index = static_cast<std::uint16_t>(value);
      AxisFieldOffset(&item);
      *input = item;
    }
  }

  bool complete = true;

 private:
  RegistryKey key;
};

}  // namespace

void Session::SaveDeviceSettings() {
  // Also on the notification thread, which may ask the manager for what is used here.
  if (!deviceManager || !deviceManager->DeviceSelected()) return;
  const ByteString& deviceName = deviceManager->SelectedName();

  const RegistryWrites together;
  RegistryKey product(platform::HKEY_CURRENT_USER, kProductKey, true);
  product.SetString(nullptr, kLastDevice, deviceName);

  const TriggerItem mouseX = profile.mouseX;
  const TriggerItem mouseY = profile.mouseY;
  const TriggerItem mouseWheel = profile.mouseWheel;
  const auto number = [](std::int32_t value) { return static_cast<std::uint32_t>(value); };
  const struct {
    const char* name;
    std::uint32_t value;
  } values[] = {
      {"Poll Interval", deviceManager->PollInterval()},
      {"Acceleration", number(profile.acceleration)},
      {"Sensitivity", number(profile.movementSensitivity)},
      {"Axis Damper", number(profile.movementDamper)},
      {"Left Mouse Btn", profile.leftButton},
      {"Middle Mouse Btn", profile.middleButton},
      {"Right Mouse Btn", profile.rightButton},
      {"MouseX Type", mouseX.kind},
      {"MouseX Bank", mouseX.index},
      {"MouseY Type", mouseY.kind},
      {"MouseY Bank", mouseY.index},
      {"Mouse Wheel Type", mouseWheel.kind},
      {"Mouse Wheel Bank", mouseWheel.index},
      {"Mouse Always Active", number(profile.mouseAlwaysActive)},
  };
  RegistryKey key(platform::HKEY_CURRENT_USER, DeviceKey(deviceName), true);
  for (const auto& entry : values) key.SetDword(nullptr, entry.name, entry.value);
}

bool Session::LoadDeviceSettings() {
  StoredValues stored(deviceManager->SelectedName());
  {
    LockGuard guard(engine->mouseLock);
    stored.Take("Acceleration", &profile.acceleration);
    stored.Take("Sensitivity", &profile.movementSensitivity);
    stored.Take("Axis Damper", &profile.movementDamper);
    stored.TakeButton("Left Mouse Btn", &profile.leftButton, &profile.leftMask);
    stored.TakeButton("Middle Mouse Btn", &profile.middleButton, &profile.middleMask);
    stored.TakeButton("Right Mouse Btn", &profile.rightButton, &profile.rightMask);
    stored.TakeInput("MouseX Type", "MouseX Bank", &profile.mouseX);
    stored.TakeInput("MouseY Type", "MouseY Bank", &profile.mouseY);
    stored.TakeInput("Mouse Wheel Type", "Mouse Wheel Bank", &profile.mouseWheel);
    std::uint32_t active{};
    if (stored.Take("Mouse Always Active", &active)) profile.mouseAlwaysActive = active != 0;
  }
  std::uint32_t interval{};
  if (stored.Take("Poll Interval", &interval) && interval != deviceManager->PollInterval() &&
      deviceManager->SetPollInterval(interval)) {
    ReselectDevice();
  }
  return stored.complete;
}

}  // namespace kelvaro
