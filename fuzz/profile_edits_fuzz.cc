// Whole sequences of what is done to profiles, on the simulated disk: each two bytes are an
// operation and what it is about. Checked after each: nothing is left open, and every file holds,
// member by member, what was saved there last. What a damaged file held is kept beside it when it
// is overwritten or deleted.
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>

#include "app/platform/simulation/simulation.h"
#include "fuzz/check.h"
#include "tests/storage/random_profile.h"

namespace {

using kelvaro::ByteString;
using kelvaro::Control;
using kelvaro::MembersText;
using kelvaro::ProfileFile;
using kelvaro::RandomProfile;
using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

// The second and third share a file.
constexpr const char* kNames[] = {"one", "two", "t?wo", "\x81"};

class Edits {
 public:
  explicit Edits(VirtualDisk& simulated) : disk(simulated) { profile.profileName = kNames[0]; }

  void Do(std::uint8_t operation, std::uint8_t what) {
    const ByteString name = kNames[what % std::size(kNames)];
    switch (operation % 9) {
      case 0:
        RandomProfile(what).AddControl(&profile);
        break;
      case 1:
        Remove(what);
        break;
      case 2:
        Copy(what);
        break;
      case 3:
        Settings(what);
        break;
      case 4:
        profile.profileName = name;
        break;
      case 5:
        Save();
        break;
      case 6:
        Load(name);
        break;
      case 7:
        Delete(name);
        break;
      case 8:
        Damage(name, what);
        break;
    }
    LookAtFiles();
  }

 private:
  static std::string PathOf(const ByteString& name) {
    const ByteString fileName = ProfileFile::ProfileFileName(name);
    if (fileName.IsEmpty()) return "";
    return ProfileFile::ProfileFolder().Concat("/").Concat(fileName).Text();
  }

  void Remove(std::uint8_t what) {
    if (profile.controls.count > 0) {
      profile.controls.RemoveNode(profile.controls.At(what % profile.controls.count));
    }
  }

  void Copy(std::uint8_t what) {
    if (profile.controls.count == 0 || profile.controls.count > 20) return;
    const Control& source = *profile.controls.At(what % profile.controls.count)->value;
    profile.controls.AddTail(Control());
    profile.controls.tail->value->CopyDeep(source);
  }

  void Settings(std::uint8_t what) {
    const ByteString name = profile.profileName;
    RandomProfile(what).Fill(&profile, 0);
    profile.profileName = name;
  }

  void Save() {
    const std::string path = PathOf(profile.profileName);
    const bool isDamaged = !path.empty() && profile.DamagedFile().Equals(path.c_str());
    const auto damaged = isDamaged ? disk.FileBytes(path) : std::nullopt;
    Check(profile.Save() == !path.empty(), "saved, or not, against what its name tells", path);
    if (path.empty()) return;
    if (damaged) Check(IsKept(path, *damaged), "what a damaged file held is lost", path);
    saved[path] = MembersText::Of(profile);
  }

  void Load(const ByteString& name) {
    const std::string path = PathOf(name);
    const auto known = saved.find(path);
    if (known == saved.end()) return;
    Check(profile.Load(path.c_str()), "what was saved doesn't load", path);
    Check(profile.DamagedFile().IsEmpty(), "what was saved is damaged", path);
  }

  void Delete(const ByteString& name) {
    ProfileFile other;
    other.profileName = name;
    const std::string path = Bytes(other.FindProfileFile(name));
    const bool isThere = disk.FileBytes(path).has_value();
    Check(other.DeleteProfileFile() == isThere, "deleted, or not, against what is there", path);
    if (!isThere) return;
    Check(!disk.FileBytes(path), "deleted, and still there", path);
    saved.erase(path);
  }

  // Loads what is left of the file then, as the window does before anybody can overwrite it.
  void Damage(const ByteString& name, std::uint8_t what) {
    const std::string path = PathOf(name);
    const auto known = saved.find(path);
    if (known == saved.end()) return;
    const std::string bytes = *disk.FileBytes(path);
    disk.PutFile(path, bytes.substr(0, bytes.size() * what / 256));
    saved.erase(known);
    profile.Load(path.c_str());
    profile.profileName = name;
  }

  bool IsKept(const std::string& path, const std::string& bytes) const {
    const std::string folder = path.substr(0, path.rfind('/'));
    for (const std::string& name : disk.List(folder)) {
      const std::string other = folder + "/" + name;
      if (other.find(".damaged") != std::string::npos && disk.FileBytes(other) == bytes)
        return true;
    }
    return false;
  }

  void LookAtFiles() const {
    Check(disk.OpenHandles() == 0, "a file was left open");
    for (const auto& [path, members] : saved) {
      ProfileFile file;
      Check(file.Load(path.c_str()), "what was saved doesn't load", path);
      Check(MembersText::Of(file) == members, "what was saved loads as something else", path);
    }
  }

  VirtualDisk& disk;
  ProfileFile profile;
  std::map<std::string, std::string> saved;  // members by path
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostBytes = 2 * 60;
  static Simulation sim;
  sim.Disk().Format('/');
  sim.Disk().ClearLog();
  Edits edits(sim.Disk());
  for (std::size_t at = 0; at + 1 < size && at < kMostBytes; at += 2) {
    edits.Do(data[at], data[at + 1]);
  }
  return 0;
}
