#include "console/console_error.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kelvaro::console {
namespace {

TEST(Complain, IsOneLineWhateverItQuotes) {
  std::ostringstream err;
  EXPECT_EQ(Complain(err, "a\nb\x1B[31m\x7F\r\xC3\xA4"), 1);
  EXPECT_EQ(err.str(), "kelvaroctl: a?b?[31m??\xC3\xA4\n");
}

TEST(Complain, LeavesWhatIsShownBelowAlone) {
  std::ostringstream err;
  Complain(err, "what", "  text\n  ^\n");
  EXPECT_EQ(err.str(), "kelvaroctl: what\n  text\n  ^\n");
}

}  // namespace
}  // namespace kelvaro::console
