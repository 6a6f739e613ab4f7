#include "tests/person/recorded_desktop.h"

#include <algorithm>

namespace platform::simulation {

// ---- Windows

WindowHandle RecordedDesktop::HandleOf(std::size_t dialog) {
  const std::vector<TopLevelWindow> windows = Windows().TopLevelWindows();
  return dialog < windows.size() ? windows[dialog].window : kNoWindow;
}

std::int32_t RecordedDesktop::MessageBoxA(WindowHandle owner, const std::string& text,
                                          const std::string& caption, std::uint32_t type) {
  if (journal.Enter("MessageBoxA", caption)) return 0;
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

void RecordedDesktop::DismissBoxesOfOtherThreads() {
  othersRefused = true;
  QtDesktop::DismissBoxesOfOtherThreads();
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

bool RecordedDesktop::EndDialog(WindowHandle window, std::int32_t result) {
  if (journal.Enter("EndDialog", result)) return false;
  return QtDesktop::EndDialog(window, result);
}

bool RecordedDesktop::ShowWindow(WindowHandle window, std::int32_t command) {
  if (journal.Enter("ShowWindow", command)) return false;
  return QtDesktop::ShowWindow(window, command);
}

bool RecordedDesktop::SetForegroundWindow(WindowHandle window) {
  if (journal.Enter("SetForegroundWindow")) return false;
  return QtDesktop::SetForegroundWindow(window);
}

bool RecordedDesktop::SetWindowIcon(WindowHandle window, IconHandle picture, bool large) {
  if (journal.Enter("SetWindowIcon", large ? "large" : "small")) return false;
  icons[{window, large}] = picture;
  return QtDesktop::SetWindowIcon(window, picture, large);
}

bool RecordedDesktop::InvalidateRect(WindowHandle window, const Rect& rect) {
  if (journal.Enter("InvalidateRect")) return false;
  return QtDesktop::InvalidateRect(window, rect);
}

bool RecordedDesktop::UpdateWindow(WindowHandle window) {
  if (journal.Enter("UpdateWindow")) return false;
  return QtDesktop::UpdateWindow(window);
}

bool RecordedDesktop::GetDesktopRect(Rect* rect) {
  if (journal.Enter("GetDesktopRect")) return false;
  *rect = desktop;
  return true;
}

Colour RecordedDesktop::GetSysColor(std::int32_t index) {
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

bool RecordedDesktop::GetCursorPos(Point* point) {
  if (journal.Enter("GetCursorPos")) return false;
  *point = {512, 384};
  return true;
}

bool RecordedDesktop::PostMessageA(WindowHandle window, std::uint32_t message,
                                   std::uintptr_t wParam, std::intptr_t lParam) {
  if (journal.Enter("PostMessageA", message)) return false;
  return QtDesktop::PostMessageA(window, message, wParam, lParam);
}

std::uint32_t RecordedDesktop::SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) {
  if (journal.Enter("SetTimer", id, ms)) return 0;
  return QtDesktop::SetTimer(window, id, ms);
}

bool RecordedDesktop::KillTimer(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("KillTimer", id)) return false;
  return QtDesktop::KillTimer(window, id);
}

HookHandle RecordedDesktop::SetWindowsHookExA(std::int32_t kind, HookProc procedure) {
  if (journal.Enter("SetWindowsHookExA")) return 0;
  return QtDesktop::SetWindowsHookExA(kind, procedure);
}

bool RecordedDesktop::UnhookWindowsHookEx(HookHandle hook) {
  if (journal.Enter("UnhookWindowsHookEx")) return false;
  return QtDesktop::UnhookWindowsHookEx(hook);
}

IconHandle RecordedDesktop::LoadIconA(std::uint32_t id) {
  if (journal.Enter("LoadIconA", id)) return 0;
  const IconHandle loaded = QtDesktop::LoadIconA(id);
  if (loaded != 0) pictures[loaded] = id;
  return loaded;
}

bool RecordedDesktop::DestroyIcon(IconHandle picture) {
  if (journal.Enter("DestroyIcon")) return false;
  return QtDesktop::DestroyIcon(picture);
}

BitmapHandle RecordedDesktop::LoadBitmapA(std::uint32_t id) {
  if (journal.Enter("LoadBitmapA", id)) return 0;
  return QtDesktop::LoadBitmapA(id);
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

bool RecordedControls::SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                                     std::uint32_t flags) {
  if (journal.Enter("SetControlPos", id, flags)) return false;
  return QtControls::SetControlPos(window, id, rect, flags);
}

DeferHandle RecordedControls::BeginDeferWindowPos(std::int32_t count) {
  if (journal.Enter("BeginDeferWindowPos", count)) return 0;
  return QtControls::BeginDeferWindowPos(count);
}

DeferHandle RecordedControls::DeferWindowPos(DeferHandle defer, WindowHandle window,
                                             std::uint32_t id, const Rect& rect,
                                             std::uint32_t flags) {
  if (journal.Enter("DeferWindowPos", id, flags)) return 0;
  return QtControls::DeferWindowPos(defer, window, id, rect, flags);
}

bool RecordedControls::EndDeferWindowPos(DeferHandle defer) {
  if (journal.Enter("EndDeferWindowPos")) return false;
  return QtControls::EndDeferWindowPos(defer);
}

bool RecordedControls::InvalidateControl(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("InvalidateControl", id)) return false;
  ++looks[{window, id}].redraws;
  return QtControls::InvalidateControl(window, id);
}

bool RecordedControls::ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) {
  if (journal.Enter("ShowControl", id, command)) return false;
  return QtControls::ShowControl(window, id, command);
}

bool RecordedControls::PostControlMessage(WindowHandle window, std::uint32_t id,
                                          std::uint32_t message) {
  if (journal.Enter("PostControlMessage", id, message)) return false;
  return QtControls::PostControlMessage(window, id, message);
}

std::int32_t RecordedControls::ComboAddString(WindowHandle window, std::uint32_t id,
                                              const std::string& text) {
  if (journal.Enter("ComboAddString", id)) return -1;
  return QtControls::ComboAddString(window, id, text);
}

bool RecordedControls::ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) {
  if (journal.Enter("ComboSetCurSel", id, row)) return false;
  return QtControls::ComboSetCurSel(window, id, row);
}

bool RecordedControls::ListSetColumnWidth(WindowHandle window, std::uint32_t id,
                                          std::int32_t column, std::int32_t width) {
  if (journal.Enter("ListSetColumnWidth", id, column)) return false;
  return QtControls::ListSetColumnWidth(window, id, column, width);
}

bool RecordedControls::ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                                          std::vector<std::int32_t>* order) {
  if (journal.Enter("ListGetColumnOrder")) return false;
  return QtControls::ListGetColumnOrder(window, id, order);
}

// Of the same height with any font.
bool RecordedControls::TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                      Rect* rect) {
  if (!QtControls::TabGetItemRect(window, id, tab, rect)) return false;
  rect->bottom = rect->top + 20;
  return true;
}

bool RecordedControls::SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) {
  if (journal.Enter("SetPicture", id)) return false;
  looks[{window, id}].picture = bitmap;
  return QtControls::SetPicture(window, id, bitmap);
}

bool RecordedControls::SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) {
  looks[{window, id}].textColour = colour;
  return QtControls::SetTextColour(window, id, colour);
}

bool RecordedControls::SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) {
  looks[{window, id}].backgroundColour = colour;
  return QtControls::SetBackgroundColour(window, id, colour);
}

bool RecordedControls::SetHandCursor(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("SetHandCursor")) return false;
  return QtControls::SetHandCursor(window, id);
}

bool RecordedControls::CreateToolTip(WindowHandle window) {
  if (journal.Enter("CreateToolTip")) return false;
  return QtControls::CreateToolTip(window);
}

bool RecordedControls::SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  if (journal.Enter("SetToolTipWidth", pixels)) return false;
  return QtControls::SetToolTipWidth(window, pixels);
}

bool RecordedControls::SetToolTipTime(WindowHandle window, std::int32_t ms) {
  if (journal.Enter("SetToolTipTime", ms)) return false;
  return QtControls::SetToolTipTime(window, ms);
}

bool RecordedControls::ActivateToolTip(WindowHandle window, bool active) {
  if (journal.Enter("ActivateToolTip")) return false;
  return QtControls::ActivateToolTip(window, active);
}

bool RecordedControls::AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                  const std::string& text) {
  if (journal.Enter("AddTabTool", id, tab)) return false;
  return QtControls::AddTabTool(window, id, tab, text);
}

bool RecordedControls::AddTool(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("AddTool", id)) return false;
  return QtControls::AddTool(window, id);
}

bool RecordedControls::EnableToolTips(WindowHandle window) {
  if (journal.Enter("EnableToolTips")) return false;
  return QtControls::EnableToolTips(window);
}

}  // namespace platform::simulation
