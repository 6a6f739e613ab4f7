#include "tests/person/recording_canvas.h"

#include <cstdio>

namespace platform::simulation {
namespace {

std::string Text(const Rect& rect) {
  return std::to_string(rect.left) + ',' + std::to_string(rect.top) + ',' +
         std::to_string(rect.right) + ',' + std::to_string(rect.bottom);
}

std::string Text(Colour colour) {
  char text[12];
  std::snprintf(text, sizeof text, "%06x", colour);
  return text;
}

}  // namespace

void RecordingCanvas::FillRect(const Rect& rect, Colour colour) {
  lines.push_back("fill " + Text(rect) + ' ' + Text(colour));
}

void RecordingCanvas::FrameRect(const Rect& rect, Colour colour) {
  lines.push_back("frame " + Text(rect) + ' ' + Text(colour));
}

void RecordingCanvas::Draw3dRect(const Rect& rect, Colour leftTop, Colour rightBottom) {
  lines.push_back("3d " + Text(rect) + ' ' + Text(leftTop) + ' ' + Text(rightBottom));
}

void RecordingCanvas::DrawFocusRect(const Rect& rect) { lines.push_back("focus " + Text(rect)); }

void RecordingCanvas::TextInRect(const Rect& rect, const std::string& text, Colour colour,
                                 std::uint32_t align) {
  const char* across = align & DT_RIGHT ? "right" : align & DT_CENTER ? "centre" : "left";
  const char* down = align & DT_BOTTOM ? "bottom" : align & DT_VCENTER ? "middle" : "top";
  lines.push_back("text " + Text(rect) + ' ' + Text(colour) + ' ' + across + ' ' + down + " \"" +
                  text + '"');
}

void RecordingCanvas::DrawIcon(std::int32_t x, std::int32_t y, IconHandle icon) {
  lines.push_back("icon " + std::to_string(x) + ',' + std::to_string(y) + ' ' +
                  std::to_string(pictureOf(icon)));
}

void RecordingCanvas::EraseBackground(const Rect& rect) { lines.push_back("erase " + Text(rect)); }

void RecordingCanvas::DrawSizeGrip(const Rect& rect) { lines.push_back("grip " + Text(rect)); }

}  // namespace platform::simulation
