// The main window on real threads, a real timer, files and settings, made to be run under the
// thread sanitizer: a pad whose inputs come and go all the time, above all the two buttons that end
// a detection and save on the notification thread, and a person who edits meanwhile. What the locks
// of the window and the engine don't order shows up as a data race.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "app/platform/linux/settings/sqlite_registry.h"
#include "app/platform/qt/qt_platform.h"
#include "app/program/no_input.h"
#include "app/resources/control_ids.h"
#include "app/resources/settings_keys.h"
#include "app/window/main_window.h"
#include "foundation/registry_key.h"
#include "storage/profile_file.h"
#include "tests/app/threads/handed_over_qt.h"
#include "tests/device/one_pad.h"
#include "tests/storage/linux/program_elsewhere.h"

// Qt, which the sanitizer can't see into, fills large areas on threads of its own.
extern "C" const char* __tsan_default_suppressions() {
  return "called_from_lib:libQt6Core.so\ncalled_from_lib:libQt6Gui.so\n";
}

namespace kelvaro {
namespace {

using namespace main_window;

constexpr std::uint32_t kDetectBoxes[] = {kDetectMouseX,       kDetectMouseY,
                                          kDetectMouseWheel,   kDetectLeftButton,
                                          kDetectMiddleButton, kDetectRightButton};
// So often at most a person does something again until the pad has come in between, which a busy
// machine keeps it from.
constexpr std::uint32_t kMostRounds = 5000;
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

struct Shell final : platform::qt::QtShell {
  using QtShell::QtShell;
  std::string GetCommandLineA(char) override { return "kelvaro"; }
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
    groups.desktop = &desktop;
    groups.controls = &controls;
    groups.shell = &shell;
    return groups;
  }

  // Runs the program until the person has done all that, and closes it.
  void Run(std::function<void()> person) {
    desktop.inWindow = std::move(person);
    MainWindow window;
    window.DoModal(platform::kNoWindow);
  }

  // The person's acts, in the window in front.

  void Pass(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    others.LetIn();
    QCoreApplication::processEvents();
  }
  void Notify(std::uint32_t id, platform::Notice notice, std::int32_t value = 0) {
    desktop.Windows().Find(desktop.Front())->SendNotice(id, notice, value);
  }
  bool Checked(std::uint32_t id) { return controls.IsDlgButtonChecked(desktop.Front(), id); }
  void Check(std::uint32_t id, bool checked) {
    controls.CheckDlgButton(desktop.Front(), id, checked);
  }
  void Click(std::uint32_t button) { Notify(button, platform::Notice::Clicked); }
  void ClickBox(std::uint32_t id) {
    Check(id, !Checked(id));
    Click(id);
  }
  void Choose(std::uint32_t id, const std::string& text) {
    const std::int32_t row = controls.ComboFindStringExact(desktop.Front(), id, text);
    if (row == platform::kNoRow) return;
    controls.ComboSetCurSel(desktop.Front(), id, row);
    Notify(id, platform::Notice::SelectionChanged, row);
  }
  void ChooseTab(std::int32_t tab) {
    controls.TabSetCurSel(desktop.Front(), kTabControl, tab);
    Notify(kTabControl, platform::Notice::SelectionChanged, tab);
  }
  void MoveSlider(std::uint32_t id, std::int32_t position) {
    controls.SliderSetPos(desktop.Front(), id, position);
    Notify(id, platform::Notice::Scrolled, position);
  }
  void Type(std::uint32_t id, const std::string& text) {
    controls.SetDlgItemTextA(desktop.Front(), id, text);
  }
  void TypeAndLeave(std::uint32_t id, const std::string& text) {
    Type(id, text);
    Notify(id, platform::Notice::FocusLost);
  }
  std::int32_t Rows() { return controls.ListGetItemCount(desktop.Front(), kControlList); }

  static std::unique_ptr<ProfileFile> Stored(const char* name) {
    auto read = std::make_unique<ProfileFile>();
    const ByteString path = read->FindProfileFile(name);
    if (path.IsEmpty() || !read->Load(path)) return nullptr;
    return read;
  }
  // Controls of that profile that have one.
  static std::uint32_t Triggers(const char* name) {
    std::uint32_t count = 0;
    if (const auto stored = Stored(name))
      for (const Control& control : stored->controls)
        if (control.Weight() > 0) ++count;
    return count;
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
  platform::qt::QtPlatform pictures;
  platform::qt::HandedOver others;
  platform::qt::HandedOverDesktop desktop{others};
  platform::qt::HandedOverControls controls{desktop.Windows(), others};
  Shell shell{desktop};
  platform::InstalledPlatform installed;
};

TEST_F(WindowThreads, ADetectionEndsOnTheOtherThreadWhileThePersonEditsTheTab) {
  std::uint32_t endedByButtons = 0;
  Run([&] {
    ChooseTab(MainWindow::kMouseTab);
    for (std::uint32_t i = 0; i < 36 || (endedByButtons == 0 && i < kMostRounds); ++i) {
      const std::uint32_t box = kDetectBoxes[i % 6];
      ClickBox(box);
      Pass(3);
      MoveSlider(kSliders[i % 4], static_cast<std::int32_t>(i % 51));
      ClickBox(kMouseAlwaysActive);
      Click(kTestMode);
      Pass(static_cast<int>(i * 7 % 40));
      if (Checked(box)) {
        ClickBox(box);
      } else {
        ++endedByButtons;
      }
    }
    Pass(200);
  });
  EXPECT_GT(endedByButtons, 0u);
  EXPECT_TRUE(desktop.boxes.empty());

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
      [this] { Choose(kProfileList, "Other"); },      [this] { Choose(kProfileList, "Game"); },
      [this] { Click(kRefreshDeviceList); },          [this] { TypeAndLeave(kInterval, "2"); },
      [this] { TypeAndLeave(kRate, "999"); },         [this] { Click(kDefaultRate); },
      [this] { Choose(kDeviceList, "-- None --"); },  [this] { Choose(kDeviceList, "Pad"); },
      [this] { ChooseTab(MainWindow::kControlTab); },
  };
  Run([&] {
    std::uint32_t i = 0;
    for (int round = 0; round < 2; ++round) {
      for (const auto& change : changes) {
        ChooseTab(MainWindow::kMouseTab);
        const std::uint32_t box = kDetectBoxes[i % 6];
        ClickBox(box);
        Pass(static_cast<int>(i * 5 % 50));
        change();
        if (Checked(box)) ClickBox(box);
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
      ChooseTab(MainWindow::kMouseTab);
      ClickBox(kDetectBoxes[3]);
      Pass(i * 11);
    });
    EXPECT_TRUE(Stored("Game"));
  }
}

// What is held goes into the dialog's Trigger on one thread while OK takes it on the other;
// Controls fire and repeat while others come and go.
TEST_F(WindowThreads, ControlsAreDefinedAndDeletedWhileThePadPlays) {
  std::uint32_t i = 0;
  desktop.answer = platform::IDYES;
  desktop.inDialog = [&] {
    Type(define_control::kDescriptionText, "one");
    Type(define_control::kKeysText, i % 2 == 0 ? "ab" : "a<P:3>b");
    for (const std::uint32_t field : {define_control::kDelayValue, define_control::kSpeedValue})
      Type(field, "10");
    Check(define_control::kRepeatCheck, i % 3 == 0);
    Check(define_control::kDetectTrigger, true);
    Click(define_control::kDetectTrigger);
    Pass(static_cast<int>(i * 7 % 50));
    Click(i % 5 == 4 ? platform::IDCANCEL : platform::IDOK);
  };
  std::int32_t rows = 0;
  Run([&] {
    for (; i < 60 || (Triggers("Game") == 0 && i < kMostRounds); ++i) {
      rows = Rows();
      if (rows > 0) controls.ListSelectItem(desktop.Front(), kControlList, 0, true);
      Click(i % 2 == 0 ? kNewControl : kEditControl);
      if (rows > 1) Click(kMoveDown);
      if (i % 4 == 1) {
        Click(kCopyControls);
        Click(kPasteControls);
      }
      if (i % 4 == 3) Click(kDeleteControls);
      Pass(static_cast<int>(i * 11 % 30));
    }
    rows = Rows();
  });
  const auto stored = Stored("Game");
  ASSERT_TRUE(stored);
  EXPECT_GT(rows, 0);
  EXPECT_EQ(stored->controls.count, rows);
  EXPECT_GT(Triggers("Game"), 0u);
}

}  // namespace
}  // namespace kelvaro
