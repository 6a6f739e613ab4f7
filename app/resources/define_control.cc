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
    {Label, 1135, "&Description", 7, 10, 49, 8},
    {Edit, 1083, "", 58, 7, 275, 14},

    {GroupBox, 1116, "Trigger", 7, 26, 326, 46},
    {Edit, 1081, "", 14, 37, 256, 14, kStyleReadOnly, "Trigger"},
    {Label, 1127, "De&tect", 280, 40, 30, 8},
    {CheckBox, 1126, "", 312, 39, 14, 10},
    {CheckBox, 1140, "Activate/Deactivate &Mouse Controls", 14, 56, 172, 10},
    {Label, 1128, "on", 200, 57, 14, 8, kStyleHidden},
    {RadioButton, 1124, "&Press", 216, 56, 46, 10, kStyleHidden},
    {RadioButton, 1125, "&Release", 264, 56, 60, 10, kStyleHidden},

    {Label, 1131, "&Key(s)", 7, 81, 49, 8},
    {Edit, 1093, "", 58, 78, 275, 14},
    {Label, 1168, "NOTE: Uppercase letters are preceded by a shift when replayed", 58, 95, 275, 8},
    {CheckBox, 1169, "&Hold down all keys of a multi-key event until released", 58, 107, 275, 10},
    {Label, 1145, "Help: &Special Key List", 7, 125, 94, 8},
    {DropList, 1143, "", 104, 122, 229, 14, 0, nullptr, kSpecialKeys},

    {GroupBox, 1300, "Key Timings (in milliseconds)", 7, 142, 160, 80},
    {Label, 1301, "Key hold t&ime", 14, 157, 88, 8},
    {Edit, 1196, "", 106, 154, 54, 14},
    {Label, 1302, "Key release p&ause", 14, 174, 88, 8},
    {Edit, 1197, "", 106, 171, 54, 14},
    {Label, 1303,
     "NOTE: Key timings are generally only necessary for applications that do not use buffered "
     "input.",
     14, 189, 146, 28, kStyleWrap},

    {GroupBox, 1122, "Key Repeat (in milliseconds)", 173, 142, 160, 80},
    {CheckBox, 1123, "Ena&ble Repeat", 180, 156, 146, 10},
    {Label, 1133, "Dela&y", 180, 174, 34, 8},
    {Edit, 1095, "", 216, 171, 54, 14, kStyleDigits},
    {Label, 1134, "Sp&eed", 180, 191, 34, 8},
    {Edit, 1096, "", 216, 188, 54, 14, kStyleDigits},
    {Button, 1113, "Defa&ults", 276, 188, 50, 14},

    {Button, 1146, "He&lp...", 7, 228, 50, 14},
    {Button, platform::IDOK, "OK", 229, 228, 50, 14, kStyleDefault},
    {Button, platform::IDCANCEL, "Cancel", 283, 228, 50, 14},
};

}  // namespace

constinit const platform::DialogTemplate kDefineControl = {
    134, "Define Control", 340, 249, platform::kWindowResizable, kControls};

}  // namespace kelvaro::resources
