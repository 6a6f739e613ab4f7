#include "console/name_choice.h"

#include <algorithm>

namespace kelvaro::console {

std::vector<std::string> NamesThatBegin(const std::vector<std::string>& names,
                                        const std::string& text) {
  std::vector<std::string> found;
  for (const std::string& name : names) {
    if (text.empty() || !name.starts_with(text)) continue;
    if (std::find(found.begin(), found.end(), name) == found.end()) found.push_back(name);
  }
  return found;
}

std::string QuotedList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "'" : ", '") + name + "'";
  return list;
}

std::string SeveralNames(const std::string& text, const std::vector<std::string>& names) {
  return "'" + text + "' begins several names: " + QuotedList(names);
}

}  // namespace kelvaro::console
