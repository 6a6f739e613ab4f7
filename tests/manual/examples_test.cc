// What the manual says that goes out, simulated; and what it says that the console prints, printed.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/console/stored_profiles.h"
#include "tests/manual/example.h"
#include "tests/manual/page.h"

namespace kelvaro::manual {
namespace {

std::vector<std::string> TrimmedLines(const std::string& text) {
  std::vector<std::string> lines = Lines(text);
  for (std::string& line : lines) line = Trimmed(line);
  return lines;
}

console::Outcome Simulated(const Example& example) {
  const console::TestFile profile("profile.json", example.profile);
  const console::TestFile recording("recording", example.recording);
  std::vector<std::string> words = {"run", "--simulate", "--replay", recording.path, profile.path};
  words.insert(words.end(), example.options.begin(), example.options.end());
  return console::Kelvaroctl(words);
}

TEST(ManualExamples, SendWhatTheySay) {
  std::size_t count = 0;
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    for (const std::string& block : OfClass(page, "pre", "example")) {
      SCOPED_TRACE(page.name + ":\n" + PlainText(block));
      Example example;
      std::string error;
      ASSERT_TRUE(ReadExample(PlainText(block), &example, &error)) << error;
      const console::Outcome run = Simulated(example);
      EXPECT_EQ(run.status, 0) << run.err << example.profile << example.recording;
      EXPECT_EQ(TrimmedLines(run.out), example.events);
      EXPECT_FALSE(example.events.empty());
      ++count;
    }
  }
  EXPECT_GE(count, 15u);
}

// Words as a shell has them: single and double quotes keep blanks, and nothing else counts.
std::vector<std::string> ShellWords(const std::string& line) {
  std::vector<std::string> words;
  char quote = 0;
  bool inWord = false;
  for (const char c : line) {
    if (quote != 0 ? c == quote : c == '\'' || c == '"') {
      quote = quote != 0 ? '\0' : c;
      if (!inWord) words.emplace_back();
      inWord = true;
    } else if (quote == 0 && (c == ' ' || c == '\n')) {
      inWord = false;
    } else {
      if (!inWord) words.emplace_back();
      inWord = true;
      words.back() += c;
    }
  }
  return words;
}

// The profile and the recording that the pages call by name.
class ManualConsole : public console::StoredProfiles {
 protected:
  ManualConsole() : before(std::filesystem::current_path()) {
    Store("Browser.idprof", tests::Content(std::string(KELVARO_EXAMPLES) + "/browser.json"));
    std::filesystem::copy_file(KELVARO_RECORDING, here.In("pad.recording"));
    std::filesystem::current_path(here.folder);
  }
  ~ManualConsole() override { std::filesystem::current_path(before); }

 private:
  const tests::TemporaryFolder here;
  const std::filesystem::path before;
};

TEST_F(ManualConsole, PrintsWhatTheExamplesSay) {
  std::size_t count = 0;
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    for (const std::string& block : OfClass(page, "pre", "console")) {
      SCOPED_TRACE(page.name);
      const std::string text = PlainText(block).substr(1);  // behind the tag's line end
      const std::string command = text.substr(0, text.find('\n'));
      std::vector<std::string> words = ShellWords(command);
      ASSERT_GT(words.size(), 2u) << command;
      ASSERT_EQ(words[0] + " " + words[1], "$ kelvaroctl");
      words.erase(words.begin(), words.begin() + 2);
      const console::Outcome run = console::Kelvaroctl(words);
      EXPECT_EQ(run.out + run.err, text.substr(command.size() + 1)) << command;
      ++count;
    }
  }
  EXPECT_GE(count, 7u);
}

// All that stands in a <pre> or a <tt> of any page and calls the program `name`, as words.
std::vector<std::vector<std::string>> CallsOf(const std::string& name) {
  std::vector<std::vector<std::string>> calls;
  for (const Page& page : Pages(KELVARO_MANUAL)) {
    std::string text;
    for (const std::string& block : Between(page.html, "<pre>", "</pre>")) text += block + "\n";
    for (const std::string& block : Between(page.html, "<tt>", "</tt>"))
      text += OneLine(block) + "\n";
    for (const std::string& line : Lines(PlainText(text))) {
      std::vector<std::string> words = ShellWords(line);
      if (words.empty() || words[0] != name) continue;
      words.erase(words.begin());
      calls.push_back(words);
    }
  }
  return calls;
}

TEST(ManualExamples, EachCommandAndOptionOfTheConsoleIsThere) {
  const auto calls = CallsOf("kelvaroctl");
  EXPECT_GE(calls.size(), 20u);
  for (const std::vector<std::string>& call : calls) {
    if (call.empty() || call[0] == "COMMAND" || call[0].starts_with("-")) continue;
    std::vector<std::string> help = {call[0]};
    if (call[0] == "settings" && call.size() > 1) help.push_back(call[1]);
    help.emplace_back("--help");
    const console::Outcome run = console::Kelvaroctl(help);
    EXPECT_EQ(run.status, 0) << call[0] << ": " << run.err;
    for (const std::string& word : call) {
      if (!word.starts_with("--")) continue;
      EXPECT_NE(run.out.find(word), std::string::npos) << call[0] << " " << word;
    }
  }
}

// The names at the start of lines in the program's list of commands.
std::vector<std::string> Commands() {
  std::vector<std::string> commands;
  for (const std::string& line : Lines(console::Kelvaroctl({"--help"}).out)) {
    const std::size_t end = line.find("  ", 2);
    if (line.starts_with("  ") && end != std::string::npos && line[2] >= 'a' && line[2] <= 'z')
      commands.push_back(line.substr(2, end - 2));
  }
  return commands;
}

TEST(ManualExamples, ThePageOfTheConsoleTellsEachCommand) {
  const std::vector<std::string> commands = Commands();
  EXPECT_GE(commands.size(), 11u);
  const std::string html = PageNamed("Console.htm").html;
  for (const std::string& command : commands) {
    EXPECT_NE(html.find("<h3><a name=\"" + command + "\">" + command + "</a></h3>"),
              std::string::npos)
        << command;
  }
  EXPECT_EQ(Between(html, "<h3>", "</h3>").size(), commands.size());
}

}  // namespace
}  // namespace kelvaro::manual
