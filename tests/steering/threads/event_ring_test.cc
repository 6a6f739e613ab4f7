#include "steering/event_ring.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace kelvaro {
namespace {

TEST(EventRing, GivesBackInOrderWhatWasPutIn) {
  EventRing<int, 4> ring;
  int value = 0;
  EXPECT_FALSE(ring.Take(&value));
  for (int round = 0; round < 10; ++round) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(ring.Put(round * 3 + i));
    for (int i = 0; i < 3; ++i) {
      ASSERT_TRUE(ring.Take(&value));
      EXPECT_EQ(value, round * 3 + i);
    }
    EXPECT_FALSE(ring.Take(&value));
  }
}

TEST(EventRing, TakesNothingMoreWhenItIsFullUntilSomethingIsTaken) {
  EventRing<int, 4> ring;
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(ring.Put(i));
  EXPECT_FALSE(ring.Put(4));
  int value = -1;
  ASSERT_TRUE(ring.Take(&value));
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(ring.Put(5));
  EXPECT_FALSE(ring.Put(6));
  for (const int expected : {1, 2, 3, 5}) {
    ASSERT_TRUE(ring.Take(&value));
    EXPECT_EQ(value, expected);
  }
}

// What is put in comes out once each, and that of each thread in its order.
TEST(EventRing, LosesAndDoublesNothingBetweenThreads) {
  constexpr int kThreads = 4;
  constexpr int kEach = 20000;
  struct Value {
    int thread = 0;
    int number = 0;
  };
  EventRing<Value, 64> ring;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&ring, thread] {
      for (int number = 0; number < kEach; ++number)
        while (!ring.Put({thread, number})) std::this_thread::yield();
    });
  }
  std::vector<int> next(kThreads, 0);
  for (int taken = 0; taken < kThreads * kEach;) {
    Value value;
    if (!ring.Take(&value)) {
      std::this_thread::yield();
      continue;
    }
    EXPECT_EQ(value.number, next[value.thread]++);
    ++taken;
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(next, std::vector<int>(kThreads, kEach));
}

}  // namespace
}  // namespace kelvaro
