#include "tests/program/looks/stage.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPalette>
#include <QTimer>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "app/dialogs/small_dialogs.h"
#include "app/resources/control_ids.h"
#include "app/window/main_window.h"
#include "keys/key_action.h"
#include "storage/profile_file.h"

namespace kelvaro::looks {
namespace {

constexpr int kPatience = 4000;  // ms

platform::Recording ExamplePad() {
  platform::Recording recording;
  recording.device.name = "Recorded Pad";
  recording.device.buttons = 10;
  return recording;
}

struct Example {
  const char* description;
  std::uint64_t buttons;
  std::vector<TriggerItem> items;
  const char* keys;
};

void Add(ProfileFile* profile, const Example& example) {
  profile->controls.AddTail(Control());
  Control& control = *profile->controls.tail->value;
  control.controlId = profile->nextControlId++;
  control.description = example.description;
  control.SetButtonMask(example.buttons);
  for (const TriggerItem& item : example.items) control.triggerItems.AddTail(item);
  if (*example.keys) {
    auto action = std::make_unique<KeyAction>();
    action->ParseKeys(example.keys);
    control.actions.AddTail(action.release());
  } else {
    control.toggleMouseControls = 1;
  }
}

void StoreExamples() {
  const platform::DeviceDescription device = ExamplePad().device;
  for (const char* name : {"Driving", "First Person"}) {
    ProfileFile other;
    other.profileName = name;
    other.Save();
  }
  ProfileFile made;
  made.profileName = kProfile;
  made.deviceName = device.name.c_str();
  made.deviceGuid = device.guid;
  made.movementSensitivity = 10;
  made.movementDamper = 15;
  made.mouseX = TriggerItem{3, 0, 12};
  made.mouseY = TriggerItem{4, 0, 16};
  made.leftButton = 6;
  made.leftMask = 0x40;
  const Example examples[] = {
      {"Walk left", 0, {{0, 0, 1}}, "<Left>"},
      {"Walk right", 0, {{0, 0, 2}}, "<Right>"},
      {"Climb", 0, {{8, 0, 2}}, "<Up>"},
      {"Duck", 0, {{8, 0, 8}}, "<Down>"},
      {"Jump", 0x1, {}, "<Space>"},
      {"Run", 0x2, {}, "<LShift>"},
      {"Long jump: run and jump together", 0x3, {}, "<LShift><Space>"},
      {"Throw, again and again", 0x4, {}, "x"},
      {"Save the game", 0x80, {}, "<F5><P:200>y"},
      {"Right stick moves the pointer, on and off", 0x20, {}, ""},
  };
  for (const Example& example : examples) Add(&made, example);
  made.Save();
}

}  // namespace

platform::Platform Stage::Groups() {
  platform::Platform groups = system.Groups();
  groups.devices = &pad;
  groups.files = &disk;
  groups.registry = &registry;
  groups.input = &input;
  groups.desktop = &qt.Desktop();
  groups.controls = &qt.Controls();
  groups.shell = &shell;
  return groups;
}

Stage::Stage(platform::Input* sink)
    : pad(ExamplePad(), *system.Groups().clock),
      input(sink ? *sink : nowhere),
      installed(Groups()) {
  registry.PutDword(kSettings, "Welcome Display", 1);
  registry.PutString(kSettings, "Last Profile", kProfile);
  StoreExamples();
}

void Stage::AddControls(int count) {
  ProfileFile made;
  made.Load(made.FindProfileFile(kProfile));
  for (int i = 0; i < count; ++i) {
    const std::string description = "Spell " + std::to_string(i + 1) + " of the book";
    const std::string keys = "<Ctrl>" + std::to_string(i % 10) + "<P:50>" + std::to_string(i / 10);
    const std::uint64_t buttons = 1ull << i % 10 | 1ull << i / 20 % 10;
    Add(&made, {description.c_str(), buttons, {}, keys.c_str()});
  }
  made.Save();
}

bool Stage::OpenWith(const std::function<void()>& run,
                     const std::function<void(DialogWindow&)>& script) {
  bool cameUp = false;
  QElapsedTimer waited;
  waited.start();
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    DialogWindow* const window = Front();
    if (!window && waited.elapsed() < kPatience) return;
    look.stop();
    if (!window) return qt.Desktop().CloseAll();
    window->activateWindow();
    Settle();
    cameUp = true;
    script(*window);
    window->Close();
  });
  look.start(10);
  run();
  return cameUp;
}

bool Stage::Open(std::uint32_t dialog, const std::function<void(DialogWindow&)>& script) {
  const std::map<std::uint32_t, std::function<void()>> dialogs = {
      {main_window::kDialog, [] { MainWindow().DoModal(platform::kNoWindow); }},
      {define_control::kDialog,
       [] {
         DefineControlDialog window;
         window.scratch.description = "Jump";
         window.scratch.SetButtonMask(1);
         window.DoModal(platform::kNoWindow);
       }},
      {new_profile::kDialog, [] { NewProfileDialog().DoModal(platform::kNoWindow); }},
      {delete_profile::kDialog, [] { DeleteProfileDialog(kProfile).DoModal(platform::kNoWindow); }},
      {profile_name::kDialog,
       [] {
         ProfileNameDialog("Rename Profile", "Rename", kProfile).DoModal(platform::kNoWindow);
       }},
      {shift_key_required::kDialog, [] { ShiftKeyRequiredDialog().DoModal(platform::kNoWindow); }},
      {advanced_settings::kDialog,
       [] { AdvancedSettingsDialog(false).DoModal(platform::kNoWindow); }},
      {welcome::kDialog, [] { WelcomeDialog().DoModal(platform::kNoWindow); }},
      {auto_detect_mode::kDialog, [] { AutoDetectModeDialog().DoModal(platform::kNoWindow); }},
  };
  const auto found = dialogs.find(dialog);
  return found != dialogs.end() && OpenWith(found->second, script);
}

void Stage::WhenUp(const std::string& title, std::function<void(QWidget&)> act) {
  auto* const look = new QTimer(&qt.Desktop());
  const QString wanted = QString::fromStdString(title);
  QObject::connect(look, &QTimer::timeout, look, [look, wanted, act = std::move(act)] {
    QWidget* const window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || window->windowTitle() != wanted) return;
    look->stop();
    look->deleteLater();
    Settle();
    act(*window);
    window->close();
  });
  look->start(10);
}

DialogWindow* Stage::Front() {
  DialogWindow* front = nullptr;
  for (const platform::TopLevelWindow& window : qt.Desktop().Windows().TopLevelWindows()) {
    if (window.visible) front = qt.Desktop().Windows().Find(window.window);
  }
  return front;
}

void Stage::Settle(int ms) {
  QEventLoop loop;
  QTimer::singleShot(ms, &loop, &QEventLoop::quit);
  loop.exec();
}

QPalette DarkPalette() {
  QPalette palette(QColor(0x2d, 0x2d, 0x30), QColor(0x2d, 0x2d, 0x30));
  palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
  palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x25, 0x26));
  palette.setColor(QPalette::Highlight, QColor(0x26, 0x6f, 0xb5));
  return palette;
}

QPalette LightPalette() { return QPalette(QColor(0xef, 0xef, 0xef), QColor(0xef, 0xef, 0xef)); }

}  // namespace kelvaro::looks
