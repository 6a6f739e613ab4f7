#include "storage/profile_library.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "app/platform/error_codes.h"
#include "app/platform/files.h"
#include "foundation/binary_file.h"
#include "foundation/directory_walker.h"
#include "foundation/paths.h"
#include "storage/data_folder.h"

namespace kelvaro {

namespace {

constexpr char kPattern[] = "*.idprof";
constexpr char kForbidden[] = "\\/*?\"<>|:";
constexpr char kDamaged[] = ".damaged";
constexpr char kRenamed[] = ".was";              // behind the new file's name
constexpr std::uint32_t kLongestFileName = 255;  // bytes, on file systems in use
constexpr int kMostCopies = 1000;

static_assert(ProfileLibrary::kLongestName ==
              kLongestFileName - (sizeof ProfileLibrary::kExtension - 1) - (sizeof ".tmp" - 1));

constexpr char kFolder[] = "Profiles";
// Beside it while the examples are being copied.
constexpr char kUnfinished[] = "Profiles.unfinished";

ByteString In(const ByteString& folder, const char* name) {
  ByteString path = folder;
  path.AppendChar(platform::files().PathSeparator());
  path.Append(name);
  return path;
}

void ListFiles(const ByteString& folder, const char* pattern, LinkedList<ByteString>* list) {
  list->Clear();
  DirectoryWalker walker(WalkFiles | WalkFullPaths, pattern, folder, "", false);
  WalkResult file;
  while (walker.Next(&file)) list->AddTail(file.path);
}

bool MakeEmptyFile(const ByteString& path) {
  const auto file = platform::files().CreateFileA(Bytes(path), platform::GENERIC_WRITE, 0,
                                                  platform::CREATE_ALWAYS);
  return file && file->CloseHandle();
}

// Once: examples that a person deletes stay away. A start that was cut off is made up for by the
// next look.
void MakeUsersFolder() {
  const ByteString data = DataFolder();
  const ByteString program = ProgramFolder();
  const ByteString folder = In(data, kFolder);
  const ByteString unfinished = In(data, kUnfinished);
  if (data.Equals(program)) return;
  if (!FileExists(unfinished) &&
      (FileExists(folder) || !CreateFolders(data) || !MakeEmptyFile(unfinished)))
    return;
  // There already where another start made it, or was cut off.
  platform::files().CreateDirectoryA(Bytes(folder));
  LinkedList<ByteString> shipped;
  ListFiles(In(program, kFolder), kPattern, &shipped);
  for (const ByteString& path : shipped) {
    platform::files().CopyFileA(Bytes(path), Bytes(In(folder, FileNameOf(path))), true);
  }
  platform::files().DeleteFileA(Bytes(unfinished));
}

// What a rename keeps, shut off from other programs. Null while one of them has it.
std::unique_ptr<platform::File> Claim(const ByteString& path) {
  return platform::files().CreateFileA(Bytes(path),
                                       platform::GENERIC_READ | platform::GENERIC_WRITE,
                                       platform::FILE_SHARE_READ, platform::OPEN_EXISTING);
}

bool FitsFileName(char c) { return c >= 32 && c < 127 && !std::strchr(kForbidden, c); }

bool HaveSameBytes(const ByteString& one, const ByteString& other) {
  BinaryFile files[] = {BinaryFile(one), BinaryFile(other)};
  if (!files[0].Open() || !files[1].Open()) return false;
  ByteString bytes[2];
  for (std::uint64_t at = 0;; at += BinaryFile::kWindowSize) {
    const bool more = files[0].ReadBytes(&bytes[0], at, BinaryFile::kWindowSize);
    files[1].ReadBytes(&bytes[1], at, BinaryFile::kWindowSize);
    if (!bytes[0].Equals(bytes[1])) return false;
    if (!more) return true;
  }
}

}  // namespace

ByteString ProfileLibrary::ProfileFileName(const ByteString& name) {
  ByteString fileName;
  for (std::uint32_t i = 0; i < name.Length(); ++i) {
    if (FitsFileName(name[i])) fileName.AppendChar(name[i]);
  }
  if (!fileName.IsEmpty()) fileName.Append(kExtension);
  return fileName;
}

bool ProfileLibrary::IsTooLong(const ByteString& fileName) {
  return fileName.Length() > kLongestName + (sizeof kExtension - 1);
}

bool ProfileLibrary::IsTakenBySystem(const ByteString& fileName) {
  const std::string path =
      Bytes(ProfileFolder()) + platform::files().PathSeparator() + Bytes(fileName);
  return platform::files().GetFileAttributesA(path) == platform::INVALID_FILE_ATTRIBUTES &&
         platform::files().GetLastError() == platform::ERROR_INVALID_NAME;
}

ByteString ProfileLibrary::ProfileFolder() { return In(DataFolder(), kFolder); }

bool ProfileLibrary::CanSave() {
  // Where it is missing, the first folder above that is there decides.
  for (ByteString folder = ProfileFolder(); !folder.IsEmpty(); folder = FolderOf(folder, true)) {
    const std::uint32_t attributes = platform::files().GetFileAttributesA(Bytes(folder));
    if (attributes == platform::INVALID_FILE_ATTRIBUTES) continue;
    return (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (attributes & platform::FILE_ATTRIBUTE_READONLY) == 0;
  }
  return true;  // in the root, of which the system tells nothing
}

bool ProfileLibrary::ListProfileFiles(LinkedList<ByteString>* list) {
  MakeUsersFolder();
  ListFiles(ProfileFolder(), kPattern, list);
  return true;
}

bool ProfileLibrary::ListProfileNames(LinkedList<ByteString>* list) {
  BringBack();
  list->Clear();
  // The folder first and the files after it: reading one may bring it back from its temporary,
  // which changes the folder.
  LinkedList<ByteString> files;
  ListProfileFiles(&files);
  for (const ByteString& file : files) {
    const ByteString name = ReadProfileName(file);
    if (!name.IsEmpty()) list->AddTail(name);
  }
  return true;
}

ByteString ProfileLibrary::FindProfileFile(const ByteString& name) {
  const ByteString path = FindFile(name);
  return path.IsEmpty() && BringBack() ? FindFile(name) : path;
}

ByteString ProfileLibrary::FindFile(const ByteString& name) {
  LinkedList<ByteString> files;
  ListProfileFiles(&files);
  for (const ByteString& file : files) {
    if (ReadProfileName(file).Equals(name)) return file;
  }
  return {};
}

bool ProfileLibrary::KeepCopy(const ByteString& path) {
  const ByteString name(FileNameOf(path));
  for (int number = 1; number <= kMostCopies; ++number) {
    ByteString ending = kDamaged;
    if (number > 1) ending.Append(std::to_string(number).c_str());
    ByteString copy = FolderOf(path, false);
    copy.Append(name.Left(kLongestFileName - ending.Length()));
    copy.Append(ending);
    if (platform::files().CopyFileA(Bytes(path), Bytes(copy), true)) return true;
    // The copy comes before any look at the file: one that merely seems to be gone must not be
    // written over.
    if (!FileExists(copy)) return !FileExists(path);
    if (HaveSameBytes(path, copy)) return true;
  }
  return false;
}

bool ProfileLibrary::BeginRename(const ByteString& name, const ByteString& newName) {
  const ByteString path = FindProfileFile(name);
  // A file that can't be deleted isn't kept either.
  if (path.IsEmpty() ||
      (platform::files().GetFileAttributesA(Bytes(path)) & platform::FILE_ATTRIBUTE_READONLY) != 0)
    return false;
  keptPath = In(ProfileFolder(), ProfileFileName(newName).Concat(kRenamed).Text());
  if (!platform::files().CopyFileA(Bytes(path), Bytes(keptPath), false)) return false;
  keptFile = Claim(keptPath);
  if (Remove(path)) return true;
  EndRename();
  return false;
}

void ProfileLibrary::EndRename() {
  keptFile.reset();
  platform::files().DeleteFileA(Bytes(keptPath));
}

bool ProfileLibrary::BringBack() {
  LinkedList<ByteString> kept;
  ListFiles(ProfileFolder(), ByteString(kPattern).Concat(kRenamed).Text(), &kept);
  bool cameBack = false;
  for (const ByteString& path : kept) cameBack |= BringBack(path);
  return cameBack;
}

bool ProfileLibrary::BringBack(const ByteString& kept) {
  auto claim = Claim(kept);
  if (!claim) return false;  // another program is at it
  bool cameBack = false;
  bool isStored =
      FileExists(kept.Left(static_cast<std::int32_t>(kept.Length() - (sizeof kRenamed - 1))));
  const ByteString oldFile = ProfileFileName(ReadProfileName(kept));
  if (!isStored && !oldFile.IsEmpty()) {
    const ByteString old = In(ProfileFolder(), oldFile.Text());
    cameBack = platform::files().CopyFileA(Bytes(kept), Bytes(old), true);
    // Another profile may have the name by now; these bytes wait until it goes.
    isStored = cameBack || HaveSameBytes(kept, old);
  }
  claim.reset();
  if (isStored) platform::files().DeleteFileA(Bytes(kept));
  return cameBack;
}

bool ProfileLibrary::DeleteFileOf(const ByteString& name) {
  if (name.IsEmpty()) return false;
  const ByteString path = FindProfileFile(name);
  return !path.IsEmpty() && Remove(path);
}

// The file that is still there says that the rename came through: once it is gone, what was kept
// would come back.
bool ProfileLibrary::Remove(const ByteString& path) {
  const ByteString kept = path.Concat(kRenamed);
  if (FileExists(kept)) BringBack(kept);
  return platform::files().DeleteFileA(Bytes(path));
}

}  // namespace kelvaro
