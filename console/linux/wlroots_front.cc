#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "console/follow/toplevels.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {
namespace {

// The first version of wlr-foreign-toplevel-management, which the later ones contain: for each
// message its name and its arguments as libwayland-client writes them, at the place that is its
// number.
const wl_interface* kPlain[5] = {};
const wl_interface* kSeat[] = {&wl_seat_interface};
const wl_interface* kPlace[] = {&wl_surface_interface, nullptr, nullptr, nullptr, nullptr};
const wl_interface* kOutput[] = {&wl_output_interface};

const wl_message kHandleRequests[] = {
    {"set_maximized", "", kPlain},      {"unset_maximized", "", kPlain},
    {"set_minimized", "", kPlain},      {"unset_minimized", "", kPlain},
    {"activate", "o", kSeat},           {"close", "", kPlain},
    {"set_rectangle", "oiiii", kPlace}, {"destroy", "", kPlain},
};
enum HandleRequest : std::uint32_t { kDestroy = 7 };

const wl_message kHandleEvents[] = {
    {"title", "s", kPlain},         {"app_id", "s", kPlain}, {"output_enter", "o", kOutput},
    {"output_leave", "o", kOutput}, {"state", "a", kPlain},  {"done", "", kPlain},
    {"closed", "", kPlain},
};
enum HandleEvent : std::uint32_t { kTitle = 0, kAppId = 1, kState = 4, kDone = 5, kClosed = 6 };

const wl_interface kHandle = {"zwlr_foreign_toplevel_handle_v1", 1,
                              std::size(kHandleRequests),        kHandleRequests,
                              std::size(kHandleEvents),          kHandleEvents};

const wl_interface* kNewHandle[] = {&kHandle};
const wl_message kManagerRequests[] = {{"stop", "", kPlain}};
const wl_message kManagerEvents[] = {{"toplevel", "n", kNewHandle}, {"finished", "", kPlain}};
enum ManagerEvent : std::uint32_t { kToplevel = 0, kFinished = 1 };

const wl_interface kManager = {"zwlr_foreign_toplevel_manager_v1", 1,
                               std::size(kManagerRequests),        kManagerRequests,
                               std::size(kManagerEvents),          kManagerEvents};

// Among the numbers that a window's state is made of.
constexpr std::uint32_t kActivated = 2;

struct Disconnect {
  void operator()(wl_display* display) const { wl_display_disconnect(display); }
};
struct Destroy {
  void operator()(wl_proxy* proxy) const { wl_proxy_destroy(proxy); }
};
struct DestroyHandle {
  void operator()(wl_proxy* handle) const {
    wl_proxy_marshal_flags(handle, kDestroy, nullptr, wl_proxy_get_version(handle),
                           WL_MARSHAL_FLAG_DESTROY);
  }
};

bool IsActivated(const wl_array& state) {
  const auto* const begin = static_cast<const std::uint32_t*>(state.data);
  const auto* const end = begin + state.size / sizeof *begin;
  return std::find(begin, end, kActivated) != end;
}

class WlrootsFront : public FrontSource {
 public:
  explicit WlrootsFront(wl_display* connected) : display(connected) {}

  // Whether the compositor tells of its windows; those that are there have been told then.
  bool Begin() {
    wl_registry* const registry = wl_display_get_registry(display.get());
    if (!registry) return false;
    const wl_registry_listener listener{&Offered, [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(registry, &listener, this);
    const bool answered = wl_display_roundtrip(display.get()) >= 0;
    wl_registry_destroy(registry);
    return answered && manager && wl_display_roundtrip(display.get()) >= 0;
  }

  int Descriptor() const override { return wl_display_get_fd(display.get()); }

  FrontNews Read(std::optional<FrontWindow>* window, std::string* error) override {
    Receive();
    if (finished) {
      *error = "the Wayland compositor tells of its windows no more";
      return FrontNews::Ended;
    }
    if (const int fault = wl_display_get_error(display.get())) {
      const bool gone = fault == EPIPE || fault == ECONNRESET;
      *error = gone ? "the Wayland compositor has ended"
                    : "what the Wayland compositor says can't be understood";
      return FrontNews::Ended;
    }
    const std::optional<FrontWindow> front = windows.Front();
    // What changes behind the window in front is no news.
    if (told && *told == front) return FrontNews::None;
    told = front;
    *window = front;
    return FrontNews::Window;
  }

 private:
  static void Offered(void* self, wl_registry* registry, std::uint32_t name, const char* interface,
                      std::uint32_t) {
    auto* const front = static_cast<WlrootsFront*>(self);
    if (front->manager || std::strcmp(interface, kManager.name) != 0) return;
    auto* const manager =
        static_cast<wl_proxy*>(wl_registry_bind(registry, name, &kManager, kManager.version));
    if (!manager) return;
    front->manager.reset(manager);
    wl_proxy_add_dispatcher(manager, &TakeOfManager, nullptr, front);
  }

  static int TakeOfManager(const void*, void* target, std::uint32_t event, const wl_message*,
                           wl_argument* values) {
    auto* const front =
        static_cast<WlrootsFront*>(wl_proxy_get_user_data(static_cast<wl_proxy*>(target)));
    if (event == kFinished) front->finished = true;
    if (event == kToplevel) {
      auto* const handle = reinterpret_cast<wl_proxy*>(values[0].o);
      front->handles.emplace_back(handle);
      wl_proxy_add_dispatcher(handle, &TakeOfHandle, nullptr, front);
    }
    return 0;
  }

  static int TakeOfHandle(const void*, void* target, std::uint32_t event, const wl_message*,
                          wl_argument* values) {
    auto* const handle = static_cast<wl_proxy*>(target);
    static_cast<WlrootsFront*>(wl_proxy_get_user_data(handle))->Take(handle, event, values);
    return 0;
  }

  void Take(wl_proxy* handle, std::uint32_t event, const wl_argument* values) {
    if (event == kTitle) windows.SetTitle(handle, values[0].s);
    if (event == kAppId) windows.SetKind(handle, values[0].s);
    if (event == kState) windows.SetActive(handle, IsActivated(*values[0].a));
    if (event == kDone) windows.Settle(handle);
    if (event == kClosed) {
      windows.Remove(handle);
      std::erase_if(handles, [&](const auto& each) { return each.get() == handle; });
    }
  }

  // Takes in what has come. A failure stays with the display.
  void Receive() {
    wl_display* const from = display.get();
    while (wl_display_prepare_read(from) != 0)
      if (wl_display_dispatch_pending(from) < 0) return;
    wl_display_flush(from);
    errno = 0;  // of what it doesn't understand libwayland gives the error that it finds there
    if (wl_display_read_events(from) == 0) wl_display_dispatch_pending(from);
  }

  // Those below go first.
  const std::unique_ptr<wl_display, Disconnect> display;
  std::unique_ptr<wl_proxy, Destroy> manager;
  std::vector<std::unique_ptr<wl_proxy, DestroyHandle>> handles;
  Toplevels windows;
  bool finished = false;
  std::optional<std::optional<FrontWindow>> told;
};

}  // namespace

std::unique_ptr<FrontSource> OpenWlrootsFront(const std::string& name, std::string* error) {
  wl_display* const display = wl_display_connect(name.c_str());
  if (!display) {
    *error = "the Wayland compositor " + name + " can't be reached";
    return nullptr;
  }
  auto front = std::make_unique<WlrootsFront>(display);
  return front->Begin() ? std::move(front) : nullptr;
}

}  // namespace kelvaro::console
