#include "app/platform/entry_text.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(EntryText, EscapesWhatAValueCantHoldAndBlanksAtItsEnds) {
  EXPECT_EQ(EscapedForEntry(" a b\t\n\r\\c "), R"(\sa b\t\n\r\\c\s)");
  EXPECT_EQ(EscapedForEntry(" "), R"(\s)");
  EXPECT_EQ(EscapedForEntry(""), "");
}

TEST(EntryText, ReadsBackWhatItEscaped) {
  for (const char* text : {"", " ", "  ", " a ", "\\s", "a\\", "\t\n\r\\", "plain"})
    EXPECT_EQ(UnescapedFromEntry(EscapedForEntry(text)), text);
}

TEST(EntryText, KeepsAnEscapeThatItDoesntKnow) {
  EXPECT_EQ(UnescapedFromEntry(R"(a\xb\)"), R"(a\xb\)");
}

TEST(EntryText, QuotesAWordThatIsEmptyOrHasAReservedByte) {
  EXPECT_EQ(ExecWord("/bin/kelvaro"), "/bin/kelvaro");
  EXPECT_EQ(ExecWord(""), R"("")");
  for (const char c : kReservedInExec) EXPECT_EQ(ExecWord(std::string("a") + c).front(), '"') << c;
  EXPECT_EQ(ExecWord("a b"), R"("a b")");
  EXPECT_EQ(ExecWord("$100%"), R"("\$100%%")");
}

TEST(EntryText, TrimsBlanksTabsAndCarriageReturns) {
  EXPECT_EQ(TrimmedInEntry(" \ta b\r "), "a b");
  EXPECT_EQ(TrimmedInEntry(" \t\r"), "");
}

}  // namespace
}  // namespace platform
