#include "app/platform/linux/program_start.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>

#include "app/platform/linux/thread_priority.h"
#include "app/platform/threads.h"
#include "tests/platform/linux/fake_realtime_kit.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// Limits can't be raised again, except by root: each test is a process of its own without rights.
// Its failures show in its error output.
#define EXPECT_HOLDS(condition)                      \
  if (!(condition)) {                                \
    std::cerr << "not so: " #condition << std::endl; \
    _exit(1);                                        \
  }

void BecomeNobody() {
  const rlimit none{};
  setrlimit(RLIMIT_NICE, &none);
  setrlimit(RLIMIT_RTPRIO, &none);
  if (geteuid() == 0 && setuid(65534) != 0) _exit(2);
  prctl(PR_SET_DUMPABLE, 1UL, 0UL, 0UL, 0UL);  // /proc shows it to itself again
}

void AsNobody(const std::function<void()>& look) {
  if (!Bus().Start()) {
    if (BusRequired()) FAIL() << "dbus-daemon can't be started";
    GTEST_SKIP() << "dbus-daemon can't be started";
  }
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a program of its own, not a fork of this one
  EXPECT_EXIT((BecomeNobody(), look(), _exit(0)), testing::ExitedWithCode(0), "");
}

std::string TextOf(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string RealtimeLine(const std::string& limits) {
  const std::size_t start = limits.find("Max realtime timeout");
  return limits.substr(start, limits.find('\n', start) - start);
}

std::string OwnRealtimeLine() { return RealtimeLine(TextOf("/proc/self/limits")); }

bool IsThere(pid_t process) { return kill(process, 0) == 0 || errno == EPERM; }

// The child of `parent` that bears the starter's name, -1 for none.
pid_t StarterOf(pid_t parent) {
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    std::istringstream stat(TextOf(entry.path() / "stat"));
    pid_t id = 0;
    pid_t maker = 0;
    std::string name, state;
    if (stat >> id >> name >> state >> maker && maker == parent && name == "(starter)") return id;
  }
  return -1;
}

void BecomeTimeCritical() { SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL); }

// A process that RealtimeKit grants real-time scheduling.
class GrantedProcess {
 public:
  GrantedProcess() {
    EXPECT_HOLDS(bus.Start());
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.Address().c_str(), 1);
    char name[] = "/tmp/kelvaro-start-XXXXXX";
    folder = mkdtemp(name);
  }
  ~GrantedProcess() { fs::remove_all(folder); }

  // From a thread whose limits and slack are no longer the session's.
  void InTimeCriticalThread(const std::function<void()>& look) {
    const FakeService service(bus.Address(), true);
    const std::string before = OwnRealtimeLine();
    std::thread([&] {
      BecomeTimeCritical();
      EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_TIME_CRITICAL);
      EXPECT_HOLDS(prctl(PR_GET_TIMERSLACK) == 1);
      EXPECT_HOLDS(OwnRealtimeLine() != before);
      look();
    }).join();
  }

  // What a started program sees in `file` of its own.
  std::string Seen(const std::string& file) {
    const std::string out = folder + "/out";
    EXPECT_HOLDS(Run({"/bin/dd", {"dd", "if=" + file, "of=" + out, "status=none"}, ""}) == 0);
    return TextOf(out);
  }

  // Its exit status; nothing is left of it.
  int Run(const ProgramStart& start) {
    pid_t process = -1;
    EXPECT_HOLDS(StartProgram(start, &process) == 0);
    int status = 0;
    EXPECT_HOLDS(waitpid(process, &status, 0) == process);
    EXPECT_HOLDS(!IsThere(process));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  Bus bus;
  std::string folder;
};

TEST(ProgramStart, GetsTheSessionsLimitsThoughRealtimeKitHadOursLowered) {
  AsNobody([] {
    GrantedProcess process;
    const std::string session = OwnRealtimeLine();
    process.InTimeCriticalThread([&] {
      EXPECT_HOLDS(RealtimeLine(process.Seen("/proc/self/limits")) == session);
      EXPECT_HOLDS(RealtimeLine(process.Seen("/proc/self/limits")) == session);
    });
  });
}

TEST(ProgramStart, GetsTheSessionsTimerSlackFromATimeCriticalThread) {
  AsNobody([] {
    GrantedProcess process;
    prctl(PR_SET_TIMERSLACK, 0UL, 0UL, 0UL, 0UL);
    const std::string session = std::to_string(prctl(PR_GET_TIMERSLACK)) + "\n";
    EXPECT_HOLDS(session != "1\n");
    process.InTimeCriticalThread(
        [&] { EXPECT_HOLDS(process.Seen("/proc/self/timerslack_ns") == session); });
  });
}

// RealtimeKit isn't asked: there is no starter.
TEST(ProgramStart, GetsTheSessionsTimerSlackWithoutAStarterToo) {
  AsNobody([] {
    GrantedProcess process;
    prctl(PR_SET_TIMERSLACK, 0UL, 0UL, 0UL, 0UL);
    const std::string session = std::to_string(prctl(PR_GET_TIMERSLACK)) + "\n";
    prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    std::thread([&] {
      EXPECT_HOLDS(process.Seen("/proc/self/timerslack_ns") == session);
      StartAtNormalPriority();
      EXPECT_HOLDS(std::to_string(prctl(PR_GET_TIMERSLACK)) + "\n" == session);
    }).join();
    EXPECT_HOLDS(StarterOf(getpid()) == -1);
  });
}

TEST(ProgramStart, GetsItsWordsAndFolderAndTellsItsStatusFromTheStarterToo) {
  AsNobody([] {
    GrantedProcess process;
    process.InTimeCriticalThread([&] {
      const std::string script = process.folder + "/script";
      std::ofstream(script) << "printf '<%s>' \"$@\" >out; ps -o ppid= $$ >parent; exit 7\n";
      fs::permissions(script, fs::perms::owner_all);
      EXPECT_HOLDS(process.Run({script, {"script", "one word", ""}, process.folder}) == 7);
      EXPECT_HOLDS(TextOf(process.folder + "/out") == "<one word><>");
      EXPECT_HOLDS(std::stoi(TextOf(process.folder + "/parent")) == getpid());
      fs::remove(process.folder + "/out");
      // An empty one is this process's own, where that is now.
      fs::current_path(process.folder);
      EXPECT_HOLDS(process.Run({script, {"script"}, ""}) == 7);
      EXPECT_HOLDS(TextOf(process.folder + "/out") == "<>");
    });
  });
}

TEST(ProgramStart, StaysInAFolderThatCannotBeEnteredAnyMore) {
  AsNobody([] {
    GrantedProcess process;
    const std::string closed = process.folder + "/closed";
    fs::create_directory(closed);
    fs::current_path(closed);
    fs::permissions(closed, fs::perms::none);
    EXPECT_HOLDS(process.Run({"/bin/true", {"true"}, ""}) == 0);
    process.InTimeCriticalThread([&] {
      EXPECT_HOLDS(process.Run({"/bin/true", {"true"}, ""}) == 0);
    });
    fs::permissions(closed, fs::perms::owner_all);
  });
}

TEST(ProgramStart, TellsTheSystemsErrorFromTheStarterToo) {
  AsNobody([] {
    GrantedProcess process;
    process.InTimeCriticalThread([&] {
      pid_t child = -1;
      EXPECT_HOLDS(StartProgram({"/nowhere/at/all", {"x"}, ""}, &child) == ENOENT);
      EXPECT_HOLDS(!IsThere(child));
      EXPECT_HOLDS(StartProgram({"/etc/passwd", {"x"}, ""}, &child) == EACCES);
      EXPECT_HOLDS(StartProgram({"/bin/true", {"true"}, "/nowhere"}, &child) == ENOENT);
      EXPECT_HOLDS(StartProgram({"/bin/true", {"true", std::string(200000, 'x')}, ""}, &child) ==
                   E2BIG);
      EXPECT_HOLDS(process.Run({"/bin/true", {"true"}, ""}) == 0);
    });
  });
}

TEST(ProgramStart, WhatEndsTheProgramsTerminalLeavesTheStarter) {
  AsNobody([] {
    GrantedProcess process;
    const std::string session = OwnRealtimeLine();
    process.InTimeCriticalThread([&] {
      const pid_t starter = StarterOf(getpid());
      EXPECT_HOLDS(starter > 0 && getsid(starter) == starter);
      EXPECT_HOLDS(!fs::exists("/proc/" + std::to_string(starter) + "/fd/3"));
      for (const int signal : {SIGINT, SIGHUP, SIGTERM, SIGQUIT, SIGXCPU}) kill(starter, signal);
      EXPECT_HOLDS(RealtimeLine(process.Seen("/proc/self/limits")) == session);
      EXPECT_HOLDS(StarterOf(getpid()) == starter);
    });
  });
}

TEST(ProgramStart, GoesWithoutAStarterThatWasKilledAndNothingIsLeftOfThat) {
  AsNobody([] {
    GrantedProcess process;
    process.InTimeCriticalThread([&] {
      const pid_t starter = StarterOf(getpid());
      EXPECT_HOLDS(starter > 0);
      kill(starter, SIGKILL);
      EXPECT_HOLDS(process.Run({"/bin/true", {"true"}, ""}) == 0);
      EXPECT_HOLDS(!IsThere(starter));
    });
  });
}

// What a program leaves is this process's to bury.
void ExpectTheStarterEndsWithAProgramThat(bool isKilled) {
  GrantedProcess process;
  EXPECT_HOLDS(prctl(PR_SET_CHILD_SUBREAPER, 1UL, 0UL, 0UL, 0UL) == 0);
  int go[2];
  int told[2];
  EXPECT_HOLDS(pipe(go) == 0 && pipe(told) == 0);
  const pid_t program = fork();  // while there is one thread
  if (program == 0) {
    char byte;
    EXPECT_HOLDS(read(go[0], &byte, 1) == 1);
    std::thread(BecomeTimeCritical).join();
    const pid_t starter = StarterOf(getpid());
    EXPECT_HOLDS(write(told[1], &starter, sizeof starter) == sizeof starter);
    EXPECT_HOLDS(read(go[0], &byte, 1) == 1);
    _exit(0);
  }
  const FakeService service(process.bus.Address(), true);
  EXPECT_HOLDS(write(go[1], "", 1) == 1);
  pid_t starter = -1;
  EXPECT_HOLDS(read(told[0], &starter, sizeof starter) == sizeof starter && starter > 0);
  EXPECT_HOLDS(IsThere(starter));
  if (isKilled) {
    kill(program, SIGKILL);
  } else {
    EXPECT_HOLDS(write(go[1], "", 1) == 1);
  }
  int status = -1;
  EXPECT_HOLDS(waitpid(program, &status, 0) == program && WIFSIGNALED(status) == isKilled);
  EXPECT_HOLDS(waitpid(starter, &status, 0) == starter && status == 0);
}

TEST(ProgramStart, TheStarterEndsWithTheProgram) {
  AsNobody([] { ExpectTheStarterEndsWithAProgramThat(false); });
}

TEST(ProgramStart, TheStarterEndsWithAKilledProgram) {
  AsNobody([] { ExpectTheStarterEndsWithAProgramThat(true); });
}

}  // namespace
}  // namespace platform
