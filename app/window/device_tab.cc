#include "app/window/device_tab.h"

#include <algorithm>

#include "app/dialogs/number_field.h"
#include "app/resources/control_ids.h"

namespace kelvaro {
namespace {

using namespace main_window;

// Item data of the row that stands for no device; the others have their device's index.
constexpr std::int32_t kNoDevice = -2;

constexpr std::uint32_t kIntervalMost = 1000;
constexpr std::uint32_t kRateTimesInterval = 1000;

constexpr char kNoDeviceSelectedText[] =
    "No device has been selected for this profile.\n\n"
    "Please select a device before configuring control parameters.";
constexpr char kDeviceMissingText[] = "The device \"";
constexpr char kDeviceMissingEnd[] =
    "\" could not be selected.\n\n"
    "If this is not the device you wish to associate with this profile, please select one from the "
    "device list.\n"
    "Otherwise, make sure your device is plugged in, powered on, etc., and press "
    "\"Refresh Device List\" to\n"
    "automatically select it.";

constexpr char kDeviceTakenCaption[] = "Device in Use";
constexpr char kDeviceTakenText[] = "Another program keeps the device \"";
constexpr char kDeviceTakenEnd[] =
    "\" for itself.\n\n"
    "End that program, or choose another device. \"kelvaroctl doctor\" tells which programs use "
    "it.";

constexpr char kOutOfRangeCaption[] = "Value Out of Range";
constexpr char kIntervalRangeText[] = "Please enter a value from 1 to 1000";
// Kept: the spelling.
constexpr char kRateRangeText[] = "Pleaes enter a value from 1 to 1000.\nThe rate of ";
constexpr char kRateRangeEnd[] = " equates to an interval of 0";
constexpr char kPollRateCaption[] = "Internal Error";
constexpr char kPollRateText[] = "Error Setting Poll Rate";
constexpr char kSelectCaption[] = "Unknown Error";
constexpr char kSelectText[] = "Error selecting device. Please try again.";

ByteString TakenText(const ByteString& device) {
  return ByteString(kDeviceTakenText).Concat(device).Concat(kDeviceTakenEnd);
}

ByteString Number(std::uint32_t value) { return ToDecimal(value, false, 1); }

}  // namespace

// The list

void DeviceTab::FillDeviceList() {
  platform::controls().ComboResetContent(dialog.window, kDeviceList);
  const auto add = [this](const ByteString& name, std::int32_t data) {
    const std::int32_t row =
        platform::controls().ComboAddString(dialog.window, kDeviceList, Bytes(name));
    if (row != platform::kNoRow)
      platform::controls().ComboSetItemData(dialog.window, kDeviceList, row, data);
  };
  add(kNoDeviceText, kNoDevice);
  // The list is in order of its texts: each row knows its device by the index.
  for (std::int32_t index = 0; index < deviceManager->DeviceCount(); ++index) {
    add(deviceManager->DeviceName(index), index);
  }
}

void DeviceTab::SelectDeviceInList(const platform::GUID& guid) {
  const std::int32_t count = platform::controls().ComboGetCount(dialog.window, kDeviceList);
  std::int32_t none = 0;
  for (std::int32_t row = 0; row < count; ++row) {
    const std::int32_t index =
        platform::controls().ComboGetItemData(dialog.window, kDeviceList, row);
    if (index == kNoDevice) {
      none = row;
    } else if (index < deviceManager->DeviceCount() && deviceManager->DeviceGuid(index) == guid) {
      platform::controls().ComboSetCurSel(dialog.window, kDeviceList, row);
      return;
    }
  }
  platform::controls().ComboSetCurSel(dialog.window, kDeviceList, none);
}

void DeviceTab::ShowMouseAndDeviceState() {
  ++session.initGuard;
  mouseTab.Show();
  ShowSelectedDevice();
  const bool selected = deviceManager->DeviceSelected();
  const platform::DIDEVCAPS& caps = deviceManager->DeviceCaps();
  dialog.SetText(kNumButtons, Number(selected ? caps.dwButtons : 0));
  dialog.SetText(kNumAxis, Number(selected ? caps.dwAxes : 0));
  dialog.SetText(kNumPovs, Number(selected ? caps.dwPOVs : 0));

  intervalField = deviceManager->PollInterval();
  rateField = intervalField == 0 ? 0 : kRateTimesInterval / intervalField;
  dialog.SetText(kInterval, Number(intervalField));
  dialog.SetText(kRate, Number(rateField));
  --session.initGuard;
}

void DeviceTab::ShowSelectedDevice() {
  const platform::GUID guid = deviceManager->SelectedGuid();
  if (guid == platform::GUID{} && deviceManager->DeviceSelected()) {
    // This device runs on, though the list doesn't have it any more.
    const std::int32_t row = platform::controls().ComboFindStringExact(
        dialog.window, kDeviceList, Bytes(deviceManager->SelectedName()));
    if (row != platform::kNoRow) {
      platform::controls().ComboSetCurSel(dialog.window, kDeviceList, row);
      return;
    }
  }
  SelectDeviceInList(guid);
}

void DeviceTab::OnDeviceSelected() {
  if (session.initGuard != 0) return;
  const std::int32_t row = platform::controls().ComboGetCurSel(dialog.window, kDeviceList);
  if (row == platform::kNoRow) return;

  if (platform::controls().ComboGetLBText(dialog.window, kDeviceList, row) == kNoDeviceText) {
    session.currentDeviceGuid = platform::GUID{};
    session.currentDeviceName = kNoDeviceText;
    deviceManager->StopDevice();
    session.LetGoWithoutDevice();
    LockGuard guard(profile.profileLock);
    profile.deviceName.Empty();
    profile.deviceGuid = platform::GUID{};
    session.SaveProfile();
  } else {
    const std::int32_t index =
        platform::controls().ComboGetItemData(dialog.window, kDeviceList, row);
    if (index < 0 || index >= deviceManager->DeviceCount()) return;
    if (deviceManager->DeviceGuid(index) == session.currentDeviceGuid) return;
    if (!deviceManager->SelectDevice(index)) {
      session.LetGoWithoutDevice();  // before the box, which a key that goes on would answer
      if (deviceManager->TakenByAnother()) {
        dialog.Box(TakenText(deviceManager->DeviceName(index)), kDeviceTakenCaption,
                   platform::MB_OK);
      } else {
        dialog.Box(kSelectText, kSelectCaption, platform::MB_OK);
      }
      return;
    }
    session.currentDeviceGuid = deviceManager->SelectedGuid();
    session.currentDeviceName = deviceManager->SelectedName();
    LockGuard guard(profile.profileLock);
    profile.deviceName = session.currentDeviceName;
    profile.deviceGuid = session.currentDeviceGuid;
    profile.pollInterval = deviceManager->PollInterval();
    session.SaveProfile();
  }
  session.SaveDeviceSettings();
  ShowMouseAndDeviceState();
}

// The poll interval

void DeviceTab::OnIntervalLeft() {
  if (!PollFieldsCount() || !ReadPollFields()) return;
  if (intervalField == deviceManager->PollInterval()) return;
  if (intervalField < 1 || intervalField > kIntervalMost) {
    RefuseField(kInterval, kIntervalRangeText, kOutOfRangeCaption, platform::MB_OK);
    return;
  }
  ApplyPollInterval(intervalField);
}

void DeviceTab::OnRateLeft() {
  if (!PollFieldsCount() || !ReadPollFields()) return;
  const std::uint32_t interval = rateField == 0 ? 0 : kRateTimesInterval / rateField;
  if (interval == deviceManager->PollInterval()) return;
  if (interval == 0) {
    RefuseField(kRate, Around(kRateRangeText, Number(rateField), kRateRangeEnd), kOutOfRangeCaption,
                platform::MB_OK);
    return;
  }
  ApplyPollInterval(interval);
}

void DeviceTab::OnDefaultRate() {
  if (!deviceManager->DeviceSelected()) return;
  if (pollInterval == deviceManager->PollInterval()) return;
  ApplyPollInterval(pollInterval);
}

bool DeviceTab::PollFieldsCount() const {
  return session.initGuard == 0 && deviceManager->DeviceSelected();
}

bool DeviceTab::IsBeingTyped() const {
  return PollFieldsCount() && (ParseNumber(dialog.Text(kInterval)) != intervalField ||
                               ParseNumber(dialog.Text(kRate)) != rateField);
}

bool DeviceTab::ReadPollFields() {
  const struct {
    std::uint32_t id;
    std::uint32_t* number;
  } fields[] = {{kInterval, &intervalField}, {kRate, &rateField}};
  for (const auto& field : fields) {
    if (const auto number = ParseNumber(dialog.Text(field.id))) {
      *field.number = static_cast<std::uint32_t>(std::min<std::uint64_t>(*number, UINT32_MAX));
      continue;
    }
    RefuseField(field.id, kNotANumberText, kNotANumberCaption, platform::MB_ICONEXCLAMATION);
    return false;
  }
  return true;
}

void DeviceTab::RefuseField(std::uint32_t fieldId, const ByteString& text,
                            const ByteString& caption, std::uint32_t type) {
  // The box takes the focus from the field that had it, and so does the way back.
  ++session.initGuard;
  dialog.Box(text, caption, type);
  platform::controls().SetControlFocus(dialog.window, fieldId);
  --session.initGuard;
}

void DeviceTab::ApplyPollInterval(std::uint32_t interval) {
  if (!deviceManager->SetPollInterval(interval)) {
    ++session.initGuard;
    dialog.Box(kPollRateText, kPollRateCaption, platform::MB_OK);
    --session.initGuard;
    // The program may have been told to end while the box was up.
    if (!session.shuttingDown) session.ReselectDevice();
    return;
  }
  session.ReselectDevice();
  ShowMouseAndDeviceState();
  session.SaveDeviceSettings();
  LockGuard guard(profile.profileLock);
  profile.pollInterval = interval;
  session.SaveProfile();
}

// The device of the profile

void DeviceTab::RefreshDeviceList() {
  if (session.currentDeviceName.Equals(kNoDeviceText)) {
    deviceManager->EnumerateDevices();
    FillDeviceList();
    SelectDeviceInList({});
    return;
  }
  if (deviceManager->EnumerateDevices()) {
    FillDeviceList();
    ApplyProfileDevice();
  }
  ShowMouseAndDeviceState();
}

void DeviceTab::ApplyProfileDevice() {
  deviceManager->StopDevice();
  if (profile.deviceName.IsEmpty() || !deviceManager->SetPollInterval(profile.pollInterval) ||
      !(deviceManager->SelectDeviceByGuid(profile.deviceGuid) ||
        deviceManager->SelectDeviceByName(profile.deviceName))) {
    session.LetGoWithoutDevice();
    session.currentDeviceName.Empty();
    session.currentDeviceGuid = platform::GUID{};
    return;
  }
  // From the device itself: one found by its name may differ from the file's.
  session.currentDeviceGuid = deviceManager->SelectedGuid();
  session.currentDeviceName = deviceManager->SelectedName();
}

// When the person chose no device, only a click on the button looks for devices.
bool DeviceTab::AwaitsDevice() const {
  return session.settings.autodetectDevicePlugin && !deviceManager->DeviceSelected() &&
         !session.currentDeviceName.Equals(kNoDeviceText);
}

ByteString DeviceTab::WarningText() const {
  if (profile.deviceName.IsEmpty()) return kNoDeviceSelectedText;
  if (session.settings.noDeviceErrorMsg) return {};
  if (deviceManager->TakenByAnother()) return TakenText(profile.deviceName);
  return ByteString(kDeviceMissingText).Concat(profile.deviceName).Concat(kDeviceMissingEnd);
}

bool DeviceTab::LoadLastDevice(const ByteString& name) {
  if (!deviceManager->SelectDeviceByName(name)) return true;
  const bool complete = session.LoadDeviceSettings();
  ShowMouseAndDeviceState();
  session.currentDeviceGuid = deviceManager->SelectedGuid();
  session.currentDeviceName = deviceManager->SelectedName();
  return complete;
}

void DeviceTab::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t) {
  using platform::Notice;
  static constexpr Handler<DeviceTab> kHandlers[] = {
      {kDeviceList, Notice::SelectionChanged, &DeviceTab::OnDeviceSelected},
      {kRefreshDeviceList, Notice::Clicked, &DeviceTab::RefreshDeviceList},
      {kInterval, Notice::FocusLost, &DeviceTab::OnIntervalLeft},
      {kRate, Notice::FocusLost, &DeviceTab::OnRateLeft},
      {kDefaultRate, Notice::Clicked, &DeviceTab::OnDefaultRate},
  };
  Handle(this, kHandlers, id, notice);
}

}  // namespace kelvaro
