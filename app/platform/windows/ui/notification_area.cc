#include "app/platform/windows/ui/notification_area.h"

#include <algorithm>

#include "app/platform/windows/ui/text.h"

namespace platform::ui {

bool NotificationArea::Tell(DWORD message, const NOTIFYICONDATA& data) const {
  NOTIFYICONDATAW system = {};
  system.cbSize = sizeof system;
  system.hWnd = SystemWindow(data.hWnd);
  system.uID = data.uID;
  system.uFlags = data.uFlags;
  system.uCallbackMessage = data.uCallbackMessage;
  system.hIcon = icons.Find(data.hIcon, false);
  const std::wstring tip = Wide(data.szTip);
  tip.copy(system.szTip, std::size(system.szTip) - 1);
  return Shell_NotifyIconW(message, &system);
}

bool NotificationArea::Has(WindowHandle window, std::uint32_t id) const {
  return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
    return entry.data.hWnd == window && entry.data.uID == id;
  });
}

bool NotificationArea::Add(const NOTIFYICONDATA& data) {
  if (Has(data.hWnd, data.uID)) return false;
  const bool shown = Tell(NIM_ADD, data);
  if (!shown && FindWindowW(L"Shell_TrayWnd", nullptr)) return false;
  entries.push_back({data, shown});
  return true;
}

bool NotificationArea::Delete(WindowHandle window, std::uint32_t id) {
  return std::erase_if(entries, [&](const Entry& entry) {
           if (entry.data.hWnd != window || entry.data.uID != id) return false;
           if (entry.shown) Tell(NIM_DELETE, entry.data);
           return true;
         }) > 0;
}

void NotificationArea::DeleteAll(WindowHandle window) {
  std::erase_if(entries, [&](const Entry& entry) {
    if (entry.data.hWnd == window && entry.shown) Tell(NIM_DELETE, entry.data);
    return entry.data.hWnd == window;
  });
}

std::vector<WindowHandle> NotificationArea::ShowAll() {
  std::vector<WindowHandle> windows;
  for (Entry& entry : entries) {
    entry.shown = Tell(NIM_ADD, entry.data);
    windows.push_back(entry.data.hWnd);
  }
  return windows;
}

bool NotificationArea::Lacks(WindowHandle window) const {
  bool any = false;
  for (const Entry& entry : entries) {
    if (entry.data.hWnd != window) continue;
    if (entry.shown) return false;
    any = true;
  }
  return any;
}

}  // namespace platform::ui
