#include "app/platform/qt/dialog_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/platform/clock.h"
#include "app/platform/qt/accessible.h"
#include "app/platform/qt/control_maker.h"
#include "app/platform/qt/edits.h"
#include "app/platform/qt/list_view.h"
#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/tab_control.h"
#include "app/platform/qt/text.h"
#include "app/platform/qt/unused_memory.h"
#include "app/platform/qt/virtual_keys.h"

namespace platform::qt {
namespace {

// The desktop is done with a window that hides.
constexpr int kUntilSettled = 1000;  // ms

Qt::WindowFlags FlagsOf(std::uint32_t style, bool owned) {
  Qt::WindowFlags flags = owned ? Qt::Dialog : Qt::Window;
  flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowCloseButtonHint;
  if (style & kWindowMinimiseBox) flags |= Qt::WindowMinimizeButtonHint;
  if (style & kWindowMaximiseBox) flags |= Qt::WindowMaximizeButtonHint;
  return flags;
}

// Notices from the middle of something else, where no other notice may come in between.
bool IsInPassing(Notice notice) {
  return notice == Notice::Painted || notice == Notice::HeaderItemChanging ||
         notice == Notice::HeaderItemChanged;
}

// The window doesn't get the keys of such a control, used or not. The list reports its keys itself.
bool TakesAllKeys(ControlKind kind) {
  return kind == ControlKind::Edit || kind == ControlKind::TextArea ||
         kind == ControlKind::ListView;
}

}  // namespace

const QEvent::Type PostedCall::kType = static_cast<QEvent::Type>(QEvent::registerEventType());

// While one lives, the program isn't told of changes of the focus.
class DialogWindow::Quiet {
 public:
  explicit Quiet(DialogWindow& window) : window(window) { ++window.quiet; }
  ~Quiet() { --window.quiet; }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  DialogWindow& window;
};

DialogWindow::DialogWindow(const DialogTemplate& from, DialogWindow* owner,
                           WindowListener& listener, const Surroundings& around)
    : QWidget(owner, FlagsOf(from.style, owner != nullptr)),
      listener(listener),
      around(around),
      style(from.style) {
  InstallAccessible();
  setWindowTitle(Shown(from.title));
  if (owner) {
    setWindowModality(Qt::WindowModal);
    setWindowIcon(owner->windowIcon());
  }
  setMouseTracking(true);
  MakeInside(from);
  std::set<std::uint32_t> ids;
  for (const auto& entry : byId) ids.insert(entry.first);
  handle = around.windows.Add(this, std::move(ids));
}

DialogWindow::~DialogWindow() {
  ended = true;
  around.windows.Remove(handle);
  for (const auto& control : controls) delete control->Widget();
}

void DialogWindow::MakeInside(const DialogTemplate& from) {
  const DialogUnits units = around.units(font());
  controls = MakeControls(*this, from.controls);
  for (std::size_t i = 0; i < controls.size(); ++i) {
    const ControlTemplate& row = from.controls[i];
    controls[i]->Widget()->setGeometry(units.PlaceOf(row));
    byId[row.id] = controls[i].get();
    if (row.style & kStyleDefault) defaultButton = row.id;
  }
  const QSize size = units.SizeOf(from);
  if (style & kWindowResizable) {
    resize(size);
  } else {
    setFixedSize(size);
  }
  FocusMoved();
}

std::int32_t DialogWindow::Run() {
  listener.OnInitDialog(handle);
  initialised = true;
  if (!ended) Describe();
  if (!ended) around.isSetUp();
  if (!ended) {
    MakeRoom();
    ApplyLimits();
    // A message may hide it; then it begins hidden.
    QCoreApplication::sendPostedEvents(this, PostedCall::kType);
  }
  if (!ended) {
    BringUp();
    if (!parentWidget()) around.isUp(handle);
    loop.exec();
    // The application ends, and nobody has ended this window.
    if (!ended) listener.OnClose();
  }
  ended = true;
  const Quiet silent(*this);
  hide();
  timers.clear();
  listener.OnDestroy();
  return result;
}

void DialogWindow::End(std::int32_t with) {
  result = with;
  ended = true;
  loop.exit();
}

Control* DialogWindow::Find(std::uint32_t id) const {
  const auto found = byId.find(id);
  return found == byId.end() ? nullptr : found->second;
}

Control* DialogWindow::Focused() const {
  const QWidget* const focused = focusWidget();
  if (!focused) return nullptr;
  for (const auto& control : controls) {
    if (control->Widget() == focused || control->Widget()->isAncestorOf(focused)) {
      return control.get();
    }
  }
  return nullptr;
}

QColor DialogWindow::Behind(const Control& control) const {
  for (const auto& other : controls) {
    const auto* const tabs = dynamic_cast<const TabControl*>(other.get());
    if (tabs && tabs->Widget()->geometry().contains(control.Widget()->geometry().center())) {
      return tabs->PageColour(palette());
    }
  }
  return palette().color(control.Widget()->backgroundRole());
}

void DialogWindow::FocusOn(Control& control) {
  const Quiet silent(*this);
  control.FocusWidget()->setFocus(Qt::OtherFocusReason);
}

void DialogWindow::Show(Control& control, bool show) {
  const Quiet silent(*this);
  control.Show(show);
}

void DialogWindow::Enable(Control& control, bool enable) {
  const Quiet silent(*this);
  control.Enable(enable);
}

bool DialogWindow::SetDefaultButton(std::uint32_t id) {
  const Control* const control = Find(id);
  if (!control || !control->IsPushButton()) return false;
  defaultButton = id;
  FocusMoved();
  return true;
}

// --- What happens to it

void DialogWindow::Notify(std::uint32_t id, Notice notice, std::int32_t value) {
  if (ended || handle == kNoWindow) return;
  if (!IsInPassing(notice)) inTurn.Tell(listener, ended);
  if (!ended) listener.OnNotice(id, notice, value);
}

void DialogWindow::NotifyInTurn(std::uint32_t id, Notice notice) {
  if (ended || handle == kNoWindow || quiet > 0) return;
  inTurn.Add(id, notice);
  around.windows.Post(
      handle, [](DialogWindow& window) { window.inTurn.Tell(window.listener, window.ended); });
}

bool DialogWindow::GoesOn() {
  const Control* const focused = Focused();
  const std::uint64_t askedBefore = around.windows.asked;
  inTurn.Tell(listener, ended);
  return !ended && Focused() == focused && around.windows.asked == askedBefore;
}

void DialogWindow::SendNotice(std::uint32_t id, Notice notice, std::int32_t value) {
  Notify(id, notice, value);
}

void DialogWindow::SendMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
  if (!ended) listener.OnMessage(message, wParam, lParam);
}

void DialogWindow::Close() {
  if (ended) return;
  inTurn.Tell(listener, ended);
  if (!ended) listener.OnClose();
}

void DialogWindow::Draw(const DrawItem& item, Canvas& canvas) {
  if (!ended) listener.OnDrawItem(item, canvas);
}

// A button that has the focus is the one that Enter presses.
void DialogWindow::FocusMoved() {
  const Control* const focused = Focused();
  const bool onButton = focused && focused->IsPushButton();
  for (const auto& control : controls) {
    if (!control->IsPushButton()) continue;
    control->ShowDefault(onButton ? control.get() == focused : control->id == defaultButton);
  }
}

void DialogWindow::ApplyUpdates() {
  for (const auto& [id, update] : around.windows.TakeUpdates(handle)) {
    Control* const control = Find(id);
    if (update.text) control->SetText(*update.text);
    if (update.checked) control->SetChecked(*update.checked);
    if (update.redraw) control->Widget()->update();
  }
}

bool DialogWindow::event(QEvent* event) {
  if (event->type() == PostedCall::kType) {
    static_cast<PostedCall*>(event)->act(*this);
    return true;
  }
  if (event->type() == QEvent::ToolTip) {
    auto* const help = static_cast<QHelpEvent*>(event);
    return ShowTip(help->pos(), help->globalPos());
  }
  if (event->type() == QEvent::WindowActivate) CorrectPlace();
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::Show || event->type() == QEvent::Hide ||
      event->type() == QEvent::WindowStateChange)
    around.windows.SetState(handle, isVisible(), isVisible() && isMinimized());
  return handled;
}

bool DialogWindow::ShowTip(const QPoint& inside, const QPoint& screen) {
  const QWidget* below = childAt(inside);
  while (below && below->parentWidget() != this) below = below->parentWidget();
  QString text;
  QRect place;
  for (const auto& control : controls) {
    if (!below || control->Widget() != below || ended) continue;
    place = below->rect();
    text = TipAt(*control, inside - below->pos(), &place);
    place.translate(below->pos());
  }
  tips.Show(text, screen, this, place);
  return true;
}

// A screen reader reads tips aloud.
void DialogWindow::Describe() {
  for (const auto& control : controls)
    if (tips.IsTool(control->id)) control->SetDescription(Shown(listener.OnToolTip(control->id)));
  for (const ToolTips::TabTool& tool : tips.tabTools)
    if (auto* const tabs = dynamic_cast<TabControl*>(Find(tool.control)))
      tabs->DescribeTab(tool.tab, Shown(tool.text));
}

// The tip of a part of a control, such as a tab, covers that part alone.
QString DialogWindow::TipAt(const Control& control, const QPoint& at, QRect* place) {
  if (const auto* const tabs = dynamic_cast<const TabControl*>(&control)) {
    Rect rect;
    for (std::int32_t tab = 0; tabs->TabRect(tab, &rect); ++tab) {
      const std::string* const text = tips.TabText(control.id, tab);
      if (!text || !RectOf(rect).contains(at)) continue;
      *place = RectOf(rect);
      return Shown(*text);
    }
  }
  if (const auto* const list = dynamic_cast<const ListView*>(&control)) {
    QString whole = list->CutText(at, place);
    if (!whole.isEmpty()) return whole;
  }
  return tips.IsTool(control.id) ? Shown(listener.OnToolTip(control.id)) : QString();
}

// --- Keys

void DialogWindow::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      PressEnter();
      break;
    case Qt::Key_Escape:
      PressEscape();
      break;
    case Qt::Key_F1:
      Notify(0, Notice::KeyDown, VirtualKey(*event));
      break;
    default:
      event->ignore();
      if (const Control* const focused = Focused(); !focused || !TakesAllKeys(focused->kind)) {
        Notify(0, Notice::KeyDown, VirtualKey(*event));
      }
  }
}

void DialogWindow::Press(Control& button) {
  if (button.IsEnabled()) Notify(button.id, Notice::Clicked, 0);
}

void DialogWindow::PressEnter() {
  Control* button = Focused();
  if (!button || !button->IsPushButton()) button = Find(defaultButton);
  if (button) Press(*button);
}

void DialogWindow::PressEscape() {
  const Control* const button = Find(IDCANCEL);
  if (!button || button->IsEnabled()) Notify(IDCANCEL, Notice::Clicked, 0);
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  Close();
}

// --- Its background and its grip

void DialogWindow::paintEvent(QPaintEvent*) {
  if (!initialised || ended) return;
  QPainter painter(this);
  QtCanvas canvas(painter, *this, around.icons);
  listener.OnPaint(canvas);
}

bool DialogWindow::IsGrip(const QPoint& screen) {
  return !ended && (style & kWindowResizable) && !isMaximized() &&
         listener.OnNcHitTest({screen.x(), screen.y()}) == HTBOTTOMRIGHT;
}

void DialogWindow::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && IsGrip(event->globalPosition().toPoint())) {
    windowHandle()->startSystemResize(Qt::RightEdge | Qt::BottomEdge);
  }
}

void DialogWindow::mouseMoveEvent(QMouseEvent* event) {
  if (IsGrip(event->globalPosition().toPoint())) {
    setCursor(Qt::SizeFDiagCursor);
  } else {
    unsetCursor();
  }
}

// --- Place and size

// A text of several lines may be longer than the template allows: controls below it make room.
void DialogWindow::MakeRoom() {
  if (style & kWindowResizable) return;
  for (const auto& control : controls) {
    QWidget* const widget = control->Widget();
    const int missing = control->HeightForText() - widget->height();
    if (missing <= 0) continue;
    const int bottom = widget->y() + widget->height();
    for (const auto& other : controls) {
      QWidget* const below = other->Widget();
      if (below->y() >= bottom) below->move(below->x(), below->y() + missing);
    }
    widget->resize(widget->width(), widget->height() + missing);
    setFixedSize(width(), height() + missing);
  }
}

// Counted without the frame, which isn't there when a window first measures itself.
void DialogWindow::ApplyLimits() {
  if (!(style & kWindowResizable)) return;
  MinMaxInfo info;
  listener.OnGetMinMaxInfo(&info);
  const auto limit = [](std::int32_t wanted, int otherwise) {
    return wanted > 0 ? std::min<int>(wanted, QWIDGETSIZE_MAX) : otherwise;
  };
  setMinimumSize(limit(info.minTrackWidth, 0), limit(info.minTrackHeight, 0));
  setMaximumSize(limit(info.maxTrackWidth, QWIDGETSIZE_MAX),
                 limit(info.maxTrackHeight, QWIDGETSIZE_MAX));
}

void DialogWindow::FirstPlace() {
  if (std::exchange(placed, true)) return;
  const QWidget* const owner = parentWidget();
  const bool over = owner && owner->isVisible() && !owner->isMinimized();
  const QScreen* const display = over ? owner->screen() : QGuiApplication::primaryScreen();
  const QRect free = display->availableGeometry();
  QRect place(QPoint(), size());
  place.moveCenter((over ? owner->frameGeometry() : free).center());
  place.moveLeft(std::max(free.left(), std::min(place.left(), free.right() + 1 - width())));
  place.moveTop(std::max(free.top(), std::min(place.top(), free.bottom() + 1 - height())));
  Put(place.topLeft());
}

void DialogWindow::Put(const QPoint& corner) {
  if (!isVisible()) asked = corner;
  move(corner);
}

// Some window managers are wrong by the width of their frame with a window that comes up before
// another: it would creep, since the place is stored.
void DialogWindow::CorrectPlace() {
  if (!asked) return;
  const QPoint wanted = *std::exchange(asked, std::nullopt);
  const QPoint off = pos() - wanted;
  const QPoint frame = geometry().topLeft() - pos();
  const bool byFrame = std::abs(off.x()) <= frame.x() && std::abs(off.y()) <= frame.y();
  if (!off.isNull() && byFrame) move(wanted);
}

void DialogWindow::FirstFocus() {
  if (Focused()) return;
  const Quiet silent(*this);
  for (const auto& control : controls) {
    if (!control->TakesFocus() || !control->IsShown() || !control->IsEnabled()) continue;
    control->FocusWidget()->setFocus(Qt::TabFocusReason);
    // The window isn't active yet, so this is no more than a plan to the edit.
    if (auto* const edit = dynamic_cast<Edit*>(control.get())) edit->SelectAll();
    return;
  }
}

// From the frame's corner, and as large as the inside: the window manager's frame comes only when
// the window is shown, and a size that it changed then would change again what was laid out for it.
Rect DialogWindow::WholeRect() const { return RectOf(QRect(pos(), size())); }

void DialogWindow::MoveWhole(const Rect& rect) {
  if (initialised || (style & kWindowResizable)) ApplyLimits();
  placed = true;
  const QSize inside = QSize(rect.Width(), rect.Height()).expandedTo(QSize(1, 1));
  if (style & kWindowResizable) {
    resize(inside);
  } else {
    setFixedSize(inside);
  }
  Put({rect.left, rect.top});
  // A window that isn't shown gets no event of it before it is.
  if (!isVisible()) TellSize(SIZE_RESTORED, size());
}

void DialogWindow::TellSize(std::uint32_t type, const QSize& size) {
  if (!ended && handle != kNoWindow) listener.OnSize(type, size.width(), size.height());
}

void DialogWindow::resizeEvent(QResizeEvent*) {
  if (!iconic) TellSize(isMaximized() ? SIZE_MAXIMIZED : SIZE_RESTORED, size());
}

void DialogWindow::moveEvent(QMoveEvent*) {
  if (ended || handle == kNoWindow) return;
  const QPoint inside = geometry().topLeft();
  listener.OnMove(inside.x(), inside.y());
}

// --- Shown, hidden, minimised

void DialogWindow::BringUp() {
  if (broughtUp || !initialised || ended) return;
  broughtUp = true;
  FirstPlace();
  FirstFocus();
  show();
  if (ended) return;
  const QPoint inside = geometry().topLeft();
  listener.OnMove(inside.x(), inside.y());
}

void DialogWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) {
    for (const auto& control : controls) control->TakeColours();
  }
  // While it isn't shown its state says only how it will be.
  if (event->type() != QEvent::WindowStateChange || !isVisible()) return;
  if (!isMinimized()) zoomed = isMaximized();
  if (isMinimized() == iconic) return;
  iconic = isMinimized();
  if (!iconic) {
    standsIn = false;
    TellSize(zoomed ? SIZE_MAXIMIZED : SIZE_RESTORED, size());
    return;
  }
  if (quiet == 0 && !ended) around.hooks.TellMinimising(handle);
  TellSize(SIZE_MINIMIZED, QSize(0, 0));
}

void DialogWindow::Minimise() {
  const Quiet silent(*this);
  broughtUp = true;
  hidden = false;
  if (!iconic) TellSize(SIZE_MINIMIZED, QSize(0, 0));
  iconic = true;
  showMinimized();
}

// Nothing could bring back a window that is hidden behind an icon that isn't there. For Qt it stays
// minimised until it is shown again: undoing that asks the X server at once to show the window, and
// a window manager that has just let go of it would do so.
void DialogWindow::HideOrMinimise() {
  broughtUp = true;
  shownIconic = false;
  QTimer::singleShot(kUntilSettled, this, [this] {
    if (!isVisible() || isMinimized()) ReturnUnusedMemory();
  });
  if (around.lacksItsIcon(handle)) {
    standsIn = true;
    Minimise();
    return;
  }
  standsIn = false;
  hidden = true;
  const Quiet silent(*this);
  hide();
}

void DialogWindow::IconCameOrWent() {
  const bool lacking = around.lacksItsIcon(handle);
  if (lacking ? hidden : standsIn && iconic) HideOrMinimise();
}

void DialogWindow::ShowWindow(std::int32_t command) {
  switch (command) {
    case SW_HIDE:
      HideOrMinimise();
      return;
    case SW_MINIMIZE:
      if (!iconic) around.hooks.TellMinimising(handle);
      standsIn = false;
      Minimise();
      return;
    case SW_SHOW:
    case SW_SHOWNOACTIVATE:
      if (isVisible()) return;
      hidden = false;
      broughtUp = true;
      if (iconic) {
        // Mostly it is restored next. Until then it stays invisible.
        shownIconic = true;
        around.windows.Post(handle, [](DialogWindow& window) {
          if (std::exchange(window.shownIconic, false)) window.Minimise();
        });
        return;
      }
      FirstPlace();
      FirstFocus();
      setAttribute(Qt::WA_ShowWithoutActivating, command == SW_SHOWNOACTIVATE);
      show();
      return;
    case SW_RESTORE:
    case SW_SHOWNORMAL: {
      const Quiet silent(*this);
      const bool wasIconic = std::exchange(iconic, false);
      // From minimised it goes back to what it was before.
      zoomed = zoomed && wasIconic && command == SW_RESTORE;
      shownIconic = false;
      hidden = false;
      standsIn = false;
      broughtUp = true;
      FirstPlace();
      FirstFocus();
      setWindowState(zoomed ? Qt::WindowMaximized : Qt::WindowNoState);
      show();
      if (wasIconic) TellSize(zoomed ? SIZE_MAXIMIZED : SIZE_RESTORED, size());
      if (command == SW_SHOWNORMAL) {
        raise();
        activateWindow();
      }
      return;
    }
    default:
      return;
  }
}

// --- Timers

// A timer that isn't precise may come before its time, and then twice.
WindowTimer::WindowTimer(std::uint32_t ms)
    : period(std::clamp<std::uint32_t>(ms, 1, 0x7FFFFFFF)), last(clock().GetTickCount()) {
  next.setTimerType(Qt::PreciseTimer);
  next.setSingleShot(true);
}

void WindowTimer::Go() {
  const std::uint32_t since = clock().GetTickCount() - last;
  last += since - since % period;
  next.start(static_cast<int>(period - since % period));
}

// Posted, so that a timer goes on while its handler waits for a box to be answered.
std::uint32_t DialogWindow::SetTimer(std::uint32_t id, std::uint32_t ms) {
  std::unique_ptr<WindowTimer>& timer = timers[id];
  timer = std::make_unique<WindowTimer>(ms);
  connect(&timer->next, &QTimer::timeout, this, [this, id, set = timer.get()] {
    set->Go();
    if (std::find(timersDue.begin(), timersDue.end(), id) != timersDue.end()) return;
    timersDue.push_back(id);
    around.windows.Post(handle, [id](DialogWindow& window) {
      if (std::erase(window.timersDue, id) == 0 || window.ended) return;
      if (window.timers.contains(id)) window.listener.OnTimer(id);
    });
  });
  timer->Go();
  return id;
}

bool DialogWindow::KillTimer(std::uint32_t id) {
  std::erase(timersDue, id);
  return timers.erase(id) > 0;
}

bool DialogWindow::SleepTimer(std::uint32_t id) {
  const auto timer = timers.find(id);
  if (timer == timers.end()) return false;
  std::erase(timersDue, id);
  timer->second->next.stop();
  return true;
}

bool DialogWindow::WakeTimer(std::uint32_t id) {
  const auto timer = timers.find(id);
  if (timer == timers.end()) return false;
  if (!timer->second->next.isActive()) timer->second->Go();
  return true;
}

}  // namespace platform::qt
