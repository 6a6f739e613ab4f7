// Colours between the seam and Qt.
#pragma once

#include <QColor>

#include "app/platform/canvas.h"

namespace platform::qt {

QColor ColourOf(Colour colour);
Colour ColourOf(const QColor& colour);

// `ink` itself, or a lighter tone of it where it couldn't be read on a dark background.
QColor Readable(const QColor& ink, const QColor& background);

}  // namespace platform::qt
