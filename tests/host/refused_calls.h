// A system that refuses what it is asked: a full disk, no memory, no right. Linux only.
#pragma once

#include <errno.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stddef.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace kelvaro::tests {

struct Refusal {
  long call;                              // SYS_...
  int error;                              // errno
  std::optional<std::uint32_t> second{};  // only where this is the second argument
};

// Does something in a thread of its own whose system calls, and those of the threads and processes
// that it starts, fail so.
inline void WhereRefused(const std::vector<Refusal>& refusals, const std::function<void()>& act) {
  constexpr auto kNumber = static_cast<std::uint32_t>(offsetof(seccomp_data, nr));
  constexpr auto kSecond = static_cast<std::uint32_t>(offsetof(seccomp_data, args[1]));
  std::vector<sock_filter> filter;
  for (const Refusal& refusal : refusals) {
    const auto call = static_cast<std::uint32_t>(refusal.call);
    const std::uint8_t past = refusal.second ? 3 : 1;
    filter.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kNumber));
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, past));
    if (refusal.second) {
      filter.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kSecond));
      filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, *refusal.second, 0, 1));
    }
    const auto error = static_cast<std::uint32_t>(refusal.error);
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
  }
  filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  std::thread([&] {
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1UL, 0UL, 0UL, 0UL), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
    act();
  }).join();
}

// Neither a thread nor a process can be started.
inline const std::vector<Refusal> kNoThreads = {{SYS_clone3, EAGAIN}, {SYS_clone, EAGAIN}};

// Each way in which nobody can answer at a socket of their own.
inline std::vector<std::vector<Refusal>> NobodyAnswers() {
  std::vector<std::vector<Refusal>> all = {kNoThreads};
  for (const long call : {SYS_eventfd2, SYS_socket, SYS_bind, SYS_listen, SYS_chmod})
    all.push_back({{call, ENOMEM}});
  return all;
}

}  // namespace kelvaro::tests
