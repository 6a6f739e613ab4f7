#include "foundation/binary_file.h"

#include <gtest/gtest.h>

#include <string>

#include "app/platform/simulation/simulation.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

constexpr char kPath[] = "/home/player/file";

// Differs from one position to the next, and between positions that are half a window apart.
char ByteAt(std::size_t position) { return static_cast<char>(position * 7 % 251); }

std::string Bytes(std::size_t count) {
  std::string bytes(count, 0);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = ByteAt(i);
  return bytes;
}

class BinaryFileTest : public ::testing::Test {
 protected:
  void OpenWith(const std::string& bytes) {
    disk.PutFile(kPath, bytes);
    file.Assign(kPath);
    ASSERT_TRUE(file.Open());
    disk.ClearLog();
  }

  // Reads one byte, which has to be the file's.
  void ReadAt(std::uint64_t position) {
    ByteString out;
    ASSERT_TRUE(file.ReadBytes(&out, position, 1)) << position;
    ASSERT_EQ(out.Length(), 1u);
    EXPECT_EQ(out[0], ByteAt(position)) << position;
  }

  std::uint32_t Reads() const { return disk.Count("ReadFile"); }

  Simulation sim;
  VirtualDisk& disk = sim.Disk();
  BinaryFile file;
};

TEST_F(BinaryFileTest, ANewOneHasNoWindow) {
  EXPECT_EQ(file.bytesInWindow, 0u);
  EXPECT_EQ(file.windowFirst, BinaryFile::kNoWindow);
  EXPECT_EQ(file.windowLast, 0u);
  EXPECT_EQ(file.lastError, 0u);
}

TEST_F(BinaryFileTest, WithoutMemoryForAWindowItDoesNotOpen) {
  disk.PutFile(kPath, "abc");
  file.Assign(kPath);
  {
    const FailingAllocations failing;
    EXPECT_FALSE(file.Open());
  }
  EXPECT_EQ(disk.OpenHandles(), 0u);
  EXPECT_TRUE(file.Open());
}

TEST_F(BinaryFileTest, AReadWithoutMemoryFails) {
  OpenWith(Bytes(100));
  ByteString out;
  {
    const FailingAllocations failing;
    EXPECT_FALSE(file.ReadBytes(&out, 0, 100));
  }
  EXPECT_TRUE(file.ReadBytes(&out, 0, 100));
}

TEST_F(BinaryFileTest, AnEmptyFileOpensAndHasNothingToRead) {
  disk.PutFile(kPath, "");
  file.Assign(kPath);
  EXPECT_TRUE(file.Open());
  EXPECT_NE(file.window, nullptr);
  EXPECT_EQ(file.bytesInWindow, 0u);
  EXPECT_EQ(file.windowFirst, 0xFFFFFFFFFFFFFFFFu);
  EXPECT_EQ(file.windowLast, 0u);
  ByteString out("left");
  EXPECT_FALSE(file.ReadBytes(&out, 0, 1));
  EXPECT_TRUE(out.IsEmpty());
  EXPECT_FALSE(file.ReadBytes(&out, 5, 1));
  EXPECT_TRUE(file.Close());
}

TEST_F(BinaryFileTest, TheFirstWindowIsReadOnOpening) {
  disk.PutFile(kPath, Bytes(200'000));
  file.Assign(kPath);
  EXPECT_TRUE(file.Open());
  EXPECT_EQ(file.windowSize, 0x20000u);
  EXPECT_EQ(file.bytesInWindow, 131'072u);
  EXPECT_EQ(file.windowFirst, 0u);
  EXPECT_EQ(file.windowLast, 131'071u);
  EXPECT_EQ(file.lastError, 0u);
  EXPECT_EQ(Reads(), 1u);
  EXPECT_EQ(disk.Count("SetFilePointer"), 0u);
}

TEST_F(BinaryFileTest, TheWindowFollowsForwardAndBackward) {
  OpenWith(Bytes(200'000));
  ReadAt(150'000);
  EXPECT_EQ(file.windowFirst, 150'000u);
  EXPECT_EQ(file.windowLast, 199'999u);
  EXPECT_EQ(file.bytesInWindow, 50'000u);
  EXPECT_EQ(Reads(), 1u);
  ReadAt(100'000);
  EXPECT_EQ(file.windowFirst, 34'464u);
  EXPECT_EQ(file.windowLast, 165'535u);
  EXPECT_EQ(Reads(), 2u);
  EXPECT_EQ(disk.Count("SetFilePointer"), 2u);
}

TEST_F(BinaryFileTest, WalkingToAndFroAroundAPlaceBehindMovesTheWindowOnce) {
  OpenWith(Bytes(200'000));
  ReadAt(150'000);
  disk.ClearLog();
  for (int step = 0; step < 1'000; ++step) {
    ReadAt(100'000 - step);
    ReadAt(100'000 + step);
  }
  EXPECT_EQ(Reads(), 1u);
}

TEST_F(BinaryFileTest, ReadsInsideTheWindowCostNothing) {
  for (const std::size_t size : {55, 1}) {
    OpenWith(Bytes(size));
    for (std::uint64_t position = size; position-- > 0;) ReadAt(position);
    EXPECT_TRUE(disk.Log().empty());
  }
}

TEST_F(BinaryFileTest, WithinHalfAWindowOfTheStartTheWindowStartsAtZero) {
  struct Row {
    std::uint64_t position, first;
  };
  for (const Row& row :
       {Row{0, 0}, Row{1, 0}, Row{65'535, 0}, Row{65'536, 0}, Row{65'537, 1}, Row{70'000, 4'464}}) {
    OpenWith(Bytes(400'000));
    ReadAt(300'000);
    ReadAt(row.position);
    EXPECT_EQ(file.windowFirst, row.first) << row.position;
  }
}

TEST_F(BinaryFileTest, AReadThatRunsPastTheEndHoldsTheBytesUpToIt) {
  OpenWith("0123456789");
  ByteString out("left");
  EXPECT_FALSE(file.ReadBytes(&out, 7, 5));
  EXPECT_EQ(Bytes(out), "789");
  EXPECT_FALSE(file.ReadBytes(&out, 10, 1));
  EXPECT_EQ(Bytes(out), "");
  EXPECT_TRUE(file.ReadBytes(&out, 7, 3));
  EXPECT_EQ(Bytes(out), "789");
}

TEST_F(BinaryFileTest, ACountOfZeroIsTrueWhereverItIs) {
  OpenWith("abc");
  ByteString out("left");
  EXPECT_TRUE(file.ReadBytes(&out, 1'000, 0));
  EXPECT_TRUE(out.IsEmpty());
  file.Close();
  out = "left";
  EXPECT_TRUE(file.ReadBytes(&out, 0, 0));
  EXPECT_TRUE(out.IsEmpty());
}

TEST_F(BinaryFileTest, AReadAcrossTheWindowsEndMovesItOn) {
  OpenWith(Bytes(200'000));
  ByteString out;
  EXPECT_TRUE(file.ReadBytes(&out, 131'070, 4));
  EXPECT_EQ(Bytes(out), Bytes(200'000).substr(131'070, 4));
  EXPECT_EQ(file.windowFirst, 131'072u);
  EXPECT_EQ(Reads(), 1u);
}

TEST_F(BinaryFileTest, AReadLongerThanTheWindowComesInRuns) {
  const std::string bytes = Bytes(400'000);
  OpenWith(bytes);
  ByteString out;
  EXPECT_TRUE(file.ReadBytes(&out, 10, 399'990));
  EXPECT_TRUE(Bytes(out) == bytes.substr(10));
  // 131,072 were there; 131,072 more twice, and 6,784 at the end.
  EXPECT_EQ(Reads(), 3u);
}

TEST_F(BinaryFileTest, MemoryFollowsTheFileAndNotTheCount) {
  OpenWith("abc");
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 0, 0xFFFFFFFFu));
  EXPECT_EQ(Bytes(out), "abc");
  EXPECT_LT(out.Capacity(), 100);
}

TEST_F(BinaryFileTest, PositionsThatNoFileReachesFail) {
  OpenWith("abc");
  ByteString out;
  for (const std::uint64_t position :
       {std::uint64_t{3}, std::uint64_t{1} << 32, (std::uint64_t{1} << 63) - 1,
        std::uint64_t{1} << 63, ~std::uint64_t{0} - 1, ~std::uint64_t{0}}) {
    EXPECT_FALSE(file.ReadBytes(&out, position, 4)) << position;
    EXPECT_TRUE(out.IsEmpty());
  }
  EXPECT_TRUE(file.ReadBytes(&out, 0, 3));
  EXPECT_EQ(Bytes(out), "abc");
}

TEST_F(BinaryFileTest, NumbersHaveTheMostSignificantByteFirst) {
  OpenWith(std::string("\x01\x02\xFF\xFE\xFD", 5));
  std::uint16_t two = 0;
  std::uint32_t four = 0;
  EXPECT_TRUE(file.ReadU16(&two, 0));
  EXPECT_EQ(two, 0x0102);
  EXPECT_TRUE(file.ReadU16(&two, 3));
  EXPECT_EQ(two, 0xFEFD);
  EXPECT_TRUE(file.ReadU32(&four, 1));
  EXPECT_EQ(four, 0x02FFFEFDu);
}

TEST_F(BinaryFileTest, ANumberThatTheFileCutsShortIsLeftAlone) {
  OpenWith("abcd");
  std::uint16_t two = 7;
  std::uint32_t four = 8;
  EXPECT_FALSE(file.ReadU16(&two, 3));
  EXPECT_FALSE(file.ReadU32(&four, 1));
  EXPECT_EQ(two, 7);
  EXPECT_EQ(four, 8u);
}

TEST_F(BinaryFileTest, WhatIsNotThereDoesNotOpen) {
  file.Assign("/home/player/none");
  file.lastError = 99;
  EXPECT_FALSE(file.Open());
  EXPECT_EQ(file.lastError, 0u);
  EXPECT_EQ(file.window, nullptr);
  EXPECT_EQ(file.handle, nullptr);
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 0, 1));
}

TEST_F(BinaryFileTest, AFolderDoesNotOpenAndAnEmptyPathAsksNobody) {
  EXPECT_FALSE(file.Open());
  EXPECT_EQ(file.window, nullptr);
  EXPECT_TRUE(disk.Log().empty());
  file.Assign("/home/player");
  EXPECT_FALSE(file.Open());
}

TEST_F(BinaryFileTest, AFirstReadThatFailsStillOpens) {
  disk.PutFile(kPath, "abc");
  file.Assign(kPath);
  disk.FailOperation(2, 23);  // behind CreateFileA
  EXPECT_TRUE(file.Open());
  EXPECT_EQ(file.lastError, 23u);
  EXPECT_EQ(file.windowFirst, BinaryFile::kNoWindow);
  EXPECT_EQ(file.windowLast, 0u);
  ByteString out;
  EXPECT_TRUE(file.ReadBytes(&out, 1, 2));
  EXPECT_EQ(Bytes(out), "bc");
  EXPECT_EQ(file.windowFirst, 0u);
}

TEST_F(BinaryFileTest, WithoutAWindowEveryPositionLiesBeforeIt) {
  OpenWith("");
  disk.PutFile(kPath, Bytes(200'000));
  ReadAt(100'000);
  EXPECT_EQ(file.windowFirst, 34'464u);
}

TEST_F(BinaryFileTest, ASeekThatFailsIsNotedAndALaterReadWorks) {
  for (const std::uint32_t error : {25u, 1u}) {
    OpenWith(Bytes(200'000));
    disk.FailOperation(1, error);
    ByteString out;
    EXPECT_FALSE(file.ReadBytes(&out, 150'000, 1));
    EXPECT_EQ(file.lastError, error);
    EXPECT_EQ(file.windowFirst, 0u);
    EXPECT_EQ(Reads(), 0u);
    ReadAt(150'000);
  }
}

TEST_F(BinaryFileTest, AReadBehindTheEndLeavesTheWindowWhereItWas) {
  OpenWith(Bytes(100));
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 100, 1));
  EXPECT_EQ(file.windowFirst, 0u);
  disk.ClearLog();
  ReadAt(99);
  EXPECT_TRUE(disk.Log().empty());
}

TEST_F(BinaryFileTest, TheLastByteAloneIsAWindow) {
  OpenWith(Bytes(131'073));
  ReadAt(131'072);
  EXPECT_EQ(file.bytesInWindow, 1u);
}

TEST_F(BinaryFileTest, AFileThatIsReadMayBeWrittenMeanwhile) {
  OpenWith("abc");
  EXPECT_NE(disk.CreateFileA(kPath, platform::GENERIC_WRITE, platform::FILE_SHARE_READ,
                             platform::OPEN_EXISTING),
            nullptr);
}

TEST_F(BinaryFileTest, AReadThatFailsLeavesTheWindowWhereItWas) {
  OpenWith(Bytes(200'000));
  disk.FailOperation(2, 30);  // behind SetFilePointer
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 150'000, 1));
  EXPECT_EQ(file.lastError, 30u);
  EXPECT_EQ(file.bytesInWindow, 0u);
  disk.ClearLog();
  ReadAt(131'071);
  EXPECT_TRUE(disk.Log().empty());
  ReadAt(150'000);
}

TEST_F(BinaryFileTest, AFileThatWasCutShortUnderItsReaderEndsThere) {
  OpenWith(Bytes(200'000));
  ReadAt(150'000);
  disk.PutFile(kPath, Bytes(50'000));
  // The window starts at 34,464 again and comes 50,000 bytes short of the position.
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 100'000, 1));
  EXPECT_TRUE(out.IsEmpty());
  ReadAt(49'999);
}

TEST_F(BinaryFileTest, ClosingGivesEverythingBackOnce) {
  EXPECT_TRUE(file.Close());  // never opened
  OpenWith("abc");
  EXPECT_EQ(disk.OpenHandles(), 1u);
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(file.window, nullptr);
  EXPECT_EQ(file.handle, nullptr);
  EXPECT_EQ(file.bytesInWindow, 0u);
  EXPECT_EQ(file.windowFirst, BinaryFile::kNoWindow);
  EXPECT_EQ(file.windowLast, 0u);
  EXPECT_EQ(disk.OpenHandles(), 0u);
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(disk.Count("CloseHandle"), 1u);
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 0, 1));
}

TEST_F(BinaryFileTest, ACloseThatFailsIsToldOnceAndClosesAllTheSame) {
  OpenWith("abc");
  disk.FailOperation(1, 6);
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(file.lastError, 6u);
  EXPECT_EQ(file.window, nullptr);
  EXPECT_EQ(disk.OpenHandles(), 0u);
  EXPECT_TRUE(file.Close());
}

TEST_F(BinaryFileTest, OpensAgainOnAnotherPath) {
  OpenWith("first");
  disk.PutFile("/home/player/other", "second");
  file.Assign("/home/player/other");
  EXPECT_TRUE(file.Open());
  EXPECT_EQ(disk.OpenHandles(), 1u);
  ByteString out;
  EXPECT_TRUE(file.ReadBytes(&out, 0, 6));
  EXPECT_EQ(Bytes(out), "second");
}

TEST_F(BinaryFileTest, NothingOfAFileIsLeftWhenAnEmptyOneIsOpened) {
  OpenWith("first");
  disk.PutFile(kPath, "");
  EXPECT_TRUE(file.Open());
  ByteString out;
  EXPECT_FALSE(file.ReadBytes(&out, 0, 1));
  EXPECT_TRUE(out.IsEmpty());
}

TEST_F(BinaryFileTest, ItsEndCloses) {
  disk.PutFile(kPath, "abc");
  {
    BinaryFile other{ByteString(kPath)};
    EXPECT_TRUE(other.Open());
    EXPECT_EQ(disk.OpenHandles(), 1u);
  }
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

}  // namespace
}  // namespace kelvaro
