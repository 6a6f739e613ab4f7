// The Mouse tab: which inputs move the pointer, turn the wheel and press the mouse's buttons, how
// strongly, and their detection by moving them.
#include "app/window/mouse_tab.h"

#include "app/dialogs/small_dialogs.h"
#include "app/resources/control_ids.h"
#include "engine/input_text.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr std::int32_t kSliderMost = 50;
constexpr std::int32_t kSliderTick = 5;

// Each box starts a detection for the field beside it.
constexpr struct {
  std::uint32_t box;
  MouseRole role;
} kDetections[] = {
    {kDetectMouseX, MouseRole::X},
    {kDetectMouseY, MouseRole::Y},
    {kDetectMouseWheel, MouseRole::Wheel},
    {kDetectLeftButton, MouseRole::LeftButton},
    {kDetectMiddleButton, MouseRole::MiddleButton},
    {kDetectRightButton, MouseRole::RightButton},
};

// The engine knows no window, and names these by the same numbers.
static_assert(static_cast<std::uint32_t>(MouseRole::X) == kMouseX);
static_assert(static_cast<std::uint32_t>(MouseRole::Y) == kMouseY);
static_assert(static_cast<std::uint32_t>(MouseRole::Wheel) == kMouseWheel);
static_assert(static_cast<std::uint32_t>(MouseRole::LeftButton) == kLeftButton);
static_assert(static_cast<std::uint32_t>(MouseRole::MiddleButton) == kMiddleButton);
static_assert(static_cast<std::uint32_t>(MouseRole::RightButton) == kRightButton);
static_assert(ControlEngine::kMovementSensitivitySlider == kMovementSensitivity);
static_assert(ControlEngine::kMovementDamperSlider == kMovementDamper);
static_assert(ControlEngine::kWheelSensitivitySlider == kWheelSensitivity);
static_assert(ControlEngine::kWheelDamperSlider == kWheelDamper);

ByteString OrNone(const ByteString& text) { return text.IsEmpty() ? ByteString("<none>") : text; }

ByteString AxisText(const TriggerItem& item) {
  ByteString text;
  InputText(item, &text, false);
  return OrNone(text);
}

ByteString ButtonText(std::uint64_t mask) {
  ByteString text;
  ButtonsText(mask, &text);
  return OrNone(text);
}

std::uint32_t Brightness(platform::Colour colour) {
  return (colour & 0xFF) + (colour >> 8 & 0xFF) + (colour >> 16 & 0xFF);
}

platform::Rect Inside(const platform::Rect& rect, std::int32_t by) {
  return {rect.left + by, rect.top + by, rect.right - by, rect.bottom - by};
}

}  // namespace

void MouseTab::Show() {
  for (const MouseRoleInput& input : kMouseRoles) {
    dialog.SetText(static_cast<std::uint32_t>(input.role),
                   input.axis ? AxisText(profile.*input.axis) : ButtonText(profile.*input.mask));
  }
  dialog.Check(kMouseAlwaysActive, profile.mouseAlwaysActive);

  const struct {
    std::uint32_t id;
    std::int32_t position;
  } sliders[] = {{ControlEngine::kMovementDamperSlider, profile.movementDamper},
                 {ControlEngine::kMovementSensitivitySlider, profile.movementSensitivity},
                 {ControlEngine::kWheelDamperSlider, profile.wheelDamper},
                 {ControlEngine::kWheelSensitivitySlider, profile.wheelSensitivity}};
  for (const auto& slider : sliders) {
    platform::controls().SliderSetRange(dialog.window, slider.id, 0, kSliderMost);
    platform::controls().SliderSetTicFreq(dialog.window, slider.id, kSliderTick);
    platform::controls().SliderSetPos(dialog.window, slider.id, slider.position);
    ApplyMouseSlider(slider.id);
  }
}

void MouseTab::ApplyMouseSlider(std::uint32_t sliderId) {
  const std::int32_t position = platform::controls().SliderGetPos(dialog.window, sliderId);
  engine->ApplyMouseSlider(sliderId, position);

  const struct {
    std::uint32_t id;
    std::uint32_t caption;
    const char* text;
    const char* end;
  } captions[] = {
      {ControlEngine::kMovementSensitivitySlider, kMovementSensitivityFrame,
       "Movement Sensitivity (", ")"},
      {ControlEngine::kMovementDamperSlider, kMovementDamperFrame, "Movement Axis Damper (", "%)"},
      {ControlEngine::kWheelDamperSlider, kWheelDamperFrame, "Mouse Wheel Axis Damper (", "%)"},
      {ControlEngine::kWheelSensitivitySlider, kWheelSensitivityFrame, "Mouse Wheel Sensitivity (",
       ")"}};
  for (const auto& caption : captions) {
    if (caption.id != sliderId) continue;
    ByteString text(caption.text);
    text.Append(ToDecimalSigned(position, false, 1));
    text.Append(caption.end);
    dialog.SetText(caption.caption, text);
  }
}

void MouseTab::OnMouseSlider(std::uint32_t sliderId) {
  if (session.initGuard != 0) return;
  LockGuard guard(profile.profileLock);
  ApplyMouseSlider(sliderId);
  session.SaveProfile();
}

void MouseTab::OnMouseAlwaysActive() {
  LockGuard guard(profile.profileLock);
  profile.mouseAlwaysActive = !profile.mouseAlwaysActive;
  engine->MouseChanged();
  session.SaveProfile();
}

// Test mode

void MouseTab::OnTestButton() { SetTestMode(!engine->TestMode()); }

void MouseTab::SetTestMode(bool on) {
  engine->SetTestMode(on);
  if (session.currentTab == Session::kMouseTab)
    platform::controls().InvalidateControl(dialog.window, kTestMode);
}

void MouseTab::DrawTestButton(const platform::DrawItem& item, platform::Canvas& canvas) {
  constexpr platform::Colour kLampOn = 0x00FF00;
  constexpr platform::Colour kLampOnEdge = 0x00AA00;
  constexpr platform::Colour kLampOff = 0x007700;
  constexpr std::int32_t kLampLeft = 6;
  constexpr std::int32_t kLampWidth = 6;
  constexpr std::int32_t kLampHeight = 4;
  constexpr std::int32_t kTextFromRight = 12;
  constexpr std::int32_t kTextFromBottom = 6;
  constexpr std::int32_t kFocusInside = 3;

  const platform::Colour face = platform::desktop().GetSysColor(platform::COLOR_3DFACE);
  const platform::Colour light = platform::desktop().GetSysColor(platform::COLOR_3DHILIGHT);
  const platform::Colour shadow = platform::desktop().GetSysColor(platform::COLOR_3DSHADOW);
  const platform::Colour dark = platform::desktop().GetSysColor(platform::COLOR_3DDKSHADOW);
  const bool on = engine->TestMode();

  const platform::Rect& rect = item.rect;
  const platform::Rect inner = Inside(rect, 1);
  canvas.FillRect(rect, face);
  std::int32_t moved = 0;
  if (item.pressed) {
    moved = 2;
    canvas.Draw3dRect(rect, dark, light);
    canvas.Draw3dRect(inner, shadow, face);
  } else if (on) {
    moved = 1;
    canvas.Draw3dRect(rect, dark, light);
  } else {
    canvas.Draw3dRect(rect, light, dark);
    canvas.Draw3dRect(inner, face, shadow);
  }

  platform::Rect lamp;
  lamp.left = rect.left + kLampLeft + moved;
  lamp.top = rect.top + (rect.Height() - kLampHeight) / 2 + moved;
  lamp.right = lamp.left + kLampWidth;
  lamp.bottom = lamp.top + kLampHeight;
  const platform::Colour ink = platform::desktop().GetSysColor(platform::COLOR_BTNTEXT);
  // The dark green of a lamp that is off needs an edge before a dark face.
  if (!on && Brightness(ink) > Brightness(face)) canvas.FrameRect(Inside(lamp, -1), ink);
  canvas.FillRect(lamp, on ? kLampOn : kLampOff);
  if (on) canvas.FrameRect(lamp, kLampOnEdge);

  const platform::Rect text{rect.left + moved, rect.top + moved,
                            rect.right - kTextFromRight + moved,
                            rect.bottom - kTextFromBottom + moved};
  canvas.TextInRect(text, "Test", ink, platform::DT_RIGHT | platform::DT_BOTTOM);

  if (item.focused) canvas.DrawFocusRect(Inside(rect, kFocusInside));
  // The system doesn't make a drawn button the default while it has the focus.
  if (item.focusAction)
    platform::controls().SetDefaultButton(dialog.window, item.focused ? item.id : kEditControl);
}

// Detection

void MouseTab::OnDetectBox(std::uint32_t boxId, MouseRole role) {
  // Before a detection is ended, which unchecks its box.
  const bool checked = dialog.Checked(boxId);
  if (engine->IsDetecting()) {
    engine->EndMouseDetection();
    session.SaveAfterMouseDetection();
  } else if (session.settings.showAutoDetectUsage) {
    AutoDetectModeDialog usage;
    usage.DoModal(dialog.window);
    if (usage.dontShowAgain) session.settings.showAutoDetectUsage = false;
  }
  if (!checked) return;
  engine->StartMouseDetection(role);
}

// Called with deviceLock and mouseLock held: the controls take these from any thread, and at once.
void MouseTab::ShowDetectedInput(MouseRole role, const ByteString& text) {
  dialog.SetText(static_cast<std::uint32_t>(role), text);
}

void MouseTab::MouseDetectionEnded(MouseRole role) {
  for (const auto& detection : kDetections) {
    if (detection.role == role) dialog.Check(detection.box, false);
  }
}

void MouseTab::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t) {
  using platform::Notice;
  if (notice == Notice::Scrolled) OnMouseSlider(id);
  for (const auto& detection : kDetections) {
    if (detection.box == id && notice == Notice::Clicked) OnDetectBox(id, detection.role);
  }
  static constexpr Handler<MouseTab> kHandlers[] = {
      {kMouseAlwaysActive, Notice::Clicked, &MouseTab::OnMouseAlwaysActive},
      {kTestMode, Notice::Clicked, &MouseTab::OnTestButton},
  };
  Handle(this, kHandlers, id, notice);
}

}  // namespace kelvaro
