// A list control whose columns share its width by proportion: the column that stands last always
// fills what is left, and widths and order are kept in the registry. Belongs to a dialog, which
// hands the list's notices to it.
#pragma once

#include <cstdint>
#include <vector>

#include "app/platform/controls.h"
#include "foundation/byte_string.h"

namespace kelvaro {

class ResizeListCtrl {
 public:
  explicit ResizeListCtrl(std::uint32_t maxColumns);

  // Takes over the list `id` of a window; clientWidth becomes its inner width.
  void Attach(platform::WindowHandle window, std::uint32_t id);
  // Appends a column, width in pixels. False beyond maxColumns, or when the list refuses.
  bool AddColumn(const ByteString& text, std::int32_t width);

  // Applies the stored widths and, if all values are there, the stored order.
  void LoadColumns();
  // Stores all widths, then all orders.
  void SaveColumns();

  // The list has become wider by `difference` pixels.
  void ChangeWidth(std::int32_t difference);

  // The notices of the list. True when it was one of those that this handles.
  bool OnNotice(platform::Notice notice, std::int32_t value);

  ByteString registryKey;  // full path below the current user
  std::int32_t clientWidth = 0;

 private:
  void FixLastColumn();
  void ComputeProportions();
  bool ReadOrder();
  bool Usable() const;  // a window and columns
  static std::int32_t Column(std::uint32_t index) { return static_cast<std::int32_t>(index); }
  std::int32_t Width(std::int32_t column) const;

  // Posted by the list to itself.
  static constexpr std::uint32_t kReadOrderMessage = 0x8000;
  static constexpr std::uint32_t kLoadMessage = 0x8001;

  bool firstPaintPending = true;
  bool orderKnown = false;    // `order` is the control's
  bool loaded = false;        // before the first paint
  bool redrawOnLoad = false;  // a load comes after the first paint
  bool inResize = false;      // a change of our own: header notices don't count
  const std::uint32_t maxColumns;
  std::uint32_t columnCount = 0;
  // Of maxColumns each. `order` may hold any numbers while orderKnown is false.
  std::vector<std::int32_t> order;
  std::vector<double> proportion;
  platform::WindowHandle window = platform::kNoWindow;
  std::uint32_t id = 0;
};

}  // namespace kelvaro
