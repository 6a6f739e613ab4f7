#include "engine/control.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "device/device_manager.h"
#include "tests/engine/axes.h"
#include "tests/engine/counting_action.h"
#include "tests/engine/item_text.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

constexpr std::uint64_t B1 = 1, B2 = 2, B3 = 4;

// ---- Evaluation ----

// What a pad with a stick, a second axis on another bank and two hats has pushed.
struct Pad {
  std::uint64_t buttons = 0;
  std::int32_t x = 0;
  std::uint8_t hat = 0;
  std::int32_t force = 0;  // of the second slider
  std::uint8_t hat3 = 0;
};

DeviceSnapshot SnapshotOf(const Pad& pad) {
  DeviceSnapshot snapshot;
  snapshot.dispatchButtons = pad.buttons;
  snapshot.state.lX = pad.x;
  snapshot.povDirections[0] = pad.hat;
  snapshot.state.rglFSlider[1] = pad.force;
  snapshot.povDirections[3] = pad.hat3;
  return snapshot;
}

const TriggerItem kXPos{0, 0, AxisPos};
const TriggerItem kXNeg{0, 0, AxisNeg};
const TriggerItem kHatUp{8, 0, PovUp};
const TriggerItem kNoInput{9, 0, PovUp};  // a kind that no state satisfies

enum Mode { kRelease, kPress };
enum Flags { kRest = 0, kArmed = 1, kSpoiled = 2, kArmedSpoiled = 3 };

struct Step {
  Pad pad;
  bool fires;
  Flags after;
  const char* why;
};

void Define(Control* control, Mode mode, std::uint64_t mask,
            const std::vector<TriggerItem>& items = {}) {
  control->activateOnPress = mode == kPress;
  control->SetButtonMask(mask);
  for (const TriggerItem& item : items) control->triggerItems.AddTail(item);
}

// What a Control with that Trigger makes of one state after another.
void Go(const char* name, Mode mode, std::uint64_t mask, const std::vector<TriggerItem>& items,
        const std::vector<Step>& steps) {
  Control control;
  Define(&control, mode, mask, items);
  int number = 0;
  for (const Step& step : steps) {
    SCOPED_TRACE(std::string(name) + ", step " + std::to_string(++number) + ": " + step.why);
    EXPECT_EQ(control.EvaluateTrigger(kAxisMax, SnapshotOf(step.pad)), step.fires);
    EXPECT_EQ(control.triggerArmed, (step.after & kArmed) ? 1 : 0) << "armed";
    EXPECT_EQ(control.triggerSpoiled, (step.after & kSpoiled) ? 1 : 0) << "spoiled";
  }
}

TEST(EvaluateTrigger, WithoutButtonsAndItemsNeverFires) {
  const std::vector<Step> steps = {{{}, false, kRest, "at rest"},
                                   {{.buttons = B1}, false, kRest, "a button"},
                                   {{.x = 32000, .hat = PovUp}, false, kRest, "everything else"},
                                   {{}, false, kRest, "let go"}};
  Go("press", kPress, 0, {}, steps);
  Go("release", kRelease, 0, {}, steps);
}

TEST(EvaluateTrigger, PressModeFiresWhenAllButtonsAreDown) {
  Go("two buttons", kPress, B1 | B2, {},
     {{{.buttons = B1}, false, kRest, "one of them"},
      {{.buttons = B1 | B2}, true, kRest, "both"},
      {{.buttons = B1 | B2}, true, kRest, "still both: the level counts, not the edge"},
      {{.buttons = B1 | B2 | B3}, true, kRest, "a third button is no matter"},
      {{.buttons = B2 | B3}, false, kRest, "the other one and a stranger spoil nothing"},
      {{.buttons = B3}, false, kRest, "a stranger alone"},
      {{}, false, kRest, "all let go"}});
}

TEST(EvaluateTrigger, ReleaseModeFiresOnTheWayUp) {
  Go("one button", kRelease, B1, {},
     {{{}, false, kRest, "nothing yet"},
      {{.buttons = B1}, false, kArmed, "down arms"},
      {{}, true, kRest, "up fires and disarms"},
      {{}, false, kRest, "up still is no second release"},
      {{.buttons = B1}, false, kArmed, "arms again"},
      {{}, true, kRest, "fires again"}});
}

TEST(EvaluateTrigger, StrangerDuringTheReleaseSpoilsIt) {
  Go("button 2 goes while button 3 comes", kRelease, B1 | B2, {},
     {{{.buttons = B1 | B2}, false, kArmed, "arms"},
      {{.buttons = B1 | B3}, false, kArmedSpoiled, "one change: 2 up, 3 down"},
      {{}, false, kRest, "swallowed, and both flags are done with"},
      {{.buttons = B1 | B2}, false, kArmed, "arms anew"},
      {{}, true, kRest, "a clean release fires"}});
}

TEST(EvaluateTrigger, ArmedTriggerFiresOnAnyFurtherChangeWithItsButtonsDown) {
  Go("a second button goes down", kRelease, B1, {},
     {{{.buttons = B1}, false, kArmed, "arms"},
      {{.buttons = B1 | B2}, true, kRest, "fires though 1 is still down"},
      {{.buttons = B1}, false, kArmed, "the next change arms it again"},
      {{}, true, kRest, "and the release fires once more"}});
  Go("an axis that nobody asked about moves", kRelease, B1, {},
     {{{.buttons = B1}, false, kArmed, "arms"},
      {{.buttons = B1, .x = 1}, true, kRest, "one count of an axis is a change"}});
}

TEST(EvaluateTrigger, SpoilingTakesAButtonOutside) {
  Go("button by button", kRelease, B1 | B2, {},
     {{{.buttons = B1}, false, kRest, "on the way down, half of it"},
      {{.buttons = B1 | B2}, false, kArmed, "arms"},
      {{.buttons = B2}, false, kArmed, "half let go, nothing foreign"},
      {{}, true, kRest, "fires"}});
  Go("a stranger beside the whole Trigger", kRelease, B1 | B2, {},
     {{{.buttons = B1 | B2 | B3}, false, kArmed, "complete arms, stranger or not"},
      {{.buttons = B1 | B2}, true, kRest, "still complete: fires unspoiled"}});
  Go("a stranger without any of its buttons", kRelease, B1, {},
     {{{.buttons = B1}, false, kArmed, "arms"},
      {{.buttons = B2}, false, kArmedSpoiled, "1 up and 2 down at once"},
      {{}, false, kRest, "swallowed"}});
}

TEST(EvaluateTrigger, SpoiltWithoutBeingArmedEndsWithAllButtonsUp) {
  Go("spoilt, then up", kRelease, B1 | B2, {},
     {{{.buttons = B1 | B3}, false, kSpoiled, "spoilt before it was ever complete"},
      {{}, false, kRest, "no button down and not armed: forgotten"},
      {{.buttons = B1 | B2}, false, kArmed, "arms"},
      {{}, true, kRest, "fires"}});
  Go("spoilt, then complete", kRelease, B1 | B2, {},
     {{{.buttons = B1 | B3}, false, kSpoiled, "spoilt on the way down"},
      {{.buttons = B1 | B2}, false, kArmedSpoiled, "arming doesn't forgive"},
      {{}, false, kRest, "so this release is swallowed"},
      {{.buttons = B1 | B2}, false, kArmed, "arms"},
      {{}, true, kRest, "fires"}});
}

TEST(EvaluateTrigger, AxisInPressModeFiresPastHalfRangeOnItsSide) {
  Go("positive", kPress, 0, {kXPos},
     {{{}, false, kRest, "at rest and never armed"},
      {{.x = 16000}, false, kRest, "half range is the middle still"},
      {{.x = 16001}, true, kRest, "past it"},
      {{.x = 32000}, true, kRest, "the end"},
      {{.x = -16001}, false, kRest, "the other side"},
      {{.x = -32000}, false, kRest, "its end"}});
  Go("negative", kPress, 0, {kXNeg},
     {{{.x = -16000}, false, kRest, "half range"},
      {{.x = -16001}, true, kRest, "past it"},
      {{.x = 16001}, false, kRest, "the other side"}});
}

TEST(EvaluateTrigger, AxisInReleaseModeFiresBackAtRest) {
  Go("out and back", kRelease, 0, {kXPos},
     {{{}, false, kRest, "rest doesn't satisfy before it is armed"},
      {{.x = 20000}, false, kArmed, "out arms"},
      {{.x = 100}, true, kRest, "rest fires"},
      {{}, false, kRest, "rest again is nothing"}});
  Go("still out at the next change", kRelease, 0, {kXPos},
     {{{.x = 20000}, false, kArmed, "arms"},
      {{.x = 20001}, true, kRest, "complete still: fires"},
      {{.x = 20002}, false, kArmed, "arms again"},
      {{}, true, kRest, "fires"}});
  Go("through the other side", kRelease, 0, {kXPos},
     {{{.x = 20000}, false, kArmed, "arms"},
      {{.x = -20000}, false, kArmed, "the other side leaves the flags"},
      {{}, true, kRest, "rest fires at last"}});
}

TEST(EvaluateTrigger, HatIsSatisfiedByAnyCommonDirection) {
  Go("up", kPress, 0, {kHatUp},
     {{{.hat = PovUp}, true, kRest, "mask 2"},
      {{.hat = PovUp | PovLeft}, true, kRest, "mask 3"},
      {{.hat = PovUp | PovRight}, true, kRest, "mask 6"},
      {{.hat = PovLeft}, false, kRest, "left"},
      {{.hat = PovRight}, false, kRest, "right"},
      {{.hat = PovDown}, false, kRest, "down"},
      {{.hat = PovDown | PovLeft}, false, kRest, "down and left"},
      {{.hat = PovDown | PovRight}, false, kRest, "down and right"},
      {{}, false, kRest, "at rest"}});
  Go("up and right", kPress, 0, {{8, 0, PovUp | PovRight}},
     {{{.hat = PovUp}, true, kRest, "one of them is enough"},
      {{.hat = PovRight | PovDown}, true, kRest, "so is the other with a third"},
      {{.hat = PovDown}, false, kRest, "none of them"}});
  Go("no direction at all", kPress, 0, {{8, 0, 0}},
     {{{.hat = PovUp}, false, kRest, "nothing is in common with nothing"},
      {{}, false, kRest, "at rest"}});
}

TEST(EvaluateTrigger, HatAtRestSatisfiesAnArmedItem) {
  Go("out and back", kRelease, 0, {kHatUp},
     {{{}, false, kRest, "rest before"},
      {{.hat = PovUp}, false, kArmed, "arms"},
      {{}, true, kRest, "rest fires"},
      {{}, false, kRest, "rest after"}});
  Go("pushed elsewhere in between", kRelease, 0, {kHatUp},
     {{{.hat = PovUp}, false, kArmed, "arms"},
      {{.hat = PovDown}, false, kArmed, "another direction leaves the flags"},
      {{}, true, kRest, "rest fires"}});
  Go("rolled to the diagonal", kRelease, 0, {kHatUp},
     {{{.hat = PovUp}, false, kArmed, "arms"},
      {{.hat = PovUp | PovRight}, true, kRest, "up still: complete at the next change"}});
}

TEST(EvaluateTrigger, ButtonsAndItemsTogetherInPressMode) {
  Go("button 1 with the stick to the right", kPress, B1, {kXPos},
     {{{.buttons = B1}, false, kRest, "the button alone"},
      {{.x = 20000}, false, kRest, "the stick alone: no button down, not armed"},
      {{.buttons = B2, .x = 20000}, false, kRest, "the stick with another button"},
      {{.buttons = B1, .x = -20000}, false, kRest, "the wrong side"},
      {{.buttons = B1, .x = 20000}, true, kRest, "both"},
      {{.buttons = B1 | B2, .x = 20000}, true, kRest, "both and more"}});
}

TEST(EvaluateTrigger, ButtonsAndItemsTogetherInReleaseMode) {
  Go("stick first", kRelease, B1, {kXPos},
     {{{.buttons = B1}, false, kRest, "incomplete: the stick rests and nothing is armed"},
      {{.buttons = B1, .x = 20000}, false, kArmed, "arms"},
      {{.buttons = B1}, true, kRest, "the stick back fires, the button being down"},
      {{.buttons = B1}, false, kRest, "no longer armed: rest doesn't satisfy"}});
  Go("button first", kRelease, B1, {kXPos},
     {{{.buttons = B1, .x = 20000}, false, kArmed, "arms"},
      {{.x = 20000}, true, kRest, "no button while armed, the stick still out"},
      {{}, false, kRest, "the stick back is nothing"}});
  Go("both at once", kRelease, B1, {kXPos},
     {{{.buttons = B1, .x = 20000}, false, kArmed, "arms"}, {{}, true, kRest, "fires"}});
  Go("other side with all buttons up", kRelease, B1, {kXPos},
     {{{.buttons = B1, .x = 20000}, false, kArmed, "arms"},
      {{.buttons = B2}, false, kArmedSpoiled, "spoils"},
      {{.x = -20000}, false, kArmedSpoiled, "a failing item leaves both flags"},
      {{}, false, kRest, "swallowed"}});
  Go("forgotten in spite of the stick", kRelease, B1, {kXPos},
     {{{.buttons = B2, .x = 20000}, false, kSpoiled, "spoilt"},
      {{.x = 20000}, false, kRest, "no button and not armed ends it before the items count"}});
}

TEST(EvaluateTrigger, SeveralItemsAllCount) {
  Go("press", kPress, 0, {kXPos, kHatUp},
     {{{.x = 20000}, false, kRest, "the second fails"},
      {{.hat = PovUp}, false, kRest, "the first fails"},
      {{.x = 20000, .hat = PovUp}, true, kRest, "both"}});
  Go("release", kRelease, 0, {kXPos, kHatUp},
     {{{.x = 20000}, false, kRest, "one doesn't arm"},
      {{.x = 20000, .hat = PovUp}, false, kArmed, "both arm"},
      {{.x = 20000}, true, kRest, "one back at rest fires, the other being out"},
      {{}, false, kRest, "the rest of the way is nothing"}});
  Go("release with one on the wrong side", kRelease, 0, {kXPos, kHatUp},
     {{{.x = 20000, .hat = PovUp}, false, kArmed, "arms"},
      {{.hat = PovDown}, false, kArmed, "the first rests, the second is wrong"},
      {{.x = -20000}, false, kArmed, "the first is wrong"},
      {{}, true, kRest, "fires"}});
  Go("other bank and last hat", kPress, 0, {{7, 3, AxisNeg}, {8, 3, PovLeft}},
     {{{.x = -20000, .hat = PovLeft}, false, kRest, "the like inputs elsewhere"},
      {{.force = -20000, .hat3 = PovLeft}, true, kRest, "these"}});
}

TEST(EvaluateTrigger, KindsThatAreNoInputAreNeverSatisfied) {
  for (const std::uint16_t kind : {9, 10, 11, 12, 255, 256, 65535}) {
    for (const Mode mode : {kPress, kRelease}) {
      Control alone, withButton;
      Define(&alone, mode, 0, {{kind, 0, PovUp}});
      Define(&withButton, mode, B1, {{kind, 0, PovUp}});
      for (const Pad& pad : {Pad{.buttons = B1, .x = 20000, .hat = 15}, Pad{}}) {
        EXPECT_FALSE(alone.EvaluateTrigger(kAxisMax, SnapshotOf(pad))) << kind;
        EXPECT_FALSE(withButton.EvaluateTrigger(kAxisMax, SnapshotOf(pad))) << kind;
        EXPECT_EQ(alone.triggerArmed, 0) << kind;
        EXPECT_EQ(withButton.triggerArmed, 0) << kind;
      }
    }
  }
}

TEST(EvaluateTrigger, LastItemDecidesWhenOneIsNoInput) {
  const Pad out{.buttons = B1, .x = 20000, .hat = PovUp};
  Go("no input last", kPress, B1, {kXPos, kNoInput}, {{out, false, kRest, "unsatisfied"}});
  Go("no input first", kPress, B1, {kNoInput, kXPos},
     {{out, true, kRest, "the walk goes on and the stick satisfies"},
      {{.buttons = B1}, false, kRest, "the stick fails"}});
  Go("no input between", kPress, 0, {kXPos, kNoInput, kHatUp},
     {{out, true, kRest, "the hat satisfies"}});
  Go("no input first, released", kRelease, 0, {kNoInput, kXPos},
     {{out, false, kArmed, "arms"}, {{}, true, kRest, "fires"}});
}

TEST(EvaluateTrigger, OnlyTheLowByteOfAWantedDirectionCounts) {
  Go("axis", kPress, 0, {{0, 0, 0x0100 | AxisPos}},
     {{{.x = 20000}, true, kRest, "pos"}, {{.x = -20000}, false, kRest, "not neg"}});
  Go("hat", kPress, 0, {{8, 0, 0x0F00 | PovUp}},
     {{{.hat = PovUp}, true, kRest, "up"}, {{.hat = PovDown}, false, kRest, "not down"}});
}

TEST(EvaluateTrigger, AxisThatWantsNoSideFailsWhereverItIsPushed) {
  for (const std::uint16_t value : {0, 3, 255}) {
    Control control;
    Define(&control, kPress, 0, {{0, 0, value}});
    EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, SnapshotOf({.x = 20000}))) << value;
    EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, SnapshotOf({.x = -20000}))) << value;
    EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, SnapshotOf({}))) << value;
  }
}

// Flags that came by a copy, from a Trigger that was release-mode at the time.
TEST(EvaluateTrigger, PressModeThatCameArmedIsSatisfiedAtRestAndStaysArmed) {
  Control control;
  Define(&control, kPress, B1, {kXPos, kHatUp});
  control.triggerArmed = 1;
  control.triggerSpoiled = 1;
  EXPECT_TRUE(control.EvaluateTrigger(kAxisMax, SnapshotOf({})));
  EXPECT_EQ(control.triggerArmed, 1);
  EXPECT_EQ(control.triggerSpoiled, 1);
  EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, SnapshotOf({.x = -20000})));
}

TEST(EvaluateTrigger, ATriggerThatCameArmedStaysSoWhileNoInputIsLast) {
  Control control;
  Define(&control, kRelease, B1, {kNoInput});
  control.triggerArmed = 1;
  EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, SnapshotOf({})));
  EXPECT_EQ(control.triggerArmed, 1);
}

TEST(EvaluateTrigger, EveryAxisOfEveryBankServes) {
  const std::int32_t push = -20000;
  const std::size_t banks[] = {0, 176, 208, 240};
  for (std::uint16_t index = 0; index < 4; ++index) {
    for (std::uint16_t kind = 0; kind < 8; ++kind) {
      Control control;
      Define(&control, kPress, 0, {{kind, index, AxisNeg}});
      int fired = 0;
      for (std::size_t bank = 0; bank < 4; ++bank) {
        for (std::size_t field = 0; field < 8; ++field) {
          DeviceSnapshot snapshot;
          std::memcpy(reinterpret_cast<char*>(&snapshot.state) + banks[bank] + 4 * field, &push, 4);
          if (!control.EvaluateTrigger(kAxisMax, snapshot)) continue;
          ++fired;
          EXPECT_EQ(bank, index);
          EXPECT_EQ(field, kind);
        }
      }
      EXPECT_EQ(fired, 1) << kind << "/" << index;
    }
  }
}

TEST(EvaluateTrigger, EachHatServesByItsNumber) {
  for (std::uint16_t wanted = 0; wanted < 4; ++wanted) {
    Control control;
    Define(&control, kPress, 0, {{8, wanted, PovRight}});
    for (std::uint16_t pushed = 0; pushed < 4; ++pushed) {
      DeviceSnapshot snapshot;
      snapshot.povDirections[pushed] = PovRight;
      EXPECT_EQ(control.EvaluateTrigger(kAxisMax, snapshot), pushed == wanted);
    }
  }
}

TEST(EvaluateTrigger, HatThatNoDeviceHasIsAtRest) {
  DeviceSnapshot snapshot;
  std::memset(snapshot.povDirections, 15, sizeof snapshot.povDirections);
  std::memset(snapshot.previousPovDirections, 15, sizeof snapshot.previousPovDirections);
  for (const std::uint16_t hat : {4, 7, 65535}) {
    Control control;
    Define(&control, kPress, 0, {{8, hat, 15}});
    EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, snapshot)) << hat;
  }
}

TEST(EvaluateTrigger, SeesOnlyTheButtonsThatTheMouseLeft) {
  Control control;
  Define(&control, kPress, B1);
  DeviceSnapshot snapshot;
  snapshot.currentButtons = B1;
  snapshot.state.rgbButtons[0] = 128;
  EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, snapshot));
  snapshot.dispatchButtons = B1;
  snapshot.currentButtons = 0;
  EXPECT_TRUE(control.EvaluateTrigger(kAxisMax, snapshot));
}

TEST(EvaluateTrigger, HighButtonsServe) {
  constexpr std::uint64_t high = 0x8000000100000000u;  // buttons 33 and 64
  Control control;
  Define(&control, kPress, high);
  EXPECT_FALSE(control.EvaluateTrigger(kAxisMax, SnapshotOf({.buttons = 0x100000000u})));
  EXPECT_TRUE(control.EvaluateTrigger(kAxisMax, SnapshotOf({.buttons = high})));
}

TEST(EvaluateTrigger, FollowsTheAxisLimit) {
  Control control;
  Define(&control, kPress, 0, {kXPos});
  EXPECT_TRUE(control.EvaluateTrigger(100, SnapshotOf({.x = 51})));
  EXPECT_FALSE(control.EvaluateTrigger(102, SnapshotOf({.x = 51})));
}

TEST(EvaluateTrigger, TheDeviceGivesTheAxisLimit) {
  platform::simulation::Simulation sim;
  DeviceManager device(0);
  Control control;
  Define(&control, kPress, 0, {kXPos});
  EXPECT_FALSE(control.EvaluateTrigger(device, SnapshotOf({.x = 16000})));
  EXPECT_TRUE(control.EvaluateTrigger(device, SnapshotOf({.x = 16001})));
}

// ---- Members, copies and ownership ----

class ControlCopies : public testing::Test {
 protected:
  ControlCopies() { CountingAction::Begin(); }
  ~ControlCopies() override {
    EXPECT_EQ(CountingAction::Living(), 0) << "each action is destroyed once, and once only";
  }
};

std::vector<InputAction*> ActionsOf(const Control& control) {
  std::vector<InputAction*> actions;
  for (InputAction* action : control.actions) actions.push_back(action);
  return actions;
}

// Every member away from its default.
void FillTrigger(Trigger* trigger) {
  trigger->activateOnPress = 0;
  trigger->triggerOption = 0;
  trigger->SetButtonMask(0x8000000000000003u);
  trigger->triggerItems.AddTail({0, 1, 2});
  trigger->triggerItems.AddTail({8, 3, 6});
  trigger->triggerArmed = 1;
  trigger->triggerSpoiled = 1;
}

void FillMembers(Control* control) {
  FillTrigger(control);
  control->description = "Fire";
  control->controlId = 17;
  control->triggerDown = 1;
  control->toggleMouseControls = 1;
  control->repeatEnabled = 1;
  control->repeatStarted = 1;
  control->repeatDelay = 300;
  control->repeatSpeed = 25;
  control->repeatLastTick = 123456;
  control->keyHoldTime = 40;
  control->keyReleasePause = 60;
}

std::string Joined(const std::vector<std::uint64_t>& numbers) {
  std::string text;
  for (const std::uint64_t number : numbers) text += std::to_string(number) + " ";
  return text;
}

std::string TriggerMembers(const Trigger& t) {
  return Joined({t.activateOnPress, t.triggerOption, t.buttonMask, t.buttonCount, t.triggerArmed,
                 t.triggerSpoiled}) +
         "[" + ItemsText(t) + "]";
}

std::string OtherMembers(const Control& c) {
  return Joined({c.controlId, c.triggerDown, c.toggleMouseControls, c.repeatEnabled, c.repeatDelay,
                 c.repeatSpeed, c.keyHoldTime, c.keyReleasePause, c.repeatStarted,
                 c.repeatLastTick}) +
         Bytes(c.description);
}

std::string Members(const Control& c) { return TriggerMembers(c) + " " + OtherMembers(c); }

const std::string kDefaultTrigger = "1 1 0 0 0 0 []";
const std::string kDefaultOthers = "0 0 0 0 500 50 0 0 0 0 ";
const std::string kDefaults = kDefaultTrigger + " " + kDefaultOthers;
const std::string kFilledTrigger = "0 0 9223372036854775811 3 1 1 [0 1 2, 8 3 6]";
const std::string kFilled = kFilledTrigger + " 17 1 1 1 300 25 40 60 1 123456 Fire";
const std::string kFilledNotRepeating = kFilledTrigger + " 17 1 1 1 300 25 40 60 0 0 Fire";

TEST(InputAction, BaseDoesNothing) {
  InputAction action;
  EXPECT_EQ(action.actionType, 0u);
  EXPECT_FALSE(action.Replay(1, 2, 3));
  EXPECT_FALSE(action.Release());
  EXPECT_EQ(action.Clone(), nullptr);
  action.actionType = 7;
  action.Clear();
  EXPECT_EQ(action.actionType, 7u);
}

TEST(InputAction, CopyTypeCopiesTheType) {
  InputAction from, to;
  from.actionType = InputAction::kKeyAction;
  to.CopyType(from);
  EXPECT_EQ(to.actionType, 1u);
}

TEST(Trigger, ResetTriggerGivesTheEmptyForm) {
  Trigger trigger;
  FillTrigger(&trigger);
  trigger.ResetTrigger();
  EXPECT_EQ(TriggerMembers(trigger), kDefaultTrigger);
}

TEST(Trigger, MaskKeepsItsCount) {
  Trigger trigger;
  trigger.SetButtonMask(0xF0);
  EXPECT_EQ(trigger.buttonMask, 0xF0u);
  EXPECT_EQ(trigger.buttonCount, 4u);
  trigger.SetButtonMask(~std::uint64_t{0});
  EXPECT_EQ(trigger.buttonCount, 64u);
  trigger.SetButtonMask(0);
  EXPECT_EQ(trigger.buttonCount, 0u);
}

TEST(Trigger, WeightIsButtonsAndItems) {
  Trigger trigger;
  EXPECT_EQ(trigger.Weight(), 0u);
  trigger.SetButtonMask(7);
  EXPECT_EQ(trigger.Weight(), 3u);
  trigger.triggerItems.AddTail({0, 0, 1});
  trigger.triggerItems.AddTail({8, 0, 15});
  EXPECT_EQ(trigger.Weight(), 5u);
}

TEST(Control, UsesInputWhateverTheDirection) {
  Control control;
  Define(&control, kPress, B1, {{0, 0, 1}, {8, 2, PovUp}});
  EXPECT_TRUE(control.UsesInput({0, 0, 2}));
  EXPECT_TRUE(control.UsesInput({8, 2, 40}));
  EXPECT_FALSE(control.UsesInput({8, 1, PovUp}));
  EXPECT_FALSE(control.UsesInput({9, 2, PovUp}));
  EXPECT_FALSE(control.UsesInput({11, 0, 0}));
  EXPECT_FALSE(Control().UsesInput({0, 0, 0}));
}

TEST_F(ControlCopies, NewControlHoldsTheDefaults) {
  Control control;
  EXPECT_EQ(Members(control), kDefaults);
  EXPECT_EQ(control.actions.count, 0);
  EXPECT_EQ(control.actionsBorrowed, 0);
}

TEST_F(ControlCopies, ResetReturnsEveryMemberToItsDefault) {
  Control control;
  FillMembers(&control);
  control.actions.AddTail(new CountingAction);
  control.Reset();
  EXPECT_EQ(Members(control), kDefaults);
  EXPECT_EQ(control.actions.count, 0);
  EXPECT_EQ(control.actionsBorrowed, 0);
  EXPECT_EQ(CountingAction::destroyed, 1);
}

TEST_F(ControlCopies, ResetAndClearActionsOnlyForgetBorrowedOnes) {
  CountingAction action;
  for (const bool reset : {true, false}) {
    Control control;
    FillMembers(&control);
    control.actions.AddTail(&action);
    control.actionsBorrowed = 1;
    reset ? control.Reset() : control.ClearActions();
    EXPECT_EQ(control.actions.count, 0);
    EXPECT_EQ(CountingAction::destroyed, 0);
    EXPECT_EQ(control.actionsBorrowed, 1) << "the flag stays";
    EXPECT_EQ(Members(control), reset ? kDefaults : kFilled);
  }
}

TEST_F(ControlCopies, ClearActionsDestroysOwnedOnes) {
  Control control;
  FillMembers(&control);
  control.actions.AddTail(new CountingAction);
  control.actions.AddTail(new CountingAction);
  control.ClearActions();
  EXPECT_EQ(CountingAction::destroyed, 2);
  EXPECT_EQ(control.actions.count, 0);
  EXPECT_EQ(control.actionsBorrowed, 0);
  EXPECT_EQ(Members(control), kFilled);
}

TEST_F(ControlCopies, DestructionFollowsTheSameRule) {
  CountingAction lent;
  {
    Control owner, borrower;
    owner.actions.AddTail(new CountingAction);
    borrower.actions.AddTail(&lent);
    borrower.actionsBorrowed = 1;
  }
  EXPECT_EQ(CountingAction::destroyed, 1);
}

TEST_F(ControlCopies, CopyTriggerCarriesTheTriggerAndNothingElse) {
  Control source, copy;
  FillMembers(&source);
  source.actions.AddTail(new CountingAction);
  copy.triggerItems.AddTail({5, 0, 1});  // dropped
  copy.CopyTrigger(source);
  source.triggerItems.head->value->kind = 7;  // the items have been taken by value
  source.triggerItems.RemoveNode(source.triggerItems.tail);
  EXPECT_EQ(TriggerMembers(copy), kFilledTrigger);
  EXPECT_EQ(OtherMembers(copy), kDefaultOthers);
  EXPECT_EQ(copy.actions.count, 0);
}

TEST_F(ControlCopies, CopyTriggerTakesTheCountAsItStands) {
  Control source, copy;
  source.SetButtonMask(3);
  source.buttonCount = 9;
  copy.CopyTrigger(source);
  EXPECT_EQ(copy.buttonCount, 9u);
}

TEST_F(ControlCopies, CopyDeepMakesActionsInPlaceOfThoseOwned) {
  Control source, copy;
  FillMembers(&source);
  source.actions.AddTail(new CountingAction(10));
  source.actions.AddTail(new CountingAction(20));
  copy.repeatStarted = 1;
  copy.repeatLastTick = 5;
  copy.actions.AddTail(new CountingAction(30));
  copy.CopyDeep(source);

  EXPECT_EQ(Members(copy), kFilledNotRepeating);
  EXPECT_EQ(copy.actionsBorrowed, 0);
  EXPECT_EQ(CountingAction::made, 5);
  const auto from = ActionsOf(source);
  const auto to = ActionsOf(copy);
  ASSERT_EQ(to.size(), 2u);
  EXPECT_NE(to[0], from[0]);
  EXPECT_NE(to[1], from[1]);
  EXPECT_EQ(static_cast<CountingAction*>(to[0])->text, 10);
  EXPECT_EQ(static_cast<CountingAction*>(to[1])->text, 20);

  EXPECT_EQ(Members(source), kFilled);
  EXPECT_EQ(CountingAction::destroyed, 1) << "the receiver's own";
}

TEST_F(ControlCopies, CopyDeepIntoABorrowerLeavesTheLentActionsAndOwnsTheNew) {
  CountingAction lent;
  {
    Control source, copy;
    source.actions.AddTail(new CountingAction);
    copy.actions.AddTail(&lent);
    copy.actionsBorrowed = 1;
    copy.CopyDeep(source);
    EXPECT_EQ(CountingAction::destroyed, 0);
    EXPECT_EQ(copy.actionsBorrowed, 0);
  }
  EXPECT_EQ(CountingAction::destroyed, 2) << "the source's and the copy's, not the lent one";
}

TEST_F(ControlCopies, CopyDeepOfABorrowerOwnsItsCopies) {
  CountingAction lent;
  Control source;
  source.actions.AddTail(&lent);
  source.actionsBorrowed = 1;
  {
    Control copy;
    copy.CopyDeep(source);
    EXPECT_EQ(copy.actionsBorrowed, 0);
    EXPECT_EQ(copy.actions.count, 1);
  }
  EXPECT_EQ(CountingAction::destroyed, 1);
  EXPECT_EQ(source.actionsBorrowed, 1);
}

TEST_F(ControlCopies, CopyDeepSkipsActionsOfAnotherType) {
  Control source, copy;
  for (const int text : {1, 2, 3}) source.actions.AddTail(new CountingAction(text));
  (*source.actions.At(1)->value)->actionType = 2;
  copy.CopyDeep(source);
  const auto to = ActionsOf(copy);
  ASSERT_EQ(to.size(), 2u);
  EXPECT_EQ(static_cast<CountingAction*>(to[0])->text, 1);
  EXPECT_EQ(static_cast<CountingAction*>(to[1])->text, 3);
  EXPECT_EQ(source.actions.count, 3);
}

// An action that can't be copied, for want of memory.
class Uncloneable : public CountingAction {
 public:
  InputAction* Clone() const override { return nullptr; }
};

TEST_F(ControlCopies, CopyDeepGoesOnWithoutAnActionThatCouldNotBeMade) {
  Control source, copy;
  source.actions.AddTail(new Uncloneable);
  source.actions.AddTail(new CountingAction(2));
  copy.CopyDeep(source);
  const auto to = ActionsOf(copy);
  ASSERT_EQ(to.size(), 1u);
  EXPECT_EQ(static_cast<CountingAction*>(to[0])->text, 2);
}

TEST_F(ControlCopies, CopyDeepDropsAnActionThatTheListHasNoMemoryFor) {
  Control source, copy;
  source.actions.AddTail(new CountingAction(1));
  source.actions.AddTail(new CountingAction(2));
  {
    FailingAllocation fault(1);  // the first entry of the new list
    copy.CopyDeep(source);
    EXPECT_EQ(fault.Failed(), 1u);
  }
  EXPECT_EQ(CountingAction::made, 4);
  EXPECT_EQ(CountingAction::destroyed, 1) << "the copy that found no place";
  ASSERT_EQ(copy.actions.count, 1);
  EXPECT_EQ(static_cast<CountingAction*>(*copy.actions.head->value)->text, 2);
}

TEST_F(ControlCopies, CopyTriggerGoesOnWithoutAnItemThatFoundNoMemory) {
  Control source, copy;
  Define(&source, kRelease, B1, {{0, 0, 1}, {1, 0, 1}, {2, 0, 1}});
  {
    FailingAllocation fault(3);  // the second item
    copy.CopyTrigger(source);
    EXPECT_EQ(fault.Failed(), 1u);
  }
  EXPECT_EQ(ItemsText(copy), "0 0 1, 2 0 1");
  EXPECT_EQ(copy.buttonMask, B1);
  EXPECT_EQ(copy.activateOnPress, 0);
}

TEST_F(ControlCopies, CopySharedTakesThePointersAndEveryMember) {
  Control source, copy;
  FillMembers(&source);
  source.actions.AddTail(new CountingAction);
  source.actions.AddTail(new CountingAction);
  (*source.actions.head->value)->actionType = 2;  // any type will do
  copy.CopyShared(source);
  EXPECT_EQ(Members(copy), kFilled);
  EXPECT_EQ(copy.actionsBorrowed, 0);
  EXPECT_EQ(ActionsOf(copy), ActionsOf(source));
  EXPECT_EQ(CountingAction::made, 2);
  EXPECT_EQ(source.actionsBorrowed, 0) << "whose it is now is the caller's to say";
  source.actionsBorrowed = 1;
}

TEST_F(ControlCopies, CopySharedDestroysWhatTheReceiverOwned) {
  Control source, copy;
  source.actions.AddTail(new CountingAction);
  source.actionsBorrowed = 1;
  copy.actions.AddTail(new CountingAction);
  copy.CopyShared(source);
  EXPECT_EQ(CountingAction::destroyed, 1);
  EXPECT_EQ(copy.actionsBorrowed, 0) << "also from a borrower: the receiver deletes now";
}

TEST_F(ControlCopies, CopySharedIntoABorrowerLeavesTheLentActions) {
  CountingAction lent;
  {
    Control source, copy;
    source.actions.AddTail(new CountingAction);
    source.actionsBorrowed = 1;
    copy.actions.AddTail(&lent);
    copy.actionsBorrowed = 1;
    copy.CopyShared(source);
    EXPECT_EQ(CountingAction::destroyed, 0);
    EXPECT_EQ(copy.actionsBorrowed, 0);
  }
  EXPECT_EQ(CountingAction::destroyed, 1);
}

TEST_F(ControlCopies, BorrowSharesAndLeavesTheActionsToTheirOwner) {
  CountingAction lent;
  Control source;
  FillMembers(&source);
  source.actions.AddTail(new CountingAction);
  {
    Control copy;
    copy.Borrow({});  // a borrower from here on
    copy.actions.AddTail(&lent);
    copy.Borrow(source);
    EXPECT_EQ(Members(copy), kFilled);
    EXPECT_EQ(ActionsOf(copy), ActionsOf(source));
    EXPECT_EQ(copy.actionsBorrowed, 1);
    EXPECT_EQ(source.actionsBorrowed, 0);
  }
  EXPECT_EQ(CountingAction::destroyed, 0);
}

TEST_F(ControlCopies, CopyConstructionSharesAndDoesNotBorrow) {
  Control source;
  FillMembers(&source);
  source.actions.AddTail(new CountingAction);
  source.actionsBorrowed = 1;
  {
    Control copy(source);
    EXPECT_EQ(Members(copy), kFilled);
    EXPECT_EQ(ActionsOf(copy), ActionsOf(source));
    EXPECT_EQ(copy.actionsBorrowed, 0);
  }
  EXPECT_EQ(CountingAction::destroyed, 1) << "the copy owned it";
}

TEST_F(ControlCopies, AcceptedEditReplacesTheRealActions) {
  Control real;
  real.actions.AddTail(new CountingAction(1));
  {
    Control scratch;
    scratch.Borrow(real);
    scratch.ClearActions();
    scratch.actions.AddTail(new CountingAction(2));
    real.CopyShared(scratch);
    EXPECT_EQ(CountingAction::destroyed, 1) << "the old one";
  }
  EXPECT_EQ(CountingAction::destroyed, 1) << "the scratch is still a borrower";
  ASSERT_EQ(real.actions.count, 1);
  EXPECT_EQ(static_cast<CountingAction*>(*real.actions.head->value)->text, 2);
  EXPECT_EQ(real.actionsBorrowed, 0);
}

}  // namespace
}  // namespace kelvaro
