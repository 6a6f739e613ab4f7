#include "app/platform/simulation/virtual_processes.h"

#include <utility>

namespace platform::simulation {
namespace {

// Windows of other processes have numbers that no window of the program has.
constexpr WindowHandle kForeign = WindowHandle{1} << 31;

}  // namespace

void VirtualProcesses::SetOwnWindows(std::function<std::vector<TopLevelWindow>()> windows,
                                     std::function<bool(WindowHandle, std::uint32_t)> post) {
  ownWindows = std::move(windows);
  postToOwn = std::move(post);
}

std::uint32_t VirtualProcesses::Add(const ProcessDescription& description) {
  const std::uint32_t id = ++lastId;
  processes[id].description = description;
  EndAfter(id, description.endsAfterStart);
  return id;
}

void VirtualProcesses::End(std::uint32_t id) {
  const auto found = processes.find(id);
  if (found == processes.end() || !found->second.running) return;
  found->second.running = false;
  ended.push_back(id);
  // Nothing happens where the handle has been closed.
  if (found->second.end != kInvalidHandle) threads.SetEvent(found->second.end);
}

bool VirtualProcesses::Runs(std::uint32_t id) const {
  const auto found = processes.find(id);
  return found != processes.end() && found->second.running;
}

void VirtualProcesses::Provide(const ProcessDescription& description) {
  programs[description.path] = description;
}

void VirtualProcesses::EndAfter(std::uint32_t id, std::uint64_t ms) {
  if (ms == ProcessDescription::kNever) return;
  const std::uint64_t due = scheduler.Now() + ms;
  scheduler.Spawn(Rank::Other, "process", [this, id, due] {
    scheduler.SleepUntil(due);
    End(id);
    return 0u;
  });
}

bool VirtualProcesses::ListProcesses(std::vector<RunningProcess>* list) {
  list->clear();
  if (journal.Enter("ListProcesses")) return false;
  list->push_back({kOwnId, disk.GetModuleFileNameA()});
  for (const auto& [id, process] : processes)
    if (process.running) list->push_back({id, process.description.path});
  return true;
}

bool VirtualProcesses::CreateProcessA(const std::string& application,
                                      const std::string& commandLine, std::uint32_t flags,
                                      const std::string* folder, PROCESS_INFORMATION* information) {
  *information = {};
  StartedProcess asked{scheduler.Now(),
                       0,
                       application,
                       commandLine,
                       flags,
                       folder != nullptr,
                       folder ? *folder : std::string()};
  const std::optional<HRESULT> failure = journal.Enter("CreateProcessA", commandLine);
  const auto program = programs.find(application);
  if (failure || program == programs.end()) {
    started.push_back(std::move(asked));
    disk.SetLastError(failure ? static_cast<std::uint32_t>(*failure) : kFileNotFound);
    return false;
  }
  asked.id = Add(program->second);
  Process& process = processes[asked.id];
  process.end = threads.CreateEventA(true, false);
  information->hProcess = process.end;
  information->hThread = threads.CreateEventA(true, false);
  information->dwProcessId = asked.id;
  started.push_back(std::move(asked));
  return true;
}

bool VirtualProcesses::EnumWindows(std::vector<TopLevelWindow>* list) {
  if (journal.Enter("EnumWindows")) return false;
  *list = ownWindows ? ownWindows() : std::vector<TopLevelWindow>();
  for (TopLevelWindow& window : *list) window.processId = kOwnId;
  for (const auto& [id, process] : processes)
    if (process.running && process.description.hasWindow)
      list->push_back({kForeign | id, id, process.description.visible, process.description.iconic});
  return true;
}

bool VirtualProcesses::PostToWindow(WindowHandle window, std::uint32_t message) {
  if (journal.Enter("PostToWindow", message)) return false;
  const bool foreign = (window & kForeign) != 0;
  const auto id = foreign ? static_cast<std::uint32_t>(window & ~kForeign) : kOwnId;
  posted.push_back({scheduler.Now(), id, message});
  if (!foreign) return postToOwn && postToOwn(window, message);
  if (!Runs(id)) return false;
  const ProcessDescription& description = processes[id].description;
  EndAfter(id, message == WM_CLOSE ? description.endsAfterClose : description.endsAfterMessage);
  return true;
}

}  // namespace platform::simulation
