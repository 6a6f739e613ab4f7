#include <algorithm>
#include <iterator>

#include "app/dialogs/dialogs.h"
#include "app/platform/desktop.h"
#include "app/resources/resources.h"
#include "app/window/main_window.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kTrayIconId = 0;
constexpr char kTip[] = "Kelvaro";

}  // namespace

bool MainWindow::AddTrayIcon() {
  trayIcon = platform::desktop().LoadIconA(resources::kIcon);
  if (trayIcon == 0) return false;
  platform::NOTIFYICONDATA data;
  data.hWnd = window;
  data.uID = kTrayIconId;
  data.uFlags = platform::NIF_MESSAGE | platform::NIF_ICON | platform::NIF_TIP;
  data.uCallbackMessage = WM_TRAY_CALLBACK;
  data.hIcon = trayIcon;
  std::copy(std::begin(kTip), std::end(kTip), data.szTip);
  trayIconAdded = platform::desktop().Shell_NotifyIconA(platform::NIM_ADD, data);
  if (trayIconAdded)
    platform::desktop().SetNotifyIconMenu(window, kTrayIconId, resources::FloaterMenu());
  return trayIconAdded;
}

void MainWindow::RemoveTrayIcon() {
  if (trayIconAdded) {
    platform::NOTIFYICONDATA data;
    data.hWnd = window;
    data.uID = kTrayIconId;
    platform::desktop().Shell_NotifyIconA(platform::NIM_DELETE, data);
    trayIconAdded = false;
  }
  if (trayIcon != 0) {
    platform::desktop().DestroyIcon(trayIcon);
    trayIcon = 0;
  }
}

void MainWindow::OnTrayCallback(std::uintptr_t iconId, std::intptr_t mouseMessage) {
  if (iconId != kTrayIconId) return;
  if (mouseMessage == platform::WM_LBUTTONDBLCLK) ShowFromTray();
  if (mouseMessage == platform::WM_RBUTTONDOWN && !trayMenuOpen) ShowTrayMenu();
}

void MainWindow::ShowTrayMenu() {
  // A menu closes on a click elsewhere only if its window is in front when it opens, and gets a
  // message after it.
  platform::desktop().SetForegroundWindow(window);
  platform::Point cursor;
  if (!platform::desktop().GetCursorPos(&cursor)) return;
  trayMenuOpen = true;
  platform::desktop().TrackPopupMenu(window, resources::FloaterMenu(), platform::TPM_RIGHTBUTTON,
                                     cursor);
  trayMenuOpen = false;
  platform::desktop().PostMessageA(window, platform::WM_NULL, 0, 0);
}

void MainWindow::HideToTray() { platform::desktop().ShowWindow(window, platform::SW_HIDE); }

void MainWindow::ShowFromTray() {
  platform::desktop().ShowWindow(window, platform::SW_SHOW);
  platform::desktop().ShowWindow(window, platform::SW_RESTORE);
}

void MainWindow::ShowNormally() { platform::desktop().ShowWindow(window, platform::SW_SHOWNORMAL); }

void MainWindow::ShowWelcome() {
  welcomeDisplay = 1;
  WelcomeDialog().DoModal(window);
}

}  // namespace kelvaro
