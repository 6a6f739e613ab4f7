// The error of the calling thread's last operation that failed, as GetLastError tells it.
#pragma once

#include <errno.h>

namespace platform {

extern constinit thread_local int lastError;  // an errno value

// What an operation gives that fails: false, null, an empty text.
struct Failure {
  template <typename Result>
  operator Result() const {
    return Result();
  }
};

inline Failure Fail(int error = errno) {
  lastError = error;
  return {};
}

}  // namespace platform
