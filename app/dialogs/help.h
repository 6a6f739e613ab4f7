// The help pages, through whatever the system shows help with. The first call looks for that; if it
// finds nothing, no later call looks again. User interface's thread.
#pragma once

#include <cstdint>

#include "app/platform/shell.h"
#include "foundation/byte_string.h"

namespace kelvaro {

// The system's function of that name. 0 when it can't be reached.
std::uintptr_t HtmlHelp(platform::WindowHandle caller, const char* file, std::uint32_t command,
                        std::uintptr_t data);

constexpr char kProfilesTopic[] = "Creation Maintenance and Location.htm";
constexpr char kControlsTopic[] = "Creating and Editing Controls.htm";
constexpr std::int32_t kF1 = 0x70;  // the virtual key that asks for help

// Shows a topic of Help\Kelvaro.chm in the program's folder: a page, or "PAGE#PLACE".
void ShowHelpTopic(const char* topic);

// Looks for the system's help anew at the next call: a test's fresh start.
void ForgetHelp();

}  // namespace kelvaro
