#include "notification_host.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QThread>
#include <QVariantMap>
#include <atomic>
#include <mutex>
#include <utility>

namespace {

const QString kName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kConnection = QStringLiteral("notification host");

}  // namespace

class NotificationHost::Watcher : public QDBusVirtualObject {
 public:
  explicit Watcher(bool showing) : showing(showing) {
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
      message.setDelayedReply(true);
      ++questions;
      if (missOne.exchange(false)) return true;
      const std::lock_guard<std::mutex> guard(mutex);
      if (holding) {
        held.push_back(message);
      } else {
        Answer(message, bus);
      }
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

  void Show() {
    showing = true;
    QDBusConnection(kConnection)
        .send(QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"), kName,
                                         QStringLiteral("StatusNotifierHostRegistered")));
  }

  void Answer(const QDBusMessage& question, const QDBusConnection& bus) {
    bus.send(question.createReply(QVariant::fromValue(QDBusVariant(showing.load()))));
  }

  void Hold(bool hold) {
    const std::lock_guard<std::mutex> guard(mutex);
    holding = hold;
    if (holding) return;
    for (const QDBusMessage& question : std::exchange(held, {}))
      Answer(question, QDBusConnection(kConnection));
  }

  std::atomic<bool> showing = true;
  std::atomic<int> questions = 0;
  std::atomic<bool> missOne = false;
  mutable std::mutex mutex;
  QString item;                    // guarded by mutex
  bool holding = false;            // guarded by mutex
  std::vector<QDBusMessage> held;  // guarded by mutex

 private:
  QThread thread;
};

// One line of a menu as it comes over the bus: (ia{sv}av).
struct NotificationHost::Row {
  int id = 0;
  std::string text;
};

NotificationHost::NotificationHost(bool showing) : watcher(std::make_unique<Watcher>(showing)) {}
NotificationHost::~NotificationHost() = default;

QString NotificationHost::Item() const {
  const std::lock_guard<std::mutex> guard(watcher->mutex);
  return watcher->item;
}

void NotificationHost::Show() { watcher->Show(); }
void NotificationHost::MissOneQuestion() { watcher->missOne = true; }
void NotificationHost::HoldQuestions(bool hold) { watcher->Hold(hold); }
int NotificationHost::Questions() const { return watcher->questions; }

std::vector<NotificationHost::Row> NotificationHost::Rows() {
  const QDBusConnection bus(kConnection);
  QDBusMessage where = QDBusMessage::createMethodCall(
      Item(), QStringLiteral("/StatusNotifierItem"),
      QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  where << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("Menu");
  const QDBusMessage menu = bus.call(where, QDBus::BlockWithGui);
  if (menu.arguments().isEmpty()) return {};
  path = menu.arguments().at(0).value<QDBusVariant>().variant().value<QDBusObjectPath>().path();
  QDBusMessage question = QDBusMessage::createMethodCall(
      Item(), path, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("GetLayout"));
  question << 0 << -1 << QStringList();
  const QDBusMessage answer = bus.call(question, QDBus::BlockWithGui);
  if (answer.arguments().size() < 2) return {};

  std::vector<Row> rows;
  const auto root = answer.arguments().at(1).value<QDBusArgument>();
  int id = 0;
  QVariantMap properties;
  root.beginStructure();
  root >> id >> properties;
  root.beginArray();
  while (!root.atEnd()) {
    QDBusVariant child;
    root >> child;
    const auto entry = child.variant().value<QDBusArgument>();
    entry.beginStructure();
    entry >> id >> properties;
    entry.endStructure();
    const bool line = properties.value(QStringLiteral("type")) == QLatin1String("separator");
    rows.push_back(
        {id, line ? "-" : properties.value(QStringLiteral("label")).toString().toStdString()});
  }
  root.endArray();
  root.endStructure();
  return rows;
}

std::vector<std::string> NotificationHost::Menu() {
  std::vector<std::string> texts;
  for (const Row& row : Rows()) texts.push_back(row.text);
  return texts;
}

void NotificationHost::Choose(const std::string& text) {
  for (const Row& row : Rows()) {
    if (row.text != text) continue;
    QDBusMessage event = QDBusMessage::createMethodCall(
        Item(), path, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"));
    event << row.id << QStringLiteral("clicked") << QVariant::fromValue(QDBusVariant(0)) << 0u;
    QDBusConnection(kConnection).send(event);
  }
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
