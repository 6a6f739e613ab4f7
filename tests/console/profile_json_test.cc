#include "console/profile_json.h"

#include <gtest/gtest.h>

#include "console/json_text.h"
#include "keys/key_action.h"
#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro::console {
namespace {

// The fault of a text that is no profile, with what is shown below it.
std::string FaultOf(const std::string& text) {
  Profile profile;
  JsonFault fault;
  if (ReadProfile(text, &profile, &fault)) return "";
  return fault.Text("f") + "\n" + fault.detail;
}

struct Parsed {
  explicit Parsed(const std::string& text) {
    JsonFault fault;
    EXPECT_TRUE(ReadProfile(text, &profile, &fault)) << fault.Text("f");
  }
  const Control& At(int index) const { return *profile.controls.At(index)->value; }
  std::vector<std::uint32_t> Ids() const {
    std::vector<std::uint32_t> ids;
    for (const Control& control : profile.controls) {
      ids.push_back(control.controlId);
    }
    return ids;
  }
  Profile profile;
};

const KeyAction& ActionAt(const Control& control, int index) {
  return static_cast<const KeyAction&>(**control.actions.At(index)->value);
}

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

  profile->controls.AddTail(Control());
  Control& control = *profile->controls.tail->value;
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
  profile->controls.AddTail(Control());
}

TEST(ProfileJson, HasEveryMemberInItsOrder) {
  EXPECT_EQ(ProfileJson(Profile()), kDefaults);
  Profile profile;
  FillEveryMember(&profile);
  EXPECT_EQ(ProfileJson(profile), kEveryMember);
}

TEST(ReadProfile, ReadsEveryMember) {
  Profile profile;
  FillEveryMember(&profile);
  profile.RebuildDispatchList();
  ExpectSameProfile(Parsed(kEveryMember).profile, profile);
}

TEST(ReadProfile, TakesAMaskAsANumberAndUpperCaseHexDigits) {
  const Parsed read(R"({"mouse":{"leftMask":8},"deviceGuid":"FEDCBA98765432100123456789ABCDEF"})");
  EXPECT_EQ(read.profile.leftMask, 8U);
  EXPECT_EQ(read.profile.deviceGuid.Data1, 0xFEDCBA98);
}

TEST(ReadProfile, AMemberLeftOutHasItsDefault) {
  ExpectSameProfile(Parsed("{}").profile, Profile());
  ExpectSameProfile(Parsed(R"({"mouse":{"mouseX":{}}})").profile, Profile());
  const Parsed read(R"({"controls":[{"actions":[{}],"triggerItems":[{}]}]})");
  Control expected;
  expected.controlId = 1;
  expected.triggerItems.AddTail({});
  expected.actions.AddTail(new KeyAction);
  ExpectSame(read.At(0), expected);
  EXPECT_EQ(read.profile.nextControlId, 2U);
}

TEST(ReadProfile, NumbersTheControlsThatHaveNoNumber) {
  struct {
    const char* json;
    std::vector<std::uint32_t> ids;
    std::uint32_t next;
    const char* why;
  } const kCases[] = {
      {R"({"controls":[{},{},{}]})", {1, 2, 3}, 4, "from 1"},
      {R"({"nextControlId":7,"controls":[{},{}]})", {7, 8}, 9, "from the counter"},
      {R"({"controls":[{},{"controlId":1},{},{"controlId":3},{}]})",
       {2, 1, 4, 3, 5},
       6,
       "around those that are taken, also by later ones"},
      {R"({"controls":[{"controlId":40},{}]})", {40, 1}, 41, "the counter stays above all"},
      {R"({"nextControlId":3,"controls":[{"controlId":40}]})", {40}, 3, "unless it is given"},
      {R"({"nextControlId":3,"controls":[{"controlId":3},{}]})", {3, 4}, 5, "a taken counter"},
      {R"({"controls":[{"controlId":4294967295},{}]})", {4294967295, 1}, 2, "the highest of all"},
      {R"({"controls":[{"controlId":0},{}]})", {0, 1}, 2, "zero is a number like others"},
  };
  for (const auto& c : kCases) {
    const Parsed read(c.json);
    EXPECT_EQ(read.Ids(), c.ids) << c.why;
    EXPECT_EQ(read.profile.nextControlId, c.next) << c.why;
  }
}

TEST(ReadProfile, StepsWinOverText) {
  const Parsed read(R"({"controls":[{"actions":[{"steps":[[66,48,0]],"text":"a"},
    {"text":"<nonsense>","steps":[]}]}]})");
  EXPECT_EQ(JsonSteps(ActionAt(read.At(0), 0).steps), "[[66,48,0]]");
  EXPECT_EQ(ActionAt(read.At(0), 1).steps.count, 0);
}

TEST(ReadProfile, ATextIsParsedUnderItsOwnFlags) {
  EXPECT_EQ(ActionAt(Parsed(R"({"controls":[{"actions":[{"text":"aa"}]}]})").At(0), 0).steps.count,
            2);
  EXPECT_EQ(
      FaultOf(R"({"controls":[{"actions":[{"text":"aa","actionFlags":1}]}]})"),
      "f:1:34: controls[0].actions[0].text: a key can't be there twice when all keys are held "
      "down\n  aa\n   ^\n");
}

TEST(ReadProfile, TextsMayBeBytes) {
  const Parsed read(R"({"profileName":{"bytes":"4dfc"},"deviceName":{"bytes":""},
    "controls":[{"description":{"bytes":"00"},"triggerText":{"bytes":"ff"},
    "actions":[{"text":{"bytes":"61"}}]}]})");
  EXPECT_EQ(Bytes(read.profile.profileName), "M\xFC");
  EXPECT_EQ(Bytes(read.At(0).description), std::string(1, '\0'));
  EXPECT_EQ(JsonSteps(ActionAt(read.At(0), 0).steps), "[[65,30,0]]");
}

TEST(ReadProfile, BuildsTheDispatchListHeaviestFirst) {
  const Parsed read(R"({"controls":[{"buttonMask":1},{"buttonMask":3}]})");
  ASSERT_EQ(read.profile.DispatchList.count, 2);
  EXPECT_EQ(read.profile.DispatchList.At(0)->value->controlId, 2U);
  EXPECT_EQ(read.profile.DispatchList.At(0)->value->actionsBorrowed, 1);
  EXPECT_EQ(read.profile.DispatchList.At(1)->value->controlId, 1U);
}

const struct {
  const char* json;
  const char* fault;
} kFaults[] = {
    {"[]", "f:1:1: not an object\n"},
    {"{\"profilename\":\"x\"}", "f:1:16: profilename: unknown member\n"},
    {"{\"profileName\":5}", "f:1:16: profileName: not a text\n"},
    {"{\"nextControlId\":4294967296}",
     "f:1:18: nextControlId: not a whole number from 0 to 4294967295\n"},
    {"{\"deviceName\":null}", "f:1:15: deviceName: not a text\n"},
    {"{\n\"pollInterval\":-5}", "f:2:16: pollInterval: not a whole number from 0 to 4294967295\n"},
    {"{\"pollInterval\":\"5\"}", "f:1:17: pollInterval: not a number\n"},
    {"{\"deviceGuid\":\"0123\"}", "f:1:15: deviceGuid: not 32 hex digits\n"},
    {"{\"deviceGuid\":\"0123456789abcdef0123456789abcdeg\"}",
     "f:1:15: deviceGuid: not 32 hex digits\n"},
    {"{\"deviceGuid\":5}", "f:1:15: deviceGuid: not 32 hex digits\n"},
    {"{\"mouse\":[]}", "f:1:10: mouse: not an object\n"},
    {"{\"mouse\":{\"leftmask\":1}}", "f:1:22: mouse.leftmask: unknown member\n"},
    {"{\"mouse\":{\"acceleration\":1.5}}",
     "f:1:26: mouse.acceleration: not a whole number of 32 bits\n"},
    {"{\"mouse\":{\"movementSensitivity\":\"15\"}}",
     "f:1:33: mouse.movementSensitivity: not a number\n"},
    {"{\"mouse\":{\"movementDamper\":{}}}", "f:1:28: mouse.movementDamper: not a number\n"},
    {"{\"mouse\":{\"wheelSensitivity\":[]}}", "f:1:30: mouse.wheelSensitivity: not a number\n"},
    {"{\"mouse\":{\"wheelDamper\":true}}", "f:1:25: mouse.wheelDamper: not a number\n"},
    {"{\"mouse\":{\"leftButton\":65536}}",
     "f:1:24: mouse.leftButton: not a whole number from 0 to 65535\n"},
    {"{\"mouse\":{\"middleButton\":-1}}",
     "f:1:26: mouse.middleButton: not a whole number from 0 to 65535\n"},
    {"{\"mouse\":{\"rightButton\":\"B1\"}}", "f:1:25: mouse.rightButton: not a number\n"},
    {"{\"mouse\":{\"leftMask\":\"B1\"}}", "f:1:22: mouse.leftMask: not a mask such as \"0x5\"\n"},
    {"{\"mouse\":{\"middleMask\":[1]}}", "f:1:24: mouse.middleMask: not a number\n"},
    {"{\"mouse\":{\"rightMask\":-1}}",
     "f:1:23: mouse.rightMask: not a whole number from 0 to 18446744073709551615\n"},
    {"{\"mouse\":{\"mouseX\":3}}", "f:1:20: mouse.mouseX: not an object\n"},
    {"{\"mouse\":{\"mouseY\":{\"kind\":65536}}}",
     "f:1:28: mouse.mouseY.kind: not a whole number from 0 to 65535\n"},
    {"{\"mouse\":{\"mouseWheel\":{\"kind\":1,\"value\":4}}}",
     "f:1:42: mouse.mouseWheel.value: unknown member\n"},
    {"{\"mouse\":{\"mouseAlwaysActive\":1}}",
     "f:1:31: mouse.mouseAlwaysActive: neither true nor false\n"},
    {"{\"controls\":{}}", "f:1:13: controls: not a list\n"},
    {"{\"controls\":null}", "f:1:13: controls: not a list\n"},
    {"{\"controls\":[{},\n7]}", "f:2:1: controls[1]: not an object\n"},
    {"{\"controls\":[{\"controlId\":-1}]}",
     "f:1:27: controls[0].controlId: not a whole number from 0 to 4294967295\n"},
    {"{\"controls\":[{\"description\":1}]}", "f:1:29: controls[0].description: not a text\n"},
    {"{\"controls\":[{\"activateOnPress\":1}]}",
     "f:1:33: controls[0].activateOnPress: neither true nor false\n"},
    {"{\"controls\":[{\"triggerOption\":\"true\"}]}",
     "f:1:31: controls[0].triggerOption: neither true nor false\n"},
    {"{\"controls\":[{},{},{\"buttonMask\":true}]}",
     "f:1:34: controls[2].buttonMask: not a number\n"},
    {"{\"controls\":[{\"triggerItems\":{}}]}", "f:1:30: controls[0].triggerItems: not a list\n"},
    {"{\"controls\":[{\"triggerItems\":[8]}]}",
     "f:1:31: controls[0].triggerItems[0]: not an object\n"},
    {"{\"controls\":[{\"triggerItems\":[{},{\"index\":-1}]}]}",
     "f:1:43: controls[0].triggerItems[1].index: not a whole number from 0 to 65535\n"},
    {"{\"controls\":[{\"triggerItems\":[{\"direction\":2}]}]}",
     "f:1:44: controls[0].triggerItems[0].direction: unknown member\n"},
    {"{\"controls\":[{\"triggerText\":5}]}", "f:1:29: controls[0].triggerText: not a text\n"},
    {"{\"controls\":[{\"toggleMouseControls\":0}]}",
     "f:1:37: controls[0].toggleMouseControls: neither true nor false\n"},
    {"{\"controls\":[{\"repeatEnabled\":null}]}",
     "f:1:31: controls[0].repeatEnabled: neither true nor false\n"},
    {"{\"controls\":[{\"repeatDelay\":0.5}]}",
     "f:1:29: controls[0].repeatDelay: not a whole number from 0 to 4294967295\n"},
    {"{\"controls\":[{\"repeatSpeed\":\"fast\"}]}",
     "f:1:29: controls[0].repeatSpeed: not a number\n"},
    {"{\"controls\":[{\"keyHoldTime\":4294967296}]}",
     "f:1:29: controls[0].keyHoldTime: not a whole number from 0 to 4294967295\n"},
    {"{\"controls\":[{\"keyReleasePause\":[]}]}",
     "f:1:33: controls[0].keyReleasePause: not a number\n"},
    {"{\"controls\":[{\"actions\":\"a\"}]}", "f:1:25: controls[0].actions: not a list\n"},
    {"{\"controls\":[{\"actions\":[\"a\"]}]}", "f:1:26: controls[0].actions[0]: not an object\n"},
    {"{\"controls\":[{\"actions\":[{\"actionFlags\":-1}]}]}",
     "f:1:41: controls[0].actions[0].actionFlags: not a whole number from 0 to 4294967295\n"},
    {"{\"controls\":[{\"actions\":[{\"steps\":5}]}]}",
     "f:1:35: controls[0].actions[0].steps: not a list\n"},
    {"{\"controls\":[{\"actions\":[{\"steps\":[[65,30]]}]}]}",
     "f:1:36: controls[0].actions[0].steps[0]: not a step such as [65,30,0]\n"},
    {"{\"controls\":[{\"actions\":[{\"steps\":[[65,30,0,0]]}]}]}",
     "f:1:36: controls[0].actions[0].steps[0]: not a step such as [65,30,0]\n"},
    {"{\"controls\":[{\"actions\":[{\"steps\":[[1,2,3],[65,30,256]]}]}]}",
     "f:1:51: controls[0].actions[0].steps[1][2]: not a whole number from 0 to 255\n"},
    {"{\"controls\":[{\"actions\":[{\"steps\":[[\"a\",30,0]]}]}]}",
     "f:1:37: controls[0].actions[0].steps[0][0]: not a number\n"},
    {"{\"controls\":[{\"actions\":[{\"steps\":[],\"text\":7}]}]}",
     "f:1:45: controls[0].actions[0].text: not a text\n"},
    {"{\"controls\":[{\"actions\":[{\"keys\":\"a\"}]}]}",
     "f:1:34: controls[0].actions[0].keys: unknown member\n"},
    {"{\"controls\":[{},\n{\"actions\":[{\"text\":\"a<Foo>\"}]}]}",
     "f:2:21: controls[1].actions[0].text: there is no key <Foo> (write << for the character "
     "itself)\n  a<Foo>\n   ^\n"},
};

TEST(ReadProfile, NamesLineAndMemberOfWhatIsWrong) {
  for (const auto& c : kFaults) EXPECT_EQ(FaultOf(c.json), c.fault) << c.json;
}

TEST(ReadProfile, HasRoomForTenThousandControls) {
  const auto profileOf = [](int count) {
    std::string json = "{\"controls\":[{}";
    for (int i = 1; i < count; ++i) json += ",{}";
    return json + "]}";
  };
  EXPECT_EQ(FaultOf(profileOf(10'001)), "f:1:13: controls: more than 10000\n");
  EXPECT_EQ(FaultOf(profileOf(10'000)), "");
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
  EXPECT_EQ(Bytes(again.profileName), std::string("a\nb\0c", 5));
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
