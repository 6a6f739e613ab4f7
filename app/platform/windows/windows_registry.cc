#include "app/platform/windows/windows_registry.h"

#include "app/platform/registry_parts.h"
#include "app/platform/windows/last_error.h"

namespace platform {
namespace {

// Those that are always open are numbers of 32 bits with a sign, other keys are handles.
::HKEY SystemKey(HKEY key) {
  const bool isAlwaysOpen = key >> 28 == 8;
  return reinterpret_cast<::HKEY>(isAlwaysOpen
                                      ? static_cast<std::intptr_t>(static_cast<std::int32_t>(key))
                                      : static_cast<std::intptr_t>(key));
}

// Without the empty parts, which the system would take for names.
std::string KeyPath(const std::string& path) {
  std::string joined;
  for (const std::string& name : KeyNames(path)) joined += (joined.empty() ? "" : "\\") + name;
  return joined;
}

// An enumeration has an end where the key can't be read, too.
std::uint32_t EndOr(LSTATUS result) {
  switch (result) {
    case ERROR_INVALID_HANDLE:
    case ERROR_ACCESS_DENIED:
    case ERROR_KEY_DELETED:
      return ERROR_NO_MORE_ITEMS;
    default:
      return static_cast<std::uint32_t>(result);
  }
}

using OpensKey = LSTATUS (*)(::HKEY key, const char* path, ::HKEY* opened);

std::uint32_t OpenBy(OpensKey open, HKEY key, const std::string& path, HKEY* opened) {
  if (HasZeroByte(path)) return ERROR_INVALID_PARAMETER;
  ::HKEY handle = nullptr;
  const LSTATUS result = open(SystemKey(key), KeyPath(path).c_str(), &handle);
  if (result == ERROR_SUCCESS) *opened = reinterpret_cast<std::uintptr_t>(handle);
  return static_cast<std::uint32_t>(result);
}

// With the rights that a write needs where they are to be had, so that a key which the person may
// only read can be read.
LSTATUS OpenKey(::HKEY key, const char* path, ::HKEY* opened) {
  const LSTATUS result = RegOpenKeyExA(key, path, 0, KEY_READ | KEY_WRITE, opened);
  return result == ERROR_ACCESS_DENIED ? RegOpenKeyExA(key, path, 0, KEY_READ, opened) : result;
}

LSTATUS CreateKey(::HKEY key, const char* path, ::HKEY* opened) {
  return RegCreateKeyExA(key, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE,
                         nullptr, opened, nullptr);
}

BYTE* Bytes(void* data) { return static_cast<BYTE*>(data); }
DWORD* Word(std::uint32_t* number) { return reinterpret_cast<DWORD*>(number); }

}  // namespace

bool WindowsRegistry::CanStore(std::string path) {
  for (;;) {
    ::HKEY key = nullptr;
    const LSTATUS result = RegOpenKeyExA(SystemKey(HKEY_CURRENT_USER), path.c_str(), 0,
                                         KEY_SET_VALUE | KEY_CREATE_SUB_KEY, &key);
    if (result == ERROR_SUCCESS) ::RegCloseKey(key);
    const std::size_t above = path.rfind('\\');
    if (result != ERROR_FILE_NOT_FOUND || above == std::string::npos)
      return result == ERROR_SUCCESS;
    path.resize(above);
  }
}

std::uint32_t WindowsRegistry::RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return OpenBy(OpenKey, key, path, opened);
}

std::uint32_t WindowsRegistry::RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return OpenBy(CreateKey, key, path, opened);
}

std::uint32_t WindowsRegistry::RegCloseKey(HKEY key) {
  return static_cast<std::uint32_t>(::RegCloseKey(SystemKey(key)));
}

std::uint32_t WindowsRegistry::RegQueryValueExA(HKEY key, const std::string& name,
                                                std::uint32_t* type, void* data,
                                                std::uint32_t* size) {
  if (HasZeroByte(name)) return ERROR_FILE_NOT_FOUND;
  return static_cast<std::uint32_t>(::RegQueryValueExA(SystemKey(key), name.c_str(), nullptr,
                                                       Word(type), Bytes(data), Word(size)));
}

std::uint32_t WindowsRegistry::RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                                              const void* data, std::uint32_t size) {
  if (HasZeroByte(name)) return ERROR_INVALID_PARAMETER;
  return static_cast<std::uint32_t>(::RegSetValueExA(SystemKey(key), name.c_str(), 0, type,
                                                     static_cast<const BYTE*>(data), size));
}

std::uint32_t WindowsRegistry::RegDeleteValueA(HKEY key, const std::string& name) {
  if (HasZeroByte(name)) return ERROR_FILE_NOT_FOUND;
  return static_cast<std::uint32_t>(::RegDeleteValueA(SystemKey(key), name.c_str()));
}

std::uint32_t WindowsRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                             std::uint32_t* nameSize, std::uint32_t* type,
                                             void* data, std::uint32_t* size) {
  return EndOr(::RegEnumValueA(SystemKey(key), index, name, Word(nameSize), nullptr, Word(type),
                               Bytes(data), Word(size)));
}

std::uint32_t WindowsRegistry::RegEnumKeyA(HKEY key, std::uint32_t index, char* name,
                                           std::uint32_t nameSize) {
  return EndOr(::RegEnumKeyA(SystemKey(key), index, name, nameSize));
}

}  // namespace platform
