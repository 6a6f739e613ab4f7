// A dialog on the screen, made from its template: runs until it is ended, and tells its listener
// what happens. Its many methods are the operations on a window, the events of one, and what its
// controls tell it; all act on the one widget.
#pragma once

#include <QEvent>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/hooks.h"
#include "app/platform/notices_in_turn.h"
#include "app/platform/qt/control.h"
#include "app/platform/qt/dialog_units.h"
#include "app/platform/qt/tool_tips.h"
#include "app/platform/qt/window_table.h"

namespace platform::qt {

// What a window shares with the others. All borrowed.
struct Surroundings {
  WindowTable& windows;
  Icons& icons;
  Hooks& hooks;
  // Whether a window has an icon that should stand for it and isn't seen anywhere.
  std::function<bool(WindowHandle)> lacksItsIcon;
  // Told of a window without an owner that it is up.
  std::function<void(WindowHandle)> isUp;
  // Called when a window has been set up, before its first message: closes it if the program was
  // asked to end meanwhile.
  std::function<void()> isSetUp;
  // What a dialog unit is in a window of that font.
  std::function<DialogUnits(const QFont&)> units;
};

// A call that waits for its turn among the messages of a window.
class PostedCall : public QEvent {
 public:
  explicit PostedCall(std::function<void(DialogWindow&)> act)
      : QEvent(kType), act(std::move(act)) {}
  static const Type kType;
  const std::function<void(DialogWindow&)> act;
};

// Due at points of time that lie whole periods behind its start, also after a pause.
class WindowTimer {
 public:
  explicit WindowTimer(std::uint32_t ms);
  void Go();  // to the next of these points

  QTimer next;

 private:
  const std::uint32_t period;  // ms
  std::uint32_t last;          // of these points, in ticks of the clock
};

class DialogWindow final : public QWidget, private ControlHost {
 public:
  // All borrowed; `owner` may be null.
  DialogWindow(const DialogTemplate& from, DialogWindow* owner, WindowListener& listener,
               const Surroundings& around);
  ~DialogWindow() override;

  std::int32_t Run();
  void End(std::int32_t result);

  // Null for a number that isn't in it.
  Control* Find(std::uint32_t id) const;
  Control* Focused() const;
  std::uint32_t DefaultButton() const { return defaultButton; }
  bool SetDefaultButton(std::uint32_t id);
  void FocusOn(Control& control);
  void Show(Control& control, bool show);
  void Enable(Control& control, bool enable);

  void ShowWindow(std::int32_t command);
  // Shows it for the first time, unless the program has shown or hidden it before.
  void BringUp();
  bool IsShown() const { return isVisible() || shownIconic; }
  bool IsIconic() const { return iconic; }
  bool IsZoomed() const { return zoomed && !iconic; }
  Rect WholeRect() const;
  void MoveWhole(const Rect& rect);
  // An icon could be seen from now on, or no more.
  void IconCameOrWent();

  std::uint32_t SetTimer(std::uint32_t id, std::uint32_t ms);
  bool KillTimer(std::uint32_t id);
  bool SleepTimer(std::uint32_t id);
  bool WakeTimer(std::uint32_t id);

  void ApplyUpdates();
  // As the person does, unless the window has ended.
  void SendMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam);
  void SendNotice(std::uint32_t id, Notice notice, std::int32_t value);
  void Close();

  WindowHandle Handle() const { return handle; }

  ToolTips tips;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  class Quiet;

  // ControlHost
  QWidget* Inside() override { return this; }
  const Icons& AllIcons() const override { return around.icons; }
  QColor Behind(const Control& control) const override;
  void Notify(std::uint32_t id, Notice notice, std::int32_t value) override;
  void NotifyInTurn(std::uint32_t id, Notice notice) override;
  bool GoesOn() override;
  void Draw(const DrawItem& item, Canvas& canvas) override;
  void FocusMoved() override;

  void MakeInside(const DialogTemplate& from);
  void Describe();
  void ApplyLimits();
  void MakeRoom();
  void FirstPlace();
  void Put(const QPoint& corner);
  void CorrectPlace();
  void FirstFocus();
  void TellSize(std::uint32_t type, const QSize& size);
  void Press(Control& button);
  void PressEnter();
  void PressEscape();
  bool ShowTip(const QPoint& inside, const QPoint& screen);
  QString TipAt(const Control& control, const QPoint& at, QRect* place);
  bool IsGrip(const QPoint& screen);
  void Minimise();
  void HideOrMinimise();

  WindowListener& listener;
  const Surroundings around;
  const std::uint32_t style;
  std::vector<std::unique_ptr<Control>> controls;
  std::map<std::uint32_t, Control*> byId;
  WindowHandle handle = kNoWindow;
  QEventLoop loop;
  bool initialised = false;
  bool ended = false;
  std::int32_t result = IDCANCEL;
  std::uint32_t defaultButton = 0;
  int quiet = 0;  // above 0: what happens is the program's doing
  NoticesInTurn inTurn;
  std::map<std::uint32_t, std::unique_ptr<WindowTimer>> timers;
  std::vector<std::uint32_t> timersDue;

  bool broughtUp = false;       // shown, or hidden by the program before it came to that
  bool placed = false;          // by the program, or where it was first seen
  std::optional<QPoint> asked;  // where it is to come up
  bool iconic = false;          // minimised, shown or not
  bool zoomed = false;          // maximised, or was so before it was minimised
  bool shownIconic = false;     // to be shown minimised, unless it is restored at once
  bool hidden = false;          // by the program
  bool standsIn = false;        // minimised where it should be hidden
};

}  // namespace platform::qt
