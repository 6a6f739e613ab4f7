#include "engine/input_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/engine/axes.h"
#include "tests/engine/item_text.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

std::string TextOf(const TriggerItem& item, bool detailed) {
  ByteString text;
  InputText(item, &text, detailed);
  return Bytes(text);
}

std::string ButtonsAfter(const char* before, std::uint64_t mask) {
  ByteString text(before);
  ButtonsText(mask, &text);
  return Bytes(text);
}

TEST(InputName, EachKindHasItsName) {
  const struct {
    std::uint16_t kind;
    const char* name;
  } rows[] = {
      {0, "Axis_X"},  {1, "Axis_Y"},  {2, "Axis_Z"},  {3, "Axis_RX"}, {4, "Axis_RY"},
      {5, "Axis_RZ"}, {6, "SliderA"}, {7, "SliderB"}, {8, "POV"},     {9, "POV"},
      {10, ""},       {11, ""},       {12, ""},       {65535, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(Bytes(InputName(row.kind)), row.name) << row.kind;
}

TEST(ButtonsText, AnEmptyMaskAppendsNothing) {
  EXPECT_EQ(ButtonsAfter("", 0), "");
  EXPECT_EQ(ButtonsAfter("kept", 0), "kept");
}

TEST(ButtonsText, CountsFromOneInRisingOrder) {
  EXPECT_EQ(ButtonsAfter("", 1), "B1");
  EXPECT_EQ(ButtonsAfter("", 5), "B1+B3");
  EXPECT_EQ(ButtonsAfter("", 0x8000000080000200u), "B10+B32+B64");
}

TEST(ButtonsText, BeginsWithAPlusBehindOtherText) {
  EXPECT_EQ(ButtonsAfter("POV0(up)", 2), "POV0(up)+B2");
  EXPECT_EQ(ButtonsAfter("x", 6), "x+B2+B3");
}

TEST(ButtonsText, NamesAll64Buttons) {
  std::string all = "B1";
  for (int n = 2; n <= 64; ++n) all += "+B" + std::to_string(n);
  EXPECT_EQ(ButtonsAfter("", ~std::uint64_t{0}), all);
}

TEST(InputText, InDetail) {
  const struct {
    TriggerItem item;
    const char* text;
  } rows[] = {
      {{0, 0, 1}, "Axis_X0(neg)"},
      {{0, 0, 2}, "Axis_X0(pos)"},
      {{7, 2, 2}, "SliderB2(pos)"},
      {{6, 3, 1}, "SliderA3(neg)"},
      {{5, 1, 0}, "Axis_RZ1(pos)"},  // whatever isn't 1
      {{5, 1, 3}, "Axis_RZ1(pos)"},
      {{8, 1, PovUp | PovRight}, "POV1(up+right)"},
      {{8, 0, PovUp}, "POV0(up)"},
      {{8, 0, PovRight | PovDown}, "POV0(down+right)"},
      {{8, 0, PovDown | PovLeft}, "POV0(down+left)"},
      {{8, 0, PovLeft | PovUp}, "POV0(up+left)"},
      {{8, 3, 15}, "POV3(up+down+left+right)"},
      {{8, 3, 0}, "POV3()"},
      {{9, 2, 1}, "POV2(neg)"},  // the vertical hat reads like an axis
      {{9, 2, 8}, "POV2(pos)"},
      {{11, 2, 1}, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(TextOf(row.item, true), row.text);
}

TEST(InputText, WithoutDetailAnAxisIsItsNameAndBank) {
  EXPECT_EQ(TextOf({4, 0, 1}, false), "Axis_RY0");
  EXPECT_EQ(TextOf({4, 3, 2}, false), "Axis_RY3");
  EXPECT_EQ(TextOf({9, 3, 15}, false), "POV3");
}

TEST(InputText, HatDirectionsAreTheLowByteAlone) {
  EXPECT_EQ(TextOf({8, 0, 0x0F00 | PovUp}, true), "POV0(up)");
  EXPECT_EQ(TextOf({8, 0, 0x00F0 | PovLeft}, true), "POV0(left)");
}

TEST(InputText, AppendsToWhatIsThereWithoutAPlus) {
  ByteString text("a ");
  InputText({0, 0, 1}, &text, true);
  EXPECT_EQ(Bytes(text), "a Axis_X0(neg)");
}

TEST(InputText, NothingAssignedAppendsNothing) {
  EXPECT_EQ(TextOf({11, 0, 0}, false), "");
  EXPECT_EQ(TextOf({11, 3, 15}, true), "");
}

TEST(InputText, MouseTabHatsShowTheBitsOfTheirOffset) {
  const char* const leftRight[] = {"POV0", "POV1right", "POV2down", "POV3down+right"};
  const char* const upDown[] = {"POV0", "POV1", "POV2", "POV3"};
  for (std::uint16_t hat = 0; hat < 4; ++hat) {
    TriggerItem item{input_kind::kPov, hat, 0};
    AxisFieldOffset(&item);
    EXPECT_EQ(TextOf(item, false), leftRight[hat]);
    item.kind = input_kind::kPovVertical;
    AxisFieldOffset(&item);
    EXPECT_EQ(TextOf(item, false), upDown[hat]);
  }
}

std::string TextOf(std::uint64_t mask, const std::vector<TriggerItem>& items) {
  Trigger trigger;
  trigger.SetButtonMask(mask);
  for (const TriggerItem& item : items) trigger.triggerItems.AddTail(item);
  ByteString text("what was there before");
  TriggerText(trigger, &text);
  return Bytes(text);
}

TEST(TriggerText, ButtonsFirstThenInputsInTheirOrder) {
  EXPECT_EQ(TextOf(0x9, {{8, 0, PovLeft}, {2, 0, 2}}), "B1+B4+POV0(left)+Axis_Z0(pos)");
  EXPECT_EQ(TextOf(0x9, {{2, 0, 2}, {8, 0, PovLeft}}), "B1+B4+Axis_Z0(pos)+POV0(left)");
}

TEST(TriggerText, WithoutButtonsStartsWithItsFirstInput) {
  EXPECT_EQ(TextOf(0, {{8, 0, PovLeft}}), "POV0(left)");
  EXPECT_EQ(TextOf(0, {{0, 0, 1}, {1, 0, 2}}), "Axis_X0(neg)+Axis_Y0(pos)");
}

TEST(TriggerText, OfAnEmptyTriggerIsEmpty) { EXPECT_EQ(TextOf(0, {}), ""); }

TEST(TriggerText, EachHatStartsAnew) {
  EXPECT_EQ(TextOf(0, {{8, 0, PovLeft}, {8, 2, PovDown}}), "POV0(left)+POV2(down)");
}

TEST(TriggerText, AnUnassignedItemLeavesItsPlus) { EXPECT_EQ(TextOf(1, {{11, 0, 0}}), "B1+"); }

// What is held, set straight into a snapshot.
struct Held {
  std::uint64_t buttons = 0;
  std::uint8_t hats[4] = {};
};

DeviceSnapshot SnapshotOf(const Held& held) {
  DeviceSnapshot snapshot;
  snapshot.dispatchButtons = held.buttons;
  for (int hat = 0; hat < 4; ++hat) snapshot.povDirections[hat] = held.hats[hat];
  return snapshot;
}

struct Captured {
  explicit Captured(const DeviceSnapshot& snapshot, std::int32_t axisMax = kAxisMax) {
    ByteString bytes;
    CaptureTrigger(axisMax, snapshot, &bytes, &trigger);
    text = Bytes(bytes);
  }

  std::string text;
  Trigger trigger;
};

TEST(InputText, GroupsTheDigitsOfANumber) { EXPECT_EQ(TextOf({0, 1234, 0}, false), "Axis_X1,234"); }

TEST(CaptureTrigger, OfNothingEmptiesTextAndTrigger) {
  Trigger trigger;
  trigger.activateOnPress = 0;
  trigger.triggerOption = 0;
  trigger.SetButtonMask(7);
  trigger.triggerItems.AddTail({8, 0, PovUp});
  trigger.triggerArmed = 1;
  trigger.triggerSpoiled = 1;
  ByteString text("old");
  CaptureTrigger(kAxisMax, DeviceSnapshot{}, &text, &trigger);
  EXPECT_EQ(Bytes(text), "");
  EXPECT_EQ(trigger.activateOnPress, 1);
  EXPECT_EQ(trigger.triggerOption, 1);
  EXPECT_EQ(trigger.buttonMask, 0u);
  EXPECT_EQ(trigger.buttonCount, 0u);
  EXPECT_EQ(trigger.triggerArmed, 0);
  EXPECT_EQ(trigger.triggerSpoiled, 0);
  EXPECT_EQ(ItemsText(trigger), "");
}

TEST(CaptureTrigger, LeavesTheRestOfAControlAlone) {
  Control control;
  control.description = "kept";
  control.controlId = 9;
  control.triggerDown = 1;
  ByteString text;
  CaptureTrigger(kAxisMax, SnapshotOf({1, {}}), &text, &control);
  EXPECT_EQ(Bytes(control.description), "kept");
  EXPECT_EQ(control.controlId, 9u);
  EXPECT_EQ(control.triggerDown, 1);
}

TEST(CaptureTrigger, TakesTheButtonsThatTheControlsSee) {
  DeviceSnapshot snapshot;
  snapshot.currentButtons = 0xFF;
  snapshot.dispatchButtons = 0x8000000000000005u;
  const Captured captured(snapshot);
  EXPECT_EQ(captured.text, "B1+B3+B64");
  EXPECT_EQ(captured.trigger.buttonMask, 0x8000000000000005u);
  EXPECT_EQ(captured.trigger.buttonCount, 3u);
  EXPECT_EQ(ItemsText(captured.trigger), "");
}

TEST(CaptureTrigger, EveryHatThatIsPushedBecomesAnItem) {
  const DeviceSnapshot snapshot = SnapshotOf({2, {PovLeft, 0, PovUp | PovRight, 0}});
  const Captured captured(snapshot);
  EXPECT_EQ(captured.text, "B2+POV0(left)+POV2(up+right)");
  EXPECT_EQ(ItemsText(captured.trigger), "8 0 1, 8 2 6");
}

TEST(CaptureTrigger, AHatThatWasPushedBeforeIsNoItem) {
  DeviceSnapshot snapshot;
  for (std::uint8_t& directions : snapshot.previousPovDirections) directions = PovUp;
  EXPECT_EQ(Captured(snapshot).text, "");
}

TEST(CaptureTrigger, LaterHatBeginsWithAPlus) {
  EXPECT_EQ(Captured(SnapshotOf({0, {PovLeft, 0, PovDown, 0}})).text, "POV0(left)+POV2(+down)");
}

TEST(CaptureTrigger, PlusesOfSeveralHats) {
  const struct {
    Held held;
    const char* text;
  } rows[] = {
      {{0, {PovUp | PovLeft, 0, 0, 0}}, "POV0(up+left)"},
      {{0, {0, 0, 0, PovDown | PovRight}}, "POV3(down+right)"},
      {{0, {PovUp, PovUp, 0, 0}}, "POV0(up)+POV1(up)"},
      {{0, {PovUp, PovUp | PovRight, 0, 0}}, "POV0(up)+POV1(up+right)"},
      {{0, {PovRight, PovLeft, 0, PovUp | PovLeft}}, "POV0(right)+POV1(+left)+POV3(up+left)"},
      {{0, {PovUp, 0, 0, PovDown | PovLeft}}, "POV0(up)+POV3(+down+left)"},
      {{1, {PovLeft, 0, 0, 0}}, "B1+POV0(left)"},
      {{1, {0, PovDown, PovRight, 0}}, "B1+POV1(down)+POV2(+right)"},
  };
  for (const auto& row : rows) EXPECT_EQ(Captured(SnapshotOf(row.held)).text, row.text);
}

TEST(CaptureTrigger, AxesComeBankByBankAndKindByKind) {
  DeviceSnapshot snapshot;
  snapshot.state.rglFSlider[1] = 20000;  // bank 3
  snapshot.state.lVX = -20000;           // bank 1
  snapshot.state.lAY = 20000;            // bank 2
  snapshot.state.rglSlider[0] = -20000;  // bank 0
  snapshot.state.lZ = 16001;             // bank 0
  snapshot.state.lRx = 16000;            // at rest still
  const Captured captured(snapshot);
  EXPECT_EQ(captured.text, "Axis_Z0(pos)+SliderA0(neg)+Axis_X1(neg)+Axis_Y2(pos)+SliderB3(pos)");
  EXPECT_EQ(ItemsText(captured.trigger), "2 0 2, 6 0 1, 0 1 1, 1 2 2, 7 3 2");
}

TEST(CaptureTrigger, ButtonsThenHatsThenAxes) {
  DeviceSnapshot snapshot = SnapshotOf({9, {0, PovDown, 0, 0}});
  snapshot.state.lX = -32000;
  const Captured captured(snapshot);
  EXPECT_EQ(captured.text, "B1+B4+POV1(down)+Axis_X0(neg)");
  EXPECT_EQ(ItemsText(captured.trigger), "8 1 8, 0 0 1");
  EXPECT_EQ(captured.trigger.buttonCount, 2u);
}

TEST(CaptureTrigger, FollowsTheAxisLimit) {
  DeviceSnapshot snapshot;
  snapshot.state.lX = 51;
  EXPECT_EQ(Captured(snapshot, 100).text, "Axis_X0(pos)");
  EXPECT_EQ(Captured(snapshot, 200).text, "");
}

TEST(CaptureTrigger, GoesOnWhenAnItemFindsNoMemory) {
  const DeviceSnapshot snapshot = SnapshotOf({1, {PovUp, PovLeft, 0, 0}});
  Trigger trigger;
  ByteString text;
  {
    FailingAllocation fault(1);
    CaptureTrigger(kAxisMax, snapshot, &text, &trigger);
    EXPECT_EQ(fault.Failed(), 1u);
  }
  EXPECT_EQ(Bytes(text), "B1+POV0(up)+POV1(+left)");
  EXPECT_EQ(ItemsText(trigger), "8 1 1");
}

}  // namespace
}  // namespace kelvaro
