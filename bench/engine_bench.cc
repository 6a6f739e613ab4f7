// What the engine costs: a dispatch by the number of Controls in the list, and one step of the
// pointer. Events go nowhere.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "app/platform/platform.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "tests/device/manual_machine.h"

namespace kelvaro {
namespace {

class CountingInput : public platform::Input {
 public:
  void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override {}
  void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {
    ++mouseEvents;
  }

  std::uint64_t mouseEvents = 0;
};

// The device layer's machine, with somewhere for the events to go.
class Machine {
 public:
  Machine() : installed(Groups()) {}

  CountingInput input;

 private:
  platform::Platform Groups() {
    platform::Platform groups;
    groups.clock = &base;
    groups.threads = &base;
    groups.timers = &base;
    groups.devices = &base;
    groups.input = &input;
    return groups;
  }

  test::ManualMachine base;
  platform::InstalledPlatform installed;
};

class NoHost : public EngineHost {
 public:
  bool ControlDialogOpen() const override { return false; }
  void ShowDetectedTrigger(const DeviceManager&, const DeviceSnapshot&) override {}
  void ShowDetectedInput(MouseRole, const ByteString&) override {}
  void MouseDetectionEnded(MouseRole) override {}
  void SaveAfterMouseDetection() override {}
};

class CountingAction : public InputAction {
 public:
  explicit CountingAction(std::uint64_t* presses) : presses(presses) { actionType = kKeyAction; }
  bool Replay(std::uint8_t, std::uint32_t, std::uint32_t) override {
    ++*presses;
    return true;
  }

 private:
  std::uint64_t* const presses;
};

enum class Kind { Buttons, Mixed };

struct Session {
  // All but the last ask for a button that stays up, and in the mixed kind every second one for an
  // axis or a hat; the last asks for button 1.
  Session(std::int64_t controls, Kind kind) {
    for (std::int64_t n = 0; n < controls; ++n) {
      Control made;
      const bool last = n == controls - 1;
      if (last) {
        made.SetButtonMask(1);
      } else if (kind == Kind::Buttons || n % 2 == 0) {
        made.SetButtonMask(std::uint64_t{2} << n % 8);
      } else if (n % 4 == 1) {
        made.triggerItems.AddTail(TriggerItem{static_cast<std::uint16_t>(n % 6), 0, AxisPos});
      } else {
        made.triggerItems.AddTail(TriggerItem{input_kind::kPov, 0, PovUp});
      }
      made.actions.AddTail(new CountingAction(&presses));
      made.actionsBorrowed = 1;
      profile.controls.AddTail(made);
    }
    profile.RebuildDispatchList();
    for (auto& hat : pad.rgdwPOV) hat = platform::kPovCentred;
  }

  // The notification thread holds the lock around each call.
  void Dispatch() {
    LockGuard guard(device.deviceLock);
    ControlDispatcher(&device, &pad, &engine);
  }

  std::uint64_t presses = 0;
  Machine machine;
  NoHost host;
  Profile profile;
  DeviceManager device{platform::kNoWindow};
  ControlEngine engine{profile, device, host};
  DIJOYSTATE2 pad;
};

// An axis has moved that no Control asks for, with button 10 held, so that every mask is compared.
void DispatchNothingFires(benchmark::State& state, Kind kind) {
  Session session(state.range(0), kind);
  session.pad.rgbButtons[9] = 0x80;
  for (auto _ : state) {
    session.pad.rglSlider[1] ^= 1;
    session.Dispatch();
  }
  if (session.presses != 0) state.SkipWithError("something fired");
}
BENCHMARK_CAPTURE(DispatchNothingFires, buttons, Kind::Buttons)->Arg(1)->Arg(100)->Arg(1000);
BENCHMARK_CAPTURE(DispatchNothingFires, mixed, Kind::Mixed)->Arg(1)->Arg(100)->Arg(1000);

// Button 1 goes down and up by turns, each a dispatch of its own: half of them fire the last
// Control, the other half end it.
void DispatchTheLastFires(benchmark::State& state, Kind kind) {
  Session session(state.range(0), kind);
  std::uint64_t dispatches = 0;
  for (auto _ : state) {
    session.pad.rgbButtons[0] ^= 0x80;
    session.Dispatch();
    ++dispatches;
  }
  if (session.presses != (dispatches + 1) / 2) state.SkipWithError("it did not fire each time");
}
BENCHMARK_CAPTURE(DispatchTheLastFires, buttons, Kind::Buttons)->Arg(1)->Arg(100)->Arg(1000);
BENCHMARK_CAPTURE(DispatchTheLastFires, mixed, Kind::Mixed)->Arg(1)->Arg(100)->Arg(1000);

// All three axes beyond their dead zones; each step sends.
void MouseStepMovingThreeAxes(benchmark::State& state) {
  Session session(1, Kind::Buttons);
  session.engine.mouseActive = true;
  session.profile.mouseX = TriggerItem{0, 0, 0};
  session.profile.mouseY = TriggerItem{1, 0, 4};
  session.profile.mouseWheel = TriggerItem{2, 0, 8};
  session.pad.lX = 20000;
  session.pad.lY = -30000;
  session.pad.lZ = 32000;
  LockGuard guard(session.device.deviceLock);
  std::uint64_t steps = 0;
  for (auto _ : state) {
    MouseStep(&session.device, &session.pad, &session.engine);
    ++steps;
  }
  if (session.machine.input.mouseEvents != steps) state.SkipWithError("a step sent nothing");
}
BENCHMARK(MouseStepMovingThreeAxes);

// The mouse controls are on and the pad at rest: what each of up to 1000 polls a second costs.
void MouseStepAtRest(benchmark::State& state) {
  Session session(1, Kind::Buttons);
  session.engine.mouseActive = true;
  session.profile.mouseX = TriggerItem{0, 0, 0};
  session.profile.mouseY = TriggerItem{1, 0, 4};
  session.profile.mouseWheel = TriggerItem{2, 0, 8};
  LockGuard guard(session.device.deviceLock);
  for (auto _ : state) MouseStep(&session.device, &session.pad, &session.engine);
  if (session.machine.input.mouseEvents != 0) state.SkipWithError("something was sent");
}
BENCHMARK(MouseStepAtRest);

}  // namespace
}  // namespace kelvaro
