// What is there to be read: labels, links, pictures, rules, group boxes, and boxes that only take
// room.
#pragma once

#include <QAccessible>
#include <memory>

#include "app/platform/qt/control.h"

namespace platform::qt {

std::unique_ptr<Control> MakeLabel(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakeLink(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakePicture(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakeRule(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakeGroupBox(ControlHost& host, const ControlTemplate& from);
std::unique_ptr<Control> MakeBox(ControlHost& host, const ControlTemplate& from);

// What a screen reader is told of such a widget; null where Qt itself tells it.
QAccessibleInterface* MakeAccessibleLabel(QObject* widget);

}  // namespace platform::qt
