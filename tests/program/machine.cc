#include "tests/program/machine.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>

namespace kelvaro::tests {
namespace {

// Windows go at any moment; what is asked of one that is gone has no answer.
int IgnoreError(Display*, XErrorEvent*) { return 0; }

// Empty for one that isn't there, or has another format.
template <typename T>
std::vector<T> WindowProperty(Display* display, Window window, const char* name) {
  Atom type = 0;
  int format = 0;
  unsigned long count = 0, left = 0;
  unsigned char* data = nullptr;
  std::vector<T> values;
  if (XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, 4096, False,
                         AnyPropertyType, &type, &format, &count, &left, &data) == Success &&
      data && format == (sizeof(T) == 1 ? 8 : 32)) {
    const auto* first = reinterpret_cast<T*>(data);
    values.assign(first, first + count);
  }
  if (data) XFree(data);
  return values;
}

std::vector<unsigned long> Numbers(Display* display, Window window, const char* name) {
  return WindowProperty<unsigned long>(display, window, name);
}

bool Describe(Display* display, Window window, XWindow* out) {
  XWindowAttributes attributes{};
  if (!XGetWindowAttributes(display, window, &attributes)) return false;
  out->id = window;
  const std::vector<char> title = WindowProperty<char>(display, window, "_NET_WM_NAME");
  out->title.assign(title.begin(), title.end());
  Window child = 0;
  XTranslateCoordinates(display, window, attributes.root, 0, 0, &out->x, &out->y, &child);
  out->width = attributes.width;
  out->height = attributes.height;
  out->viewable = attributes.map_state == IsViewable;
  out->transient = !Numbers(display, window, "WM_TRANSIENT_FOR").empty();
  return true;
}

void Walk(Display* display, Window window, const std::function<void(Window)>& visit) {
  visit(window);
  Window root = 0, parent = 0, *children = nullptr;
  unsigned count = 0;
  if (!XQueryTree(display, window, &root, &parent, &children, &count)) return;
  for (unsigned i = 0; i < count; ++i) Walk(display, children[i], visit);
  if (children) XFree(children);
}

}  // namespace

XDesktop::XDesktop(bool withNotificationArea, const std::string& windowManager,
                   const std::map<std::string, std::string>& more) {
  if (server.Address().empty()) return;
  display = XOpenDisplay(Name().c_str());
  XSetErrorHandler(IgnoreError);
  if (!display) return;
  std::filesystem::create_directory(folder.In(".icewm"));
  if (!withNotificationArea) Put(folder.In(".icewm/preferences"), "ShowTaskBar=0\n");
  auto environment = more;
  environment.insert(
      {{"DISPLAY", Name()}, {"HOME", folder.folder}, {"XDG_CONFIG_HOME", folder.In("config")}});
  manager =
      std::make_unique<Child>(std::vector<std::string>{windowManager}, ChildOptions{environment});
  const Atom tray = XInternAtom(display, "_NET_SYSTEM_TRAY_S0", False);
  const auto ready = [&] {
    return withNotificationArea
               ? XGetSelectionOwner(display, tray) != None
               : !Numbers(display, DefaultRootWindow(display), "_NET_SUPPORTING_WM_CHECK").empty();
  };
  if (!Eventually(ready)) {
    XCloseDisplay(display);
    display = nullptr;
  }
}

XDesktop::~XDesktop() {
  if (display) XCloseDisplay(display);
}

void XDesktop::SendToRoot(unsigned long window, const char* type, long mask,
                          const std::vector<long>& data) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, type, False);
  event.xclient.format = 32;
  std::copy(data.begin(), data.end(), event.xclient.data.l);
  XSendEvent(display, DefaultRootWindow(display), False, mask, &event);
  XSync(display, False);
}

std::vector<XWindow> XDesktop::Windows() {
  std::vector<XWindow> windows;
  Walk(display, DefaultRootWindow(display), [&](Window window) {
    XWindow found;
    // Only the program's own windows have it, not the manager's frames around them.
    if (!Numbers(display, window, "WM_STATE").empty() && Describe(display, window, &found) &&
        !found.title.empty())
      windows.push_back(found);
  });
  return windows;
}

XWindow XDesktop::Find(const std::string& title, bool transient) {
  for (const XWindow& window : Windows())
    if (window.title == title && window.viewable && window.transient == transient) return window;
  return {};
}

bool XDesktop::Viewable(unsigned long window) {
  XWindow found;
  return Describe(display, window, &found) && found.viewable;
}

bool XDesktop::Iconic(unsigned long window) {
  const auto state = Numbers(display, window, "WM_STATE");
  return !state.empty() && state[0] == IconicState;
}

bool XDesktop::Listed(unsigned long window) {
  for (const unsigned long listed :
       Numbers(display, DefaultRootWindow(display), "_NET_CLIENT_LIST"))
    if (listed == window) return true;
  return false;
}

std::string XDesktop::Class(unsigned long window) {
  // The name of the instance and that of the class, each with a zero behind it.
  const std::vector<char> names = WindowProperty<char>(display, window, "WM_CLASS");
  const auto first = std::find(names.begin(), names.end(), '\0');
  return first == names.end() ? ""
                              : std::string(first + 1, std::find(first + 1, names.end(), '\0'));
}

bool XDesktop::Active(unsigned long window) {
  const auto active = Numbers(display, DefaultRootWindow(display), "_NET_ACTIVE_WINDOW");
  return !active.empty() && active[0] == window;
}

bool XDesktop::KeyIsDown(unsigned keycode) {
  char keys[32];
  XQueryKeymap(display, keys);
  return (keys[keycode / 8] >> (keycode % 8)) & 1;
}

std::vector<XWindow> XDesktop::Icons() {
  std::vector<XWindow> icons;
  Walk(display, DefaultRootWindow(display), [&](Window window) {
    XWindow found;
    // Any window may be willing to be docked; the window manager knows those that aren't.
    if (!Numbers(display, window, "_XEMBED_INFO").empty() &&
        Numbers(display, window, "WM_STATE").empty() && Describe(display, window, &found) &&
        found.viewable)
      icons.push_back(found);
  });
  return icons;
}

void XDesktop::BeginArea() {
  const Window root = DefaultRootWindow(display);
  const Atom selection = XInternAtom(display, "_NET_SYSTEM_TRAY_S0", False);
  area = XCreateSimpleWindow(display, root, 0, 0, 1, 1, 0, 0, 0);
  XSetSelectionOwner(display, selection, area, CurrentTime);
  SendToRoot(root, "MANAGER", StructureNotifyMask,
             {CurrentTime, static_cast<long>(selection), static_cast<long>(area)});
}

void XDesktop::EndArea() {
  XDestroyWindow(display, area);
  XSync(display, False);
}

std::vector<XWindow> XDesktop::Popups() {
  std::vector<XWindow> popups;
  Window root = 0, parent = 0, *children = nullptr;
  unsigned count = 0;
  if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count))
    return popups;
  for (unsigned i = 0; i < count; ++i) {
    XWindowAttributes attributes{};
    XWindow found;
    const auto type = Numbers(display, children[i], "_NET_WM_WINDOW_TYPE");
    if (XGetWindowAttributes(display, children[i], &attributes) && attributes.override_redirect &&
        !type.empty() && Describe(display, children[i], &found) && found.viewable)
      popups.push_back(found);
  }
  if (children) XFree(children);
  return popups;
}

bool XDesktop::AwaitPainted(const std::string& title, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  const auto pixel = [this](const XWindow& window) {
    XImage* const image =
        XGetImage(display, DefaultRootWindow(display), window.x + window.width / 2,
                  window.y + window.height - 20, 1, 1, AllPlanes, ZPixmap);
    if (!image) return 0UL;
    const unsigned long value = XGetPixel(image, 0, 0) & 0xFFFFFF;
    XDestroyImage(image);
    return value;
  };
  while (std::chrono::steady_clock::now() < end) {
    const XWindow window = Find(title, false);
    if (window.id != 0 && pixel(window) != 0) return true;  // the empty screen is black
    std::this_thread::sleep_for(2ms);
  }
  return false;
}

void XDesktop::Minimise(unsigned long window) {
  // The window manager passes over a window in front of which a box has only just gone.
  Eventually([&] {
    XIconifyWindow(display, window, DefaultScreen(display));
    XSync(display, False);
    return Eventually([&] { return !Viewable(window); }, 500ms);
  });
}

void XDesktop::CloseWindow(unsigned long window) {
  SendToRoot(window, "_NET_CLOSE_WINDOW", SubstructureRedirectMask | SubstructureNotifyMask,
             {CurrentTime});
}

void XDesktop::Resize(unsigned long window, int width, int height) {
  XResizeWindow(display, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
  XSync(display, False);
}

void XDesktop::Move(unsigned long window, int x, int y) {
  XMoveWindow(display, window, x, y);
  XSync(display, False);
}

void XDesktop::MoveTo(int x, int y) {
  XTestFakeMotionEvent(display, DefaultScreen(display), x, y, CurrentTime);
  XSync(display, False);
  std::this_thread::sleep_for(30ms);
}

void XDesktop::Press(int x, int y, unsigned button) {
  MoveTo(x, y);
  XTestFakeButtonEvent(display, button, True, CurrentTime);
  XTestFakeButtonEvent(display, button, False, CurrentTime);
  XSync(display, False);
  std::this_thread::sleep_for(50ms);
}

void XDesktop::Drag(int fromX, int fromY, int toX, int toY) {
  MoveTo(fromX, fromY);
  XTestFakeButtonEvent(display, 1, True, CurrentTime);
  const int steps = 10;
  for (int i = 1; i <= steps; ++i)
    MoveTo(fromX + (toX - fromX) * i / steps, fromY + (toY - fromY) * i / steps);
  XTestFakeButtonEvent(display, 1, False, CurrentTime);
  XSync(display, False);
  std::this_thread::sleep_for(50ms);
}

void XDesktop::DoubleClick(int x, int y) {
  MoveTo(x, y);
  for (int i = 0; i < 2; ++i) {
    XTestFakeButtonEvent(display, 1, True, CurrentTime);
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
  }
  XSync(display, False);
  std::this_thread::sleep_for(50ms);
}

void XDesktop::Type(const std::string& keys) {
  std::istringstream words(keys);
  for (std::string word; words >> word;) {
    std::vector<KeyCode> codes;
    std::istringstream chord(word);
    for (std::string key; std::getline(chord, key, '+');)
      codes.push_back(XKeysymToKeycode(display, XStringToKeysym(key.c_str())));
    for (const KeyCode code : codes) XTestFakeKeyEvent(display, code, True, CurrentTime);
    for (auto code = codes.rbegin(); code != codes.rend(); ++code)
      XTestFakeKeyEvent(display, *code, False, CurrentTime);
    XSync(display, False);
    std::this_thread::sleep_for(30ms);
  }
}

std::vector<std::uint32_t> XDesktop::Pixels(int x, int y, int width, int height) {
  std::vector<std::uint32_t> pixels;
  XImage* const image =
      XGetImage(display, DefaultRootWindow(display), x, y, static_cast<unsigned>(width),
                static_cast<unsigned>(height), AllPlanes, ZPixmap);
  if (!image) return pixels;
  // The server has 24 bits in 32, in this machine's order.
  for (int row = 0; row < height; ++row) {
    const auto* const first =
        reinterpret_cast<const std::uint32_t*>(image->data + row * image->bytes_per_line);
    pixels.insert(pixels.end(), first, first + width);
  }
  XDestroyImage(image);
  return pixels;
}

void XDesktop::Photograph(const std::string& file) {
  // Nothing of a test depends on it.
  const std::string command =
      "import -display " + Name() + " -window root " + file + " 2>/dev/null";
  if (std::system(command.c_str()) != 0) std::fprintf(stderr, "no picture: %s\n", file.c_str());
}

std::string Program(const std::string& file) {
  return std::filesystem::path(KELVARO_TEST_BIN) / file;
}

}  // namespace kelvaro::tests
