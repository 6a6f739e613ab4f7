// Windows behind the seam, by Qt. Belongs to the thread that makes it, which is the user
// interface's; the operations that any thread may call hand over to it. As long as the
// interface that it carries out.
#pragma once

#include <QDialog>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/qt/dialog_window.h"
#include "app/platform/qt/message_box.h"
#include "app/platform/qt/notification_area.h"

namespace platform::qt {

class QtDesktop : public QObject, public Desktop {
 public:
  QtDesktop();
  ~QtDesktop() override;

  WindowTable& Windows() { return windows; }

  // Closes what is in front, as by its close box, and all behind it after it. For the end of the
  // session or the program. User interface's thread.
  void CloseAll();
  // `look` tells whether the program was asked to end since it was last called; for moments at
  // which no event can tell it. User interface's thread.
  void SetStopLook(std::function<bool()> look) { stopLook = std::move(look); }

  // Runs a dialog of Qt's own as a box is run; its exec()'s result.
  int Exec(QDialog& dialog);
  // Null when there is none that could be seen behind a box.
  QWidget* SeenOwner(WindowHandle owner) const;

  std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                           std::uint32_t type) override;
  void DismissBoxesOfOtherThreads() override;
  void Tell(const std::string& text) override;
  std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                         WindowListener& listener) override;
  bool EndDialog(WindowHandle window, std::int32_t result) override;

  bool ShowWindow(WindowHandle window, std::int32_t command) override;
  bool IsWindowVisible(WindowHandle window) override;
  bool IsIconic(WindowHandle window) override;
  bool IsZoomed(WindowHandle window) override;
  bool SetForegroundWindow(WindowHandle window) override;
  bool SetWindowTextA(WindowHandle window, const std::string& text) override;
  bool SetWindowIcon(WindowHandle window, IconHandle icon, bool large) override;
  bool GetWindowRect(WindowHandle window, Rect* rect) override;
  bool GetClientRect(WindowHandle window, Rect* rect) override;
  bool MoveWindow(WindowHandle window, const Rect& rect) override;
  bool InvalidateRect(WindowHandle window, const Rect& rect) override;
  bool UpdateWindow(WindowHandle window) override;

  bool GetDesktopRect(Rect* rect) override;
  std::int32_t GetSystemMetrics(std::int32_t index) override;
  Colour GetSysColor(std::int32_t index) override;
  bool GetCursorPos(Point* point) override;
  std::uint16_t GetKeyState(std::uint8_t vk) override;

  bool PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                    std::intptr_t lParam) override;
  std::uint32_t SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) override;
  bool KillTimer(WindowHandle window, std::uint32_t id) override;
  bool SleepTimer(WindowHandle window, std::uint32_t id) override;
  bool WakeTimer(WindowHandle window, std::uint32_t id) override;

  HookHandle SetWindowsHookExA(std::int32_t kind, HookProc procedure) override;
  bool UnhookWindowsHookEx(HookHandle hook) override;
  std::intptr_t CallNextHookEx(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                               std::intptr_t lParam) override;

  IconHandle LoadIconA(std::uint32_t id) override;
  bool DestroyIcon(IconHandle icon) override;
  BitmapHandle LoadBitmapA(std::uint32_t id) override;

  bool Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) override;
  bool SetNotifyIconMenu(WindowHandle window, std::uint32_t id,
                         std::span<const MenuItem> items) override;
  bool TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items, std::uint32_t flags,
                      Point screen) override;

 protected:
  virtual DialogUnits UnitsOf(const QFont& font) const { return DialogUnits(font); }

 private:
  struct Waiter;
  // What waits for the person, the one in front last.
  struct Waiting {
    WindowHandle dialog = kNoWindow;  // for a box or menu: none
    std::function<void()> close;
  };
  class InFront;

  DialogWindow* Window(WindowHandle window) const { return windows.Find(window); }
  std::int32_t AskHere(WindowHandle owner, const std::string& text, const std::string& caption,
                       std::uint32_t type);
  void GoOnClosing();
  void CloseIfAsked();
  void AwaitFocus(WindowHandle owner);
  // A box for which no loop runs here; it goes by itself.
  QMessageBox* ShowAside(WindowHandle owner, const std::string& text, const std::string& caption,
                         std::uint32_t type);
  void CloseAside();
  void TellNow();
  static void Fill(QMenu& menu, std::span<const MenuItem> items);
  void PostCommand(WindowHandle window, const QAction& chosen);

  WindowTable windows;
  Icons icons;
  Hooks hooks;
  NotificationArea area;
  std::vector<Waiting> waiting;
  std::vector<QPointer<QMessageBox>> aside;  // boxes
  std::vector<std::string> untold;
  std::mutex askingMutex;
  std::vector<std::weak_ptr<Waiter>> asking;  // threads that have asked; guarded, as is the next
  bool othersRefused = false;
  WindowHandle firstWindow = kNoWindow;  // that is up
  bool closing = false;
  std::function<bool()> stopLook;
};

}  // namespace platform::qt
