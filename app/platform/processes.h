// Other programs: which ones run, starting one, and the windows of all of them. Names are those of
// the published operations, where there is one of that shape.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/platform/desktop.h"
#include "app/platform/threads.h"

namespace platform {

constexpr std::uint32_t CREATE_NEW_CONSOLE = 0x10;

struct RunningProcess {
  std::uint32_t id = 0;
  std::string path;  // of its program's file; empty where it can't be told
};

struct TopLevelWindow {
  WindowHandle window = kNoWindow;  // no two alike, whatever process they belong to
  std::uint32_t processId = 0;
  bool visible = false;
  bool iconic = false;
};

// Both handles are the caller's to close; a process runs on without them.
struct PROCESS_INFORMATION {
  Handle hProcess = kInvalidHandle;  // for waits: signalled when the process has ended
  Handle hThread = kInvalidHandle;
  std::uint32_t dwProcessId = 0;
};

class Processes {
 public:
  virtual ~Processes() = default;

  virtual std::uint32_t GetCurrentProcessId() = 0;

  // Replaces *list by all running processes, this one among them. False when the system can't tell.
  virtual bool ListProcesses(std::vector<RunningProcess>* list) = 0;

  // Starts the program `application`, which gets `commandLine` as its arguments, the first one
  // standing for the program; they are parted by blanks outside of double quotes. `flags`:
  // CREATE_NEW_CONSOLE. An empty `folder` is passed on as it is, a null one means this process's
  // own. False on failure, told by GetLastError.
  virtual bool CreateProcessA(const std::string& application, const std::string& commandLine,
                              std::uint32_t flags, const std::string* folder,
                              PROCESS_INFORMATION* information) = 0;

  // Replaces *list by the top-level windows of all processes that can be reached.
  virtual bool EnumWindows(std::vector<TopLevelWindow>* list) = 0;
  // Posts to a window of EnumWindows, of whichever process; wParam and lParam are 0. Any thread;
  // doesn't wait. False when it isn't there any more.
  virtual bool PostToWindow(WindowHandle window, std::uint32_t message) = 0;
};

// Of the installed platform; see platform.h.
Processes& processes();

}  // namespace platform
