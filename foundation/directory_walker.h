// Lists a folder, step by step and with subfolders if told: all files of a folder first, then for
// each of its subfolders the folder itself, followed by what is in it; within a level in the order
// of the file system. A folder that can't be read counts as empty. Paths have the platform's
// separator. One thread at a time; a start folder that begins with "." changes the process's
// current folder for a moment, in which no other thread may depend on it.
#pragma once

#include <cstdint>
#include <memory>

#include "app/platform/files.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"
#include "foundation/paths.h"

namespace kelvaro {

constexpr std::uint32_t WalkFiles = 1;       // report files
constexpr std::uint32_t WalkFolders = 2;     // report folders
constexpr std::uint32_t WalkRecursive = 4;   // descend into subfolders
constexpr std::uint32_t WalkStatus = 8;      // fill the status of each result
constexpr std::uint32_t WalkFullPaths = 16;  // report full paths, not relative to the start folder

struct WalkResult {
  ByteString path;
  bool isFolder = false;
  bool hasStatus = false;
  FileStatus status;  // when hasStatus is set
};

class DirectoryWalker {
 public:
  DirectoryWalker() = default;
  // Calls Start.
  DirectoryWalker(std::uint32_t flags, const ByteString& filePattern, const ByteString& folder,
                  const ByteString& folderPattern, bool recurseAll);

  // Ends any walk under way and begins one of `folder`, for none of the current folder. flags: a
  // mask of Walk bits; 0 keeps those of the last walk. Patterns are those of FindFirstFileA, an
  // empty one is "*": filePattern chooses files, folderPattern the folders that are reported and
  // entered; with recurseAll the latter holds for the start folder only, and below it all are.
  // False, with nothing begun, when neither WalkFiles nor WalkFolders is set.
  bool Start(std::uint32_t flags, const ByteString& filePattern, const ByteString& folder,
             const ByteString& folderPattern, bool recurseAll);

  // The next result in *out. False from the end on, and when nothing was begun.
  // "." and ".." are never reported. A link to a folder is reported like one but not entered, as it
  // may lead back to where the walk came from.
  bool Next(WalkResult* out);

  void Stop();

 private:
  bool NextFile(WalkResult* out);
  bool NextFolder(WalkResult* out);
  bool NextOfChild(WalkResult* out);
  // The next folder to report or enter. False at the end.
  bool NextFolderName(ByteString* name, bool* isLink);
  // One step of the search for `pattern`, into `found`; closes it at its end.
  bool Find(const ByteString& pattern);
  bool IsSubfolder() const;  // neither "." nor ".."
  bool IsLink() const;
  void Report(const ByteString& name, bool isFolder, WalkResult* out) const;

  ByteString folder;  // with a separator at its end
  ByteString filePattern;
  ByteString folderPattern;
  std::uint32_t flags = 0;
  std::unique_ptr<platform::FileSearch> search;
  platform::FindData found;  // of the last find
  ByteString relativePath;   // of the subfolder being walked, with a separator at its end
  bool inFolderPhase = false;
  bool samePatterns = false;  // one scan serves files and folders
  bool started = false;
  bool searchEnded = false;  // of this phase
  bool recurseAll = false;
  LinkedList<ByteString> pending;  // names of folders, tagged with whether they are links
  std::unique_ptr<DirectoryWalker> child;
};

}  // namespace kelvaro
