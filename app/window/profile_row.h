// The row of profiles: choosing and loading, new, delete, copy, rename. The list is only a view of
// the folder: an entry whose file can't be read is taken out of it, the file stays.
#pragma once

#include <cstdint>
#include <string>

#include "app/start/launcher.h"
#include "app/window/control_tab.h"
#include "app/window/device_tab.h"
#include "app/window/session.h"

namespace kelvaro {

class ProfileRow : public Pane {
 public:
  ProfileRow(Session& session, ControlTab& controlTab, MouseTab& mouseTab, DeviceTab& deviceTab,
             Launcher& launcher)
      : Pane(session),
        controlTab(controlTab),
        mouseTab(mouseTab),
        deviceTab(deviceTab),
        launcher(launcher) {}

  void Fill();  // and select by the command line, or the last profile

  // Does what the person's choice of that profile does, without a question or a box. Otherwise the
  // result says why not, and all is as it was. The profile that is open stays so.
  std::string Choose(const std::string& name);

  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;

 private:
  void SelectByCommandLine();
  void OnProfileSelected();
  // Or another, after a box, where it can't be read. Whether one was loaded.
  bool LoadSelectedProfile();
  bool LoadProfile(const ByteString& name);
  void EndDetection();  // and wait for what it saves
  void ClearProfile();  // and what repeats of it
  bool ValidateNewProfileName(const ByteString& name);
  void ListNewProfile(const ByteString& name);  // selected, and remembered
  void OnNewProfile();
  void OnDeleteProfile();
  void OnCopyProfile();
  void OnRenameProfile();

  ControlTab& controlTab;
  MouseTab& mouseTab;
  DeviceTab& deviceTab;
  Launcher& launcher;
};

}  // namespace kelvaro
