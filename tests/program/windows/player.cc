#include "player.h"

#include <gtest/gtest.h>

#include "app/platform/windows/wide_text.h"
#include "app/resources/settings_keys.h"
#include "tests/host/patience.h"

// Last.
#include <windows.h>

#include <commctrl.h>
#include <sddl.h>
#include <tlhelp32.h>
#include <winternl.h>

namespace kelvaro::tests {
namespace {

HWND SystemWindow(std::uintptr_t window) { return reinterpret_cast<HWND>(window); }
HWND ControlOf(std::uintptr_t window, std::uint32_t control) {
  return GetDlgItem(SystemWindow(window), static_cast<int>(control));
}

std::string TextOf(HWND window) {
  std::string text(4096, '\0');
  text.resize(static_cast<std::size_t>(
      SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

constexpr int kTextOfBox = 0xFFFF;

struct Wanted {
  DWORD process;
  const std::string& title;
  bool visible;
  HWND found;
};

BOOL CALLBACK Keep(HWND window, LPARAM wanted) {
  auto& sought = *reinterpret_cast<Wanted*>(wanted);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  const bool visible = IsWindowVisible(window);
  if (process != sought.process || visible != sought.visible || TextOf(window) != sought.title)
    return TRUE;
  sought.found = window;
  return FALSE;
}

BOOL CALLBACK KeepBox(HWND window, LPARAM wanted) {
  auto& sought = *reinterpret_cast<Wanted*>(wanted);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  const HWND text = GetDlgItem(window, kTextOfBox);
  if (process != sought.process || !text || !IsWindowVisible(window) ||
      TextOf(text).rfind(sought.title, 0) != 0)
    return TRUE;
  sought.found = window;
  return FALSE;
}

// Operations of the system's below CreateProcess, which no header declares.
struct StartedProcess {
  ULONG size;
  HANDLE process;
  HANDLE thread;
  CLIENT_ID id;
  char image[256];  // more than the system writes
};
using MakeParameters = NTSTATUS(WINAPI*)(void** made, UNICODE_STRING* program, UNICODE_STRING*,
                                         UNICODE_STRING*, UNICODE_STRING* line, void*,
                                         UNICODE_STRING*, UNICODE_STRING*, UNICODE_STRING*,
                                         UNICODE_STRING*);
using MakeProcess = NTSTATUS(WINAPI*)(UNICODE_STRING* program, ULONG, void* parameters, void*,
                                      void*, HANDLE, BOOLEAN, HANDLE, HANDLE, StartedProcess*);

template <typename Function>
Function Internal(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)));
}

// Of a text that outlives it.
UNICODE_STRING Borrowed(std::wstring& text) {
  const auto size = static_cast<USHORT>(text.size() * sizeof text[0]);
  return {size, static_cast<USHORT>(size + sizeof text[0]), text.data()};
}

// In the system's words for who may do what.
void AllowForSettings(const char* rights) {
  PSECURITY_DESCRIPTOR wanted = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorA(rights, SDDL_REVISION_1, &wanted, nullptr);
  HKEY key = nullptr;
  RegOpenKeyExA(HKEY_CURRENT_USER, kProductKey, 0, WRITE_DAC, &key);
  EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, wanted), ERROR_SUCCESS);
  RegCloseKey(key);
  LocalFree(wanted);
}

void Check(const char* key, const char* value) {
  const DWORD checked = 1;
  RegSetKeyValueA(HKEY_CURRENT_USER, key, value, REG_DWORD, &checked, sizeof checked);
}

}  // namespace

// --- The program

Program::Program(const std::string& folder, const std::string& arguments, const std::string& name,
                 const std::string& output) {
  STARTUPINFOA start = {};
  start.cb = sizeof start;
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  const BOOL prints = !output.empty();
  if (prints) {
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput =
        CreateFileA(output.c_str(), FILE_APPEND_DATA | SYNCHRONIZE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, CREATE_ALWAYS, 0, nullptr);
    start.hStdError = start.hStdOutput;
  }
  PROCESS_INFORMATION made = {};
  std::string line = '"' + folder + '\\' + name + '"' + (arguments.empty() ? "" : ' ' + arguments);
  if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, prints, 0, nullptr, folder.c_str(),
                      &start, &made))
    made = {};
  if (made.hThread) CloseHandle(made.hThread);
  if (prints) CloseHandle(start.hStdOutput);
  process = made.hProcess;
  id = made.dwProcessId;
}

Program::Program(std::uint32_t running)
    : process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, running)), id(running) {}

std::unique_ptr<Program> Program::AtAnyPath(const std::string& path, const std::string& arguments) {
  std::wstring texts[] = {platform::Utf16Of("\\??\\" + path), platform::Utf16Of(path),
                          platform::Utf16Of('"' + path + "\" " + arguments)};
  UNICODE_STRING object = Borrowed(texts[0]);
  UNICODE_STRING program = Borrowed(texts[1]);
  UNICODE_STRING line = Borrowed(texts[2]);
  void* parameters = nullptr;
  Internal<MakeParameters>("RtlCreateProcessParameters")(
      &parameters, &program, nullptr, nullptr, &line, nullptr, nullptr, nullptr, nullptr, nullptr);
  StartedProcess started = {};
  EXPECT_EQ(Internal<MakeProcess>("RtlCreateUserProcess")(&object, OBJ_CASE_INSENSITIVE, parameters,
                                                          nullptr, nullptr, nullptr, FALSE, nullptr,
                                                          nullptr, &started),
            0);
  ResumeThread(started.thread);
  CloseHandle(started.thread);
  return std::unique_ptr<Program>(
      new Program(started.process, static_cast<std::uint32_t>(GetProcessId(started.process))));
}

Program::~Program() {
  if (!process) return;
  End();
  WaitForSingleObject(process, INFINITE);
  CloseHandle(process);
}

bool Program::Runs() const { return WaitForSingleObject(process, 0) == WAIT_TIMEOUT; }

void Program::End() { TerminateProcess(process, 99); }

std::uintptr_t Program::Find(const std::string& title, bool visible) const {
  Wanted wanted{static_cast<DWORD>(id), title, visible, nullptr};
  EnumWindows(&Keep, reinterpret_cast<LPARAM>(&wanted));
  return reinterpret_cast<std::uintptr_t>(wanted.found);
}

std::uintptr_t Program::Await(const std::string& title) const {
  return Eventually([&] { return Find(title) != 0; }) ? Find(title) : 0;
}

// Not one that is yet to be shown.
std::uintptr_t Program::AwaitUnseen(const std::string& title) {
  constexpr int kLooks = 50;
  std::uintptr_t found = 0;
  int looks = 0;
  Eventually([&] {
    found = Find(title, false);
    looks = found ? looks + 1 : 0;
    return looks == kLooks;
  });
  return looks == kLooks ? found : 0;
}

bool Program::AwaitMenu() {
  return Eventually([&] {
    const HWND menu = FindWindowA("#32768", nullptr);
    return menu && IsWindowVisible(menu);
  });
}

bool Program::AwaitGone(const std::string& title) {
  return Eventually([&] { return Find(title) == 0; });
}

std::uintptr_t Program::AwaitBox(const std::string& beginning) {
  Wanted wanted{static_cast<DWORD>(id), beginning, true, nullptr};
  Eventually([&] {
    EnumWindows(&KeepBox, reinterpret_cast<LPARAM>(&wanted));
    return wanted.found != nullptr;
  });
  return reinterpret_cast<std::uintptr_t>(wanted.found);
}

bool Program::AwaitHidden(std::uintptr_t window) {
  return Eventually([&] { return !IsWindowVisible(SystemWindow(window)); });
}

std::int32_t Program::AwaitEnd() {
  DWORD status = 0;
  const bool ended = Eventually([&] { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; });
  return ended && GetExitCodeProcess(process, &status) ? static_cast<std::int32_t>(status) : -1;
}

std::uint32_t ProcessOf(const std::string& name) {
  const HANDLE list = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  DWORD found = 0;
  for (BOOL more = Process32First(list, &entry); more && found == 0;
       more = Process32Next(list, &entry))
    if (name == entry.szExeFile) found = entry.th32ProcessID;
  CloseHandle(list);
  return found;
}

void Click(std::uintptr_t window, std::uint32_t control) {
  PostMessageA(ControlOf(window, control), BM_CLICK, 0, 0);
}

bool Check(std::uintptr_t window, std::uint32_t control, bool checked) {
  return Eventually([&] {
    const HWND box = ControlOf(window, control);
    const bool is = SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED;
    if (is != checked) SendMessageA(box, BM_CLICK, 0, 0);
    return is == checked;
  });
}

void Enter(std::uintptr_t window, std::uint32_t control, const std::string& text) {
  SendMessageA(ControlOf(window, control), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

std::string Text(std::uintptr_t window, std::uint32_t control) {
  return TextOf(ControlOf(window, control));
}

std::string Title(std::uintptr_t window) { return TextOf(SystemWindow(window)); }

std::uint32_t Rows(std::uintptr_t window, std::uint32_t list) {
  return static_cast<std::uint32_t>(SendMessageA(ControlOf(window, list), CB_GETCOUNT, 0, 0));
}

// Wide: Wine cuts the others of another process to half of their length.
std::string RowText(std::uintptr_t window, std::uint32_t list, std::uint32_t row) {
  const HWND control = ControlOf(window, list);
  const LRESULT length = SendMessageW(control, CB_GETLBTEXTLEN, row, 0);
  if (length < 0) return {};
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  SendMessageW(control, CB_GETLBTEXT, row, reinterpret_cast<LPARAM>(wide.data()));
  std::string text(4 * wide.size(), '\0');
  text.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                          static_cast<int>(text.size()), nullptr, nullptr)));
  return text;
}

bool Choose(std::uintptr_t window, std::uint32_t list, std::uint32_t row) {
  const HWND control = ControlOf(window, list);
  if (row >= Rows(window, list)) return false;
  SendMessageA(control, CB_SETCURSEL, row, 0);
  PostMessageA(SystemWindow(window), WM_COMMAND, MAKEWPARAM(list, CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(control));
  return true;
}

void Post(std::uintptr_t window, std::uint32_t message, std::uintptr_t w, std::intptr_t l) {
  PostMessageA(SystemWindow(window), message, w, l);
}

Place PlaceOf(std::uintptr_t window) {
  RECT rect = {};
  GetWindowRect(SystemWindow(window), &rect);
  return {static_cast<std::int32_t>(rect.left), static_cast<std::int32_t>(rect.top),
          static_cast<std::int32_t>(rect.right), static_cast<std::int32_t>(rect.bottom)};
}

void MoveTo(std::uintptr_t window, const Place& place) {
  SetWindowPos(SystemWindow(window), nullptr, place.left, place.top, place.right - place.left,
               place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

std::int32_t ColumnWidth(std::uintptr_t window, std::uint32_t list, std::int32_t column) {
  return static_cast<std::int32_t>(
      SendMessageA(ControlOf(window, list), LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
}

// --- The other program

bool AwaitFront(std::uintptr_t window) {
  return Eventually([&] { return GetForegroundWindow() == SystemWindow(window); });
}

Receiver::Receiver()
    : window(CreateWindowExA(WS_EX_TOPMOST, "Edit", "", WS_POPUP | WS_VISIBLE | WS_BORDER, 0, 0,
                             300, 40, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr)) {
  SetForegroundWindow(static_cast<HWND>(window));
  SetFocus(static_cast<HWND>(window));
}

Receiver::~Receiver() { DestroyWindow(static_cast<HWND>(window)); }

std::string Receiver::Typed() {
  const HWND own = static_cast<HWND>(window);
  MSG message = {};
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  if (GetForegroundWindow() != own) SetForegroundWindow(own);
  SetFocus(own);
  return TextOf(own);
}

// --- The registry

void ForgetSettings() {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Marnstone");
  RegDeleteKeyValueA(HKEY_CURRENT_USER, kRunKey, "Kelvaro");
}

std::string StartedWithSession(const std::string& name) {
  std::string path(1024, '\0');
  DWORD size = static_cast<DWORD>(path.size());
  if (RegGetValueA(HKEY_CURRENT_USER, kRunKey, name.c_str(), RRF_RT_REG_SZ, nullptr, path.data(),
                   &size) != ERROR_SUCCESS)
    return {};
  path.resize(size - 1);
  return path;
}

LockedSettings::LockedSettings() { AllowForSettings("D:P(A;;KRWDSD;;;WD)"); }
LockedSettings::~LockedSettings() { AllowForSettings("D:P(A;;KA;;;WD)"); }

std::uint32_t StoredSettings() {
  HKEY key = nullptr;
  RegOpenKeyExA(HKEY_CURRENT_USER, kProductKey, 0, KEY_READ, &key);
  DWORD values = 0;
  RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr,
                   nullptr, nullptr, nullptr);
  RegCloseKey(key);
  return values;
}

void MarkAsWelcomed() { Check(kProductKey, "Welcome Display"); }
void MarkAsWelcomedFormerly() { Check(kFormerProductKey, "Welcome Display"); }
void KeepAlone(const std::string& device) {
  RegSetKeyValueA(HKEY_CURRENT_USER, kProductKey, "Only For Kelvaro", REG_SZ, device.c_str(),
                  static_cast<DWORD>(device.size() + 1));
}
void KeepQuiet() {
  MarkAsWelcomed();
  Check(kProductKey, "No Device Error Msg");
}

}  // namespace kelvaro::tests
