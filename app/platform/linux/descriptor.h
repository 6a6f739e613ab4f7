// A file descriptor that is closed with its object.
#pragma once

#include <errno.h>
#include <unistd.h>

#include <utility>

namespace platform {

class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd, other.fd);
    return *this;
  }
  ~Descriptor() {
    if (fd >= 0) close(fd);
  }
  int Get() const { return fd; }
  explicit operator bool() const { return fd >= 0; }
  // Linux has let go of the number even where this tells an error.
  bool Close() {
    const int closing = std::exchange(fd, -1);
    return close(closing) == 0 || errno == EINTR;
  }

 private:
  int fd;
};

}  // namespace platform
