// A fixture with Qt behind the seam, off the screen, and a dialog that has a control of each kind.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/platform.h"
#include "app/platform/qt/qt_platform.h"
#include "recorder.h"

namespace platform::qt {

// How long what takes a moment may take, in milliseconds.
constexpr int kSoon = 60000;

class QtTest : public ::testing::Test {
 protected:
  QtTest();

  // Runs `dialog` with `script` inside of its loop, and ends it with `result` unless the script
  // did.
  std::int32_t Run(const DialogTemplate& dialog, std::function<void()> script,
                   WindowHandle owner = kNoWindow);
  std::int32_t Run(std::function<void()> script) { return Run(kAllKinds, std::move(script)); }

  WindowHandle Window() const { return recorder.window; }
  DialogWindow* Dialog() const;
  QWidget* Widget(std::uint32_t id) const;  // the one that has the focus
  // Handles what is posted.
  static void Settle();
  // True as soon as `holds` is; false if it wasn't within kSoon.
  static bool Soon(const std::function<bool()>& holds) { return QTest::qWaitFor(holds, kSoon); }

  LinuxPlatform system;
  QtPlatform qt;
  Platform groups;
  InstalledPlatform installed;
  Recorder recorder;
};

// A test whose body runs inside of the loop of kAllKinds.
#define WINDOW_TEST(Fixture, Name)                                                 \
  class Fixture##Name : public Fixture {                                           \
    void TestBody() override {                                                     \
      Run([this] { Body(); });                                                     \
    }                                                                              \
    void Body();                                                                   \
  };                                                                               \
  [[maybe_unused]] const auto* const registered##Fixture##Name =                   \
      testing::RegisterTest(#Fixture, #Name, nullptr, nullptr, __FILE__, __LINE__, \
                            []() -> Fixture* { return new Fixture##Name; });       \
  void Fixture##Name::Body()

// What is seen at a pixel.
QColor PixelOf(QWidget* widget, int x, int y);

}  // namespace platform::qt
