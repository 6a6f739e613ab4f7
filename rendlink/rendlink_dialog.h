// The one window of Rendlink: what to start, the command line that comes of it, and a launcher.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/layout/dialog.h"
#include "rendlink/launcher.h"

namespace kelvaro::rendlink {

class RendlinkDialog : public Dialog {
 public:
  explicit RendlinkDialog(Session& session);

 protected:
  void OnInit() override;
  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;
  std::string OnToolTip(std::uint32_t id) override;
  void OnDestroy() override;

 private:
  Launch Chosen() const;
  // The command of what is chosen now, or why there is none.
  void ShowCommand();
  void OnBrowseTarget();
  void OnBrowseFolder();
  void OnSave();
  void OnStart();
  bool CheckOrTell(Ready* ready);  // false after a box that tells why not
  bool Confirm(const std::string& question);
  void Tell(const std::string& text);

  Session& session;
  std::vector<std::string> profiles;
  std::optional<Launch> shown;  // whose command is in the field
  platform::IconHandle icon = 0;
};

}  // namespace kelvaro::rendlink
