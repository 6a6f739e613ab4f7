// What the command line asks of the window, and the LauncherThread, which starts a game together
// with the program and ends with it. The thread reaches the window by posted messages alone, and
// reads what the command line asked for, which nobody writes once it runs.
#include <vector>

#include "app/platform/clock.h"
#include "app/platform/controls.h"
#include "app/platform/processes.h"
#include "app/platform/shell.h"
#include "app/resources/control_ids.h"
#include "app/start/process_finder.h"
#include "app/window/main_window.h"
#include "foundation/paths.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr std::uint32_t kCloseWithin = 500;       // ms; of a window that was asked to close
constexpr std::uint32_t kInstancesSettle = 2000;  // ms; before the game takes the screen
constexpr char kLaunchFailure[] = "Launch Failure";

ByteString InQuotes(const ByteString& text) {
  ByteString quoted('"');
  quoted.Append(text);
  quoted.AppendChar('"');
  return quoted;
}

// Asks each in turn to close as a person would, and whatever didn't, as only this program can: a
// hidden window takes the second message alone.
void CloseInstances(const std::vector<std::uint32_t>& processes) {
  for (const std::uint32_t process : processes)
    if (!CloseProcessWindows(process, kCloseWithin, platform::WM_CLOSE))
      CloseProcessWindows(process, 0, WM_CLOSE_PROGRAM);
}

}  // namespace

void MainWindow::LoadQuoteChars() { quoteChars = kelvaro::LoadQuoteChars(); }

void MainWindow::ParseCommandLine() {
  const LaunchRequest request =
      ReadCommandLine(TextOf(platform::shell().GetCommandLineA(quoteChars.quoteSub)), quoteChars);
  extraProfiles = request.profiles;
  launchTarget = request.target;
  launchArgs = request.args;
  launchDir = request.dir;
  if (extraProfiles.count == 0) return;
  const ByteString name = *extraProfiles.head->value;
  extraProfiles.RemoveNode(extraProfiles.head);
  const std::int32_t row = platform::controls().ComboFindString(window, kProfileList, Bytes(name));
  if (row == platform::kNoRow) {
    Box(ByteString("Profile \"")
            .Concat(name)
            .Concat("\" is not in the list of available profiles. Command line selection failed."),
        "Profile Selection Failure", platform::MB_ICONEXCLAMATION);
    return;
  }
  platform::controls().ComboSetCurSel(window, kProfileList, row);
  commandLineProfileSelected = true;
}

void MainWindow::OnStartLaunch() {
  if (commandLineProfileSelected && !launchTarget.IsEmpty()) Start(false, kPriorityOfCaller);
}

std::uint32_t MainWindow::Run() { return LaunchTarget(); }

void MainWindow::CloseOtherInstances() {
  ProcessList processes;
  if (!EnumerateProcesses(&processes)) return;
  const ByteString ownName = FileNameOf(programPath);
  const std::uint32_t ownId = platform::processes().GetCurrentProcessId();
  for (const ProcessRecord& process : processes) {
    if (process.processId == ownId || process.fileName.Compare(ownName, true) != 0) continue;
    CloseInstances({process.processId});
  }
}

std::uint32_t MainWindow::LaunchTarget() {
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

  ByteString line = InQuotes(launchTarget);
  if (!launchArgs.IsEmpty()) {
    line.AppendChar(' ');
    line.Append(launchArgs);
  }
  const std::string folder = Bytes(launchDir.IsEmpty() ? FolderOf(launchTarget, true) : launchDir);
  if (!instances.empty()) platform::clock().Sleep(kInstancesSettle);

  platform::PROCESS_INFORMATION game;
  if (!platform::processes().CreateProcessA(Bytes(launchTarget), Bytes(line),
                                            platform::CREATE_NEW_CONSOLE, &folder, &game)) {
    ByteString text("Failed to launch \"");
    text.Append(launchTarget);
    text.Append("\".\n\nReason: ");
    text.Append(SystemErrorText(platform::files().GetLastError()));
    Box(text, kLaunchFailure, platform::MB_ICONSTOP);
    platform::desktop().PostMessageA(window, WM_CLOSE_PROGRAM, 0, 0);
    return 0;
  }

  const platform::Handle ends[] = {game.hProcess, stopEvent};
  const bool gameEnded = platform::threads().WaitForMultipleObjects(
                             2, ends, platform::WAIT_FOREVER) == platform::WAIT_OBJECT_0;
  platform::threads().CloseHandle(game.hThread);
  platform::threads().CloseHandle(game.hProcess);
  for (const platform::Handle handle : kept) platform::threads().CloseHandle(handle);

  instances.push_back(platform::processes().GetCurrentProcessId());
  CloseInstances(instances);
  if (gameEnded) platform::desktop().PostMessageA(window, WM_CLOSE_PROGRAM, 0, 0);
  return 0;
}

}  // namespace kelvaro
