// One run of kelvaroctl (or of another program) as a child, with its output and its end.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kelvaro::kernel {

// The kelvaroctl under test.
std::string KelvaroctlPath();

struct ChildOptions {
  bool asNobody = false;  // without root's rights
  // Variables that it gets in place of ours; an empty value takes one away.
  std::map<std::string, std::string> environment = {};
};

class Child {
 public:
  // Starts arguments[0] with the rest. Its output goes to files, so that it never waits for us.
  explicit Child(const std::vector<std::string>& arguments, ChildOptions options = {});
  // Kills it if it still runs.
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t Pid() const { return pid; }
  void Signal(int number) const;

  // The exit status (128 and the signal's number if one ended it); empty if it still runs after
  // `ms`.
  std::optional<int> Wait(int ms);
  bool Running();

  // What it has written so far.
  std::string Out() const;
  std::string Err() const;

 private:
  pid_t pid = -1;
  std::string outPath;
  std::string errPath;
  std::optional<int> status;
};

// Runs to the end (within 20 s) and gives status and output.
struct Finished {
  int status = -1;  // -1: it didn't end
  std::string out;
  std::string err;
};
Finished RunToEnd(const std::vector<std::string>& arguments, ChildOptions options = {});

// A new file in a folder of its own, readable by everybody; gone with the virtual machine.
std::string WriteFile(const std::string& content);

// Lines without their ends.
std::vector<std::string> Lines(const std::string& text);

}  // namespace kelvaro::kernel
