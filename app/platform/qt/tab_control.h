// Tabs above a frame. What stands on the pages are controls of the window.
#pragma once

#include <QTabBar>

#include "app/platform/qt/control.h"

namespace platform::qt {

class TabControl final : public Control {
 public:
  TabControl(ControlHost& host, const ControlTemplate& from);

  QWidget* FocusWidget() const override { return bar; }

  std::int32_t Insert(const std::string& text);
  // From the control's corner.
  bool TabRect(std::int32_t tab, Rect* rect) const;
  // As SetDescription, of one tab.
  void DescribeTab(std::int32_t tab, const QString& text) { bar->setTabToolTip(tab, text); }
  bool Select(std::int32_t tab);
  std::int32_t Selected() const { return selected; }

  // What the style paints a page with, on a desktop of these colours.
  QColor PageColour(const QPalette& colours) const;

 private:
  class Frame;
  void Step(int by);

  Frame* const frame;
  QTabBar* const bar;
  std::int32_t selected = -1;
};

}  // namespace platform::qt
