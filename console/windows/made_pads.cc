// The commands that make a pad, which on Windows no program can.
#include "console/commands.h"
#include "console/console_error.h"

namespace kelvaro::console {
namespace {

int SayThatThereIsNoWay(const std::string& command, const std::string& instead, Streams streams) {
  return Complain(streams.err,
                  "Windows lets no program make a pad unless a driver for it is installed, so " +
                      command + " works on Linux alone" + instead);
}

}  // namespace

// Whatever the recording says: it needn't even be there.
int PlayBackCommand(const PlayBackOptions&, Streams streams) {
  return SayThatThereIsNoWay("play-back", "; run --replay plays a recording to Kelvaro", streams);
}

int LatencyCommand(const LatencyOptions&, Streams streams) {
  return SayThatThereIsNoWay("latency", "", streams);
}

}  // namespace kelvaro::console
