// kelvaroctl settings on the registry of the machine on which the tests run: of Wine's folder, that
// is.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "app/platform/machine/this_machine.h"
#include "console/running_instances.h"
#include "tests/console/console_run.h"
#include "tests/host/patience.h"

// Last.
#include "app/platform/windows/win32.h"

namespace kelvaro::console {
namespace {

constexpr platform::HKEY kCurrentUser = 0x80000001u;

class RegistrySettings : public testing::Test {
 protected:
  RegistrySettings() { Forget(); }
  ~RegistrySettings() override { Forget(); }

  static void Forget() {
    platform::WindowsRegistry registry;
    platform::HKEY key = 0;
    if (registry.RegOpenKeyA(kCurrentUser, "Software\\Marnstone\\Kelvaro", &key) != 0) return;
    registry.RegDeleteValueA(key, "Smart Check");
    registry.RegCloseKey(key);
  }
  static std::uint32_t Stored() {
    platform::WindowsRegistry registry;
    platform::HKEY key = 0;
    std::uint32_t number = 77;
    std::uint32_t size = sizeof number;
    EXPECT_EQ(registry.RegOpenKeyA(kCurrentUser, "Software\\Marnstone\\Kelvaro", &key), 0u);
    registry.RegQueryValueExA(key, "Smart Check", nullptr, &number, &size);
    registry.RegCloseKey(key);
    return number;
  }
};

TEST_F(RegistrySettings, AValueIsSetAndShown) {
  EXPECT_EQ(Kelvaroctl({"settings", "get", "Smart Check"}).out, "1\n");
  const Outcome set = Kelvaroctl({"settings", "set", "Smart Check", "0"});
  EXPECT_EQ(set.status, 0) << set.err;
  EXPECT_EQ(Stored(), 0u);
  EXPECT_EQ(Kelvaroctl({"settings", "get", "Smart Check"}).out, "0\n");
}

// Started by the test below under the program's name.
TEST(RunningWindow, DISABLED_IsThereForAWhile) {
  std::this_thread::sleep_for(std::chrono::minutes(1));
}

TEST_F(RegistrySettings, WhatARunningWindowWritesItselfIsRefused) {
  ASSERT_EQ(RunningInstances().size(), 0u);
  const tests::TemporaryFolder folder;
  const std::string program = folder.In("kelvaro.exe");
  std::filesystem::copy_file(platform::ThisFiles().GetModuleFileNameA(), program);
  platform::WindowsProcesses processes;
  platform::PROCESS_INFORMATION started;
  ASSERT_TRUE(processes.CreateProcessA(
      program, "kelvaro --gtest_also_run_disabled_tests --gtest_filter=RunningWindow.*", 0, nullptr,
      &started));
  EXPECT_TRUE(tests::Eventually([] { return RunningInstances().size() == 1; }));
  const Outcome set = Kelvaroctl({"settings", "set", "Smart Check", "0"});
  EXPECT_EQ(set.status, 1);
  EXPECT_NE(set.err.find("Kelvaro runs (process " + std::to_string(started.dwProcessId) + ")"),
            std::string::npos)
      << set.err;
  platform::ThisThreads threads;
  EXPECT_TRUE(TerminateProcess(reinterpret_cast<HANDLE>(started.hProcess), 0));
  EXPECT_EQ(threads.WaitForSingleObject(started.hProcess, 20'000), 0u);
  threads.CloseHandle(started.hProcess);
  threads.CloseHandle(started.hThread);
}

}  // namespace
}  // namespace kelvaro::console
