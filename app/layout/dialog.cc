#include "app/layout/dialog.h"

namespace kelvaro {

std::int32_t Dialog::DoModal(platform::WindowHandle owner) {
  const std::int32_t result = platform::desktop().RunDialog(resource, owner, *this);
  window = platform::kNoWindow;
  return result;
}

ByteString Dialog::Text(std::uint32_t id) const {
  return TextOf(platform::controls().GetDlgItemTextA(window, id));
}

void Dialog::SetText(std::uint32_t id, const ByteString& text) {
  platform::controls().SetDlgItemTextA(window, id, Bytes(text));
}

void Dialog::LimitTips(std::int32_t width) const {
  platform::controls().SetToolTipWidth(window, width);
  platform::controls().SetToolTipTime(window, 10000);
}

std::int32_t Dialog::Box(const ByteString& text, const ByteString& caption,
                         std::uint32_t type) const {
  return platform::desktop().MessageBoxA(window, Bytes(text), Bytes(caption), type);
}

void Dialog::OnInitDialog(platform::WindowHandle handle) {
  window = handle;
  OnInit();
}

void Dialog::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t) {
  if (notice != platform::Notice::Clicked) return;
  if (id == platform::IDOK) OnOK();
  if (id == platform::IDCANCEL) OnCancel();
}

}  // namespace kelvaro
