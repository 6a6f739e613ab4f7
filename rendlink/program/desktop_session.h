// The person's folders, by the rules of freedesktop.org.
#pragma once

#include "rendlink/launcher.h"

namespace kelvaro::rendlink {

class DesktopSession final : public Session {
 public:
  std::string DesktopFolder() override;
  std::string MenuFolder() override;
  std::vector<std::string> ApplicationsFolders() override;
  std::string FullPath(const std::string& typed) override;
  bool AllowStart(const std::string& path) override;
};

// As execvp finds it: the file of a name with a folder, else the first in PATH that can be run.
// Empty, with the errno in *error, when there is none, or none that can be run.
std::string FindProgram(const std::string& name, int* error);

}  // namespace kelvaro::rendlink
