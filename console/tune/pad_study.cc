#include "console/tune/pad_study.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "device/device_manager.h"

namespace kelvaro::console {
namespace {

using platform::AxisName;
using platform::DIJOYSTATE2;

constexpr std::uint64_t kSecond = 1000;
constexpr std::size_t kLeastRest = 3;  // seconds

// A pad that says nothing for longer has nothing to say.
constexpr std::uint64_t kLongestInterval = 50;  // ms
constexpr std::uint32_t kLeastIntervals = 20;

std::int32_t Average(std::int64_t sum, std::int64_t count) {
  const std::int64_t half = sum < 0 ? -count / 2 : count / 2;
  return static_cast<std::int32_t>((sum + half) / count);
}

}  // namespace

bool AxisStudy::RestsAtAnEnd() const { return std::abs(rest) > kFullWay / 4 * 3; }

bool AxisStudy::IsOffCentre() const { return !RestsAtAnEnd() && std::abs(rest) > kFullWay / 20; }

void PadStudy::See(std::uint64_t t, const DIJOYSTATE2& state) {
  DIJOYSTATE2 seen = state;
  for (std::uint16_t bank = 0; bank < 4; ++bank) {
    for (std::uint16_t kind = 0; kind < 8; ++kind) {
      const std::int32_t value = *platform::AxisField(&seen, {kind, bank});
      Track& track = tracks[{bank, kind}];
      if (track.empty() || track.back().second != value) track.emplace_back(t, value);
    }
  }
  if (begun && t - lastTime > 0 && t - lastTime <= kLongestInterval) {
    intervals += t - lastTime;
    ++intervalCount;
  }
  SeeButtons(t, state);
  begun = true;
  last = state;
  lastTime = t;
  end = t;
}

void PadStudy::SeeButtons(std::uint64_t t, const DIJOYSTATE2& state) {
  for (std::uint32_t n = 0; n < std::size(state.rgbButtons); ++n) {
    const bool isDown = state.rgbButtons[n] != 0;
    if (isDown == (last.rgbButtons[n] != 0)) continue;
    if (!isDown) {
      letGo[n + 1] = t;
      continue;
    }
    ButtonStudy& button = buttons[n + 1];
    ++button.presses;
    const auto before = letGo.find(n + 1);
    if (before != letGo.end() && t - before->second <= kBounce) ++button.bounces;
  }
}

void PadStudy::End(std::uint64_t t) { end = std::max(end, t); }

std::vector<PadStudy::Second> PadStudy::Seconds(const Track& track, std::uint64_t from,
                                                std::uint64_t to) const {
  std::vector<Second> seconds;
  // Nobody knows where it was before it was first seen.
  while (from < track.front().first) from += kSecond;
  for (std::uint64_t begin = from; begin + kSecond <= std::min(to, end); begin += kSecond) {
    const std::uint64_t over = begin + kSecond;
    auto at = std::prev(std::upper_bound(
        track.begin(), track.end(), begin,
        [](std::uint64_t t, const Track::value_type& each) { return t < each.first; }));
    Second second{at->second, at->second, 0};
    std::int64_t sum = 0;
    for (; at != track.end() && at->first < over; ++at) {
      const std::uint64_t until = std::next(at) == track.end() ? over : std::next(at)->first;
      sum += static_cast<std::int64_t>(std::min(until, over) - std::max(at->first, begin)) *
             at->second;
      second.least = std::min(second.least, at->second);
      second.most = std::max(second.most, at->second);
    }
    second.average = Average(sum, kSecond);
    seconds.push_back(second);
  }
  return seconds;
}

AxisStudy PadStudy::StudyOf(AxisName name, const Track& track) const {
  AxisStudy study;
  study.name = name;
  study.from = study.to = track.front().second;
  for (const auto& [t, value] : track) {
    study.from = std::min(study.from, value);
    study.to = std::max(study.to, value);
  }
  study.moved = study.to - study.from >= kFullWay / 4;

  const std::vector<Second> rest = Seconds(track, kSecond, kRestEnds);
  if (!rest.empty()) {
    std::int64_t sum = 0;
    std::int32_t least = rest.front().average;
    std::int32_t most = least;
    for (const Second& second : rest) {
      sum += second.average;
      least = std::min(least, second.average);
      most = std::max(most, second.average);
      study.noise = std::max(study.noise, second.most - second.least);
      study.furthest = std::max({study.furthest, std::abs(second.least), std::abs(second.most)});
    }
    study.rest = Average(sum, static_cast<std::int64_t>(rest.size()));
    study.drift = most - least;
  }

  std::vector<Second> used = Seconds(track, kSticksEnd + kSecond, kStudyEnds);
  if (!used.empty()) {
    const auto middle = used.begin() + static_cast<std::ptrdiff_t>(used.size() / 2);
    std::nth_element(used.begin(), middle, used.end(), [](const Second& a, const Second& b) {
      return std::abs(a.average) < std::abs(b.average);
    });
    study.returned = middle->average;
  }
  return study;
}

std::vector<AxisStudy> PadStudy::Axes() const {
  std::vector<AxisStudy> axes;
  for (const auto& [place, track] : tracks) {
    const bool isUsed = track.size() > 1 || track.front().second != 0;
    if (isUsed) axes.push_back(StudyOf({place.second, place.first}, track));
  }
  return axes;
}

std::optional<std::uint32_t> PadStudy::ReportInterval() const {
  if (intervalCount < kLeastIntervals) return std::nullopt;
  return static_cast<std::uint32_t>((intervals * 10 + intervalCount / 2) / intervalCount);
}

bool PadStudy::SawRest() const {
  return begun && !tracks.empty() &&
         Seconds(tracks.begin()->second, kSecond, kRestEnds).size() >= kLeastRest;
}

}  // namespace kelvaro::console
