#include "desktop_fixture.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>

#include "qt_fixture.h"

namespace platform {
namespace {

QMessageBox* BoxThatIsUp() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* const box = qobject_cast<QMessageBox*>(widget);
    if (box && box->isVisible()) return box;
  }
  return nullptr;
}

Qt::Key KeyOf(std::uint8_t vk) {
  switch (vk) {
    case key::kTab:
      return Qt::Key_Tab;
    case key::kReturn:
      return Qt::Key_Return;
    case key::kEscape:
      return Qt::Key_Escape;
    case key::kPageUp:
      return Qt::Key_PageUp;
    case key::kPageDown:
      return Qt::Key_PageDown;
    case key::kEnd:
      return Qt::Key_End;
    case key::kLeft:
      return Qt::Key_Left;
    case key::kUp:
      return Qt::Key_Up;
    case key::kRight:
      return Qt::Key_Right;
    case key::kDown:
      return Qt::Key_Down;
    case key::kF1:
      return Qt::Key_F1;
    default:
      return static_cast<Qt::Key>(vk);
  }
}

}  // namespace

struct DesktopTest::Machine {
  Machine() : groups(system.Groups()) {
    groups.desktop = &qt.Desktop();
    groups.controls = &qt.Controls();
    groups.shell = &qt.Shell();
    installed = std::make_unique<InstalledPlatform>(groups);
  }
  qt::DialogWindow* Find(WindowHandle window) { return qt.Desktop().Windows().Find(window); }

  LinuxPlatform system;
  qt::QtPlatform qt;
  Platform groups;
  std::unique_ptr<InstalledPlatform> installed;
  QObject context;
};

DesktopTest::DesktopTest() : machine(std::make_unique<Machine>()) {}
DesktopTest::~DesktopTest() = default;

std::int32_t DesktopTest::Run(const DialogTemplate& dialog, std::function<void()> script,
                              WindowHandle owner) {
  Later([this, script = std::move(script)] {
    const WindowHandle window = recorder.window;
    EXPECT_TRUE(QTest::qWaitForWindowActive(machine->Find(window), qt::kSoon));
    recorder.lines.clear();
    script();
    desktop().EndDialog(window, IDOK);
  });
  return desktop().RunDialog(dialog, owner, recorder);
}

void DesktopTest::Click(std::uint32_t id) {
  Rect place;
  ASSERT_TRUE(controls().GetControlRect(Window(), id, &place));
  ClickAt(id, {place.Width() / 2, place.Height() / 2});
}

void DesktopTest::ClickAt(std::uint32_t id, Point inside) {
  qt::DialogWindow* const window = machine->Find(Window());
  const QPoint point = window->Find(id)->Widget()->mapTo(window, QPoint(inside.x, inside.y));
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, point);
}

void DesktopTest::Key(std::uint8_t vk, unsigned held) {
  Qt::KeyboardModifiers modifiers;
  if (held & kShift) modifiers |= Qt::ShiftModifier;
  if (held & kControl) modifiers |= Qt::ControlModifier;
  if (held & kAlt) modifiers |= Qt::AltModifier;
  const bool back = vk == key::kTab && (held & kShift);
  QTest::keyClick(QGuiApplication::focusWindow(), back ? Qt::Key_Backtab : KeyOf(vk), modifiers);
}

void DesktopTest::Type(const std::string& ascii) {
  for (const char letter : ascii) QTest::keyClick(QGuiApplication::focusWindow(), letter);
}

void DesktopTest::PressCloseBox() { machine->Find(Window())->close(); }

void DesktopTest::PressMinimiseBox() {
  machine->Find(Window())->showMinimized();
  Settle();
}

void DesktopTest::PressMaximiseBox() {
  machine->Find(Window())->showMaximized();
  Settle();
}

std::optional<SeenBox> DesktopTest::Box() const {
  const QMessageBox* const box = BoxThatIsUp();
  if (!box) return std::nullopt;
  return SeenBox{box->text().toStdString(), box->windowTitle().toStdString()};
}

void DesktopTest::Answer(std::int32_t button) {
  const QMessageBox::StandardButton pressed = button == IDYES  ? QMessageBox::Yes
                                              : button == IDNO ? QMessageBox::No
                                                               : QMessageBox::Ok;
  BoxThatIsUp()->button(pressed)->click();
}

bool DesktopTest::IsSeen(std::uint32_t id) const {
  return machine->Find(Window())->Find(id)->Widget()->isVisible();
}

void DesktopTest::Later(std::function<void()> act) {
  QTimer::singleShot(0, &machine->context, std::move(act));
}

void DesktopTest::Settle() { QTest::qWait(20); }

bool DesktopTest::WaitFor(const std::function<bool()>& condition) {
  return QTest::qWaitFor(condition, qt::kSoon);
}

}  // namespace platform
