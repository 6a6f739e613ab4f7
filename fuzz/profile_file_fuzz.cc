// Profile files of any bytes, on the simulated disk. Checked: a load ends with nothing left open,
// and gives the same whether the bytes are the target or the temporary of one that is empty; a
// profile that loads is saved, loads again, and is then saved to the same bytes.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "app/platform/simulation/simulation.h"
#include "fuzz/check.h"
#include "storage/profile_file.h"
#include "storage/profile_library.h"

namespace {

using kelvaro::ByteString;
using kelvaro::ProfileFile;
using kelvaro::ProfileLibrary;
using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

constexpr char kPath[] = "/data/fuzz.idprof";
constexpr char kTemporary[] = "/data/fuzz.idprof.tmp";

// What the window asks for another name otherwise.
bool CanBeAFile(const ByteString& name) {
  const ByteString fileName = ProfileFile::ProfileFileName(name);
  return !fileName.IsEmpty() && !ProfileLibrary::IsTooLong(fileName);
}

ByteString SavedPath(const ProfileFile& profile) {
  ByteString path = ProfileFile::ProfileFolder();
  path.AppendChar('/');
  path.Append(ProfileFile::ProfileFileName(profile.profileName));
  return path;
}

std::string Saved(VirtualDisk& disk, ProfileFile* profile) {
  Check(profile->Save(), "a loaded profile can't be saved");
  const std::optional<std::string> bytes = disk.FileBytes(SavedPath(*profile).Text());
  Check(bytes.has_value(), "a saved profile isn't there");
  return *bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Simulation sim;
  VirtualDisk& disk = sim.Disk();
  disk.Format('/');
  disk.ClearLog();
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  disk.PutFile(kPath, bytes);

  ProfileFile profile;
  const bool loaded = profile.Load(kPath);
  const ByteString name = profile.ReadProfileName(kPath);
  Check(disk.OpenHandles() == 0, "a file was left open");
  Check(!loaded || name.Equals(profile.profileName), "the name read alone is another one");

  disk.PutFile(kPath, "");
  disk.PutFile(kTemporary, bytes);
  ProfileFile restored;
  Check(restored.Load(kPath) == loaded, "a restored file loads otherwise");
  Check(restored.controls.count == profile.controls.count, "a restored file has other Controls");
  Check(!disk.Exists(kTemporary), "the temporary stays after a restore");

  if (!loaded) return 0;
  if (!CanBeAFile(profile.profileName)) profile.profileName = "fuzz";
  const std::string first = Saved(disk, &profile);
  ProfileFile again;
  Check(again.Load(SavedPath(profile)), "a saved profile doesn't load");
  Check(Saved(disk, &again) == first, "a profile is saved to other bytes the second time");
  return 0;
}
