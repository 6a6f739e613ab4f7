#include "foundation/linked_list.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

using List = LinkedList<int>;

// Nodes hold 0, 1, 2 ... and the tag is 100 more than the value.
void Fill(List* list, int n) {
  for (int i = 0; i < n; ++i) {
    ASSERT_TRUE(list->AddTail(i, static_cast<std::uint32_t>(100 + i)));
  }
}

std::vector<List::Node*> Nodes(const List& list) {
  std::vector<List::Node*> nodes;
  for (List::Node* node = list.head; node; node = node->next) nodes.push_back(node);
  return nodes;
}

// The chain reads as `expected` both ways, and head, tail and count agree with it.
void ExpectChain(const List& list, const std::vector<List::Node*>& expected) {
  EXPECT_EQ(Nodes(list), expected);
  std::vector<List::Node*> backward;
  for (List::Node* node = list.tail; node; node = node->prev) backward.push_back(node);
  EXPECT_EQ(backward, std::vector<List::Node*>(expected.rbegin(), expected.rend()));
  EXPECT_EQ(list.head, expected.empty() ? nullptr : expected.front());
  EXPECT_EQ(list.tail, expected.empty() ? nullptr : expected.back());
  EXPECT_EQ(list.count, static_cast<std::int32_t>(expected.size()));
}

std::string Values(const List& list) {
  std::string text;
  for (const int value : list) text += std::to_string(value);
  return text;
}

// Counts how many of its kind are alive, and notes the order in which they go.
struct Guest {
  explicit Guest(int name) : name(name) { ++alive; }
  Guest(const Guest& other) : name(other.name) { ++alive; }
  Guest& operator=(const Guest& other) = default;
  ~Guest() {
    --alive;
    left.push_back(name);
  }
  int name;
  static int alive;
  static std::vector<int> left;
};
int Guest::alive = 0;
std::vector<int> Guest::left;

TEST(LinkedList, AddTailCopiesTheElementToANodeAtTheEnd) {
  List list;
  int value = 7;
  ASSERT_TRUE(list.AddTail(value, 42));
  value = 8;
  ASSERT_TRUE(list.AddTail(value));
  EXPECT_EQ(Values(list), "78");
  EXPECT_NE(list.tail->value, &value);
  EXPECT_EQ(list.head->tag, 42u);
  EXPECT_EQ(list.tail->tag, 0u);
  ExpectChain(list, {list.head, list.tail});
}

TEST(LinkedList, AWalkReachesEachElementAndMayChangeIt) {
  List list;
  Fill(&list, 3);
  for (int& value : list) value *= 2;
  EXPECT_EQ(Values(list), "024");
}

TEST(LinkedList, AddTailTakesAnElementOfTheSameList) {
  List list;
  Fill(&list, 2);
  ASSERT_TRUE(list.AddTail(*list.tail->value));
  EXPECT_EQ(Values(list), "011");
}

TEST(LinkedList, AddTailGoesOnToTheRealEndWhenTheTailWasLeftBehind) {
  List list;
  Fill(&list, 3);
  const std::vector<List::Node*> before = Nodes(list);
  list.tail = list.head;
  ASSERT_TRUE(list.AddTail(3));
  ExpectChain(list, {before[0], before[1], before[2], list.tail});
  EXPECT_EQ(*list.tail->value, 3);
}

TEST(LinkedList, AddTailWithoutMemoryChangesNothing) {
  Guest::alive = 0;
  {
    LinkedList<Guest> list;
    {
      const FailingAllocations failing;
      EXPECT_FALSE(list.AddTail(Guest(0)));
    }
    EXPECT_TRUE(!list.head && !list.tail && list.count == 0);
    ASSERT_TRUE(list.AddTail(Guest(1)));
    for (int good : {0, 1}) {  // the element fails, then its node
      const FailingAllocations failing(good);
      EXPECT_FALSE(list.AddTail(Guest(2))) << good;
    }
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.head, list.tail);
    EXPECT_EQ(list.tail->next, nullptr);
    EXPECT_EQ(Guest::alive, 1);
    EXPECT_TRUE(list.AddTail(Guest(3)));
    EXPECT_EQ(list.count, 2);
  }
  EXPECT_EQ(Guest::alive, 0);
}

TEST(LinkedList, AtClampsTheIndexAndGivesNullOnAnEmptyList) {
  List list;
  for (std::int32_t index : {-1, 0, 5}) EXPECT_EQ(list.At(index), nullptr);
  Fill(&list, 3);
  EXPECT_EQ(list.At(5), list.tail);
  EXPECT_EQ(list.At(3), list.tail);
  EXPECT_EQ(list.At(2147483647), list.tail);
  EXPECT_EQ(list.At(-1), list.head);
  EXPECT_EQ(list.At(-2147483647 - 1), list.head);
}

TEST(LinkedList, AtWalksFromTheNearestEnd) {
  // The last index that is reached from the head, by count.
  const std::vector<std::pair<int, int>> lastFromHead = {{1, 0}, {2, 1}, {3, 1}, {4, 2},
                                                         {5, 2}, {6, 3}, {7, 3}};
  for (const auto& [count, last] : lastFromHead) {
    List list;
    Fill(&list, count);
    const std::vector<List::Node*> nodes = Nodes(list);
    for (int index = 0; index < count; ++index) {
      SCOPED_TRACE(std::to_string(index) + " of " + std::to_string(count));
      List::Node stranger{nullptr, nullptr, nullptr, 0};
      stranger.prev = &stranger;
      stranger.next = &stranger;
      // The links of the direction that mustn't be gone lead nowhere.
      for (List::Node* node : nodes) (index <= last ? node->prev : node->next) = &stranger;
      EXPECT_EQ(list.At(index), nodes[static_cast<std::size_t>(index)]);
      for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i]->prev = i > 0 ? nodes[i - 1] : nullptr;
        nodes[i]->next = i + 1 < nodes.size() ? nodes[i + 1] : nullptr;
      }
    }
  }
}

TEST(LinkedList, RemoveNodeUnlinksAtEveryPlace) {
  for (int count = 1; count <= 4; ++count) {
    for (int gone = 0; gone < count; ++gone) {
      SCOPED_TRACE(std::to_string(gone) + " of " + std::to_string(count));
      List list;
      Fill(&list, count);
      std::vector<List::Node*> nodes = Nodes(list);
      list.RemoveNode(nodes[static_cast<std::size_t>(gone)]);
      nodes.erase(nodes.begin() + gone);
      ExpectChain(list, nodes);
    }
  }
}

TEST(LinkedList, RemovingNodeAndEndDestroyTheElements) {
  Guest::alive = 0;
  {
    LinkedList<Guest> list;
    for (int i = 1; i <= 3; ++i) ASSERT_TRUE(list.AddTail(Guest(i)));
    Guest::left.clear();
    list.RemoveNode(list.head);
    EXPECT_EQ(Guest::left, std::vector<int>{1});
    EXPECT_EQ(Guest::alive, 2);
  }
  EXPECT_EQ(Guest::alive, 0);
}

TEST(LinkedList, ItsNodesAreGivenBackWithTheirElements) {
  const std::int64_t before = LivingAllocations();
  {
    List list;
    Fill(&list, 3);
    EXPECT_EQ(LivingAllocations() - before, 6);
    list.RemoveNode(list.head);
    EXPECT_EQ(LivingAllocations() - before, 4);
  }
  EXPECT_EQ(LivingAllocations(), before);
}

TEST(LinkedList, RemoveNodeDoesNothingOnAnEmptyList) {
  List list;
  int value = 1;
  List::Node stranger{&value, nullptr, nullptr, 0};
  list.RemoveNode(&stranger);
  ExpectChain(list, {});
  EXPECT_EQ(stranger.value, &value);
}

TEST(LinkedList, ReferencesStayGoodUntilTheirNodeIsRemoved) {
  List list;
  Fill(&list, 1);
  int* const first = list.head->value;
  for (int i = 1; i < 9; ++i) ASSERT_TRUE(list.AddTail(i));
  list.RemoveNode(list.head->next);
  ASSERT_TRUE(list.MoveDown(0));
  EXPECT_EQ(list.head->next->value, first);
  EXPECT_EQ(*first, 0);
}

TEST(LinkedList, ClearDestroysFromTheHeadOn) {
  Guest::alive = 0;
  LinkedList<Guest> list;
  for (int i = 1; i <= 3; ++i) ASSERT_TRUE(list.AddTail(Guest(i)));
  Guest::left.clear();
  list.Clear();
  EXPECT_EQ(Guest::left, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(Guest::alive, 0);
  EXPECT_EQ(list.head, nullptr);
  EXPECT_EQ(list.tail, nullptr);
  EXPECT_EQ(list.count, 0);
  list.Clear();
  ASSERT_TRUE(list.AddTail(Guest(4)));
  EXPECT_EQ(list.count, 1);
}

TEST(LinkedList, PopTailTakesTheLastElementOut) {
  List list;
  Fill(&list, 2);
  int out = -1;
  EXPECT_TRUE(list.PopTail(&out));
  EXPECT_EQ(out, 1);
  EXPECT_TRUE(list.PopTail(&out));
  EXPECT_EQ(out, 0);
  ExpectChain(list, {});
  out = -1;
  EXPECT_FALSE(list.PopTail(&out));
  EXPECT_EQ(out, -1);
}

TEST(LinkedList, MovesSwapWithTheNeighbourIfThereIsOne) {
  const struct {
    int count;
    int index;
    const char* movedUp;  // null where nothing moves
    const char* movedDown;
  } rows[] = {
      {4, 0, nullptr, "1023"},  {4, 1, "1023", "0213"},   {4, 2, "0213", "0132"},
      {4, 3, "0132", nullptr},  {4, 4, nullptr, nullptr}, {4, -1, nullptr, nullptr},
      {1, 0, nullptr, nullptr}, {0, 0, nullptr, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.index) + " of " + std::to_string(row.count));
    List up;
    List down;
    Fill(&up, row.count);
    Fill(&down, row.count);
    const std::string before = Values(up);
    EXPECT_EQ(up.MoveUp(row.index), row.movedUp != nullptr);
    EXPECT_EQ(Values(up), row.movedUp ? row.movedUp : before);
    EXPECT_EQ(down.MoveDown(row.index), row.movedDown != nullptr);
    EXPECT_EQ(Values(down), row.movedDown ? row.movedDown : before);
  }
}

// Every pair, in both orders: next to each other, apart, at either end, and each with itself.
TEST(LinkedList, SwapNodesExchangesPlacesWhereverTheyAre) {
  for (int count = 1; count <= 5; ++count) {
    for (int a = 0; a < count; ++a) {
      for (int b = 0; b < count; ++b) {
        SCOPED_TRACE(std::to_string(a) + " with " + std::to_string(b) + " of " +
                     std::to_string(count));
        List list;
        Fill(&list, count);
        std::vector<List::Node*> nodes = Nodes(list);
        list.SwapNodes(list.At(a), list.At(b));
        for (int i = 0; i < count; ++i) {
          const List::Node* node = nodes[static_cast<std::size_t>(i)];
          EXPECT_EQ(*node->value, i);
          EXPECT_EQ(node->tag, static_cast<std::uint32_t>(100 + i));
        }
        std::swap(nodes[static_cast<std::size_t>(a)], nodes[static_cast<std::size_t>(b)]);
        ExpectChain(list, nodes);
      }
    }
  }
}

TEST(LinkedList, SwapNodesWithNullDoesNothing) {
  List list;
  Fill(&list, 2);
  list.SwapNodes(nullptr, list.head);
  list.SwapNodes(list.head, nullptr);
  EXPECT_EQ(Values(list), "01");
}

TEST(LinkedList, CopiesHandTheTagsOn) {
  List list;
  Fill(&list, 3);
  List copy(list);
  EXPECT_EQ(Values(copy), "012");
  EXPECT_EQ(copy.head->tag, 100u);
  EXPECT_EQ(copy.tail->tag, 102u);
  EXPECT_NE(copy.head, list.head);
  EXPECT_NE(copy.head->value, list.head->value);
  ExpectChain(copy, {copy.head, copy.head->next, copy.tail});
}

TEST(LinkedList, AssignmentReplacesTheElements) {
  List list;
  Fill(&list, 3);
  List other;
  ASSERT_TRUE(other.AddTail(9, 5));
  list = other;
  EXPECT_EQ(Values(list), "9");
  EXPECT_EQ(list.head->tag, 5u);
  const List& same = list;
  list = same;
  EXPECT_EQ(Values(list), "9");
}

TEST(LinkedList, APointerElementIsNotOwned) {
  int target = 3;
  LinkedList<int*> list;
  ASSERT_TRUE(list.AddTail(&target));
  list.Clear();
  EXPECT_EQ(target, 3);
}

}  // namespace
}  // namespace kelvaro
