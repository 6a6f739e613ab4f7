#include "console/help_text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

// Narrower lines are the terminal's to break, and longer ones are hard to read.
constexpr std::size_t kFewestColumns = 40;
constexpr std::size_t kMostColumns = 100;

constexpr std::size_t kWidestName = 20;  // of those that have their meaning beside them

using Entry = std::pair<std::string, std::string>;  // a name and what it means

void AddEntries(const char* title, const std::vector<Entry>& entries, std::size_t columns,
                std::string* text) {
  if (entries.empty()) return;
  std::size_t widest = 0;
  for (const auto& [name, means] : entries) {
    if (name.size() <= kWidestName) widest = std::max(widest, name.size());
  }
  const std::size_t indent = widest + 4;
  *text += std::string("\n") + title + ":\n";
  for (const auto& [name, means] : entries) {
    *text += "  " + name;
    if (name.size() <= widest) {
      *text += std::string(indent - 2 - name.size(), ' ');
    } else {
      *text += "\n" + std::string(indent, ' ');
    }
    *text += Wrapped(means, columns, indent, indent);
  }
}

// "--until MS", "-h, --help"
std::string OptionName(const CLI::Option& option) {
  std::string name;
  for (const std::string& each : option.get_snames()) name += "-" + each + ", ";
  for (const std::string& each : option.get_lnames()) name += "--" + each;
  return option.get_items_expected_max() == 0 ? name : name + " " + option.get_type_name();
}

// "TEXT", "[NAME]", "FILE..."
std::string ArgumentUsage(const CLI::Option& argument) {
  const bool many = argument.get_expected_max() >= CLI::detail::expected_max_vector_size;
  const std::string name = argument.get_name(true) + (many ? "..." : "");
  return argument.get_required() ? name : "[" + name + "]";
}

}  // namespace

std::string Wrapped(const std::string& text, std::size_t columns, std::size_t indent,
                    std::size_t used) {
  std::string wrapped;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::size_t column = wrapped.empty() ? used : indent;
    if (!wrapped.empty()) wrapped += std::string(indent, ' ');
    bool first = true;
    std::istringstream words(line);
    for (std::string word; words >> word; first = false) {
      const std::size_t width = Characters(word);
      if (!first && column + 1 + width > columns) {
        wrapped += "\n" + std::string(indent, ' ');
        column = indent;
      } else if (!first) {
        wrapped += ' ';
        ++column;
      }
      wrapped += word;
      column += width;
    }
    wrapped += '\n';
  }
  return wrapped;
}

std::string HelpText(const CLI::App& command, const std::string& path, std::size_t columns) {
  columns = std::clamp(columns, kFewestColumns, kMostColumns);
  std::string usage = "Usage: " + path + " [OPTIONS]";
  std::vector<Entry> arguments;
  std::vector<Entry> options;
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional()) {
      options.emplace_back(OptionName(*option), option->get_description());
      continue;
    }
    usage += " " + ArgumentUsage(*option);
    arguments.emplace_back(option->get_name(true), option->get_description());
  }
  std::vector<Entry> commands;
  for (const CLI::App* each : command.get_subcommands({})) {
    commands.emplace_back(each->get_name(), each->get_description());
  }
  if (!commands.empty()) usage += " COMMAND";

  std::string text = Wrapped(command.get_description() + "\n" + usage, columns);
  AddEntries("Arguments", arguments, columns, &text);
  AddEntries("Options", options, columns, &text);
  AddEntries("Commands", commands, columns, &text);
  if (!command.get_footer().empty()) text += "\n" + Wrapped(command.get_footer(), columns);
  return text;
}

}  // namespace kelvaro::console
