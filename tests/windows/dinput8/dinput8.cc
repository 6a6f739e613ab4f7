// A dinput8.dll for tests: DirectInput 8 with one pad, which another program or the test itself
// plays (scripted_pad.h). It refuses what is called in an order that the published interface
// doesn't allow.
#define DIRECTINPUT_VERSION 0x0800
#include "tests/windows/dinput8/scripted_pad.h"

#include <windows.h>

#include <dinput.h>

#include <cstddef>
#include <cstring>

namespace {

using kelvaro::tests::PadMemory;

constexpr GUID kPad = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr DWORD kAxes = 2;
constexpr DWORD kButtons = 11;
constexpr LONG kRawLimit = 1000;

PadMemory* Memory() {
  static PadMemory* const memory = [] {
    const HANDLE section = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              sizeof(PadMemory), kelvaro::tests::kPadMemory);
    return static_cast<PadMemory*>(MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 0));
  }();
  return memory;
}

// What all objects of the interface share: their count of references.
template <typename Interface>
class Counted : public Interface {
 public:
  virtual ~Counted() = default;
  HRESULT WINAPI QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG WINAPI AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references)); }
  ULONG WINAPI Release() override {
    const LONG left = InterlockedDecrement(&references);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

 private:
  LONG references = 1;
};

class Pad final : public Counted<IDirectInputDevice8A> {
 public:
  ~Pad() override {
    if (watcher) {
      SetEvent(ended);
      WaitForSingleObject(watcher, INFINITE);
      CloseHandle(watcher);
    }
    CloseHandle(ended);
  }

  HRESULT WINAPI GetCapabilities(DIDEVCAPS* caps) override {
    if (caps->dwSize != sizeof *caps) return DIERR_INVALIDPARAM;
    *caps = {};
    caps->dwSize = sizeof *caps;
    caps->dwFlags = DIDC_ATTACHED | (Memory()->mustBePolled ? DIDC_POLLEDDEVICE : 0);
    caps->dwAxes = kAxes;
    caps->dwButtons = kButtons;
    caps->dwPOVs = 1;
    return DI_OK;
  }
  HRESULT WINAPI EnumObjects(LPDIENUMDEVICEOBJECTSCALLBACKA visit, void* context,
                             DWORD flags) override {
    if (flags != DIDFT_AXIS) return DIERR_INVALIDPARAM;
    for (DWORD axis = 0; axis < kAxes; ++axis) {
      DIDEVICEOBJECTINSTANCEA object{};
      object.dwSize = sizeof object;
      object.dwType = AxisId(axis);
      if (visit(&object, context) == DIENUM_STOP) break;
    }
    return DI_OK;
  }
  HRESULT WINAPI GetProperty(REFGUID, DIPROPHEADER*) override { return E_NOTIMPL; }
  HRESULT WINAPI SetProperty(REFGUID property, const DIPROPHEADER* header) override {
    if (&property == &DIPROP_BUFFERSIZE) {
      if (acquired) return DIERR_ACQUIRED;
      bufferSize = reinterpret_cast<const DIPROPDWORD*>(header)->dwData;
      return DI_OK;
    }
    if (&property != &DIPROP_RANGE || header->dwHow != DIPH_BYID) return DIERR_UNSUPPORTED;
    for (DWORD axis = 0; axis < kAxes; ++axis)
      if (header->dwObj == AxisId(axis)) {
        ranges[axis] = *reinterpret_cast<const DIPROPRANGE*>(header);
        return DI_OK;
      }
    return DIERR_OBJECTNOTFOUND;
  }

  HRESULT WINAPI Acquire() override {
    if (!hasFormat) return DIERR_INVALIDPARAM;
    if (IsUnplugged()) return DIERR_UNPLUGGED;
    if (acquired) return DI_NOEFFECT;
    acquired = true;
    told = Memory()->count;
    return DI_OK;
  }
  HRESULT WINAPI Unacquire() override {
    if (!acquired) return DI_NOEFFECT;
    acquired = false;
    return DI_OK;
  }
  HRESULT WINAPI Poll() override {
    if (const HRESULT lost = Look()) return lost;
    return Memory()->mustBePolled ? DI_OK : DI_NOEFFECT;
  }
  HRESULT WINAPI GetDeviceState(DWORD size, void* state) override {
    if (const HRESULT lost = Look()) return lost;
    DIJOYSTATE2 now{};
    if (size != sizeof now) return DIERR_INVALIDPARAM;
    now.lX = Scaled(0, 0);
    now.lY = Scaled(1, 0);
    std::memset(now.rgdwPOV, 0xFF, sizeof now.rgdwPOV);
    for (DWORD i = 0; i < Memory()->count; ++i) {
      const DIDEVICEOBJECTDATA change = ChangeAt(i);
      char* const field = reinterpret_cast<char*>(&now) + change.dwOfs;
      std::memcpy(field, &change.dwData, IsButton(change.dwOfs) ? 1 : 4);
    }
    std::memcpy(state, &now, size);
    return DI_OK;
  }
  HRESULT WINAPI GetDeviceData(DWORD size, DIDEVICEOBJECTDATA* data, DWORD* count,
                               DWORD flags) override {
    if (const HRESULT lost = Look()) return lost;
    if (bufferSize == 0) return DIERR_NOTBUFFERED;
    if (size != sizeof(DIDEVICEOBJECTDATA)) return DIERR_INVALIDPARAM;
    const DWORD here = Memory()->count;
    const bool overflow = here - told > bufferSize;
    if (overflow) told = here - bufferSize;
    DWORD given = 0;
    for (; told + given < here && given < *count; ++given)
      if (data) data[given] = ChangeAt(told + given);
    if (!(flags & DIGDD_PEEK)) told += given;
    *count = given;
    return overflow ? DI_BUFFEROVERFLOW : DI_OK;
  }

  HRESULT WINAPI SetDataFormat(const DIDATAFORMAT* format) override {
    if (acquired) return DIERR_ACQUIRED;
    hasFormat = format->dwDataSize == sizeof(DIJOYSTATE2);
    return hasFormat ? DI_OK : DIERR_INVALIDPARAM;
  }
  HRESULT WINAPI SetEventNotification(HANDLE event) override {
    if (acquired && event) return DIERR_ACQUIRED;
    news = event;
    if (event && !watcher) watcher = CreateThread(nullptr, 0, Watch, this, 0, nullptr);
    return event && Memory()->mustBePolled ? DI_POLLEDDEVICE : DI_OK;
  }
  // Alone is something for a window.
  HRESULT WINAPI SetCooperativeLevel(HWND window, DWORD flags) override {
    const bool alone = flags == (DISCL_BACKGROUND | DISCL_EXCLUSIVE) && IsWindow(window);
    if (!alone && flags != (DISCL_BACKGROUND | DISCL_NONEXCLUSIVE)) return DIERR_INVALIDPARAM;
    Memory()->alone = alone;
    return DI_OK;
  }

  HRESULT WINAPI GetObjectInfo(DIDEVICEOBJECTINSTANCEA*, DWORD, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI GetDeviceInfo(DIDEVICEINSTANCEA*) override { return E_NOTIMPL; }
  HRESULT WINAPI RunControlPanel(HWND, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI Initialize(HINSTANCE, DWORD, REFGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI CreateEffect(REFGUID, const DIEFFECT*, IDirectInputEffect**, IUnknown*) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI EnumEffects(LPDIENUMEFFECTSCALLBACKA, void*, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI GetEffectInfo(DIEFFECTINFOA*, REFGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI GetForceFeedbackState(DWORD*) override { return E_NOTIMPL; }
  HRESULT WINAPI SendForceFeedbackCommand(DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI EnumCreatedEffectObjects(LPDIENUMCREATEDEFFECTOBJECTSCALLBACK, void*,
                                          DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI Escape(DIEFFESCAPE*) override { return E_NOTIMPL; }
  HRESULT WINAPI SendDeviceData(DWORD, const DIDEVICEOBJECTDATA*, DWORD*, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI EnumEffectsInFile(const char*, LPDIENUMEFFECTSINFILECALLBACK, void*,
                                   DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI WriteEffectToFile(const char*, DWORD, DIFILEEFFECT*, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI BuildActionMap(DIACTIONFORMATA*, const char*, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI SetActionMap(DIACTIONFORMATA*, const char*, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI GetImageInfo(DIDEVICEIMAGEINFOHEADERA*) override { return E_NOTIMPL; }

 private:
  static DWORD AxisId(DWORD axis) { return DIDFT_ABSAXIS | DIDFT_MAKEINSTANCE(axis); }
  static bool IsButton(DWORD offset) {
    return offset >= offsetof(DIJOYSTATE2, rgbButtons) && offset < offsetof(DIJOYSTATE2, lVX);
  }

  static bool IsUnplugged() {
    if (!Memory()->unplugged) return false;
    Memory()->missed = Memory()->missed + 1;
    return true;
  }

  // A lost device is told of once, and isn't acquired any more.
  HRESULT Look() {
    if (!acquired) return DIERR_NOTACQUIRED;
    if (!IsUnplugged()) return DI_OK;
    acquired = false;
    return DIERR_INPUTLOST;
  }

  LONG Scaled(DWORD axis, LONG raw) const {
    const LONG least = ranges[axis].lMin;
    const LONG most = ranges[axis].lMax;
    return least + (raw + kRawLimit) * (most - least) / (2 * kRawLimit);
  }

  DIDEVICEOBJECTDATA ChangeAt(DWORD index) const {
    const PadMemory::Change& change = Memory()->changes[index];
    DIDEVICEOBJECTDATA data{};
    data.dwOfs = change.offset;
    data.dwData = change.data;
    if (change.offset < kAxes * sizeof(LONG))
      data.dwData =
          static_cast<DWORD>(Scaled(change.offset / sizeof(LONG), static_cast<LONG>(change.data)));
    return data;
  }

  static DWORD WINAPI Watch(void* raw) {
    auto* const self = static_cast<Pad*>(raw);
    const HANDLE either[] = {self->ended,
                             CreateEventA(nullptr, FALSE, FALSE, kelvaro::tests::kPadNews)};
    while (WaitForMultipleObjects(2, either, FALSE, INFINITE) != WAIT_OBJECT_0)
      if (self->acquired && self->news && !Memory()->mustBePolled) SetEvent(self->news);
    CloseHandle(either[1]);
    return 0;
  }

  volatile bool acquired = false;
  bool hasFormat = false;
  DWORD bufferSize = 0;
  DWORD told = 0;  // of the changes, by GetDeviceData
  DIPROPRANGE ranges[kAxes] = {{{}, 0, 65535}, {{}, 0, 65535}};
  HANDLE volatile news = nullptr;
  const HANDLE ended = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  HANDLE watcher = nullptr;
};

class Directory final : public Counted<IDirectInput8A> {
 public:
  HRESULT WINAPI CreateDevice(REFGUID identity, IDirectInputDevice8A** device, IUnknown*) override {
    if (!IsEqualGUID(identity, kPad) || Memory()->unplugged) return DIERR_DEVICENOTREG;
    *device = new Pad;
    return DI_OK;
  }
  HRESULT WINAPI EnumDevices(DWORD kind, LPDIENUMDEVICESCALLBACKA visit, void* context,
                             DWORD flags) override {
    if (kind != DI8DEVCLASS_GAMECTRL || flags != DIEDFL_ATTACHEDONLY) return DIERR_INVALIDPARAM;
    if (Memory()->unplugged) return DI_OK;
    DIDEVICEINSTANCEA instance{};
    instance.dwSize = sizeof instance;
    instance.guidInstance = kPad;
    std::strcpy(instance.tszInstanceName, "Scripted pad");
    visit(&instance, context);
    return DI_OK;
  }
  HRESULT WINAPI GetDeviceStatus(REFGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI RunControlPanel(HWND, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI Initialize(HINSTANCE, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI FindDevice(REFGUID, const char*, GUID*) override { return E_NOTIMPL; }
  HRESULT WINAPI EnumDevicesBySemantics(const char*, DIACTIONFORMATA*,
                                        LPDIENUMDEVICESBYSEMANTICSCBA, void*, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI ConfigureDevices(LPDICONFIGUREDEVICESCALLBACK, DICONFIGUREDEVICESPARAMSA*, DWORD,
                                  void*) override {
    return E_NOTIMPL;
  }
};

}  // namespace

extern "C" __declspec(dllexport) HRESULT WINAPI
    DirectInput8Create(HINSTANCE, DWORD version, REFIID kind, void** object, IUnknown*) {
  if (!IsEqualGUID(kind, IID_IDirectInput8A)) return DIERR_NOINTERFACE;
  if (version > DIRECTINPUT_VERSION) return DIERR_OLDDIRECTINPUTVERSION;
  if (Memory()->failure) return static_cast<HRESULT>(Memory()->failure);
  *object = new Directory;
  return DI_OK;
}
