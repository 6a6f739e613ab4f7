// The desktops that tell which window is in front, each in its own way.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "console/follow/follow_rules.h"

namespace kelvaro::console {

enum class FrontNews {
  None,
  Window,  // the window in front was told
  Ended,   // nobody tells any more
};

// On one thread.
class FrontSource {
 public:
  virtual ~FrontSource() = default;

  // Readable when there is news.
  virtual int Descriptor() const = 0;
  // Takes in what has come, without waiting for more; also to be called once at first. *window is
  // set for Window, to nothing where none is in front; *error is for Ended.
  virtual FrontNews Read(std::optional<FrontWindow>* window, std::string* error) = 0;
};

// Each is null, with *error, where that desktop doesn't answer.
//
// Of an X server, by what its window manager writes on the root window. `display` as DISPLAY has
// it.
std::unique_ptr<FrontSource> OpenX11Front(const std::string& display, std::string* error);
// Of sway, over the socket that it names in SWAYSOCK.
std::unique_ptr<FrontSource> OpenSwayFront(const std::string& socket, std::string* error);
// Of KWin, by a script that it is given over the session's bus.
std::unique_ptr<FrontSource> OpenKWinFront(const std::string& bus, std::string* error);
// Of a compositor that offers wlr-foreign-toplevel-management, without the windows' programs.
// `display` as WAYLAND_DISPLAY has it. *error stays as it is where the compositor doesn't offer it.
std::unique_ptr<FrontSource> OpenWlrootsFront(const std::string& display, std::string* error);

// The file name of a process's program, without the folder; of one that runs in Wine that of the
// Windows program. Empty where the system doesn't tell.
std::string ProgramNameOf(std::uint32_t process);

}  // namespace kelvaro::console
