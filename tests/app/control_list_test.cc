// The Control tab as the person works it: what each operation makes of the rows, the profile, its
// file and what the dispatcher walks; and that one Control alone deletes each action.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/resources/control_ids.h"
#include "tests/app/calls.h"
#include "tests/app/control_fixture.h"
#include "tests/foundation/allocations.h"
#include "tests/person/recorded_desktop.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::IDCANCEL;
using platform::IDNO;
using platform::IDOK;
using platform::IDYES;

using Cells = std::vector<std::vector<std::string>>;
using Ids = std::vector<std::uint32_t>;
using Rows = std::vector<std::int32_t>;

constexpr std::uint8_t kDeleteKey = 0x2E;

Ids IdsOf(const LinkedList<Control>& controls) {
  Ids ids;
  for (const Control& control : controls) ids.push_back(control.controlId);
  return ids;
}

// A KeyAction whose life is counted.
class CountedAction final : public KeyAction {
 public:
  explicit CountedAction(const KeyAction& other) {
    CopyFrom(other);
    living.insert(this);
  }
  CountedAction(const CountedAction& other) : CountedAction(static_cast<const KeyAction&>(other)) {}
  ~CountedAction() override {
    EXPECT_EQ(living.erase(this), 1u) << "deleted twice";
    EXPECT_EQ(replays, 0) << "deleted under a replay";
    ++destroyed;
  }
  bool Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause) override {
    ++replays;
    const bool done = KeyAction::Replay(repeat, holdTime, releasePause);
    --replays;
    return done;
  }
  InputAction* Clone() const override { return new CountedAction(*this); }

  static inline std::set<const void*> living;
  static inline std::size_t destroyed = 0;

 private:
  int replays = 0;  // under way
};

const MadeControl kRepeating = {
    .buttons = 1, .keys = {"a"}, .repeat = true, .delay = 100, .speed = 50};

class ControlListTest : public ControlTest {
 protected:
  void Repeat() {
    Press({1});
    sim.RunFor(300);
    ASSERT_TRUE(Engine().repeatWorker.Repeating());
  }
  // That the button is still held presses nothing.
  void ExpectNoRepeat() {
    EXPECT_FALSE(Engine().repeatWorker.Repeating());
    sim.ClearEvents();
    sim.RunFor(1000);
    EXPECT_EQ(sim.EventText(), "");
  }

  // Controls "a", "b", ... on the buttons 1, 2, ..., each typing its own name.
  void StartWithLetters(std::uint32_t n) {
    std::vector<MadeControl> controls;
    for (std::uint32_t i = 0; i < n; ++i) {
      const std::string letter(1, static_cast<char>('a' + i));
      controls.push_back(
          {.description = letter, .buttons = std::uint64_t{1} << i, .keys = {letter}});
    }
    StartWith(controls);
  }

  // The texts of a column, one letter each as a rule.
  std::string Column(std::size_t column) {
    std::string text;
    for (const auto& row : screen.Cells(kControlList)) text += row[column];
    return text;
  }
  std::string Descriptions() { return Column(2); }

  Ids ControlIds() { return IdsOf(OpenProfile().controls); }
  Ids DispatchIds() { return IdsOf(OpenProfile().DispatchList); }
  Ids StoredIds() { return IdsOf(Stored(kProfile)->controls); }

  std::uint32_t Saves() { return sim.Disk().Count("CopyFileA"); }

  void Select(const Rows& rows) { screen.SelectRows(kControlList, rows); }
  void Delete(const Rows& rows) {
    Select(rows);
    screen.AnswerNext(IDYES);
    screen.Click(kDeleteControls);
  }
  void Copy(const Rows& rows) {
    Select(rows);
    screen.Click(kCopyControls);
  }
  void Paste() { screen.Click(kPasteControls); }

  // Puts counted actions in the place of all others of the profile. That the dialog's own ones can
  // be deleted here shows whose they are.
  void CountActions() {
    for (Control& control : OpenProfile().controls) {
      for (InputAction*& action : control.actions) {
        auto* const plain = static_cast<KeyAction*>(action);
        if (dynamic_cast<CountedAction*>(plain)) continue;
        action = new CountedAction(*plain);
        delete plain;
      }
    }
    OpenProfile().RebuildDispatchList();
  }
};

// --- Rows

TEST_F(ControlListTest, ARowShowsTriggerActionAndDescription) {
  StartWith({
      {.description = "jump", .buttons = 0b101, .items = {{8, 0, 6}}, .keys = {"<ctrl>c"}},
      {.description = "mouse", .items = {{2, 0, 2}}, .toggleMouse = true},
      {.description = "both", .keys = {"a", "<P:1>b"}, .toggleMouse = true},
      {.description = "several", .keys = {"a", "+", "c"}},
      {.description = "nothing"},
  });
  EXPECT_EQ(screen.Cells(kControlList), (Cells{
                                            {"B1+B3+POV0(up+right)", "<Ctrl>c", "jump"},
                                            {"Axis_Z0(pos)", "<mouse ctrl>", "mouse"},
                                            {"", "<mouse ctrl>+a+<P:1>b", "both"},
                                            {"", "a+++c", "several"},
                                            {"", "", "nothing"},
                                        }));
}

TEST_F(ControlListTest, AnActionOfAnotherKindThanKeysHasNoText) {
  StartWith({{.keys = {"a", "b"}}});
  LinkedList<InputAction*>& actions = ControlAt(0).actions;
  actions.AddTail(new InputAction);
  std::swap(*actions.head->value, *actions.tail->value);
  Window()->controlTab.FillControlList();
  EXPECT_EQ(Column(1), "b+a");
}

TEST_F(ControlListTest, RowsTellPressFromReleaseOnlyWithThePrefixFlag) {
  StartWith({{.buttons = 1, .keys = {"a"}}, {.buttons = 2, .keys = {"b"}, .press = false}});
  EXPECT_EQ(Window()->controlTab.rowPrefixes, 0);
  EXPECT_EQ(Column(0), "B1B2");
  Copy({0, 1});
  Window()->controlTab.rowPrefixes = 1;
  Paste();
  EXPECT_EQ(Column(0), "p:B1r:B2p:B1r:B2");
  Window()->controlTab.rowPrefixes = 2;
  Paste();
  EXPECT_EQ(Column(0), "B1B2B1B2B1B2");
}

TEST_F(ControlListTest, TheFirstSelectedRowNamesTheControl) {
  StartWith({{.id = 70}, {.id = 50}, {.id = 60}});
  EXPECT_EQ(Window()->controlTab.SelectedControlId(), 0u);
  EXPECT_EQ(Window()->controlTab.SelectedRow(), -1);
  Select({2, 1});
  EXPECT_EQ(Window()->controlTab.SelectedControlId(), 50u);
  EXPECT_EQ(Window()->controlTab.SelectedRow(), 1);
}

TEST_F(ControlListTest, FillingTheListShowsWhetherTheMouseControlsAreAlwaysActive) {
  StartWithLetters(2);
  screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  EXPECT_FALSE(screen.Checked(kMouseAlwaysActive));
  OpenProfile().mouseAlwaysActive = true;
  screen.ChooseTab(kTabControl, MainWindow::kControlTab);
  Select({1});
  screen.Click(kMoveUp);
  screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  EXPECT_TRUE(screen.Checked(kMouseAlwaysActive));
}

// --- New

TEST_F(ControlListTest, NewWithoutAProfileIsToldAndOpensNoDialog) {
  WithoutProfiles();
  Begin();
  screen.AnswerNext(IDOK);
  New();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  ASSERT_EQ(screen.Boxes().size(), 1u);
  EXPECT_EQ(LastBox().text, "Create or Load a Profile Before Creating Controls");
  EXPECT_EQ(LastBox().caption, "No Profile Selected");
  EXPECT_EQ(LastBox().type, platform::MB_OK);
  EXPECT_EQ(OpenProfile().controls.count, 0);
}

TEST_F(ControlListTest, ANewControlGoesToTheEndAndIsSavedAtOnce) {
  StartWithLetters(2);
  Select({0});
  New();
  screen.Type(define_control::kDescriptionText, "new");
  screen.Type(define_control::kKeysText, "xy");
  DetectTrigger({3, 4});
  EXPECT_EQ(Saves(), 0u);
  screen.Click(IDOK);
  EXPECT_EQ(Saves(), 1u);
  EXPECT_EQ(screen.Cells(kControlList).back(), (Strings{"B3+B4", "xy", "new"}));
  EXPECT_EQ(ControlIds(), (Ids{1, 2, 3}));
  EXPECT_EQ(OpenProfile().nextControlId, 4u);
  EXPECT_EQ(StoredIds(), (Ids{1, 2, 3}));
  EXPECT_EQ(Stored(kProfile)->nextControlId, 4u);
  EXPECT_EQ(DispatchIds(), (Ids{3, 2, 1})) << "the heaviest first";
  EXPECT_EQ(ControlAt(2).actionsBorrowed, 0);
  EXPECT_EQ(screen.SelectedRows(kControlList), Rows{0});
}

TEST_F(ControlListTest, WhatComesToTheEndIsBroughtIntoView) {
  StartWithLetters(3);
  sim.LogCalls(true);
  New();
  TypeControl("x");
  screen.Click(IDOK);
  EXPECT_EQ(CallsOf(sim, {"ListEnsureVisible"}), Strings{"ListEnsureVisible 1003 3"});
  Copy({0, 1});
  sim.ClearCalls();
  Paste();
  EXPECT_EQ(CallsOf(sim, {"ListEnsureVisible"}), Strings{"ListEnsureVisible 1003 5"});
}

TEST_F(ControlListTest, ANewControlThatIsCancelledLeavesNothing) {
  StartWithLetters(2);
  New();
  TypeControl("x");
  screen.Click(IDCANCEL);
  EXPECT_EQ(Descriptions(), "ab");
  EXPECT_EQ(ControlIds(), (Ids{1, 2}));
  EXPECT_EQ(OpenProfile().nextControlId, 3u);
  EXPECT_EQ(Saves(), 0u);
}

TEST_F(ControlListTest, NewShowsNothingOfTheControlThatWasEditedBefore) {
  StartWith({{.description = "old",
              .buttons = 1,
              .keys = {"a"},
              .press = false,
              .toggleMouse = true,
              .hold = 9}});
  Edit(0);
  screen.Click(IDOK);
  New();
  EXPECT_EQ(screen.Text(define_control::kDescriptionText), "");
  EXPECT_EQ(screen.Text(define_control::kTriggerText), "");
  EXPECT_EQ(screen.Text(define_control::kKeysText), "");
  EXPECT_EQ(screen.Text(define_control::kHoldValue), "0");
  EXPECT_FALSE(screen.Checked(define_control::kToggleMouseCheck));
  EXPECT_TRUE(screen.Checked(define_control::kPress));
  screen.Click(IDCANCEL);
  EXPECT_EQ(Keys(ControlAt(0)), "a");
}

// --- Edit

TEST_F(ControlListTest, ADoubleClickTheButtonAndEnterEditTheSelectedControl) {
  StartWithLetters(3);
  screen.DoubleClickRow(kControlList, 2);
  ASSERT_EQ(screen.Front(), define_control::kDialog);
  EXPECT_EQ(screen.Text(define_control::kDescriptionText), "c");
  screen.Click(IDCANCEL);

  Edit(1);
  EXPECT_EQ(screen.Text(define_control::kDescriptionText), "b");
  screen.Click(IDCANCEL);

  Select({0});
  screen.FocusOn(kControlList);
  screen.Press(screen.kEnter);
  ASSERT_EQ(screen.Front(), define_control::kDialog);
  EXPECT_EQ(screen.Text(define_control::kDescriptionText), "a");
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Front(), main_window::kDialog) << "it was opened once";
}

TEST_F(ControlListTest, ADoubleClickBelowTheRowsWithNoneSelectedDoesNothing) {
  StartWithLetters(2);
  Select({});
  screen.DoubleClickRow(kControlList, -1);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  screen.Click(kEditControl);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
}

TEST_F(ControlListTest, EnterOnAnotherTabEditsNothing) {
  StartWithLetters(2);
  Select({0});
  for (const auto tab : {MainWindow::kMouseTab, MainWindow::kDeviceTab, MainWindow::kSettingsTab}) {
    screen.ChooseTab(kTabControl, tab);
    screen.FocusOn(kTabControl);
    screen.Press(screen.kEnter);
    EXPECT_EQ(screen.Front(), main_window::kDialog) << tab;
  }
}

TEST_F(ControlListTest, OfSeveralSelectedControlsTheFirstIsEdited) {
  StartWithLetters(3);
  Select({1, 2});
  screen.Click(kEditControl);
  EXPECT_EQ(screen.Text(define_control::kDescriptionText), "b");
  screen.Type(define_control::kDescriptionText, "B");
  screen.Click(IDOK);
  EXPECT_EQ(Descriptions(), "aBc");
  EXPECT_EQ(screen.SelectedRows(kControlList), (Rows{1, 2}));
}

TEST_F(ControlListTest, AnEditedControlIsShownAnewAndSavedAtOnce) {
  StartWithLetters(3);
  Edit(1);
  screen.Type(define_control::kDescriptionText, "new");
  screen.Type(define_control::kKeysText, "xy");
  DetectTrigger({3, 4});
  screen.Click(IDOK);
  EXPECT_EQ(Saves(), 1u);
  EXPECT_EQ(screen.Cells(kControlList)[1], (Strings{"B3+B4", "xy", "new"}));
  EXPECT_EQ(ControlIds(), (Ids{1, 2, 3}));
  EXPECT_EQ(OpenProfile().nextControlId, 4u);
  const auto stored = Stored(kProfile);
  EXPECT_EQ(Bytes(stored->controls.At(1)->value->description), "new");
  EXPECT_EQ(stored->controls.At(1)->value->buttonMask, 0b1100u);
  EXPECT_EQ(DispatchIds()[0], 2u) << "it is the heaviest now";
  EXPECT_EQ(ControlAt(1).actionsBorrowed, 0);
  EXPECT_EQ(screen.SelectedRows(kControlList), Rows{1});
}

TEST_F(ControlListTest, AnEditThatIsCancelledLeavesTheControlAndItsActions) {
  StartWithLetters(1);
  const InputAction* action = *ControlAt(0).actions.head->value;
  const auto file = sim.Disk().FileBytes("/game/Profiles/Game.idprof");
  Edit(0);
  TypeControl("x");
  screen.Click(define_control::kDetectTrigger);
  Press({5});
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Cells(kControlList), (Cells{{"B1", "a", "a"}}));
  EXPECT_EQ(ControlAt(0).buttonMask, 1u);
  EXPECT_EQ(*ControlAt(0).actions.head->value, action);
  EXPECT_EQ(Saves(), 0u);
  EXPECT_EQ(sim.Disk().FileBytes("/game/Profiles/Game.idprof"), file);
}

TEST_F(ControlListTest, ARunningRepeatStopsWhenTheDialogOpensEvenIfItIsCancelled) {
  const std::vector<std::function<void()>> opens = {[this] { New(); }, [this] { Edit(0); }};
  for (const auto& open : opens) {
    StartWith({kRepeating});
    Repeat();
    open();
    ExpectNoRepeat();
    screen.Click(IDCANCEL);
    ExpectNoRepeat();
    Press({});
  }
}

TEST_F(ControlListTest, ANewOrEditedControlRepeatsByItsOwnTimes) {
  StartWithLetters(1);
  Edit(0);
  screen.Click(define_control::kRepeatCheck);
  screen.Type(define_control::kDelayValue, "200");
  screen.Type(define_control::kSpeedValue, "30");
  screen.Click(IDOK);
  PressAt(1000, {1});
  PressAt(1300, {});
  sim.RunUntil(2000);
  // At the press, after the delay, and then each third look of the worker.
  EXPECT_EQ(sim.EventText(),
            "1000 key 41 1e 0\n1000 key 41 1e 2\n"
            "1200 key 41 1e 0\n1200 key 41 1e 2\n"
            "1230 key 41 1e 0\n1230 key 41 1e 2\n"
            "1260 key 41 1e 0\n1260 key 41 1e 2\n"
            "1290 key 41 1e 0\n1290 key 41 1e 2\n");
}

// The dispatcher may start one just before the dialog is up.
TEST_F(ControlListTest, AReplayOfTheRepeatIsOverBeforeAnEditTakesTheActionsAway) {
  StartWith({{.keys = {"a<P:1000>b"}, .repeat = true, .delay = 100, .speed = 50}});
  CountActions();
  CountedAction::destroyed = 0;
  Edit(0);
  screen.Type(define_control::kKeysText, "c");
  Engine().repeatWorker.Start(OpenProfile().DispatchList.head->value);
  sim.RunFor(500);
  ASSERT_EQ(Sent().back(), "key 41 1e 2") << "in the middle of the replay";
  screen.Click(IDOK);
  EXPECT_EQ(CountedAction::destroyed, 1u);
  EXPECT_EQ(Sent().back(), "key 42 30 2");
  EXPECT_FALSE(Engine().repeatWorker.Repeating());
}

// --- Smart Check and the reminder, which the window lends the dialog

TEST_F(ControlListTest, AReminderThatWasDeclinedIsRememberedOnOK) {
  StartWithLetters(1);
  New();
  TypeControl("A");
  screen.Click(IDOK);
  screen.Click(shift_key_required::kDontShowAgain);
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_FALSE(Settings().shiftReminder);
  EXPECT_EQ(Number("Shift Reminder"), 0u);
  Edit(0);
  TypeControl("B");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
}

TEST_F(ControlListTest, AReminderThatWasDeclinedIsRememberedOnCancelToo) {
  StartWithLetters(1);
  Edit(0);
  TypeControl("A");
  screen.Click(IDOK);
  screen.Click(shift_key_required::kDontShowAgain);
  screen.Click(IDCANCEL);
  EXPECT_TRUE(Settings().shiftReminder) << "not while the dialog is open";
  screen.Click(IDCANCEL);
  EXPECT_FALSE(Settings().shiftReminder);
  EXPECT_EQ(Number("Shift Reminder"), 0u);
}

TEST_F(ControlListTest, SettingsAreSavedOnlyIfTheReminderChanged) {
  StartWithLetters(1);
  for (const bool ok : {true, false}) {
    Edit(0);
    TypeControl("A");
    screen.Click(IDOK);
    screen.Click(IDOK);
    if (!ok) {
      Edit(0);
      screen.Click(IDCANCEL);
    }
  }
  EXPECT_TRUE(Settings().shiftReminder);
  EXPECT_EQ(Number("Shift Reminder"), std::nullopt);
}

TEST_F(ControlListTest, WithoutAWindowForTheDialogNothingIsEdited) {
  StartWithLetters(1);
  const InputAction* action = *ControlAt(0).actions.head->value;
  sim.FailNext("RunDialog");
  Edit(0);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  sim.FailNext("RunDialog");
  New();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(screen.Cells(kControlList), (Cells{{"B1", "a", "a"}}));
  EXPECT_EQ(*ControlAt(0).actions.head->value, action);
  EXPECT_EQ(Keys(ControlAt(0)), "a");
  EXPECT_EQ(DefineControl().scratch.actionsBorrowed, 1) << "they are still the Control's";
}

// --- Delete

TEST_F(ControlListTest, DeletingAsksAndNoKeepsEverything) {
  StartWithLetters(3);
  Select({1});
  screen.Click(kDeleteControls);
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().text, "Delete Selected Control(s), Are You Sure?");
  EXPECT_EQ(screen.Box().caption, "Confirm Delete");
  EXPECT_EQ(screen.Box().type, platform::MB_YESNO | platform::MB_ICONQUESTION);
  EXPECT_EQ(screen.Box().owner, Handle());
  screen.Answer(IDNO);
  EXPECT_EQ(Descriptions(), "abc");
  EXPECT_EQ(screen.SelectedRows(kControlList), Rows{1});
  EXPECT_EQ(Saves(), 0u);
}

TEST_F(ControlListTest, YesDeletesTheSelectedControlsWithOneSave) {
  StartWithLetters(5);
  Delete({0, 2, 4});
  EXPECT_EQ(Descriptions(), "bd");
  EXPECT_EQ(ControlIds(), (Ids{2, 4}));
  EXPECT_EQ(StoredIds(), (Ids{2, 4}));
  EXPECT_EQ(DispatchIds(), (Ids{2, 4}));
  EXPECT_EQ(OpenProfile().nextControlId, 6u) << "it never falls";
  EXPECT_EQ(Saves(), 1u);
  EXPECT_EQ(screen.SelectedRows(kControlList), Rows{});
  Delete({0, 1});
  EXPECT_EQ(Descriptions(), "");
  EXPECT_EQ(StoredIds(), Ids{});
}

TEST_F(ControlListTest, TheDeleteKeyDeletesInTheListAlone) {
  StartWithLetters(2);
  Select({0});
  screen.FocusOn(kMoveUp);
  screen.Press(kDeleteKey);
  EXPECT_TRUE(screen.Boxes().empty());
  screen.FocusOn(kControlList);
  screen.AnswerNext(IDYES);
  screen.Press(kDeleteKey);
  EXPECT_EQ(Descriptions(), "b");
}

TEST_F(ControlListTest, NothingIsAskedWithNothingToDelete) {
  StartWithLetters(2);
  Select({});
  screen.Click(kDeleteControls);
  EXPECT_TRUE(screen.Boxes().empty());
  StartWith({});
  screen.Click(kDeleteControls);
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(ControlListTest, ControlsThatShareAnIdGoTogether) {
  StartWith({{.description = "a", .id = 5},
             {.description = "b", .id = 5},
             {.description = "c", .id = 6}});
  Delete({1});
  EXPECT_EQ(Descriptions(), "c");
}

TEST_F(ControlListTest, ARepeatingControlThatIsDeletedRepeatsNoMore) {
  StartWith({kRepeating, {.buttons = 2, .keys = {"b"}}});
  Repeat();
  Delete({0});
  ExpectNoRepeat();
  Press({});
  EXPECT_EQ(sim.EventText(), "");
}

TEST_F(ControlListTest, AReplayOfTheRepeatIsOverBeforeItsControlGoes) {
  StartWith({{.buttons = 1, .keys = {"a<P:1000>b"}, .repeat = true, .delay = 100, .speed = 50}});
  CountActions();
  Press({1});  // the first replay, of the dispatcher, takes 1000 ms
  sim.RunFor(1500);
  ASSERT_TRUE(Engine().repeatWorker.Repeating());
  ASSERT_EQ(Sent().back(), "key 41 1e 2") << "in the middle of the second";
  const std::uint64_t before = sim.Now();
  Delete({0});
  EXPECT_GT(sim.Now(), before + 400);
  EXPECT_EQ(Sent().back(), "key 42 30 2");
}

TEST_F(ControlListTest, PastingStopsARepeatWhoseControlIsReplaced) {
  StartWith({kRepeating});
  Copy({0});
  Repeat();
  Paste();
  ExpectNoRepeat();
}

// --- Copy and Paste

TEST_F(ControlListTest, CopyTakesTheSelectedControlsInTheOrderOfTheirRows) {
  StartWithLetters(4);
  Copy({3, 0, 2});
  ASSERT_EQ(Window()->controlTab.copiedControls.count, 3);
  EXPECT_EQ(IdsOf(Window()->controlTab.copiedControls), (Ids{1, 3, 4}));
  for (const Control& control : Window()->controlTab.copiedControls)
    EXPECT_EQ(control.actionsBorrowed, 0) << "the buffer owns its actions";
  EXPECT_EQ(Saves(), 0u);
  Copy({1});
  EXPECT_EQ(IdsOf(Window()->controlTab.copiedControls), Ids{2}) << "emptied by the next copy";
}

TEST_F(ControlListTest, CopyWithNoSelectionLeavesTheBuffer) {
  StartWithLetters(2);
  Copy({1});
  Copy({});
  screen.FocusOn(kControlList);
  screen.Press('C', true);
  EXPECT_EQ(IdsOf(Window()->controlTab.copiedControls), Ids{2});
}

TEST_F(ControlListTest, LaterEditsDontReachTheBuffer) {
  StartWithLetters(1);
  Copy({0});
  Edit(0);
  screen.Type(define_control::kDescriptionText, "x");
  screen.Type(define_control::kKeysText, "x");
  screen.Click(IDOK);
  Delete({0});
  Paste();
  EXPECT_EQ(screen.Cells(kControlList), (Cells{{"B1", "a", "a"}}));
}

TEST_F(ControlListTest, PasteFromAnEmptyBufferDoesNothing) {
  StartWithLetters(2);
  Select({1});
  Paste();
  EXPECT_EQ(Descriptions(), "ab");
  EXPECT_EQ(screen.SelectedRows(kControlList), Rows{1});
  EXPECT_EQ(Saves(), 0u);
}

TEST_F(ControlListTest, PastedControlsGoToTheEndWithIdsOfTheirOwn) {
  StartWithLetters(3);
  Copy({0, 2});
  Select({0});
  Paste();
  EXPECT_EQ(Descriptions(), "abcac");
  EXPECT_EQ(ControlIds(), (Ids{1, 2, 3, 4, 5}));
  EXPECT_EQ(OpenProfile().nextControlId, 6u);
  EXPECT_EQ(StoredIds(), ControlIds());
  EXPECT_EQ(DispatchIds(), ControlIds());
  EXPECT_EQ(Saves(), 1u) << "one for all of them";
  EXPECT_EQ(screen.SelectedRows(kControlList), Rows{});
}

TEST_F(ControlListTest, EveryMemberOfAControlIsPasted) {
  StartWith({{.description = "all",
              .buttons = 0b11,
              .items = {{8, 0, 1}, {3, 1, 2}},
              .keys = {"ab", "<P:9>"},
              .holdAllFrom = 0,
              .press = false,
              .triggerOption = false,
              .toggleMouse = true,
              .repeat = true,
              .delay = 1,
              .speed = 2,
              .hold = 3,
              .pause = 4}});
  Copy({0});
  Paste();
  const std::uint32_t id = ControlAt(1).controlId;
  ControlAt(1).controlId = ControlAt(0).controlId;
  ExpectSame(ControlAt(0), ControlAt(1));
  ControlAt(1).controlId = id;
}

TEST_F(ControlListTest, PastingTwiceGivesTwoCopiesWithActionsOfTheirOwn) {
  StartWithLetters(1);
  Copy({0});
  Paste();
  Paste();
  EXPECT_EQ(Descriptions(), "aaa");
  EXPECT_EQ(ControlIds(), (Ids{1, 2, 3}));
  std::set<InputAction*> actions;
  for (std::int32_t i = 0; i < 3; ++i) actions.insert(*ControlAt(i).actions.head->value);
  EXPECT_EQ(actions.size(), 3u);
  EXPECT_EQ(actions.count(*Window()->controlTab.copiedControls.head->value->actions.head->value),
            0u);
}

TEST_F(ControlListTest, APasteWithoutMemoryChangesNoOtherControl) {
  StartWithLetters(2);
  Copy({0});
  FailingAllocation fault(1);
  Paste();
  EXPECT_EQ(fault.Failed(), 1u);
  EXPECT_EQ(Descriptions(), "ab");
}

TEST_F(ControlListTest, TheBufferSurvivesAChangeOfProfile) {
  StoreProfile("Other", [this](ProfileFile& made) {
    UsePad(made);
    AddControl(&made, {.description = "o", .id = 90});
    made.nextControlId = 100;
  });
  StartWithLetters(2);
  Copy({0, 1});
  screen.Choose(kProfileList, "Other");
  EXPECT_EQ(Descriptions(), "o");
  Paste();
  EXPECT_EQ(Descriptions(), "oab");
  EXPECT_EQ(ControlIds(), (Ids{90, 100, 101}));
  EXPECT_EQ(IdsOf(Stored("Other")->controls), (Ids{90, 100, 101}));
  EXPECT_EQ(Stored(kProfile)->controls.count, 2);
}

TEST_F(ControlListTest, ControlCAndControlVCopyAndPaste) {
  StartWithLetters(2);
  Select({1});
  screen.FocusOn(kControlList);
  screen.Press('C');
  screen.Press('V');
  EXPECT_EQ(Descriptions(), "ab") << "not without the control key";
  screen.Press('C', true);
  EXPECT_EQ(IdsOf(Window()->controlTab.copiedControls), Ids{2});
  screen.Press('V', true);
  EXPECT_EQ(Descriptions(), "abb");
  for (const std::uint8_t other : {'X', 'B', 'A'}) screen.Press(other, true);
  EXPECT_EQ(Descriptions(), "abb");
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(ControlListTest, AControlKeyThatIsOnlyToggledIsNotHeld) {
  StartWithLetters(1);
  dynamic_cast<platform::simulation::RecordedDesktop&>(platform::desktop()).keysToggled = true;
  Select({0});
  screen.FocusOn(kControlList);
  screen.Press('C');
  EXPECT_EQ(Window()->controlTab.copiedControls.count, 0);
  screen.Press('C', true);
  EXPECT_EQ(Window()->controlTab.copiedControls.count, 1);
}

TEST_F(ControlListTest, TheWindowItselfTakesControlCAndControlVToo) {
  StartWithLetters(2);
  Select({0});
  screen.FocusOn(kMoveUp);  // which has no use for them
  screen.Press('C', true);
  screen.Press('V', true);
  EXPECT_EQ(Descriptions(), "aba");
}

// --- Move

TEST_F(ControlListTest, AMoveTakesTheWholeSelectionOrNothing) {
  struct Row {
    std::uint32_t button;
    Rows selected;
    const char* after;
    Rows selectedAfter;
  };
  const Row rows[] = {
      {kMoveDown, {}, "abcde", {}},
      {kMoveUp, {}, "abcde", {}},
      {kMoveDown, {0}, "bacde", {1}},
      {kMoveUp, {4}, "abced", {3}},
      {kMoveUp, {0, 2}, "abcde", {0, 2}},    // the first can't
      {kMoveDown, {0, 2}, "badce", {1, 3}},  // the gap stays
      {kMoveUp, {1, 3}, "badce", {0, 2}},
      {kMoveDown, {1, 4}, "abcde", {1, 4}},  // the last can't
      {kMoveDown, {1, 2, 3}, "aebcd", {2, 3, 4}},
      {kMoveUp, {1, 2, 3}, "bcdae", {0, 1, 2}},
      {kMoveUp, {0, 1, 2, 3, 4}, "abcde", {0, 1, 2, 3, 4}},
      {kMoveDown, {0, 1, 2, 3, 4}, "abcde", {0, 1, 2, 3, 4}},
  };
  for (const Row& row : rows) {
    StartWithLetters(5);
    sim.Disk().ClearLog();
    Select(row.selected);
    screen.Click(row.button);
    const std::string name =
        std::to_string(row.button) + " of " + testing::PrintToString(row.selected);
    EXPECT_EQ(Descriptions(), row.after) << name;
    EXPECT_EQ(screen.SelectedRows(kControlList), row.selectedAfter) << name;
    EXPECT_EQ(Saves(), row.after == std::string("abcde") ? 0u : 1u) << name;
    EXPECT_EQ(StoredIds(), ControlIds()) << name;
  }
}

TEST_F(ControlListTest, AMoveCountsForTheDispatcherOnlyFromTheNextRebuild) {
  StartWith({{.description = "a", .buttons = 1, .keys = {"a"}},
             {.description = "b", .buttons = 1, .keys = {"b"}}});
  Select({1});
  screen.Click(kMoveUp);
  EXPECT_EQ(ControlIds(), (Ids{2, 1}));
  EXPECT_EQ(DispatchIds(), (Ids{1, 2}));
  Press({1});
  Press({});
  EXPECT_EQ(Sent(), (Strings{"key 41 1e 0", "key 41 1e 2"})) << "the former first one";

  Edit(1);
  screen.Click(IDOK);
  EXPECT_EQ(DispatchIds(), (Ids{2, 1}));
  sim.ClearEvents();
  Press({1});
  Press({});
  EXPECT_EQ(Sent(), (Strings{"key 42 30 0", "key 42 30 2"}));
}

TEST_F(ControlListTest, AMoveLeavesARepeatRunning) {
  StartWith({kRepeating, {.buttons = 2, .keys = {"b"}}});
  Press({1});
  Select({0});
  screen.Click(kMoveDown);
  EXPECT_TRUE(Engine().repeatWorker.Repeating());
  sim.ClearEvents();
  sim.RunFor(500);
  EXPECT_FALSE(sim.Events().empty());
}

// --- Failures, locks and actions

TEST_F(ControlListTest, ASaveThatFailsIsNotToldAndTheEditStays) {
  StartWithLetters(3);
  const auto fail = [this] {
    for (std::uint64_t n = 1; n <= 100; ++n) sim.Disk().FailOperation(n);
  };
  fail();
  Delete({0});
  EXPECT_EQ(Descriptions(), "bc");
  fail();
  Copy({0});
  Paste();
  EXPECT_EQ(Descriptions(), "bcb");
  fail();
  Select({0});
  screen.Click(kMoveDown);
  EXPECT_EQ(Descriptions(), "cbb");
  fail();
  New();
  TypeControl("n");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Boxes().size(), 1u) << "the question alone";
  EXPECT_EQ(ControlIds(), (Ids{3, 2, 4, 5}));
  EXPECT_EQ(DispatchIds().size(), 4u);
  sim.Disk().Restart();
  EXPECT_EQ(StoredIds(), (Ids{1, 2, 3}));
}

// A replay holds the profile's lock: an operation comes after it, and meanwhile nothing is lost.
TEST_F(ControlListTest, AnOperationWaitsForAReplay) {
  StartWith({{.description = "a", .buttons = 1, .keys = {"a<P:2000>b"}},
             {.description = "b", .buttons = 2, .keys = {"c"}}});
  Press({1});
  const std::uint64_t before = sim.Now();
  Delete({0});
  EXPECT_GE(sim.Now(), before + 1900);
  EXPECT_EQ(Descriptions(), "b");
}

TEST_F(ControlListTest, EachActionIsDeletedByOneControl) {
  CountedAction::destroyed = 0;
  StoreProfile("Other", [this](ProfileFile& made) { UsePad(made); });
  StartWith({{.description = "a", .keys = {"a"}},
             {.description = "bc", .keys = {"b", "c"}},
             {.description = "d", .keys = {"d"}}});
  CountActions();
  const auto living = [] { return CountedAction::living.size(); };
  const auto destroyed = [] { return CountedAction::destroyed; };
  EXPECT_EQ(living(), 4u);

  for (const std::int32_t row : {0, 1, 2}) {
    Edit(row);
    screen.Click(IDCANCEL);
  }
  Edit(1);
  screen.Type(define_control::kKeysText, "<fault");
  screen.Click(IDOK);
  screen.Answer(IDOK);
  screen.Click(IDCANCEL);
  New();
  TypeControl("x");
  screen.Click(IDCANCEL);
  EXPECT_EQ(destroyed(), 0u);

  Edit(1);
  screen.Click(IDOK);  // two become one
  EXPECT_EQ(destroyed(), 2u);
  CountActions();
  New();
  TypeControl("x");
  screen.Click(IDOK);
  CountActions();
  EXPECT_EQ(living(), 4u);
  EXPECT_EQ(destroyed(), 2u);

  Copy({1, 2});
  EXPECT_EQ(living(), 6u);
  Paste();
  Paste();
  EXPECT_EQ(living(), 10u);
  EXPECT_EQ(destroyed(), 2u);
  Copy({0});
  EXPECT_EQ(living(), 9u) << "the buffer's two went, one came";
  EXPECT_EQ(destroyed(), 4u);
  Delete({0, 4});
  EXPECT_EQ(living(), 7u);
  Select({0});
  screen.Click(kMoveDown);
  EXPECT_EQ(destroyed(), 6u);

  screen.Choose(kProfileList, "Other");
  EXPECT_EQ(living(), 1u) << "the buffer's";
  Paste();
  EXPECT_EQ(living(), 2u);
  CloseAll();
  EXPECT_EQ(living(), 0u);
}

TEST_F(ControlListTest, ADialogThatIsOpenGoesWithTheProgramUnconfirmed) {
  StartWithLetters(1);
  New();
  TypeControl("A");
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(StoredIds(), Ids{1});
}

TEST_F(ControlListTest, AQuestionThatIsUpGoesWithTheProgramAsANo) {
  StartWithLetters(2);
  Select({0});
  screen.Click(kDeleteControls);
  ASSERT_TRUE(screen.BoxUp());
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(StoredIds(), (Ids{1, 2}));
}

// --- All of it, at random

class RandomEdits : public ControlListTest, public testing::WithParamInterface<std::uint32_t> {
 protected:
  // What the list should show, kept apart from the program.
  struct Model {
    Cells rows;
    Cells buffer;
    Rows selected;
  };

  void Open() {
    if (screen.Running()) CloseAll();
    StoreProfile(kProfile, [this](ProfileFile& made) {
      RandomProfile(GetParam()).Fill(&made);
      made.profileName = kProfile;
      made.pollInterval = 5;
      UsePad(made);
      made.nextControlId = 1;
      for (Control& control : made.controls) control.controlId = made.nextControlId++;
    });
    Begin();
    model.rows = screen.Cells(kControlList);
  }

  Rows SomeRows() {
    Rows rows;
    const std::uint32_t odds = 1 + random.Below(4);
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(model.rows.size()); ++i)
      if (random.OneIn(odds)) rows.push_back(i);
    return rows;
  }

  // Types a Control and ends the dialog. The row that it makes of `row`; nothing for Cancel.
  bool Define(Strings* row) {
    const std::string name = "made " + std::to_string(random.Below(1000));
    const std::string letter(1, static_cast<char>('a' + random.Below(26)));
    screen.Type(define_control::kDescriptionText, name);
    screen.Type(define_control::kKeysText, letter);
    const std::uint32_t button = 1 + random.Below(11);
    const bool detect = random.OneIn(2);
    if (detect) DetectTrigger({button});
    if (random.OneIn(4)) {
      screen.Click(IDCANCEL);
      return false;
    }
    const bool toggle = screen.Checked(define_control::kToggleMouseCheck);
    screen.Click(IDOK);
    if (detect) (*row)[0] = "B" + std::to_string(button);
    (*row)[1] = toggle ? "<mouse ctrl>+" + letter : letter;
    (*row)[2] = name;
    return true;
  }

  // Each tells whether it is to have rebuilt what the dispatcher walks.
  bool NewOne() {
    New();
    Strings row(3);
    if (!Define(&row)) return false;
    model.rows.push_back(row);
    return true;
  }
  bool EditOne() {
    model.selected = SomeRows();
    Select(model.selected);
    screen.Click(kEditControl);
    if (model.selected.empty()) return false;
    return Define(&model.rows[model.selected.front()]);
  }
  bool DeleteSome() {
    model.selected = SomeRows();
    Select(model.selected);
    const bool yes = !random.OneIn(4);
    if (!model.selected.empty()) screen.AnswerNext(yes ? IDYES : IDNO);
    screen.Click(kDeleteControls);
    if (model.selected.empty() || !yes) return false;
    for (auto row = model.selected.rbegin(); row != model.selected.rend(); ++row)
      model.rows.erase(model.rows.begin() + *row);
    model.selected.clear();
    return true;
  }
  bool CopySome() {
    model.selected = SomeRows();
    Copy(model.selected);
    if (model.selected.empty()) return false;
    model.buffer.clear();
    for (const std::int32_t row : model.selected) model.buffer.push_back(model.rows[row]);
    return false;
  }
  bool PasteAll() {
    Paste();
    if (model.buffer.empty()) return false;
    model.rows.insert(model.rows.end(), model.buffer.begin(), model.buffer.end());
    model.selected.clear();
    return true;
  }
  bool Move() {
    const bool up = random.OneIn(2);
    model.selected = SomeRows();
    Select(model.selected);
    screen.Click(up ? kMoveUp : kMoveDown);
    const std::int32_t end = up ? 0 : static_cast<std::int32_t>(model.rows.size()) - 1;
    if (std::find(model.selected.begin(), model.selected.end(), end) != model.selected.end())
      return false;
    const std::int32_t step = up ? -1 : 1;
    Rows order = model.selected;
    if (!up) std::reverse(order.begin(), order.end());
    for (const std::int32_t row : order) std::swap(model.rows[row], model.rows[row + step]);
    for (std::int32_t& row : model.selected) row += step;
    return false;
  }

  Ids DispatchActions() {
    Ids ids;
    for (const Control& control : OpenProfile().DispatchList) {
      EXPECT_EQ(control.actionsBorrowed, 1);
      ids.push_back(control.controlId);
    }
    return ids;
  }

  void ExpectAgreement(bool rebuilt, const Ids& dispatchBefore) {
    EXPECT_EQ(screen.Cells(kControlList), model.rows);
    EXPECT_EQ(screen.SelectedRows(kControlList), model.selected);
    const auto stored = Stored(kProfile);
    ASSERT_TRUE(stored);
    ExpectSame(stored->controls, OpenProfile().controls);
    EXPECT_EQ(stored->nextControlId, OpenProfile().nextControlId);
    EXPECT_EQ(static_cast<std::size_t>(OpenProfile().controls.count), model.rows.size());
    const Ids ids = ControlIds();
    EXPECT_EQ(std::set<std::uint32_t>(ids.begin(), ids.end()).size(), ids.size());
    for (const std::uint32_t id : ids) EXPECT_LT(id, OpenProfile().nextControlId);
    // A file's own order of dispatch is that of a rebuild.
    EXPECT_EQ(DispatchActions(), rebuilt ? IdsOf(stored->DispatchList) : dispatchBefore);
    if (rebuilt) ExpectSame(stored->DispatchList, OpenProfile().DispatchList);
  }

  RandomKeys random{GetParam() + 1};
  Model model;
};

TEST_P(RandomEdits, LeaveRowsProfileFileAndDispatchInAgreement) {
  Open();
  for (int step = 0; step < 60 && !HasFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    const Ids before = DispatchActions();
    bool rebuilt = false;
    switch (random.Below(7)) {
      case 0:
        rebuilt = NewOne();
        break;
      case 1:
        rebuilt = EditOne();
        break;
      case 2:
        rebuilt = DeleteSome();
        break;
      case 3:
        rebuilt = CopySome();
        break;
      case 4:
        // Without a limit it would double again and again.
        if (model.rows.size() < 40) rebuilt = PasteAll();
        break;
      default:
        rebuilt = Move();
    }
    ExpectAgreement(rebuilt, before);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, testing::Range(1u, 21u));

}  // namespace
}  // namespace kelvaro
