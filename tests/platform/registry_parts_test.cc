#include "app/platform/registry_parts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace platform {
namespace {

TEST(KeyNames, AreWhatStandsBetweenBackslashes) {
  using Names = std::vector<std::string>;
  EXPECT_EQ(KeyNames(""), Names());
  EXPECT_EQ(KeyNames("a"), Names{"a"});
  EXPECT_EQ(KeyNames("a\\Software\\b c"), (Names{"a", "Software", "b c"}));
  EXPECT_EQ(KeyNames("\\a\\\\b\\"), (Names{"a", "b"})) << "empty ones are none";
}

TEST(GiveName, NeedsRoomForTheTerminatorAndTouchesNothingBehindIt) {
  char buffer[] = "....";
  EXPECT_EQ(GiveName("ab", buffer, 2), ERROR_MORE_DATA);
  EXPECT_EQ(std::string(buffer, 4), "....");
  EXPECT_EQ(GiveName("ab", buffer, 3), ERROR_SUCCESS);
  EXPECT_EQ(std::string(buffer, 4), std::string("ab\0.", 4));
}

// Room for `room` of the three bytes that there are.
struct Asked {
  explicit Asked(std::uint32_t room) : size(room) {}
  std::uint32_t type = 99;
  char data[4] = {'.', '.', '.', '.'};
  std::uint32_t size;
};

const StoredValue kValue{"name", REG_BINARY, "abc"};

TEST(GiveValue, GivesTheTypeTheBytesAndHowManyThereAre) {
  Asked asked(3);
  EXPECT_EQ(GiveValue(kValue, &asked.type, asked.data, &asked.size), ERROR_SUCCESS);
  EXPECT_EQ(asked.type, REG_BINARY);
  EXPECT_EQ(std::string(asked.data, 4), "abc.");
  EXPECT_EQ(asked.size, 3u);
}

TEST(GiveValue, WithoutRoomForAllBytesTellsHowManyThereAreAndGivesNone) {
  Asked asked(2);
  EXPECT_EQ(GiveValue(kValue, &asked.type, asked.data, &asked.size), ERROR_MORE_DATA);
  EXPECT_EQ(std::string(asked.data, 4), "....");
  EXPECT_EQ(asked.size, 3u);
}

TEST(GiveValue, AsksForTheTypeOrTheSizeAloneAreAnswered) {
  Asked asked(0);
  EXPECT_EQ(GiveValue(kValue, nullptr, nullptr, &asked.size), ERROR_SUCCESS);
  EXPECT_EQ(asked.size, 3u);
  EXPECT_EQ(GiveValue(kValue, &asked.type, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(asked.type, REG_BINARY);
  EXPECT_EQ(GiveValue(kValue, nullptr, nullptr, nullptr), ERROR_SUCCESS) << "is it there?";
}

TEST(GiveValue, BytesWithoutASizeCantBeAskedFor) {
  Asked asked(3);
  EXPECT_EQ(GiveValue(kValue, &asked.type, asked.data, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(asked.type, 99u);
  EXPECT_EQ(std::string(asked.data, 4), "....");
}

TEST(GiveNamedValue, GivesTheNameItsLengthAndTheValue) {
  Asked asked(3);
  char name[5];
  std::uint32_t nameSize = sizeof name;
  EXPECT_EQ(GiveNamedValue(kValue, name, &nameSize, &asked.type, asked.data, &asked.size),
            ERROR_SUCCESS);
  EXPECT_STREQ(name, "name");
  EXPECT_EQ(nameSize, 4u);
  EXPECT_EQ(asked.type, REG_BINARY);
  EXPECT_EQ(std::string(asked.data, 4), "abc.");
}

TEST(GiveNamedValue, WithoutRoomForTheNameGivesNothing) {
  Asked asked(3);
  char name[4];
  std::uint32_t nameSize = sizeof name;
  EXPECT_EQ(GiveNamedValue(kValue, name, &nameSize, &asked.type, asked.data, &asked.size),
            ERROR_MORE_DATA);
  EXPECT_EQ(nameSize, 4u);
  EXPECT_EQ(asked.type, 99u);
}

}  // namespace
}  // namespace platform
