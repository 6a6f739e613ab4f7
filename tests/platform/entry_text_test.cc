#include "app/platform/entry_text.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

namespace platform {
namespace {

TEST(EntryText, EscapesWhatAValueCantHoldAndBlanksAtItsEnds) {
  EXPECT_EQ(EscapedForEntry(" a b\t\n\r\\c "), R"(\sa b\t\n\r\\c\s)");
  EXPECT_EQ(EscapedForEntry("a b"), "a b");
  EXPECT_EQ(EscapedForEntry(" "), R"(\s)");
  EXPECT_EQ(EscapedForEntry(""), "");
}

TEST(EntryText, ReadsBackWhatItEscaped) {
  for (const char* text : {"", " ", "  ", " a ", "\\s", "a\\", "\t\n\r\\", "plain"})
    EXPECT_EQ(UnescapedFromEntry(EscapedForEntry(text)), text);
}

TEST(EntryText, KeepsAnEscapeThatItDoesntKnow) {
  EXPECT_EQ(UnescapedFromEntry(R"(a\xb\)"), R"(a\xb\)");
  EXPECT_EQ(UnescapedFromEntry(std::string_view(R"(a\s)", 2)), "a\\") << "cut off";
}

TEST(EntryText, QuotesAWordThatIsEmptyOrHasAReservedByte) {
  EXPECT_EQ(ExecWord("/bin/kelvaro"), "/bin/kelvaro");
  EXPECT_EQ(ExecWord(""), R"("")");
  for (const char c : kReservedInExec) EXPECT_EQ(ExecWord(std::string("a") + c).front(), '"') << c;
  EXPECT_EQ(ExecWord("a b"), R"("a b")");
  EXPECT_EQ(ExecWord("$100%"), R"("\$100%%")");
}

TEST(EntryText, TakesTheFirstValueOfEachKeyOfItsGroup) {
  const auto values = ReadEntry(
      "# Icon=comment\n"
      "Icon=before\n"
      "[Other]\nIcon=other\n"
      "[Desktop Entry]\r\n"
      " \tName = A\\sB\\\\C\\tD\\x \n"
      "#Icon=comment\n"
      "no value\n"
      "Icon=first\n"
      "Icon=second\n"
      "Icon[de]=german\n"
      "Empty=\n"
      "[Desktop Action New]\nExec=new\n");
  const std::map<std::string, std::string> expected = {
      {"Name", "A B\\C\tD\\x"}, {"Icon", "first"}, {"Icon[de]", "german"}, {"Empty", ""}};
  EXPECT_EQ(values, expected);
  EXPECT_TRUE(ReadEntry("").empty());
}

}  // namespace
}  // namespace platform
