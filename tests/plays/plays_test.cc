// Each play of this folder on this desktop. KELVARO_WRITE_PLAYS, set to anything, writes down what
// was seen instead; on Qt, whose simulated machine gives the same each time.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/plays/play.h"

namespace kelvaro::tests {
namespace {

struct Step {
  Act act;
  Lines comment;
  Lines seen;
};

Act ActOf(const std::string& line) {
  Act act;
  act.line = line;
  std::istringstream words(line.substr(2));
  words >> act.verb;
  if (act.verb != "close" && act.verb != "answer" && act.verb != "key" && act.verb != "press" &&
      act.verb != "release")
    words >> act.control;
  std::getline(words >> std::ws, act.rest);
  return act;
}

// The first step is what is seen before the first act.
std::vector<Step> ReadPlay(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::vector<Step> steps(1);
  Lines comment;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) {
      comment.push_back(line);
    } else if (line.starts_with("> ")) {
      steps.push_back({ActOf(line), std::exchange(comment, {}), {}});
    } else {
      steps.back().seen.push_back(line);
    }
  }
  return steps;
}

std::string Joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

std::vector<std::string> Plays() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(KELVARO_PLAYS))
    if (entry.path().extension() == ".play") names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

class PlaysTest : public testing::TestWithParam<std::string> {};

TEST_P(PlaysTest, IsSeenAsItIsWrittenDown) {
  const auto path = std::filesystem::path(KELVARO_PLAYS) / (GetParam() + ".play");
  const bool write = std::getenv("KELVARO_WRITE_PLAYS");
  const std::vector<Step> steps = ReadPlay(path);
  ASSERT_GT(steps.size(), 1u);
  const auto player = StartPlayer();
  std::string written;
  Sight before;
  for (const Step& step : steps) {
    written += Joined(step.comment);
    if (!step.act.line.empty()) {
      written += step.act.line + '\n';
      ASSERT_NO_THROW(player->Do(step.act)) << written;
    }
    const Lines seen = player->Await(before, step.seen);
    written += Joined(seen);
    if (!write) {
      ASSERT_EQ(Joined(seen), Joined(step.seen)) << "after " << step.act.line;
    }
    before.Take(player->Look());
  }
  if (write) std::ofstream(path, std::ios::binary) << written;
}

INSTANTIATE_TEST_SUITE_P(All, PlaysTest, testing::ValuesIn(Plays()),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace kelvaro::tests
