#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/start/launch_request.h"
#include "tests/app/main_window_fixture.h"
#include "tests/foundation/texts.h"

namespace kelvaro {
namespace {

using namespace main_window;

using Strings = std::vector<std::string>;

Strings Split(const std::string& text) {
  LinkedList<ByteString> list;
  SplitCommandLine(TextOf(text), &list);
  return Texts(list);
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
      {"\"never closed, and blanks \t", {"never closed, and blanks"}},
      {"!a!b!", {"!a!b!"}},
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
  EXPECT_EQ(Split(std::string("\"never closed\0", 14)), Strings{"never closed"});
}

TEST(SplitCommandLine, AddsToWhatTheListHas) {
  LinkedList<ByteString> list;
  list.AddTail("before");
  SplitCommandLine("a b", &list);
  EXPECT_EQ(Texts(list), (Strings{"before", "a", "b"}));
}

TEST(ReadCommandLine, TakesProfilesAndWhatToStartWithThem) {
  struct {
    const char* arguments;
    Strings profiles;
    const char* target;
    const char* args;
    const char* dir;
    const char* why;
  } const kRows[] = {
      {"", {}, "", "", "", "no arguments"},
      {"Beta", {"Beta"}, "", "", "", "a bare token is a profile"},
      {"|My Game|", {"My Game"}, "", "", "", "bars stand for quotes"},
      {"profile=B profile=Two profile=\"No 3\"", {"B", "Two", "No 3"}, "", "", "", "several"},
      {"PROFILE=B target=/a Target=\"/b c\" ARGS=1 args=2 dir=/x DIR=\"/y z\" taRGet=\"/the end\"",
       {"B"},
       "/the end",
       "2",
       "/y z",
       "in any letter case, and the last one counts"},
      {"profile=B args=|-map [My Level]|",
       {"B"},
       "",
       "-map \"My Level\"",
       "",
       "brackets are quotes"},
      {"profile=B target=/[a] dir=/[b]", {"B"}, "/[a]", "", "/[b]", "elsewhere they are not"},
      {"profile=B target=/a args=1 dir=/d dir= args=", {"B"}, "/a", "", "", "an empty value"},
      {"foo=bar Beta", {"Beta"}, "", "", "", "an unknown key is ignored"},
      {"=bar Beta", {"Beta"}, "", "", "", "so is one without a name"},
      {"profile=Beta Alpha", {"Beta"}, "", "", "", "so is a bare token behind a profile"},
      {"Beta profile=Alpha", {"Beta", "Alpha"}, "", "", "", "before a key it is the first"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.why);
    const LaunchRequest request =
        ReadCommandLine(TextOf(std::string("\"/game/kelvaro\" ") + row.arguments), {});
    EXPECT_EQ(Texts(request.profiles), row.profiles);
    EXPECT_EQ(Bytes(request.target), row.target);
    EXPECT_EQ(Bytes(request.args), row.args);
    EXPECT_EQ(Bytes(request.dir), row.dir);
  }
  EXPECT_EQ(ReadCommandLine("", {}).profiles.count, 0) << "without even the program";
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
  Strings Extra() const { return Texts(Window()->launcher.extraProfiles); }
};

TEST_F(CommandLineTest, WithoutArgumentsTheLastProfileIsOpened) {
  BeginWith("");
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
  EXPECT_FALSE(Window()->launcher.commandLineProfileSelected);
  EXPECT_EQ(Extra(), Strings{});
}

TEST_F(CommandLineTest, TheFirstOfSeveralProfilesIsItsOwnAndTheOthersAreKept) {
  BeginWith("profile=Beta profile=Two profile=\"Number 3\"");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Extra(), (Strings{"Two", "Number 3"}));
}

TEST_F(CommandLineTest, TheBeginningOfANameSelectsTheFirstThatHasIt) {
  StoreProfile("Game two", [this](ProfileFile& made) { UsePad(made); });
  BeginWith("gA");
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
  EXPECT_TRUE(Window()->launcher.commandLineProfileSelected);
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
  EXPECT_FALSE(Window()->launcher.commandLineProfileSelected);
  EXPECT_EQ(screen.Chosen(kProfileList), "Game");
  EXPECT_EQ(Extra(), Strings{"Beta"});
}

TEST_F(CommandLineTest, AProfileOfTheCommandLineIsOpenedAndRememberedAsTheLastOne) {
  BeginWith("Beta");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Bytes(OpenProfile().profileName), "Beta");
  EXPECT_TRUE(Window()->launcher.commandLineProfileSelected);
  EXPECT_EQ(SettingText("Last Profile"), "Beta");
}

TEST_F(CommandLineTest, WithoutAnyProfileItIsNotRead) {
  WithoutProfiles();
  BeginWith("profile=Nobody target=/a");
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(Bytes(Window()->launcher.launchTarget), "");
  EXPECT_EQ(Extra(), Strings{});
}

TEST_F(CommandLineTest, TheCharactersOfTheFileAreThoseOfTheCommandLine) {
  sim.Disk().PutFile("/game/QuoteChars.txt", "QuoteSub=~\nLeftArgQuote={\nRightArgQuote=}\n");
  BeginWith("~profile=Beta~ args=~-map {My Level} [x] |~");
  EXPECT_EQ(screen.Chosen(kProfileList), "Beta");
  EXPECT_EQ(Bytes(Window()->launcher.launchArgs), "-map \"My Level\" [x] |");
}

}  // namespace
}  // namespace kelvaro
