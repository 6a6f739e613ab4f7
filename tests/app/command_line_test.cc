#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

using Strings = std::vector<std::string>;

Strings All(const LinkedList<ByteString>& list) {
  Strings all;
  for (const ByteString& name : list) all.push_back(Bytes(name));
  return all;
}

Strings Split(const std::string& text) {
  LinkedList<ByteString> list;
  SplitCommandLine(TextOf(text), &list);
  return All(list);
}

TEST(SplitCommandLine, EndsATokenAtABlankAndAtAClosingQuote) {
  struct {
    const char* text;
    Strings tokens;
  } const kRows[] = {
      {"", {}},
      {" \t\r\n ", {}},
      {"one", {"one"}},
      {"  one  two  ", {"one", "two"}},
      {"one\ttwo\x01three", {"one", "two", "three"}},
      {"profile=\"My Game\"", {"profile=My Game"}},
      {"\"\"", {}},
      {"a \"\" b", {"a", "b"}},
      {"a\"b c\"d", {"ab c", "d"}},
      {"\"a b\"\"c d\"", {"a b", "c d"}},
      {"\"never closed", {"never closed"}},
      {"a\"", {"a"}},
      {"\" \"", {" "}},
      {"\"a\tb\"", {"a\tb"}},
      {"args=\"-x \" y", {"args=-x ", "y"}},
      {"a\x7F\x80\xFF", {"a\x7F\x80\xFF"}},
  };
  for (const auto& row : kRows) EXPECT_EQ(Split(row.text), row.tokens) << row.text;
}

TEST(SplitCommandLine, ZeroBytesAreBlanks) {
  EXPECT_EQ(Split(std::string("\0a\0b\0", 5)), (Strings{"a", "b"}));
}

TEST(SplitCommandLine, AddsToWhatTheListHas) {
  LinkedList<ByteString> list;
  list.AddTail("before");
  SplitCommandLine("a b", &list);
  EXPECT_EQ(All(list), (Strings{"before", "a", "b"}));
}

class CommandLineTest : public MainWindowTest {
 protected:
  // The profile list then is Alpha, Beta, Game.
  CommandLineTest() {
    for (const char* name : {"Beta", "Alpha"})
      StoreProfile(name, [this](ProfileFile& made) { UsePad(made); });
    PresetText("Last Profile", "Game");
  }
  void BeginWith(const std::string& arguments) {
    screen.SetCommandLine("\"/game/kelvaro\" " + arguments);
    Begin();
  }
  Strings Extra() const { return All(ExtraProfiles()); }
  void PutQuoteChars(const std::string& text) { sim.Disk().PutFile("/game/QuoteChars.txt", text); }
};

TEST_F(CommandLineTest, WithoutArgumentsTheLastProfileIsOpened) {
  BeginWith("");
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
  EXPECT_FALSE(CommandLineProfileSelected());
  EXPECT_EQ(Extra(), Strings{});
}

TEST_F(CommandLineTest, ABareTokenIsAProfile) {
  BeginWith("Beta");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Bytes(OpenProfile().profileName), "Beta");
  EXPECT_TRUE(CommandLineProfileSelected());
}

TEST_F(CommandLineTest, BarsStandForQuotes) {
  StoreProfile("My Game", [this](ProfileFile& made) { UsePad(made); });
  BeginWith("|My Game|");
  EXPECT_EQ(screen.Chosen(kProfileList), "My Game");
}

TEST_F(CommandLineTest, TheFirstOfSeveralProfilesIsItsOwnAndTheOthersAreKept) {
  BeginWith("profile=Beta profile=Two profile=\"Number 3\"");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Extra(), (Strings{"Two", "Number 3"}));
}

TEST_F(CommandLineTest, KeysAreFoundInAnyCaseAndTheLastOneCounts) {
  BeginWith(
      "PROFILE=Beta target=/a Target=\"/b c\" ARGS=1 args=2 dir=/x DIR=\"/y z\" taRGet=\"/the "
      "end\"");
  EXPECT_TRUE(CommandLineProfileSelected());
  EXPECT_EQ(LaunchTarget(), "/the end");
  EXPECT_EQ(LaunchArgs(), "2");
  EXPECT_EQ(LaunchDir(), "/y z");
}

TEST_F(CommandLineTest, BracketsInTheArgumentsAreQuotes) {
  BeginWith("profile=Beta args=|-map [My Level]|");
  EXPECT_EQ(LaunchArgs(), "-map \"My Level\"");
}

TEST_F(CommandLineTest, BracketsElsewhereStayAsTheyAre) {
  BeginWith("profile=Beta target=/[a] dir=/[b]");
  EXPECT_EQ(LaunchTarget(), "/[a]");
  EXPECT_EQ(LaunchDir(), "/[b]");
}

TEST_F(CommandLineTest, NothingBehindAKeyIsAnEmptyValue) {
  BeginWith("profile=Beta target=/a args=1 dir=/d dir= args=");
  EXPECT_EQ(LaunchTarget(), "/a");
  EXPECT_EQ(LaunchArgs(), "");
  EXPECT_EQ(LaunchDir(), "");
}

TEST_F(CommandLineTest, AnUnknownKeyBeforeAnyProfileIsIgnored) {
  BeginWith("foo=bar Beta");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Extra(), Strings{});
}

TEST_F(CommandLineTest, ABareTokenBehindAProfileIsIgnored) {
  BeginWith("profile=Beta Alpha");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Extra(), Strings{});
}

TEST_F(CommandLineTest, ABareTokenBeforeAKeyIsTheFirstProfile) {
  BeginWith("Beta profile=Alpha");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Extra(), Strings{"Alpha"});
}

TEST_F(CommandLineTest, TheBeginningOfANameSelectsTheFirstThatHasIt) {
  StoreProfile("Game two", [this](ProfileFile& made) { UsePad(made); });
  BeginWith("gA");
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
  EXPECT_TRUE(CommandLineProfileSelected());
}

TEST_F(CommandLineTest, AnUnknownProfileIsToldAndTheLastOneTaken) {
  screen.AnswerNext(platform::IDOK);
  BeginWith("profile=Nobody profile=Beta target=/a");
  ASSERT_EQ(screen.Boxes().size(), 1u);
  EXPECT_EQ(screen.Boxes()[0].text,
            "Profile \"Nobody\" is not in the list of available profiles. Command line selection "
            "failed.");
  EXPECT_EQ(screen.Boxes()[0].caption, "Profile Selection Failure");
  EXPECT_EQ(screen.Boxes()[0].type, platform::MB_ICONEXCLAMATION);
  EXPECT_EQ(screen.Boxes()[0].owner, Handle());
  EXPECT_FALSE(CommandLineProfileSelected());
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
  EXPECT_EQ(Extra(), Strings{"Beta"});
}

TEST_F(CommandLineTest, AProfileOfTheCommandLineIsRememberedAsTheLastOne) {
  BeginWith("Beta");
  EXPECT_EQ(SettingText("Last Profile"), "Beta");
}

TEST_F(CommandLineTest, WithoutAnyProfileItIsNotRead) {
  WithoutProfiles();
  BeginWith("profile=Nobody target=/a");
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(LaunchTarget(), "");
  EXPECT_EQ(Extra(), Strings{});
}

TEST_F(CommandLineTest, OneWithoutEvenTheProgramIsEmpty) {
  screen.SetCommandLine("");
  Begin();
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
}

TEST_F(CommandLineTest, WithoutAFileTheCharactersAreTheOrdinaryOnes) {
  BeginWith("");
  EXPECT_EQ(QuoteChars(), "|[]");
}

TEST_F(CommandLineTest, TheFileGivesOtherCharacters) {
  struct {
    const char* file;
    const char* characters;
    const char* why;
  } const kRows[] = {
      {"QuoteSub=~\nLeftArgQuote={\nRightArgQuote=}\n", "~{}", "all three"},
      {"QuoteSub=~\r\nLeftArgQuote={\r\n\r\nRightArgQuote=}", "~{}", "other line ends, and none"},
      {"quotesub=~\nLEFTARGQUOTE={", "~{]", "any letter case"},
      {" \t QuoteSub=~ \n", "~[]", "trimmed at both ends"},
      {"QuoteSub=~^%\n", "~[]", "the first character counts"},
      {"QuoteSub=\nLeftArgQuote= \n", "|[]", "nothing behind the sign"},
      {"QuoteSub =~\nxQuoteSub=~\n# text\n", "|[]", "other lines"},
      {"QuoteSub=~\nQuoteSub=^\n", "^[]", "a later line wins"},
      {"QuoteSub=~\nQuoteSub=\n", "~[]", "unless it has nothing"},
      {"", "|[]", "an empty file"},
  };
  for (const auto& row : kRows) {
    PutQuoteChars(row.file);
    BeginWith("");
    EXPECT_EQ(QuoteChars(), row.characters) << row.why;
    CloseAll();
  }
}

TEST_F(CommandLineTest, AFileThatCannotBeOpenedChangesNothing) {
  sim.Disk().PutFolder("/game/QuoteChars.txt");
  BeginWith("");
  EXPECT_EQ(QuoteChars(), "|[]");
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(CommandLineTest, TheCharactersOfTheFileAreThoseOfTheCommandLine) {
  PutQuoteChars("QuoteSub=~\nLeftArgQuote={\nRightArgQuote=}\n");
  BeginWith("~profile=Beta~ args=~-map {My Level} [x] |~");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(LaunchArgs(), "-map \"My Level\" [x] |");
}

}  // namespace
}  // namespace kelvaro
