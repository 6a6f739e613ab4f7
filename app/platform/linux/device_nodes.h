// Where event devices come from: the list of nodes, a node that is open, and reports of new ones.
// Behind it stand libudev and libevdev, or a test.
#pragma once

#include <linux/input.h>

#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/device_facts.h"

namespace platform {

struct NodePlace {
  std::string path;   // "/dev/input/event3"
  std::string place;  // in the system's tree; never used again for another device
  DeviceIds ids;
};

// Open for reading, not grabbed at first; closed with the object. One thread at a time.
class DeviceNode {
 public:
  virtual ~DeviceNode() = default;

  // With the state that the kernel held at the opening.
  virtual const DeviceFacts& Facts() const = 0;

  // Readable while there is something that Next hasn't read, and for ever once the device is gone;
  // -1 where nothing can be waited for.
  virtual int Fd() const = 0;

  // The results of libevdev_next_event: LIBEVDEV_READ_STATUS_SUCCESS, LIBEVDEV_READ_STATUS_SYNC
  // when events were lost (read on with `resync` until -EAGAIN), -EAGAIN when there is nothing, or
  // another negative errno value when the device is gone. Never blocks.
  virtual int Next(bool resync, input_event* event) = 0;

  // From here on nobody else who reads the device gets its events, or everybody does again. 0, or
  // the errno value: EBUSY where another program has grabbed it. The end of the object, or of the
  // process in whatever way, lets go too.
  virtual int Grab(bool on) = 0;
};

// Listens from its making on. One thread at a time.
class NodeWatch {
 public:
  enum class Report { None, Arrived, Other, Overrun };

  virtual ~NodeWatch() = default;

  // Readable while there are reports.
  virtual int Fd() const = 0;

  // The next report, with *place on Arrived: a node that came or whose permissions changed. Other
  // is news of no concern; Overrun says that reports were lost. One system call when there is none;
  // never blocks.
  virtual Report Next(NodePlace* place) = 0;
};

// Any thread.
class DeviceNodes {
 public:
  virtual ~DeviceNodes() = default;

  // All event nodes, by their number.
  virtual std::vector<NodePlace> List() = 0;

  // Null on failure, with the errno value.
  virtual std::unique_ptr<DeviceNode> Open(const NodePlace& place, int* errorCode) = 0;

  // Null where the system can't tell of new nodes.
  virtual std::unique_ptr<NodeWatch> Watch() = 0;
};

}  // namespace platform
