// Choosing a profile, by the person or by the program: what is shown and remembered, what ends with
// the one before, and what a file costs that can't be read.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/platform.h"
#include "app/resources/control_ids.h"
#include "tests/app/profile_row_fixture.h"
#include "tests/platform/forwarded_registry.h"
#include "tests/platform/watched_files.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::IDOK;
using platform::MB_ICONEXCLAMATION;

// Takes its time over each value that is written.
class SlowRegistry final : public ForwardedRegistry {
 public:
  SlowRegistry(const platform::Platform& groups, std::uint32_t ms)
      : ForwardedRegistry(groups), ms(ms) {}

  std::uint32_t RegSetValueExA(platform::HKEY key, const std::string& name, std::uint32_t type,
                               const void* data, std::uint32_t size) override {
    platform::clock().Sleep(ms);
    return ForwardedRegistry::RegSetValueExA(key, name, type, data, size);
  }

 private:
  const std::uint32_t ms;
};

// Looks on at each timer that is set.
class WatchedTimers final : public platform::Timers {
 public:
  // Installs itself, for its life, in the place of the timers among these.
  WatchedTimers(const platform::Platform& groups, std::function<void()> watcher)
      : timers(*groups.timers), watcher(std::move(watcher)), installed(Replaced(groups)) {}

  std::uint32_t timeGetDevCaps(platform::TIMECAPS* caps) override {
    return timers.timeGetDevCaps(caps);
  }
  std::uint32_t timeBeginPeriod(std::uint32_t periodMs) override {
    return timers.timeBeginPeriod(periodMs);
  }
  std::uint32_t timeEndPeriod(std::uint32_t periodMs) override {
    return timers.timeEndPeriod(periodMs);
  }
  std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                             platform::TimerCallback callback, void* user,
                             std::uint32_t flags) override {
    watcher();
    return timers.timeSetEvent(delayMs, resolutionMs, callback, user, flags);
  }
  void SleepTimer(std::uint32_t timerId, platform::Handle news, bool atOnce) override {
    timers.SleepTimer(timerId, news, atOnce);
  }
  void WakeTimer(std::uint32_t timerId) override { timers.WakeTimer(timerId); }
  std::uint32_t timeKillEvent(std::uint32_t timerId) override {
    return timers.timeKillEvent(timerId);
  }

 private:
  platform::Platform Replaced(platform::Platform groups) {
    groups.timers = this;
    return groups;
  }

  platform::Timers& timers;
  const std::function<void()> watcher;
  const platform::InstalledPlatform installed;
};

using ProfileLoadingTest = ProfileRowTest;

// ---- Choosing

TEST_F(ProfileLoadingTest, AProfileThatIsChosenIsShownWithItsDevice) {
  StoreWithPad("Alpha", "a");
  Store("Beta", [](ProfileFile* file) {
    SetDevice(file, "Pad", kPadGuid, 7);
    AddControl(file, 2, "b");
    AddControl(file, 3, "c");
    file->movementSensitivity = 40;
    file->movementDamper = 10;
  });
  Begin();
  ASSERT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
  EXPECT_EQ(Chosen(), "Alpha");
  EXPECT_EQ(Descriptions(), Strings({"a"}));

  Choose("Beta");
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_EQ(Descriptions(), Strings({"b", "c"}));
  EXPECT_EQ(Remembered(), "Beta");
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(Device()->PollInterval(), 7u);
  EXPECT_EQ(CurrentDeviceName(), "Pad");
  EXPECT_EQ(CurrentDeviceGuid(), kPadGuid);
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
  EXPECT_EQ(screen.Slider(ControlEngine::kMovementSensitivitySlider), 40);
  EXPECT_EQ(Engine().movementFactor, 42);
  EXPECT_EQ(Engine().movementDeadZone, 3199);
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(ProfileLoadingTest, TheControlsOfTheChosenProfileFireAndThoseOfTheFormerDoNot) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  Begin();
  sim.RunFor(50);
  pad.Press({1});
  sim.RunFor(50);
  pad.Press({});
  sim.RunFor(50);
  EXPECT_EQ(KeysPressed(), "A");

  Choose("Beta");
  sim.RunFor(50);
  pad.Press({1});
  sim.RunFor(50);
  EXPECT_EQ(KeysPressed(), "B");
}

TEST_F(ProfileLoadingTest, TheNameIsRememberedBeforeAnyFileIsRead) {
  StoreWithPad("Alpha");
  StoreWithPad("Beta");
  Begin();
  ASSERT_EQ(Remembered(), "Alpha");
  Strings seen;
  const WatchedFiles watched(sim.Groups(),
                             [&](const std::string& operation, const std::string& path) {
                               seen.push_back(operation + " " + path + " with " + Remembered());
                             });
  Choose("Beta");
  // Looked for by its name, in the order of the folder, and then read.
  EXPECT_EQ(seen, Strings({"read /game/Profiles/Alpha.idprof with Beta",
                           "read /game/Profiles/Beta.idprof with Beta",
                           "read /game/Profiles/Beta.idprof with Beta"}));
}

TEST_F(ProfileLoadingTest, TheOldDeviceIsGivenUpBeforeTheNewOneIsOpened) {
  AddStick();
  StoreWithPad("Alpha");
  Store("Beta", [](ProfileFile* file) { SetDevice(file, "Stick", kStickGuid, 10); });
  Begin();
  sim.LogCalls(true);
  Choose("Beta");
  EXPECT_EQ(DeviceCalls(),
            Strings({"RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Last Profile",
                     "timeKillEvent 1", "Unacquire", "Release", "CreateDevice", "Acquire",
                     "timeBeginPeriod 10", "timeSetEvent 10 1"}));
  EXPECT_EQ(Bytes(Device()->SelectedName()), "Stick");
}

TEST_F(ProfileLoadingTest, TheDeviceRunsBeforeTheListShowsTheNewControls) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  Begin();
  std::vector<Strings> shown;
  {
    const WatchedTimers watched(sim.Groups(), [&] { shown.push_back(Descriptions()); });
    Choose("Beta");
  }
  EXPECT_EQ(shown, std::vector<Strings>({{"a"}})) << "when the device's timer was set";
  EXPECT_EQ(Descriptions(), Strings({"b"}));
}

TEST_F(ProfileLoadingTest, WhatRepeatsOfTheOldProfileEnds) {
  StoreWithPad("Alpha", "a", 100);
  StoreWithPad("Beta");
  BeginRepeating();
  Choose("Beta");
  EXPECT_EQ(Engine().repeatWorker.Repeating(), nullptr);
  KeysPressed();
  sim.RunFor(1000);
  EXPECT_EQ(KeysPressed(), "");
}

// The choice waits for the replay of the one Control, after which the same dispatch starts the
// other.
TEST_F(ProfileLoadingTest, AControlThatBeginsToRepeatDuringTheChoiceEndsWithItsProfile) {
  Store("Alpha", [](ProfileFile* file) {
    SetDevice(file, "Pad", kPadGuid);
    AddControl(file, 1, "a<P:500>b");
    AddControl(file, 2, "c", 50);
  });
  StoreWithPad("Beta");
  Begin();
  sim.RunFor(50);
  pad.Press({1, 2});
  sim.RunFor(200);
  ASSERT_EQ(KeysPressed(), "A");
  Choose("Beta");
  EXPECT_EQ(KeysPressed(), "BC");
  EXPECT_EQ(Engine().repeatWorker.Repeating(), nullptr);
  sim.RunFor(1000);
  EXPECT_EQ(KeysPressed(), "");
}

TEST_F(ProfileLoadingTest, AReplayUnderWayIsWaitedFor) {
  StoreWithPad("Alpha", "a<P:800>b");
  StoreWithPad("Beta");
  Begin();
  sim.RunFor(50);
  pad.Press({1});
  sim.RunFor(200);
  EXPECT_EQ(KeysPressed(), "A");
  Choose("Beta");
  EXPECT_EQ(KeysPressed(), "B") << "the Control went on to its end";
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_FALSE(AnyLockTaken());
}

TEST_F(ProfileLoadingTest, TheMouseControlsStartOff) {
  StoreWithPad("Alpha");
  StoreWithPad("Beta");
  Begin();
  Engine().mouseActive = true;
  Choose("Beta");
  EXPECT_FALSE(Engine().mouseActive);
}

// Two buttons end it on the notification thread, which is slow to save what it found: the device's
// values, and then the profile by the same object that reads the next one.
TEST_F(ProfileLoadingTest, TheSaveOfADetectionIsOverBeforeTheNextFileIsRead) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  Preset("Show Auto-Detect Usage", 0);
  Begin();
  const std::string beta = BytesOf("Beta.idprof");
  screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  screen.Click(kDetectLeftButton);
  pad.Press({3});
  sim.RunFor(50);
  SlowRegistry slow(sim.Groups(), 20);
  platform::Platform groups = sim.Groups();
  groups.registry = &slow;
  const WatchedFiles watched(
      groups, [](const std::string&, const std::string&) { platform::clock().Sleep(100); });
  pad.Press({3, 4});
  sim.RunFor(50);
  ASSERT_FALSE(Engine().IsDetecting());

  Choose("Beta");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_EQ(Descriptions(), Strings({"b"}));
  EXPECT_EQ(BytesOf("Beta.idprof"), beta);
}

// ---- Files that can't be read

TEST_F(ProfileLoadingTest, AMissingFileIsToldItsEntryGoesAndTheFirstOneIsLoaded) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  StoreWithPad("Gamma", "c");
  Begin();
  Choose("Gamma");
  Disk().Remove(PathOf("Beta.idprof"));
  Choose("Beta");
  ExpectBox("Error reading profile \"Beta\". The file is missing.", "Missing Profile Error",
            MB_ICONEXCLAMATION);
  ExpectNoProfile();
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta", "Gamma"})) << "until it is answered";
  EXPECT_EQ(Remembered(), "Beta");

  screen.Answer(IDOK);
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Gamma"}));
  EXPECT_EQ(Chosen(), "Alpha");
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Descriptions(), Strings({"a"}));
  EXPECT_EQ(Remembered(), "Alpha");
  EXPECT_EQ(screen.Boxes().size(), 1u);
}

TEST_F(ProfileLoadingTest, AFileThatIsDamagedIsToldWithItsPathAndStays) {
  StoreWithPad("Alpha", "a");
  Disk().PutFile(PathOf("other name.idprof"), DamagedProfile("Beta"));
  Begin();
  Choose("Beta");
  ExpectUnreadable("other name.idprof");
  ExpectNoProfile();
  screen.Answer(IDOK);
  EXPECT_EQ(Profiles(), Strings({"Alpha"}));
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(BytesOf("other name.idprof"), DamagedProfile("Beta"));
}

TEST_F(ProfileLoadingTest, EachOfSeveralBadFilesCostsOneBox) {
  Disk().PutFile(PathOf("Alpha.idprof"), DamagedProfile("Alpha"));
  StoreWithPad("Beta");
  StoreWithPad("Gamma", "c");
  StoreWithPad("Zulu");
  PresetText("Last Profile", "Zulu");
  Begin();
  ASSERT_EQ(OpenName(), "Zulu");
  Disk().Remove(PathOf("Beta.idprof"));

  Choose("Beta");
  ExpectMissingAndAnswer("Beta");
  ExpectUnreadable("Alpha.idprof");
  screen.Answer(IDOK);
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Profiles(), Strings({"Gamma", "Zulu"}));
  EXPECT_EQ(OpenName(), "Gamma");
  EXPECT_EQ(Remembered(), "Gamma");
}

TEST_F(ProfileLoadingTest, AListThatRunsEmptyLeavesNoProfileOpen) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  Begin();
  Disk().Remove("/game/Profiles");
  Choose("Beta");
  ExpectMissingAndAnswer("Beta");
  ExpectMissingAndAnswer("Alpha");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Profiles(), Strings());
  EXPECT_EQ(Chosen(), "");
  EXPECT_EQ(Remembered(), "Alpha") << "the last that was tried";
  ExpectNoProfile();

  // Nothing can be asked of no profile.
  for (const std::uint32_t button : {kDeleteProfile, kCopyProfile, kRenameProfile}) {
    screen.Click(button);
    EXPECT_EQ(screen.Front(), main_window::kDialog) << button;
  }
  // The person begins anew, and the folder comes back with it.
  ClickNew("Again");
  EXPECT_EQ(Profiles(), Strings({"Again"}));
  EXPECT_EQ(Files(), Strings({"Again.idprof"}));
}

TEST_F(ProfileLoadingTest, ABadFileAtTheStartIsToldBeforeTheWindowIsUsed) {
  Disk().PutFile(PathOf("Alpha.idprof"), DamagedProfile("Alpha"));
  StoreWithPad("Beta", "b");
  Begin();
  ExpectUnreadable("Alpha.idprof");
  screen.Answer(IDOK);
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_EQ(Profiles(), Strings({"Beta"}));
}

TEST_F(ProfileLoadingTest, NoControlOfAFileThatIsHalfReadIsLeftToRepeat) {
  Store("Alpha", [](ProfileFile* file) {
    SetDevice(file, "Pad", kPadGuid);
    AddControl(file, 1, "a", 50);
  });
  StoreWithPad("Beta");
  Begin();
  sim.RunFor(50);
  pad.Press({1});
  sim.RunFor(300);
  Disk().PutFile(PathOf("Beta.idprof"), DamagedProfile("Beta"));
  Choose("Beta");
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(Engine().repeatWorker.Repeating(), nullptr);
  KeysPressed();
  sim.RunFor(500);
  EXPECT_EQ(KeysPressed(), "") << "while the box is up";
  screen.Answer(IDOK);
}

TEST_F(ProfileLoadingTest, NothingFollowsTheBoxOfABadFileOnceTheProgramHasEnded) {
  StoreWithPad("Alpha");
  StoreWithPad("Beta");
  Begin();
  Disk().Remove("/game/Profiles");
  Choose("Beta");
  ExpectBox("Error reading profile \"Beta\". The file is missing.", "Missing Profile Error",
            MB_ICONEXCLAMATION);
  sim.LogCalls(true);
  Post(WM_CLOSE_PROGRAM);
  EXPECT_EQ(CountCalls(sim, "PostMessageA"), 1u) << "that one alone";
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(screen.Boxes().size(), 1u) << "Alpha isn't tried any more";
  EXPECT_EQ(Remembered(), "Beta");
  EXPECT_FALSE(screen.Running());
}

TEST_F(ProfileLoadingTest, AnOperationOfALoadThatFailsGivesTheProfileOrABox) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  Begin();
  Disk().ClearLog();
  Choose("Beta");
  const std::size_t operations = Disk().Log().size();
  ASSERT_GE(operations, 8u);
  std::size_t failures = 0;
  for (std::uint64_t n = 1; n <= operations; ++n) {
    SCOPED_TRACE(n);
    if (Profiles().size() == 1) {
      // Taken out in the last round.
      Disk().Remove(PathOf("Beta.idprof"));
      ClickNew("Beta");
    }
    Choose("Alpha");
    ASSERT_EQ(Profiles(), Strings({"Alpha", "Beta"}));

    const std::size_t boxes = screen.Boxes().size();
    Disk().FailOperation(n);
    Choose("Beta");
    while (screen.BoxUp()) {
      EXPECT_FALSE(AnyLockTaken());
      screen.Answer(IDOK);
    }
    Disk().Restart();
    EXPECT_EQ(Disk().OpenHandles(), 0u);
    if (screen.Boxes().size() == boxes) {
      EXPECT_EQ(OpenName(), "Beta");
      EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
    } else {
      ++failures;
      EXPECT_EQ(OpenName(), "Alpha");
      EXPECT_EQ(Profiles(), Strings({"Alpha"}));
    }
    ExpectSavedAs(OpenName() + ".idprof");
    if (HasFailure()) return;
  }
  EXPECT_GE(failures, 2u);
}

}  // namespace
}  // namespace kelvaro
