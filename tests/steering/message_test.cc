#include "steering/message.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvaro {
namespace {

TEST(SteeringMessage, IsALineOfItsKindAndOneForEachField) {
  SteeringMessage message;
  message.kind = "select";
  message.Add("name", std::string("My Game")).Add("count", 4294967295u).AddFlag("on", true);
  EXPECT_EQ(message.Text(), "kelvaro 1 select\nname My Game\ncount 4294967295\non yes");
  message.fields.clear();
  EXPECT_EQ(message.Text(), "kelvaro 1 select");
}

TEST(SteeringMessage, ComesBackAsItWas) {
  for (const std::string& value :
       {std::string(), std::string(" "), std::string("a\nb\\n\\\n"), std::string("\0\xFF\r", 3)}) {
    SteeringMessage message;
    message.kind = "follow-events";
    message.Add("name", value).Add("other", std::string("x"));
    std::string error;
    const auto read = ParseSteeringMessage(message.Text(), &error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->kind, message.kind);
    EXPECT_EQ(read->fields, message.fields);
    EXPECT_EQ(error, "");
  }
}

TEST(SteeringMessage, TheFirstFieldOfANameCounts) {
  std::string error;
  const auto read = ParseSteeringMessage("kelvaro 1 select\nname a\nname b", &error);
  ASSERT_TRUE(read);
  EXPECT_EQ(*read->Find("name"), "a");
  EXPECT_EQ(read->Find("nam"), nullptr);
}

TEST(SteeringMessage, AKindIsLettersAndHyphensAndANameLetters) {
  std::string error;
  const auto read = ParseSteeringMessage("kelvaro 1 aAz-Z\nazAZ x\nm n", &error);
  ASSERT_TRUE(read) << error;
  EXPECT_EQ(read->kind, "aAz-Z");
  EXPECT_NE(read->Find("azAZ"), nullptr);
  EXPECT_NE(read->Find("m"), nullptr);
  for (const char c : {'@', '[', '`', '{', '_', '0'}) {
    EXPECT_FALSE(ParseSteeringMessage(std::string("kelvaro 1 ") + c, &error)) << c;
    EXPECT_FALSE(ParseSteeringMessage(std::string("kelvaro 1 k\n") + c + " x", &error)) << c;
  }
}

TEST(SteeringMessage, AnotherVersionIsRefusedByItsNumber) {
  for (const char* text : {"kelvaro 2 status", "kelvaro 01 status", "kelvaro  status",
                           "kelvaro 18446744073709551617 status", "kelvaro 1x status"}) {
    std::string error;
    EXPECT_FALSE(ParseSteeringMessage(text, &error)) << text;
    EXPECT_EQ(error, "only version 1 is spoken here") << text;
  }
}

TEST(SteeringMessage, WhatIsNoMessageIsRefused) {
  for (const char* text :
       {"", "\n", "kelvaro", "kelvaro ", "kelvaro 1", "kelvaro 1 ", "Kelvaro 1 status",
        "kelvaro 1 sta tus", "kelvaro 1 status ", " kelvaro 1 status", "kelvaro 1 st\x01"}) {
    std::string error;
    EXPECT_FALSE(ParseSteeringMessage(text, &error)) << text;
    EXPECT_EQ(error, "this isn't a message") << text;
  }
}

TEST(SteeringMessage, AFieldThatIsSpoiltSpoilsTheMessage) {
  for (const char* field : {"name", "", " x", "na-me x", "name \\", "name \\x", "n1 x"}) {
    std::string error;
    EXPECT_FALSE(
        ParseSteeringMessage("kelvaro 1 select\n" + std::string(field) + "\nname x", &error))
        << field;
    EXPECT_EQ(error, "a field of the message is spoilt") << field;
  }
}

}  // namespace
}  // namespace kelvaro
