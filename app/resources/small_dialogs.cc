// The dialogs of a question or two, the list of all dialogs, and the menu.
#include "app/platform/desktop.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro::resources {

namespace {

using platform::ControlTemplate;
using platform::DialogTemplate;
using platform::IDCANCEL;
using platform::IDOK;
using enum platform::ControlKind;
using platform::kStyleDefault;
using platform::kStyleWrap;

constexpr ControlTemplate kNewProfileControls[] = {
    {Label, kUnnamed, "Enter New Profile &Name", 7, 7, 186, 9},
    {Edit, new_profile::kName, "", 7, 18, 186, 14},
    {Button, IDOK, "OK", 89, 40, 50, 14, kStyleDefault},
    {Button, IDCANCEL, "Cancel", 143, 40, 50, 14},
};

constexpr ControlTemplate kDeleteProfileControls[] = {
    {Label, kUnnamed, "Delete Profile:", 7, 7, 186, 9},
    {Label, delete_profile::kName, "", 7, 18, 186, 17, kStyleWrap},
    {Label, kUnnamed + 1, "Are you sure?", 7, 38, 186, 9},
    {Button, IDOK, "&Yes, Delete It", 69, 54, 70, 14},
    {Button, IDCANCEL, "&No!", 143, 54, 50, 14, kStyleDefault},
};

constexpr ControlTemplate kProfileNameControls[] = {
    {Label, profile_name::kTopLine, "", 7, 7, 186, 17, kStyleWrap},
    {Label, kUnnamed, "Enter a new &name for this profile", 7, 28, 186, 9},
    {Edit, profile_name::kName, "", 7, 39, 186, 14},
    {Button, IDOK, "OK", 89, 61, 50, 14, kStyleDefault},
    {Button, IDCANCEL, "Cancel", 143, 61, 50, 14},
};

constexpr ControlTemplate kShiftKeyRequiredControls[] = {
    {Label, kUnnamed,
     "You have entered one or more keys that require a shift key press in order to replay "
     "properly. Are you sure you want to use an uppercase character in this control?",
     7, 7, 236, 28, kStyleWrap},
    {CheckBox, shift_key_required::kDontShowAgain, "&Don't show this again", 7, 41, 236, 12},
    {Button, IDOK, "&Yes", 139, 61, 50, 14, kStyleDefault},
    {Button, IDCANCEL, "&No", 193, 61, 50, 14},
};

constexpr ControlTemplate kAdvancedSettingsControls[] = {
    {CheckBox, advanced_settings::kAutodetectDevicePlugin, "&Auto-detect device plugin", 7, 8, 166,
     12},
    {Button, IDOK, "OK", 69, 30, 50, 14, kStyleDefault},
    {Button, IDCANCEL, "Cancel", 123, 30, 50, 14},
};

constexpr ControlTemplate kWelcomeControls[] = {
    {Picture, welcome::kPicture, "", 7, 7, 306, 36, 0, "Kelvaro"},
    {TextArea, welcome::kText, "", 7, 49, 306, 200, 0, "Welcome to Kelvaro"},
    {Button, IDOK, "Close", 263, 256, 50, 14, kStyleDefault},
};

constexpr ControlTemplate kAutoDetectModeControls[] = {
    {Label, kUnnamed,
     "This will detect movement or button presses on your input device, and make the appropriate "
     "assignment. All control input is captured while in this mode.",
     7, 7, 246, 28, kStyleWrap},
    {Label, kUnnamed + 1,
     "You can exit auto-detect mode by pressing the spacebar on your keyboard, by pressing any "
     "two buttons simultaneously on your controller, or by unchecking the detect box with your "
     "mouse.",
     7, 41, 246, 28, kStyleWrap},
    {CheckBox, auto_detect_mode::kDontShowAgain, "&Don't show this again", 7, 75, 246, 12},
    {Button, IDOK, "OK", 203, 95, 50, 14, kStyleDefault},
};

constexpr platform::MenuItem kFloater[] = {
    {"Exit", floater_menu::kExit},
    {},  // a separator
    {"Show Kelvaro", floater_menu::kShowKelvaro},
};

// Of one size.
consteval DialogTemplate Fixed(std::uint32_t id, const char* title, std::int16_t width,
                               std::int16_t height, std::span<const ControlTemplate> controls) {
  return {id, title, width, height, 0, controls};
}

constexpr const DialogTemplate* kDialogs[] = {
    &kMainWindow,       &kDefineControl,    &kNewProfile, &kDeleteProfile,  &kProfileName,
    &kShiftKeyRequired, &kAdvancedSettings, &kWelcome,    &kAutoDetectMode,
};

}  // namespace

constinit const DialogTemplate kNewProfile =
    Fixed(new_profile::kDialog, "New Profile", 200, 61, kNewProfileControls);
constinit const DialogTemplate kDeleteProfile =
    Fixed(delete_profile::kDialog, "Delete Profile", 200, 75, kDeleteProfileControls);
// The program gives it a title that says what the name is for.
constinit const DialogTemplate kProfileName =
    Fixed(profile_name::kDialog, "Rename Profile", 200, 82, kProfileNameControls);
constinit const DialogTemplate kShiftKeyRequired =
    Fixed(shift_key_required::kDialog, "Shift Key Required", 250, 82, kShiftKeyRequiredControls);
constinit const DialogTemplate kAdvancedSettings =
    Fixed(advanced_settings::kDialog, "Advanced Settings", 180, 51, kAdvancedSettingsControls);
constinit const DialogTemplate kWelcome =
    Fixed(welcome::kDialog, "Welcome to Kelvaro", 320, 277, kWelcomeControls);
constinit const DialogTemplate kAutoDetectMode =
    Fixed(auto_detect_mode::kDialog, "Auto-Detect Mode", 260, 116, kAutoDetectModeControls);

std::span<const platform::DialogTemplate* const> Dialogs() { return kDialogs; }

std::span<const platform::MenuItem> FloaterMenu() { return kFloater; }

}  // namespace kelvaro::resources
