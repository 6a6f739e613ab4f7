#include "app/layout/resizable_dialog.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/app/calls.h"
#include "tests/foundation/allocations.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/recorded_desktop.h"
#include "tests/person/screen.h"

namespace platform {

// For messages of GoogleTest.
static void PrintTo(const Rect& rect, std::ostream* out) {
  *out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}

}  // namespace platform

namespace kelvaro {
namespace {

using namespace layout_flag;
using platform::ControlKind;
using platform::HTBOTTOMRIGHT;
using platform::HTCLIENT;
using platform::IDCANCEL;
using platform::Rect;
using platform::simulation::Drawing;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;
using platform::simulation::VirtualRegistry;

constexpr std::uint32_t kDo = 2000;  // runs what the test wants done on the window's own thread
constexpr std::uint32_t kFirst = 2001;
constexpr std::uint32_t kSecond = 2002;
constexpr std::uint32_t kThird = 2003;
constexpr std::uint32_t kBox = 2004;
constexpr std::uint32_t kNowhere = 2999;

constexpr platform::ControlTemplate kControls[] = {
    {ControlKind::Button, kDo, "Do", 4, 8, 20, 8},
    {ControlKind::Button, kFirst, "First", 4, 24, 20, 8},
    {ControlKind::Button, kSecond, "Second", 28, 24, 20, 8},
    {ControlKind::Edit, kThird, "", 4, 40, 44, 16},
    {ControlKind::Box, kBox, "", 4, 64, 40, 40},
};
// The first button's, for a font of 6 by 13.
constexpr Rect kFirstPlace{6, 39, 36, 52};
constexpr platform::DialogTemplate kResource = {
    20, "Test", 52, 112, platform::kWindowResizable | platform::kWindowMaximiseBox, kControls};

class TestDialog : public ResizableDialog {
 public:
  explicit TestDialog(const platform::DialogTemplate& resource = kResource)
      : ResizableDialog(resource) {}

  using ResizableDialog::AddChildNode;
  using ResizableDialog::AddNode;
  using ResizableDialog::ApplyCurrentPage;
  using ResizableDialog::CreatePages;
  using ResizableDialog::currentPage;
  using ResizableDialog::currentPageIndex;
  using ResizableDialog::gripHeight;
  using ResizableDialog::gripRect;
  using ResizableDialog::gripWidth;
  using ResizableDialog::HideNode;
  using ResizableDialog::layoutReady;
  using ResizableDialog::maxTrackHeight;
  using ResizableDialog::maxTrackWidth;
  using ResizableDialog::MeasurePages;
  using ResizableDialog::minTrackHeight;
  using ResizableDialog::minTrackWidth;
  using ResizableDialog::OnGetMinMaxInfo;
  using ResizableDialog::OnNcHitTest;
  using ResizableDialog::OnSize;
  using ResizableDialog::pages;
  using ResizableDialog::RestorePlacement;
  using ResizableDialog::SavePlacement;
  using ResizableDialog::SelectPage;
  using ResizableDialog::showGrip;
  using ResizableDialog::windowOrigin;

  std::function<void()> prepare;
  std::function<void()> task;
  std::vector<Rect> layouts;

 protected:
  void OnInit() override {
    ResizableDialog::OnInit();
    if (prepare) prepare();
  }
  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override {
    if (id == kDo && notice == platform::Notice::Clicked) {
      if (const auto now = std::exchange(task, nullptr)) now();
      return;
    }
    Dialog::OnNotice(id, notice, value);
  }
  void Layout(const Rect& client) override {
    layouts.push_back(client);
    ResizableDialog::Layout(client);
  }
};

Rect Moved(const Rect& rect, std::int32_t left, std::int32_t top, std::int32_t right,
           std::int32_t bottom) {
  return {rect.left + left, rect.top + top, rect.right + right, rect.bottom + bottom};
}

class ResizableDialogTest : public ::testing::Test {
 protected:
  void TearDown() override { screen.Leave(); }

  // Runs the dialog; `prepare` is the rest of its set-up.
  void Open(std::function<void()> prepare = nullptr) {
    dialog.prepare = std::move(prepare);
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }
  void Do(std::function<void()> task) {
    dialog.task = std::move(task);
    screen.Click(kDo);
  }
  void Grow(std::int32_t across, std::int32_t down) {
    const Rect place = screen.Place();
    screen.Resize(place.Width() + across, place.Height() + down);
  }
  // A box that is never shown with a control that grows, and one that moves below that.
  void OpenTree() {
    Open([&] {
      dialog.AddNode(0, kBox, kMoveAcross | kNeverShown);
      dialog.AddChildNode(0, kBox, kThird, kGrowAcross);
      dialog.AddChildNode(0, kThird, kFirst, kMoveAcross);
      dialog.MeasurePages();
    });
  }
  // Calls for controls, with their numbers and flags.
  Strings Steps() const {
    return CallsOf(sim, {"BeginDeferWindowPos", "DeferWindowPos", "EndDeferWindowPos",
                         "SetControlPos", "InvalidateControl", "ShowControl"});
  }
  Rect Place(std::uint32_t id) const {
    Rect rect;
    EXPECT_TRUE(platform::controls().GetControlRect(dialog.window, id, &rect));
    return rect;
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  TestDialog dialog;
};

// ---- The start

TEST_F(ResizableDialogTest, StartsWithOnePageAndNothingMeasured) {
  EXPECT_EQ(dialog.pages.count, 1);
  ASSERT_NE(dialog.currentPage, nullptr);
  EXPECT_EQ(dialog.currentPageIndex, 0);
  EXPECT_EQ(dialog.currentPage->rect, (LayoutRect{0, 0, 0, 0}));
  EXPECT_FALSE(dialog.layoutReady);
  EXPECT_TRUE(dialog.showGrip);
  EXPECT_EQ(dialog.gripWidth, 0);
  EXPECT_EQ(dialog.gripHeight, 0);
  EXPECT_EQ(dialog.minTrackWidth, 0);
  EXPECT_EQ(dialog.minTrackHeight, 0);
}

TEST_F(ResizableDialogTest, TakesItsLeastSizeItsOriginAndTheGripFromTheWindow) {
  dialog.windowOrigin = {-1, -1};
  Open([&] {
    Rect window;
    ASSERT_TRUE(platform::desktop().GetWindowRect(dialog.window, &window));
    EXPECT_EQ(dialog.minTrackWidth, window.Width());
    EXPECT_EQ(dialog.minTrackHeight, window.Height());
    EXPECT_EQ(dialog.windowOrigin, (platform::Point{window.left, window.top}));
    EXPECT_EQ(dialog.gripWidth, platform::desktop().GetSystemMetrics(platform::SM_CXVSCROLL));
    EXPECT_EQ(dialog.gripHeight, platform::desktop().GetSystemMetrics(platform::SM_CYHSCROLL));
  });
  const Rect inside = screen.Inside();
  EXPECT_EQ(dialog.gripRect,
            (Rect{inside.right - dialog.gripWidth, inside.bottom - dialog.gripHeight, inside.right,
                  inside.bottom}));
}

TEST_F(ResizableDialogTest, HasAWindowOnlyWhileItRuns) {
  EXPECT_EQ(dialog.window, platform::kNoWindow);
  Open();
  EXPECT_NE(dialog.window, platform::kNoWindow);
  screen.Close();
  EXPECT_EQ(dialog.window, platform::kNoWindow);
}

TEST_F(ResizableDialogTest, ASizeBeforeThePagesAreMeasuredIsIgnored) {
  Open([&] { dialog.AddNode(0, kFirst, kMoveAcross); });
  const Rect place = screen.ControlPlace(kFirst);
  Grow(40, 30);
  EXPECT_EQ(screen.ControlPlace(kFirst), place);
  EXPECT_TRUE(dialog.layouts.empty());
}

TEST_F(ResizableDialogTest, OpenedAgainItBuildsItsPagesAnew) {
  const auto prepare = [&] {
    EXPECT_FALSE(dialog.layoutReady);
    EXPECT_TRUE(dialog.AddNode(0, kFirst, kMoveAcross));
    dialog.MeasurePages();
  };
  Open(prepare);
  screen.Close();
  Open(prepare);
  EXPECT_EQ(dialog.pages.count, 1);
  EXPECT_EQ(dialog.currentPage->count, 1);
  const Rect place = screen.ControlPlace(kFirst);
  Grow(40, 0);
  EXPECT_EQ(screen.ControlPlace(kFirst), Moved(place, 40, 0, 40, 0));
}

// ---- Nodes

TEST_F(ResizableDialogTest, ANodeCountsOnePixelLessThanItsControl) {
  Open([&] {
    const Rect place = Place(kFirst);
    ASSERT_TRUE(dialog.AddNode(0, kFirst, 0, {1, 2, 3, 4}));
    const LayoutNode& node = *dialog.currentPage->Find(kFirst);
    EXPECT_EQ(node.rect, (LayoutRect{place.left, place.top, place.right - 2, place.bottom - 2}));
    EXPECT_EQ(node.margins.left, 1);
    EXPECT_EQ(node.margins.top, 2);
    EXPECT_EQ(node.margins.right, 3);
    EXPECT_EQ(node.margins.bottom, 4);
    EXPECT_EQ(node.state, 0u);
  });
}

TEST_F(ResizableDialogTest, AControlThatIsntThereIsPassedOverAndTheRestGoesOn) {
  Open([&] {
    EXPECT_TRUE(dialog.AddNode(0, kFirst, 0));
    EXPECT_FALSE(dialog.AddNode(0, kNowhere, 0));
    EXPECT_FALSE(dialog.AddChildNode(0, kNowhere, kSecond, 0));
    EXPECT_FALSE(dialog.AddNode(1, kSecond, 0));
    EXPECT_FALSE(dialog.HideNode(0, kNowhere));
    EXPECT_FALSE(dialog.HideNode(1, kFirst));
    EXPECT_TRUE(dialog.AddChildNode(0, kFirst, kSecond, 0));
    EXPECT_EQ(dialog.currentPage->count, 2);
  });
}

TEST_F(ResizableDialogTest, WithoutMemoryANodeIsNotAdded) {
  Open([&] {
    const FailingAllocation fault(1);
    EXPECT_FALSE(dialog.AddNode(0, kFirst, 0));
    EXPECT_EQ(fault.Failed(), 1u);
    EXPECT_EQ(dialog.currentPage->count, 0);
  });
}

// ---- Growth. A node with a bit of 0xC007C0 takes its size from the layout, one pixel less each
// way than the control had; any other keeps it.

struct GrowthCase {
  std::uint32_t flags;
  Rect place;
  const char* what;
};

const GrowthCase kGrowth[] = {
    {0, {6, 39, 36, 52}, "stays"},
    {0x100000, {46, 39, 76, 52}, "moves across with the width"},
    {0x200000, {6, 69, 36, 82}, "moves down with the height"},
    {0x300000, {46, 69, 76, 82}, "moves both ways"},
    {0x400000, {6, 39, 75, 51}, "grows across with the width"},
    {0x800000, {6, 39, 35, 81}, "grows down with the height"},
    {0xC00000, {6, 39, 75, 81}, "grows both ways"},
    {0x500000, {46, 39, 75, 51}, "moves across and so doesn't grow across"},
    {0xA00000, {6, 69, 35, 81}, "moves down and so doesn't grow down"},
    {0x900000, {46, 39, 75, 81}, "moves across and grows down"},
    {0x600000, {6, 69, 75, 81}, "grows across and moves down"},
    {0x1100000, {46, 39, 76, 52}, "never shown and placed all the same"},
};

TEST_F(ResizableDialogTest, EachGrowthBitTakesTheGrowthOfItsDirection) {
  for (const GrowthCase& c : kGrowth) {
    Open([&] {
      ASSERT_EQ(Place(kFirst), kFirstPlace);
      ASSERT_TRUE(dialog.AddNode(0, kFirst, c.flags));
      dialog.MeasurePages();
    });
    Grow(40, 30);
    EXPECT_EQ(screen.ControlPlace(kFirst), c.place) << std::hex << c.flags << ": " << c.what;
    screen.Close();
  }
}

TEST_F(ResizableDialogTest, ChildrenGrowByTheirOwnFlags) {
  Open([&] {
    dialog.AddNode(0, kBox, kMoveAcross);
    dialog.AddChildNode(0, kBox, kFirst, 0);
    dialog.AddChildNode(0, kBox, kSecond, kMoveAcross);
    dialog.MeasurePages();
  });
  const Rect first = screen.ControlPlace(kFirst);
  const Rect second = screen.ControlPlace(kSecond);
  Grow(40, 30);
  EXPECT_EQ(screen.ControlPlace(kFirst), first);
  EXPECT_EQ(screen.ControlPlace(kSecond), Moved(second, 40, 0, 40, 0));
}

TEST_F(ResizableDialogTest, ChildrenGoWithAParentThatItsFlagsMoved) {
  Open([&] {
    dialog.AddNode(0, kBox, kMeetRight);
    dialog.AddChildNode(0, kBox, kFirst, 0);
    dialog.MeasurePages();
  });
  const Rect box = screen.ControlPlace(kBox);
  const Rect first = screen.ControlPlace(kFirst);
  Grow(40, 30);
  EXPECT_EQ(screen.ControlPlace(kBox), Moved(box, 40, 0, 40, 0));
  EXPECT_EQ(screen.ControlPlace(kFirst), Moved(first, 40, 0, 40, 0));
}

TEST_F(ResizableDialogTest, ThePageReachesToTheInsidesRightAndBottomEdge) {
  Open([&] {
    dialog.AddNode(0, kThird, kRightEdge | kBottomEdge, {0, 0, 8, 5});
    dialog.MeasurePages();
  });
  Grow(40, 30);
  const Rect inside = screen.Inside();
  const Rect place = screen.ControlPlace(kThird);
  // The node's last pixels lie 8 and 5 before the edges, which lie one beyond the inside.
  EXPECT_EQ(place.right, inside.right - 8 + 1);
  EXPECT_EQ(place.bottom, inside.bottom - 5 + 1);
}

TEST_F(ResizableDialogTest, WhatHasNoParentIsAlignedWithThePage) {
  Open([&] {
    dialog.AddNode(0, kFirst, kAlignRight | kAlignBottom);
    dialog.MeasurePages();
  });
  const Rect first = screen.ControlPlace(kFirst);
  Grow(40, 30);
  const Rect inside = screen.Inside();
  const Rect aligned = screen.ControlPlace(kFirst);
  Grow(20, 10);
  EXPECT_EQ(screen.ControlPlace(kFirst), Moved(aligned, 20, 10, 20, 10));
  // The page's last pixels lie one beyond the inside, and the node is one less than the control.
  EXPECT_EQ(aligned.left, inside.right - first.Width() + 2);
  EXPECT_EQ(aligned.top, inside.bottom - first.Height() + 2);
}

TEST_F(ResizableDialogTest, BackAtTheOldSizeEverythingIsWhereItWas) {
  Open([&] {
    dialog.AddNode(0, kFirst, kMoveAcross | kMoveDown);
    dialog.AddNode(0, kThird, kGrowAcross | kGrowDown);
    dialog.MeasurePages();
  });
  const Rect first = screen.ControlPlace(kFirst);
  const Rect third = screen.ControlPlace(kThird);
  Grow(40, 30);
  Grow(-40, -30);
  EXPECT_EQ(screen.ControlPlace(kFirst), first);
  EXPECT_EQ(screen.ControlPlace(kThird), third);
}

// No z order, no activation, no owner's z order (0x214), and no size (1) for a node that only
// moves.
TEST_F(ResizableDialogTest, ControlsAreMovedTogetherDownTheTreeAndShownAfterwards) {
  OpenTree();
  sim.LogCalls(true);
  Grow(40, 0);
  EXPECT_EQ(Steps(),
            (Strings{"BeginDeferWindowPos 3", "DeferWindowPos 2004 533", "DeferWindowPos 2003 532",
                     "DeferWindowPos 2001 533", "EndDeferWindowPos", "ShowControl 2004 0",
                     "ShowControl 2003 4", "ShowControl 2001 4"}));
}

// The same flags, and no erasing at once (0x2000).
TEST_F(ResizableDialogTest, WhenNoneCanBeMovedTogetherEachIsDrawnAnewAndMovedAlone) {
  OpenTree();
  sim.LogCalls(true);
  sim.FailNext("BeginDeferWindowPos");
  Grow(40, 0);
  EXPECT_EQ(Steps(),
            (Strings{"BeginDeferWindowPos 3", "InvalidateControl 2004", "SetControlPos 2004 8725",
                     "InvalidateControl 2003", "SetControlPos 2003 8724", "InvalidateControl 2001",
                     "SetControlPos 2001 8725", "ShowControl 2004 0", "ShowControl 2003 4",
                     "ShowControl 2001 4"}));
}

TEST_F(ResizableDialogTest, EachControlEndsAtItsPlaceWhicheverStepOfMovingTogetherFails) {
  OpenTree();
  const Rect first = screen.ControlPlace(kFirst);
  const Rect third = screen.ControlPlace(kThird);
  for (const char* operation : {"BeginDeferWindowPos", "DeferWindowPos", "EndDeferWindowPos"}) {
    sim.FailAlways(operation);
    Grow(40, 0);
    EXPECT_EQ(screen.ControlPlace(kFirst), Moved(first, 40, 0, 40, 0)) << operation;
    EXPECT_EQ(screen.ControlPlace(kThird), Moved(third, 0, 0, 40, 0)) << operation;
    sim.Mend(operation);
    Grow(-40, 0);
  }
}

// ---- Sizes that don't count, and the limits

TEST_F(ResizableDialogTest, EachSizeLaysOutTheInsideFromZero) {
  Open([&] { dialog.MeasurePages(); });
  dialog.layouts.clear();
  Grow(40, 30);
  EXPECT_EQ(dialog.layouts, std::vector<Rect>{screen.Inside()});
}

TEST_F(ResizableDialogTest, ASizeOfNothingAndOfAnotherWindowsMaximisingIsPassedOver) {
  Open([&] { dialog.MeasurePages(); });
  dialog.layouts.clear();
  Do([&] {
    dialog.OnSize(platform::SIZE_MAXSHOW, 300, 200);
    dialog.OnSize(platform::SIZE_MAXHIDE, 300, 200);
    dialog.OnSize(platform::SIZE_RESTORED, 0, 0);
    dialog.OnSize(platform::SIZE_MINIMIZED, 0, 0);
  });
  EXPECT_TRUE(dialog.layouts.empty());
  Do([&] {
    dialog.OnSize(platform::SIZE_RESTORED, 300, 0);
    dialog.OnSize(platform::SIZE_MAXIMIZED, 300, 200);
    dialog.OnSize(platform::SIZE_MINIMIZED, 160, 20);
  });
  EXPECT_EQ(dialog.layouts, (std::vector<Rect>{{0, 0, 300, 0}, {0, 0, 300, 200}, {0, 0, 160, 20}}));
}

TEST_F(ResizableDialogTest, ItCantBecomeSmallerThanItFirstWas) {
  Open();
  const Rect place = screen.Place();
  screen.Resize(place.Width() - 1, place.Height() - 20);
  EXPECT_EQ(screen.Place().Width(), place.Width());
  EXPECT_EQ(screen.Place().Height(), place.Height());
  Grow(50, 50);
  screen.Resize(1, 1);
  EXPECT_EQ(screen.Place().Width(), place.Width());
  EXPECT_EQ(screen.Place().Height(), place.Height());
}

TEST_F(ResizableDialogTest, AGreatestSizeOfZeroIsNoLimit) {
  Open([&] {
    dialog.maxTrackHeight = dialog.minTrackHeight;
    EXPECT_EQ(dialog.maxTrackWidth, 0);
  });
  const Rect place = screen.Place();
  Grow(500, 40);
  EXPECT_EQ(screen.Place().Width(), place.Width() + 500);
  EXPECT_EQ(screen.Place().Height(), place.Height());
  screen.Close();
  Open([&] { dialog.maxTrackWidth = dialog.minTrackWidth + 10; });
  Grow(500, 0);
  EXPECT_EQ(screen.Place().Width(), place.Width() + 10);
}

TEST_F(ResizableDialogTest, ALimitThatIsZeroLeavesTheSystemsOwn) {
  Open();
  platform::MinMaxInfo info{1, 2, 3, 4};
  dialog.maxTrackHeight = 500;
  dialog.OnGetMinMaxInfo(&info);
  EXPECT_EQ(info.minTrackWidth, dialog.minTrackWidth);
  EXPECT_EQ(info.minTrackHeight, dialog.minTrackHeight);
  EXPECT_EQ(info.maxTrackWidth, 3);
  EXPECT_EQ(info.maxTrackHeight, 500);
  dialog.maxTrackWidth = 600;
  dialog.maxTrackHeight = 0;
  info.maxTrackHeight = 4;
  dialog.OnGetMinMaxInfo(&info);
  EXPECT_EQ(info.maxTrackWidth, 600);
  EXPECT_EQ(info.maxTrackHeight, 4);
}

// ---- Pages

TEST_F(ResizableDialogTest, MakingPagesDropsTheOldOnesAndTheFirstIsCurrent) {
  Open([&] {
    dialog.AddNode(0, kFirst, 0);
    dialog.CreatePages(3);
    EXPECT_EQ(dialog.pages.count, 3);
    EXPECT_EQ(dialog.currentPage, dialog.pages.At(0)->value);
    EXPECT_EQ(dialog.currentPage->count, 0);
    dialog.SelectPage(2);
    dialog.CreatePages(0);
    EXPECT_EQ(dialog.pages.count, 1);
    EXPECT_EQ(dialog.currentPageIndex, 0);
  });
}

TEST_F(ResizableDialogTest, WhatStandsBelowAnotherControlIsSeenOnItsPageAlone) {
  Open([&] {
    dialog.CreatePages(2);
    dialog.AddNode(0, kFirst, 0);
    dialog.AddChildNode(0, kFirst, kSecond, 0);
    dialog.SelectPage(1);
  });
  EXPECT_FALSE(screen.Visible(kSecond));
  Do([&] { dialog.SelectPage(0); });
  EXPECT_TRUE(screen.Visible(kSecond));
}

class PagesTest : public ResizableDialogTest {
 protected:
  // kThird in both pages, kFirst in page 0, kSecond in page 1.
  void SetUp() override {
    Open([&] {
      dialog.CreatePages(2);
      dialog.AddNode(0, kThird, kGrowAcross);
      dialog.AddNode(0, kFirst, kMoveAcross);
      dialog.AddNode(1, kThird, kGrowAcross);
      dialog.AddNode(1, kSecond, kMoveDown);
      dialog.SelectPage(0);
      dialog.MeasurePages();
    });
  }
};

TEST_F(PagesTest, OnlyTheCurrentPagesControlsAreSeen) {
  EXPECT_TRUE(screen.Visible(kFirst));
  EXPECT_FALSE(screen.Visible(kSecond));
  EXPECT_TRUE(screen.Visible(kThird));
  Do([&] { EXPECT_TRUE(dialog.SelectPage(1)); });
  EXPECT_FALSE(screen.Visible(kFirst));
  EXPECT_TRUE(screen.Visible(kSecond));
  EXPECT_TRUE(screen.Visible(kThird));
  EXPECT_EQ(dialog.currentPageIndex, 1);
  EXPECT_EQ(dialog.currentPage, dialog.pages.At(1)->value);
}

TEST_F(PagesTest, AnIndexBehindTheLastPageIsRefused) {
  Do([&] {
    EXPECT_FALSE(dialog.SelectPage(2));
    EXPECT_FALSE(dialog.SelectPage(0xFFFF));
  });
  EXPECT_EQ(dialog.currentPageIndex, 0);
  EXPECT_TRUE(screen.Visible(kFirst));
}

TEST_F(PagesTest, PagesThatArentSeenAreKeptUpToDate) {
  const Rect first = screen.ControlPlace(kFirst);
  const Rect second = screen.ControlPlace(kSecond);
  Grow(40, 30);
  EXPECT_FALSE(screen.Visible(kSecond));
  Do([&] { dialog.SelectPage(1); });
  EXPECT_EQ(screen.ControlPlace(kFirst), Moved(first, 40, 0, 40, 0));
  EXPECT_EQ(screen.ControlPlace(kSecond), Moved(second, 0, 30, 0, 30));
}

TEST_F(PagesTest, AControlOfTwoPagesEndsWhereTheCurrentOnePutsIt) {
  Do([&] { dialog.AddNode(1, kFirst, kMoveDown); });
  const Rect first = screen.ControlPlace(kFirst);
  Grow(40, 30);
  EXPECT_EQ(screen.ControlPlace(kFirst), Moved(first, 40, 0, 40, 0));
  EXPECT_TRUE(screen.Visible(kFirst));
  Do([&] { dialog.SelectPage(1); });
  Grow(40, 30);
  EXPECT_EQ(screen.ControlPlace(kFirst), Moved(first, 0, 60, 0, 60));
  EXPECT_TRUE(screen.Visible(kFirst));
}

TEST_F(PagesTest, AControlOfTwoPagesIsntHiddenOnTheWayFromOneToTheOther) {
  sim.LogCalls(true);
  Do([&] { dialog.SelectPage(1); });
  EXPECT_EQ(CallsOf(sim, {"ShowControl"}),
            (Strings{"ShowControl 2001 0", "ShowControl 2003 4", "ShowControl 2002 4"}));
  sim.ClearCalls();
  Grow(40, 30);
  EXPECT_EQ(CallsOf(sim, {"ShowControl"}),
            (Strings{"ShowControl 2001 0", "ShowControl 2003 4", "ShowControl 2002 4"}));
}

TEST_F(PagesTest, AHiddenNodeStaysHiddenOnItsPageAlone) {
  Do([&] {
    EXPECT_TRUE(dialog.HideNode(0, kThird));
    dialog.ApplyCurrentPage();
  });
  EXPECT_FALSE(screen.Visible(kThird));
  Grow(40, 30);
  EXPECT_FALSE(screen.Visible(kThird));
  Do([&] { dialog.SelectPage(1); });
  EXPECT_TRUE(screen.Visible(kThird));
  Do([&] { dialog.SelectPage(0); });
  EXPECT_FALSE(screen.Visible(kThird));
}

TEST_F(PagesTest, ANodeOfTheFlagForItIsNeverShown) {
  Do([&] {
    dialog.AddNode(0, kBox, kNeverShown);
    dialog.ApplyCurrentPage();
  });
  EXPECT_FALSE(screen.Visible(kBox));
}

TEST_F(PagesTest, ACollapsedNodeIsHidden) {
  Do([&] {
    dialog.currentPage->Find(kFirst)->state |= layout_state::kCollapsed;
    dialog.ApplyCurrentPage();
  });
  EXPECT_FALSE(screen.Visible(kFirst));
}

// ---- The size grip

TEST_F(ResizableDialogTest, TheGripIsDrawnInTheLowerRightCorner) {
  Open([&] { dialog.MeasurePages(); });
  Grow(40, 30);
  const Rect inside = screen.Inside();
  const auto text = [](const Rect& rect) {
    return std::to_string(rect.left) + ',' + std::to_string(rect.top) + ',' +
           std::to_string(rect.right) + ',' + std::to_string(rect.bottom);
  };
  EXPECT_EQ(screen.Paint(), Drawing{"grip " + text({inside.right - dialog.gripWidth,
                                                    inside.bottom - dialog.gripHeight, inside.right,
                                                    inside.bottom})});
}

TEST_F(ResizableDialogTest, TheGripIsHitInsideItsRectangleAlone) {
  Open([&] { dialog.MeasurePages(); });
  Grow(40, 30);
  screen.MoveTo(123, 45);
  const Rect grip = dialog.gripRect;
  EXPECT_EQ(screen.HitTest(grip.left, grip.top), HTBOTTOMRIGHT);
  EXPECT_EQ(screen.HitTest(grip.right - 1, grip.bottom - 1), HTBOTTOMRIGHT);
  EXPECT_EQ(screen.HitTest(grip.left - 1, grip.top), HTCLIENT);
  EXPECT_EQ(screen.HitTest(grip.left, grip.top - 1), HTCLIENT);
  const platform::Point corner = dialog.windowOrigin;
  EXPECT_EQ(dialog.OnNcHitTest({corner.x + grip.right, corner.y + grip.top}), HTCLIENT);
  EXPECT_EQ(dialog.OnNcHitTest({corner.x + grip.left, corner.y + grip.bottom}), HTCLIENT);
}

TEST_F(ResizableDialogTest, BeforeTheWindowFirstMovesTheGripCountsFromTheFramesCorner) {
  Open([&] {
    Rect window;
    ASSERT_TRUE(platform::desktop().GetWindowRect(dialog.window, &window));
    const Rect grip = dialog.gripRect;
    EXPECT_EQ(dialog.OnNcHitTest({window.left + grip.left, window.top + grip.top}), HTBOTTOMRIGHT);
    EXPECT_EQ(dialog.OnNcHitTest({window.left + grip.left - 1, window.top + grip.top}), HTCLIENT);
  });
}

TEST_F(ResizableDialogTest, AMaximisedWindowHasNoGrip) {
  Open([&] { dialog.MeasurePages(); });
  screen.Maximise();
  const Rect inside = screen.Inside();
  EXPECT_EQ(screen.Paint(), Drawing{});
  EXPECT_EQ(screen.HitTest(inside.right - 1, inside.bottom - 1), HTCLIENT);
  screen.Restore();
  EXPECT_EQ(screen.Paint().size(), 1u);
  EXPECT_EQ(screen.HitTest(dialog.gripRect.left, dialog.gripRect.top), HTBOTTOMRIGHT);
}

TEST_F(ResizableDialogTest, AWindowThatShowsNoGripHonoursNone) {
  Open([&] { dialog.showGrip = false; });
  EXPECT_EQ(screen.Paint(), Drawing{});
  EXPECT_EQ(screen.HitTest(dialog.gripRect.left, dialog.gripRect.top), HTCLIENT);
}

TEST_F(ResizableDialogTest, ALayoutDrawsTheGripsOldAndNewPlaceAnewAndPaintsAtOnce) {
  Open([&] { dialog.MeasurePages(); });
  sim.LogCalls(true);
  Grow(40, 30);
  Strings calls = CallsOf(sim, {"InvalidateRect", "UpdateWindow", "BeginDeferWindowPos"});
  for (std::string& call : calls) call.resize(std::min(call.find(' '), call.size()));
  EXPECT_EQ(calls,
            (Strings{"InvalidateRect", "BeginDeferWindowPos", "InvalidateRect", "UpdateWindow"}));
}

// ---- The place on the screen. The window here is smaller than the least place that is restored.

constexpr platform::ControlTemplate kSmallControls[] = {
    {ControlKind::Button, kFirst, "First", 4, 2, 16, 4},
};
constexpr platform::DialogTemplate kSmallResource = {
    21,
    "Small",
    30,
    6,
    platform::kWindowResizable | platform::kWindowMinimiseBox | platform::kWindowMaximiseBox,
    kSmallControls};

constexpr char kKey[] = "Software\\Test";
constexpr char kSubkey[] = "Window";
constexpr char kStored[] = "HKCU\\Software\\Test\\Window";

class PlacementTest : public ::testing::Test {
 protected:
  void TearDown() override { screen.Leave(); }

  void Store(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    registry.PutDword(kStored, "left", static_cast<std::uint32_t>(left));
    registry.PutDword(kStored, "top", static_cast<std::uint32_t>(top));
    registry.PutDword(kStored, "right", static_cast<std::uint32_t>(right));
    registry.PutDword(kStored, "bottom", static_cast<std::uint32_t>(bottom));
  }
  void Open() {
    dialog.prepare = [&] {
      dialog.MeasurePages();
      dialog.RestorePlacement(kKey, kSubkey);
    };
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }
  // Where a window stored there comes up.
  Rect Restored(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    Store(left, top, right, bottom);
    Open();
    const Rect place = screen.Place();
    screen.Close();
    return place;
  }
  std::vector<std::int64_t> Saved() {
    std::vector<std::int64_t> edges;
    for (const char* name : {"left", "top", "right", "bottom"}) {
      const auto number = registry.Number(kStored, name);
      edges.push_back(number ? std::int64_t{*number} : -1);
    }
    return edges;
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  VirtualRegistry& registry = sim.Registry();
  TestDialog dialog{kSmallResource};
  // In the middle of the display, which is 800 by 800.
  static constexpr Rect kPut{377, 395, 422, 405};
};

TEST_F(PlacementTest, AWindowComesUpWhereItWas) {
  EXPECT_EQ(Restored(30, 40, 330, 240), (Rect{30, 40, 330, 240}));
}

TEST_F(PlacementTest, WithoutAStoredPlaceItStaysWhereItWasPut) {
  Open();
  EXPECT_EQ(screen.Place(), kPut);
}

TEST_F(PlacementTest, AMissingEdgeOrOneOfAnotherKindLeavesItWhereItWasPut) {
  for (const char* name : {"left", "top", "right", "bottom"}) {
    registry.RemoveKey(kStored);
    Store(30, 40, 330, 240);
    registry.PutString(kStored, name, "30");
    Open();
    EXPECT_EQ(screen.Place(), kPut) << name;
    screen.Close();
  }
}

TEST_F(PlacementTest, EdgesAreReadInTheirOrderAndTheFirstMissEndsIt) {
  registry.PutDword(kStored, "left", 30);
  registry.PutDword(kStored, "right", 330);
  registry.PutDword(kStored, "bottom", 240);
  sim.LogCalls(true);
  Open();
  Strings read;
  for (const std::string& call : CallsOf(sim, {"RegQueryValueExA"}))
    read.push_back(call.substr(call.rfind(' ') + 1));
  EXPECT_EQ(read, (Strings{"left", "top"}));
}

TEST_F(PlacementTest, ARightEdgeThatIsntGreaterThanTheLeftMakesItAHundredWide) {
  EXPECT_EQ(Restored(30, 40, 30, 240), (Rect{30, 40, 130, 240}));
  EXPECT_EQ(Restored(30, 40, 10, 240), (Rect{30, 40, 130, 240}));
  EXPECT_EQ(Restored(30, 40, 111, 240), (Rect{30, 40, 111, 240}));
}

TEST_F(PlacementTest, ABottomEdgeThatIsntGreaterThanTheTopMakesItFiftyHigh) {
  EXPECT_EQ(Restored(30, 40, 330, 40), (Rect{30, 40, 330, 90}));
  EXPECT_EQ(Restored(30, 40, 330, 0), (Rect{30, 40, 330, 90}));
}

TEST_F(PlacementTest, BeyondTheRightEdgeItComesBackToTheLeftWithItsWidth) {
  EXPECT_EQ(Restored(5000, 40, 5300, 240), (Rect{0, 40, 300, 240}));
  EXPECT_EQ(Restored(5000, 40, 7000, 240), (Rect{0, 40, 1024, 240}));
  EXPECT_EQ(Restored(5000, 40, 5000, 240), (Rect{0, 40, 100, 240}));
}

TEST_F(PlacementTest, BelowTheBottomEdgeItComesBackToTheTopWithItsHeight) {
  EXPECT_EQ(Restored(30, 5000, 330, 5200), (Rect{30, 0, 330, 200}));
  EXPECT_EQ(Restored(30, 5000, 330, 7000), (Rect{30, 0, 330, 768}));
}

TEST_F(PlacementTest, ADesktopThatBeginsLeftOfZeroIsAsWideAsBothSides) {
  dynamic_cast<platform::simulation::RecordedDesktop&>(platform::desktop()).desktop = {-800, -600,
                                                                                       1024, 768};
  EXPECT_EQ(Restored(5000, 5000, 9000, 9000), (Rect{0, 0, 1824, 1368}));
}

TEST_F(PlacementTest, TenPixelsOfTheDesktopAreNotEnough) {
  EXPECT_EQ(Restored(1013, 757, 1313, 957), (Rect{1013, 757, 1313, 957}));
  EXPECT_EQ(Restored(1014, 757, 1314, 957), (Rect{0, 757, 300, 957}));
  EXPECT_EQ(Restored(1013, 758, 1313, 958), (Rect{1013, 0, 1313, 200}));
}

TEST_F(PlacementTest, TheLeftAndTopEdgesOfTheDesktopAreNoLimit) {
  EXPECT_EQ(Restored(-50, -20, 250, 180), (Rect{-50, -20, 250, 180}));
}

TEST_F(PlacementTest, WithoutADesktopTheStoredPlaceCountsAsItIs) {
  sim.FailAlways("GetDesktopRect");
  EXPECT_EQ(Restored(5000, 40, 5300, 240), (Rect{5000, 40, 5300, 240}));
}

TEST_F(PlacementTest, NoNumbersAreTooWild) {
  constexpr std::int32_t kMost = INT32_MAX;
  EXPECT_EQ(Restored(kMost, kMost, -kMost, -kMost), (Rect{0, 0, 100, 50}));
}

TEST_F(PlacementTest, ARestoredWindowIsLaidOutAtOnce) {
  Store(30, 40, 330, 240);
  dialog.prepare = [&] {
    dialog.AddNode(0, kFirst, kMoveAcross);
    dialog.MeasurePages();
    Rect old;
    Rect before;
    ASSERT_TRUE(platform::desktop().GetClientRect(dialog.window, &old));
    ASSERT_TRUE(platform::controls().GetControlRect(dialog.window, kFirst, &before));
    dialog.RestorePlacement(kKey, kSubkey);
    Rect client;
    Rect after;
    ASSERT_TRUE(platform::desktop().GetClientRect(dialog.window, &client));
    ASSERT_TRUE(platform::controls().GetControlRect(dialog.window, kFirst, &after));
    EXPECT_EQ(after.left - before.left, client.right - old.right);
    ASSERT_FALSE(dialog.layouts.empty());
    EXPECT_EQ(dialog.layouts.back(), client);
  };
  screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
}

TEST_F(PlacementTest, AWindowThatKeepsItsSizeIsLaidOutTooAndOneThatStaysIsNot) {
  Open();
  const Rect place = screen.Place();
  screen.Close();
  dialog.layouts.clear();
  dialog.prepare = [&] {
    dialog.MeasurePages();
    dialog.RestorePlacement("Software\\Other", kSubkey);
    EXPECT_TRUE(dialog.layouts.empty());
    Store(30, 40, 30 + place.Width(), 40 + place.Height());
    dialog.RestorePlacement(kKey, kSubkey);
    Rect client;
    ASSERT_TRUE(platform::desktop().GetClientRect(dialog.window, &client));
    // By the notice of its size, and by the restoring itself.
    EXPECT_EQ(dialog.layouts, (std::vector<Rect>{client, client}));
  };
  screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
}

TEST_F(PlacementTest, TheEndStoresTheFourEdgesInTheirOrder) {
  Open();
  screen.MoveTo(70, 80);
  screen.Resize(300, 200);
  const Rect place = screen.Place();
  screen.Close();
  EXPECT_EQ(Saved(), (std::vector<std::int64_t>{place.left, place.top, place.right, place.bottom}));
  EXPECT_EQ(registry.ValueNames(kStored), (Strings{"left", "top", "right", "bottom"}));
}

TEST_F(PlacementTest, ANegativeEdgeIsStoredAsZero) {
  Restored(-50, -20, 250, 180);
  EXPECT_EQ(Saved(), (std::vector<std::int64_t>{0, 0, 250, 180}));
}

TEST_F(PlacementTest, AWindowThatEndsMinimisedComesUpAtTheCornerInTheLeastSizeThatItCanHave) {
  Open();
  screen.MoveTo(70, 80);
  screen.Minimise();
  screen.Close();
  EXPECT_EQ(Saved(), (std::vector<std::int64_t>{0, 0, 0, 0}));
  Open();
  EXPECT_EQ(screen.Place(), (Rect{0, 0, 100, 50}));
  screen.Close();
  TestDialog wider;
  wider.prepare = [&] { wider.RestorePlacement(kKey, kSubkey); };
  screen.Start([&] { return wider.DoModal(platform::kNoWindow); });
  EXPECT_EQ(screen.Place(), (Rect{0, 0, 100, wider.minTrackHeight}));
  EXPECT_GT(wider.minTrackHeight, 50);
  screen.Close();
}

TEST_F(PlacementTest, AMaximisedWindowsPlaceIsStoredAsItStands) {
  Open();
  screen.Maximise();
  const Rect place = screen.Place();
  screen.Close();
  EXPECT_EQ(Saved(), (std::vector<std::int64_t>{place.left, place.top, place.right, place.bottom}));
}

TEST_F(PlacementTest, WithoutBothNamesNothingIsStored) {
  const std::pair<const char*, const char*> names[] = {{"", kSubkey}, {kKey, ""}, {"", ""}};
  for (const auto& [key, subkey] : names) {
    dialog.prepare = [&, key = key, subkey = subkey] { dialog.RestorePlacement(key, subkey); };
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
    screen.Close();
  }
  EXPECT_FALSE(registry.HasKey("HKCU\\Software"));
  EXPECT_FALSE(registry.HasKey("HKCU\\Window"));
}

TEST_F(PlacementTest, AKeyThatCantBeWrittenDoesNoHarm) {
  registry.Protect("HKCU");
  Open();
  screen.Close();
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_TRUE(screen.Boxes().empty());
}

}  // namespace
}  // namespace kelvaro
