#include "app/platform/qt/qt_desktop.h"

#include <QApplication>
#include <QCursor>
#include <QEventLoop>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <mutex>
#include <optional>

#include "app/platform/cut_off.h"
#include "app/platform/qt/colours.h"
#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

constexpr int kFocusPatience = 1000;  // ms
// Where a minimised window is, as the published operation tells it.
constexpr Rect kAway{-32000, -32000, -32000 + 160, -32000 + 27};

}  // namespace

// The answer that another thread waits for; the first one counts.
struct QtDesktop::Waiter {
  Waiter() : answered(threads().CreateEventA(true, false)) {}
  ~Waiter() { threads().CloseHandle(answered); }
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  void Answer(std::int32_t button) {
    const std::lock_guard<std::mutex> guard(mutex);
    if (answer) return;
    answer = button;
    threads().SetEvent(answered);
  }
  bool Answered() {
    const std::lock_guard<std::mutex> guard(mutex);
    return answer.has_value();
  }
  std::int32_t Wait() {
    threads().WaitForSingleObject(answered, WAIT_FOREVER);
    const std::lock_guard<std::mutex> guard(mutex);
    return answer.value_or(0);
  }

  std::mutex mutex;
  const Handle answered;
  std::optional<std::int32_t> answer;
};

// While this object lives, its window or box is in front of those that wait.
class QtDesktop::InFront {
 public:
  InFront(QtDesktop& desktop, Waiting entry) : desktop(desktop) {
    desktop.waiting.push_back(std::move(entry));
    ++desktop.windows.asked;
  }
  ~InFront() {
    desktop.waiting.pop_back();
    desktop.GoOnClosing();
  }
  InFront(const InFront&) = delete;
  InFront& operator=(const InFront&) = delete;

 private:
  QtDesktop& desktop;
};

QtDesktop::QtDesktop()
    : area(
          icons,
          [this](const NOTIFYICONDATA& data, std::intptr_t mouse) {
            PostMessageA(data.hWnd, data.uCallbackMessage, data.uID, mouse);
          },
          [this](WindowHandle handle) {
            if (DialogWindow* window = Window(handle)) window->IconCameOrWent();
          }) {}

QtDesktop::~QtDesktop() {
  for (const auto& box : aside) delete box.data();
}

void QtDesktop::CloseAll() {
  closing = true;
  CloseAside();
  if (waiting.empty()) return;
  const std::function<void()> close = waiting.back().close;
  const WindowHandle dialog = waiting.back().dialog;
  if (DialogWindow* window = Window(dialog)) {
    window->Close();
  } else {
    close();
  }
}

void QtDesktop::CloseIfAsked() {
  if (closing || (stopLook && stopLook())) CloseAll();
}

// Once what was in front has gone, and its handler has returned.
void QtDesktop::GoOnClosing() {
  if (waiting.empty()) closing = false;
  if (!closing) return;
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (closing && !waiting.empty()) CloseAll();
      },
      Qt::QueuedConnection);
}

QWidget* QtDesktop::SeenOwner(WindowHandle owner) const {
  DialogWindow* const window = Window(owner);
  if (!window) return nullptr;
  return window->isVisible() && !window->IsIconic() ? window : nullptr;
}

std::int32_t QtDesktop::AskHere(WindowHandle owner, const std::string& text,
                                const std::string& caption, std::uint32_t type) {
  DialogWindow* const behind = Window(owner);
  if (behind) behind->BringUp();
  const bool tookFocus = behind && behind->isActiveWindow();
  const auto box = MakeMessageBox(SeenOwner(owner), text, caption, type);
  QMessageBox* const shown = box.get();
  const InFront entry(*this, {kNoWindow, [shown] { shown->reject(); }});
  box->exec();
  if (tookFocus) AwaitFocus(owner);
  return AnswerOf(*box);
}

// The window manager takes its time to give the focus back. Until then, keys for the owner go
// elsewhere.
void QtDesktop::AwaitFocus(WindowHandle owner) {
  const auto comes = [&] {
    const DialogWindow* const window = Window(owner);
    return !closing && window && window->isVisible() && !window->isActiveWindow();
  };
  if (!comes()) return;
  Window(owner)->activateWindow();
  QEventLoop loop;
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, &loop, [&] {
    if (!comes()) loop.quit();
  });
  QTimer::singleShot(kFocusPatience, &loop, &QEventLoop::quit);
  loop.exec(QEventLoop::ExcludeUserInputEvents);
}

int QtDesktop::Exec(QDialog& dialog) {
  const InFront entry(*this, {kNoWindow, [&dialog] { dialog.reject(); }});
  return dialog.exec();
}

// No loop of its own: it would have to wait for those that begin after it.
QMessageBox* QtDesktop::ShowAside(WindowHandle owner, const std::string& text,
                                  const std::string& caption, std::uint32_t type) {
  QMessageBox* const box = MakeMessageBox(SeenOwner(owner), text, caption, type).release();
  std::erase_if(aside, [](const auto& other) { return other.isNull(); });
  aside.emplace_back(box);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->show();
  return box;
}

void QtDesktop::CloseAside() {
  for (const auto& box : aside) {
    if (box) box->reject();
  }
}

// The question that a thread has just asked isn't shown yet, and never will be: only the loop would
// show it.
void QtDesktop::DismissBoxesOfOtherThreads() {
  CloseAside();
  const std::lock_guard<std::mutex> guard(askingMutex);
  othersRefused = true;
  for (const auto& asked : asking) {
    if (const auto waiter = asked.lock()) waiter->Answer(0);
  }
}

void QtDesktop::Tell(const std::string& text) {
  QMetaObject::invokeMethod(
      this,
      [=, this] {
        untold.push_back(text);
        TellNow();
      },
      Qt::QueuedConnection);
}

void QtDesktop::TellNow() {
  if (firstWindow == kNoWindow) return;
  for (const std::string& text : std::exchange(untold, {})) {
    ShowAside(firstWindow, text, "Kelvaro", MB_OK | MB_ICONEXCLAMATION);
  }
}

std::int32_t QtDesktop::MessageBoxA(WindowHandle owner, const std::string& text,
                                    const std::string& caption, std::uint32_t type) {
  if (windows.OnOwnThread()) return AskHere(owner, text, caption, type);
  const auto waiter = std::make_shared<Waiter>();
  {
    const std::lock_guard<std::mutex> guard(askingMutex);
    if (othersRefused) return 0;
    std::erase_if(asking, [](const auto& other) { return other.expired(); });
    asking.push_back(waiter);
  }
  QMetaObject::invokeMethod(
      this,
      [=, this] {
        if (waiter->Answered()) return;
        QMessageBox* const box = ShowAside(owner, text, caption, type);
        connect(box, &QDialog::finished, box, [=] { waiter->Answer(AnswerOf(*box)); });
        connect(box, &QObject::destroyed, [=] { waiter->Answer(0); });
      },
      Qt::QueuedConnection);
  const std::int32_t answer = waiter->Wait();
  StopHereIfCutOff();
  return answer;
}

std::int32_t QtDesktop::RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                                  WindowListener& listener) {
  DialogWindow* const behind = Window(owner);
  if (owner != kNoWindow && !behind) return -1;
  if (behind) behind->BringUp();
  const Surroundings around{windows,
                            icons,
                            hooks,
                            [this](WindowHandle window) { return area.Lacks(window); },
                            [this](WindowHandle window) {
                              if (firstWindow == kNoWindow) firstWindow = window;
                              TellNow();
                            },
                            [this] { CloseIfAsked(); },
                            [this](const QFont& font) { return UnitsOf(font); }};
  DialogWindow window(dialog, behind, listener, around);
  DialogWindow* const shown = &window;
  const InFront entry(*this, {window.Handle(), [shown] { shown->End(IDCANCEL); }});
  const std::int32_t result = window.Run();
  area.DeleteAll(window.Handle());
  if (firstWindow == window.Handle()) firstWindow = kNoWindow;
  return result;
}

// Windows in front of it end with it: otherwise its handler could never return.
bool QtDesktop::EndDialog(WindowHandle handle, std::int32_t result) {
  DialogWindow* const window = Window(handle);
  if (!window) return false;
  window->End(result);
  for (auto entry = waiting.rbegin(); entry != waiting.rend(); ++entry) {
    if (entry->dialog == handle) break;
    entry->close();
  }
  return true;
}

bool QtDesktop::ShowWindow(WindowHandle handle, std::int32_t command) {
  DialogWindow* const window = Window(handle);
  if (window) window->ShowWindow(command);
  return window;
}

bool QtDesktop::IsWindowVisible(WindowHandle handle) {
  const DialogWindow* const window = Window(handle);
  return window && window->IsShown();
}

bool QtDesktop::IsIconic(WindowHandle handle) {
  const DialogWindow* const window = Window(handle);
  return window && window->IsIconic();
}

bool QtDesktop::IsZoomed(WindowHandle handle) {
  const DialogWindow* const window = Window(handle);
  return window && window->IsZoomed();
}

bool QtDesktop::SetForegroundWindow(WindowHandle handle) {
  DialogWindow* const window = Window(handle);
  if (!window || !window->isVisible()) return false;
  window->raise();
  window->activateWindow();
  return true;
}

bool QtDesktop::SetWindowTextA(WindowHandle handle, const std::string& text) {
  DialogWindow* const window = Window(handle);
  if (window) window->setWindowTitle(Shown(text));
  return window;
}

// One picture has all sizes here, so the large one is the small one.
bool QtDesktop::SetWindowIcon(WindowHandle handle, IconHandle icon, bool) {
  DialogWindow* const window = Window(handle);
  if (!window) return false;
  window->setWindowIcon(icons.Find(icon));
  return true;
}

bool QtDesktop::GetWindowRect(WindowHandle handle, Rect* rect) {
  const DialogWindow* const window = Window(handle);
  if (window) *rect = window->IsIconic() ? kAway : window->WholeRect();
  return window;
}

bool QtDesktop::GetClientRect(WindowHandle handle, Rect* rect) {
  const DialogWindow* const window = Window(handle);
  if (window) *rect = RectOf(window->rect());
  return window;
}

bool QtDesktop::MoveWindow(WindowHandle handle, const Rect& rect) {
  DialogWindow* const window = Window(handle);
  if (window) window->MoveWhole(rect);
  return window;
}

bool QtDesktop::InvalidateRect(WindowHandle handle, const Rect& rect) {
  DialogWindow* const window = Window(handle);
  if (window) window->update(RectOf(rect));
  return window;
}

bool QtDesktop::UpdateWindow(WindowHandle handle) {
  DialogWindow* const window = Window(handle);
  if (window && window->isVisible()) window->repaint();
  return window;
}

bool QtDesktop::GetDesktopRect(Rect* rect) {
  const QScreen* const screen = QGuiApplication::primaryScreen();
  if (!screen) return false;
  *rect = RectOf(screen->virtualGeometry());
  return true;
}

std::int32_t QtDesktop::GetSystemMetrics(std::int32_t index) {
  switch (index) {
    case SM_CXVSCROLL:
    case SM_CYHSCROLL:
      return QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    case SM_CXICON:
    case SM_CYICON:
      return kIconSize;
    default:
      return 0;
  }
}

Colour QtDesktop::GetSysColor(std::int32_t index) {
  const QPalette palette = QApplication::palette();
  switch (index) {
    case COLOR_3DFACE:
      return ColourOf(palette.color(QPalette::Button));
    case COLOR_3DSHADOW:
      return ColourOf(palette.color(QPalette::Dark));
    case COLOR_BTNTEXT:
      return ColourOf(palette.color(QPalette::ButtonText));
    case COLOR_3DHILIGHT:
      return ColourOf(palette.color(QPalette::Light));
    case COLOR_3DDKSHADOW:
      return ColourOf(palette.color(QPalette::Shadow));
    default:
      return 0;
  }
}

bool QtDesktop::GetCursorPos(Point* point) {
  const QPoint at = QCursor::pos();
  *point = {at.x(), at.y()};
  return true;
}

std::uint16_t QtDesktop::GetKeyState(std::uint8_t vk) {
  const Qt::KeyboardModifiers held = QGuiApplication::keyboardModifiers();
  const auto state = [&](Qt::KeyboardModifier key) {
    return static_cast<std::uint16_t>(held.testFlag(key) ? 0x8000 : 0);
  };
  switch (vk) {
    case 0x10:
      return state(Qt::ShiftModifier);
    case 0x11:
      return state(Qt::ControlModifier);
    case 0x12:
      return state(Qt::AltModifier);
    default:
      return 0;
  }
}

bool QtDesktop::PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                             std::intptr_t lParam) {
  return windows.Post(window,
                      [=](DialogWindow& target) { target.SendMessage(message, wParam, lParam); });
}

std::uint32_t QtDesktop::SetTimer(WindowHandle handle, std::uint32_t id, std::uint32_t ms) {
  DialogWindow* const window = Window(handle);
  return window ? window->SetTimer(id, ms) : 0;
}

bool QtDesktop::KillTimer(WindowHandle handle, std::uint32_t id) {
  DialogWindow* const window = Window(handle);
  return window && window->KillTimer(id);
}

bool QtDesktop::SleepTimer(WindowHandle handle, std::uint32_t id) {
  DialogWindow* const window = Window(handle);
  return window && window->SleepTimer(id);
}

bool QtDesktop::WakeTimer(WindowHandle handle, std::uint32_t id) {
  DialogWindow* const window = Window(handle);
  return window && window->WakeTimer(id);
}

HookHandle QtDesktop::SetWindowsHookExA(std::int32_t kind, HookProc procedure) {
  return kind == WH_CBT ? hooks.Add(procedure) : 0;
}

bool QtDesktop::UnhookWindowsHookEx(HookHandle hook) { return hooks.Remove(hook); }

std::intptr_t QtDesktop::CallNextHookEx(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                                        std::intptr_t lParam) {
  return hooks.CallNext(hook, code, wParam, lParam);
}

IconHandle QtDesktop::LoadIconA(std::uint32_t id) { return icons.Load(id); }
bool QtDesktop::DestroyIcon(IconHandle icon) { return icons.Destroy(icon); }
BitmapHandle QtDesktop::LoadBitmapA(std::uint32_t id) { return LoadBitmap(id); }

bool QtDesktop::Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  switch (message) {
    case NIM_ADD:
      return Window(data.hWnd) && area.Add(data);
    case NIM_DELETE:
      return area.Delete(data.hWnd, data.uID);
    default:
      return false;
  }
}

void QtDesktop::Fill(QMenu& menu, std::span<const MenuItem> items) {
  for (const MenuItem& item : items) {
    if (!item.text || !*item.text) {
      menu.addSeparator();
    } else {
      menu.addAction(Shown(item.text))->setData(item.command);
    }
  }
}

void QtDesktop::PostCommand(WindowHandle handle, const QAction& chosen) {
  windows.Post(handle, [command = chosen.data().toUInt()](DialogWindow& window) {
    window.SendNotice(command, Notice::Clicked, 0);
  });
}

bool QtDesktop::SetNotifyIconMenu(WindowHandle handle, std::uint32_t id,
                                  std::span<const MenuItem> items) {
  auto menu = std::make_unique<QMenu>();
  Fill(*menu, items);
  connect(menu.get(), &QMenu::triggered, this,
          [this, handle](const QAction* chosen) { PostCommand(handle, *chosen); });
  return area.SetMenu(handle, id, std::move(menu));
}

// A Wayland compositor knows no menu that belongs to no window: it would come as a window of its
// own, and stay.
bool QtDesktop::TrackPopupMenu(WindowHandle handle, std::span<const MenuItem> items, std::uint32_t,
                               Point screen) {
  if (!Window(handle) || QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
    return false;
  QMenu menu(SeenOwner(handle));
  Fill(menu, items);
  const InFront entry(*this, {kNoWindow, [&menu] { menu.close(); }});
  if (const QAction* chosen = menu.exec(QPoint(screen.x, screen.y))) PostCommand(handle, *chosen);
  return true;
}

}  // namespace platform::qt
