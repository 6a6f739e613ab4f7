// Runs commands of kelvaroctl as functions, on files that last as long as a test.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "console/kelvaroctl.h"
#include "tests/host/files.h"

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

// The first line of a recording of a usual pad.
constexpr char kPad[] =
    R"({"recording":1,"device":"Test Pad","guid":"000102030405060708090a0b0c0d0e0f",)"
    R"("buttons":11,"axes":6,"povs":1})"
    "\n";

// A file in a folder of its own.
class TestFile {
 public:
  TestFile(const std::string& name, const std::string& content)
      : path(tests::Put(folder.In(name), content)) {}

 private:
  const tests::TemporaryFolder folder;

 public:
  const std::string path;
};

}  // namespace kelvaro::console
