#include "app/layout/static_link.h"

#include "app/layout/dialog.h"
#include "app/platform/shell.h"
#include "app/resources/resources.h"

namespace kelvaro {

namespace {

// Results of ShellExecuteA up to this one are errors.
constexpr std::intptr_t kLastShellError = 32;

}  // namespace

std::intptr_t Hyperlink::Navigate() const {
  return target.IsEmpty() ? 0 : platform::ShellExecuteA(Bytes(target));
}

void CStaticLink::Attach(platform::WindowHandle newWindow, std::uint32_t newId) {
  window = newWindow;
  id = newId;
  platform::SetControlFont(window, id, "", 0, 0, true);
  platform::SetTextColour(window, id, colour);
  platform::SetHandCursor(window, id);
}

void CStaticLink::OnClick() {
  if (hyperlink.target.IsEmpty()) hyperlink.target = resources::String(id);
  if (hyperlink.target.IsEmpty()) {
    hyperlink.target = TextOf(platform::GetDlgItemTextA(window, id));
  }
  if (hyperlink.target.IsEmpty()) return;
  if (hyperlink.Navigate() <= kLastShellError) {
    platform::MessageBeep(0);
    return;
  }
  colour = kVisitedColour;
  platform::SetTextColour(window, id, colour);
  platform::InvalidateControl(window, id);
}

}  // namespace kelvaro
