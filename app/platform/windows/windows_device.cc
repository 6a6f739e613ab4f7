#include "app/platform/windows/windows_device.h"

#include <cstring>

namespace platform {
namespace {

// Changes that the device keeps for one poll; more are taken in as they stand at its end.
constexpr DWORD kMostChanges = 256;

constexpr std::size_t kButtons = offsetof(DIJOYSTATE2, rgbButtons);
constexpr std::size_t kMostButtons = sizeof(DIJOYSTATE2::rgbButtons);

bool IsButton(std::size_t offset) { return offset >= kButtons && offset - kButtons < kMostButtons; }

BOOL CALLBACK Visit(const DIDEVICEOBJECTINSTANCEA* object, void* visit) {
  const auto& wanted = *static_cast<const std::function<bool(std::uint32_t)>*>(visit);
  return wanted(object->dwType) ? DIENUM_CONTINUE : DIENUM_STOP;
}

void CALLBACK Report(void* news, BOOLEAN) { SetEvent(news); }

}  // namespace

WindowsDevice::~WindowsDevice() {
  if (look) DeleteTimerQueueTimer(nullptr, look, INVALID_HANDLE_VALUE);
  system->SetEventNotification(nullptr);
  system->Release();
}

HRESULT WindowsDevice::SetDataFormat() { return Result(system->SetDataFormat(&c_dfDIJoystick2)); }

HRESULT WindowsDevice::SetCooperativeLevel(Handle window, std::uint32_t flags) {
  return Result(system->SetCooperativeLevel(reinterpret_cast<HWND>(window), flags));
}

HRESULT WindowsDevice::GetCapabilities(DIDEVCAPS* caps) {
  return Result(system->GetCapabilities(reinterpret_cast<::DIDEVCAPS*>(caps)));
}

HRESULT WindowsDevice::EnumObjects(const std::function<bool(std::uint32_t id)>& visit,
                                   std::uint32_t flags) {
  void* const context = const_cast<void*>(static_cast<const void*>(&visit));
  return Result(system->EnumObjects(&Visit, context, flags));
}

HRESULT WindowsDevice::SetProperty(std::uint32_t property, const DIPROPRANGE& range) {
  return Result(system->SetProperty(Property(property),
                                    reinterpret_cast<const ::DIPROPHEADER*>(&range.diph)));
}

// What DirectInput takes only before the device is acquired for the first time.
void WindowsDevice::Prepare() {
  isPrepared = true;
  news = OwnedHandle(CreateEventA(nullptr, FALSE, FALSE, nullptr));
  // A device that has to be polled to tell anything says so by another success.
  tellsOfNews = news && system->SetEventNotification(news.Get()) == DI_OK &&
                CreateTimerQueueTimer(&look, nullptr, &Report, news.Get(), lookMs, lookMs,
                                      WT_EXECUTEINTIMERTHREAD);
  if (!tapsApart) return;
  ::DIPROPDWORD size{};
  size.diph.dwSize = sizeof size;
  size.diph.dwHeaderSize = sizeof size.diph;
  size.diph.dwHow = DIPH_DEVICE;
  size.dwData = kMostChanges;
  tapsApart = Works(system->SetProperty(Property(kBufferSize), &size.diph));
}

HRESULT WindowsDevice::Acquire() {
  if (!isPrepared) Prepare();
  const ::HRESULT result = system->Acquire();
  answers = Works(result);
  if (result == DI_OK) isBehind = true;
  return Result(result);
}

HRESULT WindowsDevice::Unacquire() { return Result(system->Unacquire()); }

HRESULT WindowsDevice::Poll() {
  const ::HRESULT result = system->Poll();
  answers = Works(result);
  if (answers && tapsApart && !TakeChanges()) return DIERR_INPUTLOST;
  return Result(result);
}

bool WindowsDevice::TakeChanges() {
  if (isBehind) return StartAnew();
  Change changes[kMostChanges];
  DWORD count = kMostChanges;
  const ::HRESULT result = system->GetDeviceData(sizeof(Change), changes, &count, 0);
  if (!SUCCEEDED(result)) return answers = false;
  if (result == DI_BUFFEROVERFLOW) return StartAnew();
  waiting.insert(waiting.end(), changes, changes + count);
  ApplyUpToASecondTap();
  return true;
}

// The state as it is, which all changes so far have gone into.
bool WindowsDevice::StartAnew() {
  DWORD all = INFINITE;
  system->GetDeviceData(sizeof(Change), nullptr, &all, 0);
  waiting.clear();
  answers = system->GetDeviceState(sizeof state, &state) == DI_OK;
  isBehind = !answers;
  return answers;
}

void WindowsDevice::ApplyUpToASecondTap() {
  std::bitset<kMostButtons> changed;
  while (!waiting.empty()) {
    const Change& change = waiting.front();
    if (IsButton(change.dwOfs)) {
      const std::size_t button = change.dwOfs - kButtons;
      if (changed[button]) return;
      changed.set(button);
    }
    Apply(change);
    waiting.pop_front();
  }
}

void WindowsDevice::Apply(const Change& change) {
  const std::size_t size = IsButton(change.dwOfs) ? 1 : sizeof change.dwData;
  if (change.dwOfs + size > sizeof state) return;
  // The lowest byte comes first.
  std::memcpy(reinterpret_cast<char*>(&state) + change.dwOfs, &change.dwData, size);
}

std::optional<Handle> WindowsDevice::WaitForNews() {
  if (!tellsOfNews || !answers || !waiting.empty()) return std::nullopt;
  return SeamHandle(news.Get());
}

HRESULT WindowsDevice::GetDeviceState(std::uint32_t size, DIJOYSTATE2* out) {
  if (tapsApart && answers && !isBehind && size == sizeof state) {
    *out = state;
    return DI_OK;
  }
  const ::HRESULT result = system->GetDeviceState(size, out);
  answers = result == DI_OK;
  return Result(result);
}

void WindowsDevice::Release() { delete this; }

}  // namespace platform
