// How a device that was lost is known again: on its port or another, on another bus, under another
// version. All that is slow about it, looking, opening and closing, has a thread of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/platform/linux/device_identity.h"
#include "app/platform/linux/device_nodes.h"

namespace platform {

// What the directory and all devices made by it share.
struct DeviceSource {
  std::unique_ptr<DeviceNodes> nodes;
  IdentityTable identities;
  std::function<std::int64_t()> nowMs;  // any start; never runs backwards
};

// The nodes that are attached, by their number; the table of identities forgets all others.
std::vector<NodePlace> AttachedNodes(DeviceSource& source);

// A game device that is attached and open.
struct AttachedDevice {
  NodePlace place;
  GUID identity;
  std::unique_ptr<DeviceNode> node;
};

// Looks for one device. It is back with the node that has its identity; else with the only one of
// its vendor, product and serial number, on whatever bus and of whatever version; else with the
// only one of its vendor, product and name that came after it was lost and has no other serial
// number, and then only once none like that has followed for a second. One thread at a time.
class ReturnSearch {
 public:
  // The device is attached: nodes that are there beside it are not its return.
  ReturnSearch(std::shared_ptr<DeviceSource> source, const NodePlace& place, const GUID& identity);

  // Takes in the news, and looks where they or the time give a reason to, or `asked`. The device,
  // open, when it is back; from then on this looks for the return of that node.
  std::unique_ptr<DeviceNode> Look(bool asked);

  // What the next look can wait for: the descriptor to be readable (-1: it never will be), or so
  // many milliseconds (-1: no time gives a reason).
  int NewsDescriptor() const { return watch ? watch->Fd() : -1; }
  int WaitMs() const;

 private:
  bool TakeNews();
  void Remember(const std::vector<NodePlace>& nodes);
  bool WasBeside(const DeviceIds& ids) const;
  bool HasItsSerial(const DeviceIds& ids) const;
  bool MayBeItElsewhere(const DeviceIds& ids) const;
  std::optional<AttachedDevice> Open(const NodePlace& node);
  std::unique_ptr<DeviceNode> Search(const std::vector<NodePlace>& nodes);
  std::unique_ptr<DeviceNode> GotBack(AttachedDevice device, const std::vector<NodePlace>& nodes);
  bool StaysAlone(const NodePlace& node);
  void LookBy(std::int64_t ms);

  const std::shared_ptr<DeviceSource> source;
  NodePlace own;  // the node that is in use, or was last
  GUID identity;
  bool lost = false;  // as its reader says, whatever the list has
  // Of its vendor, product and name, and seen together with it.
  std::vector<DeviceIds> beside;
  std::unique_ptr<NodeWatch> watch;  // null where there can be none
  std::string aloneAt;               // the place of the one that nothing like it has followed
  std::int64_t aloneTillMs = 0;
  std::int64_t retryDelayMs = 0;
  std::optional<std::int64_t> nextLookMs;
};

// The same on a thread that sleeps until there is something to do. All functions on one thread,
// the owner's or the one that polls.
class DeviceReturn {
 public:
  // Where no thread can be had the device never comes back.
  DeviceReturn(std::shared_ptr<DeviceSource> source, const NodePlace& place, const GUID& identity);
  // Waits for a look that is under way.
  ~DeviceReturn();
  DeviceReturn(const DeviceReturn&) = delete;
  DeviceReturn& operator=(const DeviceReturn&) = delete;

  // The device is gone; `node`, which is of no use any more, is closed by the thread.
  void Lost(std::unique_ptr<DeviceNode> node);
  // The device once it is back, else null. No system call as long as it isn't.
  std::unique_ptr<DeviceNode> Take();
  // Readable once it is back; -1 where that can't be told.
  int Fd() const;

 private:
  struct State;

  static void* Run(void* start);

  const std::shared_ptr<State> state;
};

}  // namespace platform
