#include "app/platform/simulation/virtual_desktop.h"

#include <algorithm>

namespace platform::simulation {
namespace {

// As the published operation: a shorter period is made this long.
constexpr std::uint32_t kLeastPeriod = 10;

}  // namespace

std::int32_t VirtualDesktop::MessageBoxA(WindowHandle owner, const std::string& text,
                                         const std::string& caption, std::uint32_t type) {
  if (journal.Enter("MessageBoxA", caption)) return 0;
  return system.RunBox({owner, text, caption, type});
}

std::int32_t VirtualDesktop::RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                                       WindowListener& listener) {
  if (journal.Enter("RunDialog", dialog.id)) return -1;
  return system.RunDialog(dialog, owner, listener);
}

bool VirtualDesktop::EndDialog(WindowHandle window, std::int32_t result) {
  if (journal.Enter("EndDialog", result)) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  found->ended = true;
  found->result = result;
  return true;
}

bool VirtualDesktop::ShowWindow(WindowHandle window, std::int32_t command) {
  if (journal.Enter("ShowWindow", command)) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  switch (command) {
    case SW_HIDE:
      system.Show(*found, false);
      return true;
    case SW_MINIMIZE:
      system.Minimise(*found);
      return true;
    case SW_SHOWNORMAL:
    case SW_SHOWNOACTIVATE:
      system.Restore(*found, true);
      break;
    case SW_RESTORE:
      system.Restore(*found, false);
      break;
    case SW_SHOW:
      break;
    default:
      return false;
  }
  system.Show(*found, true);
  return true;
}

bool VirtualDesktop::IsWindowVisible(WindowHandle window) {
  const VirtualWindow* const found = system.Find(window);
  return found && found->visible;
}

bool VirtualDesktop::IsIconic(WindowHandle window) {
  const VirtualWindow* const found = system.Find(window);
  return found && found->minimised;
}

bool VirtualDesktop::IsZoomed(WindowHandle window) {
  const VirtualWindow* const found = system.Find(window);
  return found && found->maximised;
}

bool VirtualDesktop::SetForegroundWindow(WindowHandle window) {
  return !journal.Enter("SetForegroundWindow") && system.Find(window);
}

bool VirtualDesktop::SetWindowTextA(WindowHandle window, const std::string& text) {
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  found->title = text;
  return true;
}

bool VirtualDesktop::SetWindowIcon(WindowHandle window, IconHandle picture, bool large) {
  if (journal.Enter("SetWindowIcon", large ? "large" : "small")) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  (large ? found->largeIcon : found->smallIcon) = picture;
  return true;
}

bool VirtualDesktop::GetWindowRect(WindowHandle window, Rect* rect) {
  const VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  *rect = found->place;
  return true;
}

bool VirtualDesktop::GetClientRect(WindowHandle window, Rect* rect) {
  const VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  *rect = found->Inside();
  return true;
}

bool VirtualDesktop::MoveWindow(WindowHandle window, const Rect& rect) {
  if (journal.Enter("MoveWindow")) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  system.MarkForPainting(*found);
  system.Place(*found, rect, true);
  return true;
}

bool VirtualDesktop::InvalidateRect(WindowHandle window, const Rect&) {
  if (journal.Enter("InvalidateRect")) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  system.MarkForPainting(*found);
  return true;
}

bool VirtualDesktop::UpdateWindow(WindowHandle window) {
  if (journal.Enter("UpdateWindow")) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  system.Paint(*found);
  return true;
}

bool VirtualDesktop::GetDesktopRect(Rect* rect) {
  if (journal.Enter("GetDesktopRect")) return false;
  *rect = {0, 0, system.desktopWidth, system.desktopHeight};
  return true;
}

std::int32_t VirtualDesktop::GetSystemMetrics(std::int32_t index) {
  switch (index) {
    case SM_CXVSCROLL:
    case SM_CYHSCROLL:
      return 16;
    case SM_CXICON:
    case SM_CYICON:
      return 32;
    default:
      return 0;
  }
}

Colour VirtualDesktop::GetSysColor(std::int32_t index) {
  switch (index) {
    case COLOR_3DFACE:
      return Rgb(212, 208, 200);
    case COLOR_3DSHADOW:
      return Rgb(128, 128, 128);
    case COLOR_3DHILIGHT:
      return Rgb(255, 255, 255);
    case COLOR_3DDKSHADOW:
      return Rgb(64, 64, 64);
    default:
      return 0;
  }
}

bool VirtualDesktop::GetCursorPos(Point* point) {
  if (journal.Enter("GetCursorPos")) return false;
  *point = system.pointer;
  return true;
}

std::uint16_t VirtualDesktop::GetKeyState(std::uint8_t vk) {
  return system.keysHeld[vk] ? 0x8000 : 0;
}

bool VirtualDesktop::PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                                  std::intptr_t lParam) {
  if (journal.Enter("PostMessageA", message)) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  system.Post(window, [listener = found->listener, message, wParam, lParam] {
    listener->OnMessage(message, wParam, lParam);
  });
  return true;
}

std::uint32_t VirtualDesktop::SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) {
  if (journal.Enter("SetTimer", id, ms)) return 0;
  VirtualWindow* const found = system.Find(window);
  if (!found) return 0;
  const std::uint32_t period = std::max(ms, kLeastPeriod);
  found->timers[id] = {period, system.scheduler.Now() + period};
  system.Wake();
  return id;
}

bool VirtualDesktop::KillTimer(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("KillTimer", id)) return false;
  VirtualWindow* const found = system.Find(window);
  return found && found->timers.erase(id) == 1;
}

HookHandle VirtualDesktop::SetWindowsHookExA(std::int32_t kind, HookProc procedure) {
  if (journal.Enter("SetWindowsHookExA") || kind != WH_CBT || !procedure) return 0;
  system.hooks.push_back({++lastHook, procedure});
  return lastHook;
}

bool VirtualDesktop::UnhookWindowsHookEx(HookHandle hook) {
  if (journal.Enter("UnhookWindowsHookEx")) return false;
  return std::erase_if(system.hooks, [&](const auto& one) { return one.handle == hook; }) == 1;
}

std::intptr_t VirtualDesktop::CallNextHookEx(HookHandle hook, std::int32_t code,
                                             std::uintptr_t wParam, std::intptr_t lParam) {
  // The newest comes first, and the next of one is the one that was set before it.
  const auto older = std::find_if(system.hooks.rbegin(), system.hooks.rend(),
                                  [&](const WindowSystem::Hook& one) { return one.handle < hook; });
  return older == system.hooks.rend() ? 0 : older->procedure(code, wParam, lParam);
}

IconHandle VirtualDesktop::LoadIconA(std::uint32_t id) {
  if (journal.Enter("LoadIconA", id) || id == 0) return 0;
  ++loadedIcons[id];
  return id;
}

bool VirtualDesktop::DestroyIcon(IconHandle picture) {
  if (journal.Enter("DestroyIcon")) return false;
  const auto found = loadedIcons.find(picture);
  if (found == loadedIcons.end()) return false;
  if (--found->second == 0) loadedIcons.erase(found);
  return true;
}

BitmapHandle VirtualDesktop::LoadBitmapA(std::uint32_t id) {
  return journal.Enter("LoadBitmapA", id) ? 0 : id;
}

bool VirtualDesktop::Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  if (journal.Enter("Shell_NotifyIconA", message)) return false;
  switch (message) {
    case NIM_ADD:
      if (iconShown || !system.Find(data.hWnd)) return false;
      iconShown = true;
      icon = data;
      iconMenu.clear();
      return true;
    case NIM_DELETE:
      if (!HasIcon(data.hWnd, data.uID)) return false;
      iconShown = false;
      return true;
    default:
      return false;
  }
}

bool VirtualDesktop::SetNotifyIconMenu(WindowHandle window, std::uint32_t id,
                                       std::span<const MenuItem> items) {
  if (!HasIcon(window, id)) return false;
  iconMenu = OpenMenu::EntriesOf(items);
  return true;
}

bool VirtualDesktop::TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items,
                                    std::uint32_t, Point) {
  if (journal.Enter("TrackPopupMenu")) return false;
  VirtualWindow* const found = system.Find(window);
  return found && system.OnUserInterface() && system.RunMenu(*found, items);
}

}  // namespace platform::simulation
