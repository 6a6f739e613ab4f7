#include "engine/control_engine.h"

#include <gtest/gtest.h>

#include "tests/engine/engine_fixture.h"

namespace kelvaro {
namespace {

class Engine : public EngineTest {};

TEST_F(Engine, StartsAtRest) {
  EXPECT_FALSE(engine.mouseActive);
  EXPECT_FALSE(engine.TestMode());
  EXPECT_FALSE(engine.MouseIsOn());
  EXPECT_FALSE(engine.IsDetecting());
  EXPECT_FALSE(engine.leftDown || engine.middleDown || engine.rightDown);
  EXPECT_EQ(engine.accumulatedX, 0.0);
  EXPECT_EQ(engine.accumulatedY, 0.0);
  EXPECT_EQ(engine.accumulatedWheel, 0.0);
  EXPECT_EQ(engine.snapshot.currentButtons, 0u);
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
}

TEST_F(Engine, AttachedItIsDrivenByThePad) {
  Add({.name = "a", .buttons = {1}});
  profile.mouseX = MouseInput(0);
  engine.mouseActive = true;
  auto& pad = Plug(10);
  RunTo(15);
  pad.Press({1});
  pad.MoveAxis("Axis_X0", kAxisMax);
  Hold(35, {}, 45);
  EXPECT_EQ(journal.Take(), "20 press a, 40 release a");
  EXPECT_EQ(MouseEvents(), "1 4 0 0, 1 4 0 0, 1 4 0 0");  // at 20, 30 and 40
}

// On the way back to the other side nothing is left of a count at one poll, which is no rest.
TEST_F(Engine, AnAxisThatIsPushedTheOtherWayMovesThePointerOn) {
  profile.mouseX = MouseInput(0);
  profile.mouseY = MouseInput(1);
  engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, 0);
  engine.ApplyMouseSlider(ControlEngine::kMovementDamperSlider, 0);
  engine.mouseActive = true;
  auto& pad = Plug(10);
  const struct {
    const char* axis;
    const char* moved;
  } rows[] = {{"Axis_X0", "1 1 0 0"}, {"Axis_Y0", "1 0 1 0"}};
  std::uint64_t at = 15;
  for (const auto& row : rows) {
    RunTo(at);
    pad.MoveAxis(row.axis, -8000);  // 0.3125 of a count at each of three polls
    RunTo(at + 30);
    pad.MoveAxis(row.axis, 8000);
    RunTo(at + 90);
    EXPECT_EQ(MouseEvents(), "") << row.axis;
    RunTo(at + 100);
    EXPECT_EQ(MouseEvents(), row.moved) << row.axis;
    pad.MoveAxis(row.axis, 0);
    at += 200;
  }
}

TEST_F(Engine, ChangesDuringALongReplayFoldIntoOne) {
  Add({.name = "long", .buttons = {1}, .pressMs = 100});
  Add({.name = "b", .buttons = {2}});
  Add({.name = "c", .buttons = {3}});
  auto& pad = Plug(10);
  Hold(15, {1}, 45);
  pad.Press({1, 2});  // never seen
  Hold(75, {1, 3}, 200);
  // The replay runs from 20 to 120. The tick at 120 still finds the device locked.
  EXPECT_EQ(journal.Take(), "20 press long, 130 press c");
}

TEST_F(Engine, AnyChangeOfTheStateIsADispatchForAnArmedControl) {
  Add({.name = "r", .buttons = {1}, .onPress = false});
  auto& pad = Plug(10);
  Hold(15, {1}, 35);
  pad.MoveAxis("Axis_Z0", 1);
  RunTo(100);
  EXPECT_EQ(journal.Take(), "40 press r, 40 release r");
}

TEST_F(Engine, LetGoReleasesWhatIsDownInTheOrderOfTheList) {
  Add({.name = "light", .buttons = {1}});
  Add({.name = "heavy", .buttons = {2, 3}, .more = {"more"}});
  Control* idle = Add({.name = "idle", .buttons = {4}});
  Dispatch({1, 2, 3});
  engine.LetGo();
  EXPECT_EQ(journal.Take(), "release heavy, release more, release light");
  EXPECT_EQ(Copy(idle).triggerDown, 0);
  for (const Control& control : profile.DispatchList) {
    EXPECT_EQ(control.triggerDown, 0);
  }
  EXPECT_EQ(MouseEvents(), "");
  engine.LetGo();
  EXPECT_EQ(journal.Take(), "") << "there is nothing left to let go of";
}

TEST_F(Engine, LetGoEndsRepeatingWithoutARelease) {
  Control* a = Add({.name = "a", .buttons = {1}, .repeats = true});
  Dispatch({1});
  journal.Take();
  engine.LetGo();
  EXPECT_EQ(journal.Take(), "");
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
  EXPECT_EQ(Copy(a).triggerDown, 0);
}

TEST_F(Engine, LetGoSendsTheMouseButtonsUpInOneCall) {
  profile.leftMask = MouseButtonMask(0);
  profile.middleMask = MouseButtonMask(1);
  profile.rightMask = MouseButtonMask(2);
  const struct {
    std::initializer_list<std::uint32_t> held;
    const char* events;
  } rows[] = {{{1}, "4 0 0 0"},     {{2}, "64 0 0 0"},       {{3}, "16 0 0 0"},
              {{1, 3}, "20 0 0 0"}, {{1, 2, 3}, "84 0 0 0"}, {{}, ""}};
  for (const auto& row : rows) {
    engine.Attach();
    engine.mouseActive = true;
    Dispatch({});
    Dispatch(row.held);
    MouseEvents();
    engine.LetGo();
    EXPECT_EQ(MouseEvents(), row.events);
    EXPECT_FALSE(engine.leftDown || engine.middleDown || engine.rightDown);
  }
}

TEST_F(Engine, LetGoLiftsMouseButtonsAlsoWhenTheMouseControlsWentOff) {
  profile.leftMask = MouseButtonMask(0);
  engine.mouseActive = true;
  Dispatch({1});
  MouseEvents();
  engine.mouseActive = false;
  engine.LetGo();
  EXPECT_EQ(MouseEvents(), "4 0 0 0");
}

TEST_F(Engine, LetGoComesToTheMouseAfterTheKeys) {
  // The action sends an event of its own, so that the two can be put in order.
  Control* a = Add({.name = "a", .buttons = {2}});
  FirstAction(*a).onRelease = [] {
    platform::input().keybd_event(0x41, 0x1e, platform::KEYEVENTF_KEYUP, 0);
  };
  profile.leftMask = MouseButtonMask(0);
  engine.mouseActive = true;
  Dispatch({1, 2});
  sim.ClearEvents();
  engine.LetGo();
  ASSERT_EQ(sim.Events().size(), 2u);
  EXPECT_EQ(sim.Events()[0].vk, 0x41);
  EXPECT_EQ(sim.Events()[1].flags, platform::MOUSEEVENTF_LEFTUP);
}

TEST_F(Engine, AfterLetGoNothingIsPressedAnew) {
  Add({.name = "a", .buttons = {1}});
  profile.mouseX = MouseInput(0);
  profile.leftMask = MouseButtonMask(4);
  engine.mouseActive = true;
  EXPECT_EQ(Dispatch({1}), "press a");
  engine.LetGo();
  EXPECT_EQ(journal.Take(), "release a");
  EXPECT_EQ(Dispatch({1, 2}), "");
  EXPECT_EQ(Dispatch({1, 5}), "");
  EXPECT_EQ(Poll(WithX(kAxisMax)), "");
  engine.Attach();
  EXPECT_EQ(Dispatch({1, 2}), "press a");
  EXPECT_EQ(Poll(WithX(kAxisMax)), "1 4 0 0");
}

TEST_F(Engine, LetGoWaitsForAReplayUnderWay) {
  Add({.name = "a", .buttons = {1}, .pressMs = 30});
  Plug(5);
  Hold(18, {1}, 25);
  engine.LetGo();
  EXPECT_EQ(sim.Now() - start, 50u);
  EXPECT_EQ(journal.Take(), "20 press a, 50 release a");
  RunTo(1000);
  EXPECT_EQ(journal.Take(), "") << "the button is still held";
}

TEST_F(Engine, LetGoWaitsForAReplayOfTheRepeatWorker) {
  Add({.name = "a", .buttons = {1}, .repeats = true, .pressMs = 30});
  Plug(5);
  Hold(18, {1}, 560);
  EXPECT_EQ(journal.Take(), "20 press a, 550 press a");
  engine.LetGo();
  EXPECT_EQ(sim.Now() - start, 580u);
  RunTo(2000);
  EXPECT_EQ(journal.Take(), "");
}

TEST_F(Engine, NothingRepeatsWhileLetGoReleasesTheOthers) {
  Add({.name = "slow", .buttons = {1, 2}, .releaseMs = 100});
  Add({.name = "r", .buttons = {3}, .repeats = true, .delay = 0, .speed = 0});
  Plug(5);
  Hold(18, {1, 2, 3}, 22);
  EXPECT_EQ(journal.Take(), "20 press slow, 20 press r, 20 press r");
  engine.LetGo();
  EXPECT_EQ(sim.Now() - start, 122u);
  EXPECT_EQ(journal.Take(), "22 release slow");
}

// Were it not held, a dispatch that has begun could fire after the Controls have been let go.
TEST_F(Engine, LetGoHoldsTheDeviceThroughout) {
  Control* a = Add({.name = "a", .buttons = {1}});
  bool takenAtTheKeys = false;
  FirstAction(*a).onRelease = [&] { takenAtTheKeys = device.deviceLock.IsTaken(); };
  profile.leftMask = MouseButtonMask(1);
  engine.mouseActive = true;
  Dispatch({1, 2});
  bool takenAtTheMouse = false;
  sim.OnEvent([&](const auto&) { takenAtTheMouse = device.deviceLock.IsTaken(); });
  engine.LetGo();
  EXPECT_TRUE(takenAtTheKeys);
  EXPECT_TRUE(takenAtTheMouse);
}

TEST_F(Engine, PausedItTakesNoStateAndHoldsNothing) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "r", .buttons = {2}, .repeats = true, .delay = 0, .speed = 0});
  profile.mouseX = MouseInput(0);
  profile.leftMask = MouseButtonMask(4);
  engine.mouseActive = true;
  Dispatch({1, 2, 5});
  MouseEvents();
  engine.Pause();
  EXPECT_TRUE(engine.IsPaused());
  EXPECT_EQ(journal.Take(), "release a");
  EXPECT_EQ(MouseEvents(), "4 0 0 0");
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
  EXPECT_EQ(Dispatch({2}), "");
  EXPECT_EQ(Dispatch({1, 5}), "");
  EXPECT_EQ(Poll(WithX(kAxisMax)), "");
  engine.Attach();
  EXPECT_EQ(Dispatch({1}), "") << "attached anew it is still paused";
}

TEST_F(Engine, ResumedItTakesWhatIsHeldAsAtTheStartOfARun) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "release", .buttons = {2}, .onPress = false});
  Plug(10);
  Hold(15, {1, 2}, 35);
  EXPECT_EQ(journal.Take(), "20 press a");
  engine.Pause();
  EXPECT_EQ(journal.Take(), "35 release a");
  Hold(45, {1}, 65);
  engine.Resume();
  EXPECT_FALSE(engine.IsPaused());
  RunTo(200);
  EXPECT_EQ(journal.Take(), "70 press a") << "it is held, and the other was let go meanwhile";
  engine.Resume();
  Hold(200, {}, 300);
  EXPECT_EQ(journal.Take(), "210 release a") << "it wasn't paused";
}

TEST_F(Engine, ResumedItKnowsNothingOfWhatWasPressedBeside) {
  Add({.name = "release", .buttons = {2}, .onPress = false});
  Plug(10);
  Hold(15, {2}, 25);
  Hold(25, {3}, 35);  // spoils it
  engine.Pause();
  Hold(45, {2}, 55);
  engine.Resume();
  Hold(75, {}, 95);
  EXPECT_EQ(journal.Take(), "80 press release, 80 release release");
}

TEST_F(Engine, ResumedItPressesTheMouseButtonThatIsHeldStill) {
  profile.leftMask = MouseButtonMask(4);
  engine.mouseActive = true;
  Plug(10);
  Hold(15, {5}, 35);
  engine.Pause();
  EXPECT_EQ(MouseEvents(), "2 0 0 0, 4 0 0 0");
  engine.Resume();
  RunTo(55);
  EXPECT_EQ(MouseEvents(), "2 0 0 0");
}

TEST_F(Engine, WithoutADeviceItLetsGoOfTheMouseButtonsOnlyWhileTheMouseControlsAreOn) {
  Add({.name = "a", .buttons = {1}});
  profile.leftMask = MouseButtonMask(4);
  engine.mouseActive = true;
  Dispatch({1, 5});
  MouseEvents();
  engine.mouseActive = false;
  engine.LetGoWithoutDevice();
  EXPECT_EQ(journal.Take(), "release a");
  EXPECT_EQ(MouseEvents(), "");
  engine.mouseActive = true;
  engine.LetGoWithoutDevice();
  EXPECT_EQ(MouseEvents(), "4 0 0 0");
}

TEST_F(Engine, APauseStopsTheChangeUnderWayBehindTheReplayUnderWay) {
  Add({.name = "a", .buttons = {1}, .pressMs = 30});
  Add({.name = "b", .buttons = {2}});
  Plug(10);
  Hold(15, {1, 2}, 25);
  engine.Pause();
  EXPECT_EQ(sim.Now() - start, 50u);
  RunTo(200);
  EXPECT_EQ(journal.Take(), "20 press a, 50 release a");
}

TEST_F(Engine, ReleaseAllLetsGoOnceAndOfWhatIsHeldNothingFiresUntilItWasLetGo) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "r", .buttons = {2}, .repeats = true, .delay = 0, .speed = 0});
  Add({.name = "up", .buttons = {4}});
  Plug(10);
  Hold(15, {1, 2}, 15);
  RunTo(22);
  journal.Take();
  engine.ReleaseAll();
  EXPECT_EQ(journal.Take(), "22 release a");
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
  engine.ReleaseAll();
  Hold(30, {1, 2, 4}, 50);
  EXPECT_EQ(journal.Take(), "40 press up") << "the other two are still held";
  Hold(50, {}, 70);
  EXPECT_EQ(journal.Take(), "60 release up") << "the other two are up already";
  Hold(70, {1}, 90);
  EXPECT_EQ(journal.Take(), "80 press a");
  engine.LetGo();
  EXPECT_EQ(journal.Take(), "90 release a");
}

TEST_F(Engine, ReleaseAllLiftsMouseButtonsAlsoWhenTheMouseControlsWentOff) {
  profile.leftMask = MouseButtonMask(4);
  engine.mouseActive = true;
  Dispatch({5});
  MouseEvents();
  engine.mouseActive = false;
  engine.ReleaseAll();
  EXPECT_EQ(MouseEvents(), "4 0 0 0");
}

// An observer may come and go while the engine runs.
TEST_F(Engine, AnObserverHearsFromWhenItIsSetUntilItIsTakenAway) {
  struct Observer final : DispatchObserver {
    void ChangeBegins(const DeviceSnapshot&) override { ++changes; }
    void ChangeEnds() override {}
    void MouseTakes(std::uint64_t) override {}
    void ControlJudged(const Control&, Verdict, const Control*) override {}
    void MouseSwitched(bool) override {}
    void RepeatLost(const Control&, const Control&) override {}
    void Repeats(const Control&) override {}
    int changes = 0;
  } observer;
  Dispatch({1});
  engine.SetObserver(&observer);
  Dispatch({2});
  engine.SetObserver(nullptr);
  Dispatch({1});
  EXPECT_EQ(observer.changes, 1);
}

TEST_F(Engine, LetGoLeavesTheLocksFree) {
  engine.LetGo();
  EXPECT_FALSE(device.deviceLock.IsTaken());
  EXPECT_FALSE(engine.mouseLock.IsTaken());
  EXPECT_FALSE(profile.profileLock.IsTaken());
  EXPECT_FALSE(engine.repeatWorker.repeatLock.IsTaken());
}

// What stands in the settings is one word to a reader: both halves of an input change together.
TEST(SharedInput, GoesInAndComesOutWhole) {
  Relaxed<TriggerItem> shared{TriggerItem{11, 0, 0}};
  shared = TriggerItem{0xFFFF, 0x1234, 0xFEDC};
  const TriggerItem item = shared;
  EXPECT_EQ(item.kind, 0xFFFF);
  EXPECT_EQ(item.index, 0x1234);
  EXPECT_EQ(item.value, 0xFEDC);
  const Relaxed<TriggerItem> copy = shared;
  EXPECT_EQ(static_cast<TriggerItem>(copy).value, 0xFEDC);
}

}  // namespace
}  // namespace kelvaro
