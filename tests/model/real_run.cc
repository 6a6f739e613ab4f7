#include "tests/model/real_run.h"

#include <algorithm>

#include "app/platform/simulation/simulation.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "keys/key_action.h"

namespace kelvaro::plain {
namespace {

constexpr std::uint32_t kSliders[] = {
    ControlEngine::kMovementDamperSlider, ControlEngine::kMovementSensitivitySlider,
    ControlEngine::kWheelDamperSlider, ControlEngine::kWheelSensitivitySlider};

class Host : public EngineHost {
 public:
  bool ControlDialogOpen() const override { return open; }
  void ShowDetectedTrigger(const DeviceManager&, const DeviceSnapshot&) override {}
  void ShowDetectedInput(MouseRole, const ByteString&) override {}
  void MouseDetectionEnded(MouseRole) override {}
  void SaveAfterMouseDetection() override {}

  bool open = false;
};

TriggerItem MouseItem(const Input& input) {
  return MouseInput(static_cast<std::uint16_t>(input.kind),
                    static_cast<std::uint16_t>(input.index));
}

void AddAction(const ScriptAction& script, Control* control) {
  auto* const action = new KeyAction;
  action->actionFlags = script.holdAll ? KeyAction::HoldAllKeys : 0;
  if (!script.text.empty()) {
    action->ParseKeys(ByteString(script.text.c_str()));
  } else {
    for (const std::uint32_t step : script.steps) {
      action->steps.AddTail({static_cast<std::uint8_t>(step), static_cast<std::uint8_t>(step >> 8),
                             static_cast<std::uint8_t>(step >> 16)});
    }
  }
  control->actions.AddTail(action);
}

void AddControl(const ScriptControl& script, Profile* profile) {
  profile->controls.AddTail(Control());
  Control& control = *profile->controls.tail->value;
  control.activateOnPress = script.press;
  control.SetButtonMask(script.buttons);
  for (const Input& input : script.inputs) {
    control.triggerItems.AddTail({static_cast<std::uint16_t>(input.kind),
                                  static_cast<std::uint16_t>(input.index),
                                  static_cast<std::uint16_t>(input.direction)});
  }
  control.toggleMouseControls = script.togglesMouse;
  control.repeatEnabled = script.repeats;
  control.repeatDelay = script.repeatDelay;
  control.repeatSpeed = script.repeatSpeed;
  control.keyHoldTime = script.holdTime;
  control.keyReleasePause = script.releasePause;
  for (const ScriptAction& action : script.actions) AddAction(action, &control);
}

class Run {
 public:
  explicit Run(const Script& script) : script(script), pad(simulation.AddDevice({})) {
    simulation.KeepEvents(false);
    simulation.OnEvent([this](const auto& sent) {
      const bool isKey = sent.kind == platform::simulation::SentEvent::Kind::Key;
      if (sent.t <= this->script.end) {
        events.push_back(
            {sent.t, isKey, sent.flags, sent.vk, sent.scan, sent.dx, sent.dy, sent.data});
      }
    });
    simulation.SetTickOffset(script.tickOffset);
    std::vector<std::uint32_t> held;
    for (const PadChange& change : script.pad) {
      pad.ChangeAt(change.t, StateChangeOf(change, &held));
    }
    device.EnumerateDevices();
    // However long a replay lasts, nobody ends it by force.
    device.stopTimeout = 1'000'000'000;
    engine.repeatWorker.stopTimeout = 1'000'000'000;
    engine.Attach();
    TakeProfile(script.profiles[0]);
    engine.mouseActive = script.mouseActive;
    simulation.RunFor(script.workerStart);
    engine.repeatWorker.Start(false, WorkerThread::kPriorityOfCaller);
    Select(script.profiles[0]);
  }

  ~Run() { device.StopDevice(); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  std::vector<Event> Events() {
    for (const PersonAct& act : script.person) {
      simulation.RunUntil(act.t);
      Do(act);
    }
    simulation.RunUntil(script.end);
    return events;
  }

 private:
  void TakeProfile(const ScriptProfile& next) {
    LockGuard guard(profile.profileLock);
    engine.repeatWorker.Clear();
    profile.Clear();
    MakeProfile(next, &profile);
    engine.ApplyMouseSettings();
    engine.mouseActive = false;
  }

  void Select(const ScriptProfile& next) {
    device.SetPollInterval(next.pollInterval);
    device.SelectDevice(0);
  }

  void Do(const PersonAct& act) {
    switch (act.what) {
      case PersonAct::What::TestMode:
        return engine.SetTestMode(act.to != 0);
      case PersonAct::What::AlwaysActive: {
        LockGuard guard(profile.profileLock);
        profile.mouseAlwaysActive = act.to != 0;
        return engine.MouseChanged();
      }
      case PersonAct::What::Dialog:
        host.open = act.to != 0;
        return engine.MouseChanged();
      case PersonAct::What::Slider: {
        LockGuard guard(profile.profileLock);
        return engine.ApplyMouseSlider(kSliders[act.number], act.to);
      }
      case PersonAct::What::Load:
        engine.SetTestMode(false);
        TakeProfile(script.profiles[act.number]);
        if (act.to != 0) Select(script.profiles[act.number]);
        return;
    }
  }

  const Script& script;
  platform::simulation::Simulation simulation;
  platform::SimulatedDevice& pad;
  std::vector<Event> events;
  Profile profile;
  Host host;
  DeviceManager device{platform::kNoWindow};
  ControlEngine engine{profile, device, host};
};

}  // namespace

platform::StateChange StateChangeOf(const PadChange& change, std::vector<std::uint32_t>* held) {
  platform::StateChange made;
  made.t = change.t;
  switch (change.what) {
    case PadChange::What::Button:
      made.hasButtons = true;
      std::erase(*held, change.number + 1);
      if (change.to != 0) held->push_back(change.number + 1);
      made.buttons = *held;
      break;
    case PadChange::What::Axis:
      made.axes.emplace_back(platform::AxisName{static_cast<std::uint16_t>(change.number % 8),
                                                static_cast<std::uint16_t>(change.number / 8)},
                             change.to);
      break;
    case PadChange::What::Hat:
      made.povs.emplace_back(change.number, static_cast<std::uint32_t>(change.to));
      break;
    case PadChange::What::Lost:
      made.hasLost = true;
      made.lost = change.to != 0;
      break;
  }
  return made;
}

void MakeProfile(const ScriptProfile& script, Profile* profile) {
  profile->pollInterval = script.pollInterval;
  profile->movementDamper = script.movementDamper;
  profile->movementSensitivity = script.movementSensitivity;
  profile->wheelDamper = script.wheelDamper;
  profile->wheelSensitivity = script.wheelSensitivity;
  profile->leftMask = script.leftMask;
  profile->middleMask = script.middleMask;
  profile->rightMask = script.rightMask;
  profile->mouseX = MouseItem(script.mouseX);
  profile->mouseY = MouseItem(script.mouseY);
  profile->mouseWheel = MouseItem(script.mouseWheel);
  profile->mouseAlwaysActive = script.mouseAlwaysActive;
  for (const ScriptControl& control : script.controls) AddControl(control, profile);
  profile->RebuildDispatchList();
}

std::vector<Event> PlayReally(const Script& script) { return Run(script).Events(); }

}  // namespace kelvaro::plain
