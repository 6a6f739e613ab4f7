// What the engine asks of the window or the console above it. Calls come on the notification thread
// with deviceLock held (ControlDialogOpen on the timer's thread too) and must not wait for a user
// interface. Those of a mouse detection come with mouseLock held as well; MouseDetectionEnded also
// comes on any other thread that ends one, with no lock of the engine.
#pragma once

#include "engine/device_snapshot.h"
#include "engine/mouse_settings.h"
#include "foundation/byte_string.h"

namespace kelvaro {

class DeviceManager;

class EngineHost {
 public:
  virtual ~EngineHost() = default;

  // Whether the dialog that defines a Control is open; no Control fires meanwhile.
  virtual bool ControlDialogOpen() const = 0;
  // The state is for that dialog. Called for each change while it is open, whether or not it
  // detects.
  virtual void ShowDetectedTrigger(const DeviceManager& device, const DeviceSnapshot& snapshot) = 0;

  // A text for the field of the running mouse detection's role: what is held now, or "<none>".
  virtual void ShowDetectedInput(MouseRole role, const ByteString& text) = 0;
  // The detection for that role is over: its box is to be unchecked.
  virtual void MouseDetectionEnded(MouseRole role) = 0;
  // The two buttons that end a detection did so: values changed that are kept for the device, and
  // in the profile.
  virtual void SaveAfterMouseDetection() = 0;
};

}  // namespace kelvaro
