// The whole machine in memory. Time is virtual and moves only when every thread waits; threads are
// virtual and run one at a time, each until it waits. Of those due at the same millisecond the
// timer goes first, then the thread named "notification", then "repeat", then other threads in the
// order of their making, then the user interface that Screen runs, and last the one that made the
// Simulation: a test. The same calls give the same run. One Simulation at a time; it installs
// itself for its life.
//
// A test presses, waits and looks:
//
//   Simulation sim;
//   SimulatedDevice& pad = sim.AddDevice({});
//   ... select the device, attach an engine ...
//   pad.Press({1});
//   sim.RunFor(10);
//   EXPECT_EQ(sim.EventText(), "...");
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/platform.h"
#include "app/platform/recording/recording.h"
#include "app/platform/recording/simulated_device.h"
#include "app/platform/simulation/screen.h"
#include "app/platform/simulation/virtual_disk.h"
#include "app/platform/simulation/virtual_processes.h"
#include "app/platform/simulation/virtual_registry.h"

namespace platform::simulation {

// One event that was sent, as it was given.
struct SentEvent {
  enum class Kind { Key, Mouse };
  std::uint64_t t = 0;  // ms since the start of the Simulation
  Kind kind = Kind::Key;
  std::uint32_t flags = 0;
  std::uint8_t vk = 0;    // keys
  std::uint8_t scan = 0;  // keys
  std::int32_t dx = 0;    // mouse
  std::int32_t dy = 0;
  std::int32_t data = 0;
  friend bool operator==(const SentEvent&, const SentEvent&) = default;
};

// "120 key 41 1e 0" (vk and scan in hexadecimal, flags decimal), "120 mouse 1 4 -1 0" (flags, dx,
// dy, data, decimal).
std::string EventText(const SentEvent& event);

class Simulation {
 public:
  Simulation();
  ~Simulation();
  Simulation(const Simulation&) = delete;
  Simulation& operator=(const Simulation&) = delete;

  // The groups, to be installed with one of them replaced.
  const platform::Platform& Groups() const;

  // Virtual time in ms since the start. GetTickCount is the same plus an offset, 0 at first.
  std::uint64_t Now() const;
  void SetTickOffset(std::uint32_t offset);

  // Lets time pass on the calling (outermost) thread: everything due up to and at the end has run
  // on return. RunFor(0) runs what is due now.
  void RunFor(std::uint64_t ms);
  void RunUntil(std::uint64_t t);

  SimulatedDevice& AddDevice(const DeviceDescription& description);

  // The files, with their own log of calls and plan of faults.
  VirtualDisk& Disk();

  // The registry, empty at first. Its log of calls and its faults are those below.
  VirtualRegistry& Registry();

  // Everything sent so far, and the same as lines of EventText, each ended by a line feed.
  const std::vector<SentEvent>& Events() const;
  std::string EventText() const;
  void ClearEvents();
  // Called with each event as it is sent, beside keeping it.
  void OnEvent(std::function<void(const SentEvent&)> listener);
  // Whether events are kept (they are at first); a long run does without.
  void KeepEvents(bool keep);

  // Operations in the order in which they were called, failed ones included: those of devices, of
  // timers, of the registry, of the desktop that a test may want in order, and of threads and
  // events except waits. Kept only after LogCalls(true). Each is its name, followed by what is
  // listed here for some:
  //   SetCooperativeLevel FLAGS, SetProperty AXIS MIN MAX (AXIS is its place in EnumObjects),
  //   Release DirectInput (the directory's; a device's stands alone), timeBeginPeriod MS,
  //   timeEndPeriod MS, timeSetEvent MS RESOLUTION, timeKillEvent TIMER, CreateThread NAME,
  //   SetPriorityClass CLASS, GetExitCodeThread HANDLE, TerminateThread HANDLE CODE,
  //   SetCurrentThreadPriority PRIORITY, CreateEventA manual (or auto), SetEvent HANDLE,
  //   ResetEvent HANDLE, CloseHandle HANDLE, FormatMessageA CODE, RegOpenKeyA KEY,
  //   RegCreateKeyA KEY, RegCloseKey KEY, RegQueryValueExA KEY NAME, RegSetValueExA KEY NAME,
  //   RegDeleteValueA KEY NAME, RegEnumValueA KEY INDEX, RegEnumKeyA KEY INDEX (KEY is the whole
  //   path, as "HKCU\Software"; "?" where the handle isn't open),
  //   MessageBoxA CAPTION, RunDialog DIALOG, EndDialog RESULT, ShowWindow COMMAND, SetTimer ID MS,
  //   KillTimer ID, SetWindowsHookExA, UnhookWindowsHookEx, LoadIconA ID, DestroyIcon,
  //   LoadBitmapA ID, Shell_NotifyIconA MESSAGE, GetCursorPos, GetDesktopRect, TrackPopupMenu,
  //   PostMessageA MESSAGE, SetForegroundWindow, SetWindowIcon large (or small), MoveWindow,
  //   InvalidateRect, UpdateWindow,
  //   SetControlPos ID FLAGS, BeginDeferWindowPos COUNT, DeferWindowPos ID FLAGS,
  //   EndDeferWindowPos, InvalidateControl ID, ShowControl ID COMMAND, SetControlFocus ID,
  //   PostControlMessage ID MESSAGE, ComboAddString ID, ComboDeleteString ID ROW,
  //   ComboSetCurSel ID ROW, ListGetColumnOrder, ListSetColumnOrder,
  //   ListSetColumnWidth ID COLUMN, TabSetCurSel ID TAB,
  //   SetPicture ID, SetHandCursor, CreateToolTip, EnableToolTips, SetToolTipWidth PIXELS,
  //   SetToolTipTime MS, ActivateToolTip, AddTabTool ID TAB, AddTool ID,
  //   ShellExecuteA TARGET, ChooseFile TITLE, ChooseFolder TITLE, MessageBeep, LoadLibraryA NAME,
  //   GetHelpFunction ORDINAL, HtmlHelp COMMAND (and a TOPIC to display), ListProcesses,
  //   CreateProcessA COMMANDLINE, EnumWindows, PostToWindow MESSAGE
  // All numbers are decimal. Handles and timers are numbered from 1, each apart.
  void LogCalls(bool log);
  const std::vector<std::string>& Calls() const;
  void ClearCalls();

  // The next `times` calls of that operation ("CreateThread", "timeSetEvent", "SetDataFormat",
  // "GetDeviceState", ...) fail; an operation with a result code gives `result`. A device operation
  // for which that is a success (DI_OK, DI_NOEFFECT) is carried out and then gives it. An event
  // that is sent by a failing keybd_event or mouse_event is lost; a window operation that fails
  // does nothing, and ShellExecuteA gives `result`. Sleep, GetTickCount, GetCurrentThreadId and
  // Release can't fail: an unknown name ends the program.
  void FailNext(const std::string& operation, HRESULT result = DIERR_INVALIDPARAM,
                std::uint32_t times = 1);
  // So does every call from then on, until Mend.
  void FailAlways(const std::string& operation, HRESULT result = DIERR_INVALIDPARAM);
  void Mend(const std::string& operation);

  void SetTimerLimits(std::uint32_t minMs, std::uint32_t maxMs);

  // What the person sees and does, with the program that is run for it. Its log of calls and its
  // faults are those above.
  simulation::Screen& Screen();

  // Other programs.
  VirtualProcesses& Processes();

  // Short for AnswerNext and Boxes of the Screen: what the next message boxes are answered with, in
  // order, and all that were shown. Where no program runs, an unforeseen box gets 0.
  void AnswerMessageBox(std::int32_t button);
  const std::vector<ShownMessageBox>& MessageBoxes() const;

  // FormatMessageA's answer; before any call 2 and 5 have one.
  void SetSystemMessage(std::uint32_t code, const std::string& text);
  // At first "/home/player/.local/share".
  void SetUserDataFolder(const std::string& path);

  // Threads that have been made and not ended, the outermost not counted. Those that are left when
  // the Simulation ends are dropped where they stand, without unwinding.
  std::uint32_t LivingThreads() const;

  // What hasn't been given back: thread and event handles; DirectInput and device objects;
  // timeBeginPeriod without its timeEndPeriod.
  std::uint32_t OpenHandles() const;
  std::uint32_t OpenDeviceObjects() const;
  std::uint32_t OpenTimerPeriods() const;

 private:
  struct Machine;
  std::unique_ptr<Machine> machine;
};

}  // namespace platform::simulation
