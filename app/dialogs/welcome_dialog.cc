#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

using namespace welcome;

namespace {

constexpr platform::Colour kTextColour = platform::Rgb(0, 0, 64);
constexpr platform::Colour kWhite = platform::Rgb(255, 255, 255);
constexpr std::int32_t kTextHeight = 14;
constexpr std::int32_t kTextWeight = 800;

}  // namespace

WelcomeDialog::WelcomeDialog() : Dialog(resources::kWelcome) {}

ByteString WelcomeDialog::Text() {
  return "\r\n                        Welcome to Kelvaro by Marnstone"
         "\r\n\r\n"
         "This utility gives you the ultimate control over your games by simulating keyboard and "
         "mouse input from your game pad or joystick. Per-game settings are stored in profiles. "
         "The included Rendlink utility enables you to start Kelvaro with your game in a "
         "single-step process."
         "\r\n\r\n"
         "Example profiles are included. Before using an example profile you will need to "
         "associate a device with it, and without modification it probably won't work directly "
         "with your game device (the buttons and controls may be set wrong for your device and/or "
         "preferences). By looking at a few of the examples, and viewing the pop-up help for each "
         "control, you can jump right into creating profiles for your games. For more advanced "
         "options and detailed explanations, please refer to the included electronic help."
         "\r\n\r\n"
         "Thank for trying this software, and we hope you enjoy using Kelvaro.";
}

void WelcomeDialog::OnInit() {
  platform::controls().SetPicture(window, welcome::kPicture,
                                  platform::desktop().LoadBitmapA(resources::kBannerBitmap));
  platform::controls().SetControlFont(window, kText, "Arial", kTextHeight, kTextWeight, false);
  platform::controls().SetTextColour(window, kText, kTextColour);
  platform::controls().SetBackgroundColour(window, kText, kWhite);
  SetText(kText, Text());
}

}  // namespace kelvaro
