#include "app/platform/qt/notification_area.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/qt/text.h"

namespace platform::qt {

NotificationArea::NotificationArea(
    const Icons& icons, std::function<void(const NOTIFYICONDATA&, std::intptr_t mouse)> post,
    std::function<void(WindowHandle)> changed)
    : icons(icons), post(std::move(post)), changed(std::move(changed)) {}

bool NotificationArea::Add(const NOTIFYICONDATA& data) {
  const auto [place, added] =
      entries.try_emplace({data.hWnd, data.uID}, Entry{data, nullptr, nullptr});
  if (!added) return false;
  if (there) {
    Show(place->second);
  } else if (!hosts) {
    hosts = std::make_unique<IconHosts>([this] { Look(); });
    Look();
  }
  return true;
}

bool NotificationArea::SetMenu(WindowHandle window, std::uint32_t id, std::unique_ptr<QMenu> menu) {
  const auto found = entries.find({window, id});
  if (found == entries.end()) return false;
  Entry& entry = found->second;
  if (entry.icon) entry.icon->setContextMenu(nullptr);
  entry.menu = std::move(menu);
  if (entry.icon) GiveMenu(entry);
  return true;
}

bool NotificationArea::Delete(WindowHandle window, std::uint32_t id) {
  return entries.erase({window, id}) > 0;
}

void NotificationArea::DeleteAll(WindowHandle window) {
  while (true) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const auto& entry) { return entry.first.first == window; });
    if (found == entries.end()) return;
    Delete(window, found->first.second);
  }
}

bool NotificationArea::Lacks(WindowHandle window) const {
  return !there && std::any_of(entries.begin(), entries.end(),
                               [&](const auto& entry) { return entry.first.first == window; });
}

// Qt settles on a way to show icons when it is first asked, and for good. So it isn't asked before
// there is one.
void NotificationArea::Look() {
  if (way == Way::NotKnown && (hosts->OnBus() || hosts->OnX())) {
    // It prefers the bus, where a panel that shows icons by both ways may be a moment later.
    hosts->AskBus();
    if (QSystemTrayIcon::isSystemTrayAvailable()) way = hosts->OnBus() ? Way::Bus : Way::X;
  }
  const bool now = way == Way::Bus ? hosts->OnBus() : way == Way::X && hosts->OnX();
  if (now == there) return;
  there = now;
  std::vector<WindowHandle> windows;
  for (auto& [key, entry] : entries) {
    if (there) {
      Show(entry);
    } else {
      entry.icon.reset();
    }
    windows.push_back(key.first);
  }
  for (const WindowHandle window : windows) changed(window);
}

void NotificationArea::Show(Entry& entry) {
  entry.icon = std::make_unique<QSystemTrayIcon>();
  if (entry.data.uFlags & NIF_ICON) entry.icon->setIcon(icons.Find(entry.data.hIcon));
  if (entry.data.uFlags & NIF_TIP) {
    const char* const tip = entry.data.szTip;
    entry.icon->setToolTip(
        Shown(std::string(tip, std::find(tip, tip + sizeof entry.data.szTip, '\0'))));
  }
  if (entry.data.uFlags & NIF_MESSAGE) {
    const NOTIFYICONDATA data = entry.data;
    connect(entry.icon.get(), &QSystemTrayIcon::activated, this,
            [this, data](QSystemTrayIcon::ActivationReason reason) { Activated(data, reason); });
  }
  GiveMenu(entry);
  entry.icon->show();
}

// Where Qt would show it, the program does so itself.
void NotificationArea::GiveMenu(Entry& entry) {
  if (way == Way::Bus) entry.icon->setContextMenu(entry.menu.get());
}

void NotificationArea::Activated(const NOTIFYICONDATA& data,
                                 QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::DoubleClick:
      post(data, WM_LBUTTONDBLCLK);
      return;
    case QSystemTrayIcon::Trigger:
      // The bus doesn't tell of double clicks.
      post(data, way == Way::Bus ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN);
      return;
    case QSystemTrayIcon::Context:
      post(data, WM_RBUTTONDOWN);
      return;
    default:
      return;
  }
}

}  // namespace platform::qt
