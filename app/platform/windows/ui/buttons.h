// Buttons of all kinds: those that are pressed, drawn by the system, by the program or as a
// picture, and those that keep a check mark.
#pragma once

#include <memory>
#include <vector>

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

using RadioRun = std::vector<Control*>;

std::unique_ptr<Control> MakeButton(ControlHost& host, const ControlTemplate& from, HWND handle);
std::unique_ptr<Control> MakePictureButton(ControlHost& host, const ControlTemplate& from,
                                           HWND handle);
std::unique_ptr<Control> MakeDrawnButton(ControlHost& host, const ControlTemplate& from,
                                         HWND handle);
// In a run one radio button is checked at most; null for a check box.
std::unique_ptr<Control> MakeCheck(ControlHost& host, const ControlTemplate& from, HWND handle,
                                   const std::shared_ptr<RadioRun>& run);

}  // namespace platform::ui
