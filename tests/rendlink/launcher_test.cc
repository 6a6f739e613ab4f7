#include "rendlink/launcher.h"

#include "app/platform/processes.h"
#include "rendlink/files.h"
#include "rendlink/launcher_kind.h"
#include "tests/rendlink/rendlink_fixture.h"
#include "tests/storage/cut_everywhere.h"

namespace kelvaro::rendlink {
namespace {

constexpr char kTarget[] = "/games/race/race.sh";
constexpr char kFile[] = "/home/player/Desktop/My Race.desktop";

TEST_F(RendlinkTest, AChoiceBecomesWholeNamesAndFullPaths) {
  sim.Disk().PutFile("/home/player/x", "game");
  const Ready ready = ReadyFor({{"ches", "RACE"}, "x", "-v", "/games/saves"});
  EXPECT_EQ(ready.words, (Words{"/game/kelvaro", "profile=Chess", "profile=race",
                                "target=/home/player/x", "args=-v", "dir=/games/saves"}));
  EXPECT_EQ(ready.launch.target, "/home/player/x");
}

TEST_F(RendlinkTest, RefusesAChoiceThatCantWork) {
  EXPECT_EQ(Refusal({{}, kTarget, "", ""}), "Choose a profile.");
  EXPECT_EQ(Refusal({{"Chess"}, "", "", ""}), "Choose a target, which is the program to start.");
  EXPECT_EQ(Refusal({{"Go"}, kTarget, "", ""}),
            "There is no profile whose name begins with \"Go\".");
  EXPECT_EQ(Refusal({{"Chess"}, "/none", "", ""}), "There is no file /none.");
  EXPECT_EQ(Refusal({{"Chess"}, "/games", "", ""}), "There is no file /games.");
  EXPECT_EQ(Refusal({{"Chess"}, kTarget, "", "/none"}), "There is no folder /none.");
  EXPECT_EQ(Refusal({{"Chess"}, kTarget, "", kTarget}), "There is no folder /games/race/race.sh.");
  EXPECT_EQ(Refusal({{"Chess"}, kTarget, "[x]", ""}),
            "The arguments have the character [, which stands for a double quote there "
            "(LeftArgQuote).");
  sim.Disk().Remove("/game/kelvaro");
  EXPECT_EQ(Refusal({{"Chess"}, kTarget, "", ""}),
            "The program kelvaro isn't in /game, where Rendlink lies.");
}

TEST_F(RendlinkTest, AStoredNameThatCantBeCarriedIsRefusedByWhateverItIsChosen) {
  StoreProfile("Fast|Slow");
  EXPECT_EQ(Refusal({{"fast"}, kTarget, "", ""}),
            "The name of the profile \"Fast|Slow\" has the character |, which stands for a double "
            "quote on Kelvaro's command line (QuoteSub).");
}

TEST_F(RendlinkTest, QuoteCharactersAreThoseOfTheFileBesideKelvaro) {
  sim.Disk().PutFile("/game/QuoteChars.txt", "QuoteSub=^\nLeftArgQuote=<\nRightArgQuote=>\n");
  StoreProfile("Fast|Slow");
  EXPECT_EQ(
      WordsOf({{"fast"}, kTarget, "[1] \"2\"", ""}),
      (Words{"/game/kelvaro", "profile=Fast|Slow", "target=/games/race/race.sh", "args=[1] <2>"}));
}

TEST_F(RendlinkTest, ALauncherIsADesktopEntryThatMayBeStarted) {
  sim.Disk().PutFile("/games/race/race.png", "");
  std::string refusal;
  EXPECT_TRUE(
      SaveLauncher(ReadyFor({{"Race 2", "Chess"}, kTarget, "", ""}), kFile, session, &refusal))
      << refusal;
  EXPECT_EQ(sim.Disk().FileBytes(kFile),
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=My Race\n"
            "Comment=Starts race with the profiles Race 2 and Chess\n"
            "Exec=/game/kelvaro \"profile=Race 2\" profile=Chess target=/games/race/race.sh\n"
            "Icon=/games/race/race.png\n"
            "Terminal=false\n"
            "Categories=Game;\n");
  EXPECT_EQ(session.allowed, std::vector<std::string>{kFile});
}

TEST_F(RendlinkTest, SaysWhyALauncherCantBeWritten) {
  const Ready ready = ReadyFor({{"Chess"}, kTarget, "", ""});
  sim.SetSystemMessage(platform::simulation::ERROR_PATH_NOT_FOUND, "No such place\n");
  std::string refusal;
  EXPECT_FALSE(SaveLauncher(ready, "/none/x.desktop", session, &refusal));
  EXPECT_EQ(refusal, "The launcher /none/x.desktop can't be written: No such place.");
  EXPECT_TRUE(session.allowed.empty());
  session.allows = false;
  EXPECT_FALSE(SaveLauncher(ready, kFile, session, &refusal));
  EXPECT_EQ(refusal,
            std::string("The launcher ") + kFile +
                " was written, but the system refuses to make it one that can be started.");
}

TEST_F(RendlinkTest, ALauncherThatCantBeWrittenWholeStaysAsItWas) {
  std::string refusal;
  ASSERT_TRUE(WriteLauncher(kFile, "old", &refusal)) << refusal;
  sim.Disk().ClearLog();
  ASSERT_TRUE(WriteLauncher(kFile, "old", &refusal)) << refusal;
  const std::size_t operations = sim.Disk().Log().size();
  for (std::size_t n = 1; n <= operations; ++n) {
    sim.Disk().FailInside(n, 1);
    const bool isWritten = WriteLauncher(kFile, "new", &refusal);
    EXPECT_EQ(sim.Disk().FileBytes(kFile), isWritten ? "new" : "old") << "operation " << n;
    sim.Disk().Restart();
    ASSERT_TRUE(WriteLauncher(kFile, "old", &refusal)) << refusal;
    EXPECT_EQ(sim.Disk().List("/home/player/Desktop"), (Words{"My Race.desktop"}));
  }
}

TEST(LauncherOnAForgetfulDisk, IsTheOldOneOrTheNewOne) {
  std::string refusal;
  for (const bool first : {false, true}) {
    CutEverywhere({[&](platform::simulation::Simulation& sim) {
                     sim.Disk().PutFolder("/home/player/Desktop");
                     if (!first) WriteLauncher(kFile, "old", &refusal);
                   },
                   [&] { WriteLauncher(kFile, "new", &refusal); },
                   [&](platform::simulation::Simulation& sim, bool isDone) {
                     const auto found = sim.Disk().FileBytes(kFile);
                     EXPECT_TRUE(found == "new" || (!isDone && (first ? !found : found == "old")))
                         << found.value_or("none");
                   }});
  }
}

TEST_F(RendlinkTest, WhatALauncherCantHoldIsRefusedBeforeAnythingIsWritten) {
  sim.Disk().PutFile("/games/\xE9", "game");
  const Ready ready = ReadyFor({{"Chess"}, "/games/\xE9", "", ""});
  std::string refusal;
  EXPECT_FALSE(SaveLauncher(ready, kFile, session, &refusal));
  EXPECT_EQ(refusal,
            "The word \"target=/games/\xE9\" isn't UTF-8 text, and a launcher can't hold "
            "other.");
  EXPECT_FALSE(sim.Disk().Exists(kFile));
}

TEST_F(RendlinkTest, APictureWhosePathALauncherCantHoldIsLeftOut) {
  sim.Disk().PutFile("/usr/share/applications/a.desktop",
                     "[Desktop Entry]\nExec=race.sh\nIcon=\xFF\n");
  std::string refusal;
  EXPECT_TRUE(SaveLauncher(ReadyFor({{"Chess"}, kTarget, "", ""}), kFile, session, &refusal));
  EXPECT_NE(sim.Disk().FileBytes(kFile)->find("\nIcon=com.marnstone.Kelvaro\n"), std::string::npos);
}

TEST_F(RendlinkTest, StartsKelvaroWithTheSameWords) {
  sim.Processes().Provide({.path = "/game/kelvaro"});
  std::string refusal;
  EXPECT_TRUE(StartNow(ReadyFor({{"Race 2"}, kTarget, "-a \"b c\"", ""}), &refusal)) << refusal;
  ASSERT_EQ(sim.Processes().Started().size(), 1u);
  EXPECT_EQ(sim.Processes().Started()[0].application, "/game/kelvaro");
  EXPECT_EQ(sim.Processes().Started()[0].commandLine,
            "\"/game/kelvaro\" \"profile=Race 2\" \"target=/games/race/race.sh\" "
            "\"args=-a [b c]\"");
  EXPECT_FALSE(sim.Processes().Started()[0].hasFolder);
  EXPECT_EQ(sim.OpenHandles(), 0u);
}

TEST_F(RendlinkTest, SaysWhyKelvaroCantBeStarted) {
  sim.SetSystemMessage(2, "No such file\n");
  std::string refusal;
  EXPECT_FALSE(StartNow(ReadyFor({{"Chess"}, kTarget, "", ""}), &refusal));
  EXPECT_EQ(refusal, "Kelvaro can't be started: No such file.");
}

// As it is on Windows.
TEST_F(RendlinkTest, KelvarosFileHasTheEndingOfRendlinks) {
  sim.Disk().SetProgramPath("/game/rendlink.exe");
  EXPECT_EQ(Refusal({{"Chess"}, kTarget, "", ""}),
            "The program kelvaro.exe isn't in /game, where Rendlink lies.");
  sim.Disk().PutFile("/game/kelvaro.exe", "program");
  EXPECT_EQ(WordsOf({{"Chess"}, kTarget, "", ""}).at(0), "/game/kelvaro.exe");
}

TEST_F(RendlinkTest, AnOwnPathThatIsTooLongIsTold) {
  sim.Disk().Format('\\');
  sim.Disk().SetProgramPath("C:\\" + std::string(300, 'f') + "\\rendlink.exe");
  std::string kelvaro;
  std::string refusal;
  EXPECT_FALSE(FindKelvaro(&kelvaro, &refusal));
  EXPECT_TRUE(refusal.starts_with("This program's path is too long: it has 316 bytes")) << refusal;
}

TEST_F(RendlinkTest, AStemIsTheNameWithoutItsEnding) {
  EXPECT_EQ(Stem("/games/race.x.sh"), "race.x");
  EXPECT_EQ(Stem("race"), "race");
  EXPECT_EQ(Stem("/a.b/race"), "race");
  EXPECT_EQ(Stem("/games/.hidden"), ".hidden");
  EXPECT_EQ(Stem(""), "");
}

// Nothing that Rendlink does touches a profile.
TEST_F(RendlinkTest, LeavesTheProfilesAsTheyAre) {
  const auto before = sim.Disk().List("/game/Profiles");
  sim.Disk().ClearLog();
  std::string refusal;
  SaveLauncher(ReadyFor({{"Chess"}, kTarget, "", ""}), kFile, session, &refusal);
  for (const auto& operation : sim.Disk().Log()) {
    const bool profile = operation.path.starts_with("/game/");
    EXPECT_FALSE(operation.changes && profile) << operation.name << " " << operation.path;
  }
  EXPECT_EQ(sim.Disk().List("/game/Profiles"), before);
}

}  // namespace
}  // namespace kelvaro::rendlink
