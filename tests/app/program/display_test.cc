#include "app/program/display.h"

#include <gtest/gtest.h>

#include <map>

namespace kelvaro {
namespace {

struct Case {
  const char* why;
  std::map<std::string, std::string> variables;
  bool xAnswers;
  bool waylandAnswers;
  bool found;
  const char* reason;  // in the sentence, where there is none
};

TEST(Display, IsThereWhenWhatTheEnvironmentNamesAnswers) {
  const Case cases[] = {
      {"nothing is named", {}, true, true, false, "neither DISPLAY nor WAYLAND_DISPLAY is set"},
      {"an X server", {{"DISPLAY", ":0"}}, true, false, true, ""},
      {"an X server that is gone",
       {{"DISPLAY", ":7"}},
       false,
       true,
       false,
       "\":7\" can't be opened"},
      {"a compositor", {{"WAYLAND_DISPLAY", "wayland-1"}}, false, true, true, ""},
      {"a compositor that is gone",
       {{"WAYLAND_DISPLAY", "wayland-1"}},
       true,
       false,
       false,
       "\"wayland-1\" can't be opened"},
      {"one of the two will do",
       {{"DISPLAY", ":7"}, {"WAYLAND_DISPLAY", "wayland-0"}},
       false,
       true,
       true,
       ""},
      {"the other of the two",
       {{"DISPLAY", ":0"}, {"WAYLAND_DISPLAY", "gone"}},
       true,
       false,
       true,
       ""},
      {"Qt is told to show nothing", {{"QT_QPA_PLATFORM", "offscreen"}}, false, false, true, ""},
      {"Qt is told to use X",
       {{"QT_QPA_PLATFORM", "xcb"}, {"WAYLAND_DISPLAY", "wayland-0"}},
       false,
       true,
       false,
       "DISPLAY is not set"},
      {"Qt is told to use Wayland",
       {{"QT_QPA_PLATFORM", "wayland"}, {"DISPLAY", ":0"}},
       true,
       false,
       false,
       "WAYLAND_DISPLAY is not set"},
      {"Qt is told to use either",
       {{"QT_QPA_PLATFORM", "wayland;xcb"}, {"DISPLAY", ":0"}},
       true,
       false,
       true,
       ""},
  };
  for (const Case& c : cases) {
    const DisplaySystem system = {[&](const char* name) {
                                    const auto found = c.variables.find(name);
                                    return found == c.variables.end() ? "" : found->second;
                                  },
                                  [&] { return c.xAnswers; }, [&] { return c.waylandAnswers; }};
    std::string error;
    EXPECT_EQ(FindDisplay(system, &error), c.found) << c.why;
    EXPECT_EQ(error, c.found ? "" : NoDisplay(c.reason)) << c.why;
  }
}

TEST(Display, TheSentenceNamesWhatPlaysAProfileWithoutOne) {
  EXPECT_EQ(NoDisplay("why"),
            "kelvaro: there is no display to show the window on (why); \"kelvaroctl run\" plays a "
            "profile without one.");
}

}  // namespace
}  // namespace kelvaro
