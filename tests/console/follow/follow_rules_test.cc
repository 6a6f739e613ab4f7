#include "console/follow/follow_rules.h"

#include <gtest/gtest.h>

namespace kelvaro::console {
namespace {

// Profiles are there but for those that begin with "No".
std::string FaultOf(const std::string& profile) {
  return profile.starts_with("No") ? "there is no '" + profile + "'" : "";
}

FollowRules Rules(const std::string& text) {
  FollowRules rules;
  JsonFault fault;
  EXPECT_TRUE(rules.Read(text, FaultOf, &fault)) << fault.Text("rules");
  return rules;
}

std::string FaultIn(const std::string& text) {
  FollowRules rules;
  JsonFault fault;
  EXPECT_FALSE(rules.Read(text, FaultOf, &fault)) << text;
  return fault.Text("r.json");
}

TEST(FollowRules, TheFirstThatFitsCounts) {
  const FollowRules rules = Rules(R"({"default":"Desk","rules":[
    {"program":"doom","title":"*level 2*","profile":"Level"},
    {"program":"doom*","profile":"Doom"},
    {"class":"steam_app_*","profile":"Steam"}]})");
  const auto profile = [&](const FrontWindow& window) {
    return rules.ProfileOf(rules.RuleFor(window));
  };
  EXPECT_EQ(profile({"doom", "x", "Doom: Level 2"}), "Level");
  EXPECT_EQ(profile({"doom", "x", "Doom: Level 3"}), "Doom");
  EXPECT_EQ(profile({"doom2", "steam_app_5", ""}), "Doom");
  EXPECT_EQ(profile({"", "steam_app_5", ""}), "Steam");
  EXPECT_EQ(profile({"firefox", "Navigator", "doom"}), "Desk");
  EXPECT_EQ(rules.RuleFor(FrontWindow{"doom2", "", ""}), 2U);
}

TEST(FollowRules, NoWindowIsTheDefault) {
  const FollowRules rules = Rules(R"({"default":"Desk","rules":[{"title":"*","profile":"Any"}]})");
  EXPECT_EQ(rules.RuleFor(std::nullopt), 0U);
  EXPECT_EQ(rules.RuleFor(FrontWindow{"", "", "x"}), 1U);
}

TEST(FollowRules, WhatIsNotToldFitsNothing) {
  const FollowRules rules =
      Rules(R"({"default":"Desk","rules":[{"program":"*","title":"*","profile":"Any"}]})");
  EXPECT_EQ(rules.RuleFor(FrontWindow{"", "x", "x"}), 0U);
  EXPECT_EQ(rules.RuleFor(FrontWindow{"x", "x", ""}), 0U);
  EXPECT_EQ(rules.RuleFor(FrontWindow{"x", "", "x"}), 1U);
}

TEST(FollowRules, NoRulesAreFineToo) {
  EXPECT_EQ(Rules(R"({"default":"Desk","rules":[]})").ProfileOf(0), "Desk");
}

TEST(FollowRules, AFaultIsToldWithItsPlace) {
  EXPECT_EQ(FaultIn("{\"default\":\"Desk\",\n \"rules\":[{\"prgram\":\"a\",\"profile\":\"A\"}]}"),
            "r.json:2:21: rules[0].prgram: unknown member");
  EXPECT_EQ(FaultIn(R"({"rules":[],"default":"None"})"),
            "r.json:1:23: default: there is no 'None'");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":[{"title":"a","profile":"North"}]})"),
            "r.json:1:48: rules[0].profile: there is no 'North'");
  EXPECT_EQ(FaultIn(R"({"rules":[]})"), "r.json:1:1: no default");
  EXPECT_EQ(FaultIn(R"({"default":"D"})"), "r.json:1:1: no rules");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":[],"rule":1})"), "r.json:1:34: rule: unknown member");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":{}})"), "r.json:1:24: rules: not a list");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":[1]})"), "r.json:1:25: rules[0]: not an object");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":[{"profile":"A"}]})"),
            "r.json:1:25: rules[0]: no program, class or title");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":[{"class":"a"}]})"),
            "r.json:1:25: rules[0]: no profile");
  EXPECT_EQ(FaultIn(R"({"default":"D","rules":[{"class":"","profile":"A"}]})"),
            "r.json:1:34: rules[0].class: empty, which no window is");
  EXPECT_EQ(FaultIn(R"({"default":5,"rules":[]})"), "r.json:1:12: default: not a text");
  EXPECT_EQ(FaultIn("[]"), "r.json:1:1: not an object");
}

TEST(FollowRules, AFaultLeavesTheRulesAlone) {
  FollowRules rules = Rules(R"({"default":"Desk","rules":[]})");
  JsonFault fault;
  EXPECT_FALSE(rules.Read(R"({"default":"Other","rules":1})", FaultOf, &fault));
  EXPECT_EQ(rules.ProfileOf(0), "Desk");
}

}  // namespace
}  // namespace kelvaro::console
