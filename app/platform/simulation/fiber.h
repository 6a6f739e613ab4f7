// A flow of control of its own on a stack of its own, switched to and from by hand on one system
// thread. The address and thread sanitizers are told of each switch.
#pragma once

#include <cstddef>
#include <vector>

namespace platform::simulation {

// Stacks of one size with a guard page below each, kept for the next fiber.
class StackPool {
 public:
  static constexpr std::size_t kStackSize = std::size_t{1024} * 1024;

  StackPool() = default;
  ~StackPool();
  StackPool(const StackPool&) = delete;
  StackPool& operator=(const StackPool&) = delete;

  // The lowest usable byte of kStackSize bytes; null when there is no memory.
  void* Take();
  void GiveBack(void* stack);

 private:
  std::vector<void*> idle;
};

class Fiber {
 public:
  // The calling flow itself. It must outlive all fibers that switch to it.
  Fiber();

  // Runs entry(argument) at the first switch to it; entry must not return. `pool` outlives the
  // fiber. Usable only if HasStack.
  Fiber(StackPool& pool, void (*entry)(void*), void* argument);

  // Frees the stack without unwinding it. Not for the running fiber.
  ~Fiber();
  Fiber(const Fiber&) = delete;
  Fiber& operator=(const Fiber&) = delete;

  bool HasStack() const { return stack != nullptr; }

  // Leaves this fiber, which is the running one, for `to`. Comes back when another switches here;
  // with `forGood` none may.
  void SwitchTo(Fiber& to, bool forGood = false);

 private:
  static void Start();
  void Arrive();

  StackPool* pool = nullptr;
  void* stack = nullptr;
  void (*entry)(void*) = nullptr;
  void* argument = nullptr;
  void* context = nullptr;  // where to go on: a stack pointer or a ucontext_t

  // For the sanitizers.
  [[maybe_unused]] void* shadow = nullptr;  // what the sanitizer knows of this fiber
  const void* stackBottom = nullptr;
  std::size_t stackSize = 0;
};

}  // namespace platform::simulation
