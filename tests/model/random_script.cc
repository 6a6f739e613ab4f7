#include "tests/model/random_script.h"

#include <algorithm>
#include <iterator>

namespace kelvaro::plain {
namespace {

class Maker {
 public:
  explicit Maker(std::uint32_t seed) : random(seed) {}

  Script Make() {
    ChooseInputs();
    for (std::uint32_t n = random.Between(1, 3); n > 0; --n) script.profiles.push_back(Profile());
    script.mouseActive = random.OneIn(3);
    script.workerStart = random.Below(13);
    script.tickOffset = random.OneIn(4) ? UINT32_MAX - random.Below(3000) : random.Below(100);
    PlayPad();
    PlayPerson();
    script.end = length + 500;
    return script;
  }

 private:
  template <typename T, std::size_t N>
  T OneOf(const T (&values)[N]) {
    return values[random.Below(static_cast<std::uint32_t>(N))];
  }

  // ---- What the pad has ----

  void ChooseInputs() {
    static constexpr unsigned kButtons[] = {0, 1, 2, 3, 30, 31, 32, 33, 62, 63};
    for (std::uint32_t n = random.Between(1, 4); n > 0; --n) buttons.push_back(OneOf(kButtons));
    for (std::uint32_t n = random.Below(3); n > 0; --n) {
      inputs.push_back({random.Below(8), random.OneIn(3) ? random.Below(4) : 0, 0});
    }
    for (std::uint32_t n = random.Below(3); n > 0; --n) inputs.push_back({8, random.Below(4), 0});
  }

  unsigned Button() { return buttons[random.Below(static_cast<std::uint32_t>(buttons.size()))]; }

  // ---- Profiles ----

  Input MouseInput() {
    if (inputs.empty() || random.OneIn(3)) return {};
    Input input = inputs[random.Below(static_cast<std::uint32_t>(inputs.size()))];
    if (input.kind == 8 && random.OneIn(2)) input.kind = 9;
    return input;
  }

  std::uint64_t MouseMask() {
    if (random.OneIn(2)) return 0;
    const unsigned button = Button() % 32;
    const std::uint64_t mask = std::uint64_t{1} << button;
    return button == 31 ? mask | 0xFFFFFFFF00000000u : mask;
  }

  std::int32_t Slider() {
    return static_cast<std::int32_t>(random.OneIn(3) ? random.Below(6) : random.Below(51));
  }

  ScriptProfile Profile() {
    static constexpr std::uint32_t kIntervals[] = {1, 2, 3, 5, 5, 7, 10, 16, 33};
    ScriptProfile profile;
    profile.pollInterval = OneOf(kIntervals);
    profile.movementDamper = Slider();
    profile.movementSensitivity = Slider();
    profile.wheelDamper = Slider();
    profile.wheelSensitivity = Slider();
    profile.leftMask = MouseMask();
    profile.middleMask = MouseMask();
    profile.rightMask = MouseMask();
    profile.mouseX = MouseInput();
    profile.mouseY = MouseInput();
    profile.mouseWheel = MouseInput();
    profile.mouseAlwaysActive = random.OneIn(4);
    for (std::uint32_t n = random.Between(1, 8); n > 0; --n) profile.controls.push_back(Control());
    return profile;
  }

  ScriptControl Control() {
    ScriptControl control;
    control.press = !random.OneIn(3);
    for (std::uint32_t n = random.Below(4); n > 0; --n) {
      control.buttons |= std::uint64_t{1} << Button();
    }
    for (std::uint32_t n = inputs.empty() ? 0 : random.Below(3); n > 0; --n) {
      Input input = inputs[random.Below(static_cast<std::uint32_t>(inputs.size()))];
      input.direction = input.kind == 8 ? random.Below(16) : random.Between(1, 2);
      // Now and then a kind that no Trigger is made of, or more than a direction.
      if (random.OneIn(30)) input.kind = random.Between(9, 11);
      if (random.OneIn(30)) input.direction = random.Below(4);
      control.inputs.push_back(input);
    }
    control.togglesMouse = random.OneIn(8);
    control.repeats = random.OneIn(3);
    control.repeatDelay = random.OneIn(4) ? random.Below(12) : random.Below(200);
    control.repeatSpeed = random.OneIn(2) ? random.Below(12) : random.Below(100);
    control.holdTime = random.OneIn(2) ? 0 : random.Below(40);
    control.releasePause = random.OneIn(2) ? 0 : random.Below(40);
    for (std::uint32_t n = random.OneIn(4) ? random.Below(4) : 1; n > 0; --n) {
      control.actions.push_back(Action());
    }
    return control;
  }

  ScriptAction Action() {
    ScriptAction action;
    action.holdAll = random.OneIn(3);
    if (random.OneIn(2)) {
      action.text = RandomKeys(random);
      return action;
    }
    for (std::uint32_t n = random.Below(5); n > 0; --n) {
      // Flags of all kinds; a pause as long as half a second, mostly much shorter.
      const std::uint32_t flags = random.OneIn(2) ? 0 : random.Below(256);
      const std::uint32_t vk = (flags & 0x80) != 0 ? random.OneIn(6)
                               : random.OneIn(5)   ? 0
                                                   : 65 + random.Below(6);
      const std::uint32_t scan = (flags & 0x80) != 0 ? random.Below(40) : random.Below(256);
      action.steps.push_back(vk | scan << 8 | flags << 16);
    }
    return action;
  }

  // ---- The pad ----

  std::int32_t Position() {
    static constexpr std::int32_t kPositions[] = {0,     0,      320,   1599,   1600,  -1600,
                                                  16000, -16000, 16001, -16001, 32000, -32000};
    if (random.OneIn(2)) return OneOf(kPositions);
    return static_cast<std::int32_t>(random.Below(64001)) - 32000;
  }

  std::int32_t Angle() {
    static constexpr std::int32_t kAngles[] = {-1,    -1,    -1,    0,     4499,  4500,  4501,
                                               6000,  6001,  9000,  11999, 12000, 13500, 13501,
                                               18000, 22499, 22500, 24000, 24001, 27000, 29999,
                                               30000, 31499, 31500, 31501, 35999, 65535};
    return random.OneIn(4) ? static_cast<std::int32_t>(random.Below(36000)) : OneOf(kAngles);
  }

  void Add(PadChange::What what, unsigned number, std::int32_t to) {
    script.pad.push_back({length, what, number, to});
  }

  void Push(unsigned button, bool down) {
    Add(PadChange::What::Button, button, down ? 1 : 0);
    std::erase(held, button);
    if (down) held.push_back(button);
  }

  void MoveInput(const Input& input, bool home) {
    if (input.kind == 8) {
      Add(PadChange::What::Hat, input.index, home ? -1 : Angle());
    } else {
      Add(PadChange::What::Axis, input.index * 8 + input.kind, home ? 0 : Position());
    }
  }

  void ChangePad() {
    if (random.OneIn(12)) {  // hands off
      while (!held.empty()) Push(held.back(), false);
      for (const Input& input : inputs) MoveInput(input, true);
      return;
    }
    if (random.OneIn(40)) return Push(64 + random.Below(64), random.OneIn(2));
    if (inputs.empty() || random.OneIn(2)) {
      const unsigned button = Button();
      return Push(button, std::count(held.begin(), held.end(), button) == 0);
    }
    MoveInput(inputs[random.Below(static_cast<std::uint32_t>(inputs.size()))], random.OneIn(3));
  }

  void PlayPad() {
    length = random.Between(50, 200);
    const bool canBeLost = random.OneIn(4);
    for (std::uint32_t n = random.Between(5, 80); n > 0; --n) {
      length += random.OneIn(3) ? 0 : random.OneIn(15) ? random.Below(600) : random.Below(50);
      if (canBeLost && length > 200 && random.OneIn(15)) {
        Add(PadChange::What::Lost, 0, 1);
        length += random.Below(60);
        if (random.OneIn(2)) ChangePad();
        length += random.Below(60);
        Add(PadChange::What::Lost, 0, 0);
      }
      ChangePad();
    }
  }

  // ---- The person ----

  void PlayPerson() {
    if (random.OneIn(3)) return;
    std::uint64_t t = 120;
    for (std::uint32_t n = random.Below(12); n > 0; --n) {
      t += random.Below(static_cast<std::uint32_t>(length / 6 + 1));
      PersonAct act;
      act.t = t;
      act.what = static_cast<PersonAct::What>(random.Below(5));
      act.to = random.OneIn(2);
      if (act.what == PersonAct::What::Slider) {
        act.number = random.Below(4);
        act.to = Slider();
      } else if (act.what == PersonAct::What::Load) {
        act.number = random.Below(static_cast<std::uint32_t>(script.profiles.size()));
      }
      if (act.what == PersonAct::What::Dialog && !random.OneIn(3)) act.to = 0;
      script.person.push_back(act);
    }
  }

  Random random;
  Script script;
  std::vector<unsigned> buttons;  // that Triggers and the mouse have
  std::vector<Input> inputs;
  std::vector<unsigned> held;
  std::uint64_t length = 0;  // of what the pad does so far
};

}  // namespace

std::string RandomKeys(Random& random) {
  std::string text;
  for (std::uint32_t n = random.Between(1, 5); n > 0; --n) {
    text += random.OneOf(
        {"a",        "b",        "a",         "Z",        "7",     "0",      "!",       ",",
         ">",        "<<",       "<",         "\t",       "<Up>",  "<del>",  "<Shift>", "<LShift>",
         "<RSHIFT>", "<Ctrl>",   "<LCtrl>",   "<RCtrl>",  "<Alt>", "<RAlt>", "<LWin>",  "<LMouse>",
         "<MMouse>", "<RMouse>", "<X1Mouse>", "<Cancel>", "<NP.>", "<P:0>",  "<p:20>",  "<P:65541>",
         "<P:300>",  "<P:12a>",  "<>",        "<Nothing>"});
  }
  return text;
}

Script RandomScript(std::uint32_t seed) { return Maker(seed).Make(); }

}  // namespace kelvaro::plain
