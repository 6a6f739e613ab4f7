#include "console/engine_session.h"

namespace kelvaro::console {

EngineSession::EngineSession(Profile& profile)
    : profile(profile), device(platform::kNoWindow), engine(profile, device, host) {
  engine.Attach();
}

EngineSession::~EngineSession() { End(); }

bool EngineSession::TakeInterval(std::uint32_t ms, std::string* error) {
  if (device.SetPollInterval(ms)) return true;
  *error = "pollInterval: " + std::to_string(ms) + " ms is not from " +
           std::to_string(device.TimerMin()) + " to " + std::to_string(device.TimerMax());
  return false;
}

bool EngineSession::Begin(const DeviceChoice& choice, bool mouseActive, std::string* error) {
  engine.mouseActive = mouseActive;
  if (!TakeInterval(profile.pollInterval, error) || !SelectChosenDevice(&device, choice, error))
    return false;
  running = true;
  if (!engine.repeatWorker.Start(false, WorkerThread::kPriorityOfCaller)) {
    *error = "the thread that repeats keys can't be started";
    return false;
  }
  return true;
}

bool EngineSession::Change(const std::function<void()>& load, const DeviceChoice& choice,
                           std::string* error) {
  engine.LetGo();
  device.StopDevice();
  load();
  engine.ApplyMouseSettings();
  engine.mouseActive = false;
  engine.snapshot = DeviceSnapshot();
  engine.Attach();
  return SelectChosenDevice(&device, choice, error);
}

void EngineSession::End() {
  if (!running) return;
  running = false;
  engine.LetGo();
  device.StopDevice();
  engine.repeatWorker.Stop();
}

}  // namespace kelvaro::console
