// Others that ask a running Kelvaro on and on, while this lives.
#pragma once

#include "tests/kernel/child.h"

namespace kelvaro::kernel {

class Asking {
 public:
  // `environment` is that process's own.
  Asking(pid_t process, int requestsASecond, const ChildOptions& environment = {});

  // Ends it: how many answers there were, 0 for any failure, which Err tells.
  int End();
  std::string Err() const { return child.Err(); }

 private:
  Child child;
};

}  // namespace kelvaro::kernel
