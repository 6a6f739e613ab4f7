#include "app/platform/windows/ui/dialog_memory.h"

#include <string_view>

#include "app/platform/windows/ui/text.h"

namespace platform::ui {
namespace {

struct Shape {
  const wchar_t* windowClass;
  DWORD style = 0;
  DWORD extended = 0;
};

DWORD Aligned(const ControlTemplate& row, DWORD right, DWORD centred, DWORD otherwise) {
  return row.style & kStyleRight ? right : row.style & kStyleCentred ? centred : otherwise;
}

Shape ShapeOfText(const ControlTemplate& row) {
  // A long name has no blanks at which a line could end.
  const DWORD lines = row.style & kStyleWrap ? SS_EDITCONTROL : 0;
  const DWORD left = row.style & kStyleWrap ? SS_LEFT : SS_LEFTNOWORDWRAP;
  return {L"Static", SS_NOTIFY | lines | Aligned(row, SS_RIGHT, SS_CENTER, left)};
}

Shape ShapeOfField(const ControlTemplate& row) {
  if (row.kind == ControlKind::TextArea)
    return {L"Edit", WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL,
            WS_EX_CLIENTEDGE};
  return {L"Edit",
          WS_TABSTOP | ES_AUTOHSCROLL | (row.style & kStyleDigits ? ES_NUMBER : 0u) |
              (row.style & kStyleReadOnly ? ES_READONLY : 0u) |
              Aligned(row, ES_RIGHT, ES_CENTER, ES_LEFT),
          WS_EX_CLIENTEDGE};
}

bool HasHeadings(const ControlTemplate& row) {
  for (const char* text : row.rows)
    if (std::string_view(text).starts_with("== ")) return true;
  return false;
}

Shape ShapeOf(const ControlTemplate& row) {
  switch (row.kind) {
    case ControlKind::Label:
      return ShapeOfText(row);
    case ControlKind::Link: {
      Shape shape = ShapeOfText(row);
      shape.style |= WS_TABSTOP;
      return shape;
    }
    case ControlKind::Picture:
      return {L"Static", SS_OWNERDRAW | SS_NOTIFY};
    case ControlKind::Rule:
      return {L"Static", SS_ETCHEDHORZ};
    case ControlKind::Box:
      return {L"Static", SS_LEFT};
    case ControlKind::GroupBox:
      return {L"Button", BS_GROUPBOX};
    case ControlKind::Edit:
    case ControlKind::TextArea:
      return ShapeOfField(row);
    case ControlKind::Button:
      return {L"Button", WS_TABSTOP | (row.style & kStyleDefault ? DWORD{BS_DEFPUSHBUTTON}
                                                                 : DWORD{BS_PUSHBUTTON})};
    case ControlKind::PictureButton:
      return {L"Button", WS_TABSTOP | BS_PUSHBUTTON | BS_ICON};
    case ControlKind::DrawnButton:
      return {L"Button", WS_TABSTOP | BS_OWNERDRAW};
    case ControlKind::CheckBox:
      return {L"Button", WS_TABSTOP | BS_AUTOCHECKBOX};
    case ControlKind::RadioButton:
      return {L"Button", WS_TABSTOP | BS_AUTORADIOBUTTON};
    case ControlKind::DropList:
      return {L"ComboBox", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST |
                               (HasHeadings(row) ? CBS_OWNERDRAWFIXED | CBS_HASSTRINGS : 0u)};
    case ControlKind::ListView:
      return {WC_LISTVIEWW,
              WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS |
                  (row.style & kStyleMultiSelect ? 0u : LVS_SINGLESEL),
              WS_EX_CLIENTEDGE};
    case ControlKind::TabControl:
      return {WC_TABCONTROLW, WS_TABSTOP | WS_CLIPSIBLINGS | TCS_FOCUSONBUTTONDOWN};
    case ControlKind::Slider:
      return {TRACKBAR_CLASSW, WS_TABSTOP | TBS_HORZ | TBS_BOTTOM | TBS_AUTOTICKS};
  }
  return {L"Static"};
}

class Writer {
 public:
  void Word(int number) { words.push_back(static_cast<WORD>(number)); }
  void Long(DWORD number) {
    words.push_back(LOWORD(number));
    words.push_back(HIWORD(number));
  }
  void Text(std::wstring_view text) {
    for (const wchar_t c : text) words.push_back(static_cast<WORD>(c));
    words.push_back(0);
  }
  void Align() {
    if (words.size() % 2 != 0) words.push_back(0);
  }
  std::vector<WORD> words;
};

DWORD StyleOf(const DialogTemplate& dialog) {
  DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT | DS_SHELLFONT;
  style |= dialog.style & kWindowResizable ? WS_THICKFRAME : DS_MODALFRAME;
  if (dialog.style & kWindowMinimiseBox) style |= WS_MINIMIZEBOX;
  if (dialog.style & kWindowMaximiseBox) style |= WS_MAXIMIZEBOX;
  return style;
}

LOGFONTW MessageFont() {
  NONCLIENTMETRICSW metrics = {};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  return metrics.lfMessageFont;
}

// A template takes whole points.
int PointsOf(const LOGFONTW& font) {
  const HDC screen = GetDC(nullptr);
  const int perInch = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  const LONG height = font.lfHeight < 0 ? -font.lfHeight : font.lfHeight;
  return MulDiv(static_cast<int>(height), 72, perInch);
}

void WriteControl(Writer& out, const ControlTemplate& row, bool beginsGroup) {
  const Shape shape = ShapeOf(row);
  DWORD style = WS_CHILD | shape.style;
  if (beginsGroup) style |= WS_GROUP;
  if (!(row.style & kStyleHidden) && row.kind != ControlKind::Box) style |= WS_VISIBLE;
  if (row.style & kStyleDisabled) style |= WS_DISABLED;
  out.Align();
  out.Long(0);
  out.Long(shape.extended);
  out.Long(style);
  for (const int number : {row.x, row.y, row.width, row.height}) out.Word(number);
  out.Long(row.id);
  out.Text(shape.windowClass);
  const std::wstring text = Wide(row.text ? row.text : "");
  out.Text(row.kind == ControlKind::TextArea ? WithLineEnds(text) : text);
  out.Word(0);
}

}  // namespace

std::vector<WORD> InMemory(const DialogTemplate& dialog, bool owned) {
  const LOGFONTW font = MessageFont();
  Writer out;
  out.Word(1);
  out.Word(0xFFFF);
  out.Long(0);
  out.Long(owned ? 0 : WS_EX_APPWINDOW);
  out.Long(StyleOf(dialog));
  out.Word(static_cast<int>(dialog.controls.size()));
  for (const int number : {0, 0, int{dialog.width}, int{dialog.height}}) out.Word(number);
  out.Word(0);
  out.Text(kDialogClass);
  out.Text(Wide(dialog.title));
  out.Word(PointsOf(font));
  out.Word(static_cast<int>(font.lfWeight));
  out.Word(font.lfItalic | font.lfCharSet << 8);
  out.Text(font.lfFaceName);
  // The arrow keys go on among the radio buttons of a run, which is one group.
  const ControlTemplate* before = nullptr;
  for (const ControlTemplate& row : dialog.controls) {
    const bool goesOn =
        row.kind == ControlKind::RadioButton && before && before->kind == ControlKind::RadioButton;
    WriteControl(out, row, !goesOn);
    before = &row;
  }
  return out.words;
}

}  // namespace platform::ui
