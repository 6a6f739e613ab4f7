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

}  // namespace kelvaro::rendlink
