#include <dbus/dbus.h>
#include <stdlib.h>
#include <unistd.h>

#include <utility>

#include "app/platform/byte_text.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/instance_socket.h"
#include "app/platform/linux/message_bus.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {
namespace {

constexpr char kKWin[] = "org.kde.KWin";
constexpr char kScripting[] = "org.kde.kwin.Scripting";
constexpr char kScriptName[] = "kelvaro-follow";
constexpr char kInterface[] = "kelvaro.Follow";
constexpr char kMember[] = "Front";

// Versions 5 and 6 name two things differently. A window that is gone may not be asked.
constexpr char kScript[] = R"(
var front = null;
function tell() {
  callDBus(listener, "/", "kelvaro.Follow", "Front", front ? String(front.pid) : "",
           front ? String(front.resourceClass) : "", front ? String(front.caption) : "");
}
function change(window) {
  try { if (front) front.captionChanged.disconnect(tell); } catch (gone) {}
  front = window;
  if (front) front.captionChanged.connect(tell);
  tell();
}
(workspace.windowActivated || workspace.clientActivated).connect(change);
change(workspace.activeWindow || workspace.activeClient);
)";

class KWinFront : public FrontSource {
 public:
  explicit KWinFront(const std::string& address) : bus(address) {}
  ~KWinFront() override {
    if (!ended && bus.Connect()) Forget(bus.Ask(Unload()));
    RemoveScript();
  }

  bool Begin() {
    if (!bus.Connect()) return false;
    bus.Listen([this](DBusMessage* message) { return Take(message); });
    // One that was left by a program which was killed would tell nobody.
    if (!Forget(bus.Ask(Unload())) || !WatchOwner() || !WriteScript()) return false;
    const char* const file = scriptFile.c_str();
    const char* const name = kScriptName;
    DBusMessage* const load =
        dbus_message_new_method_call(kKWin, "/Scripting", kScripting, "loadScript");
    if (load)
      dbus_message_append_args(load, DBUS_TYPE_STRING, &file, DBUS_TYPE_STRING, &name,
                               DBUS_TYPE_INVALID);
    return Forget(bus.Ask(load)) &&
           Forget(bus.Ask(dbus_message_new_method_call(kKWin, "/Scripting", kScripting, "start")));
  }

  int Descriptor() const override { return bus.Watched(); }

  FrontNews Read(std::optional<FrontWindow>* window, std::string* error) override {
    if (!bus.Receive() || ended) {
      *error = "KWin has ended";
      return FrontNews::Ended;
    }
    if (!std::exchange(news, false)) return FrontNews::None;
    *window = front;
    return FrontNews::Window;
  }

 private:
  // Whether there was a reply.
  static bool Forget(DBusMessage* reply) {
    if (reply) dbus_message_unref(reply);
    return reply != nullptr;
  }

  static DBusMessage* Unload() {
    DBusMessage* const unload =
        dbus_message_new_method_call(kKWin, "/Scripting", kScripting, "unloadScript");
    if (!unload) return nullptr;
    dbus_message_set_auto_start(unload, FALSE);
    const char* const name = kScriptName;
    dbus_message_append_args(unload, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    return unload;
  }

  // Has the bus tell when KWin is gone.
  bool WatchOwner() {
    const char* const rule =
        "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
        "arg0='org.kde.KWin'";
    DBusMessage* const match = dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                            DBUS_INTERFACE_DBUS, "AddMatch");
    if (match) dbus_message_append_args(match, DBUS_TYPE_STRING, &rule, DBUS_TYPE_INVALID);
    return Forget(bus.Ask(match));
  }

  // KWin reads it when it likes, at the latest before it tells the first window.
  bool WriteScript() {
    const std::string script = "var listener = \"" + bus.OwnName() + "\";" + kScript;
    std::string path = platform::InstanceFolder() + "/follow-XXXXXX";
    const platform::Descriptor file(mkstemp(path.data()));
    std::size_t written = 0;
    if (!file) return false;
    scriptFile = path;
    return platform::WriteAll(file.Get(), script.data(), script.size(), &written);
  }

  void RemoveScript() {
    if (!scriptFile.empty()) unlink(std::exchange(scriptFile, {}).c_str());
  }

  bool Take(DBusMessage* message) {
    if (dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged")) {
      ended = true;
      return true;
    }
    if (!dbus_message_is_method_call(message, kInterface, kMember)) return false;
    const char* process = nullptr;
    const char* kind = nullptr;
    const char* title = nullptr;
    if (!dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &process, DBUS_TYPE_STRING,
                               &kind, DBUS_TYPE_STRING, &title, DBUS_TYPE_INVALID)) {
      return false;
    }
    RemoveScript();
    news = true;
    front.reset();
    if (const auto number = platform::ParseWholeNumber(process)) {
      const bool fits = *number <= UINT32_MAX;
      front =
          FrontWindow{ProgramNameOf(fits ? static_cast<std::uint32_t>(*number) : 0), kind, title};
    }
    return true;
  }

  platform::MessageBus bus;
  std::string scriptFile;
  bool ended = false;
  bool news = false;
  std::optional<FrontWindow> front;
};

}  // namespace

std::unique_ptr<FrontSource> OpenKWinFront(const std::string& bus, std::string* error) {
  auto front = std::make_unique<KWinFront>(bus);
  if (front->Begin()) return front;
  *error = "KWin doesn't answer on the session's bus";
  return nullptr;
}

}  // namespace kelvaro::console
