// The fixture of every desktop with Qt behind the seam, and what is Qt's own of it.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <string>
#include <vector>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/platform.h"
#include "app/platform/qt/qt_platform.h"
#include "desktop_fixture.h"

namespace platform {

struct DesktopTest::Machine {
  qt::DialogWindow* Find(WindowHandle window) { return qt.Desktop().Windows().Find(window); }

  LinuxPlatform system;
  qt::QtPlatform qt;
  InstalledPlatform installed{[this] {
    Platform groups = system.Groups();
    groups.desktop = &qt.Desktop();
    groups.controls = &qt.Controls();
    groups.shell = &qt.Shell();
    return groups;
  }()};
  QObject context;
};

namespace qt {

// How long what takes a moment may take, in milliseconds.
constexpr int kSoon = 60000;

class QtTest : public DesktopTest {
 protected:
  DialogWindow* Dialog() const { return machine->Find(Window()); }
  QWidget* Widget(std::uint32_t id) const;  // the one that has the focus

  QtPlatform& qt = machine->qt;
};

// Null when there is none.
QMessageBox* BoxThatIsUp();

// What is seen at a pixel.
QColor PixelOf(QWidget* widget, int x, int y);

}  // namespace qt
}  // namespace platform
