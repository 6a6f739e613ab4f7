#include "console/text_table.h"

#include <algorithm>

#include "console/terminal_text.h"

namespace kelvaro::console {

std::string TextTable(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], Characters(row[i]));
    }
  }
  std::string text;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += "  " + row[i] + std::string(widths[i] - Characters(row[i]), ' ');
    }
    text += line.erase(line.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

}  // namespace kelvaro::console
