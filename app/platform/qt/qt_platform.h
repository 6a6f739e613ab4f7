// Qt behind the seam: what a person sees of a program on a Linux desktop. Made after the
// QApplication and gone before it, on the thread that is then the user interface's.
#pragma once

#include "app/platform/qt/qt_controls.h"
#include "app/platform/qt/qt_desktop.h"
#include "app/platform/qt/qt_shell.h"

namespace platform::qt {

class QtPlatform {
 public:
  QtPlatform();
  QtPlatform(const QtPlatform&) = delete;
  QtPlatform& operator=(const QtPlatform&) = delete;

  QtDesktop& Desktop() { return desktop; }
  QtControls& Controls() { return controls; }
  QtShell& Shell() { return shell; }

 private:
  QtDesktop desktop;
  QtControls controls{desktop.Windows()};
  QtShell shell{desktop};
};

}  // namespace platform::qt
