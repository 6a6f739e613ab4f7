#include "console/follow/front_watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>

#include <cerrno>
#include <thread>
#include <utility>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/environment.h"
#include "app/platform/linux/instance_socket.h"
#include "app/platform/linux/message_bus.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {
namespace {

// One that begins isn't ready at once when its socket appears: it is looked for again after twice
// as long each time, for some ten seconds in all.
constexpr int kFirstLook = 10;   // ms
constexpr int kLastLook = 5120;  // ms

// On the way from one window to another there may be a moment without any, which would let go of
// what is held.
constexpr int kMomentWithout = 100;  // ms

constexpr char kOnlyX11[] =
    "This Wayland desktop tells of no windows but those of X11 programs (XWayland), so all others "
    "get the default.";
constexpr char kNobodyTells[] =
    "nobody tells here which window is in front: sway (SWAYSOCK), KWin (on the session's bus) and "
    "X servers (DISPLAY) do, other desktops on Wayland such as GNOME Shell don't";

// The folder in which each that runs has its socket.
class InstanceNews {
 public:
  InstanceNews() : changes(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) { Watch(); }

  int Descriptor() const { return changes.Get(); }

  void Read() {
    alignas(inotify_event) char block[4096] = {};
    bool folderGone = false;
    ssize_t size;
    while ((size = platform::Retry([&] { return read(changes.Get(), block, sizeof block); })) > 0) {
      for (ssize_t at = 0; at < size;) {
        const auto& event = reinterpret_cast<const inotify_event&>(block[at]);
        folderGone |= (event.mask & IN_IGNORED) != 0;
        at += static_cast<ssize_t>(sizeof event + event.len);
      }
    }
    if (folderGone) Watch();
  }

 private:
  void Watch() {
    inotify_add_watch(changes.Get(), platform::InstanceFolder().c_str(),
                      IN_CREATE | IN_DELETE | IN_MOVED_TO | IN_ONLYDIR);
  }

  const platform::Descriptor changes;
};

}  // namespace

struct FrontWatch::Parts {
  Listener listener;
  std::unique_ptr<FrontSource> source;
  std::string teller;
  std::string lack;
  InstanceNews instances;
  platform::Descriptor wake{eventfd(0, EFD_CLOEXEC)};
  std::thread thread;

  void Open(std::string* error);
  void Watch();
};

void FrontWatch::Parts::Open(std::string* error) {
  *error = kNobodyTells;
  const std::string sway = platform::Variable("SWAYSOCK");
  const std::string display = platform::Variable("DISPLAY");
  const bool wayland = !platform::Variable("WAYLAND_DISPLAY").empty();
  if (!sway.empty()) {
    teller = "sway";
    source = OpenSwayFront(sway, error);
  }
  if (!source && wayland) {
    std::string reason;  // that there is no KWin is no fault
    teller = "KWin";
    source = OpenKWinFront(platform::SessionBusAddress(), &reason);
  }
  if (!source && !display.empty()) {
    teller = "the X server " + display;
    source = OpenX11Front(display, error);
    if (wayland) lack = kOnlyX11;
  }
}

void FrontWatch::Parts::Watch() {
  std::optional<std::optional<FrontWindow>> told;
  const auto tell = [&](const std::optional<FrontWindow>& window) {
    if (told && *told == window) return;
    told = window;
    listener.window(window);
  };
  bool without = false;  // no window is in front, which isn't told yet
  int look = 0;          // ms; 0 for no further look
  for (;;) {
    std::optional<FrontWindow> window;
    std::string error;
    const FrontNews news = source->Read(&window, &error);
    if (news == FrontNews::Ended) return listener.ended(error);
    if (news == FrontNews::Window) without = !window;
    if (news == FrontNews::Window && window) tell(window);

    pollfd wanted[] = {{wake.Get(), POLLIN, 0},
                       {source->Descriptor(), POLLIN, 0},
                       {instances.Descriptor(), POLLIN, 0}};
    const int wait = without ? kMomentWithout : look > 0 ? look : -1;
    const int ready = platform::Retry([&] { return poll(wanted, 3, wait); });
    if (ready < 0 || wanted[0].revents != 0) return;
    if (ready == 0 && without) {
      without = false;
      tell(std::nullopt);
    } else if (ready == 0 || wanted[2].revents != 0) {
      look = ready == 0 ? look * 2 : kFirstLook;
      if (look > kLastLook) look = 0;
      if (wanted[2].revents != 0) instances.Read();
      listener.instances();
    }
  }
}

FrontWatch::FrontWatch() : parts(std::make_unique<Parts>()) {}

FrontWatch::~FrontWatch() {
  if (!parts->thread.joinable()) return;
  eventfd_write(parts->wake.Get(), 1);
  parts->thread.join();
}

bool FrontWatch::Open(std::string* error) {
  parts->Open(error);
  return parts->source != nullptr;
}

std::string FrontWatch::Teller() const { return parts->teller; }
std::string FrontWatch::Lack() const { return parts->lack; }

void FrontWatch::Begin(Listener listener) {
  parts->listener = std::move(listener);
  parts->thread = std::thread([this] { parts->Watch(); });
}

}  // namespace kelvaro::console
