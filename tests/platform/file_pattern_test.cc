#include "app/platform/file_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace platform {
namespace {

TEST(FitsPattern, Rows) {
  struct Row {
    const char *name, *pattern;
    bool fits;
  };
  for (const Row& row : {
           Row{"", "", true},
           Row{"", "*", true},
           Row{"", "?", false},
           Row{"a", "", false},
           Row{"a", "?", true},
           Row{"ab", "?", false},
           Row{"a.idprof", "*.idprof", true},
           Row{"A.IdProf", "*.iDPROF", true},
           Row{"a.idprof.tmp", "*.idprof", false},
           Row{".idprof", "*.idprof", true},
           Row{"a.idprof.idprof", "*.idprof", true},
           Row{"abc", "a*c", true},
           Row{"abc", "a*b", false},
           Row{"abc", "***", true},
           Row{"abc", "a**c*", true},
           Row{"abcbcd", "a*bcd", true},
           Row{"abcbc", "a*b?", true},
           Row{"ababa", "aba*aba", false},  // what stands before the star isn't looked at again
           Row{"readme", "*.*", false},
           Row{"a.b", "*.*", true},
           Row{".", "*", true},
           Row{"a*b", "a*b", true},
           Row{"a[b", "a[b", true},
           Row{"a{", "A[", false},  // as far apart as the cases of a letter, but no letters
           Row{"\xE4", "\xC4", false},
           Row{"\xE4", "?", true},
       }) {
    EXPECT_EQ(FitsPattern(row.name, row.pattern), row.fits) << row.name << " " << row.pattern;
  }
}

TEST(FitsPattern, ThePatternEndsWhereItsViewDoes) {
  EXPECT_FALSE(FitsPattern("ab", std::string_view("a*", 1)));
  EXPECT_FALSE(FitsPattern("ab", std::string_view("ab", 1)));
}

TEST(FitsPattern, ManyStarsTakeNoLongTime) {
  std::string pattern;
  for (int star = 0; star < 1'000; ++star) pattern += "*a";
  EXPECT_FALSE(FitsPattern(std::string(10'000, 'a') + "b", pattern));
  EXPECT_TRUE(FitsPattern(std::string(10'000, 'a'), pattern));
}

TEST(HasWildcards, StarAndQuestionMark) {
  EXPECT_TRUE(HasWildcards("a*"));
  EXPECT_TRUE(HasWildcards("?"));
  EXPECT_FALSE(HasWildcards("a.b"));
  EXPECT_FALSE(HasWildcards(""));
}

TEST(Folded, MakesLettersOfAsciiSmallAndNoOthers) {
  EXPECT_EQ(Folded("AbZ[@1\xC4"), "abz[@1\xC4");
  EXPECT_EQ(Folded(""), "");
}

TEST(SameName, LettersOfAsciiInEitherCase) {
  EXPECT_TRUE(SameName("aBc1", "AbC1"));
  EXPECT_FALSE(SameName("abc", "abcd"));
  EXPECT_FALSE(SameName("\xE4", "\xC4"));
  EXPECT_TRUE(SameName("", ""));
}

}  // namespace
}  // namespace platform
