#include "packaging/describe/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <stdexcept>

#include "app/start/usage.h"
#include "console/kelvaroctl.h"
#include "rendlink/command_line.h"

namespace kelvaro::describe {
namespace {

struct Known {
  const char* command;
  const char* option;
  Kind kind;
};

constexpr Known kKnown[] = {
    {"kelvaro", "PROFILE", Kind::Profile},
    {"kelvaro", "profile=", Kind::Profile},
    {"kelvaro", "target=", Kind::File},
    {"kelvaro", "args=", Kind::Text},
    {"kelvaro", "dir=", Kind::Folder},
    {"rendlink", "--profile", Kind::Profile},
    {"rendlink", "--target", Kind::File},
    {"rendlink", "--args", Kind::Text},
    {"rendlink", "--dir", Kind::Folder},
    {"rendlink", "--save", Kind::File},
    {"kelvaroctl keys", "TEXT", Kind::Text},
    {"kelvaroctl keys", "--steps", Kind::Text},
    {"kelvaroctl play", "TEXT", Kind::Text},
    {"kelvaroctl play", "--hold-time", Kind::Text},
    {"kelvaroctl play", "--release-pause", Kind::Text},
    {"kelvaroctl play", "--release-after", Kind::Text},
    {"kelvaroctl show", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl pack", "IN", Kind::File},
    {"kelvaroctl pack", "OUT", Kind::File},
    {"kelvaroctl import", "IN", Kind::File},
    {"kelvaroctl import", "OUT", Kind::File},
    {"kelvaroctl import", "--name", Kind::Text},
    {"kelvaroctl import", "--set", Kind::Text},
    {"kelvaroctl import", "--axes", Kind::Text},
    {"kelvaroctl import", "--pad", Kind::Text},
    {"kelvaroctl check", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl conflicts", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl doctor", "--report", Kind::File},
    {"kelvaroctl doctor", "--profile", Kind::ProfileOrFile},
    {"kelvaroctl watch", "NAME", Kind::Pad},
    {"kelvaroctl watch", "--until", Kind::Text},
    {"kelvaroctl record", "NAME", Kind::Pad},
    {"kelvaroctl record", "--until", Kind::Text},
    {"kelvaroctl tune", "NAME", Kind::Pad},
    {"kelvaroctl tune", "--replay", Kind::File},
    {"kelvaroctl tune", "--apply", Kind::ProfileOrFile},
    {"kelvaroctl run", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl run", "--replay", Kind::File},
    {"kelvaroctl run", "--device", Kind::Pad},
    {"kelvaroctl run", "--until", Kind::Text},
    {"kelvaroctl explain", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl explain", "--replay", Kind::File},
    {"kelvaroctl explain", "--device", Kind::Pad},
    {"kelvaroctl explain", "--until", Kind::Text},
    {"kelvaroctl test", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl test", "--replay", Kind::File},
    {"kelvaroctl test", "--device", Kind::Pad},
    {"kelvaroctl test", "--until", Kind::Text},
    {"kelvaroctl play-back", "FILE", Kind::File},
    {"kelvaroctl play-back", "--delay", Kind::Text},
    {"kelvaroctl play-back", "--until", Kind::Text},
    {"kelvaroctl latency", "FILE|NAME", Kind::ProfileOrFile},
    {"kelvaroctl latency", "--presses", Kind::Text},
    {"kelvaroctl latency", "--svg", Kind::File},
    {"kelvaroctl status", "--instance", Kind::Text},
    {"kelvaroctl select", "NAME", Kind::Profile},
    {"kelvaroctl select", "--instance", Kind::Text},
    {"kelvaroctl pause", "--instance", Kind::Text},
    {"kelvaroctl resume", "--instance", Kind::Text},
    {"kelvaroctl release-all", "--instance", Kind::Text},
    {"kelvaroctl follow-events", "--instance", Kind::Text},
    {"kelvaroctl follow", "RULES", Kind::File},
    {"kelvaroctl settings get", "NAME", Kind::Setting},
    {"kelvaroctl settings set", "NAME", Kind::Setting},
    {"kelvaroctl settings set", "VALUE", Kind::Text},
};

Kind KindOf(const std::string& command, const std::string& option) {
  for (const Known& known : kKnown)
    if (command == known.command && option == known.option) return known.kind;
  throw std::runtime_error("nobody says what " + option + " of \"" + command + "\" stands for");
}

Option Read(const CLI::Option& from, const std::string& command) {
  Option option;
  for (const std::string& name : from.get_snames()) option.names.push_back('-' + name);
  for (const std::string& name : from.get_lnames()) option.names.push_back("--" + name);
  const bool placed = option.names.empty();
  if (placed) option.value = from.get_name();
  if (!placed && from.get_items_expected_max() > 0) option.value = from.get_type_name();
  if (!option.value.empty())
    option.kind = KindOf(command, placed ? option.value : option.names.back());
  option.about = from.get_description();
  option.required = from.get_required();
  option.many = from.get_items_expected_max() > 1;
  return option;
}

Command Window() {
  Command window{"kelvaro", kAboutWindow, kUsageNotes, {}, {}};
  for (const Argument& argument : Arguments()) {
    Option option;
    const bool placed = argument.value.empty() && argument.word[0] != '-';
    if (!placed) option.names = {argument.word};
    option.value = placed ? argument.word : argument.value;
    if (!option.value.empty()) option.kind = KindOf(window.name, argument.word);
    option.about = argument.about;
    option.many = argument.word == "profile=";
    window.options.push_back(option);
  }
  return window;
}

}  // namespace

Command Described(const CLI::App& app, const std::string& above) {
  Command command;
  command.name = above + app.get_name();
  command.about = app.get_description();
  command.notes = app.get_footer();
  for (const CLI::Option* option : app.get_options())
    command.options.push_back(Read(*option, command.name));
  std::stable_partition(command.options.begin(), command.options.end(),
                        [](const Option& option) { return option.names.empty(); });
  for (const CLI::App* each : app.get_subcommands({}))
    command.commands.push_back(Described(*each, command.name + ' '));
  return command;
}

std::vector<Command> Programs() {
  std::vector<Command> programs = {Window()};
  const auto take = [&](const CLI::App& app) { programs.push_back(Described(app)); };
  console::DescribeKelvaroctl(take);
  rendlink::DescribeRendlink(take);
  return programs;
}

}  // namespace kelvaro::describe
