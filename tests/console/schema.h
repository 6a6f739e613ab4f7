// Holds a JSON value against a JSON Schema, as far as our own schema goes: it fails the test for a
// keyword that it doesn't know, so that none is passed over.
#pragma once

#include <gtest/gtest.h>
#include <json/json.h>

#include <map>
#include <regex>
#include <set>
#include <string>

namespace kelvaro {

class Schema {
 public:
  explicit Schema(const std::string& text) {
    EXPECT_TRUE(Json::Reader().parse(text, root)) << "the schema is no JSON";
  }

  const Json::Value& Definition(const std::string& name) const {
    EXPECT_TRUE(root["$defs"].isMember(name)) << name;
    return root["$defs"][name];
  }

  // What is wrong with the value, with its place; empty where it fits.
  std::string Misfit(const Json::Value& value) const { return Misfit(value, root, "the whole"); }

 private:
  std::string Misfit(const Json::Value& value, const Json::Value& schema,
                     const std::string& place) const {
    for (const std::string& keyword : schema.getMemberNames()) {
      const std::string misfit = MisfitOf(keyword, value, schema, place);
      if (!misfit.empty()) return misfit;
    }
    return "";
  }

  std::string MisfitOf(const std::string& keyword, const Json::Value& value,
                       const Json::Value& schema, const std::string& place) const {
    static const std::set<std::string> kForPeople{"$schema", "$defs", "title", "description",
                                                  "default"};
    const Json::Value& wanted = schema[keyword];
    if (kForPeople.contains(keyword)) return "";
    if (keyword == "$ref") return Misfit(value, Referred(wanted.asString()), place);
    if (keyword == "type")
      return IsOfType(value, wanted.asString()) ? "" : place + ": no " + wanted.asString();
    if (keyword == "anyOf") return FitsAny(value, wanted) ? "" : place + ": fits none of several";
    if (keyword == "additionalProperties") return "";  // belongs to the properties
    if (keyword == "properties" || keyword == "required") {
      return value.isObject() ? MisfitOfMembers(keyword, value, schema, place) : "";
    }
    if (keyword == "items" || keyword == "minItems" || keyword == "maxItems") {
      return value.isArray() ? MisfitOfItems(keyword, value, wanted, place) : "";
    }
    if (keyword == "minimum" || keyword == "maximum") {
      if (!value.isIntegral()) return "";
      const bool fits =
          keyword == "minimum" ? Number(value) >= Number(wanted) : Number(value) <= Number(wanted);
      return fits ? "" : place + ": beyond its " + keyword;
    }
    if (keyword == "pattern") {
      if (!value.isString()) return "";
      return std::regex_search(value.asString(), PatternOf(wanted.asString()))
                 ? ""
                 : place + ": not of its pattern";
    }
    ADD_FAILURE() << "an unknown keyword: " << keyword;
    return keyword;
  }

  std::string MisfitOfMembers(const std::string& keyword, const Json::Value& value,
                              const Json::Value& schema, const std::string& place) const {
    if (keyword == "required") {
      for (const Json::Value& name : schema["required"]) {
        if (!value.isMember(name.asString())) return place + ": lacks " + name.asString();
      }
      return "";
    }
    const Json::Value& known = schema["properties"];
    for (const std::string& name : value.getMemberNames()) {
      if (!known.isMember(name)) {
        // No schema for others but "none".
        EXPECT_TRUE(schema.isMember("additionalProperties"));
        EXPECT_EQ(schema["additionalProperties"], Json::Value(false));
        return place + ": unknown member " + name;
      }
      const std::string misfit = Misfit(value[name], known[name], place + "." + name);
      if (!misfit.empty()) return misfit;
    }
    return "";
  }

  std::string MisfitOfItems(const std::string& keyword, const Json::Value& value,
                            const Json::Value& wanted, const std::string& place) const {
    if (keyword == "minItems") return value.size() >= wanted.asUInt() ? "" : place + ": too short";
    if (keyword == "maxItems") return value.size() <= wanted.asUInt() ? "" : place + ": too long";
    for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
      const std::string misfit = Misfit(value[i], wanted, place + "[" + std::to_string(i) + "]");
      if (!misfit.empty()) return misfit;
    }
    return "";
  }

  bool FitsAny(const Json::Value& value, const Json::Value& several) const {
    for (const Json::Value& each : several) {
      if (Misfit(value, each, "").empty()) return true;
    }
    return false;
  }

  const Json::Value& Referred(const std::string& address) const {
    static const std::string kPlace = "#/$defs/";
    EXPECT_TRUE(address.starts_with(kPlace)) << address;
    return Definition(address.substr(kPlace.size()));
  }

  static bool IsOfType(const Json::Value& value, const std::string& type) {
    if (type == "object") return value.isObject();
    if (type == "array") return value.isArray();
    if (type == "string") return value.isString();
    if (type == "boolean") return value.isBool();
    EXPECT_EQ(type, "integer");
    return value.isIntegral();
  }

  // Has room for each whole number of 64 bits, with or without sign.
  static long double Number(const Json::Value& value) {
    return value.isUInt64() ? static_cast<long double>(value.asUInt64())
                            : static_cast<long double>(value.asInt64());
  }

  // Made once, since that takes its time.
  static const std::regex& PatternOf(const std::string& text) {
    static std::map<std::string, std::regex> patterns;
    return patterns.try_emplace(text, text).first->second;
  }

  Json::Value root;
};

}  // namespace kelvaro
