// The person of the simulated machine, on Qt.
#include <stdexcept>

#include "app/resources/resources.h"
#include "app/window/main_window.h"
#include "tests/person/desktop_simulation.h"
#include "tests/plays/play.h"

namespace kelvaro::tests {
namespace {

// Time in which what a worker tells arrives.
constexpr std::uint32_t kMoment = 1000;  // virtual ms

class SimulatedPlayer final : public Player {
 public:
  SimulatedPlayer() {
    sim.Registry().PutDword("HKCU\\Software\\Marnstone\\Kelvaro", "Welcome Display", 1);
    screen.Start([] {
      MainWindow window;
      return window.DoModal(platform::kNoWindow);
    });
  }
  ~SimulatedPlayer() override { screen.Leave(); }

  void Do(const Act& act) override {
    const std::uint32_t id = act.control;
    if (act.verb == "click") return screen.Click(id);
    if (act.verb == "focus") return screen.FocusOn(id);
    if (act.verb == "type") return screen.Type(id, act.rest);
    if (act.verb == "choose") return Choose(id, act.rest);
    if (act.verb == "select") return screen.SelectRows(id, {std::stoi(act.rest)});
    if (act.verb == "double") return screen.DoubleClickRow(id, std::stoi(act.rest));
    if (act.verb == "tab") return screen.ChooseTab(id, std::stoi(act.rest));
    if (act.verb == "key") return screen.Press(static_cast<std::uint8_t>(std::stoi(act.rest)));
    if (act.verb == "close") return screen.Close();
    if (act.verb == "answer") return screen.Answer(std::stoi(act.rest));
    if (act.verb == "press") return pad.Press({static_cast<std::uint32_t>(std::stoi(act.rest))});
    if (act.verb == "release") return pad.Press({});
    throw std::logic_error("no such act: " + act.verb);
  }

  Lines Await(const Sight& before, const Lines&) override {
    sim.RunFor(kMoment);
    screen.Settle();
    return Changes(before, Look());
  }

  Sight Look() override {
    Sight sight;
    for (const platform::DialogTemplate* dialog : resources::Dialogs())
      if (screen.Running() && dialog->id == screen.Front())
        sight = SightOf(*dialog, screen.Window(), screen.DefaultButton());
    if (screen.BoxUp()) sight.box = BoxLine(screen.Box().caption, screen.Box().text);
    return sight;
  }

 private:
  void Choose(std::uint32_t list, const std::string& row) {
    screen.Choose(list, row);
    // Off the screen nobody gives the window back what the open list had.
    screen.Desktop().SetForegroundWindow(screen.Window());
  }

  platform::simulation::DesktopSimulation sim;
  platform::simulation::Screen& screen = sim.Screen();
  platform::SimulatedDevice& pad =
      sim.AddDevice({"Scripted pad", {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}, 11, 2, 1});
};

}  // namespace

std::unique_ptr<Player> StartPlayer() { return std::make_unique<SimulatedPlayer>(); }

}  // namespace kelvaro::tests
