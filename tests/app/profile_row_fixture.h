// The main window's row of profiles and what hangs on it: profiles put on the disk, the person's
// clicks, and what is to be seen, remembered and asked of the device.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "app/resources/control_ids.h"
#include "keys/key_action.h"
#include "tests/app/calls.h"
#include "tests/app/control_fixture.h"
#include "tests/app/main_window_fixture.h"
#include "tests/storage/chunks.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {

class ProfileRowTest : public MainWindowTest {
 protected:
  // Dialogs and controls.

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
    kelvaro::AddControl(profile, {.description = keys,
                                  .buttons = std::uint64_t{1} << (button - 1),
                                  .keys = {keys},
                                  .repeat = repeatSpeed != 0,
                                  .delay = repeatSpeed,
                                  .speed = repeatSpeed});
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
  void StoreWithPad(const char* name, const char* keys = nullptr, std::uint32_t repeatSpeed = 0) {
    Store(name, [=](ProfileFile* file) {
      SetDevice(file, "Pad", kPadGuid);
      if (keys) AddControl(file, 1, keys, repeatSpeed);
    });
  }
  // With the button of its Control held, which repeats.
  void BeginRepeating() {
    Begin();
    sim.RunFor(50);
    pad.Press({1});
    sim.RunFor(300);
    ASSERT_NE(Engine().repeatWorker.Repeating(), nullptr);
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
  Strings Profiles() { return screen.Rows(main_window::kProfileList); }
  std::string Chosen() { return screen.Chosen(main_window::kProfileList); }
  Strings Descriptions() {
    Strings texts;
    for (const Strings& row : screen.Cells(main_window::kControlList)) texts.push_back(row.at(2));
    return texts;
  }
  std::string OpenName() { return Bytes(OpenProfile().profileName); }

  bool AnyLockTaken() {
    return Device()->deviceLock.IsTaken() || Engine().mouseLock.IsTaken() ||
           OpenProfile().profileLock.IsTaken() || Engine().repeatWorker.repeatLock.IsTaken();
  }
  void ExpectBox(const std::string& text, const std::string& caption, std::uint32_t type) {
    ASSERT_TRUE(screen.BoxUp()) << "none of: " << text;
    EXPECT_EQ(screen.Box().text, text);
    EXPECT_EQ(screen.Box().caption, caption);
    EXPECT_EQ(screen.Box().type, type);
    EXPECT_EQ(screen.Box().owner, screen.WindowOf(main_window::kDialog));
    EXPECT_FALSE(AnyLockTaken()) << "while the program waits for an answer";
  }
  void ExpectBoxAndAnswer(const std::string& text, const std::string& caption, std::uint32_t type) {
    ExpectBox(text, caption, type);
    if (screen.BoxUp()) screen.Answer(platform::IDOK);
  }
  void ExpectMissingAndAnswer(const std::string& name) {
    ExpectBoxAndAnswer("Error reading profile \"" + name + "\". The file is missing.",
                       "Missing Profile Error", platform::MB_ICONEXCLAMATION);
  }
  void ExpectUnreadable(const std::string& fileName) {
    ExpectBox(
        "Error reading file \"" + PathOf(fileName) + "\". The file may be missing or corrupt.",
        "File Read Error", platform::MB_ICONEXCLAMATION);
  }
  void ExpectNoDevice() {
    EXPECT_FALSE(Device()->DeviceSelected());
    EXPECT_EQ(CurrentDeviceName(), "");
    EXPECT_EQ(CurrentDeviceGuid(), kNoGuid);
  }
  void ExpectNoProfile() {
    EXPECT_EQ(OpenName(), "");
    EXPECT_EQ(OpenProfile().controls.count, 0);
    EXPECT_EQ(OpenProfile().DispatchList.count, 0);
    EXPECT_EQ(Bytes(OpenProfile().deviceName), "");
    EXPECT_EQ(Descriptions(), Strings());
  }
  // What is in memory is what the file would give.
  void ExpectSavedAs(const std::string& fileName) {
    ProfileFile file;
    ASSERT_TRUE(file.Load(TextOf(PathOf(fileName)))) << fileName;
    ExpectSameProfile(file, OpenProfile());
  }

  void Choose(const char* name) { screen.Choose(main_window::kProfileList, name); }
  void ClickNew(const std::string& name) {
    screen.Click(main_window::kNewProfile);
    ASSERT_EQ(screen.Front(), new_profile::kDialog);
    screen.Type(new_profile::kName, name);
    screen.Click(platform::IDOK);
  }
  // Copy or rename.
  void ClickForName(std::uint32_t button, const std::string& name) {
    screen.Click(button);
    ASSERT_EQ(screen.Front(), profile_name::kDialog);
    screen.Type(profile_name::kName, name);
    screen.Click(platform::IDOK);
  }
  void ClickDelete() {
    screen.Click(main_window::kDeleteProfile);
    ASSERT_EQ(screen.Front(), delete_profile::kDialog);
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
  // Of the device, but for its polls, and what is remembered of the profile.
  Strings DeviceCalls() {
    return CallsOf(sim, {"RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Last Profile",
                         "EnumDevices", "timeKillEvent", "Unacquire", "Release", "CreateDevice",
                         "Acquire", "timeBeginPeriod", "timeSetEvent"});
  }
};

}  // namespace kelvaro
