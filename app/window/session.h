// What the main window's tabs share while it is there: the open profile, the device and the engine,
// and what is remembered. User interface's thread, but for what says otherwise.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "app/layout/dialog.h"
#include "app/settings/app_settings.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "foundation/byte_string.h"
#include "foundation/relaxed.h"
#include "storage/profile_file.h"

namespace kelvaro {

struct Session {
  enum Tab : std::uint16_t { kControlTab, kMouseTab, kDeviceTab, kSettingsTab };

  // `dialog` is the main window.
  explicit Session(Dialog& dialog) : dialog(dialog) {}

  // Also on the notification thread, with locks held. Where the open profile can't be written it
  // goes on in memory; the person is told, once.
  bool SaveProfile();
  static void TellUnlessProfilesCanBeSaved();

  // The device's settings first, then the application's.
  void SaveAppSettings();
  // "Last Device" and the values of the selected device; nothing without one. Also on the
  // notification thread. The wheel's sensitivity and damper are not among them: they are the
  // profile's alone.
  void SaveDeviceSettings();
  // The values of the selected device, of which there is one. From the first that is missing on
  // nothing is taken, and the result is false.
  bool LoadDeviceSettings();
  // Of a detection that has ended: the device's values, then the profile. Also on the notification
  // thread.
  void SaveAfterMouseDetection();

  // If no device is selected: lets go of all that is held, since no state could still end it, and
  // wakes the timer.
  void LetGoWithoutDevice();
  void ReselectDevice();

  // A device may be awaited from now on. The main window's timer then looks for it.
  void WakeTimer();
  static constexpr std::uint32_t kTimer = 1;

  // The manager for the window, and the engine on it; the manager ends before them all, with
  // whatever runs on it.
  void StartDevice(EngineHost& host);
  void EndDevice();

  Dialog& dialog;
  ProfileFile profile;
  DeviceManager* deviceManager = nullptr;  // from StartDevice to EndDevice
  std::unique_ptr<ControlEngine> engine;   // from StartDevice on
  AppSettings settings;
  ByteString currentDeviceName;
  platform::GUID currentDeviceGuid;
  ByteString programPath;
  std::uint16_t currentTab = kControlTab;
  std::uint32_t initGuard = 0;  // above 0 while controls are filled: their notices don't count
  bool shuttingDown = false;
  // The open profile has changes that couldn't be stored. Any thread.
  Relaxed<bool> unsaved{false};

 private:
  std::unique_ptr<DeviceManager> ownedManager;
  std::atomic<bool> failedSaveTold{false};
};

// One tab of the main window, or another of its pieces: it has its own controls and their notices.
class Pane {
 public:
  virtual ~Pane() = default;
  Pane(const Pane&) = delete;
  Pane& operator=(const Pane&) = delete;

  // Does what a notice of its own asks for; those of the others are nothing to it.
  virtual void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) = 0;

 protected:
  explicit Pane(Session& session) : session(session) {}

  template <class Self>
  struct Handler {
    std::uint32_t id;
    platform::Notice notice;
    void (Self::*handle)();
  };
  template <class Self, std::size_t kCount>
  static void Handle(Self* self, const Handler<Self> (&handlers)[kCount], std::uint32_t id,
                     platform::Notice notice) {
    for (const Handler<Self>& handler : handlers) {
      if (handler.id == id && handler.notice == notice) (self->*handler.handle)();
    }
  }

  Session& session;
  Dialog& dialog = session.dialog;
  ProfileFile& profile = session.profile;
  DeviceManager* const& deviceManager = session.deviceManager;
  std::unique_ptr<ControlEngine>& engine = session.engine;
};

}  // namespace kelvaro
