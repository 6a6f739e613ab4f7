#include "tests/storage/profile_bytes.h"

namespace kelvaro {
namespace {

class ProfileSaveAsTest : public ProfileTest {};

TEST_F(ProfileSaveAsTest, WritesUnderThePathAndNotInTheFolder) {
  ProfileFile profile;
  profile.profileName = "A";
  ASSERT_TRUE(profile.SaveAs("/data/other.name"));
  EXPECT_TRUE(Disk().Exists("/data/other.name"));
  EXPECT_FALSE(Disk().Exists("/data/other.name.tmp"));
  EXPECT_FALSE(Disk().Exists(PathOf("A.idprof")));
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Disk().FileBytes(PathOf("A.idprof")), Disk().FileBytes("/data/other.name"));
}

TEST_F(ProfileSaveAsTest, WritesAProfileWithoutAName) {
  ProfileFile profile;
  profile.pollInterval = 9;
  EXPECT_FALSE(profile.Save());
  ASSERT_TRUE(profile.SaveAs("/data/p"));
  ProfileFile again;
  ASSERT_TRUE(again.Load("/data/p"));
  EXPECT_TRUE(again.profileName.IsEmpty());
  EXPECT_EQ(again.pollInterval, 9U);
}

TEST_F(ProfileSaveAsTest, AFailureLeavesTheTarget) {
  Disk().PutFile("/data/p", "before");
  ProfileFile profile;
  Disk().FailOperation(1);
  EXPECT_FALSE(profile.SaveAs("/data/p"));
  EXPECT_EQ(Disk().FileBytes("/data/p"), "before");
}

}  // namespace
}  // namespace kelvaro
