// The open profile in memory: its device, its mouse settings and its Controls, with the sorted
// copy of the Controls that the dispatcher walks.
#pragma once

#include <cstdint>

#include "app/platform/direct_input.h"
#include "engine/control.h"
#include "engine/mouse_settings.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "foundation/recursive_lock.h"

namespace kelvaro {

class Profile : public MouseSettings {
 public:
  // Under profileLock: empties the name, both lists and the device; the other mouse settings than
  // mouseAlwaysActive stay.
  void Clear();

  // Makes DispatchList a copy of controls, every copy borrowing its actions, heaviest Trigger
  // first. Among equal weights the user's order is a first preference only (SortHeaviestFirst).
  // Sorting takes no memory, and one walk for each different weight.
  void RebuildDispatchList() KELVARO_NEEDS(profileLock);

  LinkedList<Control> controls;  // the master list, in the user's order
  RecursiveLock profileLock{LockRank::Profile};
  LinkedList<Control> DispatchList KELVARO_GUARDED_BY(profileLock);
  ByteString profileName;
  ByteString deviceName;
  std::uint32_t nextControlId = 1;
  std::uint32_t pollInterval = 5;  // ms
  platform::GUID deviceGuid;
};

}  // namespace kelvaro
