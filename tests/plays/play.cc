#include "tests/plays/play.h"

#include <set>

#include "app/resources/control_ids.h"

namespace kelvaro::tests {
namespace {

using platform::ControlKind;
using platform::ControlTemplate;
using platform::WindowHandle;

std::string NameOf(ControlKind kind) {
  switch (kind) {
    case ControlKind::Label:
      return "label";
    case ControlKind::Link:
      return "link";
    case ControlKind::Picture:
      return "picture";
    case ControlKind::Rule:
      return "rule";
    case ControlKind::GroupBox:
      return "group";
    case ControlKind::Box:
      return "box";
    case ControlKind::Edit:
      return "edit";
    case ControlKind::TextArea:
      return "area";
    case ControlKind::Button:
    case ControlKind::PictureButton:
    case ControlKind::DrawnButton:
      return "button";
    case ControlKind::CheckBox:
      return "check";
    case ControlKind::RadioButton:
      return "radio";
    case ControlKind::DropList:
      return "drop list";
    case ControlKind::ListView:
      return "list";
    case ControlKind::TabControl:
      return "tabs";
    case ControlKind::Slider:
      return "slider";
  }
  return "";
}

bool IsOfTheBuildOrTheMachine(std::uint32_t id) {
  return id == main_window::kWebLink || id == main_window::kMailLink ||
         id == main_window::kTimerMin || id == main_window::kTimerMax;
}

constexpr char kHidden[] = "hidden";

// On one line.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\r') continue;
    quoted += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return quoted + '"';
}

std::string DropListText(WindowHandle window, std::uint32_t id) {
  platform::Controls& all = platform::controls();
  const std::int32_t row = all.ComboGetCurSel(window, id);
  std::string text = row < 0 ? " none" : ' ' + Quoted(all.ComboGetLBText(window, id, row));
  text += " of";
  for (std::int32_t i = 0; i < all.ComboGetCount(window, id); ++i)
    text += ' ' + Quoted(all.ComboGetLBText(window, id, i));
  return text;
}

// Widths differ with the font: they either fill the list or don't.
std::string ListText(WindowHandle window, std::uint32_t id) {
  platform::Controls& all = platform::controls();
  std::vector<std::int32_t> order;
  all.ListGetColumnOrder(window, id, &order);
  std::string text = " columns";
  std::int32_t width = 0;
  for (const std::int32_t column : order) {
    text += ' ' + std::to_string(column);
    width += all.ListGetColumnWidth(window, id, column);
  }
  text += width == all.ListGetClientWidth(window, id) ? " full" : " not full";
  std::set<std::int32_t> selected;
  for (std::int32_t row = all.ListGetNextSelected(window, id, -1); row != platform::kNoRow;
       row = all.ListGetNextSelected(window, id, row))
    selected.insert(row);
  for (std::int32_t row = 0; row < all.ListGetItemCount(window, id); ++row) {
    text += selected.contains(row) ? " *(" : " (";
    for (std::size_t column = 0; column < order.size(); ++column)
      text += (column == 0 ? "" : " ") +
              Quoted(all.ListGetItemText(window, id, row, static_cast<std::int32_t>(column)));
    text += ')';
  }
  return text;
}

std::string ContentOf(const ControlTemplate& from, WindowHandle window) {
  platform::Controls& all = platform::controls();
  switch (from.kind) {
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
      return ' ' + Quoted(all.GetDlgItemTextA(window, from.id)) +
             (all.IsDlgButtonChecked(window, from.id) ? " checked" : "");
    case ControlKind::DropList:
      return DropListText(window, from.id);
    case ControlKind::ListView:
      return ListText(window, from.id);
    case ControlKind::TabControl:
      return ' ' + std::to_string(all.TabGetCurSel(window, from.id));
    case ControlKind::Slider:
      return ' ' + std::to_string(all.SliderGetPos(window, from.id));
    default:
      return ' ' + Quoted(all.GetDlgItemTextA(window, from.id));
  }
}

}  // namespace

Sight SightOf(const platform::DialogTemplate& dialog, WindowHandle window,
              std::uint32_t defaultButton) {
  platform::Controls& all = platform::controls();
  Sight sight;
  sight.window = "dialog " + std::to_string(dialog.id) +
                 (platform::desktop().IsWindowVisible(window) ? "" : " hidden") +
                 (platform::desktop().IsIconic(window) ? " minimised" : "");
  const std::uint32_t focus = all.GetControlFocus(window);
  // Enter presses the button that has the focus, whichever it would press otherwise.
  for (const ControlTemplate& from : dialog.controls)
    if (from.id == focus && NameOf(from.kind) == "button") defaultButton = focus;
  for (const ControlTemplate& from : dialog.controls) {
    if (dialog.id == main_window::kDialog && IsOfTheBuildOrTheMachine(from.id)) continue;
    const bool hidden = !all.IsControlVisible(window, from.id) || from.kind == ControlKind::Box;
    std::string& line = sight.controls[{dialog.id, from.id}];
    line = std::to_string(from.id) + ' ';
    line += hidden ? kHidden : NameOf(from.kind) + ContentOf(from, window);
    if (!all.IsControlEnabled(window, from.id)) line += " disabled";
    if (from.id == focus) line += " focus";
    if (from.id == defaultButton) line += " default";
  }
  return sight;
}

std::string BoxLine(const std::string& caption, const std::string& text) {
  return "box " + Quoted(caption) + ' ' + Quoted(text);
}

void Sight::Take(const Sight& now) {
  box = now.box;
  window = now.window;
  for (const auto& [key, line] : now.controls) controls[key] = line;
}

Lines Changes(const Sight& before, const Sight& now) {
  Lines lines;
  if (now.box != before.box) lines.push_back(now.box.empty() ? "no box" : now.box);
  if (now.window != before.window) lines.push_back(now.window.empty() ? "no dialog" : now.window);
  for (const auto& [key, line] : now.controls) {
    const auto found = before.controls.find(key);
    const std::string old =
        found == before.controls.end() ? std::to_string(key.second) + ' ' + kHidden : found->second;
    if (line != old) lines.push_back(line);
  }
  return lines;
}

}  // namespace kelvaro::tests
