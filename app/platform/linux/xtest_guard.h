// The X server keeps down what a program pressed by XTest, even when that program is gone. So a
// process of its own waits for this program's end, however that comes, and then lets go. It is a
// fork that waits on a socket whose other end only this program holds: in a session of its own, so
// that nothing which ends this program ends it too, and with no descriptor but that socket.
#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>
#include <memory>
#include <string>

#include "app/platform/linux/descriptor.h"

namespace platform {

class XTestGuard {
 public:
  // In memory that both processes see.
  struct Held {
    std::array<std::atomic<bool>, 256> keys;  // by X key code
    std::array<std::atomic<bool>, 256> buttons;
  };

  // `display` is a display's name. To be called before other threads use Xlib, which the new
  // process uses again. Back when the guard is on watch; null on failure, with the errno value in
  // *errorCode.
  static std::unique_ptr<XTestGuard> Start(const std::string& display, int* errorCode);

  // Has the process let go of what is held, and waits for its end.
  ~XTestGuard();
  XTestGuard(const XTestGuard&) = delete;
  XTestGuard& operator=(const XTestGuard&) = delete;

  // To be set before a press reaches the server, and taken back once the release has.
  Held& Down() { return *held; }

 private:
  XTestGuard(Held* held, Descriptor alive, pid_t process);

  Held* const held;
  Descriptor alive;  // closed by the system when this process ends
  const pid_t process;
};

}  // namespace platform
