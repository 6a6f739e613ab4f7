// Events by the X server's test extension. It takes X key codes, which on every current server are
// the kernel's plus 8; a key without one (the kernel's codes above 247) sends nothing, nor does a
// release by a virtual key that doesn't hold its key down. Any thread.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "app/platform/linux/key_holders.h"
#include "app/platform/linux/linux_input.h"
#include "app/platform/linux/wheel_notches.h"
#include "app/platform/linux/xtest_guard.h"

struct _XDisplay;  // NOLINT(bugprone-reserved-identifier): Xlib's own

namespace platform {

class XTestInput : public LinuxInput {
 public:
  // An empty `display` is the one of the environment. To be called before other threads use Xlib.
  // Null on failure, with the reason.
  static std::unique_ptr<XTestInput> Open(const std::string& display, std::string* error);

  // Lets go of what is held, as the guard does where this process ends without coming here: unlike
  // the kernel, the server would keep it down for good.
  ~XTestInput() override;
  XTestInput(const XTestInput&) = delete;
  XTestInput& operator=(const XTestInput&) = delete;

  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t extra) override;
  void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::uint32_t extra) override;
  std::uint32_t FailedEvents() const override;
  void OnFailure(std::function<void(const std::string& text)> listener) override;
  const char* Name() const override { return "XTest"; }

 private:
  XTestInput(_XDisplay* display, std::unique_ptr<XTestGuard> guard);

  // All with the mutex held.
  bool Alive();
  void Key(unsigned keycode, bool down);
  void Button(unsigned button, bool down);
  void Released(std::atomic<bool>* held);
  void Flush();

  mutable std::mutex mutex;  // guards all that follows
  _XDisplay* const display;
  const std::unique_ptr<XTestGuard> guard;
  int lowestKeycode = 0;
  int highestKeycode = 0;
  bool broken = false;  // the connection is gone
  unsigned sent = 0;
  std::uint32_t failed = 0;
  KeyHolders holders;
  WheelNotches wheel;
  std::function<void(const std::string&)> failureListener;
};

}  // namespace platform
