#include "app/platform/linux/device_identity.h"

#include <algorithm>
#include <iterator>

namespace platform {
namespace {

// FNV-1a, 64 bits.
class Hash {
 public:
  void Add(std::uint8_t byte) { value = (value ^ byte) * 0x100000001B3u; }
  void Add(const std::string& text) {
    for (const char c : text) Add(static_cast<std::uint8_t>(c));
  }
  void Add(std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) Add(static_cast<std::uint8_t>(number >> shift));
  }
  std::uint64_t Value() const { return value; }

 private:
  std::uint64_t value = 0xCBF29CE484222325u;
};

}  // namespace

GUID DeviceIdentity(const DeviceIds& ids, std::uint32_t ordinal) {
  Hash hash;
  // A letter in front, so that a serial number and a port of the same text differ.
  if (!ids.unique.empty()) {
    hash.Add(std::uint8_t{'u'});
    hash.Add(ids.unique);
  } else if (!ids.physical.empty()) {
    hash.Add(std::uint8_t{'p'});
    hash.Add(ids.physical);
  } else {
    hash.Add(std::uint8_t{'n'});
    hash.Add(ids.name);
  }
  if (ordinal != 0) {
    hash.Add(std::uint8_t{0});
    hash.Add(ordinal);
  }
  GUID identity;
  identity.Data1 = static_cast<std::uint32_t>(ids.bus) << 16 | ids.vendor;
  identity.Data2 = ids.product;
  identity.Data3 = ids.version;
  for (int i = 0; i < 8; ++i)
    identity.Data4[i] = static_cast<std::uint8_t>(hash.Value() >> (56 - 8 * i));
  return identity;
}

GUID ProductIdentity(const DeviceIds& ids) {
  GUID identity;
  identity.Data1 = static_cast<std::uint32_t>(ids.product) << 16 | ids.vendor;
  constexpr std::uint8_t kMark[] = {0, 0, 'P', 'I', 'D', 'V', 'I', 'D'};
  std::copy(std::begin(kMark), std::end(kMark), identity.Data4);
  return identity;
}

GUID IdentityTable::Assign(const std::string& place, const DeviceIds& ids) {
  const GUID base = DeviceIdentity(ids, 0);
  const std::lock_guard<std::mutex> lock(mutex);
  const auto known = entries.find(place);
  if (known != entries.end() && known->second.base == base)
    return DeviceIdentity(ids, known->second.ordinal);
  const auto isTaken = [&](std::uint32_t ordinal) {
    return std::any_of(entries.begin(), entries.end(), [&](const auto& entry) {
      return entry.first != place && entry.second.base == base && entry.second.ordinal == ordinal;
    });
  };
  std::uint32_t ordinal = 0;
  while (isTaken(ordinal)) ++ordinal;
  entries.insert_or_assign(place, Entry{base, ordinal});
  return DeviceIdentity(ids, ordinal);
}

void IdentityTable::KeepOnly(const std::vector<std::string>& places) {
  const std::lock_guard<std::mutex> lock(mutex);
  for (auto entry = entries.begin(); entry != entries.end();) {
    const bool kept = std::find(places.begin(), places.end(), entry->first) != places.end();
    entry = kept ? std::next(entry) : entries.erase(entry);
  }
}

}  // namespace platform
