// What Rendlink does with a choice: checks it, puts it into words, saves them as a launcher and
// starts them.
#pragma once

#include <string>
#include <vector>

#include "rendlink/launch.h"
#include "rendlink/launcher_kind.h"

namespace kelvaro::rendlink {

// What Rendlink has to know of the person's session.
class Session {
 public:
  virtual ~Session() = default;

  // Full paths; empty where there is none.
  virtual std::string DesktopFolder() = 0;
  virtual std::string MenuFolder() = 0;  // launchers of the person's own menu of programs
  // The full path of a file that was typed; of a program without a folder, where it is found.
  virtual std::string FullPath(const std::string& typed) = 0;
  virtual LauncherKind& Launchers() = 0;
};

// A choice that has been checked.
struct Ready {
  Launch launch;  // whole profile names, full paths
  Words words;    // of Kelvaro's command line
};

// Kelvaro lies beside this program, and its file has the same ending. The following are false, with
// a sentence for the person in *refusal and nothing changed.

// Kelvaro's path, checked.
bool FindKelvaro(std::string* path, std::string* refusal);
// Everything that can be known of a choice before it is used.
bool MakeReady(const Launch& chosen, Session& session, Ready* ready, std::string* refusal);
bool SaveLauncher(const Ready& ready, const std::string& path, Session& session,
                  std::string* refusal);
bool StartNow(const Ready& ready, std::string* refusal);

}  // namespace kelvaro::rendlink
