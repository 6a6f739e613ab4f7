#include "tests/console/stored_profiles.h"

namespace kelvaro::console {
namespace {

using tests::Variable;

class FollowCommandTest : public StoredProfiles {
 protected:
  FollowCommandTest() {
    Store("Desk.idprof", R"({"profileName":"Desk"})");
    Store("Race.idprof", R"({"profileName":"Race"})");
  }

  const Variable display{"DISPLAY"};
  const Variable wayland{"WAYLAND_DISPLAY"};
  const Variable sway{"SWAYSOCK"};
};

TEST_F(FollowCommandTest, RulesAreCheckedBeforeAnythingIsWatched) {
  const struct {
    const char* rules;
    const char* said;  // behind the file's name
  } kCases[] = {
      {R"({"default":"Desk","rules":[{"program":"a","profile":"Rase"}]})",
       ":1:53: rules[0].profile: no stored profile 'Rase' (did you mean 'Race'?); stored are "
       "'Race', 'Desk'\n"},
      {R"({"default":"De","rules":[]})",
       ":1:12: default: no stored profile 'De'; stored are 'Desk', 'Race'\n"},
      {"{\"default\":\"Desk\",\n\"rules\":[],\"x\":1}", ":2:16: x: unknown member\n"},
  };
  for (const auto& each : kCases) {
    const TestFile file("rules.json", each.rules);
    for (const bool dry : {false, true}) {
      std::vector<std::string> words = {"follow", file.path};
      if (dry) words.emplace_back("--dry-run");
      const Outcome outcome = Kelvaroctl(words);
      EXPECT_EQ(outcome.status, 1);
      EXPECT_EQ(outcome.out, "");
      EXPECT_EQ(outcome.err, "kelvaroctl: " + file.path + each.said);
    }
  }
  EXPECT_EQ(Kelvaroctl({"follow", "/no/such"}).err,
            "kelvaroctl: /no/such: No such file or directory\n");
}

TEST_F(FollowCommandTest, SaysWhereNobodyTellsWhichWindowIsInFront) {
  const TestFile file("rules.json", R"({"default":"Desk","rules":[]})");
  const Outcome outcome = Kelvaroctl({"follow", "--dry-run", file.path});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.err.starts_with("kelvaroctl: nobody tells here which window is in front"))
      << outcome.err;
}

TEST_F(FollowCommandTest, SaysWhichDesktopDoesNotAnswer) {
  const TestFile file("rules.json", R"({"default":"Desk","rules":[]})");
  sway.Set("/no/such");
  EXPECT_EQ(Kelvaroctl({"follow", "--dry-run", file.path}).err,
            "kelvaroctl: sway can't be reached at /no/such\n");
  display.Set("/no/such:77");
  EXPECT_EQ(Kelvaroctl({"follow", "--dry-run", file.path}).err,
            "kelvaroctl: the X server /no/such:77 can't be reached\n");
}

}  // namespace
}  // namespace kelvaro::console
