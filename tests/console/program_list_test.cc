#include "console/program_list.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace kelvaro::console {
namespace {

TEST(ProgramsText, NamesEachWithItsProcess) {
  EXPECT_EQ(ProgramsText({}), "");
  EXPECT_EQ(ProgramsText({{812, "evtest"}, {4711, "game"}}), "evtest (812), game (4711)");
}

TEST(HasKelvaro, KnowsOurProgramsAndThisOneByTheirNames) {
  EXPECT_FALSE(HasKelvaro({}));
  EXPECT_FALSE(HasKelvaro({{812, "evtest"}, {4711, "kelvaro-like"}}));
  EXPECT_TRUE(HasKelvaro({{812, "evtest"}, {4711, "kelvaro"}}));
  EXPECT_TRUE(HasKelvaro({{812, "kelvaroctl"}}));
  char own[16] = {};
  ASSERT_EQ(prctl(PR_GET_NAME, own), 0);
  EXPECT_TRUE(HasKelvaro({{812, own}}));
}

}  // namespace
}  // namespace kelvaro::console
