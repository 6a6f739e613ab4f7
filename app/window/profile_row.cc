#include "app/window/profile_row.h"

#include "app/dialogs/small_dialogs.h"
#include "app/platform/files.h"
#include "app/resources/control_ids.h"
#include "app/start/window_messages.h"
#include "foundation/paths.h"
#include "steering/steering.h"

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
constexpr char kSystemNameText[] = "The file name \"";
constexpr char kSystemNameEnd[] =
    "\" can't be used: this system has it for a device. Please choose another name.";
constexpr char kFileTakenCaption[] = "Profile File Already Exists";
constexpr char kFileTakenText[] = "The profile file named \"";
// Kept: no blank behind the quote.
constexpr char kFileTakenEnd[] = "\"already exists. Please choose another name.";

constexpr char kCopyTitle[] = "Copy Profile";
constexpr char kCopyFirstPart[] = "Copy profile";
constexpr char kRenameTitle[] = "Rename Profile";
constexpr char kRenameFirstPart[] = "Rename profile";

}  // namespace

// Choosing and loading

void ProfileRow::Fill() {
  LinkedList<ByteString> names;
  profile.ListProfileNames(&names);
  if (!platform::controls().HasControl(dialog.window, kProfileList) || names.count == 0) return;
  for (const ByteString& name : names)
    platform::controls().ComboAddString(dialog.window, kProfileList, Bytes(name));
  SelectByCommandLine();
  if (session.shuttingDown) return;
  if (!launcher.commandLineProfileSelected) {
    std::int32_t row = platform::kNoRow;
    if (!session.settings.lastProfile.IsEmpty())
      row = platform::controls().ComboFindStringExact(dialog.window, kProfileList,
                                                      Bytes(session.settings.lastProfile));
    platform::controls().ComboSetCurSel(dialog.window, kProfileList,
                                        row == platform::kNoRow ? 0 : row);
  }
  OnProfileSelected();
}

void ProfileRow::SelectByCommandLine() {
  launcher.ParseCommandLine(dialog.window, session.programPath);
  LinkedList<ByteString>& names = launcher.extraProfiles;
  if (names.count == 0) return;
  const ByteString name = *names.head->value;
  names.RemoveNode(names.head);
  const std::int32_t row =
      platform::controls().ComboFindString(dialog.window, kProfileList, Bytes(name));
  if (row == platform::kNoRow) {
    dialog.Box(
        Around("Profile \"", name,
               "\" is not in the list of available profiles. Command line selection failed."),
        "Profile Selection Failure", platform::MB_ICONEXCLAMATION);
    return;
  }
  platform::controls().ComboSetCurSel(dialog.window, kProfileList, row);
  launcher.commandLineProfileSelected = true;
}

std::string ProfileRow::Choose(const std::string& name) {
  const ByteString wanted = TextOf(name);
  if (wanted.Equals(profile.profileName)) return {};
  if (session.unsaved)
    return Bytes(
        Around("changes of '", profile.profileName, "' couldn't be stored and would be lost"));
  // A person who chooses another profile leaves the field first, which stores it.
  if (deviceTab.IsBeingTyped()) return "a number is being typed into the window";
  ProfileFile looked;
  ByteString path;
  std::string refusal = FindStoredProfile(name, &looked, &path);
  if (!refusal.empty()) return refusal;
  std::int32_t row =
      platform::controls().ComboFindStringExact(dialog.window, kProfileList, Bytes(wanted));
  // One that another program has stored meanwhile.
  if (row == platform::kNoRow)
    row = platform::controls().ComboAddString(dialog.window, kProfileList, Bytes(wanted));
  platform::controls().ComboSetCurSel(dialog.window, kProfileList, row);
  LoadSelectedProfile();
  return {};
}

void ProfileRow::OnProfileSelected() {
  // By message, so that it comes after anything that leads to another profile now.
  if (LoadSelectedProfile())
    platform::desktop().PostMessageA(dialog.window, WM_DEVICE_WARNING, 0, 0);
}

bool ProfileRow::LoadSelectedProfile() {
  for (;;) {
    const std::int32_t row = platform::controls().ComboGetCurSel(dialog.window, kProfileList);
    if (row == platform::kNoRow) return false;
    engine->repeatWorker.Clear();
    const ByteString name =
        TextOf(platform::controls().ComboGetLBText(dialog.window, kProfileList, row));
    // Before the load: one that can't be read is remembered, too.
    session.settings.RememberLastProfile(name);
    if (LoadProfile(name)) return true;
    if (session.shuttingDown) return false;
    platform::controls().ComboDeleteString(dialog.window, kProfileList, row);
    platform::controls().ComboSetCurSel(dialog.window, kProfileList, 0);
  }
}

bool ProfileRow::LoadProfile(const ByteString& name) {
  mouseTab.SetTestMode(false);
  EndDetection();
  ClearProfile();

  const ByteString path = profile.FindProfileFile(name);
  if (path.IsEmpty()) {
    controlTab.FillControlList();
    dialog.Box(Around(kMissingProfileText, name, kMissingProfileEnd), kMissingProfileCaption,
               platform::MB_ICONEXCLAMATION);
    return false;
  }
  if (!profile.Load(path)) {
    ClearProfile();
    controlTab.FillControlList();
    dialog.Box(Around(kUnreadableText, path, kUnreadableEnd), kUnreadableCaption,
               platform::MB_ICONEXCLAMATION);
    return false;
  }
  deviceTab.ApplyProfileDevice();
  controlTab.FillControlList();
  deviceTab.ShowMouseAndDeviceState();
  engine->mouseActive = false;
  session.unsaved = false;
  return true;
}

void ProfileRow::EndDetection() {
  engine->EndMouseDetection();
  // The two buttons may have ended it just now, on the notification thread, which holds this lock
  // until it has saved the profile: that must be over before a file is read into it.
  LockGuard saved(engine->mouseLock);
}

void ProfileRow::ClearProfile() {
  // Under one lock: a Control that fires between the two would stay with the worker after its end.
  LockGuard guard(profile.profileLock);
  engine->LetGoOfControls();
  profile.Clear();
}

// New, delete, copy, rename

bool ProfileRow::ValidateNewProfileName(const ByteString& name) {
  if (platform::controls().ComboFindStringExact(dialog.window, kProfileList, Bytes(name)) !=
      platform::kNoRow) {
    dialog.Box(kNameTakenText, kNameTakenCaption, platform::MB_OK);
    return false;
  }
  const ByteString fileName = ProfileFile::ProfileFileName(name);
  if (fileName.IsEmpty()) {
    dialog.Box(Around(kNoFileNameText, name, kNoFileNameEnd), kNoFileNameCaption, platform::MB_OK);
    return false;
  }
  if (ProfileFile::IsTooLong(fileName)) {
    dialog.Box(kTooLongText, kNoFileNameCaption, platform::MB_OK);
    return false;
  }
  if (ProfileFile::IsTakenBySystem(fileName)) {
    dialog.Box(Around(kSystemNameText, fileName, kSystemNameEnd), kNoFileNameCaption,
               platform::MB_OK);
    return false;
  }
  ByteString path = ProfileFile::ProfileFolder();
  path.AppendChar(platform::files().PathSeparator());
  path.Append(fileName);
  if (FileExists(path)) {
    dialog.Box(Around(kFileTakenText, fileName, kFileTakenEnd), kFileTakenCaption, platform::MB_OK);
    return false;
  }
  return true;
}

void ProfileRow::ListNewProfile(const ByteString& name) {
  const std::int32_t row =
      platform::controls().ComboAddString(dialog.window, kProfileList, Bytes(name));
  if (row != platform::kNoRow)
    platform::controls().ComboSetCurSel(dialog.window, kProfileList, row);
  session.settings.RememberLastProfile(name);
}

void ProfileRow::OnNewProfile() {
  NewProfileDialog question;
  if (question.DoModal(dialog.window) != platform::IDOK || session.shuttingDown ||
      !ValidateNewProfileName(question.name)) {
    return;
  }

  engine->repeatWorker.Clear();  // a replay under way is waited for without the lock
  bool saved{};
  {
    LockGuard guard(profile.profileLock);
    ClearProfile();
    profile.profileName = question.name;
    if (deviceManager->DeviceSelected()) {
      profile.deviceName = deviceManager->SelectedName();
      profile.deviceGuid = deviceManager->SelectedGuid();
      profile.pollInterval = deviceManager->PollInterval();
    }
    saved = session.SaveProfile();
  }
  if (saved) {
    ListNewProfile(question.name);
    controlTab.FillControlList();
    return;
  }
  dialog.Box(Around(kCreationText, question.name, kQuoteEnd), kCreationCaption,
             platform::MB_ICONEXCLAMATION);
  if (session.shuttingDown) return;
  ClearProfile();
  const std::int32_t row = platform::controls().ComboGetCurSel(dialog.window, kProfileList);
  if (row == platform::kNoRow) return;
  platform::controls().ComboSetCurSel(dialog.window, kProfileList, row);
  OnProfileSelected();
}

void ProfileRow::OnDeleteProfile() {
  const std::int32_t row = platform::controls().ComboGetCurSel(dialog.window, kProfileList);
  if (row == platform::kNoRow) return;
  const ByteString name = profile.profileName;
  if (DeleteProfileDialog(name).DoModal(dialog.window) != platform::IDOK || session.shuttingDown)
    return;

  engine->repeatWorker.Clear();
  bool deleted{};
  {
    // A detection that ends now on the notification thread saves the profile: before its file goes,
    // or not at all.
    LockGuard guard(profile.profileLock);
    deleted = profile.DeleteProfileFile();
    if (deleted) ClearProfile();
  }
  if (!deleted) {
    dialog.Box(Around(kDeletionText, name, kQuoteEnd), kDeletionCaption,
               platform::MB_ICONEXCLAMATION);
    return;
  }
  controlTab.FillControlList();
  platform::controls().ComboDeleteString(dialog.window, kProfileList, row);
  platform::controls().ComboSetCurSel(dialog.window, kProfileList, 0);
  OnProfileSelected();
}

void ProfileRow::OnCopyProfile() {
  if (platform::controls().ComboGetCurSel(dialog.window, kProfileList) == platform::kNoRow) return;
  ProfileNameDialog question(kCopyTitle, kCopyFirstPart, profile.profileName);
  if (question.DoModal(dialog.window) != platform::IDOK || session.shuttingDown ||
      !ValidateNewProfileName(question.name)) {
    return;
  }

  {
    LockGuard guard(profile.profileLock);
    profile.profileName = question.name;
    session.SaveProfile();
  }
  ListNewProfile(question.name);
}

void ProfileRow::OnRenameProfile() {
  const std::int32_t row = platform::controls().ComboGetCurSel(dialog.window, kProfileList);
  if (row == platform::kNoRow) return;
  const ByteString oldName = profile.profileName;
  ProfileNameDialog question(kRenameTitle, kRenameFirstPart, oldName);
  if (question.DoModal(dialog.window) != platform::IDOK || session.shuttingDown ||
      !ValidateNewProfileName(question.name)) {
    return;
  }

  platform::controls().ComboDeleteString(dialog.window, kProfileList, row);
  {
    LockGuard guard(profile.profileLock);
    // Kept: the old file goes before the new one is there, so that a failure to write leaves the
    // profile in memory alone. Test: ARenameWhoseWriteFailsKeepsTheProfileInMemoryAlone.
    // If part of it couldn't be read, it only goes once its bytes are kept.
    ProfileFile old;
    const bool isGoing = profile.KeepDamagedFile() && old.BeginRename(oldName, question.name);
    profile.profileName = question.name;
    session.SaveProfile();
    if (isGoing) old.EndRename();
  }
  ListNewProfile(question.name);
}

void ProfileRow::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t) {
  using platform::Notice;
  static constexpr Handler<ProfileRow> kHandlers[] = {
      {kProfileList, Notice::SelectionChanged, &ProfileRow::OnProfileSelected},
      {kNewProfile, Notice::Clicked, &ProfileRow::OnNewProfile},
      {kDeleteProfile, Notice::Clicked, &ProfileRow::OnDeleteProfile},
      {kCopyProfile, Notice::Clicked, &ProfileRow::OnCopyProfile},
      {kRenameProfile, Notice::Clicked, &ProfileRow::OnRenameProfile},
  };
  Handle(this, kHandlers, id, notice);
}

}  // namespace kelvaro
