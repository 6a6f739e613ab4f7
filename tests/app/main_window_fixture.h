// A real main window on Qt, off the screen, in the time of a simulated machine with its devices,
// files and settings: it runs on the user interface's thread, and a test is the person in front of
// it.
//
//   TEST_F(MainWindowTest, ThePadOfTheProfileIsInUse) {
//     Begin();
//     EXPECT_EQ(screen.Chosen(main_window::kDeviceList), kPad);
//   }
//
// Before Begin there is one pad, the profile "Game" that uses it, and settings that know of the
// welcome: such a window comes up without a word, on its first tab. FirstStart, WithoutProfiles and
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
#include "app/window/main_window.h"
#include "storage/profile_file.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"

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

  // ---- The window and what runs in it, from Begin until the program has ended.

  MainWindow* Window() const { return window; }
  platform::WindowHandle Handle() const { return window->window; }
  AppSettings& Settings() { return window->session.settings; }
  std::uint16_t CurrentTab() const { return window->session.currentTab; }
  ProfileFile& OpenProfile() { return window->session.profile; }
  ControlEngine& Engine() { return *window->session.engine; }
  DeviceManager* Device() { return window->session.deviceManager; }
  DefineControlDialog& DefineControl() { return window->controlTab.defineControl; }
  std::string CurrentDeviceName() const { return Bytes(window->session.currentDeviceName); }
  platform::GUID CurrentDeviceGuid() const { return window->session.currentDeviceGuid; }

  // An event of the window that nothing on the screen leads to now. On the test's own thread, so
  // not one that waits for the person.
  void Notify(std::uint32_t id, platform::Notice notice) {
    static_cast<platform::WindowListener&>(*window).OnNotice(id, notice, 0);
  }
  std::string ToolTip(std::uint32_t id) {
    return static_cast<platform::WindowListener&>(*window).OnToolTip(id);
  }
  // As a box that comes up can do to a field.
  void LoseFocus(std::uint32_t id) { Notify(id, platform::Notice::FocusLost); }
  // What another thread may do; the focus stays.
  void PutText(std::uint32_t id, const std::string& text) {
    platform::controls().SetDlgItemTextA(Handle(), id, text);
    screen.Settle();
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
