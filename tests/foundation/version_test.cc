#include "foundation/version.h"

#include <gtest/gtest.h>

namespace kelvaro {
namespace {

TEST(VersionNumber, TheRevisionIsShownUnlessItIsZero) {
  EXPECT_STREQ(VersionNumber({3, 5, 0}).Text(), "3.5");
  EXPECT_STREQ(VersionNumber({3, 5, 2}).Text(), "3.5.2");
  EXPECT_STREQ(VersionNumber({255, 0, 255}).Text(), "255.0.255");
  EXPECT_STREQ(VersionNumber({}).Text(), "0.0");
}

TEST(VersionNumber, IsThatOfTheProgramsUnlessTold) {
  EXPECT_EQ(kVersion.major, 3);
  EXPECT_EQ(kVersion.minor, 5);
  EXPECT_EQ(kVersion.revision, 0);
  EXPECT_STREQ(VersionNumber().Text(), "3.5");
}

}  // namespace
}  // namespace kelvaro
