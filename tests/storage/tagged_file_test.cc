#include "storage/tagged_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/foundation/allocations.h"
#include "tests/platform/watched_files.h"
#include "tests/storage/chunks.h"

namespace kelvaro {
namespace {

using platform::FILE_ATTRIBUTE_READONLY;
using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

constexpr char kPath[] = "/data/a.x";
constexpr char kTemporary[] = "/data/a.x.tmp";

// Shows what it inherits.
class ShownFile : public TaggedFile {
 public:
  explicit ShownFile(const char* ownMagic = "XFF") { magic = ownMagic; }
  using TaggedFile::current;
  using TaggedFile::firstChunkOffset;
  using TaggedFile::isOpen;
  using TaggedFile::isWriting;
  using TaggedFile::openLists;
  using TaggedFile::path;
  using TaggedFile::reader;
  using TaggedFile::useTemporary;
  using TaggedFile::version;
  using TaggedFile::writeHandle;

  std::string Read(std::uint32_t index) {
    ByteString data = "untouched";
    return ReadField(index, &data) ? Bytes(data) : "<failed: " + Bytes(data) + ">";
  }
};

class TaggedFileTest : public testing::Test {
 protected:
  VirtualDisk& Disk() { return sim.Disk(); }
  std::string On(const char* path) { return ToHexText(Disk().FileBytes(path).value_or("")); }
  void Put(const std::string& bytes) { Disk().PutFile(kPath, bytes); }
  void Open(const std::string& bytes) {
    Put(bytes);
    ASSERT_TRUE(file.OpenForRead(kPath));
  }
  void Begin() { ASSERT_TRUE(file.OpenForWrite(kPath)); }

  Simulation sim;
  ShownFile file;
};

const std::string kTwoLists = FromHex(
    "584246 0001"
    "0001 00000024 00000000 00000002"
    "0001 00000008 00000001 00000001"
    "0002 00000002 4869"
    "0001 00000000 00000009 00000000");

// ---- The bytes

TEST_F(TaggedFileTest, WritesTheTwoListsOfTheExampleAsThese55Bytes) {
  ShownFile file("XBF");
  ASSERT_TRUE(file.OpenForWrite(kPath));
  EXPECT_TRUE(file.Descend(1));
  EXPECT_TRUE(file.WriteBytes("Hi"));
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.Descend(9));
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.Close());
  ASSERT_EQ(kTwoLists.size(), 55u);
  EXPECT_EQ(On(kPath), ToHexText(kTwoLists));
}

TEST_F(TaggedFileTest, ReadsTheseBytesBack) {
  Put(kTwoLists);
  ShownFile file("XBF");
  ASSERT_TRUE(file.OpenForRead(kPath));
  EXPECT_EQ(file.ListId(), 0u);
  EXPECT_EQ(file.ChildCount(), 2u);
  ASSERT_TRUE(file.Descend(1));
  EXPECT_EQ(file.ListId(), 1u);
  EXPECT_EQ(file.ChildCount(), 1u);
  EXPECT_EQ(file.Read(0), "Hi");
  EXPECT_TRUE(file.Ascend());
  ASSERT_TRUE(file.Descend(9));
  EXPECT_EQ(file.ChildCount(), 0u);
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.Close());
}

TEST_F(TaggedFileTest, TheMagicIsXFFUnlessADerivedClassSetsItsOwn) {
  TaggedFile file;
  ASSERT_TRUE(file.OpenForWrite(kPath));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(On(kPath), ToHexText(FromHex("584646 0001 0001 00000000 00000000 00000000")));
}

TEST_F(TaggedFileTest, AMagicOfAnotherLengthMovesTheRoot) {
  ShownFile file("LONGER");
  ASSERT_TRUE(file.OpenForWrite(kPath));
  EXPECT_TRUE(file.WriteBytes("x"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("x")}, "LONGER"));
  ASSERT_TRUE(file.OpenForRead(kPath));
  EXPECT_EQ(file.firstChunkOffset, 8u);
  EXPECT_EQ(file.Read(0), "x");
}

TEST_F(TaggedFileTest, AListWithoutChildrenIs14BytesOfSizeAndCount0) {
  Begin();
  EXPECT_TRUE(file.Descend(0x01020304));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(On(kPath), ToHexText(FromHex("584646 0001"
                                         "0001 0000000E 00000000 00000001"
                                         "0001 00000000 01020304 00000000")));
}

TEST_F(TaggedFileTest, FieldsHaveTheTypeThatTheyAreWrittenWith) {
  Begin();
  EXPECT_TRUE(file.WriteField(5, TextOf(Big(7, 4))));
  EXPECT_TRUE(file.WriteField(0x1234, ""));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(On(kPath), ToHexText(FromHex("584646 0001"
                                         "0001 00000010 00000000 00000002"
                                         "0005 00000004 00000007"
                                         "1234 00000000")));
}

TEST_F(TaggedFileTest, AListsSizeIsThatOfItsChildrenAndNotOfItsHeader) {
  Begin();
  EXPECT_TRUE(file.Descend(4));
  EXPECT_TRUE(file.Descend(5));
  EXPECT_TRUE(file.WriteBytes("abc"));
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.WriteBytes("d"));
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.Close());
  // The inner one holds 6 + 3; the outer 14 + 9 and 6 + 1; the root 14 + 30.
  EXPECT_EQ(On(kPath), ToHexText(FromHex("584646 0001"
                                         "0001 0000002C 00000000 00000001"
                                         "0001 0000001E 00000004 00000002"
                                         "0001 00000009 00000005 00000001"
                                         "0002 00000003 616263"
                                         "0002 00000001 64")));
}

// ---- Reading

TEST_F(TaggedFileTest, AListOfCountAndSize0CanBeEnteredAndHoldsNothing) {
  Open(Container({List(9, {})}));
  ASSERT_TRUE(file.Descend(9));
  EXPECT_EQ(file.Read(0), "<failed: untouched>");
  EXPECT_FALSE(file.DescendAt(0));
}

TEST_F(TaggedFileTest, AnEmptyFieldReadsAsAnEmptyString) {
  Open(Container({Field("")}));
  ByteString data = "before";
  EXPECT_TRUE(file.ReadField(0, &data));
  EXPECT_TRUE(data.IsEmpty());
}

TEST_F(TaggedFileTest, AnIndexEqualToTheCountIsNoFieldButClampsToTheLastList) {
  Open(Container({Field("a"), List(9, {Field("in it")})}));
  EXPECT_EQ(file.Read(2), "<failed: untouched>");
  EXPECT_FALSE(file.IsList(2));
  ASSERT_TRUE(file.DescendAt(2));
  EXPECT_EQ(file.ListId(), 9u);
  EXPECT_EQ(file.Read(0), "in it");
}

TEST_F(TaggedFileTest, DescendAtClampsToALastFieldAndFailsThere) {
  Open(Container({List(9, {}), Field("a")}));
  EXPECT_FALSE(file.DescendAt(2));
  EXPECT_FALSE(file.DescendAt(1));
  EXPECT_EQ(file.ListId(), 0u);
  EXPECT_TRUE(file.DescendAt(-5));
  EXPECT_EQ(file.ListId(), 9u);
}

TEST_F(TaggedFileTest, AnyVersionIsTaken) {
  std::string bytes = Container({Field("a")});
  bytes[4] = 2;
  Open(bytes);
  EXPECT_EQ(file.version, 2);
  EXPECT_EQ(file.Read(0), "a");
}

TEST_F(TaggedFileTest, OfTwoListsWithOneIdDescendFindsTheFirst) {
  Open(Container({List(3, {Field("first")}), List(3, {Field("second")})}));
  ASSERT_TRUE(file.Descend(3));
  EXPECT_EQ(file.Read(0), "first");
  EXPECT_TRUE(file.Ascend());
  ASSERT_TRUE(file.Descend(3));
  EXPECT_EQ(file.Read(0), "first");
  EXPECT_TRUE(file.Ascend());
  ASSERT_TRUE(file.DescendAt(1));
  EXPECT_EQ(file.Read(0), "second");
}

TEST_F(TaggedFileTest, AChunkOfAnUnknownTypeIsSkippedByDescendAndReadByIndex) {
  Open(Container({List(1, {}), Chunk(3, "what"), List(2, {Field("x")})}));
  EXPECT_EQ(file.Read(1), "what");
  EXPECT_FALSE(file.DescendAt(1));
  EXPECT_TRUE(file.Descend(2));
  EXPECT_EQ(file.Read(0), "x");
}

TEST_F(TaggedFileTest, AListReadAsAFieldStartsAtItsId) {
  Open(Container({List(0x41424344, {Field("xyz")})}));
  // 9 bytes, the size of its children: the id, the count and the first of the child.
  EXPECT_EQ(file.Read(0), FromHex("41424344 00000001 00"));
}

TEST_F(TaggedFileTest, NumbersNeedTheirTypeAndAtLeastOneByte) {
  struct {
    const char* name;
    std::string chunk;
    bool works;
    std::uint32_t value;
  } const kRows[] = {
      {"another type", Chunk(2, Big(7, 4)), false, 0},
      {"a list", List(5, {NumberField(7)}), false, 0},
      {"two bytes", Chunk(5, Big(7, 2)), true, 7},
      {"no byte", Chunk(5, ""), false, 0},
      {"one byte", Chunk(5, "\xFF"), true, 255},
      {"four bytes", Chunk(5, Big(0xFEDCBA98, 4)), true, 0xFEDCBA98},
      {"six bytes, the first four count", Chunk(5, FromHex("010203040506")), true, 0x01020304},
  };
  for (const auto& row : kRows) {
    Put(Container({Field("in front"), row.chunk}));
    ShownFile file;
    ASSERT_TRUE(file.OpenForRead(kPath)) << row.name;
    std::uint32_t value = 4711;
    EXPECT_EQ(file.ReadNumber(1, &value), row.works) << row.name;
    EXPECT_EQ(value, row.works ? row.value : 4711u) << row.name;
  }
}

TEST_F(TaggedFileTest, ANumberBeyondTheCountFailsEvenWhenTheLastChildIsOne) {
  Open(Container({NumberField(7)}));
  std::uint32_t value = 0;
  EXPECT_FALSE(file.ReadNumber(1, &value));
  EXPECT_FALSE(file.ReadNumber(-1, &value));
  EXPECT_TRUE(file.ReadNumber(0, &value));
}

TEST_F(TaggedFileTest, NumbersAreReadThroughTheVirtualField) {
  class Replaced : public TaggedFile {
   public:
    bool ReadField(std::uint32_t, ByteString* out) override {
      *out = "\x01\x02";
      return true;
    }
  };
  Put(Container({NumberField(7)}));
  Replaced file;
  ASSERT_TRUE(file.OpenForRead(kPath));
  std::uint32_t value = 0;
  EXPECT_TRUE(file.ReadNumber(0, &value));
  EXPECT_EQ(value, 0x0102u);
}

TEST_F(TaggedFileTest, DescendOfAMissingIdChangesNothing) {
  Open(Container({List(1, {Field("x")})}));
  ASSERT_TRUE(file.Descend(1));
  EXPECT_FALSE(file.Descend(1));
  EXPECT_FALSE(file.Descend(2));
  EXPECT_EQ(file.ListId(), 1u);
  EXPECT_EQ(file.Read(0), "x");
}

TEST_F(TaggedFileTest, BytesBehindTheRootAreNotLookedAt) {
  Open(Container({List(1, {Field("x")})}) + "and more");
  EXPECT_EQ(file.ChildCount(), 1u);
  ASSERT_TRUE(file.Descend(1));
  EXPECT_EQ(file.Read(0), "x");
  EXPECT_TRUE(file.Close());
}

TEST_F(TaggedFileTest, TheRootsIdIsNotChecked) {
  Open("XFF" + Big(1, 2) + List(77, {Field("x")}));
  EXPECT_EQ(file.ListId(), 77u);
  EXPECT_EQ(file.Read(0), "x");
}

TEST_F(TaggedFileTest, OpeningAgainKeepsTheFileThatIsOpen) {
  Put(Container({Field("first")}));
  Disk().PutFile("/data/b.x", Container({Field("second")}));
  ASSERT_TRUE(file.OpenForRead(kPath));
  EXPECT_TRUE(file.OpenForRead("/data/b.x"));
  EXPECT_TRUE(file.OpenForRead("/nowhere"));
  EXPECT_EQ(file.Read(0), "first");
  EXPECT_EQ(Bytes(file.path), kPath);
}

TEST_F(TaggedFileTest, NothingOpenMeansNoChildrenNoIdAndNothingToRead) {
  EXPECT_EQ(file.ChildCount(), 0u);
  EXPECT_EQ(file.ListId(), 0u);
  EXPECT_FALSE(file.IsList(0));
  EXPECT_FALSE(file.Descend(0));
  EXPECT_FALSE(file.DescendAt(0));
  EXPECT_EQ(file.Read(0), "<failed: untouched>");
  std::uint32_t number = 0;
  EXPECT_FALSE(file.ReadNumber(0, &number));
  EXPECT_FALSE(file.WriteBytes("x"));
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.Close());
}

TEST_F(TaggedFileTest, AscendOfTheRootClosesTheFile) {
  Open(Container({List(1, {})}));
  ASSERT_TRUE(file.Descend(1));
  EXPECT_TRUE(file.Ascend());
  EXPECT_TRUE(file.isOpen);
  EXPECT_TRUE(file.Ascend());
  EXPECT_FALSE(file.isOpen);
  EXPECT_EQ(file.current, nullptr);
  EXPECT_EQ(Disk().OpenHandles(), 0u);
  EXPECT_TRUE(file.Close());
}

TEST_F(TaggedFileTest, TheSameObjectReadsAndWritesOneFileAfterTheOther) {
  Open(Container({Field("first")}));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(Bytes(file.path), kPath);
  ASSERT_TRUE(file.OpenForWrite("/data/b.x"));
  EXPECT_TRUE(file.isWriting);
  EXPECT_TRUE(file.WriteBytes("second"));
  EXPECT_TRUE(file.Close());
  ASSERT_TRUE(file.OpenForRead("/data/b.x"));
  EXPECT_FALSE(file.isWriting);
  EXPECT_EQ(file.Read(0), "second");
  EXPECT_TRUE(file.Close());
  EXPECT_TRUE(file.useTemporary);
}

TEST_F(TaggedFileTest, TheEndOfTheObjectClosesTheFile) {
  {
    ShownFile file;
    ASSERT_TRUE(file.OpenForWrite(kPath));
    EXPECT_TRUE(file.Descend(1));
    EXPECT_TRUE(file.WriteBytes("kept"));
  }
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({List(1, {Field("kept")})}));
  {
    ShownFile file;
    ASSERT_TRUE(file.OpenForRead(kPath));
    EXPECT_EQ(Disk().OpenHandles(), 1u);
  }
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(TaggedFileTest, WhatIsBeingWrittenCantBeRead) {
  Begin();
  EXPECT_TRUE(file.WriteField(5, TextOf(Big(7, 4))));
  EXPECT_TRUE(file.Descend(1));
  EXPECT_TRUE(file.Ascend());
  std::uint32_t number = 0;
  EXPECT_EQ(file.Read(0), "<failed: untouched>");
  EXPECT_FALSE(file.ReadNumber(0, &number));
  EXPECT_FALSE(file.DescendAt(1));
  EXPECT_FALSE(file.IsList(1));
  EXPECT_EQ(file.ChildCount(), 2u);
  EXPECT_TRUE(file.Close());
}

TEST_F(TaggedFileTest, WhatIsBeingReadCantBeWritten) {
  Open(Container({Field("x")}));
  EXPECT_FALSE(file.WriteBytes("y"));
  EXPECT_EQ(file.ChildCount(), 1u);
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("x")}));
}

// ---- Files that can't be read

TEST_F(TaggedFileTest, WhatIsNoContainerIsNotOpened) {
  const std::string whole = Container({Field("x")});
  struct {
    const char* name;
    std::string bytes;
  } const kRows[] = {
      {"empty", ""},
      {"shorter than the magic", "XF"},
      {"another magic", "XBF" + whole.substr(3)},
      {"no version", "XFF"},
      {"half a version", whole.substr(0, 4)},
      {"no root", whole.substr(0, 5)},
      {"no size", whole.substr(0, 7)},
      {"half a size", whole.substr(0, 10)},
      {"no id", whole.substr(0, 11)},
      {"no count", whole.substr(0, 15)},
      {"half a count", whole.substr(0, 18)},
      {"no child", whole.substr(0, 19)},
      {"half a child's head", whole.substr(0, 22)},
      {"a field for a root", "XFF" + Big(1, 2) + Field("x")},
      {"an unknown root", "XFF" + Big(1, 2) + Chunk(3, std::string(20, '\0'))},
      {"a root that claims one child more", "XFF" + Big(1, 2) + ListHead(7, 0, 2) + Field("x")},
  };
  for (const auto& row : kRows) {
    Put(row.bytes);
    ShownFile file;
    EXPECT_FALSE(file.OpenForRead(kPath)) << row.name;
    EXPECT_FALSE(file.isOpen) << row.name;
    EXPECT_EQ(file.current, nullptr) << row.name;
    EXPECT_EQ(Disk().OpenHandles(), 0u) << row.name;
    EXPECT_TRUE(file.Close()) << row.name;
  }
  ShownFile file;
  EXPECT_FALSE(file.OpenForRead("/data/none"));
  EXPECT_FALSE(file.OpenForRead(""));
  EXPECT_FALSE(file.OpenForRead("/data"));
}

TEST_F(TaggedFileTest, AListWhoseHeadIsCutShortClosesTheReaderForGood) {
  // The list claims a second child, whose head ends after the type or within the size.
  for (const std::size_t kept : {2u, 5u}) {
    Put("XFF" + Big(1, 2) + ListHead(7 + 14 + 7 + 6, 0, 2) + Field("x") + ListHead(13, 8, 2) +
        Field("y") + Field("").substr(0, kept));
    ShownFile file;
    ASSERT_TRUE(file.OpenForRead(kPath));
    EXPECT_EQ(file.Read(0), "x");
    EXPECT_FALSE(file.Descend(8));
    EXPECT_EQ(file.ListId(), 0u) << "the list is left again";
    EXPECT_EQ(file.Read(0), "<failed: >") << "nothing can be read any more";
    EXPECT_TRUE(file.Close());
  }
}

TEST_F(TaggedFileTest, AListThatEndsInFrontOfAHeadLeavesTheReaderOpen) {
  Open("XFF" + Big(1, 2) + ListHead(7 + 14 + 7, 0, 2) + Field("x") + ListHead(7, 8, 2) +
       Field("y"));
  EXPECT_FALSE(file.Descend(8));
  EXPECT_EQ(file.ListId(), 0u);
  EXPECT_EQ(file.Read(0), "x");
}

TEST_F(TaggedFileTest, AListThatCantBeEnteredIsNotOneToBeLeft) {
  Open("XFF" + Big(1, 2) + ListHead(14 + 7 + 14, 0, 1) + ListHead(7 + 14, 1, 2) + Field("x") +
       ListHead(0, 8, 1));
  ASSERT_TRUE(file.Descend(1));
  EXPECT_FALSE(file.Descend(8));
  EXPECT_FALSE(file.DescendAt(1));
  EXPECT_EQ(file.openLists.count, 2);
  EXPECT_TRUE(file.Ascend());
  EXPECT_EQ(file.ListId(), 0u);
  EXPECT_EQ(file.openLists.count, 1);
  EXPECT_TRUE(file.isOpen);
}

TEST_F(TaggedFileTest, AnIdOrCountCutShortClosesTheReaderForGood) {
  for (const std::size_t kept : {6u, 9u, 10u, 13u}) {
    Put("XFF" + Big(1, 2) + ListHead(7 + 14, 0, 2) + Field("x") +
        ListHead(0, 8, 0).substr(0, kept));
    for (const bool byIndex : {false, true}) {
      ShownFile file;
      ASSERT_TRUE(file.OpenForRead(kPath));
      EXPECT_FALSE(byIndex ? file.DescendAt(1) : file.Descend(8)) << kept;
      EXPECT_EQ(file.Read(0), "<failed: >") << kept;
      EXPECT_TRUE(file.Close()) << kept;
    }
  }
}

TEST_F(TaggedFileTest, AFieldThatRunsOutOfFileFailsWithWhatThereWas) {
  Open("XFF" + Big(1, 2) + ListHead(7 + 11, 0, 2) + Field("x") + Big(2, 2) + Big(5, 4) + "abc");
  EXPECT_EQ(file.Read(1), "<failed: abc>");
  EXPECT_EQ(file.Read(0), "x");
}

TEST_F(TaggedFileTest, ANumberThatRunsOutOfFileFails) {
  Open("XFF" + Big(1, 2) + ListHead(10, 0, 1) + NumberField(7).substr(0, 9));
  std::uint32_t value = 4711;
  EXPECT_FALSE(file.ReadNumber(0, &value));
  EXPECT_EQ(value, 4711u);
}

TEST_F(TaggedFileTest, AFieldIsNoListWhateverItsBytesSay) {
  Open(Container({Field(Big(2, 4) + Big(0, 4)), Field("x")}));
  EXPECT_FALSE(file.Descend(2));
  EXPECT_FALSE(file.Descend(3));
  EXPECT_EQ(file.Read(1), "x");
}

// ---- Outside of the list

TEST_F(TaggedFileTest, StrayChunksAreFollowedUpToTheLimitOfEachFile) {
  // Of a root that claims to hold nothing. Each counts 256 bytes, of which 1 MiB has 4,096.
  const auto stray = [](std::uint32_t n) {
    std::string bytes = "XFF" + Big(1, 2) + ListHead(0, 0, n);
    for (; n > 0; --n) bytes += Field("");
    return bytes;
  };
  for (int time = 0; time < 2; ++time) {
    Open(stray(4096));
    EXPECT_TRUE(file.Close());
  }
  Put(stray(4097));
  EXPECT_FALSE(file.OpenForRead(kPath));
}

TEST_F(TaggedFileTest, AFieldThatReachesOutOfItsListIsReadUpToTheLimit) {
  const struct {
    std::uint32_t inside;  // of its bytes
    std::uint32_t outside;
    std::uint32_t reads;  // until 1 MiB is used up
  } kRows[] = {
      {10, 1, 4096},          {10, 256, 4096},  {10, 257, 4081}, {10, 1024, 1024},
      {10, (1 << 20) - 1, 2}, {10, 1 << 20, 1}, {0, 1024, 1024},
  };
  const std::string list = List(9, {Field("ab")});
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.outside);
    const auto size = static_cast<std::uint32_t>(list.size()) + 6 + row.inside;
    Open("XFF" + Big(1, 2) + ListHead(size, 0, 2) + list +
         Field(std::string(row.inside + row.outside, 'x')));
    ASSERT_TRUE(file.Descend(9));
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(file.Read(0), "ab") << "it ends where its list does";
    ASSERT_TRUE(file.Ascend());
    std::uint32_t reads = 0;
    ByteString data;
    while (reads <= row.reads && file.ReadField(1, &data)) ++reads;
    EXPECT_EQ(reads, row.reads);
    ASSERT_TRUE(file.Descend(9));
    EXPECT_EQ(file.Read(0), "ab") << "what lies inside needs nothing of the limit";
    EXPECT_TRUE(file.Close());
  }
}

// ---- Writing through the temporary

TEST_F(TaggedFileTest, AFileIsWrittenBesideItsTargetAndPutInItsPlaceAtTheEnd) {
  Put("old");
  Begin();
  EXPECT_TRUE(file.WriteBytes("new"));
  EXPECT_EQ(*Disk().FileBytes(kPath), "old");
  EXPECT_TRUE(Disk().Exists(kTemporary));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("new")}));
  EXPECT_FALSE(Disk().Exists(kTemporary));
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(TaggedFileTest, AReadOnlyTargetIsWrittenAndStaysWritable) {
  Disk().PutFile(kPath, "old", FILE_ATTRIBUTE_READONLY);
  Begin();
  EXPECT_TRUE(file.WriteBytes("new"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("new")}));
  EXPECT_EQ(Disk().Attributes(kPath) & FILE_ATTRIBUTE_READONLY, 0u);
  EXPECT_FALSE(Disk().Exists(kTemporary));
}

TEST_F(TaggedFileTest, MissingFoldersAreMade) {
  ASSERT_TRUE(file.OpenForWrite("/one/two/three/a.x"));
  EXPECT_TRUE(file.Close());
  EXPECT_TRUE(Disk().Exists("/one/two/three/a.x"));
}

TEST_F(TaggedFileTest, ATemporaryOfAnEarlierRunIsBegunAnew) {
  Disk().PutFile("/data/a.x.tmp", std::string(500, 'z'));
  Begin();
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({}));
}

TEST_F(TaggedFileTest, WithoutAPathOrAFolderToBeMadeNothingIsWritten) {
  EXPECT_FALSE(file.OpenForWrite(""));
  Disk().PutFile("/data/file", "in the way");
  EXPECT_FALSE(file.OpenForWrite("/data/file/deeper/a.x"));
  EXPECT_FALSE(file.isOpen);
  EXPECT_EQ(Disk().List("/data"), std::vector<std::string>{"file"});
}

TEST_F(TaggedFileTest, AStartThatCantBeWrittenLeavesATemporaryAndTheTargetUntouched) {
  Put("old");
  ShownFile rehearsal;
  ASSERT_TRUE(rehearsal.OpenForWrite("/data/b.x"));
  const std::uint64_t n = Disk().Log().size();
  ASSERT_EQ(Disk().Log().back().name, "WriteFile");
  ASSERT_TRUE(rehearsal.Close());

  Disk().FailInside(n, 4);
  EXPECT_FALSE(file.OpenForWrite(kPath));
  EXPECT_FALSE(file.isOpen);
  EXPECT_EQ(*Disk().FileBytes(kPath), "old");
  EXPECT_EQ(Disk().FileBytes(kTemporary)->size(), 4u);
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(TaggedFileTest, AFieldThatFailedDoesntHoldBackTheCopy) {
  // One field in the middle is refused; the writer's caller hears of it and goes on.
  class Refusing : public TaggedFile {
   public:
    bool WriteField(std::uint16_t type, const ByteString& data) override {
      return !data.Equals("refused") && TaggedFile::WriteField(type, data);
    }
  };
  Put("old");
  Refusing file;
  ASSERT_TRUE(file.OpenForWrite(kPath));
  EXPECT_TRUE(file.WriteBytes("a"));
  EXPECT_FALSE(file.WriteBytes("refused"));
  EXPECT_TRUE(file.WriteBytes("b"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("a"), Field("b")}));
}

TEST_F(TaggedFileTest, BytesThatTheDiskDoesntTakeHoldBackTheCopy) {
  Put("old");
  Begin();
  EXPECT_TRUE(file.WriteBytes("new"));
  Disk().ClearLog();
  Disk().FailInside(2, 3);  // behind the seek back to the root's header
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(Disk().Log()[1].name, "WriteFile");
  EXPECT_EQ(Disk().Count("CopyFileA"), 0u);
  EXPECT_EQ(*Disk().FileBytes(kPath), "old");
  EXPECT_TRUE(Disk().Exists(kTemporary));
  EXPECT_FALSE(file.isOpen);
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(TaggedFileTest, AFailedCloseOfTheHandleHoldsBackTheCopy) {
  Put("old");
  Begin();
  EXPECT_TRUE(file.WriteBytes("new"));
  Disk().ClearLog();
  Disk().FailOperation(3);
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(Disk().Log().back().name, "CloseHandle");
  EXPECT_EQ(*Disk().FileBytes(kPath), "old");
  EXPECT_TRUE(Disk().Exists(kTemporary));
  EXPECT_TRUE(file.Close()) << "closed all the same";
}

TEST_F(TaggedFileTest, AFailedCopyLeavesTheTemporary) {
  Disk().PutFolder(kPath);  // nothing can be copied over a folder
  Begin();
  EXPECT_TRUE(file.WriteBytes("new"));
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kTemporary), Container({Field("new")}));
}

TEST_F(TaggedFileTest, ATemporaryThatCantBeRemovedIsNoFailure) {
  Begin();
  EXPECT_TRUE(file.WriteBytes("new"));
  Disk().ClearLog();
  Disk().FailOperation(6);  // seek, write, close, attributes, copy, delete
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(Disk().Log().back().name, "DeleteFileA");
  EXPECT_TRUE(Disk().Exists(kTemporary));
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("new")}));
}

TEST_F(TaggedFileTest, AFailureBelowTheRootIsToldByAscendAndTheFileStillCopied) {
  Put("old");
  Begin();
  EXPECT_TRUE(file.Descend(1));
  EXPECT_TRUE(file.WriteBytes("x"));
  file.current = nullptr;  // what a lost current list looks like
  EXPECT_FALSE(file.Ascend());
  EXPECT_FALSE(file.Descend(2));
  EXPECT_FALSE(file.WriteBytes("y"));
  file.current = file.openLists.tail->value;
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({List(1, {Field("x")})}));
}

TEST_F(TaggedFileTest, WritingWhileAFileIsOpenFinishesThatOneFirst) {
  Begin();
  EXPECT_TRUE(file.WriteBytes("first"));
  ASSERT_TRUE(file.OpenForWrite("/data/b.x"));
  EXPECT_TRUE(file.WriteBytes("second"));
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("first")}));
  EXPECT_EQ(*Disk().FileBytes("/data/b.x"), Container({Field("second")}));
}

TEST_F(TaggedFileTest, AFieldThatFindsNoMemoryIsRefusedWhereverThatIs) {
  // The room grows by doubling, so that it ends before, within and behind the field's head.
  for (std::uint32_t n = 0; n < 48; ++n) {
    Begin();
    EXPECT_TRUE(file.WriteBytes(TextOf(std::string(n, 'x'))));
    const ByteString data = TextOf(std::string(200, 'd'));
    {
      const FailingAllocations failing(0, false);
      EXPECT_FALSE(file.WriteBytes(data)) << n;
    }
    EXPECT_TRUE(file.Close());
  }
}

TEST_F(TaggedFileTest, AListThatFindsNoMemoryEndsTheFileWhereItIs) {
  for (std::uint32_t n = 0; n < 48; ++n) {
    const std::string before(n, 'x');
    Begin();
    EXPECT_TRUE(file.WriteBytes(TextOf(before)));
    {
      const FailingAllocations failing(0, false);
      EXPECT_FALSE(file.Descend(1)) << n;
    }
    EXPECT_FALSE(file.isOpen) << n;
    EXPECT_EQ(Disk().OpenHandles(), 0u) << n;
    ASSERT_TRUE(file.OpenForRead(kPath)) << n;
    EXPECT_EQ(file.ChildCount(), 1u) << n;
    EXPECT_EQ(file.Read(0), before) << n;
    EXPECT_TRUE(file.Close());
  }
}

TEST_F(TaggedFileTest, WithoutMemoryForTheRootNothingIsBegun) {
  Put("old");
  {
    const FailingAllocation failing(1);
    EXPECT_FALSE(file.OpenForWrite(kPath));
  }
  EXPECT_FALSE(file.isOpen);
  EXPECT_EQ(Disk().OpenHandles(), 0u);
  EXPECT_EQ(Disk().FileBytes(kPath), "old");
  Begin();
}

// ---- The temporary as what a read falls back on

TEST_F(TaggedFileTest, AMissingOrUnreadableTargetIsRestoredFromItsTemporary) {
  const std::string missing = "(missing)";
  for (const std::string& broken : {std::string(), std::string("XFF"), Container({}).substr(0, 18),
                                    std::string("something else entirely"), missing}) {
    SCOPED_TRACE(broken);
    Disk().PutFile(kPath, broken, FILE_ATTRIBUTE_READONLY);
    if (broken == missing) Disk().Remove(kPath);
    Disk().PutFile(kTemporary, Container({Field("saved")}));
    ShownFile file;
    ASSERT_TRUE(file.OpenForRead(kPath));
    EXPECT_EQ(file.Read(0), "saved");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("saved")}));
    EXPECT_FALSE(Disk().Exists(kTemporary));
    EXPECT_EQ(Disk().Attributes(kPath) & FILE_ATTRIBUTE_READONLY, 0u);
  }
}

TEST_F(TaggedFileTest, ATargetCutShortBehindItsHeadsIsRestoredFromItsTemporary) {
  const std::string whole = Container({List(1, {Field("a"), Field("b")})});
  // From where all of the root's heads are there.
  for (std::size_t n = 19 + 14; n < whole.size(); ++n) {
    Put(whole.substr(0, n));
    Disk().PutFile(kTemporary, whole);
    ShownFile file;
    ASSERT_TRUE(file.OpenForRead(kPath)) << n;
    ASSERT_TRUE(file.Descend(1)) << n;
    EXPECT_EQ(file.Read(1), "b") << n;
    EXPECT_FALSE(Disk().Exists(kTemporary)) << n;
  }
}

TEST_F(TaggedFileTest, ATargetCutShortWithoutATemporaryIsReadAsFarAsItGoes) {
  const std::string whole = Container({List(1, {Field("a")}), List(2, {Field("b")})});
  Open(whole.substr(0, whole.size() - 1));
  ASSERT_TRUE(file.Descend(1));
  EXPECT_EQ(file.Read(0), "a");
}

TEST_F(TaggedFileTest, AGoodTargetIsReadAndItsTemporaryLeftAlone) {
  Put(Container({Field("target")}));
  Disk().PutFile(kTemporary, Container({Field("temporary")}));
  ASSERT_TRUE(file.OpenForRead(kPath));
  EXPECT_EQ(file.Read(0), "target");
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(*Disk().FileBytes(kTemporary), Container({Field("temporary")}));
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("target")}));
}

TEST_F(TaggedFileTest, ARestoreThatCantBeCopiedFailsAndKeepsTheTemporary) {
  Disk().PutFolder(kPath);
  Disk().PutFile(kTemporary, Container({Field("saved")}));
  EXPECT_FALSE(file.OpenForRead(kPath));
  EXPECT_EQ(*Disk().FileBytes(kTemporary), Container({Field("saved")}));
}

TEST_F(TaggedFileTest, ABrokenTargetAndABrokenTemporaryAreBothLost) {
  // Accepted: nothing tells a cut temporary from a whole one before it has been copied.
  Put("broken target");
  Disk().PutFile(kTemporary, Container({Field("cut short")}).substr(0, 20));
  EXPECT_FALSE(file.OpenForRead(kPath));
  EXPECT_EQ(*Disk().FileBytes(kPath), Container({Field("cut short")}).substr(0, 20));
  EXPECT_FALSE(Disk().Exists(kTemporary));
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(TaggedFileTest, ACutTargetIsNotRestoredFromATemporaryThatIsCutItself) {
  const std::string whole =
      Container({List(1, {Field("a")}), List(2, {Field("b")}), Field(std::string(600, 'c'))});
  const std::string cut = whole.substr(0, whole.size() - 1);
  // What a writer puts down first has a root that is complete, and holds nothing.
  std::vector<std::string> temporaries = {Container({}), "something else entirely"};
  for (std::size_t n = 0; n < whole.size(); ++n) temporaries.push_back(whole.substr(0, n));
  for (const std::string& temporary : temporaries) {
    Put(cut);
    Disk().PutFile(kTemporary, temporary);
    ShownFile file;
    ASSERT_TRUE(file.OpenForRead(kPath)) << temporary.size();
    ASSERT_TRUE(file.Descend(2)) << temporary.size();
    EXPECT_EQ(file.Read(0), "b") << temporary.size();
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(Disk().FileBytes(kPath), cut) << temporary.size();
    EXPECT_EQ(Disk().FileBytes(kTemporary), temporary) << "left alone";
  }
}

TEST_F(TaggedFileTest, ACutTargetIsRestoredFromAWholeTemporaryThatIsShorter) {
  const std::string longer = Container({Field(std::string(600, 'a'))});
  Put(longer.substr(0, longer.size() - 1));
  Disk().PutFile(kTemporary, Container({Field("b")}));
  ASSERT_TRUE(file.OpenForRead(kPath));
  EXPECT_EQ(file.Read(0), "b");
  EXPECT_EQ(file.openLists.count, 1);
}

TEST_F(TaggedFileTest, ACutTargetWhoseRestoreCantBeCopiedIsNotReadInItsPlace) {
  const std::string whole = Container({List(1, {Field("a")}), List(2, {Field("b")})});
  for (const std::uint32_t copyStep : {0u, 10u}) {
    Put(whole.substr(0, whole.size() - 1));
    Disk().PutFile(kTemporary, whole);
    Disk().CopyInSteps(copyStep);
    const WatchedFiles full(sim.Groups(), [this](const std::string& operation, const std::string&) {
      if (operation == "copy") Disk().FailOperation(1, platform::ERROR_DISK_FULL);
    });
    ShownFile file;
    EXPECT_FALSE(file.OpenForRead(kPath)) << "the next save would begin the temporary anew";
    EXPECT_EQ(file.current, nullptr);
    EXPECT_EQ(Disk().FileBytes(kTemporary), whole);
    EXPECT_EQ(Disk().OpenHandles(), 0u);
  }
}

// ---- Two writers

void WriteOne(TaggedFile* file, const char* text) {
  EXPECT_TRUE(file->WriteBytes(text));
  EXPECT_TRUE(file->Close());
}

TEST_F(TaggedFileTest, ASecondWriterIsRefusedUntilTheFirstIsDone) {
  ShownFile first;
  ShownFile second;
  ASSERT_TRUE(first.OpenForWrite(kPath));
  EXPECT_FALSE(second.OpenForWrite(kPath));
  WriteOne(&first, "first");
  EXPECT_EQ(Disk().FileBytes(kPath), Container({Field("first")}));
  ASSERT_TRUE(second.OpenForWrite(kPath)) << "the object of the first is still there";
  WriteOne(&second, "second");
  EXPECT_EQ(Disk().FileBytes(kPath), Container({Field("second")}));
}

TEST_F(TaggedFileTest, ASecondWriterIsRefusedWhileTheFirstCopies) {
  for (const std::uint32_t copyStep : {0u, 10u}) {
    Disk().CopyInSteps(copyStep);
    std::vector<std::string> refusedAt;
    const WatchedFiles watched(
        sim.Groups(),
        [&refusedAt, inside = false](const std::string& operation, const std::string&) mutable {
          if (inside || operation != "copy") return;
          inside = true;
          ShownFile second;
          if (!second.OpenForWrite(kPath)) refusedAt.push_back(operation);
          inside = false;
        });
    ShownFile first;
    ASSERT_TRUE(first.OpenForWrite(kPath));
    WriteOne(&first, "first");
    EXPECT_EQ(refusedAt, std::vector<std::string>{"copy"});
    EXPECT_EQ(Disk().FileBytes(kPath), Container({Field("first")}));
    EXPECT_FALSE(Disk().Exists(kTemporary));
  }
}

TEST_F(TaggedFileTest, AWriterThatFailedKeepsNobodyOut) {
  for (const char* failing : {"write", "copy"}) {
    bool fails = true;
    const WatchedFiles watched(sim.Groups(), [&](const std::string& operation, const std::string&) {
      // The start that is put down behind the opening, or the copy.
      if (fails && operation == failing) Disk().FailOperation(operation == "write" ? 2 : 1);
    });
    ShownFile first;
    EXPECT_FALSE(first.OpenForWrite(kPath) && first.Close()) << failing;
    fails = false;
    ShownFile second;
    EXPECT_TRUE(second.OpenForWrite(kPath)) << failing;
  }
}

TEST_F(TaggedFileTest, AWriterThatIsGoneWithItsMachineKeepsNobodyOut) {
  ShownFile first;
  ASSERT_TRUE(first.OpenForWrite(kPath));
  Disk().StopBefore(1);
  Disk().Restart();
  ShownFile second;
  ASSERT_TRUE(second.OpenForWrite(kPath));
  WriteOne(&second, "second");
  EXPECT_EQ(Disk().FileBytes(kPath), Container({Field("second")}));
}

TEST_F(TaggedFileTest, AReaderTakesNothingFromATemporaryThatIsBeingWritten) {
  const std::string cut = Container({List(1, {Field("old")}), Field("lost")});
  for (const std::string& target : {std::string(), cut.substr(0, cut.size() - 1)}) {
    Disk().Remove(kPath);
    if (!target.empty()) Put(target);
    ShownFile writer;
    ASSERT_TRUE(writer.OpenForWrite(kPath));
    ShownFile reader;
    EXPECT_EQ(reader.OpenForRead(kPath), !target.empty());
    EXPECT_EQ(Disk().FileBytes(kPath).value_or(""), target);
    EXPECT_TRUE(reader.Close());
    WriteOne(&writer, "new");
    EXPECT_EQ(Disk().FileBytes(kPath), Container({Field("new")}));
  }
}

// ---- What it costs

TEST_F(TaggedFileTest, ALoopOverAllIndexesFollowsEachLinkOnce) {
  constexpr std::uint32_t kLists = 4000;
  Chunks children;
  for (std::uint32_t i = 0; i < kLists; ++i) children.push_back(List(i, {Field(Big(i, 4))}));
  Open(Container(children));
  const EntryCursor& cursor = file.current->cursor;
  for (std::uint32_t i = 0; i < kLists; ++i) {
    ASSERT_TRUE(file.IsList(i));
    ASSERT_TRUE(file.DescendAt(static_cast<std::int32_t>(i)));
    ASSERT_EQ(file.ListId(), i);
    ASSERT_EQ(file.Read(0), Big(i, 4));
    ASSERT_TRUE(file.Ascend());
  }
  EXPECT_LE(cursor.LinksFollowed(), kLists);
}

TEST_F(TaggedFileTest, WritingCallsTheSystemAsOftenForManyListsAsForOne) {
  std::uint64_t calls[2];
  const std::uint32_t kLists[2] = {1, 2000};
  for (int run = 0; run < 2; ++run) {
    Disk().ClearLog();
    ShownFile file;
    ASSERT_TRUE(file.OpenForWrite(kPath));
    for (std::uint32_t i = 0; i < kLists[run]; ++i) {
      ASSERT_TRUE(file.Descend(i));
      ASSERT_TRUE(file.WriteBytes("x"));
      ASSERT_TRUE(file.Ascend());
    }
    ASSERT_TRUE(file.Close());
    calls[run] = Disk().Count("WriteFile") + Disk().Count("SetFilePointer");
  }
  EXPECT_EQ(calls[0], calls[1]);
  EXPECT_EQ(calls[0], 3u);  // the start; back to the root's header; all the rest
}

TEST(EntryCursor, FindsWhatTheListFindsFromWhereverItStands) {
  LinkedList<ChunkEntry> entries;
  EntryCursor cursor;
  EXPECT_EQ(cursor.At(entries, 0), nullptr);
  for (std::uint32_t i = 0; i < 20; ++i) entries.AddTail({2, i, 0});
  const std::int64_t places[] = {0, 19, 10, 11, 9, 3, 18, -4, 25, 7, 7, 1};
  for (const std::int64_t place : places) {
    ASSERT_EQ(cursor.At(entries, place), entries.At(static_cast<std::int32_t>(place))->value)
        << place;
  }
}

TEST(EntryCursor, StartsFromTheNearestOfBothEndsAndItsLastPlace) {
  LinkedList<ChunkEntry> entries;
  for (std::uint32_t i = 0; i < 20; ++i) entries.AddTail({2, i, 0});
  EntryCursor cursor;
  EXPECT_EQ(cursor.LinksFollowed(), 0u);
  struct {
    std::int64_t place;
    std::uint64_t links;
  } const rows[] = {{2, 2}, {17, 2}, {15, 2}, {0, 0}, {4, 4}, {5, 1}, {19, 0}};
  for (const auto& row : rows) {
    const std::uint64_t before = cursor.LinksFollowed();
    cursor.At(entries, row.place);
    EXPECT_EQ(cursor.LinksFollowed() - before, row.links) << row.place;
  }
}

TEST(EntryCursor, ACopiedListIsLookedUpFromItsOwnNodes) {
  OpenList list;
  for (std::uint32_t i = 0; i < 9; ++i) list.entries.AddTail({2, i, 0});
  list.cursor.At(list.entries, 4);
  OpenList copy = list;
  EXPECT_EQ(copy.cursor.At(copy.entries, 4), copy.entries.At(4)->value);
  copy.cursor.At(copy.entries, 5);
  copy = list;
  EXPECT_EQ(copy.cursor.At(copy.entries, 5), copy.entries.At(5)->value);
}

}  // namespace
}  // namespace kelvaro
