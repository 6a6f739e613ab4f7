// An engine on a simulated machine, with actions that note what is asked of them. States go in by
// hand (Dispatch, Poll) or, after Plug, from a simulated pad that is polled.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/clock.h"
#include "app/platform/input.h"
#include "app/platform/simulation/simulation.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "tests/device/one_pad.h"
#include "tests/engine/axes.h"

namespace kelvaro {

// What happened, a line each. With a clock, each line has the time in front of it.
class Journal {
 public:
  void Note(const std::string& line) {
    lines.push_back(since ? std::to_string(sim->Now() - *since) + " " + line : line);
  }
  void CountFrom(const platform::simulation::Simulation& machine, std::uint64_t start) {
    sim = &machine;
    origin = start;
    since = &origin;
  }
  // Everything since the last call, joined by ", ".
  std::string Take() {
    std::string all;
    for (const std::string& line : lines) all += (all.empty() ? "" : ", ") + line;
    lines.clear();
    return all;
  }
  bool Empty() const { return lines.empty(); }

 private:
  std::vector<std::string> lines;
  const platform::simulation::Simulation* sim = nullptr;
  std::uint64_t origin = 0;
  const std::uint64_t* since = nullptr;
};

// Notes "press NAME" and "release NAME", and takes its time over them.
class RecordingAction : public InputAction {
 public:
  struct Arguments {
    std::uint8_t repeat;
    std::uint32_t holdTime;
    std::uint32_t releasePause;
    friend bool operator==(const Arguments&, const Arguments&) = default;
  };

  RecordingAction(std::string name, Journal* journal, std::uint32_t pressMs,
                  std::uint32_t releaseMs)
      : name(std::move(name)), journal(journal), pressMs(pressMs), releaseMs(releaseMs) {
    actionType = kKeyAction;
  }

  bool Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause) override {
    journal->Note("press " + name);
    replays.push_back({repeat, holdTime, releasePause});
    if (pressMs != 0) platform::clock().Sleep(pressMs);
    return true;
  }
  bool Release() override {
    journal->Note("release " + name);
    if (onRelease) onRelease();
    if (releaseMs != 0) platform::clock().Sleep(releaseMs);
    return true;
  }

  std::vector<Arguments> replays;
  std::function<void()> onRelease;

 private:
  const std::string name;
  Journal* const journal;
  const std::uint32_t pressMs;
  const std::uint32_t releaseMs;
};

// What a Control is made of.
struct Mapping {
  const char* name = "";  // of its action
  std::vector<std::uint32_t> buttons = {};
  std::vector<TriggerItem> items = {};
  bool onPress = true;
  bool toggles = false;
  bool repeats = false;
  std::uint32_t delay = 500;
  std::uint32_t speed = 50;
  std::uint32_t hold = 0;
  std::uint32_t pause = 0;
  std::uint32_t pressMs = 0;  // how long its replay takes
  std::uint32_t releaseMs = 0;
  std::vector<const char*> more = {};  // further actions
};

// What lies above, noted.
class RecordingHost : public EngineHost {
 public:
  bool ControlDialogOpen() const override { return dialogOpen; }
  void ShowDetectedTrigger(const DeviceManager&, const DeviceSnapshot& snapshot) override {
    triggersShown.push_back(snapshot.dispatchButtons);
  }
  void ShowDetectedInput(MouseRole role, const ByteString& text) override {
    journal.Note(Field(role) + "=" + text.Text());
  }
  void MouseDetectionEnded(MouseRole role) override {
    journal.Note("ended " + Field(role));
    if (onCall) onCall();
  }
  void SaveAfterMouseDetection() override {
    journal.Note("save");
    if (onCall) onCall();
  }
  static std::string Field(MouseRole role) {
    return std::to_string(static_cast<std::uint32_t>(role));
  }

  Relaxed<bool> dialogOpen{false};
  std::vector<std::uint64_t> triggersShown;
  Journal journal;
  std::function<void()> onCall;  // looks at locks from within a call
};

inline std::uint64_t MaskOf(const std::vector<std::uint32_t>& buttons) {
  std::uint64_t mask = 0;
  for (const std::uint32_t button : buttons) mask |= std::uint64_t{1} << (button - 1);
  return mask;
}

// A state with these buttons down (from 1), axes 0 and hats centred.
inline DIJOYSTATE2 Pad(const std::vector<std::uint32_t>& buttons = {}) {
  DIJOYSTATE2 state = test::AtRest();
  for (const std::uint32_t button : buttons) state.rgbButtons[button - 1] = 128;
  return state;
}

inline DIJOYSTATE2 With(std::int32_t DIJOYSTATE2::*axis, std::int32_t value,
                        const std::vector<std::uint32_t>& buttons = {}) {
  DIJOYSTATE2 state = Pad(buttons);
  state.*axis = value;
  return state;
}

inline DIJOYSTATE2 WithX(std::int32_t x, const std::vector<std::uint32_t>& buttons = {}) {
  return With(&DIJOYSTATE2::lX, x, buttons);
}

inline DIJOYSTATE2 WithHat(std::uint32_t angle) {
  DIJOYSTATE2 state = Pad();
  state.rgdwPOV[0] = angle;
  return state;
}

inline TriggerItem Axis(std::uint16_t kind, std::uint16_t direction, std::uint16_t bank = 0) {
  return {kind, bank, direction};
}
inline TriggerItem Hat(std::uint16_t directions, std::uint16_t hat = 0) {
  return {input_kind::kPov, hat, directions};
}

class EngineTest : public ::testing::Test {
 protected:
  EngineTest() { engine.Attach(); }
  ~EngineTest() override {
    engine.repeatWorker.Stop();
    if (device.DeviceSelected()) device.StopDevice();
  }

  // Adds to the master list; the DispatchList is rebuilt.
  Control* Add(const Mapping& mapping) {
    EXPECT_TRUE(profile.controls.AddTail({}));
    Control& made = *profile.controls.tail->value;
    made.activateOnPress = mapping.onPress;
    made.toggleMouseControls = mapping.toggles;
    made.repeatEnabled = mapping.repeats;
    made.repeatDelay = mapping.delay;
    made.repeatSpeed = mapping.speed;
    made.keyHoldTime = mapping.hold;
    made.keyReleasePause = mapping.pause;
    made.SetButtonMask(MaskOf(mapping.buttons));
    for (const TriggerItem& item : mapping.items) made.triggerItems.AddTail(item);
    made.actions.AddTail(
        new RecordingAction(mapping.name, &journal, mapping.pressMs, mapping.releaseMs));
    for (const char* name : mapping.more) {
      made.actions.AddTail(new RecordingAction(name, &journal, mapping.pressMs, mapping.releaseMs));
    }
    made.controlId = profile.nextControlId++;
    profile.RebuildDispatchList();
    return &made;
  }
  // The copy that the dispatcher walks.
  Control& Copy(const Control* master) {
    for (Control& control : profile.DispatchList) {
      if (control.controlId == master->controlId) return control;
    }
    ADD_FAILURE() << "no such Control";
    return *profile.DispatchList.head->value;
  }
  static RecordingAction& FirstAction(const Control& control) {
    return static_cast<RecordingAction&>(**control.actions.head->value);
  }

  // One changed state; what the actions were asked for.
  std::string Dispatch(const DIJOYSTATE2& state) {
    LockGuard guard(device.deviceLock);
    ControlDispatcher(&device, &state, &engine);
    return journal.Take();
  }
  std::string Dispatch(std::initializer_list<std::uint32_t> buttons) {
    return Dispatch(Pad(buttons));
  }

  // One good poll, changed or not; the mouse events it sent.
  std::string Poll(const DIJOYSTATE2& state) {
    {
      LockGuard guard(device.deviceLock);
      MouseStep(&device, &state, &engine);
    }
    return MouseEvents();
  }

  // The mouse events since the last call, "FLAGS DX DY DATA", joined by ", ".
  std::string MouseEvents() {
    std::string all;
    for (const auto& event : sim.Events()) {
      if (event.kind != platform::simulation::SentEvent::Kind::Mouse) continue;
      if (!all.empty()) all += ", ";
      all += std::to_string(event.flags) + " " + std::to_string(event.dx) + " " +
             std::to_string(event.dy) + " " + std::to_string(event.data);
    }
    sim.ClearEvents();
    return all;
  }

  // A pad that is selected and polled, and the repeat worker running. Times are noted from here on,
  // and polls come at multiples of `interval`, the worker's looks at multiples of 10.
  platform::SimulatedDevice& Plug(std::uint32_t interval) {
    pad = &sim.AddDevice({});
    EXPECT_TRUE(device.EnumerateDevices());
    EXPECT_TRUE(device.SetPollInterval(interval));
    EXPECT_TRUE(device.SelectDevice(0));
    EXPECT_TRUE(engine.repeatWorker.Start(false, WorkerThread::kPriorityOfCaller));
    start = sim.Now();
    journal.CountFrom(sim, start);
    return *pad;
  }
  // Time since Plug.
  void RunTo(std::uint64_t t) { sim.RunUntil(start + t); }
  // From `at` on these buttons of the pad and no others; plays until `until`.
  void Hold(std::uint64_t at, std::initializer_list<std::uint32_t> buttons, std::uint64_t until) {
    RunTo(at);
    pad->Press(buttons);
    RunTo(until);
  }

  platform::simulation::Simulation sim;
  Journal journal;
  RecordingHost host;
  Profile profile;
  DeviceManager device{platform::kNoWindow};
  ControlEngine engine{profile, device, host};
  std::uint64_t start = 0;
  platform::SimulatedDevice* pad = nullptr;  // after Plug
};

}  // namespace kelvaro
