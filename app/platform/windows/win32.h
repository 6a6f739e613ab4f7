// Windows' own header, for this folder alone. It comes behind those of the seam: its macros bear
// the names of the seam's constants, and have the same values. Also what all groups need to go
// between the two.
#pragma once

#include "app/platform/error_codes.h"
#include "app/platform/platform.h"

// Last.
#include <windows.h>

namespace platform {

inline HANDLE SystemHandle(Handle handle) { return reinterpret_cast<HANDLE>(handle); }

// What creates a thing gives null for a failure, or the invalid handle.
inline Handle SeamHandle(HANDLE handle) {
  return handle ? reinterpret_cast<Handle>(handle) : kInvalidHandle;
}

// A library's function by its name; null where it isn't there.
template <typename Function>
Function FunctionOf(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace platform
