// The window as those see it that steer it: it opens profiles where nothing that the person does
// stands against it, and what it shows is told. User interface's thread, but for what says
// otherwise.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/window/profile_row.h"
#include "app/window/session.h"
#include "steering/steering.h"

namespace kelvaro {

class SteeredWindow : private SteeringHost {
 public:
  SteeredWindow(Session& session, ProfileRow& profileRow)
      : session(session), profileRow(profileRow) {}

  // Answers from the next message on, which comes once all is set up, or before that to a box of
  // the set-up: who reads that has to be answered, too.
  void BeginByMessage();
  // Requests that have come are not carried out any more.
  void End() { steering.End(); }

  // To be had while a message or a notice is handled: a request that comes meanwhile comes beside a
  // dialog, a box or a menu, which waits in there for the person. At its end it tells what has
  // become of the window.
  class Busy {
   public:
    explicit Busy(SteeredWindow& window) : window(window) { ++window.busy; }
    ~Busy() {
      if (--window.busy == 0) window.TellState();
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

   private:
    SteeredWindow& window;
  };

  // WM_STEERED came.
  void OnRequests();

 private:
  const char* ProgramKind() const override { return "window"; }
  void SelectProfile(std::uint32_t ticket, const std::string& name) override;  // steering's thread
  void TellState();

  Session& session;
  ProfileRow& profileRow;
  std::uint32_t busy = 0;
  bool begun = false;
  RecursiveLock requestLock;
  // Tickets and names.
  std::vector<std::pair<std::uint32_t, std::string>> requests KELVARO_GUARDED_BY(requestLock);
  Steering steering{*this};
};

}  // namespace kelvaro
