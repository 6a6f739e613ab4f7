// Runs every case file of this folder on the simulated machine, and compares each line that
// `kelvaroctl run --simulate --json` prints.

#include <gtest/gtest.h>

#include <sstream>

#include "tests/cases/case_file.h"
#include "tests/console/console_run.h"

namespace kelvaro::cases {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class CaseTest : public testing::TestWithParam<std::string> {};

TEST_P(CaseTest, SendsTheseEvents) {
  Case wanted;
  std::string error;
  ASSERT_TRUE(ReadCase(GetParam(), &wanted, &error)) << error;
  const console::TestFile profile("profile.json", wanted.profile);
  const console::TestFile recording("recording", wanted.recording);
  std::vector<std::string> words = {"run",      "--simulate",   "--json",
                                    "--replay", recording.path, profile.path};
  words.insert(words.end(), wanted.options.begin(), wanted.options.end());

  const console::Outcome run = console::Kelvaroctl(words);
  EXPECT_EQ(run.status, 0) << run.err;
  const std::vector<std::string> sent = Lines(run.out);
  EXPECT_TRUE(sent == wanted.events) << SideBySide(wanted.events, sent);
  EXPECT_EQ(console::Kelvaroctl(words).out, run.out) << "the same run twice gave different output";
}

INSTANTIATE_TEST_SUITE_P(Cases, CaseTest, testing::ValuesIn(CaseFiles(KELVARO_CASES)),
                         [](const auto& info) { return CaseName(info.param); });

}  // namespace
}  // namespace kelvaro::cases
