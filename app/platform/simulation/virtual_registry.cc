#include "app/platform/simulation/virtual_registry.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "app/platform/file_pattern.h"

namespace platform::simulation {

struct VirtualRegistry::Node {
  std::string name;
  std::vector<StoredValue> values;
  std::vector<std::unique_ptr<Node>> keys;

  std::vector<StoredValue>::iterator FindValue(const std::string& wanted) {
    return std::find_if(values.begin(), values.end(),
                        [&](const StoredValue& value) { return SameName(value.name, wanted); });
  }

  void Put(const std::string& wanted, std::uint32_t type, const std::string& data) {
    const auto found = FindValue(wanted);
    if (found == values.end()) {
      values.push_back({wanted, type, data});
    } else {
      found->type = type;
      found->data = data;
    }
  }
};

VirtualRegistry::VirtualRegistry(Journal* journal)
    : journal(journal), top(std::make_unique<Node>()) {
  Make("HKCR");
  Make("HKCU");
  Make("HKLM");
}

VirtualRegistry::~VirtualRegistry() = default;

VirtualRegistry::Node* VirtualRegistry::Child(const Node& node, const std::string& name) const {
  for (const auto& key : node.keys) {
    if (SameName(key->name, name)) return key.get();
  }
  return nullptr;
}

VirtualRegistry::Node* VirtualRegistry::Find(const std::string& key) const {
  Node* node = top.get();
  for (const std::string& name : KeyNames(key)) {
    node = Child(*node, name);
    if (!node) return nullptr;
  }
  return node;
}

VirtualRegistry::Node& VirtualRegistry::Make(const std::string& key) {
  Node* node = top.get();
  for (const std::string& name : KeyNames(key)) {
    Node* child = Child(*node, name);
    if (!child) {
      node->keys.push_back(std::make_unique<Node>());
      child = node->keys.back().get();
      child->name = name;
    }
    node = child;
  }
  return *node;
}

void VirtualRegistry::PutKey(const std::string& key) { Make(key); }

void VirtualRegistry::PutValue(const std::string& key, const std::string& name, std::uint32_t type,
                               const std::string& data) {
  Make(key).Put(name, type, data);
}

void VirtualRegistry::PutString(const std::string& key, const std::string& name,
                                const std::string& text) {
  PutValue(key, name, REG_SZ, text + '\0');
}

void VirtualRegistry::PutDword(const std::string& key, const std::string& name,
                               std::uint32_t number) {
  PutValue(key, name, REG_DWORD, std::string(reinterpret_cast<const char*>(&number), 4));
}

void VirtualRegistry::RemoveKey(const std::string& key) {
  const Node* const gone = Find(key);
  Node* const parent = Find(key.substr(0, key.rfind('\\')));
  if (parent) std::erase_if(parent->keys, [gone](const auto& k) { return k.get() == gone; });
}

bool VirtualRegistry::HasKey(const std::string& key) const { return Find(key) != nullptr; }

std::optional<StoredValue> VirtualRegistry::Value(const std::string& key,
                                                  const std::string& name) const {
  Node* node = Find(key);
  if (!node) return std::nullopt;
  const auto found = node->FindValue(name);
  if (found == node->values.end()) return std::nullopt;
  return *found;
}

std::optional<std::string> VirtualRegistry::Text(const std::string& key,
                                                 const std::string& name) const {
  const auto value = Value(key, name);
  if (!value || value->type != REG_SZ) return std::nullopt;
  std::string text = value->data;
  if (text.ends_with('\0')) text.pop_back();
  return text;
}

std::optional<std::uint32_t> VirtualRegistry::Number(const std::string& key,
                                                     const std::string& name) const {
  const auto value = Value(key, name);
  if (!value || value->type != REG_DWORD || value->data.size() != 4) return std::nullopt;
  std::uint32_t number = 0;
  std::memcpy(&number, value->data.data(), sizeof number);
  return number;
}

std::vector<std::string> VirtualRegistry::ValueNames(const std::string& key) const {
  std::vector<std::string> names;
  if (const Node* node = Find(key)) {
    for (const StoredValue& value : node->values) names.push_back(value.name);
  }
  return names;
}

std::vector<std::string> VirtualRegistry::SubkeyNames(const std::string& key) const {
  std::vector<std::string> names;
  if (const Node* node = Find(key)) {
    for (const auto& child : node->keys) names.push_back(child->name);
  }
  return names;
}

void VirtualRegistry::Protect(const std::string& hive) { protectedHives.push_back(hive); }

bool VirtualRegistry::IsProtected(const std::string& key) const {
  const std::string hive = key.substr(0, key.find('\\'));
  return std::find(protectedHives.begin(), protectedHives.end(), hive) != protectedHives.end();
}

std::string VirtualRegistry::PathOf(HKEY key) const {
  if (key == HKEY_CLASSES_ROOT) return "HKCR";
  if (key == HKEY_CURRENT_USER) return "HKCU";
  if (key == HKEY_LOCAL_MACHINE) return "HKLM";
  const auto found = open.find(key);
  return found == open.end() ? "?" : found->second;
}

std::string VirtualRegistry::Below(const std::string& key, const std::string& path) {
  std::string whole = key;
  for (const std::string& name : KeyNames(path)) whole += '\\' + name;
  return whole;
}

VirtualRegistry::Node* VirtualRegistry::Of(HKEY key, std::uint32_t* error) const {
  const std::string path = PathOf(key);
  *error = path == "?" ? ERROR_INVALID_HANDLE : ERROR_FILE_NOT_FOUND;
  return path == "?" ? nullptr : Find(path);
}

void VirtualRegistry::Written() {
  if (groups > 0) {
    groupWrote = true;
  } else {
    ++commits;
  }
}

std::uint32_t VirtualRegistry::EndWrites() {
  if (--groups == 0 && std::exchange(groupWrote, false)) ++commits;
  return ERROR_SUCCESS;
}

HKEY VirtualRegistry::Open(const std::string& key) {
  open[++last] = key;
  return last;
}

std::uint32_t VirtualRegistry::Enter(const char* operation, const std::string& what) {
  const auto planned = journal ? journal->Enter(operation, what) : std::nullopt;
  return planned ? static_cast<std::uint32_t>(*planned) : ERROR_SUCCESS;
}

std::uint32_t VirtualRegistry::Enter(const char* operation, HKEY key, const std::string& what,
                                     Node** node) {
  if (const std::uint32_t fault = Enter(operation, PathOf(key) + ' ' + what)) return fault;
  std::uint32_t error = 0;
  *node = Of(key, &error);
  return *node ? ERROR_SUCCESS : error;
}

std::uint32_t VirtualRegistry::RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) {
  const std::string whole = Below(PathOf(key), path);
  if (const std::uint32_t fault = Enter("RegOpenKeyA", whole)) return fault;
  std::uint32_t error = 0;
  if (!Of(key, &error)) return error;
  if (!Find(whole)) return ERROR_FILE_NOT_FOUND;
  *opened = Open(whole);
  return ERROR_SUCCESS;
}

std::uint32_t VirtualRegistry::RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) {
  const std::string whole = Below(PathOf(key), path);
  if (const std::uint32_t fault = Enter("RegCreateKeyA", whole)) return fault;
  std::uint32_t error = 0;
  if (!Of(key, &error)) return error;
  if (!Find(whole)) {
    if (IsProtected(whole)) return ERROR_ACCESS_DENIED;
    Make(whole);
    Written();
  }
  *opened = Open(whole);
  return ERROR_SUCCESS;
}

std::uint32_t VirtualRegistry::RegCloseKey(HKEY key) {
  if (const std::uint32_t fault = Enter("RegCloseKey", PathOf(key))) return fault;
  if (key == HKEY_CLASSES_ROOT || key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) {
    return ERROR_SUCCESS;
  }
  return open.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::uint32_t VirtualRegistry::RegQueryValueExA(HKEY key, const std::string& name,
                                                std::uint32_t* type, void* data,
                                                std::uint32_t* size) {
  Node* node = nullptr;
  if (const std::uint32_t fault = Enter("RegQueryValueExA", key, name, &node)) return fault;
  const auto found = node->FindValue(name);
  if (found == node->values.end()) return ERROR_FILE_NOT_FOUND;
  return GiveValue(*found, type, data, size);
}

std::uint32_t VirtualRegistry::RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                                              const void* data, std::uint32_t size) {
  Node* node = nullptr;
  if (const std::uint32_t fault = Enter("RegSetValueExA", key, name, &node)) return fault;
  if (IsProtected(PathOf(key))) return ERROR_ACCESS_DENIED;
  node->Put(name, type, size == 0 ? "" : std::string(static_cast<const char*>(data), size));
  Written();
  return ERROR_SUCCESS;
}

std::uint32_t VirtualRegistry::RegDeleteValueA(HKEY key, const std::string& name) {
  Node* node = nullptr;
  if (const std::uint32_t fault = Enter("RegDeleteValueA", key, name, &node)) return fault;
  const auto found = node->FindValue(name);
  if (found == node->values.end()) return ERROR_FILE_NOT_FOUND;
  if (IsProtected(PathOf(key))) return ERROR_ACCESS_DENIED;
  node->values.erase(found);
  Written();
  return ERROR_SUCCESS;
}

std::uint32_t VirtualRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                             std::uint32_t* nameSize, std::uint32_t* type,
                                             void* data, std::uint32_t* size) {
  const std::uint32_t fault = Enter("RegEnumValueA", PathOf(key) + ' ' + std::to_string(index));
  if (fault != ERROR_SUCCESS) return fault;
  std::uint32_t error = 0;
  const Node* node = Of(key, &error);
  if (!node || index >= node->values.size()) return ERROR_NO_MORE_ITEMS;
  return GiveNamedValue(node->values[index], name, nameSize, type, data, size);
}

std::uint32_t VirtualRegistry::RegEnumKeyA(HKEY key, std::uint32_t index, char* name,
                                           std::uint32_t nameSize) {
  const std::uint32_t fault = Enter("RegEnumKeyA", PathOf(key) + ' ' + std::to_string(index));
  if (fault != ERROR_SUCCESS) return fault;
  std::uint32_t error = 0;
  const Node* node = Of(key, &error);
  if (!node || index >= node->keys.size()) return ERROR_NO_MORE_ITEMS;
  return GiveName(node->keys[index]->name, name, nameSize);
}

}  // namespace platform::simulation
