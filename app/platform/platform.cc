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

std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                         std::uint32_t type) {
  return installed.desktop->MessageBoxA(owner, text, caption, type);
}

}  // namespace platform
