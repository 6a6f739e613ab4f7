#include "recorder.h"

namespace platform {
namespace {

const char* NameOf(Notice notice) {
  switch (notice) {
    case Notice::Clicked:
      return "clicked";
    case Notice::DoubleClicked:
      return "double clicked";
    case Notice::SelectionChanged:
      return "selection changed";
    case Notice::Changed:
      return "changed";
    case Notice::FocusLost:
      return "focus lost";
    case Notice::Scrolled:
      return "scrolled";
    case Notice::KeyDown:
      return "key down";
    case Notice::HeaderItemChanging:
      return "header changing";
    case Notice::HeaderItemChanged:
      return "header changed";
    case Notice::HeaderDragEnded:
      return "header drag ended";
    case Notice::Painted:
      return "painted";
    case Notice::ControlMessage:
      return "message";
  }
  return "?";
}

using enum ControlKind;

constexpr const char* kRows[] = {"one", "two", "three"};

constexpr ControlTemplate kControls[] = {
    {Label, kNameLabel, "&Name", 5, 5, 50, 8},
    {Edit, kNameEdit, "", 60, 4, 80, 12},
    {Edit, kDigitsEdit, "", 60, 20, 80, 12, kStyleDigits, "Digits"},
    {Edit, kReadOnlyEdit, "fixed", 60, 36, 80, 12, kStyleReadOnly, "Read only"},
    {TextArea, kArea, "first\r\nsecond", 60, 52, 80, 30, 0, "Area"},
    {Button, kButton, "&Edit", 150, 4, 50, 14, kStyleDefault},
    {PictureButton, kPictureButton, "Move up", 150, 20, 20, 14},
    {DrawnButton, kDrawnButton, "Test", 150, 36, 50, 14},
    {CheckBox, kCheck, "&Check", 150, 52, 50, 10},
    {RadioButton, kRadioA, "A", 150, 64, 30, 10},
    {RadioButton, kRadioB, "B", 180, 64, 30, 10},
    {GroupBox, kGroup, "&Group", 145, 76, 70, 20},
    {RadioButton, kRadioC, "C", 150, 84, 30, 10},
    {RadioButton, kRadioD, "D", 180, 84, 30, 10},
    {DropList, kDropList, "", 220, 4, 60, 12, 0, "Plain list", kRows},
    {DropList, kSortedList, "", 220, 20, 60, 12, kStyleSorted, "Sorted list"},
    {ListView, kList, "", 5, 100, 130, 60, kStyleMultiSelect, "List"},
    {TabControl, kTabs, "", 140, 100, 80, 60, 0, "Tabs"},
    {GroupBox, kSliderGroup, "Speed (0)", 225, 36, 70, 26},
    {Slider, kSlider, "", 230, 44, 60, 16},
    {Link, kLink, "the web", 225, 66, 60, 8},
    {Picture, kPicture, "", 225, 76, 60, 20, 0, "Banner"},
    {Rule, kRule, "", 225, 98, 60, 1},
    {Box, kBox, "", 0, 0, 10, 10},
    {Button, kHiddenButton, "Hidden", 225, 104, 50, 14, kStyleHidden},
    {ListView, kSingleList, "", 225, 120, 60, 40, 0, "Single list"},
    {Button, IDCANCEL, "Cancel", 5, 84, 50, 14},
};

constexpr ControlTemplate kTwoControls[] = {
    {Label, kNameLabel, "A question", 5, 5, 90, 8},
    {Button, IDOK, "OK", 25, 20, 50, 14, kStyleDefault},
};

}  // namespace

constexpr DialogTemplate kAllKinds = {
    1,        "All kinds", 300, 170, kWindowResizable | kWindowMinimiseBox | kWindowMaximiseBox,
    kControls};
constexpr DialogTemplate kOneButton = {2, "One button", 100, 40, 0, kTwoControls};

std::vector<std::string> Recorder::LinesOf(std::uint32_t id) const {
  std::vector<std::string> found;
  const std::string start = std::to_string(id) + ' ';
  for (const std::string& line : lines) {
    if (line.starts_with(start)) found.push_back(line);
  }
  return found;
}

void Recorder::OnInitDialog(WindowHandle handle) {
  window = handle;
  if (onInit) onInit(handle);
}

void Recorder::OnNotice(std::uint32_t id, Notice notice, std::int32_t value) {
  if (notice != Notice::Painted) {
    lines.push_back(std::to_string(id) + ' ' + NameOf(notice) +
                    (value == 0 ? "" : ' ' + std::to_string(value)));
  }
  if (onNotice) onNotice(id, notice, value);
}

void Recorder::OnClose() {
  lines.push_back("close");
  if (onClose) {
    onClose();
  } else {
    desktop().EndDialog(window, IDCANCEL);
  }
}

void Recorder::OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
  lines.push_back("message " + std::to_string(message) + ' ' + std::to_string(wParam) + ' ' +
                  std::to_string(lParam));
  if (onMessage) onMessage(message);
}

void Recorder::OnTimer(std::uint32_t id) {
  if (onTimer) onTimer(id);
}

void Recorder::OnSize(std::uint32_t type, std::int32_t width, std::int32_t height) {
  lines.push_back("size " + std::to_string(type) + ' ' + std::to_string(width) + 'x' +
                  std::to_string(height));
}

void Recorder::OnPaint(Canvas& canvas) {
  if (onPaint) onPaint(canvas);
}

void Recorder::OnDrawItem(const DrawItem& item, Canvas& canvas) {
  if (onDraw) onDraw(item, canvas);
}

}  // namespace platform
