#include "app/platform/registry_parts.h"

#include <cstring>

namespace platform {

std::vector<std::string> KeyNames(std::string_view path) {
  std::vector<std::string> names;
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    if (end != 0) names.emplace_back(path.substr(0, end));
    if (end == std::string_view::npos) break;
    path.remove_prefix(end + 1);
  }
  return names;
}

std::uint32_t GiveName(const std::string& name, char* buffer, std::uint32_t room) {
  if (name.size() >= room) return ERROR_MORE_DATA;
  std::memcpy(buffer, name.c_str(), name.size() + 1);
  return ERROR_SUCCESS;
}

std::uint32_t GiveValue(const StoredValue& value, std::uint32_t* type, void* data,
                        std::uint32_t* size) {
  if (data && !size) return ERROR_INVALID_PARAMETER;
  if (type) *type = value.type;
  if (!size) return ERROR_SUCCESS;
  const std::uint32_t room = *size;
  *size = static_cast<std::uint32_t>(value.data.size());
  if (!data) return ERROR_SUCCESS;
  if (value.data.size() > room) return ERROR_MORE_DATA;
  if (!value.data.empty()) std::memcpy(data, value.data.data(), value.data.size());
  return ERROR_SUCCESS;
}

std::uint32_t GiveNamedValue(const StoredValue& value, char* name, std::uint32_t* nameSize,
                             std::uint32_t* type, void* data, std::uint32_t* size) {
  const std::uint32_t named = GiveName(value.name, name, *nameSize);
  if (named != ERROR_SUCCESS) return named;
  *nameSize = static_cast<std::uint32_t>(value.name.size());
  return GiveValue(value, type, data, size);
}

}  // namespace platform
