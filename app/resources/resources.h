// What the window is made of, as data: the dialogs, the tool tip texts, the notification icon's
// menu, and the numbers of the pictures.
#pragma once

#include <cstdint>
#include <span>

#include "app/platform/dialog_template.h"

namespace kelvaro::resources {

// The dialogs; control_ids.h has their numbers and those of their controls.
// In the main window's table the box of a page stands before the controls of that page, which reach
// to the next such box; what stands before the first is always seen.
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

// The menu "Floater" of the notification icon: "Exit" and "Show Kelvaro".
std::span<const platform::MenuItem> FloaterMenu();

// The text of the string table with that number, which is the number of the control or a tab_tip
// whose tip it is; null when there is none.
const char* String(std::uint32_t id);

constexpr std::uint32_t kIcon = 128;          // of the program
constexpr std::uint32_t kUpBitmap = 145;      // an arrow, of the button that moves Controls up
constexpr std::uint32_t kDownBitmap = 146;    // and down
constexpr std::uint32_t kBannerBitmap = 148;  // of the Settings tab and the welcome

// Addresses of the maker, chosen when the program is built; empty for none.
extern const char* const kWebAddress;      // a whole address, such as "https://kelvaro.example/"
extern const char* const kSupportAddress;  // of mail, such as "support@kelvaro.example"

}  // namespace kelvaro::resources
