#include "app/platform/simulation/screen.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "app/platform/simulation/recording_canvas.h"
#include "app/platform/simulation/virtual_controls.h"
#include "app/platform/simulation/virtual_desktop.h"
#include "app/platform/simulation/virtual_shell.h"
#include "app/platform/simulation/window_system.h"

namespace platform::simulation {
namespace {

constexpr std::uint8_t kBackspace = 0x08;
constexpr std::uint8_t kTab = 0x09;
constexpr std::uint8_t kEnter = 0x0D;
constexpr std::uint8_t kControl = 0x11;
constexpr std::uint8_t kEscape = 0x1B;
constexpr std::uint8_t kSpace = 0x20;
constexpr std::uint8_t kPageUp = 0x21;
constexpr std::uint8_t kPageDown = 0x22;
constexpr std::uint8_t kEnd = 0x23;
constexpr std::uint8_t kHome = 0x24;
constexpr std::uint8_t kLeft = 0x25;
constexpr std::uint8_t kUp = 0x26;
constexpr std::uint8_t kRight = 0x27;
constexpr std::uint8_t kDown = 0x28;
constexpr std::uint8_t kDelete = 0x2E;
constexpr std::uint8_t kF1 = 0x70;

constexpr std::intptr_t kLeftButtonUp = 0x202;

bool IsCharacter(std::uint8_t vk) { return (vk >= '0' && vk <= '9') || (vk >= 'A' && vk <= 'Z'); }

char Typed(std::uint8_t vk) {
  return static_cast<char>(vk >= 'A' && vk <= 'Z' ? vk + ('a' - 'A') : vk);
}

bool HasMnemonic(const VirtualControl& control) {
  return control.marksMnemonic && control.HasText() && control.kind != ControlKind::Edit &&
         control.kind != ControlKind::TextArea;
}

std::string Shown(const VirtualControl& control) {
  if (!HasMnemonic(control)) return control.text;
  std::string shown;
  for (std::size_t at = 0; at < control.text.size(); ++at) {
    if (control.text[at] == '&' && at + 1 < control.text.size()) ++at;
    shown += control.text[at];
  }
  return shown;
}

// In lower case; 0 for none.
char Mnemonic(const VirtualControl& control) {
  if (!HasMnemonic(control)) return 0;
  const std::string& text = control.text;
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at] != '&') continue;
    if (text[++at] != '&') {
      return static_cast<char>(text[at] >= 'A' && text[at] <= 'Z' ? text[at] + ('a' - 'A')
                                                                  : text[at]);
    }
  }
  return 0;
}

// Where the arrows, Home and End lead in a row of `count`; `now` where they don't.
std::int32_t Stepped(std::uint8_t vk, std::int32_t now, std::int32_t count) {
  std::int32_t next = now;
  if (vk == kLeft || vk == kUp) next = now - 1;
  if (vk == kRight || vk == kDown) next = now + 1;
  if (vk == kHome) next = 0;
  if (vk == kEnd) next = count - 1;
  return count == 0 ? now : std::clamp(next, std::min(now, 0), count - 1);
}

}  // namespace

struct Screen::State {
  State(Scheduler& scheduler, Journal& journal)
      : system(scheduler, journal), desktop(system), controls(system), shell(journal) {}

  // ---- Who may do what

  [[noreturn]] static void Refuse(const std::string& act, const std::string& why) {
    throw std::logic_error(act + ": " + why);
  }

  void Settle() {
    if (!system.scheduler.OnOutermost()) Refuse("screen", "used by the program that it shows");
    if (!system.Settle()) {
      Refuse("screen", "the program doesn't wait for the person, in five minutes");
    }
  }

  // The dialog in front, whatever covers it.
  VirtualWindow& Look() const {
    VirtualWindow* const window = system.Newest();
    if (!window) Refuse("screen", "there is no dialog");
    return *window;
  }

  VirtualControl& Look(std::uint32_t id) const {
    VirtualControl* const control = Look().Find(id);
    if (!control) {
      Refuse("screen", "dialog " + std::to_string(Look().dialog->id) + " has no control " +
                           std::to_string(id));
    }
    return *control;
  }

  VirtualControl& Look(std::uint32_t id, ControlKind kind, const char* what) const {
    VirtualControl& control = Look(id);
    if (control.kind != kind) {
      Refuse("screen", "control " + std::to_string(id) + " is no " + what);
    }
    return control;
  }

  // The dialog in front, waiting for the person's input.
  VirtualWindow& Reach(const std::string& act) {
    Settle();
    if (!system.running) Refuse(act, "the program doesn't run");
    if (system.MenuOnTop()) Refuse(act, "a menu is up");
    if (const OpenBox* box = system.TopBox(); box && box->modal && !system.DialogOnTop()) {
      Refuse(act, "a message box is in front: \"" + box->shown.text + "\"");
    }
    VirtualWindow& window = Look();
    if (system.CoveredByThread(window)) {
      Refuse(act, "a message box is in front: \"" + system.TopBox()->shown.text + "\"");
    }
    if (!window.visible) Refuse(act, "the window is hidden");
    return window;
  }

  VirtualWindow& ReachInside(const std::string& act) {
    VirtualWindow& window = Reach(act);
    if (window.minimised) Refuse(act, "the window is minimised");
    return window;
  }

  VirtualControl& ReachControl(const std::string& act, std::uint32_t id) {
    const std::string whole = act + ' ' + std::to_string(id);
    VirtualWindow& window = ReachInside(whole);
    VirtualControl* const control = window.Find(id);
    if (!control) {
      Refuse(whole, "dialog " + std::to_string(window.dialog->id) + " has no such control");
    }
    if (!control->visible) Refuse(whole, "the control is hidden");
    if (!control->enabled) Refuse(whole, "the control is disabled");
    return *control;
  }

  VirtualControl& ReachControl(const std::string& act, std::uint32_t id, ControlKind kind,
                               const char* what) {
    VirtualControl& control = ReachControl(act, id);
    if (control.kind != kind) {
      Refuse(act + ' ' + std::to_string(id), std::string("the control is no ") + what);
    }
    return control;
  }

  void MustHaveRow(const std::string& act, std::int32_t row, std::size_t count) {
    if (row < 0 || static_cast<std::size_t>(row) >= count) {
      Refuse(act, "there is no " + std::to_string(row) + " among " + std::to_string(count));
    }
  }

  // Hands an act to the program and lets it run.
  void Do(std::function<void(VirtualWindow&)> act) {
    VirtualWindow& window = Look();
    system.Post(window.handle, [&window, act = std::move(act)] { act(window); });
    Settle();
  }

  VirtualWindow& IconsWindow() {
    if (!system.running) Refuse("the icon", "the program doesn't run");
    if (!desktop.iconShown) Refuse("the icon", "it isn't there");
    VirtualWindow* const window = system.Find(desktop.icon.hWnd);
    if (!window) Refuse("the icon", "its window isn't there any more");
    return *window;
  }

  void PostFromIcon(std::uint32_t iconId, std::intptr_t message) {
    const VirtualWindow& window = IconsWindow();
    const std::uint32_t number = desktop.icon.uCallbackMessage;
    system.Post(window.handle, [listener = window.listener, number, iconId, message] {
      listener->OnMessage(number, iconId, message);
    });
  }

  static std::vector<std::string> TextsOf(const std::vector<OpenMenu::Entry>& entries) {
    std::vector<std::string> texts;
    for (const auto& entry : entries) texts.push_back(entry.text);
    return texts;
  }

  // Of the entry with that text.
  static std::size_t RowOf(const char* act, const std::vector<std::string>& entries,
                           const std::string& text) {
    const auto found = std::find(entries.begin(), entries.end(), text);
    if (text.empty() || found == entries.end()) Refuse(act, "there is no entry \"" + text + "\"");
    return static_cast<std::size_t>(found - entries.begin());
  }

  void EndMenu(std::int32_t chosen) {
    if (!system.MenuOnTop()) Refuse("the menu", "a dialog or a message box is in front of it");
    system.Post(kNoWindow, [this, chosen] {
      system.menu.chosen = chosen;
      system.menu.up = false;
    });
    Settle();
  }

  // ---- Acts, on the user interface's thread

  void Notify(VirtualWindow& window, std::uint32_t id, Notice notice, std::int32_t value = 0) {
    window.listener->OnNotice(id, notice, value);
  }

  void PressIt(VirtualWindow& window, VirtualControl& control) {
    if (control.kind == ControlKind::DrawnButton) {
      system.DrawButton(window, control, true, false);
      system.DrawButton(window, control, false, false);
    }
    if (control.kind == ControlKind::CheckBox) {
      system.Check(window, control, !control.checked);
    } else if (control.kind == ControlKind::RadioButton) {
      system.Check(window, control, true);
    }
    Notify(window, control.id, Notice::Clicked);
  }

  void ClickIt(VirtualWindow& window, VirtualControl& control) {
    if (control.TakesFocus() && !system.MoveFocus(window, control.id)) return;
    switch (control.kind) {
      case ControlKind::Edit:
      case ControlKind::TextArea:
      case ControlKind::DropList:
      case ControlKind::ListView:
        return;
      default:
        PressIt(window, control);
    }
  }

  void SetPosition(VirtualWindow& window, VirtualControl& slider, std::int32_t position) {
    slider.position = std::clamp(position, slider.least, slider.most);
    Notify(window, slider.id, Notice::Scrolled, slider.position);
  }

  void ChooseRow(VirtualWindow& window, VirtualControl& list, std::int32_t row) {
    list.current = row;
    Notify(window, list.id, Notice::SelectionChanged, row);
  }

  void SelectOnly(VirtualControl& list, const std::vector<std::int32_t>& rows) {
    for (auto& item : list.items) item.selected = false;
    for (const std::int32_t row : rows) list.items[static_cast<std::size_t>(row)].selected = true;
    system.MarkForPainting(list);
  }

  // The next control that takes the focus, behind that place in the order of the Tab key.
  static VirtualControl* NextFocus(VirtualWindow& window, std::size_t place) {
    const std::size_t count = window.controls.size();
    for (std::size_t step = 1; step <= count; ++step) {
      VirtualControl& control = window.controls[(place + step) % count];
      if (control.TakesFocus() && control.Usable()) return &control;
    }
    return nullptr;
  }

  static std::size_t PlaceOf(const VirtualWindow& window, const VirtualControl* control) {
    return control ? static_cast<std::size_t>(control - window.controls.data())
                   : window.controls.size() - 1;
  }

  void FocusIt(VirtualWindow& window, VirtualControl& control) {
    if (!system.MoveFocus(window, control.id)) return;
    control.allSelected = control.kind == ControlKind::Edit;
    control.caret = static_cast<std::uint32_t>(control.text.size());
  }

  bool PressMnemonic(VirtualWindow& window, char key) {
    for (std::size_t place = 0; place < window.controls.size(); ++place) {
      VirtualControl& control = window.controls[place];
      if (!control.Usable() || Mnemonic(control) != key) continue;
      if (control.TakesFocus()) {
        ClickIt(window, control);
      } else if (VirtualControl* next = NextFocus(window, place)) {
        FocusIt(window, *next);
      }
      return true;
    }
    return false;
  }

  // False for a key that the control has no use for.
  bool KeyToControl(VirtualWindow& window, VirtualControl& control, std::uint8_t vk, bool held) {
    switch (control.kind) {
      case ControlKind::Edit:
        if (!held) EditKey(window, control, vk);
        return true;
      case ControlKind::TextArea:
        return true;
      case ControlKind::ListView: {
        Notify(window, control.id, Notice::KeyDown, vk);
        const auto count = static_cast<std::int32_t>(control.items.size());
        const bool steps = vk == kUp || vk == kDown || vk == kHome || vk == kEnd;
        if (held || !steps || count == 0) return true;
        std::int32_t now = -1;
        for (std::int32_t row = 0; row < count && now < 0; ++row) {
          if (control.items[static_cast<std::size_t>(row)].selected) now = row;
        }
        const std::int32_t next = Stepped(vk, now, count);
        if (next >= 0) SelectOnly(control, {next});
        return true;
      }
      case ControlKind::DropList: {
        if (held) return false;
        const auto count = static_cast<std::int32_t>(control.rows.size());
        std::int32_t next = Stepped(vk, control.current, count);
        if (IsCharacter(vk) || vk == kSpace) {
          const std::string begin(1, Typed(vk));
          for (std::int32_t step = 1; step <= count; ++step) {
            const std::int32_t row = (control.current + step) % count;
            const std::string& text = control.rows[static_cast<std::size_t>(row)].text;
            if (!FoldsEqual(text.substr(0, 1), begin)) continue;
            next = row;
            break;
          }
        }
        if (next != control.current) ChooseRow(window, control, next);
        return true;
      }
      case ControlKind::Slider: {
        if (held) return false;
        const std::int32_t page = std::max((control.most - control.least) / 5, 1);
        std::int32_t position =
            Stepped(vk, control.position - control.least, control.most - control.least + 1) +
            control.least;
        if (vk == kPageUp) position -= page;
        if (vk == kPageDown) position += page;
        if (position == control.position) return false;
        SetPosition(window, control, position);
        return true;
      }
      case ControlKind::TabControl: {
        const std::int32_t next =
            held ? control.current
                 : Stepped(vk, control.current, static_cast<std::int32_t>(control.tabs.size()));
        if (next == control.current) return false;
        ChooseRow(window, control, next);
        return true;
      }
      case ControlKind::RadioButton:
        if (!held && (vk == kLeft || vk == kUp || vk == kRight || vk == kDown)) {
          StepRadio(window, control, vk == kLeft || vk == kUp ? -1 : 1);
          return true;
        }
        break;
      default:
        break;
    }
    if (held || vk != kSpace) return false;
    PressIt(window, control);
    return true;
  }

  void StepRadio(VirtualWindow& window, VirtualControl& control, std::ptrdiff_t step) {
    VirtualControl* const first = window.controls.data();
    VirtualControl* const end = first + window.controls.size();
    VirtualControl* const next = &control + step;
    if (next < first || next >= end || next->kind != ControlKind::RadioButton || !next->Usable()) {
      return;
    }
    ClickIt(window, *next);
  }

  void EditKey(VirtualWindow& window, VirtualControl& edit, std::uint8_t vk) {
    const auto length = static_cast<std::uint32_t>(edit.text.size());
    const bool readOnly = edit.style & kStyleReadOnly;
    const std::string before = edit.text;
    const bool types = IsCharacter(vk) || vk == kSpace;
    const bool removes = vk == kBackspace || vk == kDelete;
    if (types && edit.style & kStyleDigits && !(vk >= '0' && vk <= '9')) return;
    if (vk == kLeft && edit.caret > 0) --edit.caret;
    if (vk == kRight && edit.caret < length) ++edit.caret;
    if (vk == kHome) edit.caret = 0;
    if (vk == kEnd) edit.caret = length;
    if ((types || removes) && !readOnly) {
      if (edit.allSelected) {
        edit.text.clear();
        edit.caret = 0;
      } else if (vk == kBackspace && edit.caret > 0) {
        edit.text.erase(--edit.caret, 1);
      } else if (vk == kDelete && edit.caret < length) {
        edit.text.erase(edit.caret, 1);
      }
      if (types) edit.text.insert(edit.caret++, 1, Typed(vk));
    }
    edit.allSelected = false;
    if (edit.text != before) Notify(window, edit.id, Notice::Changed);
  }

  void StepTab(VirtualWindow& window, std::int32_t by) {
    for (VirtualControl& control : window.controls) {
      const auto count = static_cast<std::int32_t>(control.tabs.size());
      if (control.kind != ControlKind::TabControl || !control.Usable() || count == 0) continue;
      if (!system.MoveFocus(window, control.id)) return;
      ChooseRow(window, control, (control.current + by + count) % count);
      return;
    }
  }

  void Key(VirtualWindow& window, std::uint8_t vk, bool held) {
    VirtualControl* control = window.Find(window.focus);
    if (control && !control->Usable()) control = nullptr;
    if (vk == kF1) {
      Notify(window, 0, Notice::KeyDown, vk);
    } else if (held && (vk == kTab || vk == kPageDown || vk == kPageUp)) {
      StepTab(window, vk == kPageUp ? -1 : 1);
    } else if (vk == kTab) {
      if (window.controls.empty()) return;
      if (VirtualControl* next = NextFocus(window, PlaceOf(window, control))) {
        FocusIt(window, *next);
      }
    } else if (vk == kEnter) {
      if (control && (control->IsButton() || control->kind == ControlKind::Link)) {
        PressIt(window, *control);
      } else if (window.defaultButton == 0) {
        Notify(window, IDOK, Notice::Clicked);
      } else if (VirtualControl* button = window.Find(window.defaultButton);
                 button && button->enabled) {
        PressIt(window, *button);  // a hidden one, too
      }
    } else if (vk == kEscape) {
      const VirtualControl* const cancel = window.Find(IDCANCEL);
      if (!cancel || cancel->enabled) Notify(window, IDCANCEL, Notice::Clicked);
    } else if (!control || !KeyToControl(window, *control, vk, held)) {
      if (!held && IsCharacter(vk) && PressMnemonic(window, Typed(vk))) return;
      Notify(window, 0, Notice::KeyDown, vk);
    }
  }

  WindowSystem system;
  VirtualDesktop desktop;
  VirtualControls controls;
  VirtualShell shell;
};

Screen::Screen(Scheduler& scheduler, Journal& journal)
    : state(std::make_unique<State>(scheduler, journal)) {}

Screen::~Screen() = default;

platform::Desktop& Screen::Desktop() { return state->desktop; }
platform::Controls& Screen::Controls() { return state->controls; }
platform::Shell& Screen::Shell() { return state->shell; }

// ---- The program

void Screen::Start(std::function<std::int32_t()> program) {
  if (state->system.running) State::Refuse("Start", "a program runs already");
  state->system.Start(std::move(program));
  state->Settle();
}

bool Screen::Running() const { return state->system.running; }

std::int32_t Screen::Result() const {
  if (state->system.running) State::Refuse("Result", "the program still runs");
  return state->system.result;
}

void Screen::Settle() { state->Settle(); }

// ---- Windows

std::uint32_t Screen::Front() const {
  const VirtualWindow* const window = state->system.Newest();
  return window ? window->dialog->id : 0;
}

WindowHandle Screen::Window() const {
  const VirtualWindow* const window = state->system.Newest();
  return window ? window->handle : kNoWindow;
}

WindowHandle Screen::WindowOf(std::uint32_t dialog) const { return state->system.WindowOf(dialog); }

std::vector<TopLevelWindow> Screen::TopLevelWindows() const {
  return state->system.TopLevelWindows();
}

bool Screen::Shown() const { return state->Look().visible; }
bool Screen::Minimised() const { return state->Look().minimised; }
bool Screen::Maximised() const { return state->Look().maximised; }
std::string Screen::Title() const { return state->Look().title; }
Rect Screen::Place() const { return state->Look().place; }
Rect Screen::Inside() const { return state->Look().Inside(); }

IconHandle Screen::Icon(bool large) const {
  const VirtualWindow& window = state->Look();
  return large ? window.largeIcon : window.smallIcon;
}

void Screen::Minimise() {
  const VirtualWindow& window = state->Reach("Minimise");
  if (!(window.dialog->style & kWindowMinimiseBox)) {
    State::Refuse("Minimise", "the window has no box for it");
  }
  if (window.minimised) State::Refuse("Minimise", "the window is minimised");
  state->Do([this](VirtualWindow& front) { state->system.Minimise(front); });
}

void Screen::Maximise() {
  const VirtualWindow& window = state->Reach("Maximise");
  if (!(window.dialog->style & kWindowMaximiseBox)) {
    State::Refuse("Maximise", "the window has no box for it");
  }
  if (window.maximised) State::Refuse("Maximise", "the window is maximised");
  state->Do([this](VirtualWindow& front) { state->system.Maximise(front); });
}

void Screen::Restore() {
  const VirtualWindow& window = state->Reach("Restore");
  if (!window.minimised && !window.maximised) {
    State::Refuse("Restore", "the window is neither minimised nor maximised");
  }
  state->Do([this](VirtualWindow& front) { state->system.Restore(front, false); });
}

void Screen::Resize(std::int32_t width, std::int32_t height) {
  const VirtualWindow& window = state->ReachInside("Resize");
  if (!(window.dialog->style & kWindowResizable)) {
    State::Refuse("Resize", "the window has a fixed size");
  }
  if (window.maximised) State::Refuse("Resize", "the window is maximised");
  state->Do([this, width, height](VirtualWindow& front) {
    const Rect& now = front.place;
    state->system.Place(front, {now.left, now.top, now.left + width, now.top + height}, true);
  });
}

void Screen::MoveTo(std::int32_t x, std::int32_t y) {
  if (state->ReachInside("MoveTo").maximised) State::Refuse("MoveTo", "the window is maximised");
  state->Do([this, x, y](VirtualWindow& front) {
    const Rect& now = front.place;
    state->system.Place(front, {x, y, x + now.Width(), y + now.Height()}, false);
  });
}

void Screen::Close() {
  state->Reach("Close");
  state->Do([](VirtualWindow& front) { front.listener->OnClose(); });
}

std::int32_t Screen::HitTest(std::int32_t x, std::int32_t y) {
  VirtualWindow& window = state->ReachInside("HitTest");
  const Rect inside = window.Inside();
  if (x < 0 || y < 0 || x >= inside.right || y >= inside.bottom) {
    State::Refuse("HitTest", "the point isn't inside of the window");
  }
  for (const VirtualControl& control : window.controls) {
    const Rect& place = control.place;
    const bool clear = !control.visible || control.kind == ControlKind::Box ||
                       control.kind == ControlKind::GroupBox;
    if (!clear && x >= place.left && x < place.right && y >= place.top && y < place.bottom) {
      State::Refuse("HitTest", "control " + std::to_string(control.id) + " is there");
    }
  }
  std::int32_t answer = 0;
  state->Do([x, y, &answer](VirtualWindow& front) {
    const Point corner = front.InsideCorner();
    answer = front.listener->OnNcHitTest({corner.x + x, corner.y + y});
  });
  return answer;
}

Drawing Screen::Paint() {
  state->Settle();
  if (!state->Look().visible) State::Refuse("Paint", "the window is hidden");
  RecordingCanvas canvas;
  state->Do([&canvas](VirtualWindow& front) { front.listener->OnPaint(canvas); });
  return canvas.lines;
}

Drawing Screen::PaintButton(std::uint32_t id, bool pressed) {
  state->Settle();
  const VirtualControl& button = state->Look(id, ControlKind::DrawnButton, "drawn button");
  if (!state->Look().Seen() || !button.visible) {
    State::Refuse("PaintButton " + std::to_string(id), "the button isn't seen");
  }
  DrawItem item;
  item.id = id;
  item.rect = {0, 0, button.place.Width(), button.place.Height()};
  item.pressed = pressed;
  item.focused = state->Look().focus == id;
  item.disabled = !button.enabled;
  RecordingCanvas canvas;
  state->Do([&](VirtualWindow& front) { front.listener->OnDrawItem(item, canvas); });
  return canvas.lines;
}

// ---- Message boxes

void Screen::AnswerNext(std::int32_t button) { state->system.answers.push_back(button); }

void Screen::Answer(std::int32_t button) {
  state->Settle();
  OpenBox* const box = state->system.TopBox();
  if (!box) State::Refuse("Answer", "there is no message box");
  if (box->modal && !state->system.BoxOnTop()) {
    State::Refuse("Answer", "a dialog or a menu is in front of the message box");
  }
  const bool asks = box->shown.type & MB_YESNO;
  if (asks ? button != IDYES && button != IDNO : button != IDOK) {
    State::Refuse("Answer", "the message box has no button " + std::to_string(button));
  }
  state->system.Answer(*box, button);
  state->Settle();
}

bool Screen::BoxUp() const { return state->system.TopBox() != nullptr; }

ShownMessageBox Screen::Box() const {
  const OpenBox* const box = state->system.TopBox();
  if (!box) State::Refuse("Box", "there is no message box");
  return box->shown;
}

const std::vector<ShownMessageBox>& Screen::Boxes() const { return state->system.boxes; }

// ---- Controls

bool Screen::Has(std::uint32_t id) const { return state->Look().Find(id) != nullptr; }
std::string Screen::Text(std::uint32_t id) const { return simulation::Shown(state->Look(id)); }

bool Screen::Visible(std::uint32_t id) const {
  const VirtualControl& control = state->Look(id);
  return control.visible && control.kind != ControlKind::Box;
}

bool Screen::Enabled(std::uint32_t id) const { return state->Look(id).enabled; }
bool Screen::Checked(std::uint32_t id) const { return state->Look(id).checked; }
Rect Screen::ControlPlace(std::uint32_t id) const { return state->Look(id).place; }
std::uint32_t Screen::Focus() const { return state->Look().focus; }
std::uint32_t Screen::Caret(std::uint32_t id) const { return state->Look(id).caret; }
BitmapHandle Screen::Picture(std::uint32_t id) const { return state->Look(id).picture; }
Colour Screen::TextColour(std::uint32_t id) const { return state->Look(id).textColour; }
Colour Screen::BackgroundColour(std::uint32_t id) const { return state->Look(id).backgroundColour; }

std::string Screen::Font(std::uint32_t id) const {
  const VirtualControl& control = state->Look(id);
  return control.face + ' ' + std::to_string(control.height) + ' ' +
         std::to_string(control.weight) + (control.underline ? " underlined" : "");
}

bool Screen::HandCursor(std::uint32_t id) const { return state->Look(id).handCursor; }

std::uint32_t Screen::Redraws(std::uint32_t id) {
  return std::exchange(state->Look(id).redraws, 0);
}

void Screen::Click(std::uint32_t id) {
  const VirtualControl& control = state->ReachControl("Click", id);
  switch (control.kind) {
    case ControlKind::Picture:
    case ControlKind::Rule:
    case ControlKind::GroupBox:
    case ControlKind::Box:
    case ControlKind::TabControl:
    case ControlKind::Slider:
      State::Refuse("Click " + std::to_string(id), "there is nothing to click on");
    default:
      break;
  }
  state->Do([this, id](VirtualWindow& front) { state->ClickIt(front, *front.Find(id)); });
}

void Screen::FocusOn(std::uint32_t id) {
  if (!state->ReachControl("FocusOn", id).TakesFocus()) {
    State::Refuse("FocusOn " + std::to_string(id), "the control takes no focus");
  }
  state->Do([this, id](VirtualWindow& front) { state->FocusIt(front, *front.Find(id)); });
}

void Screen::Press(std::uint8_t vk, bool control) {
  state->ReachInside("Press");
  state->Do([this, vk, control](VirtualWindow& front) {
    state->system.keysHeld[vk] = true;
    state->system.keysHeld[kControl] |= control;
    state->Key(front, vk, control);
    state->system.keysHeld[vk] = false;
    state->system.keysHeld[kControl] = false;
  });
}

void Screen::Type(std::uint32_t id, const std::string& text) {
  const VirtualControl& edit = state->ReachControl("Type", id, ControlKind::Edit, "edit");
  if (edit.style & kStyleReadOnly) {
    State::Refuse("Type " + std::to_string(id), "the text can't be changed");
  }
  std::string taken = text;
  if (edit.style & kStyleDigits) {
    std::erase_if(taken, [](char c) { return c < '0' || c > '9'; });
  }
  state->Do([this, id, taken](VirtualWindow& front) {
    if (!state->system.MoveFocus(front, id)) return;
    VirtualControl& typedInto = *front.Find(id);
    typedInto.allSelected = false;
    typedInto.caret = static_cast<std::uint32_t>(taken.size());
    if (std::exchange(typedInto.text, taken) != taken) {
      state->Notify(front, id, Notice::Changed);
    }
  });
}

// ---- Drop lists

std::vector<std::string> Screen::Rows(std::uint32_t id) const {
  std::vector<std::string> rows;
  for (const auto& row : state->Look(id, ControlKind::DropList, "drop list").rows) {
    rows.push_back(row.text);
  }
  return rows;
}

std::string Screen::Chosen(std::uint32_t id) const {
  const VirtualControl& list = state->Look(id, ControlKind::DropList, "drop list");
  return list.current < 0 ? "" : list.rows[static_cast<std::size_t>(list.current)].text;
}

std::int32_t Screen::ChosenRow(std::uint32_t id) const {
  return state->Look(id, ControlKind::DropList, "drop list").current;
}

void Screen::Choose(std::uint32_t id, const std::string& row) {
  const VirtualControl& list =
      state->ReachControl("Choose", id, ControlKind::DropList, "drop list");
  const auto found = std::find_if(list.rows.begin(), list.rows.end(),
                                  [&](const auto& one) { return one.text == row; });
  if (found == list.rows.end()) {
    State::Refuse("Choose " + std::to_string(id), "there is no row \"" + row + "\"");
  }
  const auto place = static_cast<std::int32_t>(found - list.rows.begin());
  state->Do([this, id, place](VirtualWindow& front) {
    if (state->system.MoveFocus(front, id)) state->ChooseRow(front, *front.Find(id), place);
  });
}

// ---- Lists

std::vector<std::vector<std::string>> Screen::Cells(std::uint32_t id) const {
  const VirtualControl& list = state->Look(id, ControlKind::ListView, "list");
  std::vector<std::vector<std::string>> cells;
  for (const auto& item : list.items) {
    cells.push_back(item.texts);
    cells.back().resize(list.columns.size());
  }
  return cells;
}

std::vector<std::int32_t> Screen::SelectedRows(std::uint32_t id) const {
  const VirtualControl& list = state->Look(id, ControlKind::ListView, "list");
  std::vector<std::int32_t> rows;
  for (std::size_t row = 0; row < list.items.size(); ++row) {
    if (list.items[row].selected) rows.push_back(static_cast<std::int32_t>(row));
  }
  return rows;
}

void Screen::SelectRows(std::uint32_t id, const std::vector<std::int32_t>& rows) {
  const VirtualControl& list = state->ReachControl("SelectRows", id, ControlKind::ListView, "list");
  for (const std::int32_t row : rows) state->MustHaveRow("SelectRows", row, list.items.size());
  if (rows.size() > 1 && !(list.style & kStyleMultiSelect)) {
    State::Refuse("SelectRows " + std::to_string(id), "one row of it can be selected");
  }
  state->Do([this, id, rows](VirtualWindow& front) {
    if (state->system.MoveFocus(front, id)) state->SelectOnly(*front.Find(id), rows);
  });
}

void Screen::DoubleClickRow(std::uint32_t id, std::int32_t row) {
  const VirtualControl& list =
      state->ReachControl("DoubleClickRow", id, ControlKind::ListView, "list");
  if (row != kNoRow) state->MustHaveRow("DoubleClickRow", row, list.items.size());
  state->Do([this, id, row](VirtualWindow& front) {
    if (!state->system.MoveFocus(front, id)) return;
    std::vector<std::int32_t> rows;
    if (row != kNoRow) rows.push_back(row);
    state->SelectOnly(*front.Find(id), rows);
    state->Notify(front, id, Notice::DoubleClicked, row);
  });
}

std::vector<std::int32_t> Screen::ColumnWidths(std::uint32_t id) const {
  std::vector<std::int32_t> widths;
  for (const auto& column : state->Look(id, ControlKind::ListView, "list").columns) {
    widths.push_back(column.width);
  }
  return widths;
}

std::vector<std::int32_t> Screen::ColumnOrder(std::uint32_t id) const {
  return state->Look(id, ControlKind::ListView, "list").order;
}

void Screen::DragDivider(std::uint32_t id, std::int32_t column, std::int32_t width) {
  const VirtualControl& list =
      state->ReachControl("DragDivider", id, ControlKind::ListView, "list");
  state->MustHaveRow("DragDivider", column, list.columns.size());
  state->Do([this, id, column, width](VirtualWindow& front) {
    state->system.SetColumnWidth(front, *front.Find(id), column, width);
  });
}

void Screen::DragHeader(std::uint32_t id, std::int32_t column, std::int32_t place) {
  const VirtualControl& list = state->ReachControl("DragHeader", id, ControlKind::ListView, "list");
  state->MustHaveRow("DragHeader", column, list.columns.size());
  state->MustHaveRow("DragHeader", place, list.columns.size());
  state->Do([this, id, column, place](VirtualWindow& front) {
    state->Notify(front, id, Notice::HeaderDragEnded, column);
    VirtualControl& dragged = *front.Find(id);
    std::erase(dragged.order, column);
    dragged.order.insert(dragged.order.begin() + place, column);
    state->system.MarkForPainting(dragged);
  });
}

// ---- Tabs and sliders

std::vector<std::string> Screen::Tabs(std::uint32_t id) const {
  std::vector<std::string> tabs;
  for (const auto& tab : state->Look(id, ControlKind::TabControl, "tab control").tabs) {
    tabs.push_back(tab.text);
  }
  return tabs;
}

std::int32_t Screen::Tab(std::uint32_t id) const {
  return state->Look(id, ControlKind::TabControl, "tab control").current;
}

void Screen::ChooseTab(std::uint32_t id, std::int32_t tab) {
  const VirtualControl& control =
      state->ReachControl("ChooseTab", id, ControlKind::TabControl, "tab control");
  state->MustHaveRow("ChooseTab", tab, control.tabs.size());
  state->Do([this, id, tab](VirtualWindow& front) {
    if (!state->system.MoveFocus(front, id)) return;
    VirtualControl& changed = *front.Find(id);
    if (changed.current != tab) state->ChooseRow(front, changed, tab);
  });
}

std::int32_t Screen::Slider(std::uint32_t id) const {
  return state->Look(id, ControlKind::Slider, "slider").position;
}

std::string Screen::SliderScale(std::uint32_t id) const {
  const VirtualControl& slider = state->Look(id, ControlKind::Slider, "slider");
  return std::to_string(slider.least) + " to " + std::to_string(slider.most) + ", a tick each " +
         std::to_string(slider.every);
}

void Screen::MoveSlider(std::uint32_t id, std::int32_t position) {
  const VirtualControl& slider =
      state->ReachControl("MoveSlider", id, ControlKind::Slider, "slider");
  if (position < slider.least || position > slider.most) {
    State::Refuse("MoveSlider " + std::to_string(id), "the slider doesn't reach that far");
  }
  state->Do([this, id, position](VirtualWindow& front) {
    if (state->system.MoveFocus(front, id)) state->SetPosition(front, *front.Find(id), position);
  });
}

// ---- Tool tips

std::string Screen::Hover(std::uint32_t id) {
  const VirtualWindow& window = state->ReachInside("Hover " + std::to_string(id));
  const VirtualControl& control = state->Look(id);
  if (!control.visible) State::Refuse("Hover " + std::to_string(id), "the control is hidden");
  const bool asked = (control.isTool && window.toolTipActive) || window.toolTipsEnabled;
  if (!asked) return {};
  std::string tip;
  state->Do([id, &tip](VirtualWindow& front) { tip = front.listener->OnToolTip(id); });
  return tip;
}

std::string Screen::HoverTab(std::uint32_t id, std::int32_t tab) {
  const VirtualControl& control =
      state->ReachControl("HoverTab", id, ControlKind::TabControl, "tab control");
  state->MustHaveRow("HoverTab", tab, control.tabs.size());
  const auto& tool = control.tabs[static_cast<std::size_t>(tab)];
  if (tool.isTool && state->Look().toolTipActive) return tool.tip;
  return Hover(id);
}

std::int32_t Screen::ToolTipWidth() const { return state->Look().toolTipWidth; }
std::int32_t Screen::ToolTipTime() const { return state->Look().toolTipTime; }

// ---- The notification area

const std::vector<std::string>& Screen::Told() const { return state->desktop.told; }

bool Screen::IconShown() const { return state->desktop.iconShown; }
NOTIFYICONDATA Screen::NotificationIcon() const { return state->desktop.icon; }

void Screen::IconDoubleClick() {
  state->Settle();
  for (const std::intptr_t message :
       {WM_LBUTTONDOWN, kLeftButtonUp, WM_LBUTTONDBLCLK, kLeftButtonUp}) {
    state->PostFromIcon(state->desktop.icon.uID, message);
  }
  state->Settle();
}

void Screen::IconRightClick() {
  state->Settle();
  for (const std::intptr_t message : {WM_RBUTTONDOWN, WM_RBUTTONUP}) {
    state->PostFromIcon(state->desktop.icon.uID, message);
  }
  state->Settle();
}

void Screen::IconMessage(std::uint32_t iconId, std::intptr_t mouseMessage) {
  state->Settle();
  state->PostFromIcon(iconId, mouseMessage);
  state->Settle();
}

std::vector<std::string> Screen::IconMenu() const {
  return State::TextsOf(state->desktop.iconMenu);
}

void Screen::ChooseIconMenu(const std::string& text) {
  state->Settle();
  const std::size_t row = State::RowOf("ChooseIconMenu", IconMenu(), text);
  const VirtualWindow& window = state->IconsWindow();
  state->system.PostCommand(window, state->desktop.iconMenu[row].command);
  state->Settle();
}

bool Screen::MenuUp() const { return state->system.menu.up; }

std::vector<std::string> Screen::Menu() const {
  if (!state->system.menu.up) State::Refuse("Menu", "there is no menu");
  return State::TextsOf(state->system.menu.entries);
}

void Screen::ChooseMenu(const std::string& text) {
  state->Settle();
  state->EndMenu(static_cast<std::int32_t>(State::RowOf("ChooseMenu", Menu(), text)));
}

void Screen::DismissMenu() {
  state->Settle();
  if (!state->system.menu.up) State::Refuse("DismissMenu", "there is no menu");
  state->EndMenu(-1);
}

std::size_t Screen::MenusShown() const { return state->system.menusShown; }

// ---- The session

void Screen::SetDesktop(std::int32_t width, std::int32_t height) {
  state->system.desktopWidth = width;
  state->system.desktopHeight = height;
}

void Screen::SetCommandLine(const std::string& line) { state->shell.commandLine = line; }

void Screen::ChooseNextPath(const std::string& path) { state->shell.chosenPaths.push_back(path); }

const std::vector<AskedPath>& Screen::AskedPaths() const { return state->shell.askedPaths; }

const std::vector<std::string>& Screen::OpenedAddresses() const { return state->shell.opened; }

std::size_t Screen::Beeps() const { return state->shell.beeps; }

const std::vector<HelpCall>& Screen::HelpCalls() const { return state->shell.helpCalls; }

void Screen::SetHelpLibrary(const std::string& name, bool there) {
  state->shell.libraries[name] = there;
}

const std::vector<std::string>& Screen::LoadedLibraries() const { return state->shell.askedFor; }

}  // namespace platform::simulation
