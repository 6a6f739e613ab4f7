// Runs every case file of this folder on the simulated machine, and compares each line that
// `kelvaroctl run --simulate --json` prints.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "console/kelvaroctl.h"
#include "tests/cases/case_file.h"

namespace kelvaro::cases {
namespace {

class TemporaryFile {
 public:
  TemporaryFile(const std::string& name, const std::string& content)
      : path(testing::TempDir() + "kelvaro_case_" + name) {
    std::ofstream(path, std::ios::binary) << content;
  }
  ~TemporaryFile() { std::filesystem::remove(path); }

  const std::string path;
};

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
  const TemporaryFile profile(wanted.name + ".json", wanted.profile);
  const TemporaryFile recording(wanted.name + ".recording", wanted.recording);
  std::vector<std::string> words = {"run",      "--simulate",   "--json",
                                    "--replay", recording.path, profile.path};
  words.insert(words.end(), wanted.options.begin(), wanted.options.end());

  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(console::RunKelvaroctl(words, {out, err}), 0) << err.str();
  const std::vector<std::string> sent = Lines(out.str());
  EXPECT_TRUE(sent == wanted.events) << SideBySide(wanted.events, sent);

  std::ostringstream again;
  EXPECT_EQ(console::RunKelvaroctl(words, {again, err}), 0) << err.str();
  EXPECT_EQ(out.str(), again.str()) << "the same run twice gave different output";
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name = std::filesystem::path(info.param).stem().string();
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); },
      '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, CaseTest, testing::ValuesIn(CaseFiles(KELVARO_CASES)), NameOf);

}  // namespace
}  // namespace kelvaro::cases
