#include "rendlink/launch.h"

#include <gtest/gtest.h>

namespace kelvaro::rendlink {
namespace {

constexpr char kKelvaro[] = "/opt/kelvaro/kelvaro";

Words Made(const Launch& launch, const QuoteChars& chars = {}) {
  Words words;
  std::string refusal;
  EXPECT_TRUE(KelvaroWords(kKelvaro, launch, chars, &words, &refusal)) << refusal;
  return words;
}

std::string Refusal(const Launch& launch, const QuoteChars& chars = {},
                    const std::string& kelvaro = kKelvaro) {
  Words words = {"untouched"};
  std::string refusal;
  EXPECT_FALSE(KelvaroWords(kelvaro, launch, chars, &words, &refusal));
  EXPECT_EQ(words, Words{"untouched"});
  return refusal;
}

TEST(KelvaroWords, EveryChoiceIsAWordOfItsOwn) {
  EXPECT_EQ(Made({{"My Game", "Other"}, "/g/x.sh", "-map \"My Level\" -v", "/g/my saves"}),
            (Words{kKelvaro, "profile=My Game", "profile=Other", "target=/g/x.sh",
                   "args=-map [My Level] -v", "dir=/g/my saves"}));
}

TEST(KelvaroWords, WhatIsEmptyIsLeftOut) {
  EXPECT_EQ(Made({{"P"}, "/g/x", "", ""}), (Words{kKelvaro, "profile=P", "target=/g/x"}));
}

TEST(KelvaroWords, AnOddDoubleQuoteIsWrittenToo) {
  EXPECT_EQ(Made({{"P"}, "/g/x", "a\"b", ""})[3], "args=a[b");
  EXPECT_EQ(Made({{"P"}, "/g/x", "\"\"\"", ""})[3], "args=[][");
}

TEST(KelvaroWords, RefusesWhatIsMissing) {
  EXPECT_EQ(Refusal({{}, "/g/x", "", ""}), "Choose a profile.");
  EXPECT_EQ(Refusal({{"P", ""}, "/g/x", "", ""}), "The name of a profile is empty.");
  EXPECT_EQ(Refusal({{"P"}, "", "", ""}), "Choose a target, which is the program to start.");
}

TEST(KelvaroWords, RefusesWhatCantBeCarriedAndTellsTheCharacterAndWhy) {
  struct {
    Launch launch;
    std::string refusal;
  } const kRows[] = {
      {{{"A\"B"}, "/g/x", "", ""},
       "The name of the profile \"A\"B\" has a double quote, which Kelvaro's command line has no "
       "way to write."},
      {{{"A", "B|C"}, "/g/x", "", ""},
       "The name of the profile \"B|C\" has the character |, which stands for a double quote on "
       "Kelvaro's command line (QuoteSub)."},
      {{{"A"}, "/g/\"x", "", ""},
       "The target has a double quote, which Kelvaro's command line has no way to write."},
      {{{"A"}, "/g|x", "", ""},
       "The target has the character |, which stands for a double quote on Kelvaro's command line "
       "(QuoteSub)."},
      {{{"A"}, "/g/x", "", "/a\"b"},
       "The folder has a double quote, which Kelvaro's command line has no way to write."},
      {{{"A"}, "/g/x", "a[b", ""},
       "The arguments have the character [, which stands for a double quote there "
       "(LeftArgQuote)."},
      {{{"A"}, "/g/x", "a]b", ""},
       "The arguments have the character ], which stands for a double quote there "
       "(RightArgQuote)."},
      {{{"A"}, "/g/x", "a|b", ""},
       "The arguments have the character |, which stands for a double quote on Kelvaro's command "
       "line (QuoteSub)."},
      {{{"A"}, "/g/x", "a\nb", ""}, "The arguments have a line feed, which can't be carried."},
      {{{"A"}, "/g/x\r", "", ""}, "The target has a carriage return, which can't be carried."},
      {{{"A"}, "/g/x", std::string("a\0b", 3), ""},
       "The arguments have a zero byte, which can't be carried."},
      {{{"A"}, "/g/x", "", "/a\x1B"}, "The folder has the byte 0x1B, which can't be carried."},
      {{{"A"}, "/g/x", "\x7F", ""}, "The arguments have the byte 0x7F, which can't be carried."},
  };
  for (const auto& row : kRows) EXPECT_EQ(Refusal(row.launch), row.refusal);
  EXPECT_EQ(Refusal({{"A"}, "/g/x", "", ""}, {}, "/a|b/kelvaro"),
            "The path of Kelvaro has the character |, which stands for a double quote on Kelvaro's "
            "command line (QuoteSub).");
}

TEST(KelvaroWords, BracketsOutsideOfTheArgumentsAndTabsAreFine) {
  EXPECT_EQ(Made({{"[x]"}, "/g/[1]/x", "a\tb", "/[2]"}),
            (Words{kKelvaro, "profile=[x]", "target=/g/[1]/x", "args=a\tb", "dir=/[2]"}));
}

TEST(KelvaroWords, OtherQuoteCharactersFreeTheUsualOnes) {
  const QuoteChars chars{'^', '<', '>'};
  EXPECT_EQ(Made({{"A|B"}, "/g/x", "[1] \"2\"", ""}, chars),
            (Words{kKelvaro, "profile=A|B", "target=/g/x", "args=[1] <2>"}));
  EXPECT_EQ(Refusal({{"A^B"}, "/g/x", "", ""}, chars),
            "The name of the profile \"A^B\" has the character ^, which stands for a double quote "
            "on Kelvaro's command line (QuoteSub).");
}

TEST(KelvaroWords, OfTheCharactersForAQuoteItTakesTheOneThatCanBeWritten) {
  EXPECT_EQ(Made({{"P"}, "/g/x", "\"a\"", ""}, {'|', '"', '>'})[3], "args=>a>");
  EXPECT_EQ(Made({{"P"}, "/g/x", "\"a\"", ""}, {'|', '<', '|'})[3], "args=<a<");
  EXPECT_EQ(Refusal({{"P"}, "/g/x", "\"a\"", ""}, {'|', '"', '|'}),
            "The arguments have a double quote, and QuoteChars.txt beside Kelvaro leaves no "
            "character that could stand for it.");
  EXPECT_EQ(Made({{"P"}, "/g/x", "a", ""}, {'|', '"', '"'})[3], "args=a");
}

TEST(KelvaroWords, QuoteCharactersOfKelvarosOwnWordsLeaveNoWay) {
  EXPECT_EQ(Refusal({{"x"}, "/g/x", "", ""}, {'=', '[', ']'}),
            "Kelvaro's own word \"profile=\" has the character =, which stands for a double quote "
            "on Kelvaro's command line (QuoteSub).");
  EXPECT_EQ(Refusal({{"x"}, "/g/x", "", ""}, {' ', '[', ']'}),
            "QuoteChars.txt beside Kelvaro makes a blank stand for a double quote (QuoteSub); no "
            "command line can be written then.");
}

TEST(ShellLine, QuotesWhatAShellWouldTakeApart) {
  EXPECT_EQ(ShellLine({"/a/b-c_1.x", "k=v,w:%@+"}), "/a/b-c_1.x k=v,w:%@+");
  EXPECT_EQ(ShellLine({"a b", "", "$x", "it's", "\xC3\xA9"}),
            "'a b' '' '$x' 'it'\\''s' '\xC3\xA9'");
  EXPECT_EQ(ShellLine({}), "");
}

TEST(ProcessLine, PutsEachWordIntoDoubleQuotes) {
  EXPECT_EQ(ProcessLine({"/a b/k", "profile=x", ""}), "\"/a b/k\" \"profile=x\" \"\"");
}

TEST(LineBehind, LeavesWhatFollowsAsItStands) {
  const struct {
    const char* line;
    std::size_t words;
    const char* behind;
  } kRows[] = {
      {"a b  c", 0, "a b  c"},
      {"a b  c ", 2, "c "},
      {"\"C:\\My Games\\r.exe\" --profile \"A b\" -- g.exe  -x=\"a b\" \\\"", 4,
       "g.exe  -x=\"a b\" \\\""},
      {"\"C:\\x\\\" -- g", 2, "g"},    // the first word's last backslash is one
      {"r \"a\\\" b\" -- g", 3, "g"},  // a quote behind one is part of the word
      {"r \"a\\\\\" -- g", 3, "g"},    // behind two it ends it
      {"r a\" \"b\t--\tg \xC3\xA9", 3, "g \xC3\xA9"},
      {"r \"a\"\" b\" g", 2, "g"},  // two in quotes are one of the word
      {"r", 1, ""},
      {"r a", 5, ""},
  };
  for (const auto& row : kRows) EXPECT_EQ(LineBehind(row.line, row.words), row.behind) << row.line;
}

}  // namespace
}  // namespace kelvaro::rendlink
