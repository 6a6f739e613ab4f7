#include "tests/program/machine.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;

std::string FreshFolder(const char* name) {
  std::string pattern = "/tmp/kelvaro-" + std::string(name) + "-XXXXXX";
  return mkdtemp(pattern.data());
}

pid_t Spawn(const std::vector<std::string>& command,
            const std::map<std::string, std::string>& environment, const std::string& log) {
  const pid_t process = fork();
  if (process != 0) return process;
  for (const auto& [variable, value] : environment) {
    if (value.empty()) {
      unsetenv(variable.c_str());
    } else {
      setenv(variable.c_str(), value.c_str(), 1);
    }
  }
  const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(out, STDERR_FILENO);
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  execvp(words[0], words.data());
  _exit(127);
}

void End(pid_t* process) {
  if (*process <= 0) return;
  kill(*process, SIGKILL);
  waitpid(*process, nullptr, 0);
  *process = -1;
}

// Windows go at any moment; what is asked of one that is gone has no answer.
int IgnoreError(Display*, XErrorEvent*) { return 0; }

std::vector<unsigned long> WindowProperty(Display* display, Window window, const char* name) {
  Atom type = 0;
  int format = 0;
  unsigned long count = 0, left = 0;
  unsigned char* data = nullptr;
  std::vector<unsigned long> values;
  if (XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, 4096, False,
                         AnyPropertyType, &type, &format, &count, &left, &data) == Success &&
      data && format == 32) {
    const auto* first = reinterpret_cast<unsigned long*>(data);
    values.assign(first, first + count);
  }
  if (data) XFree(data);
  return values;
}

std::string Title(Display* display, Window window) {
  Atom type = 0;
  int format = 0;
  unsigned long count = 0, left = 0;
  unsigned char* data = nullptr;
  std::string title;
  if (XGetWindowProperty(display, window, XInternAtom(display, "_NET_WM_NAME", False), 0, 256,
                         False, AnyPropertyType, &type, &format, &count, &left, &data) == Success &&
      data && format == 8)
    title.assign(reinterpret_cast<char*>(data), count);
  if (data) XFree(data);
  return title;
}

bool Describe(Display* display, Window window, XWindow* out) {
  XWindowAttributes attributes{};
  if (!XGetWindowAttributes(display, window, &attributes)) return false;
  out->id = window;
  out->title = Title(display, window);
  Window child = 0;
  XTranslateCoordinates(display, window, attributes.root, 0, 0, &out->x, &out->y, &child);
  out->width = attributes.width;
  out->height = attributes.height;
  out->viewable = attributes.map_state == IsViewable;
  out->transient = !WindowProperty(display, window, "WM_TRANSIENT_FOR").empty();
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

void SendToRoot(Display* display, Window window, const char* type, long first) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, type, False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = first;
  XSendEvent(display, DefaultRootWindow(display), False,
             SubstructureRedirectMask | SubstructureNotifyMask, &event);
  XSync(display, False);
}

}  // namespace

bool Eventually(const std::function<bool()>& holds, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (holds()) return true;
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(20ms);
  }
}

bool Required(const std::string& thing) {
  const char* const list = std::getenv("KELVARO_REQUIRE");
  return list && ("," + std::string(list) + ",").find("," + thing + ",") != std::string::npos;
}

Child::Child(const std::vector<std::string>& command,
             const std::map<std::string, std::string>& environment, const std::string& log)
    : process(Spawn(command, environment, log)), log(log) {}

Child::~Child() {
  if (!ended) End(&process);
}

bool Child::Running() { return WaitForEnd(0ms) == -1; }

void Child::Signal(int signal) {
  if (!ended) kill(process, signal);
}

int Child::WaitForEnd(std::chrono::milliseconds limit) {
  Eventually(
      [this] {
        int value = 0;
        if (!ended && waitpid(process, &value, WNOHANG) == process) {
          ended = true;
          status = WIFEXITED(value) ? WEXITSTATUS(value) : 128 + WTERMSIG(value);
        }
        return ended;
      },
      limit);
  return ended ? status : -1;
}

std::string Child::Log() const {
  std::stringstream text;
  text << std::ifstream(log).rdbuf();
  return text.str();
}

Home::Home() : folder(FreshFolder("home")) {
  for (const char* name : {"config", "runtime", "cache", "data"})
    fs::create_directory(folder + "/" + name);
  fs::permissions(folder + "/runtime", fs::perms::owner_all);
}

Home::~Home() {
  std::error_code ignored;  // a program that is still ending may hold something
  fs::remove_all(folder, ignored);
}

std::map<std::string, std::string> Home::Environment() const {
  return {{"HOME", folder},
          {"XDG_CONFIG_HOME", folder + "/config"},
          {"XDG_RUNTIME_DIR", folder + "/runtime"},
          {"XDG_CACHE_HOME", folder + "/cache"},
          {"XDG_DATA_HOME", folder + "/data"},
          {"LANG", "C.UTF-8"},
          {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/runtime/none"},
          {"DISPLAY", ""},
          {"WAYLAND_DISPLAY", ""},
          {"QT_QPA_PLATFORM", ""}};
}

XDesktop::XDesktop(bool withNotificationArea) : folder(FreshFolder("x")) {
  int numbers[2];
  if (pipe2(numbers, O_CLOEXEC) != 0) return;
  const std::string fd = std::to_string(numbers[1]);
  server = fork();
  if (server == 0) {
    fcntl(numbers[1], F_SETFD, 0);
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1280x900x24", "-nolisten",
           "tcp", "-noreset", nullptr);
    _exit(127);
  }
  close(numbers[1]);
  char digit;
  std::string number;
  while (read(numbers[0], &digit, 1) == 1 && digit != '\n') number += digit;
  close(numbers[0]);
  if (number.empty()) return;
  name = ":" + number;
  display = XOpenDisplay(name.c_str());
  XSetErrorHandler(IgnoreError);
  if (!display) return;
  fs::create_directory(folder + "/.icewm");
  if (!withNotificationArea) std::ofstream(folder + "/.icewm/preferences") << "ShowTaskBar=0\n";
  manager = Spawn({"icewm"},
                  {{"DISPLAY", name}, {"HOME", folder}, {"XDG_CONFIG_HOME", folder + "/config"}},
                  folder + "/icewm.log");
  const Atom tray = XInternAtom(display, "_NET_SYSTEM_TRAY_S0", False);
  const auto ready = [&] {
    return withNotificationArea
               ? XGetSelectionOwner(display, tray) != None
               : !WindowProperty(display, DefaultRootWindow(display), "_NET_SUPPORTING_WM_CHECK")
                      .empty();
  };
  if (!Eventually(ready)) {
    XCloseDisplay(display);
    display = nullptr;
  }
}

XDesktop::~XDesktop() {
  if (display) XCloseDisplay(display);
  End(&manager);
  End(&server);
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

std::vector<XWindow> XDesktop::Windows() {
  std::vector<XWindow> windows;
  Walk(display, DefaultRootWindow(display), [&](Window window) {
    XWindow found;
    // Only the program's own windows have it, not the manager's frames around them.
    if (!WindowProperty(display, window, "WM_STATE").empty() && Describe(display, window, &found) &&
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

bool XDesktop::Iconic(unsigned long window) {
  const auto state = WindowProperty(display, window, "WM_STATE");
  return !state.empty() && state[0] == IconicState;
}

bool XDesktop::Listed(unsigned long window) {
  for (const unsigned long listed :
       WindowProperty(display, DefaultRootWindow(display), "_NET_CLIENT_LIST"))
    if (listed == window) return true;
  return false;
}

bool XDesktop::Active(unsigned long window) {
  const auto active = WindowProperty(display, DefaultRootWindow(display), "_NET_ACTIVE_WINDOW");
  return !active.empty() && active[0] == window;
}

std::vector<XWindow> XDesktop::Icons() {
  std::vector<XWindow> icons;
  Walk(display, DefaultRootWindow(display), [&](Window window) {
    XWindow found;
    // Any window may be willing to be docked; the window manager knows those that aren't.
    if (!WindowProperty(display, window, "_XEMBED_INFO").empty() &&
        WindowProperty(display, window, "WM_STATE").empty() && Describe(display, window, &found) &&
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
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = root;
  event.xclient.message_type = XInternAtom(display, "MANAGER", False);
  event.xclient.format = 32;
  event.xclient.data.l[1] = static_cast<long>(selection);
  event.xclient.data.l[2] = static_cast<long>(area);
  XSendEvent(display, root, False, StructureNotifyMask, &event);
  XSync(display, False);
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
    const auto type = WindowProperty(display, children[i], "_NET_WM_WINDOW_TYPE");
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
  const auto inSight = [&] {
    XWindow found;
    return Describe(display, window, &found) && found.viewable;
  };
  // The window manager passes over a window in front of which a box has only just gone.
  Eventually([&] {
    XIconifyWindow(display, window, DefaultScreen(display));
    XSync(display, False);
    return Eventually([&] { return !inSight(); }, 500ms);
  });
}

void XDesktop::CloseWindow(unsigned long window) {
  SendToRoot(display, window, "_NET_CLOSE_WINDOW", CurrentTime);
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

void XDesktop::Photograph(const std::string& file) {
  // Nothing of a test depends on it.
  const std::string command = "import -display " + name + " -window root " + file + " 2>/dev/null";
  if (std::system(command.c_str()) != 0) std::fprintf(stderr, "no picture: %s\n", file.c_str());
}

std::string Program(const std::string& file) { return fs::path(KELVARO_TEST_BIN) / file; }

}  // namespace kelvaro::tests
