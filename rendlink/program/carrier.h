// A game whose arguments reach it exactly, whatever bytes they have: Kelvaro's command line
// couldn't carry them. Rendlink starts Kelvaro with Rendlink as its target, and that second one,
// the carrier, starts the game. The two talk over a socket in a folder of the person's own: the
// words and signals go one way, the exit status comes back.
#pragma once

#include <string>

#include "rendlink/launch.h"

namespace kelvaro::rendlink {

struct Game {
  std::string program;  // full path
  Words words;          // the first stands for the program
  std::string folder;   // to start it in
};

// The folder and the waiting end of the socket in it; gone with this object.
class CarrierSocket {
 public:
  // Empty Path() where there can be none.
  CarrierSocket();
  ~CarrierSocket();
  CarrierSocket(const CarrierSocket&) = delete;
  CarrierSocket& operator=(const CarrierSocket&) = delete;

  const std::string& Path() const { return path; }
  int Listener() const { return listener; }

 private:
  std::string folder;
  std::string path;
  int listener = -1;
};

// Starts Kelvaro by `kelvaro`, whose target is to be this program with "--carry" and the socket's
// path, and waits until both the game and Kelvaro have ended. SIGINT, SIGTERM and SIGHUP go to the
// game; while there is none, they end Kelvaro. The game's exit status, 128 and the number for a
// signal; 1, after a line on standard error, when there was no game.
int RunCarried(const Words& kelvaro, const CarrierSocket& socket, const Game& game);

// The carrier: starts the game that the socket tells, waits for its end, and gives its status.
int Carry(const std::string& socketPath);

}  // namespace kelvaro::rendlink
