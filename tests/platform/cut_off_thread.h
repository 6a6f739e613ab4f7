// Threads that were ended by force, as an implementation leaves them: cut off.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/platform/cut_off.h"

namespace platform {

using NamedCalls = std::vector<std::pair<std::string, std::function<void()>>>;

// Names of those calls that come back, though each is made on a thread of its own that was cut off.
// The threads sleep for good, so what the calls work on must last as long as the program.
inline std::vector<std::string> ComeBackThoughCutOff(const NamedCalls& calls) {
  struct Seen {
    std::mutex mutex;
    std::vector<std::string> back;
    std::atomic<std::size_t> started{0};
  };
  static const std::atomic<bool> cutOff{true};
  const auto seen = std::make_shared<Seen>();
  for (const auto& call : calls) {
    std::thread([seen, call] {
      cutOffFlag = &cutOff;
      ++seen->started;
      call.second();
      const std::lock_guard<std::mutex> lock(seen->mutex);
      seen->back.push_back(call.first);
    }).detach();
  }
  while (seen->started != calls.size()) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const std::lock_guard<std::mutex> lock(seen->mutex);
  return seen->back;
}

}  // namespace platform
