// The Mouse tab: which inputs move the pointer, turn the wheel and press the mouse's buttons, how
// strongly, and their detection by moving them.
#pragma once

#include <cstdint>

#include "app/platform/canvas.h"
#include "app/window/session.h"

namespace kelvaro {

class MouseTab : public Pane {
 public:
  explicit MouseTab(Session& session) : Pane(session) {}

  // All of it, from the profile. initGuard is up.
  void Show();
  void SetTestMode(bool on);
  void DrawTestButton(const platform::DrawItem& item, platform::Canvas& canvas);

  // Any thread.
  void ShowDetectedInput(MouseRole role, const ByteString& text);
  void MouseDetectionEnded(MouseRole role);

  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;

 private:
  void ApplyMouseSlider(std::uint32_t sliderId);  // position, derived values, caption
  void OnMouseSlider(std::uint32_t sliderId);
  void OnMouseAlwaysActive();
  void OnTestButton();
  void OnDetectBox(std::uint32_t boxId, MouseRole role);
};

}  // namespace kelvaro
