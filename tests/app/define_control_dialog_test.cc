// "Define Control" as the person works it: what the fields show and take, which box rules out
// which, what detection and OK make of the Control, each message word for word, and the keys that
// place the cursor.
#include "app/dialogs/define_control_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/resources/control_ids.h"
#include "tests/app/calls.h"
#include "tests/app/control_fixture.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

using namespace define_control;

using platform::IDCANCEL;
using platform::IDNO;
using platform::IDOK;
using platform::IDYES;
using platform::Rect;
using platform::simulation::VirtualRegistry;

constexpr char kMachineKey[] = "HKLM\\Software\\Marnstone\\Kelvaro";
constexpr char kReleaseValue[] = "Show Press And Release";

constexpr char kBadKeyText[] =
    "There is an error in the key sequence. The '<' character must\nbe followed by a recognized "
    "special key name and a '>'.\nTo produce the '<' character itself, enter two of them "
    "together.\n\nThe cursor will be placed at the start of the problem.";
constexpr char kDuplicateText[] =
    "More than one occurrence of the same key\nis not allowed when holding them all down.\n\nThe "
    "cursor will be placed at the start of the problem.";

class DefineControlDialogTest : public ControlTest {
 protected:
  // The six that rule one another out; what is checked has a "*", what is disabled a "-".
  std::string Boxes() {
    const std::pair<std::uint32_t, const char*> boxes[] = {
        {kRepeatCheck, "repeat"}, {kDelayValue, "delay"}, {kSpeedValue, "speed"},
        {kHoldAllKeys, "all"},    {kHoldValue, "hold"},   {kPauseValue, "pause"}};
    std::string text;
    for (const auto& [id, name] : boxes) {
      if (!text.empty()) text += ' ';
      text += name;
      if (screen.Checked(id)) text += '*';
      if (!screen.Enabled(id)) text += '-';
    }
    return text;
  }

  // The one Control of the open profile.
  Control& TheControl() { return ControlAt(0); }

  void OpenNew() {
    StartWith({});
    New();
  }
  void OpenEdit(const MadeControl& control) {
    StartWith({control});
    Edit(0);
  }

  void ExpectBox(const std::string& text, const std::string& caption, std::uint32_t type) {
    ASSERT_TRUE(screen.BoxUp());
    const auto box = screen.Box();
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.caption, caption);
    EXPECT_EQ(box.type, type);
    EXPECT_EQ(box.owner, screen.WindowOf(define_control::kDialog));
  }

  // The box of a field whose text OK refuses; the focus comes back to it.
  void ExpectRefused(std::uint32_t field, const std::string& text) {
    screen.Click(IDOK);
    ExpectBox(text, "Kelvaro", platform::MB_ICONEXCLAMATION);
    screen.Answer(IDOK);
    EXPECT_EQ(screen.Focus(), field);
  }

  // A program on a machine that offers the choice between press and release.
  void OfferRelease() { sim.Registry().PutDword(kMachineKey, kReleaseValue, 1); }
};

// --- Opening

TEST_F(DefineControlDialogTest, ANewControlShowsTheDefaults) {
  OpenNew();
  EXPECT_EQ(screen.Title(), "Define Control");
  EXPECT_EQ(screen.Text(kDescriptionText), "");
  EXPECT_EQ(screen.Text(kTriggerText), "");
  EXPECT_EQ(screen.Text(kKeysText), "");
  EXPECT_EQ(screen.Text(kDelayValue), "500");
  EXPECT_EQ(screen.Text(kSpeedValue), "50");
  EXPECT_EQ(screen.Text(kHoldValue), "0");
  EXPECT_EQ(screen.Text(kPauseValue), "0");
  EXPECT_TRUE(screen.Checked(kPress));
  EXPECT_FALSE(screen.Checked(kRelease));
  EXPECT_FALSE(screen.Checked(kDetectTrigger));
  EXPECT_FALSE(screen.Checked(kToggleMouseCheck));
  EXPECT_EQ(Boxes(), "repeat delay speed all hold pause");
}

TEST_F(DefineControlDialogTest, EveryMemberOfAControlIsShown) {
  MadeControl control;
  control.description = "jump";
  control.buttons = 0b101;
  control.items = {{8, 1, 1}, {7, 2, 2}};
  control.keys = {"<Ctrl>c"};
  control.toggleMouse = true;
  control.repeat = true;
  control.delay = 4294967295;
  control.speed = 0;
  control.hold = 1000000;
  control.pause = 7;
  OpenEdit(control);
  EXPECT_EQ(screen.Text(kDescriptionText), "jump");
  EXPECT_EQ(screen.Text(kTriggerText), "B1+B3+POV1(left)+SliderB2(pos)");
  EXPECT_EQ(screen.Text(kKeysText), "<Ctrl>c");
  EXPECT_TRUE(screen.Checked(kToggleMouseCheck));
  EXPECT_TRUE(screen.Checked(kRepeatCheck));
  EXPECT_EQ(screen.Text(kDelayValue), "4294967295");
  EXPECT_EQ(screen.Text(kSpeedValue), "0");
  EXPECT_EQ(screen.Text(kHoldValue), "1000000");
  EXPECT_EQ(screen.Text(kPauseValue), "7");
}

TEST_F(DefineControlDialogTest, TheTextsOfSeveralActionsRunTogetherAndOKMakesThemOne) {
  MadeControl control;
  control.keys = {"ab", "<P:5>", "C"};
  OpenEdit(control);
  EXPECT_EQ(screen.Text(kKeysText), "ab<P:5>C");
  screen.Click(IDOK);
  ASSERT_EQ(screen.Front(), shift_key_required::kDialog);
  screen.Click(IDOK);
  ASSERT_EQ(TheControl().actions.count, 1);
  EXPECT_EQ(Keys(TheControl()), "ab<P:5>C");
}

TEST_F(DefineControlDialogTest, AnActionThatIsNoKeyActionHasNoText) {
  StartWith({{.keys = {"ab", "cd"}}});
  (*TheControl().actions.head->value)->actionType = 0;
  Edit(0);
  EXPECT_EQ(screen.Text(kKeysText), "cd");
}

TEST_F(DefineControlDialogTest, HoldAllIsCheckedIfAnyActionHoldsAll) {
  MadeControl control;
  control.keys = {"ab", "cd"};
  control.holdAllFrom = 1;  // the second alone
  OpenEdit(control);
  EXPECT_TRUE(screen.Checked(kHoldAllKeys));
}

TEST_F(DefineControlDialogTest, WhatIsEnabledAtFirstFollowsTheControl) {
  struct Row {
    bool press, repeat, holdAll;
    const char* boxes;
  };
  const Row rows[] = {
      {true, false, false, "repeat delay speed all hold pause"},
      {true, true, false, "repeat* delay speed all- hold pause"},
      {true, false, true, "repeat- delay- speed- all* hold- pause-"},
      {true, true, true, "repeat* delay speed all- hold pause"},
      // Wanted: the last step enables again what the first one has disabled.
      {false, false, false, "repeat delay speed all hold pause"},
      {false, true, false, "repeat delay speed all hold pause"},
      {false, false, true, "repeat delay speed all hold pause"},
      {false, true, true, "repeat delay speed all hold pause"},
  };
  std::vector<MadeControl> controls;
  for (const Row& row : rows) {
    MadeControl control;
    control.press = row.press;
    control.repeat = row.repeat;
    control.keys = {"a"};
    if (row.holdAll) control.holdAllFrom = 0;
    controls.push_back(control);
  }
  StartWith(controls);
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    Edit(static_cast<std::int32_t>(i));
    EXPECT_EQ(Boxes(), rows[i].boxes) << i;
    EXPECT_EQ(screen.Checked(kPress), rows[i].press) << i;
    EXPECT_EQ(screen.Checked(kRelease), !rows[i].press) << i;
    screen.Click(IDCANCEL);
  }
}

TEST_F(DefineControlDialogTest, PressAndReleaseAreHiddenUnlessTheMachineOffersThem) {
  struct Row {
    const char* why;
    std::function<void(VirtualRegistry&)> set;
    bool shown;
  };
  const Row rows[] = {
      {"no value", [](VirtualRegistry&) {}, false},
      {"1", [](VirtualRegistry& r) { r.PutDword(kMachineKey, kReleaseValue, 1); }, true},
      {"the highest", [](VirtualRegistry& r) { r.PutDword(kMachineKey, kReleaseValue, ~0u); },
       true},
      {"0", [](VirtualRegistry& r) { r.PutDword(kMachineKey, kReleaseValue, 0); }, false},
      {"a string", [](VirtualRegistry& r) { r.PutString(kMachineKey, kReleaseValue, "1"); }, false},
  };
  for (const Row& row : rows) {
    if (screen.Running()) CloseAll();
    sim.Registry().RemoveKey(kMachineKey);
    row.set(sim.Registry());
    StartWith({});
    New();
    for (const std::uint32_t id : {kOnLabel, kPress, kRelease})
      EXPECT_EQ(screen.Visible(id), row.shown) << row.why << ' ' << id;
  }
}

TEST_F(DefineControlDialogTest, TheMachinesKeyIsOnlyLookedAt) {
  StartWith({});
  sim.LogCalls(true);
  New();
  EXPECT_EQ(CountCalls(sim, "RegCreateKeyA HKLM"), 0u);
}

TEST_F(DefineControlDialogTest, TheUsersOwnValueOffersNothing) {
  sim.Registry().PutDword("HKCU\\Software\\Marnstone\\Kelvaro", kReleaseValue, 1);
  OpenNew();
  EXPECT_FALSE(screen.Visible(kPress));
}

TEST_F(DefineControlDialogTest, TheSmallIconIsTheProgramsOwn) {
  StartWith({});
  const auto icon = screen.Icon(false);
  New();
  EXPECT_NE(screen.Icon(false), 0u);
  EXPECT_EQ(screen.Icon(false), icon);

  sim.LogCalls(true);
  screen.Click(IDCANCEL);
  New();
  screen.Click(IDCANCEL);
  const auto count = [this](const std::string& call) {
    return std::count(sim.Calls().begin(), sim.Calls().end(), call);
  };
  EXPECT_EQ(count("LoadIconA 128"), 1);
  EXPECT_EQ(count("DestroyIcon"), 2) << "each goes with its dialog";
}

// --- Place

TEST_F(DefineControlDialogTest, TheWindowGrowsAcrossAndTheControlsGoWithIt) {
  OpenNew();
  const std::vector<std::uint32_t> stretching = {kDescriptionText, kTriggerFrame, kTriggerText,
                                                 kKeysText, kSpecialKeyList};
  const std::vector<std::uint32_t> following = {kDetectTrigger, kDetectLabel, 1, 2};
  const std::vector<std::uint32_t> staying = {
      kDescriptionLabel, kToggleMouseCheck, kHoldAllKeys, kUppercaseNote,
      kKeysLabel,        kSpecialKeyLabel,  kHoldValue,   kPauseValue,
      kRepeatFrame,      kRepeatCheck,      kDelayLabel,  kDelayValue,
      kSpeedLabel,       kSpeedValue,       kDefaults,    kHelp};
  std::map<std::uint32_t, Rect> before;
  for (const auto* group : {&stretching, &following, &staying})
    for (const std::uint32_t id : *group) before[id] = screen.ControlPlace(id);
  const Rect place = screen.Place();

  screen.Resize(place.Width() + 100, place.Height() + 50);
  EXPECT_EQ(screen.Place().Width(), place.Width() + 100);
  EXPECT_EQ(screen.Place().Height(), place.Height()) << "the height is fixed";
  for (const std::uint32_t id : stretching) {
    const Rect now = screen.ControlPlace(id);
    EXPECT_EQ(now.left, before[id].left) << id;
    EXPECT_EQ(now.Width(), before[id].Width() + 100) << id;
  }
  for (const std::uint32_t id : following) {
    const Rect now = screen.ControlPlace(id);
    EXPECT_EQ(now.left, before[id].left + 100) << id;
    EXPECT_EQ(now.Width(), before[id].Width()) << id;
    EXPECT_EQ(now.top, before[id].top) << id;
  }
  for (const std::uint32_t id : staying) EXPECT_EQ(screen.ControlPlace(id), before[id]) << id;

  screen.Resize(place.Width() - 30, place.Height() - 30);
  EXPECT_EQ(screen.Place().Width(), place.Width()) << "as small as it was at first";
  EXPECT_EQ(screen.Place().Height(), place.Height());
}

TEST_F(DefineControlDialogTest, TheButtonsStandAtTheBottomWhateverTheHeight) {
  OpenNew();
  const Rect inside = screen.Inside();
  const Rect help = screen.ControlPlace(kHelp);
  const Rect ok = screen.ControlPlace(IDOK);
  static_cast<platform::WindowListener&>(DefineControl())
      .OnSize(platform::SIZE_RESTORED, inside.Width() + 100, inside.Height() + 50);
  EXPECT_EQ(screen.ControlPlace(kHelp).left, help.left);
  EXPECT_EQ(screen.ControlPlace(kHelp).top, help.top + 50);
  EXPECT_EQ(screen.ControlPlace(IDOK).left, ok.left + 100);
  EXPECT_EQ(screen.ControlPlace(IDOK).top, ok.top + 50);
}

TEST_F(DefineControlDialogTest, ThePlaceIsKeptBesideThatOfTheMainWindow) {
  OpenNew();
  const Rect first = screen.Place();
  screen.MoveTo(40, 30);
  screen.Resize(first.Width() + 60, first.Height());
  screen.Click(IDCANCEL);
  const std::string key = "HKCU\\Software\\Marnstone\\Kelvaro\\Control Window Settings";
  EXPECT_EQ(sim.Registry().Number(key, "left"), 40u);
  EXPECT_EQ(sim.Registry().Number(key, "top"), 30u);
  EXPECT_EQ(sim.Registry().Number(key, "right"), 40u + first.Width() + 60);
  EXPECT_EQ(sim.Registry().Number(key, "bottom"), 30u + first.Height());
  New();
  EXPECT_EQ(screen.Place(), (Rect{40, 30, 40 + first.Width() + 60, 30 + first.Height()}));
}

// --- Tips, help and the list of special keys

TEST_F(DefineControlDialogTest, EachControlHasTheTipOfItsNumber) {
  OfferRelease();
  StartWith({});
  sim.LogCalls(true);
  New();
  EXPECT_EQ(CountCalls(sim, "CreateToolTip"), 1u);
  EXPECT_EQ(screen.ToolTipWidth(), 300);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
  for (const platform::ControlTemplate& control : resources::kDefineControl.controls) {
    const char* const text = resources::String(control.id);
    EXPECT_EQ(screen.Hover(control.id), text ? text : "") << control.id;
  }
}

TEST_F(DefineControlDialogTest, HelpOpensItsTopic) {
  OpenNew();
  const std::size_t before = screen.HelpCalls().size();
  screen.Click(kHelp);
  ASSERT_EQ(screen.HelpCalls().size(), before + 1);
  EXPECT_EQ(screen.HelpCalls().back().command, platform::HH_DISPLAY_TOPIC);
  EXPECT_EQ(screen.HelpCalls().back().topic, "Creating and Editing Controls.htm");
  EXPECT_EQ(screen.Front(), define_control::kDialog);
}

TEST_F(DefineControlDialogTest, F1TellsOfWhatHasTheFocus) {
  OpenNew();
  for (const auto& [id, place] :
       std::vector<std::pair<std::uint32_t, std::string>>{{kDescriptionText, ""},
                                                          {kDetectTrigger, "#trigger"},
                                                          {kToggleMouseCheck, "#mouse"},
                                                          {kKeysText, "#keys"},
                                                          {kSpecialKeyList, "#keys"},
                                                          {kHoldAllKeys, "#hold"},
                                                          {kPauseValue, "#timings"},
                                                          {kDelayValue, "#repeat"},
                                                          {kRepeatCheck, "#repeat"},
                                                          {2, ""}}) {
    screen.FocusOn(id);
    screen.Press(screen.kF1);
    EXPECT_EQ(screen.HelpCalls().back().topic, "Creating and Editing Controls.htm" + place) << id;
  }
  const std::size_t before = screen.HelpCalls().size();
  screen.Press(0x71);
  EXPECT_EQ(screen.HelpCalls().size(), before) << "F2 is none";
}

TEST_F(DefineControlDialogTest, WithoutHelpTheButtonDoesNothing) {
  screen.SetHelpLibrary("hhctrl.ocx", false);
  OpenNew();
  screen.Click(kHelp);
  screen.Press(screen.kF1);
  EXPECT_TRUE(screen.HelpCalls().empty());
  EXPECT_EQ(screen.Front(), define_control::kDialog);
}

TEST_F(DefineControlDialogTest, HelpThatDidntStartIsNotAskedForATopic) {
  sim.FailNext("HtmlHelp");
  OpenNew();
  screen.Click(kHelp);
  screen.Press(screen.kF1);
  EXPECT_TRUE(screen.HelpCalls().empty());
}

TEST_F(DefineControlDialogTest, ChoosingASpecialKeyDoesNothing) {
  OpenNew();
  TypeControl("a");
  const auto rows = screen.Rows(kSpecialKeyList);
  ASSERT_EQ(rows.size(), 132u);
  screen.Choose(kSpecialKeyList, "<ALT>");
  EXPECT_EQ(screen.Text(kKeysText), "a");
  screen.Click(IDOK);
  EXPECT_EQ(Keys(TheControl()), "a");
}

// --- Boxes that rule one another out

TEST_F(DefineControlDialogTest, RepeatAndHoldAllRuleEachOtherOut) {
  OpenNew();
  screen.Click(kRepeatCheck);
  EXPECT_EQ(Boxes(), "repeat* delay speed all- hold pause");
  screen.Click(kRepeatCheck);
  EXPECT_EQ(Boxes(), "repeat delay speed all hold pause");
  screen.Click(kHoldAllKeys);
  EXPECT_EQ(Boxes(), "repeat- delay- speed- all* hold- pause-");
  screen.Click(kHoldAllKeys);
  EXPECT_EQ(Boxes(), "repeat delay speed all hold pause");
}

TEST_F(DefineControlDialogTest, HoldAllKeepsTheTimingsOfTheControl) {
  MadeControl control;
  control.keys = {"a"};
  control.delay = 600;
  control.speed = 60;
  control.hold = 12;
  control.pause = 34;
  OpenEdit(control);
  screen.Click(kHoldAllKeys);
  EXPECT_EQ(screen.Text(kHoldValue), "12");
  EXPECT_EQ(screen.Text(kPauseValue), "34");
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().keyHoldTime, 12u);
  EXPECT_EQ(TheControl().keyReleasePause, 34u);
  EXPECT_EQ(TheControl().repeatDelay, 600u);
  EXPECT_TRUE(HoldsAll(TheControl()));

  Edit(0);
  EXPECT_EQ(Boxes(), "repeat- delay- speed- all* hold- pause-");
  screen.Click(kHoldAllKeys);
  EXPECT_EQ(screen.Text(kHoldValue), "12");
  screen.Click(IDOK);
  EXPECT_FALSE(HoldsAll(TheControl()));
  EXPECT_EQ(TheControl().keyHoldTime, 12u);
}

TEST_F(DefineControlDialogTest, PressAndReleaseEnableAndDisableRepeatAndHoldAll) {
  OfferRelease();
  OpenNew();
  screen.Click(kRepeatCheck);
  screen.Click(kRelease);
  EXPECT_EQ(Boxes(), "repeat- delay- speed- all- hold pause");
  screen.Click(kPress);
  EXPECT_EQ(Boxes(), "repeat delay speed all hold pause");

  // The timings stay as hold all has left them.
  screen.Click(kHoldAllKeys);
  screen.Click(kRelease);
  EXPECT_EQ(Boxes(), "repeat- delay- speed- all- hold- pause-");
  screen.Click(kPress);
  EXPECT_EQ(Boxes(), "repeat delay speed all hold- pause-");
}

TEST_F(DefineControlDialogTest, PressThatIsClickedOnceMoreEnablesHoldAllBesideRepeat) {
  OfferRelease();
  OpenNew();
  screen.Click(kRepeatCheck);
  screen.Click(kPress);
  EXPECT_EQ(Boxes(), "repeat* delay speed all hold pause");
  screen.Click(kHoldAllKeys);
  EXPECT_EQ(Boxes(), "repeat- delay- speed- all* hold- pause-");
}

TEST_F(DefineControlDialogTest, AClickOnTheRadioButtonThatIsntCheckedChangesNothing) {
  OfferRelease();
  OpenNew();
  const auto click = [this](std::uint32_t id) {
    static_cast<platform::WindowListener&>(DefineControl())
        .OnNotice(id, platform::Notice::Clicked, 0);
  };
  screen.Click(kRepeatCheck);
  click(kRelease);
  EXPECT_EQ(Boxes(), "repeat* delay speed all- hold pause");
  screen.Click(kRelease);
  click(kPress);
  EXPECT_EQ(Boxes(), "repeat- delay- speed- all- hold pause");
}

TEST_F(DefineControlDialogTest, TheRadioButtonDecidesWhenTheControlFires) {
  OfferRelease();
  MadeControl control;
  control.press = false;
  control.triggerOption = false;
  OpenEdit(control);
  screen.Click(kPress);
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().activateOnPress, 1);
  EXPECT_EQ(TheControl().triggerOption, 0) << "nothing here changes it";
  Edit(0);
  EXPECT_TRUE(screen.Checked(kPress));
  screen.Click(kRelease);
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().activateOnPress, 0);
}

TEST_F(DefineControlDialogTest, AControlOnReleaseOfAFileStaysOnReleaseWithoutTheRadioButtons) {
  MadeControl control;
  control.press = false;
  control.keys = {"a"};
  OpenEdit(control);
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().activateOnPress, 0);
}

// --- Defaults

TEST_F(DefineControlDialogTest, DefaultsChangeDelayAndSpeedAlone) {
  MadeControl control;
  control.delay = 1;
  control.speed = 2;
  control.hold = 3;
  control.pause = 4;
  OpenEdit(control);
  screen.Type(kDescriptionText, "other");
  screen.Type(kKeysText, "<broken");
  screen.Click(kToggleMouseCheck);
  screen.Type(kHoldValue, "33");
  screen.Click(kDefaults);
  EXPECT_EQ(screen.Text(kDelayValue), "500");
  EXPECT_EQ(screen.Text(kSpeedValue), "50");
  EXPECT_EQ(screen.Text(kDescriptionText), "other");
  EXPECT_EQ(screen.Text(kKeysText), "<broken");
  EXPECT_TRUE(screen.Checked(kToggleMouseCheck));
  EXPECT_EQ(screen.Text(kHoldValue), "33");
  EXPECT_EQ(screen.Text(kPauseValue), "4");
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(DefineControlDialogTest, DefaultsWorkOnDisabledFields) {
  MadeControl control;
  control.keys = {"a"};
  control.holdAllFrom = 0;
  control.delay = 1;
  control.speed = 2;
  OpenEdit(control);
  ASSERT_FALSE(screen.Enabled(kDelayValue));
  screen.Click(kDefaults);
  EXPECT_EQ(screen.Text(kDelayValue), "500");
  EXPECT_EQ(screen.Text(kSpeedValue), "50");
  EXPECT_TRUE(screen.Checked(kHoldAllKeys));
  EXPECT_FALSE(screen.Enabled(kDelayValue));
}

TEST_F(DefineControlDialogTest, DefaultsRefuseWhatIsNoNumber) {
  OpenEdit({});
  screen.Type(kDelayValue, "7");
  screen.Type(kPauseValue, "soon");
  screen.Click(kDefaults);
  ExpectBox("Please enter a positive integer.", "Kelvaro", platform::MB_ICONEXCLAMATION);
  screen.Answer(IDOK);
  EXPECT_EQ(screen.Text(kDelayValue), "7");
  EXPECT_EQ(screen.Text(kPauseValue), "soon");
  EXPECT_EQ(screen.Focus(), kPauseValue);
}

// --- Detection

TEST_F(DefineControlDialogTest, DetectionShowsWhatIsHeldAtEachChange) {
  OpenEdit({.buttons = 0b1000});
  EXPECT_EQ(screen.Text(kTriggerText), "B4");
  Press({1});
  EXPECT_EQ(screen.Text(kTriggerText), "B4") << "it isn't on yet";
  screen.Click(kDetectTrigger);
  EXPECT_EQ(screen.Text(kTriggerText), "B4") << "nothing has changed yet";
  Press({1, 2});
  EXPECT_EQ(screen.Text(kTriggerText), "B1+B2") << "two buttons don't end it";
  pad.MoveAxis("Axis_Z0", -20000);
  Wait();
  EXPECT_EQ(screen.Text(kTriggerText), "B1+B2+Axis_Z0(neg)");
  Press({});
  EXPECT_EQ(screen.Text(kTriggerText), "Axis_Z0(neg)");
  pad.MoveAxis("Axis_Z0", 0);
  Wait();
  EXPECT_EQ(screen.Text(kTriggerText), "") << "all let go";
  pad.PointHat(0, 27000);
  Wait();
  EXPECT_EQ(screen.Text(kTriggerText), "POV0(left)");
}

TEST_F(DefineControlDialogTest, TheSpaceBarEndsDetectionWithWhatIsHeld) {
  OpenNew();
  TypeControl("a");
  screen.Click(kDetectTrigger);
  Press({1, 2});
  screen.Press(' ');
  EXPECT_FALSE(screen.Checked(kDetectTrigger));
  Press({});
  EXPECT_EQ(screen.Text(kTriggerText), "B1+B2");
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().buttonMask, 0b11u);
  EXPECT_EQ(TheControl().buttonCount, 2u);
}

TEST_F(DefineControlDialogTest, OKTakesWhatIsHeldWhileDetectionRuns) {
  OpenEdit({.buttons = 0b1000, .items = {{0, 0, 2}}});
  screen.Click(kDetectTrigger);
  Press({3});
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().buttonMask, 0b100u);
  EXPECT_EQ(TheControl().triggerItems.count, 0) << "the former Trigger is gone";
  Press({3, 4});
  EXPECT_EQ(TheControl().buttonMask, 0b100u);
  EXPECT_EQ(DefineControl().scratch.buttonMask, 0b100u);
}

TEST_F(DefineControlDialogTest, AStateThatComesAsItClosesIsTooLate) {
  OpenEdit({.buttons = 0b1000});
  screen.Click(kDetectTrigger);
  screen.Click(IDOK);
  DeviceSnapshot snapshot;
  snapshot.dispatchButtons = 1;
  ASSERT_TRUE(DefineControl().detectTrigger);
  DefineControl().ShowDetectedTrigger(*Device(), snapshot);
  EXPECT_EQ(DefineControl().scratch.buttonMask, 0b1000u);
}

TEST_F(DefineControlDialogTest, DetectionIsOffAtEachOpening) {
  OpenEdit({.buttons = 0b1000});
  screen.Click(kDetectTrigger);
  screen.Click(IDCANCEL);
  Edit(0);
  EXPECT_FALSE(screen.Checked(kDetectTrigger));
  Press({1});
  EXPECT_EQ(screen.Text(kTriggerText), "B4");
}

TEST_F(DefineControlDialogTest, ADetectedTriggerIsThatOfOKEvenOnRelease) {
  OfferRelease();
  OpenNew();
  TypeControl("a");
  screen.Click(kRelease);
  screen.Click(kDetectTrigger);
  Press({2});
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().buttonMask, 0b10u);
  EXPECT_EQ(TheControl().activateOnPress, 0) << "the radio button counts";
}

TEST_F(DefineControlDialogTest, NoControlFiresWhileItIsOpenAndAMadeOneDoesAfterwards) {
  StartWith({{.description = "old", .buttons = 0b1, .keys = {"a"}}});
  New();
  Press({1});
  Press({});
  EXPECT_EQ(sim.EventText(), "") << "detection off";
  TypeControl("b");
  screen.Click(kDetectTrigger);
  Press({2});
  screen.Click(kDetectTrigger);
  Press({});
  Press({1});
  EXPECT_EQ(sim.EventText(), "");
  screen.Click(IDOK);
  EXPECT_EQ(sim.EventText(), "");

  // The next polls are at whole fives.
  PressAt(1000, {});
  PressAt(1100, {2});
  PressAt(1200, {});
  PressAt(1300, {1});
  PressAt(1400, {});
  sim.RunUntil(1500);
  EXPECT_EQ(sim.EventText(),
            "1100 key 42 30 0\n"
            "1200 key 42 30 2\n"
            "1300 key 41 1e 0\n"
            "1400 key 41 1e 2\n");
}

// --- OK

TEST_F(DefineControlDialogTest, OKTakesEveryField) {
  OpenNew();
  screen.Type(kDescriptionText, "all of it");
  screen.Type(kKeysText, "x<Esc>");
  screen.Click(kToggleMouseCheck);
  screen.Click(kRepeatCheck);
  screen.Type(kDelayValue, "0");
  screen.Type(kSpeedValue, "4294967295");
  screen.Type(kHoldValue, " 42\t");  // blanks around a number are no fault
  screen.Type(kPauseValue, "007");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_FALSE(DefineControl().dialogOpen);
  const Control& made = TheControl();
  EXPECT_EQ(Bytes(made.description), "all of it");
  EXPECT_EQ(Keys(made), "x<Esc>");
  EXPECT_EQ(made.toggleMouseControls, 1);
  EXPECT_EQ(made.repeatEnabled, 1);
  EXPECT_EQ(made.repeatDelay, 0u);
  EXPECT_EQ(made.repeatSpeed, 4294967295u);
  EXPECT_EQ(made.keyHoldTime, 42u);
  EXPECT_EQ(made.keyReleasePause, 7u);
  EXPECT_EQ(made.activateOnPress, 1);
}

TEST_F(DefineControlDialogTest, AMissingDescriptionIsToldBeforeTheKeysAreLookedAt) {
  OpenNew();
  screen.Type(kKeysText, "<broken");
  screen.Click(IDOK);
  ExpectBox("You must enter a description for this event", "Missing Description", platform::MB_OK);
  screen.Answer(IDOK);
  EXPECT_EQ(screen.Front(), define_control::kDialog);
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(screen.Focus(), kDescriptionText);
  EXPECT_EQ(screen.Boxes().size(), 1u);
  EXPECT_TRUE(DefineControl().dialogOpen);
}

TEST_F(DefineControlDialogTest, WhatIsNoNumberIsToldBeforeAnythingElse) {
  StartWith({});
  New();  // without a description
  for (const char* text : {"", " ", "-1", "+1", "1.5", "0x10", "12a", "1 2"}) {
    for (const std::uint32_t id : {kHoldValue, kPauseValue}) {
      screen.Type(id, text);
      ExpectRefused(id, "Please enter a positive integer.");
      EXPECT_EQ(screen.Text(id), text);
      EXPECT_EQ(screen.Front(), define_control::kDialog);
      screen.Type(id, "0");
    }
  }
}

TEST_F(DefineControlDialogTest, ANumberThatIsTooLargeIsToldTheRange) {
  OpenNew();
  for (const char* text : {"4294967296", "99999999999", "99999999999999999999999"}) {
    for (const std::uint32_t id : {kDelayValue, kSpeedValue, kHoldValue, kPauseValue}) {
      screen.Type(id, text);
      ExpectRefused(id, "Please enter a number from 0 to 4294967295.");
      screen.Type(id, "4294967295");
    }
  }
}

TEST_F(DefineControlDialogTest, DelayAndSpeedTakeDigitsAloneAndMayStillBeNoNumber) {
  OpenNew();
  for (const std::uint32_t id : {kDelayValue, kSpeedValue}) {
    screen.Type(id, "1a2-");
    EXPECT_EQ(screen.Text(id), "12");
    screen.Type(id, "");
    ExpectRefused(id, "Please enter a positive integer.");
    screen.Type(id, "1");
  }
}

TEST_F(DefineControlDialogTest, ReadingStopsAtTheFirstFieldThatIsNoNumber) {
  OpenNew();
  TypeControl("a");
  for (const std::uint32_t id : {kDelayValue, kSpeedValue}) screen.Type(id, "");
  for (const std::uint32_t id : {kHoldValue, kPauseValue}) screen.Type(id, "x");
  for (const std::uint32_t id : {kDelayValue, kSpeedValue, kHoldValue, kPauseValue}) {
    const std::size_t boxes = screen.Boxes().size();
    screen.Click(IDOK);
    screen.Answer(IDOK);
    EXPECT_EQ(screen.Boxes().size(), boxes + 1);
    EXPECT_EQ(screen.Focus(), id);
    screen.Type(id, "1");
  }
  EXPECT_TRUE(DefineControl().scratch.description.IsEmpty()) << "OK took nothing";
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
}

TEST_F(DefineControlDialogTest, AKeyTextWithAFaultIsToldWithTheCursorAtTheFault) {
  struct Row {
    const char* keys;
    bool holdAll;
    const char* message;
    std::uint32_t offset;
  };
  const Row rows[] = {
      {"<Esc", false, kBadKeyText, 0},           {"<>", false, kBadKeyText, 0},
      {"<P: 5>", false, kBadKeyText, 0},         {"ab<nothing>c", false, kBadKeyText, 2},
      {"<Ctrl>\xC3\xA9", false, kBadKeyText, 6}, {"aa", true, kDuplicateText, 1},
      {"<Up><Up>", true, kDuplicateText, 4},     {"<Ctrl><Ctrl>", true, kDuplicateText, 6},
      {",<<", true, kDuplicateText, 1},
  };
  OpenNew();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.keys);
    if (screen.Checked(kHoldAllKeys) != row.holdAll) screen.Click(kHoldAllKeys);
    TypeControl(row.keys);
    sim.ClearEvents();
    screen.Click(IDOK);
    ExpectBox(row.message, "Key Parsing Error", platform::MB_OK);
    EXPECT_EQ(Sent(), Strings{}) << "not before the message is answered";
    screen.Answer(IDOK);
    EXPECT_EQ(screen.Front(), define_control::kDialog);
    EXPECT_EQ(screen.Focus(), kKeysText);
    EXPECT_EQ(screen.Caret(kKeysText), row.offset);
    EXPECT_EQ(screen.Text(kKeysText), row.keys);

    Strings expected = {"key 24 c7 1", "key 24 c7 3"};
    for (std::uint32_t i = 0; i < row.offset; ++i) {
      expected.push_back("key 27 cd 1");
      expected.push_back("key 27 cd 3");
    }
    EXPECT_EQ(Sent(), expected);
    EXPECT_EQ(DefineControl().scratch.actions.count, 0);
  }
}

TEST_F(DefineControlDialogTest, AVeryLongTextTakesAsManyKeysAsItsOffset) {
  OpenNew();
  TypeControl(std::string(3000, 'a') + "<");
  screen.Type(kKeysText, std::string(3000, 'a') + "<x");
  sim.ClearEvents();
  screen.Click(IDOK);
  screen.Answer(IDOK);
  EXPECT_EQ(Sent().size(), 2u + 2u * 3000u);
  EXPECT_EQ(screen.Caret(kKeysText), 3000u);
}

TEST_F(DefineControlDialogTest, AFailedKeyTextLeavesDescriptionAndModeInTheScratchAlone) {
  OfferRelease();
  OpenEdit({.description = "old", .buttons = 1, .keys = {"a"}, .hold = 5});
  const InputAction* action = *TheControl().actions.head->value;
  screen.Type(kDescriptionText, "new");
  screen.Type(kKeysText, "<bad");
  screen.Type(kHoldValue, "99");
  screen.Click(kToggleMouseCheck);
  screen.Click(kRelease);
  screen.Click(IDOK);
  screen.Answer(IDOK);
  EXPECT_EQ(Bytes(DefineControl().scratch.description), "new");
  EXPECT_EQ(DefineControl().scratch.activateOnPress, 0);
  EXPECT_EQ(DefineControl().scratch.keyHoldTime, 5u);
  EXPECT_EQ(DefineControl().scratch.toggleMouseControls, 0);
  screen.Click(IDCANCEL);
  EXPECT_EQ(Bytes(TheControl().description), "old");
  EXPECT_EQ(TheControl().activateOnPress, 1);
  EXPECT_EQ(*TheControl().actions.head->value, action);

  // The next try overwrites it.
  Edit(0);
  EXPECT_EQ(screen.Text(kDescriptionText), "old");
  EXPECT_TRUE(screen.Checked(kPress));
}

TEST_F(DefineControlDialogTest, ATextThatWasRepairedIsTaken) {
  OpenNew();
  TypeControl("a<");
  screen.Type(kKeysText, "a<x");
  screen.Click(IDOK);
  screen.Answer(IDOK);
  screen.Type(kKeysText, "a<<x");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  ASSERT_EQ(TheControl().actions.count, 1);
  EXPECT_EQ(Keys(TheControl()), "a<<x");
}

TEST_F(DefineControlDialogTest, HoldAllCountsOnlyForAControlOnPress) {
  OfferRelease();
  OpenNew();
  screen.Click(kHoldAllKeys);
  TypeControl("ab");
  screen.Click(IDOK);
  EXPECT_TRUE(HoldsAll(TheControl()));

  // A Control on release can tick it after opening; the same key twice is no fault then.
  StartWith({{.press = false}});
  Edit(0);
  screen.Click(kHoldAllKeys);
  ASSERT_TRUE(screen.Checked(kHoldAllKeys));
  TypeControl("aa");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_FALSE(HoldsAll(TheControl()));
}

TEST_F(DefineControlDialogTest, AControlMayHaveNoKeys) {
  OpenEdit({.keys = {"a"}});
  screen.Type(kKeysText, "");
  screen.Click(kToggleMouseCheck);
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().actions.count, 0);
  EXPECT_EQ(TheControl().toggleMouseControls, 1);
}

TEST_F(DefineControlDialogTest, AControlWithoutATriggerIsAcceptedAndNeverFires) {
  OpenNew();
  TypeControl("a");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  ASSERT_EQ(OpenProfile().controls.count, 1);
  EXPECT_EQ(TheControl().Weight(), 0u);
  Press({1});
  Press({});
  EXPECT_EQ(sim.EventText(), "");
}

// --- Smart Check and the reminder

TEST_F(DefineControlDialogTest, SmartCheckOffersTheForgottenBrackets) {
  OpenNew();
  TypeControl("eSC");
  screen.Click(IDOK);
  ExpectBox(
      "The keys you have entered match a special key token, but are missing the angle "
      "brackets.\nDid you mean to type \"<Esc>\"?",
      "Smart Check", platform::MB_YESNO);
  EXPECT_EQ(screen.Text(kKeysText), "eSC");
  screen.Answer(IDYES);
  EXPECT_EQ(screen.Front(), main_window::kDialog) << "no upper case letter is left to remind of";
  EXPECT_EQ(Keys(TheControl()), "<Esc>");
  Edit(0);
  EXPECT_EQ(screen.Text(kKeysText), "<Esc>");
}

TEST_F(DefineControlDialogTest, SmartCheckLeavesTheFieldAsItWasTyped) {
  OpenNew();
  TypeControl("Esc");
  screen.Click(IDOK);
  screen.Answer(IDNO);
  ASSERT_EQ(screen.Front(), shift_key_required::kDialog)
      << "three letters now, one of them upper case";
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Front(), define_control::kDialog);
  EXPECT_EQ(screen.Text(kKeysText), "Esc");
}

TEST_F(DefineControlDialogTest, SmartCheckAsksOnlyWhileItIsOn) {
  StartWith({});
  screen.ChooseTab(main_window::kTabControl, MainWindow::kSettingsTab);
  screen.Click(main_window::kSmartCheck);
  screen.ChooseTab(main_window::kTabControl, MainWindow::kControlTab);
  New();
  TypeControl("esc");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(Keys(TheControl()), "esc");
}

TEST_F(DefineControlDialogTest, AnUppercaseLetterAsksForTheShiftKey) {
  OpenNew();
  TypeControl("aB!");
  screen.Click(IDOK);
  ASSERT_EQ(screen.Front(), shift_key_required::kDialog);
  EXPECT_EQ(screen.Title(), "Shift Key Required");
  EXPECT_TRUE(DefineControl().dialogOpen);
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Front(), define_control::kDialog);
  EXPECT_EQ(screen.Text(kKeysText), "aB!");
  EXPECT_EQ(DefineControl().scratch.actions.count, 0);
  screen.Click(IDOK);
  ASSERT_EQ(screen.Front(), shift_key_required::kDialog) << "it asks again";
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(Keys(TheControl()), "aB!");
}

TEST_F(DefineControlDialogTest, AShiftedPunctuationCharacterAsksNothing) {
  OpenNew();
  TypeControl("!");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
}

TEST_F(DefineControlDialogTest, TheReminderIsGoneOnceItWasDeclinedForGood) {
  OpenNew();
  TypeControl("A");
  screen.Click(IDOK);
  screen.Click(shift_key_required::kDontShowAgain);
  screen.Click(IDCANCEL);
  ASSERT_EQ(screen.Front(), define_control::kDialog) << "No, whatever the box says";
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(Keys(TheControl()), "A");
}

TEST_F(DefineControlDialogTest, AReminderThatCantComeUpIsANoAndComesAgain) {
  OpenNew();
  TypeControl("A");
  sim.FailNext("RunDialog");
  screen.Click(IDOK);
  ASSERT_EQ(screen.Front(), define_control::kDialog);
  screen.Click(IDOK);
  EXPECT_EQ(screen.Front(), shift_key_required::kDialog);
}

TEST_F(DefineControlDialogTest, AStateThatComesDuringTheReminderStillCounts) {
  OfferRelease();
  OpenNew();
  TypeControl("A");
  screen.Click(kDetectTrigger);
  Press({1});
  screen.Click(IDOK);
  ASSERT_EQ(screen.Front(), shift_key_required::kDialog);
  Press({1, 2});
  screen.Click(IDOK);
  EXPECT_EQ(TheControl().buttonMask, 0b11u);
}

TEST_F(DefineControlDialogTest, WithoutMemoryTheDialogStaysOpen) {
  OpenNew();
  TypeControl("a");
  {
    FailingAllocation fault(1);
    screen.Click(IDOK);
    EXPECT_EQ(fault.Failed(), 1u);
  }
  ExpectBox("Out of Memory", "Critical Error", platform::MB_ICONEXCLAMATION);
  screen.Answer(IDOK);
  EXPECT_EQ(screen.Front(), define_control::kDialog);
  screen.Click(IDOK);
  EXPECT_EQ(Keys(TheControl()), "a");
}

// --- Other ends

TEST_F(DefineControlDialogTest, CancelEscAndTheCloseBoxDiscard) {
  StartWith({{.description = "old", .buttons = 1, .keys = {"a"}}});
  const InputAction* action = *TheControl().actions.head->value;
  const std::vector<std::function<void()>> ends = {[this] { screen.Click(IDCANCEL); },
                                                   [this] { screen.Press(screen.kEsc); },
                                                   [this] { screen.Close(); }};
  for (const auto& end : ends) {
    Edit(0);
    EXPECT_TRUE(DefineControl().dialogOpen);
    TypeControl("b");
    end();
    EXPECT_EQ(screen.Front(), main_window::kDialog);
    EXPECT_FALSE(DefineControl().dialogOpen);
    EXPECT_EQ(Bytes(TheControl().description), "old");
    EXPECT_EQ(*TheControl().actions.head->value, action);
    EXPECT_EQ(Keys(TheControl()), "a");
  }
}

}  // namespace
}  // namespace kelvaro
