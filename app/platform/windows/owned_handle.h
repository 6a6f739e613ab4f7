// A handle of the system's, closed when its owner goes.
#pragma once

#include <utility>

#include "app/platform/windows/win32.h"

namespace platform {

class OwnedHandle {
 public:
  OwnedHandle() = default;
  // Null and the invalid handle are none.
  explicit OwnedHandle(HANDLE handle) : handle(handle) {}
  OwnedHandle(OwnedHandle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    if (this != &other) {
      Close();
      handle = std::exchange(other.handle, nullptr);
    }
    return *this;
  }
  ~OwnedHandle() { Close(); }

  explicit operator bool() const { return handle && handle != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle; }
  // True where there is none.
  bool Close() {
    const HANDLE closed = std::exchange(handle, nullptr);
    return !closed || closed == INVALID_HANDLE_VALUE || ::CloseHandle(closed);
  }

 private:
  HANDLE handle = nullptr;
};

}  // namespace platform
