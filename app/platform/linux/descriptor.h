// A file descriptor that is closed with its object, and the calls that a signal may interrupt.
#pragma once

#include <errno.h>
#include <unistd.h>

#include <cstddef>
#include <utility>

namespace platform {

// Makes a system call until no signal interrupts it.
template <typename Call>
auto Retry(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

// False, with errno set, for a failure; *written then tells how much went out.
inline bool WriteAll(int fd, const char* data, std::size_t size, std::size_t* written) {
  for (*written = 0; *written < size;) {
    const ssize_t n = Retry([&] { return write(fd, data + *written, size - *written); });
    if (n < 0) return false;
    *written += static_cast<std::size_t>(n);
  }
  return true;
}

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
