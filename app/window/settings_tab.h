// The Settings tab, and the settings' way from the registry at the start. A setting that is a check
// box here is one row of Settings().
#pragma once

#include <cstdint>

#include "app/layout/static_link.h"
#include "app/window/device_tab.h"
#include "app/window/session.h"

namespace kelvaro {

class SettingsTab : public Pane {
 public:
  SettingsTab(Session& session, DeviceTab& deviceTab) : Pane(session), deviceTab(deviceTab) {}

  // "Last Device" and its values, then the application's settings. False when a value of the device
  // or the first of the settings is missing.
  bool LoadAppSettings();
  void ShowLaunchesAtStartup();
  void ShowCheckBoxes();
  void AttachLinks();

  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;

 private:
  void OnLaunchAtStartup();
  void OnAdvanced();
  void OnWebLink() { webLink.OnClick(); }
  void OnMailLink() { mailLink.OnClick(); }

  DeviceTab& deviceTab;
  CStaticLink webLink;
  CStaticLink mailLink;
};

}  // namespace kelvaro
