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

struct Game {
  std::string program;  // full path
  Words words;          // the first stands for the program
  std::string folder;   // to start it in
};

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

// How a system brings a game to a second Rendlink, the carrier, which Kelvaro starts as its target.
class GameCarrier {
 public:
  virtual ~GameCarrier() = default;

  // The full path of the program behind a game's first word. Empty for none that can be run, with
  // the system's words for it in *reason, and whether it is there at all in *isThere.
  virtual std::string FindProgram(const std::string& typed, std::string* reason, bool* isThere) = 0;
  // Gets ready to hand over that game, which it borrows: the arguments by which the carrier comes
  // to it. False with a sentence in *refusal.
  virtual bool Prepare(const Game& game, std::string* args, std::string* refusal) = 0;
  // Starts Kelvaro by those words and waits until both have ended. The game's exit status; kFailed
  // when there was no game, after a line that says so.
  virtual int Run(const Words& kelvaro) = 0;
};

// Writes a line to `err` that says by whom it is, and gives the status.
int Complain(std::ostream& err, const std::string& text, int status);

// Hands over all options, which are gone when `look` has returned.
void DescribeRendlink(const std::function<void(const CLI::App&)>& look);

// Does what the options ask for, on an installed platform, and gives the exit status.
int RunOptions(const Options& options, Session& session, GameCarrier& carrier, Streams streams);

}  // namespace kelvaro::rendlink
