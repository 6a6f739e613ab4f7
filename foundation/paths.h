// Paths as text, and what the file system says about them. A path's parts are divided by
// `separator`, the platform's own unless told: the backslash, with drives ("C:") and shares
// ("\\server\share"), or the slash, with neither. Nothing is cleaned up: "..", doubled separators
// and blanks stand as they are. No state and any thread, except where the current folder is told.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/files.h"
#include "foundation/byte_string.h"

namespace kelvaro {

// What the system tells of a path with backslashes fits this, its terminator included, or counts as
// a failure. Paths with slashes are as long as the system makes them.
constexpr std::uint32_t PathBufferSize = 262;

// One file's or folder's data. Times are FILETIME values: 100 ns since 1601, UTC.
struct FileStatus {
  std::uint32_t validMask = 0;  // 7 when filled
  std::uint64_t created = 0;
  std::uint64_t accessed = 0;
  std::uint64_t written = 0;
  std::uint64_t size = 0;  // bytes
  std::uint32_t attributes = 0;
};

// Whether there is a file or folder. A bare drive ("C:" or "C:\") is looked up in the mask of
// drives and nowhere else, so that no empty drive starts up. False below 2 bytes, the shortest
// path that names anything with a drive; where the separator is the slash, for an empty path only.
bool FileExists(const ByteString& path, char separator = platform::files().PathSeparator());

// Of the first entry that a search for `path` finds. False, with *status untouched, for none.
bool GetFileStatus(const ByteString& path, FileStatus* status);

// What stands behind the last separator, or all of a path that has none: a position inside the
// argument. Null for null.
const char* FileNameOf(const char* path, char separator = platform::files().PathSeparator());
const char* FileNameOf(const ByteString& path, char separator = platform::files().PathSeparator());
const char* FileNameOf(ByteString&& path, char separator) = delete;
const char* FileNameOf(ByteString&& path) = delete;

// What stands before the last separator, with it or without; empty when there is none.
ByteString FolderOf(const ByteString& path, bool withoutSeparator,
                    char separator = platform::files().PathSeparator());

// "C:\" of "C:\a\b", "\\server\share\" of "\\server\share\a", and of any other path with
// backslashes its first part. Of a path with slashes the leading ones, with or without the flag; of
// a relative one nothing. CreateFolders takes the root as given.
ByteString RootOf(const ByteString& path, bool withoutSeparator,
                  char separator = platform::files().PathSeparator());

// Appends a separator, unless one is the last byte already.
void EnsureTrailingSeparator(ByteString* path, char separator = platform::files().PathSeparator());

// Empty on failure.
ByteString CurrentFolder(char separator = platform::files().PathSeparator());

// Folder, without a separator at its end, and full path of the running program's real file. Empty
// on failure; the folder also when it is the root of slash paths, to which a separator and a name
// are appended as to any other.
ByteString ProgramFolder(char separator = platform::files().PathSeparator());
ByteString ProgramPath(char separator = platform::files().PathSeparator());

// Why the running program's path is empty, and what a person can do: it doesn't fit. Profiles would
// then be looked for in a folder that isn't the program's. Empty where the path fits.
std::string ProgramPathRefusal(char separator = platform::files().PathSeparator());

// Makes every level of a folder's path that is missing, below its root. True for an empty path and
// a bare root, and where a file stands in the place of a level: opening what lies in it fails then.
// False at the first level that can't be made; those above it stay.
bool CreateFolders(const ByteString& path, char separator = platform::files().PathSeparator());

}  // namespace kelvaro
