// The tool tip control of a window: shows the text of a tool below the pointer.
#pragma once

#include <string>

#include "app/platform/windows/ui/system.h"

namespace platform::ui {

class ToolTips {
 public:
  ToolTips() = default;
  ~ToolTips();
  ToolTips(const ToolTips&) = delete;
  ToolTips& operator=(const ToolTips&) = delete;

  // Once; true also when it is there.
  bool Create(HWND dialog);
  void SetWidth(std::int32_t pixels);
  void SetTime(std::int32_t ms);
  void Activate(bool active);
  // The dialog is asked for the text.
  bool AddTool(HWND dialog, HWND control);
  bool AddPart(HWND control, std::uint32_t number, const Rect& part, const std::string& text);

  HWND Handle() const { return handle; }

 private:
  HWND handle = nullptr;
};

}  // namespace platform::ui
