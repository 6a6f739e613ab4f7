#include "app/window/main_window.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "app/dialogs/help.h"
#include "app/dialogs/small_dialogs.h"
#include "app/platform/controls.h"
#include "app/platform/shell.h"
#include "app/platform/threads.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "app/resources/settings_keys.h"
#include "app/start/quote_chars.h"
#include "app/window/tool_tips.h"
#include "foundation/paths.h"
#include "foundation/registry_key.h"
#include "foundation/version.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::Notice;

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

MainWindow::MainWindow() : ResizableDialog(resources::kMainWindow) {
  windowIcon = platform::desktop().LoadIconA(resources::kIcon);
  platform::threads().SetPriorityClass(platform::HIGH_PRIORITY_CLASS);
  platform::threads().SetCurrentThreadPriority(platform::THREAD_PRIORITY_TIME_CRITICAL);
  AppSettings::Migrate();
  launcher.quoteChars = LoadQuoteChars();
}

MainWindow::~MainWindow() { Cleanup(); }

// The program may end while this waits for the person. Then nothing more is set up.
void MainWindow::OnInit() {
  ResizableDialog::OnInit();
  notificationArea.HideWhenMinimised();
  platform::desktop().SetWindowIcon(window, windowIcon, true);
  platform::desktop().SetWindowIcon(window, windowIcon, false);
  helpAvailable = HtmlHelp(platform::kNoWindow, nullptr, platform::HH_INITIALIZE,
                           reinterpret_cast<std::uintptr_t>(&helpCookie)) != 0;
  controlTab.defineControl.helpAvailable = helpAvailable;
  if (!CreateDeviceManager()) return OnCancel();
  const SteeredWindow::Busy busy(steered);
  deviceTab.pollInterval = kDefaultPollInterval;
  session.deviceManager->SetPollInterval(kDefaultPollInterval);
  session.engine->Attach();
  platform::desktop().GetClientRect(window, &clientRect);
  session.programPath = ProgramPath();
  PrepareControls();
  if (!notificationArea.AddTrayIcon()) return OnCancel();
  steered.BeginByMessage();
  settingsTab.LoadAppSettings();
  if (session.settings.welcomeDisplay == 0) ShowWelcome();
  if (session.shuttingDown) return;
  settingsTab.ShowCheckBoxes();
  profileRow.Fill();
  if (session.shuttingDown) return;
  session.engine->repeatWorker.Start(false, WorkerThread::kPriorityOfCaller);
  settingsTab.AttachLinks();
  CreateToolTips(*this);
  timerId = platform::desktop().SetTimer(window, Session::kTimer, kTimerPeriod);
  SleepUnlessDeviceAwaited();
  if (session.settings.startMinimized)
    platform::desktop().PostMessageA(window, WM_HIDE_TO_TRAY, 0, 0);
  platform::desktop().PostMessageA(window, WM_STARTUP_IDLE, 0, 0);
  platform::desktop().PostMessageA(window, WM_START_LAUNCH, 0, 0);
  initComplete = true;
  Session::TellUnlessProfilesCanBeSaved();
  SetText(kVersionText, ByteString("Version ").Concat(VersionNumber()));
}

bool MainWindow::CreateDeviceManager() {
  session.StartDevice(engineEvents);
  if (session.deviceManager->DirectInputCreated()) return true;
  ByteString reason;
  session.deviceManager->PeekError(&reason);
  Box(ByteString(kDirectInputText).Concat(reason), "Invalid DirectX Object", platform::MB_ICONSTOP);
  return false;
}

void MainWindow::PrepareControls() {
  ++session.initGuard;
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
  deviceTab.FillDeviceList();
  deviceTab.SelectDeviceInList({});
  SetText(kTimerMin, ToDecimal(session.deviceManager->TimerMin(), false, 0));
  SetText(kTimerMax, ToDecimal(session.deviceManager->TimerMax(), false, 0));
  settingsTab.ShowLaunchesAtStartup();
  DeclareLayout(topMargin);
  SelectPage(kControlTab);
  session.currentTab = kControlTab;
  RestorePlacement(kProductKey, kMainWindowSubkey);
  // Without a stored place nothing has laid out yet, and the columns share the list's final width.
  Layout(clientRect);
  controlTab.PrepareList();
  --session.initGuard;
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

void MainWindow::Cleanup() {
  if (session.shuttingDown) return;
  session.shuttingDown = true;
  if (timerId != 0) {
    platform::desktop().KillTimer(window, timerId);
    timerId = 0;
  }
  notificationArea.EndHideWhenMinimised();
  // The launcher's own box may be up, and this thread must not wait for the person to read it.
  platform::desktop().DismissBoxesOfOtherThreads();
  steered.End();
  if (session.engine) session.engine->repeatWorker.Stop();
  launcher.Stop();
  session.SaveAppSettings();
  session.EndDevice();
  notificationArea.RemoveTrayIcon();
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
  controlTab.controlList.SaveColumns();
}

// No notice counts after the cleanup, which a message can start while a box still waits: the
// objects of a handler are gone by then.
void MainWindow::OnNotice(std::uint32_t id, Notice notice, std::int32_t value) {
  if (session.shuttingDown) return;
  const SteeredWindow::Busy busy(steered);
  HandleNotice(id, notice, value);
}

void MainWindow::HandleNotice(std::uint32_t id, Notice notice, std::int32_t value) {
  if (notice == Notice::KeyDown && id == 0 && value == kF1) return OnHelpKey();
  for (Pane* const pane :
       std::initializer_list<Pane*>{&profileRow, &controlTab, &mouseTab, &deviceTab, &settingsTab})
    pane->OnNotice(id, notice, value);
  if (notice == Notice::SelectionChanged && id == kTabControl) return OnTabSelected();
  if (notice != Notice::Clicked) return;
  switch (id) {
    case kHelp:
      return OnHelp();
    case floater_menu::kShowKelvaro:
      return notificationArea.ShowNormally();
    case floater_menu::kExit:
      return OnCancel();
    default:
      return ResizableDialog::OnNotice(id, notice, value);
  }
}

void MainWindow::OnMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
  if (session.shuttingDown) return;
  if (message == WM_STEERED) return steered.OnRequests();
  const SteeredWindow::Busy busy(steered);
  HandleMessage(message, wParam, lParam);
}

void MainWindow::HandleMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
  switch (message) {
    case WM_TRAY_CALLBACK:
      return notificationArea.OnTrayCallback(wParam, lParam);
    case WM_HIDE_TO_TRAY:
      return notificationArea.HideToTray();
    case WM_SHOW_FROM_TRAY:
      return notificationArea.ShowFromTray();
    case WM_DEVICE_WARNING:
      return ShowDeviceWarning();
    case WM_CLOSE_PROGRAM:
      return OnCancel();
    case WM_START_LAUNCH:
      return launcher.StartIfDue();
    case WM_SHOW_WELCOME:
      return ShowWelcome();
    default:
      return ResizableDialog::OnMessage(message, wParam, lParam);
  }
}

void MainWindow::OnTimer(std::uint32_t) {
  if (session.shuttingDown) return;
  const SteeredWindow::Busy busy(steered);
  if (deviceTab.AwaitsDevice()) deviceTab.RefreshDeviceList();
  SleepUnlessDeviceAwaited();
}

void MainWindow::SleepUnlessDeviceAwaited() {
  if (!deviceTab.AwaitsDevice()) platform::desktop().SleepTimer(window, timerId);
}

void MainWindow::OnTabSelected() {
  const std::int32_t tab = platform::controls().TabGetCurSel(window, kTabControl);
  if (tab >= 0) ShowTab(static_cast<Tab>(tab));
}

void MainWindow::ShowTab(Tab tab) {
  platform::controls().TabSetCurSel(window, kTabControl, tab);
  SelectPage(tab);
  session.currentTab = tab;
  if (tab == kMouseTab) return;
  mouseTab.SetTestMode(false);
  // A button that is hidden is not drawn any more when it loses the focus.
  platform::controls().SetDefaultButton(window, kEditControl);
  if (!session.engine->IsDetecting()) return;
  session.engine->EndMouseDetection();
  session.SaveAfterMouseDetection();
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
  ShowHelpTopic(inRow ? kProfilesTopic : kTabTopics[session.currentTab]);
}

// The list and its columns must not stick out at any moment.
void MainWindow::Layout(const platform::Rect& client) {
  const std::int32_t difference = client.right - clientRect.right;
  controlTab.controlList.ChangeWidth(std::min(difference, 0));
  ResizableDialog::Layout(client);
  controlTab.controlList.ChangeWidth(std::max(difference, 0));
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
  if (item.id == kTestMode) mouseTab.DrawTestButton(item, canvas);
}

std::string MainWindow::OnToolTip(std::uint32_t id) {
  if (!initComplete) return {};
  LimitTips(kTipWidth);
  return ToolTipOf(id);
}

void MainWindow::ShowWelcome() {
  session.settings.welcomeDisplay = 1;
  WelcomeDialog().DoModal(window);
}

void MainWindow::ShowDeviceWarning() {
  if (session.deviceManager->DeviceSelected()) return;
  notificationArea.ShowFromTray();
  ShowTab(kDeviceTab);
  const ByteString text = deviceTab.WarningText();
  if (!text.IsEmpty()) Box(text, "Kelvaro", platform::MB_OK);
}

}  // namespace kelvaro
