#include "app/platform/simulation/fiber.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KELVARO_ASAN 1
#endif
#if __has_feature(thread_sanitizer)
#define KELVARO_TSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define KELVARO_ASAN 1
#endif
#if defined(__SANITIZE_THREAD__)
#define KELVARO_TSAN 1
#endif

#ifdef KELVARO_ASAN
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif
#ifdef KELVARO_TSAN
#include <sanitizer/tsan_interface.h>
#endif

// swapcontext saves the signal mask with a system call at each switch, which would be most of what
// a simulated hour costs. Where the calling convention is known the switch is made by hand.
#if !defined(__x86_64__) || defined(__ILP32__) || defined(KELVARO_FIBER_UCONTEXT)
#define KELVARO_USE_UCONTEXT 1
#include <ucontext.h>
#else
// Saves what a called function must preserve on the present stack, its pointer in *save, and takes
// the same up from `load`.
extern "C" void kelvaro_switch_stack(void** save, void* load);
asm(R"(
.pushsection .text
.globl kelvaro_switch_stack
.hidden kelvaro_switch_stack
.type kelvaro_switch_stack, @function
kelvaro_switch_stack:
  pushq %rbp
  pushq %rbx
  pushq %r12
  pushq %r13
  pushq %r14
  pushq %r15
  movq %rsp, (%rdi)
  movq %rsi, %rsp
  popq %r15
  popq %r14
  popq %r13
  popq %r12
  popq %rbx
  popq %rbp
  ret
.size kelvaro_switch_stack, .-kelvaro_switch_stack
.popsection
)");
#endif

namespace platform::simulation {
namespace {

// Of the switch that is under way on this system thread.
thread_local Fiber* leaving = nullptr;
thread_local Fiber* entering = nullptr;

std::size_t PageSize() {
  static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return size;
}

// A stack that was left without unwinding still has its frames' red zones.
void ForgetFrames([[maybe_unused]] void* stack) {
#ifdef KELVARO_ASAN
  ASAN_UNPOISON_MEMORY_REGION(stack, StackPool::kStackSize);
#endif
}

}  // namespace

StackPool::~StackPool() {
  for (void* stack : idle) {
    munmap(static_cast<char*>(stack) - PageSize(), kStackSize + PageSize());
  }
}

void* StackPool::Take() {
  if (!idle.empty()) {
    void* stack = idle.back();
    idle.pop_back();
    return stack;
  }
  void* memory = mmap(nullptr, kStackSize + PageSize(), PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  if (mprotect(memory, PageSize(), PROT_NONE) != 0) {
    munmap(memory, kStackSize + PageSize());
    return nullptr;
  }
  return static_cast<char*>(memory) + PageSize();
}

void StackPool::GiveBack(void* stack) {
  ForgetFrames(stack);
  idle.push_back(stack);
}

Fiber::Fiber() {
#ifdef KELVARO_TSAN
  shadow = __tsan_get_current_fiber();
#endif
#ifdef KELVARO_USE_UCONTEXT
  context = new ucontext_t{};
#endif
}

Fiber::Fiber(StackPool& pool, void (*entry)(void*), void* argument)
    : pool(&pool), stack(pool.Take()), entry(entry), argument(argument) {
  if (!stack) return;
  stackBottom = stack;
  stackSize = StackPool::kStackSize;
#ifdef KELVARO_TSAN
  shadow = __tsan_create_fiber(0);
#endif
#ifdef KELVARO_USE_UCONTEXT
  ucontext_t* fresh = new ucontext_t{};
  getcontext(fresh);
  fresh->uc_stack.ss_sp = stack;
  fresh->uc_stack.ss_size = StackPool::kStackSize;
  fresh->uc_link = nullptr;
  makecontext(fresh, &Fiber::Start, 0);
  context = fresh;
#else
  // As kelvaro_switch_stack leaves it, returning into Start with the stack pointer as after a call
  // from nowhere.
  void** top = reinterpret_cast<void**>(static_cast<char*>(stack) + StackPool::kStackSize);
  *--top = nullptr;
  *--top = reinterpret_cast<void*>(&Fiber::Start);
  for (int saved = 0; saved < 6; ++saved) *--top = nullptr;
  context = top;
#endif
}

Fiber::~Fiber() {
#ifdef KELVARO_USE_UCONTEXT
  delete static_cast<ucontext_t*>(context);
#endif
  if (!stack) return;
#ifdef KELVARO_TSAN
  __tsan_destroy_fiber(shadow);
#endif
  pool->GiveBack(stack);
}

void Fiber::SwitchTo(Fiber& to, [[maybe_unused]] bool forGood) {
  leaving = this;
  entering = &to;
#ifdef KELVARO_ASAN
  __sanitizer_start_switch_fiber(forGood ? nullptr : &shadow, to.stackBottom, to.stackSize);
#endif
#ifdef KELVARO_TSAN
  __tsan_switch_to_fiber(to.shadow, 0);
#endif
#ifdef KELVARO_USE_UCONTEXT
  swapcontext(static_cast<ucontext_t*>(context), static_cast<ucontext_t*>(to.context));
#else
  kelvaro_switch_stack(&context, to.context);
#endif
  Arrive();
}

void Fiber::Arrive() {
#ifdef KELVARO_ASAN
  __sanitizer_finish_switch_fiber(shadow, &leaving->stackBottom, &leaving->stackSize);
#endif
}

void Fiber::Start() {
  Fiber* self = entering;
  self->Arrive();
  self->entry(self->argument);
  std::abort();
}

}  // namespace platform::simulation
