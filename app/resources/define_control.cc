// Dialog 134. The choice between press and release stands where nothing is missed while it is
// hidden.
#include "app/platform/desktop.h"
#include "app/resources/key_list.h"
#include "app/resources/resources.h"

namespace kelvaro::resources {

namespace {

using platform::ControlTemplate;
using enum platform::ControlKind;
using platform::kStyleDefault;
using platform::kStyleDigits;
using platform::kStyleHidden;
using platform::kStyleReadOnly;
using platform::kStyleWrap;

constexpr ControlTemplate kControls[] = {
    {Label, 1135, "&Description", 7, 10, 49, 9},
    {Edit, 1083, "", 58, 7, 275, 14},

    {GroupBox, 1116, "Trigger", 7, 27, 326, 51},
    {Edit, 1081, "", 14, 41, 262, 14, kStyleReadOnly, "Trigger"},
    {Label, 1127, "De&tect", 284, 44, 26, 9},
    {CheckBox, 1126, "", 312, 42, 14, 12},
    {CheckBox, 1140, "Activate/Deactivate &Mouse Controls", 14, 60, 172, 12},
    {Label, 1128, "on", 200, 62, 14, 9, kStyleHidden},
    {RadioButton, 1124, "&Press", 216, 60, 46, 12, kStyleHidden},
    {RadioButton, 1125, "&Release", 264, 60, 60, 12, kStyleHidden},

    {Label, 1131, "&Key(s)", 7, 87, 49, 9},
    {Edit, 1093, "", 58, 84, 275, 14},
    {Label, 1168, "NOTE: Uppercase letters are preceded by a shift when replayed", 58, 101, 275, 9},
    {CheckBox, 1169, "&Hold down all keys of a multi-key event until released", 58, 112, 275, 12},
    {Label, 1145, "Help: &Special Key List", 7, 132, 94, 9},
    {DropList, 1143, "", 104, 129, 229, 14, 0, nullptr, kSpecialKeys},

    {GroupBox, 1300, "Key Timings (in milliseconds)", 7, 149, 160, 84},
    {Label, 1301, "Key hold t&ime", 14, 166, 88, 9},
    {Edit, 1196, "", 106, 163, 54, 14},
    {Label, 1302, "Key release p&ause", 14, 183, 88, 9},
    {Edit, 1197, "", 106, 180, 54, 14},
    {Label, 1303,
     "NOTE: Key timings are generally only necessary for applications that do not use buffered "
     "input.",
     14, 199, 146, 28, kStyleWrap},

    {GroupBox, 1122, "Key Repeat (in milliseconds)", 173, 149, 160, 84},
    {CheckBox, 1123, "Ena&ble Repeat", 180, 164, 146, 12},
    {Label, 1133, "Dela&y", 180, 183, 34, 9},
    {Edit, 1095, "", 216, 180, 54, 14, kStyleDigits},
    {Label, 1134, "Sp&eed", 180, 200, 34, 9},
    {Edit, 1096, "", 216, 197, 54, 14, kStyleDigits},
    {Button, 1113, "Defa&ults", 276, 197, 50, 14},

    {Button, 1146, "He&lp...", 7, 240, 50, 14},
    {Button, platform::IDOK, "OK", 229, 240, 50, 14, kStyleDefault},
    {Button, platform::IDCANCEL, "Cancel", 283, 240, 50, 14},
};

}  // namespace

constinit const platform::DialogTemplate kDefineControl = {
    134, "Define Control", 340, 261, platform::kWindowResizable, kControls};

}  // namespace kelvaro::resources
