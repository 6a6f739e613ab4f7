#include "console/json_text.h"
#include "console/profile_check.h"
#include "console/profile_source.h"
#include "tests/console/stored_profiles.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro::console {
namespace {

namespace fs = std::filesystem;

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
      "{\"file\":\"" + json.path +
          "\",\"loads\":true,\"profileName\":\"Walk\",\"controls\":3,\"findings\":["
          "{\"kind\":\"neverFires\",\"where\":\"Control 2\",\"what\":\"it has the same inputs as "
          "Control 1 'Jump'\"},"
          "{\"kind\":\"neverFires\",\"where\":\"Control 3 'Nothing'\",\"what\":\"it has no "
          "inputs\"}]}\n"
          "{\"file\":\"" +
          damaged.path + "\",\"loads\":false,\"error\":\"" + damaged.path +
          ": doesn't load: root: list 3 (profile name) is missing\",\"profileName\":\"\","
          "\"controls\":0,\"findings\":[{\"kind\":\"passedOver\",\"where\":\"root\",\"what\":\"1 "
          "byte behind the root list\"},{\"kind\":\"damage\",\"where\":\"root\",\"what\":\"list 3 "
          "(profile name) is missing\"}]}\n");
}

TEST(CheckCommand, SaysThatASaveKeepsTheBytesOfAFileThatIsNotWhole) {
  const std::string whole = ProfileBytes(
      {TypeList(), RevisionList(), NameList("P"), List(4, {List(5, {Field("lost")})})});
  const TestFile cut("cut", whole.substr(0, whole.size() - 20));  // within the head of list 5
  const Outcome outcome = Kelvaroctl({"check", cut.path});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.out.ends_with(
      cut.path +
      ": root: not whole: the first save over it keeps its bytes in a file whose name "
      "ends in .damaged\n"))
      << outcome.out;
  const Outcome json = Kelvaroctl({"check", "--json", cut.path});
  EXPECT_NE(json.out.find("{\"kind\":\"notWhole\",\"where\":\"root\""), std::string::npos)
      << json.out;
}

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
      if (entry.path().extension() == ".json") files.push_back(entry.path());
    }
    return files;
  }
};

TEST_F(ExampleProfiles, LoadWithNothingToBeFound) {
  const std::vector<std::string> files = Files();
  EXPECT_EQ(files.size(), 5U);
  for (const std::string& file : files) {
    const std::string stored = Store("example.idprof", tests::Content(file));
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
      EXPECT_LT(control.buttonMask, std::uint64_t{1} << 10) << name << " " << control.controlId;
    }
  }
}

// The buttons of the mouse never reach the Controls while the mouse is on.
TEST_F(ExampleProfiles, NoControlNeedsAButtonThatTheMouseHasForGood) {
  for (const std::string& file : Files()) {
    ProfileFile profile;
    ProfileFault fault;
    ASSERT_TRUE(ReadProfileBytes(tests::Content(file), file, &profile, &fault)) << fault.message;
    if (!profile.mouseAlwaysActive) continue;
    const std::uint64_t taken = profile.leftMask | profile.middleMask | profile.rightMask;
    for (const Control& control : profile.controls) {
      EXPECT_EQ(control.buttonMask & taken, 0U) << file << " " << control.controlId;
    }
  }
}

}  // namespace
}  // namespace kelvaro::console
