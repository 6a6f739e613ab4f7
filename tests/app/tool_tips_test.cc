#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/resources/resources.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kTabs = 1000;

using ToolTipsTest = MainWindowTest;

TEST_F(ToolTipsTest, EachTabTellsWhatItIsFor) {
  Begin();
  EXPECT_EQ(screen.HoverTab(kTabs, 0),
            "The Control tab deals with the creation and editing of controls for the selected "
            "profile.");
  EXPECT_EQ(screen.HoverTab(kTabs, 1),
            "The Mouse tab allows you to optionally define mouse controls to simulate mouse "
            "movement, button presses, etc. from your input device.");
  EXPECT_EQ(screen.HoverTab(kTabs, 2),
            "The Device tab is where you select an input device to use with your profile, to "
            "reselect the proper device after plugging it in, and/or set the speed at which the "
            "software polls for changes on that device.");
  EXPECT_EQ(screen.HoverTab(kTabs, 3),
            "The Settings tab has application settings and information about the program.");
}

TEST_F(ToolTipsTest, ControlsOfTheTopRowHaveThem) {
  Begin();
  EXPECT_EQ(screen.Hover(1001), "The list of available profiles for selection.");
  EXPECT_EQ(screen.Hover(1006), "Create a new profile.");
  EXPECT_EQ(screen.Hover(1099), "Delete the current profile.");
  EXPECT_EQ(screen.Hover(1100), "Rename the current profile.");
  EXPECT_EQ(screen.Hover(1101), "Copy the current profile to a new profile with a different name.");
}

TEST_F(ToolTipsTest, ControlsOfEachTabHaveThoseOfTheirNumbers) {
  const std::vector<std::vector<std::uint32_t>> pages = {
      {1003, 1004, 1005, 1136, 1115, 1155, 1156, 1157},
      {1159, 1027, 1160, 1028, 1163, 1034, 1161, 1029, 1162, 1030, 1164, 1031, 1056, 1052, 1079,
       1080, 1036, 1139},
      {1170, 1060, 1063, 1065, 1067, 1076, 1077, 1078, 1070, 1072},
      {1173, 1198, 1171, 1172, 1187, 1175, 1176}};
  Begin();
  for (std::int32_t tab = 0; tab < 4; ++tab) {
    screen.ChooseTab(kTabs, tab);
    for (const std::uint32_t id : pages[static_cast<std::size_t>(tab)]) {
      ASSERT_NE(resources::String(id), nullptr) << id;
      EXPECT_EQ(screen.Hover(id), resources::String(id)) << id;
    }
  }
}

TEST_F(ToolTipsTest, ThoseOfTheSettingsTabReadAsWritten) {
  Begin();
  screen.ChooseTab(kTabs, 3);
  EXPECT_EQ(screen.Hover(1173), "The ultimate game control software.");
  EXPECT_EQ(screen.Hover(1171),
            "When checked, do not show the application window when it starts up, but rather "
            "minimized to the system tray area as an icon.");
  EXPECT_EQ(screen.Hover(1172),
            "When checked, launch the application when the computer starts up (if no logon is "
            "required), or when you log on.");
  EXPECT_EQ(screen.Hover(1175),
            "Open your browser to " + std::string(resources::kWebAddress) + ".");
  EXPECT_EQ(screen.Hover(1176),
            "Start a new email addressed to " + std::string(resources::kSupportAddress) + ".");
  EXPECT_EQ(screen.Hover(1187),
            "Enable or disable the Smart Check key entry checker to check for possible mistakes "
            "when you enter key controls. This will catch things like forgetting to put angle "
            "brackets \"<>\" around special key input designations.");
  EXPECT_EQ(screen.Hover(1198), "Open the advanced settings dialog window.");
}

TEST_F(ToolTipsTest, AnyOtherControlWithATextHasOne) {
  Begin();
  EXPECT_EQ(screen.Hover(1146), "More in-depth help.");
}

// 1083 is a description elsewhere; 1177 and 1178 are the texts of tabs.
TEST_F(ToolTipsTest, AGroupBoxAndLabelsHaveNoneThoughTheirNumbersHaveAText) {
  Begin();
  for (const std::uint32_t id : {1083u, 1177u, 1178u}) {
    ASSERT_NE(resources::String(id), nullptr) << id;
    EXPECT_EQ(ToolTip(id), "") << id;
  }
}

TEST_F(ToolTipsTest, WhatHasNoTextHasNoTip) {
  Begin();
  EXPECT_EQ(ToolTip(0), "");
  EXPECT_EQ(ToolTip(1002), "");
  EXPECT_EQ(ToolTip(kTabs), "");
}

TEST_F(ToolTipsTest, WidthAndTimeAreSetAgainEachTime) {
  Begin();
  EXPECT_EQ(screen.ToolTipWidth(), 300);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
  platform::SetToolTipWidth(Handle(), 50);
  platform::SetToolTipTime(Handle(), 100);
  screen.Hover(1006);
  EXPECT_EQ(screen.ToolTipWidth(), 300);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
}

TEST_F(ToolTipsTest, ThereAreNoneBeforeTheSetUpIsThrough) {
  FirstStart();
  Begin();
  ASSERT_EQ(screen.Front(), 151u);  // the welcome
  EXPECT_EQ(ToolTip(1006), "");
  screen.Close();
  EXPECT_EQ(ToolTip(1006), "Create a new profile.");
}

TEST_F(ToolTipsTest, WithoutTheControlNothingIsFilledInAndTipsAreEnabledAllTheSame) {
  sim.FailNext("CreateToolTip");
  sim.LogCalls(true);
  Begin();
  std::vector<std::string> calls;
  for (const std::string& call : sim.Calls())
    if (call.find("Tool") != std::string::npos) calls.push_back(call);
  EXPECT_EQ(calls, (std::vector<std::string>{"CreateToolTip", "EnableToolTips"}));
  EXPECT_EQ(screen.HoverTab(kTabs, 0), "");
  EXPECT_TRUE(InitComplete());
}

TEST_F(ToolTipsTest, TheTabsComeFirstAndThenTheControlsInTheirOrder) {
  sim.LogCalls(true);
  Begin();
  std::vector<std::string> calls;
  for (const std::string& call : sim.Calls())
    if (call.find("Tool") != std::string::npos) calls.push_back(call);
  std::vector<std::string> wanted = {
      "CreateToolTip",     "SetToolTipWidth 300", "SetToolTipTime 10000", "ActivateToolTip",
      "AddTabTool 1000 0", "AddTabTool 1000 1",   "AddTabTool 1000 2",    "AddTabTool 1000 3"};
  for (const int id :
       {1004, 1005, 1136, 1115, 1155, 1156, 1157, 1159, 1027, 1160, 1028, 1163, 1034, 1161,
        1029, 1162, 1030, 1164, 1031, 1056, 1052, 1079, 1080, 1036, 1139, 1170, 1060, 1063,
        1065, 1067, 1076, 1077, 1078, 1070, 1072, 1173, 1198, 1171, 1172, 1187, 1175, 1176}) {
    wanted.push_back("AddTool " + std::to_string(id));
  }
  wanted.push_back("EnableToolTips");
  EXPECT_EQ(calls, wanted);
}

}  // namespace
}  // namespace kelvaro
