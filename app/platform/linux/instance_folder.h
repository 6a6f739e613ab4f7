// The folder in which the user's running programs of Kelvaro keep their sockets, each named after
// its process, and what all of those sockets have in common.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/platform/linux/descriptor.h"

namespace platform {

// $XDG_RUNTIME_DIR/kelvaro, or a folder of the user's own in /tmp where there is no runtime folder;
// made if it is missing, for its owner alone. Empty where that can't be.
std::string InstanceFolder();

// Where a process has its socket with that ending, such as ".socket".
std::string InstanceSocketPath(const std::string& folder, std::uint32_t process,
                               std::string_view ending);
// The processes that have one in the folder; those of processes that are gone are removed.
std::vector<std::uint32_t> InstancesWith(const std::string& folder, std::string_view ending);

// A socket that keeps packets apart, waits for nothing, and is bound there for its owner alone, in
// the place of what was there before. None where there can be none.
Descriptor ListenAt(const std::string& path);
// None when nobody listens there.
Descriptor ConnectTo(const std::string& path);

// The name of the program at the other end, none if that isn't this user's.
std::optional<std::string> PeerProgram(int connection);
std::string OwnProgram();

// Whether something can be read within so many milliseconds, -1 for ever.
bool Readable(int fd, int ms);

}  // namespace platform
