// Windows and controls on Qt, off the screen, inside a simulated machine: the operations that a
// test may want in order or may want to fail go through the machine's journal first. What this
// screen lacks (a notification area, colours and a size that are the same everywhere) is kept here.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "app/platform/qt/qt_controls.h"
#include "app/platform/qt/qt_desktop.h"
#include "app/platform/simulation/journal.h"
#include "app/platform/simulation/scheduler.h"
#include "tests/person/screen.h"

namespace platform::simulation {

struct RunningDialog {
  const DialogTemplate* dialog = nullptr;
  WindowListener* listener = nullptr;
};

struct MenuEntry {
  std::string text;
  std::uint32_t command = 0;
};

class RecordedDesktop final : public qt::QtDesktop {
 public:
  RecordedDesktop(Scheduler& scheduler, Journal& journal)
      : scheduler(scheduler), journal(journal) {}

  std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                           std::uint32_t type) override;
  void DismissBoxesOfOtherThreads() override {
    othersRefused = true;
    QtDesktop::DismissBoxesOfOtherThreads();
  }
  void Tell(const std::string& text) override { told.push_back(text); }
  std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                         WindowListener& listener) override;
  bool EndDialog(WindowHandle window, std::int32_t result) override {
    return !journal.Enter("EndDialog", result) && QtDesktop::EndDialog(window, result);
  }
  bool ShowWindow(WindowHandle window, std::int32_t command) override {
    return !journal.Enter("ShowWindow", command) && QtDesktop::ShowWindow(window, command);
  }
  bool SetForegroundWindow(WindowHandle window) override {
    return !journal.Enter("SetForegroundWindow") && QtDesktop::SetForegroundWindow(window);
  }
  bool SetWindowIcon(WindowHandle window, IconHandle picture, bool large) override {
    if (journal.Enter("SetWindowIcon", large ? "large" : "small")) return false;
    icons[{window, large}] = picture;
    return QtDesktop::SetWindowIcon(window, picture, large);
  }
  bool InvalidateRect(WindowHandle window, const Rect& rect) override {
    return !journal.Enter("InvalidateRect") && QtDesktop::InvalidateRect(window, rect);
  }
  bool UpdateWindow(WindowHandle window) override {
    return !journal.Enter("UpdateWindow") && QtDesktop::UpdateWindow(window);
  }
  bool GetDesktopRect(Rect* rect) override {
    *rect = desktop;
    return !journal.Enter("GetDesktopRect");
  }
  Colour GetSysColor(std::int32_t index) override;
  std::uint16_t GetKeyState(std::uint8_t vk) override {
    return QtDesktop::GetKeyState(vk) | (keysToggled ? 1 : 0);
  }
  bool GetCursorPos(Point* point) override {
    *point = {512, 384};
    return !journal.Enter("GetCursorPos");
  }
  bool PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                    std::intptr_t lParam) override {
    return !journal.Enter("PostMessageA", message) &&
           QtDesktop::PostMessageA(window, message, wParam, lParam);
  }
  std::uint32_t SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) override {
    return journal.Enter("SetTimer", id, ms) ? 0 : QtDesktop::SetTimer(window, id, ms);
  }
  bool KillTimer(WindowHandle window, std::uint32_t id) override {
    return !journal.Enter("KillTimer", id) && QtDesktop::KillTimer(window, id);
  }
  bool SleepTimer(WindowHandle window, std::uint32_t id) override {
    return !journal.Enter("SleepTimer", id) && QtDesktop::SleepTimer(window, id);
  }
  bool WakeTimer(WindowHandle window, std::uint32_t id) override {
    return !journal.Enter("WakeTimer", id) && QtDesktop::WakeTimer(window, id);
  }
  HookHandle SetWindowsHookExA(std::int32_t kind, HookProc procedure) override {
    return journal.Enter("SetWindowsHookExA") ? 0 : QtDesktop::SetWindowsHookExA(kind, procedure);
  }
  bool UnhookWindowsHookEx(HookHandle hook) override {
    return !journal.Enter("UnhookWindowsHookEx") && QtDesktop::UnhookWindowsHookEx(hook);
  }
  IconHandle LoadIconA(std::uint32_t id) override {
    if (journal.Enter("LoadIconA", id)) return 0;
    const IconHandle loaded = QtDesktop::LoadIconA(id);
    if (loaded != 0) pictures[loaded] = id;
    return loaded;
  }
  bool DestroyIcon(IconHandle picture) override {
    return !journal.Enter("DestroyIcon") && QtDesktop::DestroyIcon(picture);
  }
  BitmapHandle LoadBitmapA(std::uint32_t id) override {
    return journal.Enter("LoadBitmapA", id) ? 0 : QtDesktop::LoadBitmapA(id);
  }
  bool Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) override;
  bool SetNotifyIconMenu(WindowHandle window, std::uint32_t id,
                         std::span<const MenuItem> items) override;
  bool TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items, std::uint32_t flags,
                      Point screen) override;

  // The number of a picture, 0 for none.
  std::uint32_t PictureOf(IconHandle handle) const;
  // Of the dialog at that place of `dialogs`: they and their windows come and go in one order.
  WindowHandle HandleOf(std::size_t dialog);

  std::vector<RunningDialog> dialogs;                         // the newest last
  std::map<std::pair<WindowHandle, bool>, IconHandle> icons;  // and whether it is the large one
  std::deque<std::int32_t> answers;                           // of the boxes to come
  std::vector<ShownMessageBox> boxes;                         // all that were shown
  std::vector<std::string> told;
  std::size_t menusShown = 0;
  bool keysToggled = false;  // all of them: pressed an odd number of times
  Rect desktop{0, 0, 1024, 768};
  std::map<std::int32_t, Colour> colours;  // that differ from the usual ones
  bool iconShown = false;
  NOTIFYICONDATA icon;
  std::vector<MenuEntry> iconMenu;

 private:
  // Those of the published dialogs, whatever fonts are there.
  qt::DialogUnits UnitsOf(const QFont&) const override { return {1.5, 1.625}; }
  bool HasIcon(WindowHandle window, std::uint32_t id) const {
    return iconShown && window == icon.hWnd && id == icon.uID;
  }

  Scheduler& scheduler;
  Journal& journal;
  std::map<IconHandle, std::uint32_t> pictures;
  bool othersRefused = false;
};

class RecordedControls final : public qt::QtControls {
 public:
  RecordedControls(qt::WindowTable& windows, Journal& journal)
      : QtControls(windows), journal(journal) {}

  bool SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                     std::uint32_t flags) override {
    return !journal.Enter("SetControlPos", id, flags) &&
           QtControls::SetControlPos(window, id, rect, flags);
  }
  DeferHandle BeginDeferWindowPos(std::int32_t count) override {
    return journal.Enter("BeginDeferWindowPos", count) ? 0 : QtControls::BeginDeferWindowPos(count);
  }
  DeferHandle DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                             const Rect& rect, std::uint32_t flags) override {
    return journal.Enter("DeferWindowPos", id, flags)
               ? 0
               : QtControls::DeferWindowPos(defer, window, id, rect, flags);
  }
  bool EndDeferWindowPos(DeferHandle defer) override {
    return !journal.Enter("EndDeferWindowPos") && QtControls::EndDeferWindowPos(defer);
  }
  bool InvalidateControl(WindowHandle window, std::uint32_t id) override {
    if (journal.Enter("InvalidateControl", id)) return false;
    ++looks[{window, id}].redraws;
    return QtControls::InvalidateControl(window, id);
  }
  bool ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) override {
    return !journal.Enter("ShowControl", id, command) &&
           QtControls::ShowControl(window, id, command);
  }
  bool PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) override {
    return !journal.Enter("PostControlMessage", id, message) &&
           QtControls::PostControlMessage(window, id, message);
  }
  std::int32_t ComboAddString(WindowHandle window, std::uint32_t id,
                              const std::string& text) override {
    return journal.Enter("ComboAddString", id) ? -1 : QtControls::ComboAddString(window, id, text);
  }
  bool ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    return !journal.Enter("ComboSetCurSel", id, row) && QtControls::ComboSetCurSel(window, id, row);
  }
  bool ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                          std::int32_t width) override {
    return !journal.Enter("ListSetColumnWidth", id, column) &&
           QtControls::ListSetColumnWidth(window, id, column, width);
  }
  bool ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    return !journal.Enter("ListEnsureVisible", id, row) &&
           QtControls::ListEnsureVisible(window, id, row);
  }
  bool ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                          std::vector<std::int32_t>* order) override {
    return !journal.Enter("ListGetColumnOrder") &&
           QtControls::ListGetColumnOrder(window, id, order);
  }
  bool TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab, Rect* rect) override;
  bool SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) override {
    if (journal.Enter("SetPicture", id)) return false;
    looks[{window, id}].picture = bitmap;
    return QtControls::SetPicture(window, id, bitmap);
  }
  bool SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) override {
    looks[{window, id}].textColour = colour;
    return QtControls::SetTextColour(window, id, colour);
  }
  bool SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) override {
    looks[{window, id}].backgroundColour = colour;
    return QtControls::SetBackgroundColour(window, id, colour);
  }
  bool SetHandCursor(WindowHandle window, std::uint32_t id) override {
    return !journal.Enter("SetHandCursor") && QtControls::SetHandCursor(window, id);
  }
  bool CreateToolTip(WindowHandle window) override {
    return !journal.Enter("CreateToolTip") && QtControls::CreateToolTip(window);
  }
  bool SetToolTipWidth(WindowHandle window, std::int32_t pixels) override {
    return !journal.Enter("SetToolTipWidth", pixels) && QtControls::SetToolTipWidth(window, pixels);
  }
  bool SetToolTipTime(WindowHandle window, std::int32_t ms) override {
    return !journal.Enter("SetToolTipTime", ms) && QtControls::SetToolTipTime(window, ms);
  }
  bool ActivateToolTip(WindowHandle window, bool active) override {
    return !journal.Enter("ActivateToolTip") && QtControls::ActivateToolTip(window, active);
  }
  bool AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                  const std::string& text) override {
    return !journal.Enter("AddTabTool", id, tab) && QtControls::AddTabTool(window, id, tab, text);
  }
  bool AddTool(WindowHandle window, std::uint32_t id) override {
    return !journal.Enter("AddTool", id) && QtControls::AddTool(window, id);
  }
  bool EnableToolTips(WindowHandle window) override {
    return !journal.Enter("EnableToolTips") && QtControls::EnableToolTips(window);
  }

  // What the program gave a control to be seen with.
  struct Looks {
    BitmapHandle picture = 0;
    Colour textColour = 0;
    Colour backgroundColour = 0;
    std::uint32_t redraws = 0;
  };
  std::map<std::pair<WindowHandle, std::uint32_t>, Looks> looks;

 private:
  Journal& journal;
};

}  // namespace platform::simulation
