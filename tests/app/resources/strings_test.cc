#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

#include "app/resources/resources.h"
#include "tests/app/resources/dialog_tables.h"

namespace kelvaro::resources {
namespace {

TEST(String, GivesTheTextOfEachNumber) {
  const struct {
    std::uint32_t id;
    const char* text;
  } kTexts[] = {
      {1, "Save control definition."},
      {2, "Cancel creation or editing and discard changes."},
      {1001, "The list of available profiles for selection."},
      {1003, "The list of all controls defined for the current profile."},
      {1004, "Create a new control."},
      {1005, "Edit the selected control."},
      {1006, "Create a new profile."},
      {1027, "Detect the input that moves the pointer left and right."},
      {1028, "Detect the input that moves the pointer up and down."},
      {1029, "Detect the button that acts as the left mouse button."},
      {1030, "Detect the button that acts as the middle mouse button."},
      {1031, "Detect the button that acts as the right mouse button."},
      {1034, "Detect the input that turns the mouse wheel."},
      {1036,
       "Push this button to enter mouse test mode. You can test your mouse control settings this "
       "way."},
      {1052, "Determines how much the mouse moves when you move the control."},
      {1056, "Defines how much axis movement is thrown away to avoid mouse \"drift\"."},
      {1060,
       "The input devices that were found. The selected one is used with the current profile."},
      {1063, "The number of buttons on the selected device."},
      {1065, "The number of axes on the selected device."},
      {1067, "The number of POV hats on the selected device."},
      {1070, "The shortest interval that this system allows, in milliseconds."},
      {1072, "The longest interval that this system allows, in milliseconds."},
      {1076, "The time, in milliseconds, from one look at the device to the next, from 1 to 1000."},
      {1077,
       "How many times a second the device is looked at. This follows from the interval, and the "
       "interval from it."},
      {1078, "Reset the poll rate to the default."},
      {1079,
       "Determines how much axis movement is thrown away before a mouse wheel event is generated."},
      {1080,
       "Determines how much mouse wheel movement is generated when you move the wheel control."},
      {1081,
       "The trigger mechanism(s) (buttons, POV's, axis, etc.) for this control are displayed "
       "here."},
      {1083, "A description for this control. Type in anything you like here."},
      {1093, "Enter the control event(s) here."},
      {1095,
       "The initial delay, in milliseconds, before the control starts to repeat. During this delay "
       "time the trigger must be held down."},
      {1096,
       "The time delay, in milliseconds, between repeated controls. The control will continue to "
       "repeat as long as the trigger is held down."},
      {1099, "Delete the current profile."},
      {1100, "Rename the current profile."},
      {1101, "Copy the current profile to a new profile with a different name."},
      {1113, "Reset repeat delay and speed to the default settings."},
      {1115,
       "Copy the selected controls to an internal buffer. While the control list has the input "
       "focus you can also use Ctrl+C to perform the copy."},
      {1123,
       "When checked, this control will repeat just like the key repeat on your keyboard. While "
       "the trigger is held down, the control will replay once, and then wait for Delay time to "
       "elapse. After that, the control will replay once every Speed milliseconds while the "
       "trigger is held down.\n\nOnly one control will repeat at a time."},
      {1124, "Activate the control when the trigger is pressed."},
      {1125, "Activate the control when the trigger is released (after first being pressed)."},
      {1126,
       "Start/stop control trigger detection mode. When checked, all controller input is trapped "
       "and displayed in the trigger area to the left.\n\nTip: you can use the space bar to turn "
       "off detect mode."},
      {1136, "Delete the selected controls."},
      {1139,
       "When checked, the mouse controls of this profile work at all times, without a control that "
       "activates them."},
      {1140,
       "When checked, the trigger toggles activation/deactivation of the mouse controls (see the "
       "mouse tab)."},
      {1143,
       "A helpful reference of special keys/events. Selection does nothing. Stretch the window to "
       "the right if some of the text is cut off."},
      {1146, "More in-depth help."},
      {1155,
       "Paste controls into this profile from the internal buffer. Controls must have been "
       "previously copied into the buffer. While the control list has the input focus you can also "
       "use Ctrl+V to perform the paste."},
      {1156, "Move the selected controls up in the list order."},
      {1157, "Move the selected controls down in the list order."},
      {1159, "The input that moves the pointer left and right."},
      {1160, "The input that moves the pointer up and down."},
      {1161, "The button that acts as the left mouse button."},
      {1162, "The button that acts as the middle mouse button."},
      {1163, "The input that turns the mouse wheel."},
      {1164, "The button that acts as the right mouse button."},
      {1169,
       "When checked, all keys of this control will remain pressed until the trigger is released. "
       "Normally, in a multi-key control, each key will be released before the next key in the "
       "sequence is replayed.\n\nSee the help for a more thorough description with examples."},
      {1170,
       "Detect devices added or removed from the system. This will auto-select the proper device "
       "for the current profile if the device is now plugged in but was not previously."},
      {1171,
       "When checked, do not show the application window when it starts up, but rather minimized "
       "to the system tray area as an icon."},
      {1172,
       "When checked, launch the application when the computer starts up (if no logon is "
       "required), or when you log on."},
      {1173, "The ultimate game control software."},
      {1174,
       "The Control tab deals with the creation and editing of controls for the selected profile."},
      {1175, "Open your browser to " KELVARO_WEB_ADDRESS "."},
      {1176, "Start a new email addressed to " KELVARO_SUPPORT_ADDRESS "."},
      {1177,
       "The Mouse tab allows you to optionally define mouse controls to simulate mouse movement, "
       "button presses, etc. from your input device."},
      {1178,
       "The Device tab is where you select an input device to use with your profile, to reselect "
       "the proper device after plugging it in, and/or set the speed at which the software polls "
       "for changes on that device."},
      {1179, "The Settings tab has application settings and information about the program."},
      {1187,
       "Enable or disable the Smart Check key entry checker to check for possible mistakes when "
       "you enter key controls. This will catch things like forgetting to put angle brackets "
       "\"<>\" around special key input designations."},
      {1196,
       "The amount of time, in milliseconds, that each key in this control is held down before "
       "being released.\n\nThere are 1000 milliseconds in 1 second."},
      {1197,
       "This specifies a delay, in milliseconds, to occur after each key in this control is "
       "released. Note that no delay is replayed for the last key of a sequence. Therefore this "
       "value is only used in a multi-key control.\n\nThere are 1000 milliseconds in 1 second."},
      {1198, "Open the advanced settings dialog window."},
      {1199,
       "Checking this option modifies the program behavior as follows:\n\n1) No error message will "
       "be displayed if your device is not detected at startup or after changing profiles.\n\n2) "
       "The device for the current profile will be automatically detected and selected when it is "
       "plugged in. Kelvaro checks for new devices every 5 seconds when this option is turned on."},
  };
  std::set<std::uint32_t> known;
  for (const auto& [id, text] : kTexts) {
    EXPECT_STREQ(String(id), text) << id;
    known.insert(id);
  }
  for (std::uint32_t id = 0; id < 2000; ++id) {
    if (!known.contains(id)) {
      EXPECT_EQ(String(id), nullptr) << id;
    }
  }
}

TEST(String, HasATextForEachToolOfTheMainWindow) {
  for (const std::uint32_t id :
       {1001, 1003, 1004, 1005, 1006, 1027, 1028, 1029, 1030, 1031, 1034, 1036,
        1052, 1056, 1060, 1063, 1065, 1067, 1070, 1072, 1076, 1077, 1078, 1079,
        1080, 1099, 1100, 1101, 1115, 1136, 1139, 1155, 1156, 1157, 1159, 1160,
        1161, 1162, 1163, 1164, 1170, 1171, 1172, 1173, 1175, 1176, 1187, 1198}) {
    EXPECT_NE(String(id), nullptr) << id;
    EXPECT_NE(Find(kMainWindow, id), nullptr) << id;
  }
}

TEST(String, HasATextForWhateverCanBeOperatedInDefineControl) {
  for (const ControlTemplate& control : kDefineControl.controls) {
    if (Operable(control.kind)) {
      EXPECT_NE(String(control.id), nullptr) << control.id;
    }
  }
}

TEST(String, EndsEachTextWithAFullStop) {
  for (std::uint32_t id = 0; id < 2000; ++id) {
    const char* const text = String(id);
    if (!text) continue;
    EXPECT_EQ(std::string(text).back(), '.') << text;
  }
}

}  // namespace
}  // namespace kelvaro::resources
