// The rows of a drop list: their texts, the number that each carries, and which of them is chosen.
// Searches and the order of a sorted list fold the case of ASCII letters.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

class DropRows {
 public:
  explicit DropRows(bool sorted) : sorted(sorted) {}

  // Where the row comes to stand: at the end, or in a sorted list behind its equals. The choice
  // stays with its row.
  std::int32_t Add(const std::string& text);
  // False for a row that isn't there. Without the chosen one no other is chosen.
  bool Delete(std::int32_t row);
  void Clear();
  std::int32_t Count() const { return static_cast<std::int32_t>(rows.size()); }
  std::string Text(std::int32_t row) const;  // empty for a row that isn't there
  std::int32_t FindPrefix(const std::string& prefix) const;
  std::int32_t FindExact(const std::string& text) const;
  // Of a row that isn't there, as of -1, none is chosen.
  void Select(std::int32_t row) { selected = IsRow(row) ? row : -1; }
  std::int32_t Selected() const { return selected; }
  bool SetData(std::int32_t row, std::int32_t data);
  std::int32_t Data(std::int32_t row) const;  // 0 at first, -1 for a row that isn't there

 private:
  struct Row {
    std::string text;
    std::int32_t data = 0;
  };
  bool IsRow(std::int32_t row) const { return row >= 0 && row < Count(); }

  const bool sorted;
  std::vector<Row> rows;
  std::int32_t selected = -1;
};

}  // namespace platform
