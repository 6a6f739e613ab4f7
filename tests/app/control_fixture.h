// A main window with Controls of a test's own making, and what a person does with them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "keys/key_action.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {

struct MadeControl {
  std::string description = "control";
  std::uint64_t buttons = 0;
  std::vector<TriggerItem> items = {};
  std::vector<std::string> keys = {};  // an action each
  std::int32_t holdAllFrom = -1;       // the first action that holds all its keys; -1: none
  bool press = true;
  bool triggerOption = true;
  bool toggleMouse = false;
  bool repeat = false;
  std::uint32_t delay = 500;
  std::uint32_t speed = 50;
  std::uint32_t hold = 0;
  std::uint32_t pause = 0;
  std::uint32_t id = 0;  // 0: the profile's next
};

inline void AddControl(ProfileFile* profile, const MadeControl& made) {
  profile->controls.AddTail(Control());
  Control& control = *profile->controls.tail->value;
  control.controlId = made.id != 0 ? made.id : profile->nextControlId++;
  control.description = TextOf(made.description);
  control.SetButtonMask(made.buttons);
  for (const TriggerItem& item : made.items) control.triggerItems.AddTail(item);
  control.activateOnPress = made.press;
  control.triggerOption = made.triggerOption;
  control.toggleMouseControls = made.toggleMouse;
  control.repeatEnabled = made.repeat;
  control.repeatDelay = made.delay;
  control.repeatSpeed = made.speed;
  control.keyHoldTime = made.hold;
  control.keyReleasePause = made.pause;
  for (std::size_t i = 0; i < made.keys.size(); ++i) {
    auto* const action = new KeyAction;
    if (made.holdAllFrom >= 0 && i >= static_cast<std::size_t>(made.holdAllFrom))
      action->actionFlags = KeyAction::HoldAllKeys;
    EXPECT_EQ(action->ParseKeys(TextOf(made.keys[i])), KeyAction::kParsed);
    control.actions.AddTail(action);
  }
}

class ControlTest : public MainWindowTest {
 protected:
  // Starts the program again, with a profile of these Controls open.
  void StartWith(const std::vector<MadeControl>& controls) {
    if (screen.Running()) CloseAll();
    StoreProfile(kProfile, [&](ProfileFile& made) {
      UsePad(made);
      for (const MadeControl& control : controls) AddControl(&made, control);
    });
    Begin();
  }

  void New() { screen.Click(main_window::kNewControl); }
  void Edit(std::int32_t row) {
    screen.SelectRows(main_window::kControlList, {row});
    screen.Click(main_window::kEditControl);
  }
  void TypeControl(const std::string& keys) {
    screen.Type(define_control::kDescriptionText, "it");
    screen.Type(define_control::kKeysText, keys);
  }

  // What is held from now on, until the program has seen it.
  void Press(std::initializer_list<std::uint32_t> buttons) {
    pad.Press(buttons);
    Wait();
  }
  void Wait() { sim.RunFor(20); }
  // The Trigger of the dialog that is open becomes these, which are then let go.
  void DetectTrigger(std::initializer_list<std::uint32_t> buttons) {
    screen.Click(define_control::kDetectTrigger);
    Press(buttons);
    screen.Click(define_control::kDetectTrigger);
    Press({});
  }
  void PressAt(std::uint64_t t, const std::vector<std::uint32_t>& buttons) {
    platform::StateChange change;
    change.hasButtons = true;
    change.buttons = buttons;
    pad.ChangeAt(t, change);
  }

  // Events without their times, such as "key 41 1e 0".
  std::vector<std::string> Sent() const {
    std::vector<std::string> sent;
    for (const auto& event : sim.Events()) {
      const std::string text = EventText(event);
      sent.push_back(text.substr(text.find(' ') + 1));
    }
    return sent;
  }

  Control& ControlAt(std::int32_t row) {
    if (row >= OpenProfile().controls.count) throw std::out_of_range("no such Control");
    return *OpenProfile().controls.At(row)->value;
  }

  static std::string Keys(const Control& control) {
    std::string text;
    for (const InputAction* action : control.actions)
      text += Bytes(static_cast<const KeyAction&>(*action).FormatKeys());
    return text;
  }
  static bool HoldsAll(const Control& control) {
    return control.actions.count > 0 &&
           static_cast<const KeyAction&>(**control.actions.head->value).actionFlags != 0;
  }

  const platform::simulation::ShownMessageBox& LastBox() const { return screen.Boxes().back(); }
};

}  // namespace kelvaro
