#include "app/start/usage.h"

namespace kelvaro {

const std::vector<Argument>& Arguments() {
  static const std::vector<Argument> kArguments = {
      {"PROFILE", "", "select the first profile whose name begins so"},
      {"profile=", "NAME", "the same; each further one is played by an instance of its own"},
      {"target=", "PROGRAM", "start this program, and end when it ends; goes with a profile"},
      {"args=", "ARGUMENTS", "of the target; [ and ] stand for double quotes"},
      {"dir=", "FOLDER", "to start the target in"},
      {"--help", "", "print this and end"},
      {"--version", "", "print the version and end"},
  };
  return kArguments;
}

std::string UsageText() {
  constexpr std::size_t kColumn = 16;
  std::string text =
      "usage: kelvaro [PROFILE] [profile=NAME]... [target=PROGRAM] [args=ARGUMENTS] [dir=FOLDER]\n"
      "\n";
  text += std::string(kAboutWindow) + "\n\n";
  for (const Argument& argument : Arguments()) {
    std::string word = argument.word + argument.value;
    word.resize(kColumn, ' ');
    text += "  " + word + argument.about + '\n';
  }
  return text + '\n' + kUsageNotes + '\n';
}

}  // namespace kelvaro
