// The Device tab: which device the profile uses and how often it is polled; and what is remembered
// for each device, by its name.
#include <algorithm>

#include "app/dialogs/number_field.h"
#include "app/resources/control_ids.h"
#include "app/window/main_window.h"
#include "foundation/registry_key.h"

namespace kelvaro {
namespace {

using namespace main_window;

// Item data of the row that stands for no device; the others have their device's index.
constexpr std::int32_t kNoDevice = -2;

constexpr std::uint32_t kIntervalMost = 1000;
constexpr std::uint32_t kRateTimesInterval = 1000;

constexpr char kOutOfRangeCaption[] = "Value Out of Range";
constexpr char kIntervalRangeText[] = "Please enter a value from 1 to 1000";
// Kept: the spelling.
constexpr char kRateRangeText[] = "Pleaes enter a value from 1 to 1000.\nThe rate of ";
constexpr char kRateRangeEnd[] = " equates to an interval of ";
constexpr char kPollRateCaption[] = "Internal Error";
constexpr char kPollRateText[] = "Error Setting Poll Rate";
constexpr char kSelectCaption[] = "Unknown Error";
constexpr char kSelectText[] = "Error selecting device. Please try again.";

ByteString DeviceKey(const ByteString& deviceName) {
  ByteString path(kProductKey);
  path.Append("\\Devices\\");
  path.Append(deviceName);
  return path;
}

// The stored values of a device. From the first that is missing on they are read, and not taken.
class StoredValues {
 public:
  explicit StoredValues(const ByteString& deviceName)
      : key(platform::HKEY_CURRENT_USER, DeviceKey(deviceName), false) {}

  bool Take(const char* name, std::uint32_t* value) {
    std::uint32_t stored = 0;
    if (!key.GetDword(nullptr, name, &stored)) complete = false;
    if (complete) *value = stored;
    return complete;
  }
  void Take(const char* name, Relaxed<std::int32_t>* setting) {
    std::uint32_t value = 0;
    if (Take(name, &value)) *setting = static_cast<std::int32_t>(value);
  }
  void TakeButton(const char* name, Relaxed<std::uint16_t>* index, Relaxed<std::uint64_t>* mask) {
    std::uint32_t value = 0;
    if (!Take(name, &value)) return;
    const auto button = static_cast<std::uint16_t>(value);
    *index = button;
    *mask = MouseButtonMask(button);
  }
  void TakeInput(const char* kindName, const char* indexName, Relaxed<TriggerItem>* input) {
    std::uint32_t value = 0;
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

// The list

void MainWindow::FillDeviceList() {
  platform::controls().ComboResetContent(window, kDeviceList);
  const auto add = [this](const ByteString& name, std::int32_t data) {
    const std::int32_t row = platform::controls().ComboAddString(window, kDeviceList, Bytes(name));
    if (row != platform::kNoRow)
      platform::controls().ComboSetItemData(window, kDeviceList, row, data);
  };
  add(kNoDeviceText, kNoDevice);
  if (!deviceManager) return;
  // The list is in order of its texts: each row knows its device by the index.
  for (std::int32_t index = 0; index < deviceManager->DeviceCount(); ++index) {
    add(deviceManager->DeviceName(index), index);
  }
}

void MainWindow::SelectDeviceInList(const platform::GUID& guid) {
  const std::int32_t count = platform::controls().ComboGetCount(window, kDeviceList);
  std::int32_t none = 0;
  for (std::int32_t row = 0; row < count; ++row) {
    const std::int32_t index = platform::controls().ComboGetItemData(window, kDeviceList, row);
    if (index == kNoDevice) {
      none = row;
    } else if (deviceManager && index < deviceManager->DeviceCount() &&
               deviceManager->DeviceGuid(index) == guid) {
      platform::controls().ComboSetCurSel(window, kDeviceList, row);
      return;
    }
  }
  platform::controls().ComboSetCurSel(window, kDeviceList, none);
}

void MainWindow::ShowSelectedDevice() {
  const platform::GUID guid = deviceManager->SelectedGuid();
  if (guid == platform::GUID{} && deviceManager->DeviceSelected()) {
    // One that runs on although the list doesn't have it any more.
    const std::int32_t row = platform::controls().ComboFindStringExact(
        window, kDeviceList, Bytes(deviceManager->SelectedName()));
    if (row != platform::kNoRow) {
      platform::controls().ComboSetCurSel(window, kDeviceList, row);
      return;
    }
  }
  SelectDeviceInList(guid);
}

// No state comes any more that could end what is held.
void MainWindow::LetGoWithoutDevice() {
  if (!deviceManager->DeviceSelected()) engine->LetGoWithoutDevice();
}

void MainWindow::ReselectDevice() {
  deviceManager->ReselectDevice();
  LetGoWithoutDevice();
}

void MainWindow::OnDeviceSelected() {
  if (initGuard != 0 || !deviceManager) return;
  const std::int32_t row = platform::controls().ComboGetCurSel(window, kDeviceList);
  if (row == platform::kNoRow) return;

  if (platform::controls().ComboGetLBText(window, kDeviceList, row) == kNoDeviceText) {
    currentDeviceGuid = platform::GUID{};
    currentDeviceName = kNoDeviceText;
    deviceManager->StopDevice();
    LetGoWithoutDevice();
    LockGuard guard(profile.profileLock);
    profile.deviceName.Empty();
    profile.deviceGuid = platform::GUID{};
    SaveProfile();
  } else {
    const std::int32_t index = platform::controls().ComboGetItemData(window, kDeviceList, row);
    if (index < 0 || index >= deviceManager->DeviceCount()) return;
    if (deviceManager->DeviceGuid(index) == currentDeviceGuid) return;
    if (!deviceManager->SelectDevice(index)) {
      LetGoWithoutDevice();  // before the box, which a key that goes on would answer
      Box(kSelectText, kSelectCaption, platform::MB_OK);
      return;
    }
    currentDeviceGuid = deviceManager->SelectedGuid();
    currentDeviceName = deviceManager->SelectedName();
    LockGuard guard(profile.profileLock);
    profile.deviceName = currentDeviceName;
    profile.deviceGuid = currentDeviceGuid;
    profile.pollInterval = deviceManager->PollInterval();
    SaveProfile();
  }
  SaveDeviceSettings();
  ShowMouseAndDeviceState();
}

// The poll interval

void MainWindow::OnIntervalLeft() {
  if (!PollFieldsCount() || !ReadPollFields()) return;
  if (intervalField == deviceManager->PollInterval()) return;
  if (intervalField < 1 || intervalField > kIntervalMost) {
    RefuseField(kInterval, kIntervalRangeText, kOutOfRangeCaption, platform::MB_OK);
    return;
  }
  ApplyPollInterval(intervalField);
}

void MainWindow::OnRateLeft() {
  if (!PollFieldsCount() || !ReadPollFields()) return;
  const std::uint32_t interval = rateField == 0 ? 0 : kRateTimesInterval / rateField;
  if (interval == deviceManager->PollInterval()) return;
  if (interval == 0) {
    ByteString text(kRateRangeText);
    text.Append(ToDecimal(rateField, false, 1));
    text.Append(kRateRangeEnd);
    text.Append(ToDecimal(interval, false, 1));
    RefuseField(kRate, text, kOutOfRangeCaption, platform::MB_OK);
    return;
  }
  ApplyPollInterval(interval);
}

void MainWindow::OnDefaultRate() {
  if (!deviceManager || !deviceManager->DeviceSelected()) return;
  if (pollInterval == deviceManager->PollInterval()) return;
  ApplyPollInterval(pollInterval);
}

bool MainWindow::PollFieldsCount() const {
  return initGuard == 0 && deviceManager && deviceManager->DeviceSelected();
}

bool MainWindow::ReadPollFields() {
  const struct {
    std::uint32_t id;
    std::uint32_t* number;
  } fields[] = {{kInterval, &intervalField}, {kRate, &rateField}};
  for (const auto& field : fields) {
    if (const auto number = ParseNumber(Text(field.id))) {
      *field.number = static_cast<std::uint32_t>(std::min<std::uint64_t>(*number, UINT32_MAX));
      continue;
    }
    RefuseField(field.id, kNotANumberText, kNotANumberCaption, platform::MB_ICONEXCLAMATION);
    return false;
  }
  return true;
}

void MainWindow::RefuseField(std::uint32_t fieldId, const ByteString& text,
                             const ByteString& caption, std::uint32_t type) {
  // The box takes the focus from whichever field it went to, and so does the way back.
  ++initGuard;
  Box(text, caption, type);
  platform::controls().SetControlFocus(window, fieldId);
  --initGuard;
}

void MainWindow::ApplyPollInterval(std::uint32_t interval) {
  if (!deviceManager->SetPollInterval(interval)) {
    ++initGuard;
    Box(kPollRateText, kPollRateCaption, platform::MB_OK);
    --initGuard;
    // The program may have been told to end while the box was up.
    if (deviceManager) ReselectDevice();
    return;
  }
  ReselectDevice();
  ShowMouseAndDeviceState();
  SaveDeviceSettings();
  LockGuard guard(profile.profileLock);
  profile.pollInterval = interval;
  SaveProfile();
}

// What is remembered for a device. The wheel's sensitivity and damper are not: they are the
// profile's alone.

void MainWindow::SaveDeviceSettings() {
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
      {"Mouse Always Active", profile.mouseAlwaysActive ? 1u : 0u},
  };
  RegistryKey key(platform::HKEY_CURRENT_USER, DeviceKey(deviceName), true);
  for (const auto& entry : values) key.SetDword(nullptr, entry.name, entry.value);
}

bool MainWindow::LoadDeviceSettings() {
  if (!deviceManager || !deviceManager->DeviceSelected()) return false;
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
    std::uint32_t active = 0;
    if (stored.Take("Mouse Always Active", &active)) profile.mouseAlwaysActive = active != 0;
  }
  std::uint32_t interval = 0;
  if (stored.Take("Poll Interval", &interval) && interval != deviceManager->PollInterval() &&
      deviceManager->SetPollInterval(interval)) {
    ReselectDevice();
  }
  ShowMouseAndDeviceState();
  return stored.complete;
}

}  // namespace kelvaro
