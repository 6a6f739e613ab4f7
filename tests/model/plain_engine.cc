#include "tests/model/plain_engine.h"

#include <cstdlib>
#include <memory>
#include <utility>

namespace kelvaro::plain {
namespace {

constexpr std::int32_t kAxisMax = 32000;

struct State {
  std::int32_t axes[4][8] = {};  // by bank and kind
  std::uint32_t hats[4] = {};
  std::uint8_t buttons[128] = {};
  bool operator==(const State&) const = default;
};

// ---- What a state says ----

std::uint64_t ButtonMask(const State& state) {
  std::uint64_t mask = 0;
  for (int n = 0; n < 64; ++n) {
    if (state.buttons[n] != 0) mask |= std::uint64_t{1} << n;
  }
  return mask;
}

constexpr unsigned kLeft = 1;
constexpr unsigned kUp = 2;
constexpr unsigned kRight = 4;
constexpr unsigned kDown = 8;

unsigned Directions(std::uint32_t value) {
  const std::uint32_t angle = value & 0xFFFF;
  if (angle == 65535) return 0;
  if (angle <= 4499) return kUp;
  if (angle <= 6000) return kUp | kRight;
  if (angle <= 11999) return kRight;
  if (angle <= 13500) return kRight | kDown;
  if (angle <= 22499) return kDown;
  if (angle <= 24000) return kDown | kLeft;
  if (angle <= 29999) return kLeft;
  if (angle <= 31500) return kLeft | kUp;
  return kUp;
}

// 0 in the middle, 1 negative, 2 positive.
unsigned Side(const State& state, const Input& input) {
  const std::int32_t value = state.axes[input.index][input.kind];
  if (value > 16000) return 2;
  if (value < -16000) return 1;
  return 0;
}

bool SameInput(const Input& a, const Input& b) { return a.kind == b.kind && a.index == b.index; }

// ---- Controls ----

struct Control {
  explicit Control(const ScriptControl& script) : script(script) {
    for (const ScriptAction& written : script.actions) {
      Action action;
      action.holdAll = written.holdAll;
      if (!written.text.empty()) {
        action.steps = ReadKeys(written.text, written.holdAll).steps;
      } else {
        for (const std::uint32_t step : written.steps) {
          action.steps.push_back({static_cast<std::uint8_t>(step & 0xFF),
                                  static_cast<std::uint8_t>(step >> 8 & 0xFF),
                                  static_cast<std::uint8_t>(step >> 16 & 0xFF)});
        }
      }
      actions.push_back(action);
    }
  }

  std::size_t Weight() const {
    std::size_t weight = script.inputs.size();
    for (int n = 0; n < 64; ++n) weight += script.buttons >> n & 1;
    return weight;
  }

  bool Uses(const Input& input) const {
    for (const Input& own : script.inputs) {
      if (SameInput(own, input)) return true;
    }
    return false;
  }

  bool Evaluate(std::uint64_t dispatchButtons, const State& state) {
    bool satisfied = false;
    if (script.buttons != 0) {
      if (dispatchButtons == 0) {
        if (!armed) {
          spoiled = false;
          return false;
        }
        satisfied = true;
      } else if ((script.buttons & dispatchButtons) == script.buttons) {
        satisfied = true;
      } else {
        if (script.press) return false;
        if ((dispatchButtons & ~script.buttons) != 0) spoiled = true;
        return false;
      }
    }
    for (const Input& input : script.inputs) {
      if (input.kind <= 7) {
        const unsigned side = Side(state, input);
        if (side == 0 && !armed) return false;
        if (side != 0 && side != input.direction) return false;
        satisfied = true;
      } else if (input.kind == 8) {
        const unsigned directions = Directions(state.hats[input.index]);
        if (directions == 0 && !armed) return false;
        if (directions != 0 && (directions & input.direction) == 0) return false;
        satisfied = true;
      } else {
        satisfied = false;
      }
    }
    if (!satisfied) return false;
    if (script.press) return true;
    if (!armed) {
      armed = true;
      return false;
    }
    armed = false;
    if (spoiled) {
      spoiled = false;
      return false;
    }
    return true;
  }

  const ScriptControl script;
  std::vector<Action> actions;
  bool armed = false;
  bool spoiled = false;
  bool down = false;
  bool repeatStarted = false;
  std::uint64_t repeatLastTick = 0;
};

using Controls = std::vector<std::unique_ptr<Control>>;

Controls DispatchList(const ScriptProfile& profile) {
  Controls list;
  for (const ScriptControl& control : profile.controls) {
    list.push_back(std::make_unique<Control>(control));
  }
  for (std::size_t p = 0; p < list.size(); ++p) {
    std::size_t m = p;
    for (std::size_t q = p + 1; q < list.size(); ++q) {
      if (list[q]->Weight() > list[m]->Weight()) m = q;
    }
    std::swap(list[p], list[m]);
  }
  return list;
}

bool Contained(const Control& inner, const Control& outer) {
  if ((inner.script.buttons & ~outer.script.buttons) != 0) return false;
  for (const Input& input : inner.script.inputs) {
    if (!outer.Uses(input)) return false;
  }
  return true;
}

// ---- The mouse ----

std::int32_t DeadZone(std::int32_t damper) {
  const double hundredth = 0.01f;
  return static_cast<std::int32_t>(damper * hundredth * kAxisMax);
}

double Curve(std::int32_t sensitivity) {
  const double curve = (sensitivity + 2) * 0.2;
  return curve < 1.0 ? 1.0 : curve;
}

double Accumulate(const Input& input, const State& state, std::int32_t deadZone, double curve,
                  double old) {
  if (input.kind == 11) return 0.0;
  const std::int32_t v = input.kind <= 7 ? state.axes[input.index][input.kind]
                                         : static_cast<std::int32_t>(state.hats[input.index]);
  if (input.kind == 8) {
    if (v >= 4500 && v <= 13500) return 1.0;
    if (v >= 22500 && v <= 31500) return -1.0;
    return 0.0;
  }
  if (input.kind == 9) {
    if ((v >= 0 && v <= 4500) || v >= 31500) return -1.0;
    if (v >= 13500 && v <= 22500) return 1.0;
    return 0.0;
  }
  if (std::abs(v) <= deadZone) return 0.0;
  const double d = v > 0 ? v - deadZone : -(deadZone + v);
  const double r = d / (kAxisMax - deadZone);
  double m = r + r * r * curve;
  if (v < 0) m = -m;
  return m + old;
}

// ---- The machine ----

// The notification thread is the one that runs through this object's functions. Whenever it waits,
// the others get their turns: at each millisecond the timer goes first, then the notification
// thread, then the repeat worker, and last the person.
class Machine {
 public:
  explicit Machine(const Script& script)
      : script(script), open(script.profiles[0]), list(DispatchList(open)) {
    for (std::uint32_t& hat : pad.hats) hat = 0xFFFFFFFF;
    mouseActive = script.mouseActive;
    workerDue = script.workerStart;
    personDue = script.workerStart + kStopWait;
    phase = Phase::Select;
    MovePad();
  }

  std::vector<Event> Run() {
    try {
      for (;;) {
        while (!changeEvent) Wait(1);
        changeEvent = false;
        deviceLock = true;
        Dispatch();
        deviceLock = false;
      }
    } catch (const End&) {
      return std::move(events);
    }
  }

 private:
  struct End {};
  static constexpr std::uint32_t kStopWait = 100;  // ms that the end of polling takes

  void Wait(std::uint32_t ms) {
    for (; ms > 0; --ms) {
      RepeatTurn();
      PersonTurn();
      if (now == script.end) throw End();
      ++now;
      MovePad();
      TimerTurn();
    }
  }

  void Send(Event event) {
    event.t = now;
    events.push_back(event);
  }

  void SendMouse(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data) {
    Event event;
    event.flags = flags;
    event.dx = dx;
    event.dy = dy;
    event.data = data;
    Send(event);
  }

  // On the notification thread.
  void Carry(const std::vector<Moment>& moments) {
    for (const Moment& moment : moments) {
      if (moment.wait != 0) {
        Wait(moment.wait);
      } else {
        Send(moment.event);
      }
    }
  }

  // ---- The pad, and its timer ----

  void MovePad() {
    for (; padNext < script.pad.size() && script.pad[padNext].t <= now; ++padNext) {
      const PadChange& change = script.pad[padNext];
      switch (change.what) {
        case PadChange::What::Button:
          pad.buttons[change.number] = change.to != 0 ? 1 : 0;
          break;
        case PadChange::What::Axis:
          pad.axes[change.number / 8][change.number % 8] = change.to;
          break;
        case PadChange::What::Hat:
          pad.hats[change.number] = static_cast<std::uint32_t>(change.to);
          break;
        case PadChange::What::Lost:
          lost = change.to != 0;
          break;
      }
    }
  }

  void TimerTurn() {
    if (!polling || (now - pollStart) % pollInterval != 0) return;
    if (deviceLock) return;  // this tick is lost
    if (lost) return;
    buffers[writeIndex] = pad;
    if (!(buffers[0] == buffers[1])) {
      changedState = pad;
      changeEvent = true;
    }
    MouseStep(pad);
    writeIndex = 1 - writeIndex;
  }

  void StartPolling() {
    if (lost) {  // it can't be acquired: what was begun is stopped again
      personDue = now + kStopWait;
      return;
    }
    pollInterval = open.pollInterval;
    writeIndex = 0;
    buffers[0] = State();
    buffers[1] = State();
    changeEvent = false;
    pollStart = now;
    polling = true;
  }

  // ---- The mouse ----

  bool MouseIsOn() const { return mouseActive || open.mouseAlwaysActive || testMode; }

  void MouseStep(const State& state) {
    if (dialogOpen || !MouseIsOn()) return;
    const std::int32_t movementZone = DeadZone(open.movementDamper);
    const double movementCurve = Curve(open.movementSensitivity);
    x = Accumulate(open.mouseX, state, movementZone, movementCurve, x);
    y = Accumulate(open.mouseY, state, movementZone, movementCurve, y);
    wheel = Accumulate(open.mouseWheel, state, DeadZone(open.wheelDamper),
                       Curve(open.wheelSensitivity), wheel);
    const bool sendX = x >= 1.0 || x <= -1.0;
    const bool sendY = y >= 1.0 || y <= -1.0;
    const bool sendWheel = wheel >= 1.0 || wheel <= -1.0;
    if (!sendX && !sendY && !sendWheel) return;
    std::uint32_t flags = 1;
    if (sendWheel) {
      if (SameInput(open.mouseWheel, open.mouseY)) {
        y = 0.0;
      } else if (SameInput(open.mouseWheel, open.mouseX)) {
        x = 0.0;
      }
      flags |= 0x800;
    }
    SendMouse(flags, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
              static_cast<std::int32_t>(-wheel));
    if (sendX) x = 0.0;
    if (sendY) y = 0.0;
    if (sendWheel) wheel = 0.0;
  }

  void MouseButtonStep() {
    if (!MouseIsOn()) return;
    const struct {
      std::uint64_t mask;
      std::uint32_t down;
      std::uint32_t up;
    } buttons[] = {{open.leftMask, 2, 4}, {open.middleMask, 0x20, 0x40}, {open.rightMask, 8, 0x10}};
    std::uint32_t flags = 0;
    std::uint32_t owned = 0;
    for (const auto& button : buttons) {
      if (button.mask != 0) {
        const std::uint64_t held = dispatchButtons & button.mask;
        const std::uint64_t before = previousButtons & button.mask;
        if (held != before) flags |= held != 0 ? button.down : button.up;
      }
      if ((dispatchButtons & button.mask) != 0) owned |= static_cast<std::uint32_t>(button.mask);
    }
    if (owned != 0) {
      const std::uint64_t upper = dispatchButtons & 0xFFFFFFFF00000000u;
      const std::uint64_t lower = (dispatchButtons & 0xFFFFFFFFu) ^ owned;
      dispatchButtons = upper | lower;
    }
    if (flags != 0) SendMouse(flags, 0, 0, 0);
  }

  // ---- Dispatch ----

  void Dispatch() {
    const State state = changedState;
    const std::uint64_t currentButtons = ButtonMask(state);
    dispatchButtons = currentButtons;
    if (!dialogOpen) {
      MouseButtonStep();
      while (profileLock) Wait(1);
      profileLock = true;
      std::vector<const Control*> fired;
      for (const auto& control : list) DispatchOne(control.get(), state, &fired);
      profileLock = false;
    }
    previousButtons = currentButtons;
  }

  bool MouseHas(const Control& control) const {
    return MouseIsOn() && (control.Uses(open.mouseX) || control.Uses(open.mouseY) ||
                           control.Uses(open.mouseWheel));
  }

  void DispatchOne(Control* c, const State& state, std::vector<const Control*>* fired) {
    if (!c->Evaluate(dispatchButtons, state)) {
      if (!c->down) return;
      if (c == repeatControl) ClearRepeat();
      c->down = false;
      if (c->script.repeats) return;
      for (const Action& action : c->actions) Carry(Release(action));
      return;
    }
    if (MouseHas(*c)) return;
    for (const Control* f : *fired) {
      if (Contained(*c, *f)) return;
    }
    fired->push_back(c);
    if (!c->down) Fire(c);
  }

  void Fire(Control* c) {
    const ScriptControl& script = c->script;
    for (const Action& action : c->actions) {
      Carry(Replay(action, script.repeats, script.holdTime, script.releasePause));
      if (!script.press && !script.repeats) Carry(Release(action));
    }
    if (script.press) {
      c->down = true;
      if (script.repeats) StartRepeat(c);
    }
    if (script.togglesMouse) mouseActive = !mouseActive;
  }

  // ---- Repeating ----

  void StartRepeat(Control* c) {
    while (repeatLock) Wait(1);
    repeatControl = c;
    c->repeatStarted = false;
    c->repeatLastTick = now;
  }

  void ClearRepeat() {
    while (repeatLock) Wait(1);
    repeatControl = nullptr;
  }

  void RepeatTurn() {
    while (workerDue <= now) {
      if (!repeatLock && !LookForRepeat()) {
        workerDue = now + kGrain;
        return;
      }
      // A replay is under way.
      for (; workerPlace < workerMoments.size(); ++workerPlace) {
        const Moment& moment = workerMoments[workerPlace];
        if (moment.wait == 0) {
          Send(moment.event);
          continue;
        }
        workerDue = now + moment.wait;
        ++workerPlace;
        return;
      }
      repeatControl->repeatLastTick = now;
      repeatControl->repeatStarted = true;
      repeatLock = false;
      workerDue = now + kGrain;
    }
  }

  // Whether it begins a replay, with the lock taken.
  bool LookForRepeat() {
    if (!repeatControl) return false;
    const ScriptControl& script = repeatControl->script;
    const std::uint64_t elapsed = now - repeatControl->repeatLastTick;
    if (elapsed < (repeatControl->repeatStarted ? script.repeatSpeed : script.repeatDelay)) {
      return false;
    }
    repeatLock = true;
    workerPlace = 0;
    workerMoments.clear();
    for (const Action& action : repeatControl->actions) {
      const std::vector<Moment> more = Replay(action, true, script.holdTime, script.releasePause);
      workerMoments.insert(workerMoments.end(), more.begin(), more.end());
    }
    return true;
  }

  // ---- The person ----

  void PersonTurn() {
    while (personDue <= now) {
      if (!PersonGoesOn()) return;
    }
  }

  // False where it has to wait, with personDue set.
  bool PersonGoesOn() {
    switch (phase) {
      case Phase::Next:
        return NextAct();
      case Phase::Profile:
        if (profileLock) return PersonWaits(1);
        return ChangeProfile();
      case Phase::Repeat:
        if (repeatLock) return PersonWaits(1);
        return LoadProfile();
      case Phase::Stop:
        if (deviceLock) return PersonWaits(1);
        phase = Phase::Select;
        return PersonWaits(kStopWait);
      case Phase::Select:
        phase = Phase::Next;
        StartPolling();
        return true;
    }
    return false;
  }

  bool PersonWaits(std::uint32_t ms) {
    personDue = now + ms;
    return false;
  }

  bool NextAct() {
    if (personNext == script.person.size()) {
      personDue = script.end + 1;
      return false;
    }
    act = script.person[personNext];
    if (act.t > now) {
      personDue = act.t;
      return false;
    }
    ++personNext;
    switch (act.what) {
      case PersonAct::What::TestMode:
        testMode = act.to != 0;
        break;
      case PersonAct::What::Dialog:
        dialogOpen = act.to != 0;
        break;
      case PersonAct::What::Load:
        testMode = false;
        phase = Phase::Profile;
        break;
      case PersonAct::What::AlwaysActive:
      case PersonAct::What::Slider:
        phase = Phase::Profile;
        break;
    }
    return true;
  }

  bool ChangeProfile() {
    phase = Phase::Next;
    if (act.what == PersonAct::What::AlwaysActive) {
      open.mouseAlwaysActive = act.to != 0;
    } else if (act.what == PersonAct::What::Slider) {
      std::int32_t* const sliders[] = {&open.movementDamper, &open.movementSensitivity,
                                       &open.wheelDamper, &open.wheelSensitivity};
      *sliders[act.number] = act.to;
    } else {
      profileLock = true;
      phase = Phase::Repeat;
    }
    return true;
  }

  bool LoadProfile() {
    repeatControl = nullptr;
    open = script.profiles[act.number];
    list = DispatchList(open);
    mouseActive = false;
    profileLock = false;
    phase = Phase::Next;
    if (act.to != 0) {
      polling = false;
      phase = Phase::Stop;
    }
    return true;
  }

  static constexpr std::uint32_t kGrain = 10;  // ms between two looks of the repeat worker

  const Script& script;
  std::uint64_t now = 0;
  std::vector<Event> events;

  // The pad and its timer.
  State pad;
  bool lost = false;
  std::size_t padNext = 0;
  bool polling = false;
  std::uint64_t pollStart = 0;
  std::uint32_t pollInterval = 0;
  State buffers[2];
  int writeIndex = 0;
  State changedState;
  bool changeEvent = false;

  // The open profile, and what runs on it.
  ScriptProfile open;
  Controls list;
  std::uint64_t dispatchButtons = 0;
  std::uint64_t previousButtons = 0;
  bool deviceLock = false;   // the notification thread has it
  bool profileLock = false;  // that thread or the person has it
  bool dialogOpen = false;

  // The mouse.
  bool mouseActive = false;
  bool testMode = false;
  double x = 0.0;
  double y = 0.0;
  double wheel = 0.0;

  // The repeat worker.
  Control* repeatControl = nullptr;
  bool repeatLock = false;  // it replays
  std::uint64_t workerDue = 0;
  std::vector<Moment> workerMoments;
  std::size_t workerPlace = 0;

  // The person.
  enum class Phase { Next, Profile, Repeat, Stop, Select };
  Phase phase = Phase::Next;
  PersonAct act;
  std::size_t personNext = 0;
  std::uint64_t personDue = 0;
};

}  // namespace

std::vector<Event> Play(const Script& script) { return Machine(script).Run(); }

}  // namespace kelvaro::plain
