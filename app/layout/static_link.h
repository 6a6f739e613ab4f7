// A static text that is a link: blue, underlined, below a pointing hand; a click opens its target,
// after which it is purple. The text is the target where no other was given.
#pragma once

#include <cstdint>

#include "app/platform/controls.h"
#include "foundation/byte_string.h"

namespace kelvaro {

// An address to open.
class Hyperlink {
 public:
  // The system's result, above 32 on success; 0 for an empty target, with which nothing happens.
  std::intptr_t Navigate() const;

  ByteString target;
};

class CStaticLink {
 public:
  static constexpr platform::Colour kLinkColour = platform::Rgb(0, 0, 255);
  static constexpr platform::Colour kVisitedColour = platform::Rgb(128, 0, 128);

  // Takes over the static `id` of a window and gives it the looks of a link.
  void Attach(platform::WindowHandle window, std::uint32_t id);

  // Opens the target; a failure beeps.
  void OnClick();

  Hyperlink hyperlink;
  platform::Colour colour = kLinkColour;

 private:
  platform::WindowHandle window = platform::kNoWindow;
  std::uint32_t id = 0;
};

}  // namespace kelvaro
