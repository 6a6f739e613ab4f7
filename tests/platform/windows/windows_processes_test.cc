#include "app/platform/windows/windows_processes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "app/platform/machine/this_machine.h"
#include "tests/host/files.h"
#include "tests/host/patience.h"

// Last.
#include "app/platform/windows/win32.h"

namespace platform {
namespace {

using kelvaro::tests::Eventually;
using kelvaro::tests::TemporaryFolder;

constexpr char kShell[] = "C:\\windows\\system32\\cmd.exe";

class WindowsProcessesTest : public ::testing::Test {
 protected:
  ~WindowsProcessesTest() override {
    threads.CloseHandle(started.hProcess);
    threads.CloseHandle(started.hThread);
  }
  bool Start(const std::string& commandLine, const std::string* folder = nullptr) {
    return processes.CreateProcessA(kShell, commandLine, CREATE_NEW_CONSOLE, folder, &started);
  }
  // Its exit code.
  DWORD End() {
    DWORD code = 0xBAD;
    EXPECT_EQ(threads.WaitForSingleObject(started.hProcess, 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(SystemHandle(started.hProcess), &code));
    return code;
  }
  static bool Has(const std::vector<RunningProcess>& list, std::uint32_t id,
                  const std::string& path) {
    return std::any_of(list.begin(), list.end(), [&](const RunningProcess& process) {
      return process.id == id && std::filesystem::path(process.path) == std::filesystem::path(path);
    });
  }

  WindowsProcesses processes;
  WindowsThreads threads;
  PROCESS_INFORMATION started;
};

TEST_F(WindowsProcessesTest, TheListHasThisProcessWithItsPath) {
  std::vector<RunningProcess> list;
  ASSERT_TRUE(processes.ListProcesses(&list));
  const std::string path = WindowsFiles().GetModuleFileNameA();
  EXPECT_TRUE(Has(list, processes.GetCurrentProcessId(), path));
}

TEST_F(WindowsProcessesTest, BothWaysOfListingKnowTheSameProcesses) {
  ASSERT_TRUE(Start("cmd /c pause"));
  std::vector<RunningProcess> byPsapi;
  std::vector<RunningProcess> byToolhelp;
  ASSERT_TRUE(WindowsProcesses::ListByPsapi(&byPsapi));
  ASSERT_TRUE(WindowsProcesses::ListByToolhelp(&byToolhelp));
  EXPECT_TRUE(std::any_of(byPsapi.begin(), byPsapi.end(), [this](const RunningProcess& process) {
    return process.id == started.dwProcessId && process.path.ends_with("\\cmd.exe");
  }));
  EXPECT_TRUE(Has(byToolhelp, started.dwProcessId, "cmd.exe"));
  EXPECT_TRUE(TerminateProcess(SystemHandle(started.hProcess), 3));
  EXPECT_EQ(End(), 3u);
  EXPECT_TRUE(Eventually([&] {
    std::vector<RunningProcess> list;
    return processes.ListProcesses(&list) &&
           std::none_of(list.begin(), list.end(), [this](const RunningProcess& process) {
             return process.id == started.dwProcessId;
           });
  }));
}

TEST_F(WindowsProcessesTest, AStartedProgramGetsItsArgumentsAndFolder) {
  const TemporaryFolder folder;
  ASSERT_TRUE(Start("cmd /c echo a \"b c\"> told.txt", &folder.folder));
  EXPECT_EQ(End(), 0u);
  EXPECT_EQ(kelvaro::tests::Content(folder.In("told.txt")), "a \"b c\"\r\n");
}

TEST_F(WindowsProcessesTest, TheHandleIsSignalledAtTheEnd) {
  ASSERT_TRUE(Start("cmd /c exit 7"));
  EXPECT_NE(started.dwProcessId, 0u);
  EXPECT_NE(started.hThread, kInvalidHandle);
  EXPECT_EQ(End(), 7u);
}

TEST_F(WindowsProcessesTest, AProgramThatIsNotThereIsAFailureThatTellsWhy) {
  EXPECT_FALSE(processes.CreateProcessA("C:\\none.exe", "none", 0, nullptr, &started));
  EXPECT_EQ(WindowsFiles().GetLastError(), 2u);
  EXPECT_EQ(started.hProcess, kInvalidHandle);
  const std::string none = "C:\\no such folder";
  EXPECT_FALSE(Start("cmd /c exit", &none));
  EXPECT_NE(WindowsFiles().GetLastError(), 2u);
  EXPECT_FALSE(processes.CreateProcessA(kShell, std::string("a\0b", 3), 0, nullptr, &started));
}

// A window that counts what is posted to it.
int posted = 0;
LRESULT CALLBACK Count(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == 0x8007) {
    ++posted;
    return 0;
  }
  return DefWindowProcA(window, message, first, second);
}

TEST_F(WindowsProcessesTest, WindowsAreFoundAndPostedToThoughTheyAreHidden) {
  WNDCLASSA kind{};
  kind.lpfnWndProc = Count;
  kind.hInstance = GetModuleHandleA(nullptr);
  kind.lpszClassName = "KelvaroTestWindow";
  ASSERT_TRUE(RegisterClassA(&kind));
  const HWND window = CreateWindowA(kind.lpszClassName, "", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                    nullptr, nullptr, kind.hInstance, nullptr);
  ASSERT_TRUE(window);
  std::vector<TopLevelWindow> list;
  ASSERT_TRUE(processes.EnumWindows(&list));
  const auto found = std::find_if(list.begin(), list.end(), [&](const TopLevelWindow& each) {
    return each.window == reinterpret_cast<WindowHandle>(window);
  });
  ASSERT_NE(found, list.end());
  EXPECT_EQ(found->processId, processes.GetCurrentProcessId());
  EXPECT_FALSE(found->visible);
  EXPECT_FALSE(found->iconic);
  EXPECT_TRUE(processes.PostToWindow(found->window, 0x8007));
  for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
  EXPECT_EQ(posted, 1);
  DestroyWindow(window);
  EXPECT_FALSE(processes.PostToWindow(found->window, 0x8007));
}

}  // namespace
}  // namespace platform
