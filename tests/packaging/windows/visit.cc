// Starts the window of a folder as its player does, where there is no pad; prints the
// profiles in its list, and closes it.
// Usage: visit FOLDER [stay | launch-at-startup]
//   stay               until there is a line on the input
//   launch-at-startup  checks that box before
#include <cstring>
#include <iostream>
#include <string>

#include "app/resources/control_ids.h"
#include "tests/host/patience.h"
#include "tests/program/windows/player.h"

// Last.
#include <windows.h>

namespace kelvaro::tests {
namespace {

int Fail(const char* what) {
  std::cerr << "visit: " << what << "\n";
  return 1;
}

bool HasProfiles(std::uintptr_t window) {
  return GetDlgItem(reinterpret_cast<HWND>(window), main_window::kProfileList) != nullptr;
}

int Visit(const std::string& folder, const std::string& act) {
  MarkAsWelcomed();
  Program program(folder);
  // A box of the same title lies before the window, since no profile has a device.
  std::uintptr_t window = 0;
  const auto comes = [&](bool wanted) {
    return Eventually([&] {
      window = program.Await("Kelvaro");
      return window && HasProfiles(window) == wanted;
    });
  };
  if (!comes(false)) return Fail("no box comes");
  Post(window, WM_CLOSE);
  if (!comes(true)) return Fail("no window comes");
  for (std::uint32_t row = 0; row < Rows(window, main_window::kProfileList); ++row)
    std::cout << RowText(window, main_window::kProfileList, row) << "\n";
  std::cout << "--" << std::endl;
  if (act == "stay") {
    std::string line;
    std::getline(std::cin, line);
  }
  if (act == "launch-at-startup") {
    Click(window, main_window::kLaunchAtStartup);
    if (!Eventually([] { return !StartedWithSession("Kelvaro").empty(); }))
      return Fail("it isn't started with the session");
  }
  Post(window, WM_CLOSE);
  return program.AwaitEnd() == 0 ? 0 : Fail("the window doesn't close in order");
}

}  // namespace
}  // namespace kelvaro::tests

int main(int argc, char** argv) {
  return kelvaro::tests::Visit(argc > 1 ? argv[1] : "", argc > 2 ? argv[2] : "");
}
