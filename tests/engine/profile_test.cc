#include "engine/profile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/engine/counting_action.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

// A Control by its one-letter name, with that many buttons and items.
struct Row {
  char name;
  std::uint32_t buttons;
  std::uint32_t items = 0;
};

Control* Add(Profile* profile, const Row& row) {
  Control control;
  control.description.AssignChar(row.name);
  control.SetButtonMask((std::uint64_t{1} << row.buttons) - 1);
  for (std::uint32_t i = 0; i < row.items; ++i) {
    control.triggerItems.AddTail({static_cast<std::uint16_t>(i), 0, 1});
  }
  profile->controls.AddTail(control);
  return profile->controls.tail->value;
}

std::string Names(const LinkedList<Control>& list) {
  std::string names;
  for (const Control& control : list) names += Bytes(control.description);
  return names;
}

void ExpectSoundLinks(const LinkedList<Control>& list) {
  std::int32_t forward = 0;
  for (auto* node = list.head; node; node = node->next) {
    ++forward;
    EXPECT_EQ(node->prev ? node->prev->next : list.head, node);
    EXPECT_EQ(node->next ? node->next->prev : list.tail, node);
  }
  EXPECT_EQ(forward, list.count);
}

std::string Rebuilt(const std::vector<Row>& rows) {
  Profile profile;
  std::string master;
  for (const Row& row : rows) {
    Add(&profile, row);
    master += row.name;
  }
  profile.RebuildDispatchList();
  ExpectSoundLinks(profile.DispatchList);
  EXPECT_EQ(Names(profile.controls), master) << "the user's order is not touched";
  return Names(profile.DispatchList);
}

TEST(RebuildDispatchList, HeaviestTriggerComesFirst) {
  EXPECT_EQ(Rebuilt({{'a', 1}, {'b', 2}, {'c', 3}, {'d', 4}}), "dcba");
  EXPECT_EQ(Rebuilt({{'a', 4}, {'b', 3}, {'c', 2}, {'d', 1}}), "abcd");
  EXPECT_EQ(Rebuilt({{'a', 2}, {'b', 4}, {'c', 1}, {'d', 3}}), "bdac");
}

TEST(RebuildDispatchList, ButtonsAndItemsWeighTheSame) {
  // 1, 3, 2 and 0.
  EXPECT_EQ(Rebuilt({{'a', 0, 1}, {'b', 2, 1}, {'c', 2, 0}, {'d', 0, 0}}), "bcad");
}

TEST(RebuildDispatchList, EqualWeightsWithNothingHeavierBehindKeepTheOrder) {
  EXPECT_EQ(Rebuilt({{'a', 1}, {'b', 1}, {'c', 1}}), "abc");
  EXPECT_EQ(Rebuilt({{'a', 3}, {'b', 2}, {'c', 2}, {'d', 1}}), "abcd");
}

TEST(RebuildDispatchList, ASwapCarriesAControlBehindOthersOfItsWeight) {
  // c changes places with a, which so lands behind b.
  EXPECT_EQ(Rebuilt({{'a', 1}, {'b', 1}, {'c', 2}}), "cba");
  // d with a: d b c a. Then c with b: d c b a. Then a, of weight 2, with b: d c a b.
  EXPECT_EQ(Rebuilt({{'a', 2}, {'b', 1}, {'c', 2}, {'d', 3}}), "dcab");
  // c, the earlier of the two heavy ones, with a: c b a d. Then d with b: c d a b.
  EXPECT_EQ(Rebuilt({{'a', 1}, {'b', 1}, {'c', 2}, {'d', 2}}), "cdab");
  // e with a: e b c d a; the rest are equal.
  EXPECT_EQ(Rebuilt({{'a', 1}, {'b', 1}, {'c', 1}, {'d', 1}, {'e', 2}}), "ebcda");
  // e with a, f with b: e f c d a b g h. Then a with d: e f c a d b g h. Then g with d.
  EXPECT_EQ(
      Rebuilt({{'a', 2}, {'b', 1}, {'c', 2}, {'d', 1}, {'e', 3}, {'f', 3}, {'g', 2}, {'h', 1}}),
      "efcagbdh");
}

TEST(RebuildDispatchList, NeighboursAtTheEndsSwapSoundly) {
  EXPECT_EQ(Rebuilt({{'a', 1}, {'b', 2}}), "ba");
  EXPECT_EQ(Rebuilt({{'a', 2}, {'b', 1}}), "ab");
  EXPECT_EQ(Rebuilt({{'a', 3}, {'b', 1}, {'c', 2}}), "acb");
}

// The same sort on an array, where exchanging two places is exchanging two values.
TEST(RebuildDispatchList, AgreesWithTheSortOfAnArray) {
  std::mt19937 random(20240501);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    Profile profile;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> sorted;  // weight and id
    const std::uint32_t count = round == 0 ? 1500 : random() % 20;
    for (std::uint32_t id = 0; id < count; ++id) {
      const auto buttons = static_cast<std::uint32_t>(random() % 4);
      const auto items = static_cast<std::uint32_t>(random() % 3);
      Add(&profile, {'x', buttons, items})->controlId = id;
      sorted.emplace_back(buttons + items, id);
    }
    for (auto place = sorted.begin(); place != sorted.end(); ++place) {
      // max_element gives the first of the heaviest.
      std::iter_swap(place, std::max_element(place, sorted.end(), [](const auto& a, const auto& b) {
                       return a.first < b.first;
                     }));
    }
    profile.RebuildDispatchList();
    ExpectSoundLinks(profile.DispatchList);
    ASSERT_EQ(profile.DispatchList.count, static_cast<std::int32_t>(count));
    auto expected = sorted.begin();
    for (const Control& control : profile.DispatchList) {
      ASSERT_EQ(control.controlId, (expected++)->second);
    }
  }
}

// Its square, of the Controls or of the exchanges, would take the better part of a minute.
TEST(RebuildDispatchList, AHundredThousandControlsDontTakeTheSquareOfTheTime) {
  Profile profile;
  for (std::uint32_t id = 0; id < 100000; ++id) {
    Add(&profile, {'x', id < 50000 ? 1u : 2u})->controlId = id;
  }
  profile.RebuildDispatchList();
  EXPECT_EQ(profile.DispatchList.head->value->controlId, 50000u);
  EXPECT_EQ(profile.DispatchList.At(50000)->value->controlId, 0u);
  EXPECT_EQ(profile.DispatchList.tail->value->controlId, 49999u);
}

class ProfileActions : public testing::Test {
 protected:
  ProfileActions() { CountingAction::Begin(); }
  ~ProfileActions() override {
    EXPECT_EQ(CountingAction::Living(), 0) << "each action is destroyed once, and once only";
  }
};

TEST_F(ProfileActions, CopiesBorrowTheActionsOfTheMasterList) {
  Profile profile;
  Control* a = Add(&profile, {'a', 1});
  Control* b = Add(&profile, {'b', 2});
  a->actions.AddTail(new CountingAction(1));
  b->actions.AddTail(new CountingAction(2));
  b->actions.AddTail(new CountingAction(3));
  profile.RebuildDispatchList();
  ASSERT_EQ(Names(profile.DispatchList), "ba");
  const Control& copyOfB = *profile.DispatchList.head->value;
  const Control& copyOfA = *profile.DispatchList.tail->value;
  EXPECT_NE(&copyOfA, a);
  EXPECT_EQ(copyOfA.actionsBorrowed, 1);
  EXPECT_EQ(copyOfB.actionsBorrowed, 1);
  EXPECT_EQ(a->actionsBorrowed, 0);
  EXPECT_EQ(b->actionsBorrowed, 0);
  ASSERT_EQ(copyOfA.actions.count, 1);
  ASSERT_EQ(copyOfB.actions.count, 2);
  EXPECT_EQ(*copyOfA.actions.head->value, *a->actions.head->value);
  EXPECT_EQ(*copyOfB.actions.head->value, *b->actions.head->value);
  EXPECT_EQ(*copyOfB.actions.tail->value, *b->actions.tail->value);
  EXPECT_EQ(CountingAction::made, 3);
}

TEST_F(ProfileActions, SecondRebuildReplacesTheCopiesAndKeepsTheActions) {
  Profile profile;
  Add(&profile, {'a', 1})->actions.AddTail(new CountingAction);
  profile.RebuildDispatchList();
  Add(&profile, {'b', 2})->actions.AddTail(new CountingAction);
  profile.RebuildDispatchList();
  EXPECT_EQ(Names(profile.DispatchList), "ba");
  EXPECT_EQ(CountingAction::destroyed, 0);
}

// Armed, spoiled, down, repeating, and since when.
std::vector<std::uint32_t> RunTime(const Control& control) {
  return {control.triggerArmed, control.triggerSpoiled, control.triggerDown, control.repeatStarted,
          control.repeatLastTick};
}

void Play(Control* control, std::uint32_t tick) {
  control->triggerArmed = control->triggerSpoiled = control->triggerDown = 1;
  control->repeatStarted = 1;
  control->repeatLastTick = tick;
}

TEST_F(ProfileActions, RunTimeFlagsStartAsOnTheMasterList) {
  Profile profile;
  Add(&profile, {'a', 1});
  Play(Add(&profile, {'b', 1}), 77);
  profile.RebuildDispatchList();
  Play(profile.DispatchList.head->value, 5);
  profile.RebuildDispatchList();
  EXPECT_EQ(RunTime(*profile.DispatchList.head->value),
            (std::vector<std::uint32_t>{0, 0, 0, 0, 0}));
  EXPECT_EQ(RunTime(*profile.DispatchList.tail->value),
            (std::vector<std::uint32_t>{1, 1, 1, 1, 77}));
}

TEST_F(ProfileActions, EvaluatingACopyLeavesTheMasterAtRest) {
  Profile profile;
  Control* a = Add(&profile, {'a', 1});
  a->activateOnPress = 0;
  profile.RebuildDispatchList();
  DeviceSnapshot snapshot;
  snapshot.dispatchButtons = 1;
  profile.DispatchList.head->value->EvaluateTrigger(32000, snapshot);
  EXPECT_EQ(profile.DispatchList.head->value->triggerArmed, 1);
  EXPECT_EQ(a->triggerArmed, 0);
}

TEST_F(ProfileActions, RunningOutOfMemoryInARebuildLeavesTheActionsAlive) {
  // Each of two Controls takes a node, itself, and a node and a value for its one item and its one
  // action: twelve in all.
  for (std::uint32_t nth = 1; nth <= 12; ++nth) {
    for (const bool onwards : {false, true}) {
      SCOPED_TRACE(testing::Message() << "allocation " << nth << (onwards ? " and on" : ""));
      CountingAction::Begin();
      {
        Profile profile;
        Add(&profile, {'a', 0, 1})->actions.AddTail(new CountingAction);
        Add(&profile, {'b', 1, 1})->actions.AddTail(new CountingAction);
        {
          FailingAllocation fault(nth, onwards);
          profile.RebuildDispatchList();
          EXPECT_GE(fault.Failed(), 1u);
        }
        EXPECT_EQ(CountingAction::destroyed, 0);
        ExpectSoundLinks(profile.DispatchList);
        for (const Control& control : profile.DispatchList) {
          EXPECT_EQ(control.actionsBorrowed, 1);
        }
        profile.RebuildDispatchList();
        EXPECT_EQ(Names(profile.DispatchList), "ba") << "with memory again all is well";
      }
      EXPECT_EQ(CountingAction::destroyed, 2);
    }
  }
}

TEST_F(ProfileActions, DestructionDestroysEachActionOnce) {
  {
    Profile profile;
    Add(&profile, {'a', 1})->actions.AddTail(new CountingAction);
    profile.RebuildDispatchList();
  }
  EXPECT_EQ(CountingAction::destroyed, 1);
}

TEST(Profile, DefaultsOfANewOne) {
  const Profile profile;
  EXPECT_EQ(profile.controls.count, 0);
  EXPECT_EQ(profile.DispatchList.count, 0);
  EXPECT_EQ(Bytes(profile.profileName), "");
  EXPECT_EQ(Bytes(profile.deviceName), "");
  EXPECT_EQ(profile.nextControlId, 1u);
  EXPECT_EQ(profile.pollInterval, 5u);
  EXPECT_EQ(profile.deviceGuid, platform::GUID{});
}

TEST(Profile, ClearEmptiesNameDeviceAndLists) {
  platform::simulation::Simulation sim;
  Profile profile;
  profile.profileName = "Platformer";
  profile.deviceName = "Pad";
  profile.nextControlId = 12;
  profile.pollInterval = 33;
  profile.deviceGuid = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  profile.mouseAlwaysActive = true;
  Add(&profile, {'a', 1});
  profile.RebuildDispatchList();
  profile.Clear();
  EXPECT_EQ(Bytes(profile.profileName), "");
  EXPECT_EQ(Bytes(profile.deviceName), "");
  EXPECT_EQ(profile.nextControlId, 1u);
  EXPECT_EQ(profile.pollInterval, 5u);
  EXPECT_EQ(profile.deviceGuid, platform::GUID{});
  EXPECT_FALSE(profile.mouseAlwaysActive);
  EXPECT_EQ(profile.controls.count, 0);
  EXPECT_EQ(profile.DispatchList.count, 0);
}

// All but mouseAlwaysActive.
std::vector<std::int64_t> Numbers(const MouseSettings& settings) {
  std::vector<std::int64_t> numbers{settings.acceleration, settings.movementDamper,
                                    settings.movementSensitivity, settings.wheelDamper,
                                    settings.wheelSensitivity};
  for (const MouseRoleInput& input : kMouseRoles) {
    const TriggerItem item = input.axis ? TriggerItem(settings.*input.axis) : TriggerItem{};
    numbers.insert(numbers.end(), {item.kind, item.index, item.value});
    if (input.axis) continue;
    numbers.push_back(settings.*input.button);
    numbers.push_back(static_cast<std::int64_t>(settings.*input.mask));
  }
  return numbers;
}

TEST(Profile, ClearLeavesTheOtherMouseSettings) {
  platform::simulation::Simulation sim;
  Profile profile;
  profile.acceleration = 1;
  profile.movementDamper = 2;
  profile.movementSensitivity = 3;
  profile.wheelDamper = 4;
  profile.wheelSensitivity = 6;
  profile.leftButton = 7;
  profile.middleButton = 8;
  profile.rightButton = 9;
  profile.leftMask = 0x80;
  profile.middleMask = 0x100;
  profile.rightMask = 0x200;
  profile.mouseX = TriggerItem{0, 1, 176};
  profile.mouseY = TriggerItem{9, 1, 36};
  profile.mouseWheel = TriggerItem{7, 0, 28};
  const std::vector<std::int64_t> before = Numbers(profile);
  EXPECT_NE(before, Numbers(Profile()));
  profile.Clear();
  EXPECT_EQ(Numbers(profile), before);
}

TEST_F(ProfileActions, ClearDropsTheCopiesFirstAndHoldsTheLock) {
  platform::simulation::Simulation sim;
  Profile profile;
  auto* action = new CountingAction;
  std::int32_t copies = -1;
  std::int32_t depth = -1;
  std::uint32_t name = 99;
  action->onDestroy = [&] {
    copies = profile.DispatchList.count;
    depth = profile.profileLock.Depth();
    name = profile.profileName.Length();
  };
  profile.profileName = "x";
  Add(&profile, {'a', 1})->actions.AddTail(action);
  profile.RebuildDispatchList();
  profile.Clear();
  EXPECT_EQ(CountingAction::destroyed, 1);
  EXPECT_EQ(copies, 0) << "the copies were gone when the action went";
  EXPECT_EQ(depth, 1) << "under profileLock";
  EXPECT_EQ(name, 0u);
  EXPECT_EQ(profile.profileLock.Depth(), 0);
  EXPECT_FALSE(profile.profileLock.IsTaken());
}

TEST_F(ProfileActions, RebuildTakesNoLock) {
  platform::simulation::Simulation sim;
  Profile profile;
  // An entry that owns its action, so that the action's end shows what holds during the rebuild.
  auto* action = new CountingAction;
  bool taken = true;
  action->onDestroy = [&] { taken = profile.profileLock.IsTaken(); };
  profile.DispatchList.AddTail(Control());
  profile.DispatchList.head->value->actions.AddTail(action);
  profile.RebuildDispatchList();
  EXPECT_EQ(CountingAction::destroyed, 1);
  EXPECT_FALSE(taken);
}

}  // namespace
}  // namespace kelvaro
