// The window under the hands of those who steer it.
#include <gtest/gtest.h>

#include <string>

#include "app/resources/control_ids.h"
#include "tests/app/profile_row_fixture.h"
#include "tests/steering/virtual_calls.h"

namespace kelvaro {
namespace {

using namespace main_window;

class SteeredWindowTest : public ProfileRowTest {
 protected:
  static constexpr char kBusy[] = "error | text the window has a dialog, a box or a menu open";

  void BeginWithTwo() {
    StoreWithPad("Alpha", "a");
    StoreWithPad("Beta", "b");
    Begin();
    ASSERT_EQ(OpenName(), "Alpha");
  }
  // What the caller is told once everything has come to rest.
  std::string Ask(const std::string& request) {
    calls.Say(1, "kelvaro 1 " + request);
    Settle();
    return calls.Heard(1);
  }
  std::string Select(const std::string& name) { return Ask("select\nname " + name); }
  void ClickAlwaysActive() {
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
    screen.Click(kMouseAlwaysActive);
  }
  void Settle() {
    sim.RunFor(200);
    screen.Settle();
  }

  VirtualCalls calls{sim.Groups()};
};

TEST_F(SteeredWindowTest, StatusTellsWhatIsOpen) {
  BeginWithTwo();
  EXPECT_EQ(
      Ask("status"),
      "status | program window | version 3.5 | profile Alpha | device Pad | deviceAnswers yes "
      "| paused no | mouseControls no");
  ClickAlwaysActive();
  Choose("Beta");
  EXPECT_EQ(Ask("status"),
            "status | program window | version 3.5 | profile Beta | device Pad | deviceAnswers yes "
            "| paused no | mouseControls no");
}

TEST_F(SteeredWindowTest, TheFirstStatusTellsWhatIsOpen) {
  calls.saidAtOnce = "kelvaro 1 status";
  BeginWithTwo();
  EXPECT_NE(calls.Heard(1).find("profile Alpha | device Pad | "), std::string::npos);
}

TEST_F(SteeredWindowTest, WhileTheFirstStartWaitsForThePersonItAnswers) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  FirstStart();
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog);
  EXPECT_EQ(Ask("status"),
            "status | program window | version 3.5 | profile  | device  | deviceAnswers no "
            "| paused no | mouseControls no");
  EXPECT_EQ(Select("Beta"), kBusy);
  EXPECT_EQ(Ask("pause"), "done");
  screen.Close();
  EXPECT_EQ(
      Ask("status"),
      "status | program window | version 3.5 | profile Alpha | device Pad | deviceAnswers yes "
      "| paused yes | mouseControls no");
  EXPECT_EQ(Select("Beta"), "done");
}

TEST_F(SteeredWindowTest, ItAnswersThenThatTheLastDeviceIsInUse) {
  Preset("Welcome Display", 0);
  PresetText("Last Device", kPad);
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog);
  EXPECT_NE(Ask("status").find("profile  | device Pad | "), std::string::npos);
}

TEST_F(SteeredWindowTest, SelectDoesWhatTheChoiceOfAPersonDoes) {
  BeginWithTwo();
  Choose("Beta");
  const Strings byHand = DeviceCalls();
  Choose("Alpha");
  sim.ClearCalls();
  EXPECT_EQ(Select("Beta"), "done");
  EXPECT_EQ(DeviceCalls(), byHand);
  EXPECT_EQ(Chosen(), "Beta");
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_EQ(Descriptions(), Strings{"b"});
  EXPECT_EQ(Remembered(), "Beta");
  EXPECT_TRUE(screen.Boxes().empty());
  pad.Press({1});
  sim.RunFor(50);
  EXPECT_EQ(KeysPressed(), "B");
}

TEST_F(SteeredWindowTest, TheOpenProfileStaysAsItIs) {
  BeginWithTwo();
  sim.ClearCalls();
  EXPECT_EQ(Select("Alpha"), "done");
  EXPECT_EQ(DeviceCalls(), Strings());
}

TEST_F(SteeredWindowTest, AProfileThatIsNotThereOrCanNotBeReadIsAnErrorAndNoBox) {
  BeginWithTwo();
  PutProfileFile("Broken.idprof", DamagedProfile("Broken"));
  EXPECT_EQ(Select("Gamma"), "error | text there is no stored profile 'Gamma'");
  EXPECT_EQ(Select("alpha"), "error | text there is no stored profile 'alpha'");
  EXPECT_EQ(Select("Broken"), "error | text the profile 'Broken' can't be read");
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Chosen(), "Alpha");
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(SteeredWindowTest, TheAnswersEndWithTheWindow) {
  BeginWithTwo();
  EXPECT_EQ(Select("Beta"), "done");
  ASSERT_TRUE(calls.IsAnswered());
  CloseAll();
  EXPECT_FALSE(calls.IsAnswered());
}

TEST_F(SteeredWindowTest, AProfileThatWasStoredMeanwhileIsListedAndOpened) {
  BeginWithTwo();
  StoreWithPad("Later", "c");
  EXPECT_EQ(Select("Later"), "done");
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta", "Later"}));
  EXPECT_EQ(Chosen(), "Later");
  EXPECT_EQ(OpenName(), "Later");
}

TEST_F(SteeredWindowTest, WithNoProfileOpenThereAreNoChangesToLose) {
  Begin();
  ASSERT_EQ(OpenName(), "");
  StoreWithPad("Later", "c");
  EXPECT_EQ(Select("Later"), "done");
  EXPECT_EQ(OpenName(), "Later");
}

TEST_F(SteeredWindowTest, AProfileWithoutItsPadIsOpenedWithoutAWarning) {
  BeginWithTwo();
  Store("Stick", [](ProfileFile* file) { SetDevice(file, "No such pad", kStickGuid); });
  EXPECT_EQ(Select("Stick"), "done");
  EXPECT_EQ(OpenName(), "Stick");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_NE(Ask("status").find("device  | deviceAnswers no"), std::string::npos);
  Choose("Alpha");
  Choose("Stick");
  EXPECT_TRUE(screen.BoxUp()) << "the person is warned";
}

TEST_F(SteeredWindowTest, WhileADialogOrABoxIsOpenNothingIsSelected) {
  BeginWithTwo();
  screen.Click(kNewProfile);
  ASSERT_EQ(screen.Front(), new_profile::kDialog);
  EXPECT_EQ(Select("Beta"), kBusy);
  EXPECT_EQ(OpenName(), "Alpha");
  screen.Type(new_profile::kName, "Beta");
  screen.Click(platform::IDOK);
  ASSERT_TRUE(screen.BoxUp()) << "there is one of that name";
  EXPECT_EQ(Select("Beta"), kBusy);
  EXPECT_NE(Ask("pause").find("done"), std::string::npos) << "which needs no window";
  screen.Answer(platform::IDOK);
  EXPECT_EQ(Select("Beta"), "done");
}

TEST_F(SteeredWindowTest, ChangesThatCouldNotBeStoredAreNotLost) {
  BeginWithTwo();
  Disk().PutFolder("/game/Profiles",
                   platform::FILE_ATTRIBUTE_DIRECTORY | platform::FILE_ATTRIBUTE_READONLY);
  ClickAlwaysActive();
  while (screen.BoxUp()) screen.Answer(platform::IDOK);
  EXPECT_EQ(Select("Beta"), "error | text changes of 'Alpha' couldn't be stored and would be lost");
  EXPECT_EQ(OpenName(), "Alpha");
  Disk().PutFolder("/game/Profiles");
  ClickAlwaysActive();
  EXPECT_EQ(Select("Beta"), "done");
}

TEST_F(SteeredWindowTest, ChangesThatThePersonHasGivenUpAreInNobodysWay) {
  BeginWithTwo();
  Disk().PutFolder("/game/Profiles",
                   platform::FILE_ATTRIBUTE_DIRECTORY | platform::FILE_ATTRIBUTE_READONLY);
  ClickAlwaysActive();
  while (screen.BoxUp()) screen.Answer(platform::IDOK);
  screen.Choose(kProfileList, "Beta");
  EXPECT_EQ(Select("Alpha"), "done");
}

TEST_F(SteeredWindowTest, ANumberThatIsBeingTypedIsNotLost) {
  BeginWithTwo();
  for (const std::uint32_t field : {kInterval, kRate}) {
    screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
    screen.Type(field, "50");
    EXPECT_EQ(Select("Beta"), "error | text a number is being typed into the window");
    EXPECT_EQ(screen.Text(field), "50");
    EXPECT_EQ(OpenName(), "Alpha");
    screen.Type(field, field == kInterval ? "5" : "200");
  }
  EXPECT_EQ(Select("Beta"), "done");
}

TEST_F(SteeredWindowTest, FollowersAreToldWhatThePersonDoes) {
  BeginWithTwo();
  EXPECT_EQ(Ask("follow-events"), "done");
  ClickAlwaysActive();
  std::string told = calls.Heard(1);
  EXPECT_NE(told.find("event mouseControls"), std::string::npos) << told;
  EXPECT_NE(told.find("on yes"), std::string::npos) << told;
  Choose("Beta");
  told = calls.Heard(1);
  EXPECT_NE(told.find("event profile"), std::string::npos) << told;
  EXPECT_NE(told.find("name Beta"), std::string::npos) << told;
  EXPECT_NE(told.find("on no"), std::string::npos) << told;
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.Choose(kDeviceList, kNone);
  told = calls.Heard(1);
  EXPECT_NE(told.find("event device"), std::string::npos) << told;
}

TEST_F(SteeredWindowTest, APausedWindowStaysPausedWithAnotherProfile) {
  BeginWithTwo();
  EXPECT_EQ(Ask("pause"), "done");
  EXPECT_EQ(Select("Beta"), "done");
  pad.Press({1});
  sim.RunFor(50);
  EXPECT_EQ(KeysPressed(), "");
  EXPECT_EQ(Ask("resume"), "done");
  EXPECT_EQ(KeysPressed(), "B");
}

TEST_F(SteeredWindowTest, AMessageThatDoesNotReachTheWindowIsTold) {
  BeginWithTwo();
  sim.FailNext("PostMessageA");
  EXPECT_EQ(Select("Beta"), "error | text the window can't be reached");
  EXPECT_EQ(OpenName(), "Alpha");
}

TEST_F(SteeredWindowTest, ARequestThatComesAtTheEndIsNotCarriedOut) {
  BeginWithTwo();
  platform::desktop().PostMessageA(Handle(), WM_CLOSE_PROGRAM, 0, 0);
  calls.Say(1, "kelvaro 1 select\nname Beta");
  screen.Settle();
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(Remembered(), "Alpha");
}

}  // namespace
}  // namespace kelvaro
