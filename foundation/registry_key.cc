#include "foundation/registry_key.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace kelvaro {

using platform::ERROR_NO_MORE_ITEMS;
using platform::ERROR_SUCCESS;
using platform::HKEY;
using platform::REG_DWORD;
using platform::REG_SZ;

namespace {

const char* OrEmpty(const char* text) { return text ? text : ""; }

struct DataBuffer {
  char bytes[RegistryBufferSize];

  // Up to its terminator, or all of it where it has none.
  ByteString Text(std::uint32_t size) const {
    const std::string_view all(bytes, size);
    return TextOf(all.substr(0, all.find('\0')));
  }

  std::uint32_t Number(std::uint32_t size) const {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes, std::min<std::size_t>(size, sizeof number));
    return number;
  }
};

// False when there is no such value, or it doesn't fit.
bool Read(HKEY key, const char* name, std::uint32_t* type, DataBuffer* data, std::uint32_t* size) {
  *size = RegistryBufferSize;
  return platform::registry().RegQueryValueExA(key, OrEmpty(name), type, data->bytes, size) ==
         ERROR_SUCCESS;
}

bool WriteDword(HKEY key, const char* name, std::uint32_t value) {
  return platform::registry().RegSetValueExA(key, OrEmpty(name), REG_DWORD, &value, sizeof value) ==
         ERROR_SUCCESS;
}

bool WriteString(HKEY key, const char* name, const ByteString& value) {
  return platform::registry().RegSetValueExA(key, OrEmpty(name), REG_SZ, OrEmpty(value.Text()),
                                             value.Length() + 1) == ERROR_SUCCESS;
}

}  // namespace

// The key that an operation works on: a subkey opened for its length, or the key itself.
class RegistryKey::Subkey {
 public:
  Subkey(const RegistryKey& key, const char* path, bool create) {
    if (!key.isOpen) return;
    if (!path || !*path) {
      handle = key.handle;
      isOpen = true;
      return;
    }
    isOpen = isOwned =
        (create ? platform::registry().RegCreateKeyA(key.handle, path, &handle)
                : platform::registry().RegOpenKeyA(key.handle, path, &handle)) == ERROR_SUCCESS;
  }
  ~Subkey() {
    if (isOwned) platform::registry().RegCloseKey(handle);
  }
  Subkey(const Subkey&) = delete;
  Subkey& operator=(const Subkey&) = delete;

  bool isOpen = false;
  HKEY handle = 0;

 private:
  bool isOwned = false;
};

RegistryKey::RegistryKey(HKEY root, const ByteString& path, bool create)
    : createMode(create), root(root), path(path) {
  isOpen = (create ? platform::registry().RegCreateKeyA(root, OrEmpty(path.Text()), &handle)
                   : platform::registry().RegOpenKeyA(root, OrEmpty(path.Text()), &handle)) ==
           ERROR_SUCCESS;
}

RegistryKey::~RegistryKey() { Close(); }

bool RegistryKey::GetDword(const char* subkey, const char* name, std::uint32_t* out) {
  const Subkey key(*this, subkey, false);
  DataBuffer data;
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  if (!key.isOpen || !Read(key.handle, name, &type, &data, &size) || type != REG_DWORD) {
    return false;
  }
  *out = data.Number(size);
  return true;
}

bool RegistryKey::GetString(const char* subkey, const char* name, ByteString* out) {
  const Subkey key(*this, subkey, false);
  DataBuffer data;
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  if (!key.isOpen || !Read(key.handle, name, &type, &data, &size) || type != REG_SZ) return false;
  *out = data.Text(size);
  return true;
}

bool RegistryKey::SetDword(const char* subkey, const char* name, std::uint32_t value) {
  const Subkey key(*this, subkey, createMode);
  return key.isOpen && WriteDword(key.handle, name, value);
}

bool RegistryKey::SetString(const char* subkey, const char* name, const ByteString& value) {
  const Subkey key(*this, subkey, createMode);
  return key.isOpen && WriteString(key.handle, name, value);
}

bool RegistryKey::DeleteValue(const char* subkey, const char* name) {
  const Subkey key(*this, subkey, false);
  return key.isOpen &&
         platform::registry().RegDeleteValueA(key.handle, OrEmpty(name)) == ERROR_SUCCESS;
}

bool RegistryKey::EnumValues(const char* subkey, RegistryValueList* out) {
  const Subkey key(*this, subkey, false);
  if (!key.isOpen) return false;
  out->Clear();
  char name[RegistryBufferSize];
  DataBuffer data;
  std::uint32_t nameSize = RegistryBufferSize;
  std::uint32_t size = RegistryBufferSize;
  std::uint32_t index = 0;
  do {
    std::uint32_t type = 0;
    const std::uint32_t result = platform::registry().RegEnumValueA(
        key.handle, index, name, &nameSize, &type, data.bytes, &size);
    if (result == ERROR_NO_MORE_ITEMS) break;
    // Kept: the sizes that a value of another kind leaves hold for the next one.
    if (result == ERROR_SUCCESS && type != REG_DWORD && type != REG_SZ) continue;
    if (result == ERROR_SUCCESS) {
      RegistryValue value;
      value.name.Assign(name);
      value.type = type;
      if (type == REG_SZ) {
        value.text = data.Text(size);
      } else {
        value.number = data.Number(size);
      }
      if (!out->AddTail(value)) return false;
    }
    nameSize = RegistryBufferSize;
    size = RegistryBufferSize;
  } while (++index != 0);
  return true;
}

bool RegistryKey::EnumSubkeys(HKEY key, LinkedList<ByteString>* out) {
  if (!isOpen) return false;
  out->Clear();
  char name[RegistryBufferSize];
  std::uint32_t index = 0;
  do {
    const std::uint32_t result =
        platform::registry().RegEnumKeyA(key, index, name, RegistryBufferSize);
    if (result == ERROR_NO_MORE_ITEMS) break;
    if (result == ERROR_SUCCESS && !out->AddTail(ByteString(name))) return false;
  } while (++index != 0);
  return true;
}

bool RegistryKey::CopyValues(RegistryKey* source) {
  RegistryValueList values;
  if (!isOpen || !source->EnumValues(nullptr, &values)) return false;
  bool all = true;
  for (const RegistryValue& value : values) {
    const bool written = value.type == REG_SZ ? WriteString(handle, value.name.Text(), value.text)
                                              : WriteDword(handle, value.name.Text(), value.number);
    if (!written) all = false;
  }
  return all;
}

bool RegistryKey::CopyTree(RegistryKey* source) {
  if (!CopyValues(source)) return false;
  LinkedList<ByteString> names;
  if (!EnumSubkeys(source->handle, &names)) return false;
  bool all = true;
  for (const ByteString& name : names) {
    RegistryKey from(source->handle, name, false);
    RegistryKey to(handle, name, true);
    if (!to.CopyTree(&from)) all = false;
  }
  return all;
}

void RegistryKey::Close() {
  if (!isOpen) return;
  platform::registry().RegCloseKey(handle);
  isOpen = false;
}

}  // namespace kelvaro
