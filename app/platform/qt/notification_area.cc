#include "app/platform/qt/notification_area.h"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

constexpr int kLookEvery = 2000;        // ms
constexpr int kBusAnswersWithin = 500;  // ms

// Whether somebody shows icons that are offered on the session bus, as desktops of today do.
bool BusHostThere() {
  if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return false;
  QDBusConnection bus = QDBusConnection::sessionBus();
  const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
  if (!bus.isConnected() || !bus.interface()->isServiceRegistered(watcher)) return false;
  QDBusMessage question = QDBusMessage::createMethodCall(
      watcher, QStringLiteral("/StatusNotifierWatcher"),
      QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  question << watcher << QStringLiteral("IsStatusNotifierHostRegistered");
  const QDBusMessage answer = bus.call(question, QDBus::Block, kBusAnswersWithin);
  if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return false;
  return answer.arguments().at(0).value<QDBusVariant>().variant().toBool();
}

// A reply of the X server, which is the C library's memory.
template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> Answered(Reply* reply) {
  return {reply, &std::free};
}

// Whether somebody shows icons as X programs have offered them since long.
bool XHostThere() {
  const auto* const x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!x || !x->connection()) return false;  // off the screen there is none
  xcb_connection_t* const connection = x->connection();
  const std::string name = "_NET_SYSTEM_TRAY_S0";
  const auto atom = Answered(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.c_str()),
      nullptr));
  if (!atom || atom->atom == XCB_ATOM_NONE) return false;
  const auto owner = Answered(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
  return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace

NotificationArea::NotificationArea(
    const Icons& icons, std::function<void(const NOTIFYICONDATA&, std::intptr_t mouse)> post,
    std::function<void(WindowHandle)> changed)
    : icons(icons), post(std::move(post)), changed(std::move(changed)) {
  connect(&looking, &QTimer::timeout, this, &NotificationArea::Look);
  looking.setInterval(kLookEvery);
}

bool NotificationArea::Add(const NOTIFYICONDATA& data) {
  const auto [place, added] = entries.try_emplace({data.hWnd, data.uID}, Entry{data, nullptr});
  if (!added) return false;
  if (looking.isActive()) {
    if (there) Show(place->second);
  } else {
    looking.start();
    Look();
  }
  return true;
}

bool NotificationArea::Delete(WindowHandle window, std::uint32_t id) {
  if (entries.erase({window, id}) == 0) return false;
  if (entries.empty()) {
    looking.stop();
    there = false;
  }
  return true;
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

// Qt settles for good on a way to show icons when it is first asked: so it isn't before somebody
// shows them.
void NotificationArea::Look() {
  const bool onBus = BusHostThere();
  const bool now = (onBus || XHostThere()) && QSystemTrayIcon::isSystemTrayAvailable();
  if (now == there) return;
  there = now;
  clicksOnce = onBus;
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
  entry.icon->show();
}

void NotificationArea::Activated(const NOTIFYICONDATA& data,
                                 QSystemTrayIcon::ActivationReason reason) {
  switch (reason) {
    case QSystemTrayIcon::DoubleClick:
      post(data, WM_LBUTTONDBLCLK);
      return;
    case QSystemTrayIcon::Trigger:
      post(data, clicksOnce ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN);
      return;
    case QSystemTrayIcon::Context:
      post(data, WM_RBUTTONDOWN);
      return;
    default:
      return;
  }
}

}  // namespace platform::qt
