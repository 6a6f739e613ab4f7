#include "packaging/describe/man_page.h"

#include <sstream>

namespace kelvaro::describe {
namespace {

// So that nothing in it is an order, and each character can be copied as it is typed.
std::string Escaped(const std::string& text) {
  std::string out;
  bool starts = true;  // a line
  for (const char c : text) {
    if (starts && (c == '.' || c == '\'')) out += "\\&";
    starts = c == '\n';
    switch (c) {
      case '\\':
        out += "\\e";
        break;
      case '-':
        out += "\\-";
        break;
      case '\'':
        out += "\\(aq";
        break;
      case '`':
        out += "\\(ga";
        break;
      case '^':
        out += "\\(ha";
        break;
      case '~':
        out += "\\(ti";
        break;
      case '"':
        out += "\\(dq";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string Capitals(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

// An empty line parts paragraphs.
std::string Paragraphs(const std::string& text) {
  std::istringstream lines(text);
  std::string out, line;
  while (std::getline(lines, line)) out += (line.empty() ? ".PP" : Escaped(line)) + '\n';
  return out;
}

std::string Word(const Option& option) {
  std::string word;
  for (const std::string& name : option.names)
    word += (word.empty() ? "" : ", ") + ("\\fB" + Escaped(name) + "\\fR");
  if (option.value.empty()) return word;
  if (!word.empty() && option.names.back().back() != '=') word += ' ';
  return word + "\\fI" + Escaped(option.value) + "\\fR";
}

std::string Synopsis(const Command& command) {
  std::string line = "\\fB" + Escaped(command.name) + "\\fR";
  bool more = false;
  for (const Option& option : command.options) {
    const bool placed = option.names.empty();
    const bool shown = placed || option.required || option.names.back().back() == '=';
    if (!shown) more = true;
    if (shown)
      line += ' ' + (option.required ? Word(option) : '[' + Word(option) + ']') +
              (option.many ? "..." : "");
  }
  if (more) line += " [\\fIOPTIONS\\fR]";
  if (!command.commands.empty()) line += " \\fICOMMAND\\fR";
  return line;
}

std::string OptionList(const Command& command) {
  std::string out;
  for (const Option& option : command.options)
    out += ".TP\n" + Word(option) + '\n' + Paragraphs(option.about);
  return out;
}

std::string CommandSections(const Command& command) {
  std::string out;
  for (const Command& each : command.commands) {
    out += ".SS " + Escaped(each.name) + '\n' + Synopsis(each) + "\n.PP\n" + Escaped(each.about) +
           ".\n.PP\n" + Paragraphs(each.notes) + OptionList(each) + CommandSections(each);
  }
  return out;
}

}  // namespace

std::string ManPage(const Command& program, const std::string& version) {
  std::string about = program.about;
  if (about.back() == '.') about.pop_back();
  std::string page = ".TH " + Capitals(program.name) + " 1 \"\" \"Kelvaro " + version +
                     "\" \"Kelvaro\"\n.SH NAME\n" + program.name + " \\- " + Escaped(about) +
                     "\n.SH SYNOPSIS\n" + Synopsis(program) + "\n.SH DESCRIPTION\n" +
                     Paragraphs(program.about) + ".PP\n" + Paragraphs(program.notes) +
                     ".SH OPTIONS\n" + OptionList(program);
  if (!program.commands.empty()) page += ".SH COMMANDS\n" + CommandSections(program);
  page += ".SH SEE ALSO\n";
  std::string others;
  for (const char* name : {"kelvaro", "kelvaroctl", "rendlink"})
    if (program.name != name)
      others += (others.empty() ? "" : ",\n") + ("\\fB" + std::string(name) + "\\fR(1)");
  return page + others + '\n';
}

}  // namespace kelvaro::describe
