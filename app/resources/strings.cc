// The string table, by number.
#include <algorithm>
#include <cstdint>

#include "app/platform/desktop.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro::resources {

namespace {

struct TableString {
  std::uint32_t id;
  const char* text;
};

constexpr char kNoAddress[] = "This build has no address.";

constexpr TableString kStrings[] = {
    // The tabs of the main window.
    {tab_tip::kControl,
     "The Control tab deals with the creation and editing of controls for the selected profile."},
    {tab_tip::kMouse,
     "The Mouse tab allows you to optionally define mouse controls to simulate mouse movement, "
     "button presses, etc. from your input device."},
    {tab_tip::kDevice,
     "The Device tab is where you select an input device to use with your profile, to reselect the "
     "proper device after plugging it in, and/or set the speed at which the software polls for "
     "changes on that device."},
    {tab_tip::kSettings,
     "The Settings tab has application settings and information about the program."},

    // The main window; "Define Control" has the same button for help.
    {main_window::kProfileList, "The list of available profiles for selection."},
    {main_window::kNewProfile, "Create a new profile."},
    {main_window::kDeleteProfile, "Delete the current profile."},
    {main_window::kCopyProfile, "Copy the current profile to a new profile with a different name."},
    {main_window::kRenameProfile, "Rename the current profile."},
    {main_window::kHelp, "More in-depth help."},
    {main_window::kNewControl, "Create a new control."},
    {main_window::kEditControl, "Edit the selected control."},
    {main_window::kDeleteControls, "Delete the selected controls."},
    {main_window::kCopyControls,
     "Copy the selected controls to an internal buffer. While the control list has the input focus "
     "you can also use Ctrl+C to perform the copy."},
    {main_window::kPasteControls,
     "Paste controls into this profile from the internal buffer. Controls must have been "
     "previously copied into the buffer. While the control list has the input focus you can also "
     "use Ctrl+V to perform the paste."},
    {main_window::kMoveUp, "Move the selected controls up in the list order."},
    {main_window::kMoveDown, "Move the selected controls down in the list order."},
    {main_window::kControlList, "The list of all controls defined for the current profile."},
    {main_window::kMouseX, "The input that moves the pointer left and right."},
    {main_window::kMouseY, "The input that moves the pointer up and down."},
    {main_window::kMouseWheel, "The input that turns the mouse wheel."},
    {main_window::kLeftButton, "The button that acts as the left mouse button."},
    {main_window::kMiddleButton, "The button that acts as the middle mouse button."},
    {main_window::kRightButton, "The button that acts as the right mouse button."},
    {main_window::kDetectMouseX, "Detect the input that moves the pointer left and right."},
    {main_window::kDetectMouseY, "Detect the input that moves the pointer up and down."},
    {main_window::kDetectMouseWheel, "Detect the input that turns the mouse wheel."},
    {main_window::kDetectLeftButton, "Detect the button that acts as the left mouse button."},
    {main_window::kDetectMiddleButton, "Detect the button that acts as the middle mouse button."},
    {main_window::kDetectRightButton, "Detect the button that acts as the right mouse button."},
    {main_window::kMouseAlwaysActive,
     "When checked, the mouse controls of this profile work at all times, without a control that "
     "activates them."},
    {main_window::kTestMode,
     "Push this button to enter mouse test mode. You can test your mouse control settings this "
     "way."},
    {main_window::kMovementSensitivity,
     "Determines how much the mouse moves when you move the control."},
    {main_window::kMovementDamper,
     "Defines how much axis movement is thrown away to avoid mouse \"drift\"."},
    {main_window::kWheelSensitivity,
     "Determines how much mouse wheel movement is generated when you move the wheel control."},
    {main_window::kWheelDamper,
     "Determines how much axis movement is thrown away before a mouse wheel event is generated."},
    {main_window::kDeviceList,
     "The input devices that were found. The selected one is used with the current profile."},
    {main_window::kRefreshDeviceList,
     "Detect devices added or removed from the system. This will auto-select the proper device for "
     "the current profile if the device is now plugged in but was not previously."},
    {main_window::kNumButtons, "The number of buttons on the selected device."},
    {main_window::kNumAxis, "The number of axes on the selected device."},
    {main_window::kNumPovs, "The number of POV hats on the selected device."},
    {main_window::kInterval,
     "The time, in milliseconds, from one look at the device to the next, from 1 to 1000."},
    {main_window::kRate,
     "How many times a second the device is looked at. This follows from the interval, and the "
     "interval from it."},
    {main_window::kDefaultRate, "Reset the poll rate to the default."},
    {main_window::kTimerMin, "The shortest interval that this system allows, in milliseconds."},
    {main_window::kTimerMax, "The longest interval that this system allows, in milliseconds."},
    {main_window::kBanner, "The ultimate game control software."},
    {main_window::kStartMinimized,
     "When checked, do not show the application window when it starts up, but rather minimized to "
     "the system tray area as an icon."},
    {main_window::kLaunchAtStartup,
     "When checked, launch the application when the computer starts up (if no logon is required), "
     "or when you log on."},
    {main_window::kSmartCheck,
     "Enable or disable the Smart Check key entry checker to check for possible mistakes when you "
     "enter key controls. This will catch things like forgetting to put angle brackets \"<>\" "
     "around special key input designations."},
    {main_window::kAdvanced, "Open the advanced settings dialog window."},
    {main_window::kWebLink,
     *KELVARO_WEB_ADDRESS ? "Open your browser to " KELVARO_WEB_ADDRESS "." : kNoAddress},
    {main_window::kMailLink, *KELVARO_SUPPORT_ADDRESS
                                 ? "Start a new email addressed to " KELVARO_SUPPORT_ADDRESS "."
                                 : kNoAddress},

    // "Define Control".
    {platform::IDOK, "Save control definition."},
    {platform::IDCANCEL, "Cancel creation or editing and discard changes."},
    {define_control::kDescriptionText,
     "A description for this control. Type in anything you like here."},
    {define_control::kTriggerText,
     "The trigger mechanism(s) (buttons, POV's, axis, etc.) for this control are displayed here."},
    {define_control::kDetectTrigger,
     "Start/stop control trigger detection mode. When checked, all controller input is trapped and "
     "displayed in the trigger area to the left.\n\nTip: you can use the space bar to turn off "
     "detect mode."},
    {define_control::kToggleMouseCheck,
     "When checked, the trigger toggles activation/deactivation of the mouse controls (see the "
     "mouse tab)."},
    {define_control::kPress, "Activate the control when the trigger is pressed."},
    {define_control::kRelease,
     "Activate the control when the trigger is released (after first being pressed)."},
    {define_control::kKeysText, "Enter the control event(s) here."},
    {define_control::kHoldAllKeys,
     "When checked, all keys of this control will remain pressed until the trigger is released. "
     "Normally, in a multi-key control, each key will be released before the next key in the "
     "sequence is replayed.\n\nSee the help for a more thorough description with examples."},
    {define_control::kSpecialKeyList,
     "A helpful reference of special keys/events. Selection does nothing. Stretch the window to "
     "the right if some of the text is cut off."},
    {define_control::kHoldValue,
     "The amount of time, in milliseconds, that each key in this control is held down before being "
     "released.\n\nThere are 1000 milliseconds in 1 second."},
    {define_control::kPauseValue,
     "This specifies a delay, in milliseconds, to occur after each key in this control is "
     "released. Note that no delay is replayed for the last key of a sequence. Therefore this "
     "value is only used in a multi-key control.\n\nThere are 1000 milliseconds in 1 second."},
    {define_control::kRepeatCheck,
     "When checked, this control will repeat just like the key repeat on your keyboard. While the "
     "trigger is held down, the control will replay once, and then wait for Delay time to elapse. "
     "After that, the control will replay once every Speed milliseconds while the trigger is held "
     "down.\n\nOnly one control will repeat at a time."},
    {define_control::kDelayValue,
     "The initial delay, in milliseconds, before the control starts to repeat. During this delay "
     "time the trigger must be held down."},
    {define_control::kSpeedValue,
     "The time delay, in milliseconds, between repeated controls. The control will continue to "
     "repeat as long as the trigger is held down."},
    {define_control::kDefaults, "Reset repeat delay and speed to the default settings."},

    // "Advanced Settings".
    {advanced_settings::kAutodetectDevicePlugin,
     "Checking this option modifies the program behavior as follows:\n\n1) No error message will "
     "be displayed if your device is not detected at startup or after changing profiles.\n\n2) The "
     "device for the current profile will be automatically detected and selected when it is "
     "plugged in. Kelvaro checks for new devices every 5 seconds when this option is turned on."},
};

}  // namespace

const char* String(std::uint32_t id) {
  const auto* found = std::ranges::find(kStrings, id, &TableString::id);
  return found != std::end(kStrings) ? found->text : nullptr;
}

}  // namespace kelvaro::resources
