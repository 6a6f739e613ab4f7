#include "foundation/directory_walker.h"

#include <new>
#include <utility>

namespace kelvaro {
namespace {

// Tags of pending names.
constexpr std::uint32_t kMayEnter = 0;
constexpr std::uint32_t kIsLink = 1;

ByteString OrAny(const ByteString& pattern) {
  return pattern.IsEmpty() ? ByteString("*") : pattern;
}

ByteString AbsoluteFolder(ByteString folder) {
  if (folder.IsEmpty()) return CurrentFolder();
  if (folder[0] != '.') return folder;
  if (folder[folder.Length() - 1] == ':') EnsureTrailingSeparator(&folder);
  const std::string before = platform::files().GetCurrentDirectoryA();
  if (!platform::files().SetCurrentDirectoryA(Bytes(folder))) return folder;
  const ByteString absolute = CurrentFolder();
  platform::files().SetCurrentDirectoryA(before);
  return absolute.IsEmpty() ? folder : absolute;
}

}  // namespace

DirectoryWalker::DirectoryWalker(std::uint32_t flags, const ByteString& filePattern,
                                 const ByteString& folder, const ByteString& folderPattern,
                                 bool recurseAll) {
  Start(flags, filePattern, folder, folderPattern, recurseAll);
}

bool DirectoryWalker::Start(std::uint32_t newFlags, const ByteString& newFilePattern,
                            const ByteString& newFolder, const ByteString& newFolderPattern,
                            bool newRecurseAll) {
  Stop();
  if (newFlags != 0) flags = newFlags;
  if (!(flags & (WalkFiles | WalkFolders))) return false;
  recurseAll = newRecurseAll;
  filePattern = OrAny(newFilePattern);
  folderPattern = OrAny(newFolderPattern);
  if (flags & WalkFiles) {
    samePatterns = filePattern.Compare(folderPattern, true) == 0;
  } else {
    filePattern = folderPattern;
    samePatterns = true;
  }
  folder = AbsoluteFolder(newFolder);
  EnsureTrailingSeparator(&folder);
  started = true;
  return true;
}

bool DirectoryWalker::Next(WalkResult* out) {
  if (!started) return false;
  if (!inFolderPhase) {
    if (NextFile(out)) return true;
    if (!inFolderPhase) return false;
  }
  return NextFolder(out);
}

void DirectoryWalker::Stop() {
  search.reset();
  child.reset();
  pending.Clear();
  inFolderPhase = false;
  searchEnded = false;
  started = false;
}

bool DirectoryWalker::NextFile(WalkResult* out) {
  while (Find(filePattern)) {
    if (found.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) {
      if (samePatterns && (flags & (WalkRecursive | WalkFolders)) && IsSubfolder()) {
        pending.AddTail(TextOf(found.name), IsLink() ? kIsLink : kMayEnter);
      }
    } else if (flags & WalkFiles) {
      Report(TextOf(found.name), false, out);
      return true;
    }
  }
  if (flags & (WalkRecursive | WalkFolders)) {
    inFolderPhase = true;
    searchEnded = false;
  }
  return false;
}

bool DirectoryWalker::NextFolder(WalkResult* out) {
  for (;;) {
    if (child) {
      if (NextOfChild(out)) return true;
      child.reset();
    }
    ByteString name;
    bool isLink = false;
    if (!NextFolderName(&name, &isLink)) return false;
    if ((flags & WalkRecursive) && !isLink) {
      relativePath = name;
      EnsureTrailingSeparator(&relativePath);
      child.reset(new (std::nothrow)
                      DirectoryWalker(flags, filePattern, folder.Concat(relativePath),
                                      recurseAll ? ByteString("*") : folderPattern, recurseAll));
    }
    if (flags & WalkFolders) {
      Report(name, true, out);
      return true;
    }
  }
}

bool DirectoryWalker::NextOfChild(WalkResult* out) {
  if (!child->Next(out)) return false;
  if (!(flags & WalkFullPaths)) out->path = relativePath.Concat(out->path);
  return true;
}

bool DirectoryWalker::NextFolderName(ByteString* name, bool* isLink) {
  if (samePatterns) {
    if (!pending.head) return false;
    *name = *pending.head->value;
    *isLink = pending.head->tag == kIsLink;
    pending.RemoveNode(pending.head);
    return true;
  }
  while (Find(folderPattern)) {
    if (!(found.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) || !IsSubfolder()) continue;
    *name = TextOf(found.name);
    *isLink = IsLink();
    return true;
  }
  return false;
}

bool DirectoryWalker::Find(const ByteString& pattern) {
  if (searchEnded) return false;
  bool any = false;
  if (search) {
    any = search->FindNextFileA(&found);
  } else {
    search = platform::files().FindFirstFileA(Bytes(folder.Concat(pattern)), &found);
    any = search != nullptr;
  }
  if (!any) {
    search.reset();
    searchEnded = true;
  }
  return any;
}

bool DirectoryWalker::IsSubfolder() const { return found.name != "." && found.name != ".."; }

bool DirectoryWalker::IsLink() const {
  return (found.attributes & platform::FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

void DirectoryWalker::Report(const ByteString& name, bool isFolder, WalkResult* out) const {
  const ByteString fullPath = folder.Concat(name);
  out->path = flags & WalkFullPaths ? fullPath : name;
  out->isFolder = isFolder;
  out->hasStatus = (flags & WalkStatus) && GetFileStatus(fullPath, &out->status);
}

}  // namespace kelvaro
