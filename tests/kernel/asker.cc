// Asks a running Kelvaro on and on, as many callers would: asker PROCESS REQUESTS_A_SECOND. Ended
// by SIGTERM it prints how many answers it got. A caller that is hung up on, or gets no answer, is
// a failure.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/linux_calls.h"
#include "tests/kernel/wait.h"

namespace {

constexpr std::size_t kCallers = 7;
constexpr const char* kRequests[] = {"status", "nonsense", "select\nname x", "status",
                                     "follow-events"};

volatile std::sig_atomic_t ending = 0;

// What has come for that caller; of its messages those that answer.
int Answers(platform::Conversation& caller) {
  int count = 0;
  std::string message;
  while (caller.Receive(&message, 0) == platform::Conversation::Heard::Message)
    count += message.rfind("kelvaro 1 event", 0) != 0;
  return count;
}

}  // namespace

int main(int count, char** words) {
  using kelvaro::kernel::NowUs;
  if (count != 3) return 2;
  std::signal(SIGTERM, [](int) { ending = 1; });
  const auto process = static_cast<std::uint32_t>(std::atoi(words[1]));
  const std::int64_t pauseUs = 1000000 / std::atoi(words[2]);
  platform::LinuxCalls calls;
  std::vector<std::unique_ptr<platform::Conversation>> callers;
  for (std::size_t i = 0; i < kCallers; ++i) {
    callers.push_back(calls.Call(process));
    if (!callers.back()) {
      std::fprintf(stderr, "asker: process %u doesn't answer\n", process);
      return 1;
    }
  }
  std::size_t asked = 0;
  int answered = 0;
  for (std::int64_t next = NowUs(); !ending; ++asked) {
    platform::Conversation& caller = *callers[asked % kCallers];
    if (!caller.Send(std::string("kelvaro 1 ") + kRequests[asked % std::size(kRequests)])) {
      std::fprintf(stderr, "asker: hung up on after %zu requests\n", asked);
      return 1;
    }
    answered += Answers(caller);
    kelvaro::kernel::WaitUntilUs(next += pauseUs);
  }
  if (answered == 0) return 1;
  std::printf("%d\n", answered);
  return 0;
}
