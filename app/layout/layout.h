// The places of a dialog's controls as a tree of constraints: each node stands relative to its
// parent node or to the page, and goes with it when the page is resized. A page is one set of
// trees; a dialog with tabs has a page a tab. All numbers are pixels of the window's inside.
#pragma once

#include <cstdint>

#include "app/platform/desktop.h"
#include "foundation/linked_list.h"

namespace kelvaro {

// Unlike a platform::Rect, right and bottom are the last pixels inside.
struct LayoutRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
  friend bool operator==(const LayoutRect&, const LayoutRect&) = default;
};

struct LayoutMargins {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
};

namespace layout_flag {
// Beside the parent, with the margin of that side as the distance.
constexpr std::uint32_t kLeftOf = 0x1;
constexpr std::uint32_t kAbove = 0x2;
constexpr std::uint32_t kRightOf = 0x4;
constexpr std::uint32_t kBelow = 0x8;
constexpr std::uint32_t kCentreAcross = 0x10;  // on the parent
constexpr std::uint32_t kCentreDown = 0x20;
constexpr std::uint32_t kTakeParentRect = 0x40;
// Single edges, against the page, or against the parent with kOfParent.
constexpr std::uint32_t kLeftEdge = 0x80;
constexpr std::uint32_t kTopEdge = 0x100;
constexpr std::uint32_t kRightEdge = 0x200;
constexpr std::uint32_t kBottomEdge = 0x400;
constexpr std::uint32_t kOfParent = 0x800;
// Aligned with the parent's edge, with the size kept.
constexpr std::uint32_t kAlignLeft = 0x1000;
constexpr std::uint32_t kAlignTop = 0x2000;
constexpr std::uint32_t kAlignRight = 0x4000;
constexpr std::uint32_t kAlignBottom = 0x8000;
// Shifted to meet the page's edge.
constexpr std::uint32_t kMeetLeft = 0x10000;
constexpr std::uint32_t kMeetTop = 0x20000;
constexpr std::uint32_t kMeetRight = 0x40000;
constexpr std::uint32_t kMeetBottom = 0x80000;
// With the growth of the page.
constexpr std::uint32_t kMoveAcross = 0x100000;
constexpr std::uint32_t kMoveDown = 0x200000;
constexpr std::uint32_t kGrowAcross = 0x400000;  // unless it moves across
constexpr std::uint32_t kGrowDown = 0x800000;
constexpr std::uint32_t kNeverShown = 0x1000000;
// A node with any of these changes its size; any other only moves.
constexpr std::uint32_t kSizes = 0xC007C0;
}  // namespace layout_flag

namespace layout_state {
constexpr std::uint32_t kHidden = 0x1;             // by the program
constexpr std::uint32_t kOtherPage = 0x2;          // its page isn't the current one
constexpr std::uint32_t kCollapsed = 0x80000000u;  // laid out at zero size
}  // namespace layout_state

struct LayoutNode {
  LayoutRect rect;
  LayoutMargins margins;
  std::uint32_t flags = 0;
  std::uint32_t control = 0;  // its number
  std::uint32_t state = 0;
  LinkedList<LayoutNode> children;
};

class LayoutPage {
 public:
  explicit LayoutPage(platform::WindowHandle window) : window(window) {}

  // Adds the control below the node of `parent`, or at the top level for 0. Its rectangle counts
  // one pixel less across and down than the control measures, so a control that the layout sizes
  // comes out that much smaller. False, with nothing added, when the window has no such control or
  // the page no such parent.
  bool Add(std::uint32_t parent, std::uint32_t control, std::uint32_t flags,
           const LayoutMargins& margins = {});

  // The first node of that control, null for none.
  LayoutNode* Find(std::uint32_t control) const;

  // The page's rectangle takes the window's inside as it is.
  void Measure();

  // Takes the growth since the last rectangle, computes every node's place in the new one, and
  // moves and shows or hides the controls. For `later` see ApplyVisibility.
  void Resize(const LayoutRect& page, const LayoutPage* later = nullptr);

  // Sets or clears a state bit of all nodes.
  void SetState(std::uint32_t bit, bool set);

  // Shows or hides each control by its node's state. Leaves one that `later` has, too, to
  // that page, which is applied next: hidden in between it would lose the focus.
  void ApplyVisibility(const LayoutPage* later = nullptr);

  LayoutRect rect;
  const platform::WindowHandle window;
  LinkedList<LayoutNode> nodes;
  std::int32_t count = 0;  // of all nodes down the trees

 private:
  void ApplyPositions();
};

// Places `node` by its flags, its parent's rectangle and the page's, and takes its descendants
// along. A collapsed parent's offsets don't count.
void PositionNode(LayoutNode* node, const LayoutNode& parent, const LayoutRect& page);

// PositionNode for a whole tree. A collapsed node's children are laid out at its place with no
// size.
void LayOutTree(LayoutNode* node, const LayoutNode& parent, const LayoutRect& page);

}  // namespace kelvaro
