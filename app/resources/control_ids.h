// The numbers of the dialogs and of their controls, each once: the dialogs' tables, the logic, the
// tool tips and the tests take them from here. Each dialog has a namespace, since two dialogs can
// give one number to different controls.
#pragma once

#include <cstdint>

namespace kelvaro {

// Labels, frames and rules that only the tables know are numbered from here on.
constexpr std::uint32_t kUnnamed = 1300;

namespace main_window {

constexpr std::uint32_t kDialog = 102;

// The row of profiles, and the tabs.
constexpr std::uint32_t kProfileLabel = 1002;
constexpr std::uint32_t kProfileList = 1001;
constexpr std::uint32_t kNewProfile = 1006;
constexpr std::uint32_t kDeleteProfile = 1099;
constexpr std::uint32_t kCopyProfile = 1101;
constexpr std::uint32_t kRenameProfile = 1100;
constexpr std::uint32_t kHelp = 1146;
constexpr std::uint32_t kTabControl = 1000;

// A tab's page: an invisible box, which stands in the table before the controls of that page.
constexpr std::uint32_t kControlPageBox = 1015;
constexpr std::uint32_t kMousePageBox = 1017;
constexpr std::uint32_t kDevicePageBox = 1045;
constexpr std::uint32_t kSettingsPageBox = 1047;

// Control.
constexpr std::uint32_t kNewControl = 1004;
constexpr std::uint32_t kEditControl = 1005;
constexpr std::uint32_t kDeleteControls = 1136;
constexpr std::uint32_t kCopyControls = 1115;
constexpr std::uint32_t kPasteControls = 1155;
constexpr std::uint32_t kMoveUp = 1156;
constexpr std::uint32_t kMoveDown = 1157;
constexpr std::uint32_t kControlList = 1003;

// Mouse. Each field has the box beside it that detects what goes there, each slider the frame
// around it that tells its position.
constexpr std::uint32_t kMouseX = 1159;
constexpr std::uint32_t kMouseY = 1160;
constexpr std::uint32_t kMouseWheel = 1163;
constexpr std::uint32_t kLeftButton = 1161;
constexpr std::uint32_t kMiddleButton = 1162;
constexpr std::uint32_t kRightButton = 1164;
constexpr std::uint32_t kDetectMouseX = 1027;
constexpr std::uint32_t kDetectMouseY = 1028;
constexpr std::uint32_t kDetectMouseWheel = 1034;
constexpr std::uint32_t kDetectLeftButton = 1029;
constexpr std::uint32_t kDetectMiddleButton = 1030;
constexpr std::uint32_t kDetectRightButton = 1031;
constexpr std::uint32_t kMouseAlwaysActive = 1139;
constexpr std::uint32_t kTestMode = 1036;
constexpr std::uint32_t kMovementSensitivity = 1052;
constexpr std::uint32_t kMovementDamper = 1056;
constexpr std::uint32_t kWheelSensitivity = 1080;
constexpr std::uint32_t kWheelDamper = 1079;
constexpr std::uint32_t kMovementSensitivityFrame = 1050;
constexpr std::uint32_t kMovementDamperFrame = 1055;
constexpr std::uint32_t kWheelSensitivityFrame = 1051;
constexpr std::uint32_t kWheelDamperFrame = 1083;

// Device.
constexpr std::uint32_t kDeviceList = 1060;
constexpr std::uint32_t kRefreshDeviceList = 1170;
constexpr std::uint32_t kNumButtons = 1063;
constexpr std::uint32_t kNumAxis = 1065;
constexpr std::uint32_t kNumPovs = 1067;
constexpr std::uint32_t kInterval = 1076;
constexpr std::uint32_t kRate = 1077;
constexpr std::uint32_t kDefaultRate = 1078;
constexpr std::uint32_t kTimerMin = 1070;
constexpr std::uint32_t kTimerMax = 1072;

// Settings.
constexpr std::uint32_t kBanner = 1173;
constexpr std::uint32_t kVersionText = 1177;
constexpr std::uint32_t kStartMinimized = 1171;
constexpr std::uint32_t kLaunchAtStartup = 1172;
constexpr std::uint32_t kSmartCheck = 1187;
constexpr std::uint32_t kAdvanced = 1198;
constexpr std::uint32_t kWebLink = 1175;
constexpr std::uint32_t kMailLink = 1176;
constexpr std::uint32_t kCopyright = 1178;
constexpr std::uint32_t kLicense = 1189;

}  // namespace main_window

namespace define_control {

constexpr std::uint32_t kDialog = 134;

constexpr std::uint32_t kDescriptionLabel = 1135;
constexpr std::uint32_t kDescriptionText = 1083;
constexpr std::uint32_t kTriggerFrame = 1116;
constexpr std::uint32_t kTriggerText = 1081;
constexpr std::uint32_t kDetectLabel = 1127;
constexpr std::uint32_t kDetectTrigger = 1126;
constexpr std::uint32_t kToggleMouseCheck = 1140;
constexpr std::uint32_t kOnLabel = 1128;
constexpr std::uint32_t kPress = 1124;
constexpr std::uint32_t kRelease = 1125;
constexpr std::uint32_t kKeysLabel = 1131;
constexpr std::uint32_t kKeysText = 1093;
constexpr std::uint32_t kUppercaseNote = 1168;
constexpr std::uint32_t kHoldAllKeys = 1169;
constexpr std::uint32_t kSpecialKeyLabel = 1145;
constexpr std::uint32_t kSpecialKeyList = 1143;
constexpr std::uint32_t kHoldValue = 1196;
constexpr std::uint32_t kPauseValue = 1197;
constexpr std::uint32_t kRepeatFrame = 1122;
constexpr std::uint32_t kRepeatCheck = 1123;
constexpr std::uint32_t kDelayLabel = 1133;
constexpr std::uint32_t kDelayValue = 1095;
constexpr std::uint32_t kSpeedLabel = 1134;
constexpr std::uint32_t kSpeedValue = 1096;
constexpr std::uint32_t kDefaults = 1113;
constexpr std::uint32_t kHelp = 1146;

}  // namespace define_control

namespace new_profile {
constexpr std::uint32_t kDialog = 137;
constexpr std::uint32_t kName = 1137;
}  // namespace new_profile

namespace delete_profile {
constexpr std::uint32_t kDialog = 138;
constexpr std::uint32_t kName = 1138;
}  // namespace delete_profile

namespace profile_name {
constexpr std::uint32_t kDialog = 147;
constexpr std::uint32_t kTopLine = 1157;
constexpr std::uint32_t kName = 1137;
}  // namespace profile_name

namespace shift_key_required {
constexpr std::uint32_t kDialog = 149;
constexpr std::uint32_t kDontShowAgain = 1390;
}  // namespace shift_key_required

namespace advanced_settings {
constexpr std::uint32_t kDialog = 150;
constexpr std::uint32_t kAutodetectDevicePlugin = 1199;
}  // namespace advanced_settings

namespace welcome {
constexpr std::uint32_t kDialog = 151;
constexpr std::uint32_t kPicture = 1391;
constexpr std::uint32_t kText = 1200;
}  // namespace welcome

namespace auto_detect_mode {
constexpr std::uint32_t kDialog = 152;
constexpr std::uint32_t kDontShowAgain = 1390;
}  // namespace auto_detect_mode

// The menu of the notification icon.
namespace floater_menu {
constexpr std::uint32_t kShowKelvaro = 32771;
constexpr std::uint32_t kExit = 32772;
}  // namespace floater_menu

// The tabs' own texts in resources::String. 1177 and 1178 are also the numbers of controls, which
// these texts have nothing to do with.
namespace tab_tip {
constexpr std::uint32_t kControl = 1174;
constexpr std::uint32_t kMouse = 1177;
constexpr std::uint32_t kDevice = 1178;
constexpr std::uint32_t kSettings = 1179;
}  // namespace tab_tip

}  // namespace kelvaro
