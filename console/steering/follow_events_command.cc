// kelvaroctl follow-events: what running programs do, and what those do that start later.

#include <thread>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/steering/calls_machine.h"
#include "console/steering/event_follower.h"
#include "console/stop_signals.h"

namespace kelvaro::console {
namespace {

// Those that run and those that come, until Ctrl-C.
void FollowThemAll(platform::Arrivals& arrivals, EventFollower* follower, Streams streams,
                   StopSignals* signals) {
  std::thread watching([&] {
    if (!follower->FollowAll())
      streams.err << "No Kelvaro runs; its events are printed as soon as one does." << std::endl;
    while (arrivals.Wait()) follower->FollowAll();
  });
  signals->Wait({});
  arrivals.End();
  watching.join();
}

}  // namespace

int FollowEventsCommand(const SteerOptions& options, Streams streams) {
  const CallsMachine machine;
  StopSignals signals;
  EventFollower follower(streams, options.instance.has_value());
  if (options.instance) {
    follower.Follow(*options.instance);
    signals.Wait({});
  } else {
    const auto arrivals = platform::calls().WatchArrivals();
    if (!arrivals) return Complain(streams.err, kNobodyToAsk);
    FollowThemAll(*arrivals, &follower, streams, &signals);
  }
  return follower.End() ? kDone : kBad;
}

}  // namespace kelvaro::console
