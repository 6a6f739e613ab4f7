// Colours between the seam and Qt.
#pragma once

#include <QColor>

#include "app/platform/canvas.h"

namespace platform::qt {

QColor ColourOf(Colour colour);
Colour ColourOf(const QColor& colour);

// Of a text before a background, from 1 (it can't be seen) to 21, as the accessibility guidelines
// have it; they ask for 4.5.
double Contrast(const QColor& one, const QColor& other);

// `ink` itself, or the next lighter or darker tone of it that can be read before that background.
QColor Readable(const QColor& ink, const QColor& background);

}  // namespace platform::qt
