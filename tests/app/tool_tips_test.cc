#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/app/calls.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

using namespace main_window;

class ToolTipsTest : public MainWindowTest {
 protected:
  // Those of the set-up; each question for a tip, such as a screen reader's, sets its limits again.
  Strings CallsUpToTheEnd();
};

const Strings kToolCalls = {"CreateToolTip", "SetToolTip", "ActivateToolTip",
                            "AddTabTool",    "AddTool",    "EnableToolTips"};

Strings ToolTipsTest::CallsUpToTheEnd() {
  Strings calls = CallsOf(sim, kToolCalls);
  const auto end = std::find(calls.begin(), calls.end(), "EnableToolTips");
  if (end != calls.end()) calls.erase(end + 1, calls.end());
  return calls;
}

// The text that the tip of a control, or of a tab, is to have.
std::string TextOfTip(std::uint32_t number) {
  const char* const text = resources::String(number);
  EXPECT_NE(text, nullptr) << number;
  return text ? text : "";
}

TEST_F(ToolTipsTest, EachTabTellsWhatItIsFor) {
  Begin();
  EXPECT_EQ(screen.HoverTab(kTabControl, 0), TextOfTip(tab_tip::kControl));
  EXPECT_EQ(screen.HoverTab(kTabControl, 1), TextOfTip(tab_tip::kMouse));
  EXPECT_EQ(screen.HoverTab(kTabControl, 2), TextOfTip(tab_tip::kDevice));
  EXPECT_EQ(screen.HoverTab(kTabControl, 3), TextOfTip(tab_tip::kSettings));
}

// The tools of each tab, in the order in which they are added.
const std::vector<std::uint32_t> kTools[] = {
    {kNewControl, kEditControl, kDeleteControls, kCopyControls, kPasteControls, kMoveUp, kMoveDown},
    {kMouseX, kDetectMouseX, kMouseY, kDetectMouseY, kMouseWheel, kDetectMouseWheel, kLeftButton,
     kDetectLeftButton, kMiddleButton, kDetectMiddleButton, kRightButton, kDetectRightButton,
     kMovementDamper, kMovementSensitivity, kWheelDamper, kWheelSensitivity, kTestMode,
     kMouseAlwaysActive},
    {kRefreshDeviceList, kDeviceList, kNumButtons, kNumAxis, kNumPovs, kInterval, kRate,
     kDefaultRate, kTimerMin, kTimerMax},
    {kBanner, kAdvanced, kStartMinimized, kLaunchAtStartup, kSmartCheck, kWebLink, kMailLink}};

TEST_F(ToolTipsTest, EachControlHasTheOneOfItsNumber) {
  Begin();
  for (const std::uint32_t id : {kProfileList, kNewProfile, kDeleteProfile, kRenameProfile,
                                 kCopyProfile, kHelp, kControlList})
    EXPECT_EQ(screen.Hover(id), TextOfTip(id)) << id;
  for (std::int32_t tab = 0; tab < 4; ++tab) {
    screen.ChooseTab(kTabControl, tab);
    for (const std::uint32_t id : kTools[tab]) EXPECT_EQ(screen.Hover(id), TextOfTip(id)) << id;
  }
}

// The first is the number of a description elsewhere; the others are those of tabs' tips.
TEST_F(ToolTipsTest, AGroupBoxAndLabelsHaveNoneThoughTheirNumbersHaveAText) {
  Begin();
  for (const std::uint32_t id : {kWheelDamperFrame, kVersionText, kCopyright}) {
    ASSERT_NE(resources::String(id), nullptr) << id;
    EXPECT_EQ(ToolTip(id), "") << id;
  }
}

TEST_F(ToolTipsTest, WhatHasNoTextHasNoTip) {
  Begin();
  EXPECT_EQ(ToolTip(0), "");
  EXPECT_EQ(ToolTip(kProfileLabel), "");
  EXPECT_EQ(ToolTip(kTabControl), "");
}

TEST_F(ToolTipsTest, WidthAndTimeAreSetAgainEachTime) {
  Begin();
  EXPECT_EQ(screen.ToolTipWidth(), 300);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
  platform::controls().SetToolTipWidth(Handle(), 50);
  platform::controls().SetToolTipTime(Handle(), 100);
  screen.Hover(kNewProfile);
  EXPECT_EQ(screen.ToolTipWidth(), 300);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
}

TEST_F(ToolTipsTest, ThereAreNoneBeforeTheSetUpIsThrough) {
  FirstStart();
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog);  // the welcome
  EXPECT_EQ(ToolTip(kNewProfile), "");
  screen.Close();
  EXPECT_EQ(ToolTip(kNewProfile), "Create a new profile.");
}

TEST_F(ToolTipsTest, WithoutTheControlNothingIsFilledInAndTipsAreEnabledAllTheSame) {
  sim.FailNext("CreateToolTip");
  sim.LogCalls(true);
  Begin();
  EXPECT_EQ(CallsUpToTheEnd(), (Strings{"CreateToolTip", "EnableToolTips"}));
  EXPECT_EQ(screen.HoverTab(kTabControl, 0), "");
  EXPECT_TRUE(Window()->InitComplete());
}

TEST_F(ToolTipsTest, TheTabsComeFirstAndThenTheControlsInTheirOrder) {
  sim.LogCalls(true);
  Begin();
  Strings wanted = {"CreateToolTip",     "SetToolTipWidth 300", "SetToolTipTime 10000",
                    "ActivateToolTip",   "AddTabTool 1000 0",   "AddTabTool 1000 1",
                    "AddTabTool 1000 2", "AddTabTool 1000 3"};
  for (const auto& tools : kTools)
    for (const std::uint32_t id : tools) wanted.push_back("AddTool " + std::to_string(id));
  wanted.push_back("EnableToolTips");
  EXPECT_EQ(CallsUpToTheEnd(), wanted);
}

}  // namespace
}  // namespace kelvaro
