// A dialog as data: its controls with number, kind, text and place. The implementation behind the
// seam makes the window from it. Places are in dialog units, which grow with the font: 4 across are
// the mean width of its characters, 8 down its height. A "&" in a text marks the mnemonic, "&&" is
// one "&"; the mnemonic of a label or group box belongs to the next control that takes the focus.
// The order of the controls is that of the Tab key.
#pragma once

#include <cstdint>
#include <span>

namespace platform {

enum class ControlKind : std::uint8_t {
  Label,
  Link,           // a label that can be clicked, and reached and pressed by keyboard
  Picture,        // shows the bitmap of Controls::SetPicture
  Rule,           // a thin horizontal line
  GroupBox,       // a titled frame around other controls, which are not its children
  Box,            // takes room, is never seen
  Edit,           // one line
  TextArea,       // several lines, wrapped, with a scroll bar; to be read only
  Button,         //
  PictureButton,  // shows a bitmap; its text is its accessible name
  DrawnButton,    // the listener draws it; its text is its accessible name
  CheckBox,       // flips by itself when clicked
  RadioButton,    // a run of them, up to the next control of another kind, is one choice
  DropList,       // a closed list to choose one row of
  ListView,       // rows of several columns below headers that can be dragged
  TabControl,     // tabs above a frame; the pages are ordinary controls, shown and hidden
  Slider,         // horizontal, ticks below
};

// Whether the person can come to such a control by keyboard.
constexpr bool TakesFocus(ControlKind kind) {
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

// Of a control.
constexpr std::uint32_t kStyleHidden = 0x1;  // at first
constexpr std::uint32_t kStyleDisabled = 0x2;
constexpr std::uint32_t kStyleDefault = 0x4;    // the button that Enter presses
constexpr std::uint32_t kStyleSorted = 0x8;     // a drop list that keeps its rows in order of case-
                                                // folded text
constexpr std::uint32_t kStyleDigits = 0x10;    // an edit that takes digits only
constexpr std::uint32_t kStyleReadOnly = 0x20;  // an edit that can be selected and not changed
constexpr std::uint32_t kStyleRight = 0x40;     // text at the right edge
constexpr std::uint32_t kStyleCentred = 0x80;
constexpr std::uint32_t kStyleWrap = 0x100;  // a label of several lines
// A list of which several rows can be selected. Any list view selects whole rows and shows lines
// between its cells.
constexpr std::uint32_t kStyleMultiSelect = 0x200;

// Of a window.
constexpr std::uint32_t kWindowResizable = 0x1;
constexpr std::uint32_t kWindowMinimiseBox = 0x2;
constexpr std::uint32_t kWindowMaximiseBox = 0x4;

struct ControlTemplate {
  ControlKind kind;
  std::uint32_t id;  // no two alike in a dialog
  const char* text;
  std::int16_t x, y, width, height;
  std::uint32_t style = 0;
  // What a screen reader says where neither the text nor the label before it does; may be null.
  const char* name = nullptr;
  std::span<const char* const> rows = {};  // of a drop list, at first; "== Name ==" is a heading
};

struct DialogTemplate {
  std::uint32_t id;
  const char* title;
  std::int16_t width, height;  // of the inside
  std::uint32_t style;
  std::span<const ControlTemplate> controls;
};

// One entry of a popup menu; the text of a separator is null.
struct MenuItem {
  const char* text;
  std::uint32_t command;
};

}  // namespace platform
