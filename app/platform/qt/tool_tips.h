// The tool tip control of a window: which controls have a tip, and how tips are shown.
#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace platform::qt {

class ToolTips {
 public:
  struct TabTool {
    std::uint32_t control;
    std::int32_t tab;
    std::string text;
  };

  bool active = true;
  std::int32_t width = 0;  // pixels at most; 0: one line
  std::int32_t time = -1;  // ms; -1 as the system has it
  bool everyControl = false;
  std::set<std::uint32_t> tools;
  std::vector<TabTool> tabTools;

  bool IsTool(std::uint32_t control) const { return everyControl || tools.contains(control); }
  // Null when there is none.
  const std::string* TabText(std::uint32_t control, std::int32_t tab) const;

  // Up at the pointer while it stays above `place` of `over`; hides what is up for an empty text.
  void Show(const QString& text, QPoint screen, QWidget* over, const QRect& place) const;
};

// With line ends where a line would be wider than that many pixels.
QString Wrapped(const QString& text, int width);

}  // namespace platform::qt
