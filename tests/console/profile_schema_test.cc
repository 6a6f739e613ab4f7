// The published schema of a profile in JSON, held against what reads and writes it.
#include <gtest/gtest.h>
#include <json/json.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "console/profile_json.h"
#include "tests/console/console_run.h"
#include "tests/console/schema.h"
#include "tests/keys/random_keys.h"
#include "tests/storage/random_profile.h"

namespace kelvaro::console {
namespace {

const Schema& Published() {
  static const Schema schema(tests::Content(KELVARO_SCHEMA));
  return schema;
}

Json::Value Parsed(const std::string& text) {
  Json::Value value;
  EXPECT_TRUE(Json::Reader().parse(text, value)) << text;
  return value;
}

std::string Written(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return Json::writeString(builder, value);
}

// What show prints of a profile in JSON.
Json::Value Shown(const std::string& json) {
  Profile profile;
  JsonFault fault;
  EXPECT_TRUE(ReadProfile(json, &profile, &fault)) << fault.Text("profile");
  return Parsed(ProfileJson(profile));
}

Json::Value RandomShown(std::uint32_t seed) {
  ProfileFile profile;
  RandomProfile(seed).Fill(&profile, 3);
  return Parsed(ProfileJson(profile));
}

bool IsRead(const std::string& json) {
  Profile profile;
  JsonFault fault;
  return ReadProfile(json, &profile, &fault);
}

constexpr char kOfEach[] =
    R"({"controls":[{"triggerItems":[{"kind":8,"index":0,"value":2}],"actions":[{"text":"a"}]}]})";

struct Kind {
  const char* definition;
  Json::Value shown;
};

// One object of each kind that there is.
std::vector<Kind> Kinds() {
  const Json::Value profile = Shown(kOfEach);
  const Json::Value& control = profile["controls"][0];
  return {{"profile", profile},
          {"mouse", profile["mouse"]},
          {"mouseInput", profile["mouse"]["mouseX"]},
          {"control", control},
          {"triggerItem", control["triggerItems"][0]},
          {"action", control["actions"][0]}};
}

TEST(ProfileSchema, NamesTheMembersThatAreShownAndNoOthers) {
  for (const Kind& kind : Kinds()) {
    EXPECT_EQ(kind.shown.getMemberNames(),
              Published().Definition(kind.definition)["properties"].getMemberNames())
        << kind.definition;
  }
}

TEST(ProfileSchema, TellsTheDefaultsThatHold) {
  const Json::Value profile = Shown(R"({"controls":[{"triggerItems":[{}],"actions":[{}]}]})");
  const Json::Value& control = profile["controls"][0];
  const Kind kinds[] = {{"profile", Shown("{}")},
                        {"mouse", profile["mouse"]},
                        {"mouseInput", profile["mouse"]["mouseX"]},
                        {"control", Shown(R"({"controls":[{}]})")["controls"][0]},
                        {"triggerItem", control["triggerItems"][0]},
                        {"action", control["actions"][0]}};
  int told = 0;
  for (const Kind& kind : kinds) {
    const Json::Value& members = Published().Definition(kind.definition)["properties"];
    for (const std::string& name : members.getMemberNames()) {
      if (!members[name].isMember("default")) continue;
      EXPECT_EQ(Written(kind.shown[name]), Written(members[name]["default"]))
          << kind.definition << " " << name;
      ++told;
    }
  }
  EXPECT_EQ(told, 39);  // all but those of a profile's mouse, its inputs, and a Control's number
}

TEST(ProfileSchema, FitsWhatIsShown) {
  for (const auto& entry : std::filesystem::directory_iterator(KELVARO_EXAMPLES)) {
    if (entry.path().extension() != ".json") continue;
    const std::string json = tests::Content(entry.path());
    EXPECT_EQ(Published().Misfit(Parsed(json)), "") << entry.path();
    EXPECT_EQ(Published().Misfit(Shown(json)), "") << entry.path();
  }
  for (std::uint32_t seed = 1; seed <= 50; ++seed) {
    EXPECT_EQ(Published().Misfit(RandomShown(seed)), "") << seed;
  }
  const std::string bytes = R"({"profileName":{"bytes":"ff00"},"controls":[{"description":)"
                            R"({"bytes":""}}]})";
  EXPECT_EQ(Published().Misfit(Parsed(bytes)), "");
  EXPECT_EQ(Published().Misfit(Shown(bytes)), "");
}

TEST(ProfileSchema, FitsWhatIsReadAndNothingElse) {
  struct {
    const char* json;
    bool isRead;
  } const kCases[] = {
      {"{}", true},
      {"[]", false},
      {R"({"name":"x"})", false},
      {R"({"profileName":5})", false},
      {R"({"profileName":{"bytes":"f"}})", false},
      {R"({"profileName":{"bytes":"ff","more":1}})", false},
      {R"({"profileName":{}})", false},
      {R"({"deviceGuid":"00"})", false},
      {R"({"deviceGuid":"FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"})", true},
      {R"({"pollInterval":4294967295})", true},
      {R"({"pollInterval":4294967296})", false},
      {R"({"pollInterval":-1})", false},
      {R"({"pollInterval":5.0})", true},
      {R"({"pollInterval":5.5})", false},
      {R"({"pollInterval":"5"})", false},
      {R"({"mouse":{"acceleration":-2147483648}})", true},
      {R"({"mouse":{"acceleration":2147483648}})", false},
      {R"({"mouse":{"leftButton":65536}})", false},
      {R"({"mouse":{"leftMask":"0x8000000000000001"}})", true},
      {R"({"mouse":{"leftMask":"0x80000000000000011"}})", false},
      {R"({"mouse":{"leftMask":"5"}})", false},
      {R"({"mouse":{"leftMask":18446744073709551615}})", true},
      {R"({"mouse":{"mouseX":{"kind":9,"index":1}}})", true},
      {R"({"mouse":{"mouseX":{"kind":9,"value":1}}})", false},
      {R"({"mouse":{"mouseAlwaysActive":1}})", false},
      {R"({"controls":{}})", false},
      {R"({"controls":[{"actions":[{"steps":[[65,30,0]]}]}]})", true},
      {R"({"controls":[{"actions":[{"steps":[[65,30]]}]}]})", false},
      {R"({"controls":[{"actions":[{"steps":[[65,30,0,0]]}]}]})", false},
      {R"({"controls":[{"actions":[{"steps":[[65,30,256]]}]}]})", false},
      {R"({"controls":[{"actions":[{"steps":null}]}]})", false},
      {R"({"controls":[{"triggerItems":[{"kind":0,"index":0,"value":2,"side":1}]}]})", false},
      {R"({"controls":[{"triggerText":"anything"}]})", true},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(IsRead(c.json), c.isRead) << c.json;
    EXPECT_EQ(Published().Misfit(Parsed(c.json)).empty(), c.isRead)
        << c.json << " " << Published().Misfit(Parsed(c.json));
  }
}

// Calls visit for the value and all in it.
void ForEachValue(Json::Value& value, const std::function<void(Json::Value&)>& visit) {
  visit(value);
  if (!value.isArray() && !value.isObject()) return;
  for (Json::Value& each : value) ForEachValue(each, visit);
}

TEST(ProfileSchema, AgreesWithTheReaderOnProfilesInWhichSomethingWasExchanged) {
  const char* const kOthers[] = {
      "null",  "true", "-1",  "0",         "255",          "256",
      "65536", "1.5",  "4e9", "5e9",       "\"\"",         "\"0x5\"",
      "[]",    "{}",   "[1]", "[[1,2,3]]", "{\"kind\":1}", "{\"bytes\":\"61\"}"};
  RandomKeys random(11);
  int read = 0;
  int refused = 0;
  for (int i = 0; i < 1000; ++i) {
    Json::Value profile = RandomShown(static_cast<std::uint32_t>(i));
    std::uint32_t values = 0;
    ForEachValue(profile, [&values](Json::Value&) { ++values; });
    std::uint32_t at = random.Below(values);
    const std::string other = kOthers[random.Below(std::size(kOthers))];
    const Json::Value exchanged = Parsed(other);
    ForEachValue(profile, [&](Json::Value& value) {
      if (at-- == 0) value = exchanged;
    });
    const std::string json = Written(profile);
    const bool isRead = IsRead(json);
    EXPECT_EQ(Published().Misfit(Parsed(json)).empty(), isRead) << other << "\n" << json;
    ++(isRead ? read : refused);
  }
  EXPECT_GT(read, 100);
  EXPECT_GT(refused, 100);
}

}  // namespace
}  // namespace kelvaro::console
