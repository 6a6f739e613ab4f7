#include "app/platform/windows/ui/windows_controls.h"

namespace platform::ui {

// --- Several moves at once

DeferHandle WindowsControls::BeginDeferWindowPos(std::int32_t count) {
  return count < 0 ? 0 : reinterpret_cast<DeferHandle>(::BeginDeferWindowPos(count));
}

DeferHandle WindowsControls::DeferWindowPos(DeferHandle defer, WindowHandle window,
                                            std::uint32_t id, const Rect& rect,
                                            std::uint32_t flags) {
  const ui::Control* const control = Find(window, id);
  if (!control) return 0;
  return reinterpret_cast<DeferHandle>(
      ::DeferWindowPos(reinterpret_cast<HDWP>(defer), control->Handle(), nullptr, rect.left,
                       rect.top, rect.Width(), rect.Height(), flags | SWP_NOZORDER));
}

bool WindowsControls::EndDeferWindowPos(DeferHandle defer) {
  return defer != 0 && ::EndDeferWindowPos(reinterpret_cast<HDWP>(defer));
}

// --- Tool tips

bool WindowsControls::CreateToolTip(WindowHandle window) {
  DialogWindow* const found = windows.Find(window);
  return found && found->tips.Create(found->Handle());
}

bool WindowsControls::SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.SetWidth(pixels);
  return found;
}

bool WindowsControls::SetToolTipTime(WindowHandle window, std::int32_t ms) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.SetTime(ms);
  return found;
}

bool WindowsControls::ActivateToolTip(WindowHandle window, bool active) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.Activate(active);
  return found;
}

bool WindowsControls::AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                 const std::string& text) {
  Rect rect;
  if (!TabGetItemRect(window, id, tab, &rect)) return false;
  // A number of 0 would be that of the control as a whole.
  return windows.Find(window)->tips.AddPart(Find(window, id)->Handle(),
                                            static_cast<std::uint32_t>(tab) + 1, rect, text);
}

bool WindowsControls::AddTool(WindowHandle window, std::uint32_t id) {
  DialogWindow* const found = windows.Find(window);
  const ui::Control* const control = Find(window, id);
  return control && found->tips.AddTool(found->Handle(), control->Handle());
}

bool WindowsControls::EnableToolTips(WindowHandle window) {
  DialogWindow* const found = windows.Find(window);
  return found && found->EnableToolTips();
}

}  // namespace platform::ui
