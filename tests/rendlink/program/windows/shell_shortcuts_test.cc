#include "rendlink/program/windows/shell_shortcuts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/platform/platform.h"
#include "foundation/paths.h"
#include "tests/host/files.h"

// Last.
#include "app/platform/windows/ui/windows_ui.h"
#include "app/platform/windows/windows_platform.h"
#include "read_shortcut.h"

namespace kelvaro::rendlink {
namespace {

class ShellShortcutsTest : public testing::Test, protected tests::TemporaryFolder {
 protected:
  std::string Saved(const LauncherFacts& facts, const std::string& path) {
    std::string refusal;
    shortcuts.Save(facts, path, &refusal);
    return refusal;
  }

  platform::WindowsPlatform system;
  platform::ui::WindowsUi ui;  // brings COM
  const platform::InstalledPlatform installed{system.Groups()};
  ShellShortcuts maker;
  Shortcuts shortcuts{maker};
  const std::string kelvaro = tests::Put(In("Kelvaro \xC3\xA9\\kelvaro.exe"), "program");
};

TEST_F(ShellShortcutsTest, TheShellReadsWhatWasPutIn) {
  const std::string game = tests::Put(In("J\xC3\xBCmp \xE6\x97\xA5\\game.exe"), "game");
  const std::string file =
      In("R\xC3\xA4"
         "ce \xF0\x9F\x8E\xAE.lnk");
  EXPECT_EQ(Saved({"Starts J\xC3\xBCmp",
                   game,
                   {kelvaro,
                    "profile=R\xC3\xA4"
                    "ce 2",
                    "target=" + game, "args=-x [a b] 100% '"}},
                  file),
            "");
  const auto held = ReadShortcut(file);
  ASSERT_TRUE(held);
  EXPECT_EQ(held->program, kelvaro);
  EXPECT_EQ(held->arguments,
            "\"profile=R\xC3\xA4"
            "ce 2\" \"target=" +
                game + "\" \"args=-x [a b] 100% '\"");
  EXPECT_EQ(held->comment, "Starts J\xC3\xBCmp");
  EXPECT_EQ(held->icon, game);
}

TEST_F(ShellShortcutsTest, ASecondOneReplacesTheFirst) {
  const std::string file = In("a.lnk");
  EXPECT_EQ(Saved({std::string(200, 'x'), "g", {kelvaro, "profile=A"}}, file), "");
  EXPECT_EQ(Saved({"", "g", {kelvaro, "profile=B"}}, file), "");
  const auto held = ReadShortcut(file);
  ASSERT_TRUE(held);
  EXPECT_EQ(held->arguments, "\"profile=B\"");
  EXPECT_EQ(held->comment, "");
}

TEST_F(ShellShortcutsTest, LongPathsGoInAndOneMayLieAtALongPath) {
  std::string long_ = folder;
  while (long_.size() < 300) long_ += "\\" + std::string(40, 'x');
  ASSERT_TRUE(CreateFolders(TextOf(long_)));
  const std::string file = long_ + "\\a.lnk";
  EXPECT_EQ(Saved({"", "g", {kelvaro, "target=" + long_ + "\\g.exe"}}, file), "");
  const auto held = ReadShortcut(file);
  ASSERT_TRUE(held);
  EXPECT_EQ(held->arguments, "\"target=" + long_ + "\\g.exe\"");
  EXPECT_EQ(held->program, kelvaro);
  std::error_code ignored;
  std::filesystem::remove_all("\\\\?\\" + folder, ignored);
}

TEST_F(ShellShortcutsTest, WhereAFolderIsInTheWayItSaysSo) {
  const std::string file = In("a.lnk");
  std::filesystem::create_directory(file);
  EXPECT_EQ(Saved({"", "g", {kelvaro, "profile=A"}}, file).rfind("The launcher " + file, 0), 0u);
  EXPECT_EQ(Saved({"", "g", {kelvaro, "profile=A"}}, In("none\\a.lnk"))
                .rfind("The launcher " + In("none\\a.lnk") + " can't be written: ", 0),
            0u);
}

}  // namespace
}  // namespace kelvaro::rendlink
