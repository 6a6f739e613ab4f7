#include "app/platform/drop_rows.h"

#include <algorithm>

#include "app/platform/file_pattern.h"

namespace platform {

std::int32_t DropRows::Add(const std::string& text) {
  auto place = rows.end();
  if (sorted) {
    place = std::upper_bound(rows.begin(), rows.end(), text, [](const auto& added, const Row& row) {
      return Folded(added) < Folded(row.text);
    });
  }
  const auto index = static_cast<std::int32_t>(place - rows.begin());
  rows.insert(place, Row{text});
  if (selected >= index) ++selected;
  return index;
}

bool DropRows::Delete(std::int32_t row) {
  if (!IsRow(row)) return false;
  rows.erase(rows.begin() + row);
  if (selected == row) {
    selected = -1;
  } else if (selected > row) {
    --selected;
  }
  return true;
}

void DropRows::Clear() {
  rows.clear();
  selected = -1;
}

std::string DropRows::Text(std::int32_t row) const {
  return IsRow(row) ? rows[static_cast<std::size_t>(row)].text : std::string();
}

std::int32_t DropRows::FindPrefix(const std::string& prefix) const {
  const std::string wanted = Folded(prefix);
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) {
    return Folded(row.text).starts_with(wanted);
  });
  return found == rows.end() ? -1 : static_cast<std::int32_t>(found - rows.begin());
}

std::int32_t DropRows::FindExact(const std::string& text) const {
  const std::string wanted = Folded(text);
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [&](const Row& row) { return Folded(row.text) == wanted; });
  return found == rows.end() ? -1 : static_cast<std::int32_t>(found - rows.begin());
}

bool DropRows::SetData(std::int32_t row, std::int32_t data) {
  if (!IsRow(row)) return false;
  rows[static_cast<std::size_t>(row)].data = data;
  return true;
}

std::int32_t DropRows::Data(std::int32_t row) const {
  return IsRow(row) ? rows[static_cast<std::size_t>(row)].data : -1;
}

}  // namespace platform
