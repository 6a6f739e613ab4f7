#include "console/called_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "console/did_you_mean.h"

namespace kelvaro::console {
namespace {

bool IsOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

// "--until" of "--until=5", "-h" of "-hx"
std::string NameIn(const std::string& word) {
  return word.starts_with("--") ? word.substr(0, word.find('=')) : word.substr(0, 2);
}

std::string UnknownOption(const CalledCommand& called, const std::string& name) {
  std::vector<std::string> names;
  bool takesText = false;
  for (const CLI::Option* option : called.command->get_options()) {
    for (const std::string& each : option->get_lnames()) names.push_back("--" + each);
    takesText = takesText || option->get_positional();
  }
  const std::string meant = DidYouMean(name, names);
  return called.path + " has no option '" + name + "' (" + (meant.empty() ? "" : meant + " ") +
         (takesText ? "a text that begins with - goes behind --; " : "") + called.path +
         " --help lists the options)";
}

std::string UnknownCommand(const CalledCommand& called, const std::string& word) {
  std::vector<std::string> names;
  for (const CLI::App* each : called.command->get_subcommands({}))
    names.push_back(each->get_name());
  const std::string meant = DidYouMean(word, names);
  return "there is no command '" + called.path.substr(called.path.find(' ') + 1) + "' (" +
         (meant.empty() ? "" : meant + " ") + "kelvaroctl --help lists them)";
}

}  // namespace

CalledCommand FindCommand(const CLI::App& app, const std::vector<std::string>& words) {
  CalledCommand called{&app, app.get_name(), {}};
  for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
    const std::string& word = words[i];
    if (IsOption(word)) {
      const std::string name = NameIn(word);
      const CLI::Option* const option = called.command->get_option_no_throw(name);
      if (!option) {
        called.fault = UnknownOption(called, name);
        return called;
      }
      if (option->get_items_expected_min() == 0 || word != name) continue;
      if (++i == words.size()) called.fault = name + " needs a value";
      continue;
    }
    const auto commands = called.command->get_subcommands({});
    if (commands.empty()) continue;
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const CLI::App* each) { return each->get_name() == word; });
    if (found == commands.end()) {
      const CalledCommand wanted{called.command, called.path + " " + word, {}};
      called.fault = UnknownCommand(wanted, word);
      return called;
    }
    called.command = *found;
    called.path += " " + word;
  }
  return called;
}

}  // namespace kelvaro::console
