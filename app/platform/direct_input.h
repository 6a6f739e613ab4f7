// The published game device records and constants, declared by us with their published layout:
// DIJOYSTATE2, DIDEVCAPS, DIDEVICEINSTANCE (8-bit text), DIPROPRANGE and GUID, with the result
// codes and flags that the device layer uses. Source: the public DirectInput 8 reference.
// Every size is asserted below, since states are compared as whole blocks and field offsets are
// used as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace platform {

struct GUID {
  std::uint32_t Data1 = 0;
  std::uint16_t Data2 = 0;
  std::uint16_t Data3 = 0;
  std::uint8_t Data4[8] = {};

  friend bool operator==(const GUID& a, const GUID& b) {
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
           std::memcmp(a.Data4, b.Data4, sizeof a.Data4) == 0;
  }
  friend bool operator!=(const GUID& a, const GUID& b) { return !(a == b); }
};

// One device state. Axes and sliders are signed, in the range set with DIPROP_RANGE; hats are
// hundredths of a degree clockwise from north, with 0xFFFF in the low 16 bits for centred; a button
// byte that is not 0 is down.
struct DIJOYSTATE2 {
  std::int32_t lX = 0, lY = 0, lZ = 0, lRx = 0, lRy = 0, lRz = 0;
  std::int32_t rglSlider[2] = {};
  std::uint32_t rgdwPOV[4] = {};
  std::uint8_t rgbButtons[128] = {};
  std::int32_t lVX = 0, lVY = 0, lVZ = 0, lVRx = 0, lVRy = 0, lVRz = 0;
  std::int32_t rglVSlider[2] = {};
  std::int32_t lAX = 0, lAY = 0, lAZ = 0, lARx = 0, lARy = 0, lARz = 0;
  std::int32_t rglASlider[2] = {};
  std::int32_t lFX = 0, lFY = 0, lFZ = 0, lFRx = 0, lFRy = 0, lFRz = 0;
  std::int32_t rglFSlider[2] = {};
};

struct DIDEVCAPS {
  std::uint32_t dwSize = sizeof(DIDEVCAPS);
  std::uint32_t dwFlags = 0;
  std::uint32_t dwDevType = 0;
  std::uint32_t dwAxes = 0;
  std::uint32_t dwButtons = 0;
  std::uint32_t dwPOVs = 0;
  std::uint32_t dwFFSamplePeriod = 0;
  std::uint32_t dwFFMinTimeResolution = 0;
  std::uint32_t dwFirmwareRevision = 0;
  std::uint32_t dwHardwareRevision = 0;
  std::uint32_t dwFFDriverVersion = 0;
};

constexpr std::size_t kMaxPath = 260;

// Texts are zero-terminated; the implementation cuts a longer name.
struct DIDEVICEINSTANCE {
  std::uint32_t dwSize = sizeof(DIDEVICEINSTANCE);
  GUID guidInstance;
  GUID guidProduct;
  std::uint32_t dwDevType = 0;
  char tszInstanceName[kMaxPath] = {};
  char tszProductName[kMaxPath] = {};
  GUID guidFFDriver;
  std::uint16_t wUsagePage = 0;
  std::uint16_t wUsage = 0;
};

struct DIPROPHEADER {
  std::uint32_t dwSize = 0;
  std::uint32_t dwHeaderSize = sizeof(DIPROPHEADER);
  std::uint32_t dwObj = 0;
  std::uint32_t dwHow = 0;
};

struct DIPROPRANGE {
  DIPROPHEADER diph{sizeof(DIPROPRANGE), sizeof(DIPROPHEADER), 0, 0};
  std::int32_t lMin = 0;
  std::int32_t lMax = 0;
};

static_assert(sizeof(GUID) == 16);
static_assert(sizeof(DIJOYSTATE2) == 272);
static_assert(offsetof(DIJOYSTATE2, rglSlider) == 24);
static_assert(offsetof(DIJOYSTATE2, rgdwPOV) == 32);
static_assert(offsetof(DIJOYSTATE2, rgbButtons) == 48);
static_assert(offsetof(DIJOYSTATE2, lVX) == 176);
static_assert(offsetof(DIJOYSTATE2, lAX) == 208);
static_assert(offsetof(DIJOYSTATE2, lFX) == 240);
static_assert(sizeof(DIDEVCAPS) == 44);
static_assert(sizeof(DIDEVICEINSTANCE) == 580);
static_assert(sizeof(DIPROPHEADER) == 16);
static_assert(sizeof(DIPROPRANGE) == 24);

// Result codes: 0 and 1 are success, negative values are failures.
using HRESULT = std::int32_t;
constexpr HRESULT ResultCode(std::uint32_t bits) { return static_cast<HRESULT>(bits); }

constexpr HRESULT DI_OK = 0;
constexpr HRESULT DI_NOEFFECT = 1;
constexpr HRESULT DIERR_OLDDIRECTINPUTVERSION = ResultCode(0x8007047Eu);
constexpr HRESULT DIERR_BETADIRECTINPUTVERSION = ResultCode(0x80070481u);
constexpr HRESULT DIERR_OUTOFMEMORY = ResultCode(0x8007000Eu);
constexpr HRESULT DIERR_OTHERAPPHASPRIO = ResultCode(0x80070005u);
constexpr HRESULT DIERR_INVALIDPARAM = ResultCode(0x80070057u);
constexpr HRESULT DIERR_NOTINITIALIZED = ResultCode(0x80070015u);
constexpr HRESULT DIERR_DEVICENOTREG = ResultCode(0x80040154u);
constexpr HRESULT DIERR_INPUTLOST = ResultCode(0x8007001Eu);
constexpr HRESULT DIERR_NOTACQUIRED = ResultCode(0x8007000Cu);
constexpr HRESULT DIERR_UNPLUGGED = ResultCode(0x80040209u);

constexpr std::uint32_t DIRECTINPUT_VERSION_8 = 0x0800;
constexpr std::uint32_t DI8DEVCLASS_GAMECTRL = 4;
constexpr std::uint32_t DIEDFL_ATTACHEDONLY = 1;
constexpr std::uint32_t DISCL_EXCLUSIVE = 1;
constexpr std::uint32_t DISCL_NONEXCLUSIVE = 2;
constexpr std::uint32_t DISCL_BACKGROUND = 8;
constexpr std::uint32_t DIDFT_AXIS = 3;
constexpr std::uint32_t DIPH_BYID = 2;
constexpr std::uint32_t DIPROP_RANGE = 4;

constexpr std::uint32_t kPovCentred = 0xFFFFFFFFu;

}  // namespace platform
