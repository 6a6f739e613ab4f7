// The real dialogs on Qt, with a recorded pad and everything that is stored in memory: what the
// tests of the looks and the photographs stand on. Real threads, a real clock; nothing that is sent
// leaves. The user interface's thread alone.
#pragma once

#include <QPalette>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <string>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/platform.h"
#include "app/platform/qt/dialog_window.h"
#include "app/platform/qt/qt_platform.h"
#include "app/platform/recording/recorded_devices.h"
#include "app/platform/recording/simulated_device.h"
#include "app/platform/simulation/virtual_disk.h"
#include "app/platform/simulation/virtual_registry.h"
#include "app/program/no_input.h"

namespace kelvaro::looks {

using platform::qt::DialogWindow;

constexpr char kProfile[] = "Platformer";
constexpr char kSettings[] = "HKCU\\Software\\Marnstone\\Kelvaro";

// No arguments, no sound, and nothing is opened; topics of the help are written down.
class QuietShell final : public platform::Shell {
 public:
  std::intptr_t ShellExecuteA(const std::string&) override { return 0; }
  bool MessageBeep(std::uint32_t) override { return true; }
  platform::LibraryHandle LoadLibraryA(const std::string&) override { return 1; }
  platform::HtmlHelpFunction GetHelpFunction(platform::LibraryHandle, std::uint32_t) override {
    return &HtmlHelp;
  }
  static inline std::string topic;  // the last one
  std::string GetCommandLineA(char) override { return "kelvaro"; }
  bool ChooseFile(platform::WindowHandle, const std::string&, bool, const std::string&,
                  std::string*) override {
    return false;
  }
  bool ChooseFolder(platform::WindowHandle, const std::string&, const std::string&,
                    std::string*) override {
    return false;
  }

 private:
  static std::uintptr_t HtmlHelp(platform::WindowHandle, const char*, std::uint32_t command,
                                 std::uintptr_t data) {
    if (command == platform::HH_DISPLAY_TOPIC) topic = reinterpret_cast<const char*>(data);
    return 1;
  }
};

class Stage {
 public:
  // With the profile kProfile and two shorter ones, and settings that know of the welcome. What is
  // sent goes to `sink`, which is borrowed, or nowhere.
  explicit Stage(platform::Input* sink = nullptr);
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  // Further Controls for the profile, to be added before the main window opens.
  static void AddControls(int count);

  // Runs the real dialog of that number with example content. `script` is called when it is up;
  // the dialog is closed after it, and the result is whether it came up.
  bool Open(std::uint32_t dialog, const std::function<void(DialogWindow&)>& script);
  // The same for another dialog, which `run` runs.
  bool OpenWith(const std::function<void()>& run, const std::function<void(DialogWindow&)>& script);
  // Calls `act` once a window of that title has come up in front, within whatever loop runs then,
  // and closes it.
  void WhenUp(const std::string& title, std::function<void(QWidget&)> act);

  platform::qt::QtPlatform& Qt() { return qt; }
  platform::SimulatedDevice& Pad() { return pad.Device(); }
  platform::simulation::VirtualDisk& Disk() { return disk; }

  // The newest window that is seen; null for none.
  DialogWindow* Front();
  static void Settle(int ms = 40);

 private:
  platform::LinuxPlatform system;
  platform::simulation::VirtualDisk disk;
  platform::simulation::VirtualRegistry registry;
  platform::RecordedDevices pad;
  platform::qt::QtPlatform qt;
  QuietShell shell;
  NoInput nowhere;
  platform::Input& input;
  platform::InstalledPlatform installed;

  platform::Platform Groups();
};

// Dark colours, as a desktop may have them.
QPalette DarkPalette();
QPalette LightPalette();

}  // namespace kelvaro::looks
