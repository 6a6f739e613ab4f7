// The main window's row of profiles and what hangs on it: profiles put on the disk, the person's
// clicks, and what is to be seen, remembered and asked of the device.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "keys/key_action.h"
#include "tests/app/main_window_fixture.h"
#include "tests/storage/chunks.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {

class ProfileRowTest : public MainWindowTest {
 protected:
  using Strings = std::vector<std::string>;

  // Dialogs and controls.
  static constexpr std::uint32_t kMainWindow = 102;
  static constexpr std::uint32_t kNewProfileDialog = 137;
  static constexpr std::uint32_t kDeleteProfileDialog = 138;
  static constexpr std::uint32_t kProfileNameDialog = 147;
  static constexpr std::uint32_t kTabs = 1000;
  static constexpr std::uint32_t kProfileList = 1001;
  static constexpr std::uint32_t kControlList = 1003;
  static constexpr std::uint32_t kNew = 1006;
  static constexpr std::uint32_t kDelete = 1099;
  static constexpr std::uint32_t kRename = 1100;
  static constexpr std::uint32_t kCopy = 1101;
  static constexpr std::uint32_t kNameEdit = 1137;
  static constexpr std::uint32_t kDeleteName = 1138;
  static constexpr std::uint32_t kNameLine = 1157;
  static constexpr std::uint32_t kDeviceList = 1060;
  static constexpr std::uint32_t kNumButtons = 1063;
  static constexpr std::uint32_t kRefresh = 1170;

  static constexpr char kNone[] = "-- None --";

  static constexpr platform::GUID kPadGuid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  static constexpr platform::GUID kStickGuid{0xA1, 0xB2, 0xC3, {1, 1, 2, 3, 5, 8, 13, 21}};
  static constexpr platform::GUID kNoGuid{};

  static constexpr char kNoDeviceText[] =
      "No device has been selected for this profile.\n\n"
      "Please select a device before configuring control parameters.";

  ProfileRowTest() { WithoutProfiles(); }

  // What the warning says.
  static std::string PadMissingText(const std::string& name) {
    return "The device \"" + name +
           "\" could not be selected.\n\n"
           "If this is not the device you wish to associate with this profile, please select one "
           "from the device list.\n"
           "Otherwise, make sure your device is plugged in, powered on, etc., and press "
           "\"Refresh Device List\" to\n"
           "automatically select it.";
  }

  // A Control that a press of `button` fires.
  static void AddControl(ProfileFile* profile, std::uint32_t button, const char* keys,
                         std::uint32_t repeatSpeed = 0) {
    Control control;
    control.actionsBorrowed = 1;  // the one in the list owns the action
    control.controlId = profile->nextControlId++;
    control.description = keys;
    control.SetButtonMask(std::uint64_t{1} << (button - 1));
    control.repeatEnabled = repeatSpeed != 0;
    control.repeatDelay = repeatSpeed;
    control.repeatSpeed = repeatSpeed;
    auto* const action = new KeyAction;
    EXPECT_EQ(action->ParseKeys(keys), KeyAction::kParsed);
    control.actions.AddTail(action);
    profile->controls.AddTail(control);
  }

  static void SetDevice(ProfileFile* profile, const char* name, const platform::GUID& guid,
                        std::uint32_t interval = 5) {
    profile->deviceName = name;
    profile->deviceGuid = guid;
    profile->pollInterval = interval;
  }

  platform::simulation::VirtualDisk& Disk() { return sim.Disk(); }

  platform::SimulatedDevice& AddStick() { return sim.AddDevice({"Stick", kStickGuid}); }

  // Profiles on disk, written as by another program.
  void Store(const char* name, const std::function<void(ProfileFile*)>& fill = {}) {
    ProfileFile file;
    file.profileName = name;
    if (fill) fill(&file);
    ASSERT_TRUE(file.Save()) << name;
  }
  void StoreWithPad(const char* name, const char* keys = nullptr) {
    Store(name, [keys](ProfileFile* file) {
      SetDevice(file, "Pad", kPadGuid);
      if (keys) AddControl(file, 1, keys);
    });
  }
  // A file with a name that can be read and a Control that can't: its timings are cut short.
  static std::string DamagedProfile(const std::string& name) {
    const std::string control = List(5, {Field("half read"), Field(Big(1, 4)), Field(Big(0, 1)),
                                         List(14, {Field(std::string(16, '\0'))})});
    return ProfileBytes({List(1, {Field("EventProfile")}), List(2, {Field("\x01")}),
                         List(3, {Field(name), Field(Big(2, 4))}), List(4, {control})});
  }
  static std::string PathOf(const std::string& fileName) { return "/game/Profiles/" + fileName; }
  Strings Files() { return Disk().List("/game/Profiles"); }
  std::string BytesOf(const std::string& fileName) {
    return Disk().FileBytes(PathOf(fileName)).value_or("(no file)");
  }

  std::string Remembered() { return SettingText("Last Profile").value_or("(nothing)"); }
  Strings Profiles() { return screen.Rows(kProfileList); }
  std::string Chosen() { return screen.Chosen(kProfileList); }
  Strings Descriptions() {
    Strings texts;
    for (const Strings& row : screen.Cells(kControlList)) texts.push_back(row.at(2));
    return texts;
  }
  std::string OpenName() { return Str(OpenProfile().profileName); }

  bool AnyLockTaken() {
    return Device()->deviceLock.IsTaken() || Engine().mouseLock.IsTaken() ||
           OpenProfile().profileLock.IsTaken() || Engine().repeatWorker.repeatLock.IsTaken();
  }
  void ExpectBox(const std::string& text, const std::string& caption, std::uint32_t type) {
    ASSERT_TRUE(screen.BoxUp()) << "none of: " << text;
    EXPECT_EQ(screen.Box().text, text);
    EXPECT_EQ(screen.Box().caption, caption);
    EXPECT_EQ(screen.Box().type, type);
    EXPECT_EQ(screen.Box().owner, screen.WindowOf(kMainWindow));
    EXPECT_FALSE(AnyLockTaken()) << "while the program waits for an answer";
  }
  void ExpectBoxAndAnswer(const std::string& text, const std::string& caption, std::uint32_t type) {
    ExpectBox(text, caption, type);
    if (screen.BoxUp()) screen.Answer(platform::IDOK);
  }
  void ExpectNoProfile() {
    EXPECT_EQ(OpenName(), "");
    EXPECT_EQ(OpenProfile().controls.count, 0);
    EXPECT_EQ(OpenProfile().DispatchList.count, 0);
    EXPECT_EQ(Str(OpenProfile().deviceName), "");
    EXPECT_EQ(Descriptions(), Strings());
  }
  // What is in memory is what the file would give.
  void ExpectSavedAs(const std::string& fileName) {
    ProfileFile file;
    ASSERT_TRUE(file.Load(Bytes(PathOf(fileName)))) << fileName;
    ExpectSameProfile(file, OpenProfile());
  }

  void Choose(const char* name) { screen.Choose(kProfileList, name); }
  void ClickNew(const std::string& name) {
    screen.Click(kNew);
    ASSERT_EQ(screen.Front(), kNewProfileDialog);
    screen.Type(kNameEdit, name);
    screen.Click(platform::IDOK);
  }
  // Copy or rename.
  void ClickForName(std::uint32_t button, const std::string& name) {
    screen.Click(button);
    ASSERT_EQ(screen.Front(), kProfileNameDialog);
    screen.Type(kNameEdit, name);
    screen.Click(platform::IDOK);
  }
  void ClickDelete() {
    screen.Click(kDelete);
    ASSERT_EQ(screen.Front(), kDeleteProfileDialog);
    screen.Click(platform::IDOK);
  }

  // The keys that went down since the last call, as letters.
  std::string KeysPressed() {
    std::string keys;
    for (const auto& event : sim.Events()) {
      if (event.kind != platform::simulation::SentEvent::Kind::Key) continue;
      if ((event.flags & 2) == 0) keys += static_cast<char>(event.vk);
    }
    sim.ClearEvents();
    return keys;
  }
  // Those of the calls since they were last cleared, in order.
  Strings CallsAmong(const std::vector<std::string>& beginnings) {
    Strings found;
    for (const std::string& call : sim.Calls()) {
      for (const std::string& beginning : beginnings) {
        if (call.compare(0, beginning.size(), beginning) == 0) {
          found.push_back(call);
          break;
        }
      }
    }
    return found;
  }
  // Of the device, but for its polls, and what is remembered of the profile.
  Strings DeviceCalls() {
    return CallsAmong({"RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Last Profile",
                       "EnumDevices", "timeKillEvent", "Unacquire", "Release", "CreateDevice",
                       "Acquire", "timeBeginPeriod", "timeSetEvent"});
  }
};

}  // namespace kelvaro
