// The command line of rendlink.
#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

#include "rendlink/launcher.h"

namespace CLI {
class App;
}

namespace kelvaro::rendlink {

// Exit statuses; those of a game beside them.
constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kRefused = 2;     // the choice, or the command line
constexpr int kCantRun = 126;   // the game is there
constexpr int kNotThere = 127;  // it isn't

struct Streams {
  std::ostream& out;
  std::ostream& err;
};

struct Options {
  Launch launch;
  std::string save;           // a file; empty for none
  bool start = false;         //
  std::optional<Words> game;  // what stands behind "--"
};

// Reads the words (without the program's own name). An exit status when that is all, with what it
// had to say written: help, the version, or what is wrong.
std::optional<int> ReadOptions(const Words& words, Options* options, Streams streams);

// Hands over all options, which are gone when `look` has returned.
void DescribeRendlink(const std::function<void(const CLI::App&)>& look);

// Does what the options ask for, on an installed platform, and gives the exit status.
int RunOptions(const Options& options, Session& session, Streams streams);

}  // namespace kelvaro::rendlink
