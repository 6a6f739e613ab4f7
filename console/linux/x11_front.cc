#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "app/platform/byte_text.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {
namespace {

constexpr std::uint32_t kMostText = 4096;  // in words of four bytes

constexpr const char* kAtoms[] = {"_NET_ACTIVE_WINDOW", "_NET_WM_NAME", "_NET_WM_PID",
                                  "WM_CLIENT_MACHINE"};
enum AtomNumber { kActiveWindow, kUtf8Title, kProcess, kMachine, kAtomCount };

struct DisconnectFromX11 {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

// Older properties are in Latin 1, whose bytes are the numbers of their characters.
std::string Shown(const std::string& bytes) {
  if (platform::IsUtf8(bytes)) return bytes;
  std::string text;
  for (const char c : bytes) text += platform::Utf8Of(static_cast<unsigned char>(c));
  return text;
}

std::string HostName() {
  char name[256] = {};
  return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

class X11Front : public FrontSource {
 public:
  static std::unique_ptr<FrontSource> Open(const std::string& display, std::string* error) {
    int screen = 0;
    std::unique_ptr<X11Front> made(new X11Front(xcb_connect(display.c_str(), &screen)));
    if (made->Failed()) {
      *error = "the X server " + display + " can't be reached";
      return nullptr;
    }
    xcb_screen_iterator_t each = xcb_setup_roots_iterator(xcb_get_setup(made->Connection()));
    for (; screen > 0; --screen) xcb_screen_next(&each);
    made->root = each.data->root;
    for (int i = 0; i < kAtomCount; ++i) made->atoms[i] = made->Atom(kAtoms[i]);
    made->WatchProperties(made->root, true);
    return made;
  }

  int Descriptor() const override { return xcb_get_file_descriptor(Connection()); }

  FrontNews Read(std::optional<FrontWindow>* window, std::string* error) override {
    FrontNews news = FrontNews::None;
    // Looking takes in events, too.
    while (TakeEvents() || !looked) {
      *window = Look();
      looked = true;
      news = FrontNews::Window;
    }
    if (!Failed()) return news;
    *error = "the X server has ended";
    return FrontNews::Ended;
  }

 private:
  explicit X11Front(xcb_connection_t* opened) : connection(opened) {}

  xcb_connection_t* Connection() const { return connection.get(); }
  bool Failed() const { return xcb_connection_has_error(Connection()) != 0; }

  xcb_atom_t Atom(const char* name) const {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        Connection(), xcb_intern_atom(Connection(), 0, length, name), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  void WatchProperties(xcb_window_t window, bool watch) const {
    const std::uint32_t events = watch ? XCB_EVENT_MASK_PROPERTY_CHANGE : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(Connection(), window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(Connection());
  }

  // Empty where there is none.
  std::string Property(xcb_window_t window, xcb_atom_t name) const {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        Connection(),
        xcb_get_property(Connection(), 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, kMostText),
        nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }

  // A number of 32 bits; 0 where there is none.
  std::uint32_t Number(xcb_window_t window, xcb_atom_t name) const {
    const std::string bytes = Property(window, name);
    std::uint32_t number = 0;
    if (bytes.size() >= sizeof number) std::memcpy(&number, bytes.data(), sizeof number);
    return number;
  }

  // Whether the window in front may be another, or tells something else of itself.
  bool TakeEvents() const {
    bool news = false;
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(Connection())}) {
      if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
      const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
      if (change.window == root) {
        news |= change.atom == atoms[kActiveWindow];
      } else {
        const xcb_atom_t told[] = {atoms[kUtf8Title], atoms[kProcess], XCB_ATOM_WM_NAME,
                                   XCB_ATOM_WM_CLASS};
        news |= std::find(std::begin(told), std::end(told), change.atom) != std::end(told);
      }
    }
    return news;
  }

  std::optional<FrontWindow> Look() {
    const xcb_window_t active = Number(root, atoms[kActiveWindow]);
    if (active != front) {
      if (front != XCB_WINDOW_NONE && front != root) WatchProperties(front, false);
      // Before it is read, so that no change falls in between.
      if (active != XCB_WINDOW_NONE && active != root) WatchProperties(active, true);
      front = active;
    }
    if (active == XCB_WINDOW_NONE || active == root || !IsThere(active)) return std::nullopt;
    FrontWindow window;
    // A window of another machine has a process there.
    const std::string machine = Property(active, atoms[kMachine]);
    if (machine.empty() || machine == HostName())
      window.program = ProgramNameOf(Number(active, atoms[kProcess]));
    // The name of the instance and that of the class, each with a zero behind it.
    const std::string names = Property(active, XCB_ATOM_WM_CLASS);
    const std::size_t zero = names.find('\0');
    if (zero != std::string::npos) window.kind = Shown(names.c_str() + zero + 1);
    const std::string title = Property(active, atoms[kUtf8Title]);
    window.title = Shown(title.empty() ? Property(active, XCB_ATOM_WM_NAME) : title);
    return window;
  }

  bool IsThere(xcb_window_t window) const {
    const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        Connection(), xcb_get_window_attributes(Connection(), window), nullptr));
    return reply != nullptr;
  }

  const std::unique_ptr<xcb_connection_t, DisconnectFromX11> connection;
  xcb_window_t root = XCB_WINDOW_NONE;
  xcb_window_t front = XCB_WINDOW_NONE;
  xcb_atom_t atoms[kAtomCount] = {};
  bool looked = false;
};

}  // namespace

std::unique_ptr<FrontSource> OpenX11Front(const std::string& display, std::string* error) {
  return X11Front::Open(display, error);
}

}  // namespace kelvaro::console
