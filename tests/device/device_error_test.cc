#include "device/device_error.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvaro {
namespace {

constexpr ErrorTableEntry kTable[] = {
    {7, "Seven"}, {-3, "Minus three"}, {7, "Seven again"}, {9, nullptr}};

std::string TextOf(const DeviceErrorObject& object) {
  ByteString text;
  object.GetError(text);
  return std::string(text.Text(), text.Length());
}

TEST(DeviceErrorObject, StartsWithNoError) {
  DeviceErrorObject object;
  ByteString text("old");
  EXPECT_EQ(object.GetError(text), 0);
  EXPECT_STREQ(text.Text(), "No Error");
  std::uint32_t count = 5;
  EXPECT_EQ(object.GetErrorTable(&count), nullptr);
  EXPECT_EQ(count, 0u);
}

TEST(DeviceErrorObject, ClearErrorGoesBackToNoErrorAndKeepsTheTable) {
  DeviceErrorObject object;
  object.SetErrorTable(kTable, 4);
  object.SetErrorText(12, "Broken");
  object.ClearError();
  EXPECT_EQ(object.PeekError(nullptr), 0);
  EXPECT_EQ(TextOf(object), "No Error");
  EXPECT_EQ(object.GetErrorTable(nullptr), kTable);
}

TEST(DeviceErrorObject, LookingDoesNotChangeTheError) {
  DeviceErrorObject object;
  object.SetErrorText(12, "Broken");
  ByteString text;
  EXPECT_EQ(object.GetError(text), 12);
  EXPECT_STREQ(text.Text(), "Broken");
  EXPECT_EQ(object.PeekError(nullptr), 12);
  ByteString peeked;
  EXPECT_EQ(object.PeekError(&peeked), 12);
  EXPECT_STREQ(peeked.Text(), "Broken");
}

TEST(DeviceErrorObject, SetErrorTextTakesBothKindsOfText) {
  DeviceErrorObject object;
  object.SetErrorText(-4, ByteString("bytes"));
  EXPECT_EQ(object.PeekError(nullptr), -4);
  EXPECT_EQ(TextOf(object), "bytes");
  object.SetErrorText(5, "plain");
  EXPECT_EQ(object.PeekError(nullptr), 5);
  EXPECT_EQ(TextOf(object), "plain");
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
  struct Case {
    const char* name;
    std::int32_t number;
    const char* extra;
    std::int32_t how;
    const char* text;
  };
  const Case cases[] = {
      {"0 joins directly", 7, "more", 0, "Sevenmore"},
      {"1 quotes behind a comma", 7, "more", 1, "Seven, \"more\""},
      {"2 puts it on a new line", 7, "more", 2, "Seven\nmore"},
      {"3 puts it on a new line with a carriage return", 7, "more", 3, "Seven\r\nmore"},
      {"4 joins directly", 7, "more", 4, "Sevenmore"},
      {"a negative way joins directly", 7, "more", -1, "Sevenmore"},
      {"a negative number is looked up too", -3, "x", 1, "Minus three, \"x\""},
      {"an unknown number has no text of its own", 8, "more", 0, "more"},
      {"an unknown number still gets its quotes", 8, "more", 1, ", \"more\""},
      {"an entry without a text counts as empty", 9, "more", 2, "\nmore"},
      {"no extra text, directly", 7, "", 0, "Seven"},
      {"no extra text, quoted", 7, "", 1, "Seven, \"\""},
      {"no extra text, new line", 7, "", 3, "Seven\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DeviceErrorObject plain;
    plain.SetErrorTable(kTable, 4);
    plain.SetTableError(c.number, c.extra, c.how);
    EXPECT_EQ(plain.PeekError(nullptr), c.number);
    EXPECT_EQ(TextOf(plain), c.text);

    DeviceErrorObject bytes;
    bytes.SetErrorTable(kTable, 4);
    bytes.SetTableError(c.number, ByteString(c.extra), c.how);
    EXPECT_EQ(bytes.PeekError(nullptr), c.number);
    EXPECT_EQ(TextOf(bytes), c.text);
  }
}

TEST(DeviceErrorObject, TheTableEndsAtItsCount) {
  DeviceErrorObject object;
  object.SetErrorTable(kTable, 1);
  object.SetTableError(-3, "only this", 0);
  EXPECT_EQ(object.PeekError(nullptr), -3);
  EXPECT_EQ(TextOf(object), "only this");
}

TEST(DeviceErrorObject, WithoutATableOnlyTheExtraTextIsThere) {
  DeviceErrorObject object;
  object.SetTableError(7, "only this", 0);
  EXPECT_EQ(object.PeekError(nullptr), 7);
  EXPECT_EQ(TextOf(object), "only this");
}

TEST(DeviceErrorObject, ANullExtraTextCountsAsEmpty) {
  DeviceErrorObject object;
  object.SetErrorTable(kTable, 4);
  object.SetTableError(7, static_cast<const char*>(nullptr), 1);
  EXPECT_EQ(TextOf(object), "Seven, \"\"");
}

}  // namespace
}  // namespace kelvaro
