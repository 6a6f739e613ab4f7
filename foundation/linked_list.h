// Doubly linked list that owns its elements. A reference to an element stays good until its node
// is removed; an index is clamped, not refused; a positional lookup walks from the nearest end.
// Nothing throws as long as copying T doesn't; an allocation failure is a false result. No locking.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace kelvaro {

template <typename T>
class LinkedList {
 public:
  struct Node {
    T* value;
    Node* prev;
    Node* next;
    std::uint32_t tag;  // the caller's own; only copies of the list hand it on
  };

  // Walks the elements from head to tail. Adding at the end and exchanging values are fine on the
  // way; to remove or move nodes, walk by `head` and `next`.
  template <typename Value>
  class Iterator {
   public:
    using value_type = T;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(Node* node = nullptr) : node(node) {}
    Value& operator*() const { return *node->value; }
    Iterator& operator++() {
      node = node->next;
      return *this;
    }
    Iterator operator++(int) { return Iterator(std::exchange(node, node->next)); }
    bool operator==(const Iterator& other) const = default;

   private:
    Node* node;
  };

  LinkedList() = default;
  LinkedList(const LinkedList& other) { Append(other); }
  LinkedList& operator=(const LinkedList& other) {
    if (this != &other) {
      Clear();
      Append(other);
    }
    return *this;
  }
  virtual ~LinkedList() { Clear(); }

  Iterator<T> begin() { return Iterator<T>(head); }
  Iterator<T> end() { return Iterator<T>(); }
  Iterator<const T> begin() const { return Iterator<const T>(head); }
  Iterator<const T> end() const { return Iterator<const T>(); }

  // Copies `element` to a new node at the end. False on allocation failure, with nothing changed.
  bool AddTail(const T& element, std::uint32_t tag = 0) {
    // The node before the copy: no copy is ever destroyed here, which for an element that shares
    // what it deletes (a Control and its actions) would take the original's away.
    std::unique_ptr<Node> made(new (std::nothrow) Node{nullptr, nullptr, nullptr, tag});
    if (!made) return false;
    made->value = new (std::nothrow) T(element);
    if (!made->value) return false;
    Node* node = made.release();
    // Guards against a list whose tail was left behind.
    while (tail && tail->next) tail = tail->next;
    node->prev = tail;
    if (tail) {
      tail->next = node;
    } else {
      head = node;
    }
    tail = node;
    ++count;
    return true;
  }

  // The node at `index`, clamped to the first and last; null only when the list is empty.
  Node* At(std::int32_t index) const {
    if (!head) return nullptr;
    if (index >= count) index = count - 1;
    if (index < 0) index = 0;
    Node* node;
    if (index > (count >> 1)) {
      node = tail;
      for (std::int32_t steps = count - index - 1; steps > 0; --steps) node = node->prev;
    } else {
      node = head;
      for (std::int32_t steps = index; steps > 0; --steps) node = node->next;
    }
    return node;
  }

  // Unlinks and destroys `node`, which must be of this list. Nothing on an empty list.
  void RemoveNode(Node* node) {
    if (!head || !node) return;
    (node->prev ? node->prev->next : head) = node->next;
    (node->next ? node->next->prev : tail) = node->prev;
    delete node->value;
    delete node;
    --count;
  }

  void Clear() {
    for (Node* node = head; node;) {
      Node* next = node->next;
      delete node->value;
      delete node;
      node = next;
    }
    head = nullptr;
    tail = nullptr;
    count = 0;
  }

  // Takes the last element out into *out. False, with *out untouched, when the list is empty.
  bool PopTail(T* out) {
    if (!tail) return false;
    *out = *tail->value;
    RemoveNode(tail);
    return true;
  }

  // Swap the node with its neighbour. False, with nothing changed, where there is none.
  bool MoveUp(std::int32_t index) {
    if (index < 1 || index >= count) return false;
    Node* node = At(index);
    SwapNodes(node->prev, node);
    return true;
  }
  bool MoveDown(std::int32_t index) {
    if (index < 0 || index >= count - 1) return false;
    Node* node = At(index);
    SwapNodes(node, node->next);
    return true;
  }

  // Exchanges the places of two nodes of this list; the values stay in their nodes. Two equal
  // arguments do nothing.
  void SwapNodes(Node* a, Node* b) {
    if (!a || !b || a == b) return;
    if (b->next == a) std::swap(a, b);
    const bool adjacent = a->next == b;
    Node* const before = a->prev;
    Node* const behindA = adjacent ? a : a->next;
    Node* const beforeB = adjacent ? b : b->prev;
    Node* const after = b->next;
    Place(b, before, behindA);
    Place(a, beforeB, after);
  }

  Node* head = nullptr;
  Node* tail = nullptr;
  std::int32_t count = 0;

 private:
  void Place(Node* node, Node* before, Node* behind) {
    node->prev = before;
    node->next = behind;
    (before ? before->next : head) = node;
    (behind ? behind->prev : tail) = node;
  }

  void Append(const LinkedList& other) {
    for (Node* node = other.head; node; node = node->next) AddTail(*node->value, node->tag);
  }
};

}  // namespace kelvaro
