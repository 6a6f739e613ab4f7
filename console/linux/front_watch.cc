#include "console/follow/front_watch.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <thread>
#include <utility>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/environment.h"
#include "app/platform/linux/instance_folder.h"
#include "app/platform/linux/instance_news.h"
#include "app/platform/linux/message_bus.h"
#include "console/follow/front_tale.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {
namespace {

constexpr char kOnlyX11[] =
    "This Wayland desktop tells of no windows but those of X11 programs (XWayland), so all others "
    "get the default.";
constexpr char kNoPrograms[] =
    "This Wayland desktop doesn't tell which programs its windows belong to, so no rule with a "
    "program fits; name the class instead.";
constexpr char kNobodyTells[] =
    "nobody tells here which window is in front: sway (SWAYSOCK), KWin (on the session's bus), "
    "wlroots compositors (WAYLAND_DISPLAY) and X servers (DISPLAY) do, other desktops on Wayland "
    "such as GNOME Shell don't";

}  // namespace

struct FrontWatch::Parts {
  Listener listener;
  std::unique_ptr<FrontSource> source;
  std::string teller;
  std::string lack;
  platform::InstanceNews instances{platform::InstanceFolder()};
  platform::Descriptor wake{eventfd(0, EFD_CLOEXEC)};
  std::thread thread;

  void Open(std::string* error);
  void Watch();
};

void FrontWatch::Parts::Open(std::string* error) {
  *error = kNobodyTells;
  const std::string sway = platform::Variable("SWAYSOCK");
  const std::string display = platform::Variable("DISPLAY");
  const std::string wayland = platform::Variable("WAYLAND_DISPLAY");
  if (!sway.empty()) {
    teller = "sway";
    source = OpenSwayFront(sway, error);
  }
  // Who tells the programs, too, goes first.
  if (!source && !wayland.empty()) {
    std::string reason;  // that there is no KWin is no fault
    teller = "KWin";
    source = OpenKWinFront(platform::SessionBusAddress(), &reason);
  }
  if (!source && !wayland.empty()) {
    teller = "the Wayland compositor " + wayland;
    source = OpenWlrootsFront(wayland, error);
    if (source) lack = kNoPrograms;
  }
  if (!source && !display.empty()) {
    teller = "the X server " + display;
    source = OpenX11Front(display, error);
    if (!wayland.empty()) lack = kOnlyX11;
  }
}

void FrontWatch::Parts::Watch() {
  FrontTale tale(listener.window);
  for (;;) {
    std::optional<FrontWindow> window;
    std::string error;
    const FrontNews news = source->Read(&window, &error);
    if (news == FrontNews::Ended) return listener.ended(error);
    if (news == FrontNews::Window) tale.See(window);

    pollfd wanted[] = {{wake.Get(), POLLIN, 0},
                       {source->Descriptor(), POLLIN, 0},
                       {instances.Readable(), POLLIN, 0}};
    const auto moment = tale.Wait();
    const int wait = moment ? static_cast<int>(*moment) : instances.LongestWait();
    const int ready = platform::Retry([&] { return poll(wanted, 3, wait); });
    if (ready < 0 || wanted[0].revents != 0) return;
    if (ready == 0 && moment) {
      tale.Passed();
    } else if (ready == 0 || wanted[2].revents != 0) {
      instances.Read();
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
