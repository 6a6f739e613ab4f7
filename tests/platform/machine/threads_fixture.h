// Threads of a test on the machine on which the tests run.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/machine/this_machine.h"
#ifndef _WIN32
#include "tests/host/processes.h"
#endif

namespace platform {

constexpr std::uint32_t kLong = 60000;  // ms; a test that waits this long has failed

// What a test's thread works with.
struct Shared {
  Handle Start(std::uint32_t (*entry)(void*), const char* name = "test") {
    return threads.CreateThread(entry, this, name, &started);
  }
  void ExpectEnd(Handle thread) {
    EXPECT_EQ(threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  }
  std::uint32_t ExitCode(Handle thread) {
    std::uint32_t exitCode = 0xBAD;
    EXPECT_TRUE(threads.GetExitCodeThread(thread, &exitCode));
    return exitCode;
  }
  bool Reaches(int wanted) {
    for (std::uint32_t waited = 0; waited < kLong && steps < wanted; ++waited) clock.Sleep(1);
    return steps >= wanted;
  }

  // The thread that was started last, in its wait; for nothing else it sleeps. Windows doesn't
  // tell.
  bool ComesToWait() {
    if (!Reaches(1)) return false;
#ifdef _WIN32
    clock.Sleep(20);
    return true;
#else
    return kelvaro::tests::Eventually([this] { return kelvaro::tests::IsAsleep(started); });
#endif
  }

  ThisThreads threads;
  ThisClock clock;
  std::int32_t started = 0;
  Handle event = kInvalidHandle;
  Handle second = kInvalidHandle;
  std::atomic<int> steps{0};
  std::atomic<std::uint32_t> result{0};
  std::atomic<std::int32_t> id{0};
  std::string name;
};

// Those that are ended by force are parked and may look at it for ever, so it is never freed.
class ThreadsTest : public testing::Test {
 protected:
  static Shared& NeverFreed() {
    static auto* const kept = new std::vector<std::unique_ptr<Shared>>;
    return *kept->emplace_back(new Shared);
  }
  Shared& shared = NeverFreed();
  ThisThreads& threads = shared.threads;
};

inline std::uint32_t WaitForEvent(void* parameter) {
  auto* shared = static_cast<Shared*>(parameter);
  ++shared->steps;
  shared->result = shared->threads.WaitForSingleObject(shared->event, kLong);
  ++shared->steps;
  return 7;
}

}  // namespace platform
