// Event devices that a test plugs in, moves and pulls out, in place of the machine's.
#pragma once

#include <errno.h>
#include <libevdev/libevdev.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/linux/device_nodes.h"

namespace platform {

// What a test and the nodes it made share.
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
  };

  std::vector<std::shared_ptr<Plugged>> plugged;
  bool canWatch = true;
  std::deque<std::pair<NodeWatch::Report, NodePlace>> reports;  // while someone listens
  int listeners = 0;
  int looks = 0;  // at the reports
  int lists = 0;
  int opens = 0;
  std::int64_t nowMs = 0;
  int lastInput = 0;

  // `number` is the kernel's event number.
  std::shared_ptr<Plugged> Plug(int number, const DeviceFacts& facts) {
    auto device = std::make_shared<Plugged>();
    device->place.path = "/dev/input/event" + std::to_string(number);
    device->place.place = "/sys/input" + std::to_string(++lastInput);
    device->place.ids = facts.ids;
    device->facts = facts;
    plugged.push_back(device);
    std::stable_sort(plugged.begin(), plugged.end(), [](const auto& a, const auto& b) {
      return std::stoi(a->place.path.substr(16)) < std::stoi(b->place.path.substr(16));
    });
    TellOf(*device);
    return device;
  }
  void TellOf(const Plugged& device) {
    if (listeners > 0) reports.emplace_back(NodeWatch::Report::Arrived, device.place);
  }
  void Pull(const std::shared_ptr<Plugged>& device) {
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
  explicit FakeNode(std::shared_ptr<FakeMachine::Plugged> from)
      : device(std::move(from)), facts(device->facts) {}
  const DeviceFacts& Facts() const override { return facts; }
  int Next(bool resync, input_event* event) override {
    ++device->readsDone;
    if (device->reads.empty()) return device->pulled ? -ENODEV : -EAGAIN;
    const FakeMachine::Read read = device->reads.front();
    // What a resynchronisation brings comes only to who asks for it.
    const bool forSync = read.result == LIBEVDEV_READ_STATUS_SYNC && read.event.type != EV_SYN;
    if (forSync != resync) return -EAGAIN;
    device->reads.pop_front();
    *event = read.event;
    return read.result;
  }

 private:
  const std::shared_ptr<FakeMachine::Plugged> device;
  const DeviceFacts facts;
};

class FakeWatch : public NodeWatch {
 public:
  explicit FakeWatch(FakeMachine& on) : machine(on) { ++machine.listeners; }
  ~FakeWatch() override {
    if (--machine.listeners == 0) machine.reports.clear();
  }
  Report Next(NodePlace* place) override {
    ++machine.looks;
    if (machine.reports.empty()) return Report::None;
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
    ++machine.lists;
    std::vector<NodePlace> places;
    for (const auto& device : machine.plugged) places.push_back(device->place);
    return places;
  }
  std::unique_ptr<DeviceNode> Open(const NodePlace& place, int* errorCode) override {
    ++machine.opens;
    for (const auto& device : machine.plugged) {
      if (device->place.place != place.place) continue;
      *errorCode = device->openError;
      return device->openError == 0 ? std::make_unique<FakeNode>(device) : nullptr;
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
