// A long random run of the engine on a simulated machine: a busy pad, edited profiles, and what a
// person does to the mouse controls meanwhile. The same seed gives the same run.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "app/platform/simulation/simulation.h"
#include "console/engine_session.h"
#include "console/profile_json.h"
#include "tests/console/held_inputs.h"
#include "tests/console/random_change.h"
#include "tests/console/random_json.h"

namespace kelvaro::console {

// A machine with one pad, and an engine on it that is edited and reselected as by a window.
class Soak {
 public:
  struct Options {
    std::uint32_t seed = 0;
    bool faults = true;  // operations of the machine fail now and then
    // While one runs the mouse's buttons don't go up, and what is down then stays so.
    bool detections = false;
    bool timersSleep = true;
    // Of each event, beside what is looked at here.
    std::function<void(const platform::simulation::SentEvent&)> listener = nullptr;
  };

  explicit Soak(const Options& options)
      : options(options), random(options.seed), pad(simulation.AddDevice({})) {
    simulation.KeepEvents(false);
    simulation.LetTimersSleep(options.timersSleep);
    simulation.OnEvent([this](const auto& event) {
      held.See(event);
      if (this->options.listener) this->options.listener(event);
    });
    device.EnumerateDevices();
    engine.Attach();
    engine.repeatWorker.Start(false, WorkerThread::kPriorityOfCaller);
    Edit();
  }
  ~Soak() {
    Pause([this] { device.StopDevice(); });
    engine.repeatWorker.Stop();
    for (const char* operation : kReads) simulation.Mend(operation);
  }

  std::uint64_t Now() const { return simulation.Now(); }
  std::uint64_t Presses() const { return held.presses; }

  void Step() {
    switch (random.Below(40)) {
      case 0:
        pad.Lose();
        break;
      case 1:
        pad.Unplug();
        break;
      case 2:
      case 3:
      case 4:
        pad.Return();
        pad.PlugIn();
        break;
      case 5:
        if (options.faults)
          simulation.FailNext(kReads[random.Below(3)], platform::DIERR_INPUTLOST,
                              random.Between(1, 50));
        break;
      case 6:
        Pause([this] {
          const std::string failing =
              random.OneOf({"timeSetEvent", "CreateThread", "CreateDevice", "SetDataFormat",
                            "timeBeginPeriod", "Acquire", "none"});
          Reselect(options.faults ? failing : std::string("none"));
        });
        break;
      case 7:
        Pause([] {});
        break;
      case 8:
        Edit();
        break;
      case 9:
      case 10:
        ChangeTheMouse();
        break;
      default:
        pad.Change(RandomChange(random, &buttons));
        break;
    }
    simulation.RunFor(random.OneIn(50) ? random.Below(20'000) : random.Below(400));
  }

  // Does something while the engine rests, with everything let go of.
  template <typename Something>
  void Pause(Something something) {
    engine.LetGo();
    if (!options.detections) {
      EXPECT_EQ(held.Text(), "") << "at " << Now();
    }
    EXPECT_FALSE(device.deviceLock.IsTaken()) << "at " << Now();
    EXPECT_FALSE(engine.mouseLock.IsTaken()) << "at " << Now();
    EXPECT_FALSE(profile.profileLock.IsTaken()) << "at " << Now();
    EXPECT_FALSE(engine.repeatWorker.repeatLock.IsTaken()) << "at " << Now();
    something();
    engine.Attach();
  }

 private:
  static constexpr const char* kReads[] = {"Poll", "GetDeviceState", "Acquire"};

  // As after a device list that was refreshed, with one operation failing once.
  void Reselect(const std::string& failing) {
    if (failing != "none") simulation.FailNext(failing);
    device.SelectDevice(0);
    if (failing != "none") simulation.Mend(failing);
  }

  // What a person does on the Mouse tab.
  void ChangeTheMouse() {
    switch (random.Below(options.detections ? 4 : 3)) {
      case 0:
        return engine.SetTestMode(!engine.TestMode());
      case 1: {
        LockGuard guard(profile.profileLock);
        profile.mouseAlwaysActive = !profile.mouseAlwaysActive;
        return engine.MouseChanged();
      }
      case 2: {
        LockGuard guard(profile.profileLock);
        return engine.ApplyMouseSlider(random.OneIn(2) ? ControlEngine::kMovementDamperSlider
                                                       : ControlEngine::kMovementSensitivitySlider,
                                       static_cast<std::int32_t>(random.Below(51)));
      }
      default:
        if (engine.IsDetecting()) return engine.EndMouseDetection();
        return engine.StartMouseDetection(random.OneIn(2) ? MouseRole::LeftButton : MouseRole::X);
    }
  }

  // Another profile, on the device that runs or anew.
  void Edit() {
    Profile next;
    JsonFault fault;
    ASSERT_TRUE(ReadProfile(RandomJson(random).Profile(), &next, &fault)) << fault.Text("random");
    Pause([&] {
      Take(next);
      if (random.OneIn(3)) return;
      device.SetPollInterval(next.pollInterval);
      Reselect("none");
    });
  }

  void Take(const Profile& next) {
    LockGuard guard(profile.profileLock);
    profile.Clear();
    for (const Control& control : next.controls) {
      profile.controls.AddTail(Control());
      profile.controls.tail->value->CopyDeep(control);
    }
    static_cast<MouseSettings&>(profile) = next;
    profile.RebuildDispatchList();
    engine.ApplyMouseSettings();
    engine.mouseActive = random.OneIn(2);
  }

  const Options options;
  Random random;
  platform::simulation::Simulation simulation;
  platform::SimulatedDevice& pad;
  HeldInputs held;
  std::uint32_t buttons = 0;
  Profile profile;
  ConsoleHost host;
  DeviceManager device{platform::kNoWindow};
  ControlEngine engine{profile, device, host};
};

}  // namespace kelvaro::console
