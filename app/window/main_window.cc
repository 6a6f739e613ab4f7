#include "app/window/main_window.h"

#include <algorithm>
#include <iterator>

#include "app/dialogs/help.h"
#include "app/platform/controls.h"
#include "app/platform/shell.h"
#include "app/platform/threads.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "foundation/paths.h"
#include "foundation/registry_key.h"
#include "foundation/version.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::Notice;

constexpr std::uint32_t kTimer = 1;
constexpr std::uint32_t kTimerPeriod = 5000;       // ms
constexpr std::uint32_t kDefaultPollInterval = 5;  // ms
constexpr std::int32_t kTabMargin = 10;            // between a page and its tab's frame
constexpr std::int32_t kTopMarginWithoutTabs = 32;

// The invisible box of each page, in the order of the tabs.
constexpr std::uint32_t kPageBoxes[] = {kControlPageBox, kMousePageBox, kDevicePageBox,
                                        kSettingsPageBox};
constexpr std::uint16_t kPageCount = std::size(kPageBoxes);
constexpr const char* kTabNames[] = {"Control", "Mouse", "Device", "Settings"};

constexpr char kDirectInputText[] =
    "Error Creating a DirectInput Object.\n"
    "Unable to Continue.\n\n"
    "Please ensure that you have DirectX v8.0a or later installed on your system,\n"
    "and that at least one game device is installed (it does not need to be connected).\n\n"
    "DirectX Error:\n";

// Of the process, as the hook's procedure takes no context.
platform::HookHandle minimiseHook = 0;

bool IsPageBox(std::uint32_t id) {
  return std::find(std::begin(kPageBoxes), std::end(kPageBoxes), id) != std::end(kPageBoxes);
}

std::uint32_t FlagsOnPage(std::uint32_t id) {
  using namespace layout_flag;
  if (id == kControlList)
    return kGrowAcross | kGrowDown | kAlignLeft | kOfParent | kRightEdge | kBottomEdge;
  if (id == kRefreshDeviceList) return kMoveAcross;
  if (id == kDeviceList) return kGrowAcross;
  return 0;
}

}  // namespace

MainWindow::MainWindow() : ResizableDialog(resources::kMainWindow), WorkerThread("launcher") {
  windowIcon = platform::desktop().LoadIconA(resources::kIcon);
  platform::threads().SetPriorityClass(platform::HIGH_PRIORITY_CLASS);
  platform::threads().SetCurrentThreadPriority(platform::THREAD_PRIORITY_TIME_CRITICAL);
  currentDeviceGuid = {};
  MigrateSettings();
  LoadQuoteChars();
}

MainWindow::~MainWindow() { Cleanup(); }

// Whatever waits for the person here may also meet the end of the program, after which nothing
// more is set up.
void MainWindow::OnInit() {
  ResizableDialog::OnInit();
  minimiseHook = platform::desktop().SetWindowsHookExA(platform::WH_CBT, &MinimiseHook);
  platform::desktop().SetWindowIcon(window, windowIcon, true);
  platform::desktop().SetWindowIcon(window, windowIcon, false);
  if (HtmlHelp(platform::kNoWindow, nullptr, platform::HH_INITIALIZE,
               reinterpret_cast<std::uintptr_t>(&helpCookie)) != 0) {
    helpAvailable = true;
    defineControl.helpAvailable = true;
  }
  if (!CreateDeviceManager()) return OnCancel();
  pollInterval = kDefaultPollInterval;
  deviceManager->SetPollInterval(pollInterval);
  engine->Attach();
  platform::desktop().GetClientRect(window, &clientRect);
  programPath = ProgramPath();
  if (!PrepareControls()) return OnCancel();
  if (!AddTrayIcon()) return OnCancel();
  LoadAppSettings();
  if (welcomeDisplay == 0) ShowWelcome();
  if (shuttingDown) return;
  if (startMinimized) Check(kStartMinimized, true);
  if (smartCheck) Check(kSmartCheck, true);
  FillProfileList();
  if (shuttingDown) return;
  engine->repeatWorker.Start(false, WorkerThread::kPriorityOfCaller);
  webLink.hyperlink.target = resources::kWebAddress;
  mailLink.hyperlink.target = ByteString("mailto:").Concat(resources::kSupportAddress);
  webLink.Attach(window, kWebLink);
  mailLink.Attach(window, kMailLink);
  CreateToolTips();
  timerId = platform::desktop().SetTimer(window, kTimer, kTimerPeriod);
  if (startMinimized) platform::desktop().PostMessageA(window, WM_HIDE_TO_TRAY, 0, 0);
  platform::desktop().PostMessageA(window, WM_STARTUP_IDLE, 0, 0);
  platform::desktop().PostMessageA(window, WM_START_LAUNCH, 0, 0);
  initComplete = true;
  TellUnlessProfilesCanBeSaved();
  SetText(kVersionText, ByteString("Version ").Concat(VersionNumber()));
}

bool MainWindow::CreateDeviceManager() {
  deviceManager = std::make_unique<DeviceManager>(window);
  EngineHost& host = *this;
  engine = std::make_unique<ControlEngine>(profile, *deviceManager, host);
  if (deviceManager->DirectInputCreated()) return true;
  ByteString reason;
  deviceManager->PeekError(&reason);
  Box(ByteString(kDirectInputText).Concat(reason), "Invalid DirectX Object", platform::MB_ICONSTOP);
  return false;
}

bool MainWindow::PrepareControls() {
  ++initGuard;
  platform::controls().SetPicture(window, kMoveUp,
                                  platform::desktop().LoadBitmapA(resources::kUpBitmap));
  platform::controls().SetPicture(window, kMoveDown,
                                  platform::desktop().LoadBitmapA(resources::kDownBitmap));
  platform::controls().SetPicture(window, kBanner,
                                  platform::desktop().LoadBitmapA(resources::kBannerBitmap));
  CreatePages(kPageCount);
  for (const char* name : kTabNames) platform::controls().TabInsertItem(window, kTabControl, name);
  platform::Rect firstTab;
  const std::int32_t topMargin =
      platform::controls().TabGetItemRect(window, kTabControl, 0, &firstTab)
          ? firstTab.Height() + kTabMargin
          : kTopMarginWithoutTabs;
  FillDeviceList();
  SelectDeviceInList({});
  SetText(kTimerMin, ToDecimal(deviceManager->TimerMin(), false, 0));
  SetText(kTimerMax, ToDecimal(deviceManager->TimerMax(), false, 0));
  if (LaunchesAtStartup()) Check(kLaunchAtStartup, true);
  DeclareLayout(topMargin);
  SelectPage(kControlTab);
  currentTab = kControlTab;
  RestorePlacement(kProductKey, kMainWindowSubkey);
  // Without a stored place nothing has laid out yet, and the columns share the list's final width.
  Layout(clientRect);
  controlList.Attach(window, kControlList);
  controlList.AddColumn("Trigger", 100);
  controlList.AddColumn("Action", 50);
  controlList.AddColumn("Description", 150);
  controlList.registryKey = ByteString(kProductKey).Concat("\\").Concat(kMainWindowSubkey);
  controlList.LoadColumns();
  --initGuard;
  return true;
}

void MainWindow::DeclareLayout(std::int32_t topMargin) {
  using namespace layout_flag;
  for (std::uint16_t page = 0; page < kPageCount; ++page) {
    AddNode(page, kProfileLabel, 0);
    AddNode(page, kProfileList, kGrowAcross);
    for (const std::uint32_t button :
         {kNewProfile, kDeleteProfile, kCopyProfile, kRenameProfile, kHelp})
      AddNode(page, button, kMoveAcross);
    AddNode(page, kTabControl, kGrowAcross | kGrowDown | kAlignLeft | kRightEdge | kBottomEdge,
            {0, 2, 8, 8});
    AddChildNode(page, kTabControl, kPageBoxes[page],
                 kNeverShown | kGrowAcross | kGrowDown | kAlignLeft | kAlignTop | kOfParent |
                     kRightEdge | kBottomEdge,
                 {kTabMargin, topMargin, kTabMargin, kTabMargin});
    bool onPage = false;
    for (const platform::ControlTemplate& control : resources::kMainWindow.controls) {
      if (IsPageBox(control.id)) {
        onPage = control.id == kPageBoxes[page];
      } else if (onPage) {
        AddChildNode(page, kPageBoxes[page], control.id, FlagsOnPage(control.id));
      }
    }
  }
  MeasurePages();
}

void MainWindow::FillProfileList() {
  LinkedList<ByteString> names;
  profile.ListProfileNames(&names);
  if (!platform::controls().HasControl(window, kProfileList) || names.count == 0) return;
  for (const ByteString& name : names)
    platform::controls().ComboAddString(window, kProfileList, Bytes(name));
  ParseCommandLine();
  if (shuttingDown) return;
  if (!commandLineProfileSelected) {
    std::int32_t row = platform::kNoRow;
    if (!lastProfile.IsEmpty())
      row = platform::controls().ComboFindStringExact(window, kProfileList, Bytes(lastProfile));
    platform::controls().ComboSetCurSel(window, kProfileList, row == platform::kNoRow ? 0 : row);
  }
  OnProfileSelected();
}

void MainWindow::Cleanup() {
  if (shuttingDown) return;
  shuttingDown = true;
  if (timerId != 0) {
    platform::desktop().KillTimer(window, timerId);
    timerId = 0;
  }
  if (minimiseHook != 0) {
    platform::desktop().UnhookWindowsHookEx(minimiseHook);
    minimiseHook = 0;
  }
  // The launcher's own box may be up, and this thread must not wait for the person to read it.
  platform::desktop().DismissBoxesOfOtherThreads();
  if (engine) engine->repeatWorker.Stop();
  WorkerThread::Stop();
  SaveAppSettings();
  // The pointer goes last: until the manager has ended, the notification thread looks at it.
  delete deviceManager.get();
  static_cast<void>(deviceManager.release());
  RemoveTrayIcon();
  if (helpAvailable) {
    HtmlHelp(platform::kNoWindow, nullptr, platform::HH_CLOSE_ALL, 0);
    HtmlHelp(platform::kNoWindow, nullptr, platform::HH_UNINITIALIZE, helpCookie);
    helpAvailable = false;
  }
}

void MainWindow::OnCancel() {
  Cleanup();
  EndDialog(platform::IDCANCEL);
}

void MainWindow::OnDestroy() {
  const RegistryWrites together;
  ResizableDialog::OnDestroy();
  controlList.SaveColumns();
}

std::intptr_t MainWindow::MinimiseHook(std::int32_t code, std::uintptr_t wParam,
                                       std::intptr_t lParam) {
  if (code == platform::HCBT_MINMAX && lParam == platform::SW_MINIMIZE)
    platform::desktop().PostMessageA(wParam, WM_HIDE_TO_TRAY, 0, 0);
  platform::desktop().CallNextHookEx(minimiseHook, code, wParam, lParam);
  return 0;
}

// Nothing counts after the cleanup, which a message can bring while a box still waits: what a
// handler would work on is gone.
void MainWindow::OnNotice(std::uint32_t id, Notice notice, std::int32_t value) {
  struct Handler {
    std::uint32_t id;
    Notice notice;
    void (MainWindow::*handle)();
  };
  static constexpr Handler kHandlers[] = {
      // The row of profiles.
      {kProfileList, Notice::SelectionChanged, &MainWindow::OnProfileSelected},
      {kNewProfile, Notice::Clicked, &MainWindow::OnNewProfile},
      {kDeleteProfile, Notice::Clicked, &MainWindow::OnDeleteProfile},
      {kCopyProfile, Notice::Clicked, &MainWindow::OnCopyProfile},
      {kRenameProfile, Notice::Clicked, &MainWindow::OnRenameProfile},
      {kHelp, Notice::Clicked, &MainWindow::OnHelp},
      {kTabControl, Notice::SelectionChanged, &MainWindow::OnTabSelected},
      // Control.
      {kControlList, Notice::DoubleClicked, &MainWindow::OnEditControl},
      {kNewControl, Notice::Clicked, &MainWindow::OnNewControl},
      {kEditControl, Notice::Clicked, &MainWindow::OnEditControl},
      {kDeleteControls, Notice::Clicked, &MainWindow::OnDeleteControls},
      {kCopyControls, Notice::Clicked, &MainWindow::OnCopyControls},
      {kPasteControls, Notice::Clicked, &MainWindow::OnPasteControls},
      {kMoveUp, Notice::Clicked, &MainWindow::OnMoveUp},
      {kMoveDown, Notice::Clicked, &MainWindow::OnMoveDown},
      // Mouse.
      {kMouseAlwaysActive, Notice::Clicked, &MainWindow::OnMouseAlwaysActive},
      {kTestMode, Notice::Clicked, &MainWindow::OnTestButton},
      // Device.
      {kDeviceList, Notice::SelectionChanged, &MainWindow::OnDeviceSelected},
      {kRefreshDeviceList, Notice::Clicked, &MainWindow::RefreshDeviceList},
      {kInterval, Notice::FocusLost, &MainWindow::OnIntervalLeft},
      {kRate, Notice::FocusLost, &MainWindow::OnRateLeft},
      {kDefaultRate, Notice::Clicked, &MainWindow::OnDefaultRate},
      // Settings.
      {kStartMinimized, Notice::Clicked, &MainWindow::OnStartMinimized},
      {kLaunchAtStartup, Notice::Clicked, &MainWindow::OnLaunchAtStartup},
      {kSmartCheck, Notice::Clicked, &MainWindow::OnSmartCheck},
      {kAdvanced, Notice::Clicked, &MainWindow::OnAdvanced},
      // The notification icon's menu.
      {floater_menu::kShowKelvaro, Notice::Clicked, &MainWindow::ShowNormally},
      {floater_menu::kExit, Notice::Clicked, &MainWindow::OnCancel},
  };
  struct NumberedHandler {
    std::uint32_t id;
    Notice notice;
    void (MainWindow::*handle)(std::uint32_t id);
  };
  static constexpr NumberedHandler kNumberedHandlers[] = {
      {kMovementSensitivity, Notice::Scrolled, &MainWindow::OnMouseSlider},
      {kMovementDamper, Notice::Scrolled, &MainWindow::OnMouseSlider},
      {kWheelDamper, Notice::Scrolled, &MainWindow::OnMouseSlider},
      {kWheelSensitivity, Notice::Scrolled, &MainWindow::OnMouseSlider},
      {kDetectMouseX, Notice::Clicked, &MainWindow::OnDetectBox},
      {kDetectMouseY, Notice::Clicked, &MainWindow::OnDetectBox},
      {kDetectMouseWheel, Notice::Clicked, &MainWindow::OnDetectBox},
      {kDetectLeftButton, Notice::Clicked, &MainWindow::OnDetectBox},
      {kDetectMiddleButton, Notice::Clicked, &MainWindow::OnDetectBox},
      {kDetectRightButton, Notice::Clicked, &MainWindow::OnDetectBox},
      {kWebLink, Notice::Clicked, &MainWindow::OnLink},
      {kMailLink, Notice::Clicked, &MainWindow::OnLink},
  };
  if (shuttingDown) return;
  if (id == kControlList && controlList.OnNotice(notice, value)) return;
  if (notice == Notice::KeyDown) {
    if (id == 0 && value == kF1) return OnHelpKey();
    // Of the keys that the list takes, the window itself takes these two.
    if (id == kControlList || (id == 0 && (value == 'C' || value == 'V'))) OnControlListKey(value);
    return;
  }
  for (const Handler& handler : kHandlers)
    if (handler.id == id && handler.notice == notice) return (this->*handler.handle)();
  for (const NumberedHandler& handler : kNumberedHandlers)
    if (handler.id == id && handler.notice == notice) return (this->*handler.handle)(id);
  ResizableDialog::OnNotice(id, notice, value);
}

void MainWindow::OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
  if (shuttingDown) return;
  switch (message) {
    case WM_TRAY_CALLBACK:
      return OnTrayCallback(wParam, lParam);
    case WM_HIDE_TO_TRAY:
      return HideToTray();
    case WM_SHOW_FROM_TRAY:
      return ShowFromTray();
    case WM_DEVICE_WARNING:
      return ShowDeviceWarning();
    case WM_CLOSE_PROGRAM:
      return OnCancel();
    case WM_START_LAUNCH:
      return OnStartLaunch();
    case WM_SHOW_WELCOME:
      return ShowWelcome();
    default:
      return ResizableDialog::OnMessage(message, wParam, lParam);
  }
}

void MainWindow::OnTimer(std::uint32_t) {
  if (shuttingDown || !autodetectDevicePlugin || deviceManager->DeviceSelected()) return;
  inPluginPoll = true;
  RefreshDeviceList();
  inPluginPoll = false;
}

void MainWindow::OnTabSelected() {
  const std::int32_t tab = platform::controls().TabGetCurSel(window, kTabControl);
  if (tab >= 0) ShowTab(static_cast<Tab>(tab));
}

void MainWindow::ShowTab(Tab tab) {
  platform::controls().TabSetCurSel(window, kTabControl, tab);
  SelectPage(tab);
  currentTab = tab;
  if (tab == kMouseTab) return;
  EndTestMode();
  // A button that is hidden is not drawn any more when it loses the focus.
  platform::controls().SetDefaultButton(window, kEditControl);
  if (!engine->IsDetecting()) return;
  engine->EndMouseDetection();
  SaveAfterMouseDetection();
}

void MainWindow::OnHelp() {
  if (helpAvailable) ShowHelpTopic(kProfilesTopic);
}

// The row of profiles is there on each page.
void MainWindow::OnHelpKey() {
  static constexpr std::uint32_t kProfileRow[] = {kProfileList, kNewProfile,    kDeleteProfile,
                                                  kCopyProfile, kRenameProfile, kHelp};
  static constexpr const char* kTabTopics[] = {
      kControlsTopic, "Mouse Device and Settings.htm#mouse", "Mouse Device and Settings.htm#device",
      "Mouse Device and Settings.htm#settings"};
  if (!helpAvailable) return;
  const std::uint32_t focused = platform::controls().GetControlFocus(window);
  const bool inRow =
      std::find(std::begin(kProfileRow), std::end(kProfileRow), focused) != std::end(kProfileRow);
  ShowHelpTopic(inRow ? kProfilesTopic : kTabTopics[currentTab]);
}

void MainWindow::OnLink(std::uint32_t id) { (id == kWebLink ? webLink : mailLink).OnClick(); }

// The list and its columns must not stick out at any moment.
void MainWindow::Layout(const platform::Rect& client) {
  const std::int32_t difference = client.right - clientRect.right;
  if (difference < 0) controlList.ChangeWidth(difference);
  ResizableDialog::Layout(client);
  if (difference > 0) controlList.ChangeWidth(difference);
  clientRect = client;
}

void MainWindow::OnPaint(platform::Canvas& canvas) {
  if (!platform::desktop().IsIconic(window)) return ResizableDialog::OnPaint(canvas);
  platform::Rect client;
  platform::desktop().GetClientRect(window, &client);
  canvas.EraseBackground(client);
  canvas.DrawIcon(
      (client.Width() - platform::desktop().GetSystemMetrics(platform::SM_CXICON) + 1) / 2,
      (client.Height() - platform::desktop().GetSystemMetrics(platform::SM_CYICON) + 1) / 2,
      windowIcon);
}

void MainWindow::OnDrawItem(const platform::DrawItem& item, platform::Canvas& canvas) {
  if (item.id == kTestMode) DrawTestButton(item, canvas);
}

}  // namespace kelvaro
