// The one window of the program: four tabs over a row for profiles. It owns whatever runs (device,
// engine, open profile) from its first message to its shutdown, which every way out goes through
// once. The program is this window: it runs modally, and the process ends with it.
//
// Sources: main_window.cc brings it to life and ends it and hands events on; app_settings.cc what
// is remembered; notification_area.cc the icon and hiding; tool_tips.cc; profile_operations.cc the
// row of profiles and the device of a profile; mouse_tab.cc and device_tab.cc those tabs;
// control_list.cc the Control tab; launching.cc what a shortcut asks for and the game that it
// starts.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "app/dialogs/define_control_dialog.h"
#include "app/layout/resizable_dialog.h"
#include "app/layout/resize_list_ctrl.h"
#include "app/layout/static_link.h"
#include "app/resources/settings_keys.h"
#include "app/start/command_line.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "engine/engine_host.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "foundation/relaxed.h"
#include "foundation/worker_thread.h"
#include "storage/profile_file.h"

namespace kelvaro {

// Posted to the main window. WM_CLOSE_PROGRAM also travels between processes: its value stays.
constexpr std::uint32_t WM_TRAY_CALLBACK = 0x8000;
constexpr std::uint32_t WM_HIDE_TO_TRAY = 0x8001;
constexpr std::uint32_t WM_SHOW_FROM_TRAY = 0x8002;
constexpr std::uint32_t WM_STARTUP_IDLE = 0x8003;
constexpr std::uint32_t WM_DEVICE_WARNING = 0x8006;
constexpr std::uint32_t WM_CLOSE_PROGRAM = 0x8007;
constexpr std::uint32_t WM_START_LAUNCH = 0x8008;
constexpr std::uint32_t WM_SHOW_WELCOME = 0x8009;

constexpr char kNoDeviceText[] = "-- None --";

class MainWindow : public ResizableDialog, private WorkerThread, private EngineHost {
 public:
  enum Tab : std::uint16_t { kControlTab, kMouseTab, kDeviceTab, kSettingsTab };

  // Raises the process's and the calling thread's priority, and takes over old settings.
  MainWindow();
  ~MainWindow() override;

 protected:
  // --- main_window.cc
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
  std::uint32_t Run() override;  // LaunchTarget, on the thread "launcher"

 private:
  friend class MainWindowTest;  // looks at members; drives the window from outside

  static std::intptr_t MinimiseHook(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam);
  bool CreateDeviceManager();  // false, after the message, without DirectInput
  bool PrepareControls();
  void DeclareLayout(std::int32_t topMargin);
  void FillProfileList();  // and select by the command line, or the last profile
  void Cleanup();          // does its work once
  void OnTabSelected();
  void ShowTab(Tab tab);  // makes it current, and the page with it
  void OnHelp();
  void OnHelpKey();
  void OnLink(std::uint32_t id);

  // --- app_settings.cc
  bool LoadAppSettings();
  bool SaveAppSettings();
  void RememberLastProfile(const ByteString& name);
  static void MigrateSettings();
  static bool LaunchesAtStartup();
  void OnLaunchAtStartup();
  void OnStartMinimized();
  void OnSmartCheck();
  void OnAdvanced();

  // --- notification_area.cc
  bool AddTrayIcon();
  void RemoveTrayIcon();
  void OnTrayCallback(std::uintptr_t iconId, std::intptr_t mouseMessage);
  void ShowTrayMenu();
  void HideToTray();
  void ShowFromTray();
  void ShowNormally();
  void ShowWelcome();

  // --- tool_tips.cc
  void CreateToolTips();

  // --- profile_operations.cc
  void OnProfileSelected();
  bool LoadProfile(const ByteString& name);
  void EndDetection();  // and wait for what it saves
  void ClearProfile();  // and what repeats of it
  bool ApplyProfileDevice();
  bool ValidateNewProfileName(const ByteString& name);
  void ListNewProfile(const ByteString& name);  // selected, and remembered
  void OnNewProfile();
  void OnDeleteProfile();
  void OnCopyProfile();
  void OnRenameProfile();
  void RefreshDeviceList();
  void ShowDeviceWarning();
  void TellUnlessProfilesCanBeSaved();
  // Where the open profile can't be written it goes on in memory; the person is told, once.
  bool SaveProfile();

  // --- mouse_tab.cc
  void ShowMouseAndDeviceState();
  void ApplyMouseSlider(std::uint32_t sliderId);  // position, derived values, caption
  void OnMouseSlider(std::uint32_t sliderId);
  void OnMouseAlwaysActive();
  void OnTestButton();
  void EndTestMode();
  void SetTestMode(bool on);
  void DrawTestButton(const platform::DrawItem& item, platform::Canvas& canvas);
  void OnDetectBox(std::uint32_t boxId);

  // --- device_tab.cc
  void FillDeviceList();
  void SelectDeviceInList(const platform::GUID& guid);  // the row of that device, else of none
  void ShowSelectedDevice();
  void LetGoWithoutDevice();  // nothing where one is selected
  void ReselectDevice();
  void OnDeviceSelected();
  void OnIntervalLeft();
  void OnRateLeft();
  void OnDefaultRate();
  bool PollFieldsCount() const;  // whether leaving one has a meaning now
  bool ReadPollFields();         // false, after the message, when one isn't a number
  // A message about the field, which then has the focus again.
  void RefuseField(std::uint32_t fieldId, const ByteString& text, const ByteString& caption,
                   std::uint32_t type);
  void ApplyPollInterval(std::uint32_t interval);
  bool LoadDeviceSettings();
  void SaveDeviceSettings();  // nothing where none is selected

  // --- control_list.cc
  void FillControlList();
  void FillControlRow(std::int32_t row, const Control& control);
  std::uint32_t SelectedControlId() const;
  std::int32_t SelectedRow() const;
  void SelectedRows(LinkedList<std::int32_t>* rows) const;
  void SelectedControlIds(LinkedList<std::uint32_t>* ids) const;
  Control* FindSelectedControl();
  Control* FindControl(std::uint32_t controlId);
  bool RunDefineControlDialog();  // of defineControl.scratch; whether it ended with OK
  void BringShiftReminderBack();
  void RebuildDispatchList();  // with no Control repeating; profileLock is held
  void OnNewControl();
  void OnEditControl();
  void OnDeleteControls();
  void OnCopyControls();
  void OnPasteControls();
  void OnMoveUp();
  void OnMoveDown();
  bool OnControlListKey(std::int32_t vk);  // true when it was a key of its own

  // --- launching.cc
  void LoadQuoteChars();
  void ParseCommandLine();
  void OnStartLaunch();
  void CloseOtherInstances();
  std::uint32_t LaunchTarget();

  // EngineHost
  bool ControlDialogOpen() const override;
  void ShowDetectedTrigger(const DeviceManager& device, const DeviceSnapshot& snapshot) override;
  void ShowDetectedInput(MouseRole role, const ByteString& text) override;
  void MouseDetectionEnded(MouseRole role) override;
  void SaveAfterMouseDetection() override;  // the device's values, then the profile

  ProfileFile profile;  // the one open profile
  std::unique_ptr<DeviceManager> deviceManager;
  std::unique_ptr<ControlEngine> engine;  // made with the manager, outlives it
  DefineControlDialog defineControl;
  ResizeListCtrl controlList{50};
  CStaticLink webLink;
  CStaticLink mailLink;

  std::uint16_t currentTab = kControlTab;
  std::uint32_t initGuard = 0;     // above 0 while controls are filled: their notices don't count
  std::uint32_t pollInterval = 0;  // ms; what "Defaults" of the Device tab goes back to
  std::uint32_t intervalField = 0;
  std::uint32_t rateField = 0;
  ByteString currentDeviceName;
  platform::GUID currentDeviceGuid;
  bool showAutoDetectUsage = true;
  ByteString lastProfile;
  platform::IconHandle windowIcon = 0;
  platform::IconHandle trayIcon = 0;
  bool trayIconAdded = false;
  bool trayMenuOpen = false;
  bool startMinimized = false;
  bool helpAvailable = false;
  std::uint32_t helpCookie = 0;
  ByteString programPath;
  platform::Rect clientRect;
  bool initComplete = false;
  bool smartCheck = true;
  bool shiftReminder = true;
  LinkedList<ByteString> extraProfiles;
  ByteString launchTarget;
  ByteString launchArgs;
  ByteString launchDir;
  bool commandLineProfileSelected = false;
  bool noDeviceErrorMsg = false;
  bool autodetectDevicePlugin = false;
  std::uint32_t timerId = 0;
  bool shuttingDown = false;
  std::uint32_t welcomeDisplay = 0;
  QuoteChars quoteChars;
  bool inPluginPoll = false;
  std::atomic<bool> failedSaveTold{false};
  LinkedList<Control> copiedControls;  // of Copy, for Paste
  std::uint8_t rowPrefixes = 0;        // 1: rows tell press from release
};

}  // namespace kelvaro
