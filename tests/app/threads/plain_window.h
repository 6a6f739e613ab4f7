// A window without a screen, for a program on real threads: keeps the texts, checks, rows and
// positions that are set, from whichever thread, and shows nothing. What the person does is a
// function that is called on the user interface's thread while the window is open, another one
// while a dialog is open in front of it.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "app/platform/controls.h"
#include "app/platform/desktop.h"
#include "app/platform/shell.h"

namespace platform {

class PlainWindow final : public Desktop, public Controls, public Shell {
 public:
  // What the person does, and then closes the window.
  std::function<void()> person;
  // What the person does in a dialog, which is then closed, unless that has ended it. Null:
  // nothing.
  std::function<void(WindowListener& dialog)> personInDialog;
  std::int32_t answer = 0;  // to every box

  // ---- The person's acts, on the user interface's thread.

  void Click(std::uint32_t id) {
    {
      const std::lock_guard guard(mutex);
      if (kinds[id] == ControlKind::CheckBox) checks[id] = !checks[id];
    }
    listener->OnNotice(id, Notice::Clicked, 0);
  }
  void Choose(std::uint32_t id, const std::string& text) {
    const std::int32_t row = ComboFindStringExact(kWindow, id, text);
    if (row == kNoRow) return;
    ComboSetCurSel(kWindow, id, row);
    listener->OnNotice(id, Notice::SelectionChanged, row);
  }
  void ChooseTab(std::uint32_t id, std::int32_t tab) {
    TabSetCurSel(kWindow, id, tab);
    listener->OnNotice(id, Notice::SelectionChanged, tab);
  }
  void MoveSlider(std::uint32_t id, std::int32_t position) {
    SliderSetPos(kWindow, id, position);
    listener->OnNotice(id, Notice::Scrolled, position);
  }
  void TypeAndLeave(std::uint32_t id, const std::string& text) {
    SetDlgItemTextA(kWindow, id, text);
    listener->OnNotice(id, Notice::FocusLost, 0);
  }
  // Hands on what was posted.
  void Pump() {
    for (;;) {
      std::tuple<std::uint32_t, std::uintptr_t, std::intptr_t> message;
      {
        const std::lock_guard guard(mutex);
        if (posted.empty()) return;
        message = posted.front();
        posted.pop_front();
      }
      listener->OnMessage(std::get<0>(message), std::get<1>(message), std::get<2>(message));
    }
  }

  // ---- What the program uses.

  std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                         WindowListener& dialogListener) override {
    if (owner != kNoWindow) {
      dialogResult = 0;
      dialogListener.OnInitDialog(kDialog);
      if (personInDialog && dialogResult == 0) personInDialog(dialogListener);
      if (dialogResult == 0) dialogListener.OnClose();
      dialogListener.OnDestroy();
      return dialogResult;
    }
    for (const ControlTemplate& control : dialog.controls) kinds[control.id] = control.kind;
    listener = &dialogListener;
    ended = false;
    lists.clear();
    posted.clear();
    listener->OnInitDialog(kWindow);
    if (!ended) person();
    if (!ended) listener->OnClose();
    listener->OnDestroy();
    return IDCANCEL;
  }
  bool EndDialog(WindowHandle window, std::int32_t result) override {
    if (window == kWindow) {
      ended = true;
    } else {
      dialogResult = result;
    }
    return true;
  }
  bool PostMessageA(WindowHandle, std::uint32_t message, std::uintptr_t wParam,
                    std::intptr_t lParam) override {
    const std::lock_guard guard(mutex);
    posted.emplace_back(message, wParam, lParam);
    return true;
  }
  std::int32_t MessageBoxA(WindowHandle, const std::string& text, const std::string&,
                           std::uint32_t) override {
    const std::lock_guard guard(mutex);
    boxes.push_back(text);
    return answer;
  }
  void DismissBoxesOfOtherThreads() override {}  // each is answered at once
  std::uint32_t SetTimer(WindowHandle, std::uint32_t id, std::uint32_t) override { return id; }
  IconHandle LoadIconA(std::uint32_t id) override { return id; }
  bool Shell_NotifyIconA(std::uint32_t, const NOTIFYICONDATA&) override { return true; }
  std::string GetCommandLineA(char) override { return "kelvaro"; }
  bool ChooseFile(WindowHandle, const std::string&, bool, const std::string&,
                  std::string*) override {
    return false;
  }
  bool ChooseFolder(WindowHandle, const std::string&, const std::string&, std::string*) override {
    return false;
  }

  bool HasControl(WindowHandle, std::uint32_t id) override { return kinds.count(id) != 0; }
  bool SetDlgItemTextA(WindowHandle, std::uint32_t id, const std::string& text) override {
    const std::lock_guard guard(mutex);
    texts[id] = text;
    return true;
  }
  std::string GetDlgItemTextA(WindowHandle, std::uint32_t id) override {
    const std::lock_guard guard(mutex);
    return texts[id];
  }
  bool CheckDlgButton(WindowHandle, std::uint32_t id, bool checked) override {
    const std::lock_guard guard(mutex);
    checks[id] = checked;
    return true;
  }
  bool IsDlgButtonChecked(WindowHandle, std::uint32_t id) override {
    const std::lock_guard guard(mutex);
    return checks[id];
  }

  // Of the user interface's thread alone. Drop lists keep the order of their filling.
  std::int32_t ComboAddString(WindowHandle, std::uint32_t id, const std::string& text) override {
    lists[id].rows.emplace_back(text, 0);
    return ComboGetCount(kWindow, id) - 1;
  }
  bool ComboDeleteString(WindowHandle, std::uint32_t id, std::int32_t row) override {
    lists[id].rows.erase(lists[id].rows.begin() + row);
    lists[id].current = kNoRow;
    return true;
  }
  bool ComboResetContent(WindowHandle, std::uint32_t id) override {
    lists[id] = {};
    return true;
  }
  std::int32_t ComboGetCount(WindowHandle, std::uint32_t id) override {
    return static_cast<std::int32_t>(lists[id].rows.size());
  }
  std::string ComboGetLBText(WindowHandle, std::uint32_t id, std::int32_t row) override {
    return lists[id].rows.at(static_cast<std::size_t>(row)).first;
  }
  std::int32_t ComboFindString(WindowHandle window, std::uint32_t id,
                               const std::string& text) override {
    return ComboFindStringExact(window, id, text);
  }
  std::int32_t ComboFindStringExact(WindowHandle, std::uint32_t id,
                                    const std::string& text) override {
    const auto& rows = lists[id].rows;
    for (std::size_t row = 0; row < rows.size(); ++row) {
      if (rows[row].first == text) return static_cast<std::int32_t>(row);
    }
    return kNoRow;
  }
  bool ComboSetCurSel(WindowHandle, std::uint32_t id, std::int32_t row) override {
    lists[id].current = row;
    return true;
  }
  std::int32_t ComboGetCurSel(WindowHandle, std::uint32_t id) override { return lists[id].current; }
  bool ComboSetItemData(WindowHandle, std::uint32_t id, std::int32_t row,
                        std::int32_t data) override {
    lists[id].rows.at(static_cast<std::size_t>(row)).second = data;
    return true;
  }
  std::int32_t ComboGetItemData(WindowHandle, std::uint32_t id, std::int32_t row) override {
    return lists[id].rows.at(static_cast<std::size_t>(row)).second;
  }
  // Of one list view.
  std::int32_t ListInsertItem(WindowHandle, std::uint32_t, std::uint32_t data) override {
    items.push_back({data, false});
    return static_cast<std::int32_t>(items.size()) - 1;
  }
  bool ListDeleteAllItems(WindowHandle, std::uint32_t) override {
    items.clear();
    return true;
  }
  std::int32_t ListGetItemCount(WindowHandle, std::uint32_t) override {
    return static_cast<std::int32_t>(items.size());
  }
  std::uint32_t ListGetItemData(WindowHandle, std::uint32_t, std::int32_t row) override {
    return items.at(static_cast<std::size_t>(row)).first;
  }
  bool ListSelectItem(WindowHandle, std::uint32_t, std::int32_t row, bool selected) override {
    items.at(static_cast<std::size_t>(row)).second = selected;
    return true;
  }
  std::int32_t ListGetNextSelected(WindowHandle, std::uint32_t, std::int32_t after) override {
    for (std::size_t row = static_cast<std::size_t>(after + 1); row < items.size(); ++row) {
      if (items[row].second) return static_cast<std::int32_t>(row);
    }
    return kNoRow;
  }
  bool TabSetCurSel(WindowHandle, std::uint32_t, std::int32_t tab) override {
    currentTab = tab;
    return true;
  }
  std::int32_t TabGetCurSel(WindowHandle, std::uint32_t) override { return currentTab; }
  bool SliderSetPos(WindowHandle, std::uint32_t id, std::int32_t position) override {
    positions[id] = position;
    return true;
  }
  std::int32_t SliderGetPos(WindowHandle, std::uint32_t id) override { return positions[id]; }

  // ---- Of no effect.

  void Tell(const std::string&) override {}
  bool ShowWindow(WindowHandle, std::int32_t) override { return true; }
  bool IsWindowVisible(WindowHandle) override { return true; }
  bool IsIconic(WindowHandle) override { return false; }
  bool IsZoomed(WindowHandle) override { return false; }
  bool SetForegroundWindow(WindowHandle) override { return true; }
  bool SetWindowTextA(WindowHandle, const std::string&) override { return true; }
  bool SetWindowIcon(WindowHandle, IconHandle, bool) override { return true; }
  bool GetWindowRect(WindowHandle, Rect*) override { return false; }
  bool GetClientRect(WindowHandle, Rect*) override { return false; }
  bool MoveWindow(WindowHandle, const Rect&) override { return true; }
  bool InvalidateRect(WindowHandle, const Rect&) override { return true; }
  bool UpdateWindow(WindowHandle) override { return true; }
  bool GetDesktopRect(Rect*) override { return false; }
  std::int32_t GetSystemMetrics(std::int32_t) override { return {}; }
  Colour GetSysColor(std::int32_t) override { return {}; }
  bool GetCursorPos(Point*) override { return false; }
  std::uint16_t GetKeyState(std::uint8_t) override { return {}; }
  bool KillTimer(WindowHandle, std::uint32_t) override { return true; }
  HookHandle SetWindowsHookExA(std::int32_t, HookProc) override { return {}; }
  bool UnhookWindowsHookEx(HookHandle) override { return true; }
  std::intptr_t CallNextHookEx(HookHandle, std::int32_t, std::uintptr_t, std::intptr_t) override {
    return {};
  }
  bool DestroyIcon(IconHandle) override { return true; }
  BitmapHandle LoadBitmapA(std::uint32_t) override { return {}; }
  bool SetNotifyIconMenu(WindowHandle, std::uint32_t, std::span<const MenuItem>) override {
    return true;
  }
  bool TrackPopupMenu(WindowHandle, std::span<const MenuItem>, std::uint32_t, Point) override {
    return true;
  }
  bool GetControlRect(WindowHandle, std::uint32_t, Rect*) override { return false; }
  bool SetControlPos(WindowHandle, std::uint32_t, const Rect&, std::uint32_t) override {
    return true;
  }
  DeferHandle BeginDeferWindowPos(std::int32_t) override { return 1; }
  DeferHandle DeferWindowPos(DeferHandle, WindowHandle, std::uint32_t, const Rect&,
                             std::uint32_t) override {
    return 1;
  }
  bool EndDeferWindowPos(DeferHandle) override { return true; }
  bool InvalidateControl(WindowHandle, std::uint32_t) override { return true; }
  bool ShowControl(WindowHandle, std::uint32_t, std::int32_t) override { return true; }
  bool IsControlVisible(WindowHandle, std::uint32_t) override { return true; }
  bool EnableControl(WindowHandle, std::uint32_t, bool) override { return true; }
  bool IsControlEnabled(WindowHandle, std::uint32_t) override { return true; }
  bool SetControlFocus(WindowHandle, std::uint32_t) override { return true; }
  std::uint32_t GetControlFocus(WindowHandle) override { return {}; }
  bool SetDefaultButton(WindowHandle, std::uint32_t) override { return true; }
  bool PostControlMessage(WindowHandle, std::uint32_t, std::uint32_t) override { return true; }
  bool SetCaret(WindowHandle, std::uint32_t, std::uint32_t) override { return true; }
  std::int32_t ListInsertColumn(WindowHandle, std::uint32_t, const std::string&,
                                std::int32_t) override {
    return {};
  }
  std::int32_t ListGetColumnWidth(WindowHandle, std::uint32_t, std::int32_t) override { return {}; }
  bool ListSetColumnWidth(WindowHandle, std::uint32_t, std::int32_t, std::int32_t) override {
    return true;
  }
  bool ListGetColumnOrder(WindowHandle, std::uint32_t, std::vector<std::int32_t>*) override {
    return false;
  }
  bool ListSetColumnOrder(WindowHandle, std::uint32_t, const std::vector<std::int32_t>&) override {
    return true;
  }
  std::int32_t ListGetClientWidth(WindowHandle, std::uint32_t) override { return {}; }
  bool ListSetItemText(WindowHandle, std::uint32_t, std::int32_t, std::int32_t,
                       const std::string&) override {
    return true;
  }
  std::string ListGetItemText(WindowHandle, std::uint32_t, std::int32_t, std::int32_t) override {
    return {};
  }
  bool ListEnsureVisible(WindowHandle, std::uint32_t, std::int32_t) override { return true; }
  std::int32_t TabInsertItem(WindowHandle, std::uint32_t, const std::string&) override {
    return {};
  }
  bool TabGetItemRect(WindowHandle, std::uint32_t, std::int32_t, Rect*) override { return false; }
  bool SliderSetRange(WindowHandle, std::uint32_t, std::int32_t, std::int32_t) override {
    return true;
  }
  bool SliderSetTicFreq(WindowHandle, std::uint32_t, std::int32_t) override { return true; }
  bool SetPicture(WindowHandle, std::uint32_t, BitmapHandle) override { return true; }
  bool SetControlFont(WindowHandle, std::uint32_t, const std::string&, std::int32_t, std::int32_t,
                      bool) override {
    return true;
  }
  bool SetTextColour(WindowHandle, std::uint32_t, Colour) override { return true; }
  bool SetBackgroundColour(WindowHandle, std::uint32_t, Colour) override { return true; }
  bool SetHandCursor(WindowHandle, std::uint32_t) override { return true; }
  bool CreateToolTip(WindowHandle) override { return true; }
  bool SetToolTipWidth(WindowHandle, std::int32_t) override { return true; }
  bool SetToolTipTime(WindowHandle, std::int32_t) override { return true; }
  bool ActivateToolTip(WindowHandle, bool) override { return true; }
  bool AddTabTool(WindowHandle, std::uint32_t, std::int32_t, const std::string&) override {
    return true;
  }
  bool AddTool(WindowHandle, std::uint32_t) override { return true; }
  bool EnableToolTips(WindowHandle) override { return true; }
  std::intptr_t ShellExecuteA(const std::string&) override { return {}; }
  bool MessageBeep(std::uint32_t) override { return true; }
  LibraryHandle LoadLibraryA(const std::string&) override { return {}; }
  HtmlHelpFunction GetHelpFunction(LibraryHandle, std::uint32_t) override { return {}; }

  std::vector<std::string> boxes;  // texts of all that came up

 private:
  static constexpr WindowHandle kWindow = 1;
  static constexpr WindowHandle kDialog = 2;

  struct List {
    std::vector<std::pair<std::string, std::int32_t>> rows;
    std::int32_t current = kNoRow;
  };

  WindowListener* listener = nullptr;
  bool ended = false;
  std::int32_t dialogResult = 0;
  std::map<std::uint32_t, ControlKind> kinds;
  std::map<std::uint32_t, List> lists;
  std::vector<std::pair<std::uint32_t, bool>> items;  // data, selected
  std::map<std::uint32_t, std::int32_t> positions;
  std::int32_t currentTab = 0;

  std::mutex mutex;  // guards what any thread may set
  std::map<std::uint32_t, std::string> texts;
  std::map<std::uint32_t, bool> checks;
  std::deque<std::tuple<std::uint32_t, std::uintptr_t, std::intptr_t>> posted;
};

}  // namespace platform
