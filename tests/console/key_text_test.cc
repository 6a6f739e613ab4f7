#include "console/key_text.h"

#include <gtest/gtest.h>

#include "console/json_text.h"

namespace kelvaro::console {
namespace {

KeyTextResult Parse(const std::string& text, std::uint32_t actionFlags = 0) {
  KeyAction action;
  action.actionFlags = actionFlags;
  return ParseKeyText(TextOf(text), &action);
}

TEST(ParseKeyText, HandsOnWhatTheParserSays) {
  EXPECT_EQ(Parse("a").result, -1);
  EXPECT_EQ(Parse("").result, -1);
  EXPECT_EQ(Parse("aB").result, -2);  // the reminder is on
  EXPECT_FALSE(Parse("aB").faulty);
  EXPECT_EQ(Parse("Esc").result, -2);  // and the Smart Check is off
  EXPECT_EQ(Parse("ab<x").result, 2);
  EXPECT_TRUE(Parse("ab<x").faulty);
  EXPECT_EQ(Parse("aa", KeyAction::HoldAllKeys).result, 1);
  EXPECT_TRUE(Parse("aa", KeyAction::HoldAllKeys).duplicateKey);
}

TEST(ParseKeyText, TellsAFaultInWordsWithACaretBelowIt) {
  const std::string longName(50, 'x');
  struct {
    std::string text;
    std::uint32_t flags;
    std::string what;
    std::string detail;
  } const kCases[] = {
      {"a<foo>b", 0, "there is no key <foo> (write << for the character itself)",
       "  a<foo>b\n   ^\n"},
      {"<" + longName + ">", 0,
       "there is no key <" + longName.substr(0, 40) + "...> (write << for the character itself)",
       "  <" + longName + ">\n  ^\n"},
      {"<Entr>", 0,
       "there is no key <Entr> (did you mean <Enter>? write << for the character itself)",
       "  <Entr>\n  ^\n"},
      {"<>", 0, "there is no key <> (write << for the character itself)", "  <>\n  ^\n"},
      {"ab<Esc", 0, "a '<' without its '>' (write << for the character itself)",
       "  ab<Esc\n    ^\n"},
      {"aa", 1, "a key can't be there twice when all keys are held down", "  aa\n   ^\n"},
      {"a<Up><Up>", 1, "a key can't be there twice when all keys are held down",
       "  a<Up><Up>\n       ^\n"},
      // No key types what isn't ASCII; a name with it is only unknown.
      {"a\xC3\xA4z", 0, "no key types this character", "  a\xC3\xA4z\n   ^\n"},
      {"<\xC3\xA4\xE2\x82\xAC>a", 0,
       "there is no key <\xC3\xA4\xE2\x82\xAC> (write << for the character itself)",
       "  <\xC3\xA4\xE2\x82\xAC>a\n  ^\n"},
      // What a terminal would obey, or can't show, is one question mark a byte.
      {"ab\tc", 0, "no key types this character", "  ab?c\n    ^\n"},
      {std::string("a\0b", 3), 0, "no key types this character", "  a?b\n   ^\n"},
      {"\x7F", 0, "no key types this character", "  ?\n  ^\n"},
      {"a\xFF\xE2\x82", 0, "no key types this character", "  a???\n   ^\n"},
  };
  for (const auto& c : kCases) {
    const KeyTextResult result = Parse(c.text, c.flags);
    EXPECT_TRUE(result.faulty) << c.text;
    EXPECT_EQ(result.what, c.what) << c.text;
    EXPECT_EQ(result.detail, c.detail) << c.text;
  }
}

}  // namespace
}  // namespace kelvaro::console
