#include "app/platform/linux/linux_processes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>

#include "app/platform/linux/linux_files.h"
#include "app/platform/linux/linux_threads.h"
#include "tests/host/files.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

class LinuxProcessesTest : public testing::Test, protected TemporaryFolder {
 protected:
  void TearDown() override { AwaitThreads(); }

  // A process that splits off while a thread ends may find the thread sanitizer's locks taken, and
  // waits for them for ever.
  static void AwaitThreads() {
    EXPECT_TRUE(Eventually([] { return ThreadOf(getpid(), "waits for game") == 0; }));
  }

  std::string Script(const std::string& name, const std::string& text) const {
    return PutScript(folder + "/" + name, text);
  }

  // Runs it to its end; its exit status, or -1 when it didn't start.
  std::int32_t Run(const std::string& program, const std::string& arguments,
                   const std::string* wantedFolder = nullptr) {
    PROCESS_INFORMATION process;
    if (!processes.CreateProcessA(program, "\"" + program + "\" " + arguments, CREATE_NEW_CONSOLE,
                                  wantedFolder, &process))
      return -1;
    EXPECT_EQ(threads.WaitForSingleObject(process.hProcess, 20000), WAIT_OBJECT_0);
    std::uint32_t status = 0;
    EXPECT_TRUE(threads.GetExitCodeThread(process.hProcess, &status));
    EXPECT_TRUE(threads.CloseHandle(process.hProcess));
    AwaitThreads();
    return static_cast<std::int32_t>(status);
  }

  std::string Written() const { return Content(folder + "/out"); }

  LinuxThreads threads;
  LinuxFiles files;
  LinuxProcesses processes{threads, std::string()};
};

TEST_F(LinuxProcessesTest, ListsThisProcessWithItsProgramsFile) {
  std::vector<RunningProcess> list;
  ASSERT_TRUE(processes.ListProcesses(&list));
  const auto own = std::find_if(list.begin(), list.end(), [&](const RunningProcess& process) {
    return process.id == processes.GetCurrentProcessId();
  });
  ASSERT_NE(own, list.end());
  EXPECT_EQ(own->path, fs::read_symlink("/proc/self/exe").string());
}

TEST_F(LinuxProcessesTest, DoesNotListAProcessThatHasEndedAndWasNotWaitedFor) {
  const pid_t child = Fork([] { return 0; });
  siginfo_t ended{};
  ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
  std::vector<RunningProcess> list;
  ASSERT_TRUE(processes.ListProcesses(&list));
  for (const RunningProcess& process : list)
    EXPECT_NE(process.id, static_cast<std::uint32_t>(child));
  StatusOf(child);
}

TEST_F(LinuxProcessesTest, GivesTheProgramItsWordsAndTellsItsExitStatus) {
  const std::string script = Script("words", "printf '<%s>' \"$@\" >" + folder + "/out\nexit 7\n");
  EXPECT_EQ(Run(script, "-map \"My Level\" '$HOME' \"\""), 7);
  EXPECT_EQ(Written(), "<-map><My Level><'$HOME'><>");
}

TEST_F(LinuxProcessesTest, RunsAScriptThatNamesNoInterpreterInTheShell) {
  const std::string script =
      Put(folder + "/plain", "printf '%s' \"$1\" >" + folder + "/out\nexit 3\n", 0755);
  EXPECT_EQ(Run(script, "\"one word\""), 3);
  EXPECT_EQ(Written(), "one word");
}

TEST_F(LinuxProcessesTest, LooksAProgramWithoutAFolderUpInThePath) {
  EXPECT_EQ(Run("true", ""), 0);
  EXPECT_EQ(Run("false", ""), 1);
}

TEST_F(LinuxProcessesTest, StartsInTheFolderAskedForAndInItsOwnForAnEmptyOne) {
  const std::string script = Script("where", "pwd >" + folder + "/out\n");
  EXPECT_EQ(Run(script, "", &folder), 0);
  EXPECT_EQ(Written(), folder + "\n");
  const std::string none;
  EXPECT_EQ(Run(script, "", &none), 0);
  EXPECT_EQ(Written(), fs::current_path().string() + "\n");
}

TEST_F(LinuxProcessesTest, TellsTheSystemsErrorOfAProgramThatCannotBeStarted) {
  const std::string nowhere = folder + "/gone";
  const std::string plain = Put(folder + "/not-executable", "text");
  const struct {
    std::string program, command;
    const std::string* folder;
    int error;
  } rows[] = {{nowhere, nowhere, nullptr, ENOENT},
              {plain, plain, nullptr, EACCES},
              {"/bin/true", "true", &nowhere, ENOENT},
              {"kelvaro-no-such-program", "x", nullptr, ENOENT}};
  PROCESS_INFORMATION process;
  for (const auto& row : rows) {
    EXPECT_FALSE(processes.CreateProcessA(row.program, row.command, 0, row.folder, &process));
    EXPECT_EQ(files.GetLastError(), static_cast<std::uint32_t>(row.error)) << row.program;
  }
  EXPECT_FALSE(processes.CreateProcessA("", "x", 0, nullptr, &process));
  EXPECT_EQ(process.hProcess, kInvalidHandle);
}

TEST_F(LinuxProcessesTest, TheNewProcessHasItsOwnSessionAndNothingOfOurs) {
  const int open = ::open("/dev/null", O_RDONLY);  // without the flag that closes it at exec
  const std::string script =
      Script("look", "{ ls /proc/self/fd | wc -l; cut -d' ' -f6 /proc/$$/stat; echo $$; } >" +
                         folder + "/out\n");
  const int result = Run(script, "");
  close(open);
  ASSERT_EQ(result, 0);
  std::istringstream out(Written());
  std::string descriptors, session, process;
  out >> descriptors >> session >> process;
  EXPECT_EQ(descriptors, "4");  // the three, and the one that ls itself reads the folder with
  EXPECT_EQ(session, process);
}

// Not asked of a shell, which changes what it was given while it waits for a program.
TEST_F(LinuxProcessesTest, TheNewProcessBlocksAndPassesOverNoSignal) {
  signal(SIGUSR1, SIG_IGN);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR2);
  pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
  const int result = Run("dd", "if=/proc/self/status of=" + folder + "/out status=none");
  pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
  signal(SIGUSR1, SIG_DFL);
  ASSERT_EQ(result, 0);
  const std::string status = Written();
  EXPECT_NE(status.find("\nSigBlk:\t0000000000000000\n"), std::string::npos) << status;
  EXPECT_NE(status.find("\nSigIgn:\t0000000000000000\n"), std::string::npos) << status;
}

TEST_F(LinuxProcessesTest, TheNewProcessIsNotOfARaisedPriority) {
  const int before = getpriority(PRIO_PROCESS, 0);
  if (setpriority(PRIO_PROCESS, 0, -10) != 0) GTEST_SKIP() << "no right to raise a priority here";
  const std::string script = Script("nice", "nice >" + folder + "/out\n");
  EXPECT_EQ(Run(script, ""), 0);
  setpriority(PRIO_PROCESS, 0, before);
  EXPECT_EQ(Written(), "0\n");
}

TEST_F(LinuxProcessesTest, WhatTheSystemRefusesToStartIsTold) {
  PROCESS_INFORMATION process;
  const auto start = [&] {
    return processes.CreateProcessA("/bin/true", "true", CREATE_NEW_CONSOLE, nullptr, &process);
  };
  WhereRefused(kNoThreads, [&] {
    EXPECT_FALSE(start());
    EXPECT_EQ(files.GetLastError(), static_cast<std::uint32_t>(EAGAIN));
  });
  WhereRefused({{SYS_pipe2, EMFILE}}, [&] {
    EXPECT_FALSE(start());
    EXPECT_EQ(files.GetLastError(), static_cast<std::uint32_t>(EMFILE));
  });
  EXPECT_TRUE(ChildrenOf(getpid()).empty());
}

TEST_F(LinuxProcessesTest, NothingIsLeftOfAProcessThatHasEndedWithoutAHandle) {
  PROCESS_INFORMATION process;
  ASSERT_TRUE(processes.CreateProcessA("sleep", "sleep 0.2", 0, nullptr, &process));
  threads.CloseHandle(process.hProcess);
  EXPECT_TRUE(Eventually([&] { return kill(static_cast<pid_t>(process.dwProcessId), 0) != 0; }));
}

TEST_F(LinuxProcessesTest, AProcessThatIsKilledTellsTheSignal) {
  const std::string script = Script("killed", "kill -9 $$\n");
  EXPECT_EQ(Run(script, ""), 128 + SIGKILL);
}

TEST_F(LinuxProcessesTest, ItsOwnWindowsAreListedAndPostedToWithoutASocket) {
  WindowHandle posted = 0;
  std::uint32_t message = 0;
  EXPECT_FALSE(processes.OfferWindows(
      [] {
        return std::vector<OfferedWindow>{{5, true, false}, {6, false, true}};
      },
      [&](WindowHandle window, std::uint32_t what) {
        posted = window;
        message = what;
        return true;
      }));  // no folder, no socket
  std::vector<TopLevelWindow> windows;
  ASSERT_TRUE(processes.EnumWindows(&windows));
  ASSERT_EQ(windows.size(), 2u);
  EXPECT_EQ(windows[1].processId, processes.GetCurrentProcessId());
  EXPECT_FALSE(windows[1].visible);
  EXPECT_TRUE(windows[1].iconic);
  EXPECT_TRUE(processes.PostToWindow(windows[1].window, 0x8007));
  EXPECT_EQ(posted, 6u);
  EXPECT_EQ(message, 0x8007u);
}

}  // namespace
}  // namespace platform
