// What a launcher is on the person's system: a kind of file, where it is offered, and how a command
// is written there.
#pragma once

#include <string>

#include "rendlink/launch.h"

namespace kelvaro::rendlink {

// What goes into a launcher, beside the name that its file has.
struct LauncherFacts {
  std::string comment;
  std::string target;  // full path; its picture is the launcher's
  Words words;         // Kelvaro's path and its arguments
};

class LauncherKind {
 public:
  virtual ~LauncherKind() = default;

  virtual const char* Ending() const = 0;    // of the files' names, ".desktop"
  virtual const char* MenuName() const = 0;  // of what lists the system's programs
  // The words as one line for the system's shell.
  virtual std::string CommandText(const Words& words) const = 0;
  // Writes the file. False, with a sentence for the person in *refusal.
  virtual bool Save(const LauncherFacts& launcher, const std::string& path,
                    std::string* refusal) = 0;
};

// For all kinds. False, with a sentence in *refusal, for control characters, and for what isn't
// UTF-8; `what` as "The comment".
bool CanHold(const std::string& what, const std::string& text, std::string* refusal);
// The same for each word.
bool CanHold(const Words& words, std::string* refusal);
// Writes the whole file, or says in *refusal why it can't be.
bool WriteLauncher(const std::string& path, const std::string& bytes, std::string* refusal);

}  // namespace kelvaro::rendlink
