// The simulation's fibers as the system's own, which know what belongs to a stack besides its
// memory.
#include "app/platform/simulation/fiber.h"

#include <cstdlib>

#include "app/platform/windows/win32.h"

namespace platform::simulation {
namespace {

constexpr std::size_t kFirstPages = std::size_t{64} * 1024;

// Of the switch that is under way on this system thread.
thread_local Fiber* entering = nullptr;

}  // namespace

// The system makes a fiber's stack with it.
StackPool::~StackPool() = default;

Fiber::Fiber() : context(IsThreadAFiber() ? GetCurrentFiber() : ConvertThreadToFiber(nullptr)) {}

Fiber::Fiber(StackPool& pool, void (*entry)(void*), void* argument)
    : pool(&pool), entry(entry), argument(argument) {
  const auto start =
      reinterpret_cast<LPFIBER_START_ROUTINE>(reinterpret_cast<void*>(&Fiber::Start));
  context = CreateFiberEx(kFirstPages, StackPool::kStackSize, 0, start, nullptr);
  stack = context;
}

// The calling flow stays a fiber: another simulation of this thread begins with the one that is
// there.
Fiber::~Fiber() {
  if (stack) DeleteFiber(context);
}

void Fiber::SwitchTo(Fiber& to, bool /*forGood*/) {
  entering = &to;
  SwitchToFiber(to.context);
}

void Fiber::Start() {
  Fiber* const self = entering;
  self->entry(self->argument);
  std::abort();
}

}  // namespace platform::simulation
