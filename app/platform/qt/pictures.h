// The program's own pictures, by their numbers, out of what is built into it. User interface's
// thread.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QSize>
#include <map>

#include "app/platform/desktop.h"

namespace platform::qt {

class Icons {
 public:
  // A fresh handle; 0 when there is no icon of that number.
  IconHandle Load(std::uint32_t id);
  // False for what isn't a handle.
  bool Destroy(IconHandle icon);
  // Null for what isn't a handle.
  QIcon Find(IconHandle icon) const;

 private:
  std::map<IconHandle, QIcon> icons;
  IconHandle last = 0;
};

// 0 when there is none of that number. Bitmaps live as long as the program.
BitmapHandle LoadBitmap(std::uint32_t id);

// Empty for 0.
QSize BitmapSize(BitmapHandle bitmap);

// Into the middle of `place`, as large as fits. Bitmaps of one colour are drawn in `ink`, so that
// they can be seen on any background.
void DrawBitmap(QPainter& painter, const QRect& place, BitmapHandle bitmap, const QColor& ink);

}  // namespace platform::qt
