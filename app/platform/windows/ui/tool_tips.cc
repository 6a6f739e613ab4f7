#include "app/platform/windows/ui/tool_tips.h"

#include "app/platform/windows/ui/text.h"

namespace platform::ui {

ToolTips::~ToolTips() {
  if (handle) DestroyWindow(handle);
}

bool ToolTips::Create(HWND dialog) {
  if (!handle)
    handle = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                             WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                             CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr,
                             GetModuleHandleW(nullptr), nullptr);
  return handle;
}

void ToolTips::SetWidth(std::int32_t pixels) {
  if (handle) Ask(handle, TTM_SETMAXTIPWIDTH, 0, pixels);
}

void ToolTips::SetTime(std::int32_t ms) {
  if (handle) Ask(handle, TTM_SETDELAYTIME, TTDT_AUTOPOP, ms);
}

void ToolTips::Activate(bool active) {
  if (handle) Ask(handle, TTM_ACTIVATE, active);
}

bool ToolTips::AddTool(HWND dialog, HWND control) {
  TTTOOLINFOW tool = {};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = dialog;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = LPSTR_TEXTCALLBACKW;
  if (!handle) return false;
  // Once: the system would keep two of one.
  TTTOOLINFOW present = tool;
  present.lpszText = nullptr;
  return Ask(handle, TTM_GETTOOLINFOW, 0, &present) || Ask(handle, TTM_ADDTOOLW, 0, &tool);
}

bool ToolTips::AddPart(HWND control, std::uint32_t number, const Rect& part,
                       const std::string& text) {
  std::wstring wide = Wide(text);
  TTTOOLINFOW tool = {};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_SUBCLASS;
  tool.hwnd = control;
  tool.uId = number;
  tool.rect = RectOf(part);
  tool.lpszText = wide.data();
  return handle && Ask(handle, TTM_ADDTOOLW, 0, &tool) != 0;
}

}  // namespace platform::ui
