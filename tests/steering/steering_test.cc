#include "steering/steering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "keys/key_action.h"
#include "tests/engine/engine_fixture.h"
#include "tests/steering/virtual_calls.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro {
namespace {

class SteeredHost : public SteeringHost {
 public:
  const char* ProgramKind() const override { return "run"; }
  void SelectProfile(std::uint32_t ticket, const std::string& name) override {
    asked.push_back(name);
    tickets.push_back(ticket);
  }
  std::vector<std::string> asked;
  std::vector<std::uint32_t> tickets;
};

class SteeringTest : public EngineTest {
 protected:
  void Begin() {
    steering.Begin(engine);
    steering.ProfileIs("Game");
    steering.DeviceIs("Pad");
  }
  // What a caller says, and what it is told once all that is due has run.
  std::string Ask(platform::CallId call, const std::string& request) {
    calls.Say(call, "kelvaro 1 " + request);
    sim.RunFor(0);
    return calls.Heard(call);
  }
  std::ptrdiff_t ThreadsThatEndedWithZero() const {
    return std::count(sim.Calls().begin(), sim.Calls().end(), "ThreadEnded steered 0");
  }

  VirtualCalls calls{sim.Groups()};
  SteeredHost steeredHost;
  Steering steering{steeredHost};
};

// ---- What is asked

TEST_F(SteeringTest, StatusTellsHowItStands) {
  Begin();
  EXPECT_EQ(Ask(1, "status"),
            "status | program run | version 3.5 | profile Game | device Pad | deviceAnswers yes | "
            "paused no | mouseControls no");
  engine.mouseActive = true;
  engine.Pause();
  steering.ProfileIs("Line\nfeed");
  steering.DeviceIs("");
  EXPECT_EQ(Ask(1, "status"),
            "status | program run | version 3.5 | profile Line\\nfeed | device  | deviceAnswers no "
            "| paused yes | mouseControls yes");
}

TEST_F(SteeringTest, TheFirstStatusTellsWhatWasOpenBefore) {
  calls.saidAtOnce = "kelvaro 1 status";
  steering.ProfileIs("Game");
  steering.DeviceIs("Pad");
  steering.Begin(engine);
  EXPECT_NE(calls.Heard(1).find("profile Game | device Pad | "), std::string::npos);
}

TEST_F(SteeringTest, WhatIsNoRequestIsAnsweredByAnError) {
  Begin();
  EXPECT_EQ(Ask(1, "nonsense"), "error | text there is no request 'nonsense'");
  calls.Say(1, "kelvaro 2 status");
  EXPECT_EQ(calls.Heard(1), "error | text only version 1 is spoken here");
  calls.Say(1, "");
  EXPECT_EQ(calls.Heard(1), "error | text this isn't a message");
  EXPECT_EQ(Ask(1, "select"), "error | text no profile is named");
  EXPECT_EQ(Ask(1, "select\nname "), "error | text no profile is named");
  EXPECT_TRUE(steeredHost.asked.empty());
}

TEST_F(SteeringTest, WithoutCallsNothingIsAnsweredOrSetUp) {
  calls.answers = false;
  Begin();
  steering.End();
  EXPECT_EQ(calls.wakes, 0u);
}

TEST_F(SteeringTest, WithoutCallsTheDevicesNewsIsLeftToOthers) {
  bool lost = false;
  device.SetPresenceCallback([](bool, void* told) { *static_cast<bool*>(told) = true; }, &lost);
  calls.answers = false;
  Begin();
  Plug(10).Lose();
  RunTo(30);
  EXPECT_TRUE(lost);
}

TEST_F(SteeringTest, AStatusTakesNoLockOfTheEngine) {
  Begin();
  LockGuard deviceTaken(device.deviceLock);
  LockGuard mouseTaken(engine.mouseLock);
  LockGuard profileTaken(profile.profileLock);
  LockGuard repeatTaken(engine.repeatWorker.repeatLock);
  const platform::Handle asker = platform::threads().CreateThread(
      [](void* self) -> std::uint32_t {
        static_cast<VirtualCalls*>(self)->Say(1, "kelvaro 1 status");
        return 0;
      },
      &calls, "asker", nullptr);
  sim.RunFor(0);
  EXPECT_EQ(calls.Heard(1).substr(0, 6), "status");
  platform::threads().CloseHandle(asker);
}

TEST_F(ProfileTest, AStoredProfileIsFoundByItsNameIfItCanBeRead) {
  Disk().PutFile(PathOf("a.idprof"), SmallProfile("Game"));
  Disk().PutFile(PathOf("b.idprof"), ProfileBytes({TypeList(), RevisionList(),
                                                   NameList("Broken", 2), List(4, {List(5, {})})}));
  ProfileFile looked;
  ByteString path;
  EXPECT_EQ(FindStoredProfile("Game", &looked, &path), "");
  EXPECT_EQ(Bytes(path), PathOf("a.idprof"));
  EXPECT_EQ(Bytes(looked.profileName), "Game");
  EXPECT_EQ(FindStoredProfile("game", &looked, &path), "there is no stored profile 'game'");
  EXPECT_EQ(FindStoredProfile("Broken", &looked, &path), "the profile 'Broken' can't be read");
}

// ---- What is done

TEST_F(SteeringTest, PauseLetsGoAndNothingCountsUntilResume) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "b", .buttons = {2}});
  Begin();
  auto& pad = Plug(10);
  Hold(15, {1}, 45);
  EXPECT_EQ(journal.Take(), "20 press a");
  EXPECT_EQ(Ask(1, "pause"), "done");
  EXPECT_EQ(journal.Take(), "45 release a");
  Hold(50, {}, 100);
  Hold(100, {2}, 200);
  EXPECT_EQ(journal.Take(), "");
  pad.Press({});
  RunTo(305);
  EXPECT_EQ(Ask(1, "resume"), "done");
  Hold(315, {1}, 400);
  EXPECT_EQ(journal.Take(), "320 press a");
}

TEST_F(SteeringTest, ReleaseAllLetsGoAndGoesOn) {
  Add({.name = "a", .buttons = {1}});
  Begin();
  Plug(10);
  Hold(15, {1}, 45);
  EXPECT_EQ(Ask(1, "release-all"), "done");
  EXPECT_EQ(journal.Take(), "20 press a, 45 release a");
  Hold(50, {}, 65);
  Hold(65, {1}, 100);
  EXPECT_EQ(journal.Take(), "70 press a");
}

TEST_F(SteeringTest, WhatWaitsForAReplayIsAnsweredOnceItIsOverAndAStatusAtOnce) {
  Add({.name = "a", .buttons = {1}, .pressMs = 300});
  Begin();
  Plug(10);
  Hold(15, {1}, 45);
  EXPECT_EQ(Ask(1, "pause"), "");
  EXPECT_EQ(Ask(2, "status").substr(0, 6), "status");
  RunTo(319);
  EXPECT_EQ(calls.Heard(1), "");
  RunTo(330);
  EXPECT_EQ(calls.Heard(1), "done");
  EXPECT_EQ(journal.Take(), "20 press a, 320 release a");
}

TEST_F(SteeringTest, SelectIsTheHostsAndItsEndIsTheAnswer) {
  Begin();
  EXPECT_EQ(Ask(1, "select\nname Two\\nlines"), "");
  EXPECT_EQ(steeredHost.asked, std::vector<std::string>{"Two\nlines"});
  steering.Selected(steeredHost.tickets.at(0), "");
  EXPECT_EQ(calls.Heard(1), "done");
  Ask(1, "select\nname Other");
  steering.Selected(steeredHost.tickets.at(1), "there is none");
  EXPECT_EQ(calls.Heard(1), "error | text there is none");
}

TEST_F(SteeringTest, AnAnswerToACallerThatHungUpGoesNowhere) {
  Begin();
  Ask(1, "select\nname Game");
  calls.HangUpBy(1);
  steering.Selected(steeredHost.tickets.at(0), "");
  EXPECT_EQ(calls.Heard(1), "");
}

TEST_F(SteeringTest, TooManyRequestsThatWaitAreRefused) {
  Add({.name = "a", .buttons = {1}, .pressMs = 1000});
  Begin();
  Plug(10);
  Hold(15, {1}, 45);
  Ask(1, "pause");  // waits for the replay
  for (int i = 0; i < 64; ++i) EXPECT_EQ(Ask(1, "resume"), "");
  EXPECT_EQ(Ask(1, "resume"), "error | text too many requests are waiting");
  RunTo(1100);
  EXPECT_EQ(calls.Heard(1).substr(0, 12), "done, done, ");
}

TEST_F(SteeringTest, NoThreadIsThereBeforeItHasWork) {
  Begin();
  const std::uint32_t before = sim.LivingThreads();
  Ask(1, "status");
  Ask(1, "follow-events");
  EXPECT_EQ(sim.LivingThreads(), before);
  Ask(1, "pause");
  EXPECT_EQ(sim.LivingThreads(), before + 1);
  steering.End();
  EXPECT_EQ(sim.LivingThreads(), before);
}

TEST_F(SteeringTest, WithoutAThreadThatWouldDoItARequestIsRefused) {
  Begin();
  sim.FailNext("CreateThread");
  EXPECT_EQ(Ask(1, "pause"), "error | text no thread can be started");
  EXPECT_FALSE(engine.IsPaused());
  EXPECT_EQ(Ask(1, "release-all"), "done");
  EXPECT_FALSE(engine.IsPaused()) << "what was refused isn't done later";
}

// ---- What is told

TEST_F(SteeringTest, FollowersAreToldWhatHappens) {
  Add({.name = "a", .buttons = {1}, .toggles = true});
  auto& pad = Plug(10);
  Begin();
  EXPECT_EQ(Ask(1, "follow-events"), "done");
  Hold(15, {1}, 25);
  EXPECT_EQ(calls.Heard(1),
            "event | event controlFired | t 20 | controlId 1, event | event mouseControls | t 20 | "
            "on yes");
  pad.Lose();
  RunTo(45);
  EXPECT_EQ(calls.Heard(1), "event | event deviceLost | t 30");
  EXPECT_NE(Ask(2, "status").find("deviceAnswers no"), std::string::npos);
  pad.Return();
  RunTo(65);
  EXPECT_EQ(calls.Heard(1).substr(0, 29), "event | event deviceBack | t ");
  Ask(2, "pause");
  Ask(2, "pause");
  Ask(2, "resume");
  EXPECT_EQ(calls.Heard(1), "event | event paused | t 65, event | event resumed | t 65");
  steering.ProfileIs("Other");
  steering.ProfileIs("Other");
  steering.DeviceIs("");
  EXPECT_EQ(calls.Heard(1),
            "event | event profile | t 65 | name Other, event | event device | t 65 | name ");
  engine.mouseActive = false;
  steering.MouseMayHaveChanged();
  EXPECT_EQ(calls.Heard(1), "event | event mouseControls | t 65 | on no");
}

TEST_F(SteeringTest, EachSwitchOfTheMouseIsToldWithItsTime) {
  Add({.name = "a", .buttons = {1}, .toggles = true});
  Plug(10);
  Begin();
  Ask(1, "follow-events");
  Hold(15, {1}, 35);
  Hold(35, {}, 55);
  Hold(55, {1}, 75);
  EXPECT_EQ(calls.Heard(1),
            "event | event controlFired | t 20 | controlId 1, event | event mouseControls | t 20 | "
            "on yes, event | event controlFired | t 60 | controlId 1, event | event mouseControls "
            "| t 60 | on no");
}

TEST_F(SteeringTest, AFollowerIsToldWhatTheMouseDoesFromThenOn) {
  Begin();
  engine.mouseActive = true;
  EXPECT_EQ(Ask(1, "follow-events"), "done");
  steering.MouseMayHaveChanged();
  EXPECT_EQ(calls.Heard(1), "");
  engine.mouseActive = false;
  EXPECT_EQ(Ask(2, "follow-events"), "done");
  steering.MouseMayHaveChanged();
  EXPECT_EQ(calls.Heard(1), "event | event mouseControls | t 0 | on no");
}

TEST_F(SteeringTest, NothingIsToldOrWokenWithoutAFollower) {
  Add({.name = "a", .buttons = {1}, .toggles = true});
  auto& pad = Plug(10);
  Begin();
  Ask(1, "status");
  const std::uint32_t before = calls.wakes;
  Hold(15, {1}, 35);
  Hold(35, {}, 55);
  pad.Lose();
  RunTo(100);
  steering.ProfileIs("Other");
  steering.MouseMayHaveChanged();
  EXPECT_EQ(calls.wakes, before);
  Ask(2, "follow-events");
  calls.HangUpBy(2);
  pad.Return();
  Hold(115, {1}, 200);
  EXPECT_EQ(calls.wakes, before);
  EXPECT_EQ(calls.Heard(1), "");
  EXPECT_EQ(calls.Heard(2), "");
}

// The wake comes behind the keys: a thread that it wakes could stand between a press and its keys.
TEST_F(SteeringTest, TheEngineWakesNobodyBeforeAllKeysOfTheChangeAreSent) {
  Add({.name = "a", .buttons = {1}, .pressMs = 40});
  Add({.name = "b", .buttons = {2}});
  Plug(10);
  Begin();
  Ask(1, "follow-events");
  const std::uint32_t before = calls.wakes;
  Hold(15, {1, 2}, 55);
  EXPECT_EQ(calls.wakes, before);
  RunTo(70);
  EXPECT_EQ(calls.wakes, before + 1);
  Hold(70, {}, 90);
  EXPECT_EQ(calls.wakes, before + 1) << "nothing fires";
  EXPECT_EQ(calls.Heard(1),
            "event | event controlFired | t 20 | controlId 1, event | event controlFired | t 60 | "
            "controlId 2");
}

TEST_F(SteeringTest, AFollowerThatReadsNothingLosesEventsAndIsToldHowMany) {
  Begin();
  Ask(1, "follow-events");
  Ask(2, "follow-events");
  calls.Fill(1, true);
  constexpr std::size_t kKept = 256;
  constexpr std::size_t kEvents = kKept + 5;
  for (std::size_t i = 0; i < kEvents; ++i) {
    steering.ProfileIs(TextOf(std::to_string(i)));
    calls.Pump();
  }
  EXPECT_NE(calls.Heard(2).find("name " + std::to_string(kEvents - 1)), std::string::npos);
  EXPECT_EQ(calls.Heard(1), "");
  calls.Fill(1, false);
  const std::string told = calls.Heard(1);
  EXPECT_NE(told.find("name " + std::to_string(kKept - 1) +
                      ", event | event "
                      "missed | count 5"),
            std::string::npos)
      << told.substr(told.size() - 200);
  steering.ProfileIs("last");
  EXPECT_EQ(calls.Heard(1), "event | event profile | t 0 | name last");
}

TEST_F(SteeringTest, ACallerThatAsksOnAndOnAndReadsNothingIsHungUpOn) {
  Begin();
  calls.Fill(1, true);
  for (int i = 0; i < 256; ++i) calls.Say(1, "kelvaro 1 status");
  EXPECT_TRUE(calls.hungUp.empty());
  calls.Say(1, "kelvaro 1 status");
  EXPECT_EQ(calls.hungUp, std::vector<platform::CallId>{1});
  calls.Fill(1, false);
  EXPECT_EQ(calls.Heard(1), "") << "what waited for it is gone";
}

TEST_F(SteeringTest, MoreThanTheRingHoldsIsCounted) {
  Begin();
  Ask(1, "follow-events");
  for (int i = 0; i < 600; ++i) steering.ProfileIs(TextOf(std::to_string(i)));
  const std::string told = calls.Heard(1);
  EXPECT_NE(told.find("name 511, event | event missed | count 88"), std::string::npos)
      << told.substr(told.size() - 200);
}

TEST_F(SteeringTest, AtItsEndNothingIsToldAnyMore) {
  Add({.name = "a", .buttons = {1}});
  Plug(10);
  Begin();
  Ask(1, "follow-events");
  steering.ProfileIs("kept in the ring");
  steering.End();
  const std::uint32_t before = calls.wakes;
  Hold(15, {1}, 45);
  EXPECT_EQ(journal.Take(), "20 press a");
  pad->Lose();
  RunTo(65);
  steering.ProfileIs("told to nobody");
  EXPECT_EQ(calls.wakes, before);
  EXPECT_EQ(calls.Heard(1), "");
  // Even were there a follower, the device would tell nothing here any more.
  steering.OnMessage(2, "kelvaro 1 follow-events");
  pad->Return();
  RunTo(100);
  EXPECT_TRUE(device.Answers());
  EXPECT_EQ(calls.wakes, before);
  steering.OnHungUp(2);
}

TEST_F(SteeringTest, OnceItIsGoneNobodyAnswers) {
  auto gone = std::make_unique<Steering>(steeredHost);
  gone->Begin(engine);
  EXPECT_TRUE(calls.IsAnswered());
  gone.reset();
  EXPECT_FALSE(calls.IsAnswered());
}

TEST_F(SteeringTest, WhatWaitsAtItsEndIsNotDone) {
  Add({.name = "a", .buttons = {1}, .pressMs = 300});
  Begin();
  Plug(10);
  Hold(15, {1}, 45);
  Ask(1, "pause");  // waits for the replay
  Ask(1, "select\nname Other");
  sim.LogCalls(true);
  steering.End();
  EXPECT_EQ(sim.Now() - start, 320u);
  EXPECT_TRUE(engine.IsPaused());
  EXPECT_TRUE(steeredHost.asked.empty());
  EXPECT_EQ(ThreadsThatEndedWithZero(), 1);
}

TEST_F(SteeringTest, ItsThreadEndsWithZero) {
  Begin();
  Ask(1, "pause");
  sim.LogCalls(true);
  steering.End();
  EXPECT_EQ(ThreadsThatEndedWithZero(), 1);
}

TEST_F(SteeringTest, AfterItsEndAnotherMayAnswer) {
  auto first = std::make_unique<Steering>(steeredHost);
  first->Begin(engine);
  first->End();
  Begin();
  first.reset();
  EXPECT_EQ(Ask(1, "status").substr(0, 6), "status");
}

TEST_F(SteeringTest, WhatItWaitsForGoesWithIt) {
  const auto closed = [this] {
    sim.LogCalls(true);
    sim.ClearCalls();
    std::make_unique<Steering>(steeredHost).reset();
    return std::count_if(sim.Calls().begin(), sim.Calls().end(),
                         [](const std::string& call) { return call.starts_with("CloseHandle"); });
  };
  EXPECT_EQ(closed(), 2);
  sim.FailNext("CreateEventA auto");
  EXPECT_EQ(closed(), 1);
}

// ---- Under load

// What 200 Controls send in ten seconds, each event with its millisecond.
class SteeringLoad : public testing::Test {
 protected:
  struct Asking {
    VirtualCalls* calls = nullptr;
    bool stop = false;
    std::uint32_t asked = 0;
  };

  static std::uint32_t AskOnAndOn(void* parameter) {
    auto& asking = *static_cast<Asking*>(parameter);
    constexpr const char* kRequests[] = {"status", "nonsense", "select\nname x", "status",
                                         "follow-events"};
    while (!asking.stop) {
      asking.calls->Say(1 + asking.asked % 7,
                        std::string("kelvaro 1 ") + kRequests[asking.asked % 5]);
      ++asking.asked;
      asking.calls->Pump();
      platform::clock().Sleep(1);
    }
    return 0;
  }

  static void Fill(Profile* profile) {
    for (std::uint32_t i = 0; i < 200; ++i) {
      ASSERT_TRUE(profile->controls.AddTail({}));
      Control& made = *profile->controls.tail->value;
      made.controlId = i + 1;
      made.SetButtonMask(std::uint64_t{1} << (i % 64));
      if (i >= 64) made.triggerItems.AddTail(Axis(0, i % 2 ? AxisPos : AxisNeg));
      made.keyHoldTime = i % 5;
      made.repeatEnabled = i % 9 == 0;
      made.repeatDelay = 30;
      made.repeatSpeed = 20;
      made.toggleMouseControls = i % 50 == 7;
      auto* const action = new KeyAction;
      EXPECT_EQ(action->ParseKeys(i % 3 ? "ab<P:3>" : "<Ctrl>c"), KeyAction::kParsed);
      made.actions.AddTail(action);
    }
    profile->mouseX = MouseInput(1);
    profile->RebuildDispatchList();
  }

  static std::string Play(bool steered, std::uint32_t* asked) {
    platform::simulation::Simulation sim;
    auto& pad = sim.AddDevice({});
    VirtualCalls calls(sim.Groups());
    Profile profile;
    RecordingHost engineHost;
    DeviceManager device(platform::kNoWindow);
    ControlEngine engine(profile, device, engineHost);
    Fill(&profile);
    SteeredHost host;
    Steering steering(host);
    engine.Attach();
    device.SetPollInterval(5);
    EXPECT_TRUE(device.SelectDevice(0));
    EXPECT_TRUE(engine.repeatWorker.Start(false, WorkerThread::kPriorityOfCaller));
    Asking asking{&calls};
    platform::Handle asker = platform::kInvalidHandle;
    if (steered) {
      steering.Begin(engine);
      asker = platform::threads().CreateThread(&AskOnAndOn, &asking, "asker", nullptr);
    }
    const std::uint64_t start = sim.Now();
    std::uint32_t random = 1;
    for (int i = 0; i < 500; ++i) {
      random = random * 1664525 + 1013904223;
      pad.Press({1 + random / 65536 % 64, 1 + random / 256 % 64});
      pad.MoveAxis("Axis_X0", random & 1 ? kAxisMax : -kAxisMax);
      pad.MoveAxis("Axis_Y0", static_cast<std::int32_t>(random % 64000) - 32000);
      sim.RunUntil(start + 20u * static_cast<std::uint32_t>(i + 1));
    }
    asking.stop = true;
    sim.RunFor(5);
    steering.End();
    engine.LetGo();
    device.StopDevice();
    engine.repeatWorker.Stop();
    if (asker != platform::kInvalidHandle) platform::threads().CloseHandle(asker);
    *asked = asking.asked;
    return sim.EventText();
  }
};

TEST_F(SteeringLoad, AThousandRequestsASecondMoveNoEventByAMillisecond) {
  std::uint32_t asked = 0;
  const std::string alone = Play(false, &asked);
  EXPECT_EQ(asked, 0u);
  const std::string steered = Play(true, &asked);
  EXPECT_GE(asked, 10000u);
  EXPECT_GT(std::count(alone.begin(), alone.end(), '\n'), 2000);
  EXPECT_TRUE(alone == steered);
}

}  // namespace
}  // namespace kelvaro
