// A game whose arguments reach it as they were typed: Kelvaro's command line couldn't carry them.
// Rendlink starts Kelvaro with Rendlink as its target, and that second one, the carrier, starts the
// game. The first one keeps what the carrier needs in memory that has no name, and Kelvaro's
// command line has the number of its handle: the carrier takes a handle of its own from the first
// process, which only a program of the same user can.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

#include "rendlink/command_line.h"

namespace kelvaro::rendlink {

class Handover;

class WindowsCarrier final : public GameCarrier {
 public:
  // `line` is this process's, of so many words.
  WindowsCarrier(std::string line, std::size_t words, std::ostream& err);
  ~WindowsCarrier() override;

  std::string FindProgram(const std::string& typed, std::string* reason, bool* isThere) override;
  bool Prepare(const Game& game, std::string* args, std::string* refusal) override;
  // A game that can't be started has kCantRun or kNotThere, after a line that says why.
  int Run(const Words& kelvaro) override;

 private:
  int StatusOfGame();

  const std::string line;
  const std::size_t words;
  std::ostream& err;
  std::unique_ptr<Handover> handover;
};

// The carrier: starts the game that this handle of that process leads to, waits for its end, and
// gives its status. False when that process doesn't wait for it.
bool Carry(const std::string& process, const std::string& handle, int* status);

}  // namespace kelvaro::rendlink
