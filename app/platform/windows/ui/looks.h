// What a screen reader and a theme add to the system's controls.
#pragma once

#include <optional>

#include "app/platform/windows/ui/system.h"

namespace platform::ui {

// What a screen reader says of a control that has neither a text nor a label before it. Nothing
// where the system has no such service.
void SayName(HWND control, const char* name);

// In which the theme draws the pages of a tab control; none where they are as any window is.
std::optional<COLORREF> PageColourOf(HWND window);

}  // namespace platform::ui
