// The main window on real threads, a real timer, files and settings, made to be run under the
// thread sanitizer: a pad whose inputs come and go all the time, above all the two buttons that end
// a detection and save on the notification thread, and a person who edits meanwhile. What the locks
// of the window and the engine don't order shows up as a data race.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "app/platform/linux/settings/sqlite_registry.h"
#include "app/resources/control_ids.h"
#include "app/resources/settings_keys.h"
#include "app/window/main_window.h"
#include "foundation/registry_key.h"
#include "storage/profile_file.h"
#include "tests/app/threads/plain_window.h"
#include "tests/device/one_pad.h"
#include "tests/storage/linux/program_elsewhere.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr platform::WindowHandle kWindow = 1;
constexpr platform::WindowHandle kDialogHandle = 2;
constexpr std::uint32_t kDetectBoxes[] = {kDetectMouseX,       kDetectMouseY,
                                          kDetectMouseWheel,   kDetectLeftButton,
                                          kDetectMiddleButton, kDetectRightButton};
constexpr std::uint32_t kSliders[] = {kMovementSensitivity, kMovementDamper, kWheelDamper,
                                      kWheelSensitivity};

// One pad. Every 64 polls: at rest, button 3, buttons 3 and 5, an axis at its end.
struct BusyPad : test::OnePad {
  std::uint32_t polls = 0;

  platform::HRESULT Poll() override {
    ++polls;
    return platform::DI_OK;
  }
  platform::HRESULT GetDeviceState(std::uint32_t, platform::DIJOYSTATE2* state) override {
    *state = test::AtRest();
    const std::uint32_t phase = polls / 16 % 4;
    if (phase == 1 || phase == 2) state->rgbButtons[2] = 128;
    if (phase == 2) state->rgbButtons[4] = 128;
    if (phase == 3) state->lY = 32000;
    return platform::DI_OK;
  }
};

struct NoInput : platform::Input {
  void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override {}
  void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {}
};

struct WindowThreads : testing::Test {
  WindowThreads() : installed(Groups()) {
    std::filesystem::create_directories(program.Profiles());
    RegistryKey settings(platform::HKEY_CURRENT_USER, kProductKey, true);
    settings.SetDword(nullptr, "Welcome Display", 1);
    settings.SetDword(nullptr, "Show Auto-Detect Usage", 0);
    settings.SetString(nullptr, "Last Profile", "Game");
    for (const char* name : {"Game", "Other"}) {
      ProfileFile made;
      made.profileName = name;
      made.deviceName = "Pad";
      made.deviceGuid.Data1 = 1;
      made.pollInterval = 1;
      EXPECT_TRUE(made.Save());
    }
  }
  platform::Platform Groups() {
    platform::Platform groups = program.Groups();
    groups.devices = &pad;
    groups.input = &input;
    groups.registry = &registry;
    groups.desktop = &screen;
    groups.controls = &screen;
    groups.shell = &screen;
    return groups;
  }

  static void Pass(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

  // Runs the program until the person has done all that, and closes it.
  void Run(std::function<void()> person) {
    screen.person = std::move(person);
    MainWindow window;
    window.DoModal(platform::kNoWindow);
  }

  static std::unique_ptr<ProfileFile> Stored(const char* name) {
    auto read = std::make_unique<ProfileFile>();
    const ByteString path = read->FindProfileFile(name);
    if (path.IsEmpty() || !read->Load(path)) return nullptr;
    return read;
  }
  static std::uint32_t Kept(const char* name) {
    std::uint32_t number = 0xFFFFFFFFu;
    RegistryKey(platform::HKEY_CURRENT_USER, kProductKey, false)
        .GetDword("Devices\\Pad", name, &number);
    return number;
  }

  ProgramElsewhere program;
  BusyPad pad;
  NoInput input;
  platform::SqliteRegistry registry{{program.Folder() + "/settings.sqlite3",
                                     program.Folder() + "/machine.sqlite3",
                                     program.Folder() + "/autostart"}};
  platform::PlainWindow screen;
  platform::InstalledPlatform installed;
};

TEST_F(WindowThreads, ADetectionEndsOnTheOtherThreadWhileThePersonEditsTheTab) {
  std::uint32_t endedByButtons = 0;
  Run([&] {
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
    for (std::uint32_t i = 0; i < 36; ++i) {
      const std::uint32_t box = kDetectBoxes[i % 6];
      screen.Click(box);
      Pass(3);
      screen.MoveSlider(kSliders[i % 4], static_cast<std::int32_t>(i % 51));
      screen.Click(kMouseAlwaysActive);
      screen.Click(kTestMode);
      Pass(static_cast<int>(i * 7 % 40));
      if (screen.IsDlgButtonChecked(1, box)) {
        screen.Click(box);
      } else {
        ++endedByButtons;
      }
      screen.Pump();
    }
    Pass(200);
  });
  EXPECT_GT(endedByButtons, 0u);
  EXPECT_TRUE(screen.boxes.empty());

  // What the file says at the end is what is kept for the pad.
  const auto stored = Stored("Game");
  ASSERT_TRUE(stored);
  EXPECT_EQ(Kept("Left Mouse Btn"), std::uint16_t{stored->leftButton});
  EXPECT_EQ(Kept("Middle Mouse Btn"), std::uint16_t{stored->middleButton});
  EXPECT_EQ(Kept("Right Mouse Btn"), std::uint16_t{stored->rightButton});
  EXPECT_EQ(Kept("MouseX Type"), TriggerItem(stored->mouseX).kind);
  EXPECT_EQ(Kept("MouseY Type"), TriggerItem(stored->mouseY).kind);
  EXPECT_EQ(Kept("Mouse Wheel Type"), TriggerItem(stored->mouseWheel).kind);
  EXPECT_EQ(Kept("Sensitivity"), static_cast<std::uint32_t>(stored->movementSensitivity));
}

TEST_F(WindowThreads, ADetectionEndsWhileTheDeviceTheIntervalOrTheProfileChanges) {
  const std::function<void()> changes[] = {
      [this] { screen.Choose(kProfileList, "Other"); },
      [this] { screen.Choose(kProfileList, "Game"); },
      [this] { screen.Click(kRefreshDeviceList); },
      [this] { screen.TypeAndLeave(kInterval, "2"); },
      [this] { screen.TypeAndLeave(kRate, "999"); },
      [this] { screen.Click(kDefaultRate); },
      [this] { screen.Choose(kDeviceList, "-- None --"); },
      [this] { screen.Choose(kDeviceList, "Pad"); },
      [this] { screen.ChooseTab(kTabControl, MainWindow::kControlTab); },
  };
  Run([&] {
    std::uint32_t i = 0;
    for (int round = 0; round < 2; ++round) {
      for (const auto& change : changes) {
        screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
        const std::uint32_t box = kDetectBoxes[i % 6];
        screen.Click(box);
        Pass(static_cast<int>(i * 5 % 50));
        change();
        screen.Pump();
        if (screen.IsDlgButtonChecked(1, box)) screen.Click(box);
        ++i;
      }
    }
  });
  for (const char* name : {"Game", "Other"}) {
    const auto stored = Stored(name);
    ASSERT_TRUE(stored) << name;
    EXPECT_EQ(Bytes(stored->profileName), name);
  }
}

TEST_F(WindowThreads, TheProgramEndsInTheMiddleOfADetection) {
  for (int i = 0; i < 4; ++i) {
    Run([&] {
      screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
      screen.Click(kDetectBoxes[3]);
      Pass(i * 11);
    });
    EXPECT_TRUE(Stored("Game"));
  }
}

// What is held goes into the dialog's Trigger on one thread while OK takes it on the other;
// Controls fire and repeat while others come and go.
TEST_F(WindowThreads, ControlsAreDefinedAndDeletedWhileThePadPlays) {
  std::uint32_t i = 0;
  screen.answer = platform::IDYES;
  screen.personInDialog = [&](platform::WindowListener& dialog) {
    screen.SetDlgItemTextA(kDialogHandle, define_control::kDescriptionText, "one");
    screen.SetDlgItemTextA(kDialogHandle, define_control::kKeysText, i % 2 == 0 ? "ab" : "a<P:3>b");
    for (const std::uint32_t field : {define_control::kDelayValue, define_control::kSpeedValue})
      screen.SetDlgItemTextA(kDialogHandle, field, "10");
    screen.CheckDlgButton(kDialogHandle, define_control::kRepeatCheck, i % 3 == 0);
    screen.CheckDlgButton(kDialogHandle, define_control::kDetectTrigger, true);
    dialog.OnNotice(define_control::kDetectTrigger, platform::Notice::Clicked, 0);
    Pass(static_cast<int>(i * 7 % 50));
    dialog.OnNotice(i % 5 == 4 ? platform::IDCANCEL : platform::IDOK, platform::Notice::Clicked, 0);
  };
  std::int32_t rows = 0;
  Run([&] {
    for (; i < 60; ++i) {
      rows = screen.ListGetItemCount(kWindow, kControlList);
      if (rows > 0) screen.ListSelectItem(kWindow, kControlList, 0, true);
      screen.Click(i % 2 == 0 ? kNewControl : kEditControl);
      if (rows > 1) screen.Click(kMoveDown);
      if (i % 4 == 1) {
        screen.Click(kCopyControls);
        screen.Click(kPasteControls);
      }
      if (i % 4 == 3) screen.Click(kDeleteControls);
      Pass(static_cast<int>(i * 11 % 30));
    }
    rows = screen.ListGetItemCount(kWindow, kControlList);
  });
  const auto stored = Stored("Game");
  ASSERT_TRUE(stored);
  EXPECT_GT(rows, 0);
  EXPECT_EQ(stored->controls.count, rows);
  std::uint32_t detected = 0;
  for (const Control& control : stored->controls) {
    if (control.Weight() > 0) ++detected;
  }
  EXPECT_GT(detected, 0u);
}

}  // namespace
}  // namespace kelvaro
