#include "console/profile_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "app/platform/simulation/virtual_disk.h"
#include "console/did_you_mean.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/profile_json.h"
#include "console/read_file.h"

namespace kelvaro::console {
namespace {

constexpr char kInMemory[] = "/profile";

constexpr std::size_t kNamesTold = 8;
constexpr std::size_t kLongestName = 64;  // bytes of a name that are told

bool IsFile(const std::string& path) {
  const std::uint32_t attributes = platform::files().GetFileAttributesA(path);
  return attributes != platform::INVALID_FILE_ATTRIBUTES &&
         (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// Whether there is a temporary that a load can use in place of a useless file.
bool HasTemporary(const std::string& path) {
  return path.ends_with(ProfileFile::kExtension) && IsFile(path + ".tmp");
}

bool LooksLikeJson(const std::string& bytes) {
  const std::size_t begin = bytes.find_first_not_of(" \t\r\n");
  return begin != std::string::npos && bytes[begin] == '{';
}

// `name` is what the message calls it.
bool LoadStored(const std::string& path, const std::string& name, ProfileFile* profile,
                ProfileFault* fault) {
  if (profile->Load(TextOf(path))) return true;
  fault->message =
      name + ": this profile can't be read whole (kelvaroctl check says what is wrong with it)";
  return false;
}

// "; the stored ones are 'Walk', 'Race'", the most similar names first.
std::string StoredNames(const std::string& wanted) {
  LinkedList<ByteString> list;
  ProfileFile().ListProfileNames(&list);
  if (list.count == 0) return "; no profile is stored in " + Bytes(ProfileLibrary::ProfileFolder());
  std::vector<std::pair<std::size_t, std::string>> names;
  for (const ByteString& each : list) {
    const std::string name = Bytes(each);
    names.emplace_back(Distance(name, wanted), name);
  }
  std::sort(names.begin(), names.end());
  std::vector<std::string> plain;
  for (const auto& each : names) plain.push_back(each.second);
  const std::string meant = DidYouMean(wanted, plain);
  std::string text = meant.empty() ? "" : " (" + meant + ")";
  text += names.size() == 1 ? "; stored is " : "; stored are ";
  for (std::size_t i = 0; i < names.size() && i < kNamesTold; ++i) {
    text += (i > 0 ? ", '" : "'") + names[i].second.substr(0, kLongestName) + "'";
  }
  if (names.size() > kNamesTold)
    text += " and " + std::to_string(names.size() - kNamesTold) + " more";
  return text;
}

}  // namespace

bool IsStoredProfile(const std::string& bytes) { return bytes.starts_with(ProfileFile::kMagic); }

bool ReadProfileBytes(const std::string& bytes, const std::string& name, ProfileFile* profile,
                      ProfileFault* fault) {
  if (IsStoredProfile(bytes)) {
    platform::simulation::VirtualDisk disk;
    disk.PutFile(kInMemory, bytes);
    const FileMachine memory(disk);
    return LoadStored(kInMemory, name, profile, fault);
  }
  JsonFault problem;
  if (ReadProfile(bytes, profile, &problem)) return true;
  fault->message = problem.Text(name);
  fault->detail = problem.detail;
  if (name.ends_with(ProfileFile::kExtension)) {
    fault->message = name + ": neither a stored profile nor one in JSON";
    fault->detail.clear();
  }
  return false;
}

bool FindProfile(const std::string& fileOrName, ProfileFile* profile, ProfileFault* fault) {
  std::string path = fileOrName;
  if (path != "-" && !IsFile(path)) {
    if (HasTemporary(path)) return LoadStored(path, path, profile, fault);
    path = Bytes(ProfileFile().FindProfileFile(TextOf(fileOrName)));
    if (path.empty() && fileOrName.find('/') != std::string::npos) {
      fault->message = fileOrName + ": " + std::strerror(ENOENT);
      return false;
    }
    if (path.empty()) {
      fault->message =
          "there is no file and no stored profile '" + fileOrName + "'" + StoredNames(fileOrName);
      return false;
    }
  }
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(path, kMostProfile, &bytes, &error)) {
    fault->message = path + ": " + error;
    return false;
  }
  // Even when it doesn't begin as one: it may have been emptied.
  if (HasTemporary(path) && !LooksLikeJson(bytes)) return LoadStored(path, path, profile, fault);
  return ReadProfileBytes(bytes, path, profile, fault);
}

}  // namespace kelvaro::console
