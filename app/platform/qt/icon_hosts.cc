#include "app/platform/qt/icon_hosts.h"

#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

namespace platform::qt {
namespace {

constexpr int kAnswerWithin = 500;  // ms
// One that is busy answers when it can, and the bus does so for one that is gone.
constexpr int kNoTimeLimit = std::numeric_limits<int>::max();

const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kPath = QStringLiteral("/StatusNotifierWatcher");

// What the C library gave.
template <typename T>
std::unique_ptr<T, decltype(&std::free)> Owned(T* memory) {
  return {memory, &std::free};
}

QDBusMessage Question() {
  QDBusMessage question = QDBusMessage::createMethodCall(
      kWatcher, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  question << kWatcher << QStringLiteral("IsStatusNotifierHostRegistered");
  question.setAutoStartService(false);
  return question;
}

}  // namespace

// The selection that a notification area owns. It has its own connection, so that Qt's own requests
// stay as they are.
class IconHosts::OnXServer : public QObject {
 public:
  explicit OnXServer(std::function<void()> changed) : changed(std::move(changed)) {
    if (xcb_connection_has_error(connection)) return;
    const std::string name = "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
    selection = Atom(name);
    announcement = Atom("MANAGER");
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screen; ++i) xcb_screen_next(&screens);
    Select(screens.data->root);
    Look();
    notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection),
                                                 QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &OnXServer::Read);
    Read();
  }
  ~OnXServer() override {
    notifier.reset();
    xcb_disconnect(connection);
  }

  bool there = false;

 private:
  xcb_atom_t Atom(const std::string& name) {
    const auto reply = Owned(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  void Select(xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &events);
  }

  // An owner that goes between the two requests sends no event. But then the second request fails,
  // and that error comes as an event.
  void Look() {
    const auto reply = Owned(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    owner = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (owner != XCB_WINDOW_NONE) Select(owner);
    xcb_flush(connection);
    there = owner != XCB_WINDOW_NONE;
  }

  bool IsOfOwner(const xcb_generic_event_t& event) const {
    switch (event.response_type & 0x7F) {
      case 0:
        return true;
      case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == announcement && message.data.data32[1] == selection;
      }
      case XCB_DESTROY_NOTIFY:
        return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == owner;
      default:
        return false;
    }
  }

  // Also events that came in during the wait for an answer. The notifier doesn't report those.
  void Read() {
    const bool before = there;
    while (const auto event = Owned(xcb_poll_for_event(connection)))
      if (IsOfOwner(*event)) Look();
    if (xcb_connection_has_error(connection)) notifier->setEnabled(false);
    if (there != before) changed();
  }

  const std::function<void()> changed;
  int screen = 0;  // before what asks for it
  xcb_connection_t* const connection = xcb_connect(nullptr, &screen);
  std::unique_ptr<QSocketNotifier> notifier;  // null without a connection
  xcb_atom_t selection = XCB_ATOM_NONE;
  xcb_atom_t announcement = XCB_ATOM_NONE;
  xcb_window_t owner = XCB_WINDOW_NONE;
};

IconHosts::IconHosts(std::function<void()> changedCall) : changed(std::move(changedCall)) {
  if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) WatchBus();
  if (qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
    onX = std::make_unique<OnXServer>(changed);
}

IconHosts::~IconHosts() = default;

bool IconHosts::OnX() const { return onX && onX->there; }

// The bus reports when the watcher comes or goes; the watcher reports its hosts.
void IconHosts::WatchBus() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  watching = true;
  asking.setSingleShot(true);
  connect(&asking, &QTimer::timeout, this, [this, bus] {
    auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(Question(), kNoTimeLimit), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
      const bool before = onBus;
      Answered(answer->reply());
      answer->deleteLater();
      if (onBus != before) changed();
    });
  });
  auto* const owner =
      new QDBusServiceWatcher(kWatcher, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
  connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { asking.start(); });
  for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
    bus.connect(kWatcher, kPath, kWatcher, QString::fromLatin1(signal), &asking, SLOT(start()));
  AskBus();
}

void IconHosts::AskBus() {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (watching) Answered(bus.call(Question(), QDBus::Block, kAnswerWithin));
}

void IconHosts::Answered(const QDBusMessage& answer) {
  if (QDBusError(answer).type() == QDBusError::NoReply) return asking.start();  // it is busy
  onBus = answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty() &&
          answer.arguments().at(0).value<QDBusVariant>().variant().toBool();
}

}  // namespace platform::qt
