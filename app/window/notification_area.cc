#include "app/window/notification_area.h"

#include <algorithm>
#include <iterator>

#include "app/platform/desktop.h"
#include "app/resources/resources.h"
#include "app/start/window_messages.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kTrayIconId = 0;
constexpr char kTip[] = "Kelvaro";

// Of the process, as the hook's procedure takes no context.
platform::HookHandle minimiseHook = 0;

}  // namespace

bool NotificationArea::AddTrayIcon() {
  trayIcon = platform::desktop().LoadIconA(resources::kIcon);
  if (trayIcon == 0) return false;
  platform::NOTIFYICONDATA data;
  data.hWnd = dialog.window;
  data.uID = kTrayIconId;
  data.uFlags = platform::NIF_MESSAGE | platform::NIF_ICON | platform::NIF_TIP;
  data.uCallbackMessage = WM_TRAY_CALLBACK;
  data.hIcon = trayIcon;
  std::copy(std::begin(kTip), std::end(kTip), data.szTip);
  trayIconAdded = platform::desktop().Shell_NotifyIconA(platform::NIM_ADD, data);
  if (trayIconAdded)
    platform::desktop().SetNotifyIconMenu(dialog.window, kTrayIconId, resources::FloaterMenu());
  return trayIconAdded;
}

void NotificationArea::RemoveTrayIcon() {
  if (trayIconAdded) {
    platform::NOTIFYICONDATA data;
    data.hWnd = dialog.window;
    data.uID = kTrayIconId;
    platform::desktop().Shell_NotifyIconA(platform::NIM_DELETE, data);
    trayIconAdded = false;
  }
  if (trayIcon != 0) {
    platform::desktop().DestroyIcon(trayIcon);
    trayIcon = 0;
  }
}

void NotificationArea::OnTrayCallback(std::uintptr_t iconId, std::intptr_t mouseMessage) {
  if (iconId != kTrayIconId) return;
  if (mouseMessage == platform::WM_LBUTTONDBLCLK) ShowFromTray();
  if (mouseMessage == platform::WM_RBUTTONDOWN && !trayMenuOpen) ShowTrayMenu();
}

void NotificationArea::ShowTrayMenu() {
  // A menu closes on a click elsewhere only if its window is in front when it opens, and gets a
  // message after it.
  platform::desktop().SetForegroundWindow(dialog.window);
  platform::Point cursor;
  if (!platform::desktop().GetCursorPos(&cursor)) return;
  trayMenuOpen = true;
  platform::desktop().TrackPopupMenu(dialog.window, resources::FloaterMenu(),
                                     platform::TPM_RIGHTBUTTON, cursor);
  trayMenuOpen = false;
  platform::desktop().PostMessageA(dialog.window, platform::WM_NULL, 0, 0);
}

std::intptr_t NotificationArea::MinimiseHook(std::int32_t code, std::uintptr_t wParam,
                                             std::intptr_t lParam) {
  if (code == platform::HCBT_MINMAX && lParam == platform::SW_MINIMIZE)
    platform::desktop().PostMessageA(wParam, WM_HIDE_TO_TRAY, 0, 0);
  platform::desktop().CallNextHookEx(minimiseHook, code, wParam, lParam);
  return 0;
}

void NotificationArea::HideWhenMinimised() {
  minimiseHook = platform::desktop().SetWindowsHookExA(platform::WH_CBT, &MinimiseHook);
}

void NotificationArea::EndHideWhenMinimised() {
  if (minimiseHook == 0) return;
  platform::desktop().UnhookWindowsHookEx(minimiseHook);
  minimiseHook = 0;
}

void NotificationArea::HideToTray() {
  platform::desktop().ShowWindow(dialog.window, platform::SW_HIDE);
}

void NotificationArea::ShowFromTray() {
  platform::desktop().ShowWindow(dialog.window, platform::SW_SHOW);
  platform::desktop().ShowWindow(dialog.window, platform::SW_RESTORE);
}

void NotificationArea::ShowNormally() {
  platform::desktop().ShowWindow(dialog.window, platform::SW_SHOWNORMAL);
}

}  // namespace kelvaro
