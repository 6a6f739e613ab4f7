// What the Linux calls cost under the operations of the seam. A poll needs a device: run this in
// the virtual machine (tests/kernel/vm), or where /dev/uinput may be opened.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstring>

#include "app/platform/linux/device_layout.h"
#include "app/platform/linux/kernel_events.h"
#include "app/platform/linux/linux_devices.h"
#include "app/platform/linux/linux_threads.h"

namespace platform {
namespace {

constexpr char kPadName[] = "Benchmark Pad";

// A read that has nothing to give: the least that any poll can cost.
void BareRead(benchmark::State& state) {
  const int fd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  std::uint64_t value;
  for (auto _ : state) benchmark::DoNotOptimize(read(fd, &value, sizeof value));
  close(fd);
}
BENCHMARK(BareRead);

class Pad {
 public:
  Pad() {
    libevdev* description = libevdev_new();
    libevdev_set_name(description, kPadName);
    for (unsigned code = BTN_A; code <= BTN_THUMBR; ++code)
      libevdev_enable_event_code(description, EV_KEY, code, nullptr);
    input_absinfo axis{};
    axis.minimum = -32768;
    axis.maximum = 32767;
    for (unsigned code = ABS_X; code <= ABS_RZ; ++code)
      libevdev_enable_event_code(description, EV_ABS, code, &axis);
    if (libevdev_uinput_create_from_device(description, LIBEVDEV_UINPUT_OPEN_MANAGED, &pad) != 0)
      pad = nullptr;
    libevdev_free(description);
    if (!pad || devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directInput) != DI_OK) return;
    for (int tries = 0; tries < 1000 && !device; ++tries) {
      directInput->EnumDevices(
          DI8DEVCLASS_GAMECTRL,
          [&](const DIDEVICEINSTANCE& instance) {
            if (std::strcmp(instance.tszInstanceName, kPadName) != 0) return true;
            directInput->CreateDevice(instance.guidInstance, &device);
            return false;
          },
          DIEDFL_ATTACHEDONLY);
      if (!device) usleep(10000);
    }
    if (device) device->Acquire();
  }
  ~Pad() {
    if (device) device->Release();
    if (directInput) directInput->Release();
    if (pad) libevdev_uinput_destroy(pad);
  }
  Pad(const Pad&) = delete;
  Pad& operator=(const Pad&) = delete;

  DirectInputDevice* Device() const { return device; }
  const char* Node() const { return libevdev_uinput_get_devnode(pad); }

 private:
  libevdev_uinput* pad = nullptr;
  LinuxDevices devices;
  DirectInput* directInput = nullptr;
  DirectInputDevice* device = nullptr;
};

void BareReadOfAPad(benchmark::State& state) {
  const Pad pad;
  if (!pad.Device()) return state.SkipWithError("no pad can be made: /dev/uinput");
  const int fd = open(pad.Node(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  input_event events[64];
  for (auto _ : state) benchmark::DoNotOptimize(read(fd, events, sizeof events));
  close(fd);
}
BENCHMARK(BareReadOfAPad);

void QuietPoll(benchmark::State& state) {
  const Pad pad;
  if (!pad.Device()) return state.SkipWithError("no pad can be made: /dev/uinput");
  for (auto _ : state) benchmark::DoNotOptimize(pad.Device()->Poll());
}
BENCHMARK(QuietPoll);

void QuietPollAndState(benchmark::State& state) {
  const Pad pad;
  if (!pad.Device()) return state.SkipWithError("no pad can be made: /dev/uinput");
  DIJOYSTATE2 out;
  for (auto _ : state) {
    pad.Device()->Poll();
    benchmark::DoNotOptimize(pad.Device()->GetDeviceState(sizeof out, &out));
  }
}
BENCHMARK(QuietPollAndState);

void ScaleOneAxis(benchmark::State& state) {
  std::int32_t value = 0;
  for (auto _ : state) {
    value = (value + 77) & 1023;
    benchmark::DoNotOptimize(ScaleAxis(value, 0, 1023, -32000, 32000));
  }
}
BENCHMARK(ScaleOneAxis);

void SendOneKey(benchmark::State& state) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  KernelEvents events(nowhere, nowhere);
  for (auto _ : state) events.keybd_event('A', 0x1E, 0, 0);
  close(nowhere);
}
BENCHMARK(SendOneKey);

void OwnThreadId(benchmark::State& state) {
  LinuxThreads threads;
  for (auto _ : state) benchmark::DoNotOptimize(threads.GetCurrentThreadId());
}
BENCHMARK(OwnThreadId);

void SetAndTakeAnEvent(benchmark::State& state) {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(false, false);
  for (auto _ : state) {
    threads.SetEvent(event);
    benchmark::DoNotOptimize(threads.WaitForSingleObject(event, 0));
  }
}
BENCHMARK(SetAndTakeAnEvent);

}  // namespace
}  // namespace platform
