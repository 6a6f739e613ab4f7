// New, delete, copy and rename, as the person works them: what is on the screen, in memory, on disk
// and in the registry after each, and what is left of it when a step fails.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "tests/app/profile_row_fixture.h"
#include "tests/platform/watched_files.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::IDCANCEL;
using platform::IDOK;
using platform::MB_ICONEXCLAMATION;
using platform::MB_OK;

class ProfileOperationsTest : public ProfileRowTest {
 protected:
  // Cuts a file of one Control so that it loads with none. Its bytes.
  std::string CutWithinItsControls(const std::string& fileName) {
    const std::string whole = BytesOf(fileName);
    const std::string cut = whole.substr(0, whole.find(Big(4, 4) + Big(1, 4)) + 8);
    EXPECT_LT(cut.size(), whole.size());
    Disk().PutFile(PathOf(fileName), cut);
    return cut;
  }
};

// ---- New

TEST_F(ProfileOperationsTest, ANewProfileStartsWithTheDeviceInUseAndNothingElse) {
  Store("Beta", [](ProfileFile* file) {
    SetDevice(file, "Pad", kStickGuid, 9);
    AddControl(file, 1, "b");
    file->movementSensitivity = 33;
    file->mouseAlwaysActive = true;
  });
  Begin();
  sim.LogCalls(true);
  ClickNew("Alpha");
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"})) << "in order";
  EXPECT_EQ(Chosen(), "Alpha");
  EXPECT_EQ(Remembered(), "Alpha");
  EXPECT_EQ(Descriptions(), Strings());
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Bytes(OpenProfile().deviceName), "Pad");
  EXPECT_EQ(OpenProfile().deviceGuid, kPadGuid) << "of the device itself";
  EXPECT_EQ(OpenProfile().pollInterval, 9u);
  EXPECT_EQ(OpenProfile().nextControlId, 1u);
  EXPECT_EQ(OpenProfile().controls.count, 0);
  EXPECT_EQ(OpenProfile().DispatchList.count, 0);
  EXPECT_EQ(OpenProfile().movementSensitivity, 33) << "those of the mouse stay";
  EXPECT_FALSE(OpenProfile().mouseAlwaysActive);
  ExpectSavedAs("Alpha.idprof");
  // It isn't loaded: the device goes on, and nobody asks for one.
  EXPECT_EQ(DeviceCalls(),
            Strings({"RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Last Profile"}));
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(ProfileOperationsTest, ANewProfileWithoutADeviceInUseHasNoneAndDoesNotComplain) {
  Store("Beta");
  Begin();
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
  ClickNew("Alpha");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Bytes(OpenProfile().deviceName), "");
  EXPECT_EQ(OpenProfile().deviceGuid, kNoGuid);
  EXPECT_EQ(OpenProfile().pollInterval, 5u);
  ExpectSavedAs("Alpha.idprof");
}

TEST_F(ProfileOperationsTest, CancelOfANewProfileDoesNothing) {
  StoreWithPad("Alpha", "a");
  Begin();
  sim.LogCalls(true);
  Disk().ClearLog();
  screen.Click(kNewProfile);
  screen.Type(new_profile::kName, "Beta");
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_TRUE(Disk().Log().empty());
  EXPECT_EQ(DeviceCalls(), Strings());
  EXPECT_TRUE(screen.Boxes().empty()) << "the name isn't looked at";
}

TEST_F(ProfileOperationsTest, WhatRepeatsEndsWithANewProfileAndTheOldControlsAreGone) {
  StoreWithPad("Alpha", "a", 100);
  BeginRepeating();
  ClickNew("Beta");
  EXPECT_EQ(Engine().repeatWorker.Repeating(), nullptr);
  KeysPressed();
  sim.RunFor(500);
  pad.Press({});
  sim.RunFor(50);
  pad.Press({1});
  sim.RunFor(500);
  EXPECT_EQ(KeysPressed(), "");
}

TEST_F(ProfileOperationsTest, TheProfileIsLockedWhileItIsWrittenAndFreeBeforeAnyBox) {
  StoreWithPad("Alpha");
  Begin();
  Strings writes;
  const WatchedFiles watched(
      sim.Groups(), [&](const std::string& operation, const std::string& path) {
        if (operation == "read") return;
        writes.push_back(operation + " " + path +
                         (OpenProfile().profileLock.IsTaken() ? " locked" : " free"));
      });
  ClickNew("Beta");
  ASSERT_GE(writes.size(), 2u);
  EXPECT_EQ(writes[0], "write /game/Profiles/Beta.idprof.tmp locked");
  EXPECT_EQ(writes[1], "copy /game/Profiles/Beta.idprof locked");
  EXPECT_FALSE(AnyLockTaken());

  writes.clear();
  ClickForName(kCopyProfile, "Gamma");
  ASSERT_GE(writes.size(), 2u);
  EXPECT_EQ(writes[0], "write /game/Profiles/Gamma.idprof.tmp locked");
  EXPECT_EQ(writes[1], "copy /game/Profiles/Gamma.idprof locked");

  writes.clear();
  ClickForName(kRenameProfile, "Delta");
  ASSERT_GE(writes.size(), 5u);
  EXPECT_EQ(writes[2].substr(0, writes[2].rfind(' ')), "delete /game/Profiles/Gamma.idprof");
  EXPECT_EQ(writes[3], "write /game/Profiles/Delta.idprof.tmp locked");
  EXPECT_EQ(writes[4], "copy /game/Profiles/Delta.idprof locked");
  EXPECT_FALSE(AnyLockTaken());
}

// ---- Names that are refused

constexpr char kTakenText[] =
    "A profile already exists with that name. Please choose another name.";

std::string InvalidText(const std::string& name) {
  return "The profile name \"" + name +
         "\" is not composed of any valid filename characters.\n"
         "It must contain at least one valid character for creation of the file on disk.";
}

constexpr char kTooLongText[] =
    "The profile name is too long.\nIts file on disk can take at most 244 of its characters.";

struct RefusedName {
  std::string name;
  std::string text;
  const char* caption;
};

std::vector<RefusedName> RefusedNames() {
  return {
      {"Alpha", kTakenText, "Profile Already Exists"},
      {"aLPHA", kTakenText, "Profile Already Exists"},
      {"???", InvalidText("???"), "Invalid Profile File Name"},
      {"\xC3\xA4\xC3\xB6", InvalidText("\xC3\xA4\xC3\xB6"), "Invalid Profile File Name"},
      {"A:B", "The profile file named \"AB.idprof\"already exists. Please choose another name.",
       "Profile File Already Exists"},
      {"Hidden",
       "The profile file named \"Hidden.idprof\"already exists. Please choose another "
       "name.",
       "Profile File Already Exists"},
      {std::string(245, 'n'), kTooLongText, "Invalid Profile File Name"},
  };
}

class RefusedNameTest : public ProfileOperationsTest {
 protected:
  void BeginWithThem() {
    StoreWithPad("Alpha", "a");
    StoreWithPad("AB");
    Disk().PutFile(PathOf("Hidden.idprof"), "no profile");
    PresetText("Last Profile", "Alpha");
    Begin();
    before = Files();
    alpha = BytesOf("Alpha.idprof");
  }
  void ExpectNothingChanged() {
    EXPECT_EQ(screen.Front(), main_window::kDialog) << "the dialog isn't shown again";
    EXPECT_EQ(Profiles(), Strings({"AB", "Alpha"}));
    EXPECT_EQ(Chosen(), "Alpha");
    EXPECT_EQ(OpenName(), "Alpha");
    EXPECT_EQ(Descriptions(), Strings({"a"}));
    EXPECT_EQ(Remembered(), "Alpha");
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(BytesOf("Alpha.idprof"), alpha);
  }

  Strings before;
  std::string alpha;
};

TEST_F(RefusedNameTest, ForANewProfile) {
  BeginWithThem();
  std::vector<RefusedName> names = RefusedNames();
  names.push_back({"", InvalidText(""), "Invalid Profile File Name"});
  for (const RefusedName& refused : names) {
    SCOPED_TRACE(refused.name);
    ClickNew(refused.name);
    ExpectBoxAndAnswer(refused.text, refused.caption, MB_OK);
    ExpectNothingChanged();
  }
}

TEST_F(RefusedNameTest, ThatTheSystemHasForADevice) {
  Disk().Format('\\');
  Begin();
  ClickNew("NUL.x");
  ExpectBoxAndAnswer(
      "The file name \"NUL.x.idprof\" can't be used: this system has it for a device. Please "
      "choose "
      "another name.",
      "Invalid Profile File Name", MB_OK);
  EXPECT_FALSE(screen.BoxUp()) << "nothing is tried";
  EXPECT_EQ(Profiles(), Strings());
}

TEST_F(RefusedNameTest, ForACopyAndForARename) {
  BeginWithThem();
  for (const std::uint32_t button : {kCopyProfile, kRenameProfile}) {
    for (const RefusedName& refused : RefusedNames()) {
      SCOPED_TRACE(testing::Message() << button << " " << refused.name);
      ClickForName(button, refused.name);
      ExpectBoxAndAnswer(refused.text, refused.caption, MB_OK);
      ExpectNothingChanged();
    }
  }
}

TEST_F(RefusedNameTest, ABlankOneIsSentBackToItsDialog) {
  BeginWithThem();
  for (const std::uint32_t button : {kCopyProfile, kRenameProfile}) {
    screen.Click(button);
    screen.Type(profile_name::kName, "");
    screen.Click(IDOK);
    ASSERT_TRUE(screen.BoxUp());
    EXPECT_EQ(screen.Box().text, "Profile name cannot be blank");
    EXPECT_EQ(screen.Box().caption, "Missing Profile Name");
    screen.Answer(IDOK);
    EXPECT_EQ(screen.Front(), profile_name::kDialog);
    screen.Click(IDCANCEL);
    ExpectNothingChanged();
  }
}

TEST_F(RefusedNameTest, NothingRepeatingEndsForIt) {
  StoreWithPad("Alpha", "a", 100);
  BeginRepeating();
  ClickNew("Alpha");
  screen.Answer(IDOK);
  EXPECT_NE(Engine().repeatWorker.Repeating(), nullptr);
}

// ---- A new profile that can't be written

TEST_F(ProfileOperationsTest, ANewProfileThatCannotBeWrittenGivesTheOldOneBack) {
  StoreWithPad("Alpha", "a");
  Begin();
  const std::string alpha = BytesOf("Alpha.idprof");
  Disk().ClearLog();
  ClickNew("Beta");
  const std::size_t operations = Disk().Log().size();
  ASSERT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
  ASSERT_GE(operations, 6u);
  ClickDelete();
  ASSERT_EQ(OpenName(), "Alpha");

  std::size_t failures = 0;
  for (std::uint64_t n = 1; n <= operations; ++n) {
    SCOPED_TRACE(n);
    Disk().FailOperation(n, platform::ERROR_DISK_FULL);
    ClickNew("Beta");
    if (screen.BoxUp()) {
      ++failures;
      ExpectBox("Error Creating Profile \"Beta\"", "Profile Creation Error", MB_ICONEXCLAMATION);
      EXPECT_EQ(Profiles(), Strings({"Alpha"}));
      EXPECT_EQ(Remembered(), "Alpha");
      Disk().Restart();
      sim.LogCalls(true);
      sim.ClearCalls();
      screen.Answer(IDOK);
      EXPECT_FALSE(screen.BoxUp());
      EXPECT_EQ(Profiles(), Strings({"Alpha"}));
      EXPECT_EQ(CallsOf(sim, {"ComboSetCurSel 1001"}), Strings{"ComboSetCurSel 1001 0"});
      EXPECT_EQ(OpenName(), "Alpha");
      EXPECT_EQ(Descriptions(), Strings({"a"}));
      ExpectSavedAs("Alpha.idprof");
      // Nothing, or the whole of it.
      if (Disk().Exists(PathOf("Beta.idprof"))) {
        ProfileFile file;
        EXPECT_TRUE(file.Load(TextOf(PathOf("Beta.idprof"))));
        EXPECT_EQ(Bytes(file.profileName), "Beta");
        Disk().Remove(PathOf("Beta.idprof"));
      }
    } else {
      Disk().Restart();
      EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
      ExpectSavedAs("Beta.idprof");
      ClickDelete();
    }
    EXPECT_EQ(BytesOf("Alpha.idprof"), alpha);
    EXPECT_EQ(Disk().OpenHandles(), 0u);
    if (HasFailure()) return;
  }
  EXPECT_GE(failures, 4u);
}

TEST_F(ProfileOperationsTest, WithoutAFolderTheFailureOfANewProfileEndsWithAnEmptyList) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().Remove("/game/Profiles");
  Disk().PutFile("/game/Profiles", "a file where the folder was");
  ClickNew("Beta");
  ExpectBoxAndAnswer("Error Creating Profile \"Beta\"", "Profile Creation Error",
                     MB_ICONEXCLAMATION);
  ExpectMissingAndAnswer("Alpha");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Profiles(), Strings());
  ExpectNoProfile();

  // With no entry there is nothing to go back to.
  ClickNew("Beta");
  ExpectBoxAndAnswer("Error Creating Profile \"Beta\"", "Profile Creation Error",
                     MB_ICONEXCLAMATION);
  EXPECT_FALSE(screen.BoxUp());
  ExpectNoProfile();
}

TEST_F(ProfileOperationsTest, ADialogThatGoesWithTheProgramChangesNothing) {
  StoreWithPad("Alpha", "a");
  for (const std::uint32_t button : {kNewProfile, kCopyProfile, kRenameProfile, kDeleteProfile}) {
    SCOPED_TRACE(button);
    Begin();
    const std::string alpha = BytesOf("Alpha.idprof");
    screen.Click(button);
    ASSERT_NE(screen.Front(), main_window::kDialog);
    if (button != kDeleteProfile) screen.Type(profile_name::kName, "Beta");  // or new_profile's
    Post(WM_CLOSE_PROGRAM);
    EXPECT_FALSE(screen.BoxUp());
    EXPECT_FALSE(screen.Running());
    EXPECT_EQ(Files(), Strings({"Alpha.idprof"}));
    EXPECT_EQ(BytesOf("Alpha.idprof"), alpha);
    EXPECT_EQ(Remembered(), "Alpha");
  }
}

TEST_F(ProfileOperationsTest, AFailedNewProfileAtTheEndOfTheProgramLoadsNoOther) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().Remove("/game/Profiles");
  Disk().PutFile("/game/Profiles", "a file where the folder was");
  ClickNew("Beta");
  ExpectBox("Error Creating Profile \"Beta\"", "Profile Creation Error", MB_ICONEXCLAMATION);
  Post(WM_CLOSE_PROGRAM);
  EXPECT_EQ(screen.Boxes().size(), 1u);
  EXPECT_FALSE(screen.Running());
}

// ---- Delete

TEST_F(ProfileOperationsTest, ADeletedProfileIsFollowedByTheFirstOfTheList) {
  StoreWithPad("Alpha", "a");
  StoreWithPad("Beta", "b");
  StoreWithPad("Gamma", "c");
  PresetText("Last Profile", "Gamma");
  Begin();
  screen.Click(kDeleteProfile);
  ASSERT_EQ(screen.Front(), delete_profile::kDialog);
  EXPECT_EQ(screen.Title(), "Delete Profile");
  EXPECT_EQ(screen.Text(delete_profile::kName), "\"Gamma\"");
  screen.Click(IDOK);
  EXPECT_EQ(Files(), Strings({"Alpha.idprof", "Beta.idprof"}));
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
  EXPECT_EQ(Chosen(), "Alpha");
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Descriptions(), Strings({"a"}));
  EXPECT_EQ(Remembered(), "Alpha");
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(ProfileOperationsTest, NoMeansNo) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().ClearLog();
  screen.Click(kDeleteProfile);
  screen.Press(screen.kEnter);  // "No!" is what it presses
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_TRUE(Disk().Log().empty());
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Profiles(), Strings({"Alpha"}));
}

TEST_F(ProfileOperationsTest, TheLastProfileLeavesAnEmptyListAndStaysRemembered) {
  StoreWithPad("Alpha", "a");
  Begin();
  ClickDelete();
  EXPECT_EQ(Files(), Strings());
  EXPECT_EQ(Profiles(), Strings());
  ExpectNoProfile();
  EXPECT_EQ(Remembered(), "Alpha") << "nothing was selected after it";
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(ProfileOperationsTest, WithTheLastProfileGoesTheWarningOfItsDevice) {
  Store("Alpha");
  Begin();
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
  ClickDelete();
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(ProfileOperationsTest, AFileThatCannotBeDeletedKeepsTheProfileOpen) {
  StoreWithPad("Alpha");
  StoreWithPad("Beta", "b", 100);
  PresetText("Last Profile", "Beta");
  BeginRepeating();
  Disk().PutFile(PathOf("Beta.idprof"), BytesOf("Beta.idprof"), platform::FILE_ATTRIBUTE_READONLY);
  ClickDelete();
  ExpectBox("Error Deleting Profile Beta\"", "Profile Deletion Error", MB_ICONEXCLAMATION);
  screen.Answer(IDOK);
  EXPECT_EQ(Engine().repeatWorker.Repeating(), nullptr) << "that ended before";
  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
  EXPECT_EQ(Chosen(), "Beta");
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_EQ(Descriptions(), Strings({"b"}));
  ExpectSavedAs("Beta.idprof");
  EXPECT_EQ(Remembered(), "Beta");
}

TEST_F(ProfileOperationsTest, AFileThatIsGoneAlreadyIsAFailureToo) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().Remove(PathOf("Alpha.idprof"));
  ClickDelete();
  ExpectBoxAndAnswer("Error Deleting Profile Alpha\"", "Profile Deletion Error",
                     MB_ICONEXCLAMATION);
  EXPECT_EQ(Profiles(), Strings({"Alpha"}));
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Descriptions(), Strings({"a"}));
}

// ---- Copy

TEST_F(ProfileOperationsTest, ACopyIsWhatIsInMemoryUnderAnotherName) {
  StoreWithPad("Beta", "b");
  Begin();
  const std::string beta = BytesOf("Beta.idprof");
  OpenProfile().movementSensitivity = 21;  // not saved so far
  sim.LogCalls(true);
  screen.Click(kCopyProfile);
  ASSERT_EQ(screen.Front(), profile_name::kDialog);
  EXPECT_EQ(screen.Title(), "Copy Profile");
  EXPECT_EQ(screen.Text(profile_name::kTopLine), "Copy profile \"Beta\"");
  EXPECT_EQ(screen.Text(profile_name::kName), "Beta");
  screen.Type(profile_name::kName, "Alpha");
  screen.Click(IDOK);

  EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
  EXPECT_EQ(Chosen(), "Alpha");
  EXPECT_EQ(OpenName(), "Alpha");
  EXPECT_EQ(Remembered(), "Alpha");
  EXPECT_EQ(Descriptions(), Strings({"b"}));
  ExpectSavedAs("Alpha.idprof");
  ProfileFile copy;
  ASSERT_TRUE(copy.Load(TextOf(PathOf("Alpha.idprof"))));
  EXPECT_EQ(copy.movementSensitivity, 21);
  EXPECT_EQ(BytesOf("Beta.idprof"), beta);
  // Nothing is loaded.
  EXPECT_EQ(DeviceCalls(),
            Strings({"RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Last Profile"}));
}

TEST_F(ProfileOperationsTest, CancelOfACopyOrARenameDoesNothing) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().ClearLog();
  for (const std::uint32_t button : {kCopyProfile, kRenameProfile}) {
    screen.Click(button);
    screen.Type(profile_name::kName, "Beta");
    screen.Click(IDCANCEL);
    EXPECT_EQ(screen.Front(), main_window::kDialog);
    EXPECT_EQ(OpenName(), "Alpha");
    EXPECT_EQ(Profiles(), Strings({"Alpha"}));
  }
  EXPECT_TRUE(Disk().Log().empty());
  EXPECT_TRUE(screen.Boxes().empty()) << "the name isn't looked at";
}

TEST_F(ProfileOperationsTest, WhatRepeatsGoesOnThroughACopyAndARename) {
  StoreWithPad("Alpha", "a", 100);
  BeginRepeating();
  ClickForName(kCopyProfile, "Beta");
  KeysPressed();
  sim.RunFor(1000);
  EXPECT_GE(KeysPressed().size(), 8u);
  ClickForName(kRenameProfile, "Gamma");
  KeysPressed();
  sim.RunFor(1000);
  EXPECT_GE(KeysPressed().size(), 8u);
}

TEST_F(ProfileOperationsTest, ACopyThatCannotBeWrittenSaysNothingAndLivesInMemory) {
  StoreWithPad("Alpha", "a");
  Begin();
  const std::string alpha = BytesOf("Alpha.idprof");
  Disk().ClearLog();
  ClickForName(kCopyProfile, "Beta");
  const std::size_t operations = Disk().Log().size();
  ASSERT_GE(operations, 6u);
  ClickDelete();

  std::size_t unwritten = 0;
  for (std::uint64_t n = 1; n <= operations; ++n) {
    SCOPED_TRACE(n);
    ASSERT_EQ(OpenName(), "Alpha");
    Disk().FailOperation(n, platform::ERROR_DISK_FULL);
    ClickForName(kCopyProfile, "Beta");
    Disk().Restart();
    EXPECT_FALSE(screen.BoxUp());
    EXPECT_EQ(Profiles(), Strings({"Alpha", "Beta"}));
    EXPECT_EQ(Chosen(), "Beta");
    EXPECT_EQ(OpenName(), "Beta");
    EXPECT_EQ(Descriptions(), Strings({"a"}));
    EXPECT_EQ(OpenProfile().controls.count, 1);
    EXPECT_EQ(OpenProfile().DispatchList.count, 1);
    EXPECT_EQ(Remembered(), "Beta");
    EXPECT_EQ(BytesOf("Alpha.idprof"), alpha);
    EXPECT_FALSE(AnyLockTaken());
    EXPECT_EQ(Disk().OpenHandles(), 0u);
    if (Disk().Exists(PathOf("Beta.idprof"))) {
      ExpectSavedAs("Beta.idprof");
    } else {
      // The next change of anything would save it; here it is taken out again.
      ++unwritten;
      Store("Beta");
    }
    ClickDelete();
    if (HasFailure()) return;
  }
  EXPECT_GE(unwritten, 4u);
}

// ---- Rename

TEST_F(ProfileOperationsTest, ARenamedProfileHasANewFileAndNoOldOne) {
  StoreWithPad("Alpha");
  StoreWithPad("Beta", "b");
  PresetText("Last Profile", "Beta");
  Begin();
  sim.LogCalls(true);
  screen.Click(kRenameProfile);
  ASSERT_EQ(screen.Front(), profile_name::kDialog);
  EXPECT_EQ(screen.Title(), "Rename Profile");
  EXPECT_EQ(screen.Text(profile_name::kTopLine), "Rename profile \"Beta\"");
  EXPECT_EQ(screen.Text(profile_name::kName), "Beta");
  screen.Type(profile_name::kName, "Aardvark");
  Disk().ClearLog();
  screen.Click(IDOK);

  EXPECT_EQ(Profiles(), Strings({"Aardvark", "Alpha"}));
  EXPECT_EQ(Chosen(), "Aardvark");
  EXPECT_EQ(OpenName(), "Aardvark");
  EXPECT_EQ(Remembered(), "Aardvark");
  EXPECT_EQ(Descriptions(), Strings({"b"}));
  EXPECT_EQ(Files(), Strings({"Alpha.idprof", "Aardvark.idprof"}));
  ExpectSavedAs("Aardvark.idprof");
  EXPECT_EQ(DeviceCalls(),
            Strings({"RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Last Profile"}));
}

TEST_F(ProfileOperationsTest, TheOldFileGoesBeforeTheNewOneIsBegun) {
  StoreWithPad("Alpha");
  Begin();
  Strings seen;
  const WatchedFiles watched(sim.Groups(),
                             [&](const std::string& operation, const std::string& path) {
                               if (operation != "read") seen.push_back(operation + " " + path);
                             });
  ClickForName(kRenameProfile, "Beta");
  EXPECT_EQ(seen,
            Strings({"copy /game/Profiles/Beta.idprof.was", "write /game/Profiles/Beta.idprof.was",
                     "delete /game/Profiles/Alpha.idprof", "write /game/Profiles/Beta.idprof.tmp",
                     "copy /game/Profiles/Beta.idprof", "delete /game/Profiles/Beta.idprof.tmp",
                     "delete /game/Profiles/Beta.idprof.was"}));
}

TEST_F(ProfileOperationsTest, ARenameWhoseWriteFailsKeepsTheProfileInMemoryAlone) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().ClearLog();
  ClickForName(kRenameProfile, "Beta");
  const std::size_t operations = Disk().Log().size();
  ASSERT_GE(operations, 8u);

  std::size_t lost = 0;
  std::size_t kept = 0;
  for (std::uint64_t n = 1; n <= operations; ++n) {
    SCOPED_TRACE(n);
    const char* const from = n % 2 ? "Beta" : "Alpha";
    const char* const to = n % 2 ? "Alpha" : "Beta";
    const std::string oldFile = std::string(from) + ".idprof";
    const std::string newFile = std::string(to) + ".idprof";
    ASSERT_EQ(OpenName(), from);
    ASSERT_EQ(Files(), Strings({oldFile}));
    const std::string old = BytesOf(oldFile);

    Disk().FailOperation(n, platform::ERROR_DISK_FULL);
    ClickForName(kRenameProfile, to);
    Disk().Restart();
    EXPECT_FALSE(screen.BoxUp()) << "nothing is said";
    EXPECT_EQ(Profiles(), Strings({to}));
    EXPECT_EQ(Chosen(), to);
    EXPECT_EQ(OpenName(), to);
    EXPECT_EQ(Remembered(), to);
    EXPECT_EQ(Descriptions(), Strings({"a"}));
    EXPECT_EQ(OpenProfile().controls.count, 1);
    EXPECT_EQ(OpenProfile().DispatchList.count, 1);
    EXPECT_FALSE(AnyLockTaken());
    EXPECT_EQ(Disk().OpenHandles(), 0u);
    const bool isOldThere = Disk().Exists(PathOf(oldFile));
    const bool isNewThere = Disk().Exists(PathOf(newFile));
    if (isOldThere) {
      EXPECT_EQ(BytesOf(oldFile), old);
      ++kept;
    }
    if (isNewThere) ExpectSavedAs(newFile);
    if (!isOldThere && !isNewThere) ++lost;
    if (HasFailure()) return;

    // A start for the next round: the new file alone.
    for (const std::string& file : Files()) Disk().Remove(PathOf(file));
    Store(to, [](ProfileFile* file) {
      SetDevice(file, "Pad", kPadGuid);
      AddControl(file, 1, "a");
    });
  }
  EXPECT_GE(kept, 2u) << "where the old one couldn't be found or deleted";
  EXPECT_GE(lost, 3u) << "where it was, and the new one couldn't be written";
}

TEST_F(ProfileOperationsTest, APowerCutInARenameLeavesTheProfileUnderItsOldOrItsNewName) {
  StoreWithPad("Alpha", "a");
  Begin();
  Disk().ClearLog();
  ClickForName(kRenameProfile, "Beta");
  const std::size_t operations = Disk().Log().size();
  EXPECT_EQ(Files(), Strings({"Beta.idprof"}));
  for (std::uint64_t n = 1; n <= operations; ++n) {
    SCOPED_TRACE(n);
    const char* const from = n % 2 ? "Beta" : "Alpha";
    const char* const to = n % 2 ? "Alpha" : "Beta";
    Disk().StopBefore(n);
    ClickForName(kRenameProfile, to);
    ASSERT_TRUE(Disk().IsStopped());
    Disk().CutPower([](std::uint32_t) { return 0; });
    LinkedList<ByteString> names;
    ProfileFile().ListProfileNames(&names);
    ASSERT_EQ(names.count, 1);
    const std::string left = Bytes(*names.head->value);
    EXPECT_TRUE(left == from || left == to);
    EXPECT_EQ(Stored(left)->controls.count, 1);
    EXPECT_FALSE(Disk().Exists(PathOf(std::string(to) + ".idprof.was")));
    // A start for the next round: the new file alone.
    for (const std::string& file : Files()) Disk().Remove(PathOf(file));
    Store(to, [](ProfileFile* file) {
      SetDevice(file, "Pad", kPadGuid);
      AddControl(file, 1, "a");
    });
  }
}

TEST_F(ProfileOperationsTest, WhatOfTheFileCouldNotBeReadOutlivesARename) {
  StoreWithPad("Alpha", "a");
  const std::string cut = CutWithinItsControls("Alpha.idprof");
  Begin();
  ASSERT_EQ(OpenName(), "Alpha");
  ClickForName(kRenameProfile, "Beta");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Files(), Strings({"Alpha.idprof.damaged", "Beta.idprof"}));
  EXPECT_EQ(BytesOf("Alpha.idprof.damaged"), cut);
  EXPECT_EQ(Profiles(), Strings({"Beta"}));
}

TEST_F(ProfileOperationsTest, WhatCanNotBeKeptOfTheFileStaysInItThroughARename) {
  StoreWithPad("Alpha", "a");
  const std::string cut = CutWithinItsControls("Alpha.idprof");
  Begin();
  const WatchedFiles full(sim.Groups(), [this](const std::string& operation, const std::string&) {
    if (operation == "copy") Disk().FailOperation(1, platform::ERROR_DISK_FULL);
  });
  ClickForName(kRenameProfile, "Beta");
  EXPECT_EQ(BytesOf("Alpha.idprof"), cut);
}

TEST_F(ProfileOperationsTest, AReadOnlyFileStaysBesideItsRenamedProfile) {
  StoreWithPad("Alpha", "a");
  Disk().PutFile(PathOf("Alpha.idprof"), BytesOf("Alpha.idprof"),
                 platform::FILE_ATTRIBUTE_READONLY);
  Begin();
  ClickForName(kRenameProfile, "Beta");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Profiles(), Strings({"Beta"})) << "until the next start";
  EXPECT_EQ(Files(), Strings({"Alpha.idprof", "Beta.idprof"}));
  ExpectSavedAs("Beta.idprof");
}

}  // namespace
}  // namespace kelvaro
