#include "app/platform/windows/ui/control.h"

#include "app/platform/windows/ui/text.h"

namespace platform::ui {
namespace {

// The person has chosen colours for all that is shown, to be able to read it.
bool HighContrast() {
  HIGHCONTRASTW chosen = {};
  chosen.cbSize = sizeof chosen;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof chosen, &chosen, 0) &&
         (chosen.dwFlags & HCF_HIGHCONTRASTON);
}

}  // namespace

Control::Control(ControlHost& host, const ControlTemplate& from, HWND handle)
    : id(from.id),
      kind(from.kind),
      style(from.style),
      host(host),
      handle(handle),
      text(from.text ? from.text : ""),
      shown(!(from.style & kStyleHidden)) {
  SetWindowSubclass(handle, &Control::Procedure, 0, reinterpret_cast<DWORD_PTR>(this));
}

Control::~Control() {
  if (IsWindow(handle)) RemoveWindowSubclass(handle, &Control::Procedure, 0);
  if (brush) DeleteObject(brush);
  if (font) DeleteObject(font);
}

LRESULT CALLBACK Control::Procedure(HWND, UINT message, WPARAM w, LPARAM l, UINT_PTR,
                                    DWORD_PTR control) {
  auto& self = *reinterpret_cast<Control*>(control);
  if (message == WM_SETFOCUS) self.host.FocusCame(self);
  return self.Message(message, w, l);
}

void Control::Show(bool show) {
  shown = show;
  // A box takes room and is never seen.
  if (kind != ControlKind::Box) ShowWindow(handle, show ? SW_SHOWNOACTIVATE : SW_HIDE);
}

Rect Control::Place() const {
  RECT rect = {};
  GetWindowRect(handle, &rect);
  MapWindowPoints(nullptr, GetParent(handle), reinterpret_cast<POINT*>(&rect), 2);
  return RectOf(rect);
}

void Control::SetPlace(const Rect& rect, std::uint32_t flags) {
  SetWindowPos(handle, nullptr, rect.left, rect.top, rect.Width(), rect.Height(),
               flags | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
}

bool Control::HasText() const {
  switch (kind) {
    case ControlKind::Picture:
    case ControlKind::Rule:
    case ControlKind::Box:
    case ControlKind::DropList:
    case ControlKind::ListView:
    case ControlKind::TabControl:
    case ControlKind::Slider:
      return false;
    default:
      return true;
  }
}

bool Control::SetText(const std::string& bytes) {
  if (!HasText()) return false;
  text = bytes;
  const std::wstring wide = Wide(bytes);
  const std::wstring shows = kind == ControlKind::TextArea ? WithLineEnds(wide)
                             : IsContent()                 ? wide
                                                           : Marked(wide);
  SetWindowTextW(handle, shows.c_str());
  return true;
}

int Control::HeightForText() const {
  if (kind != ControlKind::Label || !(style & kStyleWrap)) return 0;
  std::wstring shows(static_cast<std::size_t>(GetWindowTextLengthW(handle)) + 1, L'\0');
  shows.resize(static_cast<std::size_t>(
      GetWindowTextW(handle, shows.data(), static_cast<int>(shows.size()))));
  RECT room = {0, 0, Place().Width(), 0};
  const HDC canvas = GetDC(handle);
  const HGDIOBJ before = SelectObject(canvas, reinterpret_cast<HFONT>(Ask(handle, WM_GETFONT)));
  DrawTextW(canvas, shows.c_str(), static_cast<int>(shows.size()), &room,
            DT_CALCRECT | DT_WORDBREAK | DT_EDITCONTROL | DT_EXPANDTABS);
  SelectObject(canvas, before);
  ReleaseDC(handle, canvas);
  return static_cast<int>(room.bottom);
}

void Control::SetFont(const std::string& face, std::int32_t height, std::int32_t weight,
                      bool underline) {
  LOGFONTW wanted = {};
  GetObjectW(reinterpret_cast<HFONT>(Ask(handle, WM_GETFONT)), sizeof wanted, &wanted);
  if (!face.empty()) Wide(face).copy(wanted.lfFaceName, LF_FACESIZE - 1);
  if (!face.empty() && face.size() < LF_FACESIZE) wanted.lfFaceName[Wide(face).size()] = 0;
  if (height > 0) wanted.lfHeight = -height;
  if (weight > 0) wanted.lfWeight = weight;
  wanted.lfUnderline = underline;
  const HFONT made = CreateFontIndirectW(&wanted);
  if (!made) return;
  Ask(handle, WM_SETFONT, made, TRUE);
  if (font) DeleteObject(font);
  font = made;
}

void Control::SetTextColour(Colour colour) {
  ink = colour;
  Redraw();
}

void Control::SetBackgroundColour(Colour colour) {
  background = colour;
  if (brush) DeleteObject(brush);
  brush = CreateSolidBrush(colour);
  Redraw();
}

bool Control::SetHandCursor() {
  hand = LoadCursorW(nullptr, MAKEINTRESOURCEW(32649));  // IDC_HAND
  return hand;
}

bool Control::SetsCursor() const {
  if (hand) SetCursor(hand);
  return hand;
}

HBRUSH Control::Colours(HDC canvas, const std::optional<COLORREF>& behind) {
  const bool own = (ink || background) && !HighContrast();
  if (own && ink) SetTextColor(canvas, *ink);
  if (own && background) {
    SetBkColor(canvas, *background);
    return brush;
  }
  const COLORREF colour = behind.value_or(GetSysColor(COLOR_BTNFACE));
  if (IsContent() || (!own && !behind)) return nullptr;
  SetBkColor(canvas, colour);
  SetDCBrushColor(canvas, colour);
  return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

}  // namespace platform::ui
