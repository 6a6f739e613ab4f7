#include "device/device_manager.h"

namespace kelvaro {

namespace {

struct ResultName {
  platform::HRESULT result;
  const char* name;
};

constexpr ResultName kCreateResults[] = {
    {platform::DIERR_OLDDIRECTINPUTVERSION, " [DIERR_OLDDIRECTINPUTVERSION]"},
    {platform::DIERR_BETADIRECTINPUTVERSION, " [DIERR_BETADIRECTINPUTVERSION]"},
    {platform::DIERR_OUTOFMEMORY, " [DIERR_OUTOFMEMORY]"},
    {platform::DIERR_INVALIDPARAM, " [DIERR_INVALIDPARAM]"},
};

constexpr ResultName kEnumerateResults[] = {
    {platform::DIERR_NOTINITIALIZED, " [DIERR_NOTINITIALIZED]"},
    {platform::DIERR_INVALIDPARAM, " [DIERR_INVALIDPARAM]"},
};

// "<operation>() failed with return code: -5 (0xfffffffb) [NAME]", the name where it is known.
template <std::size_t N>
ByteString ResultText(const char* operation, platform::HRESULT result,
                      const ResultName (&names)[N]) {
  ByteString text(operation);
  text.Append("() failed with return code: ");
  text.Append(ToDecimalSigned(result, false, 1));
  text.Append(" (0x");
  text.Append(ToHex(static_cast<std::uint32_t>(result)));
  text.Append(")");
  for (const ResultName& known : names) {
    if (known.result == result) text.Append(known.name);
  }
  return text;
}

}  // namespace

DeviceManager::DeviceManager(platform::WindowHandle window)
    : WorkerThread("notification"), windowHandle(window) {
  if (!CreateDirectInput()) {
    StopDevice();
    if (directInput) {
      directInput->Release();
      directInput = nullptr;
    }
  }
  ReadTimerLimits();
  changeEvent = platform::threads().CreateEventA(false, false);
}

DeviceManager::~DeviceManager() {
  StopDevice();
  if (directInput) directInput->Release();
  if (changeEvent != platform::kInvalidHandle) platform::threads().CloseHandle(changeEvent);
}

bool DeviceManager::CreateDirectInput() {
  const platform::HRESULT result =
      platform::devices().DirectInput8Create(platform::DIRECTINPUT_VERSION_8, &directInput);
  if (result != platform::DI_OK) {
    SetErrorText(1, ResultText("DirectInput8Create", result, kCreateResults));
    return false;
  }
  return FillDeviceList();
}

bool DeviceManager::FillDeviceList() {
  devices.Clear();
  const platform::HRESULT result = directInput->EnumDevices(
      platform::DI8DEVCLASS_GAMECTRL,
      [this](const platform::DIDEVICEINSTANCE& instance) {
        devices.AddTail(instance);
        return true;
      },
      platform::DIEDFL_ATTACHEDONLY);
  if (result != platform::DI_OK) {
    SetErrorText(2, ResultText("EnumDevices", result, kEnumerateResults));
    return false;
  }
  return true;
}

bool DeviceManager::EnumerateDevices() { return directInput && FillDeviceList(); }

const platform::DIDEVICEINSTANCE* DeviceManager::Entry(std::int32_t index) const {
  return index < 0 || index >= devices.count ? nullptr : devices.At(index)->value;
}

ByteString DeviceManager::DeviceName(std::int32_t index) const {
  const auto* const entry = Entry(index);
  return entry ? ByteString(entry->tszInstanceName) : ByteString();
}

platform::GUID DeviceManager::DeviceGuid(std::int32_t index) const {
  const auto* const entry = Entry(index);
  return entry ? entry->guidInstance : platform::GUID{};
}

platform::GUID DeviceManager::SelectedGuid() const { return DeviceGuid(selectedIndex); }

bool DeviceManager::SelectDevice(std::int32_t index) {
  const auto* const entry = Entry(index);
  if (!entry) return false;
  StopDevice();
  // A list that was cut off by a failed enumeration has no DirectInput behind it any more.
  if (!directInput || directInput->CreateDevice(entry->guidInstance, &device) != platform::DI_OK) {
    device = nullptr;
    return false;
  }
  const bool alone = exclusive && exclusive(entry->tszInstanceName);
  if (!PrepareDevice(platform::DISCL_BACKGROUND |
                     (alone ? platform::DISCL_EXCLUSIVE : platform::DISCL_NONEXCLUSIVE))) {
    const bool taken = takenByAnother;
    StopDevice();
    takenByAnother = taken;
    return false;
  }
  // Before the threads that may ask for it.
  selectedIndex = index;
  selectedName = entry->tszInstanceName;
  StartPolling();
  return true;
}

bool DeviceManager::PrepareDevice(std::uint32_t cooperativeLevel) {
  if (device->SetDataFormat() != platform::DI_OK) return false;
  // The game in front has the focus and, unless the person wants it otherwise, keeps the device;
  // this only reads along.
  if (device->SetCooperativeLevel(static_cast<platform::Handle>(windowHandle), cooperativeLevel) !=
      platform::DI_OK) {
    return false;
  }
  if (device->GetCapabilities(&deviceCaps) != platform::DI_OK) return false;
  const auto setRange = [this](std::uint32_t id) {
    platform::DIPROPRANGE range;
    range.diph.dwHow = platform::DIPH_BYID;
    range.diph.dwObj = id;
    range.lMin = axisMin;
    range.lMax = axisMax;
    // An axis of fixed range is still worth reading.
    static_cast<void>(device->SetProperty(platform::DIPROP_RANGE, range));
    return true;
  };
  if (device->EnumObjects(setRange, platform::DIDFT_AXIS) != platform::DI_OK) return false;
  device->SetTapsApart(answerAtOnce);
  const platform::HRESULT acquired = device->Acquire();
  takenByAnother = acquired == platform::DIERR_OTHERAPPHASPRIO;
  return Succeeded(acquired);
}

bool DeviceManager::ReselectDevice() { return selectedIndex >= 0 && SelectDevice(selectedIndex); }

template <typename Matches>
bool DeviceManager::SelectFirst(Matches matches) {
  std::int32_t index = 0;
  for (const platform::DIDEVICEINSTANCE& entry : devices) {
    if (matches(entry)) return SelectDevice(index);
    ++index;
  }
  return false;
}

bool DeviceManager::SelectDeviceByGuid(const platform::GUID& guid) {
  return SelectFirst([&](const auto& entry) { return entry.guidInstance == guid; });
}

bool DeviceManager::SelectDeviceByName(const ByteString& name) {
  return SelectFirst([&](const auto& entry) { return name.Equals(entry.tszInstanceName); });
}

}  // namespace kelvaro
