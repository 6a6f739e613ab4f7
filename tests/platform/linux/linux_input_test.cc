#include "app/platform/linux/linux_input.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "tests/host/files.h"

namespace platform {
namespace {

bool Contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

TEST(LinuxInput, AMissingModuleIsToldApartFromAMissingPermission) {
  for (const int missing : {ENOENT, ENODEV}) {
    EXPECT_TRUE(Contains(UinputAdvice(missing), "kelvaro-modules-load.conf"));
    EXPECT_FALSE(Contains(UinputAdvice(missing), "60-kelvaro.rules"));
  }
  for (const int refused : {EACCES, EPERM}) {
    EXPECT_TRUE(Contains(UinputAdvice(refused), "60-kelvaro.rules"));
    EXPECT_FALSE(Contains(UinputAdvice(refused), "kelvaro-modules-load.conf"));
  }
  EXPECT_TRUE(Contains(UinputAdvice(EMFILE), "Too many open files"));
}

TEST(LinuxInput, WhereNothingWorksOneLineTellsBothReasons) {
  if (access("/dev/uinput", F_OK) == 0) GTEST_SKIP() << "this machine has /dev/uinput";
  const kelvaro::tests::Variable none("DISPLAY");
  std::string error;
  EXPECT_EQ(OpenLinuxInput(InputChoice::Auto, &error), nullptr);
  EXPECT_TRUE(Contains(error, "can't send keys: the kernel module uinput is not loaded")) << error;
  EXPECT_TRUE(Contains(error, "; and there is no X server (DISPLAY is not set)")) << error;
  EXPECT_FALSE(Contains(error, "\n"));

  EXPECT_EQ(OpenLinuxInput(InputChoice::Uinput, &error), nullptr);
  EXPECT_FALSE(Contains(error, "X server"));
  EXPECT_EQ(OpenLinuxInput(InputChoice::XTest, &error), nullptr);
  EXPECT_EQ(error, "can't send keys: there is no X server (DISPLAY is not set)");
}

}  // namespace
}  // namespace platform
