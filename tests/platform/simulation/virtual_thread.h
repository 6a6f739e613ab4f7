// Lets a test write the body of a virtual thread in place.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <type_traits>

#include "app/platform/simulation/simulation.h"

namespace platform::simulation {

// A body stays where it is as long as this lives, which must be longer than its thread. One that
// returns nothing ends with 0.
class Bodies {
 public:
  template <typename Body>
  Handle Start(const char* name, Body body, std::int32_t* id = nullptr) {
    return threads().CreateThread([](void* stored) { return (*static_cast<Stored*>(stored))(); },
                                  Keep(body), name, id);
  }

  template <typename Body>
  std::uint32_t Tick(std::uint32_t ms, Body body) {
    return timers().timeSetEvent(
        ms, 1, [](std::uint32_t, void* stored) { (*static_cast<Stored*>(stored))(); }, Keep(body),
        TIME_PERIODIC);
  }

 private:
  using Stored = std::function<std::uint32_t()>;

  template <typename Body>
  Stored* Keep(Body body) {
    if constexpr (std::is_void_v<decltype(body())>) {
      return &bodies.emplace_back([body]() -> std::uint32_t { return body(), 0; });
    } else {
      return &bodies.emplace_back(body);
    }
  }

  std::list<Stored> bodies;
};

// "a@5 b@5 ": who came by, and when.
class Diary {
 public:
  void Note(const std::string& who) {
    text += who + "@" + std::to_string(clock().GetTickCount()) + " ";
  }
  std::string text;
};

// A machine with threads of the test's own.
class ThreadedTest : public testing::Test {
 protected:
  Simulation sim;
  Bodies bodies;
  Diary diary;
};

}  // namespace platform::simulation
