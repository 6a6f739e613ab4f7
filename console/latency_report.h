// What `kelvaroctl latency` has measured, for people and for programs. Times are microseconds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvaro::console {

// One way from the pad to the key.
struct LatencyWay {
  enum class Kind { Machine, Interval, Wake };

  Kind kind = Kind::Machine;
  std::uint32_t interval = 0;  // ms; of Kelvaro's polls
  std::vector<double> kernel;  // until the kernel has the key; in rising order
  std::vector<double> read;    // until a program that waits for it has read it; as many
  int lost = 0;                // presses that gave no key
  int taps = 0;
  std::optional<int> tapsLost;  // of `taps`; nothing where none were tried
};

// "Kelvaro, each 5 ms"
std::string LatencyName(const LatencyWay& way);

std::string LatencyText(const std::vector<LatencyWay>& ways);

// A line for each way.
std::string LatencyJson(const std::vector<LatencyWay>& ways);

// A curve for each way that has times: which share of the presses was read after which time, on a
// logarithmic scale.
std::string LatencySvg(const std::vector<LatencyWay>& ways);

}  // namespace kelvaro::console
