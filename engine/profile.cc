#include "engine/profile.h"

#include <cstddef>
#include <memory>
#include <new>

namespace kelvaro {

namespace {

using ControlNode = LinkedList<Control>::Node;

void SortHeaviestFirst(LinkedList<Control>* list) {
  for (ControlNode* p = list->head; p; p = p->next) {
    ControlNode* heaviest = p;
    for (ControlNode* q = p->next; q; q = q->next) {
      if (q->value->Weight() > heaviest->value->Weight()) heaviest = q;
    }
    list->SwapNodes(p, heaviest);
    p = heaviest;  // it now stands where p stood
  }
}

// The places of a list, paired off in rounds, so that the first place of the heaviest stands at the
// top and one place that changes costs one pair a round.
class Tournament {
 public:
  // False without memory.
  bool Start(const LinkedList<Control>& list) {
    const std::size_t count = static_cast<std::size_t>(list.count);
    while (leaves < count) leaves *= 2;
    nodes.reset(new (std::nothrow) ControlNode*[leaves]());
    winners.reset(new (std::nothrow) std::size_t[2 * leaves]);
    if (!nodes || !winners) return false;
    std::size_t place = 0;
    for (ControlNode* node = list.head; node; node = node->next) nodes[place++] = node;
    for (std::size_t i = 0; i < leaves; ++i) winners[leaves + i] = i;
    for (std::size_t i = leaves - 1; i > 0; --i) Play(i);
    return true;
  }

  std::size_t First() const { return winners[1]; }
  ControlNode* At(std::size_t place) const { return nodes[place]; }
  // Null takes the place out.
  void Set(std::size_t place, ControlNode* node) {
    nodes[place] = node;
    for (std::size_t i = (leaves + place) / 2; i > 0; i /= 2) Play(i);
  }

 private:
  // The left one holds the earlier places and so wins a tie.
  void Play(std::size_t pair) {
    const std::size_t left = winners[2 * pair];
    const std::size_t right = winners[2 * pair + 1];
    winners[pair] = IsHeavier(nodes[right], nodes[left]) ? right : left;
  }
  static bool IsHeavier(const ControlNode* a, const ControlNode* b) {
    return a && (!b || a->value->Weight() > b->value->Weight());
  }

  std::size_t leaves = 2;
  std::unique_ptr<ControlNode*[]> nodes;
  std::unique_ptr<std::size_t[]> winners;
};

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
  for (ControlNode* node = controls.head; node; node = node->next) {
    DispatchList.AddTail(*node->value);
  }
  for (ControlNode* node = DispatchList.head; node; node = node->next) {
    node->value->actionsBorrowed = 1;
  }
  if (DispatchList.count < 2) return;

  // The exchanges of a selection sort, which decide the order among equal weights, without its
  // square of the number: a file may hold as many Controls as it likes.
  Tournament tournament;
  if (!tournament.Start(DispatchList)) {
    SortHeaviestFirst(&DispatchList);
    return;
  }
  const std::size_t count = static_cast<std::size_t>(DispatchList.count);
  for (std::size_t place = 0; place < count; ++place) {
    const std::size_t first = tournament.First();
    ControlNode* const heaviest = tournament.At(first);
    ControlNode* const moved = tournament.At(place);
    DispatchList.SwapNodes(moved, heaviest);
    tournament.Set(place, nullptr);
    if (first != place) tournament.Set(first, moved);
  }
}

}  // namespace kelvaro
