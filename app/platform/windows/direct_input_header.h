// DirectInput's own header, behind those of the seam, whose records have the same layout.
#pragma once

#include "app/platform/windows/win32.h"

#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

namespace platform {

static_assert(sizeof(::DIJOYSTATE2) == sizeof(DIJOYSTATE2));
static_assert(sizeof(::DIDEVCAPS) == sizeof(DIDEVCAPS));
static_assert(sizeof(::DIDEVICEINSTANCEA) == sizeof(DIDEVICEINSTANCE));
static_assert(sizeof(::DIPROPRANGE) == sizeof(DIPROPRANGE));
static_assert(sizeof(::GUID) == sizeof(GUID));

// The numbers by which the interface knows a property stand in the place of an identity's address.
constexpr std::uintptr_t kBufferSize = 1;
constexpr std::uintptr_t kRange = 4;
inline const ::GUID& Property(std::uintptr_t number) {
  return *reinterpret_cast<const ::GUID*>(number);
}

inline HRESULT Result(::HRESULT system) { return static_cast<HRESULT>(system); }
inline bool Works(::HRESULT system) { return system == DI_OK || system == DI_NOEFFECT; }

}  // namespace platform
