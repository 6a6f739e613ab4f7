// The error of the calling thread's last operation that failed, as GetLastError tells it.
#pragma once

#include <errno.h>

namespace platform {

extern constinit thread_local int lastError;  // an errno value

inline bool Fail(int error = errno) {
  lastError = error;
  return false;
}

}  // namespace platform
