// One run of the engine on one profile without a window: the device, the two steps, the repeat
// worker, and the end in which everything that is held is let go. On whatever platform is
// installed.
#pragma once

#include <functional>
#include <string>

#include "console/device_choice.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "engine/engine_host.h"
#include "engine/profile.h"

namespace kelvaro::console {

// A console has no dialog, no tab and nothing to save.
class ConsoleHost : public EngineHost {
 public:
  bool ControlDialogOpen() const override { return false; }
  void ShowDetectedTrigger(const DeviceManager&, const DeviceSnapshot&) override {}
  void ShowDetectedInput(MouseRole, const ByteString&) override {}
  void MouseDetectionEnded(MouseRole) override {}
  void SaveAfterMouseDetection() override {}
};

class EngineSession {
 public:
  // `profile` must outlive this.
  explicit EngineSession(Profile& profile);
  ~EngineSession();

  // Before Begin; as DeviceManager::SetAnswerAtOnce.
  void SetAnswerAtOnce(bool on) { device.SetAnswerAtOnce(on); }

  // Before Begin: no other program is to get anything of the device.
  void TakeDeviceAlone() {
    device.SetExclusive([](const ByteString&) { return true; });
  }

  // Before Begin; as ControlEngine::SetObserver.
  void SetObserver(DispatchObserver* observer) { engine.SetObserver(observer); }
  bool MouseIsOn() const { return engine.MouseIsOn(); }
  // As DeviceManager::LostPolls.
  std::uint32_t LostPolls() const { return device.LostPolls(); }

  // Selects the device and starts polling it and the repeat worker; the moment of return is time 0.
  // False, with *error in words, when there is no such device or its interval can't be had.
  bool Begin(const DeviceChoice& choice, bool mouseActive, std::string* error);

  // The interval of the next device. False, with *error in words and the old one, when it can't be
  // had.
  bool TakeInterval(std::uint32_t ms, std::string* error);

  // Goes on, at the interval that was taken, with what `load` puts into the profile, which is asked
  // for once what was held is let go. On a device that can't be had the run goes on without one:
  // false, with *error in words. While the run is paused it stays so.
  bool Change(const std::function<void()>& load, const DeviceChoice& choice, std::string* error);

  // What is steered; from the construction on.
  ControlEngine& Engine() { return engine; }

  const ByteString& DeviceName() const { return device.SelectedName(); }
  platform::GUID DeviceGuid() const { return device.SelectedGuid(); }

  // Lets go of what is held, after a replay that is under way, and stops everything.
  void End();

 private:
  Profile& profile;
  ConsoleHost host;
  DeviceManager device;
  ControlEngine engine;
  bool running = false;
};

}  // namespace kelvaro::console
