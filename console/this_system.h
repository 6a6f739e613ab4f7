// What commands ask of the system that the seam has no words for. linux/ and windows/ answer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/platform/direct_input.h"
#include "console/commands.h"
#include "console/profile_check.h"
#include "console/real_machine.h"
#include "keys/key_step.h"

namespace kelvaro::console {

// The number by which a Typing knows a key.
std::uint16_t KeyCodeOf(const KeyStep& step);
// Why the key may come out otherwise than written; empty where it doesn't.
std::string KeyDoubt(const KeyStep& step);
// What keys type on this desktop; null where nothing can tell.
Typing DesktopTyping();

// What there is to tell of a device beside its name: further members of a JSON object, each with a
// comma in front, and lines for a person.
struct DeviceRemarks {
  std::string json;
  std::string text;
};
DeviceRemarks RemarksOn(const platform::GUID& device, RealMachine& machine);

// Whether another program keeps the device for itself, as far as the system tells. Only asked where
// an instance of Kelvaro may have done it: to ask is to grab the device for an instant.
bool IsTakenByAnother(const platform::GUID& device, RealMachine& machine);

// What the window remembers, installed behind the seam for the life of the object.
class SettingsStore {
 public:
  // A store that is damaged is told of.
  explicit SettingsStore(Streams streams);
  ~SettingsStore();
  SettingsStore(const SettingsStore&) = delete;
  SettingsStore& operator=(const SettingsStore&) = delete;

  // Where it is, for a message.
  const std::string& Place() const;
  // Found out by the first read.
  bool IsDamaged() const;

 private:
  struct Parts;
  const std::unique_ptr<Parts> parts;
};

}  // namespace kelvaro::console
