#include "app/platform/byte_text.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

// "e2 82 ac" as three bytes.
std::string FromHex(std::string hex) {
  std::erase(hex, ' ');
  std::string bytes;
  EXPECT_TRUE(ParseHexBytes(hex, &bytes)) << hex;
  return bytes;
}

TEST(IsUtf8, TakesEachEndOfEachRangeOfSequences) {
  for (const char* hex :
       {"", "00", "7f", "c2 80", "df bf", "e0 a0 80", "e0 bf bf", "e1 80 80", "ec bf bf",
        "ed 80 80", "ed 9f bf", "ee 80 80", "ef bf bf", "f0 90 80 80", "f0 bf bf bf", "f1 80 80 80",
        "f3 bf bf bf", "f4 80 80 80", "f4 8f bf bf"}) {
    const std::string bytes = FromHex(hex);
    EXPECT_TRUE(IsUtf8(bytes)) << hex;
    EXPECT_EQ(Utf8Sequence(bytes), bytes.size()) << hex;
  }
}

TEST(IsUtf8, RefusesWhatLiesBesideThem) {
  struct {
    const char* hex;
    const char* why;
  } const kCases[] = {
      {"80", "a byte that follows, alone"},
      {"bf", "the last of those"},
      {"c0 80", "zero in two bytes"},
      {"c1 bf", "7f in two bytes"},
      {"c2", "cut off"},
      {"c2 7f", "below the second bytes"},
      {"c2 c0", "above them"},
      {"df 7f", "below the second bytes"},
      {"df c0", "above them"},
      {"e0 80 80", "zero in three bytes"},
      {"e0 9f bf", "7ff in three bytes"},
      {"e0 c0 80", "above the second bytes"},
      {"e1 7f 80", "below the second bytes"},
      {"e1 c0 80", "above them"},
      {"e1 80", "cut off"},
      {"e1 80 7f", "below the third bytes"},
      {"e1 80 c0", "above them"},
      {"ed a0 80", "the first surrogate"},
      {"ed bf bf", "the last surrogate"},
      {"ef c0 80", "above the second bytes"},
      {"f0 80 80 80", "zero in four bytes"},
      {"f0 8f bf bf", "ffff in four bytes"},
      {"f0 c0 80 80", "above the second bytes"},
      {"f1 7f 80 80", "below the second bytes"},
      {"f1 80 7f 80", "below the third bytes"},
      {"f1 80 c0 80", "above them"},
      {"f1 80 80", "cut off"},
      {"f1 80 80 7f", "below the fourth bytes"},
      {"f1 80 80 c0", "above them"},
      {"f4 90 80 80", "above 10ffff"},
      {"f5 80 80 80", "starts nothing"},
      {"f8 88 80 80 80", "five bytes"},
      {"fe", "starts nothing"},
      {"ff", "starts nothing"},
  };
  for (const auto& c : kCases) {
    const std::string bytes = FromHex(c.hex);
    EXPECT_FALSE(IsUtf8(bytes)) << c.hex << ": " << c.why;
    EXPECT_EQ(Utf8Sequence(bytes), 0U) << c.hex << ": " << c.why;
    const std::string behind = "a" + bytes;
    EXPECT_FALSE(IsUtf8(behind)) << c.hex << ": " << c.why;
  }
}

TEST(Utf8Of, SpellsACharacterOfEachLength) {
  const struct {
    std::uint32_t character;
    const char* bytes;
  } kCases[] = {{0x41, "A"},
                {0x7F, "\x7F"},
                {0x80, "\xC2\x80"},
                {0x7FF, "\xDF\xBF"},
                {0x800, "\xE0\xA0\x80"},
                {0xFFFF, "\xEF\xBF\xBF"},
                {0x10000, "\xF0\x90\x80\x80"},
                {0x10FFFF, "\xF4\x8F\xBF\xBF"}};
  for (const auto& each : kCases) EXPECT_EQ(Utf8Of(each.character), each.bytes) << each.character;
}

TEST(Utf8Sequence, IsTheFirstOneOnly) {
  EXPECT_EQ(Utf8Sequence("ab"), 1U);
  EXPECT_EQ(Utf8Sequence("\xC3\xA4z"), 2U);
  EXPECT_EQ(Utf8Sequence(""), 0U);
}

TEST(HexBytes, AreTwoLowerCaseDigitsEach) {
  EXPECT_EQ(HexBytes(""), "");
  EXPECT_EQ(HexBytes(std::string("\0\x0F\xF0\xFF", 4)), "000ff0ff");
}

TEST(ParseHexBytes, TakesPairsInAnyCase) {
  std::string bytes = "untouched";
  EXPECT_TRUE(ParseHexBytes("00aFFa", &bytes));
  EXPECT_EQ(bytes, std::string("\0\xAF\xFA", 3));
  EXPECT_TRUE(ParseHexBytes("", &bytes));
  EXPECT_EQ(bytes, "");
}

TEST(ParseHexBytes, RefusesTheRestAndTouchesNothing) {
  for (const char* hex : {"0", "000", "0g", "g0", " 0", "0x", "-1", "/0", "0:", "@0", "G0", "`0"}) {
    std::string bytes = "untouched";
    EXPECT_FALSE(ParseHexBytes(hex, &bytes)) << hex;
    EXPECT_EQ(bytes, "untouched") << hex;
  }
}

TEST(ParseWholeNumber, TakesDecimalDigitsAlone) {
  EXPECT_EQ(ParseWholeNumber("0"), 0U);
  EXPECT_EQ(ParseWholeNumber("007"), 7U);
  EXPECT_EQ(ParseWholeNumber("4294967296"), 4294967296U);
  for (const char* text : {"", " 1", "1 ", "+1", "-1", "1.", "1e3", "0x1", "1a", "a"}) {
    EXPECT_FALSE(ParseWholeNumber(text)) << text;
  }
  EXPECT_FALSE(ParseWholeNumber(std::string_view("1\0", 2)));
}

TEST(ParseWholeNumber, CountsWhatIsBeyond64BitsAsTheLargest) {
  EXPECT_EQ(ParseWholeNumber("18446744073709551614"), UINT64_MAX - 1);
  EXPECT_EQ(ParseWholeNumber("18446744073709551615"), UINT64_MAX);
  EXPECT_EQ(ParseWholeNumber("18446744073709551616"), UINT64_MAX);
  EXPECT_EQ(ParseWholeNumber(std::string(100, '9')), UINT64_MAX);
  EXPECT_FALSE(ParseWholeNumber(std::string(100, '9') + "a"));
}

}  // namespace
}  // namespace platform
