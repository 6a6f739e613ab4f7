#include "device/device_error.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvaro {
namespace {

constexpr ErrorTableEntry kTable[] = {
    {7, "Seven"}, {-3, "Minus three"}, {7, "Seven again"}, {9, nullptr}};

// "7 Seven": number and text, by each of the ways to look, of which none changes them.
std::string ErrorOf(const DeviceErrorObject& object) {
  ByteString text("old"), peeked("old");
  const std::int32_t number = object.GetError(text);
  EXPECT_EQ(object.PeekError(nullptr), number);
  EXPECT_EQ(object.PeekError(&peeked), number);
  EXPECT_TRUE(peeked.Equals(text));
  return std::to_string(number) + " " + Bytes(text);
}

TEST(DeviceErrorObject, StartsWithNoError) {
  DeviceErrorObject object;
  EXPECT_EQ(ErrorOf(object), "0 No Error");
  std::uint32_t count = 5;
  EXPECT_EQ(object.GetErrorTable(&count), nullptr);
  EXPECT_EQ(count, 0u);
}

TEST(DeviceErrorObject, ClearErrorGoesBackToNoErrorAndKeepsTheTable) {
  DeviceErrorObject object;
  object.SetErrorTable(kTable, 4);
  object.SetErrorText(12, "Broken");
  object.ClearError();
  EXPECT_EQ(ErrorOf(object), "0 No Error");
  EXPECT_EQ(object.GetErrorTable(nullptr), kTable);
}

TEST(DeviceErrorObject, SetErrorTextTakesBothKindsOfText) {
  DeviceErrorObject object;
  object.SetErrorText(-4, ByteString("bytes"));
  EXPECT_EQ(ErrorOf(object), "-4 bytes");
  object.SetErrorText(5, "plain");
  EXPECT_EQ(ErrorOf(object), "5 plain");
}

TEST(DeviceErrorObject, GetErrorTableGivesWhatWasSet) {
  DeviceErrorObject object;
  object.SetErrorTable(kTable, 3);
  std::uint32_t count = 0;
  EXPECT_EQ(object.GetErrorTable(&count), kTable);
  EXPECT_EQ(count, 3u);
  object.SetErrorTable(nullptr, 3);
  EXPECT_EQ(object.GetErrorTable(&count), nullptr);
  EXPECT_EQ(count, 0u);
}

TEST(DeviceErrorObject, SetTableErrorJoinsTheExtraText) {
  const struct {
    const char* name;
    std::uint32_t table;  // entries of it
    std::int32_t number;
    const char* extra;
    std::int32_t how;
    const char* error;
  } cases[] = {
      {"0 joins directly", 4, 7, "more", 0, "7 Sevenmore"},
      {"1 quotes behind a comma", 4, 7, "more", 1, "7 Seven, \"more\""},
      {"2 puts it on a new line", 4, 7, "more", 2, "7 Seven\nmore"},
      {"3 puts it on a new line with a carriage return", 4, 7, "more", 3, "7 Seven\r\nmore"},
      {"4 joins directly", 4, 7, "more", 4, "7 Sevenmore"},
      {"a negative way joins directly", 4, 7, "more", -1, "7 Sevenmore"},
      {"a negative number is looked up too", 4, -3, "x", 1, "-3 Minus three, \"x\""},
      {"an unknown number has no text of its own", 4, 8, "more", 0, "8 more"},
      {"an unknown number still gets its quotes", 4, 8, "more", 1, "8 , \"more\""},
      {"an entry without a text counts as empty", 4, 9, "more", 2, "9 \nmore"},
      {"no extra text, directly", 4, 7, "", 0, "7 Seven"},
      {"no extra text, quoted", 4, 7, "", 1, "7 Seven, \"\""},
      {"no extra text, new line", 4, 7, "", 3, "7 Seven\r\n"},
      {"a null extra text counts as empty", 4, 7, nullptr, 1, "7 Seven, \"\""},
      {"the table ends at its count", 1, -3, "only this", 0, "-3 only this"},
      {"without a table only the extra text is there", 0, 7, "only this", 0, "7 only this"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    DeviceErrorObject object;
    object.SetErrorTable(kTable, c.table);
    object.SetTableError(c.number, c.extra, c.how);
    EXPECT_EQ(ErrorOf(object), c.error);
    object.ClearError();
    object.SetTableError(c.number, ByteString(c.extra), c.how);
    EXPECT_EQ(ErrorOf(object), c.error);
  }
}

}  // namespace
}  // namespace kelvaro
