#include "tests/kernel/child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

std::string NewPath() {
  static int count = 0;
  static const std::string folder = [] {
    char name[] = "/dev/shm/kelvaro.XXXXXX";
    if (mkdtemp(name) == nullptr) {
      std::perror("a folder for files of tests");
      std::exit(1);
    }
    std::filesystem::permissions(name, std::filesystem::perms(0755));
    return std::string(name);
  }();
  return folder + "/" + std::to_string(++count);
}

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

std::string KelvaroctlPath() {
  // A copy in memory: another user can reach it wherever the work tree lies, and no page of it has
  // to be fetched from the host while a test measures time.
  static const std::string path = [] {
    const std::string copy = NewPath();
    std::filesystem::copy_file(KELVAROCTL, copy);
    std::filesystem::permissions(copy, std::filesystem::perms(0755));
    return copy;
  }();
  return path;
}

Child::Child(const std::vector<std::string>& arguments, ChildOptions options)
    : outPath(NewPath()), errPath(NewPath()) {
  std::vector<char*> argv;
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  pid = fork();
  if (pid == 0) {
    const int in = open("/dev/null", O_RDONLY);
    const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) {
      _exit(126);
    }
    close(in);
    if (options.asNobody && (setgid(65534) != 0 || setuid(65534) != 0)) {
      _exit(126);
    }
    for (const auto& [name, value] : options.environment) {
      if (value.empty()) {
        unsetenv(name.c_str());
      } else {
        setenv(name.c_str(), value.c_str(), 1);
      }
    }
    execv(argv[0], argv.data());
    std::perror(argv[0]);
    _exit(127);
  }
  if (pid < 0) {
    std::perror("fork");
    std::exit(1);
  }
}

Child::~Child() {
  if (Running()) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
}

void Child::Signal(int number) const { kill(pid, number); }

bool Child::Running() {
  if (!status.has_value()) {
    int raw = 0;
    if (waitpid(pid, &raw, WNOHANG) == pid) {
      status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    }
  }
  return !status.has_value();
}

std::optional<int> Child::Wait(int ms) {
  Eventually([this] { return !Running(); }, ms);
  return status;
}

std::string Child::Out() const { return Content(outPath); }
std::string Child::Err() const { return Content(errPath); }

Finished RunToEnd(const std::vector<std::string>& arguments, ChildOptions options) {
  Child child(arguments, options);
  Finished finished;
  finished.status = child.Wait(20000).value_or(-1);
  finished.out = child.Out();
  finished.err = child.Err();
  return finished;
}

std::string WriteFile(const std::string& content) {
  const std::string path = NewPath();
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace kelvaro::kernel
