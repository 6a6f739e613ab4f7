#include "storage/profile_library.h"

#include <cstdint>
#include <cstring>

#include "app/platform/files.h"
#include "foundation/directory_walker.h"
#include "foundation/paths.h"

namespace kelvaro {

namespace {

constexpr char kExtension[] = ".idprof";
constexpr char kPattern[] = "*.idprof";
constexpr char kForbidden[] = "\\/*?\"<>|:";

bool FitsFileName(char c) { return c >= 32 && c < 127 && !std::strchr(kForbidden, c); }

}  // namespace

ByteString ProfileLibrary::ProfileFileName(const ByteString& name) {
  ByteString fileName;
  for (std::uint32_t i = 0; i < name.Length(); ++i) {
    if (FitsFileName(name[i])) fileName.AppendChar(name[i]);
  }
  if (!fileName.IsEmpty()) fileName.Append(kExtension);
  return fileName;
}

ByteString ProfileLibrary::ProfileFolder() {
  ByteString folder = ProgramFolder();
  folder.AppendChar(platform::PathSeparator());
  folder.Append("Profiles");
  return folder;
}

bool ProfileLibrary::ListProfileFiles(LinkedList<ByteString>* list) {
  list->Clear();
  DirectoryWalker walker(WalkFiles | WalkFullPaths, kPattern, ProfileFolder(), "", false);
  WalkResult file;
  while (walker.Next(&file)) list->AddTail(file.path);
  return true;
}

bool ProfileLibrary::ListProfileNames(LinkedList<ByteString>* list) {
  list->Clear();
  // The folder first and the files after it: reading one may bring it back from its temporary,
  // which changes the folder.
  LinkedList<ByteString> files;
  ListProfileFiles(&files);
  for (auto* node = files.head; node; node = node->next) {
    const ByteString name = ReadProfileName(*node->value);
    if (!name.IsEmpty()) list->AddTail(name);
  }
  return true;
}

ByteString ProfileLibrary::FindProfileFile(const ByteString& name) {
  LinkedList<ByteString> files;
  ListProfileFiles(&files);
  for (auto* node = files.head; node; node = node->next) {
    if (ReadProfileName(*node->value).Equals(name)) return *node->value;
  }
  return {};
}

bool ProfileLibrary::DeleteFileOf(const ByteString& name) {
  if (name.IsEmpty()) return false;
  const ByteString path = FindProfileFile(name);
  return !path.IsEmpty() && platform::DeleteFileA(SeamPath(path));
}

}  // namespace kelvaro
