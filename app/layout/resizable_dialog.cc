#include "app/layout/resizable_dialog.h"

#include <algorithm>

#include "foundation/registry_key.h"

namespace kelvaro {

namespace {

// The least size of a stored place, and how far inside the desktop it must begin.
constexpr std::int64_t kLeastWidth = 100;
constexpr std::int64_t kLeastHeight = 50;
constexpr std::int64_t kLeastSeen = 10;

bool Contains(const platform::Rect& rect, platform::Point point) {
  return point.x >= rect.left && point.x < rect.right && point.y >= rect.top &&
         point.y < rect.bottom;
}

// One direction of a stored place. 64 bits, since the registry can hold any numbers.
struct Span {
  std::int64_t from;
  std::int64_t to;

  void GiveSize(std::int64_t least) {
    if (to <= from) to = from + least;
  }
  void BringBack(std::int32_t desktopFrom, std::int32_t desktopTo) {
    if (from < desktopTo - kLeastSeen) return;
    to = std::min(to - from, std::int64_t{desktopTo} - desktopFrom);
    from = 0;
  }
};

}  // namespace

ResizableDialog::ResizableDialog(const platform::DialogTemplate& resource) : Dialog(resource) {
  CreatePages(1);
}

void ResizableDialog::OnInit() {
  platform::Rect rect;
  if (platform::desktop().GetWindowRect(window, &rect)) {
    windowOrigin = {rect.left, rect.top};
    minTrackWidth = rect.Width();
    minTrackHeight = rect.Height();
  }
  gripWidth = platform::desktop().GetSystemMetrics(platform::SM_CXVSCROLL);
  gripHeight = platform::desktop().GetSystemMetrics(platform::SM_CYHSCROLL);
  platform::Rect client;
  if (platform::desktop().GetClientRect(window, &client)) PlaceGrip(client);
  layoutReady = false;
  CreatePages(1);
}

void ResizableDialog::CreatePages(std::uint16_t n) {
  pages.Clear();
  for (std::uint16_t i = 0; i < std::max<std::uint16_t>(n, 1); ++i) {
    pages.AddTail(LayoutPage(window));
  }
  currentPage = PageAt(0);
  currentPageIndex = 0;
}

bool ResizableDialog::SelectPage(std::uint16_t index) {
  LayoutPage* const chosen = PageAt(index);
  if (!chosen) return false;
  currentPage = chosen;
  currentPageIndex = index;
  for (LayoutPage& page : pages) {
    page.SetState(layout_state::kOtherPage, &page != chosen);
  }
  ApplyCurrentPage();
  return true;
}

bool ResizableDialog::AddNode(std::uint16_t page, std::uint32_t control, std::uint32_t flags,
                              const LayoutMargins& margins) {
  return AddChildNode(page, 0, control, flags, margins);
}

bool ResizableDialog::AddChildNode(std::uint16_t page, std::uint32_t parent, std::uint32_t control,
                                   std::uint32_t flags, const LayoutMargins& margins) {
  LayoutPage* const target = PageAt(page);
  return target && target->Add(parent, control, flags, margins);
}

bool ResizableDialog::HideNode(std::uint16_t page, std::uint32_t control) {
  const LayoutPage* const target = PageAt(page);
  LayoutNode* const node = target ? target->Find(control) : nullptr;
  if (!node) return false;
  node->state |= layout_state::kHidden;
  return true;
}

void ResizableDialog::MeasurePages() {
  for (LayoutPage& page : pages) page.Measure();
  layoutReady = true;
}

void ResizableDialog::ApplyCurrentPage() {
  for (LayoutPage& page : pages) {
    if (&page != currentPage) page.ApplyVisibility(currentPage);
  }
  if (currentPage) currentPage->ApplyVisibility();
}

void ResizableDialog::Layout(const platform::Rect& client) {
  platform::desktop().InvalidateRect(window, gripRect);
  const LayoutRect rect{client.left, client.top, client.right, client.bottom};
  for (LayoutPage& page : pages) {
    if (&page != currentPage) page.Resize(rect, currentPage);
  }
  if (currentPage) currentPage->Resize(rect);
  PlaceGrip(client);
  platform::desktop().InvalidateRect(window, gripRect);
  platform::desktop().UpdateWindow(window);
}

void ResizableDialog::SavePlacement() {
  if (registryKeyPath.IsEmpty() || registrySubkey.IsEmpty()) return;
  platform::Rect rect;
  if (!platform::desktop().GetWindowRect(window, &rect)) return;
  const RegistryWrites together;
  RegistryKey key(platform::HKEY_CURRENT_USER, registryKeyPath, true);
  const auto save = [&](const char* name, std::int32_t edge) {
    key.SetDword(registrySubkey.Text(), name, static_cast<std::uint32_t>(std::max(edge, 0)));
  };
  save("left", rect.left);
  save("top", rect.top);
  save("right", rect.right);
  save("bottom", rect.bottom);
}

void ResizableDialog::RestorePlacement(const ByteString& keyPath, const ByteString& subkey) {
  registryKeyPath = keyPath;
  registrySubkey = subkey;
  RegistryKey key(platform::HKEY_CURRENT_USER, keyPath, false);
  const auto load = [&](const char* name, std::int64_t* edge) {
    std::uint32_t number{};
    if (!key.GetDword(subkey.Text(), name, &number)) return false;
    *edge = static_cast<std::int32_t>(number);
    return true;
  };
  Span across{};
  Span down{};
  if (!load("left", &across.from) || !load("top", &down.from) || !load("right", &across.to) ||
      !load("bottom", &down.to)) {
    return;
  }
  across.GiveSize(kLeastWidth);
  down.GiveSize(kLeastHeight);
  platform::Rect desktop;
  if (platform::desktop().GetDesktopRect(&desktop)) {
    across.BringBack(desktop.left, desktop.right);
    down.BringBack(desktop.top, desktop.bottom);
  }
  platform::desktop().MoveWindow(
      window, {static_cast<std::int32_t>(across.from), static_cast<std::int32_t>(down.from),
               static_cast<std::int32_t>(across.to), static_cast<std::int32_t>(down.to)});
  platform::Rect client;
  if (platform::desktop().GetClientRect(window, &client)) Layout(client);
}

void ResizableDialog::OnSize(std::uint32_t type, std::int32_t width, std::int32_t height) {
  if (!layoutReady) return;
  if (type == platform::SIZE_MAXSHOW || type == platform::SIZE_MAXHIDE) return;
  if (width == 0 && height == 0) return;
  Layout({0, 0, width, height});
}

void ResizableDialog::OnMove(std::int32_t x, std::int32_t y) { windowOrigin = {x, y}; }

void ResizableDialog::OnGetMinMaxInfo(platform::MinMaxInfo* info) {
  info->minTrackWidth = minTrackWidth;
  info->minTrackHeight = minTrackHeight;
  if (maxTrackWidth != 0) info->maxTrackWidth = maxTrackWidth;
  if (maxTrackHeight != 0) info->maxTrackHeight = maxTrackHeight;
}

void ResizableDialog::OnPaint(platform::Canvas& canvas) {
  if (showGrip && !platform::desktop().IsZoomed(window)) canvas.DrawSizeGrip(gripRect);
}

std::int32_t ResizableDialog::OnNcHitTest(platform::Point screen) {
  const bool onGrip = Contains(gripRect, {screen.x - windowOrigin.x, screen.y - windowOrigin.y});
  if (onGrip && showGrip && !platform::desktop().IsZoomed(window)) return platform::HTBOTTOMRIGHT;
  return Dialog::OnNcHitTest(screen);
}

void ResizableDialog::OnDestroy() { SavePlacement(); }

LayoutPage* ResizableDialog::PageAt(std::uint16_t index) const {
  return index < pages.count ? pages.At(index)->value : nullptr;
}

void ResizableDialog::PlaceGrip(const platform::Rect& client) {
  gripRect = {client.right - gripWidth, client.bottom - gripHeight, client.right, client.bottom};
}

}  // namespace kelvaro
