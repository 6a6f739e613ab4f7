// Recordings of any bytes. Checked: a fault is one line that begins with the line's number; what is
// taken obeys the limits that the device promises, and its lines, written again, read back the
// same.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "app/platform/recording/recording.h"
#include "fuzz/check.h"

namespace {

using platform::Recording;
using platform::StateChange;

bool Read(const std::string& text, Recording* recording, std::string* error) {
  std::istringstream in(text);
  return platform::ReadRecording(in, recording, error);
}

std::string Written(const Recording& recording) {
  std::string text = RecordingHeaderLine(recording.device) + "\n";
  for (const StateChange& change : recording.changes) text += RecordingChangeLine(change) + "\n";
  return text;
}

std::size_t BehindDigits(const std::string& text, std::size_t at) {
  while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at]))) ++at;
  return at;
}

// "3: what" or "3:24: what"
void CheckFault(const std::string& error) {
  std::size_t end = BehindDigits(error, 0);
  Check(end > 0, "a fault without its line", error);
  if (error.size() > end + 1 && error[end + 1] != ' ') {
    const std::size_t column = end + 1;
    end = BehindDigits(error, column);
    Check(end > column, "a fault with an empty column", error);
  }
  Check(error.compare(end, 2, ": ") == 0 && error.size() > end + 2, "a fault without its words",
        error);
}

void CheckLimits(const Recording& recording, const std::string& text) {
  std::uint64_t last = 0;
  platform::DIJOYSTATE2 state = platform::StateAtRest();
  for (const StateChange& change : recording.changes) {
    Check(change.t >= last, "times fall", text);
    last = change.t;
    ApplyChange(change, &state);  // for the sanitizers: every index is in the state
    for (const std::uint32_t button : change.buttons) {
      Check(button >= 1 && button <= recording.device.buttons, "no such button", text);
    }
    for (const auto& [axis, value] : change.axes) {
      Check(value >= -32000 && value <= 32000, "axis out of its range", text);
    }
    for (const auto& [hat, angle] : change.povs) {
      Check(hat < recording.device.povs, "no such hat", text);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  Recording recording;
  std::string error;
  if (!Read(text, &recording, &error)) {
    CheckFault(error);
    return 0;
  }
  CheckLimits(recording, text);

  const std::string written = Written(recording);
  Recording again;
  Check(Read(written, &again, &error), "what is written isn't read", written);
  Check(recording == again, "read back as another", written);
  Check(Written(again) == written, "written in another way", written);
  return 0;
}
