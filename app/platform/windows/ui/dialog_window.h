// A dialog on the screen, made by the system from its template: runs until it is ended, and tells
// its listener what happens. Its many methods are the operations on a window, the messages of one,
// and what its controls tell it; all act on the one window.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/platform/hooks.h"
#include "app/platform/notices_in_turn.h"
#include "app/platform/windows/ui/control.h"
#include "app/platform/windows/ui/tool_tips.h"
#include "app/platform/windows/ui/window_table.h"

namespace platform::ui {

// What a window shares with the others. All borrowed.
struct Surroundings {
  WindowTable& windows;
  Icons& icons;
  // Handles one message of this thread, whichever window it is for.
  std::function<void(MSG&)> dispatch;
  // Whether a window has an icon that should stand for it and isn't seen anywhere.
  std::function<bool(WindowHandle)> lacksItsIcon;
  // The task bar has come, or come back.
  std::function<void()> taskBarCame;
  // Told of a window without an owner that it is up.
  std::function<void(WindowHandle)> isUp;
  // The session ends: all windows are to be closed.
  std::function<void()> closeAll;
};

class DialogWindow final : private ControlHost {
 public:
  // Borrowed; `owner` may be null.
  DialogWindow(const DialogTemplate& from, DialogWindow* owner, WindowListener& listener,
               const Surroundings& around);
  ~DialogWindow() override;

  // Null when the system could not make it.
  HWND Handle() const { return handle; }
  std::int32_t Run();
  void End(std::int32_t result);

  Control* Find(std::uint32_t id) const;  // null for a number that isn't in it
  Control* Focused() const;
  bool SetDefaultButton(std::uint32_t id);
  void FocusOn(Control& control);
  void Show(Control& control, bool show);
  void Enable(Control& control, bool enable);

  void ShowWindow(std::int32_t command);
  // Shows it for the first time, unless the program has shown or hidden it before.
  void BringUp();
  void MoveWhole(const Rect& rect);
  // An icon could be seen from now on, or no more.
  void IconCameOrWent();
  // It is minimised by the program, where it should be hidden.
  bool IsQuiet() const { return quiet > 0; }

  std::uint32_t SetTimer(std::uint32_t id, std::uint32_t ms);
  bool KillTimer(std::uint32_t id);
  bool SleepTimer(std::uint32_t id);
  bool WakeTimer(std::uint32_t id);

  void ApplyUpdates();
  // As the person does, unless the window has ended.
  void SendNotice(std::uint32_t id, Notice notice, std::int32_t value);
  void Close();
  // A message of the loop that is for it or a control of it: true when it is done with.
  bool Takes(MSG& message);
  // Calls OnDestroy, once. For the end of the session, at which nothing comes after.
  void Finish();

  ToolTips tips;
  bool EnableToolTips();

 private:
  class Quiet;
  // Due at points of time that lie whole periods behind its start, also after a pause.
  struct Timer {
    std::uint32_t period;   // ms
    std::uint32_t last;     // of these points, in ticks of the system
    std::uint32_t running;  // the period of the system's own timer; 0 while it sleeps
  };

  // ControlHost
  const Icons& AllIcons() const override { return around.icons; }
  void Notify(std::uint32_t id, Notice notice, std::int32_t value) override;
  void NotifyInTurn(std::uint32_t id, Notice notice) override;
  void PostInTurn(std::uint32_t id) override;
  bool GoesOn() override;
  void Draw(const DrawItem& item, Canvas& canvas) override;
  void FocusCame(Control& control) override { lastFocus = &control; }

  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);
  void Adopt(HWND made);
  void MakeControls();
  INT_PTR OnMessage(UINT message, WPARAM w, LPARAM l);
  std::optional<INT_PTR> OnControlMessage(UINT message, WPARAM w, LPARAM l);
  std::optional<INT_PTR> OnPlaceMessage(UINT message, WPARAM w, LPARAM l);
  INT_PTR Answer(LRESULT result);
  void OnCommand(std::uint32_t id, int code, HWND control);
  INT_PTR OnNotify(NMHDR& notice);
  void OnTimer(std::uint32_t id);
  void OnPaint();
  void OnEndSession();
  void AskForTip(NMTTDISPINFOW& wanted);
  void Go(std::uint32_t id, Timer& timer);

  bool TakesKey(std::int32_t vk, HWND target);
  void StepFocus(bool back);
  void Press(std::uint32_t id);
  Control* ControlOf(HWND window) const;

  std::optional<COLORREF> Behind(const Control& control) const;
  void EraseBackground(HDC canvas);
  void TakeLooks();

  void HandlePosted();
  void MakeRoom();
  void FirstPlace();
  void FirstFocus();
  void HideOrMinimise();

  const DialogTemplate& from;
  WindowListener& listener;
  const Surroundings around;
  const HWND owner;
  std::vector<std::unique_ptr<Control>> controls;
  std::map<std::uint32_t, Control*> byId;
  HWND handle = nullptr;
  Control* lastFocus = nullptr;
  std::optional<COLORREF> pageColour;  // of a tab's page, where that is another than the window's
  bool initialised = false;
  bool ended = false;
  bool finished = false;
  std::int32_t result = IDCANCEL;
  int quiet = 0;  // above 0: what happens is the program's doing
  NoticesInTurn inTurn;
  std::map<std::uint32_t, Timer> timers;
  std::wstring tipText;

  bool broughtUp = false;  // shown, or hidden by the program before it came to that
  bool placed = false;     // by the program, or where it was first seen
  bool hidden = false;     // by the program
  bool standsIn = false;   // minimised where it should be hidden
};

}  // namespace platform::ui
