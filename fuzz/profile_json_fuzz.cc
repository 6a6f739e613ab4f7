// Profiles in JSON, of any bytes. Checked: a fault says what, lies on a line of the text and shows
// its caret in two lines; what is taken reads the same a second time, has a dispatch order of all
// its Controls by falling weight, and key texts that the formatter can print. A device's state then
// goes through its Triggers and mouse inputs.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "app/platform/byte_text.h"
#include "console/profile_json.h"
#include "engine/device_snapshot.h"
#include "engine/mouse_emulation.h"
#include "fuzz/check.h"

namespace {

using namespace kelvaro;
using namespace kelvaro::console;

void CheckFault(const JsonFault& fault, const std::string& text) {
  const auto lines =
      1 + static_cast<std::size_t>(std::count_if(text.begin(), text.end(),
                                                 [](char c) { return c == '\n' || c == '\r'; }));
  Check(!fault.what.empty(), "a fault without words", text);
  Check(fault.line >= 1 && fault.line <= lines, "a fault on no line", text);
  Check(fault.Text("f").size() < 500, "an endless message", text);
  if (fault.detail.empty()) return;
  const std::string& detail = fault.detail;
  Check(std::count(detail.begin(), detail.end(), '\n') == 2 && detail.back() == '\n' &&
            detail[detail.size() - 2] == '^' && platform::IsUtf8(detail),
        "a broken caret", text);
}

// The numbers of the Controls, in the order of `list`.
std::string Order(const LinkedList<Control>& list) {
  std::string text;
  for (const Control& control : list) text += std::to_string(control.controlId) + " ";
  return text;
}

void CheckDispatchOrder(const Profile& profile, const std::string& text) {
  Check(profile.DispatchList.count == profile.controls.count, "Controls went missing", text);
  std::uint32_t last = UINT32_MAX;
  for (const Control& control : profile.DispatchList) {
    Check(control.Weight() <= last, "a heavier Control behind a lighter one", text);
    last = control.Weight();
  }
}

// A device's state goes through what the profile says, for the sanitizers to see.
void Dispatch(Profile& profile) {
  platform::DIJOYSTATE2 state;
  std::fill(std::begin(state.rgdwPOV), std::end(state.rgdwPOV), 9000u);
  state.rgbButtons[0] = 0x80;
  DeviceSnapshot snapshot;
  UpdateSnapshot(&snapshot, state);
  for (Control& control : profile.DispatchList) {
    control.EvaluateTrigger(32000, snapshot);
  }
  const MouseCurve curve = MakeMouseCurve(32000, 1600, 17);
  for (const TriggerItem input :
       {static_cast<TriggerItem>(profile.mouseX), static_cast<TriggerItem>(profile.mouseY),
        static_cast<TriggerItem>(profile.mouseWheel)}) {
    NextAccumulated(input, state, curve, 0.5);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  Profile profile;
  JsonFault fault;
  Profile again;
  JsonFault faultAgain;
  const bool taken = ReadProfile(text, &profile, &fault);
  Check(ReadProfile(text, &again, &faultAgain) == taken, "another answer", text);
  if (!taken) {
    CheckFault(fault, text);
    Check(fault.Text("f") == faultAgain.Text("f"), "another fault", text);
    return 0;
  }
  CheckDispatchOrder(profile, text);
  Check(ProfileJson(profile) == ProfileJson(again), "read differently", text);
  Check(Order(profile.DispatchList) == Order(again.DispatchList), "sorted differently", text);
  Dispatch(profile);
  return 0;
}
