// What the engine decides and why, as lines: a timeline for people, JSON for programs. A change in
// which all is as it was in the one before it is left out, and so is the pointer's motion, which
// comes with each poll.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "console/engine_session.h"
#include "console/event_line.h"
#include "engine/dispatch_observer.h"

namespace kelvaro::console {

class Explanation : public DispatchObserver {
 public:
  enum class Detail {
    Outcome,  // what fires and what the mouse controls press, and what keeps it from firing
    All,      // each decision, and each event that is sent
  };

  // All borrowed; whenBroken, unless null, is called on the thread that first can't write.
  Explanation(const EngineSession& session, Detail detail, std::ostream& out, bool json,
              void (*whenBroken)() = nullptr);

  // Times count from this moment.
  void StartOfTime();

  // An event that the engine has sent; its time is ignored. Any thread.
  void Sent(const SentEvent& event);

  void ChangeBegins(const DeviceSnapshot& snapshot) override;
  void ChangeEnds() override;
  void MouseTakes(std::uint64_t buttons) override;
  void ControlJudged(const Control& control, Verdict verdict, const Control* container) override;
  void MouseSwitched(bool on) override;
  void RepeatLost(const Control& control, const Control& next) override;
  void Repeats(const Control& control) override;

 private:
  struct Line {
    std::uint64_t t;
    std::string text;  // empty: for programs only
    std::string json;  // the members behind "t"; empty: for people only
  };
  struct Arming {
    bool armed = false;
    bool spoiled = false;
  };
  // Whether a line alone is reason enough to tell of the change that it belongs to.
  enum class Weight { Light, Heavy };

  // All of these under `guard`.
  std::uint64_t Elapsed();
  void Say(Weight weight, const std::string& text, const std::string& json);
  void SayVerdict(Weight weight, const Control& control, const char* verdict,
                  const std::string& words, const std::string& more = "");
  void TellArming(const Control& control);
  void Flush();
  void Write(const Line& line);

  const EngineSession& session;
  const Detail detail;
  std::ostream& out;
  const bool json;
  void (*const whenBroken)();

  std::mutex guard;  // of all below and of the stream
  std::uint32_t lastTick = 0;
  std::uint64_t elapsed = 0;  // ms, up to lastTick
  bool inChange = false;
  bool isTold = false;  // the change under way, since something heavy came
  bool matched = false;
  bool judged = false;              // a Control of this change has been
  std::uint32_t lostBefore = 0;     // polls, when the change began
  std::vector<Line> held;           // lines of the change that wait for something heavy
  std::vector<std::string> lights;  // the light ones of this change, without their times
  std::vector<std::string> lightsBefore;
  std::map<const Control*, Arming> armings;  // of the Controls that fire when let go
};

}  // namespace kelvaro::console
