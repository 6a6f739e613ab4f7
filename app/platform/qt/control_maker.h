// Makes the controls of a dialog from its table, in its order.
#pragma once

#include <memory>
#include <vector>

#include "app/platform/qt/control.h"

namespace platform::qt {

std::vector<std::unique_ptr<Control>> MakeControls(ControlHost& host,
                                                   std::span<const ControlTemplate> from);

}  // namespace platform::qt
