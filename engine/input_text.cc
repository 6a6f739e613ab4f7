#include "engine/input_text.h"

namespace kelvaro {
namespace {

constexpr const char* kNames[] = {"Axis_X",  "Axis_Y",  "Axis_Z",  "Axis_RX", "Axis_RY",
                                  "Axis_RZ", "SliderA", "SliderB", "POV",     "POV"};

// The order in which directions are read out, whatever the angle.
constexpr struct {
  std::uint8_t bit;
  const char* word;
} kDirections[] = {{PovUp, "up"}, {PovDown, "down"}, {PovLeft, "left"}, {PovRight, "right"}};

void AppendNumber(std::uint32_t value, ByteString* text) {
  text->Append(ToDecimal(value, true, 0));
}

void AppendPlus(ByteString* text) {
  if (!text->IsEmpty()) text->Append("+");
}

// *wordWritten says whether a "+" must part a direction from one before it; each one sets it.
void AppendInput(const TriggerItem& item, bool detailed, bool* wordWritten, ByteString* text) {
  text->Append(InputName(item.kind));
  AppendNumber(item.index, text);
  if (detailed) text->Append("(");
  if (item.kind == input_kind::kPov) {
    // Also without `detailed`. On the Mouse tab the value is a field offset, so that its bits come
    // out as directions, "POV1right" for one. Kept. Test: MouseTabHatsShowTheBitsOfTheirOffset.
    for (const auto& direction : kDirections) {
      if ((item.value & direction.bit) == 0) continue;
      // "up" is never parted: it is the first word wherever it stands.
      if (*wordWritten && direction.bit != PovUp) text->Append("+");
      text->Append(direction.word);
      *wordWritten = true;
    }
  } else if (detailed) {
    text->Append(item.value == AxisNeg ? "neg" : "pos");
  }
  if (detailed) text->Append(")");
}

}  // namespace

ByteString InputName(std::uint16_t kind) {
  return kind > input_kind::kPovVertical ? ByteString() : ByteString(kNames[kind]);
}

void ButtonsText(std::uint64_t mask, ByteString* text) {
  for (std::uint32_t n = 0; n < 64; ++n) {
    if ((mask >> n & 1) == 0) continue;
    AppendPlus(text);
    text->Append("B");
    AppendNumber(n + 1, text);
  }
}

void InputText(const TriggerItem& item, ByteString* text, bool detailed) {
  bool wordWritten = false;
  if (item.kind != input_kind::kNone) AppendInput(item, detailed, &wordWritten, text);
}

void TriggerText(const Trigger& trigger, ByteString* text) {
  text->Empty();
  ButtonsText(trigger.buttonMask, text);
  for (const TriggerItem& item : trigger.triggerItems) {
    AppendPlus(text);
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
  const auto add = [&](std::uint16_t kind, std::uint16_t index, std::uint8_t value) {
    if (value == 0) return;  // centred
    const TriggerItem item{kind, index, value};
    AppendPlus(text);
    AppendInput(item, true, &wordWritten, text);
    trigger->triggerItems.AddTail(item);
  };
  for (std::uint16_t hat = 0; hat < kHats; ++hat) {
    add(input_kind::kPov, hat, snapshot.povDirections[hat]);
  }
  for (std::uint16_t bank = 0; bank < kBanks; ++bank) {
    for (std::uint16_t kind = input_kind::kAxisX; kind <= input_kind::kSliderB; ++kind) {
      add(kind, bank, AxisState(axisMax, snapshot.state, kind, bank));
    }
  }
}

}  // namespace kelvaro
