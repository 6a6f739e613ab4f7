#include "app/window/session.h"

#include "app/platform/files.h"
#include "foundation/paths.h"

namespace kelvaro {
namespace {

constexpr char kCantSaveText[] = "Changes to profiles can't be stored in the folder\n";
constexpr char kCantSaveEnd[] =
    "\n\nThey last until Kelvaro ends, and are then lost. To keep them, give yourself the right to "
    "write to that folder, or move Kelvaro's folder to a place where you have it.";
constexpr char kNotSavedText[] = "The profile \"";
constexpr char kNotSavedFolder[] = "\" couldn't be stored in the folder\n";
constexpr char kNotSavedEnd[] =
    "\n\nIts changes last until Kelvaro ends. To keep them, make room on the disk or give yourself "
    "the right to write to that folder: the next change stores the whole profile.";

}  // namespace

void Session::TellUnlessProfilesCanBeSaved() {
  if (ProfileFile::CanSave()) return;
  platform::desktop().Tell(
      Bytes(Around(kCantSaveText, ProfileFile::ProfileFolder(), kCantSaveEnd)));
}

// Also on the notification thread, with locks held.
bool Session::SaveProfile() {
  if (profile.Save()) {
    unsaved = false;
    return true;
  }
  const ByteString reason = SystemErrorWords();
  // Without a name there is nothing to store.
  if (ProfileFile::ProfileFileName(profile.profileName).IsEmpty()) return false;
  unsaved = true;
  if (failedSaveTold.exchange(true)) return false;
  ByteString text = Around(kNotSavedText, profile.profileName, kNotSavedFolder);
  text.Append(ProfileFile::ProfileFolder());
  if (!reason.IsEmpty()) text.Append(Around("\n(", reason, ")"));
  text.Append(kNotSavedEnd);
  platform::desktop().Tell(Bytes(text));
  return false;
}

void Session::SaveAppSettings() {
  const RegistryWrites together;
  SaveDeviceSettings();
  settings.Save();
}

void Session::SaveAfterMouseDetection() {
  SaveDeviceSettings();
  LockGuard guard(profile.profileLock);
  SaveProfile();
}

void Session::LetGoWithoutDevice() {
  if (deviceManager->DeviceSelected()) return;
  engine->LetGoWithoutDevice();
  WakeTimer();
}

void Session::WakeTimer() { platform::desktop().WakeTimer(dialog.window, kTimer); }

void Session::ReselectDevice() {
  deviceManager->ReselectDevice();
  LetGoWithoutDevice();
}

void Session::StartDevice(EngineHost& host) {
  ownedManager = std::make_unique<DeviceManager>(dialog.window);
  deviceManager = ownedManager.get();
  engine = std::make_unique<ControlEngine>(profile, *deviceManager, host);
}

// The pointer goes last: until the manager has ended, the notification thread looks at it.
void Session::EndDevice() {
  ownedManager.reset();
  deviceManager = nullptr;
  // Not every system takes back what a program that ends has down. A thread that had to be ended by
  // force holds its locks for ever.
  if (engine && !profile.profileLock.IsTaken() && !engine->repeatWorker.repeatLock.IsTaken() &&
      !engine->mouseLock.IsTaken())
    engine->LetGoWithoutDevice();
}

}  // namespace kelvaro
