#include "app/platform/platform.h"

namespace platform {
namespace {

Platform installed;

}  // namespace

InstalledPlatform::InstalledPlatform(const Platform& platform) : previous(installed) {
  installed = platform;
}

InstalledPlatform::~InstalledPlatform() { installed = previous; }

void Sleep(std::uint32_t ms) { installed.clock->Sleep(ms); }

std::uint32_t GetTickCount() { return installed.clock->GetTickCount(); }

std::int32_t GetCurrentThreadId() { return installed.threads->GetCurrentThreadId(); }

Handle CreateThread(ThreadEntry entry, void* parameter, const char* name, std::int32_t* threadId) {
  return installed.threads->CreateThread(entry, parameter, name, threadId);
}

bool GetExitCodeThread(Handle thread, std::uint32_t* exitCode) {
  return installed.threads->GetExitCodeThread(thread, exitCode);
}

bool TerminateThread(Handle thread, std::uint32_t exitCode) {
  return installed.threads->TerminateThread(thread, exitCode);
}

bool SetCurrentThreadPriority(std::int32_t priority) {
  return installed.threads->SetCurrentThreadPriority(priority);
}

std::int32_t GetCurrentThreadPriority() { return installed.threads->GetCurrentThreadPriority(); }

bool SetPriorityClass(std::uint32_t priorityClass) {
  return installed.threads->SetPriorityClass(priorityClass);
}

Handle CreateEventA(bool manualReset, bool initialState) {
  return installed.threads->CreateEventA(manualReset, initialState);
}

bool SetEvent(Handle event) { return installed.threads->SetEvent(event); }

bool ResetEvent(Handle event) { return installed.threads->ResetEvent(event); }

std::uint32_t WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) {
  return installed.threads->WaitForSingleObject(handle, timeoutMs);
}

std::uint32_t WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                     std::uint32_t timeoutMs) {
  return installed.threads->WaitForMultipleObjects(count, handles, timeoutMs);
}

bool CloseHandle(Handle handle) { return installed.threads->CloseHandle(handle); }

std::uint32_t timeGetDevCaps(TIMECAPS* caps) { return installed.timers->timeGetDevCaps(caps); }

std::uint32_t timeBeginPeriod(std::uint32_t periodMs) {
  return installed.timers->timeBeginPeriod(periodMs);
}

std::uint32_t timeEndPeriod(std::uint32_t periodMs) {
  return installed.timers->timeEndPeriod(periodMs);
}

std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                           TimerCallback callback, void* user, std::uint32_t flags) {
  return installed.timers->timeSetEvent(delayMs, resolutionMs, callback, user, flags);
}

std::uint32_t timeKillEvent(std::uint32_t timerId) {
  return installed.timers->timeKillEvent(timerId);
}

HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) {
  return installed.devices->DirectInput8Create(version, directInput);
}

void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags, std::uint32_t extra) {
  installed.input->keybd_event(vk, scan, flags, extra);
}

void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                 std::uint32_t extra) {
  installed.input->mouse_event(flags, dx, dy, data, extra);
}

char PathSeparator() { return installed.files->PathSeparator(); }

std::unique_ptr<File> CreateFileA(const std::string& path, std::uint32_t access,
                                  std::uint32_t share, std::uint32_t disposition) {
  return installed.files->CreateFileA(path, access, share, disposition);
}

bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) {
  return installed.files->CopyFileA(from, to, failIfExists);
}

bool DeleteFileA(const std::string& path) { return installed.files->DeleteFileA(path); }

std::uint32_t GetFileAttributesA(const std::string& path) {
  return installed.files->GetFileAttributesA(path);
}

bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) {
  return installed.files->SetFileAttributesA(path, attributes);
}

bool CreateDirectoryA(const std::string& path) { return installed.files->CreateDirectoryA(path); }

std::unique_ptr<FileSearch> FindFirstFileA(const std::string& pattern, FindData* data) {
  return installed.files->FindFirstFileA(pattern, data);
}

std::string GetCurrentDirectoryA() { return installed.files->GetCurrentDirectoryA(); }

bool SetCurrentDirectoryA(const std::string& path) {
  return installed.files->SetCurrentDirectoryA(path);
}

std::string GetModuleFileNameA() { return installed.files->GetModuleFileNameA(); }

std::uint32_t GetLogicalDrives() { return installed.files->GetLogicalDrives(); }

std::uint32_t GetLastError() { return installed.files->GetLastError(); }

std::string FormatMessageA(std::uint32_t code) { return installed.system->FormatMessageA(code); }

std::string GetUserDataFolder() { return installed.system->GetUserDataFolder(); }

std::uint32_t RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return installed.registry->RegOpenKeyA(key, path, opened);
}

std::uint32_t RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return installed.registry->RegCreateKeyA(key, path, opened);
}

std::uint32_t RegCloseKey(HKEY key) { return installed.registry->RegCloseKey(key); }

std::uint32_t RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t* type, void* data,
                               std::uint32_t* size) {
  return installed.registry->RegQueryValueExA(key, name, type, data, size);
}

std::uint32_t RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                             const void* data, std::uint32_t size) {
  return installed.registry->RegSetValueExA(key, name, type, data, size);
}

std::uint32_t RegDeleteValueA(HKEY key, const std::string& name) {
  return installed.registry->RegDeleteValueA(key, name);
}

std::uint32_t RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                            std::uint32_t* type, void* data, std::uint32_t* size) {
  return installed.registry->RegEnumValueA(key, index, name, nameSize, type, data, size);
}

std::uint32_t RegEnumKeyA(HKEY key, std::uint32_t index, char* name, std::uint32_t nameSize) {
  return installed.registry->RegEnumKeyA(key, index, name, nameSize);
}

void BeginWrites() { installed.registry->BeginWrites(); }

std::uint32_t EndWrites() { return installed.registry->EndWrites(); }

std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                         std::uint32_t type) {
  return installed.desktop->MessageBoxA(owner, text, caption, type);
}

void DismissBoxesOfOtherThreads() { installed.desktop->DismissBoxesOfOtherThreads(); }

void Tell(const std::string& text) { installed.desktop->Tell(text); }

std::int32_t RunDialog(const DialogTemplate& dialog, WindowHandle owner, WindowListener& listener) {
  return installed.desktop->RunDialog(dialog, owner, listener);
}

bool EndDialog(WindowHandle window, std::int32_t result) {
  return installed.desktop->EndDialog(window, result);
}

bool ShowWindow(WindowHandle window, std::int32_t command) {
  return installed.desktop->ShowWindow(window, command);
}

bool IsWindowVisible(WindowHandle window) { return installed.desktop->IsWindowVisible(window); }

bool IsIconic(WindowHandle window) { return installed.desktop->IsIconic(window); }

bool IsZoomed(WindowHandle window) { return installed.desktop->IsZoomed(window); }

bool SetForegroundWindow(WindowHandle window) {
  return installed.desktop->SetForegroundWindow(window);
}

bool SetWindowTextA(WindowHandle window, const std::string& text) {
  return installed.desktop->SetWindowTextA(window, text);
}

bool SetWindowIcon(WindowHandle window, IconHandle icon, bool large) {
  return installed.desktop->SetWindowIcon(window, icon, large);
}

bool GetWindowRect(WindowHandle window, Rect* rect) {
  return installed.desktop->GetWindowRect(window, rect);
}

bool GetClientRect(WindowHandle window, Rect* rect) {
  return installed.desktop->GetClientRect(window, rect);
}

bool MoveWindow(WindowHandle window, const Rect& rect) {
  return installed.desktop->MoveWindow(window, rect);
}

bool InvalidateRect(WindowHandle window, const Rect& rect) {
  return installed.desktop->InvalidateRect(window, rect);
}

bool UpdateWindow(WindowHandle window) { return installed.desktop->UpdateWindow(window); }

bool GetDesktopRect(Rect* rect) { return installed.desktop->GetDesktopRect(rect); }

std::int32_t GetSystemMetrics(std::int32_t index) {
  return installed.desktop->GetSystemMetrics(index);
}

Colour GetSysColor(std::int32_t index) { return installed.desktop->GetSysColor(index); }

bool GetCursorPos(Point* point) { return installed.desktop->GetCursorPos(point); }

std::uint16_t GetKeyState(std::uint8_t vk) { return installed.desktop->GetKeyState(vk); }

bool PostMessageA(WindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                  std::intptr_t lParam) {
  return installed.desktop->PostMessageA(window, message, wParam, lParam);
}

std::uint32_t SetTimer(WindowHandle window, std::uint32_t id, std::uint32_t ms) {
  return installed.desktop->SetTimer(window, id, ms);
}

bool KillTimer(WindowHandle window, std::uint32_t id) {
  return installed.desktop->KillTimer(window, id);
}

HookHandle SetWindowsHookExA(std::int32_t kind, HookProc procedure) {
  return installed.desktop->SetWindowsHookExA(kind, procedure);
}

bool UnhookWindowsHookEx(HookHandle hook) { return installed.desktop->UnhookWindowsHookEx(hook); }

std::intptr_t CallNextHookEx(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                             std::intptr_t lParam) {
  return installed.desktop->CallNextHookEx(hook, code, wParam, lParam);
}

IconHandle LoadIconA(std::uint32_t id) { return installed.desktop->LoadIconA(id); }

bool DestroyIcon(IconHandle icon) { return installed.desktop->DestroyIcon(icon); }

BitmapHandle LoadBitmapA(std::uint32_t id) { return installed.desktop->LoadBitmapA(id); }

bool Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  return installed.desktop->Shell_NotifyIconA(message, data);
}

bool SetNotifyIconMenu(WindowHandle window, std::uint32_t id, std::span<const MenuItem> items) {
  return installed.desktop->SetNotifyIconMenu(window, id, items);
}

bool TrackPopupMenu(WindowHandle window, std::span<const MenuItem> items, std::uint32_t flags,
                    Point screen) {
  return installed.desktop->TrackPopupMenu(window, items, flags, screen);
}

bool HasControl(WindowHandle window, std::uint32_t id) {
  return installed.controls->HasControl(window, id);
}

bool GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) {
  return installed.controls->GetControlRect(window, id, rect);
}

bool SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect, std::uint32_t flags) {
  return installed.controls->SetControlPos(window, id, rect, flags);
}

DeferHandle BeginDeferWindowPos(std::int32_t count) {
  return installed.controls->BeginDeferWindowPos(count);
}

DeferHandle DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                           const Rect& rect, std::uint32_t flags) {
  return installed.controls->DeferWindowPos(defer, window, id, rect, flags);
}

bool EndDeferWindowPos(DeferHandle defer) { return installed.controls->EndDeferWindowPos(defer); }

bool InvalidateControl(WindowHandle window, std::uint32_t id) {
  return installed.controls->InvalidateControl(window, id);
}

bool ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) {
  return installed.controls->ShowControl(window, id, command);
}

bool IsControlVisible(WindowHandle window, std::uint32_t id) {
  return installed.controls->IsControlVisible(window, id);
}

bool EnableControl(WindowHandle window, std::uint32_t id, bool enable) {
  return installed.controls->EnableControl(window, id, enable);
}

bool IsControlEnabled(WindowHandle window, std::uint32_t id) {
  return installed.controls->IsControlEnabled(window, id);
}

bool SetControlFocus(WindowHandle window, std::uint32_t id) {
  return installed.controls->SetControlFocus(window, id);
}

std::uint32_t GetControlFocus(WindowHandle window) {
  return installed.controls->GetControlFocus(window);
}

bool SetDefaultButton(WindowHandle window, std::uint32_t id) {
  return installed.controls->SetDefaultButton(window, id);
}

bool PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) {
  return installed.controls->PostControlMessage(window, id, message);
}

bool SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) {
  return installed.controls->SetDlgItemTextA(window, id, text);
}

std::string GetDlgItemTextA(WindowHandle window, std::uint32_t id) {
  return installed.controls->GetDlgItemTextA(window, id);
}

bool SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) {
  return installed.controls->SetCaret(window, id, offset);
}

bool CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) {
  return installed.controls->CheckDlgButton(window, id, checked);
}

bool IsDlgButtonChecked(WindowHandle window, std::uint32_t id) {
  return installed.controls->IsDlgButtonChecked(window, id);
}

std::int32_t ComboAddString(WindowHandle window, std::uint32_t id, const std::string& text) {
  return installed.controls->ComboAddString(window, id, text);
}

bool ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return installed.controls->ComboDeleteString(window, id, row);
}

bool ComboResetContent(WindowHandle window, std::uint32_t id) {
  return installed.controls->ComboResetContent(window, id);
}

std::int32_t ComboGetCount(WindowHandle window, std::uint32_t id) {
  return installed.controls->ComboGetCount(window, id);
}

std::string ComboGetLBText(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return installed.controls->ComboGetLBText(window, id, row);
}

std::int32_t ComboFindString(WindowHandle window, std::uint32_t id, const std::string& text) {
  return installed.controls->ComboFindString(window, id, text);
}

std::int32_t ComboFindStringExact(WindowHandle window, std::uint32_t id, const std::string& text) {
  return installed.controls->ComboFindStringExact(window, id, text);
}

bool ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return installed.controls->ComboSetCurSel(window, id, row);
}

std::int32_t ComboGetCurSel(WindowHandle window, std::uint32_t id) {
  return installed.controls->ComboGetCurSel(window, id);
}

bool ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row, std::int32_t data) {
  return installed.controls->ComboSetItemData(window, id, row, data);
}

std::int32_t ComboGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return installed.controls->ComboGetItemData(window, id, row);
}

std::int32_t ListInsertColumn(WindowHandle window, std::uint32_t id, const std::string& text,
                              std::int32_t width) {
  return installed.controls->ListInsertColumn(window, id, text, width);
}

std::int32_t ListGetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column) {
  return installed.controls->ListGetColumnWidth(window, id, column);
}

bool ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                        std::int32_t width) {
  return installed.controls->ListSetColumnWidth(window, id, column, width);
}

bool ListGetColumnOrder(WindowHandle window, std::uint32_t id, std::vector<std::int32_t>* order) {
  return installed.controls->ListGetColumnOrder(window, id, order);
}

bool ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                        const std::vector<std::int32_t>& order) {
  return installed.controls->ListSetColumnOrder(window, id, order);
}

std::int32_t ListGetClientWidth(WindowHandle window, std::uint32_t id) {
  return installed.controls->ListGetClientWidth(window, id);
}

std::int32_t ListInsertItem(WindowHandle window, std::uint32_t id, std::uint32_t data) {
  return installed.controls->ListInsertItem(window, id, data);
}

bool ListDeleteAllItems(WindowHandle window, std::uint32_t id) {
  return installed.controls->ListDeleteAllItems(window, id);
}

std::int32_t ListGetItemCount(WindowHandle window, std::uint32_t id) {
  return installed.controls->ListGetItemCount(window, id);
}

bool ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row, std::int32_t column,
                     const std::string& text) {
  return installed.controls->ListSetItemText(window, id, row, column, text);
}

std::string ListGetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                            std::int32_t column) {
  return installed.controls->ListGetItemText(window, id, row, column);
}

std::uint32_t ListGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return installed.controls->ListGetItemData(window, id, row);
}

bool ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row, bool selected) {
  return installed.controls->ListSelectItem(window, id, row, selected);
}

std::int32_t ListGetNextSelected(WindowHandle window, std::uint32_t id, std::int32_t after) {
  return installed.controls->ListGetNextSelected(window, id, after);
}

bool ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return installed.controls->ListEnsureVisible(window, id, row);
}

std::int32_t TabInsertItem(WindowHandle window, std::uint32_t id, const std::string& text) {
  return installed.controls->TabInsertItem(window, id, text);
}

bool TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab, Rect* rect) {
  return installed.controls->TabGetItemRect(window, id, tab, rect);
}

bool TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) {
  return installed.controls->TabSetCurSel(window, id, tab);
}

std::int32_t TabGetCurSel(WindowHandle window, std::uint32_t id) {
  return installed.controls->TabGetCurSel(window, id);
}

bool SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least, std::int32_t most) {
  return installed.controls->SliderSetRange(window, id, least, most);
}

bool SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) {
  return installed.controls->SliderSetTicFreq(window, id, every);
}

bool SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) {
  return installed.controls->SliderSetPos(window, id, position);
}

std::int32_t SliderGetPos(WindowHandle window, std::uint32_t id) {
  return installed.controls->SliderGetPos(window, id);
}

bool SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) {
  return installed.controls->SetPicture(window, id, bitmap);
}

bool SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                    std::int32_t height, std::int32_t weight, bool underline) {
  return installed.controls->SetControlFont(window, id, face, height, weight, underline);
}

bool SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) {
  return installed.controls->SetTextColour(window, id, colour);
}

bool SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) {
  return installed.controls->SetBackgroundColour(window, id, colour);
}

bool SetHandCursor(WindowHandle window, std::uint32_t id) {
  return installed.controls->SetHandCursor(window, id);
}

bool CreateToolTip(WindowHandle window) { return installed.controls->CreateToolTip(window); }

bool SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  return installed.controls->SetToolTipWidth(window, pixels);
}

bool SetToolTipTime(WindowHandle window, std::int32_t ms) {
  return installed.controls->SetToolTipTime(window, ms);
}

bool ActivateToolTip(WindowHandle window, bool active) {
  return installed.controls->ActivateToolTip(window, active);
}

bool AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab, const std::string& text) {
  return installed.controls->AddTabTool(window, id, tab, text);
}

bool AddTool(WindowHandle window, std::uint32_t id) {
  return installed.controls->AddTool(window, id);
}

bool EnableToolTips(WindowHandle window) { return installed.controls->EnableToolTips(window); }

std::intptr_t ShellExecuteA(const std::string& target) {
  return installed.shell->ShellExecuteA(target);
}

bool MessageBeep(std::uint32_t type) { return installed.shell->MessageBeep(type); }

LibraryHandle LoadLibraryA(const std::string& name) { return installed.shell->LoadLibraryA(name); }

HtmlHelpFunction GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) {
  return installed.shell->GetHelpFunction(library, ordinal);
}

std::string GetCommandLineA(char quoteSub) { return installed.shell->GetCommandLineA(quoteSub); }

bool ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                const std::string& suggested, std::string* path) {
  return installed.shell->ChooseFile(owner, title, forSaving, suggested, path);
}

bool ChooseFolder(WindowHandle owner, const std::string& title, const std::string& suggested,
                  std::string* path) {
  return installed.shell->ChooseFolder(owner, title, suggested, path);
}

std::uint32_t GetCurrentProcessId() { return installed.processes->GetCurrentProcessId(); }

bool ListProcesses(std::vector<RunningProcess>* list) {
  return installed.processes->ListProcesses(list);
}

bool CreateProcessA(const std::string& application, const std::string& commandLine,
                    std::uint32_t flags, const std::string* folder,
                    PROCESS_INFORMATION* information) {
  return installed.processes->CreateProcessA(application, commandLine, flags, folder, information);
}

bool EnumWindows(std::vector<TopLevelWindow>* list) {
  return installed.processes->EnumWindows(list);
}

bool PostToWindow(WindowHandle window, std::uint32_t message) {
  return installed.processes->PostToWindow(window, message);
}

}  // namespace platform
