// The main window: the row of profiles, and below it a tab control whose four pages share one
// place.
//
// The layout puts each page's box 10 pixels inside the tab control and as far below its tabs; the
// page's controls go with it from where they are drawn beside it here, which therefore leaves some
// room at the right and at the bottom. The tab control begins at the window's left edge.
#include <algorithm>
#include <array>
#include <cstddef>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro::resources {

namespace {

using namespace main_window;
using platform::ControlTemplate;
using enum platform::ControlKind;
using platform::kStyleDefault;
using platform::kStyleMultiSelect;
using platform::kStyleReadOnly;
using platform::kStyleSorted;

constexpr ControlTemplate kShared[] = {
    {Label, kProfileLabel, "&Profile", 6, 10, 30, 9},
    {DropList, kProfileList, "", 38, 7, 95, 14, kStyleSorted},
    {Button, main_window::kNewProfile, "&New...", 139, 7, 44, 14},
    {Button, main_window::kDeleteProfile, "&Delete...", 187, 7, 44, 14},
    {Button, kCopyProfile, "Cop&y...", 235, 7, 44, 14},
    {Button, kRenameProfile, "&Rename...", 283, 7, 44, 14},
    {Button, kHelp, "&Help...", 331, 7, 44, 14},
    {TabControl, kTabControl, "", 0, 26, 375, 201, 0,
     "Pages"},  // as far left as the layout puts it
};

constexpr ControlTemplate kControlPage[] = {
    {Box, kControlPageBox, "", 6, 46, 366, 175},
    {Button, kNewControl, "Ne&w...", 6, 46, 44, 14},
    // Enter presses it wherever no other button has the focus, so in the list it edits a Control.
    {Button, kEditControl, "&Edit...", 54, 46, 44, 14, kStyleDefault},
    {Button, kDeleteControls, "De&lete...", 102, 46, 44, 14},
    {Button, kCopyControls, "&Copy", 156, 46, 44, 14},
    {Button, kPasteControls, "Pa&ste", 204, 46, 44, 14},
    {PictureButton, kMoveUp, "Move &Up", 258, 46, 18, 14},
    {PictureButton, kMoveDown, "Move D&own", 280, 46, 18, 14},
    {ListView, kControlList, "", 6, 64, 366, 157, kStyleMultiSelect, "Controls"},
};

constexpr ControlTemplate kMousePage[] = {
    {Box, kMousePageBox, "", 6, 46, 366, 175},
    {GroupBox, kUnnamed, "Movement", 6, 46, 190, 70},
    {Label, kUnnamed + 1, "&X movement", 12, 63, 56, 9},
    {Edit, kMouseX, "", 70, 60, 72, 14, kStyleReadOnly},
    {CheckBox, kDetectMouseX, "Detect", 148, 61, 44, 12, 0, "Detect X movement"},
    {Label, kUnnamed + 2, "Y mo&vement", 12, 80, 56, 9},
    {Edit, kMouseY, "", 70, 77, 72, 14, kStyleReadOnly},
    {CheckBox, kDetectMouseY, "Detect", 148, 78, 44, 12, 0, "Detect Y movement"},
    {Label, kUnnamed + 3, "&Wheel", 12, 97, 56, 9},
    {Edit, kMouseWheel, "", 70, 94, 72, 14, kStyleReadOnly},
    {CheckBox, kDetectMouseWheel, "Detect", 148, 95, 44, 12, 0, "Detect wheel"},
    {GroupBox, kUnnamed + 4, "Buttons", 6, 120, 190, 70},
    {Label, kUnnamed + 5, "&Left button", 12, 137, 56, 9},
    {Edit, kLeftButton, "", 70, 134, 72, 14, kStyleReadOnly},
    {CheckBox, kDetectLeftButton, "Detect", 148, 135, 44, 12, 0, "Detect left button"},
    {Label, kUnnamed + 6, "&Middle button", 12, 154, 56, 9},
    {Edit, kMiddleButton, "", 70, 151, 72, 14, kStyleReadOnly},
    {CheckBox, kDetectMiddleButton, "Detect", 148, 152, 44, 12, 0, "Detect middle button"},
    {Label, kUnnamed + 7, "R&ight button", 12, 171, 56, 9},
    {Edit, kRightButton, "", 70, 168, 72, 14, kStyleReadOnly},
    {CheckBox, kDetectRightButton, "Detect", 148, 169, 44, 12, 0, "Detect right button"},
    {CheckBox, kMouseAlwaysActive, "Mouse Controls Always &Active", 6, 197, 136, 12},
    {DrawnButton, kTestMode, "&Test", 146, 196, 50, 14},
    {GroupBox, kMovementSensitivityFrame, "Movement Sensitivity", 202, 46, 165, 38},
    {Slider, kMovementSensitivity, "", 208, 60, 153, 20, 0, "Movement Sensitivity"},
    {GroupBox, kMovementDamperFrame, "Movement Axis Damper", 202, 88, 165, 38},
    {Slider, kMovementDamper, "", 208, 102, 153, 20, 0, "Movement Axis Damper"},
    {GroupBox, kWheelSensitivityFrame, "Mouse Wheel Sensitivity", 202, 130, 165, 38},
    {Slider, kWheelSensitivity, "", 208, 144, 153, 20, 0, "Mouse Wheel Sensitivity"},
    {GroupBox, kWheelDamperFrame, "Mouse Wheel Axis Damper", 202, 172, 165, 38},
    {Slider, kWheelDamper, "", 208, 186, 153, 20, 0, "Mouse Wheel Axis Damper"},
};

constexpr ControlTemplate kDevicePage[] = {
    {Box, kDevicePageBox, "", 6, 46, 366, 175},
    {Label, kUnnamed + 20, "De&vice", 6, 49, 32, 9},
    {DropList, kDeviceList, "", 40, 46, 225, 14, kStyleSorted},
    {Button, kRefreshDeviceList, "Re&fresh Device List", 271, 46, 96, 14},
    {GroupBox, kUnnamed + 21, "Capabilities", 6, 68, 130, 82},
    {Label, kUnnamed + 22, "Num Buttons", 12, 85, 64, 9},
    {Label, kNumButtons, "", 80, 85, 50, 9},
    {Label, kUnnamed + 23, "Num Axis", 12, 102, 64, 9},
    {Label, kNumAxis, "", 80, 102, 50, 9},
    {Label, kUnnamed + 24, "Num POVs", 12, 119, 64, 9},
    {Label, kNumPovs, "", 80, 119, 50, 9},
    {GroupBox, kUnnamed + 25, "Polling", 142, 68, 225, 82},
    {Label, kUnnamed + 26, "&Interval (milliseconds)", 148, 85, 96, 9},
    {Edit, kInterval, "", 248, 82, 54, 14},
    {Label, kUnnamed + 27, "R&ate (per second)", 148, 102, 96, 9},
    {Edit, kRate, "", 248, 99, 54, 14},
    {Button, kDefaultRate, "Defaul&ts", 308, 99, 52, 14},
    {Label, kUnnamed + 28, "Min Timer Interval", 148, 119, 96, 9},
    {Label, kTimerMin, "", 250, 119, 110, 9},
    {Label, kUnnamed + 29, "Max Timer Interval", 148, 133, 96, 9},
    {Label, kTimerMax, "", 250, 133, 110, 9},
};

// A link, or plain words where the build has no address.
constexpr ControlTemplate Contact(std::uint32_t id, const char* address, std::int16_t y) {
  if (*address) return {Link, id, address, 44, y, 200, 9};
  return {Label, id, "none in this build", 44, y, 200, 9};
}

constexpr ControlTemplate kSettingsPage[] = {
    {Box, kSettingsPageBox, "", 6, 46, 366, 175},
    {Picture, kBanner, "", 6, 46, 160, 36, 0, "Kelvaro"},
    {Label, kVersionText, "", 174, 70, 193, 9},
    {Label, kUnnamed + 40, "Settings", 6, 90, 36, 9},
    {Rule, kUnnamed + 41, "", 44, 93, 323, 2},
    {CheckBox, kStartMinimized, "Start m&inimized", 6, 102, 150, 12},
    {CheckBox, kLaunchAtStartup, "&Launch at startup", 6, 116, 150, 12},
    {CheckBox, kSmartCheck, "&Smart Check key entry checker", 6, 130, 150, 12},
    {Button, kAdvanced, "&Advanced...", 309, 102, 58, 14},
    {Label, kUnnamed + 42, "Contact", 6, 150, 36, 9},
    {Rule, kUnnamed + 43, "", 44, 153, 323, 2},
    {Label, kUnnamed + 44, "&web:", 6, 162, 30, 9},
    Contact(kWebLink, KELVARO_WEB_ADDRESS, 162),
    {Label, kUnnamed + 45, "&email:", 6, 175, 30, 9},
    Contact(kMailLink, KELVARO_SUPPORT_ADDRESS, 175),
    {Label, kCopyright, "Copyright (c) 2026 the Kelvaro authors", 6, 193, 361, 9},
    {Label, kLicense, "Free software under the MIT License, without any warranty.", 6, 204, 361, 9},
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
    main_window::kDialog,
    "Kelvaro",
    380,
    232,
    platform::kWindowResizable | platform::kWindowMinimiseBox | platform::kWindowMaximiseBox,
    kControls};

}  // namespace kelvaro::resources
