#include "app/layout/layout.h"

#include "app/platform/controls.h"

namespace kelvaro {

namespace {

using Nodes = LinkedList<LayoutNode>;

constexpr std::uint32_t kMoveFlags =
    platform::SWP_NOZORDER | platform::SWP_NOACTIVATE | platform::SWP_NOOWNERZORDER;

std::int32_t Width(const LayoutRect& rect) { return rect.right - rect.left + 1; }
std::int32_t Height(const LayoutRect& rect) { return rect.bottom - rect.top + 1; }

void Move(LayoutRect* rect, std::int32_t across, std::int32_t down) {
  rect->left += across;
  rect->right += across;
  rect->top += down;
  rect->bottom += down;
}

void MoveDescendants(Nodes& nodes, std::int32_t across, std::int32_t down) {
  for (LayoutNode& node : nodes) {
    Move(&node.rect, across, down);
    MoveDescendants(node.children, across, down);
  }
}

// The offset that a place beside or along the parent adds once all places are taken. The last such
// place counts.
struct Offset {
  std::int32_t across = 0;
  std::int32_t down = 0;
};

Offset PlaceByParent(LayoutNode* node, const LayoutRect& parent) {
  using namespace layout_flag;
  const std::uint32_t flags = node->flags;
  const LayoutMargins& margins = node->margins;
  LayoutRect& rect = node->rect;
  const std::int32_t width = Width(rect);
  const std::int32_t height = Height(rect);
  Offset offset;

  const auto left = [&](std::int32_t place, std::int32_t margin) {
    rect.left = place;
    rect.right = place + width - 1;
    offset.across = margin;
  };
  const auto right = [&](std::int32_t place, std::int32_t margin) {
    left(place - width + 1, -margin);
  };
  const auto top = [&](std::int32_t place, std::int32_t margin) {
    rect.top = place;
    rect.bottom = place + height - 1;
    offset.down = margin;
  };
  const auto bottom = [&](std::int32_t place, std::int32_t margin) {
    top(place - height + 1, -margin);
  };

  if (flags & kTakeParentRect) rect = parent;
  if (flags & kLeftOf) right(parent.left - 1, margins.right);
  if (flags & kAbove) bottom(parent.top - 1, margins.bottom);
  if (flags & kRightOf) left(parent.right + 1, margins.left);
  if (flags & kBelow) top(parent.bottom + 1, margins.top);
  if (flags & kAlignLeft) left(parent.left, margins.left);
  if (flags & kAlignTop) top(parent.top, margins.top);
  if (flags & kAlignRight) right(parent.right, margins.right);
  if (flags & kAlignBottom) bottom(parent.bottom, margins.bottom);
  if (flags & kCentreAcross) left(parent.left + Width(parent) / 2 - width / 2, 0);
  if (flags & kCentreDown) top(parent.top + Height(parent) / 2 - height / 2, 0);
  return offset;
}

void MeetPageEdges(LayoutNode* node, const LayoutRect& page) {
  using namespace layout_flag;
  const std::uint32_t flags = node->flags;
  const LayoutMargins& margins = node->margins;
  LayoutRect& rect = node->rect;
  std::int32_t across = 0;
  std::int32_t down = 0;
  if (flags & kMeetLeft) across = page.left - rect.left;
  if (flags & kMeetRight) across = page.right - rect.right;
  if (flags & kMeetTop) down = page.top - rect.top;
  if (flags & kMeetBottom) down = page.bottom - rect.bottom;
  // A node that meets the edge already keeps its place, whatever its margins. That is wanted.
  if (across != 0) across += margins.left - margins.right;
  if (down != 0) down += margins.top - margins.bottom;
  Move(&rect, across, down);
}

void SetEdges(LayoutNode* node, const LayoutRect& parent, const LayoutRect& page) {
  using namespace layout_flag;
  const std::uint32_t flags = node->flags;
  const LayoutMargins& margins = node->margins;
  const LayoutRect& reference = flags & kOfParent ? parent : page;
  if (flags & kLeftEdge) node->rect.left = reference.left + margins.left;
  if (flags & kTopEdge) node->rect.top = reference.top + margins.top;
  if (flags & kRightEdge) node->rect.right = reference.right - margins.right;
  if (flags & kBottomEdge) node->rect.bottom = reference.bottom - margins.bottom;
}

void Grow(Nodes& nodes, std::int32_t across, std::int32_t down) {
  using namespace layout_flag;
  for (LayoutNode& node : nodes) {
    if (node.flags & kMoveAcross) {
      Move(&node.rect, across, 0);
    } else if (node.flags & kGrowAcross) {
      node.rect.right += across;
    }
    if (node.flags & kMoveDown) {
      Move(&node.rect, 0, down);
    } else if (node.flags & kGrowDown) {
      node.rect.bottom += down;
    }
    Grow(node.children, across, down);
  }
}

LayoutNode* FindIn(const Nodes& nodes, std::uint32_t control) {
  for (auto* node = nodes.head; node; node = node->next) {
    if (node->value->control == control) return node->value;
    if (LayoutNode* found = FindIn(node->value->children, control)) return found;
  }
  return nullptr;
}

void SetStateIn(Nodes& nodes, std::uint32_t bit, bool set) {
  for (LayoutNode& node : nodes) {
    if (set) {
      node.state |= bit;
    } else {
      node.state &= ~bit;
    }
    SetStateIn(node.children, bit, set);
  }
}

platform::Rect ControlRect(const LayoutNode& node) {
  return {node.rect.left, node.rect.top, node.rect.right + 1, node.rect.bottom + 1};
}

std::uint32_t MoveFlags(const LayoutNode& node) {
  return node.flags & layout_flag::kSizes ? kMoveFlags : kMoveFlags | platform::SWP_NOSIZE;
}

// *defer is 0 afterwards when a control couldn't be taken in.
void Defer(const Nodes& nodes, platform::WindowHandle window, platform::DeferHandle* defer) {
  for (auto* entry = nodes.head; entry && *defer; entry = entry->next) {
    const LayoutNode& node = *entry->value;
    *defer = platform::controls().DeferWindowPos(*defer, window, node.control, ControlRect(node),
                                                 MoveFlags(node));
    Defer(node.children, window, defer);
  }
}

void MoveNow(const Nodes& nodes, platform::WindowHandle window) {
  for (const LayoutNode& node : nodes) {
    platform::controls().InvalidateControl(window, node.control);
    platform::controls().SetControlPos(window, node.control, ControlRect(node),
                                       MoveFlags(node) | platform::SWP_DEFERERASE);
    MoveNow(node.children, window);
  }
}

void ShowOrHide(const Nodes& nodes, platform::WindowHandle window, const LayoutPage* later) {
  constexpr std::uint32_t kUnseen =
      layout_state::kHidden | layout_state::kOtherPage | layout_state::kCollapsed;
  for (const LayoutNode& node : nodes) {
    const bool hide = (node.state & kUnseen) || (node.flags & layout_flag::kNeverShown);
    if (!later || !later->Find(node.control)) {
      platform::controls().ShowControl(window, node.control,
                                       hide ? platform::SW_HIDE : platform::SW_SHOWNOACTIVATE);
    }
    ShowOrHide(node.children, window, later);
  }
}

}  // namespace

bool LayoutPage::Add(std::uint32_t parent, std::uint32_t control, std::uint32_t flags,
                     const LayoutMargins& margins) {
  Nodes* siblings = &nodes;
  if (parent != 0) {
    LayoutNode* const above = Find(parent);
    if (!above) return false;
    siblings = &above->children;
  }
  platform::Rect place;
  if (!platform::controls().GetControlRect(window, control, &place)) return false;
  LayoutNode node;
  // One pixel less than it measures. That is wanted.
  node.rect = {place.left, place.top, place.right - 2, place.bottom - 2};
  node.margins = margins;
  node.flags = flags;
  node.control = control;
  if (!siblings->AddTail(node)) return false;
  ++count;
  return true;
}

LayoutNode* LayoutPage::Find(std::uint32_t control) const { return FindIn(nodes, control); }

void LayoutPage::Measure() {
  platform::Rect client;
  if (!platform::desktop().GetClientRect(window, &client)) return;
  rect = {client.left, client.top, client.right, client.bottom};
}

void LayoutPage::Resize(const LayoutRect& page, const LayoutPage* later) {
  Grow(nodes, Width(page) - Width(rect), Height(page) - Height(rect));
  rect = page;
  LayoutNode top;
  top.rect = rect;
  for (LayoutNode& node : nodes) LayOutTree(&node, top, rect);
  ApplyPositions();
  ApplyVisibility(later);
}

void LayoutPage::SetState(std::uint32_t bit, bool set) { SetStateIn(nodes, bit, set); }

void LayoutPage::ApplyVisibility(const LayoutPage* later) { ShowOrHide(nodes, window, later); }

void LayoutPage::ApplyPositions() {
  platform::DeferHandle defer = platform::controls().BeginDeferWindowPos(count);
  Defer(nodes, window, &defer);
  if (defer && platform::controls().EndDeferWindowPos(defer)) return;
  MoveNow(nodes, window);
}

void PositionNode(LayoutNode* node, const LayoutNode& parent, const LayoutRect& page) {
  const LayoutRect before = node->rect;
  const Offset offset = PlaceByParent(node, parent.rect);
  if (!(parent.state & layout_state::kCollapsed)) Move(&node->rect, offset.across, offset.down);
  MeetPageEdges(node, page);
  SetEdges(node, parent.rect, page);
  MoveDescendants(node->children, node->rect.left - before.left, node->rect.top - before.top);
}

void LayOutTree(LayoutNode* node, const LayoutNode& parent, const LayoutRect& page) {
  PositionNode(node, parent, page);
  const LayoutRect own = node->rect;
  if (node->state & layout_state::kCollapsed) {
    node->rect.right = node->rect.left - 1;
    node->rect.bottom = node->rect.top - 1;
  }
  for (LayoutNode& child : node->children) LayOutTree(&child, *node, page);
  node->rect = own;
}

}  // namespace kelvaro
