// Reads a case: a profile, a recording, options, and the events that must come out. README.md
// beside this tells the format.
#pragma once

#include <string>
#include <vector>

namespace kelvaro::cases {

struct Case {
  std::string name;                  // of the file, without its ending
  std::string profile;               // JSON
  std::string recording;             // JSON Lines
  std::vector<std::string> options;  // of `kelvaroctl run`
  std::vector<std::string> events;   // JSON, one a line
  bool simulationOnly = false;
};

// False, with *error naming file and line, for a file that is no case.
bool ReadCase(const std::string& path, Case* out, std::string* error);

// The case files of a folder, sorted by name.
std::vector<std::string> CaseFiles(const std::string& folder);

// Of a case's test: the file's name without its ending.
std::string CaseName(const std::string& path);

// Expected and received lines side by side, those that differ marked, for a failure to print.
std::string SideBySide(const std::vector<std::string>& expected,
                       const std::vector<std::string>& received);

}  // namespace kelvaro::cases
