// Instances of the program that start one another and a game, and close together.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/program/machine.h"
#include "tests/program/stored_profile.h"
#include "tests/program/stored_settings.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;

// The program in a folder of its own, with two profiles for a pad that isn't there.
class InstancesTest : public testing::Test {
 protected:
  InstancesTest() {
    // Named as no other program is here, since a launch closes every instance of its own name.
    fs::create_directories(folder);
    fs::copy_file(Program("kelvaro"), program);
    for (const char* name : {"One", "Two", "Three"}) Store(name);
    EXPECT_TRUE(StoredSettings(home).SetQuiet());
  }

  void Store(const std::string& name) {
    StoreProfile(home, folder, name, R"("deviceName":"No such pad")");
  }

  // A game: writes down its process id, its words and its folder, then waits for its end.
  std::string Game() {
    const std::string file = folder + "/game";
    return PutScript(file, "echo $$ >" + file + ".id.part\n{ printf '<%s>' \"$@\"; pwd; } >" +
                               file + ".words\nmv " + file + ".id.part " + file +
                               ".id\nexec sleep 60\n");
  }

  std::unique_ptr<Child> Run(const std::vector<std::string>& arguments) {
    auto environment = home.Environment();
    environment["QT_QPA_PLATFORM"] = "offscreen";
    std::vector<std::string> command = {program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Child>(command, ChildOptions{environment});
  }

  // Living processes of the program, oldest first; one that nobody has waited for isn't one.
  std::vector<pid_t> Running() {
    std::vector<pid_t> running;
    for (const auto& entry : fs::directory_iterator("/proc")) {
      std::error_code gone;
      if (fs::read_symlink(entry.path() / "exe", gone) == fs::path(program) && !gone)
        running.push_back(std::stoi(entry.path().filename()));
    }
    std::sort(running.begin(), running.end());
    return running;
  }
  std::string Words(pid_t process) {
    std::string words = tests::Content("/proc/" + std::to_string(process) + "/cmdline");
    std::replace(words.begin(), words.end(), '\0', ' ');
    return words;
  }
  std::string Content(const std::string& file) { return tests::Content(folder + "/" + file); }
  pid_t GameId() {
    EXPECT_TRUE(Eventually([&] { return fs::exists(folder + "/game.id"); }));
    return std::stoi(Content("game.id"));
  }
  std::size_t Sockets() {
    std::size_t sockets = 0;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(home.folder + "/runtime/kelvaro", none))
      sockets += entry.path().extension() == ".socket" ? 1u : 0u;
    return sockets;
  }

  Home home;
  const std::string folder = home.folder + "/programs";
  const std::string program = folder + "/kelvaro-launched";
};

TEST_F(InstancesTest, ThreeStartTogetherWithAGameAndEndWhenItEnds) {
  const auto first = Run({"profile=One", "profile=Two", "profile=Three", "target=" + Game(),
                          "args=-map [My Level]", "dir=" + home.folder});
  const pid_t game = GameId();
  EXPECT_EQ(Content("game.words"), "<-map><My Level>" + home.folder + "\n");
  const std::vector<pid_t> instances = Running();
  ASSERT_EQ(instances.size(), 3u) << first->Log();
  EXPECT_NE(Words(instances[1]).find("profile=Two"), std::string::npos);
  EXPECT_NE(Words(instances[2]).find("profile=Three"), std::string::npos);
  EXPECT_EQ(Sockets(), 3u);

  kill(game, SIGKILL);
  // The order of their ends: Two, Three, then the first.
  ASSERT_TRUE(Eventually([&] { return Running().size() < 3; })) << first->Log();
  EXPECT_TRUE(Eventually([&] { return kill(instances[1], 0) != 0; }));
  EXPECT_TRUE(first->Running());
  EXPECT_TRUE(Eventually([&] { return kill(instances[2], 0) != 0; }));
  EXPECT_EQ(first->WaitForEnd(), 0) << first->Log();
  EXPECT_TRUE(Running().empty());
  EXPECT_EQ(Sockets(), 0u);
}

// As shells hand them over: a word may bring the characters that stand for quotes.
TEST_F(InstancesTest, WordsWithBlanksAndWithQuotesOfTheirOwnMeanWhatTheySay) {
  Store("My Game");
  const struct {
    std::vector<std::string> arguments;  // besides the target
    const char* profile;                 // that was open at the end
    const char* words;                   // of the game, "<>" for none
  } kCases[] = {
      {{"profile=My Game", "args=|-map [My Level]|"}, "My Game", "<-map><My Level>"},
      {{"profile=|My Game|", "args=-map [My Level]"}, "My Game", "<-map><My Level>"},
      {{"|My Game|", "args=-map\t[My Level]"}, "My Game", "<-map><My Level>"},
      {{"profile=\"My Game\""}, "My Game", "<>"},
      {{"My Game", "foo", "args=one", "args=two"}, "My Game", "<two>"},
      {{"foo=bar", "my"}, "My Game", "<>"},
      {{"PROFILE=t", "ARGS=[] x"}, "Three", "<><x>"},
      {{"profile=One", "dir="}, "One", "<>"},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.arguments.front());
    for (const char* file : {"/game.id", "/game.words"}) fs::remove(folder + file);
    std::vector<std::string> arguments = row.arguments;
    arguments.push_back("target=" + Game());
    const auto program = Run(arguments);
    const pid_t game = GameId();
    EXPECT_EQ(Content("game.words"), std::string(row.words) + folder + "\n");
    kill(game, SIGKILL);
    EXPECT_EQ(program->WaitForEnd(), 0) << program->Log();
    EXPECT_EQ(StoredSettings(home).Text("Last Profile"), row.profile);
  }
}

TEST_F(InstancesTest, ALaunchTakesThePlaceOfWhateverInstanceWasRunning) {
  const auto shown = Run({});
  ASSERT_TRUE(Eventually([&] { return Sockets() == 1; })) << shown->Log();
  const auto second = Run({"profile=Two", "target=" + Game()});
  const pid_t game = GameId();
  EXPECT_EQ(shown->WaitForEnd(), 0) << shown->Log();
  EXPECT_EQ(Running().size(), 1u);
  kill(game, SIGKILL);
  EXPECT_EQ(second->WaitForEnd(), 0) << second->Log();
}

TEST_F(InstancesTest, AnInstanceThatWasKilledLeavesNothingInTheWay) {
  const auto killed = Run({});
  ASSERT_TRUE(Eventually([&] { return Sockets() == 1; })) << killed->Log();
  killed->Signal(SIGKILL);
  EXPECT_EQ(killed->WaitForEnd(), 128 + SIGKILL);
  const auto next = Run({"profile=One", "target=" + Game()});
  const pid_t game = GameId();
  EXPECT_TRUE(Eventually([&] { return Sockets() == 1; }));  // its own
  kill(game, SIGKILL);
  EXPECT_EQ(next->WaitForEnd(), 0) << next->Log();
  EXPECT_EQ(Sockets(), 0u);
}

TEST_F(InstancesTest, EndingTheProgramLeavesTheGameRunning) {
  const auto first = Run({"profile=One", "target=" + Game()});
  const pid_t game = GameId();
  first->Signal(SIGTERM);
  EXPECT_EQ(first->WaitForEnd(), 0) << first->Log();
  EXPECT_EQ(kill(game, 0), 0);
  kill(game, SIGKILL);
}

TEST_F(InstancesTest, AGameThatEndsAtOnceEndsTheProgram) {
  const auto first = Run({"profile=One", "target=/bin/true"});
  EXPECT_EQ(first->WaitForEnd(), 0) << first->Log();
}

// A thread that is ended by force stands still until the process ends; one that ends by itself is
// seen in its own call to exit.
TEST_F(InstancesTest, ThePersonNeedNotReadThatTheTargetFailedBeforeTheProgramEnds) {
  const auto failed = Run({"profile=One", "target=" + folder + "/gone"});
  pid_t launcher = 0;
  ASSERT_TRUE(Eventually([&] {
    launcher = ThreadOf(failed->Id(), "launcher");
    return launcher != 0;
  })) << failed->Log();
  if (ptrace(PTRACE_SEIZE, launcher, nullptr, PTRACE_O_TRACEEXIT) != 0)
    GTEST_SKIP() << "no process may watch another one here";
  const auto next = Run({"profile=Two", "target=/bin/true"});  // closes whatever runs
  int event = 0;
  EXPECT_TRUE(Eventually([&] { return waitpid(launcher, &event, __WALL | WNOHANG) == launcher; }));
  EXPECT_EQ(event >> 8, SIGTRAP | (PTRACE_EVENT_EXIT << 8));
  long call = -1;
  std::ifstream("/proc/" + std::to_string(launcher) + "/syscall") >> call;
  EXPECT_EQ(call, SYS_exit);
  ptrace(PTRACE_DETACH, launcher, nullptr, nullptr);
  EXPECT_EQ(failed->WaitForEnd(), 0) << failed->Log();
  EXPECT_EQ(next->WaitForEnd(), 0) << next->Log();
}

// A launch waits half a second at most for an instance that is stopped, and leaves it there.
TEST_F(InstancesTest, AnInstanceThatDoesNotAnswerHoldsUpNobodyForLong) {
  const auto stopped = Run({});
  // Not in the middle of its start, with the settings locked.
  ASSERT_TRUE(Eventually([&] {
    return ThreadOf(stopped->Id(), "repeat") != 0 && IsAsleep(stopped->Id());
  })) << stopped->Log();
  stopped->Signal(SIGSTOP);
  const auto second = Run({"profile=Two", "target=" + Game()});
  const pid_t game = GameId();
  kill(game, SIGKILL);
  EXPECT_EQ(second->WaitForEnd(), 0) << second->Log();
  stopped->Signal(SIGCONT);
  stopped->Signal(SIGTERM);
  EXPECT_EQ(stopped->WaitForEnd(), 0) << stopped->Log();
}

}  // namespace
}  // namespace kelvaro::tests
