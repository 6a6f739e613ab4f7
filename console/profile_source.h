// Where a command takes a profile from: a file in either form, or the name under which one is
// stored. A file that begins as a stored profile does is one; any other is JSON.
#pragma once

#include <ostream>
#include <string>

#include "storage/profile_file.h"

namespace kelvaro::console {

// No profile needs more, in MiB: room for thousands of Controls. JSON is parsed as a whole, at some
// fifty bytes of memory for each byte of the file.
constexpr std::size_t kMostProfile = 8;

// Why there is no profile: one line that names what and where, and lines to show below it.
struct ProfileFault {
  std::string message;
  std::string detail;
};

bool IsStoredProfile(const std::string& bytes);

// Fills *profile, a fresh one, from the bytes of a file, in either form; `name` is the file's, for
// the message. A stored one is read from memory, so that nothing is touched on disk.
bool ReadProfileBytes(const std::string& bytes, const std::string& name, ProfileFile* profile,
                      ProfileFault* fault);

// The file that is meant, "-" for standard input: one of that path, or that of the stored profile
// of that name, or of the only one whose name begins so; each wins over the next. A path with a '/'
// that leads nowhere is given back as it is. Under a FileMachine.
bool FindProfilePath(const std::string& fileOrName, std::string* path, ProfileFault* fault);

// That no profile of that name is stored, and which may be meant or are there. Under a FileMachine.
std::string NoStoredProfile(const std::string& name);

// Fills *profile, a fresh one, from what FindProfilePath gives. Under a FileMachine. A file that
// can't be read whole gives way to its temporary, as it does whenever a profile is loaded.
bool FindProfile(const std::string& fileOrName, ProfileFile* profile, ProfileFault* fault);
// The same, having complained.
bool FindProfile(const std::string& fileOrName, ProfileFile* profile, std::ostream& err);

}  // namespace kelvaro::console
