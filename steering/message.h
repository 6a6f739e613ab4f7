// What a running Kelvaro and those that steer it say to one another: messages of text, the same in
// both directions. docs/steering.md tells which there are.
//
//   kelvaro 1 select
//   name My Game
//
// The first line has the version and the kind; each other line a field: its name, a blank and its
// value. In a value "\n" stands for a line feed and "\\" for a backslash; any other byte stands for
// itself. Plain computation.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvaro {

constexpr std::uint32_t kSteeringVersion = 1;

struct SteeringMessage {
  std::string kind;                                         // "status": letters and hyphens
  std::vector<std::pair<std::string, std::string>> fields;  // in order; a name is letters

  SteeringMessage& Add(const std::string& name, const std::string& value);
  SteeringMessage& Add(const std::string& name, std::uint32_t value);
  SteeringMessage& AddFlag(const std::string& name, bool value);  // "yes" or "no"
  // Of the first field of that name; null when there is none.
  const std::string* Find(std::string_view name) const;

  std::string Text() const;
};

// None when the text isn't a message of this version; *error then says why.
std::optional<SteeringMessage> ParseSteeringMessage(std::string_view text, std::string* error);

}  // namespace kelvaro
