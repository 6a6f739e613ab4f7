#include "tests/cases/case_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace kelvaro::cases {
namespace {

enum class Part { None, Profile, Recording, Options, Events };

bool StartsWith(const std::string& text, const char* start) { return text.rfind(start, 0) == 0; }

bool PartOf(const std::string& line, Part* part) {
  if (line == "[profile]") {
    *part = Part::Profile;
  } else if (line == "[recording]") {
    *part = Part::Recording;
  } else if (line == "[options]") {
    *part = Part::Options;
  } else if (line == "[events]") {
    *part = Part::Events;
  } else {
    return false;
  }
  return true;
}

void AddOptions(const std::string& line, Case* out) {
  std::istringstream words(line);
  std::string word;
  while (words >> word) out->options.push_back(word);
}

}  // namespace

bool ReadCase(const std::string& path, Case* out, std::string* error) {
  std::ifstream in(path);
  if (!in) {
    *error = path + ": can't be read";
    return false;
  }
  *out = Case{};
  out->name = std::filesystem::path(path).stem().string();
  Part part = Part::None;
  std::string line;
  for (std::size_t number = 1; std::getline(in, line); ++number) {
    if (StartsWith(line, "#")) {
      out->simulationOnly |= StartsWith(line, "# simulation only:");
      continue;
    }
    if (line.empty() || PartOf(line, &part)) continue;
    switch (part) {
      case Part::None:
        *error = path + ":" + std::to_string(number) + ": no part is open here";
        return false;
      case Part::Profile:
        out->profile += line + "\n";
        break;
      case Part::Recording:
        out->recording += line + "\n";
        break;
      case Part::Options:
        AddOptions(line, out);
        break;
      case Part::Events:
        out->events.push_back(line);
        break;
    }
  }
  if (out->profile.empty() || out->recording.empty()) {
    *error = path + ": a case has at least [profile] and [recording]";
    return false;
  }
  return true;
}

std::vector<std::string> CaseFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".case") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string CaseName(const std::string& path) {
  return std::filesystem::path(path).stem().string();
}

std::string SideBySide(const std::vector<std::string>& expected,
                       const std::vector<std::string>& received) {
  std::size_t width = 8;
  for (const std::string& line : expected) width = std::max(width, line.size());
  std::string table = "  Expected" + std::string(width - 8 + 3, ' ') + "Received\n";
  for (std::size_t i = 0; i < std::max(expected.size(), received.size()); ++i) {
    const std::string left = i < expected.size() ? expected[i] : "";
    const std::string right = i < received.size() ? received[i] : "";
    table += (left == right ? "  " : "! ") + left + std::string(width - left.size() + 3, ' ') +
             right + "\n";
  }
  return table;
}

}  // namespace kelvaro::cases
