// The row of profiles, and the device that hangs on the open one. The list is only a view of the
// folder: an entry whose file can't be read is taken out of it, the file stays.
#include "app/dialogs/dialogs.h"
#include "app/platform/files.h"
#include "app/resources/control_ids.h"
#include "app/window/main_window.h"
#include "foundation/paths.h"

namespace kelvaro {

using namespace main_window;

namespace {

constexpr char kMissingProfileCaption[] = "Missing Profile Error";
constexpr char kMissingProfileText[] = "Error reading profile \"";
constexpr char kMissingProfileEnd[] = "\". The file is missing.";
constexpr char kUnreadableCaption[] = "File Read Error";
constexpr char kUnreadableText[] = "Error reading file \"";
constexpr char kUnreadableEnd[] = "\". The file may be missing or corrupt.";

constexpr char kCreationCaption[] = "Profile Creation Error";
constexpr char kCreationText[] = "Error Creating Profile \"";
// Kept: this quote is closed and never opened.
constexpr char kDeletionCaption[] = "Profile Deletion Error";
constexpr char kDeletionText[] = "Error Deleting Profile ";
constexpr char kQuoteEnd[] = "\"";

constexpr char kNameTakenCaption[] = "Profile Already Exists";
constexpr char kNameTakenText[] =
    "A profile already exists with that name. Please choose another name.";
constexpr char kNoFileNameCaption[] = "Invalid Profile File Name";
constexpr char kNoFileNameText[] = "The profile name \"";
constexpr char kNoFileNameEnd[] =
    "\" is not composed of any valid filename characters.\n"
    "It must contain at least one valid character for creation of the file on disk.";
constexpr char kTooLongText[] =
    "The profile name is too long.\nIts file on disk can take at most 244 of its characters.";
static_assert(ProfileFile::kLongestName == 244);
constexpr char kFileTakenCaption[] = "Profile File Already Exists";
constexpr char kFileTakenText[] = "The profile file named \"";
// Kept: no blank behind the quote.
constexpr char kFileTakenEnd[] = "\"already exists. Please choose another name.";

constexpr char kCantSaveText[] = "Changes to profiles can't be stored in the folder\n";
constexpr char kCantSaveEnd[] =
    "\n\nThey last until Kelvaro ends, and are then lost. To keep them, give yourself the right to "
    "write to that folder, or move Kelvaro's folder to a place where you have it.";
constexpr char kNotSavedText[] = "The profile \"";
constexpr char kNotSavedFolder[] = "\" couldn't be stored in the folder\n";
constexpr char kNotSavedEnd[] =
    "\n\nIts changes last until Kelvaro ends. To keep them, make room on the disk or give yourself "
    "the right to write to that folder: the next change stores the whole profile.";

constexpr char kCopyTitle[] = "Copy Profile";
constexpr char kCopyFirstPart[] = "Copy profile";
constexpr char kRenameTitle[] = "Rename Profile";
constexpr char kRenameFirstPart[] = "Rename profile";

constexpr char kDeviceCaption[] = "Kelvaro";
constexpr char kNoDeviceSelectedText[] =
    "No device has been selected for this profile.\n\n"
    "Please select a device before configuring control parameters.";
constexpr char kDeviceMissingText[] = "The device \"";
constexpr char kDeviceMissingEnd[] =
    "\" could not be selected.\n\n"
    "If this is not the device you wish to associate with this profile, please select one from the "
    "device list.\n"
    "Otherwise, make sure your device is plugged in, powered on, etc., and press "
    "\"Refresh Device List\" to\n"
    "automatically select it.";

ByteString Around(const char* before, const ByteString& name, const char* after) {
  ByteString text(before);
  text.Append(name);
  text.Append(after);
  return text;
}

}  // namespace

// Choosing and loading

void MainWindow::OnProfileSelected() {
  for (;;) {
    const std::int32_t row = platform::controls().ComboGetCurSel(window, kProfileList);
    if (row == platform::kNoRow) return;
    engine->repeatWorker.Clear();
    const ByteString name = TextOf(platform::controls().ComboGetLBText(window, kProfileList, row));
    // Before the load: one that can't be read is remembered, too.
    RememberLastProfile(name);
    if (LoadProfile(name) || shuttingDown) return;
    platform::controls().ComboDeleteString(window, kProfileList, row);
    platform::controls().ComboSetCurSel(window, kProfileList, 0);
  }
}

bool MainWindow::LoadProfile(const ByteString& name) {
  EndTestMode();
  EndDetection();
  ClearProfile();

  const ByteString path = profile.FindProfileFile(name);
  if (path.IsEmpty()) {
    FillControlList();
    Box(Around(kMissingProfileText, name, kMissingProfileEnd), kMissingProfileCaption,
        platform::MB_ICONEXCLAMATION);
    return false;
  }
  if (!profile.Load(path)) {
    ClearProfile();
    FillControlList();
    Box(Around(kUnreadableText, path, kUnreadableEnd), kUnreadableCaption,
        platform::MB_ICONEXCLAMATION);
    return false;
  }
  ApplyProfileDevice();
  FillControlList();
  ShowMouseAndDeviceState();
  engine->mouseActive = false;
  // By message, so that it comes after whatever else leads to another profile now.
  platform::desktop().PostMessageA(window, WM_DEVICE_WARNING, 0, 0);
  return true;
}

void MainWindow::EndDetection() {
  engine->EndMouseDetection();
  // The two buttons may have ended it just now, on the notification thread, which holds this lock
  // until it has saved the profile: that must be over before a file is read into it.
  LockGuard saved(engine->mouseLock);
}

void MainWindow::ClearProfile() {
  // In one: a Control that fires between the two would leave the worker with a Control that is
  // gone.
  LockGuard guard(profile.profileLock);
  engine->repeatWorker.Clear();
  profile.Clear();
}

bool MainWindow::ApplyProfileDevice() {
  if (!deviceManager || !deviceManager->DirectInputCreated()) return false;
  deviceManager->StopDevice();
  if (profile.deviceName.IsEmpty() || !deviceManager->SetPollInterval(profile.pollInterval) ||
      !(deviceManager->SelectDeviceByGuid(profile.deviceGuid) ||
        deviceManager->SelectDeviceByName(profile.deviceName))) {
    LetGoWithoutDevice();
    currentDeviceName.Empty();
    currentDeviceGuid = platform::GUID{};
    return false;
  }
  // Of the device itself: one found by its name may be another than the file's.
  currentDeviceGuid = deviceManager->SelectedGuid();
  currentDeviceName = deviceManager->SelectedName();
  return true;
}

// New, delete, copy, rename

bool MainWindow::ValidateNewProfileName(const ByteString& name) {
  if (platform::controls().ComboFindStringExact(window, kProfileList, Bytes(name)) !=
      platform::kNoRow) {
    Box(kNameTakenText, kNameTakenCaption, platform::MB_OK);
    return false;
  }
  const ByteString fileName = ProfileFile::ProfileFileName(name);
  if (fileName.IsEmpty()) {
    Box(Around(kNoFileNameText, name, kNoFileNameEnd), kNoFileNameCaption, platform::MB_OK);
    return false;
  }
  if (ProfileFile::IsTooLong(fileName)) {
    Box(kTooLongText, kNoFileNameCaption, platform::MB_OK);
    return false;
  }
  ByteString path = ProfileFile::ProfileFolder();
  path.AppendChar(platform::files().PathSeparator());
  path.Append(fileName);
  if (FileExists(path)) {
    Box(Around(kFileTakenText, fileName, kFileTakenEnd), kFileTakenCaption, platform::MB_OK);
    return false;
  }
  return true;
}

void MainWindow::ListNewProfile(const ByteString& name) {
  const std::int32_t row = platform::controls().ComboAddString(window, kProfileList, Bytes(name));
  if (row != platform::kNoRow) platform::controls().ComboSetCurSel(window, kProfileList, row);
  RememberLastProfile(name);
}

void MainWindow::OnNewProfile() {
  NewProfileDialog dialog;
  if (dialog.DoModal(window) != platform::IDOK || shuttingDown ||
      !ValidateNewProfileName(dialog.name)) {
    return;
  }

  engine->repeatWorker.Clear();  // a replay under way is waited for without the lock
  bool saved = false;
  {
    LockGuard guard(profile.profileLock);
    ClearProfile();
    profile.profileName = dialog.name;
    if (deviceManager && deviceManager->DeviceSelected()) {
      profile.deviceName = deviceManager->SelectedName();
      profile.deviceGuid = deviceManager->SelectedGuid();
      profile.pollInterval = deviceManager->PollInterval();
    }
    saved = SaveProfile();
  }
  if (saved) {
    ListNewProfile(dialog.name);
    FillControlList();
    return;
  }
  Box(Around(kCreationText, dialog.name, kQuoteEnd), kCreationCaption,
      platform::MB_ICONEXCLAMATION);
  if (shuttingDown) return;
  ClearProfile();
  const std::int32_t row = platform::controls().ComboGetCurSel(window, kProfileList);
  if (row == platform::kNoRow) return;
  platform::controls().ComboSetCurSel(window, kProfileList, row);
  OnProfileSelected();
}

void MainWindow::OnDeleteProfile() {
  const std::int32_t row = platform::controls().ComboGetCurSel(window, kProfileList);
  if (row == platform::kNoRow) return;
  const ByteString name = profile.profileName;
  if (DeleteProfileDialog(name).DoModal(window) != platform::IDOK || shuttingDown) return;

  engine->repeatWorker.Clear();
  bool deleted = false;
  {
    // A detection that ends now on the notification thread saves the profile: before its file goes,
    // or not at all.
    LockGuard guard(profile.profileLock);
    deleted = profile.DeleteProfileFile();
    if (deleted) ClearProfile();
  }
  if (!deleted) {
    Box(Around(kDeletionText, name, kQuoteEnd), kDeletionCaption, platform::MB_ICONEXCLAMATION);
    return;
  }
  FillControlList();
  platform::controls().ComboDeleteString(window, kProfileList, row);
  platform::controls().ComboSetCurSel(window, kProfileList, 0);
  OnProfileSelected();
}

void MainWindow::OnCopyProfile() {
  if (platform::controls().ComboGetCurSel(window, kProfileList) == platform::kNoRow) return;
  ProfileNameDialog dialog(kCopyTitle, kCopyFirstPart, profile.profileName);
  if (dialog.DoModal(window) != platform::IDOK || shuttingDown ||
      !ValidateNewProfileName(dialog.name)) {
    return;
  }

  {
    LockGuard guard(profile.profileLock);
    profile.profileName = dialog.name;
    SaveProfile();
  }
  ListNewProfile(dialog.name);
}

void MainWindow::OnRenameProfile() {
  const std::int32_t row = platform::controls().ComboGetCurSel(window, kProfileList);
  if (row == platform::kNoRow) return;
  const ByteString oldName = profile.profileName;
  ProfileNameDialog dialog(kRenameTitle, kRenameFirstPart, oldName);
  if (dialog.DoModal(window) != platform::IDOK || shuttingDown ||
      !ValidateNewProfileName(dialog.name)) {
    return;
  }

  platform::controls().ComboDeleteString(window, kProfileList, row);
  {
    LockGuard guard(profile.profileLock);
    // Kept: the old file goes before the new one is there, so that a failure to write leaves the
    // profile in memory alone. Test: ARenameWhoseWriteFailsKeepsTheProfileInMemoryAlone.
    ProfileFile old;
    old.profileName = oldName;
    // With what of it couldn't be read it only goes when that is kept.
    if (profile.KeepDamagedFile()) static_cast<void>(old.DeleteProfileFile());
    profile.profileName = dialog.name;
    SaveProfile();
  }
  ListNewProfile(dialog.name);
}

// Saving

void MainWindow::TellUnlessProfilesCanBeSaved() {
  if (ProfileFile::CanSave()) return;
  platform::desktop().Tell(
      Bytes(Around(kCantSaveText, ProfileFile::ProfileFolder(), kCantSaveEnd)));
}

// Also on the notification thread, with locks held.
bool MainWindow::SaveProfile() {
  if (profile.Save()) return true;
  ByteString reason = SystemErrorText(platform::files().GetLastError());
  reason.Trim(0, 32);
  // Without a name there is nothing to store.
  if (ProfileFile::ProfileFileName(profile.profileName).IsEmpty()) return false;
  if (failedSaveTold.exchange(true)) return false;
  ByteString text = Around(kNotSavedText, profile.profileName, kNotSavedFolder);
  text.Append(ProfileFile::ProfileFolder());
  if (!reason.IsEmpty()) text.Append(Around("\n(", reason, ")"));
  text.Append(kNotSavedEnd);
  platform::desktop().Tell(Bytes(text));
  return false;
}

// The device of the profile

void MainWindow::RefreshDeviceList() {
  if (!deviceManager || !deviceManager->DirectInputCreated()) return;

  // Chosen to be none: only the person's own wish looks for devices then.
  if (currentDeviceName.Equals(kNoDeviceText)) {
    if (inPluginPoll) return;
    deviceManager->EnumerateDevices();
    FillDeviceList();
    SelectDeviceInList({});
    return;
  }
  bool found = deviceManager->EnumerateDevices();
  if (found) {
    FillDeviceList();
    found = ApplyProfileDevice();
  }
  if (found) {
    SelectDeviceInList(profile.deviceGuid);
  } else {
    SelectDeviceInList({});
  }
  ShowMouseAndDeviceState();
}

void MainWindow::ShowDeviceWarning() {
  if (!deviceManager || deviceManager->DeviceSelected()) return;
  ShowFromTray();
  ShowTab(kDeviceTab);

  ByteString text;
  if (profile.deviceName.IsEmpty()) {
    text = kNoDeviceSelectedText;
  } else if (!noDeviceErrorMsg) {
    text = Around(kDeviceMissingText, profile.deviceName, kDeviceMissingEnd);
  }
  if (!text.IsEmpty()) Box(text, kDeviceCaption, platform::MB_OK);
}

}  // namespace kelvaro
