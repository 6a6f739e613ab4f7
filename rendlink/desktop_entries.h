// Launchers as desktop entries.
#pragma once

#include <string>
#include <vector>

#include "rendlink/launcher_kind.h"

namespace kelvaro::rendlink {

// What a desktop with such entries has beside its files.
class EntrySystem {
 public:
  virtual ~EntrySystem() = default;

  // Full paths of all folders of entries, the person's own first.
  virtual std::vector<std::string> ApplicationsFolders() = 0;
  // Lets an entry be started by who opens it.
  virtual bool AllowStart(const std::string& path) = 0;
};

class DesktopEntries final : public LauncherKind {
 public:
  explicit DesktopEntries(EntrySystem& system) : system(system) {}

  const char* Ending() const override { return ".desktop"; }
  const char* MenuName() const override { return "Applications menu"; }
  std::string CommandText(const Words& words) const override { return ShellLine(words); }
  bool Save(const LauncherFacts& launcher, const std::string& path, std::string* refusal) override;

 private:
  EntrySystem& system;
};

}  // namespace kelvaro::rendlink
