// The machine that this program runs on, opened as far as a command needs it, and installed behind
// the seam for the life of the object.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/platform/machine/this_machine.h"
#include "app/platform/platform.h"
#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/event_printer.h"

namespace kelvaro::console {

class RealMachine {
 public:
  // All but a way out for events.
  RealMachine();
  ~RealMachine();
  RealMachine(const RealMachine&) = delete;
  RealMachine& operator=(const RealMachine&) = delete;

  // One device that plays a recording in real time, in place of those that are plugged in.
  void PlayRecording(const platform::Recording& recording);

  // For what this system alone has.
  platform::ThisMachine& System();

  // Lets others call: platform::calls() is the machine's own from here on.
  void TakeCalls();

  // Where keys and mouse events go out; with a printer (borrowed) each is printed too. False, with
  // *error saying what is missing and what to do, when there is no way out.
  bool OpenOutput(EventPrinter* printer, std::string* error);

  // In place of OpenOutput: each event goes to `listener`, on the thread that sends it, and nowhere
  // else.
  void KeepEvents(std::function<void(const SentEvent&)> listener);

  // In place of OpenOutput: keys and mouse events go to `output`, which must outlive this.
  void SendTo(platform::Input& output);

  // What is installed, to put something between.
  const platform::Platform& Groups() const;

  // Times of printed events count from this moment.
  void StartOfTime();

  // Exit status of a command that has sent what it had to: complains if the system refused any of
  // it.
  int EndOfOutput(Streams streams);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts;
};

}  // namespace kelvaro::console
