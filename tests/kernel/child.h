// Runs of kelvaroctl, and what the tests need around them.
#pragma once

#include <string>
#include <vector>

#include "tests/host/processes.h"

namespace kelvaro::kernel {

using namespace std::chrono_literals;
using tests::Child;
using tests::ChildOptions;

// The kelvaroctl under test.
std::string KelvaroctlPath();

// Runs to the end (within 20 s) and gives status and output.
struct Finished {
  int status = -1;  // -1: it didn't end
  std::string out;
  std::string err;
};
Finished RunToEnd(const std::vector<std::string>& arguments, const ChildOptions& options = {});

// A new file in a folder of its own, readable by everybody; gone with the virtual machine.
std::string WriteFile(const std::string& content);

// Lines without their ends.
std::vector<std::string> Lines(const std::string& text);

}  // namespace kelvaro::kernel
