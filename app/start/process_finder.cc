#include "app/start/process_finder.h"

#include <vector>

#include "app/platform/clock.h"
#include "app/platform/processes.h"
#include "foundation/paths.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kLookEvery = 10;  // ms

bool PostToWindows(std::uint32_t processId, std::uint32_t message) {
  std::vector<platform::TopLevelWindow> windows;
  platform::processes().EnumWindows(&windows);
  bool posted = false;
  for (const platform::TopLevelWindow& window : windows) {
    if (window.processId != processId) continue;
    if (message == platform::WM_CLOSE && !window.visible && !window.iconic) continue;
    platform::processes().PostToWindow(window.window, message);
    posted = true;
  }
  return posted;
}

}  // namespace

bool EnumerateProcesses(ProcessList* list) {
  list->Clear();
  std::vector<platform::RunningProcess> processes;
  if (!platform::processes().ListProcesses(&processes)) return false;
  for (const platform::RunningProcess& process : processes) {
    const ByteString path = TextOf(process.path);
    ProcessRecord record;
    record.processId = process.id;
    record.folder = FolderOf(path, true);
    record.fileName = FileNameOf(path);
    list->AddTail(record);
  }
  return true;
}

bool IsProcessRunning(std::uint32_t processId) {
  ProcessList processes;
  if (!EnumerateProcesses(&processes)) return false;
  for (const ProcessRecord& process : processes)
    if (process.processId == processId) return true;
  return false;
}

bool CloseProcessWindows(std::uint32_t processId, std::uint32_t wait, std::uint32_t message) {
  if (!PostToWindows(processId, message)) return false;
  const std::uint32_t start = platform::clock().GetTickCount();
  while (platform::clock().GetTickCount() - start < wait) {
    platform::clock().Sleep(kLookEvery);
    if (!IsProcessRunning(processId)) return true;
  }
  return !IsProcessRunning(processId);
}

}  // namespace kelvaro
