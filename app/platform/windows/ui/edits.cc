#include "app/platform/windows/ui/edits.h"

#include "app/platform/byte_text.h"
#include "app/platform/windows/ui/text.h"

namespace platform::ui {

Edit::Edit(ControlHost& host, const ControlTemplate& from, HWND handle)
    : Control(host, from, handle), latin1(!IsUtf8(text)) {}

bool Edit::SetText(const std::string& bytes) {
  edited = false;
  latin1 = !IsUtf8(bytes);
  setting = true;
  const bool done = Control::SetText(bytes);
  setting = false;
  return done;
}

std::string Edit::Text() const {
  if (!edited) return text;
  std::wstring now(static_cast<std::size_t>(GetWindowTextLengthW(handle)) + 1, L'\0');
  now.resize(
      static_cast<std::size_t>(GetWindowTextW(handle, now.data(), static_cast<int>(now.size()))));
  std::string bytes;
  if (latin1 && Latin1Bytes(now, &bytes)) return bytes;
  return Bytes(now);
}

void Edit::SetCaret(std::uint32_t offset) {
  const std::string before = Text().substr(0, offset);
  const auto letters = static_cast<WPARAM>(latin1 ? before.size() : Wide(before).size());
  Ask(handle, EM_SETSEL, letters, letters);
  Ask(handle, EM_SCROLLCARET);
}

void Edit::OnCommand(int code) {
  if (code == EN_CHANGE && !setting) {
    edited = true;
    host.Notify(id, Notice::Changed);
  }
  if (code == EN_KILLFOCUS && kind == ControlKind::Edit) host.NotifyInTurn(id, Notice::FocusLost);
}

// A text to read isn't selected as a whole when it gets the focus, which would scroll it to its
// end.
LRESULT Edit::Message(UINT message, WPARAM w, LPARAM l) {
  const LRESULT result = Inherited(message, w, l);
  if (kind != ControlKind::TextArea) return result;
  if (message == WM_SETFOCUS) HideCaret(handle);
  return message == WM_GETDLGCODE ? result & ~DLGC_HASSETSEL : result;
}

}  // namespace platform::ui
