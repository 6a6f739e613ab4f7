// The published schema of a profile in JSON, held against what reads and writes it.
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "console/profile_json.h"
#include "tests/console/console_run.h"
#include "tests/console/schema.h"
#include "tests/host/json.h"
#include "tests/keys/random_keys.h"
#include "tests/storage/random_profile.h"

namespace kelvaro::console {
namespace {

const Schema& Published() {
  static const Schema schema(tests::Content(KELVARO_SCHEMA));
  return schema;
}

std::vector<std::string> NamesIn(const tests::Json& object) {
  std::vector<std::string> names;
  for (const auto& [name, member] : object.ByName()) names.push_back(name);
  return names;
}

// What show prints of a profile in JSON.
tests::Json Shown(const std::string& json) {
  Profile profile;
  JsonFault fault;
  EXPECT_TRUE(ReadProfile(json, &profile, &fault)) << fault.Text("profile");
  return tests::Parsed(ProfileJson(profile));
}

tests::Json RandomShown(std::uint32_t seed) {
  ProfileFile profile;
  RandomProfile(seed).Fill(&profile, 3);
  return tests::Parsed(ProfileJson(profile));
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
  tests::Json shown;
};

// One object of each kind that there is.
std::vector<Kind> Kinds() {
  const tests::Json profile = Shown(kOfEach);
  const tests::Json& control = profile["controls"][0];
  return {{"profile", profile},
          {"mouse", profile["mouse"]},
          {"mouseInput", profile["mouse"]["mouseX"]},
          {"control", control},
          {"triggerItem", control["triggerItems"][0]},
          {"action", control["actions"][0]}};
}

TEST(ProfileSchema, NamesTheMembersThatAreShownAndNoOthers) {
  for (const Kind& kind : Kinds()) {
    EXPECT_EQ(NamesIn(kind.shown), NamesIn(Published().Definition(kind.definition)["properties"]))
        << kind.definition;
  }
}

TEST(ProfileSchema, TellsTheDefaultsThatHold) {
  const tests::Json profile = Shown(R"({"controls":[{"triggerItems":[{}],"actions":[{}]}]})");
  const tests::Json& control = profile["controls"][0];
  const Kind kinds[] = {{"profile", Shown("{}")},
                        {"mouse", profile["mouse"]},
                        {"mouseInput", profile["mouse"]["mouseX"]},
                        {"control", Shown(R"({"controls":[{}]})")["controls"][0]},
                        {"triggerItem", control["triggerItems"][0]},
                        {"action", control["actions"][0]}};
  int told = 0;
  for (const Kind& kind : kinds) {
    const tests::Json& members = Published().Definition(kind.definition)["properties"];
    for (const auto& [name, member] : members.ByName()) {
      if (!member.Find("default")) continue;
      EXPECT_EQ(tests::Written(kind.shown[name]), tests::Written(member["default"]))
          << kind.definition << " " << name;
      ++told;
    }
  }
  EXPECT_EQ(told, 39);  // all but those of a profile's mouse, its inputs, and a Control's number
}

TEST(ProfileSchema, FitsWhatIsShown) {
  for (const auto& entry : std::filesystem::directory_iterator(KELVARO_EXAMPLES)) {
    if (entry.path().extension() != ".json") continue;
    const std::string json = tests::Content(entry.path().string());
    EXPECT_EQ(Published().Misfit(tests::Parsed(json)), "") << entry.path();
    EXPECT_EQ(Published().Misfit(Shown(json)), "") << entry.path();
  }
  for (std::uint32_t seed = 1; seed <= 50; ++seed) {
    EXPECT_EQ(Published().Misfit(RandomShown(seed)), "") << seed;
  }
  const std::string bytes = R"({"profileName":{"bytes":"ff00"},"controls":[{"description":)"
                            R"({"bytes":""}}]})";
  EXPECT_EQ(Published().Misfit(tests::Parsed(bytes)), "");
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
    EXPECT_EQ(Published().Misfit(tests::Parsed(c.json)).empty(), c.isRead)
        << c.json << " " << Published().Misfit(tests::Parsed(c.json));
  }
}

// The value and all in it.
void AddAll(const tests::Json& value, std::vector<const tests::Json*>* values) {
  values->push_back(&value);
  for (const tests::Json& each : value.Elements()) AddAll(each, values);
  for (const auto& [name, each] : value.ByName()) AddAll(each, values);
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
    const tests::Json profile = RandomShown(static_cast<std::uint32_t>(i));
    std::vector<const tests::Json*> values;
    AddAll(profile, &values);
    const std::string other = kOthers[random.Below(std::size(kOthers))];
    const std::string json = tests::Written(
        profile, values[random.Below(static_cast<std::uint32_t>(values.size()))], other);
    const bool isRead = IsRead(json);
    EXPECT_EQ(Published().Misfit(tests::Parsed(json)).empty(), isRead) << other << "\n" << json;
    ++(isRead ? read : refused);
  }
  EXPECT_GT(read, 100);
  EXPECT_GT(refused, 100);
}

}  // namespace
}  // namespace kelvaro::console
