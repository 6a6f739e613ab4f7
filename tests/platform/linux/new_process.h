// A test in a process of its own that has done nothing yet: for rules of a process's first thread,
// and for what can't be taken back, such as lowered limits. Failures show in the process's error
// output.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <functional>
#include <iostream>

namespace platform {

#define EXPECT_HOLDS(condition)                      \
  if (!(condition)) {                                \
    std::cerr << "not so: " #condition << std::endl; \
    _exit(1);                                        \
  }

inline void InANewProcess(const std::function<void()>& look) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a program of its own, not a fork of this one
  EXPECT_EXIT((look(), _exit(0)), testing::ExitedWithCode(0), "");
}

// Takes away every way to a better priority.
inline void BecomeNobody() {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere", 1);
  const rlimit none{};
  setrlimit(RLIMIT_NICE, &none);
  setrlimit(RLIMIT_RTPRIO, &none);
  if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
  prctl(PR_SET_DUMPABLE, 1UL, 0UL, 0UL, 0UL);  // /proc shows it to itself again
}

}  // namespace platform
