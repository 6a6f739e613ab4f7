// A program's command line as data, read from what its --help is made of. Manual pages and the
// shells' completions are written from it, so that they tell what the help does.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kelvaro::describe {

// What a word stands for, by which a shell completes it.
enum class Kind { None, Text, File, Folder, Profile, ProfileOrFile, Pad, Setting };

struct Option {
  // "-h", "--help", or "profile=", whose value follows in the same word. Empty for a word that goes
  // by its place.
  std::vector<std::string> names;
  std::string value;  // the name of its value; empty for none
  Kind kind = Kind::None;
  std::string about;
  bool required = false;
  bool many = false;
};

struct Command {
  std::string name;  // with the names of those above it: "kelvaroctl settings get"
  std::string about;
  std::string notes;
  std::vector<Option> options;  // first those that go by their place, in that order
  std::vector<Command> commands;
};

// Throws std::runtime_error for a value of which nobody says what it stands for.
Command Described(const CLI::App& app, const std::string& above = {});

// All programs: the window, the console, the maker of launchers.
std::vector<Command> Programs();

}  // namespace kelvaro::describe
