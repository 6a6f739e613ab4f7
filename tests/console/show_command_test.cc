#include "tests/console/stored_profiles.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro::console {
namespace {

namespace fs = std::filesystem;

class ShowCommand : public StoredProfiles {};

// The name in what `show --json` prints.
std::string NameIn(const Outcome& shown) {
  const std::string begin = "{\"profileName\":\"";
  if (shown.status != 0 || !shown.out.starts_with(begin)) return "(none) " + shown.err;
  return shown.out.substr(begin.size(), shown.out.find('"', begin.size()) - begin.size());
}

constexpr char kWalk[] = R"({"profileName":"Walk","deviceName":"Pad","pollInterval":8,
  "deviceGuid":"000102030405060708090a0b0c0d0e0f",
  "mouse":{"movementSensitivity":20,"movementDamper":6,"wheelSensitivity":7,"wheelDamper":9,
    "mouseX":{"kind":3,"index":0},"mouseY":{"kind":9,"index":1},"mouseWheel":{"kind":8,"index":0},
    "leftButton":2,"leftMask":"0x4","rightButton":30,"rightMask":"0x40000000",
    "mouseAlwaysActive":true},
  "controls":[
    {"controlId":3,"description":"Forward","triggerItems":[{"kind":1,"index":0,"value":1}],
     "actions":[{"text":"w"}]},
    {"controlId":12,"description":"Jump","buttonMask":"0x5","repeatEnabled":true,"keyHoldTime":20,
     "actions":[{"actionFlags":1,"text":"<Ctrl>c"},{"text":"b"}]},
    {"controlId":4,"activateOnPress":false,"keyReleasePause":15,"toggleMouseControls":true}]})";

constexpr char kWalkText[] =
    "Walk\n"
    "  device    Pad, 000102030405060708090a0b0c0d0e0f\n"
    "  polled    every 8 ms\n"
    "  mouse     pointer Axis_RX0 by POV1 up and down, sensitivity 20, damper 6 %\n"
    "            wheel POV0 left and right, sensitivity 7, damper 9 %\n"
    "            buttons left B3, middle none, right B31; always on\n"
    "  Controls  3\n"
    "   3  Axis_Y0(neg)  w                          Forward\n"
    "  12  B1+B3         <Ctrl>c (all held) then b  Jump [repeats after 500 ms every 50 ms, keys "
    "held 20 ms]\n"
    "   4  no input      -                          [when let go, pauses 15 ms, mouse on and "
    "off]\n";

TEST_F(ShowCommand, PrintsAProfileOfEitherKindForPeople) {
  const TestFile json("json", kWalk);
  EXPECT_EQ(Kelvaroctl({"show", json.path}).out, kWalkText);
  const std::string stored = Store("w.idprof", kWalk);
  EXPECT_EQ(Kelvaroctl({"show", stored}).out, kWalkText);
  EXPECT_EQ(Kelvaroctl({"show", "Walk"}).out, kWalkText);
}

TEST_F(ShowCommand, PrintsAnEmptyProfile) {
  const TestFile json("json", "{}");
  EXPECT_EQ(Kelvaroctl({"show", json.path}).out,
            "(no name)\n"
            "  device    any\n"
            "  polled    every 5 ms\n"
            "  mouse     pointer none by none, sensitivity 15, damper 5 %\n"
            "            wheel none, sensitivity 15, damper 5 %\n"
            "            buttons left none, middle none, right none\n"
            "  Controls  0\n");
}

TEST_F(ShowCommand, AnyTextStaysOnItsLine) {
  const TestFile json("json",
                      R"({"profileName":"a\nb\u001b[2J\u009bx","deviceName":{"bytes":"ff41"},
      "controls":[{"description":"c\rd","buttonMask":1}]})");
  const std::string out = Kelvaroctl({"show", json.path}).out;
  EXPECT_EQ(out.substr(0, out.find('\n')), "a?b?[2J?x");
  EXPECT_NE(out.find("  device    ?A\n"), std::string::npos) << out;
  EXPECT_NE(out.find("  1  B1  -  c?d\n"), std::string::npos) << out;
}

TEST_F(ShowCommand, JsonIsTheSameForEveryWayToIt) {
  const TestFile json("json", kWalk);
  const Outcome fromJson = Kelvaroctl({"show", "--json", json.path});
  EXPECT_EQ(fromJson.status, 0);
  EXPECT_EQ(fromJson.err, "");
  EXPECT_EQ(std::count(fromJson.out.begin(), fromJson.out.end(), '\n'), 1);
  const std::string stored = Store("w.idprof", kWalk);
  EXPECT_EQ(Kelvaroctl({"show", "--json", stored}).out, fromJson.out);
  EXPECT_EQ(Kelvaroctl({"show", "--json", "Walk"}).out, fromJson.out);
  {
    const StandardInput input(kWalk);
    EXPECT_EQ(Kelvaroctl({"show", "--json", "-"}).out, fromJson.out);
  }
  const StandardInput input(tests::Content(stored));
  EXPECT_EQ(Kelvaroctl({"show", "--json", "-"}).out, fromJson.out);
}

TEST_F(ShowCommand, AFileIsAStoredProfileByItsMagicAlone) {
  const TestFile stored("profile.json", SmallProfile("Stored"));
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", stored.path})), "Stored");
  const TestFile json("profile.idprof", R"({"profileName":"Json"})");
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", json.path})), "Json");
}

TEST_F(ShowCommand, TakesAnyStoredName) {
  for (const std::string& name :
       {std::string("With blanks"), std::string("F\xC3\xBCr zwei"), std::string("a\xFF\xFE"),
        std::string("Race: 1/2"), std::string("--json")}) {
    Put("p.idprof", SmallProfile(name));
    const Outcome shown = Kelvaroctl({"show", "--json", "--", name});
    EXPECT_EQ(shown.status, 0) << name << shown.err;
  }
  // Case counts, and the file's own name doesn't.
  Put("p.idprof", SmallProfile("Walk"));
  EXPECT_EQ(Kelvaroctl({"show", "walk"}).status, 1);
  EXPECT_EQ(Kelvaroctl({"show", "p"}).status, 1);
  EXPECT_EQ(Kelvaroctl({"show", "p.idprof"}).status, 1);
}

TEST_F(ShowCommand, AFileWinsOverAName) {
  Put("p.idprof", SmallProfile("Walk"));
  const fs::path before = fs::current_path();
  const tests::TemporaryFolder here;
  fs::create_directory(here.In("Walk"));
  fs::current_path(here.folder);
  // A folder is no file.
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", "Walk"})), "Walk");
  fs::remove(here.In("Walk"));
  tests::Put(here.In("Walk"), R"({"profileName":"of the file"})");
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", "Walk"})), "of the file");
  fs::current_path(before);
}

TEST_F(ShowCommand, AWrongNameIsAnsweredWithTheStoredOnesTheMostSimilarFirst) {
  EXPECT_EQ(Kelvaroctl({"show", "Walk"}).err,
            "kelvaroctl: there is no file and no stored profile 'Walk'; no profile is stored in " +
                folder.string() + "\n");
  Put("0.idprof", SmallProfile("Racing"));
  EXPECT_EQ(Kelvaroctl({"show", "Walk"}).err,
            "kelvaroctl: there is no file and no stored profile 'Walk'; stored is 'Racing'\n");
  Put("1.idprof", SmallProfile("WALKS"));
  Put("2.idprof", SmallProfile("Talk"));
  const Outcome outcome = Kelvaroctl({"show", "Walk"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "kelvaroctl: there is no file and no stored profile 'Walk' (did you mean 'Talk'?); "
            "stored are 'Talk', 'WALKS', 'Racing'\n");
  for (int i = 3; i < 10; ++i) {
    Put(std::to_string(i) + ".idprof", SmallProfile("Something else " + std::to_string(i)));
  }
  const std::string many = Kelvaroctl({"show", "Walk"}).err;
  EXPECT_EQ(std::count(many.begin(), many.end(), '\''), 2 * (1 + 1 + 8)) << many;
  EXPECT_TRUE(many.ends_with(" and 2 more\n")) << many;
}

TEST_F(ShowCommand, SaysWhyAFileIsNoProfile) {
  const std::string missing = testing::TempDir() + "kelvaro_no_such_file";
  EXPECT_EQ(Kelvaroctl({"show", missing}).err,
            "kelvaroctl: " + missing + ": No such file or directory\n");
  const TestFile json("json", "{\n\"controls\":3}");
  EXPECT_EQ(Kelvaroctl({"show", json.path}).err,
            "kelvaroctl: " + json.path + ":2:12: controls: not a list\n");
  const TestFile empty("empty.idprof", "");
  EXPECT_EQ(Kelvaroctl({"show", empty.path}).err,
            "kelvaroctl: " + empty.path + ": neither a stored profile nor one in JSON\n");
  const TestFile damaged("damaged", SmallProfile("P").substr(0, 60));
  const Outcome outcome = Kelvaroctl({"show", damaged.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "kelvaroctl: " + damaged.path +
                             ": this profile can't be read whole (kelvaroctl check says what is "
                             "wrong with it)\n");
}

TEST_F(ShowCommand, AFileCutShortGivesWayToItsTemporary) {
  for (const std::string& left : {std::string(), SmallProfile("P").substr(0, 60)}) {
    const std::string path = Put("p.idprof", left);
    Put("p.idprof.tmp", SmallProfile("P"));
    EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", path})), "P");
    EXPECT_EQ(tests::Content(path), SmallProfile("P"));
    EXPECT_FALSE(fs::exists(path + ".tmp"));
  }
  const std::string path = Put("p.idprof", "");
  fs::remove(path);
  Put("p.idprof.tmp", SmallProfile("Missing"));
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", path})), "Missing");
}

TEST_F(ShowCommand, ATemporaryNeverTakesThePlaceOfJson) {
  const std::string json = " {\"profileName\":\"J\"}";
  const std::string path = Put("p.idprof", json);
  Put("p.idprof.tmp", SmallProfile("Old"));
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", path})), "J");
  EXPECT_EQ(tests::Content(path), json);
}

TEST_F(ShowCommand, AGoodFileAndItsTemporaryStayAsTheyAre) {
  const std::string path = Put("p.idprof", SmallProfile("P"));
  Put("p.idprof.tmp", SmallProfile("Old"));
  EXPECT_EQ(NameIn(Kelvaroctl({"show", "--json", path})), "P");
  EXPECT_TRUE(fs::exists(path + ".tmp"));
}

TEST_F(ShowCommand, RunTakesAStoredProfileToo) {
  const std::string stored =
      Store("j.idprof",
            R"({"profileName":"Jump","controls":[{"buttonMask":1,"actions":[{"text":"a"}]}]})");
  const TestFile recording(
      "recording", R"({"recording":1,"device":"Pad","guid":"00112233445566778899aabbccddeeff",)"
                   R"("buttons":1,"axes":0,"povs":0})"
                   "\n{\"t\":10,\"buttons\":[1]}\n{\"t\":20,\"buttons\":[]}\n");
  for (const std::string& profile : {stored, std::string("Jump")}) {
    const Outcome outcome = Kelvaroctl({"run", "--simulate", "--replay", recording.path, profile});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "      10 ms  a down\n      20 ms  a up\n");
  }
  const Outcome missing = Kelvaroctl({"run", "--simulate", "--replay", recording.path, "Jumps"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err,
            "kelvaroctl: there is no file and no stored profile 'Jumps' (did you mean 'Jump'?); "
            "stored is 'Jump'\n");
}

}  // namespace
}  // namespace kelvaro::console
