// The program `rendlink` itself, with the real Kelvaro off the screen.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>

#include "app/platform/linux/descriptor.h"
#include "tests/host/refused_calls.h"
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
  // The same with a script in Kelvaro's place, in which "$rendlink" $carry is the carrier's start.
  std::unique_ptr<Child> PlayWith(const std::string& kelvaro, const Words& options) {
    const std::string folder = home.In("programs");
    fs::create_directories(folder + "/Profiles");
    fs::copy_file(Program("rendlink"), folder + "/rendlink");
    fs::copy_file(Program("Profiles/Desktop.idprof"), folder + "/Profiles/Desktop.idprof");
    PutScript(folder + "/kelvaro",
              "rendlink=${0%/*}/rendlink\n"
              "for word; do case $word in args=*) carry=${word#args=}; esac; done\n" +
                  kelvaro + "\n");
    Words arguments = {"--profile", "Desktop"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments, kOffScreen, folder + "/rendlink");
  }
  // What a running game has printed as a line of its own: numbers of processes.
  std::vector<pid_t> Printed(const Child& child, std::size_t count) const {
    std::vector<pid_t> numbers;
    Eventually([&] {
      numbers.clear();
      std::istringstream text(child.Out());
      for (pid_t number; text >> number;) numbers.push_back(number);
      return numbers.size() == count && child.Out().ends_with('\n');
    });
    numbers.resize(count);
    return numbers;
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
               {data + "/game", 127, "Not a directory"},
               {data, 126, "Permission denied"},
               {home.folder, 126, "Is a directory"}};
  for (const auto& row : kRows) {
    const auto child = Play({row.game});
    EXPECT_EQ(child->WaitForEnd(), row.status);
    EXPECT_EQ(child->Log(), "rendlink: " + row.game + ": " + row.reason + "\n");
  }
}

// The system looks at these when they are to run.
TEST_F(RendlinkProgramTest, AScriptWithoutItsInterpreterIsToldAsAShellDoes) {
  const std::string data = Put(home.In("data-file"), "text");
  const struct {
    std::string interpreter;
    int status;
    const char* reason;
  } kRows[] = {{"/no/such/shell", 127, "No such file or directory"},
               {data, 126, "Permission denied"}};
  for (const auto& row : kRows) {
    const std::string game = Put(home.In("script"), "#!" + row.interpreter + "\n", 0755);
    const auto child = Play({game});
    EXPECT_EQ(child->WaitForEnd(), row.status);
    EXPECT_TRUE(child->Err().ends_with("rendlink: " + game + ": " + row.reason + "\n"))
        << child->Log();
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

TEST_F(RendlinkProgramTest, ASignalThatCameTooLateForKelvaroGoesToTheGame) {
  const auto child =
      PlayWith("trap '\"$rendlink\" $carry; exit' TERM\necho ready\nwhile :; do sleep 0.05; done",
               {"--", Script("while :; do sleep 0.05; done")});
  ASSERT_TRUE(Eventually([&] { return Says(*child, "ready\n"); })) << child->Log();
  child->Signal(SIGTERM);
  EXPECT_EQ(child->WaitForEnd(), 128 + SIGTERM) << child->Log();
}

TEST_F(RendlinkProgramTest, ASignalAfterTheGamesEndEndsKelvaro) {
  const auto child = PlayWith(
      "\"$rendlink\" $carry\ntrap 'echo asked; exit' TERM\necho over\n"
      "while :; do sleep 0.05; done",
      {"--", Script("exit 4")});
  ASSERT_TRUE(Eventually([&] { return Says(*child, "over\n"); })) << child->Log();
  EXPECT_EQ(child->WaitForEnd(300ms), -1) << child->Log();
  child->Signal(SIGINT);
  EXPECT_EQ(child->WaitForEnd(), 4) << child->Log();
  EXPECT_TRUE(Says(*child, "asked\n")) << child->Log();
}

TEST_F(RendlinkProgramTest, ASignalToTheCarrierGoesToTheGame) {
  const auto child = Play({Script("trap 'exit 5' TERM\necho $PPID\nwhile :; do sleep 0.05; done")});
  const pid_t carrier = Printed(*child, 1)[0];
  ASSERT_GT(carrier, 0) << child->Log();
  kill(carrier, SIGTERM);
  EXPECT_EQ(child->WaitForEnd(), 5) << child->Log();
}

TEST_F(RendlinkProgramTest, OfAGameWhoseCarrierIsKilledNobodyKnowsTheEnd) {
  const auto child = Play({Script("echo $PPID $$\nexec sleep 600")});
  const std::vector<pid_t> carrierAndGame = Printed(*child, 2);
  ASSERT_GT(carrierAndGame[1], 0) << child->Log();
  kill(carrierAndGame[0], SIGKILL);
  EXPECT_EQ(child->WaitForEnd(), 1);
  EXPECT_TRUE(
      child->Err().ends_with("rendlink: the game was begun, and nobody can tell how it ended\n"))
      << child->Log();
  kill(carrierAndGame[1], SIGKILL);
}

TEST_F(RendlinkProgramTest, AGameWhoseRendlinkIsKilledGoesOn) {
  const std::string flag = home.In("flag");
  const std::string out = home.In("out");
  const auto child = PlayWith(
      "\"$rendlink\" $carry\necho $? >" + out,
      {"--", Script("echo ready\nwhile [ ! -e " + flag + " ]; do sleep 0.05; done\nexit 4")});
  ASSERT_TRUE(Eventually([&] { return Says(*child, "ready\n"); })) << child->Log();
  child->Signal(SIGKILL);
  EXPECT_EQ(child->WaitForEnd(), 128 + SIGKILL);
  Put(flag, "end");
  EXPECT_TRUE(Eventually([&] { return Content(out) == "4\n"; })) << Content(out);
  ASSERT_EQ(Left().size(), 1u);
  fs::remove_all(home.In("runtime/kelvaro/" + Left()[0]));
}

// As a program may leave it to those that it starts: then the system tells of no child's end.
TEST_F(RendlinkProgramTest, TheEndIsSeenWhereEndsOfChildrenAreIgnored) {
  const auto child = Run({"-c", "trap '' CHLD; exec \"$0\" \"$@\"", Program("rendlink"),
                          "--profile", "Desktop", "--", Script("exit 7")},
                         kOffScreen, "bash");
  EXPECT_EQ(child->WaitForEnd(), 7) << child->Log();
}

TEST_F(RendlinkProgramTest, AFolderThatIsGoneWhenTheGameStartsIsTold) {
  const std::string gone = home.In("gone");
  fs::create_directory(gone);
  const auto child = PlayWith("rmdir " + gone + "\n\"$rendlink\" $carry",
                              {"--dir", gone, "--", Script("echo ready")});
  EXPECT_EQ(child->WaitForEnd(), 126);
  EXPECT_EQ(child->Log(), "rendlink: " + gone + ": No such file or directory\n");
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

TEST_F(RendlinkProgramTest, AGameThatTheSystemCanNotWaitForIsNotStarted) {
  fs::create_directory(home.In("runtime/kelvaro"));
  fs::permissions(home.In("runtime/kelvaro"), fs::perms::owner_all);
  const std::string noFolder = "There is no folder in which the game could be waited for.\n";
  const struct {
    Refusal refusal;
    std::string text;
  } kRows[] = {{{SYS_mkdir, EEXIST}, noFolder},
               {{SYS_socket, EMFILE}, noFolder},
               {{SYS_bind, ENOMEM}, noFolder},
               {{SYS_listen, ENOMEM}, noFolder},
               {{SYS_signalfd4, EMFILE}, "Kelvaro can't be started: Too many open files\n"}};
  for (const auto& [refusal, text] : kRows) {
    std::unique_ptr<Child> child;
    WhereRefused({refusal}, [&] { child = Play({Script("echo ready")}); });
    EXPECT_EQ(child->WaitForEnd(), 1);
    EXPECT_EQ(child->Log(), "rendlink: " + text);
  }
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

// The other end of a carrier's connection, which sends it those bytes.
class CarrierTest : public RendlinkProgramTest {
 protected:
  CarrierTest() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, path.c_str());
    EXPECT_EQ(bind(listener.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener.Get(), 1), 0);
  }
  std::unique_ptr<Child> Carrier(const std::string& bytes) {
    auto child = Run({"--carry", path});
    connection = platform::Descriptor(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    EXPECT_EQ(send(connection.Get(), bytes.data(), bytes.size(), 0),
              static_cast<ssize_t>(bytes.size()));
    shutdown(connection.Get(), SHUT_WR);
    return child;
  }
  // With their size in front.
  static std::string Sized(const std::string& bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    return std::string(reinterpret_cast<const char*>(&size), sizeof size) + bytes;
  }

  const std::string path = home.In("carrier");
  const platform::Descriptor listener{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  platform::Descriptor connection;
};

TEST_F(CarrierTest, WhatIsNoGameIsRefused) {
  const std::string game("/bin/true\0/\0true\0", 17);
  for (const std::string& bytes :
       {std::string(), Sized(game).substr(0, 3), Sized(game).substr(0, 20),
        Sized(game.substr(0, 16)), Sized(game.substr(0, 12))}) {
    const auto child = Carrier(bytes);
    EXPECT_EQ(child->WaitForEnd(), 1);
    EXPECT_EQ(child->Log(),
              "rendlink: --carry is for Rendlink's own use, and nobody waits at " + path + "\n");
  }
  EXPECT_EQ(Carrier(Sized(game))->WaitForEnd(), 0);
}

TEST_F(CarrierTest, AGameThatTheSystemCanNotStartHasTheStatusOfOneThatWontRun) {
  std::unique_ptr<Child> child;
  WhereRefused({{SYS_signalfd4, EMFILE}},
               [&] { child = Carrier(Sized(std::string("/bin/true\0/\0true\0", 17))); });
  EXPECT_EQ(child->WaitForEnd(), 126);
  EXPECT_EQ(child->Log(), "rendlink: /bin/true: Too many open files\n");
  std::uint32_t status = 0;
  EXPECT_EQ(read(connection.Get(), &status, sizeof status), 4);
  EXPECT_EQ(status, 126u);
}

TEST_F(RendlinkProgramTest, CarryingIsForItsOwnUse) {
  for (const std::string& path : {home.In("none"), home.In("none/none"), std::string("none"),
                                  home.In(std::string(120, 'n'))}) {
    const auto child = Run({"--carry", path});
    EXPECT_EQ(child->WaitForEnd(), 1);
    EXPECT_EQ(child->Log(),
              "rendlink: --carry is for Rendlink's own use, and nobody waits at " + path + "\n");
  }
}

}  // namespace
}  // namespace kelvaro::tests
