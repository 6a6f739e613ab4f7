#include "console/event_printer.h"

#include "app/platform/input.h"

namespace kelvaro::console {

namespace {

// A replay lets go of a pause as of a key: of the one that its length would be as a step.
std::string OfAPause(const SentEvent& event) {
  return " (stray, of the pause of " + std::to_string(event.vk * 256u + event.scan) + " ms)";
}

}  // namespace

void EventPrinter::Print(const SentEvent& event) {
  std::string line = json ? JsonEventLine(event) : TextEventLine(event);
  const std::lock_guard<std::mutex> whole(lineMutex);
  if (event.kind == SentEvent::Kind::Key) {
    const auto key = std::make_pair(event.vk, event.scan);
    if ((event.flags & platform::KEYEVENTF_KEYUP) == 0) {
      pressed.insert(key);
    } else if (!json && !pressed.contains(key)) {
      line += OfAPause(event);
    }
  }
  if (!out) return;
  out << line << '\n' << std::flush;
  if (!out && whenBroken) whenBroken();
}

}  // namespace kelvaro::console
