#include "app/dialogs/help.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/app/calls.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"

namespace kelvaro {
namespace {

using platform::kNoWindow;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;

constexpr char kHelpKey[] = "HKCR\\CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr char kTopic[] = "Some Topic.htm";

std::uintptr_t ShowTopic() {
  return HtmlHelp(kNoWindow, "help.chm", platform::HH_DISPLAY_TOPIC,
                  reinterpret_cast<std::uintptr_t>(kTopic));
}

class HelpTest : public ::testing::Test {
 protected:
  HelpTest() { ForgetHelp(); }
  ~HelpTest() override { ForgetHelp(); }

  Simulation sim;
  Screen& screen = sim.Screen();
};

TEST_F(HelpTest, WhatIsRegisteredShowsTheHelp) {
  sim.Registry().PutString(kHelpKey, "", "C:\\System\\help.ocx");
  screen.SetHelpLibrary("C:\\System\\help.ocx", true);
  EXPECT_NE(ShowTopic(), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), Strings{"C:\\System\\help.ocx"});
  ASSERT_EQ(screen.HelpCalls().size(), 1u);
  EXPECT_EQ(screen.HelpCalls()[0].file, "help.chm");
  EXPECT_EQ(screen.HelpCalls()[0].command, platform::HH_DISPLAY_TOPIC);
  EXPECT_EQ(screen.HelpCalls()[0].topic, kTopic);
}

TEST_F(HelpTest, WithoutARegisteredOneTheUsualNameIsTried) {
  EXPECT_NE(ShowTopic(), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), Strings{"hhctrl.ocx"});
  EXPECT_FALSE(sim.Registry().HasKey("HKCR\\CLSID")) << "looked for, and not made";
}

TEST_F(HelpTest, AnEmptyPathAndOneOfAnotherKindAreNone) {
  sim.Registry().PutString(kHelpKey, "", "");
  EXPECT_NE(ShowTopic(), 0u);
  ForgetHelp();
  sim.Registry().PutDword(kHelpKey, "", 7);
  EXPECT_NE(ShowTopic(), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), (Strings{"hhctrl.ocx", "hhctrl.ocx"}));
}

TEST_F(HelpTest, ARegisteredOneThatCantBeLoadedGivesWayToTheUsualName) {
  sim.Registry().PutString(kHelpKey, "", "C:\\System\\help.ocx");
  EXPECT_NE(ShowTopic(), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), (Strings{"C:\\System\\help.ocx", "hhctrl.ocx"}));
}

TEST_F(HelpTest, APathTakesAtMost260BytesWithItsTerminator) {
  const std::string longest(259, 'p');
  sim.Registry().PutString(kHelpKey, "", longest);
  ShowTopic();
  EXPECT_EQ(screen.LoadedLibraries(), (Strings{longest, "hhctrl.ocx"}));
  ForgetHelp();
  sim.Registry().PutString(kHelpKey, "", longest + 'p');
  ShowTopic();
  EXPECT_EQ(screen.LoadedLibraries(), (Strings{longest, "hhctrl.ocx", "hhctrl.ocx"}));
}

TEST_F(HelpTest, LibraryAndFunctionAreFetchedOnce) {
  sim.LogCalls(true);
  ShowTopic();
  ShowTopic();
  EXPECT_EQ(CallsOf(sim, {"LoadLibraryA", "GetHelpFunction"}),
            (Strings{"LoadLibraryA hhctrl.ocx", "GetHelpFunction 14"}));
  EXPECT_EQ(screen.HelpCalls().size(), 2u);
}

TEST_F(HelpTest, AMissingLibraryIsLookedForOnce) {
  screen.SetHelpLibrary("hhctrl.ocx", false);
  EXPECT_EQ(ShowTopic(), 0u);
  screen.SetHelpLibrary("hhctrl.ocx", true);
  EXPECT_EQ(ShowTopic(), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), Strings{"hhctrl.ocx"});
  EXPECT_TRUE(screen.HelpCalls().empty());
}

TEST_F(HelpTest, AMissingFunctionIsLookedForOnce) {
  sim.FailNext("GetHelpFunction");
  EXPECT_EQ(ShowTopic(), 0u);
  EXPECT_EQ(ShowTopic(), 0u);
  EXPECT_EQ(screen.LoadedLibraries(), Strings{"hhctrl.ocx"});
  EXPECT_TRUE(screen.HelpCalls().empty());
}

TEST_F(HelpTest, AFreshStartLooksAnew) {
  screen.SetHelpLibrary("hhctrl.ocx", false);
  EXPECT_EQ(ShowTopic(), 0u);
  screen.SetHelpLibrary("hhctrl.ocx", true);
  ForgetHelp();
  EXPECT_NE(ShowTopic(), 0u);
}

TEST_F(HelpTest, TheFunctionsOwnFailureIsHandedOnAndNoReasonToGiveUp) {
  sim.FailNext("HtmlHelp");
  EXPECT_EQ(ShowTopic(), 0u);
  EXPECT_NE(ShowTopic(), 0u);
}

TEST_F(HelpTest, TopicsAreInTheFileOfTheProgramsFolder) {
  ShowHelpTopic(kTopic);
  ASSERT_EQ(screen.HelpCalls().size(), 1u);
  EXPECT_EQ(screen.HelpCalls()[0].file, "/game/Help/Kelvaro.chm");
  EXPECT_EQ(screen.HelpCalls()[0].command, platform::HH_DISPLAY_TOPIC);
  EXPECT_EQ(screen.HelpCalls()[0].topic, kTopic);
}

TEST_F(HelpTest, AProgramInTheRootHasItsHelpThere) {
  sim.Disk().SetProgramPath("/kelvaro");
  ShowHelpTopic(kTopic);
  ASSERT_EQ(screen.HelpCalls().size(), 1u);
  EXPECT_EQ(screen.HelpCalls()[0].file, "/Help/Kelvaro.chm");
}

TEST_F(HelpTest, WithoutAHelpLibraryATopicDoesNothing) {
  screen.SetHelpLibrary("hhctrl.ocx", false);
  ShowHelpTopic(kTopic);
  EXPECT_TRUE(screen.HelpCalls().empty());
}

}  // namespace
}  // namespace kelvaro
