#include "rendlink/shortcuts.h"

#include <optional>

#include "tests/rendlink/rendlink_fixture.h"

namespace kelvaro::rendlink {
namespace {

constexpr char kFile[] = "/home/player/Desktop/My Race.lnk";

class NotedMaker final : public ShortcutMaker {
 public:
  bool Make(const Shortcut& shortcut, std::string* bytes, std::string* error) override {
    if (!failure.empty()) {
      *error = failure;
      return false;
    }
    made = shortcut;
    *bytes = "shortcut";
    return true;
  }

  std::string failure;
  std::optional<Shortcut> made;
};

class ShortcutsTest : public RendlinkTest {
 protected:
  ShortcutsTest() {
    sim.Disk().SetProgramPath("/game/rendlink.exe");
    sim.Disk().PutFile("/game/kelvaro.exe", "program");
    sim.Disk().PutFile(kGame, "game");
  }

  Shortcut Saved(const LauncherFacts& facts) {
    std::string refusal;
    EXPECT_TRUE(shortcuts.Save(facts, kFile, &refusal)) << refusal;
    return maker.made.value_or(Shortcut{});
  }
  std::string Refused(const LauncherFacts& facts, const std::string& path = kFile) {
    std::string refusal;
    EXPECT_FALSE(shortcuts.Save(facts, path, &refusal));
    EXPECT_FALSE(sim.Disk().Exists(path));
    return refusal;
  }
  LauncherFacts Facts(const std::string& target = kGame) {
    return {"Starts it", target, {"/game/kelvaro.exe", "profile=Race 2", "target=" + target}};
  }

  static constexpr char kGame[] = "/games/race/Race.EXE";
  NotedMaker maker;
  Shortcuts shortcuts{maker};
};

TEST_F(ShortcutsTest, AShortcutStartsKelvaroWithTheOtherWords) {
  const Ready ready = ReadyFor({{"Race 2"}, kGame, "-map \"My Level\"", ""});
  const Shortcut made = Saved({"Starts Race", kGame, ready.words});
  EXPECT_EQ(made.program, "/game/kelvaro.exe");
  EXPECT_EQ(made.arguments,
            "\"profile=Race 2\" \"target=/games/race/Race.EXE\" \"args=-map [My Level]\"");
  EXPECT_EQ(made.comment, "Starts Race");
  EXPECT_EQ(sim.Disk().FileBytes(kFile), "shortcut");
}

TEST_F(ShortcutsTest, ItsPictureIsTheTargetsOwn) {
  EXPECT_EQ(Saved(Facts()).icon, kGame);
  sim.Disk().PutFile("/games/race/race.png", "");
  EXPECT_EQ(Saved(Facts("/games/race/race.sh")).icon, "/game/kelvaro.exe")
      << "which has none, and shortcuts show no PNG files";
  sim.Disk().PutFile("/games/race/icon.ico", "");
  EXPECT_EQ(Saved(Facts("/games/race/race.sh")).icon, "/games/race/icon.ico");
  EXPECT_EQ(Saved(Facts()).icon, "/games/race/icon.ico");
  sim.Disk().PutFile("/games/race/Race.ico", "");
  EXPECT_EQ(Saved(Facts()).icon, "/games/race/Race.ico");
}

TEST_F(ShortcutsTest, APathThatIsTooLongForAPictureIsLeftOut) {
  const std::string fits = "/" + std::string(254, 'x') + ".exe";
  EXPECT_EQ(Saved(Facts(fits)).icon, fits);
  EXPECT_EQ(Saved(Facts("/" + fits)).icon, "/game/kelvaro.exe");
}

TEST_F(ShortcutsTest, RefusesAPathOfKelvaroThatIsTooLong) {
  LauncherFacts facts = Facts();
  // Of 259 units of UTF-16, the game pad being two of them.
  facts.words[0] = "/\xF0\x9F\x8E\xAE" + std::string(256, 'x');
  Saved(facts);
  sim.Disk().Remove(kFile);
  facts.words[0] += "\xC3\xA9";
  EXPECT_EQ(Refused(facts),
            "The path " + facts.words[0] +
                " is longer than a shortcut can hold. Move Kelvaro to a folder with a shorter "
                "path.");
}

TEST_F(ShortcutsTest, RefusesWhatNoLauncherHolds) {
  LauncherFacts facts = Facts();
  facts.words[1] = "profile=\xE9";
  EXPECT_EQ(Refused(facts),
            "The word \"profile=\xE9\" isn't UTF-8 text, and a launcher can't hold other.");
  facts = Facts();
  facts.comment = "a\nb";
  EXPECT_EQ(Refused(facts),
            "The comment has a control character in it, which a launcher can't hold.");
}

TEST_F(ShortcutsTest, TellsWhyThereIsNone) {
  sim.SetSystemMessage(platform::simulation::ERROR_PATH_NOT_FOUND, "No such place\n");
  EXPECT_EQ(Refused(Facts(), "/none/x.lnk"),
            "The launcher /none/x.lnk can't be written: No such place.");
  maker.failure = "Out of it";
  EXPECT_EQ(Refused(Facts()), "Windows makes no shortcut of this: Out of it.");
}

TEST_F(ShortcutsTest, ACommandIsALineInDoubleQuotes) {
  EXPECT_EQ(shortcuts.CommandText({"C:\\a b\\kelvaro.exe", "profile=x"}),
            "\"C:\\a b\\kelvaro.exe\" \"profile=x\"");
}

}  // namespace
}  // namespace kelvaro::rendlink
