// Windows behind the seam, by the system's own. Belongs to the thread that makes it, which is the
// user interface's. As long as the interface that it carries out.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "app/platform/hooks.h"
#include "app/platform/windows/ui/dialog_window.h"
#include "app/platform/windows/ui/notification_area.h"

namespace platform::ui {

class WindowsDesktop : public Desktop {
 public:
  WindowsDesktop();
  ~WindowsDesktop() override;
  WindowsDesktop(const WindowsDesktop&) = delete;
  WindowsDesktop& operator=(const WindowsDesktop&) = delete;

  WindowTable& Windows() { return windows; }

  // Handles a message of this thread as the loops of the dialogs do.
  void Dispatch(MSG& message);
  // Closes the windows of the person from the first one on, each of which ends those in front of
  // it. For the end of the session. User interface's thread.
  void CloseAll();
  // Runs `show`, which shows a box or dialog of the system's own and returns when it is closed.
  std::int32_t InFrontOf(WindowHandle owner, const std::function<std::int32_t(HWND owner)>& show);

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

 private:
  // What waits for the person, the one in front last. For a box or menu: no dialog.
  class InFront;

  DialogWindow* Window(WindowHandle window) const { return windows.Find(window); }
  std::int32_t AskHere(WindowHandle owner, const std::string& text, const std::string& caption,
                       std::uint32_t type);
  void TaskBarCame();
  void TellNow();
  static LRESULT CALLBACK OnHook(int code, WPARAM w, LPARAM l);

  WindowTable windows;
  Icons icons;
  Hooks hooks;
  HHOOK systemHook = nullptr;
  std::vector<HookHandle> hooked;
  NotificationArea area{icons};
  std::vector<WindowHandle> waiting;
  WindowHandle firstWindow = kNoWindow;  // that is up
  std::mutex mutex;                      // guards all below
  std::vector<DWORD> asking;             // other threads that have a box up, or are about to
  bool othersRefused = false;
  std::vector<std::string> untold;
};

}  // namespace platform::ui
