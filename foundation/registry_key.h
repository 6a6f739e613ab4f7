// The one door to the registry: reads and writes strings and double words, lists values and
// subkeys, and copies a whole tree. Made on the stack, used and closed at once. Failures are a
// false result and nothing else, and leave what they were to fill untouched; with the key not open
// every operation is one. No locking: each thread makes its own.
//
// Each read and write takes a subkey, a path below the key; null or empty stands for the key
// itself. Names end at their first zero byte.
#pragma once

#include <cstdint>

#include "app/platform/registry.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

// Bytes of the buffers that names and data are read into; what doesn't fit can't be read. The
// terminators of names and strings count.
constexpr std::uint32_t RegistryBufferSize = 16384;

struct RegistryValue {
  ByteString name;
  std::uint32_t type = 0;    // REG_SZ or REG_DWORD
  ByteString text;           // the string, up to its first zero byte; empty for a double word
  std::uint32_t number = 0;  // the double word; 0 for a string
};

using RegistryValueList = LinkedList<RegistryValue>;  // in enumeration order

class RegistryKey {
 public:
  // Opens root\path; with `create` makes what is missing of it, then and in writes to subkeys.
  // `root` must stay open as long as this object is used.
  RegistryKey(platform::HKEY root, const ByteString& path, bool create);
  ~RegistryKey();
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  // True if the value was there and of the kind. A double word that is stored longer or shorter
  // counts by its first four bytes, missing ones as 0.
  bool GetDword(const char* subkey, const char* name, std::uint32_t* out);
  bool GetString(const char* subkey, const char* name, ByteString* out);

  bool SetDword(const char* subkey, const char* name, std::uint32_t value);
  bool SetString(const char* subkey, const char* name, const ByteString& value);

  // Never makes the subkey.
  bool DeleteValue(const char* subkey, const char* name);

  // Replaces *out by the strings and double words; values that can't be read and other kinds are
  // left out. A value that comes right behind one of another kind is left out, too, unless its
  // name with the terminator fits into the length of that one's name, and its data into the size
  // of that one's data. False also when memory ran out.
  bool EnumValues(const char* subkey, RegistryValueList* out);
  // Replaces *out by the names of the subkeys of `key`, which any open key can be.
  bool EnumSubkeys(platform::HKEY key, LinkedList<ByteString>* out);

  // Writes the source's strings and double words here, over those of the same name; nothing is
  // deleted. A failed write is remembered and the rest goes on.
  bool CopyValues(RegistryKey* source);
  // The same for the whole tree below the source, which this key must not lie in. Stops at once
  // when this key's own values didn't all arrive; a failed subkey is remembered and the rest goes
  // on. What was copied stays.
  bool CopyTree(RegistryKey* source);

  void Close();

  bool isOpen = false;
  bool createMode;
  platform::HKEY root;
  platform::HKEY handle = 0;
  ByteString path;

 private:
  class Subkey;
};

// What any keys write while this exists becomes lasting together, which costs one wait for the disk
// and not one a value: all of it is there after a crash, or none. They may nest.
class RegistryWrites {
 public:
  RegistryWrites() { platform::registry().BeginWrites(); }
  ~RegistryWrites() { platform::registry().EndWrites(); }
  RegistryWrites(const RegistryWrites&) = delete;
  RegistryWrites& operator=(const RegistryWrites&) = delete;
};

}  // namespace kelvaro
