// A canvas that writes down what it is asked to draw, one line a call.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/canvas.h"

namespace platform::simulation {

class RecordingCanvas final : public Canvas {
 public:
  // `pictureOf` tells the number of an icon's picture.
  explicit RecordingCanvas(std::function<std::uint32_t(IconHandle)> pictureOf)
      : pictureOf(std::move(pictureOf)) {}

  void FillRect(const Rect& rect, Colour colour) override;
  void FrameRect(const Rect& rect, Colour colour) override;
  void Draw3dRect(const Rect& rect, Colour leftTop, Colour rightBottom) override;
  void DrawFocusRect(const Rect& rect) override;
  void TextInRect(const Rect& rect, const std::string& text, Colour colour,
                  std::uint32_t align) override;
  void DrawIcon(std::int32_t x, std::int32_t y, IconHandle icon) override;
  void EraseBackground(const Rect& rect) override;
  void DrawSizeGrip(const Rect& rect) override;

  std::vector<std::string> lines;

 private:
  const std::function<std::uint32_t(IconHandle)> pictureOf;
};

}  // namespace platform::simulation
