// The real program on a display of its own, as a person meets it: an X server without a screen, a
// window manager with a notification area, a home folder that is empty at first, and hands.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/host/home.h"
#include "tests/host/processes.h"

struct _XDisplay;

namespace kelvaro::tests {

// A window on the X server.
struct XWindow {
  unsigned long id = 0;
  std::string title;
  int x = 0, y = 0, width = 0, height = 0;  // of its inside, on the screen
  bool viewable = false;
  bool transient = false;  // in front of another one: a dialog or a box
};

class XDesktop {
 public:
  // Starts the server and a window manager; a notification area, if that is wanted, is icewm's.
  // `more`: variables that the window manager gets, too.
  explicit XDesktop(bool withNotificationArea, const std::string& windowManager = "icewm",
                    const std::map<std::string, std::string>& more = {});
  ~XDesktop();
  XDesktop(const XDesktop&) = delete;
  XDesktop& operator=(const XDesktop&) = delete;

  bool Works() const { return display != nullptr; }
  std::string Name() const { return ":" + server.Address(); }

  // Top-level windows with a title, at any depth below the window manager's frames.
  std::vector<XWindow> Windows();
  // The first with that title that is on the screen, a transient one or not; id 0 for none.
  XWindow Find(const std::string& title, bool transient);
  bool Viewable(unsigned long window);
  // Iconic by the window manager's word, and taken off the list of windows.
  bool Iconic(unsigned long window);
  bool Listed(unsigned long window);
  // The kind of window that it says it is, by which a desktop finds its menu entry.
  std::string Class(unsigned long window);
  // It has the keyboard.
  bool Active(unsigned long window);
  // Of the keyboard, by X's key code.
  bool KeyIsDown(unsigned keycode);
  // Windows that are docked into the notification area.
  std::vector<XWindow> Icons();
  // A notification area where there is none: it shows nothing of what is docked.
  void BeginArea();
  void EndArea();
  // Windows on the screen that no window manager frames: menus and tool tips.
  std::vector<XWindow> Popups();

  // Waits until a window with that title is on the screen and something of it is painted: its
  // middle has another colour than the screen before. Looks every 2 ms.
  bool AwaitPainted(const std::string& title, std::chrono::milliseconds limit);

  void Minimise(unsigned long window);
  void CloseWindow(unsigned long window);  // as by its close box
  void Resize(unsigned long window, int width, int height);
  void Move(unsigned long window, int x, int y);  // as by its title

  void MoveTo(int x, int y);
  void Press(int x, int y, unsigned button = 1);
  void Drag(int fromX, int fromY, int toX, int toY);
  void DoubleClick(int x, int y);
  // Names of keys, parted by blanks: "Tab a Return"; "Alt_L+w" holds the first meanwhile.
  void Type(const std::string& keys);

  // What is seen, row by row; of a place that isn't on the screen nothing.
  std::vector<std::uint32_t> Pixels(int x, int y, int width, int height);
  // The whole screen, as a picture file; for a person to look at when a test fails.
  void Photograph(const std::string& file);

 private:
  // What asks the window manager for something.
  void SendToRoot(unsigned long window, const char* type, long mask, const std::vector<long>& data);

  const TemporaryFolder folder;
  Server server{[](const std::string& pipe) { return XServerCommand(pipe, "1280x900"); }};
  std::unique_ptr<Child> manager;
  _XDisplay* display = nullptr;
  unsigned long area = 0;
};

// Full path of a program beside the tests: "kelvaro".
std::string Program(const std::string& file);

}  // namespace kelvaro::tests
