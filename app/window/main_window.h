// The one window of the program: four tabs over a row for profiles. It owns whatever runs (device,
// engine, open profile) from its first message to its shutdown, which every way out goes through
// once. The program is this window: it runs modally, and the process ends with it.
//
// Here are its set-up, its shutdown and the way of each event to its handler; what a tab does
// stands in that tab, and what they share in Session.
#pragma once

#include <cstdint>

#include "app/layout/resizable_dialog.h"
#include "app/start/launcher.h"
#include "app/start/window_messages.h"
#include "app/window/control_tab.h"
#include "app/window/device_tab.h"
#include "app/window/engine_events.h"
#include "app/window/mouse_tab.h"
#include "app/window/notification_area.h"
#include "app/window/profile_row.h"
#include "app/window/session.h"
#include "app/window/settings_tab.h"
#include "app/window/steered_window.h"

namespace kelvaro {

class MainWindow : public ResizableDialog {
 public:
  using Tab = Session::Tab;
  using enum Session::Tab;

  // Raises the process's and the calling thread's priority, and takes over old settings.
  MainWindow();
  ~MainWindow() override;

  bool InitComplete() const { return initComplete; }
  platform::Rect ClientRect() const { return clientRect; }

  Session session{*this};
  MouseTab mouseTab{session};
  DeviceTab deviceTab{session, mouseTab};
  ControlTab controlTab{session};
  SettingsTab settingsTab{session, deviceTab};
  Launcher launcher;
  ProfileRow profileRow{session, controlTab, mouseTab, deviceTab, launcher};
  NotificationArea notificationArea{*this};
  SteeredWindow steered{session, profileRow};

 protected:
  void OnInit() override;
  void OnOK() override {}  // no button of this number: Enter presses the default button
  void OnCancel() override;
  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;
  void OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) override;
  void OnTimer(std::uint32_t id) override;
  void OnPaint(platform::Canvas& canvas) override;
  void OnDrawItem(const platform::DrawItem& item, platform::Canvas& canvas) override;
  std::string OnToolTip(std::uint32_t id) override;
  void OnDestroy() override;
  void Layout(const platform::Rect& client) override;

 private:
  void HandleNotice(std::uint32_t id, platform::Notice notice, std::int32_t value);
  void HandleMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam);
  bool CreateDeviceManager();  // false, after the message, without DirectInput
  void PrepareControls();
  void DeclareLayout(std::int32_t topMargin);
  void SleepUnlessDeviceAwaited();
  void Cleanup();  // does its work once
  void OnTabSelected();
  void ShowTab(Tab tab);  // makes it current, and the page with it
  void OnHelp();
  void OnHelpKey();
  void ShowWelcome();
  void ShowDeviceWarning();

  EngineEvents engineEvents{session, controlTab.defineControl, mouseTab};
  platform::IconHandle windowIcon = 0;
  bool helpAvailable = false;
  std::uint32_t helpCookie = 0;
  platform::Rect clientRect;
  bool initComplete = false;
  std::uint32_t timerId = 0;
};

}  // namespace kelvaro
