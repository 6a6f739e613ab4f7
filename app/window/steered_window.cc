#include "app/window/steered_window.h"

#include "app/start/window_messages.h"

namespace kelvaro {

void SteeredWindow::BeginByMessage() {
  platform::desktop().PostMessageA(session.dialog.window, WM_STEERED, 0, 0);
}

void SteeredWindow::SelectProfile(std::uint32_t ticket, const std::string& name) {
  {
    LockGuard guard(requestLock);
    requests.emplace_back(ticket, name);
  }
  if (!platform::desktop().PostMessageA(session.dialog.window, WM_STEERED, 0, 0))
    steering.Selected(ticket, "the window can't be reached");
}

void SteeredWindow::OnRequests() {
  if (!std::exchange(begun, true)) {
    TellState();
    steering.Begin(*session.engine);
  }
  std::vector<std::pair<std::uint32_t, std::string>> due;
  {
    LockGuard guard(requestLock);
    due.swap(requests);
  }
  for (const auto& [ticket, name] : due) {
    const bool waits = busy != 0;
    const Busy now(*this);
    steering.Selected(
        ticket, waits ? "the window has a dialog, a box or a menu open" : profileRow.Choose(name));
  }
}

void SteeredWindow::TellState() {
  if (session.shuttingDown) return;
  steering.ProfileIs(session.profile.profileName);
  steering.DeviceIs(session.deviceManager->DeviceSelected() ? session.deviceManager->SelectedName()
                                                            : ByteString());
  steering.MouseMayHaveChanged();
}

}  // namespace kelvaro
