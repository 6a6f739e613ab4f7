// Runs commands of kelvaroctl as functions, on files that last as long as a test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "console/kelvaroctl.h"

namespace kelvaro::console {

struct Outcome {
  int status = 0;
  std::string out;
  std::string err;
};

inline Outcome Kelvaroctl(const std::vector<std::string>& words) {
  std::ostringstream out;
  std::ostringstream err;
  Outcome outcome;
  outcome.status = RunKelvaroctl(words, {out, err});
  outcome.out = out.str();
  outcome.err = err.str();
  return outcome;
}

// A file of this test alone.
class TestFile {
 public:
  TestFile(const std::string& name, const std::string& content)
      : path(testing::TempDir() + "kelvaro_" + Test() + "_" + name) {
    std::ofstream(path, std::ios::binary) << content;
  }
  ~TestFile() { std::filesystem::remove(path); }
  TestFile(const TestFile&) = delete;
  TestFile& operator=(const TestFile&) = delete;

  const std::string path;

 private:
  static std::string Test() {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
  }
};

}  // namespace kelvaro::console
