// Labels, links and pictures.
#pragma once

#include <memory>

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

std::unique_ptr<Control> MakeLabel(ControlHost& host, const ControlTemplate& from, HWND handle);
std::unique_ptr<Control> MakeLink(ControlHost& host, const ControlTemplate& from, HWND handle);
std::unique_ptr<Control> MakePicture(ControlHost& host, const ControlTemplate& from, HWND handle);
// What only stands there: rules, group boxes and boxes.
std::unique_ptr<Control> MakePlain(ControlHost& host, const ControlTemplate& from, HWND handle);

}  // namespace platform::ui
