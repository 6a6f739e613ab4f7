// Something to draw on for the length of one call. Points are pixels from the upper left corner of
// what is drawn, right and bottom edges of rectangles lie one beyond. Colours are 0x00BBGGRR.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

struct Point {
  std::int32_t x = 0;
  std::int32_t y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Rect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
  std::int32_t Width() const { return right - left; }
  std::int32_t Height() const { return bottom - top; }
  friend bool operator==(const Rect&, const Rect&) = default;
};

using Colour = std::uint32_t;
constexpr Colour Rgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  return red | std::uint32_t{green} << 8 | std::uint32_t{blue} << 16;
}

using IconHandle = std::uintptr_t;  // 0 for none

// DrawText: one of across, one of down.
constexpr std::uint32_t DT_LEFT = 0x0;
constexpr std::uint32_t DT_CENTER = 0x1;
constexpr std::uint32_t DT_RIGHT = 0x2;
constexpr std::uint32_t DT_VCENTER = 0x4;
constexpr std::uint32_t DT_BOTTOM = 0x8;

class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void FillRect(const Rect& rect, Colour colour) = 0;
  virtual void FrameRect(const Rect& rect, Colour colour) = 0;  // one pixel wide, inside
  // The left and top edges in one colour, the right and bottom ones in another.
  virtual void Draw3dRect(const Rect& rect, Colour leftTop, Colour rightBottom) = 0;
  virtual void DrawFocusRect(const Rect& rect) = 0;  // dotted
  // In the control's font, without wrapping or mnemonics.
  virtual void TextInRect(const Rect& rect, const std::string& text, Colour colour,
                          std::uint32_t align) = 0;
  virtual void DrawIcon(std::int32_t x, std::int32_t y, IconHandle icon) = 0;
  virtual void EraseBackground(const Rect& rect) = 0;  // as the window's own
  virtual void DrawSizeGrip(const Rect& rect) = 0;
};

}  // namespace platform
