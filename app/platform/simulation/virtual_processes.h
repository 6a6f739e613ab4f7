// The simulated machine's other programs, and the start of new ones. A process is a file, perhaps a
// window, and a way to answer messages; the simulated program itself is one, too.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/platform/processes.h"
#include "app/platform/simulation/journal.h"
#include "app/platform/simulation/scheduler.h"
#include "app/platform/simulation/virtual_disk.h"

namespace platform::simulation {

// How a process behaves; times in ms.
struct ProcessDescription {
  static constexpr std::uint64_t kNever = UINT64_MAX;

  std::string path;
  bool hasWindow = true;
  bool visible = true;  // its window
  bool iconic = false;
  std::uint64_t endsAfterClose = 0;  // so long after WM_CLOSE
  // So long after any other message.
  std::uint64_t endsAfterMessage = 0;
  std::uint64_t endsAfterStart = kNever;  // by itself
};

// What CreateProcessA was asked for, whether or not it worked.
struct StartedProcess {
  std::uint64_t t = 0;   // ms since the start of the Simulation
  std::uint32_t id = 0;  // 0: it failed
  std::string application;
  std::string commandLine;
  std::uint32_t flags = 0;
  bool hasFolder = false;
  std::string folder;
};

struct PostedMessage {
  std::uint64_t t = 0;
  std::uint32_t process = 0;
  std::uint32_t message = 0;
  friend bool operator==(const PostedMessage&, const PostedMessage&) = default;
};

class VirtualProcesses final : public Processes {
 public:
  static constexpr std::uint32_t kOwnId = 1000;
  static constexpr std::uint32_t kFileNotFound = 2;

  // The disk has the program's own file.
  VirtualProcesses(Scheduler& scheduler, Journal& journal, Threads& threads, VirtualDisk& disk)
      : scheduler(scheduler), journal(journal), threads(threads), disk(disk) {}

  // The windows of the program itself, and the way to post to one of them. None at first.
  void SetOwnWindows(std::function<std::vector<TopLevelWindow>()> windows,
                     std::function<bool(WindowHandle, std::uint32_t)> post);

  // The id of one that runs from now on, counted up from 1001.
  std::uint32_t Add(const ProcessDescription& description);
  // Ends it now.
  void End(std::uint32_t id);
  bool Runs(std::uint32_t id) const;
  // A program that can be started, and how it behaves then. A path that is given here twice has the
  // later behaviour. Any other can't be started (error 2).
  void Provide(const ProcessDescription& description);
  const std::vector<StartedProcess>& Started() const { return started; }
  // What was posted to other processes' windows and to the program's own.
  const std::vector<PostedMessage>& Posted() const { return posted; }
  // The ends of processes, in their order, as ids.
  const std::vector<std::uint32_t>& Ended() const { return ended; }

  std::uint32_t GetCurrentProcessId() override { return kOwnId; }
  // The program itself first, then by id.
  bool ListProcesses(std::vector<RunningProcess>* list) override;
  bool CreateProcessA(const std::string& application, const std::string& commandLine,
                      std::uint32_t flags, const std::string* folder,
                      PROCESS_INFORMATION* information) override;
  bool EnumWindows(std::vector<TopLevelWindow>* list) override;
  bool PostToWindow(WindowHandle window, std::uint32_t message) override;

 private:
  struct Process {
    ProcessDescription description;
    Handle end = kInvalidHandle;  // signalled at its end, where somebody waits for it
    bool running = true;
  };

  void EndAfter(std::uint32_t id, std::uint64_t ms);

  Scheduler& scheduler;
  Journal& journal;
  Threads& threads;
  VirtualDisk& disk;
  std::function<std::vector<TopLevelWindow>()> ownWindows;
  std::function<bool(WindowHandle, std::uint32_t)> postToOwn;
  std::map<std::uint32_t, Process> processes;
  std::map<std::string, ProcessDescription> programs;
  std::vector<StartedProcess> started;
  std::vector<PostedMessage> posted;
  std::vector<std::uint32_t> ended;
  std::uint32_t lastId = kOwnId;
};

}  // namespace platform::simulation
