// A play: what a person does at the window, act by act, and what is then to be seen, as a text file
// that each desktop plays for itself. A file of this folder has lines of
//
//   > VERB [CONTROL] [REST]   an act, with the control's number
//   TEXT                      what is seen otherwise since the act before, in the order of numbers
//
// The verbs: click, focus (by the Tab key), type TEXT, choose ROW (of a drop list, by its text),
// select ROW (of a list), double ROW, tab NUMBER, key VIRTUALKEY, close, answer NUMBER (of a box's
// button), press NUMBER and release NUMBER (a button of the pad).
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/platform.h"

namespace kelvaro::tests {

struct Act {
  std::string verb;
  std::uint32_t control = 0;
  std::string rest;
  std::string line;
};

// What there is to see of a desktop.
struct Sight {
  std::string box;     // in front; empty for none
  std::string window;  // the dialog in front
  // By dialog and number. Of one that is hidden and nothing else, nothing is written.
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::string> controls;

  // What is seen now, beside what was seen of other dialogs before.
  void Take(const Sight& now);
};

// As the seam tells it, of a dialog in front, whose own default button that is. User interface's
// thread.
Sight SightOf(const platform::DialogTemplate& dialog, platform::WindowHandle window,
              std::uint32_t defaultButton);

using Lines = std::vector<std::string>;

// A box in front.
std::string BoxLine(const std::string& caption, const std::string& text);

// What is seen otherwise than before.
Lines Changes(const Sight& before, const Sight& now);

// The main window of a machine with one pad, "Scripted pad", and no profiles, and who plays it.
class Player {
 public:
  virtual ~Player() = default;
  // On the test's own thread. Throws std::logic_error for what no person could do.
  virtual void Do(const Act& act) = 0;
  // Once something is seen to be so, or nothing changes any more: what has changed since `before`.
  virtual Lines Await(const Sight& before, const Lines& expected) = 0;
  virtual Sight Look() = 0;
};

// Each desktop's own. The window is up.
std::unique_ptr<Player> StartPlayer();

}  // namespace kelvaro::tests
