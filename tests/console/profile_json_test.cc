#include "console/profile_json.h"

#include <gtest/gtest.h>

#include "console/json_text.h"
#include "keys/key_action.h"

namespace kelvaro::console {
namespace {

// The fault of a text that is no profile, with what is shown below it.
std::string FaultOf(const std::string& text) {
  Profile profile;
  JsonFault fault;
  if (ReadProfile(text, &profile, &fault)) return "";
  return fault.Text("f") + "\n" + fault.detail;
}

struct Read {
  explicit Read(const std::string& text) {
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

std::string ItemText(const TriggerItem& item) {
  return std::to_string(item.kind) + " " + std::to_string(item.index) + " " +
         std::to_string(item.value);
}

TEST(ReadProfile, ReadsEveryMember) {
  const Read read(R"({"profileName":"Walk","nextControlId":9,"deviceName":"Pad","pollInterval":7,
    "deviceGuid":"0123456789abcdefFEDCBA9876543210",
    "mouse":{"acceleration":-4,"movementSensitivity":16,"movementDamper":6,"wheelSensitivity":17,
      "wheelDamper":8,"leftButton":2,"middleButton":3,"rightButton":4,
      "leftMask":"0x4","middleMask":8,"rightMask":"0xffffffff80000000",
      "mouseX":{"kind":3,"index":1},"mouseY":{"kind":9,"index":2},
      "mouseWheel":{"kind":7,"index":3},"mouseAlwaysActive":true},
    "controls":[{"controlId":5,"description":"Jump","activateOnPress":false,"triggerOption":false,
      "buttonMask":"0x8000000000000005","triggerItems":[{"kind":8,"index":1,"value":2},
      {"kind":0,"index":3,"value":1}],"triggerText":"whatever","toggleMouseControls":true,
      "repeatEnabled":true,"repeatDelay":600,"repeatSpeed":60,"keyHoldTime":20,
      "keyReleasePause":10,"actions":[{"actionFlags":3,"steps":[[65,30,0],[255,211,128]]},
      {"text":"<Ctrl>c"}]}]})");
  const Profile& profile = read.profile;
  EXPECT_EQ(Bytes(profile.profileName), "Walk");
  EXPECT_EQ(profile.nextControlId, 9U);
  EXPECT_EQ(Bytes(profile.deviceName), "Pad");
  EXPECT_EQ(profile.pollInterval, 7U);
  EXPECT_TRUE(profile.deviceGuid ==
              (platform::GUID{
                  0x01234567, 0x89AB, 0xCDEF, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}}));
  EXPECT_EQ(profile.acceleration, -4);
  EXPECT_EQ(profile.movementSensitivity, 16);
  EXPECT_EQ(profile.movementDamper, 6);
  EXPECT_EQ(profile.wheelSensitivity, 17);
  EXPECT_EQ(profile.wheelDamper, 8);
  EXPECT_EQ(profile.leftButton, 2);
  EXPECT_EQ(profile.middleButton, 3);
  EXPECT_EQ(profile.rightButton, 4);
  EXPECT_EQ(profile.leftMask, 4U);
  EXPECT_EQ(profile.middleMask, 8U);
  EXPECT_EQ(profile.rightMask, 0xFFFFFFFF80000000U);
  // The third word is where the field lies: the banks begin at 0, 176, 208 and 240, the hats at 32.
  EXPECT_EQ(ItemText(profile.mouseX), "3 1 188");
  EXPECT_EQ(ItemText(profile.mouseY), "9 2 40");
  EXPECT_EQ(ItemText(profile.mouseWheel), "7 3 268");
  EXPECT_TRUE(profile.mouseAlwaysActive);

  ASSERT_EQ(profile.controls.count, 1);
  const Control& control = read.At(0);
  EXPECT_EQ(control.controlId, 5U);
  EXPECT_EQ(Bytes(control.description), "Jump");
  EXPECT_EQ(control.activateOnPress, 0);
  EXPECT_EQ(control.triggerOption, 0);
  EXPECT_EQ(control.buttonMask, 0x8000000000000005U);
  EXPECT_EQ(control.buttonCount, 3U);
  ASSERT_EQ(control.triggerItems.count, 2);
  EXPECT_EQ(ItemText(*control.triggerItems.At(0)->value), "8 1 2");
  EXPECT_EQ(ItemText(*control.triggerItems.At(1)->value), "0 3 1");
  EXPECT_EQ(control.toggleMouseControls, 1);
  EXPECT_EQ(control.repeatEnabled, 1);
  EXPECT_EQ(control.repeatDelay, 600U);
  EXPECT_EQ(control.repeatSpeed, 60U);
  EXPECT_EQ(control.keyHoldTime, 20U);
  EXPECT_EQ(control.keyReleasePause, 10U);
  EXPECT_EQ(control.actionsBorrowed, 0);
  ASSERT_EQ(control.actions.count, 2);
  EXPECT_EQ(ActionAt(control, 0).actionFlags, 3U);
  EXPECT_EQ(JsonSteps(ActionAt(control, 0).steps), "[[65,30,0],[255,211,128]]");
  EXPECT_EQ(ActionAt(control, 1).actionFlags, 0U);
  EXPECT_EQ(JsonSteps(ActionAt(control, 1).steps), "[[67,46,2]]");
}

TEST(ReadProfile, AMemberLeftOutHasItsDefault) {
  const Read read(R"({"mouse":{},"controls":[{"actions":[{}],"triggerItems":[{}]}]})");
  const Profile& profile = read.profile;
  EXPECT_TRUE(profile.profileName.IsEmpty());
  EXPECT_TRUE(profile.deviceName.IsEmpty());
  EXPECT_EQ(profile.pollInterval, 5U);
  EXPECT_TRUE(profile.deviceGuid == platform::GUID{});
  EXPECT_EQ(profile.acceleration, 0);
  EXPECT_EQ(profile.movementSensitivity, 15);
  EXPECT_EQ(profile.movementDamper, 5);
  EXPECT_EQ(profile.wheelSensitivity, 15);
  EXPECT_EQ(profile.wheelDamper, 5);
  EXPECT_EQ(profile.leftButton, 0);
  EXPECT_EQ(profile.leftMask, 0U);
  EXPECT_EQ(profile.middleMask, 0U);
  EXPECT_EQ(profile.rightMask, 0U);
  EXPECT_EQ(ItemText(profile.mouseX), "11 0 0");
  EXPECT_EQ(ItemText(profile.mouseY), "11 0 0");
  EXPECT_EQ(ItemText(profile.mouseWheel), "11 0 0");
  EXPECT_FALSE(profile.mouseAlwaysActive);
  const Control& control = read.At(0);
  EXPECT_EQ(control.controlId, 1U);
  EXPECT_TRUE(control.description.IsEmpty());
  EXPECT_EQ(control.activateOnPress, 1);
  EXPECT_EQ(control.triggerOption, 1);
  EXPECT_EQ(control.buttonMask, 0U);
  EXPECT_EQ(control.toggleMouseControls, 0);
  EXPECT_EQ(control.repeatEnabled, 0);
  EXPECT_EQ(control.repeatDelay, 500U);
  EXPECT_EQ(control.repeatSpeed, 50U);
  EXPECT_EQ(control.keyHoldTime, 0U);
  EXPECT_EQ(control.keyReleasePause, 0U);
  EXPECT_EQ(ItemText(*control.triggerItems.At(0)->value), "0 0 0");
  EXPECT_EQ(ActionAt(control, 0).actionFlags, 0U);
  EXPECT_EQ(ActionAt(control, 0).steps.count, 0);
  EXPECT_EQ(profile.nextControlId, 2U);

  EXPECT_EQ(Read("{}").profile.controls.count, 0);
  EXPECT_EQ(Read("{}").profile.nextControlId, 1U);
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
    const Read read(c.json);
    EXPECT_EQ(read.Ids(), c.ids) << c.why;
    EXPECT_EQ(read.profile.nextControlId, c.next) << c.why;
  }
}

TEST(ReadProfile, StepsWinOverText) {
  const Read read(R"({"controls":[{"actions":[{"steps":[[66,48,0]],"text":"a"},
    {"text":"<nonsense>","steps":[]}]}]})");
  EXPECT_EQ(JsonSteps(ActionAt(read.At(0), 0).steps), "[[66,48,0]]");
  EXPECT_EQ(ActionAt(read.At(0), 1).steps.count, 0);
}

TEST(ReadProfile, ATextIsParsedUnderItsOwnFlags) {
  EXPECT_EQ(ActionAt(Read(R"({"controls":[{"actions":[{"text":"aa"}]}]})").At(0), 0).steps.count,
            2);
  EXPECT_EQ(FaultOf(R"({"controls":[{"actions":[{"text":"aa","actionFlags":1}]}]})"),
            "f:1: controls[0].actions[0].text: a key can't be there twice when all keys are held "
            "down\n  aa\n   ^\n");
}

TEST(ReadProfile, TextsMayBeBytes) {
  const Read read(R"({"profileName":{"bytes":"4dfc"},"deviceName":{"bytes":""},
    "controls":[{"description":{"bytes":"00"},"triggerText":{"bytes":"ff"},
    "actions":[{"text":{"bytes":"61"}}]}]})");
  EXPECT_EQ(Bytes(read.profile.profileName), "M\xFC");
  EXPECT_EQ(Bytes(read.At(0).description), std::string(1, '\0'));
  EXPECT_EQ(JsonSteps(ActionAt(read.At(0), 0).steps), "[[65,30,0]]");
}

TEST(ReadProfile, BuildsTheDispatchListHeaviestFirst) {
  const Read read(R"({"controls":[{"buttonMask":1},{"buttonMask":3}]})");
  ASSERT_EQ(read.profile.DispatchList.count, 2);
  EXPECT_EQ(read.profile.DispatchList.At(0)->value->controlId, 2U);
  EXPECT_EQ(read.profile.DispatchList.At(0)->value->actionsBorrowed, 1);
  EXPECT_EQ(read.profile.DispatchList.At(1)->value->controlId, 1U);
}

TEST(ReadProfile, NamesLineAndMemberOfWhatIsWrong) {
  struct {
    const char* json;
    const char* fault;
  } const kCases[] = {
      {"[]", "f:1: not an object\n"},
      {"{\"profilename\":\"x\"}", "f:1: profilename: unknown member\n"},
      {"{\"profileName\":5}", "f:1: profileName: not a text\n"},
      {"{\"nextControlId\":4294967296}",
       "f:1: nextControlId: not a whole number from 0 to 4294967295\n"},
      {"{\"deviceName\":null}", "f:1: deviceName: not a text\n"},
      {"{\n\"pollInterval\":-5}", "f:2: pollInterval: not a whole number from 0 to 4294967295\n"},
      {"{\"pollInterval\":\"5\"}", "f:1: pollInterval: not a number\n"},
      {"{\"deviceGuid\":\"0123\"}", "f:1: deviceGuid: not 32 hex digits\n"},
      {"{\"deviceGuid\":\"0123456789abcdef0123456789abcdeg\"}",
       "f:1: deviceGuid: not 32 hex digits\n"},
      {"{\"deviceGuid\":5}", "f:1: deviceGuid: not 32 hex digits\n"},
      {"{\"mouse\":[]}", "f:1: mouse: not an object\n"},
      {"{\"mouse\":{\"leftmask\":1}}", "f:1: mouse.leftmask: unknown member\n"},
      {"{\"mouse\":{\"acceleration\":1.5}}",
       "f:1: mouse.acceleration: not a whole number of 32 bits\n"},
      {"{\"mouse\":{\"movementSensitivity\":\"15\"}}",
       "f:1: mouse.movementSensitivity: not a number\n"},
      {"{\"mouse\":{\"movementDamper\":{}}}", "f:1: mouse.movementDamper: not a number\n"},
      {"{\"mouse\":{\"wheelSensitivity\":[]}}", "f:1: mouse.wheelSensitivity: not a number\n"},
      {"{\"mouse\":{\"wheelDamper\":true}}", "f:1: mouse.wheelDamper: not a number\n"},
      {"{\"mouse\":{\"leftButton\":65536}}",
       "f:1: mouse.leftButton: not a whole number from 0 to 65535\n"},
      {"{\"mouse\":{\"middleButton\":-1}}",
       "f:1: mouse.middleButton: not a whole number from 0 to 65535\n"},
      {"{\"mouse\":{\"rightButton\":\"B1\"}}", "f:1: mouse.rightButton: not a number\n"},
      {"{\"mouse\":{\"leftMask\":\"B1\"}}", "f:1: mouse.leftMask: not a mask such as \"0x5\"\n"},
      {"{\"mouse\":{\"middleMask\":[1]}}", "f:1: mouse.middleMask: not a number\n"},
      {"{\"mouse\":{\"rightMask\":-1}}",
       "f:1: mouse.rightMask: not a whole number from 0 to 18446744073709551615\n"},
      {"{\"mouse\":{\"mouseX\":3}}", "f:1: mouse.mouseX: not an object\n"},
      {"{\"mouse\":{\"mouseY\":{\"kind\":65536}}}",
       "f:1: mouse.mouseY.kind: not a whole number from 0 to 65535\n"},
      {"{\"mouse\":{\"mouseWheel\":{\"kind\":1,\"value\":4}}}",
       "f:1: mouse.mouseWheel.value: unknown member\n"},
      {"{\"mouse\":{\"mouseAlwaysActive\":1}}",
       "f:1: mouse.mouseAlwaysActive: neither true nor false\n"},
      {"{\"controls\":{}}", "f:1: controls: not a list\n"},
      {"{\"controls\":null}", "f:1: controls: not a list\n"},
      {"{\"controls\":[{},\n7]}", "f:2: controls[1]: not an object\n"},
      {"{\"controls\":[{\"controlId\":-1}]}",
       "f:1: controls[0].controlId: not a whole number from 0 to 4294967295\n"},
      {"{\"controls\":[{\"description\":1}]}", "f:1: controls[0].description: not a text\n"},
      {"{\"controls\":[{\"activateOnPress\":1}]}",
       "f:1: controls[0].activateOnPress: neither true nor false\n"},
      {"{\"controls\":[{\"triggerOption\":\"true\"}]}",
       "f:1: controls[0].triggerOption: neither true nor false\n"},
      {"{\"controls\":[{},{},{\"buttonMask\":true}]}",
       "f:1: controls[2].buttonMask: not a number\n"},
      {"{\"controls\":[{\"triggerItems\":{}}]}", "f:1: controls[0].triggerItems: not a list\n"},
      {"{\"controls\":[{\"triggerItems\":[8]}]}",
       "f:1: controls[0].triggerItems[0]: not an object\n"},
      {"{\"controls\":[{\"triggerItems\":[{},{\"index\":-1}]}]}",
       "f:1: controls[0].triggerItems[1].index: not a whole number from 0 to 65535\n"},
      {"{\"controls\":[{\"triggerItems\":[{\"direction\":2}]}]}",
       "f:1: controls[0].triggerItems[0].direction: unknown member\n"},
      {"{\"controls\":[{\"triggerText\":5}]}", "f:1: controls[0].triggerText: not a text\n"},
      {"{\"controls\":[{\"toggleMouseControls\":0}]}",
       "f:1: controls[0].toggleMouseControls: neither true nor false\n"},
      {"{\"controls\":[{\"repeatEnabled\":null}]}",
       "f:1: controls[0].repeatEnabled: neither true nor false\n"},
      {"{\"controls\":[{\"repeatDelay\":0.5}]}",
       "f:1: controls[0].repeatDelay: not a whole number from 0 to 4294967295\n"},
      {"{\"controls\":[{\"repeatSpeed\":\"fast\"}]}",
       "f:1: controls[0].repeatSpeed: not a number\n"},
      {"{\"controls\":[{\"keyHoldTime\":4294967296}]}",
       "f:1: controls[0].keyHoldTime: not a whole number from 0 to 4294967295\n"},
      {"{\"controls\":[{\"keyReleasePause\":[]}]}",
       "f:1: controls[0].keyReleasePause: not a number\n"},
      {"{\"controls\":[{\"actions\":\"a\"}]}", "f:1: controls[0].actions: not a list\n"},
      {"{\"controls\":[{\"actions\":[\"a\"]}]}", "f:1: controls[0].actions[0]: not an object\n"},
      {"{\"controls\":[{\"actions\":[{\"actionFlags\":-1}]}]}",
       "f:1: controls[0].actions[0].actionFlags: not a whole number from 0 to 4294967295\n"},
      {"{\"controls\":[{\"actions\":[{\"steps\":5}]}]}",
       "f:1: controls[0].actions[0].steps: not a list\n"},
      {"{\"controls\":[{\"actions\":[{\"steps\":[[65,30]]}]}]}",
       "f:1: controls[0].actions[0].steps[0]: not a step such as [65,30,0]\n"},
      {"{\"controls\":[{\"actions\":[{\"steps\":[[65,30,0,0]]}]}]}",
       "f:1: controls[0].actions[0].steps[0]: not a step such as [65,30,0]\n"},
      {"{\"controls\":[{\"actions\":[{\"steps\":[[1,2,3],[65,30,256]]}]}]}",
       "f:1: controls[0].actions[0].steps[1][2]: not a whole number from 0 to 255\n"},
      {"{\"controls\":[{\"actions\":[{\"steps\":[[\"a\",30,0]]}]}]}",
       "f:1: controls[0].actions[0].steps[0][0]: not a number\n"},
      {"{\"controls\":[{\"actions\":[{\"steps\":[],\"text\":7}]}]}",
       "f:1: controls[0].actions[0].text: not a text\n"},
      {"{\"controls\":[{\"actions\":[{\"keys\":\"a\"}]}]}",
       "f:1: controls[0].actions[0].keys: unknown member\n"},
      {"{\"controls\":[{},\n{\"actions\":[{\"text\":\"a<Foo>\"}]}]}",
       "f:2: controls[1].actions[0].text: there is no key <Foo> (write << for the character "
       "itself)\n  a<Foo>\n   ^\n"},
  };
  for (const auto& c : kCases) EXPECT_EQ(FaultOf(c.json), c.fault) << c.json;
}

TEST(ReadProfile, HasRoomForTenThousandControls) {
  const auto profileOf = [](int count) {
    std::string json = "{\"controls\":[{}";
    for (int i = 1; i < count; ++i) json += ",{}";
    return json + "]}";
  };
  EXPECT_EQ(FaultOf(profileOf(10'001)), "f:1: controls: more than 10000\n");
  EXPECT_EQ(FaultOf(profileOf(10'000)), "");
}

}  // namespace
}  // namespace kelvaro::console
