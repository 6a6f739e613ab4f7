#include "app/window/run_program.h"

#include "app/window/main_window.h"

namespace kelvaro {

std::int32_t RunProgram() {
  MainWindow window;
  return window.DoModal(platform::kNoWindow) == -1 ? 1 : 0;
}

}  // namespace kelvaro
