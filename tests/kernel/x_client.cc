#include "tests/kernel/x_client.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstdlib>

namespace kelvaro::kernel {

namespace {

Display* Opened(const std::string& name) {
  Display* const display = XOpenDisplay(name.c_str());
  if (display == nullptr) {
    std::fprintf(stderr, "no X server answers at %s\n", name.c_str());
    std::exit(1);
  }
  return display;
}

}  // namespace

XClient::XClient(const std::string& name, const std::string& title) : display(Opened(name)) {
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

std::pair<int, int> PointerOn(const std::string& name) {
  Display* const display = Opened(name);
  Window root = 0;
  Window child = 0;
  int x = 0;
  int y = 0;
  int inX = 0;
  int inY = 0;
  unsigned buttons = 0;
  XQueryPointer(display, DefaultRootWindow(display), &root, &child, &x, &y, &inX, &inY, &buttons);
  XCloseDisplay(display);
  return {x, y};
}

}  // namespace kelvaro::kernel
