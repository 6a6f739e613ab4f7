#include "app/platform/linux/program_start.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "app/platform/linux/linux_processes.h"
#include "app/platform/linux/linux_threads.h"
#include "app/platform/linux/thread_priority.h"
#include "app/platform/threads.h"
#include "tests/host/files.h"
#include "tests/host/refused_calls.h"
#include "tests/platform/linux/fake_realtime_kit.h"
#include "tests/platform/linux/new_process.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

void AsNobody(const std::function<void()>& look) {
  SKIP_UNLESS(!Bus().Address().empty(), "dbus", "dbus-daemon can't be started");
  InANewProcess([&] { BecomeNobody(), look(); });
}

std::string RealtimeLine(const std::string& limits) {
  const std::size_t start = limits.find("Max realtime timeout");
  return limits.substr(start, limits.find('\n', start) - start);
}

std::string OwnRealtimeLine() { return RealtimeLine(Content("/proc/self/limits")); }

bool IsThere(pid_t process) { return kill(process, 0) == 0 || errno == EPERM; }

// The child of this process that bears the starter's name, -1 for none.
pid_t Starter() {
  for (const auto& [id, name] : ChildrenOf(getpid()))
    if (name == "starter") return id;
  return -1;
}

void BecomeTimeCritical() { SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL); }

// A process that RealtimeKit grants real-time scheduling.
class GrantedProcess : public TemporaryFolder {
 public:
  GrantedProcess() {
    EXPECT_HOLDS(!bus.Address().empty());
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.Address().c_str(), 1);
  }

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
    return Content(out);
  }

  // Its exit status; nothing is left of it.
  int Run(const ProgramStart& start) {
    pid_t process = -1;
    EXPECT_HOLDS(StartProgram(start, &process) == 0);
    const int status = StatusOf(process);
    EXPECT_HOLDS(!IsThere(process));
    return status;
  }

  Bus bus;
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
    EXPECT_HOLDS(Starter() == -1);
  });
}

TEST(ProgramStart, GetsItsWordsAndFolderAndTellsItsStatusFromTheStarterToo) {
  AsNobody([] {
    GrantedProcess process;
    process.InTimeCriticalThread([&] {
      const std::string script = process.folder + "/script";
      Put(script, "printf '<%s>' \"$@\" >out; ps -o ppid= $$ >parent; exit 7\n", 0755);
      EXPECT_HOLDS(process.Run({script, {"script", "one word", ""}, process.folder}) == 7);
      EXPECT_HOLDS(Content(process.folder + "/out") == "<one word><>");
      EXPECT_HOLDS(std::stoi(Content(process.folder + "/parent")) == getpid());
      fs::remove(process.folder + "/out");
      // An empty one is this process's own, where that is now.
      fs::current_path(process.folder);
      EXPECT_HOLDS(process.Run({script, {"script"}, ""}) == 7);
      EXPECT_HOLDS(Content(process.folder + "/out") == "<>");
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

TEST(ProgramStart, AProgramWhoseEndNobodyCouldAwaitIsEnded) {
  InANewProcess([] {
    KeepLimitsForPrograms();
    LinuxThreads threads;
    LinuxProcesses processes(threads, std::string());
    WhereRefused(kNoThreads, [&] {
      PROCESS_INFORMATION process;
      EXPECT_HOLDS(!processes.CreateProcessA("/bin/sleep", "sleep 1000", CREATE_NEW_CONSOLE,
                                             nullptr, &process));
      EXPECT_HOLDS(ChildrenOf(getpid()).size() == 1 && Starter() > 0);
    });
  });
}

TEST(ProgramStart, WhatEndsTheProgramsTerminalLeavesTheStarter) {
  AsNobody([] {
    GrantedProcess process;
    const std::string session = OwnRealtimeLine();
    process.InTimeCriticalThread([&] {
      const pid_t starter = Starter();
      EXPECT_HOLDS(starter > 0 && getsid(starter) == starter);
      EXPECT_HOLDS(!fs::exists("/proc/" + std::to_string(starter) + "/fd/3"));
      for (const int signal : {SIGINT, SIGHUP, SIGTERM, SIGQUIT, SIGXCPU}) kill(starter, signal);
      EXPECT_HOLDS(RealtimeLine(process.Seen("/proc/self/limits")) == session);
      EXPECT_HOLDS(Starter() == starter);
    });
  });
}

TEST(ProgramStart, GoesWithoutAStarterThatWasKilledAndNothingIsLeftOfThat) {
  AsNobody([] {
    GrantedProcess process;
    process.InTimeCriticalThread([&] {
      const pid_t starter = Starter();
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
  // While there is one thread.
  const pid_t program = Fork([&] {
    char byte;
    EXPECT_HOLDS(read(go[0], &byte, 1) == 1);
    std::thread(BecomeTimeCritical).join();
    const pid_t starter = Starter();
    EXPECT_HOLDS(write(told[1], &starter, sizeof starter) == sizeof starter);
    EXPECT_HOLDS(read(go[0], &byte, 1) == 1);
    return 0;
  });
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
  EXPECT_HOLDS(StatusOf(program) == (isKilled ? 128 + SIGKILL : 0));
  EXPECT_HOLDS(StatusOf(starter) == 0);
}

TEST(ProgramStart, TheStarterEndsWithTheProgram) {
  AsNobody([] { ExpectTheStarterEndsWithAProgramThat(false); });
}

TEST(ProgramStart, TheStarterEndsWithAKilledProgram) {
  AsNobody([] { ExpectTheStarterEndsWithAProgramThat(true); });
}

}  // namespace
}  // namespace platform
