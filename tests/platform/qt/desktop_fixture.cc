#include "desktop_fixture.h"

#include <QPushButton>
#include <utility>

#include "qt_fixture.h"

namespace platform {
namespace {

using qt::BoxThatIsUp;

constexpr std::pair<std::uint8_t, Qt::Key> kKeys[] = {
    {key::kTab, Qt::Key_Tab},
    {key::kReturn, Qt::Key_Return},
    {key::kEscape, Qt::Key_Escape},
    {key::kPageUp, Qt::Key_PageUp},
    {key::kPageDown, Qt::Key_PageDown},
    {key::kEnd, Qt::Key_End},
    {key::kLeft, Qt::Key_Left},
    {key::kUp, Qt::Key_Up},
    {key::kRight, Qt::Key_Right},
    {key::kDown, Qt::Key_Down},
    {key::kF1, Qt::Key_F1},
};

Qt::Key KeyOf(std::uint8_t vk) {
  for (const auto& [number, key] : kKeys) {
    if (number == vk) return key;
  }
  return static_cast<Qt::Key>(vk);  // letters, digits and the blank
}

}  // namespace

DesktopTest::DesktopTest() : machine(std::make_unique<Machine>()) {}
DesktopTest::~DesktopTest() = default;

std::int32_t DesktopTest::Run(const DialogTemplate& dialog, std::function<void()> script,
                              WindowHandle owner) {
  Later([this, script = std::move(script)] {
    const WindowHandle window = recorder.window;
    qt::DialogWindow* const shown = machine->Find(window);
    // An X server without a window manager makes no window the active one.
    const bool activates = QGuiApplication::platformName() == QLatin1String("offscreen");
    EXPECT_TRUE(activates ? QTest::qWaitForWindowActive(shown, qt::kSoon)
                          : QTest::qWaitForWindowExposed(shown, qt::kSoon));
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
