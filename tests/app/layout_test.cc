#include "app/layout/layout.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace kelvaro {

// For messages of GoogleTest.
static void PrintTo(const LayoutRect& rect, std::ostream* out) {
  *out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}

namespace {

using namespace layout_flag;

constexpr LayoutRect kPage{3, 4, 400, 300};
constexpr LayoutRect kParent{100, 50, 199, 149};  // 100 by 100
constexpr LayoutRect kStart{10, 20, 39, 39};      // 30 by 20
constexpr LayoutMargins kMargins{5, 6, 7, 8};

LayoutNode Node(const LayoutRect& rect, std::uint32_t flags = 0,
                const LayoutMargins& margins = {}) {
  LayoutNode node;
  node.rect = rect;
  node.margins = margins;
  node.flags = flags;
  return node;
}

LayoutRect Positioned(std::uint32_t flags, const LayoutMargins& margins = kMargins) {
  LayoutNode node = Node(kStart, flags, margins);
  PositionNode(&node, Node(kParent), kPage);
  return node.rect;
}

LayoutNode* Child(LayoutNode* parent, const LayoutNode& node) {
  parent->children.AddTail(node);
  return parent->children.tail->value;
}

struct FlagCase {
  std::uint32_t flags;
  LayoutRect place;
  const char* what;
};

const FlagCase kEachBit[] = {
    {0x1, {63, 20, 92, 39}, "left of the parent: right edge at 99, less 7"},
    {0x2, {10, 22, 39, 41}, "above: bottom edge at 49, less 8"},
    {0x4, {205, 20, 234, 39}, "right of: left edge at 200, and 5"},
    {0x8, {10, 156, 39, 175}, "below: top edge at 150, and 6"},
    {0x10, {135, 20, 164, 39}, "centred across: 100 + 50 - 15"},
    {0x20, {10, 90, 39, 109}, "centred down: 50 + 50 - 10"},
    {0x40, {100, 50, 199, 149}, "the parent's rectangle"},
    {0x80, {8, 20, 39, 39}, "left edge in the page: 3 + 5"},
    {0x100, {10, 10, 39, 39}, "top edge in the page: 4 + 6"},
    {0x200, {10, 20, 393, 39}, "right edge in the page: 400 - 7"},
    {0x400, {10, 20, 39, 292}, "bottom edge in the page: 300 - 8"},
    {0x800, {10, 20, 39, 39}, "the reference alone does nothing"},
    {0x880, {105, 20, 39, 39}, "left edge in the parent: 100 + 5"},
    {0x900, {10, 56, 39, 39}, "top edge in the parent: 50 + 6"},
    {0xA00, {10, 20, 192, 39}, "right edge in the parent: 199 - 7"},
    {0xC00, {10, 20, 39, 141}, "bottom edge in the parent: 149 - 8"},
    {0x1000, {105, 20, 134, 39}, "aligned left: 100 + 5"},
    {0x2000, {10, 56, 39, 75}, "aligned at the top: 50 + 6"},
    {0x4000, {163, 20, 192, 39}, "aligned right: 199 - 7"},
    {0x8000, {10, 122, 39, 141}, "aligned at the bottom: 149 - 8"},
    {0x10000, {1, 20, 30, 39}, "meets the page's left: -7, and 5 - 7"},
    {0x20000, {10, 2, 39, 21}, "meets the page's top: -16, and 6 - 8"},
    {0x40000, {369, 20, 398, 39}, "meets the page's right: 361, and 5 - 7"},
    {0x80000, {10, 279, 39, 298}, "meets the page's bottom: 261, and 6 - 8"},
    {0x100000, {10, 20, 39, 39}, "moves with growth alone"},
    {0x200000, {10, 20, 39, 39}, "moves with growth alone"},
    {0x400000, {10, 20, 39, 39}, "grows with growth alone"},
    {0x800000, {10, 20, 39, 39}, "grows with growth alone"},
    {0x1000000, {10, 20, 39, 39}, "never shown, but placed"},
    {0, {10, 20, 39, 39}, "no flag: stays"},
};

TEST(PositionNode, EachFlagBitAloneGivesItsPlace) {
  for (const FlagCase& c : kEachBit) {
    EXPECT_EQ(Positioned(c.flags), c.place) << std::hex << c.flags << ": " << c.what;
  }
}

const FlagCase kCombined[] = {
    {kLeftOf | kRightOf, {205, 20, 234, 39}, "right of comes after left of"},
    {kAbove | kBelow, {10, 156, 39, 175}, "below comes after above"},
    {kRightOf | kAlignLeft, {105, 20, 134, 39}, "alignment comes after standing beside"},
    {kLeftOf | kAlignLeft, {105, 20, 134, 39}, "and so does its offset"},
    {kAlignLeft | kAlignRight, {163, 20, 192, 39}, "the right edge comes last"},
    {kAlignTop | kAlignBottom, {10, 122, 39, 141}, "the bottom edge comes last"},
    {kRightOf | kCentreAcross, {135, 20, 164, 39}, "centring takes the offset away"},
    {kAlignBottom | kCentreDown, {10, 90, 39, 109}, "centring takes the offset away"},
    {kBelow | kCentreAcross, {135, 156, 164, 175}, "each direction has its own offset"},
    {kRightOf | kAlignTop, {205, 56, 234, 75}, "one flag for each direction"},
    {kMeetLeft | kMeetRight, {369, 20, 398, 39}, "of two shifts the right one wins"},
    {kMeetTop | kMeetBottom, {10, 279, 39, 298}, "of two shifts the bottom one wins"},
    {kRightOf | kMeetRight, {369, 20, 398, 39}, "the shift counts from the place just taken"},
    {kMeetRight | kLeftEdge, {8, 20, 398, 39}, "edges come last and change the size"},
    {kRightOf | kRightEdge, {205, 20, 393, 39}, "edges come last and change the size"},
    {kLeftEdge | kTopEdge | kRightEdge | kBottomEdge, {8, 10, 393, 292}, "all edges"},
    {kTakeParentRect | kRightOf, {205, 50, 234, 149}, "beside, with its own width"},
    {kTakeParentRect | kBelow, {100, 156, 199, 175}, "below, with its own height"},
    {0xC01600, {105, 20, 393, 292}, "as a tab control"},
    {0x1C03E00, {105, 56, 192, 141}, "as the box of a page"},
};

TEST(PositionNode, LaterBitsOverrideEarlierOnesInTheirFixedOrder) {
  for (const FlagCase& c : kCombined) {
    EXPECT_EQ(Positioned(c.flags), c.place) << std::hex << c.flags << ": " << c.what;
  }
}

TEST(PositionNode, ANodeThatMeetsItsEdgeAlreadyStaysWhateverItsMargins) {
  LayoutNode node = Node({3, 4, 32, 23}, kMeetLeft | kMeetTop, kMargins);
  PositionNode(&node, Node(kParent), kPage);
  EXPECT_EQ(node.rect, (LayoutRect{3, 4, 32, 23}));
  // The right flag wins with its shift of 0, too.
  node = Node({371, 4, 400, 23}, kMeetLeft | kMeetRight, kMargins);
  PositionNode(&node, Node(kParent), kPage);
  EXPECT_EQ(node.rect, (LayoutRect{371, 4, 400, 23}));
}

TEST(PositionNode, HalvesAreRoundedTowardZeroEachForItself) {
  // 100 + 50 - 15 and 50 + 15 - 10; (100 - 31) / 2 and (30 - 21) / 2 would be one less.
  LayoutNode node = Node({0, 0, 30, 20}, kCentreAcross | kCentreDown);
  PositionNode(&node, Node({100, 50, 199, 79}), kPage);
  EXPECT_EQ(node.rect, (LayoutRect{135, 55, 165, 75}));
  // A parent that is smaller than the node: 100 + 5 - 15.
  PositionNode(&node, Node({100, 50, 109, 59}), kPage);
  EXPECT_EQ(node.rect, (LayoutRect{90, 45, 120, 65}));
}

TEST(PositionNode, ACollapsedParentsOffsetsDontCount) {
  LayoutNode parent = Node(kParent);
  parent.state = layout_state::kCollapsed;
  LayoutNode node = Node(kStart, kRightOf | kBelow, kMargins);
  PositionNode(&node, parent, kPage);
  EXPECT_EQ(node.rect, (LayoutRect{200, 150, 229, 169}));
  // Margins of edges and shifts do.
  node = Node(kStart, kLeftEdge | kOfParent | kMeetBottom, kMargins);
  PositionNode(&node, parent, kPage);
  EXPECT_EQ(node.rect, (LayoutRect{105, 279, 39, 298}));
}

TEST(PositionNode, DescendantsGoWithTheLeftUpperCorner) {
  LayoutNode node = Node(kStart, kRightOf | kBelow, kMargins);
  LayoutNode* child = Child(&node, Node({11, 21, 20, 30}));
  LayoutNode* grandchild = Child(child, Node({12, 22, 15, 25}));
  PositionNode(&node, Node(kParent), kPage);
  ASSERT_EQ(node.rect, (LayoutRect{205, 156, 234, 175}));  // 195 to the right, 136 down
  EXPECT_EQ(child->rect, (LayoutRect{206, 157, 215, 166}));
  EXPECT_EQ(grandchild->rect, (LayoutRect{207, 158, 210, 161}));
}

TEST(PositionNode, ALeftEdgeThatIsSetTakesDescendantsAlongAndARightEdgeDoesNot) {
  LayoutNode node = Node(kStart, kLeftEdge, kMargins);
  LayoutNode* child = Child(&node, Node({11, 21, 20, 30}));
  PositionNode(&node, Node(kParent), kPage);
  EXPECT_EQ(child->rect, (LayoutRect{9, 21, 18, 30}));  // 10 became 8

  node = Node(kStart, kRightEdge | kBottomEdge, kMargins);
  child = Child(&node, Node({11, 21, 20, 30}));
  PositionNode(&node, Node(kParent), kPage);
  EXPECT_EQ(child->rect, (LayoutRect{11, 21, 20, 30}));
}

TEST(LayOutTree, ChildrenStandRelativeToTheirPlacedParent) {
  LayoutNode node = Node(kStart, kRightOf);
  LayoutNode* child = Child(&node, Node({0, 0, 9, 9}, kBelow | kAlignLeft, {1, 2, 0, 0}));
  LayoutNode* sibling = Child(&node, Node({0, 0, 9, 9}, kRightEdge, {0, 0, 8, 0}));
  LayoutNode* grandchild = Child(child, Node({0, 0, 4, 4}, kRightOf | kAlignTop));
  LayOutTree(&node, Node(kParent), kPage);
  EXPECT_EQ(node.rect, (LayoutRect{200, 20, 229, 39}));
  EXPECT_EQ(child->rect, (LayoutRect{201, 42, 210, 51}));
  EXPECT_EQ(grandchild->rect, (LayoutRect{211, 42, 215, 46}));
  // It went 190 to the right with its parent; its edge is the page's.
  EXPECT_EQ(sibling->rect, (LayoutRect{190, 0, 392, 9}));
}

TEST(LayOutTree, ACollapsedNodeLaysItsChildrenOutAtNoSizeAndKeepsItsOwn) {
  LayoutNode node = Node({10, 20, 109, 119});
  node.state = layout_state::kCollapsed;
  LayoutNode* behind = Child(&node, Node({0, 0, 9, 9}, kRightOf | kBelow, kMargins));
  LayoutNode* filling = Child(&node, Node({0, 0, 9, 9}, kTakeParentRect));
  LayOutTree(&node, Node(kParent), kPage);
  EXPECT_EQ(node.rect, (LayoutRect{10, 20, 109, 119}));
  EXPECT_EQ(behind->rect, (LayoutRect{10, 20, 19, 29}));
  EXPECT_EQ(filling->rect, (LayoutRect{10, 20, 9, 19}));
}

TEST(LayoutFlags, ANodeChangesItsSizeByTheseBitsAlone) {
  EXPECT_EQ(kSizes, kTakeParentRect | kLeftEdge | kTopEdge | kRightEdge | kBottomEdge |
                        kGrowAcross | kGrowDown);
}

}  // namespace
}  // namespace kelvaro
