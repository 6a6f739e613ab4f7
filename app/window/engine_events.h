// What the engine tells its host, handed on to the dialog and the tab that it is for. The threads
// and locks of its calls are EngineHost's.
#pragma once

#include "app/dialogs/define_control_dialog.h"
#include "app/window/mouse_tab.h"
#include "app/window/session.h"
#include "engine/engine_host.h"

namespace kelvaro {

class EngineEvents : public EngineHost {
 public:
  EngineEvents(Session& session, DefineControlDialog& defineControl, MouseTab& mouseTab)
      : session(session), defineControl(defineControl), mouseTab(mouseTab) {}

  bool ControlDialogOpen() const override { return defineControl.dialogOpen; }
  void ShowDetectedTrigger(const DeviceManager& device, const DeviceSnapshot& snapshot) override {
    defineControl.ShowDetectedTrigger(device, snapshot);
  }
  void ShowDetectedInput(MouseRole role, const ByteString& text) override {
    mouseTab.ShowDetectedInput(role, text);
  }
  void MouseDetectionEnded(MouseRole role) override { mouseTab.MouseDetectionEnded(role); }
  void SaveAfterMouseDetection() override { session.SaveAfterMouseDetection(); }

 private:
  Session& session;
  DefineControlDialog& defineControl;
  MouseTab& mouseTab;
};

}  // namespace kelvaro
