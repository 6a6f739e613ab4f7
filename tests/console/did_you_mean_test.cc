#include "console/did_you_mean.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

const std::vector<std::string> kNames = {"devices", "watch", "record", "run", "set"};

TEST(DidYouMean, NamesTheMostSimilarOne) {
  EXPECT_EQ(DidYouMean("devcies", kNames), "did you mean 'devices'?");
  EXPECT_EQ(DidYouMean("WACH", kNames), "did you mean 'watch'?");
  EXPECT_EQ(DidYouMean("rum", kNames), "did you mean 'run'?");
  EXPECT_EQ(DidYouMean("wath", {"bath", "watch", "path"}), "did you mean 'bath'?") << "the first";
}

TEST(DidYouMean, TakesTheBeginningOfAName) {
  EXPECT_EQ(DidYouMean("dev", kNames), "did you mean 'devices'?");
  EXPECT_EQ(DidYouMean("de", kNames), "") << "too short to say which";
}

TEST(DidYouMean, SaysNothingOfAnotherWord) {
  EXPECT_EQ(DidYouMean("nonsense", kNames), "");
  EXPECT_EQ(DidYouMean("", kNames), "");
  EXPECT_EQ(DidYouMean("a", {"b"}), "") << "no letter of it is right";
  EXPECT_EQ(DidYouMean("runs", {}), "");
}

TEST(DidYouMean, ALongerWordMayHaveMoreSlips) {
  EXPECT_EQ(DidYouMean("abx", {"abc"}), "did you mean 'abc'?");
  EXPECT_EQ(DidYouMean("axx", {"abc"}), "");
  EXPECT_EQ(DidYouMean("abxx", {"abcd"}), "did you mean 'abcd'?");
  EXPECT_EQ(DidYouMean("axxx", {"abcd"}), "");
  EXPECT_EQ(DidYouMean("abcdexxx", {"abcdefgh"}), "did you mean 'abcdefgh'?");
  EXPECT_EQ(DidYouMean("abcdxxxx", {"abcdefgh"}), "");
}

TEST(DidYouMean, PutsTheQuotesOfItsKind) {
  EXPECT_EQ(DidYouMean("Entr", {"Enter"}, "<>"), "did you mean <Enter>?");
}

}  // namespace
}  // namespace kelvaro::console
