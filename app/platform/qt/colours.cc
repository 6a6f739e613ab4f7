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

// What the accessibility guidelines ask of a text.
constexpr double kEnoughContrast = 4.5;
constexpr float kStep = 0.02f;  // of lightness, which goes from 0 to 1

}  // namespace

QColor ColourOf(Colour colour) {
  return QColor(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                static_cast<int>(colour >> 16 & 0xFF));
}

Colour ColourOf(const QColor& colour) {
  return Rgb(static_cast<std::uint8_t>(colour.red()), static_cast<std::uint8_t>(colour.green()),
             static_cast<std::uint8_t>(colour.blue()));
}

double Contrast(const QColor& one, const QColor& other) {
  const double a = Luminance(one) + 0.05;
  const double b = Luminance(other) + 0.05;
  return std::max(a, b) / std::min(a, b);
}

QColor Readable(const QColor& ink, const QColor& background) {
  const bool dark =
      Contrast(QColor(Qt::white), background) > Contrast(QColor(Qt::black), background);
  const QColor hsl = ink.toHsl();
  float lightness = hsl.lightnessF();
  QColor tone = ink;
  while (Contrast(tone, background) < kEnoughContrast && lightness > 0 && lightness < 1) {
    lightness = std::clamp(lightness + (dark ? kStep : -kStep), 0.0f, 1.0f);
    tone = QColor::fromHslF(std::max(0.0f, hsl.hslHueF()), hsl.hslSaturationF(), lightness);
  }
  return tone;
}

}  // namespace platform::qt
