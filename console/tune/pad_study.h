// What a pad does in a minute of three phases: left alone, its sticks turned, its buttons pressed.
// Values of axes are -32000 to 32000, times are ms from the start and never fall.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "app/platform/recording/recording.h"
#include "device/device_manager.h"

namespace kelvaro::console {

// From the middle of an axis to its end.
constexpr std::int32_t kFullWay = DeviceManager::axisMax;

// Ends of the phases. The pad's rest is looked at in whole seconds from the second one on, since it
// takes a moment to put it down.
constexpr std::uint64_t kRestEnds = 10'000;
constexpr std::uint64_t kSticksEnd = 40'000;
constexpr std::uint64_t kStudyEnds = 60'000;

struct AxisStudy {
  platform::AxisName name;
  // Of the rest.
  std::int32_t rest = 0;      // where it lies, on average
  std::int32_t noise = 0;     // from the least to the most in a second, of the worst one
  std::int32_t drift = 0;     // from the least average of a second to the most
  std::int32_t furthest = 0;  // from 0, without its sign
  // Where it lies while buttons are pressed: the average of the middle one of the seconds, once
  // they are in order of how far from 0 it is. A stick that was turned may stop elsewhere.
  std::optional<std::int32_t> returned;
  // Of the whole time.
  std::int32_t from = 0;
  std::int32_t to = 0;
  bool moved = false;  // by an eighth of its full way, or more

  // Lies at an end, as the triggers of many pads do.
  bool RestsAtAnEnd() const;
  bool IsOffCentre() const;  // by more than a twentieth of the way to an end
};

struct ButtonStudy {
  std::uint32_t presses = 0;
  std::uint32_t bounces = 0;  // those of them that come within kBounce of its being let go
};

class PadStudy {
 public:
  // A finger takes at least twice as long to come back.
  static constexpr std::uint64_t kBounce = 25;  // ms

  // A state that is in force from `t` on.
  void See(std::uint64_t t, const platform::DIJOYSTATE2& state);
  void End(std::uint64_t t);

  // After End. Axes that ever were elsewhere than at 0, by bank and kind.
  std::vector<AxisStudy> Axes() const;
  // By their numbers, from 1; those that were pressed.
  const std::map<std::uint32_t, ButtonStudy>& Buttons() const { return buttons; }
  // Tenths of a ms from one change to the next while something goes on; nothing where too little
  // did.
  std::optional<std::uint32_t> ReportInterval() const;
  // Whether the pad was seen at rest for long enough, which is three seconds.
  bool SawRest() const;

 private:
  struct Second {
    std::int32_t least;
    std::int32_t most;
    std::int32_t average;
  };
  using Track = std::vector<std::pair<std::uint64_t, std::int32_t>>;  // values from their times on

  std::vector<Second> Seconds(const Track& track, std::uint64_t from, std::uint64_t to) const;
  AxisStudy StudyOf(platform::AxisName name, const Track& track) const;
  void SeeButtons(std::uint64_t t, const platform::DIJOYSTATE2& state);

  bool begun = false;  // a state was seen; each track has a value from then on
  platform::DIJOYSTATE2 last;
  std::uint64_t lastTime = 0;
  std::uint64_t end = 0;
  std::map<std::pair<std::uint16_t, std::uint16_t>, Track> tracks;  // by bank and kind
  std::map<std::uint32_t, ButtonStudy> buttons;
  std::map<std::uint32_t, std::uint64_t> letGo;  // when each button was last
  std::uint64_t intervals = 0;                   // ms in all
  std::uint32_t intervalCount = 0;
};

}  // namespace kelvaro::console
