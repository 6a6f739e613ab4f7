// Hours of virtual time on a machine on which things go wrong: the pad is lost and comes back, is
// pulled out, its reads fail, timers and threads can't be had, the profile is edited. Nothing
// stands still, no lock stays taken, and whenever the engine lets go, nothing is left down.
// KELVARO_SOAK_HOURS makes it longer.

#include <gtest/gtest.h>

#include <cstdlib>

#include "app/platform/simulation/simulation.h"
#include "console/engine_session.h"
#include "console/profile_json.h"
#include "tests/console/held_inputs.h"
#include "tests/console/random_change.h"
#include "tests/console/random_profile.h"

namespace kelvaro::console {
namespace {

using platform::SimulatedDevice;
using platform::simulation::Simulation;

constexpr std::uint64_t kHour = 60 * 60 * 1000;  // ms

std::uint64_t HoursToRun() {
  const char* hours = std::getenv("KELVARO_SOAK_HOURS");
  return hours ? std::strtoull(hours, nullptr, 10) : 3;
}

// A machine with one pad, and an engine on it that is edited and reselected as by a window.
class Soak {
 public:
  explicit Soak(std::uint32_t seed) : random(seed), pad(simulation.AddDevice({})) {
    simulation.KeepEvents(false);
    simulation.OnEvent([this](const auto& event) { held.See(event); });
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
        simulation.FailNext(kReads[random.Below(3)], platform::DIERR_INPUTLOST,
                            random.Between(1, 50));
        break;
      case 6:
        Pause([this] {
          Reselect(random.OneOf({"timeSetEvent", "CreateThread", "CreateDevice", "SetDataFormat",
                                 "timeBeginPeriod", "Acquire", "none"}));
        });
        break;
      case 7:
        Pause([] {});
        break;
      case 8:
        Edit();
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
    EXPECT_EQ(held.Text(), "") << "at " << Now();
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

  // Another profile.
  void Edit() {
    Profile next;
    JsonFault fault;
    ASSERT_TRUE(ReadProfile(RandomProfile(random).Json(), &next, &fault)) << fault.Text("random");
    Pause([&] {
      Take(next);
      device.SetPollInterval(next.pollInterval);
      Reselect("none");
    });
  }

  void Take(const Profile& next) {
    LockGuard guard(profile.profileLock);
    profile.Clear();
    for (const Control& control : next.controls) {
      Control copy;
      copy.CopyDeep(control);
      copy.actionsBorrowed = 1;  // the list's copy deletes them
      profile.controls.AddTail(copy);
    }
    static_cast<MouseSettings&>(profile) = next;
    profile.RebuildDispatchList();
    engine.ApplyMouseSettings();
    engine.mouseActive = random.OneIn(2);
  }

  Random random;
  Simulation simulation;
  SimulatedDevice& pad;
  HeldInputs held;
  std::uint32_t buttons = 0;
  Profile profile;
  ConsoleHost host;
  DeviceManager device{platform::kNoWindow};
  ControlEngine engine{profile, device, host};
};

TEST(Soak, HoursOfFaultsLeaveNothingDownAndNoLockTaken) {
  for (std::uint32_t hour = 0; hour < HoursToRun(); ++hour) {
    Soak soak(hour);
    while (soak.Now() < kHour) {
      soak.Step();
      ASSERT_FALSE(HasFailure()) << "seed " << hour;
    }
    EXPECT_GT(soak.Presses(), 1000U) << "seed " << hour;  // it went on to the end
  }
}

}  // namespace
}  // namespace kelvaro::console
