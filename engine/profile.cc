#include "engine/profile.h"

namespace kelvaro {

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
  using Node = LinkedList<Control>::Node;

  DispatchList.Clear();
  for (Node* node = controls.head; node; node = node->next) DispatchList.AddTail(*node->value);
  for (Node* node = DispatchList.head; node; node = node->next) node->value->actionsBorrowed = 1;

  if (DispatchList.count < 2) return;
  for (Node* p = DispatchList.head; p; p = p->next) {
    Node* heaviest = p;
    for (Node* q = p->next; q; q = q->next) {
      if (q->value->Weight() > heaviest->value->Weight()) heaviest = q;
    }
    DispatchList.SwapNodes(p, heaviest);
    p = heaviest;  // it now stands where p stood
  }
}

}  // namespace kelvaro
