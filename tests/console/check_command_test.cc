#include <stdlib.h>

#include "console/json_text.h"
#include "console/profile_check.h"
#include "console/profile_source.h"
#include "tests/console/stored_profiles.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro::console {
namespace {

namespace fs = std::filesystem;

// The desktop on which the tests run may have any layout.
const tests::Variable kNoDesktop("DISPLAY");

constexpr char kTwice[] = R"({"profileName":"Walk","controls":[
  {"description":"Jump","buttonMask":1},{"buttonMask":1},{"description":"Nothing"}]})";

TEST(CheckCommand, TellsOfEachFile) {
  const TestFile json("json", kTwice);
  const TestFile stored("stored", SmallProfile("Small"));
  const Outcome outcome = Kelvaroctl({"check", json.path, stored.path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out,
            json.path + ": loads, 'Walk', 3 Controls\n" + json.path +
                ": Control 2 can never fire: it has the same inputs as Control 1 'Jump'\n" +
                json.path + ": Control 3 'Nothing' can never fire: it has no inputs\n" +
                stored.path + ": loads, 'Small', 0 Controls\n" + stored.path +
                ": root: lacks list 11 (device); any device will do\n" + stored.path +
                ": root: lacks list 12 (mouse settings); those in force stay\n" + stored.path +
                ": root: lacks list 4 (Controls); there are no Controls\n");
}

TEST(CheckCommand, AFileThatDoesntLoadGivesStatusOneAndTheOthersAreCheckedAllTheSame) {
  const TestFile damaged("damaged", ProfileBytes({TypeList(), RevisionList()}) + "x");
  const TestFile good("good", R"({"controls":[{"buttonMask":1}]})");
  const TestFile faulty("faulty", R"({"controls":[{"actions":[{"text":"<x"}]}]})");
  const std::string missing = testing::TempDir() + "kelvaro_no_such_file";
  const Outcome outcome =
      Kelvaroctl({"check", damaged.path, missing, faulty.path, testing::TempDir(), good.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, damaged.path + ": root: passed over: 1 byte behind the root list\n" +
                             good.path + ": loads, '', 1 Control\n");
  EXPECT_EQ(outcome.err,
            "kelvaroctl: " + damaged.path +
                ": doesn't load: root: list 3 (profile name) is missing\n"
                "kelvaroctl: " +
                missing +
                ": No such file or directory\n"
                "kelvaroctl: " +
                faulty.path +
                ":1:34: controls[0].actions[0].text: a '<' without its '>' (write << for the "
                "character itself)\n  <x\n  ^\n"
                "kelvaroctl: " +
                testing::TempDir() + ": Is a directory\n");
}

TEST(CheckCommand, PrintsJsonLines) {
  const TestFile json("json", kTwice);
  const TestFile damaged("damaged", ProfileBytes({TypeList(), RevisionList()}) + "x");
  const Outcome outcome = Kelvaroctl({"check", "--json", json.path, damaged.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      outcome.out,
      "{\"file\":" + JsonText(json.path) +
          ",\"loads\":true,\"profileName\":\"Walk\",\"controls\":3,\"findings\":["
          "{\"kind\":\"neverFires\",\"where\":\"Control 2\",\"what\":\"it has the same inputs as "
          "Control 1 'Jump'\"},"
          "{\"kind\":\"neverFires\",\"where\":\"Control 3 'Nothing'\",\"what\":\"it has no "
          "inputs\"}]}\n"
          "{\"file\":" +
          JsonText(damaged.path) + ",\"loads\":false,\"error\":" +
          JsonText(damaged.path + ": doesn't load: root: list 3 (profile name) is missing") +
          ",\"profileName\":\"\","
          "\"controls\":0,\"findings\":[{\"kind\":\"passedOver\",\"where\":\"root\",\"what\":\"1 "
          "byte behind the root list\"},{\"kind\":\"damage\",\"where\":\"root\",\"what\":\"list 3 "
          "(profile name) is missing\"}]}\n");
}

TEST(CheckCommand, AFileThatIsNotWholeDoesNotCountAsLoaded) {
  const std::string whole = ProfileBytes(
      {TypeList(), RevisionList(), NameList("P"), List(4, {List(5, {Field("lost")})})});
  const TestFile cut("cut", whole.substr(0, whole.size() - 20));  // within the head of list 5
  const Outcome outcome = Kelvaroctl({"check", cut.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "kelvaroctl: " + cut.path + ": isn't whole; 0 Controls of it can be read\n");
  EXPECT_EQ(outcome.out.find("loads"), std::string::npos) << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with(
      cut.path +
      ": root: not whole: the first save over it keeps its bytes in a file whose name "
      "ends in .damaged\n"))
      << outcome.out;
  const Outcome json = Kelvaroctl({"check", "--json", cut.path});
  EXPECT_NE(json.out.find("\"loads\":false,\"error\":" +
                          JsonText(cut.path + ": isn't whole; 0 Controls of it can be read")),
            std::string::npos)
      << json.out;
  EXPECT_NE(json.out.find("{\"kind\":\"notWhole\",\"where\":\"root\""), std::string::npos)
      << json.out;
}

// What check says of a profile in JSON, without the name of its file; the first line aside.
std::string Warnings(const std::string& members) {
  const TestFile json("json", "{" + members + "}");
  const Outcome outcome = Kelvaroctl({"check", json.path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  std::string text = outcome.out.substr(outcome.out.find('\n') + 1);
  for (std::size_t at; (at = text.find(json.path + ": ")) != std::string::npos;) {
    text.erase(at, json.path.size() + 2);
  }
  return text;
}

std::string OneControl(const std::string& members) { return "\"controls\":[{" + members + "}]"; }

TEST(CheckCommand, WarnsOfATriggerThatNoStateOfAPadFits) {
  struct {
    const char* items;
    const char* unfit;  // "" where it can fire
  } const kCases[] = {
      {R"({"kind":0,"index":0,"value":1},{"kind":0,"index":0,"value":2})",
       "Axis_X0(neg)+Axis_X0(pos)"},
      {R"({"kind":0,"index":0,"value":1},{"kind":0,"index":1,"value":2})", ""},
      {R"({"kind":8,"index":0,"value":2},{"kind":8,"index":0,"value":8})", "POV0(up)+POV0(down)"},
      {R"({"kind":8,"index":0,"value":2},{"kind":8,"index":0,"value":1})", ""},
      {R"({"kind":8,"index":0,"value":0})", "POV0()"},
      {R"({"kind":8,"index":4,"value":2})", "POV4(up)"},
      {R"({"kind":0,"index":4,"value":2})", "Axis_X4(pos)"},
      {R"({"kind":0,"index":3,"value":2})", ""},
      {R"({"kind":0,"index":0,"value":3})", "Axis_X0(pos)"},
  };
  for (const auto& c : kCases) {
    for (const char* activate : {"true", "false"}) {
      const std::string wanted =
          *c.unfit
              ? std::string("Control 1 can never fire: no state of a pad fits ") + c.unfit + "\n"
              : "";
      EXPECT_EQ(Warnings(OneControl(std::string("\"activateOnPress\":") + activate +
                                    ",\"triggerItems\":[" + c.items + "]")),
                wanted)
          << c.items;
    }
  }
}

TEST(CheckCommand, WarnsOfATriggerThatTheMouseHasForGood) {
  const std::string controls = R"("controls":[{"buttonMask":1},{"buttonMask":2},)"
                               R"({"triggerItems":[{"kind":0,"index":0,"value":2}]}])";
  const std::string mouse = R"("mouse":{"leftMask":1,"mouseX":{"kind":0,"index":0})";
  EXPECT_EQ(Warnings(mouse + "}," + controls), "");
  EXPECT_EQ(Warnings(mouse + R"(,"mouseAlwaysActive":true},)" + controls),
            "Control 1 can never fire: the mouse controls are always on and have B1\n"
            "Control 3 can never fire: the mouse controls are always on and have Axis_X0\n");
}

TEST(CheckCommand, AsksTheEngineWhatTheMouseHasForGood) {
  const auto warnings = [](const std::string& mouse, const std::string& control) {
    return Warnings(R"("mouse":{"mouseAlwaysActive":true,)" + mouse + R"(},"controls":[{)" +
                    control + "}]");
  };
  const char kTaken[] = "Control 1 can never fire: the mouse controls are always on and have ";
  EXPECT_EQ(warnings(R"("leftMask":1,"mouseX":{"kind":0,"index":0})",
                     R"("buttonMask":3,"triggerItems":[{"kind":0,"index":0,"value":2}])"),
            kTaken + std::string("B1+Axis_X0\n"));
  EXPECT_EQ(warnings(R"("leftMask":1,"rightMask":2)", R"("buttonMask":7)"),
            kTaken + std::string("B1+B2\n"));
  // The 32nd button's mask and one of several work otherwise.
  EXPECT_EQ(warnings(R"("leftMask":"0x80000000")", R"("buttonMask":"0x80000000")"), "");
  EXPECT_EQ(warnings(R"("leftMask":3)", R"("buttonMask":1)"), "");
}

TEST(CheckCommand, WarnsOfKeysThatEndInAPause) {
  EXPECT_EQ(Warnings(OneControl(R"("buttonMask":1,"actions":[{"text":"a<P:50>b"}])")), "");
  EXPECT_EQ(Warnings(OneControl(R"("buttonMask":1,"actions":[{"text":"a<P:50>"}])")),
            "Control 1: its keys end in a pause, so that none stays down\n");
  EXPECT_EQ(
      Warnings(OneControl(R"("buttonMask":1,"actions":[{"actionFlags":1,"text":"a<P:50>"}])")),
      "Control 1: its keys end in a pause, which only keeps the pad waiting\n");
  EXPECT_EQ(
      Warnings(OneControl(R"("buttonMask":1,"repeatEnabled":true,"actions":[{"text":"a<P:50>"}])")),
      "Control 1: its keys end in a pause, which only keeps the pad waiting\n");
}

TEST_F(StoredProfiles, CheckWarnsOfAFileThatASaveDoesNotGoTo) {
  Store("Walk.idprof", R"({"profileName":"Walk"})");
  EXPECT_EQ(Kelvaroctl({"check", (folder / "Walk.idprof").string()}).out,
            (folder / "Walk.idprof").string() + ": loads, 'Walk', 0 Controls\n");
  const std::string other = Store("Run.idprof", R"({"profileName":"Go: far"})");
  EXPECT_EQ(Kelvaroctl({"check", other}).out,
            other + ": loads, 'Go: far', 0 Controls\n" + other +
                ": root: a save of 'Go: far' goes to 'Go far.idprof', not to this file\n");
}

TEST_F(StoredProfiles, CheckTakesANameAndItsBeginning) {
  Store("Walk.idprof", R"({"profileName":"Walk"})");
  Store("Wade.idprof", R"({"profileName":"Wade"})");
  for (const char* name : {"Walk", "Wal"}) {
    const Outcome outcome = Kelvaroctl({"check", "--json", name});
    EXPECT_EQ(outcome.status, 0) << name << outcome.err;
    EXPECT_NE(outcome.out.find("\"profileName\":\"Walk\""), std::string::npos) << outcome.out;
  }
  const Outcome several = Kelvaroctl({"check", "Wa", "Walk"});
  EXPECT_EQ(several.status, 1);
  EXPECT_TRUE(several.err == "kelvaroctl: 'Wa' begins several names: 'Wade', 'Walk'\n" ||
              several.err == "kelvaroctl: 'Wa' begins several names: 'Walk', 'Wade'\n")
      << several.err;
  EXPECT_NE(several.out.find("Walk.idprof: loads"), std::string::npos) << several.out;
  const Outcome none = Kelvaroctl({"check", "alk"});
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err,
            "kelvaroctl: there is no file and no stored profile 'alk' (did you mean 'Walk'?); "
            "stored are 'Walk', "
            "'Wade'\n");
}

TEST_F(StoredProfiles, TheBeginningOfANameServesWhereverOneIsTaken) {
  Store("Walk.idprof", R"({"profileName":"Walk"})");
  Store("Walker.idprof", R"({"profileName":"Walker","controls":[{}]})");
  EXPECT_TRUE(Kelvaroctl({"show", "Walke"}).out.starts_with("Walker\n"));
  EXPECT_TRUE(Kelvaroctl({"show", "Walk"}).out.starts_with("Walk\n")) << "a whole name wins";
  const TestFile recording("recording", kPad);
  for (const char* command : {"run", "explain", "test"}) {
    std::vector<std::string> words{command,    "--replay", recording.path,
                                   "--device", "Test",     "Walke"};
    if (words[0] == "run") words.emplace_back("--simulate");
    const Outcome outcome = Kelvaroctl(words);
    EXPECT_EQ(outcome.status, 0) << command << outcome.err;
  }
}

#ifndef _WIN32  // where keys go out as they are written
TEST(CheckCommand, WarnsOfKeysThatDependOnTheDesktop) {
  const TestFile json("json", R"({"controls":[{"buttonMask":1,"actions":[{"text":"<NP.>"}]}]})");
  EXPECT_EQ(Kelvaroctl({"check", json.path}).out,
            json.path + ": loads, '', 1 Control\n" + json.path +
                ": Control 1: Num Lock decides what <NPDel> types\n");
  const Outcome outcome = Kelvaroctl({"check", "--json", json.path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.out.find("{\"kind\":\"unsureKey\",\"where\":\"Control 1\",\"what\":\"Num Lock "
                             "decides what <NPDel> types\"}"),
            std::string::npos)
      << outcome.out;
}
#endif

TEST(CheckCommand, LeavesTheFileAndItsTemporaryAsTheyAre) {
  const TestFile damaged("p.idprof", SmallProfile("P").substr(0, 60));
  const std::string temporary = tests::Put(damaged.path + ".tmp", SmallProfile("P"));
  EXPECT_EQ(Kelvaroctl({"check", damaged.path}).status, 1);
  EXPECT_EQ(tests::Content(damaged.path), SmallProfile("P").substr(0, 60));
  EXPECT_EQ(tests::Content(temporary), SmallProfile("P"));
}

TEST(CheckCommand, ItsHelpNamesEveryKindOfFinding) {
  const std::string help = Kelvaroctl({"check", "--help"}).out;
  for (const FindingKind& kind : kFindingKinds) {
    EXPECT_NE(help.find(kind.name), std::string::npos) << kind.name;
  }
}

TEST(CheckCommand, ReadsStandardInput) {
  const StandardInput input(SmallProfile("P"));
  const Outcome outcome = Kelvaroctl({"check", "-"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.starts_with("-: loads, 'P', 0 Controls\n")) << outcome.out;
}

// What we ship.
class ExampleProfiles : public StoredProfiles {
 protected:
  static std::vector<std::string> Files() {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(KELVARO_EXAMPLES)) {
      if (entry.path().extension() == ".json") files.push_back(entry.path().string());
    }
    return files;
  }
};

std::string NameIn(const std::string& file) {
  ProfileFile profile;
  ProfileFault fault;
  EXPECT_TRUE(ReadProfileBytes(tests::Content(file), file, &profile, &fault)) << fault.message;
  return Bytes(profile.profileName);
}

TEST_F(ExampleProfiles, LoadWithNothingToBeFound) {
  const std::vector<std::string> files = Files();
  EXPECT_EQ(files.size(), 9U);
  for (const std::string& file : files) {
    const std::string stored = Store(NameIn(file) + ".idprof", tests::Content(file));
    for (const std::string& path : {file, stored}) {
      const Outcome outcome = Kelvaroctl({"check", path});
      EXPECT_EQ(outcome.status, 0) << file << outcome.err;
      EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1) << outcome.out;
    }
    EXPECT_EQ(Kelvaroctl({"show", "--json", stored}).out, Kelvaroctl({"show", "--json", file}).out)
        << file;
  }
}

TEST_F(ExampleProfiles, HaveANameAndADescriptionOfEachControl) {
  for (const std::string& file : Files()) {
    ProfileFile profile;
    ProfileFault fault;
    ASSERT_TRUE(ReadProfileBytes(tests::Content(file), file, &profile, &fault)) << fault.message;
    // The build names the file after it.
    const std::string name = Bytes(profile.profileName);
    EXPECT_EQ(Bytes(ProfileLibrary::ProfileFileName(profile.profileName)), name + ".idprof");
    EXPECT_GT(profile.controls.count, 10) << name;
    for (const Control& control : profile.controls) {
      EXPECT_FALSE(control.description.IsEmpty()) << name << " " << control.controlId;
      EXPECT_TRUE(control.actions.count > 0 || control.toggleMouseControls)
          << name << " " << control.controlId;
    }
  }
}

}  // namespace
}  // namespace kelvaro::console
