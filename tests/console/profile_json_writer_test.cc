#include "console/profile_json_writer.h"

#include <gtest/gtest.h>

#include "console/profile_json.h"
#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro::console {
namespace {

constexpr char kDefaults[] =
    R"({"profileName":"","nextControlId":1,"deviceName":"","pollInterval":5,)"
    R"("deviceGuid":"00000000000000000000000000000000","mouse":{"acceleration":0,)"
    R"("movementSensitivity":15,"movementDamper":5,"wheelSensitivity":15,"wheelDamper":5,)"
    R"("leftButton":0,"middleButton":0,"rightButton":0,"leftMask":"0x0","middleMask":"0x0",)"
    R"("rightMask":"0x0","mouseX":{"kind":11,"index":0},"mouseY":{"kind":11,"index":0},)"
    R"("mouseWheel":{"kind":11,"index":0},"mouseAlwaysActive":false},"controls":[]})";

constexpr char kEveryMember[] =
    R"j({"profileName":"Walk","nextControlId":9,"deviceName":"Pad","pollInterval":7,)j"
    R"j("deviceGuid":"0123456789abcdeffedcba9876543210","mouse":{"acceleration":-4,)j"
    R"j("movementSensitivity":16,"movementDamper":6,"wheelSensitivity":17,"wheelDamper":8,)j"
    R"j("leftButton":2,"middleButton":3,"rightButton":31,"leftMask":"0x4","middleMask":"0x8",)j"
    R"j("rightMask":"0xffffffff80000000","mouseX":{"kind":3,"index":1},)j"
    R"j("mouseY":{"kind":9,"index":2},"mouseWheel":{"kind":7,"index":3},)j"
    R"j("mouseAlwaysActive":true},"controls":[)j"
    R"j({"controlId":5,"description":"Jump","activateOnPress":false,"triggerOption":false,)j"
    R"j("buttonMask":"0x8000000000000005","triggerItems":[{"kind":8,"index":1,"value":2},)j"
    R"j({"kind":0,"index":3,"value":1}],"triggerText":"B1+B3+B64+POV1(up)+Axis_X3(neg)",)j"
    R"j("toggleMouseControls":true,"repeatEnabled":true,"repeatDelay":600,"repeatSpeed":60,)j"
    R"j("keyHoldTime":20,"keyReleasePause":10,"actions":[{"actionFlags":3,)j"
    R"j("steps":[[65,30,0],[1,244,128]],"text":"a<P:500>"},{"actionFlags":0,)j"
    R"j("steps":[[67,46,2]],"text":"<Ctrl>c"}]},)j"
    R"j({"controlId":0,"description":"","activateOnPress":true,"triggerOption":true,)j"
    R"j("buttonMask":"0x0","triggerItems":[],"triggerText":"","toggleMouseControls":false,)j"
    R"j("repeatEnabled":false,"repeatDelay":500,"repeatSpeed":50,"keyHoldTime":0,)j"
    R"j("keyReleasePause":0,"actions":[]}]})j";

std::unique_ptr<KeyAction> Action(std::uint32_t flags, std::initializer_list<KeyStep> steps) {
  auto action = std::make_unique<KeyAction>();
  action->actionFlags = flags;
  for (const KeyStep& step : steps) action->steps.AddTail(step);
  return action;
}

void FillEveryMember(Profile* profile) {
  profile->profileName = "Walk";
  profile->nextControlId = 9;
  profile->deviceName = "Pad";
  profile->pollInterval = 7;
  profile->deviceGuid = {
      0x01234567, 0x89AB, 0xCDEF, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
  profile->acceleration = -4;
  profile->movementSensitivity = 16;
  profile->movementDamper = 6;
  profile->wheelSensitivity = 17;
  profile->wheelDamper = 8;
  profile->leftButton = 2;
  profile->middleButton = 3;
  profile->rightButton = 31;
  profile->leftMask = 4;
  profile->middleMask = 8;
  profile->rightMask = 0xFFFFFFFF80000000;
  profile->mouseX = TriggerItem{3, 1, 188};
  profile->mouseY = TriggerItem{9, 2, 40};
  profile->mouseWheel = TriggerItem{7, 3, 268};
  profile->mouseAlwaysActive = true;

  Control control;
  control.actionsBorrowed = 1;  // the copy in the list is to own the actions
  control.controlId = 5;
  control.description = "Jump";
  control.activateOnPress = 0;
  control.triggerOption = 0;
  control.SetButtonMask(0x8000000000000005);
  control.triggerItems.AddTail({8, 1, 2});
  control.triggerItems.AddTail({0, 3, 1});
  control.toggleMouseControls = 1;
  control.repeatEnabled = 1;
  control.repeatDelay = 600;
  control.repeatSpeed = 60;
  control.keyHoldTime = 20;
  control.keyReleasePause = 10;
  control.actions.AddTail(Action(3, {{65, 30, 0}, {1, 244, 128}}).release());
  control.actions.AddTail(Action(0, {{67, 46, 2}}).release());
  profile->controls.AddTail(control);
  profile->controls.AddTail(Control());
}

TEST(ProfileJson, WritesEveryMemberInItsOrder) {
  Profile profile;
  EXPECT_EQ(ProfileJson(profile), kDefaults);
  const platform::simulation::Simulation sim;
  FillEveryMember(&profile);
  EXPECT_EQ(ProfileJson(profile), kEveryMember);
}

TEST(ProfileJson, IsReadBackMemberByMember) {
  const platform::simulation::Simulation sim;
  ProfileFile profile;
  FillEveryMember(&profile);
  profile.RebuildDispatchList();
  ProfileFile again;
  JsonFault fault;
  ASSERT_TRUE(ReadProfile(ProfileJson(profile), &again, &fault)) << fault.Text("f");
  ExpectSameProfile(profile, again);
}

TEST(ProfileJson, BytesThatAreNoTextAreHexDigits) {
  Profile profile;
  profile.profileName = "Sp\xC3\xBCl \"1\"";
  profile.deviceName = "a\xFF";
  const std::string json = ProfileJson(profile);
  EXPECT_NE(json.find("\"profileName\":\"Sp\xC3\xBCl \\\"1\\\"\","), std::string::npos) << json;
  EXPECT_NE(json.find("\"deviceName\":{\"bytes\":\"61ff\"},"), std::string::npos) << json;
}

TEST(ProfileJson, IsOneLineWhateverTheTexts) {
  Profile profile;
  profile.profileName.AssignBytes("a\nb\0c", 5);
  const std::string json = ProfileJson(profile);
  EXPECT_EQ(json.find('\n'), std::string::npos);
  Profile again;
  JsonFault fault;
  ASSERT_TRUE(ReadProfile(json, &again, &fault)) << fault.Text("f");
  EXPECT_EQ(Str(again.profileName), std::string("a\nb\0c", 5));
}

// A thousand profiles that only a generator would make, through JSON and through files.
TEST(ProfileJson, GoesThroughFilesAndBackUnchanged) {
  for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
    platform::simulation::Simulation sim;
    ProfileFile profile;
    RandomProfile(seed).Fill(&profile);
    const std::string json = ProfileJson(profile);
    ASSERT_TRUE(profile.SaveAs("/data/first")) << seed;

    ProfileFile packed;
    JsonFault fault;
    ASSERT_TRUE(ReadProfile(json, &packed, &fault)) << seed << fault.Text("f");
    ASSERT_TRUE(packed.SaveAs("/data/second")) << seed;
    ASSERT_EQ(sim.Disk().FileBytes("/data/second"), sim.Disk().FileBytes("/data/first")) << seed;

    ProfileFile shown;
    ASSERT_TRUE(shown.Load("/data/second")) << seed;
    ASSERT_EQ(ProfileJson(shown), json) << seed;
  }
}

}  // namespace
}  // namespace kelvaro::console
