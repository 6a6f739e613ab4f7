#include "tests/kernel/trace.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

constexpr char kTracing[] = "/sys/kernel/tracing/";

void Set(const std::string& file, const std::string& value) {
  std::ofstream out(kTracing + file);
  out << value << std::flush;
  if (!out) {
    std::fprintf(stderr, "%s%s can't be set to '%s'\n", kTracing, file.c_str(), value.c_str());
    std::exit(1);
  }
}

}  // namespace

std::vector<SystemCall> TraceCalls(pid_t process, int ms, const std::function<void()>& begun) {
  std::string threads;
  for (const auto& entry :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    threads += entry.path().filename().string() + " ";
  }
  Set("tracing_on", "0");
  Set("trace_clock", "mono");
  Set("trace", "");
  Set("set_event_pid", threads);
  Set("events/raw_syscalls/sys_enter/enable", "1");
  Set("tracing_on", "1");
  if (begun) begun();
  WaitMs(ms);
  Set("tracing_on", "0");
  Set("events/raw_syscalls/sys_enter/enable", "0");

  // "     kelvaroctl-123     [000] .....    12.345678: sys_enter: NR 0 (7, 7ffc…, …)"
  std::vector<SystemCall> calls;
  std::ifstream trace(kTracing + std::string("trace"));
  for (std::string line; std::getline(trace, line);) {
    const std::size_t call = line.find(": sys_enter: NR ");
    const std::size_t bracket = line.find(" [");
    if (line.empty() || line[0] == '#' || call == std::string::npos ||
        bracket == std::string::npos) {
      continue;
    }
    SystemCall entry = {};
    const std::size_t pid = line.rfind('-', bracket);
    const std::size_t time = line.rfind(' ', call);
    long seconds = 0;
    long micros = 0;
    if (std::sscanf(line.c_str() + pid + 1, "%d", &entry.thread) != 1 ||
        std::sscanf(line.c_str() + time, "%ld.%ld", &seconds, &micros) != 2 ||
        std::sscanf(line.c_str() + call, ": sys_enter: NR %ld (%lx", &entry.number, &entry.first) !=
            2) {
      std::fprintf(stderr, "a line of the trace isn't understood: %s\n", line.c_str());
      std::exit(1);
    }
    entry.us = static_cast<std::int64_t>(seconds) * 1000000 + micros;
    calls.push_back(entry);
  }
  return calls;
}

pid_t ThreadOf(pid_t process, const std::string& name) {
  for (const auto& entry :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream file(entry.path() / "comm");
    std::string own;
    if (std::getline(file, own) && own == name)
      return static_cast<pid_t>(std::stol(entry.path().filename().string()));
  }
  return -1;
}

int DescriptorOf(pid_t process, const std::string& path) {
  for (const auto& [descriptor, file] : tests::OpenFiles(process))
    if (file == path) return descriptor;
  return -1;
}

long SwitchesOf(pid_t process) {
  long sum = 0;
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream file(task.path() / "status");
    for (std::string word; file >> word;) {
      long count = 0;
      if (word.ends_with("voluntary_ctxt_switches:") && file >> count) sum += count;
    }
  }
  return sum;
}

}  // namespace kelvaro::kernel
