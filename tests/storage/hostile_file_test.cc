// Profiles are handed around by strangers. Whatever is in a file: no crash, no hang, no memory or
// work beyond what its size justifies, and an object that can be used afterwards.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/foundation/allocations.h"
#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kMax = 0xFFFFFFFF;

// A list that says what it likes of itself.
std::string Liar(std::uint32_t size, std::uint32_t id, std::uint32_t count,
                 const std::string& content = "") {
  return ListHead(size, id, count) + content;
}
std::string File(const std::string& root) { return "XBF" + Big(1, 2) + root; }
// A root that tells the truth around lists that may not.
std::string Around(const Chunks& lists) { return ProfileBytes(lists); }
// The usual lists, and one of Controls that holds these.
std::string WithControls(const Chunks& controls) {
  return Around({TypeList(), NameList("A"), List(4, controls)});
}
// A Control of the usual fields and one list.
std::string ControlWith(const std::string& list) {
  return List(5, {Field("c"), Field(Big(1, 4)), Field("\x01"), list});
}

class HostileFileTest : public ProfileTest {
 protected:
  // Loads it, and reads its name; the work is bounded by the size.
  bool Survive(const std::string& bytes) {
    Disk().PutFile("/data/h.idprof", bytes);
    Disk().ClearLog();
    const std::uint64_t before = Allocations();
    ProfileFile profile;
    const bool loaded = profile.Load("/data/h.idprof");
    profile.ReadProfileName("/data/h.idprof");
    // A byte costs less than one allocation: a chunk's head takes 6 of them, a step of keys 2, and
    // each makes a node with a value, some of them twice. The rest is the profile itself.
    EXPECT_LE(Allocations() - before, 600 + 4 * bytes.size());
    EXPECT_LE(Disk().Log().size(), 60u + 4 * bytes.size() / 1024);
    EXPECT_EQ(Disk().OpenHandles(), 0u);
    EXPECT_EQ(Disk().List("/data"), std::vector<std::string>{"h.idprof"});
    // Nothing of it sticks.
    Disk().PutFile("/data/h.idprof", SmallProfile("good"));
    EXPECT_TRUE(profile.Load("/data/h.idprof"));
    EXPECT_EQ(Bytes(profile.profileName), "good");
    EXPECT_EQ(profile.controls.count, 0);
    return loaded;
  }

  // The file of a random profile with everything in it.
  std::string GoodFile() {
    ProfileFile profile;
    RandomProfile(2).Fill(&profile, "good", 3);
    EXPECT_TRUE(profile.Save());
    return *Disk().FileBytes(PathOf("good.idprof"));
  }
};

TEST_F(HostileFileTest, EveryTruncationIsSurvived) {
  const std::string good = GoodFile();
  for (std::size_t n = 0; n < good.size(); ++n) {
    SCOPED_TRACE(n);
    Survive(good.substr(0, n));
    if (HasFailure()) break;
  }
}

TEST_F(HostileFileTest, EveryChangedByteIsSurvived) {
  const std::string good = GoodFile();
  for (std::size_t n = 0; n < good.size(); ++n) {
    for (const int change : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xFF}) {
      SCOPED_TRACE(testing::Message() << n << " ^ " << change);
      std::string bad = good;
      bad[n] = static_cast<char>(bad[n] ^ change);
      Survive(bad);
      if (HasFailure()) return;
    }
  }
}

TEST_F(HostileFileTest, ListsThatClaimFourBillionChildrenEndWithTheFile) {
  EXPECT_FALSE(Survive(File(Liar(kMax, 0, kMax))));
  EXPECT_FALSE(Survive(File(Liar(0, 0, kMax))));
  EXPECT_FALSE(Survive(File(Liar(kMax, 0, kMax, TypeList() + NameList("A")))));
  // A list of Controls whose children can't be told apart is none.
  EXPECT_TRUE(Survive(Around({TypeList(), NameList("A"), Liar(0, 4, kMax)})));
  EXPECT_TRUE(Survive(Around({TypeList(), NameList("A"), Liar(kMax, 4, kMax)})));
  EXPECT_FALSE(Survive(WithControls({Liar(0, 5, kMax)})));
  for (const std::uint32_t id : {6u, 7u, 14u}) {
    EXPECT_FALSE(Survive(WithControls({ControlWith(Liar(0, id, kMax))}))) << id;
  }
}

TEST_F(HostileFileTest, SizesBeyondTheFileEndWithTheFile) {
  const std::string field = Big(2, 2) + Big(kMax, 4) + "abc";
  EXPECT_FALSE(Survive(File(ListHead(kMax, 0, 1) + field)));
  EXPECT_FALSE(Survive(File(ListHead(kMax, 0, 2) + field)));
  EXPECT_FALSE(Survive(Around({Liar(kMax, 1, 1, field)})));
  EXPECT_FALSE(Survive(Around({TypeList(), Liar(kMax, 3, 2, field)})));
  // A device whose fields can't be told apart is none; one field that ends too early is a failure.
  EXPECT_TRUE(Survive(Around({TypeList(), NameList("A"), Liar(9, 11, 3, field)})));
  EXPECT_FALSE(Survive(Around({TypeList(), NameList("A"), Liar(9, 11, 1, field)})));
  EXPECT_FALSE(Survive(Around({TypeList(), NameList("A"), Liar(9, 12, 1, field)})));
}

TEST_F(HostileFileTest, ListsWithinListsAreEnteredNoDeeperThanAProfileGoes) {
  std::string nested;
  for (std::uint32_t i = 0; i < 20000; ++i) nested += ListHead((20000 - i - 1) * 14, 4 + i % 2, 1);
  Survive(Around({TypeList(), NameList("A"), nested}));
  // Each within the Control around it, all of them with id 5.
  nested.clear();
  for (std::uint32_t i = 0; i < 20000; ++i) nested += ListHead((20000 - i - 1) * 14, 5, 1);
  EXPECT_FALSE(Survive(WithControls({nested})));
}

// n lists of Controls' ids with nothing in them by their size, but a count that takes in all those
// behind it: what is read for one is read again for the next.
TEST_F(HostileFileTest, ChildrenOutsideOfTheirListAreFollowedUpToALimitOnly) {
  constexpr std::uint32_t kControls = 30000;
  Chunks controls;
  for (std::uint32_t i = 0; i < kControls; ++i) {
    controls.push_back(ListHead(0, 99, kControls - i - 1));
  }
  // Walked in full these were 450 million heads.
  EXPECT_FALSE(Survive(WithControls(controls)));
}

// A Trigger at the end of each Control that claims to be as long as all the Controls behind it.
TEST_F(HostileFileTest, AListLongerThanTheOneAroundItIsFollowedUpToALimitOnly) {
  constexpr std::uint32_t kControls = 4000;
  const auto length = static_cast<std::uint32_t>(ControlWith(ListHead(0, 6, 0)).size());
  Chunks controls;
  for (std::uint32_t i = 0; i < kControls; ++i) {
    const std::uint32_t behind = kControls - i - 1;
    controls.push_back(ControlWith(ListHead(behind * length, 6, behind)));
  }
  // Followed in full these were 8 million heads.
  EXPECT_FALSE(Survive(WithControls(controls)));
}

TEST_F(HostileFileTest, FieldsThatReachOutOfTheirListAreReadUpToALimitOnly) {
  constexpr std::uint32_t kControls = 2000;
  // The toggle, which may be unreadable, reaches 1 MB out of each.
  const std::string far = Big(2, 2) + Big(1000000, 4);
  const std::string one = List(5, {Field(""), Field(""), far});
  // Read in full these were 2 GB.
  EXPECT_TRUE(Survive(WithControls(Chunks(kControls, one)) + std::string(1000000, 'x')));
  // The same out of the items of one Trigger, where a failed read is passed over.
  Chunks items(kControls + 1, Big(5, 2) + Big(0, 4));
  items[0] = Field(TriggerField(1, 1, 1));
  items.push_back(far);
  EXPECT_TRUE(Survive(WithControls({ControlWith(List(6, items))}) + std::string(1000000, 'x')));
}

TEST_F(HostileFileTest, SizesThatAreTooSmallAreForgiven) {
  // All lists claim to hold nothing; the counts are right.
  const std::string file = File(Liar(0, 0, 2, Liar(0, 1, 1, Field("EventProfile")))).substr(0);
  ProfileFile profile;
  Disk().PutFile("/data/p.idprof", file);
  EXPECT_FALSE(profile.Load("/data/p.idprof")) << "the name list isn't found behind it";
  // One whose root alone is wrong reads in full.
  const std::string content = TypeList() + RevisionList() + NameList("A");
  EXPECT_TRUE(LoadBytes(&profile, File(Liar(0, 0, 3, content))));
  EXPECT_EQ(Bytes(profile.profileName), "A");
}

TEST_F(HostileFileTest, ManyEmptyControlsAreReadInTimeThatGrowsWithTheirNumber) {
  constexpr std::uint32_t kControls = 100000;
  const std::string control = List(5, {Field(""), Field("")});
  // The walk over the indexes is counted by the reader itself, at each Control that it enters.
  class Counting : public ProfileFile {
   public:
    bool ReadField(std::uint32_t index, ByteString* out) override {
      for (const OpenList& open : openLists) {
        if (open.id == profile_list::kControls) {
          links = open.cursor.LinksFollowed();
        }
      }
      return ProfileFile::ReadField(index, out);
    }
    std::uint64_t links = 0;
  };
  Counting profile;
  Disk().ClearLog();
  ASSERT_TRUE(LoadBytes(&profile, WithControls(Chunks(kControls, control))));
  EXPECT_EQ(profile.controls.count, static_cast<std::int32_t>(kControls));
  EXPECT_GE(profile.links, kControls - 2u);
  EXPECT_LE(profile.links, kControls);
  // 2.6 MB in windows of 128 KB, with some to and fro.
  EXPECT_LE(Disk().Count("ReadFile"), 200u);
}

TEST_F(HostileFileTest, NamesWithPathPartsAndZeroBytesStayInTheFolder) {
  for (const std::string& name :
       {std::string("../../outside"), std::string("/outside"), std::string("a\0/../../b", 11),
        std::string("C:\\outside"), std::string(244, '.'), std::string("..\\.."), std::string(".."),
        std::string("a/../../out"), std::string("\\\\host\\out")}) {
    ProfileFile profile;
    ASSERT_TRUE(LoadBytes(&profile, SmallProfile(name)));
    EXPECT_TRUE(profile.Save());
    EXPECT_EQ(Disk().List("/"), (std::vector<std::string>{"game", "home", "data"}));
    EXPECT_EQ(Disk().List("/game"), (std::vector<std::string>{"kelvaro", "Profiles"}));
    EXPECT_EQ(Bytes(profile.FindProfileFile(TextOf(name))).rfind(PathOf(""), 0), 0u);
    EXPECT_TRUE(profile.DeleteProfileFile());
    EXPECT_EQ(Disk().List(kFolder).size(), 0u);
    Disk().Remove("/data");
  }
}

TEST_F(HostileFileTest, KeysOfAMegabyteWithoutScanCodesAreParsedInLinearTime) {
  std::string keys;
  for (int i = 0; i < 250000; ++i) keys += std::string("A\0\x0D\x01", 4);
  const std::string action = List(7, {Field(OldTimings(0, 0, 0, 0)), Field(keys)});
  ProfileFile profile;
  ASSERT_TRUE(LoadBytes(&profile, WithControls({ControlWith(action)})));
  const auto& read = *dynamic_cast<KeyAction*>(*profile.controls.head->value->actions.head->value);
  EXPECT_EQ(read.steps.count, 500000);
}

// ---- No memory

TEST_F(HostileFileTest, ALoadThatRunsOutOfMemoryAnywhereFailsOrLeavesOutAndNothingLeaks) {
  const std::string good = GoodFile();
  Disk().PutFile("/data/p.idprof", good);
  bool everLoaded = false;
  for (std::int32_t k = 0; k < 100000; k = k < 300 ? k + 1 : k + k / 8) {
    ProfileFile profile;
    bool loaded = false;
    {
      FailingAllocations failing(k);
      loaded = profile.Load("/data/p.idprof");
    }
    if (k == 0) {
      EXPECT_FALSE(loaded);
    }
    everLoaded = everLoaded || loaded;
    EXPECT_EQ(Disk().OpenHandles(), 0u) << k;
    ASSERT_TRUE(profile.Load("/data/p.idprof")) << k;
    ASSERT_EQ(profile.controls.count, 3) << k;
  }
  EXPECT_TRUE(everLoaded);
}

TEST_F(HostileFileTest, WhatALoadLeavesOutForWantOfMemoryIsTold) {
  ProfileFile whole;
  RandomProfile(2).Fill(&whole, "good", 3);
  ASSERT_TRUE(whole.Save());
  bool untouched = false;
  for (std::uint32_t nth = 1; !untouched; ++nth) {
    SCOPED_TRACE(nth);
    ProfileFile profile;
    bool loaded = false;
    {
      const FailingAllocation failing(nth);
      loaded = profile.Load(TextOf(PathOf("good.idprof")));
      untouched = failing.Failed() == 0;
    }
    if (loaded && profile.DamagedFile().IsEmpty()) ExpectSame<Profile>(profile, whole);
    if (HasFailure()) break;
  }
}

}  // namespace
}  // namespace kelvaro
