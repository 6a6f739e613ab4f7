#include "app/platform/windows/ui/dialog_window.h"

#include <algorithm>
#include <set>

#include "app/platform/windows/ui/control_maker.h"
#include "app/platform/windows/ui/dialog_memory.h"
#include "app/platform/windows/ui/looks.h"
#include "app/platform/windows/ui/tab_control.h"
#include "app/platform/windows/ui/text.h"
#include "app/platform/windows/ui/windows_canvas.h"

namespace platform::ui {
namespace {

constexpr UINT kLastOfProgram = 0xBFFF;  // private messages end here
constexpr std::uint32_t kNoTimer = 0;

// Notices that also the program's own doing brings.
bool IsInPassing(Notice notice) {
  return notice == Notice::Painted || notice == Notice::HeaderItemChanging ||
         notice == Notice::HeaderItemChanged || notice == Notice::ControlMessage;
}

// The window doesn't get the keys of such a control, used or not. Of the list's it is told as the
// list's.
bool TakesAllKeys(ControlKind kind) {
  return kind == ControlKind::Edit || kind == ControlKind::TextArea ||
         kind == ControlKind::ListView;
}

// Keys with which the person goes through a dialog.
bool IsOfDialog(std::int32_t vk) {
  return vk == VK_TAB || vk == VK_RETURN || vk == VK_ESCAPE || vk == VK_SPACE ||
         (vk >= VK_PRIOR && vk <= VK_DOWN);
}

bool IsHeld(int vk) { return GetKeyState(vk) < 0; }

UINT TaskBarMessage() {
  static const UINT message = RegisterWindowMessageW(L"TaskbarCreated");
  return message;
}

}  // namespace

// While one lives, the program isn't told of what happens.
class DialogWindow::Quiet {
 public:
  explicit Quiet(DialogWindow& window) : window(window) { ++window.quiet; }
  ~Quiet() { --window.quiet; }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  DialogWindow& window;
};

// --- Its life

DialogWindow::DialogWindow(const DialogTemplate& from, DialogWindow* behind,
                           WindowListener& listener, const Surroundings& around)
    : from(from), listener(listener), around(around), owner(behind ? behind->Handle() : nullptr) {
  const std::vector<WORD> memory = InMemory(from, behind != nullptr);
  const auto* const made = reinterpret_cast<const DLGTEMPLATE*>(memory.data());
  CreateDialogIndirectParamW(GetModuleHandleW(nullptr), made, owner, &DialogWindow::Procedure,
                             reinterpret_cast<LPARAM>(this));
  if (!handle) return;
  if (behind) {
    for (const WPARAM size : {ICON_SMALL, ICON_BIG})
      Ask(handle, WM_SETICON, size, Ask(owner, WM_GETICON, size));
  }
  std::set<std::uint32_t> ids;
  for (const auto& entry : byId) ids.insert(entry.first);
  around.windows.Add(handle, this, std::move(ids));
}

DialogWindow::~DialogWindow() {
  ended = true;
  if (!handle) return;
  around.windows.Remove(handle);
  MSG call = {};
  while (PeekMessageW(&call, handle, WindowTable::kPostedCall, WindowTable::kPostedCall, PM_REMOVE))
    delete reinterpret_cast<WindowTable::Call*>(call.lParam);
  DestroyWindow(handle);
}

INT_PTR CALLBACK DialogWindow::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, static_cast<LONG_PTR>(l));
    reinterpret_cast<DialogWindow*>(l)->Adopt(window);
    return FALSE;
  }
  auto* const self = reinterpret_cast<DialogWindow*>(GetWindowLongPtrW(window, DWLP_USER));
  return self ? self->OnMessage(message, w, l) : FALSE;
}

void DialogWindow::Adopt(HWND made) {
  handle = made;
  MakeControls();
  TakeLooks();
}

void DialogWindow::MakeControls() {
  controls = ui::MakeControls(*this, handle, from.controls);
  for (const auto& control : controls) byId[control->id] = control.get();
  // What lies behind other controls lies below them. The Tab key goes by the table (StepFocus).
  for (const auto& control : controls) {
    if (control->kind == ControlKind::TabControl)
      SetWindowPos(control->Handle(), HWND_BOTTOM, 0, 0, 0, 0,
                   SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }
  for (std::size_t i = 0; i < controls.size(); ++i)
    if (from.controls[i].name) SayName(controls[i]->Handle(), from.controls[i].name);
}

std::int32_t DialogWindow::Run() {
  listener.OnInitDialog(SeamWindow(handle));
  initialised = true;
  const bool ownerWasThere = owner && !EnableWindow(owner, FALSE);
  if (!ended) {
    MakeRoom();
    HandlePosted();
  }
  if (!ended) {
    BringUp();
    if (!owner) around.isUp(SeamWindow(handle));
  }
  while (!ended) {
    MSG message = {};
    if (GetMessageW(&message, nullptr, 0, 0) > 0) {
      around.dispatch(message);
      continue;
    }
    // The thread is to end, and nobody has ended this window.
    listener.OnClose();
    ended = true;
    PostQuitMessage(static_cast<int>(message.wParam));
  }
  const Quiet silent(*this);
  // First, so that the owner is in front next.
  if (ownerWasThere) EnableWindow(owner, TRUE);
  ::ShowWindow(handle, SW_HIDE);
  Finish();
  return result;
}

// Up to now. A message may hide it; then it begins hidden.
void DialogWindow::HandlePosted() {
  bool reached = false;
  if (!around.windows.Post(SeamWindow(handle), [&reached](DialogWindow&) { reached = true; }))
    return;
  MSG message = {};
  while (!ended && !reached &&
         PeekMessageW(&message, handle, WindowTable::kPostedCall, kLastOfProgram, PM_REMOVE))
    around.dispatch(message);
}

void DialogWindow::End(std::int32_t with) {
  result = with;
  ended = true;
}

void DialogWindow::Finish() {
  if (std::exchange(finished, true)) return;
  while (!timers.empty()) KillTimer(timers.begin()->first);
  listener.OnDestroy();
}

// --- Its controls

Control* DialogWindow::Find(std::uint32_t id) const {
  const auto found = byId.find(id);
  return found == byId.end() ? nullptr : found->second;
}

Control* DialogWindow::ControlOf(HWND window) const {
  while (window && GetParent(window) != handle) window = GetAncestor(window, GA_PARENT);
  if (!window) return nullptr;
  for (const auto& control : controls)
    if (control->Handle() == window) return control.get();
  return nullptr;
}

// While another window is in front, the one that gets the focus back.
Control* DialogWindow::Focused() const {
  const HWND focused = GetFocus();
  if (focused == handle) return nullptr;
  if (focused && IsChild(handle, focused)) return ControlOf(focused);
  return lastFocus;
}

void DialogWindow::FocusOn(Control& control) {
  const Quiet silent(*this);
  Ask(handle, WM_NEXTDLGCTL, control.Handle(), TRUE);
}

void DialogWindow::Show(Control& control, bool show) {
  const Quiet silent(*this);
  if (!show && Focused() == &control) StepFocus(false);
  control.Show(show);
}

void DialogWindow::Enable(Control& control, bool enable) {
  const Quiet silent(*this);
  // The system would leave it the focus, and the keyboard with it.
  if (!enable && Focused() == &control) StepFocus(false);
  control.Enable(enable);
}

bool DialogWindow::SetDefaultButton(std::uint32_t id) {
  const Control* const control = Find(id);
  if (!control || !control->IsPushButton()) return false;
  Ask(handle, DM_SETDEFID, id);
  return true;
}

void DialogWindow::ApplyUpdates() {
  for (const auto& [id, update] : around.windows.TakeUpdates(handle)) {
    Control* const control = Find(id);
    if (update.text) control->SetText(*update.text);
    if (update.checked) control->SetChecked(*update.checked);
    if (update.redraw) control->Redraw();
  }
}

// --- What happens to it

void DialogWindow::Notify(std::uint32_t id, Notice notice, std::int32_t value) {
  if (ended || (quiet > 0 && !IsInPassing(notice))) return;
  if (!IsInPassing(notice)) inTurn.Tell(listener, ended);
  if (!ended) listener.OnNotice(id, notice, value);
}

void DialogWindow::NotifyInTurn(std::uint32_t id, Notice notice) {
  if (ended || quiet > 0) return;
  inTurn.Add(id, notice);
  around.windows.Post(SeamWindow(handle), [](DialogWindow& window) {
    window.inTurn.Tell(window.listener, window.ended);
  });
}

void DialogWindow::PostInTurn(std::uint32_t id) {
  around.windows.Post(SeamWindow(handle),
                      [id](DialogWindow& window) { window.Find(id)->InTurn(); });
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

void DialogWindow::Close() {
  if (ended) return;
  inTurn.Tell(listener, ended);
  if (!ended) listener.OnClose();
}

void DialogWindow::Draw(const DrawItem& item, Canvas& canvas) {
  if (!ended && initialised) listener.OnDrawItem(item, canvas);
}

// The answer of a dialog's procedure, where that isn't whether it has done something.
INT_PTR DialogWindow::Answer(LRESULT answer) {
  SetWindowLongPtrW(handle, DWLP_MSGRESULT, answer);
  return TRUE;
}

INT_PTR DialogWindow::OnMessage(UINT message, WPARAM w, LPARAM l) {
  if (message == WindowTable::kPostedCall) {
    const std::unique_ptr<WindowTable::Call> call(reinterpret_cast<WindowTable::Call*>(l));
    if (!ended) (*call)(*this);
    return TRUE;
  }
  if (message >= WM_APP && message <= kLastOfProgram) {
    if (!ended) listener.OnMessage(message, w, l);
    return TRUE;
  }
  if (const auto done = OnControlMessage(message, w, l)) return *done;
  if (const auto done = OnPlaceMessage(message, w, l)) return *done;
  switch (message) {
    case WM_CLOSE:
      Close();
      return TRUE;
    case WM_TIMER:
      OnTimer(static_cast<std::uint32_t>(w));
      return TRUE;
    case WM_ENDSESSION:
      if (w) OnEndSession();
      return TRUE;
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
      TakeLooks();
      // Those of the system's controls that keep colours learn of it by their window alone.
      for (const auto& control : controls) Ask(control->Handle(), WM_SYSCOLORCHANGE);
      InvalidateRect(handle, nullptr, TRUE);
      return FALSE;
    default:
      if (message == TaskBarMessage()) around.taskBarCame();
      return FALSE;
  }
}

std::optional<INT_PTR> DialogWindow::OnControlMessage(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_COMMAND:
      OnCommand(LOWORD(w), HIWORD(w), reinterpret_cast<HWND>(l));
      return TRUE;
    case WM_NOTIFY:
      return OnNotify(*reinterpret_cast<NMHDR*>(l));
    case WM_HSCROLL:
      if (Control* control = ControlOf(reinterpret_cast<HWND>(l))) control->OnScroll();
      return TRUE;
    case WM_DRAWITEM: {
      const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(l);
      if (Control* control = ControlOf(item.hwndItem)) control->OnDrawItem(item);
      return TRUE;
    }
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORBTN: {
      Control* const control = ControlOf(reinterpret_cast<HWND>(l));
      if (!control) return FALSE;
      return reinterpret_cast<INT_PTR>(
          control->Colours(reinterpret_cast<HDC>(w), Behind(*control)));
    }
    case WM_SETCURSOR: {
      const Control* const control = ControlOf(reinterpret_cast<HWND>(w));
      return control && control->SetsCursor() ? Answer(TRUE) : FALSE;
    }
    default:
      return std::nullopt;
  }
}

std::optional<INT_PTR> DialogWindow::OnPlaceMessage(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_SIZE:
      if (!ended) listener.OnSize(static_cast<std::uint32_t>(w), LOWORD(l), HIWORD(l));
      return FALSE;
    case WM_MOVE:
      if (!ended) listener.OnMove(static_cast<short>(LOWORD(l)), static_cast<short>(HIWORD(l)));
      return FALSE;
    case WM_GETMINMAXINFO: {
      auto& system = *reinterpret_cast<MINMAXINFO*>(l);
      MinMaxInfo info;
      if (!ended && (from.style & kWindowResizable)) listener.OnGetMinMaxInfo(&info);
      if (info.minTrackWidth > 0) system.ptMinTrackSize.x = info.minTrackWidth;
      if (info.minTrackHeight > 0) system.ptMinTrackSize.y = info.minTrackHeight;
      if (info.maxTrackWidth > 0) system.ptMaxTrackSize.x = info.maxTrackWidth;
      if (info.maxTrackHeight > 0) system.ptMaxTrackSize.y = info.maxTrackHeight;
      return TRUE;
    }
    case WM_NCHITTEST: {
      const Point screen{static_cast<short>(LOWORD(l)), static_cast<short>(HIWORD(l))};
      if (ended || !(from.style & kWindowResizable)) return FALSE;
      const std::int32_t hit = listener.OnNcHitTest(screen);
      return hit == HTCLIENT ? FALSE : Answer(hit);
    }
    case WM_ERASEBKGND:
      EraseBackground(reinterpret_cast<HDC>(w));
      return Answer(TRUE);
    case WM_PAINT:
      OnPaint();
      return TRUE;
    default:
      return std::nullopt;
  }
}

// A menu, and Enter and Esc without a button of that number, have no control.
void DialogWindow::OnCommand(std::uint32_t id, int code, HWND window) {
  if (!window) {
    if (id != static_cast<std::uint32_t>(IDOK)) Notify(id, Notice::Clicked, 0);
    return;
  }
  Control* const control = ControlOf(window);
  if (!control || ended) return;
  // Esc presses a button that is disabled, too.
  if (control->IsPushButton() && !control->IsEnabled()) return;
  control->OnCommand(code);
}

INT_PTR DialogWindow::OnNotify(NMHDR& notice) {
  if (notice.hwndFrom == tips.Handle() && notice.code == TTN_GETDISPINFOW) {
    AskForTip(reinterpret_cast<NMTTDISPINFOW&>(notice));
    return TRUE;
  }
  Control* const control = ControlOf(notice.hwndFrom);
  return control && !ended ? Answer(control->OnNotify(notice)) : FALSE;
}

void DialogWindow::AskForTip(NMTTDISPINFOW& wanted) {
  const Control* const control = ControlOf(reinterpret_cast<HWND>(wanted.hdr.idFrom));
  tipText.clear();
  if (control && !ended) tipText = Wide(listener.OnToolTip(control->id));
  wanted.lpszText = tipText.data();
}

bool DialogWindow::EnableToolTips() {
  if (!tips.Create(handle)) return false;
  for (const auto& control : controls)
    if (control->kind != ControlKind::TabControl) tips.AddTool(handle, control->Handle());
  return true;
}

void DialogWindow::OnPaint() {
  PAINTSTRUCT paint = {};
  const HDC dc = BeginPaint(handle, &paint);
  if (initialised && !ended) {
    WindowsCanvas canvas(dc, handle, around.icons);
    listener.OnPaint(canvas);
  }
  EndPaint(handle, &paint);
}

// The process may be gone once this has returned.
void DialogWindow::OnEndSession() {
  around.closeAll();
  if (ended) Finish();
}

// --- Looks

void DialogWindow::TakeLooks() { pageColour = PageColourOf(handle); }

std::optional<COLORREF> DialogWindow::Behind(const Control& control) const {
  if (!pageColour) return std::nullopt;
  const Rect place = control.Place();
  const POINT middle = {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
  for (const auto& other : controls) {
    const auto* const tabs = dynamic_cast<const TabControl*>(other.get());
    if (!tabs || tabs == &control) continue;
    const RECT page = RectOf(tabs->Page());
    if (PtInRect(&page, middle)) return pageColour;
  }
  return std::nullopt;
}

// Controls that let their parent shine through ask the window to draw what lies behind them, which
// may be a tab's page.
void DialogWindow::EraseBackground(HDC canvas) {
  RECT inside = {};
  GetClientRect(handle, &inside);
  FillRect(canvas, &inside, GetSysColorBrush(COLOR_BTNFACE));
  if (!pageColour) return;
  SetDCBrushColor(canvas, *pageColour);
  for (const auto& control : controls) {
    const auto* const tabs = dynamic_cast<const TabControl*>(control.get());
    if (!tabs) continue;
    const RECT page = RectOf(tabs->Page());
    FillRect(canvas, &page, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  }
}

// --- Keys

bool DialogWindow::Takes(MSG& message) {
  if (message.message == WM_KEYDOWN &&
      TakesKey(static_cast<std::int32_t>(message.wParam), message.hwnd))
    return true;
  return IsDialogMessageW(handle, &message);
}

// What the dialog does with a key before the system looks at it.
bool DialogWindow::TakesKey(std::int32_t vk, HWND target) {
  if (ended) return false;
  if (vk == VK_F1) {
    Notify(0, Notice::KeyDown, vk);
    return true;
  }
  const Control* const focused = ControlOf(target);
  const bool control = IsHeld(VK_CONTROL);
  if (control && (vk == VK_TAB || vk == VK_PRIOR || vk == VK_NEXT)) {
    for (const auto& other : controls) {
      auto* const tabs = dynamic_cast<TabControl*>(other.get());
      if (!tabs) continue;
      tabs->Step(vk == VK_PRIOR || (vk == VK_TAB && IsHeld(VK_SHIFT)) ? -1 : 1);
      return true;
    }
  }
  if (focused && focused->kind == ControlKind::ListView) {
    Notify(focused->id, Notice::KeyDown, vk);
    if (ended) return true;
  } else if ((!focused || !TakesAllKeys(focused->kind)) && !IsOfDialog(vk)) {
    Notify(0, Notice::KeyDown, vk);
    if (ended) return true;
  }
  if (vk == VK_TAB && !control) {
    StepFocus(IsHeld(VK_SHIFT));
    return true;
  }
  if (focused && focused->kind == ControlKind::TextArea && (vk == VK_RETURN || vk == VK_ESCAPE)) {
    Press(vk == VK_ESCAPE ? static_cast<std::uint32_t>(IDCANCEL)
                          : LOWORD(Ask(handle, DM_GETDEFID)));
    return true;
  }
  return false;
}

void DialogWindow::Press(std::uint32_t id) {
  const Control* const button = Find(id);
  if (!button || button->IsEnabled()) Notify(id, Notice::Clicked, 0);
}

// By the table, since the system would go by which control lies above which.
void DialogWindow::StepFocus(bool back) {
  const auto count = static_cast<std::int32_t>(controls.size());
  const Control* const focused = Focused();
  std::int32_t at = back ? count : -1;
  for (std::int32_t i = 0; i < count; ++i)
    if (controls[static_cast<std::size_t>(i)].get() == focused) at = i;
  for (std::int32_t step = 1; step <= count; ++step) {
    const std::int32_t next = ((at + (back ? -step : step)) % count + count) % count;
    const Control& control = *controls[static_cast<std::size_t>(next)];
    const bool stops = GetWindowLongW(control.Handle(), GWL_STYLE) & WS_TABSTOP;
    if (!stops || !control.IsShown() || !control.IsEnabled()) continue;
    Ask(handle, WM_NEXTDLGCTL, control.Handle(), TRUE);
    return;
  }
}

// --- Place and size

// A text of several lines may be longer than the template allows: controls below it make room.
void DialogWindow::MakeRoom() {
  if (from.style & kWindowResizable) return;
  for (const auto& control : controls) {
    const Rect place = control->Place();
    const int missing = control->HeightForText() - place.Height();
    if (missing <= 0) continue;
    for (const auto& other : controls) {
      Rect below = other->Place();
      if (below.top < place.bottom) continue;
      below.top += missing;
      below.bottom += missing;
      other->SetPlace(below, SWP_NOSIZE);
    }
    Rect higher = place;
    higher.bottom += missing;
    control->SetPlace(higher, 0);
    RECT whole = {};
    GetWindowRect(handle, &whole);
    SetWindowPos(handle, nullptr, 0, 0, whole.right - whole.left,
                 whole.bottom - whole.top + missing, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
}

void DialogWindow::MoveWhole(const Rect& rect) {
  placed = true;
  ::MoveWindow(handle, rect.left, rect.top, rect.Width(), rect.Height(), TRUE);
}

// In the middle of its owner, or of the screen, and on it as a whole.
void DialogWindow::FirstPlace() {
  if (std::exchange(placed, true)) return;
  const bool over = owner && IsWindowVisible(owner) && !IsIconic(owner);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(over ? owner : handle, MONITOR_DEFAULTTOPRIMARY), &monitor);
  const RECT& screen = monitor.rcWork;
  RECT behind = screen;
  if (over) GetWindowRect(owner, &behind);
  RECT own = {};
  GetWindowRect(handle, &own);
  const auto middle = [](LONG least, LONG most, LONG begin, LONG end, LONG size) {
    return static_cast<int>(std::max(least, std::min((begin + end - size) / 2, most - size)));
  };
  const int left =
      middle(screen.left, screen.right, behind.left, behind.right, own.right - own.left);
  const int top =
      middle(screen.top, screen.bottom, behind.top, behind.bottom, own.bottom - own.top);
  SetWindowPos(handle, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void DialogWindow::FirstFocus() {
  if (lastFocus) return;
  for (const auto& control : controls) {
    if (!control->TakesFocus() || !control->IsShown() || !control->IsEnabled()) continue;
    FocusOn(*control);
    return;
  }
}

// --- Shown, hidden, minimised

void DialogWindow::BringUp() {
  if (broughtUp || !initialised || ended) return;
  ShowWindow(SW_SHOWNORMAL);
  // A dialog that came and went before it has left the front to another program.
  SetForegroundWindow(handle);
}

// Nothing could bring back a window that is hidden behind an icon that isn't there.
void DialogWindow::HideOrMinimise() {
  broughtUp = true;
  const Quiet silent(*this);
  standsIn = around.lacksItsIcon(SeamWindow(handle));
  hidden = !standsIn;
  ::ShowWindow(handle, standsIn ? SW_MINIMIZE : SW_HIDE);
}

void DialogWindow::IconCameOrWent() {
  const bool lacking = around.lacksItsIcon(SeamWindow(handle));
  if (lacking ? hidden : standsIn && IsIconic(handle)) HideOrMinimise();
}

void DialogWindow::ShowWindow(std::int32_t command) {
  if (command == SW_HIDE) return HideOrMinimise();
  broughtUp = true;
  hidden = false;
  standsIn = false;
  if (command != SW_MINIMIZE) {
    FirstPlace();
    FirstFocus();
  }
  ::ShowWindow(handle, command);
}

// --- Timers

std::uint32_t DialogWindow::SetTimer(std::uint32_t id, std::uint32_t ms) {
  Timer timer{std::clamp<std::uint32_t>(ms, 1, 0x7FFFFFFF), GetTickCount(), kNoTimer};
  if (!::SetTimer(handle, id, timer.period, nullptr)) return 0;
  timer.running = timer.period;
  timers[id] = timer;
  return id;
}

bool DialogWindow::KillTimer(std::uint32_t id) {
  ::KillTimer(handle, id);
  return timers.erase(id) > 0;
}

// To the next of its points of time.
void DialogWindow::Go(std::uint32_t id, Timer& timer) {
  const std::uint32_t since = GetTickCount() - timer.last;
  timer.last += since - since % timer.period;
  timer.running = timer.period - since % timer.period;
  ::SetTimer(handle, id, timer.running, nullptr);
}

bool DialogWindow::SleepTimer(std::uint32_t id) {
  const auto timer = timers.find(id);
  if (timer == timers.end()) return false;
  ::KillTimer(handle, id);
  timer->second.running = kNoTimer;
  return true;
}

bool DialogWindow::WakeTimer(std::uint32_t id) {
  const auto timer = timers.find(id);
  if (timer == timers.end()) return false;
  if (timer->second.running == kNoTimer) Go(id, timer->second);
  return true;
}

// A message may still be under way for one that sleeps or is gone.
void DialogWindow::OnTimer(std::uint32_t id) {
  const auto timer = timers.find(id);
  if (timer == timers.end() || timer->second.running == kNoTimer || ended) return;
  if (timer->second.running != timer->second.period) {
    timer->second.running = timer->second.period;
    ::SetTimer(handle, id, timer->second.period, nullptr);
  }
  listener.OnTimer(id);
}

}  // namespace platform::ui
