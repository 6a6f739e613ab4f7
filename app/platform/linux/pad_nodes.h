// Every game pad of the machine, with those that this user may not open, which the list of devices
// leaves out.
#pragma once

#include <string>
#include <vector>

#include "app/platform/linux/device_nodes.h"

namespace platform {

struct PadNode {
  NodePlace place;
  int openError = 0;  // the errno value; 0: it can be read
};

// By their number. What can't be opened is judged by what the system's tree tells everybody.
std::vector<PadNode> PadNodes(DeviceNodes& nodes);

// As far as the files of `place` in the system's tree tell: no values and no ranges.
DeviceFacts FactsInTree(const NodePlace& place);

}  // namespace platform
