// Game devices, in the shape of the published DirectInput 8 interfaces: a directory of attached
// devices, and one object a device that is in use. Operations keep their published names, order
// and results; plain numbers and the published records cross here.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "app/platform/direct_input.h"
#include "app/platform/threads.h"

namespace platform {

// One device in use (IDirectInputDevice8). Its states come from the thread that polls; all other
// operations from the thread that owns it, with no poll under way.
class DirectInputDevice {
 public:
  // The standard format, DIJOYSTATE2, is the only one.
  virtual HRESULT SetDataFormat() = 0;
  // In the background, shared or exclusive. What an exclusive device says reaches no other program
  // while it is acquired, as far as the platform can see to that.
  virtual HRESULT SetCooperativeLevel(Handle window, std::uint32_t flags) = 0;
  virtual HRESULT GetCapabilities(DIDEVCAPS* caps) = 0;

  // Calls visit(id) for each axis, in order, until it returns false; id is what DIPH_BYID takes.
  // `flags` is DIDFT_AXIS.
  virtual HRESULT EnumObjects(const std::function<bool(std::uint32_t id)>& visit,
                              std::uint32_t flags) = 0;

  // `property` is DIPROP_RANGE: the axis named by the header reads lMin to lMax from here on.
  virtual HRESULT SetProperty(std::uint32_t property, const DIPROPRANGE& range) = 0;

  // DI_OK or DI_NOEFFECT when the device answers. A lost one is taken up again once the platform
  // has found it; this call doesn't look for it, and so it may come at every tick.
  // DIERR_OTHERAPPHASPRIO where it is to be exclusive and another program has it so.
  virtual HRESULT Acquire() = 0;
  virtual HRESULT Unacquire() = 0;

  // Takes in what the device has reported since the last call; never blocks. DI_OK, DI_NOEFFECT,
  // or a failure (DIERR_INPUTLOST) when the device doesn't answer. What it held until then stays
  // held, unless the implementation puts a device that is gone to rest first, as that of Linux
  // does: one more good poll, buttons up and axes and hats in the middle, and then the failures.
  virtual HRESULT Poll() = 0;

  // What SleepTimer can wait for before the next Poll, whether the device answers or is lost; a
  // handle of the platform's own. None when that Poll should come at its time in any case: it has
  // something to take in, or nothing can tell when it will have. On the thread that polls.
  virtual std::optional<Handle> WaitForNews() = 0;

  // While on, a Poll takes in no second change of a button: what follows is left for the next one,
  // so that a button that was pressed and let go meanwhile is seen both ways. Off at first.
  virtual void SetTapsApart(bool apart) = 0;

  // The state as of the last Poll. `size` is 272.
  virtual HRESULT GetDeviceState(std::uint32_t size, DIJOYSTATE2* state) = 0;

  // Ends the use of the object; it is gone after this.
  virtual void Release() = 0;

 protected:
  ~DirectInputDevice() = default;
};

// The directory (IDirectInput8).
class DirectInput {
 public:
  // Calls visit for each device, in the platform's fixed order, until it returns false.
  virtual HRESULT EnumDevices(std::uint32_t deviceClass,
                              const std::function<bool(const DIDEVICEINSTANCE&)>& visit,
                              std::uint32_t flags) = 0;

  // *device is set on DI_OK only.
  virtual HRESULT CreateDevice(const GUID& instance, DirectInputDevice** device) = 0;

  virtual void Release() = 0;

 protected:
  ~DirectInput() = default;
};

class Devices {
 public:
  virtual ~Devices() = default;

  // *directInput is set on DI_OK only. `version` is DIRECTINPUT_VERSION_8.
  virtual HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) = 0;
};

// Of the installed platform; see platform.h.
Devices& devices();

}  // namespace platform
