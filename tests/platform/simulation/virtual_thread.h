// Lets a test write the body of a virtual thread in place.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <utility>

#include "app/platform/platform.h"

namespace platform::simulation {

class Bodies {
 public:
  // The body stays where it is as long as this lives, which must be longer than the thread.
  Handle Start(const char* name, std::function<std::uint32_t()> body, std::int32_t* id = nullptr) {
    bodies.push_back(std::move(body));
    return CreateThread(
        [](void* stored) { return (*static_cast<std::function<std::uint32_t()>*>(stored))(); },
        &bodies.back(), name, id);
  }

  std::uint32_t Tick(std::uint32_t ms, std::function<std::uint32_t()> body) {
    bodies.push_back(std::move(body));
    return timeSetEvent(
        ms, 1,
        [](std::uint32_t, void* stored) {
          (*static_cast<std::function<std::uint32_t()>*>(stored))();
        },
        &bodies.back(), TIME_PERIODIC);
  }

 private:
  std::list<std::function<std::uint32_t()>> bodies;
};

// "a@5 b@5 ": who came by, and when.
class Diary {
 public:
  void Note(const std::string& who) { text += who + "@" + std::to_string(GetTickCount()) + " "; }
  std::string text;
};

}  // namespace platform::simulation
