#include "app/platform/simulation/window_system.h"

#include <algorithm>
#include <utility>

#include "app/platform/simulation/recording_canvas.h"

namespace platform::simulation {
namespace {

constexpr std::uint64_t kPatience = 300'000;  // ms

// Of a window with a caption.
constexpr std::int32_t kFrame = 4;
constexpr std::int32_t kTop = 23 + kFrame;

// Where a window is while it is minimised.
constexpr Rect kAway{-32000, -32000, -32000 + 160, -32000 + 27};

constexpr Colour kFaceColour = Rgb(212, 208, 200);
constexpr Colour kWhite = Rgb(255, 255, 255);

// Dialog units to pixels, for a font of 6 by 13.
std::int32_t Across(std::int32_t units) { return (units * 6 + 2) / 4; }
std::int32_t Down(std::int32_t units) { return (units * 13 + 4) / 8; }

unsigned char Folded(char c) {
  return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

VirtualControl MakeControl(const ControlTemplate& from) {
  VirtualControl control;
  control.kind = from.kind;
  control.id = from.id;
  control.style = from.style;
  control.text = from.text ? from.text : "";
  control.place.left = Across(from.x);
  control.place.top = Down(from.y);
  control.place.right = control.place.left + Across(from.width);
  control.place.bottom = control.place.top + Down(from.height);
  control.visible = !(from.style & kStyleHidden);
  control.enabled = !(from.style & kStyleDisabled);
  const bool white = from.kind == ControlKind::Edit || from.kind == ControlKind::DropList ||
                     from.kind == ControlKind::ListView;
  control.backgroundColour = white ? kWhite : kFaceColour;
  for (const char* row : from.rows) control.rows.push_back({row, 0});
  if (from.style & kStyleSorted) {
    std::stable_sort(control.rows.begin(), control.rows.end(),
                     [](const auto& a, const auto& b) { return FoldsBefore(a.text, b.text); });
  }
  return control;
}

}  // namespace

bool FoldsBefore(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return Folded(x) < Folded(y); });
}

bool FoldsEqual(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Folded(x) == Folded(y); });
}

bool VirtualControl::TakesFocus() const {
  switch (kind) {
    case ControlKind::Label:
    case ControlKind::Picture:
    case ControlKind::Rule:
    case ControlKind::GroupBox:
    case ControlKind::Box:
      return false;
    default:
      return true;
  }
}

bool VirtualControl::IsButton() const {
  return kind == ControlKind::Button || kind == ControlKind::PictureButton ||
         kind == ControlKind::DrawnButton;
}

bool VirtualControl::HasText() const {
  switch (kind) {
    case ControlKind::Label:
    case ControlKind::Link:
    case ControlKind::GroupBox:
    case ControlKind::Edit:
    case ControlKind::TextArea:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
      return true;
    default:
      return IsButton();
  }
}

Rect VirtualWindow::Inside() const {
  if (minimised) return {};
  return {0, 0, std::max(place.Width() - 2 * kFrame, 0),
          std::max(place.Height() - kTop - kFrame, 0)};
}

Point VirtualWindow::InsideCorner() const {
  if (minimised) return {place.left, place.top};
  return {place.left + kFrame, place.top + kTop};
}

VirtualControl* VirtualWindow::Find(std::uint32_t control) {
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [&](const auto& one) { return one.id == control; });
  return found == controls.end() ? nullptr : &*found;
}

WindowSystem::WindowSystem(Scheduler& scheduler, Journal& journal)
    : scheduler(scheduler), journal(journal), wake(std::make_shared<Event>()) {}

// ---- The program

void WindowSystem::Start(std::function<std::int32_t()> toRun) {
  program = std::move(toRun);
  running = true;
  othersRefused = false;
  const auto thread = scheduler.Spawn(Rank::UserInterface, "user interface", [this] {
    result = program();
    running = false;
    return static_cast<std::uint32_t>(result);
  });
  if (thread) {
    threadId = thread->id;
  } else {
    running = false;
    result = -1;
  }
}

bool WindowSystem::Settle() {
  const std::uint64_t end = scheduler.Now() + kPatience;
  for (std::uint64_t t = scheduler.Now(); t <= end; ++t) {
    scheduler.RunUntil(t);
    if (!running || idle) return true;
  }
  return false;
}

// ---- Windows

VirtualWindow* WindowSystem::Find(WindowHandle window) const {
  const auto found = windows.find(window);
  return found == windows.end() ? nullptr : found->second.get();
}

VirtualControl* WindowSystem::Find(WindowHandle window, std::uint32_t control) const {
  VirtualWindow* const found = Find(window);
  return found ? found->Find(control) : nullptr;
}

VirtualControl* WindowSystem::Find(WindowHandle window, std::uint32_t control,
                                   ControlKind kind) const {
  VirtualControl* const found = Find(window, control);
  return found && found->kind == kind ? found : nullptr;
}

VirtualWindow* WindowSystem::Newest() const {
  for (auto modal = modals.rbegin(); modal != modals.rend(); ++modal) {
    if (modal->kind == Modal::Dialog) return Find(modal->window);
  }
  return nullptr;
}

WindowHandle WindowSystem::WindowOf(std::uint32_t dialog) const {
  for (auto modal = modals.rbegin(); modal != modals.rend(); ++modal) {
    if (modal->kind == Modal::Dialog && Find(modal->window)->dialog->id == dialog) {
      return modal->window;
    }
  }
  return kNoWindow;
}

std::vector<TopLevelWindow> WindowSystem::TopLevelWindows() const {
  std::vector<TopLevelWindow> all;
  for (const auto& [handle, window] : windows)
    all.push_back({handle, 0, window->visible, window->minimised});
  return all;
}

VirtualWindow& WindowSystem::Make(const DialogTemplate& dialog, WindowHandle owner,
                                  WindowListener& listener) {
  auto window = std::make_unique<VirtualWindow>();
  window->handle = ++lastHandle;
  window->dialog = &dialog;
  window->owner = owner;
  window->listener = &listener;
  window->title = dialog.title ? dialog.title : "";
  const std::int32_t width = Across(dialog.width) + 2 * kFrame;
  const std::int32_t height = Down(dialog.height) + kTop + kFrame;
  window->place.left = (desktopWidth - width) / 2;
  window->place.top = (desktopHeight - height) / 2;
  window->place.right = window->place.left + width;
  window->place.bottom = window->place.top + height;
  window->normal = window->place;
  for (const ControlTemplate& control : dialog.controls) {
    window->controls.push_back(MakeControl(control));
    if (control.style & kStyleDefault) window->defaultButton = control.id;
  }
  VirtualWindow& made = *window;
  windows[made.handle] = std::move(window);
  modals.push_back({Modal::Dialog, made.handle});
  ++asked;
  return made;
}

void WindowSystem::Leave(Modal::Kind kind, WindowHandle window) {
  const auto place = std::find_if(modals.rbegin(), modals.rend(), [&](const Modal& modal) {
    return modal.kind == kind && modal.window == window;
  });
  modals.erase(std::next(place).base());
}

void WindowSystem::Destroy(WindowHandle window) {
  Leave(Modal::Dialog, window);
  queue.remove_if([&](const Message& message) { return message.window == window; });
  windows.erase(window);
}

void WindowSystem::Appear(VirtualWindow& window) {
  const Rect place = Limited(window, window.place);
  if (!window.minimised && !window.maximised) window.place = window.normal = place;
  Show(window, true);
  const VirtualControl* focus = window.Find(window.focus);
  if (!focus) {
    const auto first =
        std::find_if(window.controls.begin(), window.controls.end(),
                     [](const auto& one) { return one.TakesFocus() && one.Usable(); });
    if (first != window.controls.end()) {
      SetFocus(window, first->id);
      first->allSelected = first->kind == ControlKind::Edit;
      first->caret = static_cast<std::uint32_t>(first->text.size());
    }
  }
  TellPlace(window, {},
            window.minimised   ? SIZE_MINIMIZED
            : window.maximised ? SIZE_MAXIMIZED
                               : SIZE_RESTORED,
            true);
}

std::int32_t WindowSystem::RunDialog(const DialogTemplate& dialog, WindowHandle owner,
                                     WindowListener& listener) {
  if (!running || !OnUserInterface()) return -1;
  VirtualWindow& window = Make(dialog, owner, listener);
  listener.OnInitDialog(window.handle);
  if (!window.ended) Appear(window);
  while (!window.ended) HandleOne();
  window.visible = false;
  listener.OnDestroy();
  const std::int32_t ended = window.result;
  Destroy(window.handle);
  return ended;
}

std::int32_t WindowSystem::RunBox(ShownMessageBox box) {
  if (othersRefused && !OnUserInterface()) return 0;
  boxes.push_back(box);
  ++asked;
  if (!answers.empty()) {
    const std::int32_t answer = answers.front();
    answers.pop_front();
    return answer;
  }
  if (!running || scheduler.OnOutermost()) return 0;
  openBoxes.push_back({std::move(box), OnUserInterface(), {}, {}, {}});
  const auto open = std::prev(openBoxes.end());
  if (open->modal) {
    modals.push_back({Modal::Box});
    while (!open->answered) HandleOne();
    Leave(Modal::Box, kNoWindow);
  } else {
    open->event = std::make_shared<Event>();
    WaitFor(open->event, Scheduler::kNever);
  }
  const std::int32_t button = open->button;
  openBoxes.erase(open);
  return button;
}

OpenBox* WindowSystem::TopBox() {
  openBoxes.remove_if(
      [](const OpenBox& box) { return !box.modal && !box.answered && box.event->waiters.empty(); });
  for (auto box = openBoxes.rbegin(); box != openBoxes.rend(); ++box) {
    if (!box->answered) return &*box;
  }
  return nullptr;
}

bool WindowSystem::CoveredByThread(const VirtualWindow& window) {
  TopBox();
  return std::any_of(openBoxes.begin(), openBoxes.end(), [&](const OpenBox& box) {
    return !box.modal && !box.answered && box.shown.owner == window.handle;
  });
}

void WindowSystem::Answer(OpenBox& box, std::int32_t button) {
  if (!box.modal) {
    box.answered = true;
    box.button = button;
    box.event->signalled = true;
    scheduler.WakeWaiters(*box.event);
    return;
  }
  Post(kNoWindow, [&box, button] {
    box.answered = true;
    box.button = button;
  });
}

void WindowSystem::DismissBoxesOfOtherThreads() {
  othersRefused = true;
  for (OpenBox& box : openBoxes) {
    if (box.modal || box.answered) continue;
    Answer(box, (box.shown.type & 0xF) == MB_YESNO ? IDNO : IDOK);
  }
}

std::vector<OpenMenu::Entry> OpenMenu::EntriesOf(std::span<const MenuItem> items) {
  std::vector<Entry> entries;
  for (const MenuItem& item : items) entries.push_back({item.text ? item.text : "", item.command});
  return entries;
}

void WindowSystem::PostCommand(const VirtualWindow& window, std::uint32_t command) {
  Post(window.handle,
       [listener = window.listener, command] { listener->OnNotice(command, Notice::Clicked, 0); });
}

bool WindowSystem::RunMenu(VirtualWindow& window, std::span<const MenuItem> items) {
  if (menu.up) return false;
  menu = {};
  menu.entries = OpenMenu::EntriesOf(items);
  menu.up = true;
  ++menusShown;
  ++asked;
  modals.push_back({Modal::Menu});
  while (menu.up) HandleOne();
  Leave(Modal::Menu, kNoWindow);
  if (menu.chosen >= 0)
    PostCommand(window, menu.entries[static_cast<std::size_t>(menu.chosen)].command);
  return true;
}

Rect WindowSystem::Limited(VirtualWindow& window, Rect place) {
  MinMaxInfo info;
  window.listener->OnGetMinMaxInfo(&info);
  std::int32_t width = place.Width();
  std::int32_t height = place.Height();
  if (info.maxTrackWidth != 0) width = std::min(width, info.maxTrackWidth);
  if (info.maxTrackHeight != 0) height = std::min(height, info.maxTrackHeight);
  place.right = place.left + std::max(width, info.minTrackWidth);
  place.bottom = place.top + std::max(height, info.minTrackHeight);
  return place;
}

void WindowSystem::TellPlace(VirtualWindow& window, const Rect& before, std::uint32_t type,
                             bool always) {
  const Rect& now = window.place;
  const bool moved = now.left != before.left || now.top != before.top;
  const bool sized = now.Width() != before.Width() || now.Height() != before.Height();
  if (always || moved) {
    const Point corner = window.InsideCorner();
    window.listener->OnMove(corner.x, corner.y);
  }
  if (always || sized) {
    MarkAllForPainting(window);
    const Rect inside = window.Inside();
    window.listener->OnSize(type, inside.Width(), inside.Height());
  }
}

void WindowSystem::Place(VirtualWindow& window, Rect place, bool limited) {
  if (limited && !window.minimised) place = Limited(window, place);
  const Rect before = std::exchange(window.place, place);
  if (!window.minimised && !window.maximised) window.normal = place;
  TellPlace(window, before,
            window.minimised   ? SIZE_MINIMIZED
            : window.maximised ? SIZE_MAXIMIZED
                               : SIZE_RESTORED,
            false);
}

void WindowSystem::Minimise(VirtualWindow& window) {
  if (!window.minimised) {
    if (!hooks.empty() && hooks.back().procedure(HCBT_MINMAX, window.handle, SW_MINIMIZE) != 0) {
      return;
    }
    const Rect before = std::exchange(window.place, kAway);
    window.restoresToMaximised = window.maximised;
    window.minimised = true;
    window.maximised = false;
    window.visible = true;
    TellPlace(window, before, SIZE_MINIMIZED, true);
  }
  window.visible = true;
}

void WindowSystem::Maximise(VirtualWindow& window) {
  if (window.maximised) return;
  window.minimised = false;
  window.maximised = true;
  MinMaxInfo info;
  window.listener->OnGetMinMaxInfo(&info);
  Rect place{0, 0, desktopWidth, desktopHeight};
  if (info.maxTrackWidth != 0) place.right = std::min(place.right, info.maxTrackWidth);
  if (info.maxTrackHeight != 0) place.bottom = std::min(place.bottom, info.maxTrackHeight);
  const Rect before = std::exchange(window.place, place);
  TellPlace(window, before, SIZE_MAXIMIZED, true);
}

void WindowSystem::Restore(VirtualWindow& window, bool normal) {
  if (!window.minimised && !window.maximised) return;
  if (window.minimised && window.restoresToMaximised && !normal) {
    Maximise(window);
    return;
  }
  window.minimised = false;
  window.maximised = false;
  window.restoresToMaximised = false;
  const Rect before = std::exchange(window.place, window.normal);
  TellPlace(window, before, SIZE_RESTORED, true);
}

void WindowSystem::Show(VirtualWindow& window, bool visible) {
  if (visible && !window.visible) MarkAllForPainting(window);
  window.visible = visible;
}

void WindowSystem::MarkAllForPainting(VirtualWindow& window) {
  MarkForPainting(window);
  for (VirtualControl& control : window.controls) MarkForPainting(control);
}

void WindowSystem::Paint(VirtualWindow& window) {
  if (!window.visible || !window.needsPaint) return;
  window.needsPaint = false;
  RecordingCanvas canvas;
  window.listener->OnPaint(canvas);
}

// ---- Messages

void WindowSystem::Post(WindowHandle window, std::function<void()> message) {
  queue.push_back({window, std::move(message)});
  Wake();
}

void WindowSystem::Wake() {
  wake->signalled = true;
  scheduler.WakeWaiters(*wake);
}

void WindowSystem::MarkForPainting(VirtualWindow& window) {
  window.needsPaint = true;
  Wake();
}

void WindowSystem::MarkForPainting(VirtualControl& control) {
  control.needsPaint = true;
  Wake();
}

void WindowSystem::HandleOne() {
  if (!queue.empty()) {
    handled.splice(handled.end(), queue, queue.begin());
    const auto message = std::prev(handled.end());
    message->run();
    handled.erase(message);
    return;
  }
  if (PaintOne() || RunDueTimer()) return;
  idle = true;
  WaitFor(wake, NextTimer());
  idle = false;
}

// Keeps nothing on a stack that may be dropped.
void WindowSystem::WaitFor(const std::shared_ptr<Event>& event, std::uint64_t t) {
  std::vector<std::shared_ptr<Waitable>> objects;
  objects.push_back(event);
  scheduler.Wait(std::move(objects), t);
}

bool WindowSystem::PaintOne() {
  for (const auto& [handle, window] : windows) {
    if (!window->visible) continue;
    if (window->needsPaint) {
      Paint(*window);
      return true;
    }
    if (window->minimised) continue;
    for (VirtualControl& control : window->controls) {
      if (!control.needsPaint || !control.visible) continue;
      control.needsPaint = false;
      if (control.kind == ControlKind::ListView) {
        window->listener->OnNotice(control.id, Notice::Painted, 0);
        return true;
      }
      if (control.kind == ControlKind::DrawnButton) {
        DrawButton(*window, control, false, false);
        return true;
      }
    }
  }
  return false;
}

bool WindowSystem::RunDueTimer() {
  VirtualWindow* owner = nullptr;
  std::uint32_t id = 0;
  std::uint64_t due = scheduler.Now() + 1;
  for (const auto& [handle, window] : windows) {
    for (const auto& [timerId, timer] : window->timers) {
      if (timer.due >= due) continue;
      owner = window.get();
      id = timerId;
      due = timer.due;
    }
  }
  if (!owner) return false;
  VirtualWindow::Timer& timer = owner->timers[id];
  timer.due += (scheduler.Now() - timer.due) / timer.period * timer.period + timer.period;
  owner->listener->OnTimer(id);
  return true;
}

std::uint64_t WindowSystem::NextTimer() const {
  std::uint64_t next = Scheduler::kNever;
  for (const auto& [handle, window] : windows) {
    for (const auto& [id, timer] : window->timers) next = std::min(next, timer.due);
  }
  return next;
}

// ---- The focus

bool WindowSystem::MoveFocus(VirtualWindow& window, std::uint32_t control) {
  if (window.focus == control) return true;
  const std::uint64_t askedBefore = asked;
  VirtualControl* const left = window.Find(window.focus);
  window.focus = control;
  if (left && left->kind == ControlKind::Edit) {
    left->allSelected = false;
    window.listener->OnNotice(left->id, Notice::FocusLost, 0);
    if (window.focus != control || window.ended || asked != askedBefore) return false;
  }
  if (left && left->kind == ControlKind::DrawnButton) DrawButton(window, *left, false, true);
  VirtualControl* const entered = window.Find(control);
  if (entered && entered->kind == ControlKind::DrawnButton) {
    DrawButton(window, *entered, false, true);
  }
  return true;
}

void WindowSystem::SetFocus(VirtualWindow& window, std::uint32_t control) {
  if (window.focus == control) return;
  VirtualControl* const left = window.Find(window.focus);
  window.focus = control;
  for (VirtualControl* changed : {left, window.Find(control)}) {
    if (changed && changed->kind == ControlKind::DrawnButton) {
      DrawButton(window, *changed, false, true);
    }
  }
}

// ---- Controls

void WindowSystem::Check(VirtualWindow& window, VirtualControl& control, bool checked) {
  if (control.kind == ControlKind::RadioButton && checked) {
    auto first = window.controls.begin() + (&control - window.controls.data());
    auto last = first;
    while (first != window.controls.begin() && std::prev(first)->kind == ControlKind::RadioButton) {
      --first;
    }
    while (last != window.controls.end() && last->kind == ControlKind::RadioButton) ++last;
    for (auto one = first; one != last; ++one) one->checked = false;
  }
  control.checked = checked;
}

void WindowSystem::DrawButton(VirtualWindow& window, VirtualControl& control, bool pressed,
                              bool focusAction) {
  if (!window.Seen() || !control.visible) return;
  RecordingCanvas canvas;
  DrawItem item;
  item.id = control.id;
  item.rect = {0, 0, control.place.Width(), control.place.Height()};
  item.pressed = pressed;
  item.focused = window.focus == control.id;
  item.disabled = !control.enabled;
  item.focusAction = focusAction;
  window.listener->OnDrawItem(item, canvas);
}

void WindowSystem::SetColumnWidth(VirtualWindow& window, VirtualControl& list, std::int32_t column,
                                  std::int32_t width) {
  window.listener->OnNotice(list.id, Notice::HeaderItemChanging, column);
  list.columns[static_cast<std::size_t>(column)].width = std::max(width, 0);
  MarkForPainting(list);
  window.listener->OnNotice(list.id, Notice::HeaderItemChanged, column);
}

}  // namespace platform::simulation
