#include "tests/kernel/x_client.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstdlib>

namespace kelvaro::kernel {

XClient::XClient(const std::string& name, const std::string& title)
    : display(XOpenDisplay(name.c_str())) {
  if (display == nullptr) {
    std::fprintf(stderr, "no X server answers at %s\n", name.c_str());
    std::exit(1);
  }
  XAutoRepeatOff(display);
  window = XCreateSimpleWindow(display, DefaultRootWindow(display), 50, 50, 200, 100, 0, 0, 0);
  XStoreName(display, window, title.c_str());
  XSelectInput(display, window, KeyPressMask | KeyReleaseMask);
  XMapRaised(display, window);
  XSync(display, False);
}

XClient::~XClient() { XCloseDisplay(display); }

const std::vector<std::string>& XClient::Texts() {
  XEvent event;
  while (XCheckWindowEvent(display, window, KeyPressMask | KeyReleaseMask, &event)) {
    const char* key = XKeysymToString(XLookupKeysym(&event.xkey, 0));
    texts.push_back(std::string(key != nullptr ? key : "?") +
                    (event.type == KeyPress ? " down" : " up"));
  }
  return texts;
}

}  // namespace kelvaro::kernel
