// Event devices that a test plugs in, moves and pulls out, in place of the machine's. A search on a
// thread of its own may go on meanwhile.
#pragma once

#include <errno.h>
#include <libevdev/libevdev.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/device_nodes.h"

namespace platform {

class FakeNode;

// What a test and the nodes it made share. Counts may be read while nothing else runs.
struct FakeMachine {
  struct Read {
    int result;
    input_event event;
  };
  struct Plugged {
    NodePlace place;
    DeviceFacts facts;
    int openError = 0;       // of every attempt to open it
    bool pulled = false;     // reads fail
    std::deque<Read> reads;  // of the one reader
    int readsDone = 0;
    const FakeNode* grabbedBy = nullptr;
    bool grabbedElsewhere = false;
    int grabs = 0;  // that were asked for
    int fd = -1;    // what its readers can wait for

    bool IsGrabbed() const { return grabbedBy != nullptr; }
  };

  std::mutex mutex;  // of all that follows, once there is a device in use
  std::vector<std::shared_ptr<Plugged>> plugged;
  bool canWatch = true;
  std::deque<std::pair<NodeWatch::Report, NodePlace>> reports;  // while someone listens
  Descriptor news{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};      // readable while there are reports
  int listeners = 0;
  int looks = 0;  // at the reports
  int lists = 0;
  int opens = 0;
  std::set<std::thread::id> busy;      // threads that have listed, opened or closed
  std::function<void()> whileOpening;  // on the thread that opens
  std::atomic<std::int64_t> nowMs{0};
  int lastInput = 0;

  // `number` is the kernel's event number.
  std::shared_ptr<Plugged> Plug(int number, const DeviceFacts& facts) {
    auto device = std::make_shared<Plugged>();
    {
      const std::lock_guard<std::mutex> lock(mutex);
      device->place.path = "/dev/input/event" + std::to_string(number);
      device->place.place = "/sys/input" + std::to_string(++lastInput);
      device->place.ids = facts.ids;
      device->facts = facts;
      plugged.push_back(device);
      std::stable_sort(plugged.begin(), plugged.end(), [](const auto& a, const auto& b) {
        return std::stoi(a->place.path.substr(16)) < std::stoi(b->place.path.substr(16));
      });
    }
    TellOf(*device);
    return device;
  }
  void TellOf(const Plugged& device) { Tell(NodeWatch::Report::Arrived, device.place); }
  void Tell(NodeWatch::Report report, const NodePlace& place = NodePlace()) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (listeners == 0) return;
    reports.emplace_back(report, place);
    eventfd_write(news.Get(), 1);
  }
  void Pull(const std::shared_ptr<Plugged>& device) {
    const std::lock_guard<std::mutex> lock(mutex);
    device->pulled = true;
    plugged.erase(std::find(plugged.begin(), plugged.end(), device));
  }
  static void Say(Plugged& device, unsigned type, unsigned code, int value,
                  int result = LIBEVDEV_READ_STATUS_SUCCESS) {
    input_event event{};
    event.type = static_cast<std::uint16_t>(type);
    event.code = static_cast<std::uint16_t>(code);
    event.value = value;
    device.reads.push_back({result, event});
  }
};

class FakeNode : public DeviceNode {
 public:
  FakeNode(FakeMachine& on, std::shared_ptr<FakeMachine::Plugged> from)
      : machine(on), device(std::move(from)), facts(device->facts) {}
  ~FakeNode() override {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    machine.busy.insert(std::this_thread::get_id());
    if (device->grabbedBy == this) device->grabbedBy = nullptr;
  }
  const DeviceFacts& Facts() const override { return facts; }
  int Fd() const override { return device->fd; }
  int Next(bool resync, input_event* event) override {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    ++device->readsDone;
    if (device->reads.empty()) return device->pulled ? -ENODEV : -EAGAIN;
    const FakeMachine::Read read = device->reads.front();
    // What a resynchronisation brings comes only to a reader that asks for it.
    const bool forSync = read.result == LIBEVDEV_READ_STATUS_SYNC && read.event.type != EV_SYN;
    if (forSync != resync) return -EAGAIN;
    device->reads.pop_front();
    *event = read.event;
    return read.result;
  }
  int Grab(bool on) override {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    device->grabs += on ? 1 : 0;
    if (device->pulled) return ENODEV;
    if (device->grabbedElsewhere) return EBUSY;
    device->grabbedBy = on ? this : nullptr;
    return 0;
  }

 private:
  FakeMachine& machine;
  const std::shared_ptr<FakeMachine::Plugged> device;
  const DeviceFacts facts;
};

class FakeWatch : public NodeWatch {
 public:
  explicit FakeWatch(FakeMachine& on) : machine(on) {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    ++machine.listeners;
  }
  ~FakeWatch() override {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    if (--machine.listeners == 0) machine.reports.clear();
  }
  int Fd() const override { return machine.news.Get(); }
  Report Next(NodePlace* place) override {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    ++machine.looks;
    if (machine.reports.empty()) {
      eventfd_t count;
      eventfd_read(machine.news.Get(), &count);
      return Report::None;
    }
    const auto [report, where] = machine.reports.front();
    machine.reports.pop_front();
    *place = where;
    return report;
  }

 private:
  FakeMachine& machine;
};

class FakeNodes : public DeviceNodes {
 public:
  explicit FakeNodes(FakeMachine& on) : machine(on) {}
  std::vector<NodePlace> List() override {
    const std::lock_guard<std::mutex> lock(machine.mutex);
    machine.busy.insert(std::this_thread::get_id());
    ++machine.lists;
    std::vector<NodePlace> places;
    for (const auto& device : machine.plugged) places.push_back(device->place);
    return places;
  }
  std::unique_ptr<DeviceNode> Open(const NodePlace& place, int* errorCode) override {
    if (machine.whileOpening) machine.whileOpening();
    const std::lock_guard<std::mutex> lock(machine.mutex);
    machine.busy.insert(std::this_thread::get_id());
    ++machine.opens;
    for (const auto& device : machine.plugged) {
      if (device->place.place != place.place) continue;
      *errorCode = device->openError;
      return device->openError == 0 ? std::make_unique<FakeNode>(machine, device) : nullptr;
    }
    *errorCode = ENOENT;
    return nullptr;
  }
  std::unique_ptr<NodeWatch> Watch() override {
    return machine.canWatch ? std::make_unique<FakeWatch>(machine) : nullptr;
  }

 private:
  FakeMachine& machine;
};

}  // namespace platform
