// The real program on a display of its own, as a person meets it: an X server without a screen, a
// window manager with a notification area, a home folder that is empty at first, and hands.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

struct _XDisplay;

namespace kelvaro::tests {

using namespace std::chrono_literals;

// How long what takes a moment may take. To be changed where the clock isn't the real one.
inline std::chrono::milliseconds patience = 20s;

// True as soon as `holds` is; false if it wasn't within `limit`.
bool Eventually(const std::function<bool()>& holds, std::chrono::milliseconds limit = patience);

// Whether KELVARO_REQUIRE names a thing, whose absence then is a failure and no skip.
bool Required(const std::string& thing);

// A program that runs in the background; ended with this object.
class Child {
 public:
  // `environment` replaces variables; an empty value takes one away. Standard output and error go
  // to the file `log`.
  Child(const std::vector<std::string>& command,
        const std::map<std::string, std::string>& environment, const std::string& log);
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t Id() const { return process; }
  bool Running();
  void Signal(int signal);
  // Its exit status, 128 and the signal for one that was killed, -1 when it still runs after
  // `limit`.
  int WaitForEnd(std::chrono::milliseconds limit = 20s);
  std::string Log() const;

 private:
  pid_t process = -1;
  int status = -1;
  bool ended = false;
  const std::string log;
};

// A home folder of its own under /tmp, removed at the end.
class Home {
 public:
  Home();
  ~Home();
  Home(const Home&) = delete;
  Home& operator=(const Home&) = delete;

  // HOME, XDG_CONFIG_HOME, XDG_RUNTIME_DIR and the rest that a program looks at.
  std::map<std::string, std::string> Environment() const;
  std::string SettingsFile() const { return folder + "/config/kelvaro/settings.sqlite3"; }

  const std::string folder;
};

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
  // Starts the server and a window manager, with its notification area if that is wanted.
  explicit XDesktop(bool withNotificationArea);
  ~XDesktop();
  XDesktop(const XDesktop&) = delete;
  XDesktop& operator=(const XDesktop&) = delete;

  bool Works() const { return display != nullptr; }
  const std::string& Name() const { return name; }  // ":1"

  // Top-level windows with a title, at any depth below the window manager's frames.
  std::vector<XWindow> Windows();
  // The first with that title that is on the screen, a transient one or not; id 0 for none.
  XWindow Find(const std::string& title, bool transient);
  // Iconic by the window manager's word, and taken off the list of windows.
  bool Iconic(unsigned long window);
  bool Listed(unsigned long window);
  // It has the keyboard.
  bool Active(unsigned long window);
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

  // The whole screen, as a picture file; for a person to look at when a test fails.
  void Photograph(const std::string& file);

 private:
  const std::string folder;
  std::string name;
  pid_t server = -1;
  pid_t manager = -1;
  _XDisplay* display = nullptr;
  unsigned long area = 0;
};

// Full path of a program beside the tests: "kelvaro".
std::string Program(const std::string& file);

}  // namespace kelvaro::tests
