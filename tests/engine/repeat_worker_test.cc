#include "engine/repeat_worker.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/device/device_calls.h"
#include "tests/engine/engine_fixture.h"

namespace kelvaro {
namespace {

// The pad is polled every 5 ms, the worker looks every 10, both counted from the same moment.
class Repeat : public EngineTest {
 protected:
  Repeat() {
    Plug(5);
    RunTo(12);
  }
};

TEST_F(Repeat, AHeldControlIsReplayedAtOnceThenAfterItsDelayThenAtItsSpeed) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(18, {1}, 680);
  EXPECT_EQ(journal.Take(), "20 press a, 520 press a, 570 press a, 620 press a, 670 press a");
  pad->Press({});
  RunTo(3000);
  EXPECT_EQ(journal.Take(), "") << "no further replay and no release";
}

TEST_F(Repeat, IntervalsAreRoundedUpToTheLooks) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .delay = 493, .speed = 45});
  Hold(22, {1}, 630);
  // Due at 518, then 565 and 615, each counted from the look before.
  EXPECT_EQ(journal.Take(), "25 press a, 520 press a, 570 press a, 620 press a");
}

TEST_F(Repeat, ADelayThatIsAMillisecondShortWaitsForTheNextLook) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(22, {1}, 590);
  EXPECT_EQ(journal.Take(), "25 press a, 530 press a, 580 press a");
}

TEST_F(Repeat, WithoutDelayAndSpeedEachLookReplays) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .delay = 0, .speed = 0});
  Hold(18, {1}, 40);
  EXPECT_EQ(journal.Take(), "20 press a, 20 press a, 30 press a, 40 press a");
}

TEST_F(Repeat, ItLooksFirstAtTheNextTimeOfALook) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .delay = 0, .speed = 0});
  Hold(22, {1}, 42);
  EXPECT_EQ(journal.Take(), "25 press a, 30 press a, 40 press a");
}

TEST_F(Repeat, ALaterControlTakesTheSlotAndKeepsItWhenTheEarlierIsLetGo) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Add({.name = "b", .buttons = {2}, .repeats = true});
  Hold(18, {1}, 538);
  EXPECT_EQ(journal.Take(), "20 press a, 520 press a");
  pad->Press({1, 2});
  RunTo(1098);
  EXPECT_EQ(journal.Take(), "540 press b, 1040 press b, 1090 press b");
  pad->Press({2});
  RunTo(1200);
  EXPECT_EQ(journal.Take(), "1140 press b, 1190 press b");
}

TEST_F(Repeat, LettingGoOfTheLaterEndsAllThoughTheEarlierIsStillHeld) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Add({.name = "b", .buttons = {2}, .repeats = true});
  Hold(18, {1}, 38);
  pad->Press({1, 2});
  Hold(98, {1}, 3000);
  EXPECT_EQ(journal.Take(), "20 press a, 40 press b");
}

TEST_F(Repeat, PressedAnewItWaitsForItsDelayAgain) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(18, {1}, 598);
  pad->Press({});
  Hold(608, {1}, 1170);
  EXPECT_EQ(journal.Take(),
            "20 press a, 520 press a, 570 press a, 610 press a, 1110 press a, 1160 press a");
}

TEST_F(Repeat, TheTimeOfASlowReplayIsNotPartOfTheInterval) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .pressMs = 30});
  Hold(18, {1}, 740);
  // 20 to 50, 550 to 580, 630 to 660, 710 to 740.
  EXPECT_EQ(journal.Take(), "20 press a, 550 press a, 630 press a, 710 press a");
}

TEST_F(Repeat, ADispatchThatEndsTheRepeatingControlWaitsForItsReplay) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .pressMs = 30});
  Add({.name = "b", .buttons = {2}});
  Hold(18, {1}, 552);
  pad->Press({});        // polled at 555, in the replay from 550 to 580
  Hold(558, {2}, 1000);  // the polls at 560 to 580 find the device locked
  EXPECT_EQ(journal.Take(), "20 press a, 550 press a, 585 press b");
}

TEST_F(Repeat, AWrapOfTheTickCounterDoesNoHarm) {
  // The counter is 0 at 296, and looks still come at its multiples of 10.
  sim.SetTickOffset(0u - static_cast<std::uint32_t>(start + 296));
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(18, {1}, 295);
  EXPECT_EQ(platform::clock().GetTickCount(), 0xFFFFFFFFu);
  RunTo(580);
  EXPECT_EQ(journal.Take(), "20 press a, 520 press a, 570 press a");
}

TEST_F(Repeat, NothingIsLookedAtWhileNothingRepeats) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  sim.LogCalls(true);
  RunTo(3'600'000);
  EXPECT_EQ(test::CountDeviceCalls(sim, "Sleep 10"), 0);
  Hold(3'600'018, {1}, 3'600'598);
  EXPECT_EQ(journal.Take(), "3600020 press a, 3600520 press a, 3600570 press a");
  pad->Press({});
  RunTo(3'600'700);
  sim.ClearCalls();
  RunTo(7'200'000);
  EXPECT_EQ(sim.Calls(), test::Calls{});
}

TEST(RepeatWithoutEvents, LooksEachTenMilliseconds) {
  platform::simulation::Simulation sim;
  sim.FailNext("CreateEventA auto");
  RepeatWorker worker;
  sim.LogCalls(true);
  worker.Start(false, 0);
  sim.RunFor(95);
  EXPECT_EQ(test::CountDeviceCalls(sim, "Sleep 10"), 10);
  worker.Stop();
}

// With each time between two looks, and at a look.
TEST_F(Repeat, LooksComeWhenTheyWouldHaveComeWithoutTheSleep) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .delay = 7});
  for (std::uint64_t t = 1000; t < 1100; t += 5) {
    Hold(t + 500 * (t - 1000) - 2, {1}, t + 500 * (t - 1000) + 21);
    const std::uint64_t pressed = t + 500 * (t - 1000);
    const std::uint64_t due = (pressed + 7 + 9) / 10 * 10;
    EXPECT_EQ(journal.Take(),
              std::to_string(pressed) + " press a, " + std::to_string(due) + " press a");
    pad->Press({});
  }
}

TEST_F(Repeat, EachReplayRunsAllActionsAndTellsThemThatItRepeats) {
  Control* a =
      Add({.name = "a", .buttons = {1}, .repeats = true, .hold = 3, .pause = 4, .more = {"b"}});
  Hold(18, {1}, 560);
  EXPECT_EQ(journal.Take(), "20 press a, 20 press b, 520 press a, 520 press b");
  const std::vector<RecordingAction::Arguments> expected(2, {1, 3, 4});
  EXPECT_EQ(FirstAction(*a).replays, expected);
}

TEST_F(Repeat, AControlThatDoesNotRepeatAnyMoreIsLeftAlone) {
  Control* a = Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(18, {1}, 100);
  Copy(a).repeatEnabled = 0;
  RunTo(1000);
  EXPECT_EQ(journal.Take(), "20 press a");
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(a));
}

TEST_F(Repeat, ClearEndsItBeforeTheListIsRebuilt) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(18, {1}, 100);
  engine.repeatWorker.Clear();
  profile.RebuildDispatchList();
  RunTo(1000);
  EXPECT_EQ(journal.Take(), "20 press a");
}

TEST_F(Repeat, StartMarksTheControlAsWaitingFromNow) {
  RunTo(123);
  Control control;
  control.repeatStarted = 1;
  engine.repeatWorker.Start(&control);
  EXPECT_EQ(engine.repeatWorker.Repeating(), &control);
  EXPECT_EQ(control.repeatStarted, 0);
  EXPECT_EQ(control.repeatLastTick, platform::clock().GetTickCount());
  engine.repeatWorker.Clear();
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
  EXPECT_FALSE(engine.repeatWorker.repeatLock.IsTaken());
}

TEST_F(Repeat, TheFirstReplayOfTheWorkerTurnsDelayIntoSpeed) {
  Control* a = Add({.name = "a", .buttons = {1}, .repeats = true});
  Hold(18, {1}, 515);
  EXPECT_EQ(Copy(a).repeatStarted, 0);
  RunTo(525);
  EXPECT_EQ(Copy(a).repeatStarted, 1);
  EXPECT_EQ(Copy(a).repeatLastTick, start + 520);
}

TEST(RepeatWorker, StopsWhenAskedAndWhenItGoes) {
  platform::simulation::Simulation sim;
  {
    RepeatWorker worker;
    ASSERT_TRUE(worker.Start(true, WorkerThread::kPriorityOfCaller));
    EXPECT_FALSE(worker.Start(true, WorkerThread::kPriorityOfCaller)) << "it runs already";
    EXPECT_EQ(sim.LivingThreads(), 1u);
    const std::uint64_t asked = sim.Now();
    worker.Stop();
    EXPECT_LE(sim.Now() - asked, 10u) << "it looks once in 10 ms";
    EXPECT_EQ(sim.LivingThreads(), 0u);
    ASSERT_TRUE(worker.Start(true, WorkerThread::kPriorityOfCaller));
  }
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

// What becomes of its thread and of its event, which is the second one, at its end.
test::Calls EndOfARepeatWorker(platform::simulation::Simulation& sim) {
  auto worker = std::make_unique<RepeatWorker>();
  EXPECT_TRUE(worker->Start(false, WorkerThread::kPriorityOfCaller));
  sim.RunFor(5);
  sim.LogCalls(true);
  worker.reset();
  test::Calls calls = sim.Calls();
  std::erase_if(calls, [](const std::string& call) {
    return call != "ThreadEnded repeat 0" && call != "CloseHandle 2" && call != "CloseHandle -1";
  });
  return calls;
}

TEST(RepeatWorkerEnd, TheThreadEndsBeforeTheEventGoes) {
  platform::simulation::Simulation sim;
  EXPECT_EQ(EndOfARepeatWorker(sim), (test::Calls{"ThreadEnded repeat 0", "CloseHandle 2"}));
}

TEST(RepeatWorkerEnd, AnEventThatCouldNotBeMadeIsNotClosed) {
  platform::simulation::Simulation sim;
  sim.FailNext("CreateEventA auto");
  // The second handle is the thread's then.
  EXPECT_EQ(EndOfARepeatWorker(sim), (test::Calls{"ThreadEnded repeat 0", "CloseHandle 2"}));
}

}  // namespace
}  // namespace kelvaro
