#include "console/profile_check.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <linux/input-event-codes.h>
#endif

#include <random>

#include "console/profile_json.h"
#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro::console {
namespace {

// "lacks | root | list 2 ..." for each finding.
std::vector<std::string> Told(const std::vector<Finding>& findings) {
  std::vector<std::string> lines;
  for (const Finding& finding : findings) {
    const char* const kind = kFindingKinds[static_cast<int>(finding.kind)].name;
    lines.push_back(std::string(kind) + " | " + finding.where + " | " + finding.what);
  }
  return lines;
}

constexpr char kKept[] =
    "notWhole | root | the first save over it keeps its bytes in a file whose name ends in "
    ".damaged";

std::string DeviceList() {
  return List(11, {Field(""), Field(Big(5, 4)), Field(std::string(16, '\0'))});
}
std::string MouseList() { return List(12, {Field(std::string(63, '\0'))}); }
std::string ScansList() { return List(13, {Field(FromHex("1E"))}); }
// An action of one step whose list ends with these.
std::string ActionList(const Chunks& rest = {ScansList(), NumberField(0)},
                       const std::string& steps = FromHex("4100"),
                       const std::string& timings = OldTimings(0, 500, 50, 0)) {
  return List(7, Join({Field(timings), Field(steps)}, rest));
}
std::string TimingsList() { return List(14, {Field(Timings(0, 500, 50, 0, 0))}); }
std::string IdField(std::uint32_t id) { return Field(Big(id, 4)); }
std::string ControlList(const std::string& action, const std::string& timings = TimingsList()) {
  return List(5, {Field("Jump"), IdField(1), Field(Big(0, 1)), TriggerList(1), action, timings});
}

// A file with this list in the place of the one with its id, or none if it is empty.
std::string FileWith(int id, const std::string& list) {
  Chunks lists;
  const auto add = [&](int own, const std::string& usual) {
    if (own != id || !list.empty()) lists.push_back(own == id ? list : usual);
  };
  add(1, TypeList());
  add(2, RevisionList());
  add(3, NameList("P", 2));
  add(11, DeviceList());
  add(12, MouseList());
  add(4, List(4, {ControlList(ActionList())}));
  return ProfileBytes(lists);
}
std::string FileWithControl(const std::string& control) { return FileWith(4, List(4, {control})); }
std::string FileWithAction(const std::string& action) {
  return FileWithControl(ControlList(action));
}

TEST(CheckProfile, FindsNothingInWhatASaveMakes) {
  std::string bytes;
  {
    platform::simulation::Simulation sim;
    ProfileFile profile;
    JsonFault fault;
    ASSERT_TRUE(ReadProfile(
        R"({"profileName":"P","controls":[{"buttonMask":1,"actions":[{"text":"ab"},{}]}]})",
        &profile, &fault));
    ASSERT_TRUE(profile.SaveAs("/p"));
    bytes = *sim.Disk().FileBytes("/p");
  }
  const ProfileReport report = CheckProfile(bytes, "f");
  EXPECT_TRUE(report.loads);
  EXPECT_EQ(Bytes(report.profileName), "P");
  EXPECT_EQ(report.controls, 1);
  EXPECT_EQ(Told(report.findings), std::vector<std::string>{});
}

// A file that loads, and the findings in it.
struct StoredCase {
  const char* why;
  std::string bytes;
  std::vector<std::string> told;
};

void ExpectTold(const std::vector<StoredCase>& cases) {
  for (const StoredCase& c : cases) {
    const ProfileReport report = CheckProfile(c.bytes, "f");
    EXPECT_TRUE(report.loads) << c.why << ": " << report.fault.message;
    EXPECT_EQ(Told(report.findings), c.told) << c.why;
  }
}

TEST(CheckProfile, SaysWhatAFileLacksOrHoldsInItsRoot) {
  const std::string whole = FileWith(2, RevisionList());
  ExpectTold({
      {"all is well", whole, {}},
      {"bytes behind the root",
       whole + "abc",
       {"passedOver | root | 3 bytes behind the root list"}},
      {"another version",
       whole.substr(0, 3) + Big(2, 2) + whole.substr(5),
       {"passedOver | root | version 2 instead of 1"}},
      {"the root's id",
       whole.substr(0, 11) + Big(7, 4) + whole.substr(15),
       {"passedOver | root | id 7 instead of 0"}},
      {"without list 2",
       FileWith(2, ""),
       {"lacks | root | list 2 (format revision); nothing reads it"}},
      {"without list 11",
       FileWith(11, ""),
       {"lacks | root | list 11 (device); any device will do"}},
      {"without list 12",
       FileWith(12, ""),
       {"lacks | root | list 12 (mouse settings); those in force stay"}},
      {"without list 4",
       FileWith(4, ""),
       {"lacks | root | list 4 (Controls); there are no Controls"}},
  });
}

TEST(CheckProfile, SaysWhatTheListsOfTheRootLackOrHold) {
  const std::string whole = FileWith(2, RevisionList());
  const std::size_t controls = whole.find(Big(4, 4) + Big(1, 4)) + 8;  // behind the head of list 4
  ExpectTold({
      {"an unknown list",
       FileWith(2, List(77, {})),
       {"passedOver | root | list 77, which doesn't belong here",
        "lacks | root | list 2 (format revision); nothing reads it"}},
      {"a field in the root",
       FileWith(2, Chunk(3, "abc")),
       {"passedOver | root | field 1, of type 3",
        "lacks | root | list 2 (format revision); nothing reads it"}},
      {"a list twice",
       FileWith(2, NameList("Q")),
       {"passedOver | root | list 3 (profile name) more than once",
        "lacks | root | list 2 (format revision); nothing reads it"}},
      {"another revision",
       FileWith(2, List(2, {Field("\x02")})),
       {"passedOver | list 2 (format revision) | it is not 1"}},
      {"another type of field",
       FileWith(3, List(3, {Chunk(9, "P"), IdField(1)})),
       {"passedOver | list 3 (profile name) | field 0 is of type 9 instead of 2"}},
      {"a field too many",
       FileWith(1, List(1, {Field("EventProfile"), Field("x")})),
       {"passedOver | list 1 (document type) | field 1, of type 2"}},
      {"no name",
       FileWith(3, NameList("", 2)),
       {"lacks | list 3 (profile name) | a name; without one it isn't listed"}},
      {"a short counter",
       FileWith(3, List(3, {Field("P"), Field(FromHex("0107"))})),
       {"lacks | list 3 (profile name) | field 1: 2 instead of 4 bytes"}},
      {"a long counter",
       FileWith(3, List(3, {Field("P"), Field(Big(1, 5))})),
       {"passedOver | list 3 (profile name) | field 1: 5 instead of 4 bytes"}},
      {"a short identity",
       FileWith(11, List(11, {Field(""), IdField(5), Field("abc")})),
       {"lacks | list 11 (device) | field 2: 3 instead of 16 bytes"}},
      {"short mouse settings",
       FileWith(12, List(12, {Field("")})),
       {"lacks | list 12 (mouse settings) | field 0: 0 instead of 63 bytes"}},
      {"long mouse settings",
       FileWith(12, List(12, {Field(std::string(64, '\0'))})),
       {"passedOver | list 12 (mouse settings) | field 0: 64 instead of 63 bytes"}},
      {"a format revision that can't be read",
       FileWith(2, ListHead(0, 2, 900)),
       {"passedOver | root | list 2 (format revision), which can't be read"}},
      {"an optional list that can't be read",
       FileWith(12, ListHead(0, 12, 900)),
       {"passedOver | root | list 12 (mouse settings), which can't be read", kKept}},
      {"a file cut short in the list of Controls",
       whole.substr(0, controls),
       {"lacks | root | the last " + std::to_string(whole.size() - controls) + " bytes of the file",
        "passedOver | root | list 4 (Controls), which can't be read", kKept}},
      {"one cut short in that list's count",
       whole.substr(0, controls - 2),
       {"lacks | root | the last " + std::to_string(whole.size() - controls + 2) +
            " bytes of the file",
        "passedOver | root | list 4 (Controls), which can't be read", kKept}},
  });
}

TEST(CheckProfile, SaysWhatAControlLacksOrHolds) {
  ExpectTold({
      {"no list of a Control among Controls",
       FileWith(4, List(4, {Field("a"), List(6, {}), ControlList(ActionList())})),
       {"passedOver | list 4 (Controls) | field 0, of type 2",
        "passedOver | list 4 (Controls) | list 6 (Trigger), which doesn't belong here"}},
      {"a Control without its third field",
       FileWithControl(List(5, {Field("Jump"), IdField(1)})),
       {"lacks | controls[0] | field 2, whether it turns the mouse controls on and off",
        "lacks | controls[0] | list 6 (Trigger)",
        "lacks | controls[0] | list 14 (timings); those of its last action count",
        "neverFires | Control 1 'Jump' | it has no inputs"}},
      {"an empty field of a flag",
       FileWithControl(List(5, {Field(""), IdField(1), Field(""), TriggerList(1), TimingsList()})),
       {"lacks | controls[0] | field 2: 0 instead of 1 byte"}},
      {"strangers in a Control",
       FileWithControl(List(5, {Field(""), IdField(1), Field(Big(0, 1)), Field("x"), List(80, {}),
                                TriggerList(1), TriggerList(2), TimingsList()})),
       {"passedOver | controls[0] | field 3, of type 2",
        "passedOver | controls[0] | list 80, which doesn't belong here",
        "passedOver | controls[0] | list 6 (Trigger) more than once"}},
      {"a Trigger without its option",
       FileWithControl(List(5, {Field(""), IdField(1), Field(Big(0, 1)),
                                List(6, {Field(Big(1, 1) + Big(1, 8))}), TimingsList()})),
       {"lacks | controls[0] list 6 (Trigger) | field 0: 9 instead of 10 bytes"}},
      {"short and long items of a Trigger",
       FileWithControl(List(5, {Field(""), IdField(1), Field(Big(0, 1)),
                                List(6, {Field(TriggerField(1, 1, 1)), Field(FromHex("0000 00")),
                                         Field(FromHex("0001 0000 0001 FF"))}),
                                TimingsList()})),
       {"lacks | controls[0] list 6 (Trigger) | field 1: 3 instead of 6 bytes",
        "passedOver | controls[0] list 6 (Trigger) | field 2: 7 instead of 6 bytes",
        "neverFires | Control 1 | no state of a pad fits B1+Axis_X0(pos)+Axis_Y0(neg)"}},
      {"long timings",
       FileWithControl(ControlList(ActionList(),
                                   List(14, {Field(Timings(0, 500, 50, 0, 0) + "x"), Field("y")}))),
       {"passedOver | controls[0] list 14 (timings) | field 0: 18 instead of 17 bytes",
        "passedOver | controls[0] list 14 (timings) | field 1, of type 2"}},
  });
}

TEST(CheckProfile, SaysWhatAnActionLacksOrHolds) {
  ExpectTold({
      {"an odd byte of steps",
       FileWithAction(ActionList({ScansList(), NumberField(0)}, FromHex("410042"))),
       {"passedOver | controls[0].actions[0] | the odd last byte of its steps"}},
      {"no scan codes, so that the flags stand elsewhere",
       FileWithAction(ActionList({NumberField(1)})),
       {"lacks | controls[0].actions[0] | its actionFlags, a number in field 3",
        "passedOver | controls[0].actions[0] | field 2, of type 5",
        "lacks | controls[0].actions[0] | list 13 (scan codes); they are made afresh"}},
      {"flags of another type",
       FileWithAction(ActionList({ScansList(), Field(Big(1, 4))})),
       {"lacks | controls[0].actions[0] | its actionFlags, a number in field 3",
        "passedOver | controls[0].actions[0] | field 3, of type 2"}},
      {"short flags",
       FileWithAction(ActionList({ScansList(), Chunk(5, FromHex("01"))})),
       {"lacks | controls[0].actions[0] | field 3: 1 instead of 4 bytes"}},
      {"too few scan codes",
       FileWithAction(ActionList({ScansList(), NumberField(0)}, FromHex("41004200"))),
       {"lacks | controls[0].actions[0] list 13 (scan codes) | field 0: 1 instead of 2 bytes"}},
      {"too many scan codes",
       FileWithAction(ActionList({ScansList(), NumberField(0)}, "")),
       {"passedOver | controls[0].actions[0] list 13 (scan codes) | field 0: 1 instead of 0 "
        "bytes"}},
      {"scan codes without their field",
       FileWithAction(ActionList({List(13, {}), NumberField(0)})),
       {"lacks | controls[0].actions[0] list 13 (scan codes) | field 0; the scan codes are made "
        "afresh"}},
      {"short old timings",
       FileWithAction(ActionList({ScansList(), NumberField(0)}, FromHex("4100"),
                                 OldTimings(0, 500, 50, 0).substr(0, 9))),
       {"lacks | controls[0].actions[0] | field 0: 9 instead of 13 bytes",
        "passedOver | controls[0].actions[0] | its timings; those of list 14 (timings) count"}},
      {"other old timings",
       FileWithAction(
           ActionList({ScansList(), NumberField(0)}, FromHex("4100"), OldTimings(1, 700, 40, 9))),
       {"passedOver | controls[0].actions[0] | its timings; those of list 14 (timings) count"}},
  });
}

TEST(CheckProfile, SaysWhereAListAndItsSizeDisagree) {
  const std::string revision = Big(1, 2) + Big(8, 4) + Big(2, 4) + Big(1, 4) + Field("\x01") + "x";
  EXPECT_EQ(Told(CheckProfile(FileWith(2, revision), "f").findings),
            (std::vector<std::string>{
                "passedOver | list 2 (format revision) | 1 byte behind the last child"}));

  std::string bytes = FileWith(2, RevisionList());
  const std::uint64_t size = bytes.size() - 19;  // behind the head of the file and of the root
  bytes.replace(7, 4, Big(size - 1, 4));
  EXPECT_EQ(Told(CheckProfile(bytes, "f").findings),
            (std::vector<std::string>{
                "passedOver | root | 1 byte behind the root list",
                "lacks | root | room for its children: its size is 1 byte too small"}));
  bytes.replace(7, 4, Big(size + 2, 4));
  EXPECT_EQ(Told(CheckProfile(bytes, "f").findings),
            (std::vector<std::string>{"lacks | root | the last 2 bytes of the file",
                                      "passedOver | root | 2 bytes behind the last child", kKept}));
}

TEST(CheckProfile, SaysWhyAFileDoesntLoad) {
  const std::string whole = FileWith(2, RevisionList());
  const struct {
    const char* why;
    std::string bytes;
    const char* fault;
  } kCases[] = {
      {"nothing behind the magic", "XBF", "root: no list can be read"},
      {"a root that is no list", "XBF" + Big(1, 2) + Chunk(2, std::string(20, '\0')),
       "root: no list can be read"},
      {"without list 1", FileWith(1, ""), "root: list 1 (document type) is missing"},
      {"another document", FileWith(1, List(1, {Field("EventProfil")})),
       "list 1 (document type): it is not the type of a profile"},
      {"no type in list 1", FileWith(1, List(1, {})), "list 1 (document type): field 0 is missing"},
      {"without list 3", FileWith(3, ""), "root: list 3 (profile name) is missing"},
      {"no counter", FileWith(3, List(3, {Field("P")})),
       "list 3 (profile name): field 1 is missing"},
      {"no interval", FileWith(11, List(11, {Field("")})), "list 11 (device): field 1 is missing"},
      {"no mouse settings", FileWith(12, List(12, {})),
       "list 12 (mouse settings): field 0 is missing"},
      {"a Control without a number", FileWithControl(List(5, {Field("")})),
       "controls[0]: field 1 is missing"},
      {"a Control that can't be entered", FileWithControl(ListHead(0, 5, 9000)),
       "controls[0]: it can't be read"},
      {"an empty Trigger",
       FileWithControl(List(5, {Field(""), IdField(1), Field(Big(0, 1)), List(6, {})})),
       "controls[0] list 6 (Trigger): field 0 is missing"},
      {"an action without steps", FileWithAction(List(7, {Field(OldTimings(0, 500, 50, 0))})),
       "controls[0].actions[0]: field 1 is missing"},
      {"short timings",
       FileWithControl(
           ControlList(ActionList(), List(14, {Field(Timings(0, 500, 50, 0, 0).substr(0, 16))}))),
       "controls[0] list 14 (timings): field 0 is shorter than a load takes it"},
  };
  for (const auto& c : kCases) {
    const ProfileReport report = CheckProfile(c.bytes, "f");
    EXPECT_FALSE(report.loads) << c.why;
    EXPECT_EQ(report.fault.message, std::string("f: doesn't load: ") + c.fault) << c.why;
  }
}

TEST(CheckProfile, CountsTheControlsThatWereRead) {
  const std::string bad = List(14, {Field("short")});
  const ProfileReport report =
      CheckProfile(FileWith(4, List(4, {ControlList(ActionList()), ControlList(ActionList(), bad),
                                        ControlList(ActionList())})),
                   "f");
  EXPECT_FALSE(report.loads);
  EXPECT_EQ(report.controls, 2);
  EXPECT_EQ(Bytes(report.profileName), "P");
}

TEST(CheckProfile, TakesJsonToo) {
  const ProfileReport report =
      CheckProfile(R"({"profileName":"J","controls":[{"buttonMask":1},{"description":"x"}]})", "f");
  EXPECT_TRUE(report.loads);
  EXPECT_EQ(Bytes(report.profileName), "J");
  EXPECT_EQ(report.controls, 2);
  EXPECT_EQ(Told(report.findings),
            std::vector<std::string>{"neverFires | Control 2 'x' | it has no inputs"});
  const ProfileReport bad = CheckProfile("{", "f");
  EXPECT_FALSE(bad.loads);
  EXPECT_TRUE(bad.fault.message.starts_with("f:1:2: ")) << bad.fault.message;
}

// A file has a finding that keeps it from loading exactly if it doesn't load.
TEST(CheckProfile, FindsTheDamageOfEveryFileThatDoesntLoad) {
  std::mt19937 random(7);
  std::uint32_t broken = 0;
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    std::string whole;
    {
      platform::simulation::Simulation sim;
      ProfileFile profile;
      RandomProfile(seed).Fill(&profile, 3);
      ASSERT_TRUE(profile.SaveAs("/p"));
      whole = *sim.Disk().FileBytes("/p");
    }
    EXPECT_TRUE(CheckProfile(whole, "f").loads);
    for (int i = 0; i < 100; ++i) {
      std::string bytes = whole;
      if (i % 4 == 0) {
        bytes.resize(3 + random() % (bytes.size() - 3));
      } else {
        bytes[3 + random() % (bytes.size() - 3)] = static_cast<char>(random());
      }
      const ProfileReport report = CheckProfile(bytes, "f");
      bool damage = false;
      for (const Finding& finding : report.findings) {
        damage |= finding.kind == Finding::Kind::Damage;
      }
      ASSERT_EQ(damage, !report.loads) << seed << " " << i << " " << report.fault.message;
      broken += damage;
    }
  }
  EXPECT_GT(broken, 500U);
}

// A byte here and there makes many findings, but not without end.
TEST(CheckProfile, TellsAThousandFindingsAtMost) {
  const ProfileReport report = CheckProfile(FileWith(4, List(4, Chunks(5000, Field("")))), "f");
  EXPECT_TRUE(report.loads);
  EXPECT_EQ(report.findings.size(), 1001U);
  EXPECT_EQ(report.findings.back().what, "more than can be told here");
}

#ifndef _WIN32  // where keys go out as they are written
TEST(FindUnsureKeys, TellsOfEachInAControlOnce) {
  const ProfileReport report = CheckProfile(
      R"({"controls":[{"buttonMask":1,"description":"Map","actions":[
            {"text":"a<NP4><P:800><Ctrl><NP4>"},{"text":"<Attn><NP4><X1Mouse>"}]},
          {"buttonMask":2,"actions":[{"text":"<Zoom><NP+>4<Left><LMouse>"}]},
          {"buttonMask":4,"actions":[{"steps":[[3,244,0]]}]}]})",
      "f");
  EXPECT_EQ(
      Told(report.findings),
      (std::vector<std::string>{
          "unsureKey | Control 1 'Map' | Num Lock decides what <NP4> types",
          "unsureKey | Control 1 'Map' | Linux has no key for <Attn>, so nothing is sent",
          "unsureKey | Control 2 | <Zoom> needs /dev/uinput; by XTest nothing is sent",
          "unsureKey | Control 3 | Linux has no key for key 3 scan 244, so nothing is sent"}));
}

// A layout on which y and z have changed places and the semicolon's key has others.
std::string TypedElsewhere(std::uint16_t code, bool shift) {
  if (code == KEY_Y) return shift ? "Z" : "z";
  if (code == KEY_Z) return shift ? "Y" : "y";
  if (code == KEY_SEMICOLON) return shift ? "" : "dead_acute";
  return code == KEY_A ? (shift ? "A" : "a") : "1";
}

TEST(FindOtherCharacters, TellsEachCharacterThatComesOutAsAnotherOnce) {
  struct {
    const char* keys;
    const char* told;
  } const kCases[] = {
      {"aA", ""},
      {"1", ""},
      {"<Ctrl><F1><Up>", ""},
      {"y", "y into z"},
      {"azyYy", "z into y, y into z, Y into Z"},
      {"<Ctrl>z", "z into y"},
      {"<Shift>y", "y into z"},
      {";:", "; into dead_acute, : into nothing"},
      {"<P:500>a", ""},
  };
  for (const auto& c : kCases) {
    Profile profile;
    JsonFault fault;
    ASSERT_TRUE(
        ReadProfile(std::string(R"({"controls":[{"actions":[{"text":")") + c.keys + "\"}]}]}",
                    &profile, &fault))
        << fault.Text(c.keys);
    std::vector<Finding> findings;
    FindOtherCharacters(profile, &TypedElsewhere, &findings);
    std::vector<std::string> wanted;
    if (*c.told) {
      wanted.push_back(
          std::string("otherCharacter | Control 1 | the layout of this desktop turns ") + c.told);
    }
    EXPECT_EQ(Told(findings), wanted) << c.keys;
  }
}
#endif

const struct {
  const char* why;
  const char* controls;
  std::vector<std::string> told;
} kInputCases[] = {
    {"other buttons", R"({"buttonMask":1},{"buttonMask":2},{"buttonMask":3})", {}},
    {"no inputs, on press and when let go",
     R"({"activateOnPress":true},{"activateOnPress":false})",
     {"Control 1 | it has no inputs", "Control 2 | it has no inputs"}},
    {"the same buttons",
     R"({"buttonMask":5,"description":"A"},{"buttonMask":1},{"buttonMask":5})",
     {"Control 3 | it has the same inputs as Control 1 'A'"}},
    {"three of a kind",
     R"({"buttonMask":5},{"buttonMask":5},{"buttonMask":5})",
     {"Control 2 | it has the same inputs as Control 1",
      "Control 3 | it has the same inputs as Control 1"}},
    {"on press and when let go are different moments",
     R"({"buttonMask":5},{"buttonMask":5,"activateOnPress":false})",
     {}},
    {"both when let go",
     R"({"buttonMask":5,"activateOnPress":false},{"buttonMask":5,"activateOnPress":false})",
     {"Control 2 | it has the same inputs as Control 1"}},
    {"the two sides of an axis",
     R"({"triggerItems":[{"kind":0,"index":0,"value":1}]},
        {"triggerItems":[{"kind":0,"index":0,"value":2}]})",
     {}},
    {"the same side of it",
     R"({"triggerItems":[{"kind":0,"index":1,"value":1}]},
        {"triggerItems":[{"kind":0,"index":1,"value":1}]})",
     {"Control 2 | it has the same inputs as Control 1"}},
    {"two banks",
     R"({"triggerItems":[{"kind":0,"index":0,"value":1}]},
        {"triggerItems":[{"kind":0,"index":1,"value":1}]})",
     {}},
    {"in another order",
     R"({"triggerItems":[{"kind":0,"index":0,"value":1},{"kind":8,"index":0,"value":2}]},
        {"triggerItems":[{"kind":8,"index":0,"value":2},{"kind":0,"index":0,"value":1}]})",
     {"Control 2 | it has the same inputs as Control 1"}},
    {"an input twice is heavier and comes first",
     R"({"triggerItems":[{"kind":0,"index":0,"value":1}]},
        {"triggerItems":[{"kind":0,"index":0,"value":1},{"kind":0,"index":0,"value":1}]})",
     {"Control 1 | it has the same inputs as Control 2"}},
    {"part of another one", R"({"buttonMask":7},{"buttonMask":3})", {}},
    // What stands behind an unknown kind counts alone.
    {"an unknown kind at either end",
     R"({"triggerItems":[{"kind":0,"index":0,"value":1},{"kind":11,"index":0,"value":0}]},
        {"triggerItems":[{"kind":11,"index":0,"value":0},{"kind":0,"index":0,"value":1}]})",
     {"Control 1 | no state of a pad fits Axis_X0(neg)+"}},
};

TEST(FindControlsThatNeverFire, KnowsWhichInputsAreTheSame) {
  for (const auto& c : kInputCases) {
    Profile profile;
    JsonFault fault;
    ASSERT_TRUE(ReadProfile(std::string("{\"controls\":[") + c.controls + "]}", &profile, &fault))
        << c.why << fault.Text("f");
    std::vector<Finding> findings;
    FindControlsThatNeverFire(profile, &findings);
    std::vector<std::string> told;
    for (const Finding& finding : findings) {
      EXPECT_EQ(finding.kind, Finding::Kind::NeverFires);
      told.push_back(finding.where + " | " + finding.what);
    }
    EXPECT_EQ(told, c.told) << c.why;
  }
}

}  // namespace
}  // namespace kelvaro::console
