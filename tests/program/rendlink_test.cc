// The program `rendlink` itself, with the real Kelvaro off the screen.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "tests/program/machine.h"
#include "tests/program/stored_settings.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class RendlinkProgramTest : public testing::Test {
 protected:
  RendlinkProgramTest() { EXPECT_TRUE(StoredSettings(home).SetQuiet()); }
  void TearDown() override {
    EXPECT_EQ(Left(), Words{});
    EXPECT_EQ(Profiles(), before);
  }

  // What is still there of Rendlink's own.
  Words Left() const {
    Words left;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(home.In("runtime/kelvaro"), missing))
      left.push_back(entry.path().filename().string());
    return left;
  }
  static std::map<std::string, std::string> Profiles() {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::directory_iterator(Program("Profiles")))
      all[entry.path().filename().string()] = Content(entry.path().string());
    return all;
  }
  // Texts of a file, each with a zero byte behind it.
  static Words Texts(const std::string& file) {
    Words texts;
    const std::string bytes = Content(file);
    for (std::size_t at = 0; at < bytes.size();) {
      const std::size_t end = bytes.find('\0', at);
      texts.push_back(bytes.substr(at, end - at));
      at = end == std::string::npos ? bytes.size() : end + 1;
    }
    return texts;
  }
  // A program of the shell.
  std::string Script(const std::string& text, const std::string& name = "game.sh") {
    return PutScript(home.In(name), text + "\n");
  }
  std::unique_ptr<Child> Run(const Words& arguments,
                             const std::map<std::string, std::string>& more = kOffScreen,
                             const std::string& program = Program("rendlink")) {
    Words command = {program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto variables = home.Environment();
    for (const auto& [name, value] : more) variables[name] = value;
    return std::make_unique<Child>(command, ChildOptions{variables});
  }
  std::unique_ptr<Child> Play(const Words& game,
                              const std::map<std::string, std::string>& more = kOffScreen) {
    Words arguments = {"--profile", "Desktop", "--"};
    arguments.insert(arguments.end(), game.begin(), game.end());
    return Run(arguments, more);
  }
  // The Kelvaro that offers its windows in this home.
  pid_t KelvaroId() const {
    for (const std::string& name : Left())
      if (name.ends_with(".socket")) return std::stoi(name);
    return 0;
  }
  bool Says(const Child& child, const std::string& text) const {
    return child.Log().find(text) != std::string::npos;
  }

  static const std::map<std::string, std::string> kOffScreen;
  Home home;
  const std::map<std::string, std::string> before = Profiles();
};

const std::map<std::string, std::string> RendlinkProgramTest::kOffScreen = {
    {"QT_QPA_PLATFORM", "offscreen"}};

TEST_F(RendlinkProgramTest, EveryByteOfTheArgumentsReachesTheGameAndItsStatusComesBack) {
  const std::string out = home.In("out");
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  const Words arguments = {all,     "",     "a b", "\"q\"", "[x]",         "p|q", "%f",
                           "$HOME", "`ls`", "--",  "\n",    "profile=Two", "'",   "-h"};
  Words game = {Script("printf '%s\\0' \"$PWD\" \"$STEAM_GAME\" \"$LD_PRELOAD_TEST\" \"$@\" >" +
                       out + "; echo to the screen; exit 7")};
  game.insert(game.end(), arguments.begin(), arguments.end());
  auto variables = kOffScreen;
  variables["STEAM_GAME"] = "440";
  variables["LD_PRELOAD_TEST"] = "/a b|c.so";
  const auto child = Play(game, variables);
  EXPECT_EQ(child->WaitForEnd(), 7) << child->Log();
  Words expected = {fs::current_path().string(), "440", "/a b|c.so"};
  expected.insert(expected.end(), arguments.begin(), arguments.end());
  EXPECT_EQ(Texts(out), expected);
  EXPECT_TRUE(Says(*child, "to the screen\n")) << child->Log();
}

TEST_F(RendlinkProgramTest, TheGameStartsInTheFolderThatIsTold) {
  const std::string out = home.In("out");
  const std::string script = Script("printf '%s\\0' \"$PWD\" >" + out);
  const auto child = Run({"--profile", "desk", "--dir", home.In("data"), "--", script});
  EXPECT_EQ(child->WaitForEnd(), 0) << child->Log();
  EXPECT_EQ(Texts(out), Words{home.In("data")});
}

TEST_F(RendlinkProgramTest, AGameThatASignalEndsHas128AndItsNumber) {
  const auto child = Play({Script("kill -KILL $$")});
  EXPECT_EQ(child->WaitForEnd(), 128 + SIGKILL) << child->Log();
}

TEST_F(RendlinkProgramTest, SignalsGoToTheGame) {
  struct {
    int signal;
    const char* name;
  } const kRows[] = {{SIGTERM, "TERM"}, {SIGINT, "INT"}, {SIGHUP, "HUP"}};
  for (const auto& row : kRows) {
    const auto child = Play({Script(std::string("trap 'echo got ") + row.name + "; exit 5' " +
                                    row.name + "\necho ready\nwhile :; do sleep 0.05; done")});
    ASSERT_TRUE(Eventually([&] { return Says(*child, "ready\n"); })) << child->Log();
    child->Signal(row.signal);
    EXPECT_EQ(child->WaitForEnd(), 5) << child->Log();
    EXPECT_TRUE(Says(*child, std::string("got ") + row.name)) << child->Log();
  }
}

TEST_F(RendlinkProgramTest, TheGameGoesOnWhenKelvaroIsGone) {
  const std::string flag = home.In("flag");
  const auto child =
      Play({Script("echo ready\nwhile [ ! -e " + flag + " ]; do sleep 0.05; done\nexit 4")});
  ASSERT_TRUE(Eventually([&] { return Says(*child, "ready\n"); })) << child->Log();
  const pid_t kelvaro = KelvaroId();
  ASSERT_GT(kelvaro, 0);
  kill(kelvaro, SIGTERM);
  ASSERT_TRUE(Eventually([&] { return KelvaroId() == 0; }));
  EXPECT_EQ(child->WaitForEnd(300ms), -1) << child->Log();
  Put(flag, "end");
  EXPECT_EQ(child->WaitForEnd(), 4) << child->Log();
}

TEST_F(RendlinkProgramTest, AnUnknownProfileIsToldBeforeAnythingIsStarted) {
  const auto child = Run({"--profile", "Nobody", "--", Script("echo ready")});
  EXPECT_EQ(child->WaitForEnd(), 2);
  EXPECT_EQ(child->Log(), "rendlink: There is no profile whose name begins with \"Nobody\".\n");
}

TEST_F(RendlinkProgramTest, WhatCantBeDoneIsToldInOneLineAndByItsStatus) {
  const std::string none = home.In("none");
  const struct {
    Words arguments;
    int status;
    std::string refusal;
  } kRows[] = {
      {{"--dir", none, "--", Script("echo ready")}, 2, "There is no folder " + none + ".\n"},
      {{"--target", "/bin/true", "--save", none + "/a.desktop"}, 1, ""},
  };
  for (const auto& row : kRows) {
    Words arguments = {"--profile", "Desktop"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const auto child = Run(arguments);
    EXPECT_EQ(child->WaitForEnd(), row.status);
    EXPECT_TRUE(child->Log().starts_with("rendlink: " + row.refusal)) << child->Log();
  }
  const auto nobody = Run({"--profile", "Nobody", "--target", "/bin/true"});
  EXPECT_EQ(nobody->WaitForEnd(), 2);
  const std::string words = " --profile Desktop --target /bin/true >/dev/full";
  const auto full = Run({"-c", Program("rendlink") + words}, kOffScreen, "/bin/sh");
  EXPECT_EQ(full->WaitForEnd(), 1);
  EXPECT_EQ(full->Log(), "rendlink: the output can't be written\n");
}

TEST_F(RendlinkProgramTest, AGameThatCantBeRunIsToldAsAShellDoes) {
  const std::string data = Put(home.In("data-file"), "text");
  const struct {
    std::string game;
    int status;
    const char* reason;
  } kRows[] = {{"no-such-game", 127, "No such file or directory"},
               {data, 126, "Permission denied"},
               {home.folder, 126, "Is a directory"}};
  for (const auto& row : kRows) {
    const auto child = Play({row.game});
    EXPECT_EQ(child->WaitForEnd(), row.status);
    EXPECT_EQ(child->Log(), "rendlink: " + row.game + ": " + row.reason + "\n");
  }
}

TEST_F(RendlinkProgramTest, WhereKelvaroEndsBeforeTheGameBeganThereIsNoStatus) {
  const auto child = Play({Script("echo ready")}, {});
  EXPECT_EQ(child->WaitForEnd(), 1);
  EXPECT_TRUE(Says(*child, "rendlink: Kelvaro ended without having started the game\n"))
      << child->Log();
  EXPECT_FALSE(Says(*child, "ready")) << child->Log();
}

// Here in front of the welcome, which waits for a person.
TEST_F(RendlinkProgramTest, ASignalBeforeTheGameBeganEndsKelvaro) {
  fs::remove(home.SettingsFile());
  const auto child = Play({Script("echo ready")});
  ASSERT_TRUE(Eventually([&] { return KelvaroId() != 0; })) << child->Log();
  EXPECT_EQ(child->WaitForEnd(500ms), -1) << child->Log();
  child->Signal(SIGTERM);
  EXPECT_EQ(child->WaitForEnd(), 128 + SIGTERM) << child->Log();
  EXPECT_FALSE(Says(*child, "ready")) << child->Log();
}

TEST_F(RendlinkProgramTest, AScriptThatNamesNoInterpreterRunsInTheShell) {
  const auto child = Play({Put(home.In("plain"), "exit $1\n", 0755), "7"});
  EXPECT_EQ(child->WaitForEnd(), 7) << child->Log();
}

TEST_F(RendlinkProgramTest, AGameThatCouldNotBeWaitedForIsNotStarted) {
  const std::string quoted = home.In("a\"quote");
  fs::create_directory(quoted);
  const std::pair<std::string, std::string> kRows[] = {
      {home.In("none"), "There is no folder in which the game could be waited for.\n"},
      {quoted, "The path " + quoted + "/kelvaro/rendlink-"}};
  for (const auto& [runtime, refusal] : kRows) {
    auto variables = kOffScreen;
    variables["XDG_RUNTIME_DIR"] = runtime;
    const auto child = Play({Script("echo ready")}, variables);
    EXPECT_EQ(child->WaitForEnd(), 1);
    EXPECT_TRUE(child->Log().starts_with("rendlink: " + refusal)) << child->Log();
    EXPECT_FALSE(Says(*child, "ready"));
  }
  EXPECT_TRUE(fs::is_empty(quoted + "/kelvaro"));
}

TEST_F(RendlinkProgramTest, WithoutKelvaroBesideItNothingCanBeDone) {
  const std::string alone = home.In("rendlink");
  fs::copy_file(Program("rendlink"), alone);
  const Words kRows[] = {{"--profile", "Desktop", "--target", "/bin/true"},
                         {"--profile", "Desktop", "--", "/bin/true"}};
  for (const Words& arguments : kRows) {
    const auto child = Run(arguments, kOffScreen, alone);
    EXPECT_EQ(child->WaitForEnd(), 1);
    EXPECT_EQ(child->Log(),
              "rendlink: The program kelvaro isn't in " + home.folder + ", where Rendlink lies.\n");
  }
}

TEST_F(RendlinkProgramTest, TheCommandThatIsPrintedStartsTheGameInAShell) {
  const std::string out = home.In("out");
  const std::string script = Script("printf '%s\\0' \"$PWD\" \"$@\" >" + out, "my 'game' $x.sh");
  const auto printed = Run({"--profile", "Desktop", "--target", script, "--args",
                            "-map \"My  Level\" $HOME 'x'", "--dir", home.In("data")});
  ASSERT_EQ(printed->WaitForEnd(), 0) << printed->Log();
  const auto shell = Run({"-c", printed->Log()}, kOffScreen, "/bin/sh");
  EXPECT_EQ(shell->WaitForEnd(), 0) << shell->Log();
  EXPECT_EQ(Texts(out), (Words{home.In("data"), "-map", "My  Level", "$HOME", "'x'"}));
}

TEST_F(RendlinkProgramTest, StartsAndIsDone) {
  const std::string out = home.In("out");
  const std::string script = Script("printf '%s\\0' \"$@\" >" + out);
  const auto child =
      Run({"--profile", "Desktop", "--target", script, "--args", "\"a b\" c", "--start"});
  EXPECT_EQ(child->WaitForEnd(), 0) << child->Log();
  EXPECT_TRUE(Eventually([&] { return Texts(out) == Words{"a b", "c"}; }));
  EXPECT_TRUE(Eventually([&] { return KelvaroId() == 0; }));
}

TEST_F(RendlinkProgramTest, SavesALauncherThatItsOwnerMayStart) {
  const std::string file = home.In("My Game.desktop");
  const std::string script = Script("exit 0");
  Put(home.In("game.png"), "picture");
  const auto child =
      Run({"--profile", "desk", "--target", script, "--args", "100% \"x\"", "--save", file});
  EXPECT_EQ(child->WaitForEnd(), 0) << child->Log();
  EXPECT_EQ(child->Log(), "");
  EXPECT_EQ(Content(file),
            "[Desktop Entry]\nType=Application\nName=My Game\n"
            "Comment=Starts game with the profile Desktop\nExec=" +
                Program("kelvaro") + " profile=Desktop target=" + script +
                " \"args=100%% [x]\"\nIcon=" + home.folder +
                "/game.png\nTerminal=false\nCategories=Game;\n");
  EXPECT_NE(fs::status(file).permissions() & fs::perms::owner_exec, fs::perms::none);
}

TEST_F(RendlinkProgramTest, WithoutADisplayTheWindowSaysSoInOneSentence) {
  const auto child = Run({}, {});
  EXPECT_EQ(child->WaitForEnd(), 1);
  const std::string text = child->Log();
  EXPECT_EQ(text.find("rendlink: there is no display"), 0u) << text;
  EXPECT_NE(text.find("rendlink --help"), std::string::npos) << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
}

TEST_F(RendlinkProgramTest, TheWindowComesUpAndEndsWhenItIsAskedTo) {
  const auto child = Run({});
  EXPECT_EQ(child->WaitForEnd(1s), -1) << child->Log();
  EXPECT_TRUE(Eventually([&] { return Handles(child->Id(), SIGTERM); })) << child->Log();
  child->Signal(SIGTERM);
  EXPECT_EQ(child->WaitForEnd(), 0) << child->Log();
}

TEST_F(RendlinkProgramTest, CarryingIsForItsOwnUse) {
  const auto child = Run({"--carry", home.In("none")});
  EXPECT_EQ(child->WaitForEnd(), 1);
  EXPECT_EQ(child->Log(), "rendlink: --carry is for Rendlink's own use, and nobody waits at " +
                              home.In("none\n"));
}

}  // namespace
}  // namespace kelvaro::tests
