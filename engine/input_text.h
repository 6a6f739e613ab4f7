// Names and texts of inputs, as the user reads them in a Trigger and on the Mouse tab, and the
// capture of a Trigger from what is held.
#pragma once

#include "engine/control.h"
#include "engine/device_snapshot.h"
#include "foundation/byte_string.h"

namespace kelvaro {

// "Axis_X" to "SliderB", "POV" for both hat kinds; empty for 10 and above.
ByteString InputName(std::uint16_t kind);
// Appends "B1+B3", with a "+" in front if *text isn't empty.
void ButtonsText(std::uint64_t mask, ByteString* text);
// Appends the item's name and index, and when `detailed` its direction in brackets.
void InputText(const TriggerItem& item, ByteString* text, bool detailed);
// Replaces *text with the whole Trigger, such as "B1+B4+POV0(left)+Axis_Z0(pos)".
void TriggerText(const Trigger& trigger, ByteString* text);
// Makes *trigger, and *text, of what the snapshot holds.
void CaptureTrigger(std::int32_t axisMax, const DeviceSnapshot& snapshot, ByteString* text,
                    Trigger* trigger);

}  // namespace kelvaro
