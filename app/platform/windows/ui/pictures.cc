#include "app/platform/windows/ui/pictures.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace platform::ui {
namespace {

// In which a resource of data can be built into a program: three sizes of each drawing.
constexpr int kScales = 3;

struct Data {
  const BYTE* bytes = nullptr;
  DWORD size = 0;
};

int NumberOf(BitmapHandle bitmap, int scale) { return static_cast<int>(bitmap) * 10 + scale; }

Data FindData(BitmapHandle bitmap, int scale) {
  const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(NumberOf(bitmap, scale)),
                                    MAKEINTRESOURCEW(10));  // RT_RCDATA
  const HGLOBAL loaded = found ? LoadResource(nullptr, found) : nullptr;
  if (!loaded) return {};
  return {static_cast<const BYTE*>(LockResource(loaded)), SizeofResource(nullptr, found)};
}

// A PNG file tells its size behind its signature and the length and name of its first chunk.
LONG Number(const BYTE* bytes) {
  return bytes[0] << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
}

// Gives each pixel the ink and leaves how much it covers.
void Dye(std::vector<std::uint32_t>& pixels, COLORREF ink) {
  const std::uint32_t colour =
      std::uint32_t{GetRValue(ink)} << 16 | std::uint32_t{GetGValue(ink)} << 8 | GetBValue(ink);
  for (std::uint32_t& pixel : pixels) pixel = (pixel & 0xFF000000u) | colour;
}

BITMAPINFO Upright(SIZE size) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = size.cx;
  info.bmiHeader.biHeight = -size.cy;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  return info;
}

// The same icon with its shape in one colour; the other one goes.
HICON InInk(HICON icon, SIZE size, COLORREF ink) {
  ICONINFO parts = {};
  if (!GetIconInfo(icon, &parts)) return icon;
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.cx) *
                                    static_cast<std::size_t>(size.cy));
  BITMAPINFO info = Upright(size);
  const HDC screen = GetDC(nullptr);
  GetDIBits(screen, parts.hbmColor, 0, static_cast<UINT>(size.cy), pixels.data(), &info,
            DIB_RGB_COLORS);
  Dye(pixels, ink);
  SetDIBits(screen, parts.hbmColor, 0, static_cast<UINT>(size.cy), pixels.data(), &info,
            DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  const HICON dyed = CreateIconIndirect(&parts);
  DeleteObject(parts.hbmColor);
  DeleteObject(parts.hbmMask);
  if (!dyed) return icon;
  DestroyIcon(icon);
  return dyed;
}

}  // namespace

Icons::~Icons() {
  while (!icons.empty()) Destroy(icons.begin()->first);
}

IconHandle Icons::Load(std::uint32_t id) {
  const auto load = [id](int width, int height) {
    return static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id),
                                         IMAGE_ICON, GetSystemMetrics(width),
                                         GetSystemMetrics(height), LR_DEFAULTCOLOR));
  };
  const Sizes sizes{load(SM_CXSMICON, SM_CYSMICON), load(SM_CXICON, SM_CYICON)};
  if (!sizes.small || !sizes.large) return 0;
  icons[++last] = sizes;
  return last;
}

bool Icons::Destroy(IconHandle icon) {
  const auto found = icons.find(icon);
  if (found == icons.end()) return false;
  DestroyIcon(found->second.small);
  DestroyIcon(found->second.large);
  icons.erase(found);
  return true;
}

HICON Icons::Find(IconHandle icon, bool large) const {
  const auto found = icons.find(icon);
  if (found == icons.end()) return nullptr;
  return large ? found->second.large : found->second.small;
}

BitmapHandle LoadBitmapOf(std::uint32_t id) { return FindData(id, 1).bytes ? id : 0; }

SIZE SizeOf(BitmapHandle bitmap) {
  constexpr DWORD kWidthAt = 16;
  const Data data = FindData(bitmap, 1);
  if (data.size < kWidthAt + 8) return {};
  return {Number(data.bytes + kWidthAt), Number(data.bytes + kWidthAt + 4)};
}

HICON IconOf(BitmapHandle bitmap, SIZE size, const COLORREF* ink) {
  const SIZE natural = SizeOf(bitmap);
  if (natural.cx <= 0 || size.cx <= 0 || size.cy <= 0) return nullptr;
  const int scale = std::clamp<int>((size.cx + natural.cx - 1) / natural.cx, 1, kScales);
  Data data = FindData(bitmap, scale);
  if (!data.bytes) data = FindData(bitmap, 1);
  constexpr DWORD kIconVersion = 0x00030000;
  const HICON icon =
      CreateIconFromResourceEx(const_cast<BYTE*>(data.bytes), data.size, TRUE, kIconVersion,
                               static_cast<int>(size.cx), static_cast<int>(size.cy), 0);
  return icon && ink ? InInk(icon, size, *ink) : icon;
}

bool IsMask(BitmapHandle bitmap) {
  const SIZE size = SizeOf(bitmap);
  return size.cx > 0 && size.cx == size.cy;
}

void DrawBitmap(HDC canvas, const RECT& place, BitmapHandle bitmap) {
  const SIZE natural = SizeOf(bitmap);
  const SIZE room = {place.right - place.left, place.bottom - place.top};
  if (natural.cx <= 0 || natural.cy <= 0 || room.cx <= 0 || room.cy <= 0) return;
  SIZE size = {room.cx, room.cx * natural.cy / natural.cx};
  if (size.cy > room.cy) size = {room.cy * natural.cx / natural.cy, room.cy};
  const COLORREF ink = GetSysColor(COLOR_BTNTEXT);
  const HICON icon = IconOf(bitmap, size, IsMask(bitmap) ? &ink : nullptr);
  if (!icon) return;
  DrawIconEx(canvas, place.left + (room.cx - size.cx) / 2, place.top + (room.cy - size.cy) / 2,
             icon, size.cx, size.cy, 0, nullptr, DI_NORMAL);
  DestroyIcon(icon);
}

}  // namespace platform::ui
