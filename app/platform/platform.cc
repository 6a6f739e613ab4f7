#include "app/platform/platform.h"

#include "app/platform/cut_off.h"

namespace platform {
namespace {

Platform installed;

const Platform& Reach() {
  StopHereIfCutOff();
  return installed;
}

}  // namespace

InstalledPlatform::InstalledPlatform(const Platform& platform) : previous(installed) {
  installed = platform;
}

InstalledPlatform::~InstalledPlatform() { installed = previous; }

Clock& clock() { return *Reach().clock; }
Threads& threads() { return *Reach().threads; }
Timers& timers() { return *Reach().timers; }
Devices& devices() { return *Reach().devices; }
Input& input() { return *Reach().input; }
Files& files() { return *Reach().files; }
System& system() { return *Reach().system; }
Registry& registry() { return *Reach().registry; }
Desktop& desktop() { return *Reach().desktop; }
Controls& controls() { return *Reach().controls; }
Shell& shell() { return *Reach().shell; }
Processes& processes() { return *Reach().processes; }

void Sleep(std::uint32_t ms) { Reach().clock->Sleep(ms); }

std::uint32_t GetTickCount() { return Reach().clock->GetTickCount(); }

std::int32_t GetCurrentThreadId() { return Reach().threads->GetCurrentThreadId(); }

Handle CreateThread(ThreadEntry entry, void* parameter, const char* name, std::int32_t* threadId) {
  return Reach().threads->CreateThread(entry, parameter, name, threadId);
}

bool GetExitCodeThread(Handle thread, std::uint32_t* exitCode) {
  return Reach().threads->GetExitCodeThread(thread, exitCode);
}

bool TerminateThread(Handle thread, std::uint32_t exitCode) {
  return Reach().threads->TerminateThread(thread, exitCode);
}

bool SetCurrentThreadPriority(std::int32_t priority) {
  return Reach().threads->SetCurrentThreadPriority(priority);
}

std::int32_t GetCurrentThreadPriority() { return Reach().threads->GetCurrentThreadPriority(); }

bool SetPriorityClass(std::uint32_t priorityClass) {
  return Reach().threads->SetPriorityClass(priorityClass);
}

Handle CreateEventA(bool manualReset, bool initialState) {
  return Reach().threads->CreateEventA(manualReset, initialState);
}

bool SetEvent(Handle event) { return Reach().threads->SetEvent(event); }

bool ResetEvent(Handle event) { return Reach().threads->ResetEvent(event); }

std::uint32_t WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) {
  return Reach().threads->WaitForSingleObject(handle, timeoutMs);
}

std::uint32_t WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                     std::uint32_t timeoutMs) {
  return Reach().threads->WaitForMultipleObjects(count, handles, timeoutMs);
}

bool CloseHandle(Handle handle) { return Reach().threads->CloseHandle(handle); }

std::uint32_t timeGetDevCaps(TIMECAPS* caps) { return Reach().timers->timeGetDevCaps(caps); }

std::uint32_t timeBeginPeriod(std::uint32_t periodMs) {
  return Reach().timers->timeBeginPeriod(periodMs);
}

std::uint32_t timeEndPeriod(std::uint32_t periodMs) {
  return Reach().timers->timeEndPeriod(periodMs);
}

std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                           TimerCallback callback, void* user, std::uint32_t flags) {
  return Reach().timers->timeSetEvent(delayMs, resolutionMs, callback, user, flags);
}

std::uint32_t timeKillEvent(std::uint32_t timerId) {
  return Reach().timers->timeKillEvent(timerId);
}

HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) {
  return Reach().devices->DirectInput8Create(version, directInput);
}

void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags, std::uint32_t extra) {
  Reach().input->keybd_event(vk, scan, flags, extra);
}

void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                 std::uint32_t extra) {
  Reach().input->mouse_event(flags, dx, dy, data, extra);
}

char PathSeparator() { return Reach().files->PathSeparator(); }

std::unique_ptr<File> CreateFileA(const std::string& path, std::uint32_t access,
                                  std::uint32_t share, std::uint32_t disposition) {
  return Reach().files->CreateFileA(path, access, share, disposition);
}

bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) {
  return Reach().files->CopyFileA(from, to, failIfExists);
}

bool DeleteFileA(const std::string& path) { return Reach().files->DeleteFileA(path); }

std::uint32_t GetFileAttributesA(const std::string& path) {
  return Reach().files->GetFileAttributesA(path);
}

bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) {
  return Reach().files->SetFileAttributesA(path, attributes);
}

bool CreateDirectoryA(const std::string& path) { return Reach().files->CreateDirectoryA(path); }

std::unique_ptr<FileSearch> FindFirstFileA(const std::string& pattern, FindData* data) {
  return Reach().files->FindFirstFileA(pattern, data);
}

std::string GetCurrentDirectoryA() { return Reach().files->GetCurrentDirectoryA(); }

bool SetCurrentDirectoryA(const std::string& path) {
  return Reach().files->SetCurrentDirectoryA(path);
}

std::string GetModuleFileNameA() { return Reach().files->GetModuleFileNameA(); }

std::uint32_t GetLogicalDrives() { return Reach().files->GetLogicalDrives(); }

std::uint32_t GetLastError() { return Reach().files->GetLastError(); }

std::string FormatMessageA(std::uint32_t code) { return Reach().system->FormatMessageA(code); }

std::string GetUserDataFolder() { return Reach().system->GetUserDataFolder(); }

std::uint32_t RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return Reach().registry->RegOpenKeyA(key, path, opened);
}

std::uint32_t RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return Reach().registry->RegCreateKeyA(key, path, opened);
}

std::uint32_t RegCloseKey(HKEY key) { return Reach().registry->RegCloseKey(key); }

std::uint32_t RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t* type, void* data,
                               std::uint32_t* size) {
  return Reach().registry->RegQueryValueExA(key, name, type, data, size);
}

std::uint32_t RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                             const void* data, std::uint32_t size) {
  return Reach().registry->RegSetValueExA(key, name, type, data, size);
}

std::uint32_t RegDeleteValueA(HKEY key, const std::string& name) {
  return Reach().registry->RegDeleteValueA(key, name);
}

std::uint32_t RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                            std::uint32_t* type, void* data, std::uint32_t* size) {
  return Reach().registry->RegEnumValueA(key, index, name, nameSize, type, data, size);
}

std::uint32_t RegEnumKeyA(HKEY key, std::uint32_t index, char* name, std::uint32_t nameSize) {
  return Reach().registry->RegEnumKeyA(key, index, name, nameSize);
}

void BeginWrites() { Reach().registry->BeginWrites(); }

std::uint32_t EndWrites() { return Reach().registry->EndWrites(); }

std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                         std::uint32_t type) {
  return Reach().desktop->MessageBoxA(owner, text, caption, type);
}

void DismissBoxesOfOtherThreads() { Reach().desktop->DismissBoxesOfOtherThreads(); }

void Tell(const std::string& text) { Reach().desktop->Tell(text); }

std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner, WindowListener& listener) {
  return Reach().desktop->RunDialog(dialog, owner, listener);
}

bool EndDialog(WindowHandle window, std::int32_t result) {
  return Reach().desktop->EndDialog(window, result);
}

bool ShowWindow(WindowHandle window, std::int32_t command) {
  return Reach().desktop->ShowWindow(window, command);
}

bool IsWindowVisible(WindowHandle window) { return Reach().desktop->IsWindowVisible(window); }

bool IsIconic(WindowHandle window) { return Reach().desktop->IsIconic(window); }

bool IsZoomed(WindowHandle window) { return Reach().desktop->IsZoomed(window); }

bool SetForegroundWindow(WindowHandle window) {
  return Reach().desktop->SetForegroundWindow(window);
}

bool SetWindowTextA(WindowHandle window, const std::string& text) {
  return Reach().desktop->SetWindowTextA(window, text);
}

bool SetWindowIcon(WindowHandle window, IconHandle icon, bool large) {
  return Reach().desktop->SetWindowIcon(window, icon, large);
}

bool GetWindowRect(WindowHandle window, Rect* rect) {
  return Reach().desktop->GetWindowRect(window, rect);
}

bool GetClientRect(WindowHandle window, Rect* rect) {
  return Reach().desktop->GetClientRect(window, rect);
}

bool MoveWindow(WindowHandle window, const Rect& rect) {
  return Reach().desktop->MoveWindow(window, rect);
}

bool InvalidateRect(WindowHandle window, const Rect& rect) {
  return Reach().desktop->InvalidateRect(window, rect);
}

bool UpdateWindow(WindowHandle window) { return Reach().desktop->UpdateWindow(window); }

bool GetDesktopRect(Rect* rect) { return Reach().desktop->GetDesktopRect(rect); }

std::int32_t GetSystemMetrics(std::int32_t index) {
  return Reach().desktop->GetSystemMetrics(index);
}

Colour GetSysColor(std::int32_t index) { return Reach().desktop->GetSysColor(index); }

bool GetCursorPos(Point* point) { return Reach().desktop->GetCursorPos(point); }

std::uint16_t GetKeyState(std::uint8_t vk) { return Reach().desktop->GetKeyState(vk); }

bool PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                  std::intptr_t lParam) {
  return Reach().desktop->PostMessageA(window, message, wParam, lParam);
}

std::uint32_t SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) {
  return Reach().desktop->SetTimer(window, id, ms);
}

bool KillTimer(WindowHandle window, std::uint32_t id) {
  return Reach().desktop->KillTimer(window, id);
}

HookHandle SetWindowsHookExA(std::int32_t kind, HookProc procedure) {
  return Reach().desktop->SetWindowsHookExA(kind, procedure);
}

bool UnhookWindowsHookEx(HookHandle hook) { return Reach().desktop->UnhookWindowsHookEx(hook); }

std::intptr_t CallNextHookEx(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                             std::intptr_t lParam) {
  return Reach().desktop->CallNextHookEx(hook, code, wParam, lParam);
}

IconHandle LoadIconA(std::uint32_t id) { return Reach().desktop->LoadIconA(id); }

bool DestroyIcon(IconHandle icon) { return Reach().desktop->DestroyIcon(icon); }

BitmapHandle LoadBitmapA(std::uint32_t id) { return Reach().desktop->LoadBitmapA(id); }

bool Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  return Reach().desktop->Shell_NotifyIconA(message, data);
}

bool SetNotifyIconMenu(WindowHandle window, std::uint32_t id, std::span<const MenuItem> items) {
  return Reach().desktop->SetNotifyIconMenu(window, id, items);
}

bool TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items, std::uint32_t flags,
                    Point screen) {
  return Reach().desktop->TrackPopupMenu(window, items, flags, screen);
}

bool HasControl(WindowHandle window, std::uint32_t id) {
  return Reach().controls->HasControl(window, id);
}

bool GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) {
  return Reach().controls->GetControlRect(window, id, rect);
}

bool SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect, std::uint32_t flags) {
  return Reach().controls->SetControlPos(window, id, rect, flags);
}

DeferHandle BeginDeferWindowPos(std::int32_t count) {
  return Reach().controls->BeginDeferWindowPos(count);
}

DeferHandle DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                           const Rect& rect, std::uint32_t flags) {
  return Reach().controls->DeferWindowPos(defer, window, id, rect, flags);
}

bool EndDeferWindowPos(DeferHandle defer) { return Reach().controls->EndDeferWindowPos(defer); }

bool InvalidateControl(WindowHandle window, std::uint32_t id) {
  return Reach().controls->InvalidateControl(window, id);
}

bool ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) {
  return Reach().controls->ShowControl(window, id, command);
}

bool IsControlVisible(WindowHandle window, std::uint32_t id) {
  return Reach().controls->IsControlVisible(window, id);
}

bool EnableControl(WindowHandle window, std::uint32_t id, bool enable) {
  return Reach().controls->EnableControl(window, id, enable);
}

bool IsControlEnabled(WindowHandle window, std::uint32_t id) {
  return Reach().controls->IsControlEnabled(window, id);
}

bool SetControlFocus(WindowHandle window, std::uint32_t id) {
  return Reach().controls->SetControlFocus(window, id);
}

std::uint32_t GetControlFocus(WindowHandle window) {
  return Reach().controls->GetControlFocus(window);
}

bool SetDefaultButton(WindowHandle window, std::uint32_t id) {
  return Reach().controls->SetDefaultButton(window, id);
}

bool PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) {
  return Reach().controls->PostControlMessage(window, id, message);
}

bool SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) {
  return Reach().controls->SetDlgItemTextA(window, id, text);
}

std::string GetDlgItemTextA(WindowHandle window, std::uint32_t id) {
  return Reach().controls->GetDlgItemTextA(window, id);
}

bool SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) {
  return Reach().controls->SetCaret(window, id, offset);
}

bool CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) {
  return Reach().controls->CheckDlgButton(window, id, checked);
}

bool IsDlgButtonChecked(WindowHandle window, std::uint32_t id) {
  return Reach().controls->IsDlgButtonChecked(window, id);
}

std::int32_t ComboAddString(WindowHandle window, std::uint32_t id, const std::string& text) {
  return Reach().controls->ComboAddString(window, id, text);
}

bool ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return Reach().controls->ComboDeleteString(window, id, row);
}

bool ComboResetContent(WindowHandle window, std::uint32_t id) {
  return Reach().controls->ComboResetContent(window, id);
}

std::int32_t ComboGetCount(WindowHandle window, std::uint32_t id) {
  return Reach().controls->ComboGetCount(window, id);
}

std::string ComboGetLBText(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return Reach().controls->ComboGetLBText(window, id, row);
}

std::int32_t ComboFindString(WindowHandle window, std::uint32_t id, const std::string& text) {
  return Reach().controls->ComboFindString(window, id, text);
}

std::int32_t ComboFindStringExact(WindowHandle window, std::uint32_t id, const std::string& text) {
  return Reach().controls->ComboFindStringExact(window, id, text);
}

bool ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return Reach().controls->ComboSetCurSel(window, id, row);
}

std::int32_t ComboGetCurSel(WindowHandle window, std::uint32_t id) {
  return Reach().controls->ComboGetCurSel(window, id);
}

bool ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row, std::int32_t data) {
  return Reach().controls->ComboSetItemData(window, id, row, data);
}

std::int32_t ComboGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return Reach().controls->ComboGetItemData(window, id, row);
}

std::int32_t ListInsertColumn(WindowHandle window, std::uint32_t id, const std::string& text,
                              std::int32_t width) {
  return Reach().controls->ListInsertColumn(window, id, text, width);
}

std::int32_t ListGetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column) {
  return Reach().controls->ListGetColumnWidth(window, id, column);
}

bool ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                        std::int32_t width) {
  return Reach().controls->ListSetColumnWidth(window, id, column, width);
}

bool ListGetColumnOrder(WindowHandle window, std::uint32_t id, std::vector<std::int32_t>* order) {
  return Reach().controls->ListGetColumnOrder(window, id, order);
}

bool ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                        const std::vector<std::int32_t>& order) {
  return Reach().controls->ListSetColumnOrder(window, id, order);
}

std::int32_t ListGetClientWidth(WindowHandle window, std::uint32_t id) {
  return Reach().controls->ListGetClientWidth(window, id);
}

std::int32_t ListInsertItem(WindowHandle window, std::uint32_t id, std::uint32_t data) {
  return Reach().controls->ListInsertItem(window, id, data);
}

bool ListDeleteAllItems(WindowHandle window, std::uint32_t id) {
  return Reach().controls->ListDeleteAllItems(window, id);
}

std::int32_t ListGetItemCount(WindowHandle window, std::uint32_t id) {
  return Reach().controls->ListGetItemCount(window, id);
}

bool ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row, std::int32_t column,
                     const std::string& text) {
  return Reach().controls->ListSetItemText(window, id, row, column, text);
}

std::string ListGetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                            std::int32_t column) {
  return Reach().controls->ListGetItemText(window, id, row, column);
}

std::uint32_t ListGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return Reach().controls->ListGetItemData(window, id, row);
}

bool ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row, bool selected) {
  return Reach().controls->ListSelectItem(window, id, row, selected);
}

std::int32_t ListGetNextSelected(WindowHandle window, std::uint32_t id, std::int32_t after) {
  return Reach().controls->ListGetNextSelected(window, id, after);
}

bool ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return Reach().controls->ListEnsureVisible(window, id, row);
}

std::int32_t TabInsertItem(WindowHandle window, std::uint32_t id, const std::string& text) {
  return Reach().controls->TabInsertItem(window, id, text);
}

bool TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab, Rect* rect) {
  return Reach().controls->TabGetItemRect(window, id, tab, rect);
}

bool TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) {
  return Reach().controls->TabSetCurSel(window, id, tab);
}

std::int32_t TabGetCurSel(WindowHandle window, std::uint32_t id) {
  return Reach().controls->TabGetCurSel(window, id);
}

bool SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least, std::int32_t most) {
  return Reach().controls->SliderSetRange(window, id, least, most);
}

bool SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) {
  return Reach().controls->SliderSetTicFreq(window, id, every);
}

bool SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) {
  return Reach().controls->SliderSetPos(window, id, position);
}

std::int32_t SliderGetPos(WindowHandle window, std::uint32_t id) {
  return Reach().controls->SliderGetPos(window, id);
}

bool SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) {
  return Reach().controls->SetPicture(window, id, bitmap);
}

bool SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                    std::int32_t height, std::int32_t weight, bool underline) {
  return Reach().controls->SetControlFont(window, id, face, height, weight, underline);
}

bool SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) {
  return Reach().controls->SetTextColour(window, id, colour);
}

bool SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) {
  return Reach().controls->SetBackgroundColour(window, id, colour);
}

bool SetHandCursor(WindowHandle window, std::uint32_t id) {
  return Reach().controls->SetHandCursor(window, id);
}

bool CreateToolTip(WindowHandle window) { return Reach().controls->CreateToolTip(window); }

bool SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  return Reach().controls->SetToolTipWidth(window, pixels);
}

bool SetToolTipTime(WindowHandle window, std::int32_t ms) {
  return Reach().controls->SetToolTipTime(window, ms);
}

bool ActivateToolTip(WindowHandle window, bool active) {
  return Reach().controls->ActivateToolTip(window, active);
}

bool AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab, const std::string& text) {
  return Reach().controls->AddTabTool(window, id, tab, text);
}

bool AddTool(WindowHandle window, std::uint32_t id) {
  return Reach().controls->AddTool(window, id);
}

bool EnableToolTips(WindowHandle window) { return Reach().controls->EnableToolTips(window); }

std::intptr_t ShellExecuteA(const std::string& target) {
  return Reach().shell->ShellExecuteA(target);
}

bool MessageBeep(std::uint32_t type) { return Reach().shell->MessageBeep(type); }

LibraryHandle LoadLibraryA(const std::string& name) { return Reach().shell->LoadLibraryA(name); }

HtmlHelpFunction GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) {
  return Reach().shell->GetHelpFunction(library, ordinal);
}

std::string GetCommandLineA(char quoteSub) { return Reach().shell->GetCommandLineA(quoteSub); }

bool ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                const std::string& suggested, std::string* path) {
  return Reach().shell->ChooseFile(owner, title, forSaving, suggested, path);
}

bool ChooseFolder(WindowHandle owner, const std::string& title, const std::string& suggested,
                  std::string* path) {
  return Reach().shell->ChooseFolder(owner, title, suggested, path);
}

std::uint32_t GetCurrentProcessId() { return Reach().processes->GetCurrentProcessId(); }

bool ListProcesses(std::vector<RunningProcess>* list) {
  return Reach().processes->ListProcesses(list);
}

bool CreateProcessA(const std::string& application, const std::string& commandLine,
                    std::uint32_t flags, const std::string* folder,
                    PROCESS_INFORMATION* information) {
  return Reach().processes->CreateProcessA(application, commandLine, flags, folder, information);
}

bool EnumWindows(std::vector<TopLevelWindow>* list) { return Reach().processes->EnumWindows(list); }

bool PostToWindow(WindowHandle window, std::uint32_t message) {
  return Reach().processes->PostToWindow(window, message);
}

}  // namespace platform
