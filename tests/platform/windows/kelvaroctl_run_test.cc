// kelvaroctl.exe as a process: a press on the pad arrives as a key in another program.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "app/platform/machine/this_machine.h"
#include "tests/host/files.h"

// Last.
#include "tests/windows/dinput8/pad_hands.h"
#include "tests/windows/key_window.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace kelvaro::tests;

class KelvaroctlRun : public KeyWindow {
 protected:
  KelvaroctlRun() {
    const fs::path own = WindowsFiles().GetModuleFileNameA();
    fs::copy_file(KELVAROCTL, folder.In("kelvaroctl.exe"));
    fs::copy_file(own.parent_path() / "dinput8.dll", folder.In("dinput8.dll"));
    Put(folder.In("profile.json"),
        R"({"profileName":"Walk","controls":[{"buttonMask":4,"actions":[{"text":"a"}]}]})");
  }
  ~KelvaroctlRun() override {
    // Which as a process would be this one.
    if (started.hProcess == kInvalidHandle) return;
    TerminateProcess(SystemHandle(started.hProcess), 0);
    threads.WaitForSingleObject(started.hProcess, 20'000);
    threads.CloseHandle(started.hProcess);
    threads.CloseHandle(started.hThread);
  }

  PadHands pad;
  const TemporaryFolder folder;
  WindowsThreads threads;
  PROCESS_INFORMATION started;
};

TEST_F(KelvaroctlRun, APressArrivesAsItsKeyInAnotherProgram) {
  ASSERT_TRUE(WindowsProcesses().CreateProcessA(
      folder.In("kelvaroctl.exe"), "kelvaroctl run profile.json", 0, &folder.folder, &started));
  // The first presses may come before it polls.
  ASSERT_TRUE(Eventually([this] {
    pad.Button(2, true);
    WindowsClock().Sleep(50);
    pad.Button(2, false);
    WindowsClock().Sleep(50);
    Look();
    return got.size() >= 2;
  }));
  EXPECT_EQ(got[0], "down 65 scan 30");
  EXPECT_EQ(got[1], "up 65 scan 30");
}

}  // namespace
}  // namespace platform
