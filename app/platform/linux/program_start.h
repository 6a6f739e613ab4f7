// Starting a program as the session would: with its limits, default signals, no descriptors but the
// standard ones and an ordinary priority. RealtimeKit makes this process lower a limit that it
// can't raise again, and what it starts would inherit. So before that a process of its own is made,
// the starter, which keeps what the session gave and starts programs from then on: in a session of
// its own, with every signal blocked, until the socket to this process closes, however that comes.
// Any thread.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace platform {

struct ProgramStart {
  std::string program;             // a file; one that the system can't run is the shell's
  std::vector<std::string> words;  // the name it is called by first; never empty
  std::string folder;              // empty: this process's own
};

// 0 when it runs; it is a child of this process then, to be waited for. Otherwise the errno value,
// with nothing left of it.
int StartProgram(const ProgramStart& start, pid_t* process);

// To be called before this process lowers its limits. Back when the starter is ready; where there
// can be none, programs get the lowered limits.
void KeepLimitsForPrograms();

}  // namespace platform
