#include "app/platform/qt/qt_shell.h"

#include "qt_test.h"

namespace platform::qt {
namespace {

TEST(CommandLine, AnArgumentWithBlanksHasItsValueInQuotes) {
  struct Case {
    const char* argument;
    const char* written;
  };
  const Case cases[] = {
      {"profile=One", "profile=One"},
      {"profile=My Game", "profile=\"My Game\""},
      {"My Game", "\"My Game\""},
      {"args=-a b=c", "args=\"-a b=c\""},
      {"a b=c", "\"a b=c\""},                          // the blank comes before any key's end
      {"", "\"\""},                                    //
      {"a\tb", "\"a\tb\""},                            // a tab parts arguments as well
      {"profile=\"My Game\"", "profile=\"My Game\""},  // quotes of its own stay
  };
  for (const Case& c : cases) {
    EXPECT_EQ(JoinCommandLine("/p/kelvaro", {c.argument}), std::string("/p/kelvaro ") + c.written);
  }
}

TEST(CommandLine, APathWithBlanksIsInQuotes) {
  EXPECT_EQ(JoinCommandLine("/my programs/kelvaro", {}), "\"/my programs/kelvaro\"");
}

class ShellTest : public QtTest {};

TEST_F(ShellTest, TheCommandLineBeginsWithTheProgramsPath) {
  const std::string line = GetCommandLineA();
  EXPECT_EQ(line.front(), '/');
  EXPECT_NE(line.find("test_qt"), std::string::npos);
}

TEST_F(ShellTest, WhatIsNoAddressCantBeOpened) {
  EXPECT_LE(ShellExecuteA(""), 32);
  EXPECT_LE(ShellExecuteA("kelvaro"), 32);
  EXPECT_LE(ShellExecuteA("http://[broken"), 32);
}

TEST_F(ShellTest, AnAddressThatNoProgramTakesGivesAFailure) {
  EXPECT_LE(ShellExecuteA("no-such-scheme-of-kelvaro:x"), 32);  // no session to open it here
}

TEST_F(ShellTest, TheHelpLibraryGoesByItsPublishedNameAlone) {
  EXPECT_EQ(LoadLibraryA("other.dll"), 0u);
  const LibraryHandle library = LoadLibraryA("HHCTRL.ocx");
  ASSERT_NE(library, 0u);
  EXPECT_EQ(GetHelpFunction(library, 13), nullptr);
  EXPECT_NE(GetHelpFunction(library, 14), nullptr);
  EXPECT_EQ(GetHelpFunction(0, 14), nullptr);
}

TEST_F(ShellTest, ABeepSucceeds) { EXPECT_TRUE(MessageBeep(0)); }

}  // namespace
}  // namespace platform::qt
