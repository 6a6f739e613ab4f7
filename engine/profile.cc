#include "engine/profile.h"

#include <algorithm>

namespace kelvaro {

namespace {

using ControlNode = LinkedList<Control>::Node;

// A selection sort that exchanges nodes: the first of the heaviest changes places with the node
// that stands in its way, which may so land behind others of its own weight. This alone settles
// ties. What is moved out of the way is always lighter, so one walk serves all of one weight.
void SortHeaviestFirst(LinkedList<Control>* list) {
  for (ControlNode* place = list->head; place;) {
    std::uint32_t heaviest = 0;
    for (ControlNode* node = place; node; node = node->next) {
      heaviest = std::max(heaviest, node->value->Weight());
    }
    for (ControlNode* node = place; node; node = node->next) {
      if (node->value->Weight() != heaviest) continue;
      ControlNode* const moved = place;
      list->SwapNodes(moved, node);
      place = node->next;
      node = moved;  // it now stands where node stood
    }
  }
}

}  // namespace

void Profile::Clear() {
  LockGuard guard(profileLock);
  profileName.Empty();
  // The copies before the Controls whose actions they borrow.
  DispatchList.Clear();
  controls.Clear();
  nextControlId = 1;
  mouseAlwaysActive = false;
  deviceName.Empty();
  pollInterval = 5;
  deviceGuid = platform::GUID{};
}

void Profile::RebuildDispatchList() {
  DispatchList.Clear();
  for (const Control& control : controls) {
    if (DispatchList.AddTail({})) DispatchList.tail->value->Borrow(control);
  }
  SortHeaviestFirst(&DispatchList);
}

}  // namespace kelvaro
