// What the window is made of, as data: the dialogs, the tool tip texts, the notification icon's
// menu, and the numbers of the pictures.
#pragma once

#include <cstdint>
#include <span>

#include "app/platform/dialog_template.h"

namespace kelvaro::resources {

// Dialogs, by their numbers: 102 the main window, 134 "Define Control", 137 "New Profile", 138
// "Delete Profile", 147 "Rename Profile", 149 "Shift Key Required", 150 "Advanced Settings", 151
// "Welcome to Kelvaro", 152 "Auto-Detect Mode".
// In the main window's table the box of a page (1015, 1017, 1045, 1047) stands before the controls
// of that page, which reach to the next such box; what stands before the first is always seen.
extern const platform::DialogTemplate kMainWindow;
extern const platform::DialogTemplate kDefineControl;
extern const platform::DialogTemplate kNewProfile;
extern const platform::DialogTemplate kDeleteProfile;
extern const platform::DialogTemplate kProfileName;
extern const platform::DialogTemplate kShiftKeyRequired;
extern const platform::DialogTemplate kAdvancedSettings;
extern const platform::DialogTemplate kWelcome;
extern const platform::DialogTemplate kAutoDetectMode;

// All of them.
std::span<const platform::DialogTemplate* const> Dialogs();

// The menu "Floater", 140, of the notification icon: "Exit" and "Show Kelvaro".
std::span<const platform::MenuItem> FloaterMenu();

// The text of the string table with that number, which is the number of the control whose tip it
// is; null when there is none.
const char* String(std::uint32_t id);

// Controls that the code has to know and that have no tip: "Don't show this again" of the dialogs
// 149 and 152, and the picture of the welcome.
constexpr std::uint32_t kDontShowAgain = 1390;
constexpr std::uint32_t kWelcomePicture = 1391;

constexpr std::uint32_t kIcon = 128;          // of the program
constexpr std::uint32_t kUpBitmap = 145;      // an arrow, of the button that moves Controls up
constexpr std::uint32_t kDownBitmap = 146;    // and down
constexpr std::uint32_t kBannerBitmap = 148;  // of the Settings tab and the welcome

// Addresses of the maker, chosen when the program is built.
extern const char* const kWebAddress;      // a whole address, such as "https://kelvaro.example/"
extern const char* const kSupportAddress;  // of mail, such as "support@kelvaro.example"

}  // namespace kelvaro::resources
