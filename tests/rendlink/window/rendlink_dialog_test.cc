#include "rendlink/rendlink_dialog.h"

#include <set>

#include "app/platform/desktop.h"
#include "app/resources/resources.h"
#include "rendlink/resources.h"
#include "tests/app/resources/dialog_tables.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"
#include "tests/rendlink/rendlink_fixture.h"

namespace kelvaro::rendlink {
namespace {

using platform::IDCANCEL;
using platform::IDOK;

constexpr char kTarget[] = "/games/race/race.sh";

class RendlinkDialogTest : public RendlinkTestOn<platform::simulation::DesktopSimulation> {
 protected:
  void Begin() {
    screen.Start([this] { return RendlinkDialog(session).DoModal(platform::kNoWindow); });
  }
  // Chooses the profile "race" and the game.
  void Fill() {
    screen.SelectRows(kProfiles, {1});
    screen.Type(kTarget_, kTarget);
  }
  void ExpectBox(const std::string& text, std::uint32_t type = platform::MB_ICONEXCLAMATION) {
    ASSERT_TRUE(screen.BoxUp());
    EXPECT_EQ(screen.Box().text, text);
    EXPECT_EQ(screen.Box().caption, "Rendlink");
    EXPECT_EQ(screen.Box().type, type);
    screen.Answer(IDOK);
  }
  void ExpectSuccess(const std::string& text) { ExpectBox(text, platform::MB_OK); }
  void TearDown() override {
    if (screen.Running()) screen.Close();
    EXPECT_FALSE(screen.Running());
    EXPECT_EQ(sim.OpenHandles(), 0u);
  }

  static constexpr std::uint32_t kTarget_ = rendlink::kTarget;
  platform::simulation::Screen& screen = sim.Screen();
};

TEST_F(RendlinkDialogTest, ShowsTheProfilesAndWhatIsMissing) {
  Begin();
  EXPECT_EQ(screen.Front(), kDialogId);
  EXPECT_EQ(screen.Title(), "Rendlink");
  EXPECT_EQ(screen.Cells(kProfiles),
            (std::vector<std::vector<std::string>>{{"Chess"}, {"race"}, {"Race 2"}}));
  EXPECT_EQ(screen.SelectedRows(kProfiles), std::vector<std::int32_t>{0});
  EXPECT_EQ(screen.Text(kCommand), "Choose a target, which is the program to start.");
  EXPECT_EQ(screen.Chosen(kPlace), "Desktop");
  EXPECT_EQ(screen.Focus(), kProfiles);
  EXPECT_EQ(screen.Icon(true), resources::kIcon);
}

TEST_F(RendlinkDialogTest, WithoutADesktopFolderItOffersTheMenu) {
  session.desktop.clear();
  Begin();
  EXPECT_EQ(screen.Chosen(kPlace), "Applications menu");
}

TEST_F(RendlinkDialogTest, ShowsTheCommandAsItIsChosen) {
  Begin();
  screen.Type(kTarget_, kTarget);
  EXPECT_EQ(screen.Text(kCommand), "/game/kelvaro profile=Chess target=/games/race/race.sh");
  screen.SelectRows(kProfiles, {1, 2});
  EXPECT_EQ(screen.Text(kCommand),
            "/game/kelvaro profile=race 'profile=Race 2' target=/games/race/race.sh");
  screen.Type(kArguments, "-a \"b c\"");
  screen.Type(kFolder, "/games/saves");
  EXPECT_EQ(screen.Text(kCommand),
            "/game/kelvaro profile=race 'profile=Race 2' target=/games/race/race.sh "
            "'args=-a [b c]' dir=/games/saves");
  screen.Type(kArguments, "a|b");
  EXPECT_EQ(screen.Text(kCommand),
            "The arguments have the character |, which stands for a double quote on Kelvaro's "
            "command line (QuoteSub).");
  screen.SelectRows(kProfiles, {});
  EXPECT_EQ(screen.Text(kCommand), "Choose a profile.");
}

TEST_F(RendlinkDialogTest, BrowsesForTheTarget) {
  Begin();
  screen.ChooseNextPath(kTarget);
  screen.Click(kBrowseTarget);
  EXPECT_EQ(screen.Text(kTarget_), kTarget);
  EXPECT_EQ(screen.Text(kCommand), "/game/kelvaro profile=Chess target=/games/race/race.sh");
  screen.Click(kBrowseTarget);  // and chooses none
  EXPECT_EQ(screen.Text(kTarget_), kTarget);
  ASSERT_EQ(screen.AskedPaths().size(), 2u);
  const auto& asked = screen.AskedPaths()[1];
  EXPECT_EQ(asked.owner, screen.Window());
  EXPECT_EQ(asked.title, "Target");
  EXPECT_EQ(asked.suggested, kTarget);
  EXPECT_FALSE(asked.forSaving);
  EXPECT_FALSE(asked.folder);
}

TEST_F(RendlinkDialogTest, BrowsesForTheFolder) {
  Begin();
  screen.Type(kTarget_, kTarget);
  screen.ChooseNextPath("/games/saves");
  screen.Click(kBrowseFolder);
  EXPECT_EQ(screen.Text(kFolder), "/games/saves");
  EXPECT_EQ(screen.Text(kCommand),
            "/game/kelvaro profile=Chess target=/games/race/race.sh dir=/games/saves");
  ASSERT_EQ(screen.AskedPaths().size(), 1u);
  EXPECT_EQ(screen.AskedPaths()[0].title, "Folder");
  EXPECT_TRUE(screen.AskedPaths()[0].folder);
}

TEST_F(RendlinkDialogTest, SavesWhereThePersonSays) {
  Begin();
  Fill();
  screen.ChooseNextPath("/home/player/Desktop/Race.desktop");
  screen.Click(kSave);
  ASSERT_EQ(screen.AskedPaths().size(), 1u);
  EXPECT_EQ(screen.AskedPaths()[0].title, "Save Launcher");
  EXPECT_EQ(screen.AskedPaths()[0].suggested, "/home/player/Desktop/race.desktop");
  EXPECT_TRUE(screen.AskedPaths()[0].forSaving);
  const auto file = sim.Disk().FileBytes("/home/player/Desktop/Race.desktop");
  ASSERT_TRUE(file);
  EXPECT_NE(file->find("\nExec=/game/kelvaro profile=race target=/games/race/race.sh\n"),
            std::string::npos)
      << *file;
  ExpectSuccess("The launcher was saved as \"/home/player/Desktop/Race.desktop\".");
  EXPECT_TRUE(screen.Running());
}

TEST_F(RendlinkDialogTest, TheApplicationsMenuIsMadeWhereItIsMissingAndTheEndingIsAdded) {
  Begin();
  Fill();
  screen.Choose(kPlace, "Applications menu");
  screen.ChooseNextPath("/home/player/applications/My Race");
  screen.Click(kSave);
  EXPECT_EQ(screen.AskedPaths()[0].suggested, "/home/player/applications/race.desktop");
  EXPECT_TRUE(sim.Disk().Exists("/home/player/applications/My Race.desktop"));
  ExpectSuccess("The launcher was saved as \"/home/player/applications/My Race.desktop\".");
}

TEST_F(RendlinkDialogTest, AFileThatIsThereOnlyWithTheEndingIsAskedAbout) {
  const std::string there = "/home/player/Desktop/Race.desktop";
  sim.Disk().PutFile(there, "another's");
  Begin();
  Fill();
  screen.ChooseNextPath("/home/player/Desktop/Race");
  screen.Click(kSave);
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().text, "\"" + there + "\" is there already. Replace it?");
  EXPECT_EQ(screen.Box().type, platform::MB_ICONQUESTION | platform::MB_YESNO);
  screen.Answer(platform::IDNO);
  EXPECT_EQ(sim.Disk().FileBytes(there), "another's");
  screen.ChooseNextPath("/home/player/Desktop/Race");
  screen.Click(kSave);
  screen.Answer(platform::IDYES);
  EXPECT_NE(sim.Disk().FileBytes(there), "another's");
  ExpectSuccess("The launcher was saved as \"" + there + "\".");
}

TEST_F(RendlinkDialogTest, NothingIsSavedWhereNoFileIsChosen) {
  Begin();
  Fill();
  screen.Click(kSave);
  EXPECT_TRUE(sim.Disk().List("/home/player/Desktop").empty());
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(RendlinkDialogTest, TellsWhatIsWrongBeforeItAsksForAFile) {
  Begin();
  screen.Click(kSave);
  ExpectBox("Choose a target, which is the program to start.");
  screen.Click(kStart);
  ExpectBox("Choose a target, which is the program to start.");
  EXPECT_TRUE(screen.AskedPaths().empty());
  EXPECT_TRUE(sim.Processes().Started().empty());
}

TEST_F(RendlinkDialogTest, TellsWhatWentWrongInSaving) {
  Begin();
  Fill();
  sim.SetSystemMessage(platform::simulation::ERROR_PATH_NOT_FOUND, "No such place\n");
  screen.ChooseNextPath("/none/x.desktop");
  screen.Click(kSave);
  ExpectBox("The launcher /none/x.desktop can't be written: No such place.");
}

TEST_F(RendlinkDialogTest, StartsAndStaysForMore) {
  sim.Processes().Provide({.path = "/game/kelvaro"});
  Begin();
  Fill();
  screen.Click(kStart);
  ASSERT_EQ(sim.Processes().Started().size(), 1u);
  EXPECT_EQ(sim.Processes().Started()[0].commandLine,
            "\"/game/kelvaro\" \"profile=race\" \"target=/games/race/race.sh\"");
  ExpectSuccess("Kelvaro was started. It starts the target.");
  EXPECT_TRUE(screen.Running());
}

TEST_F(RendlinkDialogTest, TellsThatKelvaroCantBeStarted) {
  Begin();
  Fill();
  sim.SetSystemMessage(2, "No such file\n");
  screen.Click(kStart);
  ExpectBox("Kelvaro can't be started: No such file.");
}

TEST_F(RendlinkDialogTest, WithoutProfilesOrKelvaroItSaysSo) {
  sim.Disk().Remove("/game/Profiles");
  Begin();
  screen.Type(kTarget_, kTarget);
  EXPECT_EQ(screen.Text(kCommand), "Choose a profile.");
  sim.Disk().Remove("/game/kelvaro");
  screen.Type(kTarget_, "/games/race/race");
  EXPECT_EQ(screen.Text(kCommand), "The program kelvaro isn't in /game, where Rendlink lies.");
}

TEST_F(RendlinkDialogTest, CloseEscAndTheCloseBoxEndIt) {
  Begin();
  screen.Click(IDCANCEL);
  EXPECT_FALSE(screen.Running());
  Begin();
  screen.Press(27);
  EXPECT_FALSE(screen.Running());
  Begin();
  screen.Close();
  EXPECT_FALSE(screen.Running());
}

TEST_F(RendlinkDialogTest, EnterSaves) {
  Begin();
  Fill();
  screen.ChooseNextPath("/home/player/Desktop/a.desktop");
  screen.Press(13);
  EXPECT_TRUE(sim.Disk().Exists("/home/player/Desktop/a.desktop"));
  ExpectSuccess("The launcher was saved as \"/home/player/Desktop/a.desktop\".");
}

TEST_F(RendlinkDialogTest, EveryControlToUseHasATip) {
  Begin();
  for (const std::uint32_t id : {kProfiles, kTarget_, kBrowseTarget, kArguments, kFolder,
                                 kBrowseFolder, kCommand, kPlace, kSave, kStart})
    EXPECT_NE(screen.Hover(id), "") << id;
  EXPECT_EQ(screen.Hover(IDCANCEL), "");
}

TEST(RendlinkResources, MnemonicsAndNumbersAreUnique) {
  std::set<char> mnemonics;
  std::set<std::uint32_t> numbers;
  for (const auto& control : kDialog.controls) {
    EXPECT_TRUE(numbers.insert(control.id).second) << control.id;
    EXPECT_LE(control.x + control.width, kDialog.width) << control.id;
    EXPECT_LE(control.y + control.height, kDialog.height) << control.id;
    const char letter = kelvaro::resources::Mnemonic(control.text);
    EXPECT_TRUE(letter == 0 || mnemonics.insert(letter).second) << control.text;
  }
  EXPECT_EQ(mnemonics, (std::set<char>{'A', 'B', 'C', 'F', 'I', 'O', 'P', 'R', 'S', 'T'}));
}

}  // namespace
}  // namespace kelvaro::rendlink
