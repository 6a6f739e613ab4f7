// The desktop group of the simulation, over the WindowSystem. Any number but 0 is a picture's, and
// its handle is the same number.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/simulation/window_system.h"

namespace platform::simulation {

class VirtualDesktop final : public Desktop {
 public:
  explicit VirtualDesktop(WindowSystem& system) : system(system), journal(system.journal) {}

  std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                           std::uint32_t type) override;
  void DismissBoxesOfOtherThreads() override { system.DismissBoxesOfOtherThreads(); }
  void Tell(const std::string& text) override { told.push_back(text); }
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

  std::vector<std::string> told;
  bool iconShown = false;
  NOTIFYICONDATA icon;
  std::vector<OpenMenu::Entry> iconMenu;

 private:
  bool HasIcon(WindowHandle window, std::uint32_t id) const {
    return iconShown && window == icon.hWnd && id == icon.uID;
  }

  WindowSystem& system;
  Journal& journal;
  HookHandle lastHook = 0;
  std::map<IconHandle, std::uint32_t> loadedIcons;  // how often each is loaded
};

}  // namespace platform::simulation
