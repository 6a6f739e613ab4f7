#include "console/terminal_text.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

TEST(TerminalText, LetsOnlyCharactersThrough) {
  const struct {
    const char* text;
    const char* shown;
  } kCases[] = {
      {"", ""},
      {"Walk 1-2 'x'", "Walk 1-2 'x'"},
      {"F\xC3\xBCr \xE2\x82\xAC \xF0\x9F\x8E\xAE", "F\xC3\xBCr \xE2\x82\xAC \xF0\x9F\x8E\xAE"},
      {"a\tb\nc\x1B[31m\x7F", "a?b?c?[31m?"},
      {"\xC2\x9B"
       "2J\xC2\x80\xC2\x9F\xC2\xA0",
       "?2J??\xC2\xA0"},
      {"a\xFF\xC3-\xE2\x82", "a?\?-??"},
  };
  for (const auto& c : kCases) EXPECT_EQ(TerminalText(std::string(c.text)), c.shown);
  EXPECT_EQ(TerminalText(std::string("a\0b", 3)), "a?b");
}

TEST(Characters, AreNotBytes) {
  EXPECT_EQ(Characters(""), 0U);
  EXPECT_EQ(Characters("abc"), 3U);
  EXPECT_EQ(Characters("F\xC3\xBCr \xE2\x82\xAC"), 5U);
}

TEST(Characters, AreCutAtTheirBounds) {
  const std::string text = "F\xC3\xBCr \xE2\x82\xAC";
  EXPECT_EQ(FirstCharacters(text, 0), "");
  EXPECT_EQ(FirstCharacters(text, 2), "F\xC3\xBC");
  EXPECT_EQ(FirstCharacters(text, 4), "F\xC3\xBCr ");
  EXPECT_EQ(FirstCharacters(text, 5), text);
  EXPECT_EQ(FirstCharacters(text, 6), text);
}

}  // namespace
}  // namespace kelvaro::console
