// A real main window on a simulated machine: it runs on the user interface's thread, and a test is
// the person in front of it.
//
//   TEST_F(MainWindowTest, ThePadOfTheProfileIsInUse) {
//     Begin();
//     EXPECT_EQ(screen.Chosen(main_window::kDeviceList), kPad);
//   }
//
// Before Begin there is one pad, the profile "Game" that uses it, and settings that know of the
// welcome: such a window comes up in silence on its first tab. FirstStart, WithoutProfiles and
// others change that. When a test ends the window is closed, whatever is open in front of it, and
// must have left nothing behind.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/dialogs/help.h"
#include "app/platform/simulation/desktop_simulation.h"
#include "app/platform/simulation/screen.h"
#include "app/window/main_window.h"
#include "storage/profile_file.h"

namespace kelvaro {

class MainWindowTest : public testing::Test {
 protected:
  using Simulation = platform::simulation::DesktopSimulation;
  using Screen = platform::simulation::Screen;
  using SimulatedDevice = platform::SimulatedDevice;
  using DeviceDescription = platform::DeviceDescription;

  static constexpr char kPad[] = "Pad";
  static constexpr char kProfile[] = "Game";
  // Keys as the simulated registry spells them.
  static constexpr char kSettings[] = "HKCU\\Software\\Marnstone\\Kelvaro";
  static constexpr char kMainWindowSettings[] =
      "HKCU\\Software\\Marnstone\\Kelvaro\\Main Window Settings";
  static constexpr char kRun[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";  // of a hive

  MainWindowTest() {
    ForgetHelp();
    Preset("Welcome Display", 1);
    StoreProfile(kProfile, [this](ProfileFile& made) { UsePad(made); });
  }
  ~MainWindowTest() override { ForgetHelp(); }

  void TearDown() override {
    if (!screen.Running()) return ExpectNothingLeft();
    CloseAll();
    EXPECT_FALSE(screen.Running()) << "the window doesn't close";
    ExpectNothingLeft();
  }

  // ---- Before Begin.

  void FirstStart() { sim.Registry().RemoveKey(kSettings); }
  void WithoutProfiles() { sim.Disk().Remove("/game/Profiles"); }
  void WithoutPad() { pad.Unplug(); }

  void Preset(const std::string& name, std::uint32_t number) {
    sim.Registry().PutDword(kSettings, name, number);
  }
  void PresetText(const std::string& name, const std::string& text) {
    sim.Registry().PutString(kSettings, name, text);
  }

  // A profile on the disk, with what `fill` puts in. Its device is none unless told.
  void StoreProfile(const std::string& name,
                    const std::function<void(ProfileFile&)>& fill = nullptr) {
    ProfileFile made;
    made.profileName = TextOf(name);
    if (fill) fill(made);
    ASSERT_TRUE(made.Save()) << name;
    sim.Disk().ClearLog();
  }
  void UsePad(ProfileFile& made) const { UseDevice(made, pad); }
  static void UseDevice(ProfileFile& made, const SimulatedDevice& device) {
    made.deviceName = TextOf(device.Description().name);
    made.deviceGuid = device.Description().guid;
  }
  // A file in the profiles' folder, of any content.
  void PutProfileFile(const std::string& fileName, const std::string& bytes) {
    sim.Disk().PutFile("/game/Profiles/" + fileName, bytes);
  }

  // Another device; its identity is made from its name.
  SimulatedDevice& AddPad(const std::string& name) {
    DeviceDescription description;
    description.name = name;
    for (const char c : name)
      description.guid.Data1 = description.guid.Data1 * 31 + static_cast<std::uint8_t>(c);
    return sim.AddDevice(description);
  }

  // ---- The program.

  // Runs it until it waits for the person. A second program may begin when the first has ended.
  void Begin() {
    screen.Start([this] {
      const Pointed made(&window);
      return made.program->DoModal(platform::kNoWindow);
    });
  }

  void Post(std::uint32_t message, std::uintptr_t wParam = 0, std::intptr_t lParam = 0) {
    platform::desktop().PostMessageA(window->window, message, wParam, lParam);
    screen.Settle();
  }

  // Closes whatever is in front, until the program has ended.
  void CloseAll() {
    for (int i = 0; i < 50 && screen.Running(); ++i) {
      if (screen.BoxUp()) {
        const bool asks = (screen.Box().type & 0xF) == platform::MB_YESNO;
        screen.Answer(asks ? platform::IDNO : platform::IDOK);
      } else if (screen.MenuUp()) {
        screen.DismissMenu();
      } else if (screen.Shown()) {
        screen.Close();
      } else {
        Post(WM_CLOSE_PROGRAM);
      }
    }
  }

  void ExpectNothingLeft() {
    EXPECT_EQ(sim.LivingThreads(), 0u);
    EXPECT_EQ(sim.OpenHandles(), 0u);
    EXPECT_EQ(sim.OpenDeviceObjects(), 0u);
    EXPECT_EQ(sim.OpenTimerPeriods(), 0u);
    EXPECT_EQ(sim.Registry().OpenHandles(), 0u);
    EXPECT_EQ(sim.Disk().OpenHandles(), 0u);
    EXPECT_FALSE(screen.IconShown());
  }

  // ---- What is stored now.

  std::optional<std::uint32_t> Number(const std::string& name) {
    return sim.Registry().Number(kSettings, name);
  }
  std::optional<std::string> SettingText(const std::string& name) {
    return sim.Registry().Text(kSettings, name);
  }
  // A profile as it lies on the disk; null when there is none of that name, or it can't be read.
  static std::unique_ptr<ProfileFile> Stored(const std::string& name) {
    auto read = std::make_unique<ProfileFile>();
    const ByteString path = read->FindProfileFile(TextOf(name));
    if (path.IsEmpty() || !read->Load(path)) return nullptr;
    return read;
  }

  // ---- The window and its members, from Begin until the program has ended.

  MainWindow* Window() const { return window; }
  platform::WindowHandle Handle() const { return window->window; }
  ProfileFile& OpenProfile() { return window->profile; }
  ControlEngine& Engine() { return *window->engine; }
  DeviceManager* Device() { return window->deviceManager.get(); }
  DefineControlDialog& DefineControl() { return window->defineControl; }
  ResizeListCtrl& ControlListCtrl() { return window->controlList; }
  LinkedList<Control>& CopiedControls() { return window->copiedControls; }
  std::uint16_t CurrentTab() const { return window->currentTab; }
  std::uint32_t& InitGuard() { return window->initGuard; }
  std::uint32_t& DefaultInterval() { return window->pollInterval; }
  std::string CurrentDeviceName() const { return Bytes(window->currentDeviceName); }
  platform::GUID CurrentDeviceGuid() const { return window->currentDeviceGuid; }
  std::string LastProfile() const { return Bytes(window->lastProfile); }
  bool& ShowAutoDetectUsage() { return window->showAutoDetectUsage; }
  bool& StartMinimized() { return window->startMinimized; }
  bool& SmartCheck() { return window->smartCheck; }
  bool& ShiftReminder() { return window->shiftReminder; }
  bool& NoDeviceErrorMsg() { return window->noDeviceErrorMsg; }
  bool& AutodetectDevicePlugin() { return window->autodetectDevicePlugin; }
  std::uint32_t& WelcomeDisplay() { return window->welcomeDisplay; }
  bool& InPluginPoll() { return window->inPluginPoll; }
  bool& TrayMenuOpen() { return window->trayMenuOpen; }
  bool InitComplete() const { return window->initComplete; }
  bool ShuttingDown() const { return window->shuttingDown; }
  bool HelpAvailable() const { return window->helpAvailable; }
  bool CommandLineProfileSelected() const { return window->commandLineProfileSelected; }
  const LinkedList<ByteString>& ExtraProfiles() const { return window->extraProfiles; }
  std::string LaunchTarget() const { return Bytes(window->launchTarget); }
  std::string LaunchArgs() const { return Bytes(window->launchArgs); }
  std::string LaunchDir() const { return Bytes(window->launchDir); }
  std::string QuoteChars() const {
    const kelvaro::QuoteChars& chars = window->quoteChars;
    return {chars.quoteSub, chars.leftArgQuote, chars.rightArgQuote};
  }
  std::uint8_t& RowPrefixes() { return window->rowPrefixes; }
  platform::Rect ClientRect() const { return window->clientRect; }

  // ---- Operations that nothing on the screen leads to. On the test's own thread, so not those
  // that wait for the person.

  std::string ToolTip(std::uint32_t id) { return window->OnToolTip(id); }
  // As a box that comes up can do to a field.
  void LoseFocus(std::uint32_t id) { window->OnNotice(id, platform::Notice::FocusLost, 0); }
  std::uint32_t SelectedControlId() const { return window->SelectedControlId(); }
  std::int32_t SelectedRow() const { return window->SelectedRow(); }
  bool LoadAppSettings() { return window->LoadAppSettings(); }
  static std::intptr_t MinimiseHook(std::int32_t code, std::uintptr_t wParam,
                                    std::intptr_t lParam) {
    return MainWindow::MinimiseHook(code, wParam, lParam);
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  SimulatedDevice& pad = sim.AddDevice({});

 private:
  // A window that `pointer` points to for as long as it lives.
  struct Pointed {
    explicit Pointed(MainWindow** pointer)
        : pointer(pointer), program(std::make_unique<MainWindow>()) {
      *pointer = program.get();
    }
    ~Pointed() {
      program.reset();
      *pointer = nullptr;
    }
    MainWindow** const pointer;
    std::unique_ptr<MainWindow> program;
  };

  MainWindow* window = nullptr;
};

}  // namespace kelvaro
