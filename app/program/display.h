// Whether there is a display to show a window on, looked for before Qt is, which would end the
// program on the spot where there is none.
#pragma once

#include <functional>
#include <string>

namespace kelvaro {

struct DisplaySystem {
  // The value of an environment variable, empty for none.
  std::function<std::string(const char* name)> variable;
  // Whether the X server, or the Wayland compositor, that the environment names takes connections.
  std::function<bool()> xAnswers;
  std::function<bool()> waylandAnswers;
};

// Of this process.
DisplaySystem RealDisplaySystem();

// The sentence for the person, with what is wrong put into it.
std::string NoDisplay(const std::string& reason);

// False with a sentence for the person in *error, which `say` makes of what is wrong.
bool FindDisplay(const DisplaySystem& system, std::string* error,
                 std::string (*say)(const std::string& reason) = &NoDisplay);

}  // namespace kelvaro
