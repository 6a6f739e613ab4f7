// The choice between press and release stands where nothing is missed while it is
// hidden.
#include "app/platform/desktop.h"
#include "app/resources/control_ids.h"
#include "app/resources/key_list.h"
#include "app/resources/resources.h"

namespace kelvaro::resources {

namespace {

using namespace define_control;
using platform::ControlTemplate;
using enum platform::ControlKind;
using platform::kStyleDefault;
using platform::kStyleDigits;
using platform::kStyleHidden;
using platform::kStyleReadOnly;
using platform::kStyleWrap;

constexpr ControlTemplate kControls[] = {
    {Label, kDescriptionLabel, "&Description", 7, 10, 49, 9},
    {Edit, kDescriptionText, "", 58, 7, 275, 14},

    {GroupBox, kTriggerFrame, "Trigger", 7, 27, 326, 51},
    {Edit, kTriggerText, "", 14, 41, 262, 14, kStyleReadOnly, "Trigger"},
    {Label, kDetectLabel, "De&tect", 284, 44, 26, 9},
    {CheckBox, kDetectTrigger, "", 312, 42, 14, 12},
    {CheckBox, kToggleMouseCheck, "Activate/Deactivate &Mouse Controls", 14, 60, 172, 12},
    {Label, kOnLabel, "on", 200, 62, 14, 9, kStyleHidden},
    {RadioButton, kPress, "&Press", 216, 60, 46, 12, kStyleHidden},
    {RadioButton, kRelease, "&Release", 264, 60, 60, 12, kStyleHidden},

    {Label, kKeysLabel, "&Key(s)", 7, 87, 49, 9},
    {Edit, kKeysText, "", 58, 84, 275, 14},
    {Label, kUppercaseNote, "NOTE: Uppercase letters are preceded by a shift when replayed", 58,
     101, 275, 9},
    {CheckBox, kHoldAllKeys, "&Hold down all keys of a multi-key event until released", 58, 112,
     275, 12},
    {Label, kSpecialKeyLabel, "Help: &Special Key List", 7, 132, 94, 9},
    {DropList, kSpecialKeyList, "", 104, 129, 229, 14, 0, nullptr, kSpecialKeys},

    {GroupBox, kUnnamed, "Key Timings (in milliseconds)", 7, 149, 160, 84},
    {Label, kUnnamed + 1, "Key hold t&ime", 14, 166, 88, 9},
    {Edit, kHoldValue, "", 106, 163, 54, 14},
    {Label, kUnnamed + 2, "Key release p&ause", 14, 183, 88, 9},
    {Edit, kPauseValue, "", 106, 180, 54, 14},
    {Label, kUnnamed + 3,
     "NOTE: Key timings are generally only necessary for applications that do not use buffered "
     "input.",
     14, 199, 146, 28, kStyleWrap},

    {GroupBox, kRepeatFrame, "Key Repeat (in milliseconds)", 173, 149, 160, 84},
    {CheckBox, kRepeatCheck, "Ena&ble Repeat", 180, 164, 146, 12},
    {Label, kDelayLabel, "Dela&y", 180, 183, 34, 9},
    {Edit, kDelayValue, "", 216, 180, 54, 14, kStyleDigits},
    {Label, kSpeedLabel, "Sp&eed", 180, 200, 34, 9},
    {Edit, kSpeedValue, "", 216, 197, 54, 14, kStyleDigits},
    {Button, kDefaults, "Defa&ults", 276, 197, 50, 14},

    {Button, kHelp, "He&lp...", 7, 240, 50, 14},
    {Button, platform::IDOK, "OK", 229, 240, 50, 14, kStyleDefault},
    {Button, platform::IDCANCEL, "Cancel", 283, 240, 50, 14},
};

}  // namespace

constinit const platform::DialogTemplate kDefineControl = {
    define_control::kDialog, "Define Control", 340, 261, platform::kWindowResizable, kControls};

}  // namespace kelvaro::resources
