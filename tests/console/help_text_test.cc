#include "console/help_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "console/terminal_text.h"
#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

TEST(Wrapped, BreaksBetweenWordsAtTheWidth) {
  EXPECT_EQ(Wrapped("aa bb cc", 5), "aa bb\ncc\n");
  EXPECT_EQ(Wrapped("aa bb cc", 4), "aa\nbb\ncc\n");
  EXPECT_EQ(Wrapped("\xC3\xA4\xC3\xA4 \xC3\xA4\xC3\xA4", 5), "\xC3\xA4\xC3\xA4 \xC3\xA4\xC3\xA4\n");
}

TEST(Wrapped, KeepsALongWordWhole) { EXPECT_EQ(Wrapped("a bbbbbb c", 4), "a\nbbbbbb\nc\n"); }

TEST(Wrapped, ALineFeedStartsALine) { EXPECT_EQ(Wrapped("a b\nc", 9), "a b\nc\n"); }

TEST(Wrapped, IndentsAllLinesButTheFirst) {
  EXPECT_EQ(Wrapped("aa bb\ncc", 6, 3, 3), "aa\n   bb\n   cc\n");
}

// The help of each command, as wide as told.
std::vector<std::string> Helps(std::size_t columns) {
  std::vector<std::string> helps;
  for (const char* words : {"",
                            "keys",
                            "play",
                            "profiles",
                            "show",
                            "pack",
                            "check",
                            "devices",
                            "doctor",
                            "watch",
                            "record",
                            "run",
                            "explain",
                            "test",
                            "play-back",
                            "latency",
                            "status",
                            "select",
                            "pause",
                            "resume",
                            "release-all",
                            "follow-events",
                            "follow",
                            "settings",
                            "settings list",
                            "settings get",
                            "settings set"}) {
    std::istringstream in(words);
    std::vector<std::string> call;
    for (std::string word; in >> word;) call.push_back(word);
    call.emplace_back("--help");
    std::ostringstream out;
    EXPECT_EQ(RunKelvaroctl(call, {out, out, {columns, false}}), 0) << words;
    helps.push_back(out.str());
  }
  return helps;
}

TEST(Help, FitsTheTerminal) {
  for (const std::size_t columns : {40U, 57U, 80U, 100U}) {
    for (const std::string& help : Helps(columns)) {
      std::istringstream lines(help);
      for (std::string line; std::getline(lines, line);) {
        // One that is a single word can't be broken.
        const std::size_t begin = line.find_first_not_of(' ');
        if (begin == std::string::npos || line.find(' ', begin) == std::string::npos) continue;
        EXPECT_LE(Characters(line), columns) << line;
      }
    }
  }
}

TEST(Help, HasReadableLinesOnAnyTerminal) {
  EXPECT_EQ(Helps(300), Helps(100));
  EXPECT_EQ(Helps(3), Helps(40));
}

TEST(Help, TellsOptionsWithTheirValuesAndNothingOfTheParser) {
  for (const std::string& help : Helps(80)) {
    for (const char* mark : {"Excludes", "Needs", "REQUIRED", "--replay TEXT", "SUBCOMMAND",
                             "Positionals", "..., ", " ..."}) {
      EXPECT_EQ(help.find(mark), std::string::npos) << mark << "\n" << help;
    }
  }
  EXPECT_EQ(Kelvaroctl({"show", "--help"}).out,
            "Print a profile\n"
            "Usage: kelvaroctl show [OPTIONS] FILE|NAME\n"
            "\n"
            "Arguments:\n"
            "  FILE|NAME  a profile: a file, stored (.idprof) or in JSON, or a stored one's\n"
            "             name or its beginning\n"
            "\n"
            "Options:\n"
            "  -h, --help  show this help\n"
            "  --json      print JSON Lines, one object a line\n"
            "\n"
            "A line for each Control: its number, its inputs, its keys, its description. With\n"
            "--json the whole profile on one line, as `kelvaroctl pack` takes it.\n");
  EXPECT_EQ(Kelvaroctl({"devices", "--help"}).out,
            "List the game pads that are plugged in\n"
            "Usage: kelvaroctl devices [OPTIONS]\n"
            "\n"
            "Options:\n"
            "  -h, --help  show this help\n"
            "  --json      print JSON Lines, one object a line\n");
  EXPECT_NE(Kelvaroctl({"keys", "--help"}).out.find("[OPTIONS] [TEXT]\n"), std::string::npos);
  EXPECT_NE(Kelvaroctl({"check", "--help"}).out.find("[OPTIONS] FILE|NAME...\n"),
            std::string::npos);
  EXPECT_NE(Kelvaroctl({"play", "--help"}).out.find("--hold-time MS  "), std::string::npos);
}

}  // namespace
}  // namespace kelvaro::console
