// The error of the calling thread's last operation that failed, as GetLastError tells it. The
// system's own doesn't outlive what is called after a failure, such as the end of a handle.
#pragma once

#include "app/platform/windows/win32.h"

namespace platform {

extern constinit thread_local DWORD lastError;

// What an operation gives that fails: false, null, an empty text.
struct Failure {
  template <typename Result>
  operator Result() const {
    return Result();
  }
};

inline Failure Fail(DWORD error = ::GetLastError()) {
  lastError = error;
  return {};
}

inline bool HasZeroByte(const std::string& text) { return text.find('\0') != std::string::npos; }

}  // namespace platform
