#include "tests/person/screen.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QSlider>
#include <QTabBar>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "app/platform/platform.h"
#include "app/platform/qt/drop_list.h"
#include "app/platform/qt/edits.h"
#include "app/platform/qt/list_view.h"
#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/slider.h"
#include "app/platform/qt/tab_control.h"
#include "app/platform/qt/text.h"
#include "app/platform/qt/virtual_keys.h"
#include "app/platform/simulation/simulation.h"
#include "tests/person/recorded_desktop.h"
#include "tests/person/recording_canvas.h"
#include "tests/person/virtual_dispatcher.h"
#include "tests/person/virtual_shell.h"

namespace platform::simulation {
namespace {

constexpr std::uint64_t kPatience = 5 * 60 * 1000;  // virtual ms
constexpr std::intptr_t kLeftButtonUp = 0x202;

// The first key that has this virtual key: printed ones, and from Esc on the others.
Qt::Key KeyOf(std::uint8_t vk) {
  for (int key = Qt::Key_Space; key <= Qt::Key_F24;
       key = key == Qt::Key_Z ? static_cast<int>(Qt::Key_Escape) : key + 1) {
    const QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    if (qt::VirtualKey(press) == vk) return static_cast<Qt::Key>(key);
  }
  return Qt::Key_unknown;
}

[[noreturn]] void Refuse(const std::string& act, const std::string& why) {
  throw std::logic_error(act + ": " + why);
}

void MustHave(const std::string& act, std::int32_t row, int count) {
  if (row < 0 || row >= count) {
    Refuse(act, "there is no " + std::to_string(row) + " among " + std::to_string(count));
  }
}

// The entry with that text.
template <typename Entries, typename TextOf>
std::size_t RowOf(const char* act, const Entries& entries, const std::string& text, TextOf textOf) {
  std::size_t row = 0;
  for (const auto& entry : entries) {
    if (!text.empty() && textOf(entry) == text) return row;
    ++row;
  }
  Refuse(act, "there is no entry \"" + text + "\"");
}

}  // namespace

struct Screen::State {
  explicit State(Simulation& machine)
      : machine(machine),
        desktop(machine.Scheduler(), machine.Journal()),
        controls(desktop.Windows(), machine.Journal()),
        shell(machine.Journal()) {
    machine.AddGroups(desktop, controls, shell);
    VirtualDispatcher::Get().SetMachine(&machine.Scheduler());
    machine.Processes().SetOwnWindows([this] { return desktop.Windows().TopLevelWindows(); },
                                      [this](WindowHandle window, std::uint32_t message) {
                                        return desktop.PostMessageA(window, message, 0, 0);
                                      });
  }

  ~State() { VirtualDispatcher::Get().SetMachine(nullptr); }

  void Settle() {
    Scheduler& scheduler = machine.Scheduler();
    if (!scheduler.OnOutermost()) Refuse("screen", "used by the program that it shows");
    const std::uint64_t end = scheduler.Now() + kPatience;
    for (std::uint64_t t = scheduler.Now(); t <= end; ++t) {
      scheduler.RunUntil(t);
      if (!running || VirtualDispatcher::Get().Idle()) return;
    }
    Refuse("screen", "the program doesn't wait for the person, in five minutes");
  }

  // Of the dialog in front, whatever covers it.
  qt::DialogWindow& Look() {
    const WindowHandle handle =
        desktop.dialogs.empty() ? kNoWindow : desktop.HandleOf(desktop.dialogs.size() - 1);
    qt::DialogWindow* const window = desktop.Windows().Find(handle);
    if (!window) Refuse("screen", "there is no dialog");
    return *window;
  }
  const RunningDialog& Dialog() {
    Look();
    return desktop.dialogs.back();
  }

  qt::Control& Look(std::uint32_t id) {
    qt::Control* const control = Look().Find(id);
    if (!control) {
      Refuse("screen", "dialog " + std::to_string(Dialog().dialog->id) + " has no control " +
                           std::to_string(id));
    }
    return *control;
  }

  template <typename Kind>
  Kind& Look(std::uint32_t id) {
    auto* const control = dynamic_cast<Kind*>(&Look(id));
    if (!control) Refuse("screen", "control " + std::to_string(id) + " is of another kind");
    return *control;
  }

  // The box in front, null for none.
  static QMessageBox* TopBox() {
    QMessageBox* top = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* const box = qobject_cast<QMessageBox*>(widget);
      if (!box || !box->isVisible()) continue;
      if (!top || box->isActiveWindow()) top = box;
    }
    return top;
  }
  static QMenu* TopMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

  // The dialog in front, waiting for the person's input.
  qt::DialogWindow& Reach(const std::string& act) {
    Settle();
    if (!running) Refuse(act, "the program doesn't run");
    if (TopMenu()) Refuse(act, "a menu is up");
    qt::DialogWindow& window = Look();
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      const auto* const box = qobject_cast<QMessageBox*>(widget);
      if (!box || !box->isVisible()) continue;
      if (box->parentWidget() && box->parentWidget() != &window) continue;
      Refuse(act, "a message box is in front: \"" + qt::Bytes(box->text()) + "\"");
    }
    if (!window.IsShown()) Refuse(act, "the window is hidden");
    return window;
  }

  qt::DialogWindow& ReachInside(const std::string& act) {
    qt::DialogWindow& window = Reach(act);
    if (window.IsIconic()) Refuse(act, "the window is minimised");
    return window;
  }

  qt::Control& ReachControl(const std::string& act, std::uint32_t id) {
    const std::string whole = act + ' ' + std::to_string(id);
    qt::Control* const control = ReachInside(whole).Find(id);
    if (!control) {
      Refuse(whole, "dialog " + std::to_string(Dialog().dialog->id) + " has no such control");
    }
    if (!control->IsShown()) Refuse(whole, "the control is hidden");
    if (!control->IsEnabled()) Refuse(whole, "the control is disabled");
    return *control;
  }

  template <typename Kind>
  Kind& ReachControl(const std::string& act, std::uint32_t id) {
    auto* const control = dynamic_cast<Kind*>(&ReachControl(act, id));
    if (!control) {
      Refuse(act + ' ' + std::to_string(id), "the control is of another kind");
    }
    return *control;
  }

  // Carries out an act on the user interface's thread and lets the program run.
  void Do(std::function<void()> act) {
    QMetaObject::invokeMethod(&desktop, std::move(act), Qt::QueuedConnection);
    Settle();
  }

  void PressKey(QWidget* target, std::uint8_t vk, Qt::KeyboardModifiers held) {
    const bool types = !held && ((vk >= '0' && vk <= '9') || (vk >= 'A' && vk <= 'Z'));
    if (types) {
      QTest::keyClick(target, static_cast<char>(vk >= 'A' ? vk + 32 : vk));
    } else {
      QTest::keyClick(target, KeyOf(vk), held);
    }
  }

  void ReachIcon() {
    Settle();
    if (!running) Refuse("the icon", "the program doesn't run");
    if (!desktop.iconShown) Refuse("the icon", "it isn't there");
  }

  void PostFromIcon(std::uint32_t iconId, std::intptr_t message) {
    ReachIcon();
    desktop.QtDesktop::PostMessageA(desktop.icon.hWnd, desktop.icon.uCallbackMessage, iconId,
                                    message);
  }

  Simulation& machine;
  RecordedDesktop desktop;
  RecordedControls controls;
  VirtualShell shell;
  bool running = false;
  std::int32_t result = 0;
};

Screen::Screen(Simulation& machine) : state(std::make_unique<State>(machine)) {}

Screen::~Screen() { Leave(); }

void Screen::Leave() {
  for (int i = 0; i < 50 && state->running; ++i) {
    state->Do([this] { state->desktop.CloseAll(); });
  }
}

platform::Desktop& Screen::Desktop() { return state->desktop; }
platform::Controls& Screen::Controls() { return state->controls; }
platform::Shell& Screen::Shell() { return state->shell; }

// ---- The program

void Screen::Start(std::function<std::int32_t()> program) {
  if (state->running) Refuse("Start", "a program runs already");
  state->running = true;
  const auto thread = state->machine.Scheduler().Spawn(
      Rank::UserInterface, "user interface", [this, program = std::move(program)] {
        state->result = program();
        state->running = false;
        return static_cast<std::uint32_t>(state->result);
      });
  if (!thread) {
    state->running = false;
    state->result = -1;
  }
  state->Settle();
}

bool Screen::Running() const { return state->running; }

std::int32_t Screen::Result() const {
  if (state->running) Refuse("Result", "the program still runs");
  return state->result;
}

void Screen::Settle() { state->Settle(); }

std::uint64_t Screen::Wakes() const { return VirtualDispatcher::Get().Waits(); }

// ---- Windows

std::uint32_t Screen::Front() const {
  const auto& dialogs = state->desktop.dialogs;
  return dialogs.empty() ? 0 : dialogs.back().dialog->id;
}

WindowHandle Screen::Window() const {
  const std::size_t count = state->desktop.dialogs.size();
  return count == 0 ? kNoWindow : state->desktop.HandleOf(count - 1);
}

WindowHandle Screen::WindowOf(std::uint32_t dialog) const {
  const auto& dialogs = state->desktop.dialogs;
  for (std::size_t place = dialogs.size(); place-- > 0;) {
    if (dialogs[place].dialog->id == dialog) return state->desktop.HandleOf(place);
  }
  return kNoWindow;
}

bool Screen::Shown() const { return state->Look().IsShown(); }
bool Screen::Minimised() const { return state->Look().IsIconic(); }
bool Screen::Maximised() const { return state->Look().IsZoomed(); }
std::string Screen::Title() const { return qt::Bytes(state->Look().windowTitle()); }
Rect Screen::Place() const { return state->Look().WholeRect(); }
Rect Screen::Inside() const { return qt::RectOf(state->Look().rect()); }

std::uint32_t Screen::Icon(bool large) const {
  return state->desktop.PictureOf(state->desktop.icons[{Window(), large}]);
}

void Screen::Minimise() {
  qt::DialogWindow& window = state->Reach("Minimise");
  if (!(state->Dialog().dialog->style & kWindowMinimiseBox)) {
    Refuse("Minimise", "the window has no box for it");
  }
  if (window.IsIconic()) Refuse("Minimise", "the window is minimised");
  state->Do([&window] { window.setWindowState(window.windowState() | Qt::WindowMinimized); });
}

void Screen::Maximise() {
  qt::DialogWindow& window = state->Reach("Maximise");
  if (!(state->Dialog().dialog->style & kWindowMaximiseBox)) {
    Refuse("Maximise", "the window has no box for it");
  }
  if (window.IsZoomed()) Refuse("Maximise", "the window is maximised");
  state->Do([&window] { window.setWindowState(Qt::WindowMaximized); });
}

void Screen::Restore() {
  qt::DialogWindow& window = state->Reach("Restore");
  if (!window.IsIconic() && !window.IsZoomed()) {
    Refuse("Restore", "the window is neither minimised nor maximised");
  }
  state->Do([&window] {
    window.setWindowState(window.IsIconic() ? window.windowState() & ~Qt::WindowMinimized
                                            : Qt::WindowNoState);
  });
}

void Screen::Resize(std::int32_t width, std::int32_t height) {
  qt::DialogWindow& window = state->ReachInside("Resize");
  if (!(state->Dialog().dialog->style & kWindowResizable)) {
    Refuse("Resize", "the window has a fixed size");
  }
  if (window.IsZoomed()) Refuse("Resize", "the window is maximised");
  state->Do([&window, width, height] { window.resize(width, height); });
}

void Screen::MoveTo(std::int32_t x, std::int32_t y) {
  qt::DialogWindow& window = state->ReachInside("MoveTo");
  if (window.IsZoomed()) Refuse("MoveTo", "the window is maximised");
  state->Do([&window, x, y] { window.move(x, y); });
}

void Screen::Close() {
  qt::DialogWindow& window = state->Reach("Close");
  state->Do([&window] { window.close(); });
}

std::int32_t Screen::HitTest(std::int32_t x, std::int32_t y) {
  const QPoint at = state->ReachInside("HitTest").mapToGlobal(QPoint(x, y));
  std::int32_t found = 0;
  state->Do([&] { found = state->Dialog().listener->OnNcHitTest({at.x(), at.y()}); });
  return found;
}

Drawing Screen::Paint() {
  state->Reach("Paint");
  RecordingCanvas canvas([this](IconHandle icon) { return state->desktop.PictureOf(icon); });
  state->Do([&] { state->Dialog().listener->OnPaint(canvas); });
  return canvas.lines;
}

Drawing Screen::PaintButton(std::uint32_t id, bool pressed) {
  state->ReachInside("PaintButton");
  const qt::Control& button = state->Look(id);
  DrawItem item;
  item.id = id;
  item.rect = {0, 0, button.Widget()->width(), button.Widget()->height()};
  item.pressed = pressed;
  item.focused = Focus() == id;
  item.disabled = !button.IsEnabled();
  RecordingCanvas canvas([this](IconHandle icon) { return state->desktop.PictureOf(icon); });
  state->Do([&] { state->Dialog().listener->OnDrawItem(item, canvas); });
  return canvas.lines;
}

// ---- Message boxes

void Screen::AnswerNext(std::int32_t button) { state->desktop.answers.push_back(button); }

void Screen::Answer(std::int32_t button) {
  state->Settle();
  QMessageBox* const box = State::TopBox();
  if (!box) Refuse("Answer", "there is no message box");
  const auto which = button == IDYES  ? QMessageBox::Yes
                     : button == IDNO ? QMessageBox::No
                                      : QMessageBox::Ok;
  QAbstractButton* const pressed = box->button(which);
  if (!pressed) Refuse("Answer", "the message box has no button " + std::to_string(button));
  state->Do([pressed] { pressed->click(); });
}

bool Screen::BoxUp() const { return State::TopBox() != nullptr; }

ShownMessageBox Screen::Box() const {
  const QMessageBox* const box = State::TopBox();
  if (!box) Refuse("Box", "there is no message box");
  const std::string caption = qt::Bytes(box->windowTitle());
  const auto& all = Boxes();
  const auto shown = std::find_if(all.rbegin(), all.rend(), [&](const ShownMessageBox& one) {
    return one.caption == caption && box->text().remove(QChar(0x200B)) == qt::Shown(one.text);
  });
  if (shown == all.rend()) Refuse("Box", "nobody asked for \"" + qt::Bytes(box->text()) + "\"");
  return *shown;
}

const std::vector<ShownMessageBox>& Screen::Boxes() const { return state->desktop.boxes; }
const std::vector<std::string>& Screen::Told() const { return state->desktop.told; }

// ---- Controls

std::string Screen::Text(std::uint32_t id) const {
  const qt::Control& control = state->Look(id);
  std::string text = control.Text();
  for (const ControlTemplate& from : state->Dialog().dialog->controls) {
    if (from.id == id && from.text && text == from.text && control.kind != ControlKind::Edit &&
        control.kind != ControlKind::TextArea) {
      std::erase(text, '&');
    }
  }
  return text;
}

bool Screen::Visible(std::uint32_t id) const {
  const qt::Control& control = state->Look(id);
  return control.IsShown() && control.kind != ControlKind::Box;
}

bool Screen::Enabled(std::uint32_t id) const { return state->Look(id).IsEnabled(); }
bool Screen::Checked(std::uint32_t id) const { return state->Look(id).IsChecked(); }
Rect Screen::ControlPlace(std::uint32_t id) const {
  return qt::RectOf(state->Look(id).Widget()->geometry());
}

std::uint32_t Screen::Focus() const {
  const qt::Control* const control = state->Look().Focused();
  return control ? control->id : 0;
}

std::uint32_t Screen::DefaultButton() const { return state->Look().DefaultButton(); }

std::uint32_t Screen::Caret(std::uint32_t id) const {
  const auto* const line = qobject_cast<QLineEdit*>(state->Look<qt::Edit>(id).FocusWidget());
  return static_cast<std::uint32_t>(line->cursorPosition());
}

BitmapHandle Screen::Picture(std::uint32_t id) const {
  return state->controls.looks[{Window(), id}].picture;
}
Colour Screen::TextColour(std::uint32_t id) const {
  return state->controls.looks[{Window(), id}].textColour;
}
Colour Screen::BackgroundColour(std::uint32_t id) const {
  return state->controls.looks[{Window(), id}].backgroundColour;
}
std::string Screen::Font(std::uint32_t id) const {
  const QFont& font = state->Look(id).Widget()->font();
  return qt::Bytes(font.family()) + ' ' + std::to_string(font.pixelSize()) + ' ' +
         std::to_string(static_cast<int>(font.weight())) + (font.underline() ? " underlined" : "");
}
bool Screen::HandCursor(std::uint32_t id) const {
  return state->Look(id).Widget()->cursor().shape() == Qt::PointingHandCursor;
}
std::uint32_t Screen::Redraws(std::uint32_t id) {
  return std::exchange(state->controls.looks[{Window(), id}].redraws, 0);
}

void Screen::Click(std::uint32_t id) {
  qt::Control& control = state->ReachControl("Click", id);
  switch (control.kind) {
    case ControlKind::Picture:
    case ControlKind::Rule:
    case ControlKind::GroupBox:
    case ControlKind::Box:
    case ControlKind::TabControl:
    case ControlKind::Slider:
      Refuse("Click " + std::to_string(id), "there is nothing to click on");
    case ControlKind::DropList:
      return FocusOn(id);
    case ControlKind::ListView: {
      QWidget* const rows = qobject_cast<QTreeView*>(control.FocusWidget())->viewport();
      return state->Do(
          [rows] { QTest::mouseClick(rows, Qt::LeftButton, {}, QPoint(2, rows->height() - 2)); });
    }
    default:
      break;
  }
  QWidget* const widget = control.Widget();
  // Where the box of a check box is, and its text.
  const QPoint at(std::min(8, widget->width() / 2), widget->height() / 2);
  state->Do([widget, at] { QTest::mouseClick(widget, Qt::LeftButton, {}, at); });
}

void Screen::FocusOn(std::uint32_t id) {
  const qt::Control& control = state->ReachControl("FocusOn", id);
  if (!control.TakesFocus()) {
    Refuse("FocusOn " + std::to_string(id), "the control takes no focus");
  }
  state->Do([&control] { control.FocusWidget()->setFocus(Qt::TabFocusReason); });
}

void Screen::Press(std::uint8_t vk, bool control) {
  qt::DialogWindow& window = state->ReachInside("Press");
  state->Do([this, &window, vk, control] {
    QWidget* const focused = window.focusWidget();
    const Qt::KeyboardModifiers held = control ? Qt::ControlModifier : Qt::NoModifier;
    state->PressKey(focused ? focused : &window, vk, held);
  });
}

void Screen::Type(std::uint32_t id, const std::string& text) {
  qt::Edit& edit = state->ReachControl<qt::Edit>("Type", id);
  auto* const line = qobject_cast<QLineEdit*>(edit.FocusWidget());
  if (line->isReadOnly()) Refuse("Type " + std::to_string(id), "the text can't be changed");
  QString typed = qt::Shown(text);
  if (edit.style & kStyleDigits) typed.removeIf([](QChar c) { return c < u'0' || c > u'9'; });
  state->Do([this, line, typed] {
    qt::DialogWindow& window = state->Look();
    line->setFocus(Qt::TabFocusReason);
    if (!window.Focused() || window.focusWidget() != line || line->text() == typed) return;
    line->selectAll();
    if (typed.isEmpty()) {
      QTest::keyClick(line, Qt::Key_Delete);
    } else {
      QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, typed);
      QApplication::sendEvent(line, &press);
    }
  });
}

// ---- Drop lists

std::vector<std::string> Screen::Rows(std::uint32_t id) const {
  const auto& list = state->Look<qt::DropList>(id);
  std::vector<std::string> rows;
  for (std::int32_t row = 0; row < list.Rows().Count(); ++row)
    rows.push_back(list.Rows().Text(row));
  return rows;
}

std::string Screen::Chosen(std::uint32_t id) const {
  const auto& list = state->Look<qt::DropList>(id);
  return list.Rows().Text(list.Rows().Selected());
}

std::int32_t Screen::ChosenRow(std::uint32_t id) const {
  return state->Look<qt::DropList>(id).Rows().Selected();
}

void Screen::Choose(std::uint32_t id, const std::string& row) {
  auto& list = state->ReachControl<qt::DropList>("Choose", id);
  const auto rows = Rows(id);
  const auto place = static_cast<int>(RowOf(("Choose " + std::to_string(id)).c_str(), rows, row,
                                            [](const auto& text) { return text; }));
  auto* const box = qobject_cast<QComboBox*>(list.FocusWidget());
  state->Do([this, box, place] {
    box->setFocus(Qt::MouseFocusReason);
    if (state->Look().focusWidget() != box) return;
    box->showPopup();
    box->view()->setCurrentIndex(box->model()->index(place, box->modelColumn()));
    QTest::keyClick(box->view(), Qt::Key_Return);
  });
}

// ---- Lists

std::vector<std::vector<std::string>> Screen::Cells(std::uint32_t id) const {
  const auto& list = state->Look<qt::ListView>(id);
  std::vector<std::vector<std::string>> cells(static_cast<std::size_t>(list.ItemCount()));
  for (std::size_t row = 0; row < cells.size(); ++row) {
    for (std::size_t column = 0; column < list.Order().size(); ++column) {
      cells[row].push_back(
          list.ItemText(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column)));
    }
  }
  return cells;
}

std::vector<std::int32_t> Screen::SelectedRows(std::uint32_t id) const {
  const auto& list = state->Look<qt::ListView>(id);
  std::vector<std::int32_t> rows;
  for (std::int32_t row = list.NextSelected(-1); row != kNoRow; row = list.NextSelected(row)) {
    rows.push_back(row);
  }
  return rows;
}

namespace {

QTreeView& ViewOf(const qt::ListView& list) {
  return *qobject_cast<QTreeView*>(list.FocusWidget());
}

QPoint MiddleOf(QTreeView& view, std::int32_t row) {
  const QModelIndex cell = view.model()->index(row, 0);
  view.scrollTo(cell);
  return {5, view.visualRect(cell).center().y()};
}

}  // namespace

void Screen::SelectRows(std::uint32_t id, const std::vector<std::int32_t>& rows) {
  auto& list = state->ReachControl<qt::ListView>("SelectRows", id);
  for (const std::int32_t row : rows) MustHave("SelectRows", row, list.ItemCount());
  if (rows.size() > 1 && !(list.style & kStyleMultiSelect)) {
    Refuse("SelectRows " + std::to_string(id), "one row of it can be selected");
  }
  state->Do([&view = ViewOf(list), rows] {
    view.setFocus(Qt::MouseFocusReason);
    view.clearSelection();
    for (const std::int32_t row : rows) {
      QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, MiddleOf(view, row));
    }
  });
}

void Screen::DoubleClickRow(std::uint32_t id, std::int32_t row) {
  auto& list = state->ReachControl<qt::ListView>("DoubleClickRow", id);
  if (row != kNoRow) MustHave("DoubleClickRow", row, list.ItemCount());
  state->Do([&view = ViewOf(list), row] {
    const QPoint at =
        row == kNoRow ? QPoint(5, view.viewport()->height() - 2) : MiddleOf(view, row);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at);
  });
}

std::vector<std::int32_t> Screen::ColumnWidths(std::uint32_t id) const {
  const auto& list = state->Look<qt::ListView>(id);
  std::vector<std::int32_t> widths;
  for (std::size_t column = 0; column < list.Order().size(); ++column) {
    widths.push_back(list.ColumnWidth(static_cast<std::int32_t>(column)));
  }
  return widths;
}

std::vector<std::int32_t> Screen::ColumnOrder(std::uint32_t id) const {
  return state->Look<qt::ListView>(id).Order();
}

void Screen::DragDivider(std::uint32_t id, std::int32_t column, std::int32_t width) {
  auto& list = state->ReachControl<qt::ListView>("DragDivider", id);
  MustHave("DragDivider", column, static_cast<int>(list.Order().size()));
  state->Do([&view = ViewOf(list), column, width] { view.header()->resizeSection(column, width); });
}

void Screen::DragHeader(std::uint32_t id, std::int32_t column, std::int32_t place) {
  auto& list = state->ReachControl<qt::ListView>("DragHeader", id);
  MustHave("DragHeader", column, static_cast<int>(list.Order().size()));
  MustHave("DragHeader", place, static_cast<int>(list.Order().size()));
  state->Do([&view = ViewOf(list), column, place] {
    view.header()->moveSection(view.header()->visualIndex(column), place);
  });
}

// ---- Tabs and sliders

std::vector<std::string> Screen::Tabs(std::uint32_t id) const {
  const auto* const bar = qobject_cast<QTabBar*>(state->Look<qt::TabControl>(id).FocusWidget());
  std::vector<std::string> tabs;
  for (int tab = 0; tab < bar->count(); ++tab) tabs.push_back(qt::Bytes(bar->tabText(tab)));
  return tabs;
}

std::int32_t Screen::Tab(std::uint32_t id) const {
  return state->Look<qt::TabControl>(id).Selected();
}

void Screen::ChooseTab(std::uint32_t id, std::int32_t tab) {
  auto& control = state->ReachControl<qt::TabControl>("ChooseTab", id);
  auto* const bar = qobject_cast<QTabBar*>(control.FocusWidget());
  MustHave("ChooseTab", tab, bar->count());
  state->Do([bar, tab] { QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(tab).center()); });
}

std::int32_t Screen::Slider(std::uint32_t id) const { return state->Look<qt::Slider>(id).Pos(); }

std::string Screen::SliderScale(std::uint32_t id) const {
  const auto* const slider = qobject_cast<QSlider*>(state->Look<qt::Slider>(id).FocusWidget());
  return std::to_string(slider->minimum()) + " to " + std::to_string(slider->maximum()) +
         ", a tick each " + std::to_string(slider->tickInterval());
}

void Screen::MoveSlider(std::uint32_t id, std::int32_t position) {
  auto* const slider =
      qobject_cast<QSlider*>(state->ReachControl<qt::Slider>("MoveSlider", id).FocusWidget());
  if (position < slider->minimum() || position > slider->maximum()) {
    Refuse("MoveSlider " + std::to_string(id), "the slider doesn't reach that far");
  }
  state->Do([this, slider, position] {
    slider->setFocus(Qt::MouseFocusReason);
    if (state->Look().focusWidget() == slider) slider->setValue(position);
  });
}

// ---- Tool tips

std::string Screen::Hover(std::uint32_t id) {
  const qt::DialogWindow& window = state->ReachInside("Hover " + std::to_string(id));
  if (!state->Look(id).IsShown()) Refuse("Hover " + std::to_string(id), "the control is hidden");
  if (!window.tips.active || !window.tips.IsTool(id)) return {};
  std::string tip;
  state->Do([&] { tip = state->Dialog().listener->OnToolTip(id); });
  return tip;
}

std::string Screen::HoverTab(std::uint32_t id, std::int32_t tab) {
  state->ReachControl<qt::TabControl>("HoverTab", id);
  const auto& tips = state->Look().tips;
  if (const std::string* text = tips.TabText(id, tab); text && tips.active) return *text;
  return Hover(id);
}

std::int32_t Screen::ToolTipWidth() const { return state->Look().tips.width; }
std::int32_t Screen::ToolTipTime() const { return state->Look().tips.time; }

// ---- The notification area

bool Screen::IconShown() const { return state->desktop.iconShown; }
NOTIFYICONDATA Screen::NotificationIcon() const { return state->desktop.icon; }
std::uint32_t Screen::NotificationPicture() const {
  return state->desktop.PictureOf(state->desktop.icon.hIcon);
}

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
  std::vector<std::string> texts;
  for (const MenuEntry& entry : state->desktop.iconMenu) texts.push_back(entry.text);
  return texts;
}

void Screen::ChooseIconMenu(const std::string& text) {
  state->ReachIcon();
  const auto& menu = state->desktop.iconMenu;
  const std::uint32_t command =
      menu[RowOf("ChooseIconMenu", menu, text, [](const MenuEntry& one) { return one.text; })]
          .command;
  state->desktop.Windows().Post(state->desktop.icon.hWnd, [command](qt::DialogWindow& window) {
    window.SendNotice(command, Notice::Clicked, 0);
  });
  state->Settle();
}

bool Screen::MenuUp() const { return State::TopMenu() != nullptr; }

std::vector<std::string> Screen::Menu() const {
  const QMenu* const menu = State::TopMenu();
  if (!menu) Refuse("Menu", "there is no menu");
  std::vector<std::string> texts;
  for (const QAction* action : menu->actions()) texts.push_back(qt::Bytes(action->text()));
  return texts;
}

void Screen::ChooseMenu(const std::string& text) {
  state->Settle();
  const auto row = static_cast<qsizetype>(
      RowOf("ChooseMenu", Menu(), text, [](const auto& entry) { return entry; }));
  QMenu* const menu = State::TopMenu();
  state->Do([menu, row] {
    menu->setActiveAction(menu->actions().at(row));
    QTest::keyClick(menu, Qt::Key_Return);
  });
}

void Screen::DismissMenu() {
  state->Settle();
  QMenu* const menu = State::TopMenu();
  if (!menu) Refuse("DismissMenu", "there is no menu");
  state->Do([menu] { QTest::keyClick(menu, Qt::Key_Escape); });
}

std::size_t Screen::MenusShown() const { return state->desktop.menusShown; }

// ---- The session

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
