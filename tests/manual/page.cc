#include "tests/manual/page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <utility>

#include "tests/host/files.h"

namespace kelvaro::manual {

std::vector<Page> Pages(const std::string& folder) {
  std::vector<Page> pages;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".htm") continue;
    pages.push_back({entry.path().filename().string(), tests::Content(entry.path().string())});
  }
  std::sort(pages.begin(), pages.end(),
            [](const Page& one, const Page& other) { return one.name < other.name; });
  return pages;
}

Page PageNamed(const std::string& name) {
  Page page{name, tests::Content(std::string(KELVARO_MANUAL "/") + name)};
  EXPECT_FALSE(page.html.empty()) << name;
  return page;
}

std::vector<std::string> Between(const std::string& text, const std::string& start,
                                 const std::string& end) {
  std::vector<std::string> found;
  for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
    at += start.size();
    const std::size_t to = text.find(end, at);
    if (to == std::string::npos) break;
    found.push_back(text.substr(at, to - at));
    at = to + end.size();
  }
  return found;
}

std::vector<std::string> OfClass(const Page& page, const std::string& element,
                                 const std::string& name) {
  std::vector<std::string> found;
  const std::string mark = "class=\"" + name + "\"";
  for (const std::string& each : Between(page.html, "<" + element + " ", "</" + element + ">")) {
    const std::size_t tag = each.find('>');
    if (each.substr(0, tag).find(mark) != std::string::npos) found.push_back(each.substr(tag + 1));
  }
  return found;
}

std::vector<std::string> Attributes(const Page& page, const std::string& element,
                                    const std::string& attribute) {
  std::vector<std::string> values;
  std::string html = page.html;
  std::replace(html.begin(), html.end(), '\n', ' ');
  for (const std::string& tag : Between(html, "<" + element + " ", ">")) {
    for (const std::string& value : Between(" " + tag, " " + attribute + "=\"", "\""))
      values.push_back(value);
  }
  return values;
}

std::vector<std::vector<std::string>> Rows(const std::string& table) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& row : Between(table, "<tr>", "</tr>")) {
    if (const auto cells = Between(row, "<td>", "</td>"); !cells.empty()) rows.push_back(cells);
  }
  return rows;
}

std::string PlainText(const std::string& html) {
  static const std::pair<std::string, std::string> kEntities[] = {
      {"&lt;", "<"},         {"&gt;", ">"},         {"&auml;", "\u00e4"},   {"&eacute;", "\u00e9"},
      {"&szlig;", "\u00df"}, {"&times;", "\u00d7"}, {"&divide;", "\u00f7"}, {"&amp;", "&"}};
  std::string text;
  for (std::size_t at = 0; at < html.size();) {
    if (html[at] == '<') {
      at = std::min(html.find('>', at), html.size() - 1) + 1;
      continue;
    }
    const auto entity = std::find_if(
        std::begin(kEntities), std::end(kEntities),
        [&](const auto& each) { return html.compare(at, each.first.size(), each.first) == 0; });
    if (entity != std::end(kEntities)) {
      text += entity->second;
      at += entity->first.size();
      continue;
    }
    text += html[at++];
  }
  return text;
}

std::string OneLine(const std::string& html) {
  std::istringstream words(PlainText(html));
  std::string line;
  for (std::string word; words >> word;) line += (line.empty() ? "" : " ") + word;
  return line;
}

std::string DecodedAddress(const std::string& address) {
  std::string text;
  for (std::size_t at = 0; at < address.size(); ++at) {
    if (address[at] == '%' && at + 2 < address.size()) {
      text += static_cast<char>(std::stoi(address.substr(at + 1, 2), nullptr, 16));
      at += 2;
    } else {
      text += address[at];
    }
  }
  return text;
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string Trimmed(const std::string& text) {
  const std::size_t from = text.find_first_not_of(" \t\n");
  if (from == std::string::npos) return {};
  return text.substr(from, text.find_last_not_of(" \t\n") - from + 1);
}

}  // namespace kelvaro::manual
