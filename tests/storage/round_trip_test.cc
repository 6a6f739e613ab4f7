// Profiles nobody thought of, there and back.
#include <gtest/gtest.h>

#include <string>

#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

class RoundTripTest : public ProfileTest {};

TEST_F(RoundTripTest, AThousandRandomProfilesComeBackEqualAndAreSavedToTheSameBytes) {
  for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE(seed);
    ProfileFile profile;
    RandomProfile(seed).Fill(&profile);
    ASSERT_TRUE(profile.Save());
    const std::string path = PathOf(Bytes(ProfileFile::ProfileFileName(profile.profileName)));
    const std::string bytes = *Disk().FileBytes(path);

    ProfileFile again;
    // What the file says replaces all of what was there.
    RandomProfile(seed + 1000).Fill(&again, 2);
    ASSERT_TRUE(again.Load(TextOf(path)));
    ExpectSameProfile(profile, again);
    EXPECT_TRUE(again.ReadProfileName(TextOf(path)).Equals(profile.profileName));

    Disk().Remove(path);
    ASSERT_TRUE(again.Save());
    ASSERT_EQ(*Disk().FileBytes(path), bytes);
    Disk().Remove(path);
    if (HasFailure()) break;
  }
}

TEST_F(RoundTripTest, AProfileLargerThanTheReadersWindowComesBackEqual) {
  ProfileFile profile;
  RandomProfile(4711).Fill(&profile, "Large", 3000);
  ASSERT_TRUE(profile.Save());
  EXPECT_GT(Disk().FileBytes(PathOf("Large.idprof"))->size(), 4u * BinaryFile::kWindowSize);
  ProfileFile again;
  ASSERT_TRUE(again.Load(TextOf(PathOf("Large.idprof"))));
  ExpectSameProfile(profile, again);
}

}  // namespace
}  // namespace kelvaro
