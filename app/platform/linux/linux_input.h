// Where the sent events go on Linux: a virtual keyboard and mouse of the kernel's (uinput), which
// work everywhere, or the X server's test extension (XTest), which reaches X programs only but
// needs no rights.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/platform/input.h"

namespace platform {

class LinuxInput : public Input {
 public:
  // Events that the system refused to take, since the start.
  virtual std::uint32_t FailedEvents() const = 0;

  // Called with the system's reason at the first event that is refused, on the thread that sent it;
  // later ones are only counted. To be set before the first event.
  virtual void OnFailure(std::function<void(const std::string& text)> listener) = 0;

  virtual const char* Name() const = 0;  // "uinput" or "XTest"
};

enum class InputChoice {
  Auto,    // uinput, or else XTest
  Uinput,  // only
  XTest,   // only
};

// To be called well before the first event: a desktop needs a moment to take in new devices.
// Null when nothing works; *error then is one line that says what is missing and what to do.
std::unique_ptr<LinuxInput> OpenLinuxInput(InputChoice choice, std::string* error);

// What to do about /dev/uinput when opening it failed with that errno value.
std::string UinputAdvice(int errorCode);

}  // namespace platform
