// The icon in the notification area, and the window's ways to there and back. Minimising hides: a
// hook on the minimise posts WM_HIDE_TO_TRAY, whose handler hides the window, so that nothing of it
// stays on the task bar.
#pragma once

#include <cstdint>

#include "app/layout/dialog.h"

namespace kelvaro {

class NotificationArea {
 public:
  explicit NotificationArea(const Dialog& dialog) : dialog(dialog) {}

  bool AddTrayIcon();  // false, with nothing shown, when it can't be
  void RemoveTrayIcon();
  void OnTrayCallback(std::uintptr_t iconId, std::intptr_t mouseMessage);

  // The hook is the process's, and sees each window of the calling thread.
  void HideWhenMinimised();
  void EndHideWhenMinimised();
  static std::intptr_t MinimiseHook(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam);
  void HideToTray();
  void ShowFromTray();
  void ShowNormally();

 private:
  void ShowTrayMenu();

  const Dialog& dialog;
  platform::IconHandle trayIcon = 0;
  bool trayIconAdded = false;
  bool trayMenuOpen = false;
};

}  // namespace kelvaro
