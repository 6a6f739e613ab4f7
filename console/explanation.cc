#include "console/explanation.h"

#include "app/platform/clock.h"
#include "app/platform/input.h"
#include "console/json_text.h"
#include "console/profile_text.h"
#include "engine/input_text.h"

namespace kelvaro::console {
namespace {

std::string InputsOf(const DeviceSnapshot& snapshot) {
  ByteString text;
  Trigger trigger;
  CaptureTrigger(DeviceManager::axisMax, snapshot, &text, &trigger);
  return Bytes(text);
}

std::string IdOf(const Control& control) { return std::to_string(control.controlId); }

}  // namespace

Explanation::Explanation(const EngineSession& session, Detail detail, std::ostream& out, bool json,
                         void (*whenBroken)())
    : session(session), detail(detail), out(out), json(json), whenBroken(whenBroken) {
  StartOfTime();
}

void Explanation::StartOfTime() {
  const std::lock_guard<std::mutex> lock(guard);
  lastTick = platform::clock().GetTickCount();
  elapsed = 0;
}

void Explanation::Sent(const SentEvent& event) {
  const bool isMotion =
      event.kind == SentEvent::Kind::Mouse && (event.flags & platform::MOUSEEVENTF_MOVE) != 0;
  if (isMotion) return;
  const std::lock_guard<std::mutex> lock(guard);
  // Those of a Control follow from its keys; the mouse's own come before any Control.
  if (detail != Detail::All && (!inChange || judged)) return;
  Say(Weight::Heavy, "    " + EventWords(event), EventMembers(event));
}

void Explanation::ChangeBegins(const DeviceSnapshot& snapshot) {
  const std::lock_guard<std::mutex> lock(guard);
  inChange = true;
  isTold = false;
  lostBefore = session.LostPolls();
  const std::string inputs = InputsOf(snapshot);
  matched = inputs.empty();
  judged = false;
  Say(Weight::Light, inputs.empty() ? "(nothing)" : inputs,
      "\"event\":\"change\",\"inputs\":" + JsonText(inputs));
}

void Explanation::ChangeEnds() {
  const std::lock_guard<std::mutex> lock(guard);
  if (!matched) {
    Say(Weight::Light,
        session.MouseIsOn() ? "  no Control has these inputs; the mouse controls are on"
                            : "  no Control has these inputs",
        "");
  }
  const std::uint32_t lost = session.LostPolls() - lostBefore;
  if (lost > 0 && detail == Detail::All) {
    Say(Weight::Heavy,
        "  " + std::to_string(lost) + (lost == 1 ? " poll was" : " polls were") +
            " left out while this went on",
        "\"event\":\"lostPolls\",\"count\":" + std::to_string(lost));
  }
  if (lights != lightsBefore) Flush();
  held.clear();
  lightsBefore.swap(lights);
  lights.clear();
  inChange = false;
}

void Explanation::MouseTakes(std::uint64_t buttons) {
  const std::lock_guard<std::mutex> lock(guard);
  ByteString text;
  ButtonsText(buttons, &text);
  matched = true;
  Say(Weight::Light, "  the mouse controls take " + Bytes(text) + ", which no Control sees",
      "\"event\":\"mouseTakes\",\"inputs\":" + JsonText(text));
}

void Explanation::ControlJudged(const Control& control, Verdict verdict, const Control* container) {
  const std::lock_guard<std::mutex> lock(guard);
  judged = true;
  const bool all = detail == Detail::All;
  matched = matched || (verdict != Verdict::Rests && verdict != Verdict::Ends);
  switch (verdict) {
    case Verdict::Rests:
      TellArming(control);
      return;
    case Verdict::Ends:
      if (all) SayVerdict(Weight::Heavy, control, "ends", "is let go");
      return;
    case Verdict::MouseHasIt:
      SayVerdict(Weight::Light, control, "mouse",
                 "matches, but the mouse controls have an input of it");
      break;
    case Verdict::Contained:
      if (!all) break;
      SayVerdict(Weight::Light, control, "contained",
                 "matches, but is contained in " + ControlName(*container),
                 ",\"in\":" + IdOf(*container));
      break;
    case Verdict::DownAlready:
      if (all) SayVerdict(Weight::Light, control, "down", "is down already");
      break;
    case Verdict::Fires:
      SayVerdict(Weight::Heavy, control, "fires", "fires: " + KeysText(control),
                 ",\"keys\":" + JsonText(KeysText(control)));
      break;
  }
  armings.erase(&control);  // where it fires on release, it has just done so
}

void Explanation::MouseSwitched(bool on) {
  const std::lock_guard<std::mutex> lock(guard);
  Say(Weight::Heavy, on ? "  the mouse controls go on" : "  the mouse controls go off",
      std::string("\"event\":\"mouseControls\",\"on\":") + (on ? "true" : "false"));
}

void Explanation::RepeatLost(const Control& control, const Control& next) {
  if (detail != Detail::All) return;
  const std::lock_guard<std::mutex> lock(guard);
  SayVerdict(Weight::Heavy, control, "losesRepeat",
             "repeats no more, since " + ControlName(next) + " does", ",\"to\":" + IdOf(next));
}

void Explanation::Repeats(const Control& control) {
  if (detail != Detail::All) return;
  const std::lock_guard<std::mutex> lock(guard);
  SayVerdict(Weight::Heavy, control, "repeats", "repeats");
}

std::uint64_t Explanation::Elapsed() {
  const std::uint32_t now = platform::clock().GetTickCount();
  elapsed += now - lastTick;
  lastTick = now;
  return elapsed;
}

void Explanation::Say(Weight weight, const std::string& text, const std::string& members) {
  held.push_back({Elapsed(), text, members});
  if (weight == Weight::Light) lights.push_back(text);
  if (weight == Weight::Heavy) isTold = true;
  if (isTold || !inChange) Flush();
}

void Explanation::SayVerdict(Weight weight, const Control& control, const char* verdict,
                             const std::string& words, const std::string& more) {
  Say(weight, "  " + ControlName(control) + " " + words,
      "\"event\":\"control\",\"controlId\":" + IdOf(control) + ",\"verdict\":\"" + verdict + "\"" +
          more);
}

void Explanation::TellArming(const Control& control) {
  if (control.activateOnPress) return;
  const Arming now{control.triggerArmed != 0, control.triggerSpoiled != 0};
  Arming& before = armings[&control];
  if (now.armed) matched = true;
  if (now.armed && !before.armed) {
    SayVerdict(Weight::Heavy, control, "armed", "is armed: it fires when it is let go");
  } else if (before.armed && !now.armed) {
    SayVerdict(Weight::Heavy, control, "spoiled",
               "doesn't fire, since another button was down while it was let go");
  }
  before = now;
}

void Explanation::Flush() {
  for (const Line& line : held) Write(line);
  held.clear();
}

void Explanation::Write(const Line& line) {
  const std::string& what = json ? line.json : line.text;
  if (what.empty() || !out) return;
  if (json) {
    out << "{\"t\":" << line.t << "," << what << "}";
  } else {
    out << TimeText(line.t) << what;
  }
  out << '\n' << std::flush;
  if (!out && whenBroken) whenBroken();
}

}  // namespace kelvaro::console
