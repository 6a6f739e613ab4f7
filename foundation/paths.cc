#include "foundation/paths.h"

#include <algorithm>
#include <cstring>

namespace kelvaro {
namespace {

constexpr std::uint32_t kFilled = 7;  // FileStatus::validMask

bool HasDrives(char separator) { return separator == '\\'; }

// Index behind the last separator, 0 for none.
std::uint32_t NameStart(const char* path, std::uint32_t length, char separator) {
  while (length > 0 && path[length - 1] != separator) --length;
  return length;
}

bool IsBareDrive(const ByteString& path, char separator) {
  if (path.Length() != 2 && !(path.Length() == 3 && path[2] == separator)) return false;
  return IsLetter(path[0]) && path[1] == ':';
}

bool Fits(const std::string& path, char separator) {
  return !HasDrives(separator) || path.size() < PathBufferSize;
}

// Empty where the system's answer wouldn't fit.
ByteString Told(const std::string& path, char separator) {
  return Fits(path, separator) ? TextOf(path) : ByteString();
}

}  // namespace

bool FileExists(const ByteString& path, char separator) {
  if (path.Length() < (HasDrives(separator) ? 2u : 1u)) return false;
  if (IsBareDrive(path, separator)) {
    const std::uint32_t drive = FoldUpper(static_cast<std::uint8_t>(path[0])) - std::uint32_t{'A'};
    return (platform::files().GetLogicalDrives() >> drive & 1) != 0;
  }
  return platform::files().GetFileAttributesA(Bytes(path)) != platform::INVALID_FILE_ATTRIBUTES;
}

bool GetFileStatus(const ByteString& path, FileStatus* status) {
  platform::FindData found;
  if (!platform::files().FindFirstFileA(Bytes(path), &found)) return false;
  status->validMask = kFilled;
  status->created = found.created;
  status->accessed = found.accessed;
  status->written = found.written;
  status->size = found.size;
  status->attributes = found.attributes;
  return true;
}

const char* FileNameOf(const char* path, char separator) {
  if (!path) return nullptr;
  const char* const last = std::strrchr(path, separator);
  return last ? last + 1 : path;
}

const char* FileNameOf(const ByteString& path, char separator) {
  return path.Text() + NameStart(path.Text(), path.Length(), separator);
}

ByteString FolderOf(const ByteString& path, bool withoutSeparator, char separator) {
  const std::uint32_t start = NameStart(path.Text(), path.Length(), separator);
  if (start == 0) return ByteString();
  return path.Left(static_cast<std::int32_t>(withoutSeparator ? start - 1 : start));
}

ByteString RootOf(const ByteString& path, bool withoutSeparator, char separator) {
  if (!HasDrives(separator)) {
    std::uint32_t leading = 0;
    while (leading < path.Length() && path[leading] == separator) ++leading;
    return path.Left(static_cast<std::int32_t>(leading));
  }
  ByteString root(path);
  if (path.Length() < 2) {
    if (!withoutSeparator && (path.IsEmpty() || path[0] != separator)) root.AppendChar(separator);
    return root;
  }
  std::int32_t position = 0;
  if (path[0] == separator && path[1] == separator) path.FindChar(separator, &position, 2);
  if (path.FindChar(separator, &position, position + 1)) root.Truncate(position);
  if (!withoutSeparator) EnsureTrailingSeparator(&root, separator);
  return root;
}

void EnsureTrailingSeparator(ByteString* path, char separator) {
  if (path->IsEmpty() || (*path)[path->Length() - 1] != separator) path->AppendChar(separator);
}

ByteString CurrentFolder(char separator) {
  return Told(platform::files().GetCurrentDirectoryA(), separator);
}

ByteString ProgramFolder(char separator) {
  return FolderOf(ProgramPath(separator), true, separator);
}

ByteString ProgramPath(char separator) {
  return Told(platform::files().GetModuleFileNameA(), separator);
}

std::string ProgramPathRefusal(char separator) {
  const std::string path = platform::files().GetModuleFileNameA();
  if (Fits(path, separator)) return {};
  return "This program's path is too long: it has " + std::to_string(path.size()) +
         " bytes, and may have " + std::to_string(PathBufferSize - 1) +
         ". Move the folder to a place with a shorter path, and start the program there.";
}

bool CreateFolders(const ByteString& path, char separator) {
  ByteString built = RootOf(path, false, separator);
  std::uint32_t taken = std::min(built.Length(), path.Length());
  while (taken < path.Length()) {
    const char* const rest = path.Text() + taken;
    const std::uint32_t left = path.Length() - taken;
    const void* const next = std::memchr(rest, separator, left);
    const std::uint32_t level =
        next ? static_cast<std::uint32_t>(static_cast<const char*>(next) - rest) : left;
    built.Append(rest, level);
    taken += next ? level + 1 : level;
    if (!FileExists(built, separator) && !platform::files().CreateDirectoryA(Bytes(built)))
      return false;
    built.AppendChar(separator);
  }
  return true;
}

}  // namespace kelvaro
