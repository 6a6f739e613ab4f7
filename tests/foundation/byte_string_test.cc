#include "foundation/byte_string.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "app/platform/platform.h"
#include "app/platform/simulation/virtual_disk.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {

// For messages of failed expectations.
void PrintTo(const ByteString& string, std::ostream* out) { *out << '"' << Bytes(string) << '"'; }

namespace {

using platform::simulation::VirtualDisk;

// A literal with its zero bytes.
template <std::size_t size>
ByteString Raw(const char (&literal)[size]) {
  return TextOf({literal, size - 1});
}

ByteString OfLength(std::uint32_t n) { return ByteString(std::string(n, 'x').c_str()); }

// The text, once all is checked that holds for a string that has its memory.
std::string Content(const ByteString& string) {
  EXPECT_NE(string.Text(), nullptr);
  EXPECT_EQ(string.Text()[string.Length()], '\0');
  EXPECT_GE(string.Capacity(), static_cast<std::int32_t>(string.Length()) + 1);
  return Bytes(string);
}

// ---- construction ----

TEST(ByteString, MinimumCapacityIsSixteen) { EXPECT_EQ(MinimumStringCapacity, 16); }

TEST(ByteString, OnlyTheDestructorIsVirtual) {
  EXPECT_TRUE(std::has_virtual_destructor_v<ByteString>);
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<ByteString>);
}

TEST(ByteString, CapacityConstructorAllocatesOneMoreAndAtLeastSixteen) {
  struct Row {
    std::int32_t wanted;
    std::int32_t capacity;
  };
  for (const Row& row :
       {Row{-7, 16}, Row{0, 16}, Row{14, 16}, Row{15, 16}, Row{16, 17}, Row{100, 101}}) {
    const ByteString string(row.wanted);
    EXPECT_EQ(string.Capacity(), row.capacity) << row.wanted;
    EXPECT_EQ(Content(string), "") << row.wanted;
  }
  EXPECT_EQ(ByteString().Capacity(), 16);
}

TEST(ByteString, TextConstructorCopies) {
  char text[] = "Kelvaro";
  const ByteString string(text);
  text[0] = 'X';
  EXPECT_EQ(Content(string), "Kelvaro");
  EXPECT_EQ(string.Length(), 7u);
  EXPECT_EQ(string.Capacity(), 16);
  EXPECT_EQ(OfLength(15).Capacity(), 16);
  EXPECT_EQ(OfLength(16).Capacity(), 17);
}

TEST(ByteString, OneCharacterOrNumberMakesAString) {
  EXPECT_EQ(Content(ByteString('k')), "k");
  EXPECT_EQ(Content(ByteString('\0')), std::string(1, '\0'));
  EXPECT_EQ(Content(ByteString(std::uint16_t{0x4B65})), "Ke");
  ByteString string("abc");
  string.AssignChar('z');
  EXPECT_EQ(Content(string), "z");
}

TEST(ByteString, CopiesHaveTheSameCapacity) {
  ByteString string(100);
  string.Append("abc");
  EXPECT_EQ(ByteString(string).Capacity(), 101);
  string.KeepRight(1);  // two bytes less from the text on
  const ByteString copy(string);
  EXPECT_EQ(copy.Capacity(), 99);
  EXPECT_EQ(Content(copy), "c");
  EXPECT_NE(copy.Text(), string.Text());
}

TEST(ByteString, CopiesDontHaveTheSkipTable) {
  ByteString string("pattern");
  string.BuildSkipTable();
  const std::uint64_t before = Allocations();
  const ByteString copy(string);
  EXPECT_EQ(Allocations() - before, 1u);
  EXPECT_EQ(ByteString("a pattern").Find(copy), 2);
}

TEST(ByteString, MovingTakesTheAllocationAlong) {
  ByteString string("a text that is longer than sixteen");
  const char* const text = string.Text();
  const std::uint64_t before = Allocations();
  ByteString taken(std::move(string));
  EXPECT_EQ(Allocations(), before);
  EXPECT_EQ(taken.Text(), text);
  EXPECT_EQ(string.Length(), 0u);  // NOLINT: what is left is an empty string
  EXPECT_EQ(string.Capacity(), 0);
  EXPECT_STREQ(string.Text(), "");
  string.Empty();
  string.Truncate(-1);
  string.KeepRight(0);
  string.AppendChar('n');
  EXPECT_EQ(Content(string), "n");
  EXPECT_EQ(Content(ByteString(taken)), "a text that is longer than sixteen");
}

TEST(ByteString, MoveAssignmentLeavesAnEmptyString) {
  ByteString from("from");
  ByteString to("to");
  to = std::move(from);
  EXPECT_EQ(Content(to), "from");
  EXPECT_EQ(Content(from), "");  // NOLINT
  ByteString& same = to;
  to = std::move(same);
  EXPECT_EQ(Content(to), "from");
}

TEST(ByteString, WhatItTookIsGivenBack) {
  const std::int64_t before = LivingAllocations();
  {
    ByteString string("text");
    string.Append("that grows to more than sixteen bytes");
    EXPECT_EQ(LivingAllocations() - before, 1) << "the smaller allocation is gone";
    string.BuildSkipTable();
    EXPECT_EQ(LivingAllocations() - before, 2);
    string.AppendChar('!');
    EXPECT_EQ(LivingAllocations() - before, 1) << "the table fits it no more";
    string.BuildSkipTable();
    const ByteString taken(std::move(string));
    EXPECT_EQ(LivingAllocations() - before, 2);
    string.Append("again");  // NOLINT: what was left is an empty string
    EXPECT_EQ(LivingAllocations() - before, 3);
  }
  EXPECT_EQ(LivingAllocations(), before);
}

TEST(ByteString, TextOfAndBytesKeepEveryByte) {
  EXPECT_EQ(Bytes(TextOf(std::string("a\0b", 3))), std::string("a\0b", 3));
  EXPECT_EQ(Content(TextOf(std::string(40, 'x'))), std::string(40, 'x'));
  EXPECT_EQ(Content(TextOf({})), "");
  EXPECT_EQ(Bytes(ByteString()), "");
}

// ---- assignment ----

TEST(ByteString, AssignKeepsTheAllocationIfTheTextFits) {
  ByteString string("abc");
  const char* const before = string.Text();
  string.Assign("123456789012345");  // 15 and the terminator
  EXPECT_EQ(string.Text(), before);
  EXPECT_EQ(string.Capacity(), 16);
  EXPECT_EQ(Content(string), "123456789012345");
  string.Assign("1234567890123456");
  EXPECT_EQ(string.Capacity(), 17);
  EXPECT_EQ(Content(string), "1234567890123456");
}

TEST(ByteString, AssignAllocatesAtLeastSixteen) {
  ByteString string;
  ASSERT_TRUE(string.Reserve(4, false, true));
  ASSERT_EQ(string.Capacity(), 4);
  string.Assign("abcd");
  EXPECT_EQ(string.Capacity(), 16);
  EXPECT_EQ(Content(string), "abcd");
}

TEST(ByteString, AssignOfAStringAllocatesExactlyOneMore) {
  ByteString string;
  ASSERT_TRUE(string.Reserve(4, false, true));
  string.Assign(ByteString("abcd"));
  EXPECT_EQ(string.Capacity(), 5);
  string = OfLength(40).Left(39);
  const ByteString other = OfLength(40);
  ByteString longer;
  longer = other;
  EXPECT_EQ(longer.Capacity(), 41);
  EXPECT_EQ(Content(longer), std::string(40, 'x'));
}

TEST(ByteString, AssignOfNullEmpties) {
  ByteString string("abc");
  string.Assign(nullptr);
  EXPECT_EQ(Content(string), "");
  string = "def";
  EXPECT_EQ(Content(string), "def");
}

TEST(ByteString, AssignToItselfChangesNothing) {
  ByteString string("abc");
  const ByteString& same = string;
  string = same;
  EXPECT_EQ(Content(string), "abc");
  string.Assign(string.Text() + 1);
  EXPECT_EQ(Content(string), "bc");
}

TEST(ByteString, AssignTakesTheRoomInFrontOfTheTextBack) {
  ByteString string("abcdef");
  const char* const start = string.Text();
  string.KeepRight(2);
  string.Assign("123456789012345");
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(string.Capacity(), 16);
}

TEST(ByteString, AssignBytesTakesZeroBytesAndAllocatesExactlyOneMore) {
  ByteString string = Raw("a\0b");
  EXPECT_EQ(Content(string), std::string("a\0b", 3));
  const std::string bytes(30, 'b');
  EXPECT_TRUE(string.AssignBytes(bytes.data(), 30));
  EXPECT_EQ(string.Capacity(), 31);
  EXPECT_TRUE(string.AssignBytes(bytes.data(), 15));
  EXPECT_EQ(string.Capacity(), 31);
  EXPECT_TRUE(string.AssignBytes("", 0));
  EXPECT_EQ(Content(string), "");
}

TEST(ByteString, AssignBytesTakesItsOwnBytes) {
  ByteString string("abcdefgh");
  EXPECT_TRUE(string.AssignBytes(string.Text() + 2, 3));
  EXPECT_EQ(Content(string), "cde");
  ByteString offset("abcdef");
  offset.KeepRight(4);
  EXPECT_TRUE(offset.AssignBytes(offset.Text() + 1, 2));
  EXPECT_EQ(Content(offset), "de");
}

// ---- appending ----

TEST(ByteString, AppendGrowsByATenthButAtLeastSixteen) {
  const struct {
    std::uint32_t length;
    std::uint32_t added;
    std::int32_t capacity;
    const char* why;
  } rows[] = {
      {0, 15, 16, "15 is below the capacity of 16: in place"},
      {0, 16, 32, "16 isn't: 16 + 16"},
      {10, 5, 16, "15 again"},
      {10, 6, 32, "16 again"},
      {150, 9, 175, "a tenth of 159 is 15: 159 + 16"},
      {150, 20, 187, "a tenth of 170 is 17: 170 + 17"},
      {200, 100, 330, "300 + 30"},
      {200, 109, 339, "a tenth of 309 is rounded down: 309 + 30"},
  };
  for (const auto& row : rows) {
    ByteString string = OfLength(row.length);
    string.Append(std::string(row.added, 'y').c_str());
    EXPECT_EQ(string.Capacity(), row.capacity) << row.why;
    EXPECT_EQ(Content(string), std::string(row.length, 'x') + std::string(row.added, 'y'))
        << row.why;
  }
}

TEST(ByteString, AppendCharIsStricterAboutItsRoom) {
  ByteString fits = OfLength(13);
  fits.AppendChar('y');  // 13 + 2 is below 16
  EXPECT_EQ(fits.Capacity(), 16);
  ByteString grows = OfLength(14);
  grows.AppendChar('y');  // 14 + 2 isn't: 15 + 16
  EXPECT_EQ(grows.Capacity(), 31);
  EXPECT_EQ(Content(grows), "xxxxxxxxxxxxxxy");
  ByteString text = OfLength(14);
  text.Append("y");
  EXPECT_EQ(text.Capacity(), 16);
}

TEST(ByteString, EveryAppendAddsAtTheEnd) {
  ByteString string("a");
  string.Append("b");
  string.Append(ByteString("c"));
  string.Append("d\0e", 3);
  string.AppendChar('f');
  EXPECT_EQ(Content(string), std::string("abcd\0ef", 7));
}

TEST(ByteString, AppendTakesItsOwnText) {
  ByteString string("abcd");
  string.Append(string);
  EXPECT_EQ(Content(string), "abcdabcd");
  string.Append(string);  // 16 bytes don't fit any more
  EXPECT_EQ(Content(string), "abcdabcdabcdabcd");
  ByteString offset("abcdef");
  offset.KeepRight(4);
  offset.Append(offset.Text() + 1, 2);
  EXPECT_EQ(Content(offset), "cdefde");
}

TEST(ByteString, AppendCharAfterKeepRightMovesTheTextDownFirst) {
  ByteString string("abcdef");
  const char* const start = string.Text();
  string.KeepRight(2);
  ASSERT_EQ(string.Text(), start + 4);
  string.AppendChar('g');
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(string.Capacity(), 16);
  EXPECT_EQ(Content(string), "efg");
}

TEST(ByteString, AppendHasTheRoomInFrontOfTheText) {
  ByteString string("123456789012345");
  const char* const start = string.Text();
  string.KeepRight(5);
  string.Append("abcdefghij");  // 15 are below 16 again
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(Content(string), "12345abcdefghij");
}

TEST(ByteString, AroundPutsATextBetweenTwoOthers) {
  EXPECT_EQ(Content(Around("<", Raw("\0!"), ">")), std::string("<\0!>", 4));
  EXPECT_EQ(Content(InQuotes("a b")), "\"a b\"");
  EXPECT_EQ(Content(InQuotes("")), "\"\"");
}

TEST(ByteString, ConcatMakesANewStringOfBoth) {
  const ByteString left("left");
  EXPECT_EQ(Content(left.Concat(" right")), "left right");
  EXPECT_EQ(Content(left.Concat(Raw("\0!"))), std::string("left\0!", 6));
  EXPECT_EQ(Content(left.Concat(static_cast<const char*>(nullptr))), "left");
  EXPECT_EQ(Content(left.Concat(left)), "leftleft");
  EXPECT_EQ(Content(left), "left");
}

// ---- parts ----

TEST(ByteString, LeftAndRightClampTheirCount) {
  struct Row {
    std::int32_t n;
    const char* left;
    const char* right;
  };
  const ByteString string("abcd");
  for (const Row& row : {Row{-1, "", ""}, Row{0, "", ""}, Row{1, "a", "d"}, Row{3, "abc", "bcd"},
                         Row{4, "abcd", "abcd"}, Row{5, "abcd", "abcd"}}) {
    EXPECT_EQ(Content(string.Left(row.n)), row.left) << row.n;
    EXPECT_EQ(Content(string.Right(row.n)), row.right) << row.n;
  }
  EXPECT_EQ(Content(string), "abcd");
}

TEST(ByteString, TruncateCutsOnlyBelowTheLength) {
  struct Row {
    std::int32_t n;
    const char* after;
  };
  for (const Row& row : {Row{9, "abcd"}, Row{4, "abcd"}, Row{3, "abc"}, Row{0, ""}, Row{-1, ""}}) {
    ByteString string("abcd");
    string.Truncate(row.n);
    EXPECT_EQ(Content(string), row.after) << row.n;
  }
  ByteString one("a");
  one.Truncate(0);
  EXPECT_EQ(Content(one), "");
}

TEST(ByteString, KeepRightMovesThePointerAndCopiesNothing) {
  ByteString string("abcdef");
  const char* const start = string.Text();
  const std::uint64_t before = Allocations();
  string.KeepRight(4);
  EXPECT_EQ(string.Text(), start + 2);
  EXPECT_EQ(string.Capacity(), 14);
  string.KeepRight(1);
  EXPECT_EQ(string.Text(), start + 5);
  EXPECT_EQ(string.Capacity(), 11);
  EXPECT_EQ(Allocations(), before);
  EXPECT_EQ(std::memcmp(start, "abcdef", 7), 0);  // the dropped bytes lie where they were
  EXPECT_EQ(Content(string), "f");
}

TEST(ByteString, EmptyAndKeepRightOfNoneGoBackToTheStartOfTheAllocation) {
  for (std::int32_t n : {1, 0, -1}) {
    ByteString string("abcdef");
    const char* const start = string.Text();
    string.KeepRight(3);
    n == 1 ? string.Empty() : string.KeepRight(n);
    EXPECT_EQ(Content(string), "") << n;
    EXPECT_EQ(string.Text(), start) << n;
    EXPECT_EQ(string.Capacity(), 16) << n;
  }
}

TEST(ByteString, KeepRightOfMoreThanThereIsChangesNothing) {
  ByteString string("abc");
  const char* const start = string.Text();
  string.KeepRight(4);
  string.KeepRight(3);
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(Content(string), "abc");
}

// ---- Reserve ----

TEST(ByteString, ReserveOfLessThanFiveIsFour) {
  for (std::int32_t wanted : {-3, 0, 3, 4}) {
    ByteString string("abcdef");
    EXPECT_TRUE(string.Reserve(wanted, true, true)) << wanted;
    EXPECT_EQ(string.Capacity(), 4) << wanted;
    EXPECT_EQ(Content(string), "abc") << wanted;  // cut to what fits beside the terminator
  }
  ByteString five("abcdef");
  EXPECT_TRUE(five.Reserve(5, true, true));
  EXPECT_EQ(five.Capacity(), 5);
  EXPECT_EQ(Content(five), "abcd");
}

TEST(ByteString, ReserveAllocatesOnlyWhenTheRoomIsMissing) {
  const struct {
    const char* name;
    std::int32_t wanted;
    bool exact;
    std::int32_t capacity;
    std::uint64_t allocations;
  } rows[] = {
      {"less than there is", 10, false, 16, 0},
      {"just what there is", 16, false, 16, 0},
      {"more", 17, false, 17, 1},
      {"exactly what there is", 16, true, 16, 0},
      {"exactly less", 10, true, 10, 1},
      {"exactly more", 40, true, 40, 1},
  };
  for (const auto& row : rows) {
    ByteString string("abcdef");
    string.KeepRight(4);  // the room in front of the text counts
    const std::uint64_t before = Allocations();
    EXPECT_TRUE(string.Reserve(row.wanted, true, row.exact)) << row.name;
    EXPECT_EQ(Allocations() - before, row.allocations) << row.name;
    EXPECT_EQ(string.Capacity(), row.capacity) << row.name;
    EXPECT_EQ(Content(string), "cdef") << row.name;
  }
}

TEST(ByteString, ReserveMovesAKeptTextDown) {
  ByteString string("abcdef");
  const char* const start = string.Text();
  string.KeepRight(2);
  EXPECT_TRUE(string.Reserve(16, true, false));
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(Content(string), "ef");
}

TEST(ByteString, ReserveWithoutTheTextGoesBackToTheStartOrIsEmptyInNewRoom) {
  ByteString string("abcdef");
  const char* const start = string.Text();
  string.KeepRight(2);
  EXPECT_TRUE(string.Reserve(16, false, false));
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(string.Capacity(), 16);
  EXPECT_EQ(string.Length(), 2u);
  EXPECT_EQ(Content(string), "ab");  // what lay there before
  EXPECT_TRUE(string.Reserve(40, false, false));
  EXPECT_EQ(string.Capacity(), 40);
  EXPECT_EQ(Content(string), "") << "new room";
}

// ---- null and too much ----

TEST(ByteString, NullIsNoText) {
  const char* const null = nullptr;
  const ByteString made(null);
  EXPECT_EQ(Content(made), "");
  EXPECT_EQ(made.Capacity(), 16);
  ByteString string("abc");
  EXPECT_FALSE(string.AssignBytes(null, 2));
  string.Append(null);
  string.Append(null, 5);
  string.Replace(null, "x");
  string.Replace("a", null);
  string.RemoveAll(null);
  string.RemoveAll(null, 2);
  EXPECT_EQ(Content(string), "abc");
}

TEST(ByteString, WhatIsBeyondAllSizesFindsNoMemory) {
  EXPECT_EQ(ByteString(std::int32_t{2147483647}).Text(), nullptr);
  ByteString string("abc");
  string.Append("x", 0xFFFFFFFFu);
  EXPECT_EQ(Content(string), "abc");
}

// ---- replacing ----

TEST(ByteString, ReplaceAllReplacesEachMatch) {
  const struct {
    const char* name;
    const char* text;
    const char* from;
    const char* to;
    const char* after;
  } rows[] = {
      {"one byte by one", "a.b..c", ".", "-", "a-b--c"},
      {"one byte by itself", "a.b", ".", ".", "a.b"},
      {"two by two", "ababa", "ab", "xy", "xyxya"},
      {"matches don't overlap", "aaa", "aa", "bb", "bba"},
      {"goes on behind what was put in", "aabb", "ab", "ba", "abab"},
      {"one byte by two", "a.b.", ".", "::", "a::b::"},
      {"one byte by none", "-a--b-", "-", "", "ab"},
      {"two by none", "x<>y<>", "<>", "", "xy"},
      {"two by one", "aXXbXX", "XX", "-", "a-b-"},
      {"two by three that hold it", "a<>b", "<>", "<<>", "a<<>b"},
      {"at the start", "XXa", "XX", "yyy", "yyya"},
      {"all of it", "abc", "abc", "z", "z"},
      {"all of it by none", "abc", "abc", "", ""},
      {"a pattern that isn't there", "abc", "xy", "z", "abc"},
      {"a pattern that is longer than the text", "abc", "abcd", "", "abc"},
      {"an empty pattern by something", "abc", "", "x", "abc"},
      {"an empty pattern by none", "abc", "", "", "abc"},
      {"an empty text", "", "a", "bb", ""},
      {"a text of one byte", "a", "a", "bb", "bb"},
      {"case counts", "aA", "A", "bb", "abb"},
  };
  for (const auto& row : rows) {
    ByteString string(row.text);
    string.ReplaceAll(row.from, row.to);
    EXPECT_EQ(Content(string), row.after) << row.name;
    ByteString wrapped(row.text);
    wrapped.Replace(row.from, row.to);
    EXPECT_EQ(Content(wrapped), row.after) << row.name;
    ByteString offset(ByteString("12").Concat(row.text));
    offset.KeepRight(static_cast<std::int32_t>(std::strlen(row.text)));
    offset.ReplaceAll(row.from, row.to);
    EXPECT_EQ(Content(offset), row.after) << row.name << ", behind dropped bytes";
  }
}

TEST(ByteString, ReplaceAllOfTheSameLengthWorksInPlace) {
  ByteString string("a<>b<>c");
  const ByteString from("<>");
  const ByteString to("[]");
  const char* const start = string.Text();
  const std::uint64_t before = Allocations();
  string.ReplaceAll(from, to);
  EXPECT_EQ(Allocations(), before);
  EXPECT_EQ(string.Text(), start);
  EXPECT_EQ(Content(string), "a[]b[]c");
}

TEST(ByteString, ReplaceAllTakesItselfAsEitherArgument) {
  ByteString asPattern("abc");
  asPattern.ReplaceAll(asPattern, ByteString("xy"));
  EXPECT_EQ(Content(asPattern), "xy");
  ByteString asText("aba");
  asText.ReplaceAll(ByteString("b"), asText);
  EXPECT_EQ(Content(asText), "aabaa");
  ByteString asBoth("abc");
  asBoth.ReplaceAll(asBoth, asBoth);
  EXPECT_EQ(Content(asBoth), "abc");
}

TEST(ByteString, ReplaceAllTakesZeroBytes) {
  ByteString string = Raw("a\0b\0");
  string.ReplaceAll(Raw("\0"), ByteString("00"));
  EXPECT_EQ(Content(string), "a00b00");
}

TEST(ByteString, RemoveAllClosesEachMatchUp) {
  const struct {
    const char* name;
    const char* text;
    const char* pattern;
    std::int32_t n;
    const char* after;
  } rows[] = {
      {"at both ends", "abxxab", "ab", 0, "xx"},
      {"what comes together isn't looked at again", "aabb", "ab", 0, "ab"},
      {"goes on at the same place", "ababab", "ab", 0, ""},
      {"a length of its own", "abxab", "abzz", 2, "x"},
      {"a negative length means the text's", "abxab", "ab", -1, "x"},
      {"an empty pattern", "abc", "", 0, "abc"},
      {"one that isn't there", "abc", "ac", 0, "abc"},
      {"a longer one", "abc", "abcd", 0, "abc"},
      {"one byte", "a\\b\\", "\\", 0, "ab"},
      {"one byte of more", "abcab", "ab", 1, "bcb"},
      {"all of it", "abc", "abc", 0, ""},
  };
  for (const auto& row : rows) {
    ByteString string(row.text);
    string.RemoveAll(row.pattern, row.n);
    EXPECT_EQ(Content(string), row.after) << row.name;
  }
}

TEST(ByteString, RemoveAllTakesTheWholePatternUnlessTold) {
  ByteString string("abxab");
  string.RemoveAll("ab");
  EXPECT_EQ(Content(string), "x");
}

TEST(ByteString, RemoveAllTakesItsOwnBytes) {
  ByteString string("abcabdab");
  string.RemoveAll(string.Text(), 2);
  EXPECT_EQ(Content(string), "cd");
}

// ---- comparing ----

TEST(ByteString, EqualsTakesAllBytesAndTheTerminatorToo) {
  const ByteString string("abc");
  EXPECT_TRUE(string.Equals("abc"));
  EXPECT_FALSE(string.Equals("abcd"));
  EXPECT_FALSE(string.Equals("ab"));
  EXPECT_FALSE(string.Equals("abC"));
  EXPECT_FALSE(string.Equals("xbc"));
  EXPECT_TRUE(ByteString("\x01").Equals("\x01"));
  EXPECT_FALSE(ByteString("a").Equals(ByteString("b")));
  EXPECT_FALSE(string.Equals(""));
  EXPECT_FALSE(string.Equals(static_cast<const char*>(nullptr)));
  EXPECT_TRUE(ByteString().Equals(""));
  EXPECT_FALSE(Raw("ab\0c").Equals("ab"));
  EXPECT_TRUE(Raw("a\0b").Equals(Raw("a\0b")));
  EXPECT_FALSE(Raw("a\0b").Equals(Raw("a\0c")));
  EXPECT_FALSE(Raw("a\0b").Equals(Raw("a")));
  EXPECT_TRUE(ByteString().Equals(ByteString()));
}

TEST(ByteString, CompareGoesByUnsignedBytesThenByLength) {
  const struct {
    const char* name;
    const char* left;
    const char* right;
    int exact;
    int folded;
  } rows[] = {
      {"equal", "abc", "abc", 0, 0},
      {"a lower byte", "abc", "abd", -1, -1},
      {"a higher byte", "abd", "abc", 1, 1},
      {"the first difference counts", "adc", "abd", 1, 1},
      {"a shorter other", "abc", "ab", 1, 1},
      {"a longer other", "ab", "abc", -1, -1},
      {"both empty", "", "", 0, 0},
      {"an empty other", "a", "", 1, 1},
      {"bytes are unsigned", "\x80", "\x7F", 1, 1},
      {"upper case is lower", "A", "a", -1, 0},
      {"lower case is higher", "a", "A", 1, 0},
      {"only the case differs", "kElVaRo", "KeLvArO", 1, 0},
      {"umlauts don't fold", "\xE4", "\xC4", 1, 1},
      {"folding is to upper case", "_", "a", -1, 1},
      {"the byte behind z", "{", "[", 1, 1},
      {"the byte in front of a", "`", "@", 1, 1},
  };
  for (const auto& row : rows) {
    const ByteString left(row.left);
    const std::int32_t n = static_cast<std::int32_t>(std::strlen(row.right));
    EXPECT_EQ(left.Compare(row.right, n), row.exact) << row.name;
    EXPECT_EQ(left.CompareNoCase(row.right, n), row.folded) << row.name;
    EXPECT_EQ(left.Compare(ByteString(row.right), false), row.exact) << row.name;
    EXPECT_EQ(left.Compare(ByteString(row.right), true), row.folded) << row.name;
  }
}

TEST(ByteString, CompareTakesOnlyNBytesAndGivesOneForNull) {
  EXPECT_EQ(ByteString("a").Compare(nullptr, 1), 1);
  EXPECT_EQ(ByteString("a").CompareNoCase(nullptr, 1), 1);
  EXPECT_EQ(ByteString().Compare(nullptr, 0), 1);
  EXPECT_EQ(ByteString("ab").Compare("abzz", 2), 0);
  EXPECT_EQ(ByteString("ab").Compare("az", 1), 1);
  EXPECT_EQ(ByteString("ab").Compare("ab", -1), 1);
}

// ---- searching ----

TEST(ByteString, FindCharGivesTheFirstFromTheStartOn) {
  const ByteString string("abcabc");
  const struct {
    char c;
    std::int32_t start;
    bool found;
    std::int32_t position;
  } rows[] = {{'b', 0, true, 1},   {'b', 1, true, 1},    {'b', 2, true, 4},
              {'b', 5, false, 77}, {'c', 5, true, 5},    {'c', 6, false, 77},
              {'c', 7, false, 77}, {'a', -1, false, 77}, {'z', 0, false, 77}};
  for (const auto& row : rows) {
    std::int32_t position = 77;
    EXPECT_EQ(string.FindChar(row.c, &position, row.start), row.found) << row.c << row.start;
    EXPECT_EQ(position, row.position) << row.c << row.start;
  }
  std::int32_t position = 0;
  EXPECT_FALSE(ByteString().FindChar('a', &position));
  EXPECT_FALSE(string.FindChar('\0', &position)) << "the terminator doesn't count";
  EXPECT_TRUE(string.FindChar('a', &position));
  EXPECT_EQ(position, 0) << "from the start unless told";
  EXPECT_TRUE(Raw("a\0").FindChar('\0', &position));
  EXPECT_EQ(position, 1);
}

TEST(ByteString, FindFailsWithoutAPatternAStartOrEnoughBytes) {
  const ByteString string("abcabc");
  EXPECT_EQ(string.Find(nullptr, 0, 1), -1);
  EXPECT_EQ(string.Find("a", -1, 1), -1);
  EXPECT_EQ(string.Find("c", 6, 1), -1);
  EXPECT_EQ(string.Find("c", 7, 1), -1);
  EXPECT_EQ(string.Find("abc", 4, 3), -1);
  EXPECT_EQ(string.Find("abcabca", 0, 7), -1);
  EXPECT_EQ(string.Find("abc", 0, 0), -1);
  EXPECT_EQ(string.Find("abc", 0, -1), -1);
  EXPECT_EQ(string.Find("abc", 1, 0), -1);
  EXPECT_EQ(string.Find(Raw("c\0")), -1) << "the terminator doesn't count";
  EXPECT_EQ(string.Find(ByteString()), -1);
  EXPECT_EQ(ByteString().Find("a", 0, 1), -1);
}

// Texts over two letters have every kind of half match.
TEST(ByteString, FindAgreesWithAPlainSearchOnAllShortTexts) {
  EXPECT_EQ(Raw("a\0\xFF\0b").Find(Raw("\xFF\0")), 2);
  EXPECT_EQ(ByteString("abcabc").Find(ByteString("c"), 3), 5);
  std::vector<std::string> words[9];
  words[0] = {""};
  for (std::size_t n = 1; n <= 8; ++n) {
    for (const std::string& word : words[n - 1]) {
      words[n].push_back(word + 'a');
      words[n].push_back(word + 'b');
    }
  }
  for (const std::string& text : words[8]) {
    const ByteString string(text.c_str());
    for (std::size_t n = 1; n <= 5; ++n) {
      for (const std::string& word : words[n]) {
        for (std::size_t start : {0, 1, 3}) {
          const std::size_t at = text.find(word, start);
          const std::int32_t expected =
              at == std::string::npos ? -1 : static_cast<std::int32_t>(at);
          ASSERT_EQ(string.Find(word.data(), static_cast<std::int32_t>(start),
                                static_cast<std::int32_t>(n)),
                    expected)
              << word << " in " << text << " from " << start;
        }
      }
    }
  }
}

TEST(ByteString, ABuiltSkipTableIsUsedByEverySearch) {
  ByteString pattern("bab");
  std::uint64_t before = Allocations();
  pattern.BuildSkipTable();
  EXPECT_EQ(Allocations() - before, 1u);
  const ByteString text("abbabab");
  before = Allocations();
  EXPECT_EQ(text.Find(pattern), 2);
  EXPECT_EQ(text.Find(pattern, 3), 4);
  EXPECT_EQ(text.Find(pattern, 5), -1);
  EXPECT_EQ(text.Find(pattern, -1), -1);
  EXPECT_EQ(text.Find(pattern, 7), -1);
  pattern.BuildSkipTable();
  EXPECT_EQ(Allocations(), before);
}

TEST(ByteString, AChangedPatternIsSearchedForAsItIsNow) {
  ByteString text("zzabcdefzz");
  ByteString pattern("zzzzz");
  pattern.BuildSkipTable();
  pattern.Assign("fz");
  EXPECT_EQ(text.Find(pattern), 7);
  pattern.BuildSkipTable();
  pattern.KeepRight(1);
  EXPECT_EQ(text.Find(pattern), 0);
  pattern.BuildSkipTable();
  pattern.AppendChar('a');
  EXPECT_EQ(text.Find(pattern), 1);
  pattern.BuildSkipTable();
  pattern.ReplaceAll(ByteString("z"), ByteString("e"));
  pattern.ReplaceAll(ByteString("a"), ByteString("f"));
  EXPECT_EQ(text.Find(pattern), 6);
}

TEST(ByteString, APatternIsSearchedForAsItIsWhateverChangedIt) {
  const struct {
    const char* name;
    const char* built;
    void (*change)(ByteString& pattern);
    const char* text;
    std::int32_t at;
  } rows[] = {
      {"moved", "zzzzz", [](ByteString& p) { p = ByteString("ab"); }, "xxab", 2},
      {"appended to", "ab", [](ByteString& p) { p.Append("bc"); }, "xabbc", 1},
      {"truncated", "abzzzzzz", [](ByteString& p) { p.Truncate(2); }, "xab", 1},
      {"cut in front", "zzzzzzab", [](ByteString& p) { p.KeepRight(2); }, "xxab", 2},
      {"given less room", "abczzzzz", [](ByteString& p) { p.Reserve(4, true, true); }, "xabc", 1},
      {"closed up", "abzzzz", [](ByteString& p) { p.RemoveAll("z"); }, "xab", 1},
      {"folded", "ab", [](ByteString& p) { p.ToUpper(0, -1); }, "xAB", 1},
  };
  for (const auto& row : rows) {
    ByteString pattern(row.built);
    pattern.BuildSkipTable();
    row.change(pattern);
    EXPECT_EQ(ByteString(row.text).Find(pattern), row.at) << row.name;
  }
}

// ---- case ----

TEST(ByteString, OnlyAsciiLettersFold) {
  for (int c = 0; c < 256; ++c) {
    const int expected = c >= 97 && c <= 122 ? c - 32 : c;
    EXPECT_EQ(FoldUpper(static_cast<std::uint8_t>(c)), expected);
  }
}

TEST(ByteString, ToUpperFoldsARangeWithBothEnds) {
  const struct {
    std::int32_t first;
    std::int32_t last;
    bool done;
    const char* after;
  } rows[] = {
      {0, 0, true, "Abcde"},   {0, -1, true, "ABCDE"}, {1, 3, true, "aBCDe"},
      {2, 2, true, "abCde"},   {3, 99, true, "abcDE"}, {4, 5, true, "abcdE"},
      {3, 1, true, "abcde"},   {5, -1, true, "abcde"}, {6, -1, false, "abcde"},
      {-1, 2, false, "abcde"},
  };
  for (const auto& row : rows) {
    ByteString string("abcde");
    EXPECT_EQ(string.ToUpper(row.first, row.last), row.done) << row.first << " " << row.last;
    EXPECT_EQ(Content(string), row.after) << row.first << " " << row.last;
  }
  ByteString empty;
  EXPECT_FALSE(empty.ToUpper(0, -1));
}

// ---- numbers as bytes ----

TEST(ByteString, NumbersAreWrittenMostSignificantByteFirst) {
  ByteString string("old text");
  string.AssignU16(0x1234);
  EXPECT_EQ(Content(string), "\x12\x34");
  EXPECT_EQ(string.Length(), 2u);
  EXPECT_EQ(string.Text()[2], '\0');
  string.AssignU32(0x01020304);
  EXPECT_EQ(Content(string), "\x01\x02\x03\x04");
  string.AssignU32(0xFFFE0080);
  EXPECT_EQ(Content(string), std::string("\xFF\xFE\x00\x80", 4));
}

TEST(ByteString, NumbersAreReadFromWhatIsThere) {
  const struct {
    const char* bytes;
    std::uint32_t length;
    std::uint16_t u16;
    std::uint32_t u32;
    std::uint64_t u64;
  } rows[] = {
      {"", 0, 0, 0, 0},
      {"\x01", 1, 1, 1, 1},
      {"\x01\x02", 2, 258, 258, 258},
      {"\x01\x02\x03", 3, 0x0102, 0x010203, 0x010203},
      {"\x81\x02\x03\x04", 4, 0x8102, 0x81020304, 0x81020304},
      {"\x81\x02\x03\x04\x05", 5, 0x8102, 0x81020304, 0x8102030405},
      {"\xF1\x02\x03\x04\x05\x06\x07\x08", 8, 0xF102, 0xF1020304, 0xF102030405060708},
      {"\x01\x02\x03\x04\x05\x06\x07\x08\x09", 9, 0x0102, 0x01020304, 0x0102030405060708},
  };
  for (const auto& row : rows) {
    ByteString string;
    ASSERT_TRUE(string.AssignBytes(row.bytes, row.length));
    std::uint16_t u16 = 77;
    std::uint32_t u32 = 77;
    std::uint64_t u64 = 77;
    string.ReadU16(&u16);
    string.ReadU32(&u32);
    string.ReadU64(&u64);
    EXPECT_EQ(u16, row.u16) << row.length;
    EXPECT_EQ(u32, row.u32) << row.length;
    EXPECT_EQ(u64, row.u64) << row.length;
    EXPECT_EQ(Content(string), std::string(row.bytes, row.length));
  }
}

// ---- numbers as text ----

TEST(ByteString, ToDecimalGroupsAndPads) {
  const struct {
    std::uint32_t value;
    bool thousands;
    std::int32_t minDigits;
    const char* text;
  } rows[] = {
      {1234567, true, 0, "1,234,567"},
      {0, false, 3, "000"},
      {1234, true, 7, "001,234"},  // the comma is one of the seven
      {0, false, 0, "0"},
      {0, true, -1, "0"},
      {999, true, 0, "999"},
      {1000, true, 0, "1,000"},
      {1000, false, 0, "1000"},
      {1000, true, 5, "1,000"},
      {100000, true, 0, "100,000"},
      {12, true, 9, "000000012"},  // no commas between the zeros
      {42, false, 2, "42"},
      {42, false, 20, "00000000000000000042"},
      {4294967295, true, 0, "4,294,967,295"},
      {4294967295, false, 0, "4294967295"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Content(ToDecimal(row.value, row.thousands, row.minDigits)), row.text);
  }
}

TEST(ByteString, ToDecimalSignedPadsTheDigitsOnly) {
  const struct {
    std::int32_t value;
    bool thousands;
    std::int32_t minDigits;
    const char* text;
  } rows[] = {
      {0, false, 0, "0"},
      {5, false, 2, "05"},
      {-5, false, 0, "-5"},
      {-5, false, 3, "-005"},
      {-1234, true, 0, "-1,234"},
      {-1234, true, 7, "-001,234"},
      {2147483647, false, 0, "2147483647"},
      {-2147483647 - 1, true, 0, "-2,147,483,648"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Content(ToDecimalSigned(row.value, row.thousands, row.minDigits)), row.text);
  }
}

TEST(ByteString, ToHexHasEightLowerCaseDigits) {
  EXPECT_EQ(Content(ToHex(255)), "000000ff");
  EXPECT_EQ(Content(ToHex(0)), "00000000");
  EXPECT_EQ(Content(ToHex(0x89ABCDEF)), "89abcdef");
}

TEST(ByteString, IsAllDigitsWantsAtLeastOne) {
  for (const char* text : {"0", "0123456789"}) EXPECT_TRUE(IsAllDigits(text)) << text;
  // '/' and ':' lie in front of 0 and behind 9.
  for (const char* text : {"", "12a", "-1", "1/", "1:"}) EXPECT_FALSE(IsAllDigits(text)) << text;
  EXPECT_FALSE(IsAllDigits(Raw("1\0")));
}

TEST(ByteString, ToUnsignedCountsTheDigitsAlone) {
  const struct {
    const char* text;
    std::uint32_t value;
  } rows[] = {{"", 0},           {"1a2", 12},
              {"abc", 0},        {"007", 7},
              {"-42", 42},       {"1,234,567", 1234567},
              {" 3 4 ", 34},     {"4294967295", 4294967295},
              {"4294967296", 0}, {"4294967301", 5}};
  for (const auto& row : rows) EXPECT_EQ(ToUnsigned(row.text), row.value) << row.text;
}

TEST(ByteString, LettersAreAsciiLetters) {
  for (int c = 0; c < 256; ++c) {
    const bool expected = (c >= 65 && c <= 90) || (c >= 97 && c <= 122);
    EXPECT_EQ(IsLetter(static_cast<char>(c)), expected) << c;
  }
}

// ---- trims ----

TEST(ByteString, TrimsRemoveARangeOfValues) {
  const struct {
    const char* text;
    std::uint8_t low;
    std::uint8_t high;
    const char* left;
    const char* right;
    const char* both;
  } rows[] = {
      {" \t a b \n", 0, 32, "a b \n", " \t a b", "a b"},
      {"abc", 0, 32, "abc", "abc", "abc"},
      {"   ", 0, 32, "", "", ""},
      {"", 0, 32, "", "", ""},
      {"!x!", 0, 32, "!x!", "!x!", "!x!"},  // 33 is just outside
      {"0x9", '0', '9', "x9", "0x", "x"},   // both ends of the range belong to it
      {"\xFFz\x80", 0x80, 0xFF, "z\x80", "\xFFz", "z"},
  };
  for (const auto& row : rows) {
    ByteString left(row.text);
    ByteString right(row.text);
    ByteString both(row.text);
    left.TrimLeft(row.low, row.high);
    right.TrimRight(row.low, row.high);
    both.Trim(row.low, row.high);
    EXPECT_EQ(Content(left), row.left);
    EXPECT_EQ(Content(right), row.right);
    EXPECT_EQ(Content(both), row.both);
  }
}

TEST(ByteString, TrimmingCopiesNothing) {
  ByteString string("  abc  ");
  const char* const start = string.Text();
  const std::uint64_t before = Allocations();
  string.Trim(0, 32);
  EXPECT_EQ(string.Text(), start + 2);
  EXPECT_EQ(Allocations(), before);
}

TEST(ByteString, BackslashesAtTheEnd) {
  const struct {
    const char* text;
    const char* ensured;
    const char* trimmed;
  } rows[] = {{"", "\\", ""},
              {"C:", "C:\\", "C:"},
              {"C:\\", "C:\\", "C:"},
              {"a\\b\\\\", "a\\b\\\\", "a\\b"},
              {"\\\\\\", "\\\\\\", ""}};
  for (const auto& row : rows) {
    ByteString ensured(row.text);
    ByteString trimmed(row.text);
    ensured.EnsureTrailingBackslash();
    trimmed.TrimTrailingBackslashes();
    EXPECT_EQ(Content(ensured), row.ensured) << row.text;
    EXPECT_EQ(Content(trimmed), row.trimmed) << row.text;
  }
}

// ---- files ----

constexpr char kFile[] = "/file";

// On a disk of its own.
class OpenFile {
 public:
  explicit OpenFile(const std::string& bytes = {}) {
    disk.PutFile(kFile, bytes);
    file = disk.CreateFileA(kFile, platform::GENERIC_READ | platform::GENERIC_WRITE, 0,
                            platform::OPEN_EXISTING);
  }

  platform::File* Get() { return file.get(); }

  std::int64_t Position() {
    std::int64_t position = -1;
    file->SetFilePointer(0, platform::FILE_CURRENT, &position);
    return position;
  }

  VirtualDisk disk;

 private:
  std::unique_ptr<platform::File> file;
};

TEST(ByteString, WriteToWritesTheBytes) {
  OpenFile file;
  EXPECT_EQ(Raw("a\0b").WriteTo(file.Get()), 3);
  EXPECT_EQ(ByteString().WriteTo(file.Get()), 0);
  EXPECT_EQ(file.disk.FileBytes(kFile), std::string("a\0b", 3));
  file.disk.StopBefore(1);
  EXPECT_EQ(ByteString("c").WriteTo(file.Get()), -1);
  EXPECT_EQ(ByteString("c").WriteTo(nullptr), -1);
}

TEST(ByteString, ReadFromReplacesTheText) {
  OpenFile file("0123456789");
  ByteString string("an old text that goes");
  string.KeepRight(4);
  EXPECT_EQ(string.ReadFrom(file.Get(), 4), 4);
  EXPECT_EQ(Content(string), "0123");
  EXPECT_EQ(string.ReadFrom(file.Get(), 100), 6);
  EXPECT_EQ(Content(string), "456789");
  EXPECT_EQ(string.Capacity(), 101);
  EXPECT_EQ(string.ReadFrom(file.Get(), 5), 0);
  EXPECT_EQ(Content(string), "");
  EXPECT_EQ(string.Capacity(), 101) << "the room is there";
}

TEST(ByteString, ReadFromOfNothingReadsNothing) {
  OpenFile file("0123");
  ByteString string("old");
  EXPECT_EQ(string.ReadFrom(file.Get(), 0), 0);
  EXPECT_EQ(Content(string), "");
  EXPECT_EQ(string.ReadFrom(file.Get(), -5), 0);
  EXPECT_EQ(string.ReadFrom(file.Get(), 4), 4);
}

TEST(ByteString, ReadFromFailsWithTheFile) {
  OpenFile file("0123");
  file.disk.StopBefore(1);
  ByteString string("old");
  EXPECT_EQ(string.ReadFrom(file.Get(), 2), -1);
  EXPECT_EQ(Content(string), "");
  EXPECT_EQ(string.ReadFrom(nullptr, 2), -1);
  EXPECT_EQ(string.ReadFrom(file.Get(), 2147483647), -1);
}

// All lines of `content`, each in brackets.
std::string Lines(const std::string& content, bool keepEmptyLines) {
  OpenFile file(content);
  ByteString line;
  std::string lines;
  for (int i = 0; i < 20 && line.ReadLine(file.Get(), keepEmptyLines); ++i) {
    lines.append(1, '[').append(Content(line)).append(1, ']');
  }
  EXPECT_EQ(Content(line), "");  // the end of the stream leaves nothing behind
  return lines;
}

TEST(ByteString, ReadLineEndsAtALineFeedOrACarriageReturn) {
  const struct {
    const char* name;
    const char* content;
    const char* lines;
    const char* withEmptyOnes;
  } rows[] = {
      {"nothing", "", "", ""},
      {"no end", "A", "[A]", "[A]"},
      {"line feeds", "A\nB\n", "[A][B]", "[A][B]"},
      {"both kinds", "A\r\nB\n", "[A][B]", "[A][B]"},
      {"a lone carriage return costs a byte", "A\rBC\n", "[A][C]", "[A][C]"},
      {"two carriage returns are one end", "A\r\rB\n", "[A][B]", "[A][B]"},
      {"empty lines", "\n\nA\n\nB\n\n", "[A][B]", "[][][A][][B][]"},
      {"empty lines of both kinds", "\r\nA\r\n\r\nB", "[A][B]", "[][A][][B]"},
      {"a carriage return at the end", "A\r", "[A]", "[A]"},
      {"nothing but a carriage return", "\r", "", ""},
      {"a carriage return behind a line feed", "A\n\r", "[A]", "[A]"},
      {"spaces and tabs stay", " A\t\n", "[ A\t]", "[ A\t]"},
      {"lines grow", "0123456789012345678901234567890123456789\n",
       "[0123456789012345678901234567890123456789]", "[0123456789012345678901234567890123456789]"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Lines(row.content, false), row.lines) << row.name;
    EXPECT_EQ(Lines(row.content, true), row.withEmptyOnes) << row.name;
  }
  EXPECT_EQ(Lines(std::string("a\0b\n", 4), false), std::string("[a\0b]", 5));
}

TEST(ByteString, ReadLineReadsNoFurtherThanItsLineAndLeavesAFinalCarriageReturn) {
  const struct {
    const char* content;
    std::int64_t position;
  } rows[] = {{"A\r\nB\n", 3}, {"A\r", 1}};
  for (const auto& row : rows) {
    OpenFile file(row.content);
    ByteString line;
    EXPECT_TRUE(line.ReadLine(file.Get(), false));
    EXPECT_EQ(Content(line), "A");
    EXPECT_EQ(file.Position(), row.position);
  }
}

TEST(ByteString, ReadLineEndsWhereReadingFails) {
  OpenFile file("A\nB\n");
  ByteString line("old");
  file.disk.StopBefore(1);
  EXPECT_FALSE(line.ReadLine(file.Get(), true));
  EXPECT_EQ(Content(line), "");
  EXPECT_FALSE(line.ReadLine(nullptr, true));
}

class Messages : public platform::System {
 public:
  std::string FormatMessageA(std::uint32_t code) override {
    return code == 2 ? "No such thing.\r\n" : "";
  }
  std::string GetUserDataFolder() override { return {}; }
};

TEST(ByteString, SystemErrorTextIsTheSystems) {
  Messages messages;
  platform::Platform groups;
  groups.system = &messages;
  const platform::InstalledPlatform installed(groups);
  EXPECT_EQ(Content(SystemErrorText(2)), "No such thing.\r\n");
  EXPECT_EQ(Content(SystemErrorText(3)), "");
  EXPECT_EQ(Content(SystemErrorWords(2)), "No such thing.");
  EXPECT_EQ(Content(SystemErrorWords(3)), "");
}

// ---- no memory ----

TEST(ByteString, ConstructorsWithoutMemoryHoldNothing) {
  const ByteString other("other");
  const FailingAllocations failing;
  const ByteString strings[] = {ByteString(),       ByteString(40),
                                ByteString('c'),    ByteString(std::uint16_t{1}),
                                ByteString("text"), ByteString(other)};
  for (const ByteString& string : strings) {
    EXPECT_EQ(string.Text(), nullptr);
    EXPECT_EQ(string.Length(), 0u);
    EXPECT_EQ(string.Capacity(), 0);
  }
}

ByteString WithoutMemory() {
  const FailingAllocations failing;
  return ByteString("text");
}

TEST(ByteString, AStringThatHoldsNothingReadsAsEmpty) {
  ByteString string = WithoutMemory();
  ASSERT_EQ(string.Text(), nullptr);
  EXPECT_EQ(Bytes(string), "");
  EXPECT_TRUE(string.Equals(""));
  EXPECT_FALSE(string.Equals("a"));
  EXPECT_TRUE(string.Equals(ByteString()));
  EXPECT_TRUE(ByteString().Equals(string));
  EXPECT_EQ(string.Compare("a", 1), -1);
  EXPECT_EQ(ByteString().Compare(string, false), 0);
  EXPECT_EQ(string.Find("a", 0, 1), -1);
  EXPECT_EQ(ByteString("a").Find(string), -1);
  EXPECT_FALSE(IsAllDigits(string));
  EXPECT_EQ(ToUnsigned(string), 0u);
  std::uint32_t number = 7;
  string.ReadU32(&number);
  EXPECT_EQ(number, 0u);
  EXPECT_EQ(Content(string.Left(3)), "");
  EXPECT_EQ(Content(string.Right(3)), "");
  EXPECT_EQ(Content(ByteString("a").Concat(string)), "a");
  EXPECT_EQ(Content(string.Concat("a")), "a");
  EXPECT_EQ(Content(ByteString(string)), "");
  string.Empty();
  string.Truncate(-1);
  string.Truncate(0);
  string.KeepRight(0);
  string.KeepRight(3);
  string.Trim(0, 255);
  string.TrimTrailingBackslashes();
  string.ReplaceAll(ByteString("a"), ByteString("b"));
  string.RemoveAll("a");
  string.BuildSkipTable();
  EXPECT_FALSE(string.ToUpper(0, -1));
  EXPECT_EQ(string.Text(), nullptr);
}

TEST(ByteString, AStringThatHeldNothingTakesTextAgain) {
  ByteString appended = WithoutMemory();
  appended.Append("abc");
  EXPECT_EQ(Content(appended), "abc");
  ByteString assigned = WithoutMemory();
  assigned.Assign("abc");
  EXPECT_EQ(Content(assigned), "abc");
  ByteString byString = WithoutMemory();
  byString = assigned;
  EXPECT_EQ(Content(byString), "abc");
  ByteString reserved = WithoutMemory();
  EXPECT_TRUE(reserved.Reserve(20, true, false));
  EXPECT_EQ(Content(reserved), "");
  ByteString empty = WithoutMemory();
  empty.Assign("");
  EXPECT_EQ(Content(empty), "");
  ByteString smallest = WithoutMemory();
  EXPECT_TRUE(smallest.AssignBytes("", 0));
  EXPECT_EQ(smallest.Capacity(), 1);
  EXPECT_EQ(ByteString(smallest).Capacity(), 1);
}

TEST(ByteString, AStringThatHeldNothingHoldsNothingWithoutMemory) {
  ByteString string = WithoutMemory();
  const FailingAllocations failing;
  string.Assign("abc");
  EXPECT_EQ(string.Text(), nullptr);
  EXPECT_EQ(string.Length(), 0u);
}

TEST(ByteString, AssignWithoutMemoryLeavesAnEmptyString) {
  const ByteString longer = OfLength(40);
  for (int kind = 0; kind < 3; ++kind) {
    ByteString string("abcdef");
    string.KeepRight(3);
    {
      const FailingAllocations failing;
      if (kind == 0) string.Assign(longer.Text());
      if (kind == 1) string.Assign(longer);
      if (kind == 2) {
        EXPECT_FALSE(string.AssignBytes(longer.Text(), longer.Length()));
      }
      EXPECT_EQ(string.Length(), 0u) << kind;
      EXPECT_EQ(string.Capacity(), 0) << kind;
      EXPECT_STREQ(string.Text(), "") << kind;  // only constructors end up with null
      string.Append("x");
      EXPECT_EQ(string.Length(), 0u) << kind;
    }
    string.Append("x");
    EXPECT_EQ(Content(string), "x") << kind;
  }
}

TEST(ByteString, AppendWithoutMemoryChangesNothing) {
  ByteString string("123456abcdefghi");
  string.KeepRight(9);
  const FailingAllocations failing;
  string.Append("0123456");  // 9 + 7 don't fit in 16
  EXPECT_EQ(Content(string), "abcdefghi");
  string.Append(string);
  string.Append("0123456", 7);
  EXPECT_EQ(Content(string), "abcdefghi");
  string.Append("ABCDEF");
  EXPECT_EQ(Content(string), "abcdefghiABCDEF");
  string.AppendChar('x');
  EXPECT_EQ(Content(string), "abcdefghiABCDEF");
}

TEST(ByteString, ReserveWithoutMemoryKeepsEverything) {
  ByteString string("abcdef");
  string.KeepRight(3);
  const char* const text = string.Text();
  const FailingAllocations failing;
  EXPECT_FALSE(string.Reserve(40, false, false));
  EXPECT_FALSE(string.Reserve(8, true, true));
  EXPECT_EQ(string.Text(), text);
  EXPECT_EQ(string.Capacity(), 13);
  EXPECT_EQ(Content(string), "def");
}

TEST(ByteString, ReplaceAllWithoutMemoryChangesNothing) {
  const ByteString one("1");
  const ByteString two("12");
  const ByteString longer("a text of more than sixteen bytes");
  for (int good : {0, 1}) {
    ByteString byByte("0123456789");
    ByteString byPattern("0123456789");
    {
      const FailingAllocations failing(good);
      byByte.ReplaceAll(one, longer);
    }
    {
      const FailingAllocations failing(good);
      byPattern.ReplaceAll(two, longer);
    }
    EXPECT_EQ(Content(byByte), "0123456789") << good;
    EXPECT_EQ(Content(byPattern), "0123456789") << good;
  }
}

TEST(ByteString, ASearchNeedsNoMemory) {
  ByteString pattern("b");
  const ByteString text("ab");
  const FailingAllocations failing;
  pattern.BuildSkipTable();
  EXPECT_EQ(text.Find(pattern), 1);
}

TEST(ByteString, ReadFromWithoutMemoryChangesNothing) {
  OpenFile file(std::string(40, 'f'));
  ByteString string("abc");
  {
    const FailingAllocations failing;
    EXPECT_EQ(string.ReadFrom(file.Get(), 40), -1);
  }
  EXPECT_EQ(Content(string), "abc");
  EXPECT_EQ(file.Position(), 0);
}

}  // namespace
}  // namespace kelvaro
