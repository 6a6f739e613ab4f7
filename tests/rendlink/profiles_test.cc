#include "rendlink/profiles.h"

#include "tests/rendlink/rendlink_fixture.h"

namespace kelvaro::rendlink {
namespace {

using Names = std::vector<std::string>;

TEST_F(RendlinkTest, ProfilesStandInTheOrderOfKelvarosList) {
  StoreProfile("_x");
  sim.Disk().PutFile("/game/Profiles/none.idprof", "no profile");
  EXPECT_EQ(StoredProfiles(), (Names{"_x", "Chess", "race", "Race 2"}));
}

TEST(FindProfiles, TakesTheFirstThatBeginsSoInAnyCase) {
  const Names stored = {"Chess", "race", "Race 2", "rally"};
  struct {
    Names names;
    Names found;
  } const kRows[] = {
      {{"Chess"}, {"Chess"}},
      {{"ch"}, {"Chess"}},
      {{"RACE"}, {"race"}},
      {{"ra"}, {"race"}},
      {{"Race "}, {"Race 2"}},
      {{"RALLY"}, {"rally"}},
      {{"c", "c"}, {"Chess", "Chess"}},
      {{"rally", "race 2"}, {"rally", "Race 2"}},
  };
  for (const auto& row : kRows) {
    Names names = row.names;
    std::string refusal;
    EXPECT_TRUE(FindProfiles(stored, &names, &refusal)) << refusal;
    EXPECT_EQ(names, row.found);
  }
}

TEST(FindProfiles, RefusesAnUnknownOne) {
  for (const char* name : {"Racer", "x", ""}) {
    Names names = {"Chess", name};
    std::string refusal;
    EXPECT_FALSE(FindProfiles({"Chess", "Race"}, &names, &refusal));
    EXPECT_EQ(refusal, std::string("There is no profile whose name begins with \"") + name + "\".");
    EXPECT_EQ(names, (Names{"Chess", name}));
  }
}

TEST(FindProfiles, RefusesAProfileThatAnotherStandsBefore) {
  Names names = {"RACE"};
  std::string refusal;
  EXPECT_FALSE(FindProfiles({"race", "RACE"}, &names, &refusal));
  EXPECT_EQ(refusal,
            "Kelvaro would take the profile \"race\" for \"RACE\", since letter case is all in "
            "which they differ.");
  names = {"race"};
  EXPECT_TRUE(FindProfiles({"race", "RACE"}, &names, &refusal));
}

}  // namespace
}  // namespace kelvaro::rendlink
