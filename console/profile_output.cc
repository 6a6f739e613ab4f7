#include "console/profile_output.h"

#include <cerrno>
#include <cstring>

#include "app/platform/platform.h"
#include "foundation/paths.h"

namespace kelvaro::console {
namespace {

// The system's words for the last operation that failed.
std::string LastError() {
  const ByteString text = SystemErrorWords();
  return text.IsEmpty() ? "it can't be written" : Bytes(text);
}

// What keeps a file from being made at this path, empty for nothing.
std::string Obstacle(const ByteString& path) {
  const std::uint32_t attributes = platform::files().GetFileAttributesA(Bytes(path));
  if (attributes != platform::INVALID_FILE_ATTRIBUTES &&
      (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return std::strerror(EISDIR);
  }
  // Saving would make it, and a mistyped path is more likely than the wish for a new folder.
  const ByteString folder = FolderOf(path, false);
  if (!folder.IsEmpty() && !FileExists(folder)) return "there is no such folder";
  return "";
}

bool Save(ProfileFile& profile, const std::string& path, std::string* error) {
  if (profile.SaveAs(TextOf(path))) return true;
  *error = path + ": " + LastError();
  // A load would take it for what is left of a save that was cut off.
  platform::files().DeleteFileA(path + ".tmp");
  return false;
}

}  // namespace

bool WriteProfile(ProfileFile& profile, const std::string& path, std::string* error) {
  const std::string obstacle = Obstacle(TextOf(path));
  if (obstacle.empty()) return Save(profile, path, error);
  *error = path + ": " + obstacle;
  return false;
}

bool StoreProfile(ProfileFile& profile, std::string* path, std::string* error) {
  const std::string name = Bytes(profile.profileName);
  const ByteString fileName = ProfileLibrary::ProfileFileName(profile.profileName);
  if (fileName.IsEmpty() || ProfileLibrary::IsTooLong(fileName)) {
    *error = "no file name can be made of '" + name + "'";
    return false;
  }
  if (ProfileLibrary::IsTakenBySystem(fileName)) {
    *error = "'" + Bytes(fileName) + "' can't be a file: this system has that name for a device";
    return false;
  }
  *path =
      Bytes(ProfileLibrary::ProfileFolder()) + platform::files().PathSeparator() + Bytes(fileName);
  const ByteString other = profile.FindProfileFile(profile.profileName);
  if (!other.IsEmpty() || FileExists(TextOf(*path))) {
    *error =
        (other.IsEmpty() ? *path : Bytes(other)) + ": there is a profile '" + name + "' already";
    return false;
  }
  return Save(profile, *path, error);
}

}  // namespace kelvaro::console
