#include "app/platform/windows/ui/windows_ui.h"

// COM's, which a lean windows.h leaves out.
#include <objbase.h>

#include "app/platform/windows/ui/dialog_memory.h"

namespace platform::ui {

WindowsUi::Prepared::Prepared()
    : com(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
  INITCOMMONCONTROLSEX wanted = {};
  wanted.dwSize = sizeof wanted;
  wanted.dwICC = ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_TAB_CLASSES | ICC_BAR_CLASSES |
                 ICC_WIN95_CLASSES;
  InitCommonControlsEx(&wanted);
  WNDCLASSW dialog = {};
  dialog.style = CS_DBLCLKS;
  dialog.lpfnWndProc = &DefDlgProcW;
  dialog.cbWndExtra = DLGWINDOWEXTRA;
  dialog.hInstance = GetModuleHandleW(nullptr);
  dialog.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
  dialog.lpszClassName = kDialogClass;
  RegisterClassW(&dialog);
}

WindowsUi::Prepared::~Prepared() {
  UnregisterClassW(kDialogClass, GetModuleHandleW(nullptr));
  if (com) CoUninitialize();
}

WindowsUi::WindowsUi() = default;
WindowsUi::~WindowsUi() = default;

}  // namespace platform::ui
