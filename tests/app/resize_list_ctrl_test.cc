#include "app/layout/resize_list_ctrl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/layout/dialog.h"
#include "tests/app/calls.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"

namespace kelvaro {
namespace {

using platform::ControlKind;
using platform::Notice;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;
using platform::simulation::VirtualRegistry;
using Numbers = std::vector<std::int32_t>;

constexpr std::uint32_t kDo = 2000;  // runs what the test wants done on the window's own thread
constexpr std::uint32_t kList = 2001;

constexpr platform::ControlTemplate kControls[] = {
    {ControlKind::Button, kDo, "Do", 4, 4, 20, 12},
    {ControlKind::ListView, kList, "", 4, 20, 300, 100},
};
constexpr platform::DialogTemplate kResource = {22, "List", 312, 130, 0, kControls};

constexpr char kKey[] = "Software\\Test\\List";
constexpr char kStored[] = "HKCU\\Software\\Test\\List";

class ListDialog : public Dialog {
 public:
  ListDialog() : Dialog(kResource) {}

  std::function<void()> prepare;
  std::function<void()> task;
  ResizeListCtrl list{4};
  Numbers messages;  // that the list posted to itself
  Numbers changed;   // columns that got a width

 protected:
  void OnInit() override { prepare(); }
  void OnNotice(std::uint32_t id, Notice notice, std::int32_t value) override {
    if (id == kDo && notice == Notice::Clicked) {
      if (const auto now = std::exchange(task, nullptr)) now();
    } else if (id == kList) {
      if (notice == Notice::ControlMessage) messages.push_back(value);
      if (notice == Notice::HeaderItemChanged) changed.push_back(value);
      list.OnNotice(notice, value);
    } else {
      Dialog::OnNotice(id, notice, value);
    }
  }
  void OnDestroy() override { list.SaveColumns(); }
};

class ResizeListCtrlTest : public ::testing::Test {
 protected:
  void TearDown() override { screen.Leave(); }

  // A list of 300 pixels with columns of 100, 50 and 150, which have been loaded unless `load` is
  // false.
  void Open(bool load = true) {
    OpenWith([this, load] {
      AddColumns({100, 50, 150});
      list.registryKey = kKey;
      if (load) list.LoadColumns();
    });
  }
  void OpenWith(std::function<void()> prepare) {
    dialog.prepare = [this, prepare = std::move(prepare)] {
      list.Attach(dialog.window, kList);
      list.clientWidth = 300;
      prepare();
    };
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }
  // Another list of three columns, with what is stored.
  void OpenFresh(ListDialog& fresh, std::int32_t clientWidth) {
    fresh.prepare = [&fresh, clientWidth] {
      fresh.list.Attach(fresh.window, kList);
      fresh.list.clientWidth = clientWidth;
      for (int i = 0; i < 3; ++i) fresh.list.AddColumn("Column", 50);
      fresh.list.registryKey = kKey;
      fresh.list.LoadColumns();
    };
    screen.Start([&fresh] { return fresh.DoModal(platform::kNoWindow); });
  }
  void AddColumns(const Numbers& widths) {
    for (const std::int32_t width : widths) EXPECT_TRUE(list.AddColumn("Column", width));
  }
  void Do(std::function<void()> task) {
    dialog.task = std::move(task);
    screen.Click(kDo);
  }
  void ChangeWidth(std::int32_t difference) {
    Do([this, difference] { list.ChangeWidth(difference); });
  }
  Numbers Widths() const { return screen.ColumnWidths(kList); }
  Numbers Order() const { return screen.ColumnOrder(kList); }
  void StoreWidths(std::uint32_t first, std::uint32_t second, std::uint32_t third) {
    registry.PutDword(kStored, "Col 0 Width", first);
    registry.PutDword(kStored, "Col 1 Width", second);
    registry.PutDword(kStored, "Col 2 Width", third);
  }
  void StoreOrder(std::uint32_t first, std::uint32_t second, std::uint32_t third) {
    registry.PutDword(kStored, "Col 0 Order", first);
    registry.PutDword(kStored, "Col 1 Order", second);
    registry.PutDword(kStored, "Col 2 Order", third);
  }
  // "Col 0 Width=100" and the like, in order of writing.
  Strings Saved() {
    Strings saved;
    for (const std::string& name : registry.ValueNames(kStored)) {
      saved.push_back(name + '=' + std::to_string(registry.Number(kStored, name).value_or(99999)));
    }
    return saved;
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  VirtualRegistry& registry = sim.Registry();
  ListDialog dialog;
  ResizeListCtrl& list = dialog.list;
};

// ---- Columns

TEST_F(ResizeListCtrlTest, AttachingTakesTheListsInnerWidth) {
  std::int32_t inner = 0;
  OpenWith([&] {
    list.Attach(dialog.window, kList);
    inner = platform::controls().ListGetClientWidth(dialog.window, kList);
  });
  EXPECT_GT(inner, 0);
  EXPECT_EQ(list.clientWidth, inner);
}

TEST_F(ResizeListCtrlTest, NoMoreColumnsAreAddedThanItWasMadeFor) {
  OpenWith([&] {
    AddColumns({10, 20, 30, 40});
    EXPECT_FALSE(list.AddColumn("One too many", 50));
  });
  EXPECT_EQ(Widths(), (Numbers{10, 20, 30, 40}));
}

TEST_F(ResizeListCtrlTest, AColumnThatTheListRefusesIsNone) {
  OpenWith([&] {
    ResizeListCtrl other(4);
    other.Attach(dialog.window, kDo);
    EXPECT_FALSE(other.AddColumn("Column", 50));
    ResizeListCtrl unattached(4);
    EXPECT_FALSE(unattached.AddColumn("Column", 50));
  });
}

TEST_F(ResizeListCtrlTest, NoticesOfItsHeaderPaintAndMessagesAreItsOwnAlone) {
  Open();
  for (const Notice header :
       {Notice::HeaderItemChanging, Notice::HeaderItemChanged, Notice::HeaderDragEnded})
    EXPECT_TRUE(list.OnNotice(header, 0));
  EXPECT_TRUE(list.OnNotice(Notice::Painted, 0));
  EXPECT_TRUE(list.OnNotice(Notice::ControlMessage, 0x8000));
  EXPECT_TRUE(list.OnNotice(Notice::ControlMessage, 0x8001));
  EXPECT_FALSE(list.OnNotice(Notice::DoubleClicked, 0));
  EXPECT_FALSE(list.OnNotice(Notice::KeyDown, 0));
  EXPECT_FALSE(list.OnNotice(Notice::ControlMessage, 0x8002));
}

// ---- Another width of the list

TEST_F(ResizeListCtrlTest, ColumnsKeepTheirSharesOfTheWidth) {
  Open();
  ChangeWidth(300);
  EXPECT_EQ(Widths(), (Numbers{200, 100, 300}));
  EXPECT_EQ(list.clientWidth, 600);
}

TEST_F(ResizeListCtrlTest, SharesAreTruncatedAndTheLastColumnGetsWhatIsLeft) {
  Open();
  ChangeWidth(31);
  EXPECT_EQ(Widths(), (Numbers{110, 55, 166}));  // 110.33, 55.17; 331 - 165
  ChangeWidth(-32);
  EXPECT_EQ(Widths(), (Numbers{99, 49, 151}));  // 99.67, 49.83; 299 - 148
  ChangeWidth(1);
  EXPECT_EQ(Widths(), (Numbers{100, 50, 150}));  // the shares are still those of the start
}

TEST_F(ResizeListCtrlTest, TheRestGoesToTheColumnOfTheHighestNumberWhereverItStands) {
  StoreWidths(100, 50, 150);
  StoreOrder(2, 0, 1);
  Open();
  ASSERT_EQ(Order(), (Numbers{2, 0, 1}));
  ChangeWidth(31);
  EXPECT_EQ(Widths(), (Numbers{110, 55, 166}));
}

TEST_F(ResizeListCtrlTest, ADifferenceOfZeroChangesNothing) {
  OpenWith([&] {
    AddColumns({10, 20, 30});
    list.ChangeWidth(0);
  });
  EXPECT_EQ(Widths(), (Numbers{10, 20, 30}));
}

TEST_F(ResizeListCtrlTest, WithoutColumnsOrAListTheWidthStaysUnknown) {
  OpenWith([&] { list.ChangeWidth(40); });
  EXPECT_EQ(list.clientWidth, 300);
  ResizeListCtrl unattached(4);
  unattached.ChangeWidth(40);
  EXPECT_EQ(unattached.clientWidth, 0);
}

// ---- Dividers and headers

TEST_F(ResizeListCtrlTest, TheLastColumnTakesUpTheSlackOfADraggedDivider) {
  Open();
  screen.DragDivider(kList, 0, 120);
  EXPECT_EQ(Widths(), (Numbers{120, 50, 130}));
  screen.DragDivider(kList, 1, 20);
  EXPECT_EQ(Widths(), (Numbers{120, 20, 160}));
}

TEST_F(ResizeListCtrlTest, TheLastColumnCantBeDraggedAwayFromTheEdge) {
  Open();
  screen.DragDivider(kList, 2, 40);
  EXPECT_EQ(Widths(), (Numbers{100, 50, 150}));
}

TEST_F(ResizeListCtrlTest, TheLastColumnKeepsEightPixels) {
  Open();
  screen.DragDivider(kList, 0, 242);
  EXPECT_EQ(Widths(), (Numbers{242, 50, 8}));
  screen.DragDivider(kList, 0, 243);
  EXPECT_EQ(Widths(), (Numbers{243, 50, 8}));
}

// The shares are taken before a column changes, so they lag one change behind.
TEST_F(ResizeListCtrlTest, SharesAreThoseBeforeTheLatestChangeOfAColumn) {
  Open();
  screen.DragDivider(kList, 0, 150);
  ASSERT_EQ(Widths(), (Numbers{150, 50, 100}));
  ChangeWidth(300);
  EXPECT_EQ(Widths(), (Numbers{200, 100, 300}));  // of 100, 50, 150
  ChangeWidth(-300);
  screen.DragDivider(kList, 0, 150);
  screen.DragDivider(kList, 1, 60);
  ChangeWidth(300);
  EXPECT_EQ(Widths(), (Numbers{300, 100, 200}));  // of 150, 50, 100
}

TEST_F(ResizeListCtrlTest, SharesAreThoseOfAFilledListEvenIfItWasntBefore) {
  OpenWith([&] { AddColumns({100, 50, 10}); });
  screen.DragDivider(kList, 0, 120);
  ChangeWidth(300);
  EXPECT_EQ(Widths(), (Numbers{200, 100, 300}));  // of 100, 50, 150
}

TEST_F(ResizeListCtrlTest, AnOnlyColumnAlwaysFillsTheWidth) {
  OpenWith([&] {
    AddColumns({40});
    list.registryKey = kKey;
    list.LoadColumns();
  });
  EXPECT_EQ(Widths(), Numbers{300});
  screen.DragDivider(kList, 0, 40);
  EXPECT_EQ(Widths(), Numbers{300});
  ChangeWidth(-100);
  EXPECT_EQ(Widths(), Numbers{200});
  Do([&] { list.clientWidth = 5; });
  screen.DragDivider(kList, 0, 40);
  EXPECT_EQ(Widths(), Numbers{8});
}

TEST_F(ResizeListCtrlTest, AfterADragOfAHeaderTheColumnThatStandsLastTakesUpTheSlack) {
  Open();
  screen.DragHeader(kList, 0, 2);
  EXPECT_EQ(Order(), (Numbers{1, 2, 0}));
  EXPECT_EQ(dialog.messages, Numbers{0x8000});
  EXPECT_EQ(Widths(), (Numbers{100, 50, 150}));
  screen.DragDivider(kList, 2, 130);
  EXPECT_EQ(Widths(), (Numbers{120, 50, 130}));
}

TEST_F(ResizeListCtrlTest, TheOrderIsReadOnlyBehindTheNoticeOfTheDrag) {
  Open();
  sim.LogCalls(true);
  Do([&] { EXPECT_TRUE(list.OnNotice(Notice::HeaderDragEnded, 0)); });
  EXPECT_EQ(CallsOf(sim, {"PostControlMessage", "ListGetColumnOrder"}),
            (Strings{"PostControlMessage 2001 32768", "ListGetColumnOrder"}));
}

TEST_F(ResizeListCtrlTest, BeforeTheFirstPaintHeaderNoticesDontCount) {
  OpenWith([&] {
    AddColumns({100, 50, 100});
    platform::controls().ListSetColumnWidth(dialog.window, kList, 0, 40);
    Numbers widths;
    for (std::int32_t i = 0; i < 3; ++i) {
      widths.push_back(platform::controls().ListGetColumnWidth(dialog.window, kList, i));
    }
    EXPECT_EQ(widths, (Numbers{40, 50, 100}));
  });
}

TEST_F(ResizeListCtrlTest, ADraggedDividerWhoseOrderCantBeReadCountsByNumber) {
  sim.FailAlways("ListGetColumnOrder");
  Open(false);
  screen.DragDivider(kList, 0, 120);
  EXPECT_EQ(Widths(), (Numbers{120, 50, 130}));
}

// ---- Loading

TEST_F(ResizeListCtrlTest, StoredWidthsAndOrderComeBack) {
  StoreWidths(40, 160, 100);
  StoreOrder(2, 0, 1);
  Open();
  EXPECT_EQ(Widths(), (Numbers{40, 160, 100}));
  EXPECT_EQ(Order(), (Numbers{2, 0, 1}));
  ChangeWidth(30);
  EXPECT_EQ(Widths(), (Numbers{44, 176, 110}));
}

TEST_F(ResizeListCtrlTest, StoredWidthsThatDontFillTheListLeaveTheRestToTheLastColumnByOrder) {
  StoreWidths(40, 60, 100);
  StoreOrder(2, 0, 1);
  Open();
  EXPECT_EQ(Widths(), (Numbers{40, 160, 100}));
}

TEST_F(ResizeListCtrlTest, WithAMissingOrderTheWidthsLoadAndTheOrderStays) {
  for (const char* missing : {"Col 0 Order", "Col 1 Order", "Col 2 Order"}) {
    registry.RemoveKey(kStored);
    StoreWidths(40, 160, 100);
    StoreOrder(2, 0, 1);
    registry.PutString(kStored, missing, "0");
    ListDialog fresh;
    OpenFresh(fresh, 310);
    EXPECT_EQ(Widths(), (Numbers{40, 160, 110})) << missing;  // column 2 stands last
    EXPECT_EQ(Order(), (Numbers{0, 1, 2})) << missing;
    screen.Close();
  }
  // Even if the others would make an order with it.
  registry.RemoveKey(kStored);
  StoreWidths(40, 160, 100);
  registry.PutDword(kStored, "Col 1 Order", 2);
  registry.PutDword(kStored, "Col 2 Order", 1);
  Open();
  EXPECT_EQ(Order(), (Numbers{0, 1, 2}));
}

TEST_F(ResizeListCtrlTest, WithAMissingWidthTheOtherWidthsLoadAndTheOrderStays) {
  StoreOrder(2, 0, 1);
  registry.PutDword(kStored, "Col 1 Width", 80);
  Open();
  EXPECT_EQ(Widths(), (Numbers{100, 80, 120}));
  EXPECT_EQ(Order(), (Numbers{0, 1, 2}));
}

TEST_F(ResizeListCtrlTest, AnOrderThatTheListRefusesLeavesTheOneThatIsThere) {
  StoreWidths(40, 160, 100);
  StoreOrder(2, 2, 999);
  Open();
  EXPECT_EQ(Order(), (Numbers{0, 1, 2}));
  screen.DragDivider(kList, 0, 50);
  EXPECT_EQ(Widths(), (Numbers{50, 160, 90}));
}

TEST_F(ResizeListCtrlTest, WithNothingStoredTheLastColumnIsFittedAndSharesAreTaken) {
  OpenWith([&] {
    AddColumns({100, 50, 10});
    list.registryKey = kKey;
    list.LoadColumns();
  });
  EXPECT_EQ(Widths(), (Numbers{100, 50, 150}));
  ChangeWidth(300);
  EXPECT_EQ(Widths(), (Numbers{200, 100, 300}));
}

TEST_F(ResizeListCtrlTest, ColumnsThatFillTheListAlreadyAreLeftAlone) {
  Open();
  EXPECT_EQ(dialog.changed, Numbers{});
  sim.LogCalls(true);
  Do([&] { list.LoadColumns(); });
  EXPECT_EQ(CountCalls(sim, "ListSetColumnWidth"), 0u);
}

TEST_F(ResizeListCtrlTest, ALoadThatTheListRefusesTheOrderOfReadsTheOneThatIsThere) {
  Open();
  screen.DragHeader(kList, 0, 2);
  StoreWidths(40, 160, 90);
  StoreOrder(2, 2, 999);
  Do([&] { list.LoadColumns(); });
  EXPECT_EQ(Order(), (Numbers{1, 2, 0}));
  EXPECT_EQ(Widths(), (Numbers{50, 160, 90}));
}

TEST_F(ResizeListCtrlTest, ColumnsWithoutAnyWidthHaveNoShares) {
  OpenWith([&] {
    AddColumns({0, 0});
    list.clientWidth = 0;
    list.registryKey = kKey;
    list.LoadColumns();
  });
  ChangeWidth(90);
  EXPECT_EQ(Widths(), (Numbers{0, 90}));
}

TEST_F(ResizeListCtrlTest, WithoutAKeyNothingIsLoaded) {
  StoreWidths(40, 160, 100);
  OpenWith([&] {
    AddColumns({100, 50, 10});
    list.LoadColumns();
  });
  EXPECT_EQ(Widths(), (Numbers{100, 50, 10}));
}

// ---- The first paint

TEST_F(ResizeListCtrlTest, AListThatWasntLoadedBeforeLoadsBehindItsFirstPaintAndIsDrawnAnew) {
  StoreWidths(40, 60, 100);
  StoreOrder(2, 0, 1);
  Open(false);
  EXPECT_EQ(dialog.messages, Numbers{0x8001});
  EXPECT_EQ(Widths(), (Numbers{40, 160, 100}));
  EXPECT_EQ(Order(), (Numbers{2, 0, 1}));
  EXPECT_EQ(screen.Redraws(kList), 1u);
}

TEST_F(ResizeListCtrlTest, ALoadedListPostsNothingAtItsFirstPaintAndNoListPostsAtALaterOne) {
  Open();
  EXPECT_EQ(dialog.messages, Numbers{});
  EXPECT_EQ(screen.Redraws(kList), 0u);
  Do([&] { EXPECT_TRUE(list.OnNotice(Notice::Painted, 0)); });
  EXPECT_EQ(dialog.messages, Numbers{});
}

// ---- Saving

TEST_F(ResizeListCtrlTest, TheEndStoresAllWidthsAndThenAllOrders) {
  Open();
  screen.DragDivider(kList, 0, 120);
  screen.DragHeader(kList, 0, 2);
  screen.Close();
  EXPECT_EQ(Saved(), (Strings{"Col 0 Width=120", "Col 1 Width=50", "Col 2 Width=130",
                              "Col 0 Order=1", "Col 1 Order=2", "Col 2 Order=0"}));
}

TEST_F(ResizeListCtrlTest, AnOrderThatWasNeverReadIsReadForSaving) {
  OpenWith([&] {
    AddColumns({100, 50, 150});
    platform::controls().ListSetColumnOrder(dialog.window, kList, {1, 0, 2});
  });
  list.registryKey = kKey;
  screen.Close();
  EXPECT_EQ(Saved(), (Strings{"Col 0 Width=100", "Col 1 Width=50", "Col 2 Width=150",
                              "Col 0 Order=1", "Col 1 Order=0", "Col 2 Order=2"}));
}

TEST_F(ResizeListCtrlTest, AnOrderThatIsKnownIsStoredWithoutAnotherLook) {
  Open();
  screen.DragHeader(kList, 0, 2);
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(CountCalls(sim, "ListGetColumnOrder"), 0u);
  EXPECT_EQ(Saved(), (Strings{"Col 0 Width=100", "Col 1 Width=50", "Col 2 Width=150",
                              "Col 0 Order=1", "Col 1 Order=2", "Col 2 Order=0"}));
}

TEST_F(ResizeListCtrlTest, WhenTheOrderCantBeReadOnlyWidthsAreStored) {
  OpenWith([&] { AddColumns({100, 50, 150}); });
  list.registryKey = kKey;
  sim.FailAlways("ListGetColumnOrder");
  screen.Close();
  EXPECT_EQ(Saved(), (Strings{"Col 0 Width=100", "Col 1 Width=50", "Col 2 Width=150"}));
}

TEST_F(ResizeListCtrlTest, WithoutAKeyOrColumnsNothingIsStored) {
  OpenWith([&] { AddColumns({100}); });
  screen.Close();
  ListDialog empty;
  empty.prepare = [&] {
    empty.list.Attach(empty.window, kList);
    empty.list.registryKey = kKey;
  };
  screen.Start([&] { return empty.DoModal(platform::kNoWindow); });
  screen.Close();
  EXPECT_FALSE(registry.HasKey("HKCU\\Software"));
}

TEST_F(ResizeListCtrlTest, AKeyThatCantBeWrittenDoesNoHarm) {
  Open();
  registry.Protect("HKCU");
  screen.Close();
  EXPECT_FALSE(screen.Running());
  EXPECT_FALSE(registry.HasKey("HKCU\\Software"));
}

TEST_F(ResizeListCtrlTest, WhatWasStoredComesBackAtTheNextStart) {
  Open();
  screen.DragDivider(kList, 0, 120);
  screen.DragHeader(kList, 0, 2);
  screen.DragDivider(kList, 1, 80);
  const Numbers widths = Widths();
  screen.Close();
  ListDialog next;
  OpenFresh(next, 300);
  EXPECT_EQ(Widths(), widths);
  EXPECT_EQ(Order(), (Numbers{1, 2, 0}));
  screen.Close();
}

}  // namespace
}  // namespace kelvaro
