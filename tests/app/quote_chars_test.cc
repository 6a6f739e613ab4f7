#include "app/start/quote_chars.h"

#include <gtest/gtest.h>

#include <string>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {
namespace {

TEST(LoadQuoteChars, ReadsTheLinesThatItKnows) {
  struct {
    std::string text;
    const char* chars;
  } const kRows[] = {
      {"", "|[]"},
      {"QuoteSub=^\nLeftArgQuote=<\nRightArgQuote=>\n", "^<>"},
      {"quotesub=^\r\nLEFTARGQUOTE={\r\nRightArgQuote=}", "^{}"},
      {" \t QuoteSub=!! \n", "![]"},
      {"QuoteSub=\nLeftArgQuote= \n", "|[]"},
      {"QuoteSub=a\nQuoteSub=b\n", "b[]"},
      {"QuoteSub=a\nQuoteSub=\n", "a[]"},
      {"QuoteSub =a\nXQuoteSub=a\nother\n", "|[]"},
      {"QuoteSub= a\n", " []"},
      {"QuoteSub=!\n", "![]"},
      {std::string("\0QuoteSub=z\n", 12), "z[]"},
  };
  platform::simulation::Simulation sim;
  for (const auto& row : kRows) {
    sim.Disk().PutFile("/game/QuoteChars.txt", row.text);
    const QuoteChars chars = LoadQuoteChars();
    EXPECT_EQ((std::string{chars.quoteSub, chars.leftArgQuote, chars.rightArgQuote}), row.chars)
        << row.text;
  }
}

TEST(LoadQuoteChars, WithoutAFileThatCanBeReadTheUsualOnesHold) {
  platform::simulation::Simulation sim;
  for (const bool folder : {false, true}) {
    if (folder) sim.Disk().PutFolder("/game/QuoteChars.txt");
    const QuoteChars chars = LoadQuoteChars();
    EXPECT_EQ((std::string{chars.quoteSub, chars.leftArgQuote, chars.rightArgQuote}), "|[]");
  }
}

TEST(LoadQuoteChars, AUsersOwnFileComesFirstWhereEachUserHasAFolder) {
  constexpr char kUsers[] = "/home/player/.local/share/kelvaro/QuoteChars.txt";
  platform::simulation::Simulation sim;
  sim.Disk().PutFile("/game/QuoteChars.txt", "QuoteSub=p\nLeftArgQuote=q\n");
  sim.Disk().PutFile(kUsers, "QuoteSub=u\n");
  EXPECT_EQ(LoadQuoteChars().quoteSub, 'p');
  sim.Disk().PutFile("/game/PerUser", "");
  EXPECT_EQ(LoadQuoteChars().quoteSub, 'u');
  EXPECT_EQ(LoadQuoteChars().leftArgQuote, '[');
  sim.Disk().Remove(kUsers);
  EXPECT_EQ(LoadQuoteChars().quoteSub, 'p');
}

TEST(TakeKey, TakesItInAnyCaseAtTheStartAlone) {
  ByteString rest = "before";
  EXPECT_TRUE(TakeKey("ARGS=x y", "args=", &rest));
  EXPECT_TRUE(rest.Equals("x y"));
  EXPECT_TRUE(TakeKey("args=", "args=", &rest));
  EXPECT_TRUE(rest.IsEmpty());
  rest = "before";
  EXPECT_FALSE(TakeKey("my args=x", "args=", &rest));
  EXPECT_FALSE(TakeKey("arg", "args=", &rest));
  EXPECT_TRUE(rest.Equals("before"));
}

}  // namespace
}  // namespace kelvaro
