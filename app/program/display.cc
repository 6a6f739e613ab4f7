#include "app/program/display.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstring>

#include "app/platform/linux/environment.h"

namespace kelvaro {
namespace {

bool XAnswers() {
  xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return answers;
}

bool WaylandAnswers() {
  std::string path = platform::Variable("WAYLAND_DISPLAY");
  if (path.empty()) path = "wayland-0";
  if (path.front() != '/') path = platform::Variable("XDG_RUNTIME_DIR") + '/' + path;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const int opened = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (opened < 0) return false;
  const bool answers =
      connect(opened, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(opened);
  return answers;
}

}  // namespace

DisplaySystem RealDisplaySystem() { return {&platform::Variable, &XAnswers, &WaylandAnswers}; }

std::string NoDisplay(const std::string& reason) {
  return "kelvaro: there is no display to show the window on (" + reason +
         "); \"kelvaroctl run\" plays a profile without one.";
}

bool FindDisplay(const DisplaySystem& system, std::string* error,
                 std::string (*say)(const std::string& reason)) {
  // A person who chooses a display is taken at their word. Only a display that isn't there fails.
  const std::string wish = system.variable("QT_QPA_PLATFORM");
  const bool wantsX = wish.find("xcb") != std::string::npos;
  const bool wantsWayland = wish.find("wayland") != std::string::npos;
  if (!wish.empty() && !wantsX && !wantsWayland) return true;

  const std::string x = system.variable("DISPLAY");
  const std::string wayland = system.variable("WAYLAND_DISPLAY");
  if (wish.empty() && x.empty() && wayland.empty()) {
    *error = say("neither DISPLAY nor WAYLAND_DISPLAY is set");
    return false;
  }
  const bool tryX = wish.empty() ? !x.empty() : wantsX;
  const bool tryWayland = wish.empty() ? !wayland.empty() : wantsWayland;
  if ((tryWayland && system.waylandAnswers()) || (tryX && system.xAnswers())) return true;
  const std::string& name = tryX ? x : wayland;
  *error = say(name.empty() ? std::string(tryX ? "DISPLAY" : "WAYLAND_DISPLAY") + " is not set"
                            : '"' + name + "\" can't be opened");
  return false;
}

}  // namespace kelvaro
