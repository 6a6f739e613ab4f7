#include "console/profile_source.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/platform/simulation/virtual_disk.h"
#include "console/console_error.h"
#include "console/did_you_mean.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/name_choice.h"
#include "console/profile_json.h"
#include "console/read_file.h"

namespace kelvaro::console {
namespace {

constexpr char kInMemory[] = "/profile";

constexpr std::size_t kNamesTold = 8;
constexpr std::size_t kLongestToldName = 64;  // bytes of a name that are told

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

std::vector<std::string> StoredNames() {
  LinkedList<ByteString> list;
  ProfileFile().ListProfileNames(&list);
  std::vector<std::string> names;
  for (const ByteString& each : list) names.push_back(Bytes(each));
  return names;
}

// "; stored are 'Walk', 'Race'", the most similar names first.
std::string MostSimilar(std::vector<std::string> names, const std::string& wanted) {
  if (names.empty()) {
    return "; no profile is stored in " + Bytes(ProfileLibrary::ProfileFolder());
  }
  std::sort(names.begin(), names.end(), [&wanted](const std::string& a, const std::string& b) {
    return std::pair(Distance(a, wanted), a) < std::pair(Distance(b, wanted), b);
  });
  std::string text = MeantInBrackets(wanted, names);
  text += names.size() == 1 ? "; stored is " : "; stored are ";
  for (std::size_t i = 0; i < names.size() && i < kNamesTold; ++i) {
    text += (i > 0 ? ", '" : "'") + names[i].substr(0, kLongestToldName) + "'";
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

std::string NoStoredProfile(const std::string& name) {
  return "no stored profile '" + name + "'" + MostSimilar(StoredNames(), name);
}

bool FindProfilePath(const std::string& fileOrName, std::string* path, ProfileFault* fault) {
  *path = fileOrName;
  if (fileOrName == "-" || IsFile(fileOrName)) return true;
  const auto isStored = [path](const std::string& name) {
    const std::string file = Bytes(ProfileFile().FindProfileFile(TextOf(name)));
    if (!file.empty()) *path = file;
    return !file.empty();
  };
  // A path that leads nowhere is for the reader to complain of.
  const char separators[] = {'/', platform::files().PathSeparator(), '\0'};
  if (isStored(fileOrName) || fileOrName.find_first_of(separators) != std::string::npos)
    return true;
  const std::vector<std::string> stored = StoredNames();
  const std::vector<std::string> meant = NamesThatBegin(stored, fileOrName);
  if (meant.size() == 1 && isStored(meant[0])) return true;
  fault->message = meant.size() > 1 ? SeveralNames(fileOrName, meant)
                                    : "there is no file and " + NoStoredProfile(fileOrName);
  return false;
}

bool FindProfile(const std::string& fileOrName, ProfileFile* profile, ProfileFault* fault) {
  if (fileOrName != "-" && !IsFile(fileOrName) && HasTemporary(fileOrName)) {
    return LoadStored(fileOrName, fileOrName, profile, fault);
  }
  std::string path;
  if (!FindProfilePath(fileOrName, &path, fault)) return false;
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

bool FindProfile(const std::string& fileOrName, ProfileFile* profile, std::ostream& err) {
  ProfileFault fault;
  if (FindProfile(fileOrName, profile, &fault)) return true;
  Complain(err, fault.message, fault.detail);
  return false;
}

}  // namespace kelvaro::console
