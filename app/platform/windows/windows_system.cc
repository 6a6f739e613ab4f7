#include "app/platform/windows/windows_system.h"

#include "app/platform/windows/win32.h"

#include <shlobj.h>

namespace platform {

std::string WindowsSystem::FormatMessageA(std::uint32_t code) {
  char* text = nullptr;
  const DWORD length = ::FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string message(text ? text : "", length);
  LocalFree(text);
  return message;
}

std::string WindowsSystem::GetUserDataFolder() {
  char path[MAX_PATH];
  return SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, path) == S_OK
             ? path
             : std::string();
}

}  // namespace platform
