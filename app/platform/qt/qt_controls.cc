#include "app/platform/qt/qt_controls.h"

namespace platform::qt {

DeferHandle QtControls::BeginDeferWindowPos(std::int32_t count) {
  if (count < 0) return 0;
  deferred[++lastDefer].reserve(static_cast<std::size_t>(count));
  return lastDefer;
}

DeferHandle QtControls::DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                                       const Rect& rect, std::uint32_t flags) {
  const auto found = deferred.find(defer);
  if (found == deferred.end() || !HasControl(window, id)) return 0;
  found->second.push_back({window, id, rect, flags});
  return defer;
}

bool QtControls::EndDeferWindowPos(DeferHandle defer) {
  const auto found = deferred.find(defer);
  if (found == deferred.end()) return false;
  const std::vector<Move> moves = std::move(found->second);
  deferred.erase(found);
  for (const Move& move : moves)
    QtControls::SetControlPos(move.window, move.id, move.rect, move.flags);
  return true;
}

// --- Tool tips

bool QtControls::CreateToolTip(WindowHandle window) { return windows.Find(window); }

bool QtControls::SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.width = pixels;
  return found;
}

bool QtControls::SetToolTipTime(WindowHandle window, std::int32_t ms) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.time = ms;
  return found;
}

bool QtControls::ActivateToolTip(WindowHandle window, bool active) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.active = active;
  return found;
}

bool QtControls::AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                            const std::string& text) {
  Rect rect;
  if (!TabGetItemRect(window, id, tab, &rect)) return false;
  windows.Find(window)->tips.tabTools.push_back({id, tab, text});
  return true;
}

bool QtControls::AddTool(WindowHandle window, std::uint32_t id) {
  if (!HasControl(window, id)) return false;
  windows.Find(window)->tips.tools.insert(id);
  return true;
}

bool QtControls::EnableToolTips(WindowHandle window) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.everyControl = true;
  return found;
}

}  // namespace platform::qt
