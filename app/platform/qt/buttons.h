// Buttons, check boxes and radio buttons.
#pragma once

#include <QButtonGroup>
#include <memory>

#include "app/platform/qt/control.h"

namespace platform::qt {

std::unique_ptr<Control> MakeButton(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakePictureButton(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakeDrawnButton(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakeCheckBox(ControlHost& host, const ControlTemplate& from);
// `run` is that of the control before, if it was a radio button.
std::unique_ptr<Control> MakeRadioButton(ControlHost& host, const ControlTemplate& from,
                                         QButtonGroup* run);

}  // namespace platform::qt
