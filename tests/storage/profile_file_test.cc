#include "storage/profile_file.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "keys/key_action.h"
#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

const KeyAction& ActionOf(const Control& control, std::int32_t index = 0) {
  return *dynamic_cast<const KeyAction*>(*control.actions.At(index)->value);
}

Control& ControlOf(const ProfileFile& profile, std::int32_t index = 0) {
  return *profile.controls.At(index)->value;
}

// "41/1e/00 ..." as vk/scan/flags.
std::string StepText(const KeyAction& action) {
  std::string text;
  for (const KeyStep& step : action.steps) {
    if (!text.empty()) text += ' ';
    for (const std::uint8_t byte : {step.vk, step.scan, step.flags}) {
      text += ToHexText(std::string(1, static_cast<char>(byte))) + "/";
    }
    text.pop_back();
  }
  return text;
}

// A Control with what the format asks for, and further lists.
std::string ControlList(std::uint32_t id, const Chunks& lists) {
  const Chunks head = {Field("does it"), Field(Big(id, 4)), Field(std::string(1, '\0')),
                       TriggerList(1)};
  return List(5, Join(head, lists));
}

std::string ActionList(const std::string& oldTimings, const std::string& keys,
                       const std::string& scans, std::uint32_t flags = 0) {
  return List(7, {Field(oldTimings), Field(keys), List(13, {Field(scans)}), NumberField(flags)});
}

const std::string kTimings = List(14, {Field(Timings(0, 500, 50, 0, 0))});

class ProfileFileTest : public ProfileTest {};

// ---- The bytes

TEST_F(ProfileFileTest, TheSmallestProfileIsThese103Bytes) {
  const std::string bytes = FromHex(
      "58424600 01"
      "0001 00000054 00000000 00000003"
      "0001 00000012 00000001 00000001 0002 0000000C 4576656E7450726F66696C65"
      "0001 00000007 00000002 00000001 0002 00000001 01"
      "0001 00000011 00000003 00000002 0002 00000001 41 0002 00000004 00000001");
  ASSERT_EQ(bytes.size(), 103u);
  EXPECT_EQ(ToHexText(SmallProfile("A")), ToHexText(bytes));
  ProfileFile profile;
  EXPECT_TRUE(LoadBytes(&profile, bytes));
  EXPECT_EQ(Bytes(profile.profileName), "A");
  EXPECT_EQ(profile.nextControlId, 1u);
  EXPECT_EQ(profile.controls.count, 0);
}

TEST_F(ProfileFileTest, AnEmptyProfileIsSavedWithAllItsLists) {
  ProfileFile profile;
  profile.profileName = "A";
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(
      ToHexText(*Disk().FileBytes(PathOf("A.idprof"))),
      ToHexText(FromHex("58424600 01"
                        "0001 000000E9 00000000 00000006"
                        "0001 00000012 00000001 00000001 0002 0000000C 4576656E7450726F66696C65"
                        "0001 00000007 00000002 00000001 0002 00000001 01"
                        "0001 00000011 00000003 00000002 0002 00000001 41 0002 00000004 00000001"
                        "0001 00000026 0000000B 00000003 0002 00000000 0002 00000004 00000005"
                        "0002 00000010 00000000 0000 0000 0000000000000000"
                        "0001 00000045 0000000C 00000001 0002 0000003F"
                        "00000000 0000000F 00000005 0000 0000 0000"
                        "0000000000000000 0000000000000000 0000000000000000"
                        "000B 0000 000B 0000 000B 0000 00 0000000F 00000005"
                        "0001 00000000 00000004 00000000")));
}

TEST_F(ProfileFileTest, TheSmallestProfileAndItsSavedFormLoadToTheSameState) {
  ProfileFile small;
  ASSERT_TRUE(LoadBytes(&small, SmallProfile("A")));
  ASSERT_TRUE(small.Save());
  const std::string saved = *Disk().FileBytes(PathOf("A.idprof"));
  EXPECT_GT(saved.size(), 103u);
  ProfileFile again;
  ASSERT_TRUE(again.Load(TextOf(PathOf("A.idprof"))));
  EXPECT_EQ(Bytes(again.profileName), "A");
  EXPECT_EQ(again.nextControlId, 1u);
  EXPECT_TRUE(again.deviceName.IsEmpty());
  EXPECT_EQ(again.pollInterval, 5u);
  EXPECT_EQ(again.controls.count, 0);
  ASSERT_TRUE(again.Save());
  EXPECT_EQ(*Disk().FileBytes(PathOf("A.idprof")), saved);
}

// Every number different, so that no two can stand in each other's place.
void FillEverything(ProfileFile* profile) {
  profile->profileName = "Every list";
  profile->nextControlId = 0x01020304;
  profile->deviceName = "Pad \xE9";
  profile->pollInterval = 0x11121314;
  profile->deviceGuid = {
      0x21222324, 0x3132, 0x4142, {0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58}};
  profile->acceleration = 0x61626364;
  profile->movementSensitivity = 33;
  profile->movementDamper = -2;
  profile->leftButton = 0x0102;
  profile->middleButton = 0x0304;
  profile->rightButton = 0x0506;
  profile->leftMask = 0x0102030405060708;
  profile->middleMask = 0x1112131415161718;
  profile->rightMask = 0x2122232425262728;
  profile->mouseX = TriggerItem{input_kind::kAxisX, 2, 0xAAAA};
  profile->mouseY = TriggerItem{input_kind::kPovVertical, 3, 0xAAAA};
  profile->mouseWheel = TriggerItem{input_kind::kSliderB, 1, 0xAAAA};
  profile->mouseAlwaysActive = true;
  profile->wheelSensitivity = 44;
  profile->wheelDamper = 55;

  profile->controls.AddTail(Control());
  Control& control = *profile->controls.tail->value;
  control.description = "jump";
  control.controlId = 0x0A0B0C0D;
  control.toggleMouseControls = 1;
  control.activateOnPress = 0;
  control.SetButtonMask(0x8000000000000005);
  control.triggerOption = 0;
  control.triggerItems.AddTail({1, 2, 3});
  control.triggerItems.AddTail({0x0405, 0x0607, 0x0809});
  control.repeatEnabled = 1;
  control.repeatDelay = 0x21222324;
  control.repeatSpeed = 0x31323334;
  control.keyHoldTime = 0x41424344;
  control.keyReleasePause = 0x51525354;
  auto* action = new KeyAction;
  action->actionFlags = 0x80000001;
  action->steps.AddTail({0x41, 0x1E, 0x01});
  action->steps.AddTail({0x42, 0x30, 0x80});
  control.actions.AddTail(action);
  control.actions.AddTail(new KeyAction);
}

const char kEverything[] =
    "58424600 01"
    "0001 0000020B 00000000 00000006"
    // The root holds lists of 32, 21, 40, 57, 83 and 290 bytes, their headers included.
    "0001 00000012 00000001 00000001 0002 0000000C 4576656E7450726F66696C65"
    "0001 00000007 00000002 00000001 0002 00000001 01"
    "0001 0000001A 00000003 00000002 0002 0000000A 4576657279206C697374 0002 00000004 01020304"
    // 11: 6 + 5, 6 + 4, 6 + 16
    "0001 0000002B 0000000B 00000003 0002 00000005 50616420E9 0002 00000004 11121314"
    "0002 00000010 21222324 3132 4142 5152535455565758"
    // 12
    "0001 00000045 0000000C 00000001 0002 0000003F"
    "61626364 00000021 FFFFFFFE 0102 0304 0506"
    "0102030405060708 1112131415161718 2122232425262728"
    "0000 0002 0009 0003 0007 0001 01 0000002C 00000037"
    // 4 with one list 5: 27 bytes of fields, and lists of 54, 75, 69 and 37
    "0001 00000114 00000004 00000001"
    "0001 00000106 00000005 00000007"
    "0002 00000004 6A756D70 0002 00000004 0A0B0C0D 0002 00000001 01"
    // 6: 16 + 12 + 12
    "0001 00000028 00000006 00000003 0002 0000000A 00 8000000000000005 00"
    "0002 00000006 0001 0002 0003 0002 00000006 0405 0607 0809"
    // 7: 19, 10, 14 + 8, 10; then one without steps
    "0001 0000003D 00000007 00000004 0002 0000000D 01 21222324 31323334 41424344"
    "0002 00000004 4101 4280 0001 00000008 0000000D 00000001 0002 00000002 1E30"
    "0005 00000004 80000001"
    "0001 00000037 00000007 00000004 0002 0000000D 01 21222324 31323334 41424344"
    "0002 00000000 0001 00000006 0000000D 00000001 0002 00000000"
    "0005 00000004 00000000"
    // 14
    "0001 00000017 0000000E 00000001 0002 00000011 01 21222324 31323334 41424344 51525354";

TEST_F(ProfileFileTest, WritesEveryListByteForByte) {
  ProfileFile profile;
  FillEverything(&profile);
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(ToHexText(*Disk().FileBytes(PathOf("Every list.idprof"))),
            ToHexText(FromHex(kEverything)));
}

TEST_F(ProfileFileTest, ReadsEveryListMemberByMember) {
  ProfileFile expected;
  FillEverything(&expected);
  // Where the input lies in a state isn't stored.
  expected.mouseX = MouseInput(input_kind::kAxisX, 2);
  expected.mouseY = MouseInput(input_kind::kPovVertical, 3);
  expected.mouseWheel = MouseInput(input_kind::kSliderB, 1);
  expected.RebuildDispatchList();
  ProfileFile profile;
  ASSERT_TRUE(LoadBytes(&profile, FromHex(kEverything)));
  ExpectSameProfile(profile, expected);
  const Control& control = ControlOf(profile);
  EXPECT_EQ(ActionOf(control).actionType, 1u);
  // Run-time members are never stored.
  EXPECT_EQ(control.triggerArmed, 0);
  EXPECT_EQ(control.triggerSpoiled, 0);
  EXPECT_EQ(control.triggerDown, 0);
  EXPECT_EQ(control.repeatStarted, 0);
  EXPECT_EQ(control.repeatLastTick, 0u);
}

TEST_F(ProfileFileTest, AFieldThatCantBeWrittenIsToldWhicheverItIsAndTheRestIsWritten) {
  class Refusing : public ProfileFile {
   public:
    bool WriteField(std::uint16_t type, const ByteString& data) override {
      return ++written != refused && ProfileFile::WriteField(type, data);
    }
    int refused = 0;
    int written = 0;
  };
  // Of the lists 1, 2, 3, 11 and 12; of the Control, its Trigger, two actions and its timings.
  constexpr int kFields = 1 + 1 + 2 + 3 + 1 + 3 + 3 + 2 * 4 + 1;
  for (int nth = 0; nth <= kFields; ++nth) {
    Refusing profile;
    FillEverything(&profile);
    profile.refused = nth;
    EXPECT_EQ(profile.Save(), nth == 0) << nth;
    EXPECT_EQ(profile.written, kFields) << nth;
  }
}

TEST_F(ProfileFileTest, FlagsAreWrittenAs0And1AndAnEmptyDescriptionAsAnEmptyField) {
  ProfileFile profile;
  profile.profileName = "F";
  Control control;
  control.toggleMouseControls = 7;
  control.activateOnPress = 8;
  control.triggerOption = 9;
  control.repeatEnabled = 10;
  profile.controls.AddTail(control);
  ASSERT_TRUE(profile.Save());
  const std::string bytes = *Disk().FileBytes(PathOf("F.idprof"));
  EXPECT_NE(bytes.find(Field("") + Field(Big(0, 4)) + Field("\x01") +
                       List(6, {Field(TriggerField(1, 0, 1))})),
            std::string::npos);
  EXPECT_NE(bytes.find(List(14, {Field(Timings(1, 500, 50, 0, 0))})), std::string::npos);
  ASSERT_TRUE(profile.Load(TextOf(PathOf("F.idprof"))));
  ASSERT_EQ(profile.controls.count, 1);
  EXPECT_TRUE(ControlOf(profile).description.IsEmpty());
}

TEST_F(ProfileFileTest, NameAndDeviceMayHoldAnyBytesZeroAmongThem) {
  const std::string odd("a\0b\x80\xFF\n", 6);
  ProfileFile profile;
  profile.profileName = TextOf(odd);
  profile.deviceName = TextOf(odd);
  ASSERT_TRUE(profile.Save());
  ProfileFile again;
  ASSERT_TRUE(again.Load(TextOf(PathOf("ab.idprof"))));
  EXPECT_EQ(Bytes(again.profileName), odd);
  EXPECT_EQ(Bytes(again.deviceName), odd);
}

// ---- What a file may lack

TEST_F(ProfileFileTest, ListsOneToThreeAreEnoughAndLeaveTheMouseAsItWas) {
  ProfileFile profile;
  ASSERT_TRUE(LoadBytes(&profile, FromHex(kEverything)));
  ASSERT_TRUE(LoadBytes(&profile, SmallProfile("A")));
  EXPECT_EQ(profile.controls.count, 0);
  EXPECT_EQ(profile.DispatchList.count, 0);
  EXPECT_TRUE(profile.deviceName.IsEmpty());
  EXPECT_EQ(profile.deviceGuid.Data1, 0u);
  EXPECT_EQ(profile.pollInterval, 5u);
  EXPECT_EQ(profile.movementSensitivity, 33);
  EXPECT_EQ(profile.leftMask, 0x0102030405060708u);
  EXPECT_EQ(static_cast<TriggerItem>(profile.mouseWheel).kind, input_kind::kSliderB);
  EXPECT_FALSE(profile.mouseAlwaysActive) << "of the mouse settings Clear resets this one";
}

TEST_F(ProfileFileTest, TheOrderOfTheRootsListsDoesntMatter) {
  ProfileFile profile;
  EXPECT_TRUE(LoadBytes(&profile, ProfileBytes({List(4, {ControlList(3, {kTimings})}),
                                                NameList("back to front", 4), TypeList()})));
  EXPECT_EQ(Bytes(profile.profileName), "back to front");
  EXPECT_EQ(profile.controls.count, 1);
}

TEST_F(ProfileFileTest, UnknownListsAreSkippedInTheRootInAListOfControlsAndInAControl) {
  const std::string unknown = List(99, {Field("?"), List(5, {Field("not a Control")})});
  const std::string control = List(
      5, {Field("c"), Field(Big(3, 4)), Field("\x01"), unknown, TriggerList(2), unknown, kTimings});
  ProfileFile profile;
  EXPECT_TRUE(LoadBytes(
      &profile, ProfileBytes({unknown, TypeList(), unknown, NameList("U"), Chunk(77, "a field"),
                              List(4, {unknown, Field("?"), control, unknown})})));
  ASSERT_EQ(profile.controls.count, 1);
  EXPECT_EQ(ControlOf(profile).controlId, 3u);
  EXPECT_EQ(ControlOf(profile).buttonMask, 2u);
}

// ---- Timings

std::string OldControl(const Chunks& lists) {
  return List(5, Join({Field("old"), Field(Big(1, 4)), Field("\x01")}, lists));
}

// "repeat delay speed hold pause".
std::string TimingsOf(const Control& control) {
  std::string text = std::to_string(control.repeatEnabled);
  for (const std::uint32_t ms :
       {control.repeatDelay, control.repeatSpeed, control.keyHoldTime, control.keyReleasePause}) {
    text += " " + std::to_string(ms);
  }
  return text;
}

TEST_F(ProfileFileTest, TimingsAreThoseOfTheirListOrElseOfTheLastAction) {
  const auto action = [](const std::string& timings) { return ActionList(timings, "", ""); };
  const std::string repeating = OldTimings(1, 700, 40, 9);
  const std::string still = OldTimings(0, 800, 30, 8);
  const std::string own = List(14, {Field(Timings(0, 1, 2, 3, 4))});
  const struct {
    const char* why;
    std::string control;
    const char* timings;
  } kRows[] = {
      {"of the action", OldControl({action(repeating)}), "1 700 40 9 0"},
      {"its hold time with repeat only", OldControl({action(still)}), "0 800 30 0 0"},
      {"of the last of two", OldControl({action(repeating), action(still)}), "0 800 30 0 0"},
      {"of the last, which repeats", OldControl({action(still), action(repeating)}),
       "1 700 40 9 0"},
      {"neither list nor actions", OldControl({}), "0 500 50 0 0"},
      {"a list behind the action", OldControl({action(repeating), own}), "0 1 2 3 4"},
      {"a list before it", OldControl({own, action(repeating)}), "0 1 2 3 4"},
      {"the flag and 2 of the delay's bytes",
       OldControl({action(OldTimings(1, 0x01020304, 40, 9).substr(0, 3))}), "1 258 0 0 0"},
      {"a list longer than it needs to be",
       OldControl({List(14, {Field(Timings(1, 1, 2, 3, 4) + "more")})}), "1 1 2 3 4"},
  };
  for (const auto& row : kRows) {
    ProfileFile profile;
    ASSERT_TRUE(LoadControls(&profile, {row.control})) << row.why;
    EXPECT_EQ(TimingsOf(ControlOf(profile)), row.timings) << row.why;
  }
}

// ---- Triggers

// "press mask option" and "kind/index/value" of each item.
std::string TriggerOf(const Control& control) {
  std::string text = std::to_string(control.activateOnPress) + " " +
                     std::to_string(control.buttonMask) + " " +
                     std::to_string(control.triggerOption);
  for (const TriggerItem& item : control.triggerItems) {
    text += " " + std::to_string(item.kind) + "/" + std::to_string(item.index) + "/" +
            std::to_string(item.value);
  }
  return text;
}

TEST_F(ProfileFileTest, ATriggerCutShortReadsAsSmallerNumbersAndKeepsItsOption) {
  const std::string field = TriggerField(0, 0x30, 0);
  const struct {
    const char* why;
    Chunks lists;
    const char* trigger;
  } kRows[] = {
      {"whole", {List(6, {Field(field)})}, "0 48 0"},
      {"an option that is neither 0 nor 1", {List(6, {Field(TriggerField(0, 0x30, 2))})}, "0 48 1"},
      {"without the option", {List(6, {Field(field.substr(0, 9))})}, "0 48 1"},
      {"in the mask", {List(6, {Field(FromHex("01 0102"))})}, "1 258 1"},
      {"in its items",
       {List(6, {Field(field), Field("\x08"), Field(Big(8, 2) + "\x02"), Field("")})},
       "0 48 0 8/0/0 8/2/0 0/0/0"},
      {"a second one, empty, in the place of the first",
       {List(6, {Field(field), Field(Big(1, 6))}), List(6, {Field("")})},
       "0 0 1"},
  };
  for (const auto& row : kRows) {
    ProfileFile profile;
    ASSERT_TRUE(LoadControls(&profile, {OldControl(row.lists)})) << row.why;
    const Control& control = ControlOf(profile);
    EXPECT_EQ(TriggerOf(control), row.trigger) << row.why;
    EXPECT_EQ(control.buttonCount, CountButtons(control.buttonMask)) << row.why;
  }
}

// ---- Actions

TEST_F(ProfileFileTest, EachStepHasItsScanCodeAsFarAsThereAreAny) {
  const struct {
    const char* why;
    std::string keys;
    const char* scans;
    const char* steps;
  } kRows[] = {
      {"fewer than steps", FromHex("4100 4201 4302"), "\x1E", "41/1E/00 42/00/01 43/00/02"},
      {"more than steps", FromHex("4100"), "\x1E\x30\x2E", "41/1E/00"},
      {"an odd last byte of the steps", FromHex("4100 42"), "\x1E\x30", "41/1E/00"},
      {"an odd only byte", "A", "\x1E", ""},
  };
  for (const auto& row : kRows) {
    ProfileFile profile;
    const std::string action = ActionList(OldTimings(0, 0, 0, 0), row.keys, row.scans);
    ASSERT_TRUE(LoadControls(&profile, {OldControl({action})})) << row.why;
    EXPECT_EQ(StepText(ActionOf(ControlOf(profile))), row.steps) << row.why;
  }
}

TEST_F(ProfileFileTest, WithoutScanCodesTheKeysAreParsedAnewAndTheFlagsLost) {
  // The number follows the steps at index 2, where nobody looks for it.
  const std::string action =
      List(7, {Field(OldTimings(0, 0, 0, 0)), Field(FromHex("4100 0D00 4208")), NumberField(1)});
  ProfileFile profile;
  EXPECT_TRUE(LoadControls(&profile, {OldControl({action})}));
  // "a<Enter>B" by the tables of the key language.
  EXPECT_EQ(StepText(ActionOf(ControlOf(profile))), "41/1E/00 0D/1C/00 42/30/08");
  EXPECT_EQ(ActionOf(ControlOf(profile)).actionFlags, 0u);
  EXPECT_EQ(ActionOf(ControlOf(profile)).actionType, 1u);
}

TEST_F(ProfileFileTest, AnEmptyListOfScanCodesIsOneThatIsMissingButKeepsTheFlagsPlace) {
  const std::string action = List(
      7, {Field(OldTimings(0, 0, 0, 0)), Field(FromHex("4100")), List(13, {}), NumberField(3)});
  ProfileFile profile;
  EXPECT_TRUE(LoadControls(&profile, {OldControl({action, kTimings})}));
  EXPECT_EQ(StepText(ActionOf(ControlOf(profile))), "41/1E/00");
  EXPECT_EQ(ActionOf(ControlOf(profile)).actionFlags, 3u);
}

TEST_F(ProfileFileTest, TheFlagsMustBeTheFourthChildAndANumber) {
  const std::string timings = Field(OldTimings(0, 0, 0, 0));
  const std::string keys = Field(FromHex("4100"));
  const std::string scans = List(13, {Field("\x1E")});
  struct {
    const char* name;
    std::string list;
    std::uint32_t flags;
  } const kRows[] = {
      {"in its place", List(7, {timings, keys, scans, NumberField(0x101)}), 0x101},
      {"missing", List(7, {timings, keys, scans}), 0},
      {"of the type of other fields", List(7, {timings, keys, scans, Field(Big(1, 4))}), 0},
      {"of one byte", List(7, {timings, keys, scans, Chunk(5, "\x01")}), 1},
      {"in front of the scan codes", List(7, {timings, keys, NumberField(1), scans}), 0},
      {"behind another field", List(7, {timings, keys, scans, Field("?"), NumberField(1)}), 0},
  };
  for (const auto& row : kRows) {
    ProfileFile profile;
    EXPECT_TRUE(LoadControls(&profile, {OldControl({row.list})})) << row.name;
    EXPECT_EQ(ActionOf(ControlOf(profile)).actionFlags, row.flags) << row.name;
    EXPECT_EQ(StepText(ActionOf(ControlOf(profile))), "41/1E/00") << row.name;
  }
}

TEST_F(ProfileFileTest, TheToggleMayBeMissing) {
  const std::string twoFields = List(5, {Field("a"), Field(Big(1, 4))});
  const std::string empty = List(5, {Field("b"), Field(Big(2, 4)), Field("")});
  const std::string two = List(5, {Field("c"), Field(Big(3, 4)), Field("\x02")});
  ProfileFile profile;
  ASSERT_TRUE(LoadControls(&profile, {twoFields, empty, two}));
  EXPECT_EQ(ControlOf(profile, 0).toggleMouseControls, 0);
  EXPECT_EQ(ControlOf(profile, 1).toggleMouseControls, 0);
  EXPECT_EQ(ControlOf(profile, 2).toggleMouseControls, 1);
}

TEST_F(ProfileFileTest, AControlsListAtTheTogglesPlaceIsRead) {
  const std::string control = List(5, {Field("a"), Field(Big(1, 4)), TriggerList(4)});
  ProfileFile profile;
  ASSERT_TRUE(LoadControls(&profile, {control}));
  EXPECT_EQ(ControlOf(profile).buttonMask, 4u);
  EXPECT_EQ(ControlOf(profile).toggleMouseControls, 0) << "the first byte of the list's id";
}

TEST_F(ProfileFileTest, AnIdCutShortIsASmallerNumber) {
  ProfileFile profile;
  ASSERT_TRUE(LoadControls(&profile, {List(5, {Field("a"), Field("\x01\x02"), Field("\x01")})}));
  EXPECT_EQ(ControlOf(profile).controlId, 0x0102u);
}

// ---- Device and mouse

TEST_F(ProfileFileTest, TheMouseInputsKnowTheirOffsetsAfterALoad) {
  struct {
    std::uint16_t kind;
    std::uint16_t index;
    std::size_t offset;
  } const kRows[] = {
      {0, 0, offsetof(platform::DIJOYSTATE2, lX)},
      {5, 0, offsetof(platform::DIJOYSTATE2, lRz)},
      {1, 1, offsetof(platform::DIJOYSTATE2, lVY)},
      {2, 2, offsetof(platform::DIJOYSTATE2, lAZ)},
      {7, 3, offsetof(platform::DIJOYSTATE2, rglFSlider) + 4},
      {8, 2, offsetof(platform::DIJOYSTATE2, rgdwPOV) + 8},
      {9, 3, offsetof(platform::DIJOYSTATE2, rgdwPOV) + 12},
      {11, 0, 0},
      {0, 4, 0},
  };
  for (const auto& row : kRows) {
    const std::string input = Big(row.kind, 2) + Big(row.index, 2);
    const std::string field = std::string(42, '\0') + input + input + input + std::string(9, '\0');
    ProfileFile profile;
    ASSERT_TRUE(
        LoadBytes(&profile, ProfileBytes({TypeList(), NameList("M"), List(12, {Field(field)})})));
    for (const TriggerItem& item :
         {static_cast<TriggerItem>(profile.mouseX), static_cast<TriggerItem>(profile.mouseY),
          static_cast<TriggerItem>(profile.mouseWheel)}) {
      EXPECT_EQ(item.kind, row.kind);
      EXPECT_EQ(item.index, row.index);
      EXPECT_EQ(item.value, row.offset) << row.kind << " " << row.index;
    }
  }
}

TEST_F(ProfileFileTest, MouseSettingsCutShortReadAs0FromThereOn) {
  const std::string whole = Big(1, 4) + Big(2, 4) + Big(0x0304, 4);
  ProfileFile profile;
  profile.wheelDamper = 44;
  profile.leftMask = 8;
  ASSERT_TRUE(LoadBytes(
      &profile, ProfileBytes({TypeList(), NameList("M"), List(12, {Field(whole.substr(0, 11))})})));
  EXPECT_EQ(profile.acceleration, 1);
  EXPECT_EQ(profile.movementSensitivity, 2);
  EXPECT_EQ(profile.movementDamper, 3);
  EXPECT_EQ(profile.leftMask, 0u);
  EXPECT_EQ(profile.wheelDamper, 0);
  EXPECT_EQ(static_cast<TriggerItem>(profile.mouseX).kind, 0);
}

TEST_F(ProfileFileTest, ADeviceCutShortReadsAsSmallerNumbers) {
  ProfileFile profile;
  ASSERT_TRUE(LoadBytes(
      &profile,
      ProfileBytes({TypeList(), NameList("D"),
                    List(11, {Field("pad"), Field("\x09"), Field(FromHex("01020304 0506 07"))})})));
  EXPECT_EQ(profile.pollInterval, 9u);
  EXPECT_EQ(profile.deviceGuid.Data1, 0x01020304u);
  EXPECT_EQ(profile.deviceGuid.Data2, 0x0506);
  EXPECT_EQ(profile.deviceGuid.Data3, 0x07);
  for (const std::uint8_t byte : profile.deviceGuid.Data4) EXPECT_EQ(byte, 0);
}

TEST_F(ProfileFileTest, ADeviceWithoutItsIdentityIsAFailureButRead) {
  ProfileFile profile;
  EXPECT_FALSE(LoadBytes(&profile, ProfileBytes({TypeList(), NameList("D"),
                                                 List(11, {Field("pad"), Field(Big(20, 4))}),
                                                 List(4, {ControlList(1, {kTimings})})})));
  EXPECT_EQ(Bytes(profile.deviceName), "pad");
  EXPECT_EQ(profile.pollInterval, 20u);
  EXPECT_EQ(profile.controls.count, 0) << "no Controls once something has failed";
}

// ---- Order, counter and dispatch

TEST_F(ProfileFileTest, ALoadEndsWithTheDispatchListHeaviestFirst) {
  const auto withMask = [](std::uint32_t id, std::uint64_t mask) {
    return List(5, {Field(""), Field(Big(id, 4)), Field("\x01"), TriggerList(mask)});
  };
  ProfileFile profile;
  ASSERT_TRUE(LoadControls(&profile, {withMask(1, 1), withMask(2, 7), withMask(3, 3)}));
  ASSERT_EQ(profile.DispatchList.count, 3);
  EXPECT_EQ(profile.DispatchList.At(0)->value->controlId, 2u);
  EXPECT_EQ(profile.DispatchList.At(1)->value->controlId, 3u);
  EXPECT_EQ(profile.DispatchList.At(2)->value->controlId, 1u);
  EXPECT_EQ(profile.DispatchList.At(0)->value->actionsBorrowed, 1);
}

TEST_F(ProfileFileTest, ALoadThatFailsOnTheWayStillRebuildsTheDispatchList) {
  ProfileFile profile;
  EXPECT_FALSE(LoadControls(&profile, {ControlList(1, {List(14, {Field("short")})})}));
  EXPECT_EQ(profile.controls.count, 1);
  EXPECT_EQ(profile.DispatchList.count, 1);
}

// ---- Bad input

TEST_F(ProfileFileTest, WithoutAFileOrATemporaryTheLoadIsFalseAndTheObjectEmpty) {
  ProfileFile profile;
  ASSERT_TRUE(LoadBytes(&profile, FromHex(kEverything)));
  EXPECT_FALSE(profile.Load("/data/none.idprof"));
  EXPECT_TRUE(profile.profileName.IsEmpty());
  EXPECT_EQ(profile.controls.count, 0);
  EXPECT_EQ(profile.DispatchList.count, 0);
  EXPECT_EQ(profile.pollInterval, 5u);
}

TEST_F(ProfileFileTest, AWrongMagicOrRootIsFalseAndTheObjectEmpty) {
  Disk().PutFile("/data/p.idprof.tmp", "unreadable");  // which the first falls back on
  for (const std::string& bytes :
       {Container({TypeList(), NameList("A")}), "XBF" + Big(1, 2) + Field("EventProfile")}) {
    ProfileFile profile;
    profile.profileName = "before";
    EXPECT_FALSE(LoadBytes(&profile, bytes));
    EXPECT_TRUE(profile.profileName.IsEmpty());
  }
}

TEST_F(ProfileFileTest, WithoutTheDocumentTypeNothingIsRead) {
  const std::string kFiles[] = {
      ProfileBytes({RevisionList(), NameList("A"), List(4, {ControlList(1, {})})}),
      ProfileBytes({List(1, {}), NameList("A")}),
      ProfileBytes({List(1, {Field("eventprofile")}), NameList("A")}),
      ProfileBytes({List(1, {Field("EventProfile ")}), NameList("A")}),
      ProfileBytes({List(1, {Field("EventProfil")}), NameList("A")}),
      ProfileBytes({List(1, {Field(std::string("EventProfile\0", 13))}), NameList("A")}),
      ProfileBytes({Field("EventProfile"), NameList("A")}),
      ProfileBytes({}),
  };
  for (const std::string& bytes : kFiles) {
    ProfileFile profile;
    EXPECT_FALSE(LoadBytes(&profile, bytes));
    EXPECT_TRUE(profile.profileName.IsEmpty());
    EXPECT_EQ(profile.controls.count, 0);
    EXPECT_EQ(Disk().OpenHandles(), 0u);
  }
}

TEST_F(ProfileFileTest, WithoutANameListTheRestIsReadButTheControls) {
  const std::string device =
      List(11, {Field("pad"), Field(Big(20, 4)), Field(std::string(16, 'g'))});
  ProfileFile profile;
  EXPECT_FALSE(LoadBytes(&profile, ProfileBytes({TypeList(), RevisionList(), device,
                                                 List(4, {ControlList(1, {kTimings})})})));
  EXPECT_TRUE(profile.profileName.IsEmpty());
  EXPECT_EQ(profile.nextControlId, 1u);
  EXPECT_EQ(Bytes(profile.deviceName), "pad");
  EXPECT_EQ(profile.pollInterval, 20u);
  EXPECT_EQ(profile.controls.count, 0);
}

TEST_F(ProfileFileTest, WithoutACounterTheNameIsReadAndTheResultFalse) {
  ProfileFile profile;
  EXPECT_FALSE(LoadBytes(&profile, ProfileBytes({TypeList(), List(3, {Field("A")})})));
  EXPECT_EQ(Bytes(profile.profileName), "A");
  EXPECT_EQ(profile.nextControlId, 1u);
}

TEST_F(ProfileFileTest, EachOptionalListMayBeMissing) {
  const std::string lists[] = {
      RevisionList(),
      List(11, {Field("pad"), Field(Big(20, 4)), Field(std::string(16, 'g'))}),
      List(12, {Field(std::string(63, '\x01'))}),
      List(4, {ControlList(1, {kTimings})}),
  };
  for (int missing = 0; missing < 4; ++missing) {
    Chunks rest = {TypeList(), NameList("A", 7)};
    for (int i = 0; i < 4; ++i) {
      if (i != missing) rest.push_back(lists[i]);
    }
    ProfileFile profile;
    EXPECT_TRUE(LoadBytes(&profile, ProfileBytes(rest))) << missing;
    EXPECT_EQ(profile.nextControlId, 7u);
    EXPECT_EQ(profile.pollInterval, missing == 1 ? 5u : 20u);
    EXPECT_EQ(profile.movementSensitivity, missing == 2 ? 15 : 0x01010101);
    EXPECT_EQ(profile.mouseAlwaysActive, missing != 2);
    EXPECT_EQ(profile.controls.count, missing == 3 ? 0 : 1);
  }
}

TEST_F(ProfileFileTest, ShortTimingsKeepTheirControlAndEndTheReading) {
  const std::string tooShort = List(14, {Field(Timings(1, 2, 3, 4, 5).substr(0, 16))});
  ProfileFile profile;
  EXPECT_FALSE(LoadControls(
      &profile,
      {ControlList(1, {kTimings}),
       ControlList(2, {tooShort, ActionList(OldTimings(1, 700, 40, 9), FromHex("4100"), "\x1E")}),
       ControlList(3, {kTimings})}));
  ASSERT_EQ(profile.controls.count, 2);
  EXPECT_EQ(ControlOf(profile, 1).controlId, 2u);
  EXPECT_EQ(ControlOf(profile, 1).buttonMask, 1u) << "what stood before was read";
  EXPECT_EQ(ControlOf(profile, 1).actions.count, 0);
  // Nothing of the short field is taken, nor what actions would say in its place.
  EXPECT_EQ(TimingsOf(ControlOf(profile, 1)), "0 500 50 0 0");
}

TEST_F(ProfileFileTest, ShortTimingsDontBringTheActionsOnesBack) {
  const std::string tooShort = List(14, {Field(Timings(1, 2, 3, 4, 5).substr(0, 16))});
  ProfileFile profile;
  EXPECT_FALSE(LoadControls(
      &profile, {ControlList(1, {ActionList(OldTimings(1, 700, 40, 9), "", ""), tooShort})}));
  ASSERT_EQ(profile.controls.count, 1);
  EXPECT_EQ(ControlOf(profile).actions.count, 1);
  EXPECT_EQ(TimingsOf(ControlOf(profile)), "0 500 50 0 0");
}

TEST_F(ProfileFileTest, ATriggerItemThatCantBeReadIsPassedOver) {
  // The file ends in the middle of the last item, which is the last thing in it.
  const std::string trigger =
      List(6, {Field(TriggerField(1, 1, 1)), Field(Big(8, 2) + Big(1, 2) + Big(2, 2)),
               Field(Big(8, 2) + Big(2, 2) + Big(4, 2))});
  const std::string whole =
      ProfileBytes({TypeList(), NameList("T"),
                    List(4, {List(5, {Field("c"), Field(Big(1, 4)), Field("\x01"), trigger})})});
  ProfileFile profile;
  EXPECT_TRUE(LoadBytes(&profile, whole.substr(0, whole.size() - 1)));
  ASSERT_EQ(profile.controls.count, 1);
  ASSERT_EQ(ControlOf(profile).triggerItems.count, 1);
  EXPECT_EQ(ControlOf(profile).triggerItems.At(0)->value->index, 1);
}

// The steps of a load, as a derived class sees them.
class Watcher : public ProfileFile {
 public:
  std::string steps;

 protected:
  bool Enter(std::uint32_t id) override {
    steps += "(" + std::to_string(id) + " ";
    return ProfileFile::Enter(id);
  }
  bool EnterAt(std::uint32_t index) override {
    steps += "[" + std::to_string(index) + " ";
    return ProfileFile::EnterAt(index);
  }
  bool Take(std::uint32_t index, std::uint32_t size, bool needed, ByteString* out) override {
    steps += std::to_string(index) + (size == kAnySize ? "" : ":" + std::to_string(size));
    steps += needed ? "! " : " ";
    return ProfileFile::Take(index, size, needed, out);
  }
  void FieldsTaken(std::uint32_t count) override { steps += "<" + std::to_string(count) + "> "; }
  bool Leave() override {
    steps += ") ";
    return ProfileFile::Leave();
  }
};

TEST_F(ProfileFileTest, AWatcherIsToldEachStepAndWhereTheListsBegin) {
  const std::string action =
      List(7, {Field(OldTimings(0, 1, 2, 3)), Field(FromHex("4100")), List(13, {Field("\x1E")})});
  const std::string control =
      List(5, {Field("c"), Field(Big(1, 4)), Field(Big(0, 1)),
               List(6, {Field(TriggerField(1, 4, 1)), Field(FromHex("0003 0001 0000"))}), action,
               List(14, {Field(Timings(0, 1, 2, 3, 4))})});
  Watcher watcher;
  ASSERT_TRUE(LoadControls(&watcher, {control}));
  EXPECT_EQ(watcher.steps,
            "<0> (1 0! <1> ) (3 0! 1:4! <2> ) (11 (12 (4 <0> "
            "[0 0! 1:4! 2:1 <3> [3 0:10! 1:6 <2> ) [4 0:13! 1! <2> (13 0:1 <1> ) ) [5 0:17! <1> ) "
            ") ) ) ");
}

TEST_F(ProfileFileTest, AFileThatCantBeClosedIsAFailureOfItsLoad) {
  Disk().PutFile("/data/p.idprof", FromHex(kEverything));
  Disk().FailOperation(3);  // behind the opening and the one read
  ProfileFile profile;
  EXPECT_FALSE(profile.Load("/data/p.idprof"));
  EXPECT_EQ(profile.controls.count, 1);
  EXPECT_EQ(profile.DispatchList.count, 1);
}

TEST_F(ProfileFileTest, AControlThatLacksAFieldAnywhereIsAFailureButKept) {
  const std::string noSteps = List(7, {Field(OldTimings(1, 700, 40, 9))});
  for (const std::string& control :
       {List(5, {}), List(5, {Field("only a description")}), OldControl({List(6, {}), kTimings}),
        ControlList(1, {List(14, {})}), ControlList(1, {noSteps, kTimings})}) {
    ProfileFile profile;
    EXPECT_FALSE(LoadControls(&profile, {control, ControlList(2, {kTimings})}));
    ASSERT_EQ(profile.controls.count, 1);
    EXPECT_EQ(ControlOf(profile).actions.count, 0);
  }
}

// ---- Names, and what stays as it is

TEST_F(ProfileFileTest, ReadingTheNameOfAnotherFileLeavesTheLoadedProfileUntouched) {
  ProfileFile profile;
  ASSERT_TRUE(LoadBytes(&profile, FromHex(kEverything)));
  const Control* const control = profile.controls.head->value;
  Disk().PutFile("/data/foreign", Container({TypeList(), NameList("foreign")}));
  Disk().PutFile("/data/other", SmallProfile("other"));
  Disk().PutFile("/data/document", ProfileBytes({List(1, {Field("Letter")}), NameList("letter")}));
  Disk().PutFile("/data/nameless", ProfileBytes({TypeList()}));
  EXPECT_EQ(Bytes(profile.ReadProfileName("/data/foreign")), "");
  EXPECT_EQ(Bytes(profile.ReadProfileName("/data/document")), "");
  EXPECT_EQ(Bytes(profile.ReadProfileName("/data/nameless")), "");
  EXPECT_EQ(Bytes(profile.ReadProfileName("/data/none")), "");
  EXPECT_EQ(Bytes(profile.ReadProfileName("/data/other")), "other");
  EXPECT_EQ(Bytes(profile.profileName), "Every list");
  EXPECT_EQ(profile.nextControlId, 0x01020304u);
  EXPECT_EQ(profile.controls.head->value, control);
  EXPECT_EQ(profile.DispatchList.count, 1);
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(ProfileFileTest, WithoutANameNothingIsSaved) {
  ProfileFile profile;
  EXPECT_FALSE(profile.Save());
  profile.profileName = "???";
  EXPECT_FALSE(profile.Save());
  EXPECT_FALSE(Disk().Exists(kFolder));
}

TEST_F(ProfileFileTest, SavingLeavesTheProfileInMemoryAlone) {
  ProfileFile profile;
  FillEverything(&profile);
  profile.RebuildDispatchList();
  ASSERT_TRUE(profile.Save());
  const std::string first = *Disk().FileBytes(PathOf("Every list.idprof"));
  EXPECT_EQ(profile.controls.count, 1);
  EXPECT_EQ(profile.DispatchList.count, 1);
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(*Disk().FileBytes(PathOf("Every list.idprof")), first);
}

TEST_F(ProfileFileTest, ASmallProfileIsLoadedWithThreeCallsOfTheSystem) {
  Disk().PutFile("/data/p.idprof", FromHex(kEverything));
  ProfileFile profile;
  Disk().ClearLog();
  ASSERT_TRUE(profile.Load("/data/p.idprof"));
  ASSERT_EQ(Disk().Log().size(), 3u);
  EXPECT_EQ(Disk().Log()[0].name, "CreateFileA");
  EXPECT_EQ(Disk().Log()[1].name, "ReadFile");
  EXPECT_EQ(Disk().Log()[2].name, "CloseHandle");
}

}  // namespace
}  // namespace kelvaro
