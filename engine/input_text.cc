#include "engine/input_text.h"

#include <iterator>

namespace kelvaro {
namespace {

constexpr const char* kNames[] = {"Axis_X",  "Axis_Y",  "Axis_Z",  "Axis_RX", "Axis_RY",
                                  "Axis_RZ", "SliderA", "SliderB", "POV",     "POV"};

// The order in which directions are read out, whatever the angle.
constexpr struct {
  std::uint8_t bit;
  const char* word;
} kDirections[] = {{PovUp, "up"}, {PovDown, "down"}, {PovLeft, "left"}, {PovRight, "right"}};

const char* SideText(std::uint16_t side) { return side == AxisNeg ? "neg" : "pos"; }

void AppendNumber(std::uint32_t value, ByteString* text) {
  text->Append(ToDecimal(value, true, 0));
}

// *wordWritten tells whether a word is to be parted from one before it, and is set by each word.
void AppendDirections(std::uint8_t directions, bool* wordWritten, ByteString* text) {
  for (const auto& direction : kDirections) {
    if ((directions & direction.bit) == 0) continue;
    // "up" is never parted: it is the first word wherever it stands.
    if (*wordWritten && direction.bit != PovUp) text->Append("+");
    text->Append(direction.word);
    *wordWritten = true;
  }
}

void AppendPlus(bool needed, ByteString* text) {
  if (needed) text->Append("+");
}

}  // namespace

ByteString InputName(std::uint16_t kind) {
  return kind < std::size(kNames) ? ByteString(kNames[kind]) : ByteString();
}

void ButtonsText(std::uint64_t mask, ByteString* text) {
  for (std::uint32_t n = 0; n < 64; ++n) {
    if ((mask >> n & 1) == 0) continue;
    AppendPlus(!text->IsEmpty(), text);
    text->Append("B");
    AppendNumber(n + 1, text);
  }
}

void InputText(const TriggerItem& item, ByteString* text, bool detailed) {
  if (item.kind == input_kind::kNone) return;
  text->Append(InputName(item.kind));
  AppendNumber(item.index, text);
  if (detailed) text->Append("(");
  if (item.kind == input_kind::kPov) {
    // Also without `detailed`. On the Mouse tab the value is a field offset, so that its bits come
    // out as directions, "POV1right" for one. Kept. Test: MouseTabHatsShowTheBitsOfTheirOffset.
    bool wordWritten = false;
    AppendDirections(static_cast<std::uint8_t>(item.value), &wordWritten, text);
  } else if (detailed) {
    text->Append(SideText(item.value));
  }
  if (detailed) text->Append(")");
}

void TriggerText(const Trigger& trigger, ByteString* text) {
  text->Empty();
  ButtonsText(trigger.buttonMask, text);
  for (const TriggerItem& item : trigger.triggerItems) {
    AppendPlus(!text->IsEmpty(), text);
    InputText(item, text, true);
  }
}

void CaptureTrigger(std::int32_t axisMax, const DeviceSnapshot& snapshot, ByteString* text,
                    Trigger* trigger) {
  text->Empty();
  trigger->ResetTrigger();
  ButtonsText(snapshot.dispatchButtons, text);
  trigger->SetButtonMask(snapshot.dispatchButtons);

  // One flag for all hats, so a later hat begins with a "+" unless its first word is "up", as in
  // "POV0(left)+POV2(+down)". Kept. Test: LaterHatBeginsWithAPlus.
  bool wordWritten = false;
  for (std::uint16_t hat = 0; hat < kHats; ++hat) {
    const std::uint8_t directions = snapshot.povDirections[hat];
    if (directions == 0) continue;
    AppendPlus(!text->IsEmpty(), text);
    text->Append(InputName(input_kind::kPov));
    AppendNumber(hat, text);
    text->Append("(");
    AppendDirections(directions, &wordWritten, text);
    text->Append(")");
    trigger->triggerItems.AddTail({input_kind::kPov, hat, directions});
  }

  for (std::uint16_t bank = 0; bank < kBanks; ++bank) {
    for (std::uint16_t kind = input_kind::kAxisX; kind <= input_kind::kSliderB; ++kind) {
      const std::uint8_t side = AxisState(axisMax, snapshot.state, kind, bank);
      if (side == AxisCentre) continue;
      const TriggerItem item{kind, bank, side};
      AppendPlus(!text->IsEmpty(), text);
      InputText(item, text, true);
      trigger->triggerItems.AddTail(item);
    }
  }
}

}  // namespace kelvaro
