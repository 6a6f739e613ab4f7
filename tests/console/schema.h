// Holds a JSON value against a JSON Schema, as far as our own schema goes: it fails the test for a
// keyword that it doesn't know, so that none is passed over.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>

#include "tests/host/json.h"

namespace kelvaro {

class Schema {
 public:
  explicit Schema(const std::string& text) : root(tests::Parsed(text)) {}

  const tests::Json& Definition(const std::string& name) const {
    EXPECT_NE(root["$defs"].Find(name), nullptr) << name;
    return root["$defs"][name];
  }

  // What is wrong with the value, with its place; empty where it fits.
  std::string Misfit(const tests::Json& value) const { return Misfit(value, root, "the whole"); }

 private:
  std::string Misfit(const tests::Json& value, const tests::Json& schema,
                     const std::string& place) const {
    for (const auto& [keyword, wanted] : schema.ByName()) {
      const std::string misfit = MisfitOf(keyword, wanted, value, schema, place);
      if (!misfit.empty()) return misfit;
    }
    return "";
  }

  std::string MisfitOf(const std::string& keyword, const tests::Json& wanted,
                       const tests::Json& value, const tests::Json& schema,
                       const std::string& place) const {
    static const std::set<std::string> kForPeople{"$schema", "$defs", "title", "description",
                                                  "default"};
    if (kForPeople.contains(keyword)) return "";
    if (keyword == "$ref") return Misfit(value, Referred(wanted.Text()), place);
    if (keyword == "type")
      return IsOfType(value, wanted.Text()) ? "" : place + ": no " + wanted.Text();
    if (keyword == "anyOf") return FitsAny(value, wanted) ? "" : place + ": fits none of several";
    if (keyword == "additionalProperties") return "";  // belongs to the properties
    if (keyword == "properties" || keyword == "required") {
      return value.IsObject() ? MisfitOfMembers(keyword, value, schema, place) : "";
    }
    if (keyword == "items" || keyword == "minItems" || keyword == "maxItems") {
      return value.IsList() ? MisfitOfItems(keyword, value, wanted, place) : "";
    }
    if (keyword == "minimum" || keyword == "maximum") {
      if (!IsWhole(value)) return "";
      const bool fits =
          keyword == "minimum" ? Number(value) >= Number(wanted) : Number(value) <= Number(wanted);
      return fits ? "" : place + ": beyond its " + keyword;
    }
    if (keyword == "pattern") {
      if (!value.IsText()) return "";
      return std::regex_search(value.Text(), PatternOf(wanted.Text()))
                 ? ""
                 : place + ": not of its pattern";
    }
    ADD_FAILURE() << "an unknown keyword: " << keyword;
    return keyword;
  }

  std::string MisfitOfMembers(const std::string& keyword, const tests::Json& value,
                              const tests::Json& schema, const std::string& place) const {
    if (keyword == "required") {
      for (const tests::Json& name : schema["required"].Elements()) {
        if (!value.Find(name.Text())) return place + ": lacks " + name.Text();
      }
      return "";
    }
    const tests::Json& known = schema["properties"];
    for (const auto& [name, member] : value.ByName()) {
      if (!known.Find(name)) {
        // No schema for others but "none".
        EXPECT_TRUE(schema["additionalProperties"].IsBool());
        EXPECT_FALSE(schema["additionalProperties"].Bool());
        return place + ": unknown member " + name;
      }
      const std::string misfit = Misfit(member, known[name], place + "." + name);
      if (!misfit.empty()) return misfit;
    }
    return "";
  }

  std::string MisfitOfItems(const std::string& keyword, const tests::Json& value,
                            const tests::Json& wanted, const std::string& place) const {
    const std::size_t size = value.Elements().size();
    if (keyword == "minItems") return size >= wanted.Unsigned() ? "" : place + ": too short";
    if (keyword == "maxItems") return size <= wanted.Unsigned() ? "" : place + ": too long";
    for (std::size_t i = 0; i < size; ++i) {
      const std::string misfit = Misfit(value[i], wanted, place + "[" + std::to_string(i) + "]");
      if (!misfit.empty()) return misfit;
    }
    return "";
  }

  bool FitsAny(const tests::Json& value, const tests::Json& several) const {
    for (const tests::Json& each : several.Elements()) {
      if (Misfit(value, each, "").empty()) return true;
    }
    return false;
  }

  const tests::Json& Referred(const std::string& address) const {
    static const std::string kPlace = "#/$defs/";
    EXPECT_TRUE(address.starts_with(kPlace)) << address;
    return Definition(address.substr(kPlace.size()));
  }

  static bool IsOfType(const tests::Json& value, const std::string& type) {
    if (type == "object") return value.IsObject();
    if (type == "array") return value.IsList();
    if (type == "string") return value.IsText();
    if (type == "boolean") return value.IsBool();
    EXPECT_EQ(type, "integer");
    return IsWhole(value);
  }

  static bool IsWhole(const tests::Json& value) { return value.Signed() || value.Unsigned(); }
  // Has room for each whole number of 64 bits, with or without sign.
  static long double Number(const tests::Json& value) {
    return value.Signed() ? static_cast<long double>(*value.Signed())
                          : static_cast<long double>(value.Unsigned().value());
  }

  // Made once, since that takes its time.
  static const std::regex& PatternOf(const std::string& text) {
    static std::map<std::string, std::regex> patterns;
    return patterns.try_emplace(text, text).first->second;
  }

  const tests::Json root;
};

}  // namespace kelvaro
