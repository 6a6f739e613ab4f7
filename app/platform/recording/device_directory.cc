#include "app/platform/recording/device_directory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iterator>
#include <string>
#include <utility>

namespace platform {
namespace {

constexpr std::uint32_t kAbsoluteAxis = 2;  // the published DIDFT_ABSAXIS
constexpr std::uint32_t kForeground = 4;    // the published DISCL_FOREGROUND
constexpr std::uint32_t kAttached = 1;      // the published DIDC_ATTACHED
constexpr std::uint32_t kAllClasses = 0;    // the published DI8DEVCLASS_ALL
constexpr std::uint32_t kMostButtons = 128;
constexpr std::uint32_t kMostHats = 4;

using Lock = std::lock_guard<std::mutex>;

std::uint32_t AxisId(std::uint32_t axis) { return axis << 8 | kAbsoluteAxis; }

// The axis's place, or the id itself if no axis has it.
std::uint32_t AxisOfId(std::uint32_t id) { return (id & 0xFF) == kAbsoluteAxis ? id >> 8 : id; }

[[noreturn]] void Refuse(const std::string& what) {
  std::fprintf(stderr, "simulation: %s\n", what.c_str());
  std::abort();
}

void MustBePossible(const StateChange& change) {
  for (const std::uint32_t button : change.buttons) {
    if (button < 1 || button > kMostButtons) Refuse("no button " + std::to_string(button));
  }
  for (const auto& [axis, value] : change.axes) {
    if (axis.kind > 7 || axis.bank > 3) Refuse("no such axis");
  }
  for (const auto& [hat, angle] : change.povs) {
    if (hat >= kMostHats) Refuse("no hat " + std::to_string(hat));
  }
}

void CopyText(const std::string& text, char (&field)[kMaxPath]) {
  const std::size_t length = std::min(text.size(), kMaxPath - 1);
  std::memcpy(field, text.data(), length);
  field[length] = 0;
}

}  // namespace

class ScriptedDevice final : public SimulatedDevice {
 public:
  ScriptedDevice(DeviceDirectory& directory, const DeviceDescription& description)
      : directory(directory), description(description), state(StateAtRest()) {}

  void Press(std::initializer_list<std::uint32_t> buttons) override {
    StateChange change;
    change.hasButtons = true;
    change.buttons = buttons;
    Change(change);
  }

  void MoveAxis(const std::string& axis, std::int32_t value) override {
    AxisName name;
    if (!ParseAxisName(axis, &name)) Refuse("no axis " + axis);
    StateChange change;
    change.axes.emplace_back(name, value);
    Change(change);
  }

  void PointHat(std::uint32_t hat, std::uint32_t angle) override {
    StateChange change;
    change.povs.emplace_back(hat, angle);
    Change(change);
  }

  void Lose() override { ChangeLost(true); }
  void Return() override { ChangeLost(false); }

  void Change(const StateChange& change) override {
    MustBePossible(change);
    {
      const Lock lock(directory.guard);
      Advance();
      Carry(change);
    }
    TellOfChange();
  }

  void ChangeAt(std::uint64_t t, const StateChange& change) override {
    MustBePossible(change);
    {
      const Lock lock(directory.guard);
      Advance();
      const auto place =
          std::upper_bound(ahead.begin(), ahead.end(), t,
                           [](std::uint64_t time, const Ahead& other) { return time < other.t; });
      ahead.insert(place, Ahead{t, change});
    }
    TellOfChange(t);
  }

  void Play(const std::vector<StateChange>& changes) override {
    for (const StateChange& change : changes) MustBePossible(change);
    std::uint64_t first;
    {
      const Lock lock(directory.guard);
      if (firstAcquire) {
        Schedule(changes);
      } else {
        unstarted.insert(unstarted.end(), changes.begin(), changes.end());
      }
      if (ahead.empty()) return;
      first = ahead.front().t;
    }
    TellOfChange(first);
  }

  void Unplug() override { SetPlugged(false); }
  void PlugIn() override { SetPlugged(true); }

  const DIJOYSTATE2& State() const override {
    const Lock lock(directory.guard);
    Advance();
    return state;
  }

  const DeviceDescription& Description() const override { return description; }

  // The rest is for the directory and its open devices, with the guard held.

  // Makes the changes that are due; those after `last`, if it is given, up to the first that takes
  // back what a button has done since then.
  void Advance(const DIJOYSTATE2* last = nullptr) const {
    if (ahead.empty()) return;
    for (const std::uint64_t now = directory.now(); !ahead.empty() && ahead.front().t <= now;) {
      const StateChange& change = ahead.front().change;
      if (last && TakesBack(change, *last)) return;
      Carry(change);
      ahead.pop_front();
    }
  }

  bool Answers() const { return plugged && !lost; }

  // The time until which nothing changes by itself.
  std::uint64_t NextChange() const { return ahead.empty() ? UINT64_MAX : ahead.front().t; }

  void StartPlaying() {
    if (firstAcquire) return;
    firstAcquire = directory.now();
    Schedule(std::exchange(unstarted, {}));
  }

  DIDEVICEINSTANCE Instance() const {
    DIDEVICEINSTANCE instance;
    instance.guidInstance = description.guid;
    instance.guidProduct = description.guid;
    CopyText(description.name, instance.tszInstanceName);
    CopyText(description.name, instance.tszProductName);
    return instance;
  }

  DeviceDirectory& directory;
  const DeviceDescription description;
  bool plugged = true;

 private:
  friend class OpenDevice;

  struct Ahead {
    std::uint64_t t;
    StateChange change;
  };

  void ChangeLost(bool isLost) {
    StateChange change;
    change.hasLost = true;
    change.lost = isLost;
    Change(change);
  }

  void SetPlugged(bool isPlugged) {
    {
      const Lock lock(directory.guard);
      plugged = isPlugged;
    }
    TellOfChange();
  }

  void TellOfChange(std::uint64_t t = 0) const {
    if (directory.changed) directory.changed(t);
  }

  bool TakesBack(const StateChange& change, const DIJOYSTATE2& last) const {
    DIJOYSTATE2 next = state;
    ApplyChange(change, &next);
    for (std::size_t button = 0; button < std::size(next.rgbButtons); ++button) {
      if (state.rgbButtons[button] != last.rgbButtons[button] &&
          next.rgbButtons[button] != state.rgbButtons[button])
        return true;
    }
    return false;
  }

  void Carry(const StateChange& change) const {
    ApplyChange(change, &state);
    if (change.hasLost) lost = change.lost;
  }

  // Changes whose times count from the first Acquire, in rising order, behind those that are there
  // already for the same time.
  void Schedule(std::vector<StateChange> changes) {
    const auto middle = static_cast<std::ptrdiff_t>(ahead.size());
    for (StateChange& change : changes) {
      const std::uint64_t t = *firstAcquire + change.t;
      ahead.push_back(Ahead{t < change.t ? UINT64_MAX : t, std::move(change)});
    }
    std::inplace_merge(ahead.begin(), ahead.begin() + middle, ahead.end(),
                       [](const Ahead& a, const Ahead& b) { return a.t < b.t; });
  }

  // Looking at the device brings it up to date.
  mutable DIJOYSTATE2 state;
  mutable bool lost = false;
  mutable std::deque<Ahead> ahead;  // times rise or are equal
  std::vector<StateChange> unstarted;
  std::optional<std::uint64_t> firstAcquire;
};

class OpenDevice final : public DirectInputDevice {
 public:
  explicit OpenDevice(ScriptedDevice& device) : directory(device.directory), device(device) {}

  HRESULT SetDataFormat() override { return directory.Enter("SetDataFormat").value_or(DI_OK); }

  HRESULT SetCooperativeLevel(Handle window, std::uint32_t flags) override {
    if (const auto planned = directory.Enter("SetCooperativeLevel", {window, flags})) {
      return *planned;
    }
    const bool oneShare = !(flags & DISCL_EXCLUSIVE) != !(flags & DISCL_NONEXCLUSIVE);
    const bool onePlace = !(flags & kForeground) != !(flags & DISCL_BACKGROUND);
    return oneShare && onePlace ? DI_OK : DIERR_INVALIDPARAM;
  }

  HRESULT GetCapabilities(DIDEVCAPS* caps) override {
    const auto planned = directory.Enter("GetCapabilities");
    if (planned && *planned < 0) return *planned;
    if (!caps || caps->dwSize != sizeof(DIDEVCAPS)) return DIERR_INVALIDPARAM;
    *caps = DIDEVCAPS{};
    caps->dwFlags = Plugged() ? kAttached : 0;
    caps->dwAxes = device.description.axes;
    caps->dwButtons = device.description.buttons;
    caps->dwPOVs = device.description.povs;
    return planned.value_or(DI_OK);
  }

  HRESULT EnumObjects(const std::function<bool(std::uint32_t)>& visit,
                      std::uint32_t flags) override {
    const auto planned = directory.Enter("EnumObjects");
    if (planned && *planned < 0) return *planned;
    if (!visit || flags != DIDFT_AXIS) return DIERR_INVALIDPARAM;
    for (std::uint32_t axis = 0; axis < device.description.axes; ++axis) {
      if (!visit(AxisId(axis))) break;
    }
    return planned.value_or(DI_OK);
  }

  HRESULT SetProperty(std::uint32_t property, const DIPROPRANGE& range) override {
    const std::uint32_t axis = AxisOfId(range.diph.dwObj);
    const auto planned = directory.Enter("SetProperty", {axis, range.lMin, range.lMax});
    if (planned && *planned < 0) return *planned;
    if (property != DIPROP_RANGE || range.diph.dwSize != sizeof(DIPROPRANGE) ||
        range.diph.dwHeaderSize != sizeof(DIPROPHEADER) || range.diph.dwHow != DIPH_BYID ||
        axis >= device.description.axes || AxisId(axis) != range.diph.dwObj ||
        range.lMin > range.lMax) {
      return DIERR_INVALIDPARAM;
    }
    return planned.value_or(DI_OK);
  }

  HRESULT Acquire() override {
    const auto planned = directory.Enter("Acquire");
    if (planned && *planned < 0) return *planned;
    const Lock lock(directory.guard);
    device.Advance();
    if (!device.Answers()) return DIERR_UNPLUGGED;
    const bool anew = !acquired || failed;
    acquired = true;
    failed = false;
    seen = device.state;
    // After the look at it: a recording that begins with a lost device can still be started.
    device.StartPlaying();
    return planned.value_or(anew ? DI_OK : DI_NOEFFECT);
  }

  HRESULT Unacquire() override {
    const auto planned = directory.Enter("Unacquire");
    if (planned && *planned < 0) return *planned;
    const Lock lock(directory.guard);
    const bool was = acquired;
    acquired = false;
    return planned.value_or(was ? DI_OK : DI_NOEFFECT);
  }

  HRESULT Poll() override {
    const auto planned = directory.Enter("Poll");
    const Lock lock(directory.guard);
    if (planned && *planned < 0) {
      failed = true;
      return *planned;
    }
    if (!acquired) return DIERR_NOTACQUIRED;
    device.Advance(tapsApart ? &seen : nullptr);
    failed = !device.Answers();
    if (failed) return DIERR_INPUTLOST;
    seen = device.state;
    return planned.value_or(DI_OK);
  }

  std::optional<Handle> WaitForNews() override {
    if (!directory.changed) return std::nullopt;
    std::uint64_t next;
    {
      const Lock lock(directory.guard);
      // A look at the device from elsewhere may have brought it up to date since the poll.
      const bool isUpToDate = failed != device.Answers() &&
                              (failed || std::memcmp(&seen, &device.state, sizeof seen) == 0);
      next = device.NextChange();
      if (!acquired || !isUpToDate || next <= directory.now()) return std::nullopt;
    }
    directory.changed(next);
    return kInvalidHandle;
  }

  // Of what is scheduled: what is changed from outside between two polls has its place at once.
  void SetTapsApart(bool apart) override { tapsApart = apart; }

  HRESULT GetDeviceState(std::uint32_t size, DIJOYSTATE2* state) override {
    const auto planned = directory.Enter("GetDeviceState");
    if (planned && *planned < 0) return *planned;
    if (size != sizeof(DIJOYSTATE2) || !state) return DIERR_INVALIDPARAM;
    const Lock lock(directory.guard);
    if (!acquired) return DIERR_NOTACQUIRED;
    if (failed) return DIERR_INPUTLOST;
    *state = seen;
    return planned.value_or(DI_OK);
  }

  void Release() override {
    directory.Enter("Release");
    directory.Forget(this);
  }

 private:
  bool Plugged() const {
    const Lock lock(directory.guard);
    return device.plugged;
  }

  DeviceDirectory& directory;
  ScriptedDevice& device;
  bool acquired = false;
  bool failed = false;  // the last poll was
  bool tapsApart = false;
  DIJOYSTATE2 seen = StateAtRest();
};

DeviceDirectory::DeviceDirectory(std::function<std::uint64_t()> now, BeforeCall beforeCall,
                                 std::function<void(std::uint64_t)> changed)
    : now(std::move(now)), beforeCall(std::move(beforeCall)), changed(std::move(changed)) {}

DeviceDirectory::~DeviceDirectory() = default;

SimulatedDevice& DeviceDirectory::Add(const DeviceDescription& description) {
  if (description.buttons > kMostButtons || description.axes > 8 || description.povs > kMostHats) {
    Refuse("a device has at most 128 buttons, 8 axes and 4 hats");
  }
  const Lock lock(guard);
  return devices.emplace_back(*this, description);
}

HRESULT DeviceDirectory::DirectInput8Create(std::uint32_t version, DirectInput** directInput) {
  const auto planned = Enter("DirectInput8Create");
  if (planned && *planned < 0) return *planned;
  if (!directInput) return DIERR_INVALIDPARAM;
  if (version > DIRECTINPUT_VERSION_8) return DIERR_OLDDIRECTINPUTVERSION;
  if (version < DIRECTINPUT_VERSION_8) return DIERR_BETADIRECTINPUTVERSION;
  const Lock lock(guard);
  ++openDirectories;
  *directInput = this;
  return planned.value_or(DI_OK);
}

HRESULT DeviceDirectory::EnumDevices(std::uint32_t deviceClass,
                                     const std::function<bool(const DIDEVICEINSTANCE&)>& visit,
                                     std::uint32_t flags) {
  const auto planned = Enter("EnumDevices");
  if (planned && *planned < 0) return *planned;
  if (!visit || (flags & ~DIEDFL_ATTACHEDONLY)) return DIERR_INVALIDPARAM;
  std::vector<DIDEVICEINSTANCE> attached;
  if (deviceClass == DI8DEVCLASS_GAMECTRL || deviceClass == kAllClasses) {
    const Lock lock(guard);
    for (const ScriptedDevice& device : devices) {
      if (device.plugged) attached.push_back(device.Instance());
    }
  }
  for (const DIDEVICEINSTANCE& instance : attached) {
    if (!visit(instance)) break;
  }
  return planned.value_or(DI_OK);
}

HRESULT DeviceDirectory::CreateDevice(const GUID& instance, DirectInputDevice** device) {
  const auto planned = Enter("CreateDevice");
  if (planned && *planned < 0) return *planned;
  if (!device) return DIERR_INVALIDPARAM;
  const Lock lock(guard);
  const auto found =
      std::find_if(devices.begin(), devices.end(), [&](const ScriptedDevice& candidate) {
        return candidate.plugged && candidate.description.guid == instance;
      });
  if (found == devices.end()) return DIERR_DEVICENOTREG;
  open.push_back(std::make_unique<OpenDevice>(*found));
  *device = open.back().get();
  return planned.value_or(DI_OK);
}

void DeviceDirectory::Release() {
  Enter("Release DirectInput");
  const Lock lock(guard);
  if (openDirectories == 0) Refuse("a DirectInput object is released that was never made");
  --openDirectories;
}

void DeviceDirectory::Forget(OpenDevice* device) {
  const Lock lock(guard);
  std::erase_if(open, [&](const auto& candidate) { return candidate.get() == device; });
}

std::uint32_t DeviceDirectory::OpenObjects() const {
  const Lock lock(guard);
  return openDirectories + static_cast<std::uint32_t>(open.size());
}

}  // namespace platform
