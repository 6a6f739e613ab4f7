// What programs print as JSON, for tests.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "app/platform/recording/json.h"

namespace kelvaro::tests {

using Json = platform::json::Value;

inline Json Parsed(const std::string& text) {
  Json value;
  platform::json::Fault fault;
  EXPECT_TRUE(platform::json::Parse(text, 32, &value, &fault)) << text << ": " << fault.what;
  return value;
}

// A value each line.
inline std::vector<Json> ParsedLines(const std::string& text) {
  std::vector<Json> values;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) values.push_back(Parsed(line));
  return values;
}

// The value as it is written, with `other` in place of the one in it at `replaced`. Of numbers it
// takes whole ones.
inline std::string Written(const Json& value, const Json* replaced = nullptr,
                           const std::string& other = {}) {
  if (&value == replaced) return other;
  std::string inside;
  const auto add = [&](const std::string& name, const Json& each) {
    inside += (inside.empty() ? "" : ",") + name + Written(each, replaced, other);
  };
  for (const Json& each : value.Elements()) add("", each);
  for (const auto& [name, each] : value.ByName()) add(platform::json::Quoted(name) + ":", each);
  if (value.IsList()) return "[" + inside + "]";
  if (value.IsObject()) return "{" + inside + "}";
  if (value.IsText()) return platform::json::Quoted(value.Text());
  if (value.IsBool()) return value.Bool() ? "true" : "false";
  if (value.Signed()) return std::to_string(*value.Signed());
  if (value.Unsigned()) return std::to_string(*value.Unsigned());
  EXPECT_FALSE(value.IsNumber()) << value.Real();
  return "null";
}

}  // namespace kelvaro::tests
