#include "app/platform/simulation/desktop_simulation.h"

namespace platform::simulation {

DesktopSimulation::DesktopSimulation() {
  AddGroups(screen.Desktop(), screen.Controls(), screen.Shell());
  Processes().SetOwnWindows([this] { return screen.TopLevelWindows(); },
                            [this](WindowHandle window, std::uint32_t message) {
                              return screen.Desktop().PostMessageA(window, message, 0, 0);
                            });
}

}  // namespace platform::simulation
