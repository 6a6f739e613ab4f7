#include "tests/model/shrink.h"

#include <vector>

#include "console/profile_json.h"
#include "tests/model/real_run.h"
#include "tests/model/take_out.h"

namespace kelvaro::plain {
namespace {

class Shrinker {
 public:
  Shrinker(const Script& script, const std::function<bool(const Script&)>& fails)
      : best(script), fails(fails) {}

  Script Run() {
    do {
      shorter = false;
      Shorten([](Script & s) -> auto& { return s.person; });
      Shorten([](Script & s) -> auto& { return s.pad; });
      ShortenEnd();
      for (std::size_t p = 0; p < best.profiles.size(); ++p) ShortenProfile(p);
      SimplifyNumbers();
    } while (shorter);
    return best;
  }

 private:
  // Whether the changed script still fails, and so is the best now.
  template <typename Change>
  bool Try(Change change) {
    Script next = best;
    change(next);
    if (!fails(next)) return false;
    best = next;
    shorter = true;
    return true;
  }

  template <typename List>
  void Shorten(List list) {
    TakeOut([&] { return list(best).size(); },
            [&](std::size_t i, std::size_t count) {
              return Try([&](Script& s) {
                auto& elements = list(s);
                const auto first = elements.begin() + static_cast<std::ptrdiff_t>(i);
                elements.erase(first, first + static_cast<std::ptrdiff_t>(count));
              });
            });
  }

  void ShortenEnd() {
    while (best.end > 1 && Try([](Script& s) { s.end -= s.end / 8 + 1; })) {
    }
  }

  void ShortenProfile(std::size_t p) {
    Shorten([p](Script & s) -> auto& { return s.profiles[p].controls; });
    for (std::size_t c = 0; c < best.profiles[p].controls.size(); ++c) {
      Shorten([ p, c ](Script & s) -> auto& { return s.profiles[p].controls[c].inputs; });
      Shorten([ p, c ](Script & s) -> auto& { return s.profiles[p].controls[c].actions; });
      for (std::size_t a = 0; a < best.profiles[p].controls[c].actions.size(); ++a) {
        Shorten([=](Script & s) -> auto& { return s.profiles[p].controls[c].actions[a].text; });
        Shorten([=](Script & s) -> auto& { return s.profiles[p].controls[c].actions[a].steps; });
      }
    }
  }

  // Sets a number or a flag to its plainest value.
  template <typename Place, typename Value>
  void Simplify(Place place, Value plain) {
    if (place(best) == plain) return;
    Try([&](Script& s) { place(s) = plain; });
  }

  void SimplifyNumbers() {
    Simplify(
        [](Script & s) -> auto& { return s.mouseActive; }, false);
    Simplify(
        [](Script & s) -> auto& { return s.workerStart; }, 0u);
    Simplify(
        [](Script & s) -> auto& { return s.tickOffset; }, 0u);
    for (std::size_t p = 0; p < best.profiles.size(); ++p) {
      const auto member = [&](auto ScriptProfile::*what, auto plain) {
        Simplify(
            [ p, what ](Script & s) -> auto& { return s.profiles[p].*what; }, plain);
      };
      member(&ScriptProfile::mouseAlwaysActive, false);
      member(&ScriptProfile::leftMask, std::uint64_t{0});
      member(&ScriptProfile::middleMask, std::uint64_t{0});
      member(&ScriptProfile::rightMask, std::uint64_t{0});
      for (const auto input :
           {&ScriptProfile::mouseX, &ScriptProfile::mouseY, &ScriptProfile::mouseWheel}) {
        Simplify(
            [ p, input ](Script & s) -> auto& { return (s.profiles[p].*input).kind; }, 11u);
      }
      for (std::size_t c = 0; c < best.profiles[p].controls.size(); ++c) SimplifyControl(p, c);
    }
  }

  void SimplifyControl(std::size_t p, std::size_t c) {
    const auto member = [&](auto ScriptControl::*what, auto plain) {
      Simplify(
          [ p, c, what ](Script & s) -> auto& { return s.profiles[p].controls[c].*what; }, plain);
    };
    member(&ScriptControl::press, true);
    member(&ScriptControl::togglesMouse, false);
    member(&ScriptControl::repeats, false);
    member(&ScriptControl::buttons, std::uint64_t{0});
    member(&ScriptControl::holdTime, 0u);
    member(&ScriptControl::releasePause, 0u);
  }

  Script best;
  const std::function<bool(const Script&)>& fails;
  bool shorter = false;
};

const char* NameOf(PersonAct::What what) {
  switch (what) {
    case PersonAct::What::TestMode:
      return "test mode";
    case PersonAct::What::AlwaysActive:
      return "mouse always active";
    case PersonAct::What::Dialog:
      return "dialog open";
    case PersonAct::What::Slider:
      return "slider";
    case PersonAct::What::Load:
      return "load profile";
  }
  return "";
}

}  // namespace

Script Shrink(const Script& script, const std::function<bool(const Script&)>& fails) {
  return Shrinker(script, fails).Run();
}

std::string Text(const Script& script) {
  std::string text;
  for (const ScriptProfile& each : script.profiles) {
    Profile profile;
    MakeProfile(each, &profile);
    text += "profile: " + console::ProfileJson(profile) + "\n";
  }
  std::vector<std::uint32_t> held;
  for (const PadChange& change : script.pad) {
    text += platform::RecordingChangeLine(StateChangeOf(change, &held)) + "\n";
  }
  for (const PersonAct& act : script.person) {
    text += std::to_string(act.t) + " " + NameOf(act.what) + " " + std::to_string(act.number) +
            " to " + std::to_string(act.to) + "\n";
  }
  return text + "mouse active " + std::to_string(script.mouseActive) + ", begins at " +
         std::to_string(script.workerStart) + ", tick offset " + std::to_string(script.tickOffset) +
         ", ends at " + std::to_string(script.end) + "\n";
}

}  // namespace kelvaro::plain
