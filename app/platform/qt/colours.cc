#include "app/platform/qt/colours.h"

#include <algorithm>
#include <cmath>

namespace platform::qt {
namespace {

double Linear(double part) {
  return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
  return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) +
         0.0722 * Linear(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
  const double a = Luminance(one) + 0.05;
  const double b = Luminance(other) + 0.05;
  return std::max(a, b) / std::min(a, b);
}

// What the accessibility guidelines ask of a text.
constexpr double kEnoughContrast = 4.5;

}  // namespace

QColor ColourOf(Colour colour) {
  return QColor(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                static_cast<int>(colour >> 16 & 0xFF));
}

Colour ColourOf(const QColor& colour) {
  return Rgb(static_cast<std::uint8_t>(colour.red()), static_cast<std::uint8_t>(colour.green()),
             static_cast<std::uint8_t>(colour.blue()));
}

QColor Readable(const QColor& ink, const QColor& background) {
  if (Luminance(background) > 0.18) return ink;
  const QColor hsl = ink.toHsl();
  for (float lightness = hsl.lightnessF(); lightness < 1; lightness += 0.05f) {
    const QColor tone = QColor::fromHslF(std::max(0.0f, hsl.hslHueF()), hsl.hslSaturationF(),
                                         std::min(1.0f, lightness));
    if (Contrast(tone, background) >= kEnoughContrast) return tone;
  }
  return QColor(Qt::white);
}

}  // namespace platform::qt
