// Which programs run, and asking the windows of one of them to close. No state; any thread. A
// listing is made anew for each question, which at a hundred a second for half a second is cheap
// enough.
#pragma once

#include <cstdint>

#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

// One running process. The names are empty where the system doesn't tell them.
struct ProcessRecord {
  std::uint32_t recordKind = 0;  // always 0
  std::uint32_t processId = 0;
  std::uint16_t taskId = 0;  // always 0
  ByteString folder;         // of the program's file, without a separator at its end
  ByteString fileName;
};

using ProcessList = LinkedList<ProcessRecord>;

// Replaces *list by all running processes, this one among them. False, with an empty list, when the
// system can't tell.
bool EnumerateProcesses(ProcessList* list);

// False also when the system can't tell.
bool IsProcessRunning(std::uint32_t processId);

// Posts `message` to every top-level window of the process (WM_CLOSE only to those that are visible
// or iconic) and, if that was any, looks every 10 ms for `wait` ms, and once more at the end,
// whether the process is gone. True when it was seen to be gone; false at once when nothing was
// posted. A listing that fails counts as gone.
bool CloseProcessWindows(std::uint32_t processId, std::uint32_t wait, std::uint32_t message);

}  // namespace kelvaro
