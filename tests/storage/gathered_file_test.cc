#include "storage/gathered_file.h"

#include <gtest/gtest.h>

#include <string>

#include "app/platform/simulation/simulation.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

constexpr char kGatheredPath[] = "/game/g";

class GatheredFileTest : public testing::Test {
 protected:
  platform::simulation::VirtualDisk& Disk() { return sim.Disk(); }
  std::string OnDisk() { return Disk().FileBytes(kGatheredPath).value_or("<none>"); }
  bool Write(const std::string& bytes) {
    return file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  }

  platform::simulation::Simulation sim;
  GatheredFile file;
};

TEST_F(GatheredFileTest, BytesReachTheDiskInOneWriteWhenItIsClosed) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("one "));
  EXPECT_TRUE(Write("two"));
  EXPECT_EQ(OnDisk(), "");
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(OnDisk(), "one two");
  EXPECT_EQ(Disk().Count("WriteFile"), 1u);
  EXPECT_EQ(Disk().Count("SetFilePointer"), 0u);
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(GatheredFileTest, WhatIsPatchedGoesDownWithAllBehindIt) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abcdef"));
  EXPECT_TRUE(file.PutDown());
  EXPECT_EQ(OnDisk(), "abcdef");
  file.Seek(2);
  EXPECT_TRUE(Write("XY"));
  EXPECT_EQ(file.Position(), 4u);
  file.SeekToEnd();
  EXPECT_TRUE(Write("ghi"));
  EXPECT_EQ(OnDisk(), "abcdef");
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(OnDisk(), "abXYefghi");
  EXPECT_EQ(Disk().Count("WriteFile"), 2u);
}

TEST_F(GatheredFileTest, WhatFollowsIsWrittenWithoutASeek) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  EXPECT_TRUE(file.PutDown());
  EXPECT_TRUE(Write("def"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(OnDisk(), "abcdef");
  EXPECT_EQ(Disk().Count("SetFilePointer"), 0u);
}

TEST_F(GatheredFileTest, APlaceThatCantBeReachedIsToldAndPatchedLater) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abcdef"));
  EXPECT_TRUE(file.PutDown());
  file.Seek(2);
  EXPECT_TRUE(Write("XY"));
  Disk().FailOperation(1);
  EXPECT_FALSE(file.PutDown());
  EXPECT_EQ(OnDisk(), "abcdef");
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(OnDisk(), "abXYef");
}

TEST_F(GatheredFileTest, ItsRoomDoublesWhereverItIsFull) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  const std::uint64_t before = Allocations();
  for (int i = 0; i < 1024; ++i) EXPECT_TRUE(Write("x"));
  EXPECT_EQ(Allocations() - before, 11u) << "1, 2, 4 and so on up to 1024";
}

TEST_F(GatheredFileTest, WithoutMemoryNothingIsTaken) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  {
    const FailingAllocations failing;
    EXPECT_FALSE(Write("defg"));
    EXPECT_EQ(file.Position(), 3u);
  }
  EXPECT_TRUE(Write("hijk"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(OnDisk(), "abchijk");
}

TEST_F(GatheredFileTest, NothingNewIsNotWritten) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  EXPECT_TRUE(file.PutDown());
  EXPECT_TRUE(file.PutDown());
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(Disk().Count("WriteFile"), 1u);
}

TEST_F(GatheredFileTest, ASeekBehindTheEndIsToTheEnd) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  file.Seek(100);
  EXPECT_EQ(file.Position(), 3u);
}

TEST_F(GatheredFileTest, WhatTheSystemTookOfAFailedWriteIsNotWrittenAgain) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abcdef"));
  Disk().FailInside(1, 4);
  EXPECT_FALSE(file.PutDown());
  EXPECT_EQ(OnDisk(), "abcd");
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(OnDisk(), "abcdef");
}

TEST_F(GatheredFileTest, AWriteThatFailsAtItsEndHasFailed) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  Disk().FailInside(1, 3);
  EXPECT_FALSE(file.PutDown());
  EXPECT_EQ(OnDisk(), "abc");
}

TEST_F(GatheredFileTest, ACloseThatFailsClosesAllTheSame) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  Disk().FailOperation(1);
  EXPECT_FALSE(file.Close());
  EXPECT_FALSE(file.IsOpen());
  EXPECT_TRUE(file.Close());
  file.Release();
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(GatheredFileTest, AClosedFileIsCreatedByNobodyElseUntilItIsReleased) {
  GatheredFile other;
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  EXPECT_FALSE(other.Create(kGatheredPath));
  EXPECT_TRUE(file.Close());
  EXPECT_FALSE(other.Create(kGatheredPath));
  EXPECT_EQ(OnDisk(), "abc");
  file.Release();
  EXPECT_TRUE(other.Create(kGatheredPath));
}

TEST_F(GatheredFileTest, AFileReleasedWithoutACloseStaysAsItWasPutDown) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("abc"));
  EXPECT_TRUE(file.PutDown());
  EXPECT_TRUE(Write("def"));
  file.Release();
  EXPECT_EQ(OnDisk(), "abc");
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(GatheredFileTest, WithoutAnOpenFileNothingIsTaken) {
  EXPECT_FALSE(Write("abc"));
  EXPECT_FALSE(file.Create("/no/such/folder/g"));
  EXPECT_FALSE(file.IsOpen());
}

TEST_F(GatheredFileTest, TheSameObjectBeginsTheNextFileAfresh) {
  ASSERT_TRUE(file.Create(kGatheredPath));
  EXPECT_TRUE(Write("a long first file"));
  ASSERT_TRUE(file.Create("/game/h"));
  EXPECT_EQ(OnDisk(), "a long first file");
  EXPECT_TRUE(Write("h"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes("/game/h"), "h");
}

}  // namespace
}  // namespace kelvaro
