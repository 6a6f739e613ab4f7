#include "tests/kernel/reader.h"

#include <fcntl.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

std::string TextOf(int fd, unsigned long request) {
  char text[256] = {};
  if (ioctl(fd, request, text) < 0) {
    return "";
  }
  text[sizeof text - 1] = 0;
  return text;
}

int NumberOf(const std::string& path) {
  return std::atoi(path.c_str() + std::strlen("/dev/input/event"));
}

}  // namespace

std::vector<InputNode> InputNodes() {
  std::vector<InputNode> nodes;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/dev/input", error)) {
    const std::string path = entry.path();
    if (path.rfind("/dev/input/event", 0) != 0) {
      continue;
    }
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
      continue;  // gone between the listing and now
    }
    InputNode node;
    node.path = path;
    node.name = TextOf(fd, EVIOCGNAME(255));
    node.phys = TextOf(fd, EVIOCGPHYS(255));
    node.uniq = TextOf(fd, EVIOCGUNIQ(255));
    input_id id = {};
    if (ioctl(fd, EVIOCGID, &id) == 0) {
      node.bus = id.bustype;
    }
    close(fd);
    nodes.push_back(node);
  }
  std::sort(nodes.begin(), nodes.end(), [](const InputNode& a, const InputNode& b) {
    return NumberOf(a.path) < NumberOf(b.path);
  });
  return nodes;
}

std::string FindInput(const std::function<bool(const InputNode&)>& wanted) {
  for (const InputNode& node : InputNodes()) {
    if (wanted(node)) {
      return node.path;
    }
  }
  return "";
}

Reader::Reader(const std::string& path) {
  fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  int clock = CLOCK_MONOTONIC;
  if (fd < 0 || ioctl(fd, EVIOCSCLOCKID, &clock) != 0 || ioctl(fd, EVIOCGRAB, 1) != 0 ||
      pipe2(stop, O_CLOEXEC) != 0) {
    std::fprintf(stderr, "reading %s: %s\n", path.c_str(), std::strerror(errno));
    std::exit(1);
  }
  thread = std::thread([this] { Collect(); });
}

Reader::~Reader() {
  close(stop[1]);
  thread.join();
  close(stop[0]);
  close(fd);
}

void Reader::Collect() {
  pollfd wanted[2] = {{fd, POLLIN, 0}, {stop[0], POLLIN, 0}};
  while (poll(wanted, 2, -1) > 0 && wanted[1].revents == 0) {
    input_event batch[64];
    const ssize_t size = read(fd, batch, sizeof batch);
    if (size < 0) {
      return;  // the device is gone; what it sent before counts
    }
    const std::int64_t seen = NowUs();
    const std::lock_guard guard(lock);
    const std::size_t count = static_cast<std::size_t>(size) / sizeof(input_event);
    for (std::size_t i = 0; i < count; ++i) {
      const input_event& event = batch[i];
      if (event.type == EV_SYN && event.code == SYN_DROPPED) {
        std::fprintf(stderr, "the reader lost events\n");
        std::exit(1);
      }
      if (event.type == EV_SYN || event.type == EV_MSC ||
          (event.type == EV_KEY && event.value == 2)) {
        continue;
      }
      events.push_back({static_cast<std::int64_t>(event.input_event_sec) * 1000000 +
                            static_cast<std::int64_t>(event.input_event_usec),
                        event.type, event.code, event.value, seen});
    }
  }
}

std::vector<KernelEvent> Reader::Events() {
  const std::lock_guard guard(lock);
  return events;
}

std::vector<std::string> Reader::Texts() {
  std::vector<std::string> texts;
  for (const KernelEvent& event : Events()) {
    texts.push_back(EventText(event));
  }
  return texts;
}

void Reader::Clear() {
  const std::lock_guard guard(lock);
  events.clear();
}

bool Reader::WaitFor(std::size_t count, int ms) {
  return Eventually([&] { return Events().size() >= count; }, ms);
}

bool Reader::IsDown(unsigned int code) const {
  std::array<std::uint8_t, KEY_CNT / 8> keys = {};
  if (ioctl(fd, EVIOCGKEY(keys.size()), keys.data()) < 0) {
    return false;
  }
  return (keys[code / 8] >> (code % 8) & 1) != 0;
}

bool Reader::AnyDown() const {
  std::array<std::uint8_t, KEY_CNT / 8> keys = {};
  if (ioctl(fd, EVIOCGKEY(keys.size()), keys.data()) < 0) {
    return false;
  }
  return std::any_of(keys.begin(), keys.end(), [](std::uint8_t byte) { return byte != 0; });
}

std::string EventText(const KernelEvent& event) {
  const char* name = libevdev_event_code_get_name(event.type, event.code);
  std::string text =
      name != nullptr ? name : std::to_string(event.type) + ":" + std::to_string(event.code);
  if (event.type == EV_KEY) {
    return text + (event.value != 0 ? " down" : " up");
  }
  return text + " " + std::to_string(event.value);
}

}  // namespace kelvaro::kernel
