// A program that a test starts, on every system.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "tests/host/patience.h"
#ifdef _WIN32
#include "tests/host/files.h"
#endif

namespace kelvaro::tests {

struct ChildOptions {
  // Variables that it gets in place of ours; an empty value takes one away.
  std::map<std::string, std::string> environment = {};
#ifndef _WIN32
  bool asNobody = false;  // without root's rights
#endif
};

// A program that runs in the background; killed with this object.
class Child {
 public:
  // Its output is kept, so that it never waits for us. No word may have a quotation mark.
  explicit Child(const std::vector<std::string>& command, const ChildOptions& options = {});
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t Id() const { return id; }
  bool Running() { return WaitForEnd(0ms) == -1; }
  void Kill();  // and waits for its end
#ifndef _WIN32
  void Signal(int signal) const;
#endif
  // Its exit status, 128 and the signal for one that was killed; -1 when it still runs after
  // `limit`.
  int WaitForEnd(std::chrono::milliseconds limit = patience);

  // What it has written so far.
  std::string Out() const;
  std::string Err() const;
  std::string Log() const { return Out() + Err(); }

 private:
#ifdef _WIN32
  const TemporaryFolder folder;  // of what it has written
  void* process = nullptr;
  pid_t id = 0;
#else
  const int out;
  const int err;
  const pid_t id;
#endif
  int status = -1;
};

}  // namespace kelvaro::tests
