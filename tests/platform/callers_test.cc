#include "app/platform/callers.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(BearsOurName, TheProgramsOfKelvaroAndThisOneDo) {
  for (const char* program :
       {"kelvaro", "kelvaroctl", "kelvaro.exe", "kelvaroctl.exe", "test_calls"})
    EXPECT_TRUE(BearsOurName(program, "test_calls")) << program;
}

TEST(BearsOurName, NoOtherDoes) {
  for (const char* program : {"", ".exe", "kelvaro2", "kelvaroctl.exe.exe", "kelvaro.exe2",
                              "rendlink", "Test_calls", "test_calls.exe"})
    EXPECT_FALSE(BearsOurName(program, "test_calls")) << program;
  EXPECT_FALSE(BearsOurName("", "")) << "where the system tells neither";
}

}  // namespace
}  // namespace platform
