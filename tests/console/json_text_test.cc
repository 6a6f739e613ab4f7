#include "console/json_text.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

TEST(JsonText, EscapesWhatJsonDemandsAndKeepsTheRest) {
  EXPECT_EQ(JsonText(std::string()), R"("")");
  EXPECT_EQ(JsonText(std::string("<Ctrl>c")), R"("<Ctrl>c")");
  EXPECT_EQ(JsonText(std::string("a\"b\\c")), R"("a\"b\\c")");
  EXPECT_EQ(JsonText(std::string("\n\t\x01")), R"("\n\t\u0001")");
  EXPECT_EQ(JsonText(std::string("a\0b", 3)), R"("a\u0000b")");
  EXPECT_EQ(JsonText(std::string("\xC3\xA4\xF0\x9F\x8E\xAE")), "\"\xC3\xA4\xF0\x9F\x8E\xAE\"");
}

TEST(JsonText, GivesOtherBytesInHexadecimal) {
  EXPECT_EQ(JsonText(std::string("a\xFF")), R"({"bytes":"61ff"})");
  EXPECT_EQ(JsonText(TextOf("\xE4\x0A")), R"({"bytes":"e40a"})");
}

TEST(JsonSteps, ListsNumbersInOrder) {
  KeySequence steps;
  EXPECT_EQ(JsonSteps(steps), "[]");
  steps.AddTail(KeyStep{65, 30, 0});
  EXPECT_EQ(JsonSteps(steps), "[[65,30,0]]");
  steps.AddTail(KeyStep{255, 211, 128});
  EXPECT_EQ(JsonSteps(steps), "[[65,30,0],[255,211,128]]");
}

TEST(Bytes, SurviveThereAndBackWithZeros) {
  const std::string bytes("a\0\xFF", 3);
  EXPECT_EQ(TextOf(bytes).Length(), 3U);
  EXPECT_EQ(Bytes(TextOf(bytes)), bytes);
  EXPECT_EQ(Bytes(TextOf("")), "");
}

}  // namespace
}  // namespace kelvaro::console
