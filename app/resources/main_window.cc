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
    {Label, 1002, "&Profile", 6, 10, 30, 8},
    {DropList, 1001, "", 38, 7, 95, 14, kStyleSorted},
    {Button, 1006, "&New...", 139, 7, 44, 14},
    {Button, 1099, "&Delete...", 187, 7, 44, 14},
    {Button, 1101, "Cop&y...", 235, 7, 44, 14},
    {Button, 1100, "&Rename...", 283, 7, 44, 14},
    {Button, 1146, "&Help...", 331, 7, 44, 14},
    {TabControl, 1000, "", 0, 26, 375, 197, 0, "Pages"},  // as far left as the layout puts it
};

constexpr ControlTemplate kControlPage[] = {
    {Box, 1015, "", 6, 46, 361, 171},
    {Button, 1004, "Ne&w...", 6, 46, 44, 14},
    {Button, 1005, "&Edit...", 54, 46, 44, 14, kStyleDefault},
    {Button, 1136, "De&lete...", 102, 46, 44, 14},
    {Button, 1115, "&Copy", 156, 46, 44, 14},
    {Button, 1155, "Pa&ste", 204, 46, 44, 14},
    {PictureButton, 1156, "Move &Up", 258, 46, 18, 14},
    {PictureButton, 1157, "Move D&own", 280, 46, 18, 14},
    {ListView, 1003, "", 6, 64, 361, 153, kStyleMultiSelect, "Controls"},
};

constexpr ControlTemplate kMousePage[] = {
    {Box, 1017, "", 6, 46, 361, 171},
    {GroupBox, 1300, "Movement", 6, 46, 190, 66},
    {Label, 1301, "&X movement", 12, 60, 56, 8},
    {Edit, 1159, "", 70, 57, 72, 14, kStyleReadOnly},
    {CheckBox, 1027, "Detect", 148, 59, 44, 10, 0, "Detect X movement"},
    {Label, 1302, "Y mo&vement", 12, 77, 56, 8},
    {Edit, 1160, "", 70, 74, 72, 14, kStyleReadOnly},
    {CheckBox, 1028, "Detect", 148, 76, 44, 10, 0, "Detect Y movement"},
    {Label, 1303, "&Wheel", 12, 94, 56, 8},
    {Edit, 1163, "", 70, 91, 72, 14, kStyleReadOnly},
    {CheckBox, 1034, "Detect", 148, 93, 44, 10, 0, "Detect wheel"},
    {GroupBox, 1304, "Buttons", 6, 116, 190, 66},
    {Label, 1305, "&Left button", 12, 130, 56, 8},
    {Edit, 1161, "", 70, 127, 72, 14, kStyleReadOnly},
    {CheckBox, 1029, "Detect", 148, 129, 44, 10, 0, "Detect left button"},
    {Label, 1306, "&Middle button", 12, 147, 56, 8},
    {Edit, 1162, "", 70, 144, 72, 14, kStyleReadOnly},
    {CheckBox, 1030, "Detect", 148, 146, 44, 10, 0, "Detect middle button"},
    {Label, 1307, "R&ight button", 12, 164, 56, 8},
    {Edit, 1164, "", 70, 161, 72, 14, kStyleReadOnly},
    {CheckBox, 1031, "Detect", 148, 163, 44, 10, 0, "Detect right button"},
    {CheckBox, 1139, "Mouse Controls Always &Active", 6, 190, 136, 10},
    {DrawnButton, 1036, "&Test", 146, 188, 50, 14},
    {GroupBox, 1050, "Movement Sensitivity", 202, 46, 165, 36},
    {Slider, 1052, "", 208, 57, 153, 20, 0, "Movement Sensitivity"},
    {GroupBox, 1055, "Movement Axis Damper", 202, 86, 165, 36},
    {Slider, 1056, "", 208, 97, 153, 20, 0, "Movement Axis Damper"},
    {GroupBox, 1051, "Mouse Wheel Sensitivity", 202, 126, 165, 36},
    {Slider, 1080, "", 208, 137, 153, 20, 0, "Mouse Wheel Sensitivity"},
    {GroupBox, 1083, "Mouse Wheel Axis Damper", 202, 166, 165, 36},
    {Slider, 1079, "", 208, 177, 153, 20, 0, "Mouse Wheel Axis Damper"},
};

constexpr ControlTemplate kDevicePage[] = {
    {Box, 1045, "", 6, 46, 361, 171},
    {Label, 1320, "De&vice", 6, 49, 32, 8},
    {DropList, 1060, "", 40, 46, 225, 14, kStyleSorted},
    {Button, 1170, "Re&fresh Device List", 271, 46, 96, 14},
    {GroupBox, 1321, "Device", 6, 66, 150, 78},
    {Label, 1322, "Num Buttons", 12, 80, 90, 8},
    {Label, 1063, "", 106, 80, 44, 8},
    {Label, 1323, "Num Axis", 12, 94, 90, 8},
    {Label, 1065, "", 106, 94, 44, 8},
    {Label, 1324, "Num POVs", 12, 108, 90, 8},
    {Label, 1067, "", 106, 108, 44, 8},
    {GroupBox, 1325, "Polling", 162, 66, 205, 78},
    {Label, 1326, "&Interval (milliseconds)", 168, 80, 94, 8},
    {Edit, 1076, "", 264, 77, 44, 14},
    {Button, 1078, "Defaul&ts", 313, 77, 48, 14},
    {Label, 1327, "R&ate (per second)", 168, 97, 94, 8},
    {Edit, 1077, "", 264, 94, 44, 14},
    {Label, 1328, "Min Timer Interval", 168, 114, 94, 8},
    {Label, 1070, "", 266, 114, 90, 8},
    {Label, 1329, "Max Timer Interval", 168, 128, 94, 8},
    {Label, 1072, "", 266, 128, 90, 8},
};

constexpr ControlTemplate kSettingsPage[] = {
    {Box, 1047, "", 6, 46, 361, 171},
    {Picture, 1173, "", 6, 46, 190, 36, 0, "Kelvaro"},
    {Label, 1177, "", 204, 72, 160, 8},
    {Label, 1340, "Settings", 6, 88, 36, 8},
    {Rule, 1341, "", 46, 91, 321, 2},
    {CheckBox, 1171, "Start m&inimized", 6, 101, 150, 10},
    {CheckBox, 1172, "&Launch at startup", 6, 115, 150, 10},
    {CheckBox, 1187, "&Smart Check key entry checker", 6, 129, 150, 10},
    {Button, 1198, "&Advanced...", 309, 101, 58, 14},
    {Label, 1342, "Contact", 6, 147, 36, 8},
    {Rule, 1343, "", 46, 150, 321, 2},
    {Label, 1344, "&web:", 6, 160, 30, 8},
    {Link, 1175, KELVARO_WEB_ADDRESS, 38, 160, 200, 8},
    {Label, 1345, "&email:", 6, 173, 30, 8},
    {Link, 1176, KELVARO_SUPPORT_ADDRESS, 38, 173, 200, 8},
    {Label, 1178, "Copyright (c) 2026 Marnstone", 6, 190, 361, 8},
    {Label, 1189, "Free software under the MIT License, without any warranty.", 6, 201, 361, 8},
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
    228,
    platform::kWindowResizable | platform::kWindowMinimiseBox | platform::kWindowMaximiseBox,
    kControls};

}  // namespace kelvaro::resources
