// Sent events in the kernel's form, for a keyboard and a mouse device. Each call is one write,
// which holds the events and the report that ends them, so that no reader sees half of it. Any
// thread; no allocation, no lock.
#pragma once

#include <linux/input.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "app/platform/linux/key_holders.h"
#include "app/platform/linux/linux_input.h"
#include "app/platform/linux/wheel_notches.h"

namespace platform {

class KernelEvents : public LinuxInput {
 public:
  // The descriptors stay the caller's and must be open for the life of this object.
  KernelEvents(int keyboardFd, int mouseFd);

  // A key that the kernel doesn't know sends nothing, nor does a release by a virtual key that
  // doesn't hold its key down. Repeated downs go out as they come: the kernel drops them.
  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t extra) override;
  // Motion, then buttons that go down, then buttons that go up, then the wheel.
  void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::uint32_t extra) override;

  std::uint32_t FailedEvents() const override { return failed; }
  void OnFailure(std::function<void(const std::string& text)> listener) override;
  const char* Name() const override { return "uinput"; }

 private:
  void Send(int fd, const input_event* events, std::size_t count);

  const int keyboardFd;
  const int mouseFd;
  KeyHolders holders;
  WheelNotches wheel;
  std::atomic<std::uint32_t> failed{0};
  std::function<void(const std::string&)> failureListener;
};

}  // namespace platform
