#include "tests/host/processes.h"

#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "tests/host/files.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;

int Status(int raw) { return WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw); }

[[noreturn]] void Become(const std::vector<std::string>& command, int in, int out, int err) {
  dup2(in, STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  execvp(words[0], words.data());
  std::perror(words[0]);
  _exit(127);
}

std::string ProcFile(pid_t process, const std::string& name) {
  return "/proc/" + std::to_string(process) + "/" + name;
}

}  // namespace

int StatusOf(pid_t child) {
  int raw = 0;
  return waitpid(child, &raw, 0) == child ? Status(raw) : -1;
}

pid_t Fork(const std::function<int()>& work) {
  const pid_t process = fork();
  if (process == 0) _exit(work());
  return process;
}

Child::Child(const std::vector<std::string>& command, const ChildOptions& options)
    : out(memfd_create("out", MFD_CLOEXEC)), err(memfd_create("err", MFD_CLOEXEC)), id(fork()) {
  if (id != 0) return;
  if (options.asNobody && (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0))
    _exit(126);
  for (const auto& [name, value] : options.environment) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  Become(command, open("/dev/null", O_RDONLY | O_CLOEXEC), out, err);
}

Child::~Child() {
  Kill();
  close(out);
  close(err);
}

void Child::Kill() {
  if (!Running()) return;
  Signal(SIGKILL);
  status = StatusOf(id);
}

void Child::Signal(int signal) const {
  if (status == -1) kill(id, signal);
}

int Child::WaitForEnd(std::chrono::milliseconds limit) {
  Eventually(
      [this] {
        int raw = 0;
        if (status == -1 && waitpid(id, &raw, WNOHANG) == id) status = Status(raw);
        return status != -1;
      },
      limit, 2ms);
  return status;
}

// By way of its name, so that the place where the program writes on doesn't move.
std::string Child::Out() const { return Content("/proc/self/fd/" + std::to_string(out)); }
std::string Child::Err() const { return Content("/proc/self/fd/" + std::to_string(err)); }

Server::Server(const std::function<std::vector<std::string>(const std::string& pipe)>& command) {
  int line[2];
  if (pipe2(line, O_CLOEXEC) != 0) return;
  process = fork();
  if (process == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);  // or it would outlive a test that gives up
    fcntl(line[1], F_SETFD, 0);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    Become(command(std::to_string(line[1])), nothing, nothing, nothing);
  }
  close(line[1]);
  char letter;
  while (read(line[0], &letter, 1) == 1 && letter != '\n') address += letter;
  close(line[0]);
}

void Server::Stop() {
  if (process <= 0) return;
  kill(process, SIGKILL);
  StatusOf(process);
  process = -1;
}

std::vector<std::string> XServerCommand(const std::string& pipe, const std::string& size) {
  return {"Xvfb", "-displayfd", pipe, "-screen", "0", size + "x24", "-nolisten", "tcp", "-noreset"};
}

std::string NameOf(pid_t process) {
  std::string name;
  std::getline(std::ifstream(ProcFile(process, "comm")) >> std::ws, name);
  return name;
}

std::string StatusWord(pid_t process, const std::string& label) {
  std::ifstream status(ProcFile(process, "status"));
  for (std::string word; status >> word;)
    if (word == label) return status >> word ? word : "";
  return "";
}

bool IsAsleep(pid_t thread) { return StatusWord(thread, "State:") == "S"; }

bool Handles(pid_t process, int signal) {
  const std::string handled = StatusWord(process, "SigCgt:");
  return !handled.empty() && (std::stoull(handled, nullptr, 16) >> (signal - 1) & 1) != 0;
}

std::map<int, std::string> OpenFiles(pid_t process) {
  std::map<int, std::string> files;
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator(ProcFile(process, "fd"), gone))
    files[std::stoi(entry.path().filename())] = fs::read_symlink(entry.path(), gone);
  return files;
}

pid_t ThreadOf(pid_t process, const std::string& name) {
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator(ProcFile(process, "task"), gone)) {
    const pid_t thread = std::stoi(entry.path().filename());
    if (NameOf(thread) == name) return thread;
  }
  return 0;
}

std::map<pid_t, std::string> ChildrenOf(pid_t process) {
  std::map<pid_t, std::string> children;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const pid_t child = atoi(entry.path().filename().c_str());
    if (child > 0 && StatusWord(child, "PPid:") == std::to_string(process))
      children[child] = NameOf(child);
  }
  return children;
}

}  // namespace kelvaro::tests
