#include "qt_fixture.h"

namespace platform::qt {
namespace {

Platform GroupsOf(LinuxPlatform& system, QtPlatform& qt) {
  Platform groups = system.Groups();
  groups.desktop = &qt.Desktop();
  groups.controls = &qt.Controls();
  groups.shell = &qt.Shell();
  return groups;
}

}  // namespace

QtTest::QtTest() : groups(GroupsOf(system, qt)), installed(groups) {}

std::int32_t QtTest::Run(const DialogTemplate& dialog, std::function<void()> script,
                         WindowHandle owner) {
  QObject context;
  QTimer::singleShot(0, &context, [&] {
    const WindowHandle window = recorder.window;
    DialogWindow* const shown = qt.Desktop().Windows().Find(window);
    // An X server without a window manager makes no window the active one.
    const bool activates = QGuiApplication::platformName() == QLatin1String("offscreen");
    EXPECT_TRUE(activates ? QTest::qWaitForWindowActive(shown, kSoon)
                          : QTest::qWaitForWindowExposed(shown, kSoon));
    recorder.lines.clear();
    script();
    desktop().EndDialog(window, IDOK);
  });
  return desktop().RunDialog(dialog, owner, recorder);
}

DialogWindow* QtTest::Dialog() const {
  return const_cast<QtPlatform&>(qt).Desktop().Windows().Find(Window());
}

QWidget* QtTest::Widget(std::uint32_t id) const { return Dialog()->Find(id)->FocusWidget(); }

void QtTest::Settle() { QTest::qWait(20); }

QColor PixelOf(QWidget* widget, int x, int y) { return widget->grab().toImage().pixelColor(x, y); }

}  // namespace platform::qt

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
