// Starts the threads of this platform.
#pragma once

namespace platform {

// Runs entry(argument) on a thread of its own that nobody joins. Signals meant for the process
// don't reach it, so that they interrupt none of its waits and are handled on the threads of the
// program's own. False when there can be none; the argument then stays the caller's.
bool StartDetachedThread(void* (*entry)(void*), void* argument);

// For debuggers and the process list; cut at 15 bytes.
void NameCurrentThread(const char* name);

}  // namespace platform
