// Takes over the controls that the system has made from a dialog's table.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

// In the order of the table.
std::vector<std::unique_ptr<Control>> MakeControls(ControlHost& host, HWND window,
                                                   std::span<const ControlTemplate> from);

}  // namespace platform::ui
