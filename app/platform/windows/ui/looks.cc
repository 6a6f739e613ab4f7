#include "app/platform/windows/ui/looks.h"

// COM's, which a lean windows.h leaves out, before those that need it.
#include <initguid.h>
#include <objbase.h>
#include <oleacc.h>
#include <uxtheme.h>
#include <vssym32.h>

#include "app/platform/windows/ui/text.h"

namespace platform::ui {

void SayName(HWND control, const char* name) {
  IAccPropServices* service = nullptr;
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_SERVER, IID_IAccPropServices,
                              reinterpret_cast<void**>(&service))))
    return;
  const std::wstring wide = Wide(name);
  service->SetHwndPropStr(control, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME,
                          wide.c_str());
  service->Release();
}

std::optional<COLORREF> PageColourOf(HWND window) {
  const HTHEME theme = OpenThemeData(window, L"TAB");
  if (!theme) return std::nullopt;
  constexpr int kSide = 40;  // more than any frame is wide
  const HDC screen = GetDC(window);
  const HDC canvas = CreateCompatibleDC(screen);
  const HBITMAP page = CreateCompatibleBitmap(screen, kSide, kSide);
  const HGDIOBJ before = SelectObject(canvas, page);
  const RECT whole = {0, 0, kSide, kSide};
  std::optional<COLORREF> colour;
  if (SUCCEEDED(DrawThemeBackground(theme, canvas, TABP_BODY, 0, &whole, nullptr)))
    colour = GetPixel(canvas, kSide / 2, kSide / 2);
  SelectObject(canvas, before);
  DeleteObject(page);
  DeleteDC(canvas);
  ReleaseDC(window, screen);
  CloseThemeData(theme);
  return colour;
}

}  // namespace platform::ui
