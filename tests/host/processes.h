// Processes of a Linux machine on which the tests run: those that a test starts, and what can be
// seen of any.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/host/child.h"

namespace kelvaro::tests {

// Waits for the end of a child: its exit status, 128 and the signal for one that was killed, -1
// where there is no such child.
int StatusOf(pid_t child);
// Runs `work` in a process of its own, whose exit status is its result.
pid_t Fork(const std::function<int()>& work);

// A server that tells where it is by a line of text.
class Server {
 public:
  // Where is the end of a pipe that its command names: "-displayfd", "7".
  explicit Server(const std::function<std::vector<std::string>(const std::string& pipe)>& command);
  ~Server() { Stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void Stop();
  pid_t Id() const { return process; }
  // What it told; empty where it can't be started.
  const std::string& Address() const { return address; }

 private:
  pid_t process = -1;
  std::string address;
};

// The words of an X server without a screen, whose line is the display's number.
std::vector<std::string> XServerCommand(const std::string& pipe, const std::string& size);

// What "/proc" tells of a process or thread: its name, the word behind a label such as "State:" in
// its status, and the files that it holds open by their descriptors. Empty for one that isn't
// there.
std::string NameOf(pid_t process);
std::string StatusWord(pid_t process, const std::string& label);
std::map<int, std::string> OpenFiles(pid_t process);
// Whether a thread sleeps until something wakes it.
bool IsAsleep(pid_t thread);
// Whether a process has a handler of its own for that signal.
bool Handles(pid_t process, int signal);
// Its thread of that name, 0 for none.
pid_t ThreadOf(pid_t process, const std::string& name);
// The processes that it has started and that are there, by their names.
std::map<pid_t, std::string> ChildrenOf(pid_t process);

}  // namespace kelvaro::tests
