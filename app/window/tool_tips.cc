#include <algorithm>
#include <iterator>

#include "app/platform/controls.h"
#include "app/resources/resources.h"
#include "app/window/main_window.h"

namespace kelvaro {
namespace {

constexpr std::int32_t kTipWidth = 300;   // pixels
constexpr std::int32_t kTipTime = 10000;  // ms
constexpr std::uint32_t kTabControl = 1000;

// Texts of the tabs, in their order.
constexpr std::uint32_t kTabTips[] = {1174, 1177, 1178, 1179};

constexpr std::uint32_t kTools[] = {
    1004, 1005, 1136, 1115, 1155, 1156, 1157,                          // Control
    1159, 1027, 1160, 1028, 1163, 1034, 1161, 1029, 1162, 1030, 1164,  // Mouse
    1031, 1056, 1052, 1079, 1080, 1036, 1139,                          //
    1170, 1060, 1063, 1065, 1067, 1076, 1077, 1078, 1070, 1072,        // Device
    1173, 1198, 1171, 1172, 1187, 1175, 1176,                          // Settings
};

// A group box and two labels: what goes by their numbers is the text of something else.
constexpr std::uint32_t kWithoutTip[] = {1083, 1177, 1178};

std::string TextOfTip(std::uint32_t id) {
  const char* const text = resources::String(id);
  return text ? text : std::string();
}

}  // namespace

void MainWindow::CreateToolTips() {
  if (platform::CreateToolTip(window)) {
    platform::SetToolTipWidth(window, kTipWidth);
    platform::SetToolTipTime(window, kTipTime);
    platform::ActivateToolTip(window, true);
    std::int32_t tab = 0;
    for (const std::uint32_t text : kTabTips)
      platform::AddTabTool(window, kTabControl, tab++, TextOfTip(text));
    for (const std::uint32_t id : kTools) platform::AddTool(window, id);
  }
  platform::EnableToolTips(window);
}

std::string MainWindow::OnToolTip(std::uint32_t id) {
  if (!initComplete) return {};
  platform::SetToolTipWidth(window, kTipWidth);
  platform::SetToolTipTime(window, kTipTime);
  if (id == 0) return {};
  if (std::find(std::begin(kWithoutTip), std::end(kWithoutTip), id) != std::end(kWithoutTip))
    return {};
  return TextOfTip(id);
}

}  // namespace kelvaro
