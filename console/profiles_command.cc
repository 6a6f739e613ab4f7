// kelvaroctl profiles: what is stored.

#include <algorithm>
#include <utility>
#include <vector>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/terminal_text.h"
#include "storage/profile_file.h"

namespace kelvaro::console {

int ProfilesCommand(const ProfilesOptions& options, Streams streams) {
  const FileMachine machine;
  LinkedList<ByteString> files;
  ProfileLibrary::ListProfileFiles(&files);
  // By name, as the file system's order says nothing to a person.
  std::vector<std::pair<std::string, std::string>> profiles;
  std::size_t width = 0;
  for (const ByteString& file : files) {
    const std::string name = Bytes(ProfileFile().ReadProfileName(file));
    if (name.empty()) continue;
    width = std::max(width, Characters(TerminalText(name)));
    profiles.emplace_back(name, Bytes(file));
  }
  std::sort(profiles.begin(), profiles.end());
  for (const auto& [name, file] : profiles) {
    if (options.json) {
      streams.out << "{\"name\":" << JsonText(name) << ",\"file\":" << JsonText(file) << "}"
                  << std::endl;
    } else {
      const std::string shown = TerminalText(name);
      streams.out << shown << std::string(width - Characters(shown) + 2, ' ') << TerminalText(file)
                  << std::endl;
    }
  }
  if (profiles.empty() && !options.json) {
    streams.err << "No profile is stored in " << TerminalText(ProfileLibrary::ProfileFolder())
                << "." << std::endl;
  }
  return kDone;
}

}  // namespace kelvaro::console
