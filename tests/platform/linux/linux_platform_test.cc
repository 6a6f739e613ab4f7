#include "app/platform/linux/linux_platform.h"

#include <errno.h>
#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(LinuxPlatform, CallsGoToTheInstalledOne) {
  LinuxPlatform linuxPlatform;
  const InstalledPlatform installed(linuxPlatform.Groups());
  const std::uint32_t start = clock().GetTickCount();
  clock().Sleep(5);
  EXPECT_GE(clock().GetTickCount() - start, 5u);
  EXPECT_GT(threads().GetCurrentThreadId(), 0);
}

TEST(LinuxPlatform, LeavesWhatIsSeenToAProgramWithAWindow) {
  const LinuxPlatform linuxPlatform;
  EXPECT_EQ(linuxPlatform.Groups().desktop, nullptr);
  EXPECT_EQ(linuxPlatform.Groups().controls, nullptr);
  EXPECT_EQ(linuxPlatform.Groups().shell, nullptr);
  EXPECT_EQ(linuxPlatform.Groups().registry, nullptr);
}

TEST(LinuxSystem, TextOfAnErrorEndsItsLine) {
  LinuxSystem system;
  EXPECT_EQ(system.FormatMessageA(ENOENT), "No such file or directory\n");
  EXPECT_EQ(system.FormatMessageA(EACCES), "Permission denied\n");
}

TEST(LinuxSystem, AnUnknownErrorHasNoText) {
  LinuxSystem system;
  EXPECT_EQ(system.FormatMessageA(99999), "");
  EXPECT_EQ(system.FormatMessageA(0xFFFFFFFFu), "");
}

}  // namespace
}  // namespace platform
