#include "storage/data_folder.h"

#include "app/platform/files.h"
#include "foundation/paths.h"

namespace kelvaro {

ByteString DataFolder() {
  ByteString program = ProgramFolder();
  ByteString marker = program;
  marker.AppendChar(platform::files().PathSeparator());
  marker.Append("PerUser");
  if (!FileExists(marker)) return program;
  ByteString folder = TextOf(platform::system().GetUserDataFolder());
  if (folder.IsEmpty()) return program;
  EnsureTrailingSeparator(&folder);
  folder.Append("kelvaro");
  return folder;
}

}  // namespace kelvaro
