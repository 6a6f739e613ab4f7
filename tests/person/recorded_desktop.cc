#include "tests/person/recorded_desktop.h"

namespace platform::simulation {

// ---- Windows

WindowHandle RecordedDesktop::HandleOf(std::size_t dialog) {
  const std::vector<TopLevelWindow> windows = Windows().TopLevelWindows();
  return dialog < windows.size() ? windows[dialog].window : kNoWindow;
}

std::int32_t RecordedDesktop::MessageBoxA(WindowHandle owner, const std::string& text,
                                          const std::string& caption, std::uint32_t type) {
  if (othersRefused && !Windows().OnOwnThread()) return 0;
  boxes.push_back({owner, text, caption, type});
  if (answers.empty()) {
    // No program runs that would show it.
    if (scheduler.OnOutermost()) return 0;
    return QtDesktop::MessageBoxA(owner, text, caption, type);
  }
  const std::int32_t answer = answers.front();
  answers.pop_front();
  return answer;
}

std::uint32_t RecordedDesktop::PictureOf(IconHandle handle) const {
  const auto found = pictures.find(handle);
  return found == pictures.end() ? 0 : found->second;
}

std::int32_t RecordedDesktop::RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                                        WindowListener& listener) {
  if (journal.Enter("RunDialog", dialog.id)) return -1;
  dialogs.push_back({&dialog, &listener});
  const std::int32_t result = QtDesktop::RunDialog(dialog, owner, listener);
  dialogs.pop_back();
  return result;
}

Colour RecordedDesktop::GetSysColor(std::int32_t index) {
  if (const auto other = colours.find(index); other != colours.end()) return other->second;
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

bool RecordedDesktop::Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  if (journal.Enter("Shell_NotifyIconA", message)) return false;
  switch (message) {
    case NIM_ADD:
      if (iconShown || !Windows().Find(data.hWnd)) return false;
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

bool RecordedDesktop::SetNotifyIconMenu(WindowHandle window, std::uint32_t id,
                                        std::span<const MenuItem> items) {
  if (!HasIcon(window, id)) return false;
  iconMenu.clear();
  for (const MenuItem& item : items) iconMenu.push_back({item.text ? item.text : "", item.command});
  return true;
}

bool RecordedDesktop::TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items,
                                     std::uint32_t flags, Point screen) {
  if (journal.Enter("TrackPopupMenu")) return false;
  ++menusShown;
  return QtDesktop::TrackPopupMenu(window, items, flags, screen);
}

// ---- Controls

// Of the same height with any font.
bool RecordedControls::TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                      Rect* rect) {
  if (journal.Enter("TabGetItemRect", id, tab) ||
      !QtControls::TabGetItemRect(window, id, tab, rect))
    return false;
  rect->bottom = rect->top + 20;
  return true;
}

}  // namespace platform::simulation
