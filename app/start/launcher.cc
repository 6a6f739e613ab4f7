#include "app/start/launcher.h"

#include <iterator>
#include <vector>

#include "app/platform/clock.h"
#include "app/platform/processes.h"
#include "app/platform/shell.h"
#include "app/start/launch_request.h"
#include "app/start/process_finder.h"
#include "app/start/window_messages.h"
#include "foundation/paths.h"

namespace kelvaro {
namespace {

constexpr std::uint32_t kCloseWithin = 500;       // ms; of a window that was asked to close
constexpr std::uint32_t kInstancesSettle = 2000;  // ms; before the game takes the screen
constexpr char kLaunchFailure[] = "Launch Failure";

// Asks each in turn to close as a person would. Those that didn't get this program's own message,
// the only one that a hidden window takes.
void CloseInstances(const std::vector<std::uint32_t>& processes) {
  for (const std::uint32_t process : processes)
    if (!CloseProcessWindows(process, kCloseWithin, platform::WM_CLOSE))
      CloseProcessWindows(process, 0, WM_CLOSE_PROGRAM);
}

}  // namespace

void Launcher::ParseCommandLine(platform::WindowHandle mainWindow, const ByteString& ownPath) {
  window = mainWindow;
  programPath = ownPath;
  const LaunchRequest request =
      ReadCommandLine(TextOf(platform::shell().GetCommandLineA(quoteChars.quoteSub)), quoteChars);
  extraProfiles = request.profiles;
  launchTarget = request.target;
  launchArgs = request.args;
  launchDir = request.dir;
}

void Launcher::StartIfDue() {
  if (commandLineProfileSelected && !launchTarget.IsEmpty()) Start(false, kPriorityOfCaller);
}

void Launcher::CloseOtherInstances() {
  ProcessList processes;
  if (!EnumerateProcesses(&processes)) return;
  const ByteString ownName = FileNameOf(programPath);
  const std::uint32_t ownId = platform::processes().GetCurrentProcessId();
  for (const ProcessRecord& process : processes) {
    if (process.processId == ownId || process.fileName.Compare(ownName, true) != 0) continue;
    CloseInstances({process.processId});
  }
}

bool Launcher::StartTarget(platform::PROCESS_INFORMATION* game) {
  ByteString line = InQuotes(launchTarget);
  if (!launchArgs.IsEmpty()) {
    line.AppendChar(' ');
    line.Append(launchArgs);
  }
  const std::string folder = Bytes(launchDir.IsEmpty() ? FolderOf(launchTarget, true) : launchDir);
  if (platform::processes().CreateProcessA(Bytes(launchTarget), Bytes(line),
                                           platform::CREATE_NEW_CONSOLE, &folder, game))
    return true;
  ByteString text = Around("Failed to launch \"", launchTarget, "\".\n\nReason: ");
  text.Append(SystemErrorText(platform::files().GetLastError()));
  platform::desktop().MessageBoxA(window, Bytes(text), kLaunchFailure, platform::MB_ICONSTOP);
  return false;
}

void Launcher::LaunchTarget() {
  CloseOtherInstances();

  std::vector<platform::Handle> kept;
  std::vector<std::uint32_t> instances;
  const std::string program = Bytes(programPath);
  for (const ByteString& name : extraProfiles) {
    ByteString line = InQuotes(programPath);
    line.Append(" profile=");
    line.Append(InQuotes(name));
    platform::PROCESS_INFORMATION started;
    if (!platform::processes().CreateProcessA(program, Bytes(line), platform::CREATE_NEW_CONSOLE,
                                              nullptr, &started))
      continue;
    kept.push_back(started.hThread);
    kept.push_back(started.hProcess);
    instances.push_back(started.dwProcessId);
  }

  if (!instances.empty()) platform::clock().Sleep(kInstancesSettle);

  platform::PROCESS_INFORMATION game;
  if (!StartTarget(&game)) {
    platform::desktop().PostMessageA(window, WM_CLOSE_PROGRAM, 0, 0);
    return;
  }

  const platform::Handle ends[] = {game.hProcess, stopEvent};
  const bool gameEnded =
      platform::threads().WaitForMultipleObjects(std::size(ends), ends, platform::WAIT_FOREVER) ==
      platform::WAIT_OBJECT_0;
  platform::threads().CloseHandle(game.hThread);
  platform::threads().CloseHandle(game.hProcess);
  for (const platform::Handle handle : kept) platform::threads().CloseHandle(handle);

  instances.push_back(platform::processes().GetCurrentProcessId());
  CloseInstances(instances);
  if (gameEnded) platform::desktop().PostMessageA(window, WM_CLOSE_PROGRAM, 0, 0);
}

}  // namespace kelvaro
