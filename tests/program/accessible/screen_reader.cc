#include "tests/program/accessible/screen_reader.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <algorithm>
#include <utility>

namespace kelvaro::tests {
namespace {

const QString kSession = QStringLiteral("session");
const QString kObjects = QStringLiteral("objects");
constexpr char kAccessible[] = "org.a11y.atspi.Accessible";
constexpr char kAction[] = "org.a11y.atspi.Action";
constexpr char kText[] = "org.a11y.atspi.Text";
constexpr char kEditable[] = "org.a11y.atspi.EditableText";
constexpr char kComponent[] = "org.a11y.atspi.Component";
constexpr char kValue[] = "org.a11y.atspi.Value";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
const Place kRegistry = {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
constexpr std::uint32_t kLabelledBy = 2;

// Published numbers of states.
constexpr std::pair<int, const char*> kStates[] = {
    {1, "active"},   {4, "checked"},  {7, "editable"},    {8, "enabled"},    {11, "focusable"},
    {12, "focused"}, {16, "modal"},   {22, "selectable"}, {23, "selected"},  {24, "sensitive"},
    {25, "showing"}, {39, "default"}, {41, "checkable"},  {43, "read-only"},
};

QString Q(const std::string& text) { return QString::fromStdString(text); }

QDBusMessage Message(const Place& place, const char* interface, const char* member) {
  return QDBusMessage::createMethodCall(
      Q(place.service), Q(place.path), QString::fromLatin1(interface), QString::fromLatin1(member));
}

QVariant First(const QDBusMessage& answer) {
  if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return {};
  const QVariant first = answer.arguments().at(0);
  return first.canConvert<QDBusVariant>() ? first.value<QDBusVariant>().variant() : first;
}

Place PlaceOf(const QDBusArgument& argument) {
  QString service;
  QDBusObjectPath path;
  argument.beginStructure();
  argument >> service >> path;
  argument.endStructure();
  return {service.toStdString(), path.path().toStdString()};
}

std::vector<Place> PlacesOf(const QDBusArgument& argument) {
  std::vector<Place> places;
  argument.beginArray();
  while (!argument.atEnd()) places.push_back(PlaceOf(argument));
  argument.endArray();
  return places;
}

QString AddressOfObjects() {
  const QDBusMessage answer = QDBusConnection(kSession).call(
      Message({"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress"));
  return First(answer).toString();
}

void TellThatAReaderRuns() {
  QDBusMessage set = Message({"org.a11y.Bus", "/org/a11y/bus"}, kProperties, "Set");
  set << QStringLiteral("org.a11y.Status") << QStringLiteral("ScreenReaderEnabled")
      << QVariant::fromValue(QDBusVariant(true));
  QDBusConnection(kSession).call(set);
}

}  // namespace

bool Accessible::Has(const std::string& interface) const {
  return std::find(interfaces.begin(), interfaces.end(), interface) != interfaces.end();
}

bool Accessible::Can(const std::string& action) const {
  return std::find(actions.begin(), actions.end(), action) != actions.end();
}

const Accessible* Accessible::Find(const std::string& wantedRole,
                                   const std::string& wantedName) const {
  for (const Accessible& child : children) {
    if (child.role == wantedRole && child.name == wantedName) return &child;
    if (const Accessible* const found = child.Find(wantedRole, wantedName)) return found;
  }
  return nullptr;
}

void Accessible::Visit(const std::function<void(const Accessible&)>& visit) const {
  visit(*this);
  for (const Accessible& child : children) child.Visit(visit);
}

std::string Accessible::Text(int depth) const {
  std::string line(static_cast<std::size_t>(2 * depth), ' ');
  line += role + " \"" + name + '"';
  for (const std::string& state : states) line += ' ' + state;
  for (const std::string& action : actions) line += " [" + action + ']';
  for (const std::string& label : labels) line += " <" + label + '>';
  for (const std::string& interface : interfaces) line += ' ' + interface;
  if (!description.empty())
    line += "\n" + std::string(static_cast<std::size_t>(2 * depth + 4), ' ') + description;
  line += '\n';
  for (const Accessible& child : children) line += child.Text(depth + 1);
  return line;
}

ScreenReader::ScreenReader(const Home& home, const std::string& display)
    : bus([&](const std::string& pipe) {
        return std::vector<std::string>{"env",
                                        "XDG_RUNTIME_DIR=" + home.In("runtime"),
                                        "HOME=" + home.folder,
                                        "DISPLAY=" + display,
                                        "dbus-daemon",
                                        "--session",
                                        "--nofork",
                                        "--print-address=" + pipe};
      }) {
  if (bus.Address().empty()) return;
  if (!QDBusConnection::connectToBus(Q(bus.Address()), kSession).isConnected()) return;
  TellThatAReaderRuns();
  works = QDBusConnection::connectToBus(AddressOfObjects(), kObjects).isConnected();
}

ScreenReader::~ScreenReader() {
  QDBusConnection::disconnectFromBus(kObjects);
  QDBusConnection::disconnectFromBus(kSession);
}

QDBusMessage ScreenReader::Call(const Place& place, const char* interface, const char* member,
                                const std::vector<std::string>& texts) {
  QDBusMessage message = Message(place, interface, member);
  for (const std::string& text : texts) message << Q(text);
  return QDBusConnection(kObjects).call(message);
}

std::string ScreenReader::Property(const Place& place, const char* interface, const char* name) {
  return First(Call(place, kProperties, "Get", {interface, name})).toString().toStdString();
}

std::vector<Place> ScreenReader::Children(const Place& place) {
  const QVariant children = First(Call(place, kAccessible, "GetChildren"));
  if (!children.canConvert<QDBusArgument>()) return {};
  return PlacesOf(children.value<QDBusArgument>());
}

std::string ScreenReader::Role(const Place& place) {
  return First(Call(place, kAccessible, "GetRoleName")).toString().toStdString();
}

std::set<std::string> ScreenReader::States(const Place& place) {
  std::set<std::string> names;
  const QVariant states = First(Call(place, kAccessible, "GetState"));
  if (!states.canConvert<QDBusArgument>()) return names;
  QList<std::uint32_t> words;
  states.value<QDBusArgument>() >> words;
  for (const auto& [bit, name] : kStates)
    if (bit / 32 < words.size() && (words[bit / 32] >> bit % 32 & 1)) names.insert(name);
  return names;
}

// The names of what it is bound to as its label.
std::vector<std::string> ScreenReader::Labels(const Place& place) {
  std::vector<std::string> names;
  const QVariant relations = First(Call(place, kAccessible, "GetRelationSet"));
  if (!relations.canConvert<QDBusArgument>()) return names;
  const auto list = relations.value<QDBusArgument>();
  list.beginArray();
  while (!list.atEnd()) {
    std::uint32_t kind = 0;
    list.beginStructure();
    list >> kind;
    for (const Place& other : PlacesOf(list))
      if (kind == kLabelledBy) names.push_back(Property(other, kAccessible, "Name"));
    list.endStructure();
  }
  list.endArray();
  return names;
}

std::vector<std::string> ScreenReader::Actions(const Place& place) {
  std::vector<std::string> names;
  const int count = First(Call(place, kProperties, "Get", {kAction, "NActions"})).toInt();
  for (int i = 0; i < count; ++i) {
    QDBusMessage ask = Message(place, kAction, "GetName");
    ask << i;
    names.push_back(First(QDBusConnection(kObjects).call(ask)).toString().toStdString());
  }
  return names;
}

Accessible ScreenReader::Look(const Place& place) {
  Accessible found;
  found.place = place;
  found.role = Role(place);
  found.name = Property(place, kAccessible, "Name");
  found.description = Property(place, kAccessible, "Description");
  found.states = States(place);
  for (const QString& name : First(Call(place, kAccessible, "GetInterfaces")).toStringList())
    found.interfaces.push_back(name.section(u'.', -1).toStdString());
  if (found.Has("Action")) found.actions = Actions(place);
  found.labels = Labels(place);
  return found;
}

Accessible ScreenReader::Tree(const Place& place) {
  Accessible found = Look(place);
  for (const Place& child : Children(place))
    if (States(child).contains("showing")) found.children.push_back(Tree(child));
  return found;
}

std::optional<Accessible> ScreenReader::Window(const std::string& program, const std::string& role,
                                               const std::string& title) {
  for (const Place& application : Children(kRegistry)) {
    if (Property(application, kAccessible, "Name") != program) continue;
    for (const Place& place : Children(application))
      if (Property(place, kAccessible, "Name") == title && Role(place) == role &&
          States(place).contains("showing"))
        return Tree(place);
  }
  return {};
}

bool ScreenReader::Do(const Accessible& object, const std::string& action) {
  const auto found = std::find(object.actions.begin(), object.actions.end(), action);
  if (found == object.actions.end()) return false;
  QDBusMessage message = Message(object.place, kAction, "DoAction");
  message << static_cast<int>(found - object.actions.begin());
  return First(QDBusConnection(kObjects).call(message)).toBool();
}

bool ScreenReader::SetText(const Accessible& object, const std::string& text) {
  return First(Call(object.place, kEditable, "SetTextContents", {text})).toBool();
}

std::string ScreenReader::Text(const Accessible& object) {
  QDBusMessage message = Message(object.place, kText, "GetText");
  message << 0 << -1;
  return First(QDBusConnection(kObjects).call(message)).toString().toStdString();
}

bool ScreenReader::SetValue(const Accessible& object, double value) {
  QDBusMessage message = Message(object.place, kProperties, "Set");
  message << QString::fromLatin1(kValue) << QStringLiteral("CurrentValue")
          << QVariant::fromValue(QDBusVariant(value));
  return QDBusConnection(kObjects).call(message).type() == QDBusMessage::ReplyMessage;
}

double ScreenReader::Value(const Accessible& object) {
  return First(Call(object.place, kProperties, "Get", {kValue, "CurrentValue"})).toDouble();
}

bool ScreenReader::IsFocused(const Accessible& object) {
  return States(object.place).contains("focused");
}

Extents ScreenReader::Where(const Accessible& object) {
  QDBusMessage message = Message(object.place, kComponent, "GetExtents");
  message << 0u;  // of the screen
  Extents where;
  const QVariant answer = First(QDBusConnection(kObjects).call(message));
  if (!answer.canConvert<QDBusArgument>()) return where;
  const auto argument = answer.value<QDBusArgument>();
  argument.beginStructure();
  argument >> where.x >> where.y >> where.width >> where.height;
  argument.endStructure();
  return where;
}

}  // namespace kelvaro::tests
