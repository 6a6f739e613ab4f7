// Processes from /proc, and the windows of other instances of this program through the socket that
// each of them keeps (instance_socket.h). Any thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/platform/linux/instance_socket.h"
#include "app/platform/processes.h"

namespace platform {

class LinuxProcesses final : public Processes {
 public:
  // `threads` makes the handles and must outlive this. `folder`: where instances keep their
  // sockets; empty where there is none, and then no other instance can be reached.
  LinuxProcesses(Threads& threads, std::string folder = InstanceFolder());

  // Lets other instances see this one's windows and post to them, from now on until this object
  // goes. Both are called on a thread of its own. False, with nothing offered, where there can be
  // no socket.
  bool OfferWindows(WindowSource windows, WindowPost post);

  std::uint32_t GetCurrentProcessId() override;

  // Of every user; the path is that of the program's file (of one that was deleted, where it was),
  // empty where the system doesn't tell it. One that has ended isn't there, even if its parent
  // hasn't looked yet.
  bool ListProcesses(std::vector<RunningProcess>* list) override;

  // A program without a folder is looked up in PATH; a script without a first line that names its
  // interpreter runs in the shell. It starts in a session of its own, with default signals, no
  // descriptors but the three standard ones (input is empty), and an ordinary priority. `flags` has
  // no meaning. An empty folder is this process's own. hThread stays invalid; hProcess is a thread
  // that waits for the process, so that nothing is left of it when it ends.
  bool CreateProcessA(const std::string& application, const std::string& commandLine,
                      std::uint32_t flags, const std::string* folder,
                      PROCESS_INFORMATION* information) override;

  // This process's windows first.
  bool EnumWindows(std::vector<TopLevelWindow>* list) override;
  bool PostToWindow(WindowHandle window, std::uint32_t message) override;

 private:
  Threads& threads;
  const std::string folder;
  WindowSource ownWindows;
  WindowPost ownPost;
  std::unique_ptr<InstanceSocket> offered;
};

}  // namespace platform
