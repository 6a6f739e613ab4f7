#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/platform/linux/descriptor.h"
#include "console/json_reader.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {
namespace {

// Messages as sway-ipc(7) tells them: these letters, the length of what follows, the kind.
constexpr char kMagic[] = {'i', '3', '-', 'i', 'p', 'c'};
constexpr std::uint32_t kSubscribe = 2;
constexpr std::uint32_t kGetTree = 4;
constexpr std::uint32_t kEvent = 0x80000000;
constexpr std::uint32_t kWindowEvent = kEvent | 3;
constexpr std::uint32_t kShutdownEvent = kEvent | 6;
constexpr std::size_t kHead = sizeof kMagic + 2 * sizeof(std::uint32_t);
constexpr std::uint32_t kMostMessage = 16 << 20;  // bytes

// Empty for none, and for null.
std::string TextIn(JsonObject* object, const char* name) {
  const auto member = object->Find(name);
  return member ? member->value.Text() : "";
}

bool IsTrue(JsonObject* object, const char* name) {
  const auto member = object->Find(name);
  return member && member->value.Bool();
}

// What a node tells of its window; nothing for one that only holds others.
std::optional<FrontWindow> WindowOf(JsonObject* node) {
  const auto process = node->Find("pid");
  if (!process) return std::nullopt;
  FrontWindow window;
  std::int32_t number = 0;
  Read(*process, number);
  if (number > 0) window.program = ProgramNameOf(static_cast<std::uint32_t>(number));
  window.kind = TextIn(node, "app_id");
  window.title = TextIn(node, "name");
  // Of a window of X11.
  const auto properties = node->Find("window_properties");
  if (window.kind.empty() && properties && properties->value.IsObject()) {
    JsonObject object(*properties);
    window.kind = TextIn(&object, "class");
  }
  return window;
}

std::optional<FrontWindow> FocusedIn(const JsonElement& element) {
  JsonObject node(element);
  if (IsTrue(&node, "focused")) return WindowOf(&node);
  std::optional<FrontWindow> found;
  for (const char* list : {"nodes", "floating_nodes"}) {
    const auto children = node.Find(list);
    if (!children) continue;
    ForEach(*children, [&](const JsonElement& child) {
      if (!found) found = FocusedIn(child);
    });
  }
  return found;
}

class SwayFront : public FrontSource {
 public:
  explicit SwayFront(platform::Descriptor connected) : connection(std::move(connected)) {}

  bool Begin() {
    return Send(kSubscribe, R"(["window","workspace","shutdown"])") && Send(kGetTree);
  }

  int Descriptor() const override { return connection.Get(); }

  FrontNews Read(std::optional<FrontWindow>* window, std::string* error) override {
    *error = "sway has ended";
    if (!Receive()) return FrontNews::Ended;
    FrontNews news = FrontNews::None;
    std::uint32_t kind = 0;
    std::string payload;
    for (;;) {
      const Message message = Next(&kind, &payload);
      if (message == Message::Unfinished) return news;
      const FrontNews told =
          message == Message::Whole ? Take(kind, payload, window, error) : NotUnderstood(error);
      if (told == FrontNews::Ended) return told;
      if (told == FrontNews::Window) news = told;
    }
  }

 private:
  enum class Message { Unfinished, Whole, Foreign };

  static FrontNews NotUnderstood(std::string* error) {
    *error = "what sway says can't be understood";
    return FrontNews::Ended;
  }

  // Takes a message off what was received.
  Message Next(std::uint32_t* kind, std::string* payload) {
    if (received.size() < kHead) return Message::Unfinished;
    std::uint32_t head[2] = {};
    std::memcpy(head, received.data() + sizeof kMagic, sizeof head);
    if (!received.starts_with(std::string_view(kMagic, sizeof kMagic)) || head[0] > kMostMessage)
      return Message::Foreign;
    if (received.size() - kHead < head[0]) return Message::Unfinished;
    *kind = head[1];
    *payload = received.substr(kHead, head[0]);
    received.erase(0, kHead + head[0]);
    return Message::Whole;
  }

  bool Send(std::uint32_t kind, const std::string& payload = {}) {
    const auto size = static_cast<std::uint32_t>(payload.size());
    std::string message(kMagic, sizeof kMagic);
    message.append(reinterpret_cast<const char*>(&size), sizeof size);
    message.append(reinterpret_cast<const char*>(&kind), sizeof kind);
    message += payload;
    return platform::Retry([&] {
             return send(connection.Get(), message.data(), message.size(), MSG_NOSIGNAL);
           }) == static_cast<ssize_t>(message.size());
  }

  // False once the other end is closed.
  bool Receive() {
    char block[65536];
    for (;;) {
      const ssize_t size = platform::Retry(
          [&] { return recv(connection.Get(), block, sizeof block, MSG_DONTWAIT); });
      if (size < 0) return errno == EAGAIN;
      if (size == 0) return false;
      received.append(block, static_cast<std::size_t>(size));
    }
  }

  FrontNews Take(std::uint32_t kind, const std::string& payload, std::optional<FrontWindow>* window,
                 std::string* error) {
    if (kind == kShutdownEvent) return FrontNews::Ended;
    if (kind == kSubscribe) return FrontNews::None;
    JsonDocument document;
    if (!document.Parse(payload)) return NotUnderstood(error);
    if (kind == kGetTree) {
      *window = FocusedIn(document.Root());
      return document.Failed() ? NotUnderstood(error) : FrontNews::Window;
    }
    // A title that changes behind the window in front is no news; terminals change theirs often.
    if (kind == kWindowEvent) {
      JsonObject event(document.Root());
      const auto changed = event.Find("container");
      if (changed && TextIn(&event, "change") == "title") {
        JsonObject node(*changed);
        if (!IsTrue(&node, "focused")) return FrontNews::None;
      }
    }
    return Send(kGetTree) ? FrontNews::None : FrontNews::Ended;
  }

  const platform::Descriptor connection;
  std::string received;
};

}  // namespace

std::unique_ptr<FrontSource> OpenSwayFront(const std::string& path, std::string* error) {
  *error = "sway can't be reached at " + path;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return nullptr;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  platform::Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!connection ||
      connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return nullptr;
  }
  auto front = std::make_unique<SwayFront>(std::move(connection));
  return front->Begin() ? std::move(front) : nullptr;
}

}  // namespace kelvaro::console
