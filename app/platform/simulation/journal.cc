#include "app/platform/simulation/journal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace platform::simulation {
namespace {

constexpr std::string_view kOperations[] = {
    "Acquire",
    "ActivateToolTip",
    "AddTabTool",
    "AddTool",
    "BeginDeferWindowPos",
    "ChooseFile",
    "ChooseFolder",
    "CloseHandle",
    "ComboAddString",
    "ComboDeleteString",
    "ComboSetCurSel",
    "CreateDevice",
    "CreateEventA",
    "CreateProcessA",
    "CreateThread",
    "CreateToolTip",
    "DeferWindowPos",
    "DestroyIcon",
    "DirectInput8Create",
    "EnableToolTips",
    "EndDeferWindowPos",
    "EndDialog",
    "EnumDevices",
    "EnumObjects",
    "EnumWindows",
    "FormatMessageA",
    "GetCapabilities",
    "GetCurrentThreadPriority",
    "GetCursorPos",
    "GetDesktopRect",
    "GetDeviceState",
    "GetExitCodeThread",
    "GetHelpFunction",
    "HtmlHelp",
    "InvalidateControl",
    "InvalidateRect",
    "KillTimer",
    "ListGetColumnOrder",
    "ListProcesses",
    "ListSetColumnOrder",
    "ListSetColumnWidth",
    "LoadBitmapA",
    "LoadIconA",
    "LoadLibraryA",
    "MessageBeep",
    "MessageBoxA",
    "MoveWindow",
    "Poll",
    "PostControlMessage",
    "PostMessageA",
    "PostToWindow",
    "RegCloseKey",
    "RegCreateKeyA",
    "RegDeleteValueA",
    "RegEnumKeyA",
    "RegEnumValueA",
    "RegOpenKeyA",
    "RegQueryValueExA",
    "RegSetValueExA",
    "ResetEvent",
    "RunDialog",
    "SetControlFocus",
    "SetControlPos",
    "SetCooperativeLevel",
    "SetCurrentThreadPriority",
    "SetDataFormat",
    "SetEvent",
    "SetForegroundWindow",
    "SetHandCursor",
    "SetPicture",
    "SetPriorityClass",
    "SetProperty",
    "SetTimer",
    "SetToolTipTime",
    "SetToolTipWidth",
    "SetWindowIcon",
    "SetWindowsHookExA",
    "ShellExecuteA",
    "Shell_NotifyIconA",
    "ShowControl",
    "ShowWindow",
    "TabSetCurSel",
    "TerminateThread",
    "TrackPopupMenu",
    "Unacquire",
    "UnhookWindowsHookEx",
    "UpdateWindow",
    "WaitForMultipleObjects",
    "WaitForSingleObject",
    "keybd_event",
    "mouse_event",
    "timeBeginPeriod",
    "timeEndPeriod",
    "timeGetDevCaps",
    "timeKillEvent",
    "timeSetEvent",
};

void MustBeKnown(const std::string& operation) {
  if (std::find(std::begin(kOperations), std::end(kOperations), operation) !=
      std::end(kOperations)) {
    return;
  }
  std::fprintf(stderr, "simulation: no operation that could fail is named %s\n", operation.c_str());
  std::abort();
}

}  // namespace

void Journal::Plan(const std::string& operation, HRESULT result, std::uint64_t times) {
  MustBeKnown(operation);
  if (times == 0) {
    plans.erase(operation);
  } else {
    plans[operation] = Fault{result, times};
  }
}

void Journal::Mend(const std::string& operation) {
  MustBeKnown(operation);
  plans.erase(operation);
}

std::optional<HRESULT> Journal::Planned(std::string_view operation) {
  const auto plan = plans.find(operation);
  if (plan == plans.end()) return std::nullopt;
  const HRESULT result = plan->second.result;
  if (plan->second.times != UINT64_MAX && --plan->second.times == 0) plans.erase(plan);
  return result;
}

}  // namespace platform::simulation
