#include "console/json_text.h"
#include "tests/console/stored_profiles.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro::console {
namespace {

class ProfilesCommand : public StoredProfiles {};

TEST_F(ProfilesCommand, WithoutAFolderThereAreNone) {
  const Outcome outcome = Kelvaroctl({"profiles"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "No profile is stored in " + folder.string() + ".\n");
  const Outcome json = Kelvaroctl({"profiles", "--json"});
  EXPECT_EQ(json.status, 0);
  EXPECT_EQ(json.out, "");
  EXPECT_EQ(json.err, "");
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(ProfilesCommand, ListsStoredNamesWithTheirFilesByName) {
  const std::string walk = Put("x.idprof", SmallProfile("Walk on"));
  const std::string race = Put("Another name.idprof", SmallProfile("Race"));
  const std::string second = Put("y.IDPROF", SmallProfile("Race"));
  EXPECT_EQ(Kelvaroctl({"profiles"}).out,
            "Race     " + race + "\nRace     " + second + "\nWalk on  " + walk + "\n");
  EXPECT_EQ(Kelvaroctl({"profiles", "--json"}).out,
            "{\"name\":\"Race\",\"file\":" + JsonText(race) + "}\n{\"name\":\"Race\",\"file\":" +
                JsonText(second) + "}\n{\"name\":\"Walk on\",\"file\":" + JsonText(walk) + "}\n");
}

TEST_F(ProfilesCommand, FilesThatAreNoProfilesAreNotListed) {
  Put("empty.idprof", "");
  Put("json.idprof", R"({"profileName":"J"})");
  Put("other magic.idprof", Container({TypeList(), RevisionList(), NameList("X")}));
  Put("other type.idprof", ProfileBytes({List(1, {Field("Something")}), NameList("T")}));
  Put("no name.idprof", SmallProfile(""));
  Put("other extension.json", SmallProfile("E"));
  std::filesystem::create_directories(folder / "folder.idprof");
  EXPECT_EQ(Kelvaroctl({"profiles"}).out, "");
  const std::string good = Put("good.idprof", SmallProfile("G"));
  EXPECT_EQ(Kelvaroctl({"profiles"}).out, "G  " + good + "\n");
}

#ifndef _WIN32  // where names of files are characters
TEST_F(ProfilesCommand, NamesHaveAnyBytes) {
  const std::string umlaut = Put("u.idprof", SmallProfile("F\xC3\xBCr zwei"));
  const std::string bytes = Put("\xFF.idprof", SmallProfile("\xFF\x1B[31m"));
  const Outcome outcome = Kelvaroctl({"profiles"});
  const std::string shown = folder.string() + "/?.idprof";
  EXPECT_EQ(outcome.out, "F\xC3\xBCr zwei  " + umlaut + "\n??[31m    " + shown + "\n");
  const std::string json = Kelvaroctl({"profiles", "--json"}).out;
  EXPECT_EQ(json.rfind("{\"name\":\"F\xC3\xBCr zwei\",\"file\":\"" + umlaut + "\"}\n", 0), 0U)
      << json;
  EXPECT_NE(json.find("{\"name\":{\"bytes\":\"ff1b5b33316d\"},\"file\":{\"bytes\":\""),
            std::string::npos)
      << json;
}
#endif

}  // namespace
}  // namespace kelvaro::console
