// A dialog that can be resized: keeps its controls in place by the constraint trees of its pages,
// can't become smaller than it first was, draws a size grip, and remembers its place on the screen
// in the registry.
#pragma once

#include <cstdint>

#include "app/layout/dialog.h"
#include "app/layout/layout.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

class ResizableDialog : public Dialog {
 public:
  explicit ResizableDialog(const platform::DialogTemplate& resource);

 protected:
  // Measures the window and starts with one empty page: a derived class calls it first.
  void OnInit() override;

  // Drops all pages and makes `n` new ones (1 at least); page 0 becomes the current one.
  void CreatePages(std::uint16_t n);
  // Makes it the current page and applies it. False for an index that isn't below the number of
  // pages.
  bool SelectPage(std::uint16_t index);
  // See LayoutPage::Add; false for a page that isn't there, too.
  bool AddNode(std::uint16_t page, std::uint32_t control, std::uint32_t flags,
               const LayoutMargins& margins = {});
  bool AddChildNode(std::uint16_t page, std::uint32_t parent, std::uint32_t control,
                    std::uint32_t flags, const LayoutMargins& margins = {});
  // Keeps the control hidden on that page, from the next time that the page is applied.
  bool HideNode(std::uint16_t page, std::uint32_t control);
  // From here on a new size lays out.
  void MeasurePages();
  // Hides the controls of the other pages and shows those of the current one.
  void ApplyCurrentPage();

  // Takes the window's inside, at 0,0, and lays out all pages, the current one last, so that
  // controls that stand in several pages end up right for it.
  virtual void Layout(const platform::Rect& client);

  // The four edges of the window, under key\subkey of the current user; negative ones as 0.
  void SavePlacement();
  // Moves the window to where it was, if all four edges are there: at least 100 by 50, and not
  // beyond the right and bottom edges of the desktop. Remembers both names for SavePlacement.
  void RestorePlacement(const ByteString& keyPath, const ByteString& subkey);

  void OnSize(std::uint32_t type, std::int32_t width, std::int32_t height) override;
  void OnMove(std::int32_t x, std::int32_t y) override;
  void OnGetMinMaxInfo(platform::MinMaxInfo* info) override;
  void OnPaint(platform::Canvas& canvas) override;
  std::int32_t OnNcHitTest(platform::Point screen) override;
  void OnDestroy() override;  // saves the placement

  bool layoutReady = false;
  bool showGrip = true;
  std::int32_t gripWidth = 0;
  std::int32_t gripHeight = 0;
  platform::Rect gripRect;
  platform::Point windowOrigin;  // of the frame at first, of the inside since the window moved
  std::int32_t minTrackWidth = 0;
  std::int32_t minTrackHeight = 0;
  std::int32_t maxTrackWidth = 0;  // 0: no limit
  std::int32_t maxTrackHeight = 0;
  LinkedList<LayoutPage> pages;
  LayoutPage* currentPage = nullptr;
  std::uint16_t currentPageIndex = 0;
  ByteString registryKeyPath;
  ByteString registrySubkey;

 private:
  LayoutPage* PageAt(std::uint16_t index) const;
  void PlaceGrip(const platform::Rect& client);
};

}  // namespace kelvaro
