// Dialog 102: the row of profiles, and below it a tab control whose four pages share one place.
//
// The layout puts each page's box 10 pixels inside the tab control and as far below its tabs; the
// page's controls go with it from where they are drawn beside it here, which therefore leaves some
// room at the right and at the bottom. The tab control begins at the window's left edge.
#include <algorithm>
#include <array>
#include <cstddef>

#include "app/resources/resources.h"

namespace kelvaro::resources {

namespace {

using platform::ControlTemplate;
using enum platform::ControlKind;
using platform::kStyleDefault;
using platform::kStyleMultiSelect;
using platform::kStyleReadOnly;
using platform::kStyleSorted;

constexpr ControlTemplate kShared[] = {
    {Label, 1002, "&Profile", 6, 10, 30, 9},
    {DropList, 1001, "", 38, 7, 95, 14, kStyleSorted},
    {Button, 1006, "&New...", 139, 7, 44, 14},
    {Button, 1099, "&Delete...", 187, 7, 44, 14},
    {Button, 1101, "Cop&y...", 235, 7, 44, 14},
    {Button, 1100, "&Rename...", 283, 7, 44, 14},
    {Button, 1146, "&Help...", 331, 7, 44, 14},
    {TabControl, 1000, "", 0, 26, 375, 201, 0, "Pages"},  // as far left as the layout puts it
};

constexpr ControlTemplate kControlPage[] = {
    {Box, 1015, "", 6, 46, 366, 175},
    {Button, 1004, "Ne&w...", 6, 46, 44, 14},
    {Button, 1005, "&Edit...", 54, 46, 44, 14, kStyleDefault},
    {Button, 1136, "De&lete...", 102, 46, 44, 14},
    {Button, 1115, "&Copy", 156, 46, 44, 14},
    {Button, 1155, "Pa&ste", 204, 46, 44, 14},
    {PictureButton, 1156, "Move &Up", 258, 46, 18, 14},
    {PictureButton, 1157, "Move D&own", 280, 46, 18, 14},
    {ListView, 1003, "", 6, 64, 366, 157, kStyleMultiSelect, "Controls"},
};

constexpr ControlTemplate kMousePage[] = {
    {Box, 1017, "", 6, 46, 366, 175},
    {GroupBox, 1300, "Movement", 6, 46, 190, 70},
    {Label, 1301, "&X movement", 12, 63, 56, 9},
    {Edit, 1159, "", 70, 60, 72, 14, kStyleReadOnly},
    {CheckBox, 1027, "Detect", 148, 61, 44, 12, 0, "Detect X movement"},
    {Label, 1302, "Y mo&vement", 12, 80, 56, 9},
    {Edit, 1160, "", 70, 77, 72, 14, kStyleReadOnly},
    {CheckBox, 1028, "Detect", 148, 78, 44, 12, 0, "Detect Y movement"},
    {Label, 1303, "&Wheel", 12, 97, 56, 9},
    {Edit, 1163, "", 70, 94, 72, 14, kStyleReadOnly},
    {CheckBox, 1034, "Detect", 148, 95, 44, 12, 0, "Detect wheel"},
    {GroupBox, 1304, "Buttons", 6, 120, 190, 70},
    {Label, 1305, "&Left button", 12, 137, 56, 9},
    {Edit, 1161, "", 70, 134, 72, 14, kStyleReadOnly},
    {CheckBox, 1029, "Detect", 148, 135, 44, 12, 0, "Detect left button"},
    {Label, 1306, "&Middle button", 12, 154, 56, 9},
    {Edit, 1162, "", 70, 151, 72, 14, kStyleReadOnly},
    {CheckBox, 1030, "Detect", 148, 152, 44, 12, 0, "Detect middle button"},
    {Label, 1307, "R&ight button", 12, 171, 56, 9},
    {Edit, 1164, "", 70, 168, 72, 14, kStyleReadOnly},
    {CheckBox, 1031, "Detect", 148, 169, 44, 12, 0, "Detect right button"},
    {CheckBox, 1139, "Mouse Controls Always &Active", 6, 197, 136, 12},
    {DrawnButton, 1036, "&Test", 146, 196, 50, 14},
    {GroupBox, 1050, "Movement Sensitivity", 202, 46, 165, 38},
    {Slider, 1052, "", 208, 60, 153, 20, 0, "Movement Sensitivity"},
    {GroupBox, 1055, "Movement Axis Damper", 202, 88, 165, 38},
    {Slider, 1056, "", 208, 102, 153, 20, 0, "Movement Axis Damper"},
    {GroupBox, 1051, "Mouse Wheel Sensitivity", 202, 130, 165, 38},
    {Slider, 1080, "", 208, 144, 153, 20, 0, "Mouse Wheel Sensitivity"},
    {GroupBox, 1083, "Mouse Wheel Axis Damper", 202, 172, 165, 38},
    {Slider, 1079, "", 208, 186, 153, 20, 0, "Mouse Wheel Axis Damper"},
};

constexpr ControlTemplate kDevicePage[] = {
    {Box, 1045, "", 6, 46, 366, 175},
    {Label, 1320, "De&vice", 6, 49, 32, 9},
    {DropList, 1060, "", 40, 46, 225, 14, kStyleSorted},
    {Button, 1170, "Re&fresh Device List", 271, 46, 96, 14},
    {GroupBox, 1321, "Capabilities", 6, 68, 130, 82},
    {Label, 1322, "Num Buttons", 12, 85, 64, 9},
    {Label, 1063, "", 80, 85, 50, 9},
    {Label, 1323, "Num Axis", 12, 102, 64, 9},
    {Label, 1065, "", 80, 102, 50, 9},
    {Label, 1324, "Num POVs", 12, 119, 64, 9},
    {Label, 1067, "", 80, 119, 50, 9},
    {GroupBox, 1325, "Polling", 142, 68, 225, 82},
    {Label, 1326, "&Interval (milliseconds)", 148, 85, 96, 9},
    {Edit, 1076, "", 248, 82, 54, 14},
    {Label, 1327, "R&ate (per second)", 148, 102, 96, 9},
    {Edit, 1077, "", 248, 99, 54, 14},
    {Button, 1078, "Defaul&ts", 308, 99, 52, 14},
    {Label, 1328, "Min Timer Interval", 148, 119, 96, 9},
    {Label, 1070, "", 250, 119, 110, 9},
    {Label, 1329, "Max Timer Interval", 148, 133, 96, 9},
    {Label, 1072, "", 250, 133, 110, 9},
};

constexpr ControlTemplate kSettingsPage[] = {
    {Box, 1047, "", 6, 46, 366, 175},
    {Picture, 1173, "", 6, 46, 160, 36, 0, "Kelvaro"},
    {Label, 1177, "", 174, 70, 193, 9},
    {Label, 1340, "Settings", 6, 90, 36, 9},
    {Rule, 1341, "", 44, 93, 323, 2},
    {CheckBox, 1171, "Start m&inimized", 6, 102, 150, 12},
    {CheckBox, 1172, "&Launch at startup", 6, 116, 150, 12},
    {CheckBox, 1187, "&Smart Check key entry checker", 6, 130, 150, 12},
    {Button, 1198, "&Advanced...", 309, 102, 58, 14},
    {Label, 1342, "Contact", 6, 150, 36, 9},
    {Rule, 1343, "", 44, 153, 323, 2},
    {Label, 1344, "&web:", 6, 162, 30, 9},
    {Link, 1175, KELVARO_WEB_ADDRESS, 44, 162, 200, 9},
    {Label, 1345, "&email:", 6, 175, 30, 9},
    {Link, 1176, KELVARO_SUPPORT_ADDRESS, 44, 175, 200, 9},
    {Label, 1178, "Copyright (c) 2026 the Kelvaro authors", 6, 193, 361, 9},
    {Label, 1189, "Free software under the MIT License, without any warranty.", 6, 204, 361, 9},
};

template <std::size_t... kCounts>
consteval auto Join(const ControlTemplate (&... parts)[kCounts]) {
  std::array<ControlTemplate, (kCounts + ...)> all{};
  auto* next = all.begin();
  ((next = std::ranges::copy(parts, next).out), ...);
  return all;
}

constexpr auto kControls = Join(kShared, kControlPage, kMousePage, kDevicePage, kSettingsPage);

}  // namespace

constinit const platform::DialogTemplate kMainWindow = {
    102,
    "Kelvaro",
    380,
    232,
    platform::kWindowResizable | platform::kWindowMinimiseBox | platform::kWindowMaximiseBox,
    kControls};

}  // namespace kelvaro::resources
