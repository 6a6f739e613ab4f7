// The program's own pictures, by their numbers, out of its resources: icons in several sizes, and
// drawings with a soft edge, which are PNG files there. User interface's thread.
#pragma once

#include <map>
#include <memory>

#include "app/platform/windows/ui/system.h"

namespace platform::ui {

class Icons {
 public:
  Icons() = default;
  ~Icons();
  Icons(const Icons&) = delete;
  Icons& operator=(const Icons&) = delete;

  // A fresh handle; 0 when there is no icon of that number.
  IconHandle Load(std::uint32_t id);
  // False for what isn't a handle.
  bool Destroy(IconHandle icon);
  // Null for what isn't a handle. Owned by this.
  HICON Find(IconHandle icon, bool large) const;

 private:
  struct Sizes {
    HICON small = nullptr;
    HICON large = nullptr;
  };
  std::map<IconHandle, Sizes> icons;
  IconHandle last = 0;
};

// Drawings live as long as the program. 0 when there is none of that number.
BitmapHandle LoadBitmapOf(std::uint32_t id);

// Of a drawing as it stands in the resource; 0, 0 for none.
SIZE SizeOf(BitmapHandle bitmap);

// The drawing at that size, in its own colours or, where `ink` is given, its shape in that colour.
// Null when it can't be. The caller's, to be given to DestroyIcon.
HICON IconOf(BitmapHandle bitmap, SIZE size, const COLORREF* ink);

// Drawings of one colour, which are drawn in the colour of the text around them.
bool IsMask(BitmapHandle bitmap);

// Into the middle of `place`, as large as fits.
void DrawBitmap(HDC canvas, const RECT& place, BitmapHandle bitmap);

}  // namespace platform::ui
