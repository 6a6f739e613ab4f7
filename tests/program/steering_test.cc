// Windows and runs under the hands of kelvaroctl: each a process.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/host/json.h"
#include "tests/program/own_programs.h"

namespace kelvaro::tests {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kA = 38;  // X key code

// What kelvaroctl did to the end.
struct Said {
  int status = -1;
  std::string out;
  std::string err;
};

class SteeringTest : public OwnPrograms {
 protected:
  SteeringTest() : OwnPrograms({"One", "Two"}, MembersWith("5")) {}

  static std::string MembersWith(const std::string& interval) {
    return R"("deviceName":"Test Pad","pollInterval":)" + interval +
           R"(,"controls":[{"buttonMask":"0x1","actions":[{"text":"a"}]}])";
  }

  std::unique_ptr<Child> Start(const std::string& program, const std::vector<std::string>& words,
                               const std::string& display = "") {
    auto environment = home.Environment();
    environment["DISPLAY"] = display;
    environment["QT_QPA_PLATFORM"] = "offscreen";
    std::vector<std::string> command = {folder + "/" + program};
    command.insert(command.end(), words.begin(), words.end());
    return std::make_unique<Child>(command, ChildOptions{environment});
  }
  Said Ctl(const std::vector<std::string>& words) {
    const auto child = Start("kelvaroctl", words);
    Said said;
    said.status = child->WaitForEnd(60s);
    said.out = child->Out();
    said.err = child->Err();
    return said;
  }
  static std::string Pid(const std::unique_ptr<Child>& child) {
    return std::to_string(child->Id());
  }
  // What status says of that one; null while it doesn't answer.
  tests::Json StatusOf(const std::unique_ptr<Child>& child) {
    const Said said = Ctl({"status", "--json", "-i", Pid(child)});
    return said.out.empty() ? tests::Json() : tests::Parsed(said.out);
  }
  // A window that answers.
  std::unique_ptr<Child> Window() {
    auto window = Start("kelvaro", {});
    EXPECT_TRUE(Eventually([&] { return StatusOf(window)["profile"].Text() == "One"; }, 60s))
        << window->Log();
    return window;
  }
  // A follower that is told all from here on.
  std::unique_ptr<Child> Follower(std::vector<std::string> words = {}) {
    words.insert(words.begin(), "follow-events");
    auto follower = Start("kelvaroctl", words);
    EXPECT_TRUE(
        Eventually([&] { return follower->Out().find("\"following\"") != std::string::npos; }, 60s))
        << follower->Log();
    return follower;
  }
  static std::string Line(const std::unique_ptr<Child>& child, const std::string& event) {
    return "{\"process\":" + Pid(child) + ",\"event\":\"" + event + "\"}\n";
  }
  static bool Tells(const std::unique_ptr<Child>& follower, const std::string& text) {
    return Eventually([&] { return follower->Out().find(text) != std::string::npos; }, 60s);
  }
  std::size_t Sockets() {
    std::size_t sockets = 0;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(home.In("runtime/kelvaro"), none))
      sockets += entry.path().extension() == ".steering" ? 1u : 0u;
    return sockets;
  }
};

TEST_F(SteeringTest, OfTwoWindowsOneIsNamedOrBothDoIt) {
  const auto first = Window();
  const auto second = Window();
  EXPECT_EQ(Ctl({"select", "Two", "-i", Pid(second)}).status, 0);
  EXPECT_EQ(StatusOf(first)["profile"].Text(), "One");
  EXPECT_EQ(StatusOf(second)["profile"].Text(), "Two");
  const Said paused = Ctl({"pause"});
  EXPECT_EQ(paused.status, 0) << paused.err;
  EXPECT_NE(paused.out.find(Pid(first) + ": paused\n"), std::string::npos);
  EXPECT_NE(paused.out.find(Pid(second) + ": paused\n"), std::string::npos);
  EXPECT_EQ(tests::Written(StatusOf(first)["paused"]), "true");
  EXPECT_EQ(Ctl({"resume", "-i", Pid(first)}).status, 0);
  EXPECT_EQ(tests::Written(StatusOf(first)["paused"]), "false");
  EXPECT_EQ(tests::Written(StatusOf(second)["paused"]), "true");
  const Said none = Ctl({"select", "Three"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find(Pid(first) + ": there is no stored profile 'Three'"), std::string::npos);
  EXPECT_NE(none.err.find(Pid(second) + ": there is no stored profile 'Three'"), std::string::npos);
}

TEST_F(SteeringTest, AFollowerSeesTheProfileThePauseAndTheEnd) {
  const auto window = Window();
  const auto follower = Follower();
  Ctl({"select", "Two"});
  EXPECT_TRUE(Tells(follower, "\"event\":\"profile\"")) << follower->Log();
  EXPECT_TRUE(Tells(follower, "\"name\":\"Two\"")) << follower->Log();
  Ctl({"pause"});
  EXPECT_TRUE(Tells(follower, "\"event\":\"paused\"")) << follower->Log();
  window->Signal(SIGTERM);
  EXPECT_TRUE(Tells(follower, "\"event\":\"ended\"")) << follower->Log();
  EXPECT_EQ(window->WaitForEnd(60s), 0);
  EXPECT_EQ(Sockets(), 0u);
  ExpectEndsByCtrlC(*follower);
}

TEST_F(SteeringTest, AFollowerOfOneEndsWithIt) {
  const auto window = Window();
  const auto other = Window();
  const auto follower = Follower({"-i", Pid(window)});
  EXPECT_EQ(Ctl({"pause", "-i", Pid(other)}).status, 0);
  window->Signal(SIGTERM);
  EXPECT_EQ(follower->WaitForEnd(60s), 0) << follower->Log();
  EXPECT_EQ(follower->Out(), Line(window, "following") + Line(window, "ended"));
  const auto asked = Follower({"-i", Pid(other)});
  ExpectEndsByCtrlC(*asked);
}

TEST_F(SteeringTest, AFollowerHearsOfThoseThatStartLater) {
  const auto follower = Start("kelvaroctl", {"follow-events"});
  ASSERT_TRUE(Eventually([&] { return !follower->Err().empty(); }, 60s));
  EXPECT_EQ(follower->Err(), "No Kelvaro runs; its events are printed as soon as one does.\n");
  for (const int signal : {SIGTERM, SIGKILL}) {
    const auto first = Window();
    EXPECT_TRUE(Tells(follower, Line(first, "following"))) << follower->Log();
    const auto second = Window();
    EXPECT_TRUE(Tells(follower, Line(second, "following"))) << follower->Log();
    EXPECT_EQ(Ctl({"pause", "-i", Pid(second)}).status, 0);
    EXPECT_TRUE(Tells(follower, "{\"process\":" + Pid(second) + ",\"event\":\"paused\""))
        << follower->Log();
    first->Signal(signal);
    EXPECT_TRUE(Tells(follower, Line(first, "ended"))) << follower->Log();
    second->Signal(signal);
    EXPECT_TRUE(Tells(follower, Line(second, "ended"))) << follower->Log();
  }
  ExpectEndsByCtrlC(*follower);
}

TEST_F(SteeringTest, AFollowerWhoseReaderIsGoneEnds) {
  const auto window = Window();
  int pipe[2];
  ASSERT_EQ(pipe2(pipe, O_CLOEXEC), 0);
  const std::string out = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(pipe[1]);
  Child shell({"sh", "-c", "exec \"$0\" follow-events >" + out, folder + "/kelvaroctl"},
              ChildOptions{home.Environment()});
  char line[100];
  ASSERT_GT(read(pipe[0], line, sizeof line), 0);
  close(pipe[0]);
  close(pipe[1]);
  EXPECT_EQ(Ctl({"pause"}).status, 0);
  EXPECT_EQ(shell.WaitForEnd(60s), 1);
  EXPECT_EQ(shell.Err(), "kelvaroctl: the output can't be written\n");
}

TEST_F(SteeringTest, AWindowThatIsKilledIsGoneForAll) {
  const auto window = Window();
  const auto follower = Follower();
  window->Signal(SIGKILL);
  EXPECT_EQ(window->WaitForEnd(60s), 128 + SIGKILL);
  EXPECT_TRUE(Tells(follower, "\"event\":\"ended\"")) << follower->Log();
  const Said status = Ctl({"status"});
  EXPECT_EQ(status.status, 1);
  EXPECT_EQ(status.err, "kelvaroctl: no Kelvaro is running that could be asked\n");
  EXPECT_EQ(Sockets(), 0u) << "what it left is taken away";
}

TEST_F(SteeringTest, FollowersThatAreKilledOrStoppedHoldUpNobody) {
  const auto window = Window();
  const auto killed = Follower();
  const auto stopped = Follower();
  const auto third = Follower();
  stopped->Signal(SIGSTOP);
  killed->Signal(SIGKILL);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(Ctl({"pause"}).status, 0);
    EXPECT_EQ(Ctl({"resume"}).status, 0);
  }
  EXPECT_EQ(Ctl({"select", "Two"}).status, 0);
  EXPECT_TRUE(Tells(third, "\"name\":\"Two\"")) << third->Log();
  stopped->Signal(SIGCONT);
  EXPECT_TRUE(Tells(stopped, "\"name\":\"Two\"")) << stopped->Log();
}

// The window stands still; whoever asks isn't held up for ever.
TEST_F(SteeringTest, AWindowThatIsStoppedIsToldNotToAnswer) {
  const auto window = Window();
  window->Signal(SIGSTOP);
  const Said status = Ctl({"status"});
  EXPECT_EQ(status.status, 1);
  EXPECT_EQ(status.err.find("kelvaroctl: " + Pid(window) + ": it hasn't answered"), 0u)
      << status.err;
  window->Signal(SIGCONT);
  EXPECT_TRUE(Eventually([&] { return StatusOf(window)["profile"].Text() == "One"; }, 60s));
}

TEST_F(SteeringTest, AWindowThatWelcomesThePersonAnswers) {
  ASSERT_TRUE(StoredSettings(home).Set("Welcome Display", 0u));
  const auto window = Start("kelvaro", {});
  ASSERT_TRUE(Eventually([&] { return StatusOf(window)["program"].Text() == "window"; }))
      << window->Log();
  EXPECT_EQ(StatusOf(window)["profile"].Text(), "");
  const Said refused = Ctl({"select", "Two"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.err.find("has a dialog, a box or a menu open"), std::string::npos)
      << refused.err;
  EXPECT_EQ(Ctl({"pause"}).status, 0);
  EXPECT_TRUE(StatusOf(window)["paused"].Bool());
}

// As the manual has them for icewm.
TEST_F(SteeringTest, TheKeysOfTheManualPauseAndResume) {
  const std::string page = Content(Program("Help/Kelvaro/Stopping Everything.htm"));
  const std::size_t begin = page.find("<pre>\n", page.find("name=\"icewm\"")) + 6;
  fs::create_directory(home.In("icewm"));
  Put(home.In("icewm/keys"), page.substr(begin, page.find("</pre>", begin) - begin));
  auto environment = home.Environment();
  environment.erase("DISPLAY");
  environment["PATH"] = folder + ":" + std::getenv("PATH");
  environment["ICEWM_PRIVCFG"] = home.In("icewm");
  XDesktop desktop(false, "icewm", environment);
  SKIP_UNLESS(desktop.Works(), "xvfb", "no X server");
  const auto window = Window();
  const struct {
    const char* keys;
    const char* paused;
  } kCases[] = {{"Control_L+Alt_L+p", "true"},
                {"Control_L+Alt_L+r", "false"},
                {"Shift_L+Control_L+Alt_L+p", "true"}};
  for (const auto& each : kCases) {
    desktop.Type(each.keys);
    EXPECT_TRUE(
        Eventually([&] { return tests::Written(StatusOf(window)["paused"]) == each.paused; }, 60s))
        << each.keys;
  }
}

// A run that plays a button which is held, with its keys at the X server.
class SteeredRunTest : public SteeringTest {
 protected:
  void SetUp() override {
    if (access("/dev/uinput", R_OK | W_OK) == 0) GTEST_SKIP() << "keys go out by uinput here";
    SKIP_UNLESS(desktop.Works(), "xvfb", "no X server");
    const std::string recording =
        Put(folder + "/held.recording",
            R"({"recording":1,"device":"Test Pad","guid":"000102030405060708090a0b0c0d0e0f",)"
            R"("buttons":11,"axes":6,"povs":1})"
            "\n{\"t\":1,\"buttons\":[1]}\n");
    run = Start("kelvaroctl", {"run", "One", "--replay", recording, "--until", "600000"},
                desktop.Name());
    ASSERT_TRUE(Eventually([&] { return Down(); }, 60s)) << run->Log();
    ASSERT_TRUE(Eventually([&] { return StatusOf(run)["profile"].Text() == "One"; }, 60s))
        << run->Log();
  }
  bool Down() { return desktop.KeyIsDown(kA); }

  XDesktop desktop{false};
  std::unique_ptr<Child> run;
};

TEST_F(SteeredRunTest, PauseLetsGoOfTheKeyAndResumePressesItAgain) {
  const tests::Json status = StatusOf(run);
  EXPECT_EQ(status["program"].Text(), "run");
  EXPECT_EQ(status["device"].Text(), "Test Pad");
  EXPECT_EQ(tests::Written(status["deviceAnswers"]), "true");
  EXPECT_EQ(Ctl({"pause"}).status, 0);
  EXPECT_TRUE(Eventually([&] { return !Down(); }));
  EXPECT_EQ(Ctl({"resume"}).status, 0);
  EXPECT_TRUE(Eventually([&] { return Down(); }, 60s));
  EXPECT_EQ(Ctl({"release-all"}).status, 0);
  EXPECT_TRUE(Eventually([&] { return !Down(); }));
  EXPECT_EQ(tests::Written(StatusOf(run)["paused"]), "false");
  run->Signal(SIGTERM);
  EXPECT_EQ(run->WaitForEnd(60s), 0) << run->Log();
  EXPECT_EQ(Sockets(), 0u);
}

TEST_F(SteeredRunTest, SelectGoesOnWithTheOtherProfile) {
  const auto follower = Follower();
  EXPECT_EQ(Ctl({"select", "Two"}).status, 0);
  EXPECT_EQ(StatusOf(run)["profile"].Text(), "Two");
  EXPECT_TRUE(Tells(follower, "\"event\":\"controlFired\"")) << follower->Log();
  EXPECT_TRUE(Eventually([&] { return Down(); }, 60s));
  const Said none = Ctl({"select", "Three"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(StatusOf(run)["profile"].Text(), "Two");
  EXPECT_TRUE(Down());
  ExpectEndsByCtrlC(*run);
}

TEST_F(SteeredRunTest, AProfileThatCanNotBePolledLeavesTheRunAsItIs) {
  StoreProfile(home, folder, "Never", MembersWith("0"));
  const Said never = Ctl({"select", "Never"});
  EXPECT_EQ(never.status, 1);
  EXPECT_NE(never.err.find("pollInterval: 0 ms is not from 1 to "), std::string::npos) << never.err;
  EXPECT_EQ(StatusOf(run)["profile"].Text(), "One");
  EXPECT_EQ(StatusOf(run)["device"].Text(), "Test Pad");
  EXPECT_TRUE(Down());
  ExpectEndsByCtrlC(*run);
}

TEST_F(SteeredRunTest, KilledItHoldsNothingAndIsGone) {
  const auto follower = Follower();
  run->Signal(SIGKILL);
  EXPECT_EQ(run->WaitForEnd(60s), 128 + SIGKILL);
  EXPECT_TRUE(Eventually([&] { return !Down(); }, 60s));
  EXPECT_TRUE(Tells(follower, "\"event\":\"ended\"")) << follower->Log();
  EXPECT_EQ(Ctl({"status"}).status, 1);
}

}  // namespace
}  // namespace kelvaro::tests
