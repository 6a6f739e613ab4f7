// Keys and values that last, in the shape of the published operations. A key is reached by a path
// below an open key, its parts separated by backslashes; empty parts don't count. Names are bytes
// without a zero byte, are found without regard to the case of ASCII letters, and stay as they were
// first written. An enumeration goes in the order in which things were made; a value that is
// written again keeps its place. Results are error codes, ERROR_SUCCESS (0) for a success.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/error_codes.h"

namespace platform {

using HKEY = std::uint64_t;

// Always open; the first only where the system has one.
constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000u;
constexpr HKEY HKEY_CURRENT_USER = 0x80000001u;
constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002u;

// Kinds of value. The store keeps any kind with its bytes as they are.
constexpr std::uint32_t REG_NONE = 0;
constexpr std::uint32_t REG_SZ = 1;  // its bytes hold the terminating zero, as a rule
constexpr std::uint32_t REG_EXPAND_SZ = 2;
constexpr std::uint32_t REG_BINARY = 3;
constexpr std::uint32_t REG_DWORD = 4;  // 4 bytes, as in memory
constexpr std::uint32_t REG_MULTI_SZ = 7;
constexpr std::uint32_t REG_QWORD = 11;

class Registry {
 public:
  virtual ~Registry() = default;

  // *opened, untouched on failure, is a key of its own even for an empty path; the caller closes
  // it. ERROR_FILE_NOT_FOUND when the key isn't there, ERROR_INVALID_HANDLE when `key` isn't open.
  virtual std::uint32_t RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) = 0;
  // The same, and makes every key of the path that is missing. ERROR_ACCESS_DENIED where it must
  // not.
  virtual std::uint32_t RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) = 0;
  // A success without effect for those that are always open.
  virtual std::uint32_t RegCloseKey(HKEY key) = 0;

  // *size: bytes of room in `data`; afterwards the value's own. ERROR_MORE_DATA, with `data` as it
  // was, when there is more than room. `type` and `data` may be null; with no data its size alone
  // is told, and `size` may be null, too.
  virtual std::uint32_t RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t* type,
                                         void* data, std::uint32_t* size) = 0;
  virtual std::uint32_t RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                                       const void* data, std::uint32_t size) = 0;
  virtual std::uint32_t RegDeleteValueA(HKEY key, const std::string& name) = 0;

  // The value of that index, counted from 0. *nameSize: room in `name`, the terminator counted;
  // afterwards the name's length without it. `data` and *size as in RegQueryValueExA. A name or
  // data without room is ERROR_MORE_DATA. ERROR_NO_MORE_ITEMS behind the last, and for a key that
  // isn't open or can't be read, so that a loop which passes over failures ends.
  virtual std::uint32_t RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                      std::uint32_t* nameSize, std::uint32_t* type, void* data,
                                      std::uint32_t* size) = 0;
  // The name of the subkey of that index. nameSize: room in `name`, the terminator counted.
  virtual std::uint32_t RegEnumKeyA(HKEY key, std::uint32_t index, char* name,
                                    std::uint32_t nameSize) = 0;

  // What is written between the two may become lasting all at once, at the end, and is lost as a
  // whole if the machine stops before it. Reads see it at once. Pairs nest, and the outermost
  // counts; what other threads write meanwhile goes along. The result is that of making it lasting.
  virtual void BeginWrites() = 0;
  virtual std::uint32_t EndWrites() = 0;
};

// Of the installed platform; see platform.h.
Registry& registry();

}  // namespace platform
