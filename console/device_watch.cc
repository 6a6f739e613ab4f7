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
  manager.SetPollInterval(eachReport ? manager.TimerMin() : kPollInterval);
  manager.SetAnswerAtOnce(eachReport);
  manager.SetChangeCallback(OnChange, this);
  manager.EnableChangeCallback();
  begin = platform::clock().GetTickCount();
  DeviceChoice choice;
  choice.name = name;
  return SelectChosenDevice(&manager, choice, error);
}

std::uint64_t DeviceWatch::Elapsed() const { return platform::clock().GetTickCount() - begin; }

platform::DeviceDescription DeviceWatch::Description() const {
  platform::DeviceDescription device;
  device.name = Bytes(manager.SelectedName());
  device.guid = manager.SelectedGuid();
  device.buttons = manager.DeviceCaps().dwButtons;
  device.axes = manager.DeviceCaps().dwAxes;
  device.povs = manager.DeviceCaps().dwPOVs;
  return device;
}

void DeviceWatch::OnChange(DeviceManager*, const platform::DIJOYSTATE2* state, void* self) {
  auto* watch = static_cast<DeviceWatch*>(self);
  watch->visit(watch->Elapsed(), *state);
}

}  // namespace kelvaro::console
