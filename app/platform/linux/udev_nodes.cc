#include "app/platform/linux/udev_nodes.h"

#include <errno.h>
#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <libudev.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/platform/byte_text.h"
#include "app/platform/linux/descriptor.h"

namespace platform {
namespace {

struct Unref {
  void operator()(udev* context) const { udev_unref(context); }
  void operator()(udev_enumerate* list) const { udev_enumerate_unref(list); }
  void operator()(udev_device* device) const { udev_device_unref(device); }
  void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
};
using Context = std::unique_ptr<udev, Unref>;
using Enumeration = std::unique_ptr<udev_enumerate, Unref>;
using Device = std::unique_ptr<udev_device, Unref>;
using Monitor = std::unique_ptr<udev_monitor, Unref>;

constexpr char kEventPrefix[] = "event";

// A rule or an entry says so: udev itself only ever finds 1 or nothing.
bool IsSaidToBeNoJoystick(udev_device* device) {
  const char* said = udev_device_get_property_value(device, "ID_INPUT_JOYSTICK");
  return said && strcmp(said, "0") == 0;
}

bool IsOffered(udev_device* device) {
  const char* name = udev_device_get_sysname(device);
  return name && strncmp(name, kEventPrefix, strlen(kEventPrefix)) == 0 &&
         udev_device_get_devnode(device) && !IsSaidToBeNoJoystick(device);
}

unsigned long EventNumber(const NodePlace& place) {
  const std::string& path = place.path;
  return ParseWholeNumber(path.substr(path.find_last_not_of("0123456789") + 1)).value_or(0);
}

NodePlace PlaceOf(udev_device* device) {
  NodePlace place;
  place.path = udev_device_get_devnode(device);
  place.place = udev_device_get_syspath(device);
  // Borrowed from `device`.
  udev_device* input = udev_device_get_parent_with_subsystem_devtype(device, "input", nullptr);
  if (!input) return place;
  const auto text = [&](const char* attribute) {
    const char* value = udev_device_get_sysattr_value(input, attribute);
    return std::string(value ? value : "");
  };
  const auto number = [&](const char* attribute) {
    return static_cast<std::uint16_t>(std::strtoul(text(attribute).c_str(), nullptr, 16));
  };
  place.ids = {text("name"),         number("id/bustype"), number("id/vendor"),
               number("id/product"), number("id/version"), text("uniq"),
               text("phys")};
  return place;
}

class EvdevNode : public DeviceNode {
 public:
  EvdevNode(Descriptor opened, libevdev* made)
      : node(std::move(opened)), device(made), facts(FactsOf(made)) {}
  ~EvdevNode() override { libevdev_free(device); }
  EvdevNode(const EvdevNode&) = delete;
  EvdevNode& operator=(const EvdevNode&) = delete;

  const DeviceFacts& Facts() const override { return facts; }
  int Fd() const override { return node.Get(); }
  int Next(bool resync, input_event* event) override {
    return libevdev_next_event(device, resync ? LIBEVDEV_READ_FLAG_SYNC : LIBEVDEV_READ_FLAG_NORMAL,
                               event);
  }
  int Grab(bool on) override {
    return -libevdev_grab(device, on ? LIBEVDEV_GRAB : LIBEVDEV_UNGRAB);
  }

 private:
  const Descriptor node;
  libevdev* const device;
  const DeviceFacts facts;
};

class UdevWatch : public NodeWatch {
 public:
  UdevWatch(Context madeContext, Monitor madeMonitor)
      : context(std::move(madeContext)), monitor(std::move(madeMonitor)) {}

  int Fd() const override { return udev_monitor_get_fd(monitor.get()); }

  Report Next(NodePlace* place) override {
    // A look first: the library's own way to find nothing takes several calls.
    char byte;
    if (recv(Fd(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0)
      return errno == ENOBUFS ? Report::Overrun : Report::None;
    const Device device(udev_monitor_receive_device(monitor.get()));
    if (!device || !IsOffered(device.get())) return Report::Other;
    const char* action = udev_device_get_action(device.get());
    if (!action || (strcmp(action, "add") != 0 && strcmp(action, "change") != 0))
      return Report::Other;
    *place = PlaceOf(device.get());
    return Report::Arrived;
  }

 private:
  const Context context;
  const Monitor monitor;
};

void SayNothing(const libevdev*, libevdev_log_priority, void*, const char*, int, const char*,
                const char*, va_list) {}

}  // namespace

std::vector<NodePlace> UdevNodes::List() {
  std::vector<NodePlace> places;
  const Context context(udev_new());
  const Enumeration enumeration(context ? udev_enumerate_new(context.get()) : nullptr);
  if (!enumeration) return places;
  udev_enumerate_add_match_subsystem(enumeration.get(), "input");
  udev_enumerate_add_match_sysname(enumeration.get(), "event*");
  if (udev_enumerate_scan_devices(enumeration.get()) < 0) return places;
  udev_list_entry* entry = nullptr;
  udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumeration.get())) {
    const Device device(
        udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
    if (device && IsOffered(device.get())) places.push_back(PlaceOf(device.get()));
  }
  std::sort(places.begin(), places.end(),
            [](const NodePlace& a, const NodePlace& b) { return EventNumber(a) < EventNumber(b); });
  return places;
}

std::unique_ptr<DeviceNode> UdevNodes::Open(const NodePlace& place, int* errorCode) {
  Descriptor node(open(place.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  libevdev* device = nullptr;
  const int result = node ? libevdev_new_from_fd(node.Get(), &device) : -errno;
  if (result < 0) {
    *errorCode = -result;
    return nullptr;
  }
  libevdev_set_device_log_function(device, SayNothing, LIBEVDEV_LOG_ERROR, nullptr);
  return std::make_unique<EvdevNode>(std::move(node), device);
}

std::unique_ptr<NodeWatch> UdevNodes::Watch() {
  Context context(udev_new());
  if (!context) return nullptr;
  // Where udevd runs, its report comes once its rules are done, permissions included.
  const char* source = access("/run/udev/control", F_OK) == 0 ? "udev" : "kernel";
  Monitor monitor(udev_monitor_new_from_netlink(context.get(), source));
  if (!monitor ||
      udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "input", nullptr) < 0 ||
      udev_monitor_enable_receiving(monitor.get()) < 0)
    return nullptr;
  return std::make_unique<UdevWatch>(std::move(context), std::move(monitor));
}

}  // namespace platform
