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
  return target.IsEmpty() ? 0 : platform::shell().ShellExecuteA(Bytes(target));
}

void CStaticLink::Attach(platform::WindowHandle newWindow, std::uint32_t newId) {
  window = newWindow;
  id = newId;
  platform::controls().SetControlFont(window, id, "", 0, 0, true);
  platform::controls().SetTextColour(window, id, colour);
  platform::controls().SetHandCursor(window, id);
}

void CStaticLink::OnClick() {
  if (hyperlink.target.IsEmpty()) hyperlink.target = resources::String(id);
  if (hyperlink.target.IsEmpty()) {
    hyperlink.target = TextOf(platform::controls().GetDlgItemTextA(window, id));
  }
  if (hyperlink.target.IsEmpty()) return;
  if (hyperlink.Navigate() <= kLastShellError) {
    platform::shell().MessageBeep(platform::MB_OK);
    return;
  }
  colour = kVisitedColour;
  platform::controls().SetTextColour(window, id, colour);
  platform::controls().InvalidateControl(window, id);
}

}  // namespace kelvaro
