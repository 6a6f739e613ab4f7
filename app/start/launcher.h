// What the command line asked for, and the LauncherThread, which starts a game together with the
// program and ends with it. The thread reaches the window by posted messages and its own message
// box alone, and reads the members below, which nobody writes once it runs.
#pragma once

#include <cstdint>

#include "app/platform/desktop.h"
#include "app/platform/processes.h"
#include "app/start/quote_chars.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "foundation/worker_thread.h"

namespace kelvaro {

class Launcher : public WorkerThread {
 public:
  Launcher() : WorkerThread("launcher") {}
  ~Launcher() override { Stop(); }

  // Takes the members below from the program's command line, by quoteChars. The thread's box stands
  // in front of `window`; `programPath` starts this program.
  void ParseCommandLine(platform::WindowHandle window, const ByteString& programPath);

  // Starts the thread if there is a target and the profile for it was selected.
  void StartIfDue();

  QuoteChars quoteChars;
  LinkedList<ByteString> extraProfiles;  // all but the window's own once that is selected
  ByteString launchTarget;
  ByteString launchArgs;
  ByteString launchDir;
  bool commandLineProfileSelected = false;

 private:
  std::uint32_t Run() override {
    LaunchTarget();
    return 0;
  }
  void LaunchTarget();
  void CloseOtherInstances();
  bool StartTarget(platform::PROCESS_INFORMATION* game);  // false after the message

  platform::WindowHandle window = platform::kNoWindow;
  ByteString programPath;
};

}  // namespace kelvaro
