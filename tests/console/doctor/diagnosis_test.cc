#include "console/doctor/diagnosis.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvaro::console {
namespace {

using State = Remark::State;

PadFacts Pad(const std::string& name) {
  PadFacts pad;
  pad.name = name;
  pad.node = "/dev/input/event3";
  return pad;
}

// A machine on which all is as it should be.
MachineFacts GoodMachine() {
  MachineFacts facts;
  facts.sessionType = "wayland";
  facts.hasWayland = true;
  facts.hasX = true;
  facts.moduleLoaded = true;
  facts.moduleFile = "/etc/modules-load.d/kelvaro.conf";
  facts.ruleFile = "/etc/udev/rules.d/60-kelvaro.rules";
  facts.pads = {Pad("Pad")};
  facts.iconsOnBus = true;
  facts.realtime = true;
  facts.folders = {{"profiles", "/home/me/Profiles", true}};
  return facts;
}

void RefuseUinput(MachineFacts* facts) {
  facts->uinputTrouble = "it can't be opened: Permission denied";
  facts->uinputAdvice = "copy the rule";
}

// The remarks on a topic.
std::vector<Remark> On(const std::string& topic, const MachineFacts& facts) {
  std::vector<Remark> remarks = Diagnose(facts);
  std::erase_if(remarks, [&](const Remark& remark) { return remark.topic != topic; });
  EXPECT_FALSE(remarks.empty()) << topic;
  return remarks;
}

State StateOf(const std::string& topic, const MachineFacts& facts) {
  return On(topic, facts).at(0).state;
}

TEST(Diagnose, EachLineEndsWithWhatToDo) {
  for (const Remark& remark : Diagnose(GoodMachine())) {
    EXPECT_EQ(remark.state, State::Good) << remark.topic;
    EXPECT_EQ(remark.next, "nothing to do") << remark.topic;
  }
  MachineFacts bad;
  RefuseUinput(&bad);
  bad.xtestTrouble = "there is no X server";
  bad.folders = {{"profiles", "/p", false}, {"settings", "", false}};
  bad.running = {7, 8};
  for (const Remark& remark : Diagnose(bad)) {
    EXPECT_NE(remark.state, State::Good) << remark.topic;
    EXPECT_NE(remark.next, "") << remark.topic;
    EXPECT_NE(remark.next, "nothing to do") << remark.topic;
  }
}

TEST(Diagnose, TheOutputIsUinputThenXTestThenNone) {
  MachineFacts facts = GoodMachine();
  EXPECT_NE(On("output", facts)[0].what.find("uinput"), std::string::npos);
  RefuseUinput(&facts);
  const Remark xtest = On("output", facts)[0];
  EXPECT_EQ(xtest.state, State::Note);
  EXPECT_EQ(xtest.what.find("XTest"), 0u);
  EXPECT_EQ(StateOf("/dev/uinput", facts), State::Note);
  EXPECT_FALSE(KeepsFromWorking(Diagnose(facts)));
  facts.xtestTrouble = "there is no X server";
  EXPECT_EQ(StateOf("output", facts), State::Bad);
  EXPECT_EQ(StateOf("/dev/uinput", facts), State::Bad);
  EXPECT_TRUE(KeepsFromWorking(Diagnose(facts)));
}

TEST(Diagnose, AMachineWithoutAPadDoesNothing) {
  MachineFacts facts = GoodMachine();
  facts.pads.clear();
  EXPECT_EQ(StateOf("pad", facts), State::Bad);
  EXPECT_TRUE(KeepsFromWorking(Diagnose(facts)));
}

TEST(Diagnose, APadThatNobodyElseHasIsEnough) {
  MachineFacts facts = GoodMachine();
  PadFacts closed = Pad("Closed");
  closed.whyClosed = "Permission denied";
  PadFacts grabbed = Pad("Grabbed");
  grabbed.grabbed = true;
  grabbed.openIn = "game (4711)";
  facts.pads = {closed, grabbed};
  for (const Remark& remark : On("pad", facts)) EXPECT_EQ(remark.state, State::Bad) << remark.what;
  EXPECT_NE(On("pad", facts)[0].what.find("Permission denied"), std::string::npos);
  EXPECT_NE(On("pad", facts)[1].what.find("game (4711)"), std::string::npos);
  PadFacts mirror = Pad("Mirror");
  mirror.mirror = true;
  facts.pads.push_back(mirror);
  for (const Remark& remark : On("pad", facts)) EXPECT_EQ(remark.state, State::Note) << remark.what;
  EXPECT_FALSE(KeepsFromWorking(Diagnose(facts)));
}

TEST(Diagnose, APadThatKelvaroMayKeepForItselfIsNoFault) {
  MachineFacts facts = GoodMachine();
  PadFacts grabbed = Pad("Grabbed");
  grabbed.grabbed = true;
  grabbed.openIn = "kelvaroctl (4711)";
  facts.pads = {grabbed};
  EXPECT_EQ(StateOf("pad", facts), State::Bad);
  facts.pads[0].openInKelvaro = true;
  const Remark remark = On("pad", facts)[0];
  EXPECT_EQ(remark.state, State::Note);
  EXPECT_NE(remark.what.find("is grabbed; open in kelvaroctl (4711)"), std::string::npos);
  EXPECT_NE(remark.next.find("'Only For Kelvaro'"), std::string::npos);
  EXPECT_FALSE(KeepsFromWorking(Diagnose(facts)));
}

TEST(Diagnose, WhatIsMissingAtTheNextStartIsANote) {
  MachineFacts facts = GoodMachine();
  facts.moduleFile = "";
  EXPECT_EQ(StateOf("module", facts), State::Good) << "opening the rule's node loads it";
  facts.ruleFile = "";
  EXPECT_EQ(StateOf("module", facts), State::Note);
  EXPECT_EQ(StateOf("udev rule", facts), State::Good) << "root needs none";
  RefuseUinput(&facts);
  EXPECT_EQ(StateOf("udev rule", facts), State::Note);
  facts.moduleLoaded = false;
  EXPECT_NE(On("module", facts)[0].next.find("modprobe"), std::string::npos);
}

TEST(Diagnose, WhatOnlyBothersIsANote) {
  MachineFacts facts = GoodMachine();
  facts.iconsOnBus = false;
  facts.realtime = false;
  facts.hasWayland = facts.hasX = false;
  facts.folders[0].writable = false;
  facts.running = {7, 8};
  for (const char* topic :
       {"notification area", "real-time threads", "session", "folder of profiles", "running"}) {
    EXPECT_EQ(StateOf(topic, facts), State::Note) << topic;
  }
  EXPECT_FALSE(KeepsFromWorking(Diagnose(facts)));
  facts.iconsOnX = true;
  EXPECT_EQ(StateOf("notification area", facts), State::Good);
  facts.running = {7};
  EXPECT_EQ(StateOf("running", facts), State::Good);
}

WindowsFacts GoodWindows() {
  WindowsFacts facts;
  facts.pads = {Pad("Pad")};
  facts.pads[0].node = "";
  facts.hasNotificationArea = true;
  facts.isAdministrator = true;
  facts.folders = {{"profiles", "C:\\Profiles", true}};
  return facts;
}

TEST(DiagnoseWindows, EachLineEndsWithWhatToDo) {
  for (const Remark& remark : Diagnose(GoodWindows())) {
    EXPECT_EQ(remark.state, State::Good) << remark.topic;
    EXPECT_EQ(remark.next, "nothing to do") << remark.topic;
  }
  WindowsFacts bad = GoodWindows();
  bad.pads[0].whyClosed = "another program has it";
  bad.hasNotificationArea = false;
  bad.isAdministrator = false;
  bad.folders[0].writable = false;
  bad.running = {7, 8};
  int states[3] = {};
  for (const Remark& remark : Diagnose(bad)) {
    EXPECT_NE(remark.next, "") << remark.topic;
    ++states[static_cast<int>(remark.state)];
  }
  EXPECT_EQ(states[static_cast<int>(State::Good)], 2) << "DirectInput and the output";
  EXPECT_EQ(states[static_cast<int>(State::Note)], 3);
  EXPECT_EQ(states[static_cast<int>(State::Bad)], 1) << "the pad";
}

TEST(DiagnoseWindows, WithoutDirectInputNothingIsSaidOfPads) {
  WindowsFacts facts = GoodWindows();
  facts.directInputTrouble = "it isn't there";
  facts.pads.clear();
  const std::vector<Remark> remarks = Diagnose(facts);
  EXPECT_TRUE(KeepsFromWorking(remarks));
  EXPECT_EQ(remarks[0].topic, "DirectInput");
  for (const Remark& remark : remarks) EXPECT_NE(remark.topic, "pad");
  facts.directInputTrouble = "";
  EXPECT_TRUE(KeepsFromWorking(Diagnose(facts))) << "no pad is there";
}

TEST(RemarkText, IsAParagraphWithItsStateInFront) {
  const Remark remark{State::Bad, "pad", "none is there", "plug one in"};
  EXPECT_EQ(RemarkText(remark, {80, false}), "bad   pad: none is there; plug one in.\n");
  EXPECT_EQ(RemarkText(remark, {30, false}),
            "bad   pad: none is there; plug\n"
            "      one in.\n");
  EXPECT_EQ(RemarkText({State::Good, "pad", "'\x1B[31m'", "nothing to do"}, {80, false}),
            "good  pad: '?[31m'; nothing to do.\n");
}

TEST(RemarkText, HasColoursWhereTheTerminalHas) {
  EXPECT_EQ(RemarkText({State::Bad, "pad", "none", "plug one in"}, {80, true}),
            "\x1B[31mbad   \x1B[0mpad: none; plug one in.\n");
  EXPECT_EQ(RemarkText({State::Note, "pad", "one", "see"}, {80, true}).substr(0, 5), "\x1B[33m");
  EXPECT_EQ(RemarkText({State::Good, "pad", "one", "see"}, {80, true}).substr(0, 5), "\x1B[32m");
}

TEST(RemarkJson, HasAllOfIt) {
  EXPECT_EQ(RemarkJson({State::Note, "pad", "a \"b\"", "see"}),
            "{\"topic\":\"pad\",\"state\":\"note\",\"what\":\"a \\\"b\\\"\",\"next\":\"see\"}");
}

}  // namespace
}  // namespace kelvaro::console
