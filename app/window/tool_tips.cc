#include "app/window/tool_tips.h"

#include <algorithm>
#include <iterator>

#include "app/platform/controls.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {
namespace {

using namespace main_window;

// Texts of the tabs, in their order.
constexpr std::uint32_t kTabTips[] = {tab_tip::kControl, tab_tip::kMouse, tab_tip::kDevice,
                                      tab_tip::kSettings};

constexpr std::uint32_t kTools[] = {
    kNewControl,
    kEditControl,
    kDeleteControls,
    kCopyControls,
    kPasteControls,
    kMoveUp,
    kMoveDown,  // Control
    kMouseX,
    kDetectMouseX,
    kMouseY,
    kDetectMouseY,
    kMouseWheel,
    kDetectMouseWheel,
    kLeftButton,
    kDetectLeftButton,
    kMiddleButton,
    kDetectMiddleButton,
    kRightButton,  // Mouse
    kDetectRightButton,
    kMovementDamper,
    kMovementSensitivity,
    kWheelDamper,
    kWheelSensitivity,
    kTestMode,
    kMouseAlwaysActive,  //
    kRefreshDeviceList,
    kDeviceList,
    kNumButtons,
    kNumAxis,
    kNumPovs,
    kInterval,
    kRate,
    kDefaultRate,
    kTimerMin,
    kTimerMax,  // Device
    kBanner,
    kAdvanced,
    kStartMinimized,
    kLaunchAtStartup,
    kSmartCheck,
    kWebLink,
    kMailLink,  // Settings
};

// A group box and two labels: their numbers belong to texts of something else.
constexpr std::uint32_t kWithoutTip[] = {kWheelDamperFrame, kVersionText, kCopyright};

std::string TextOfTip(std::uint32_t id) {
  const char* const text = resources::String(id);
  return text ? text : std::string();
}

}  // namespace

void CreateToolTips(const Dialog& dialog) {
  const platform::WindowHandle window = dialog.window;
  if (platform::controls().CreateToolTip(window)) {
    dialog.LimitTips(Dialog::kTipWidth);
    platform::controls().ActivateToolTip(window, true);
    std::int32_t tab = 0;
    for (const std::uint32_t text : kTabTips)
      platform::controls().AddTabTool(window, kTabControl, tab++, TextOfTip(text));
    for (const std::uint32_t id : kTools) platform::controls().AddTool(window, id);
  }
  platform::controls().EnableToolTips(window);
}

std::string ToolTipOf(std::uint32_t id) {
  const bool without =
      std::find(std::begin(kWithoutTip), std::end(kWithoutTip), id) != std::end(kWithoutTip);
  return without ? std::string() : TextOfTip(id);
}

}  // namespace kelvaro
