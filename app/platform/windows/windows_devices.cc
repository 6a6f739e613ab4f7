#include "app/platform/windows/windows_devices.h"

#include <bit>

#include "app/platform/windows/direct_input_header.h"
#include "app/platform/windows/windows_device.h"

namespace platform {
namespace {

BOOL CALLBACK Visit(const DIDEVICEINSTANCEA* instance, void* visit) {
  const auto& wanted = *static_cast<const std::function<bool(const DIDEVICEINSTANCE&)>*>(visit);
  return wanted(std::bit_cast<DIDEVICEINSTANCE>(*instance)) ? DIENUM_CONTINUE : DIENUM_STOP;
}

class WindowsDirectInput final : public DirectInput {
 public:
  // Takes over the reference and the library.
  WindowsDirectInput(IDirectInput8A* system, HMODULE library, DWORD lookMs)
      : system(system), library(library), lookMs(lookMs) {}
  virtual ~WindowsDirectInput() {
    system->Release();
    FreeLibrary(library);
  }
  WindowsDirectInput(const WindowsDirectInput&) = delete;
  WindowsDirectInput& operator=(const WindowsDirectInput&) = delete;

  HRESULT EnumDevices(std::uint32_t deviceClass,
                      const std::function<bool(const DIDEVICEINSTANCE&)>& visit,
                      std::uint32_t flags) override {
    void* const context = const_cast<void*>(static_cast<const void*>(&visit));
    return Result(system->EnumDevices(deviceClass, &Visit, context, flags));
  }

  HRESULT CreateDevice(const GUID& instance, DirectInputDevice** device) override {
    IDirectInputDevice8A* made = nullptr;
    const ::HRESULT result = system->CreateDevice(std::bit_cast<::GUID>(instance), &made, nullptr);
    if (result == DI_OK) *device = new WindowsDevice(made, lookMs);
    return Result(result);
  }

  void Release() override { delete this; }

 private:
  IDirectInput8A* const system;
  const HMODULE library;
  const DWORD lookMs;
};

using Create = ::HRESULT(WINAPI*)(HINSTANCE program, DWORD version, const ::IID& kind, void** made,
                                  IUnknown* outer);

}  // namespace

HRESULT WindowsDevices::DirectInput8Create(std::uint32_t version, DirectInput** directInput) {
  const HMODULE library = LoadLibraryA("dinput8.dll");
  const auto create = library ? FunctionOf<Create>(library, "DirectInput8Create") : nullptr;
  if (!create) {
    const DWORD missing = ::GetLastError();
    if (library) FreeLibrary(library);
    return Result(HRESULT_FROM_WIN32(missing));
  }
  void* made = nullptr;
  const ::HRESULT result =
      create(GetModuleHandleA(nullptr), version, IID_IDirectInput8A, &made, nullptr);
  if (result == DI_OK) {
    *directInput = new WindowsDirectInput(static_cast<IDirectInput8A*>(made), library, lookMs);
  } else {
    FreeLibrary(library);
  }
  return Result(result);
}

}  // namespace platform
