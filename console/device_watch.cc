#include "console/device_watch.h"

#include <utility>

#include "app/platform/platform.h"
#include "console/device_choice.h"

namespace kelvaro::console {
namespace {

constexpr std::uint32_t kPollInterval = 5;  // ms

}  // namespace

bool DeviceWatch::Begin(const std::optional<std::string>& name, Visit visitor, std::string* error) {
  visit = std::move(visitor);
  manager.SetPollInterval(kPollInterval);
  manager.SetChangeCallback(OnChange, this);
  manager.EnableChangeCallback();
  begin = platform::clock().GetTickCount();
  DeviceChoice choice;
  choice.name = name;
  return SelectChosenDevice(&manager, choice, error);
}

void DeviceWatch::OnChange(DeviceManager*, const platform::DIJOYSTATE2* state, void* self) {
  auto* watch = static_cast<DeviceWatch*>(self);
  watch->visit(platform::clock().GetTickCount() - watch->begin, *state);
}

}  // namespace kelvaro::console
