// A game whose arguments reach it exactly, whatever bytes they have: Kelvaro's command line
// couldn't carry them. Rendlink starts Kelvaro with Rendlink as its target, and that second one,
// the carrier, starts the game. The two talk over a socket in a folder of the person's own: the
// words and signals go one way, the exit status comes back.
#pragma once

#include <memory>
#include <string>

#include "app/platform/linux/descriptor.h"
#include "rendlink/command_line.h"

namespace kelvaro::rendlink {

// The folder and the waiting end of the socket in it; gone with this object.
class CarrierSocket {
 public:
  // Empty Path() where there can be none.
  CarrierSocket();
  ~CarrierSocket();
  CarrierSocket(const CarrierSocket&) = delete;
  CarrierSocket& operator=(const CarrierSocket&) = delete;

  const std::string& Path() const { return path; }
  const platform::Descriptor& Listener() const { return listener; }

 private:
  std::string folder;
  std::string path;
  platform::Descriptor listener;
};

// While it waits, SIGINT, SIGTERM and SIGHUP go to the game; as long as there is none, they end
// Kelvaro. A game's exit status is 128 and the number where a signal ended it.
class SocketCarrier final : public GameCarrier {
 public:
  std::string FindProgram(const std::string& typed, std::string* reason, bool* isThere) override;
  bool Prepare(const Game& game, std::string* args, std::string* refusal) override;
  int Run(const Words& kelvaro) override;

 private:
  std::unique_ptr<CarrierSocket> socket;
  const Game* game = nullptr;
};

// The carrier: starts the game that the socket tells, waits for its end, and gives its status.
int Carry(const std::string& socketPath);

}  // namespace kelvaro::rendlink
