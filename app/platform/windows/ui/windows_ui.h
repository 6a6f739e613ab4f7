// What a person sees of a program on Windows, behind the seam. Made on the thread that is then the
// user interface's.
#pragma once

#include "app/platform/platform.h"
#include "app/platform/windows/ui/windows_controls.h"
#include "app/platform/windows/ui/windows_desktop.h"
#include "app/platform/windows/ui/windows_shell.h"

namespace platform::ui {

class WindowsUi {
 public:
  WindowsUi();
  ~WindowsUi();
  WindowsUi(const WindowsUi&) = delete;
  WindowsUi& operator=(const WindowsUi&) = delete;

  WindowsDesktop& Desktop() { return desktop; }
  WindowsControls& Controls() { return controls; }
  WindowsShell& Shell() { return shell; }

  // Its groups, borrowed. For before the platform is installed.
  void AddTo(Platform* groups) {
    groups->desktop = &desktop;
    groups->controls = &controls;
    groups->shell = &shell;
  }

 private:
  // Before all others: they make use of what it prepares.
  struct Prepared {
    Prepared();
    ~Prepared();
    bool com;
  } prepared;
  WindowsDesktop desktop;
  WindowsControls controls{desktop.Windows()};
  WindowsShell shell{desktop};
};

}  // namespace platform::ui
