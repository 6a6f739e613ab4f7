// docs/follow.schema.json says of the rules of kelvaroctl follow what the reader of them does.
#include <gtest/gtest.h>

#include "console/follow/follow_rules.h"
#include "tests/console/schema.h"
#include "tests/host/files.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

TEST(FollowSchema, TakesWhatTheReaderTakes) {
  const Schema schema(tests::Content(KELVARO_FOLLOW_SCHEMA));
  const struct {
    const char* rules;
    bool fine;
  } kCases[] = {
      {R"({"default":"D","rules":[]})", true},
      {R"({"default":"D","rules":[{"program":"a","profile":"A"}]})", true},
      {R"({"default":"D","rules":[{"class":"a","profile":"A"}]})", true},
      {R"({"default":"D","rules":[{"title":"a","profile":"A"}]})", true},
      {R"({"default":"D","rules":[{"program":"a","class":"b","title":"c","profile":"A"}]})", true},
      {R"({"rules":[]})", false},
      {R"({"default":"D"})", false},
      {R"({"default":1,"rules":[]})", false},
      {R"({"default":"D","rules":{}})", false},
      {R"({"default":"D","rules":[],"more":1})", false},
      {R"({"default":"D","rules":[1]})", false},
      {R"({"default":"D","rules":[{"program":"a"}]})", false},
      {R"({"default":"D","rules":[{"profile":"A"}]})", false},
      {R"({"default":"D","rules":[{"program":"","profile":"A"}]})", false},
      {R"({"default":"D","rules":[{"program":1,"profile":"A"}]})", false},
      {R"({"default":"D","rules":[{"title":"a","profile":1}]})", false},
      {R"({"default":"D","rules":[{"title":"a","profile":"A","more":1}]})", false},
  };
  for (const auto& each : kCases) {
    EXPECT_EQ(schema.Misfit(tests::Parsed(each.rules)).empty(), each.fine) << each.rules;
    FollowRules rules;
    JsonFault fault;
    const auto anyProfile = [](const std::string&) { return std::string(); };
    EXPECT_EQ(rules.Read(each.rules, anyProfile, &fault), each.fine) << each.rules;
  }
}

}  // namespace
}  // namespace kelvaro::console
