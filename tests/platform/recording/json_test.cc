#include "app/platform/recording/json.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace platform::json {
namespace {

constexpr int kLevels = 4;

// "OFFSET: what" for a text that isn't taken; empty for one that is.
std::string FaultOf(const std::string& text) {
  Value value;
  Fault fault;
  if (Parse(text, kLevels, &value, &fault)) return {};
  return std::to_string(fault.offset) + ": " + fault.what;
}

// The element of a list of one.
Value Only(const std::string& element) {
  Value value;
  Fault fault;
  EXPECT_TRUE(Parse("[" + element + "]", kLevels, &value, &fault)) << element << fault.what;
  return value.Elements().empty() ? Value() : value.Elements()[0];
}

TEST(Json, AValueIsOfOneKind) {
  EXPECT_TRUE(Only("true").Bool());
  EXPECT_TRUE(Only("false").IsBool());
  EXPECT_FALSE(Only("false").Bool());
  EXPECT_TRUE(Only("-1").IsNumber());
  EXPECT_TRUE(Only("\"\"").IsText());
  EXPECT_TRUE(Only("[]").IsList());
  EXPECT_TRUE(Only("{}").IsObject());
  const Value null = Only("null");
  EXPECT_FALSE(null.IsBool() || null.IsNumber() || null.IsText() || null.IsList() ||
               null.IsObject());
  EXPECT_EQ(null.Text(), "");
  EXPECT_EQ(null.Find("a"), nullptr);
}

TEST(Json, WholeNumbersAreExactInTheirRange) {
  constexpr auto none = std::nullopt;
  struct {
    const char* text;
    std::optional<std::int64_t> isSigned;
    std::optional<std::uint64_t> isUnsigned;
  } const kCases[] = {
      {"0", 0, 0},
      {"-0", 0, 0},
      {"7", 7, 7},
      {"-7", -7, none},
      {"1.0", 1, 1},
      {"2e2", 200, 200},
      {"-0e-222", 0, 0},
      {"9007199254740993", 9007199254740993, 9007199254740993},
      {"9223372036854775807", INT64_MAX, 9223372036854775807u},
      {"9223372036854775808", none, 9223372036854775808u},
      {"-9223372036854775808", INT64_MIN, none},
      {"-9223372036854775809", none, none},
      {"18446744073709551615", none, UINT64_MAX},
      {"18446744073709551616", none, none},
      {"0.5", none, none},
      {"1e300", none, none},
      {"true", none, none},
      {"\"1\"", none, none},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Only(c.text).Signed(), c.isSigned) << c.text;
    EXPECT_EQ(Only(c.text).Unsigned(), c.isUnsigned) << c.text;
  }
  EXPECT_EQ(Only("-2.5e-1").Real(), -0.25);
}

TEST(Json, WhatIsNoNumberIsNamed) {
  for (const char* text : {"01", "-", "1.", "1.e5", ".5", "1e", "1e+", "--1", "1.2.3", "1e400"}) {
    EXPECT_NE(FaultOf("[" + std::string(text) + "]"), "") << text;
  }
}

TEST(Json, EscapesStandForTheirCharacters) {
  EXPECT_EQ(Only(R"("\"\\\/\b\f\n\r\t")").Text(), "\"\\/\b\f\n\r\t");
  EXPECT_EQ(Only(R"("\u0041\u00e4\u20AC")").Text(), "A\xC3\xA4\xE2\x82\xAC");
  EXPECT_EQ(Only(R"("\ud83c\udfae")").Text(), "\xF0\x9F\x8E\xAE");
  for (const char* text :
       {R"("\x")", R"("\u12")", R"("\u12g4")", R"("\u")", R"("\ud83c\u0041")", R"("\ud83c")"}) {
    EXPECT_EQ(FaultOf("[" + std::string(text) + "]").substr(0, 3), "1: ") << text;
  }
  EXPECT_EQ(Only("\"\xFF\"").Text(), "\xFF");  // whoever reads it may mind
}

TEST(Json, MembersAreFoundByNameWithTheirPlaces) {
  Value value;
  Fault fault;
  ASSERT_TRUE(Parse(R"({"b": 1, "a": [2, {"c": 3}]})", kLevels, &value, &fault));
  EXPECT_EQ(value.Offset(), 0u);
  ASSERT_TRUE(value.Find("a"));
  EXPECT_EQ(value.Find("b")->Offset(), 6u);
  EXPECT_EQ(value.Find("a")->Elements()[1].Find("c")->Offset(), 24u);
  EXPECT_EQ(value.Find("c"), nullptr);
  EXPECT_EQ(value.ByName().begin()->first, "a");
}

TEST(Json, AnythingCanBeTheWhole) {
  EXPECT_EQ(FaultOf("7"), "");
  EXPECT_EQ(FaultOf("\xEF\xBB\xBF\"text\" "), "");
}

TEST(Json, AZeroByteIsNoEnd) {
  EXPECT_EQ(FaultOf(std::string("[]\0", 3)), "2: a zero byte");
  EXPECT_EQ(FaultOf(std::string("[\"\0\"]", 5)), "2: a zero byte");
}

TEST(Json, AFaultSaysWhereItIs) {
  struct {
    const char* text;
    const char* fault;
  } const kCases[] = {
      {"", "0: The document is empty"},
      {"[1 2]", "3: Missing a comma or ']' after an array element"},
      {"[1,]", "3: Invalid value"},
      {"[1,,2]", "3: Invalid value"},
      {"[10,01]", "5: Missing a comma or ']' after an array element"},
      {"[10,-x]", "4: Invalid value"},
      {"[10,1.x]", "4: Miss fraction part in number"},
      {R"({"a" 1})", "5: Missing a colon after a name of object member"},
      {R"({"a":1)", "6: Missing a comma or '}' after an object member"},
      {R"({"a":1,})", "7: Missing a name for object member"},
      {R"({"a":1,"a":2})", "7: Duplicate key: 'a'"},
      {"[] x", "3: The document root must not be followed by other values"},
      {"[\"open", "1: Missing a closing quotation mark in string"},
      {"[\"a\nb\"]", "1: Invalid escape character in string"},
      {"[nul]", "1: Invalid value"},
      {"\xEF\xBB\xBF[nul]", "4: Invalid value"},
      {"[[[[]]]]", ""},
      {"[[[[[]]]]]", "4: nested too deeply"},
      {"[[],[[[]]],[]]", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(FaultOf(c.text), c.fault) << c.text;
}

TEST(Json, QuotedTextReadsAsItWas) {
  std::string all;
  for (int c = 0; c < 0x80; ++c) all += static_cast<char>(c);
  all += "\xC3\xA4";
  EXPECT_EQ(Only(Quoted(all)).Text(), all);
  EXPECT_EQ(Quoted("a\"\\\n\x1F/\x7F"), "\"a\\\"\\\\\\n\\u001F/\x7F\"");
}

}  // namespace
}  // namespace platform::json
