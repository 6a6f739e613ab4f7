#include "notification_host.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QThread>
#include <mutex>

namespace {

const QString kName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kConnection = QStringLiteral("notification host");

}  // namespace

class NotificationHost::Watcher : public QDBusVirtualObject {
 public:
  Watcher() {
    moveToThread(&thread);
    thread.start();
    QMetaObject::invokeMethod(
        this,
        [this] {
          QDBusConnection bus =
              QDBusConnection::connectToBus(QDBusConnection::SessionBus, kConnection);
          bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this);
          bus.registerService(kName);
        },
        Qt::BlockingQueuedConnection);
  }
  ~Watcher() override {
    QMetaObject::invokeMethod(
        this,
        [] {
          QDBusConnection(kConnection).unregisterService(kName);
          QDBusConnection::disconnectFromBus(kConnection);
        },
        Qt::BlockingQueuedConnection);
    thread.quit();
    thread.wait();
  }

  QString introspect(const QString&) const override {
    return QStringLiteral(
               "<interface name=\"%1\">"
               "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
               "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\"/></method>"
               "</interface>")
        .arg(kName);
  }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (message.member() == QLatin1String("Get")) {
      bus.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
      return true;
    }
    if (message.member() == QLatin1String("RegisterStatusNotifierItem")) {
      const std::lock_guard<std::mutex> guard(mutex);
      item = message.arguments().at(0).toString();
      bus.send(message.createReply());
      return true;
    }
    return false;
  }

  mutable std::mutex mutex;
  QString item;  // guarded by mutex

 private:
  QThread thread;
};

NotificationHost::NotificationHost() : watcher(std::make_unique<Watcher>()) {}
NotificationHost::~NotificationHost() = default;

QString NotificationHost::Item() const {
  const std::lock_guard<std::mutex> guard(watcher->mutex);
  return watcher->item;
}

void NotificationHost::Click() { Call("Activate"); }
void NotificationHost::RightClick() { Call("ContextMenu"); }

void NotificationHost::Call(const char* method) {
  QDBusMessage call = QDBusMessage::createMethodCall(Item(), QStringLiteral("/StatusNotifierItem"),
                                                     QStringLiteral("org.kde.StatusNotifierItem"),
                                                     QString::fromLatin1(method));
  call << 10 << 10;
  QDBusConnection(kConnection).send(call);
}
