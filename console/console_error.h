// How a command ends, and the one line in which it says why.
#pragma once

#include <ostream>
#include <string>

namespace kelvaro::console {

constexpr int kDone = 0;
constexpr int kBad = 1;    // the thing that was asked about is bad
constexpr int kUsage = 2;  // the command line is wrong

// Writes "kelvaroctl: <message>" as one line, whatever the message quotes, and then `detail` as it
// is; gives kBad.
int Complain(std::ostream& err, const std::string& message, const std::string& detail = {});

}  // namespace kelvaro::console
