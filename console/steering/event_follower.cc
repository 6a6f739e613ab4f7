#include "console/steering/event_follower.h"

#include <string>

#include "console/console_error.h"
#include "console/stop_signals.h"

namespace kelvaro::console {
namespace {

SteeringMessage Event(const char* name) {
  SteeringMessage event;
  event.Add("event", name);
  return event;
}

}  // namespace

void EventFollower::Follow(std::uint32_t process) {
  const std::lock_guard<std::mutex> guard(mutex);
  Followed& one = followed[process];
  one.thread = std::thread([this, process, &one] { Listen(process, &one); });
}

bool EventFollower::FollowAll() {
  {
    const std::lock_guard<std::mutex> guard(mutex);
    for (auto& [process, one] : followed)
      if (one.over) one.thread.join();
    std::erase_if(followed, [](const auto& each) { return each.second.over; });
  }
  for (const std::uint32_t process : platform::calls().Answering())
    if (followed.count(process) == 0) Follow(process);
  return !followed.empty();
}

bool EventFollower::End() {
  {
    const std::lock_guard<std::mutex> guard(mutex);
    ending = true;
    for (auto& [process, one] : followed)
      if (one.conversation) one.conversation->End();
  }
  for (auto& [process, one] : followed) one.thread.join();
  followed.clear();
  return allDone;
}

void EventFollower::Listen(std::uint32_t process, Followed* one) {
  SteeringMessage request;
  request.kind = "follow-events";
  for (InstanceAnswer& asked : AskInstances(process, request)) {
    {
      const std::lock_guard<std::mutex> guard(mutex);
      if (ending) return;
      if (asked.done) {
        one->conversation = asked.conversation.get();
      } else {
        Complain(streams.err, std::to_string(process) + ": " + asked.error);
        allDone = false;
      }
    }
    if (asked.done) PrintEvents(asked);
    const std::lock_guard<std::mutex> guard(mutex);
    one->conversation = nullptr;
  }
  const std::lock_guard<std::mutex> guard(mutex);
  one->over = true;
  if (untilGone) Stop();
}

void EventFollower::PrintEvents(InstanceAnswer& asked) {
  if (!Print(asked.process, Event("following"))) return;
  std::string text;
  while (asked.conversation->Receive(&text, std::nullopt) != platform::Conversation::Heard::End) {
    const auto event = ParseSteeringMessage(text, &asked.error);
    if (event && !Print(asked.process, *event)) return;
  }
  Print(asked.process, Event("ended"));
}

bool EventFollower::Print(std::uint32_t process, const SteeringMessage& event) {
  const std::lock_guard<std::mutex> guard(mutex);
  if (ending) return false;
  streams.out << JsonLine(process, event) << std::endl;
  if (!streams.out) Stop();
  return bool(streams.out);
}

void EventFollower::Stop() {
  if (!ending) StopSignals::Ask();
  ending = true;
}

}  // namespace kelvaro::console
