#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "app/platform/simulation/virtual_processes.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

using platform::WM_CLOSE;
using platform::simulation::PostedMessage;
using platform::simulation::ProcessDescription;
using platform::simulation::StartedProcess;
using platform::simulation::VirtualProcesses;

constexpr char kGame[] = "/games/x/play";
constexpr std::uint32_t kOwn = VirtualProcesses::kOwnId;

class Launching : public MainWindowTest {
 protected:
  Launching() {
    own = sim.Disk().GetModuleFileNameA();
    ProcessDescription game;
    game.path = kGame;
    processes.Provide(game);
    ProcessDescription instance;
    instance.path = own;
    processes.Provide(instance);
  }

  void BeginWith(const std::string& arguments) {
    screen.SetCommandLine("\"" + own + "\" " + arguments);
    Begin();
  }

  void TearDown() override {
    if (!handlesStay) return MainWindowTest::TearDown();
    EXPECT_FALSE(screen.Running());
    EXPECT_EQ(sim.OpenHandles(), 2u);
  }

  bool AThreadWasEndedByForce() const {
    return std::any_of(sim.Calls().begin(), sim.Calls().end(),
                       [](const std::string& call) { return call.starts_with("TerminateThread"); });
  }

  bool handlesStay = false;  // those of an instance, where the target couldn't be started
  std::string own;
  VirtualProcesses& processes = sim.Processes();
};

TEST_F(Launching, StartsTheTargetWithItsArgumentsInItsFolder) {
  BeginWith("profile=Game target=/games/x/play args=\"-map [My Level]\" dir=/games/data");
  ASSERT_EQ(processes.Started().size(), 1u);
  const StartedProcess& game = processes.Started()[0];
  EXPECT_EQ(game.application, kGame);
  EXPECT_EQ(game.commandLine, "\"/games/x/play\" -map \"My Level\"");
  EXPECT_EQ(game.flags, platform::CREATE_NEW_CONSOLE);
  EXPECT_EQ(game.folder, "/games/data");
  EXPECT_TRUE(screen.Shown());  // the window stands as it did
}

TEST_F(Launching, TheWindowGoesOnAtOnceWhileTheTargetIsStarted) {
  BeginWith("profile=Game target=/games/x/play");
  EXPECT_EQ(processes.Started().at(0).t, sim.Now());
}

TEST_F(Launching, ADirWithNothingBehindItMeansTheTargetsOwnFolder) {
  BeginWith("profile=Game target=/games/x/play dir=");
  ASSERT_EQ(processes.Started().size(), 1u);
  EXPECT_EQ(processes.Started()[0].folder, "/games/x");
  EXPECT_EQ(processes.Started()[0].commandLine, "\"/games/x/play\"");
}

TEST_F(Launching, ATargetWithoutAFolderPassesTheEmptyOneOn) {
  ProcessDescription bare;
  bare.path = "play";
  processes.Provide(bare);
  BeginWith("profile=Game target=play");
  ASSERT_EQ(processes.Started().size(), 1u);
  EXPECT_TRUE(processes.Started()[0].hasFolder);
  EXPECT_EQ(processes.Started()[0].folder, "");
}

TEST_F(Launching, ATargetWithoutAProfileIsNotStarted) {
  BeginWith("target=/games/x/play");
  sim.RunFor(5000);
  EXPECT_TRUE(processes.Started().empty());
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(Launching, ATargetWithAnUnknownProfileIsNotStarted) {
  screen.AnswerNext(platform::IDOK);
  BeginWith("profile=Nowhere target=/games/x/play");
  sim.RunFor(5000);
  EXPECT_TRUE(processes.Started().empty());
  ASSERT_EQ(screen.Boxes().size(), 1u);  // about the profile, and nothing of the target
  EXPECT_EQ(screen.Boxes()[0].caption, "Profile Selection Failure");
}

TEST_F(Launching, WithoutAProfileOnTheDiskNothingIsLaunched) {
  WithoutProfiles();
  BeginWith("profile=Game target=/games/x/play");
  sim.RunFor(5000);
  EXPECT_TRUE(processes.Started().empty());
}

TEST_F(Launching, AProfileAloneStartsNothing) {
  BeginWith("profile=Game profile=Two");
  sim.RunFor(5000);
  EXPECT_TRUE(processes.Started().empty());
}

TEST_F(Launching, EachFurtherProfileGetsAnInstanceTwoSecondsBeforeTheTarget) {
  BeginWith("profile=Game profile=Two profile=\"Three Four\" target=/games/x/play");
  const std::uint64_t begin = processes.Started().at(0).t;
  sim.RunFor(3000);
  ASSERT_EQ(processes.Started().size(), 3u);
  EXPECT_EQ(processes.Started()[0].application, own);
  EXPECT_EQ(processes.Started()[0].commandLine, "\"" + own + "\" profile=\"Two\"");
  EXPECT_EQ(processes.Started()[0].flags, platform::CREATE_NEW_CONSOLE);
  EXPECT_FALSE(processes.Started()[0].hasFolder);
  EXPECT_EQ(processes.Started()[1].commandLine, "\"" + own + "\" profile=\"Three Four\"");
  EXPECT_EQ(processes.Started()[1].t, begin);
  EXPECT_EQ(processes.Started()[2].application, kGame);
  EXPECT_EQ(processes.Started()[2].t, begin + 2000);
}

TEST_F(Launching, WhenTheTargetEndsTheFurtherInstancesCloseFirstAndThenThisOne) {
  BeginWith("profile=Game profile=Two profile=Three target=/games/x/play");
  sim.RunFor(3000);
  const std::uint32_t two = processes.Started()[0].id;
  const std::uint32_t three = processes.Started()[1].id;
  const std::uint32_t game = processes.Started()[2].id;
  const std::uint64_t end = sim.Now();
  processes.End(game);
  sim.RunFor(2000);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(processes.Ended(), (std::vector<std::uint32_t>{game, two, three}));
  // This one's window takes the first message, and its thread waits in vain for the end of the
  // process that it is itself part of.
  EXPECT_EQ(processes.Posted(), (std::vector<PostedMessage>{{end, two, WM_CLOSE},
                                                            {end + 10, three, WM_CLOSE},
                                                            {end + 20, kOwn, WM_CLOSE},
                                                            {end + 520, kOwn, WM_CLOSE_PROGRAM}}));
}

TEST_F(Launching, WhenThePersonEndsTheProgramTheFurtherInstancesCloseToo) {
  BeginWith("profile=Game profile=Two target=/games/x/play");
  sim.RunFor(3000);
  const std::uint32_t two = processes.Started()[0].id;
  const std::uint32_t game = processes.Started()[1].id;
  screen.Close();
  sim.RunFor(2000);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(processes.Ended(), std::vector<std::uint32_t>{two});
  EXPECT_TRUE(processes.Runs(game));  // nobody ends the game
}

TEST_F(Launching, WhenTheTargetEndsTheProgramEndsAlsoWhereNoWindowCanBeFound) {
  sim.FailAlways("EnumWindows");
  BeginWith("profile=Game target=/games/x/play");
  processes.End(processes.Started().at(0).id);
  sim.RunFor(2000);
  EXPECT_TRUE(processes.Posted().empty());
  EXPECT_FALSE(screen.Running());
}

TEST_F(Launching, TheMessageOfTheEndIsForATargetThatHasEndedAlone) {
  sim.FailAlways("EnumWindows");  // so that no other way leads to the own window
  BeginWith("profile=Game target=/games/x/play");
  sim.LogCalls(true);
  screen.Close();
  sim.RunFor(2000);
  EXPECT_FALSE(screen.Running());
  const std::string message = "PostMessageA " + std::to_string(WM_CLOSE_PROGRAM);
  EXPECT_EQ(std::count(sim.Calls().begin(), sim.Calls().end(), message), 0);
}

TEST_F(Launching, AnInstanceThatDoesNotCloseGetsTheSecondMessageAfterHalfASecond) {
  ProcessDescription stubborn;
  stubborn.path = own;
  stubborn.endsAfterClose = ProcessDescription::kNever;
  processes.Provide(stubborn);
  BeginWith("profile=Game profile=Two target=/games/x/play");
  sim.RunFor(3000);
  const std::uint32_t two = processes.Started()[0].id;
  const std::uint64_t end = sim.Now();
  processes.End(processes.Started()[1].id);
  sim.RunFor(2000);
  ASSERT_GE(processes.Posted().size(), 2u);
  EXPECT_EQ(processes.Posted()[0], (PostedMessage{end, two, WM_CLOSE}));
  EXPECT_EQ(processes.Posted()[1], (PostedMessage{end + 500, two, WM_CLOSE_PROGRAM}));
  EXPECT_FALSE(screen.Running());
}

TEST_F(Launching, AnInstanceThatCannotBeStartedIsPassedOverAndCostsNoWait) {
  sim.FailNext("CreateProcessA");
  BeginWith("profile=Game profile=Two target=/games/x/play");
  ASSERT_EQ(processes.Started().size(), 2u);
  EXPECT_EQ(processes.Started()[0].id, 0u);
  EXPECT_EQ(processes.Started()[1].t, processes.Started()[0].t);
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(Launching, ATargetThatCannotBeStartedIsToldOfAndEndsTheProgram) {
  BeginWith("profile=Game target=/games/gone");
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().text,
            "Failed to launch \"/games/gone\".\n\nReason: "
            "The system cannot find the file specified.\r\n");
  EXPECT_EQ(screen.Box().caption, "Launch Failure");
  EXPECT_EQ(screen.Box().type, platform::MB_ICONSTOP);
  screen.Answer(platform::IDOK);
  EXPECT_FALSE(screen.Running());
}

TEST_F(Launching, ExitWaitsForNobodyToReadThatTheTargetCannotBeStarted) {
  BeginWith("profile=Game target=/games/gone");
  ASSERT_TRUE(screen.BoxUp());
  const std::uint64_t exit = sim.Now();
  sim.LogCalls(true);
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.Running());
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_LT(sim.Now() - exit, 1000u);  // of virtual time; the pad's thread ends in it, too
  EXPECT_FALSE(AThreadWasEndedByForce());
}

TEST_F(Launching, ATargetThatFailsDuringTheCleanupIsNotToldOf) {
  BeginWith("profile=Game profile=Two target=/games/gone");
  sim.LogCalls(true);
  screen.Close();  // in the two seconds for the further instance
  EXPECT_FALSE(screen.Running());
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_FALSE(AThreadWasEndedByForce());
  handlesStay = true;
}

TEST_F(Launching, AFailedTargetLeavesTheFurtherInstancesRunning) {
  screen.AnswerNext(platform::IDOK);
  BeginWith("profile=Game profile=Two target=/games/gone");
  sim.RunFor(3000);
  EXPECT_FALSE(screen.Running());
  EXPECT_TRUE(processes.Runs(processes.Started()[0].id));
  EXPECT_TRUE(processes.Posted().empty());
  handlesStay = true;
}

TEST_F(Launching, ALaunchClosesWhateverInstanceWasRunning) {
  ProcessDescription other;
  other.path = "/elsewhere/" + own.substr(own.rfind('/') + 1);
  const std::uint32_t shown = processes.Add(other);
  other.path[other.path.size() - 1] = static_cast<char>(std::toupper(other.path.back()));
  other.visible = false;
  const std::uint32_t hidden = processes.Add(other);
  ProcessDescription stranger;
  stranger.path = "/elsewhere/editor";
  const std::uint32_t editor = processes.Add(stranger);
  BeginWith("profile=Game target=/games/x/play");
  sim.RunFor(1000);
  EXPECT_FALSE(processes.Runs(shown));
  EXPECT_FALSE(processes.Runs(hidden));
  EXPECT_TRUE(processes.Runs(editor));
  ASSERT_EQ(processes.Posted().size(), 2u);
  EXPECT_EQ(processes.Posted()[0].message, WM_CLOSE);
  // The hidden one has no window for the first message.
  EXPECT_EQ(processes.Posted()[1].process, hidden);
  EXPECT_EQ(processes.Posted()[1].message, WM_CLOSE_PROGRAM);
  EXPECT_EQ(processes.Started().size(), 1u);
}

TEST_F(Launching, AnInstanceThatGetsTheSecondMessageIsNotWaitedFor) {
  ProcessDescription hidden;
  hidden.path = own;
  hidden.visible = false;
  hidden.endsAfterMessage = 1000;
  processes.Add(hidden);
  BeginWith("profile=Game target=/games/x/play");
  ASSERT_EQ(processes.Posted().size(), 1u);
  EXPECT_EQ(processes.Started().at(0).t, processes.Posted()[0].t);
}

TEST_F(Launching, WhereProcessesCannotBeListedOtherInstancesStay) {
  ProcessDescription other;
  other.path = own;
  const std::uint32_t id = processes.Add(other);
  sim.FailAlways("ListProcesses");
  BeginWith("profile=Game target=/games/x/play");
  sim.RunFor(1000);
  EXPECT_TRUE(processes.Runs(id));
  EXPECT_EQ(processes.Started().size(), 1u);
}

TEST_F(Launching, ATargetThatHandsOverAndExitsEndsTheProgramAtOnce) {
  ProcessDescription short_;
  short_.path = kGame;
  short_.endsAfterStart = 5;
  processes.Provide(short_);
  BeginWith("profile=Game target=/games/x/play");
  sim.RunFor(1000);
  EXPECT_FALSE(screen.Running());
}

}  // namespace
}  // namespace kelvaro
