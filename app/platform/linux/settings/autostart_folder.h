// The programs that start with a person's session, as values: each is the file kelvaro-NAME.desktop
// of the autostart folder, and its text the full path of the program that the entry's Exec starts.
// An Exec with arguments, which only somebody else can have put there, reads as it stands. Other
// programs' entries are neither seen nor touched; they are known by lacking the value's name. An
// entry that was switched off (Hidden, or by the desktop's own switch) isn't there, and comes back
// when it is written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/platform/registry_parts.h"

namespace platform {

class AutostartFolder {
 public:
  // An empty path: there is none, and it can't be written.
  explicit AutostartFolder(std::string path);

  // In the order in which they were made. All are strings.
  std::vector<StoredValue> Values() const;
  // Strings alone, with names that a file can have: ERROR_INVALID_PARAMETER. ERROR_ACCESS_DENIED
  // when the file can't be written, or belongs to somebody else.
  std::uint32_t Write(const StoredValue& value);
  // ERROR_FILE_NOT_FOUND when there is none.
  std::uint32_t Delete(const std::string& name);

 private:
  struct Entry;
  std::vector<Entry> Entries() const;

  const std::string path;
};

// The program of an Exec, whose escapes are undone.
std::string ProgramOf(const std::string& exec);

}  // namespace platform
