// The person's folders, by the rules of freedesktop.org.
#pragma once

#include "rendlink/desktop_entries.h"
#include "rendlink/launcher.h"

namespace kelvaro::rendlink {

class DesktopSession final : public Session, public EntrySystem {
 public:
  std::string DesktopFolder() override;
  std::string MenuFolder() override;
  std::string FullPath(const std::string& typed) override;
  LauncherKind& Launchers() override { return entries; }
  std::vector<std::string> ApplicationsFolders() override;
  bool AllowStart(const std::string& path) override;

 private:
  DesktopEntries entries{*this};
};

}  // namespace kelvaro::rendlink
