#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "tests/engine/engine_fixture.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

class Dispatcher : public EngineTest {};

using DispatcherWithMouse = Dispatcher;

// --- One Control after another ------------------------------------------------------------------

TEST_F(Dispatcher, PressingTheSecondButtonFiresTheLongerAndLeavesTheShorterDown) {
  Add({.name = "one", .buttons = {1}});
  Add({.name = "both", .buttons = {1, 2}});
  EXPECT_EQ(Dispatch({1}), "press one");
  EXPECT_EQ(Dispatch({1, 2}), "press both");
  EXPECT_EQ(Dispatch({1}), "release both");
  EXPECT_EQ(Dispatch({}), "release one");
}

TEST_F(Dispatcher, BothButtonsInOneChangeFireOnlyTheLonger) {
  Control* one = Add({.name = "one", .buttons = {1}});
  Add({.name = "both", .buttons = {1, 2}});
  EXPECT_EQ(Dispatch({1, 2}), "press both");
  EXPECT_EQ(Copy(one).triggerDown, 0);
  EXPECT_EQ(Dispatch({1}), "release both, press one");
  EXPECT_EQ(Dispatch({}), "release one");
}

TEST_F(Dispatcher, OfTwoControlsWithTheSameTriggerTheFirstInTheListFires) {
  Add({.name = "first", .buttons = {3}});
  Add({.name = "second", .buttons = {3}});
  EXPECT_EQ(Dispatch({3}), "press first");
  EXPECT_EQ(Dispatch({}), "release first");
}

TEST_F(Dispatcher, ControlsWithoutCommonInputsFireInOneDispatch) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "b", .buttons = {2}});
  EXPECT_EQ(Dispatch({1, 2}), "press a, press b");
  EXPECT_EQ(Dispatch({}), "release a, release b");
}

TEST_F(Dispatcher, TheHeaviestGoesFirstWhereverItStandsInTheUsersList) {
  Add({.name = "a", .buttons = {1}});
  Add({.name = "bcd", .buttons = {2, 3, 4}});
  Add({.name = "ef", .buttons = {5, 6}});
  EXPECT_EQ(Dispatch({1, 2, 3, 4, 5, 6}), "press bcd, press ef, press a");
}

TEST_F(Dispatcher, OneThatIsDownIsNotPressedAgain) {
  Add({.name = "a", .buttons = {1}});
  EXPECT_EQ(Dispatch({1}), "press a");
  EXPECT_EQ(Dispatch({1, 2}), "");
  EXPECT_EQ(Dispatch({1}), "");
  EXPECT_EQ(Dispatch({}), "release a");
  EXPECT_EQ(Dispatch({2}), "");
}

TEST_F(Dispatcher, AReleaseControlPressesAndReleasesAtOnce) {
  Control* a = Add({.name = "a", .buttons = {1}, .onPress = false});
  EXPECT_EQ(Dispatch({1}), "");
  EXPECT_EQ(Dispatch({}), "press a, release a");
  EXPECT_EQ(Copy(a).triggerDown, 0);
  EXPECT_EQ(Dispatch({2}), "");
}

TEST_F(Dispatcher, SeveralActionsAreReplayedAndReleasedInTheirOrder) {
  Add({.name = "a", .buttons = {1}, .more = {"b", "c"}});
  EXPECT_EQ(Dispatch({1}), "press a, press b, press c");
  EXPECT_EQ(Dispatch({}), "release a, release b, release c");
}

TEST_F(Dispatcher, AReleaseControlLetsGoOfEachActionBeforeTheNext) {
  Add({.name = "a", .buttons = {1}, .onPress = false, .more = {"b"}});
  Dispatch({1});
  EXPECT_EQ(Dispatch({}), "press a, release a, press b, release b");
}

TEST_F(Dispatcher, ReplayGetsTheControlsRepeatFlagAndTimes) {
  Control* a = Add({.name = "a", .buttons = {1}, .hold = 30, .pause = 40});
  Control* b = Add({.name = "b", .buttons = {2}, .repeats = true, .hold = 5, .pause = 6});
  Dispatch({1, 2});
  ASSERT_EQ(FirstAction(*a).replays.size(), 1u);
  EXPECT_EQ(FirstAction(*a).replays[0], (RecordingAction::Arguments{0, 30, 40}));
  ASSERT_EQ(FirstAction(*b).replays.size(), 1u);
  EXPECT_EQ(FirstAction(*b).replays[0], (RecordingAction::Arguments{1, 5, 6}));
}

TEST_F(Dispatcher, ARepeatingControlGetsNoRelease) {
  Control* a = Add({.name = "a", .buttons = {1}, .repeats = true});
  EXPECT_EQ(Dispatch({1}), "press a");
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(a));
  EXPECT_EQ(Dispatch({}), "");
  EXPECT_EQ(Copy(a).triggerDown, 0);
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
}

TEST_F(Dispatcher, ARepeatingReleaseControlIsReplayedOnceAndNotHandedToTheWorker) {
  Control* a = Add({.name = "a", .buttons = {1}, .onPress = false, .repeats = true});
  Dispatch({1});
  EXPECT_EQ(Dispatch({}), "press a");
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
  EXPECT_EQ(Copy(a).triggerDown, 0);
}

TEST_F(Dispatcher, ALaterRepeatingControlTakesTheSlot) {
  Control* a = Add({.name = "a", .buttons = {1}, .repeats = true});
  Control* b = Add({.name = "b", .buttons = {2}, .repeats = true});
  Dispatch({1});
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(a));
  Dispatch({1, 2});
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(b));
  Dispatch({2});
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(b)) << "the end of another leaves the slot";
  Dispatch({});
  EXPECT_EQ(engine.repeatWorker.Repeating(), nullptr);
}

TEST_F(Dispatcher, AControlThatDoesNotRepeatLeavesTheSlotAlone) {
  Control* a = Add({.name = "a", .buttons = {1}, .repeats = true});
  Add({.name = "b", .buttons = {2}});
  Dispatch({1});
  Dispatch({1, 2});
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(a));
  EXPECT_EQ(Dispatch({1}), "release b");
  EXPECT_EQ(engine.repeatWorker.Repeating(), &Copy(a));
}

TEST_F(Dispatcher, AnEmptyListDoesNothing) {
  EXPECT_EQ(Dispatch({1}), "");
  EXPECT_EQ(engine.snapshot.previousButtons, 1u);
}

TEST_F(Dispatcher, AControlThatIsHeldOverARebuildOfTheListCountsAsFresh) {
  Control* a = Add({.name = "a", .buttons = {1}});
  EXPECT_EQ(Dispatch({1}), "press a");
  EXPECT_EQ(a->triggerDown, 0) << "the master list stays at rest";
  profile.RebuildDispatchList();
  EXPECT_EQ(Dispatch({1, 2}), "press a");
}

TEST_F(Dispatcher, AControlFiresAlsoWhenItsNoteFindsNoMemory) {
  // Without its note it can't silence its parts; nothing else changes.
  Add({.name = "one", .buttons = {1}});
  Add({.name = "both", .buttons = {1, 2}});
  {
    FailingAllocation fault(1, true);
    EXPECT_EQ(Dispatch({1, 2}), "press both, press one");
    EXPECT_EQ(fault.Failed(), 2u);
  }
  EXPECT_EQ(Dispatch({}), "release both, release one");
}

// --- Containment --------------------------------------------------------------------------------

TEST_F(Dispatcher, AHeldLongTriggerGoesOnSilencingItsParts) {
  Add({.name = "one", .buttons = {1}});
  Add({.name = "both", .buttons = {1, 2}});
  EXPECT_EQ(Dispatch({1, 2}), "press both");
  EXPECT_EQ(Dispatch({1, 2, 3}), "");
  EXPECT_EQ(Dispatch({1, 2}), "");
}

// The outer comes first, by its weight or by its place; both are active in `state`.
class DispatcherContainment : public Dispatcher {
 protected:
  void ExpectSilenced(const char* why, bool silenced, const DIJOYSTATE2& state, Mapping outer,
                      Mapping inner) {
    profile.Clear();
    outer.name = "outer";
    inner.name = "inner";
    Add(outer);
    Add(inner);
    EXPECT_EQ(Dispatch(state), silenced ? "press outer" : "press outer, press inner") << why;
  }
};

TEST_F(DispatcherContainment, IsSilencedOnlyWhenEveryInputIsInTheOther) {
  const DIJOYSTATE2 upRight = WithHat(5000);
  DIJOYSTATE2 upRightB1 = upRight;
  upRightB1.rgbButtons[0] = 1;
  DIJOYSTATE2 twoAxes = WithX(kAxisMax, {1, 2});
  twoAxes.lY = -kAxisMax;
  DIJOYSTATE2 banks = WithX(kAxisMax);
  banks.lVX = kAxisMax;
  const TriggerItem x = Axis(0, AxisPos);
  const Mapping b1AndX{.buttons = {1}, .items = {x}};

  ExpectSilenced("a button of two", true, Pad({1, 2}), {.buttons = {1, 2}}, {.buttons = {2}});
  ExpectSilenced("overlap alone doesn't", false, Pad({1, 2, 3}), {.buttons = {1, 2}},
                 {.buttons = {2, 3}});
  ExpectSilenced("an axis of a button and an axis", true, twoAxes, b1AndX, {.items = {x}});
  ExpectSilenced("the button of a button and an axis", true, twoAxes, b1AndX, {.buttons = {1}});
  ExpectSilenced("the axis is another", false, twoAxes, b1AndX,
                 {.buttons = {1}, .items = {Axis(1, AxisNeg)}});
  ExpectSilenced("the button is another", false, twoAxes, b1AndX, {.buttons = {2}, .items = {x}});
  ExpectSilenced("the bank is another", false, banks, {.items = {x}},
                 {.items = {Axis(0, AxisPos, 1)}});
  ExpectSilenced("the direction of a hat isn't compared", true, upRight, {.items = {Hat(PovRight)}},
                 {.items = {Hat(PovUp)}});
  ExpectSilenced("nor with a button beside it", true, upRightB1,
                 {.buttons = {1}, .items = {Hat(PovRight)}}, {.items = {Hat(PovUp)}});
}

TEST_F(Dispatcher, ASilencedControlKeepsArming) {
  Control* one = Add({.name = "one", .buttons = {1}, .onPress = false});
  Add({.name = "both", .buttons = {1, 2}});
  EXPECT_EQ(Dispatch({1, 2}), "press both");
  EXPECT_EQ(Copy(one).triggerArmed, 1);
  EXPECT_EQ(Dispatch({}), "release both, press one, release one");
}

TEST_F(Dispatcher, ASilencedControlSpendsItsArming) {
  Control* one = Add({.name = "one", .buttons = {1}, .onPress = false});
  Add({.name = "both", .buttons = {1, 2}});
  Dispatch({1});
  EXPECT_EQ(Copy(one).triggerArmed, 1);
  EXPECT_EQ(Dispatch({1, 2}), "press both") << "the armed one would fire, but lies inside";
  EXPECT_EQ(Copy(one).triggerArmed, 0);
  EXPECT_EQ(Dispatch({}), "release both");
}

TEST_F(Dispatcher, ASilencedControlSilencesNothingItself) {
  // Silenced by the mouse, and so no reason for the part to keep still.
  engine.mouseActive = true;
  profile.mouseX = MouseInput(0);
  Add({.name = "part", .buttons = {1}});
  Add({.name = "whole", .buttons = {1}, .items = {Axis(0, AxisPos)}});
  EXPECT_EQ(Dispatch(WithX(kAxisMax, {1})), "press part");
}

// --- The mouse's inputs -------------------------------------------------------------------------

TEST_F(DispatcherWithMouse, AControlOnAMouseAxisFiresOnlyWhileTheMouseIsOff) {
  profile.mouseX = MouseInput(0);
  Add({.name = "right", .items = {Axis(0, AxisPos)}});
  EXPECT_EQ(Dispatch(WithX(kAxisMax)), "press right");
  EXPECT_EQ(Dispatch(WithX(0)), "release right");
  engine.mouseActive = true;
  EXPECT_EQ(Dispatch(WithX(kAxisMax)), "");
  Dispatch(WithX(0));
  engine.mouseActive = false;
  engine.SetTestMode(true);
  EXPECT_EQ(Dispatch(WithX(kAxisMax)), "");
  Dispatch(WithX(0));
  engine.SetTestMode(false);
  profile.mouseAlwaysActive = true;
  EXPECT_EQ(Dispatch(WithX(kAxisMax)), "");
  Dispatch(WithX(0));
  profile.mouseAlwaysActive = false;
  EXPECT_EQ(Dispatch(WithX(kAxisMax)), "press right");
}

TEST_F(DispatcherWithMouse, EachOfTheThreeInputsIsKeptFromTheControls) {
  Relaxed<TriggerItem>* const inputs[] = {&profile.mouseX, &profile.mouseY, &profile.mouseWheel};
  engine.mouseActive = true;
  Add({.name = "a", .items = {Axis(0, AxisPos)}});
  for (Relaxed<TriggerItem>* input : inputs) {
    *input = MouseInput(0);
    EXPECT_EQ(Dispatch(WithX(kAxisMax)), "");
    Dispatch(WithX(0));
    *input = TriggerItem{input_kind::kNone, 0, 0};
    EXPECT_EQ(Dispatch(WithX(kAxisMax)), "press a");
    Dispatch(WithX(0));
  }
}

TEST_F(DispatcherWithMouse, AControlIsKeptOutByAnyOneOfItsInputsThatIsTheMouses) {
  engine.mouseActive = true;
  const DIJOYSTATE2 right = WithX(kAxisMax), left = WithX(-kAxisMax), up = WithHat(0);
  DIJOYSTATE2 all = WithX(kAxisMax, {1});
  all.rgdwPOV[0] = 0;
  const struct {
    const char* why;
    TriggerItem mouse;
    Mapping mapping;
    DIJOYSTATE2 state;
    bool fires;
  } rows[] = {
      {"its side", MouseInput(0), {.items = {Axis(0, AxisPos)}}, right, false},
      {"the other side", MouseInput(0), {.items = {Axis(0, AxisNeg)}}, left, false},
      {"one of three",
       MouseInput(0),
       {.buttons = {1}, .items = {Hat(PovUp), Axis(0, AxisPos)}},
       all,
       false},
      {"another bank", MouseInput(0, 1), {.items = {Axis(0, AxisPos)}}, right, true},
      {"a left-right hat", MouseInput(input_kind::kPov), {.items = {Hat(PovUp)}}, up, false},
      {"an up-down hat, which no Trigger names so",
       MouseInput(input_kind::kPovVertical),
       {.items = {Hat(PovUp)}},
       up,
       true},
  };
  for (const auto& row : rows) {
    profile.Clear();
    profile.mouseX = row.mouse;
    Add(row.mapping);
    EXPECT_EQ(Dispatch(row.state), row.fires ? "press " : "") << row.why;
    Dispatch(Pad());
  }
}

TEST_F(DispatcherWithMouse, WhatIsDownWhenTheMouseGoesOnStaysDownUntilItsInputsRest) {
  profile.mouseX = MouseInput(0);
  Control* right = Add({.name = "right", .items = {Axis(0, AxisPos)}});
  EXPECT_EQ(Dispatch(WithX(kAxisMax)), "press right");
  engine.mouseActive = true;
  EXPECT_EQ(Dispatch(WithX(kAxisMax - 1)), "");
  EXPECT_EQ(Copy(right).triggerDown, 1);
  EXPECT_EQ(Dispatch(WithX(0)), "release right");
}

TEST_F(DispatcherWithMouse, AnExcludedReleaseControlSpendsItsArming) {
  profile.mouseX = MouseInput(0);
  engine.mouseActive = true;
  Control* right = Add({.name = "right", .items = {Axis(0, AxisPos)}, .onPress = false});
  Dispatch(WithX(kAxisMax));
  EXPECT_EQ(Copy(right).triggerArmed, 1) << "evaluated though the mouse has its input";
  EXPECT_EQ(Dispatch(WithX(0)), "");
  EXPECT_EQ(Copy(right).triggerArmed, 0);
  engine.mouseActive = false;
  EXPECT_EQ(Dispatch(WithX(1)), "");
}

TEST_F(DispatcherWithMouse, ATogglingControlFlipsOncePerPress) {
  Add({.name = "t", .buttons = {1}, .toggles = true});
  EXPECT_EQ(Dispatch({1}), "press t");
  EXPECT_TRUE(engine.mouseActive);
  Dispatch({1, 2});
  Dispatch({1, 3});
  EXPECT_TRUE(engine.mouseActive) << "however long it is held";
  EXPECT_EQ(Dispatch({}), "release t");
  EXPECT_TRUE(engine.mouseActive);
  Dispatch({1});
  EXPECT_FALSE(engine.mouseActive);
}

TEST_F(DispatcherWithMouse, ATogglingReleaseControlFlipsWhenItFires) {
  Add({.name = "t", .buttons = {1}, .onPress = false, .toggles = true});
  Dispatch({1});
  EXPECT_FALSE(engine.mouseActive);
  Dispatch({});
  EXPECT_TRUE(engine.mouseActive);
}

TEST_F(DispatcherWithMouse, AToggleDoesNotWaitForTheMouseLock) {
  Add({.name = "t", .buttons = {1}, .toggles = true});
  auto& pad = Plug(10);
  RunTo(15);
  pad.Press({1});
  engine.mouseLock.Acquire(1);
  RunTo(25);
  EXPECT_TRUE(engine.mouseActive);
  EXPECT_EQ(journal.Take(), "20 press t");
  // The buttons' step does wait, now that the mouse is on.
  pad.Press({});
  RunTo(55);
  EXPECT_EQ(journal.Take(), "");
  engine.mouseLock.Release();
  RunTo(60);
  EXPECT_EQ(journal.Take(), "56 release t");
}

TEST_F(DispatcherWithMouse, AToggleCountsForTheControlsBehindItInTheSameDispatch) {
  profile.mouseX = MouseInput(0);
  Add({.name = "t", .buttons = {1, 2}, .toggles = true});
  Add({.name = "after", .items = {Axis(0, AxisPos)}});
  Add({.name = "button", .buttons = {4}});
  DIJOYSTATE2 state = WithX(kAxisMax, {1, 2, 4});
  EXPECT_EQ(Dispatch(state), "press t, press button");
}

TEST_F(DispatcherWithMouse, AnOwnedButtonIsSeenByNoControlWhileTheMouseIsOn) {
  profile.leftMask = MouseButtonMask(2);
  profile.leftButton = 2;
  Add({.name = "three", .buttons = {3}});
  Add({.name = "with one", .buttons = {1, 3}});
  Add({.name = "one", .buttons = {1}});
  engine.mouseActive = true;
  EXPECT_EQ(Dispatch({3}), "");
  EXPECT_EQ(Dispatch({1, 3}), "press one");
  EXPECT_EQ(Dispatch({}), "release one");
  engine.mouseActive = false;
  EXPECT_EQ(Dispatch({3}), "press three");
  EXPECT_EQ(Dispatch({1, 3}), "press with one");
}

// --- What comes before and after the Controls ---------------------------------------------------

TEST_F(Dispatcher, TheMaskIsWholeAgainAfterTheMouseTookItsButtonsOut) {
  profile.leftMask = MouseButtonMask(0);
  engine.mouseActive = true;
  Dispatch({1, 2});
  EXPECT_EQ(engine.snapshot.dispatchButtons, 3u);
  EXPECT_EQ(engine.snapshot.previousButtons, 3u);
  EXPECT_EQ(engine.snapshot.currentButtons, 3u);
}

TEST_F(Dispatcher, TheStateHandledBecomesThePreviousOne) {
  DIJOYSTATE2 state = WithHat(9000);
  state.lY = 77;
  Dispatch(state);
  EXPECT_EQ(engine.snapshot.previousPovDirections[0], PovRight);
  EXPECT_EQ(engine.snapshot.previousState.lY, 77);
}

TEST_F(Dispatcher, WithTheDialogOpenNoControlFiresAndWhatIsDownStaysDown) {
  Control* one = Add({.name = "one", .buttons = {1}});
  Add({.name = "two", .buttons = {2}});
  EXPECT_EQ(Dispatch({1}), "press one");
  host.dialogOpen = true;
  EXPECT_EQ(Dispatch({1, 2}), "");
  EXPECT_EQ(Dispatch({}), "") << "not even the end of what is down";
  EXPECT_EQ(Copy(one).triggerDown, 1);
  host.dialogOpen = false;
  EXPECT_EQ(Dispatch({3}), "release one") << "found inactive by the first dispatch afterwards";
}

TEST_F(Dispatcher, EachStateGoesToAnOpenDialogWhole) {
  profile.leftMask = MouseButtonMask(0);
  engine.mouseActive = true;
  Dispatch({1});
  EXPECT_TRUE(host.triggersShown.empty());
  sim.ClearEvents();
  host.dialogOpen = true;
  Dispatch({1, 3});
  Dispatch({3});
  EXPECT_EQ(host.triggersShown, (std::vector<std::uint64_t>{5, 4}));
  EXPECT_EQ(MouseEvents(), "") << "no mouse action either";
  EXPECT_TRUE(engine.leftDown);
  EXPECT_EQ(engine.snapshot.previousButtons, 4u) << "the states go on being rolled";
}

TEST_F(Dispatcher, AnOpenDialogComesBeforeARunningDetection) {
  engine.StartMouseDetection(MouseRole::LeftButton);
  host.dialogOpen = true;
  Dispatch({1});
  EXPECT_EQ(host.triggersShown.size(), 1u);
  EXPECT_TRUE(host.journal.Empty());
}

TEST_F(Dispatcher, NoControlIsEvenEvaluatedDuringAMouseDetection) {
  Control* release = Add({.name = "r", .buttons = {1}, .onPress = false});
  Control* down = Add({.name = "d", .buttons = {2}});
  EXPECT_EQ(Dispatch({2}), "press d");
  engine.StartMouseDetection(MouseRole::LeftButton);
  EXPECT_EQ(Dispatch({1}), "");
  EXPECT_EQ(Copy(release).triggerArmed, 0);
  EXPECT_EQ(Copy(down).triggerDown, 1);
}

TEST_F(Dispatcher, LocksAreFreeAfterwards) {
  Add({.name = "a", .buttons = {1}, .repeats = true});
  engine.mouseActive = true;
  Dispatch({1});
  Dispatch({});
  EXPECT_FALSE(device.deviceLock.IsTaken());
  EXPECT_FALSE(engine.mouseLock.IsTaken());
  EXPECT_FALSE(profile.profileLock.IsTaken());
  EXPECT_FALSE(engine.repeatWorker.repeatLock.IsTaken());
}

// --- Long random runs ---------------------------------------------------------------------------

// Notes per action how often it was pressed without having been released.
class BalanceAction : public InputAction {
 public:
  BalanceAction() { actionType = kKeyAction; }
  bool Replay(std::uint8_t, std::uint32_t, std::uint32_t) override {
    ++down;
    most = std::max(most, down);
    ++presses;
    return true;
  }
  bool Release() override {
    --down;
    least = std::min(least, down);
    return true;
  }
  int down = 0;
  int most = 0;
  int least = 0;
  int presses = 0;
};

class RandomDispatch : public EngineTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    random.seed(GetParam());
    for (int n = 0; n < 40; ++n) {
      Mapping mapping;
      for (int left = Roll(3); left > 0; --left) {
        mapping.buttons.push_back(static_cast<std::uint32_t>(Roll(6)) + 1);
      }
      for (int left = Roll(2); left > 0; --left) {
        mapping.items.push_back(Roll(1) ? Axis(static_cast<std::uint16_t>(Roll(2)),
                                               static_cast<std::uint16_t>(Roll(1) + 1))
                                        : Hat(static_cast<std::uint16_t>(1 << Roll(3))));
      }
      mapping.onPress = Roll(3) != 0;
      mapping.repeats = Roll(5) == 0;
      mapping.toggles = Roll(15) == 0;
      Control* control = Add(mapping);
      actions.push_back(new BalanceAction);
      delete *control->actions.head->value;
      *control->actions.head->value = actions.back();
    }
    profile.RebuildDispatchList();
    profile.leftMask = MouseButtonMask(6);
    profile.rightMask = MouseButtonMask(5);
    profile.mouseX = MouseInput(0);
  }

  int Roll(int highest) {
    return static_cast<int>(random() % (static_cast<unsigned>(highest) + 1));
  }

  DIJOYSTATE2 RandomState() {
    DIJOYSTATE2 state = Pad();
    for (int n = 0; n < 8; ++n) state.rgbButtons[n] = Roll(3) == 0 ? 0x80 : 0;
    state.lX = (Roll(2) - 1) * kAxisMax;
    state.lY = (Roll(2) - 1) * kAxisMax;
    state.lZ = Roll(2 * kAxisMax) - kAxisMax;
    if (Roll(1)) state.rgdwPOV[0] = static_cast<std::uint32_t>(Roll(35999));
    return state;
  }

  std::mt19937 random;
  std::vector<BalanceAction*> actions;
};

TEST_P(RandomDispatch, PressAndReleaseAlternateAndRestLeavesNothingDown) {
  std::map<std::uint32_t, int> buttonDown;  // by its down event
  sim.OnEvent([&](const platform::simulation::SentEvent& event) {
    for (const std::uint32_t down : {2u, 8u, 32u}) {
      if (event.flags & down) ++buttonDown[down];
      if (event.flags & (down << 1)) --buttonDown[down];
    }
  });
  // Where the mouse goes on and off by toggles, its buttons may stay down over a rest.
  const bool steady = GetParam() % 2 != 0;
  profile.mouseAlwaysActive = steady;
  for (int round = 0; round < 4000; ++round) {
    // Now and then all of it at rest, twice: an armed release Control may still fire at the first.
    const bool rest = round % 50 == 49;
    if (!rest) {
      Dispatch(RandomState());
    } else {
      Dispatch(Pad());
      Dispatch(Pad());
    }
    std::size_t n = 0;
    for (const Control& master : profile.controls) {
      const Control& control = Copy(&master);
      const BalanceAction& action = *actions[n++];
      if (control.repeatEnabled) {
        ASSERT_EQ(action.least, 0) << "a repeating Control was released";
        continue;
      }
      ASSERT_LE(action.most, 1) << "pressed twice in round " << round;
      ASSERT_GE(action.least, 0) << "released twice in round " << round;
      ASSERT_EQ(action.down, control.triggerDown) << "round " << round;
      ASSERT_FALSE(rest && control.triggerDown) << "down at rest in round " << round;
      ASSERT_FALSE(control.triggerDown && !control.activateOnPress) << "round " << round;
    }
    if (rest) {
      ASSERT_EQ(engine.repeatWorker.Repeating(), nullptr);
    }
    if (rest && steady) {
      ASSERT_FALSE(engine.leftDown || engine.middleDown || engine.rightDown);
      for (const auto& [event, down] : buttonDown) ASSERT_EQ(down, 0) << "mouse button " << event;
    }
    ASSERT_FALSE(profile.profileLock.IsTaken() || engine.mouseLock.IsTaken());
    sim.ClearEvents();
  }
  int presses = 0;
  for (const BalanceAction* action : actions) presses += action->presses;
  EXPECT_GT(presses, 1000) << "the run has to show something";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomDispatch, ::testing::Values(1u, 2u, 3u, 4u));

}  // namespace
}  // namespace kelvaro
