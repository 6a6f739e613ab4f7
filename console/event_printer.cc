#include "console/event_printer.h"

namespace kelvaro::console {

void EventPrinter::Print(const SentEvent& event) {
  const std::string line = json ? JsonEventLine(event) : TextEventLine(event);
  const std::lock_guard<std::mutex> whole(lineMutex);
  if (!out) return;
  out << line << '\n' << std::flush;
  if (!out && whenBroken) whenBroken();
}

}  // namespace kelvaro::console
