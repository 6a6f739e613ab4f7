#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "device/device_manager.h"
#include "tests/device/device_calls.h"

namespace kelvaro {
namespace {

using platform::DeviceDescription;
using platform::DIJOYSTATE2;
using platform::SimulatedDevice;
using platform::StateChange;
using platform::simulation::Simulation;
using test::Calls;
using test::CountDeviceCalls;
using test::DeviceCalls;

DeviceDescription FullPad() {
  DeviceDescription description;
  description.buttons = 128;
  description.axes = 8;
  description.povs = 4;
  return description;
}

StateChange Buttons(std::vector<std::uint32_t> held) {
  StateChange change;
  change.hasButtons = true;
  change.buttons = std::move(held);
  return change;
}

// One pad, polled every 10 ms, and what both callbacks get. Times count from the selection.
struct Polling : testing::Test {
  struct Delivery {
    std::uint64_t t;
    DIJOYSTATE2 state;
  };

  Polling() : pad(simulation.AddDevice(FullPad())), manager(0) {
    simulation.LogCalls(true);
    manager.SetPollInterval(10);
    manager.SetPollCallback(&Polling::OnPoll, this);
    manager.SetChangeCallback(&Polling::OnChange, this);
  }

  void Begin() {
    manager.EnablePollCallback();
    manager.EnableChangeCallback();
    Select();
  }
  // The same, and what came until then is no matter.
  void BeginAndForget(std::uint64_t t) {
    Begin();
    RunTo(t);
    Forget();
  }
  void Select() {
    ASSERT_TRUE(manager.SelectDevice(0));
    start = simulation.Now();
    Forget();
  }
  void Forget() {
    simulation.ClearCalls();
    polls.clear();
    changes.clear();
  }
  void RunTo(std::uint64_t t) { simulation.RunUntil(start + t); }
  std::uint64_t Now() const { return simulation.Now() - start; }

  static void OnPoll(DeviceManager* device, const DIJOYSTATE2* state, void* context) {
    Polling* self = static_cast<Polling*>(context);
    EXPECT_EQ(device, &self->manager);
    self->simulation.Enter("poll callback");
    self->polls.push_back({self->Now(), *state});
  }
  static void OnChange(DeviceManager* device, const DIJOYSTATE2* state, void* context) {
    Polling* self = static_cast<Polling*>(context);
    EXPECT_EQ(device, &self->manager);
    EXPECT_TRUE(self->manager.deviceLock.IsTaken());
    self->simulation.Enter("change callback");
    self->changes.push_back({self->Now(), *state});
    if (self->changeTakes) platform::clock().Sleep(self->changeTakes);
  }

  Simulation simulation;
  SimulatedDevice& pad;
  DeviceManager manager;
  std::vector<Delivery> polls;
  std::vector<Delivery> changes;
  std::uint32_t changeTakes = 0;  // ms that the change callback sleeps
  std::uint64_t start = 0;
};

bool Same(const DIJOYSTATE2& a, const DIJOYSTATE2& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// The tick.

TEST_F(Polling, AStateThatNeverChangesIsPolledEachPeriodAndDeliveredOnce) {
  Begin();
  RunTo(1000);
  ASSERT_EQ(polls.size(), 100u);
  for (std::size_t i = 0; i < polls.size(); ++i) EXPECT_EQ(polls[i].t, 10 * (i + 1));
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].t, 10u);
  EXPECT_TRUE(Same(changes[0].state, pad.State()));
  EXPECT_TRUE(Same(polls[0].state, pad.State()));
}

TEST_F(Polling, TheFirstStateIsNoChangeWhereEverythingReadsZero) {
  for (std::uint32_t hat = 0; hat < 4; ++hat) pad.PointHat(hat, 0);
  Begin();
  RunTo(100);
  EXPECT_EQ(polls.size(), 10u);
  EXPECT_TRUE(changes.empty());
}

TEST_F(Polling, AChangeIsSignalledBeforeThePollCallback) {
  Begin();
  RunTo(10);
  EXPECT_EQ(DeviceCalls(simulation),
            (Calls{"Poll", "GetDeviceState", "SetEvent 2", "poll callback", "change callback"}));
  simulation.ClearCalls();
  RunTo(20);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"Poll", "GetDeviceState", "poll callback"}));
}

TEST_F(Polling, AChangeThatIsUndoneBetweenTwoPollsIsNotSeen) {
  BeginAndForget(10);
  pad.ChangeAt(start + 12, Buttons({1}));
  pad.ChangeAt(start + 18, Buttons({}));
  RunTo(100);
  EXPECT_TRUE(changes.empty());
}

TEST_F(Polling, APollWithoutEffectIsAGoodOne) {
  simulation.FailAlways("Poll", platform::DI_NOEFFECT);
  Begin();
  RunTo(30);
  EXPECT_EQ(polls.size(), 3u);
  EXPECT_EQ(changes.size(), 1u);
  EXPECT_EQ(CountDeviceCalls(simulation, "Acquire"), 0);
}

TEST_F(Polling, AnyOtherResultOfPollIsALostDevice) {
  Begin();
  simulation.FailNext("Poll", 2);
  RunTo(10);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"Poll", "Acquire"}));
}

TEST_F(Polling, AFailedReadKeepsTheLastGoodStateForTheNextComparison) {
  for (const platform::HRESULT result : {platform::DIERR_INPUTLOST, platform::DI_NOEFFECT}) {
    SCOPED_TRACE(result);
    Begin();
    RunTo(10);
    ASSERT_EQ(changes.size(), 1u);
    Forget();
    simulation.FailNext("GetDeviceState", result);
    RunTo(20);
    EXPECT_EQ(DeviceCalls(simulation), (Calls{"Poll", "GetDeviceState"}));
    RunTo(50);
    // Nothing has moved since the state of 10 ms.
    EXPECT_EQ(polls.size(), 3u);
    EXPECT_TRUE(changes.empty());
  }
}

TEST_F(Polling, AChangeBehindAFailedReadIsDelivered) {
  BeginAndForget(20);
  pad.Press({3});
  simulation.FailNext("GetDeviceState");
  RunTo(50);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].t, 40u);
}

TEST_F(Polling, WhileAnyoneHoldsTheLockPeriodsAreLost) {
  BeginAndForget(10);
  {
    LockGuard guard(manager.deviceLock);
    RunTo(55);
    EXPECT_TRUE(DeviceCalls(simulation).empty());
  }
  EXPECT_EQ(manager.LostPolls(), 4u);
  RunTo(60);
  // Not made up for.
  EXPECT_EQ(polls.size(), 1u);
  EXPECT_EQ(polls[0].t, 60u);
}

TEST_F(Polling, ACallbackOfOneSecondCostsTheTicksOfThatSecond) {
  BeginAndForget(15);
  changeTakes = 1000;
  pad.Press({1});
  // Between the two the button goes up and another comes down, and both go back in time.
  pad.ChangeAt(start + 500, Buttons({2}));
  pad.ChangeAt(start + 900, Buttons({1}));
  RunTo(1019);
  ASSERT_EQ(polls.size(), 1u);
  EXPECT_EQ(polls[0].t, 20u);
  EXPECT_EQ(CountDeviceCalls(simulation, "Poll"), 1);
  RunTo(1100);
  // The timer goes first at 1020, while the callback still has the lock.
  ASSERT_EQ(polls.size(), 9u);
  EXPECT_EQ(polls[1].t, 1030u);
  // Compared with the state before the block, nothing has changed.
  EXPECT_EQ(changes.size(), 1u);
}

TEST_F(Polling, TwoChangesDuringALongCallbackFoldIntoTheLatest) {
  BeginAndForget(15);
  changeTakes = 1000;
  pad.Press({1});
  pad.ChangeAt(start + 300, Buttons({2}));
  pad.ChangeAt(start + 600, Buttons({3}));
  RunTo(1025);
  changeTakes = 0;
  RunTo(1500);
  ASSERT_EQ(changes.size(), 2u);
  EXPECT_EQ(changes[0].t, 20u);
  EXPECT_NE(changes[0].state.rgbButtons[0], 0);
  EXPECT_EQ(changes[1].t, 1030u);
  EXPECT_EQ(changes[1].state.rgbButtons[0], 0);
  EXPECT_EQ(changes[1].state.rgbButtons[1], 0);
  EXPECT_NE(changes[1].state.rgbButtons[2], 0);
}

// A lost device.

TEST_F(Polling, ALostDeviceIsAcquiredAtEachTickUntilItIsBack) {
  simulation.LetTimersSleep(false);
  BeginAndForget(10);
  pad.Lose();
  pad.Press({1});
  RunTo(60);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"Poll", "Acquire", "Poll", "Acquire", "Poll", "Acquire",
                                            "Poll", "Acquire", "Poll", "Acquire"}));
  EXPECT_TRUE(polls.empty());
  EXPECT_TRUE(changes.empty());
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 0);
  EXPECT_EQ(manager.PeekError(nullptr), 0);

  pad.Return();
  RunTo(120);
  EXPECT_EQ(changes.size(), 1u);
  EXPECT_NE(changes[0].state.rgbButtons[0], 0);
  EXPECT_GE(polls.size(), 5u);
}

TEST_F(Polling, ADeviceThatComesBackUnchangedDeliversNothing) {
  BeginAndForget(10);
  pad.Lose();
  RunTo(60);
  pad.Return();
  RunTo(120);
  EXPECT_TRUE(changes.empty());
  EXPECT_FALSE(polls.empty());
}

TEST_F(Polling, ThePullOfAPadIsSurvivedSeveralTimes) {
  simulation.LetTimersSleep(false);
  Begin();
  RunTo(10);
  std::uint64_t t = 10;
  for (std::uint32_t round = 1; round <= 5; ++round) {
    SCOPED_TRACE(round);
    Forget();
    pad.Unplug();
    RunTo(t += 100);
    EXPECT_TRUE(polls.empty());
    EXPECT_EQ(CountDeviceCalls(simulation, "Acquire"), 10);
    pad.PlugIn();
    pad.Press({round});
    RunTo(t += 100);
    EXPECT_EQ(changes.size(), 1u);
  }
}

TEST_F(Polling, TheResultOfAcquireIsIgnored) {
  BeginAndForget(10);
  simulation.FailNext("Poll", platform::DIERR_INPUTLOST);
  simulation.FailNext("Acquire", platform::DIERR_UNPLUGGED);
  RunTo(20);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"Poll", "Acquire"}));
  RunTo(40);
  EXPECT_EQ(polls.size(), 2u);
  EXPECT_TRUE(changes.empty());
}

// Rest.

// A poll callback that has nothing to do while `rests` is set.
struct Rest : Polling {
  Rest() { manager.SetPollCallback(&Rest::OnRestingPoll, this); }
  static void OnRestingPoll(DeviceManager* device, const DIJOYSTATE2* state, void* context) {
    OnPoll(device, state, static_cast<Polling*>(static_cast<Rest*>(context)));
    if (static_cast<Rest*>(context)->rests) device->NothingUntilChange();
  }
  std::vector<std::uint64_t> PollTimes() {
    std::vector<std::uint64_t> times;
    for (const Delivery& poll : polls) times.push_back(poll.t);
    polls.clear();
    return times;
  }
  using Times = std::vector<std::uint64_t>;

  bool rests = true;
};

TEST_F(Rest, TheFirstPollThatFindsNothingNewIsTheLast) {
  Begin();
  RunTo(3'600'000);
  EXPECT_EQ(PollTimes(), (Times{10, 20}));
  EXPECT_EQ(CountDeviceCalls(simulation, "Poll"), 2);
}

TEST_F(Rest, ACallbackThatSaysNothingIsCalledEachPeriod) {
  rests = false;
  Begin();
  RunTo(50);
  EXPECT_EQ(PollTimes(), (Times{10, 20, 30, 40, 50}));
  rests = true;
  RunTo(100);
  EXPECT_EQ(PollTimes(), Times{60});
}

TEST_F(Rest, AChangeIsSeenAtThePointOfTheGridThatWouldHaveSeenIt) {
  const std::uint64_t begun = 1000;
  for (std::uint64_t t = begun + 1; t <= begun + 20; ++t) {
    for (const bool isPlanned : {true, false}) {
      SCOPED_TRACE(std::to_string(t) + (isPlanned ? " planned" : " by hand"));
      const std::uint64_t base = (t - 1) / 20 * 20;
      Select();
      Begin();
      RunTo(base);
      Forget();
      if (isPlanned) {
        pad.ChangeAt(start + t, Buttons({1}));
        RunTo(t);
      } else {
        RunTo(t);
        pad.Press({1});
      }
      RunTo(base + 100);
      ASSERT_EQ(changes.size(), 1u);
      // By hand, after all that the machine does at that millisecond.
      EXPECT_EQ(changes[0].t, (t + (isPlanned ? 9 : 10)) / 10 * 10);
      pad.Press({});
    }
  }
}

TEST_F(Rest, ChangesWithinOnePeriodAreOne) {
  BeginAndForget(1000);
  pad.ChangeAt(start + 1001, Buttons({1}));
  pad.ChangeAt(start + 1009, Buttons({1, 2}));
  RunTo(2000);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].t, 1010u);
  EXPECT_NE(changes[0].state.rgbButtons[1], 0);
}

TEST_F(Rest, WakeBringsOneTickOnTheGrid) {
  BeginAndForget(1000);
  RunTo(1003);
  manager.Wake();
  RunTo(1100);
  EXPECT_EQ(PollTimes(), Times{1010});
  manager.Wake();  // at a point of the grid that has passed
  RunTo(1200);
  EXPECT_EQ(PollTimes(), Times{1110});
  manager.EnablePollCallback();
  RunTo(1300);
  EXPECT_EQ(PollTimes(), Times{1210});
  manager.SetPollCallback(&Rest::OnRestingPoll, this);
  RunTo(1400);
  EXPECT_EQ(PollTimes(), Times{1310});
}

TEST_F(Rest, ALostDeviceIsAskedForOnceAndTakenUpOnTheGrid) {
  BeginAndForget(1000);
  pad.ChangeAt(start + 1003, [] {
    StateChange lost;
    lost.hasLost = lost.lost = true;
    return lost;
  }());
  RunTo(100'000);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"Poll", "Acquire"}));
  pad.Press({1});  // while it is lost, nobody sees it
  RunTo(100'004);
  pad.Return();
  RunTo(200'000);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].t, 100'010u);
}

TEST_F(Rest, DeliveredAnewAStateThatStaysCountsAsAChangeAtTheNextTick) {
  pad.Press({1});
  BeginAndForget(1000);
  RunTo(1003);
  manager.DeliverAnew();
  RunTo(2000);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0].t, 1010u);
  EXPECT_NE(changes[0].state.rgbButtons[0], 0);
}

TEST_F(Rest, ADeviceThatGoesAndComesBackIsToldOnceEachAtTheTickThatSeesIt) {
  struct Told {
    Rest* self;
    std::vector<std::string> lines;
  } told{this, {}};
  manager.SetPresenceCallback(
      [](bool answers, void* context) {
        auto& there = *static_cast<Told*>(context);
        EXPECT_TRUE(there.self->manager.deviceLock.IsTaken());
        EXPECT_EQ(there.self->manager.Answers(), answers);
        there.lines.push_back(std::to_string(there.self->Now()) + (answers ? " back" : " gone"));
      },
      &told);
  BeginAndForget(1000);
  EXPECT_TRUE(manager.Answers());
  RunTo(1003);
  pad.Lose();
  RunTo(2003);
  EXPECT_EQ(told.lines, std::vector<std::string>{"1010 gone"});
  EXPECT_FALSE(manager.Answers());
  pad.Return();
  RunTo(3000);
  ASSERT_EQ(told.lines.size(), 2u);
  EXPECT_EQ(told.lines[1].substr(4), " back");
  EXPECT_TRUE(manager.Answers());
  pad.Lose();
  RunTo(4000);
  EXPECT_FALSE(manager.Answers());
  pad.Return();
  ASSERT_TRUE(manager.SelectDevice(0));
  EXPECT_TRUE(manager.Answers()) << "until the first poll of a selection says otherwise";
  manager.SetPresenceCallback(nullptr, nullptr);
}

TEST_F(Rest, AFailureThatTheDeviceCanNotExplainIsTriedAgainAtEachTick) {
  BeginAndForget(1000);
  manager.Wake();
  simulation.FailNext("Poll", platform::DIERR_INPUTLOST, 3);
  simulation.FailNext("Acquire", platform::DIERR_UNPLUGGED, 3);
  RunTo(2000);
  EXPECT_EQ(CountDeviceCalls(simulation, "Acquire"), 3);
  EXPECT_EQ(PollTimes(), Times{1040});
}

TEST_F(Rest, AtOnceAChangeIsReadAsItComesAndTheNextAPeriodLater) {
  manager.SetAnswerAtOnce(true);
  BeginAndForget(1000);
  pad.ChangeAt(start + 1003, Buttons({1}));
  pad.ChangeAt(start + 1004, Buttons({1, 2}));
  pad.ChangeAt(start + 1200, Buttons({}));
  RunTo(1500);
  EXPECT_EQ(PollTimes(), (Times{1003, 1013, 1023, 1200, 1210}));
  pad.Press({1});
  RunTo(1600);
  EXPECT_EQ(PollTimes(), (Times{1500, 1510}));
  manager.Wake();  // nothing new of the device: at a period's multiple of the last
  RunTo(1700);
  EXPECT_EQ(PollTimes(), Times{1610});
}

TEST_F(Rest, AtOnceATapWithinOnePeriodIsTwoChanges) {
  manager.SetAnswerAtOnce(true);
  BeginAndForget(1000);
  pad.ChangeAt(start + 1001, Buttons({1}));  // read at once
  pad.ChangeAt(start + 1003, Buttons({1, 2}));
  pad.ChangeAt(start + 1004, Buttons({1}));
  pad.ChangeAt(start + 1005, Buttons({}));
  RunTo(1500);
  std::vector<std::string> held;
  for (const Delivery& change : changes) {
    held.push_back(std::to_string(change.t) + ":");
    for (const unsigned button : {1u, 2u})
      if (change.state.rgbButtons[button - 1]) held.back() += " " + std::to_string(button);
  }
  EXPECT_EQ(held, (std::vector<std::string>{"1001: 1", "1011: 1 2", "1021:"}));
}

// Callbacks.

TEST_F(Polling, ACallbackThatIsNotEnabledIsNotCalled) {
  Select();
  pad.Press({1});
  RunTo(50);
  EXPECT_EQ(CountDeviceCalls(simulation, "SetEvent 2"), 1);
  EXPECT_TRUE(polls.empty());
  EXPECT_TRUE(changes.empty());

  manager.EnablePollCallback();
  RunTo(70);
  EXPECT_EQ(polls.size(), 2u);
  EXPECT_TRUE(changes.empty());

  manager.EnableChangeCallback();
  RunTo(90);
  // What changed before is not told afterwards.
  EXPECT_TRUE(changes.empty());
  pad.Press({2});
  RunTo(110);
  EXPECT_EQ(changes.size(), 1u);
}

TEST_F(Polling, AnEnabledCallbackThatIsNotSetIsNotCalled) {
  manager.SetPollCallback(nullptr, this);
  manager.SetChangeCallback(nullptr, this);
  Begin();
  RunTo(50);
  EXPECT_EQ(CountDeviceCalls(simulation, "GetDeviceState"),
            2);  // the change, and the rest after it
  EXPECT_TRUE(polls.empty());
  EXPECT_TRUE(changes.empty());

  manager.SetPollCallback(&Polling::OnPoll, this);
  manager.SetChangeCallback(&Polling::OnChange, this);
  pad.Press({1});
  RunTo(70);
  EXPECT_EQ(polls.size(), 2u);
  EXPECT_EQ(changes.size(), 1u);
}

TEST_F(Polling, SettingACallbackWaitsForTheOneUnderWay) {
  Begin();
  changeTakes = 300;
  RunTo(10);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(Now(), 10u);
  manager.SetChangeCallback(nullptr, nullptr);
  EXPECT_GE(Now(), 310u);
  pad.Press({1});
  RunTo(400);
  EXPECT_EQ(changes.size(), 1u);
}

TEST_F(Polling, ACallbackThatIsTakenAwayWhileAChangeWaitsForTheLockIsNotCalled) {
  manager.SetPollCallback(
      [](DeviceManager* device, const DIJOYSTATE2*, void*) {
        platform::clock().Sleep(5);  // the notification thread is up and wants the lock
        device->SetChangeCallback(nullptr, nullptr);
      },
      nullptr);
  Begin();
  RunTo(30);
  EXPECT_EQ(CountDeviceCalls(simulation, "SetEvent 2"), 1);
  EXPECT_TRUE(changes.empty());
  EXPECT_EQ(simulation.LivingThreads(), 1u);
}

// The interval.

TEST(PollInterval, StartsAt33WithinTheLimitsOfTheTimer) {
  struct Case {
    const char* name;
    std::uint32_t min, max, interval;
  };
  const Case cases[] = {
      {"inside", 1, 1000, 33},           {"raised to the shortest", 50, 1000, 50},
      {"at the shortest", 33, 1000, 33}, {"lowered to the longest", 1, 20, 20},
      {"at the longest", 1, 33, 33},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Simulation simulation;
    simulation.SetTimerLimits(c.min, c.max);
    DeviceManager manager(0);
    EXPECT_EQ(manager.TimerMin(), c.min);
    EXPECT_EQ(manager.TimerMax(), c.max);
    EXPECT_EQ(manager.PollInterval(), c.interval);
  }
}

TEST(PollInterval, IsOnly33WhereTheTimerDoesNotTellItsLimits) {
  Simulation simulation;
  simulation.SetTimerLimits(1, 1000);
  simulation.FailNext("timeGetDevCaps");
  DeviceManager manager(0);
  EXPECT_EQ(manager.TimerMin(), 33u);
  EXPECT_EQ(manager.TimerMax(), 33u);
  EXPECT_EQ(manager.PollInterval(), 33u);
  EXPECT_FALSE(manager.SetPollInterval(32));
  EXPECT_TRUE(manager.SetPollInterval(33));
  EXPECT_FALSE(manager.SetPollInterval(34));
}

TEST(PollInterval, IsRefusedOutsideTheLimits) {
  const struct {
    std::uint32_t min, max;
    std::vector<std::uint32_t> bad, good;
  } cases[] = {{2, 500, {0, 1, 501, 0xFFFFFFFF}, {2, 499, 500}},
               {1, 1000, {0, 1001}, {1, 1000}},
               {0, 1000, {1001}, {0, 1000}}};
  for (const auto& c : cases) {
    Simulation simulation;
    simulation.SetTimerLimits(c.min, c.max);
    DeviceManager manager(0);
    for (const std::uint32_t bad : c.bad) {
      EXPECT_FALSE(manager.SetPollInterval(bad)) << bad;
      EXPECT_EQ(manager.PollInterval(), 33u);
    }
    for (const std::uint32_t good : c.good) {
      EXPECT_TRUE(manager.SetPollInterval(good)) << good;
      EXPECT_EQ(manager.PollInterval(), good);
    }
  }
}

TEST_F(Polling, ANewIntervalCountsFromTheNextSelection) {
  Begin();
  RunTo(100);
  EXPECT_EQ(polls.size(), 10u);
  ASSERT_TRUE(manager.SetPollInterval(25));
  RunTo(200);
  EXPECT_EQ(polls.size(), 20u);

  simulation.ClearCalls();
  ASSERT_TRUE(manager.ReselectDevice());
  // The grain that was asked for is given back, not the new one.
  EXPECT_EQ(CountDeviceCalls(simulation, "timeEndPeriod 10"), 1);
  EXPECT_EQ(CountDeviceCalls(simulation, "timeBeginPeriod 25"), 1);
  EXPECT_EQ(CountDeviceCalls(simulation, "timeSetEvent 25 1"), 1);
  start = simulation.Now();
  Forget();
  RunTo(100);
  ASSERT_EQ(polls.size(), 4u);
  EXPECT_EQ(polls[0].t, 25u);
}

TEST_F(Polling, WithoutATimerTheDeviceIsSelectedAndNotPolled) {
  simulation.FailNext("timeSetEvent");
  Begin();
  EXPECT_TRUE(manager.DeviceSelected());
  RunTo(500);
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  EXPECT_EQ(manager.PeekError(nullptr), 0);
  manager.StopDevice();
  EXPECT_EQ(DeviceCalls(simulation),
            (Calls{"timeEndPeriod 10", "SetEvent 1", "ThreadEnded notification 0", "Sleep 100",
                   "Unacquire", "Release"}));
}

// The notification thread.

TEST_F(Polling, TheNotificationThreadIsTimeCriticalAndEndsWithZero) {
  Begin();
  EXPECT_TRUE(simulation.Calls().empty());  // the start didn't wait for it
  RunTo(5);
  EXPECT_EQ(simulation.Calls(), Calls{"SetCurrentThreadPriority 15"});
  manager.StopDevice();
  EXPECT_EQ(CountDeviceCalls(simulation, "ThreadEnded notification 0"), 1);
}

TEST_F(Polling, TheNotificationThreadEndsWithTwoWhenItCannotWait) {
  simulation.FailAlways("WaitForMultipleObjects");
  Begin();
  RunTo(50);
  EXPECT_EQ(CountDeviceCalls(simulation, "ThreadEnded notification 2"), 1);
  // Polling goes on by itself.
  EXPECT_EQ(polls.size(), 5u);
  EXPECT_TRUE(changes.empty());
}

TEST(NotificationThread, EndsWithOneWhereAnEventIsMissing) {
  for (const char* missing : {"CreateEventA manual", "CreateEventA auto"}) {
    SCOPED_TRACE(missing);
    Simulation simulation;
    simulation.LogCalls(true);
    simulation.AddDevice({});
    simulation.FailNext(missing);
    DeviceManager manager(0);
    ASSERT_TRUE(manager.SelectDevice(0));
    simulation.RunFor(5);
    EXPECT_EQ(CountDeviceCalls(simulation, "ThreadEnded notification 1"), 1);
  }
}

TEST_F(Polling, WithoutANotificationThreadPollingGoesOn) {
  simulation.FailNext("CreateThread");
  Begin();
  RunTo(50);
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(polls.size(), 5u);
  EXPECT_TRUE(changes.empty());
}

TEST_F(Polling, AChangeThatNobodyTookIsForgottenAtTheNextSelection) {
  simulation.FailAlways("WaitForMultipleObjects");
  Begin();
  RunTo(50);
  EXPECT_EQ(CountDeviceCalls(simulation, "SetEvent 2"), 1);
  simulation.Mend("WaitForMultipleObjects");
  simulation.FailNext("timeSetEvent");
  Select();
  RunTo(500);
  EXPECT_TRUE(changes.empty());
}

TEST_F(Polling, EachSelectionBeginsWithAChange) {
  Begin();
  RunTo(50);
  EXPECT_EQ(changes.size(), 1u);
  for (int i = 0; i < 3; ++i) {
    Select();
    RunTo(50);
    EXPECT_EQ(polls.size(), 5u);
    EXPECT_EQ(changes.size(), 1u);
  }
}

TEST_F(Polling, StopDeviceWaitsForTheCallbackUnderWay) {
  Begin();
  changeTakes = 1000;
  RunTo(10);
  ASSERT_EQ(changes.size(), 1u);
  simulation.ClearCalls();
  manager.StopDevice();
  EXPECT_EQ(Now(), 1010u + 100u);
  EXPECT_EQ(DeviceCalls(simulation),
            (Calls{"timeKillEvent 1", "timeEndPeriod 10", "SetEvent 1",
                   "ThreadEnded notification 0", "Sleep 100", "Unacquire", "Release"}));
  EXPECT_FALSE(manager.deviceLock.IsTaken());
}

// Nothing recovers from this but a new manager; what matters is that it neither waits for ever nor
// keeps the device.
TEST_F(Polling, ACallbackThatIsEndedByForceKeepsTheLockAndNothingElse) {
  Begin();
  changeTakes = 1000000;
  manager.stopTimeout = 200;
  RunTo(10);
  ASSERT_EQ(changes.size(), 1u);
  simulation.ClearCalls();
  manager.StopDevice();
  EXPECT_EQ(Now(), 10u + 200u + 100u);
  EXPECT_EQ(DeviceCalls(simulation),
            (Calls{"timeKillEvent 1", "timeEndPeriod 10", "SetEvent 1", "TerminateThread 3 1000",
                   "Sleep 100", "Unacquire", "Release"}));
  EXPECT_EQ(simulation.LivingThreads(), 0u);
  EXPECT_TRUE(manager.deviceLock.IsTaken());

  Select();
  RunTo(100);
  EXPECT_EQ(CountDeviceCalls(simulation, "Poll"), 0);
}

}  // namespace
}  // namespace kelvaro
