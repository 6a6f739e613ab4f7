#include "console/json_reader.h"

#include <gtest/gtest.h>

#include "console/json_text.h"

namespace kelvaro::console {
namespace {

// What is wrong with `text` as one JSON object, as a message; empty when nothing is.
std::string ParseFault(const std::string& text) {
  JsonDocument document;
  const bool good = document.Parse(text);
  EXPECT_EQ(good, !document.Failed());
  return good ? "" : document.Fault().Text("f");
}

JsonElement At(JsonDocument& document, const char* name) {
  return *JsonObject(document.Root()).Find(name);
}

std::string Nested(int depth) {
  return "{\"a\":" + std::string(static_cast<std::size_t>(depth - 1), '[') +
         std::string(static_cast<std::size_t>(depth - 1), ']') + "}";
}

TEST(JsonDocument, TakesOneObject) {
  EXPECT_EQ(ParseFault("{}"), "");
  EXPECT_EQ(ParseFault(" \n{\"a\":[1,-2.5e3,\"x\",null,true,{}]}\r\n\t"), "");
  EXPECT_EQ(ParseFault("\xEF\xBB\xBF{}"), "");  // as some editors save it
}

TEST(JsonDocument, NamesTheLineOfWhatIsNoJson) {
  struct {
    const char* text;
    const char* fault;
  } const kCases[] = {
      {"", "f:1:1: The document is empty"},
      {"[]", "f:1:1: not an object"},
      {"\n\n[{}]", "f:3:1: not an object"},
      {"7", "f:1:1: not an object"},
      {"{}\n{}", "f:2:1: The document root must not be followed by other values"},
      {"{\"a\":1,\n\"b\":2,\n\"a\":3}", "f:3:1: Duplicate key: 'a'"},
      {"{\n\"a\":nan}", "f:2:5: Invalid value"},
      {"{\"a\":1e400}", "f:1:6: Number too big to be stored in double"},
      {"{\"a\":/**/1}", "f:1:6: Invalid value"},
      {"{'a':1}", "f:1:2: Missing a name for object member"},
      {"{\"a\":\"\\x\"}", "f:1:6: Invalid escape character in string"},
  };
  for (const auto& c : kCases) EXPECT_EQ(ParseFault(c.text), c.fault) << c.text;
}

TEST(JsonDocument, CountsLinesOfEveryKind) {
  // The parser's own faults and those of members alike.
  EXPECT_EQ(ParseFault("{\r\n\r\n?"), "f:3:1: Missing a name for object member");
  EXPECT_EQ(ParseFault("{\r\r?"), "f:3:1: Missing a name for object member");
  for (const char* text : {"{\n\n\"a\":1}", "{\r\n\r\n\"a\":1}", "{\r\r\"a\":1}"}) {
    JsonDocument document;
    ASSERT_TRUE(document.Parse(text));
    At(document, "a").Fail("wrong");
    EXPECT_EQ(document.Fault().Text("f"), "f:3:5: a: wrong") << text;
  }
}

TEST(JsonDocument, DoesNotEndAtAZeroByte) {
  EXPECT_EQ(ParseFault(std::string("{}\n\0 {\"a\":1}", 12)), "f:2:1: a zero byte");
  EXPECT_EQ(ParseFault(std::string("{\"a\":\"\0\"}", 9)), "f:1:7: a zero byte");
}

TEST(JsonDocument, StopsAtTooManyLevels) {
  EXPECT_EQ(ParseFault(Nested(32)), "");
  EXPECT_EQ(ParseFault(Nested(33)), "f:1:37: nested too deeply");
  EXPECT_EQ(ParseFault("\n" + Nested(100'000)), "f:2:37: nested too deeply");
  // Brackets in a text are no levels.
  EXPECT_EQ(
      ParseFault("{\"a\":\"" + std::string(100, '[') + "\\\"" + std::string(100, '{') + "\"}"), "");
}

TEST(JsonDocument, KeepsTheFirstFault) {
  JsonDocument document;
  ASSERT_TRUE(document.Parse("{\"a\":1,\n\"b\":2}"));
  At(document, "b").Fail("first", "detail\n");
  At(document, "a").Fail("second");
  EXPECT_TRUE(document.Failed());
  EXPECT_EQ(document.Fault().Text("walk.json"), "walk.json:2:5: b: first");
  EXPECT_EQ(document.Fault().detail, "detail\n");
}

TEST(JsonFault, LeavesOutTheLineThatItHasNot) {
  JsonFault fault;
  fault.what = "broken";
  EXPECT_EQ(fault.Text("f"), "f: broken");
  fault.line = 3;
  EXPECT_EQ(fault.Text("f"), "f:3: broken");
  fault.member = "a.b";
  EXPECT_EQ(fault.Text("f"), "f:3: a.b: broken");
}

// One member "m" of an object.
struct MemberTest : testing::Test {
  // The fault, empty when there is none.
  template <typename Read>
  std::string Try(const std::string& json, Read read) {
    JsonDocument document;
    EXPECT_TRUE(document.Parse("{\"m\":" + json + "}")) << json;
    JsonObject object(document.Root());
    read(object);
    object.RefuseOthers();
    return document.Failed() ? document.Fault().Text("f") : "";
  }

  template <typename T>
  struct Case {
    const char* json;
    T value;  // `before` where there is a fault
    const char* fault;
  };
  template <typename T>
  void Expect(T before, const std::vector<Case<T>>& cases) {
    for (const Case<T>& c : cases) {
      T value = before;
      EXPECT_EQ(Try(c.json, [&](JsonObject& object) { object.Member("m", value); }), c.fault)
          << c.json;
      EXPECT_EQ(value, c.value) << c.json;
    }
  }
};

TEST_F(MemberTest, NumberIsWholeAndInTheRangeOfItsType) {
  const char* const notInRange = "f:1:6: m: not a whole number from 0 to 65535";
  Expect<std::uint16_t>(77, {
                                {"0", 0, ""},
                                {"-0", 0, ""},
                                {"1.0", 1, ""},
                                {"2e2", 200, ""},
                                {"65535", 65535, ""},
                                {"65536", 77, notInRange},
                                {"-1", 77, notInRange},
                                {"0.5", 77, notInRange},
                                {"1e300", 77, notInRange},
                                {"18446744073709551615", 77, notInRange},
                                {"18446744073709551616", 77, notInRange},
                                {"\"5\"", 77, "f:1:6: m: not a number"},
                                {"true", 77, "f:1:6: m: not a number"},
                                {"null", 77, "f:1:6: m: not a number"},
                                {"[5]", 77, "f:1:6: m: not a number"},
                                {"{}", 77, "f:1:6: m: not a number"},
                            });
  Expect<std::uint32_t>(77,
                        {{"4294967295", UINT32_MAX, ""},
                         {"4294967296", 77, "f:1:6: m: not a whole number from 0 to 4294967295"}});
  Expect<std::int32_t>(77, {
                               {"-2147483648", INT32_MIN, ""},
                               {"2147483647", INT32_MAX, ""},
                               {"-0.0", 0, ""},
                               {"-2147483649", 77, "f:1:6: m: not a whole number of 32 bits"},
                               {"2147483648", 77, "f:1:6: m: not a whole number of 32 bits"},
                               {"1.5", 77, "f:1:6: m: not a whole number of 32 bits"},
                               {"false", 77, "f:1:6: m: not a number"},
                           });
}

TEST_F(MemberTest, FlagIsTrueOrFalse) {
  for (const char* json : {"0", "1", "null", "\"true\"", "[]"}) {
    Expect<bool>(true, {{json, true, "f:1:6: m: neither true nor false"}});
    Expect<std::uint8_t>(1, {{json, 1, "f:1:6: m: neither true nor false"}});
  }
  Expect<bool>(false, {{"true", true, ""}});
  Expect<std::uint8_t>(1, {{"false", 0, ""}});
}

TEST_F(MemberTest, TextIsAStringOrBytes) {
  const char* const notUtf8 =
      "f:1:6: m: not valid UTF-8; other bytes are written {\"bytes\":\"<hex>\"}";
  struct {
    std::string json;
    std::string value;
    const char* fault;
  } const kCases[] = {
      {"\"\"", "", ""},
      {"\"Gr\xC3\xBC\xC3\x9F\"", "Gr\xC3\xBC\xC3\x9F", ""},
      {"\"a\\u0000b\"", std::string("a\0b", 3), ""},
      {"\"\\ud83c\\udfae\"", "\xF0\x9F\x8E\xAE", ""},
      {"{\"bytes\":\"\"}", "", ""},
      {"{\"bytes\":\"00e4FF\"}", std::string("\0\xE4\xFF", 3), ""},
      {"\"\xFF\"", "old", notUtf8},
      {"\"\\udc00\"", "old", notUtf8},
      {"{\"bytes\":\"0\"}", "old", "f:1:6: m: not a text"},
      {"{\"bytes\":\"zz\"}", "old", "f:1:6: m: not a text"},
      {"{\"bytes\":5}", "old", "f:1:6: m: not a text"},
      {"{\"bytes\":\"00\",\"more\":1}", "old", "f:1:6: m: not a text"},
      {"{\"hex\":\"00\"}", "old", "f:1:6: m: not a text"},
      {"{}", "old", "f:1:6: m: not a text"},
      {"5", "old", "f:1:6: m: not a text"},
      {"null", "old", "f:1:6: m: not a text"},
      {"[\"a\"]", "old", "f:1:6: m: not a text"},
  };
  for (const auto& c : kCases) {
    ByteString value("old");
    EXPECT_EQ(Try(c.json, [&](JsonObject& object) { object.Member("m", value); }), c.fault)
        << c.json;
    EXPECT_EQ(Bytes(value), c.value) << c.json;
  }
}

TEST_F(MemberTest, MaskIsAHexStringOrANumber) {
  const char* const notMask = "f:1:6: m: not a mask such as \"0x5\"";
  const char* const notNumber = "f:1:6: m: not a whole number from 0 to 18446744073709551615";
  Expect<std::uint64_t>(77, {
                                {"\"0x0\"", 0, ""},
                                {"\"0x8000000000000001\"", 0x8000000000000001, ""},
                                {"\"0xFfFfFfFfFfFfFfFf\"", UINT64_MAX, ""},
                                {"\"0x0000000000000005\"", 5, ""},
                                {"5", 5, ""},
                                {"18446744073709551615", UINT64_MAX, ""},
                                {"18446744073709551616", 77, notNumber},
                                {"-1", 77, notNumber},
                                {"0.5", 77, notNumber},
                                {"\"0x00000000000000005\"", 77, notMask},  // 17 digits
                                {"\"0x10000000000000000\"", 77, notMask},
                                {"\"0x\"", 77, notMask},
                                {"\"\"", 77, notMask},
                                {"\"5\"", 77, notMask},
                                {"\"0X5\"", 77, notMask},
                                {"\"0x5 \"", 77, notMask},
                                {"\" 0x5\"", 77, notMask},
                                {"\"-0x5\"", 77, notMask},
                                {"\"0x-5\"", 77, notMask},
                                {"\"0xg\"", 77, notMask},
                                {"true", 77, "f:1:6: m: not a number"},
                                {"[1]", 77, "f:1:6: m: not a number"},
                            });
}

TEST_F(MemberTest, OneThatIsNotThereLeavesItsTargetAlone) {
  std::uint32_t number = 1;
  std::int32_t negative = -2;
  bool flag = true;
  ByteString text("t");
  std::uint64_t mask = 3;
  EXPECT_EQ(Try("null",
                [&](JsonObject& object) {
                  object.Find("m");
                  object.Member("number", number);
                  object.Member("negative", negative);
                  object.Member("flag", flag);
                  object.Member("text", text);
                  object.Member("mask", mask);
                }),
            "");
  EXPECT_EQ(number, 1U);
  EXPECT_EQ(negative, -2);
  EXPECT_TRUE(flag);
  EXPECT_EQ(Bytes(text), "t");
  EXPECT_EQ(mask, 3U);
}

TEST_F(MemberTest, UnknownOnesAreNamed) {
  EXPECT_EQ(Try("1,\n\"n\":2", [](JsonObject& object) { object.Find("m"); }),
            "f:2:5: n: unknown member");
  EXPECT_EQ(
      Try("1,\"" + std::string(200, 'x') + "\":2", [](JsonObject& object) { object.Find("m"); }),
      "f:1:211: " + std::string(80, 'x') + "...: unknown member");
}

TEST_F(MemberTest, ANameThatGoesOnBehindAZeroIsAnotherName) {
  EXPECT_EQ(Try("1,\"m\\u0000\":2", [](JsonObject& object) { object.Find("m"); }),
            std::string("f:1:18: m\0: unknown member", 26));
}

TEST(JsonObject, OfAnotherTypeIsAFaultAndHasNoMembers) {
  JsonDocument document;
  ASSERT_TRUE(document.Parse("{\"a\":\n[1]}"));
  JsonObject object(At(document, "a"));
  EXPECT_FALSE(object.Find("x"));
  object.RefuseOthers();
  EXPECT_EQ(document.Fault().Text("f"), "f:2:1: a: not an object");
}

TEST(JsonObject, NamesItsMembersWithThePathToIt) {
  JsonDocument document;
  ASSERT_TRUE(document.Parse("{\"a\":[{},{\"b\":2}]}"));
  EXPECT_EQ(At(document, "a").name, "a");
  std::vector<std::string> names;
  ForEach(At(document, "a"), [&names](const JsonElement& each) {
    const auto b = JsonObject(each).Find("b");
    names.push_back(b ? b->name : each.name);
  });
  EXPECT_EQ(names, (std::vector<std::string>{"a[0]", "a[1].b"}));
}

TEST(ForEach, WantsAListAndEndsAtTheFirstFault) {
  JsonDocument document;
  ASSERT_TRUE(document.Parse("{\"a\":[0,256,300],\"b\":{\"c\":1}}"));
  int read = 0;
  std::uint8_t byte = 7;
  ForEach(At(document, "a"), [&](const JsonElement& each) {
    ReadByte(each, &byte);
    ++read;
  });
  EXPECT_EQ(read, 2);
  EXPECT_EQ(byte, 0);
  EXPECT_EQ(document.Fault().Text("f"), "f:1:9: a[1]: not a whole number from 0 to 255");

  JsonDocument other;
  ASSERT_TRUE(other.Parse("{\"b\":{\"c\":1}}"));
  ForEach(At(other, "b"), [](const JsonElement&) { FAIL(); });
  EXPECT_EQ(other.Fault().Text("f"), "f:1:6: b: not a list");
}

}  // namespace
}  // namespace kelvaro::console
