#include "console/device_choice.h"

#include "app/platform/recording/recording.h"
#include "console/did_you_mean.h"
#include "console/json_text.h"
#include "console/name_choice.h"

namespace kelvaro::console {
namespace {

// "; there are: 'Pad', 'Wheel'"
std::string ListOfDevices(const DeviceManager& manager) {
  if (manager.DeviceCount() == 0) return "; no game pad is plugged in";
  std::string list = manager.DeviceCount() == 1 ? "; there is: " : "; there are: ";
  for (std::int32_t i = 0; i < manager.DeviceCount(); ++i) {
    list += (i > 0 ? ", '" : "'") + Bytes(manager.DeviceName(i)) + "'";
  }
  return list;
}

std::vector<std::string> NamesOf(const DeviceManager& manager) {
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(manager.DeviceCount()));
  for (std::int32_t i = 0; i < manager.DeviceCount(); ++i) {
    names.push_back(Bytes(manager.DeviceName(i)));
  }
  return names;
}

// Index of the first device that fits, -1 for none.
template <typename Fits>
std::int32_t FindDevice(const DeviceManager& manager, Fits fits) {
  for (std::int32_t i = 0; i < manager.DeviceCount(); ++i) {
    if (fits(i)) return i;
  }
  return -1;
}

// Index of the chosen device, -1 with *error set when there is none.
std::int32_t FindChosen(const DeviceManager& manager, const DeviceChoice& choice,
                        std::string* error) {
  const ByteString name = choice.name ? TextOf(*choice.name) : choice.profileName;
  std::int32_t index = -1;
  if (!choice.name && choice.profileGuid != platform::GUID{}) {
    index = FindDevice(manager,
                       [&](std::int32_t i) { return manager.DeviceGuid(i) == choice.profileGuid; });
  }
  if (index < 0 && !name.IsEmpty()) {
    index = FindDevice(manager, [&](std::int32_t i) { return manager.DeviceName(i).Equals(name); });
  }
  if (index >= 0) return index;
  if (choice.name) {
    const std::vector<std::string> meant = NamesThatBegin(NamesOf(manager), *choice.name);
    if (meant.size() == 1) {
      return FindDevice(manager,
                        [&](std::int32_t i) { return Bytes(manager.DeviceName(i)) == meant[0]; });
    }
    if (meant.size() > 1) {
      *error = SeveralNames(*choice.name, meant);
      return -1;
    }
  }

  if (choice.name || !name.IsEmpty()) {
    *error = "there is no device '" + Bytes(name) + "'" +
             MeantInBrackets(Bytes(name), NamesOf(manager)) + ListOfDevices(manager);
  } else if (choice.profileGuid != platform::GUID{}) {
    *error = "there is no device with the guid " + platform::GuidText(choice.profileGuid) +
             ListOfDevices(manager);
  } else if (manager.DeviceCount() == 1) {
    return 0;
  } else if (manager.DeviceCount() == 0) {
    *error = "no game pad is plugged in";
  } else {
    *error = "which device? Name one" + ListOfDevices(manager);
  }
  return -1;
}

}  // namespace

bool HasChosenDevice(const DeviceChoice& choice, std::string* error) {
  const DeviceManager manager(platform::kNoWindow);
  // Selecting one tells that there is no DirectInput.
  return !manager.DirectInputCreated() || FindChosen(manager, choice, error) >= 0;
}

bool SelectChosenDevice(DeviceManager* manager, const DeviceChoice& choice, std::string* error) {
  if (!manager->DirectInputCreated()) {
    ByteString text;
    manager->GetError(text);
    *error = Bytes(text);
    return false;
  }
  const std::int32_t index = FindChosen(*manager, choice, error);
  if (index < 0) return false;
  const ByteString name = manager->DeviceName(index);
  if (manager->SelectDevice(index)) return true;
  if (manager->TakenByAnother()) {
    *error = "another program keeps the device '" + Bytes(name) +
             "' for itself; kelvaroctl doctor tells which ones use it";
    return false;
  }
  *error = "the device '" + Bytes(name) + "' can't be opened; may this user read it?";
  return false;
}

}  // namespace kelvaro::console
