// The main window's tool tips.
#pragma once

#include <cstdint>
#include <string>

#include "app/layout/dialog.h"

namespace kelvaro {

// The tips of the tabs and of the controls; without them when the system makes no tool tip control.
void CreateToolTips(const Dialog& dialog);

// The text for a control; empty for none, and for 0.
std::string ToolTipOf(std::uint32_t id);

}  // namespace kelvaro
