#include "console/latency_report.h"

#include <cmath>
#include <cstdio>

#include "console/json_text.h"
#include "console/percentile.h"
#include "console/svg.h"
#include "console/text_table.h"

namespace kelvaro::console {
namespace {

using Kind = LatencyWay::Kind;

constexpr struct {
  const char* name;  // of a member in JSON
  const char* head;
  double share;
} kShares[] = {{"least", "least", 0},
               {"median", "median", 0.5},
               {"p95", "95 %", 0.95},
               {"p99", "99 %", 0.99},
               {"slowest", "slowest", 1}};

std::string Number(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

// Behind blanks that make it as wide as a column needs.
std::string Right(const std::string& text) {
  constexpr std::size_t kWide = 7;
  return text.size() < kWide ? std::string(kWide - text.size(), ' ') + text : text;
}

std::string TapsText(const LatencyWay& way) {
  const std::string how = way.kind == Kind::Wake ? "at once" : LatencyName(way);
  return "  " + how + ": " + std::to_string(*way.tapsLost) + " of " + std::to_string(way.taps) +
         "\n";
}

std::string JsonTimes(const std::vector<double>& rising) {
  if (rising.empty()) return "null";
  std::string members;
  for (const auto& each : kShares) {
    members += std::string(members.empty() ? "{" : ",") + "\"" + each.name +
               "\":" + Number(Percentile(rising, each.share), 1);
  }
  return members + "}";
}

const char* JsonName(Kind kind) {
  switch (kind) {
    case Kind::Machine:
      return "machine";
    case Kind::Interval:
      return "interval";
    default:
      return "wake";
  }
}

// In units of the picture.
constexpr std::size_t kWidth = 720;
constexpr std::size_t kHeight = 420;
constexpr std::size_t kLeft = 60;
constexpr std::size_t kRight = 24;
constexpr std::size_t kTop = 20;
constexpr std::size_t kBottom = 96;
constexpr std::size_t kLegendRow = 18;
constexpr std::size_t kAcross = kWidth - kLeft - kRight;
constexpr std::size_t kDown = kHeight - kTop - kBottom;

constexpr struct {
  const char* colour;
  const char* dashes;
} kStrokes[] = {{"#666666", "2 3"}, {"#1f5fa8", "none"}, {"#c0392b", "8 3"}};

const auto& StrokeOf(Kind kind) { return kStrokes[static_cast<std::size_t>(kind)]; }

std::string Line(double fromX, double fromY, double toX, double toY, const std::string& style) {
  return "<path d=\"M" + Number(fromX, 1) + " " + Number(fromY, 1) + "L" + Number(toX, 1) + " " +
         Number(toY, 1) + "\" fill=\"none\" " + style + "/>\n";
}

std::string StrokeText(Kind kind) {
  return std::string("stroke=\"") + StrokeOf(kind).colour + "\" stroke-width=\"2\" " +
         "stroke-dasharray=\"" + StrokeOf(kind).dashes + "\"";
}

class Plot {
 public:
  explicit Plot(const std::vector<LatencyWay>& ways) : ways(ways) {
    double least = 0;
    double most = 0;
    for (const LatencyWay& way : ways) {
      if (way.read.empty()) continue;
      const double first = std::max(way.read.front(), 1.0);
      least = least == 0 ? first : std::min(least, first);
      most = std::max({most, way.read.back(), first});
    }
    if (least == 0) least = most = 1;
    firstDecade = static_cast<int>(std::floor(std::log10(least)));
    lastDecade = std::max(static_cast<int>(std::ceil(std::log10(most))), firstDecade + 1);
  }

  std::string Svg() const {
    std::string svg = Grid();
    std::size_t row = kTop + kDown + 52;
    for (const LatencyWay& way : ways) {
      if (way.read.empty()) continue;
      svg += Curve(way);
      const double y = static_cast<double>(row) - 4;
      svg += Line(kLeft, y, kLeft + 40, y, StrokeText(way.kind));
      svg += SvgText(kLeft + 50, row, LatencyName(way));
      row += kLegendRow;
    }
    return SvgPicture(kWidth, kHeight, svg);
  }

 private:
  double X(double us) const {
    const double decades = std::log10(std::max(us, 1.0)) - firstDecade;
    return kLeft + kAcross * decades / (lastDecade - firstDecade);
  }
  static double Y(double share) { return kTop + kDown * (1 - share); }

  static std::string TimeText(int decade) {
    const std::string digits[] = {"1", "10", "100"};
    const char* const units[] = {" us", " ms", " s"};
    return decade > 8 ? "" : digits[decade % 3] + units[decade / 3];
  }

  std::string Grid() const {
    std::string svg;
    for (int percent = 0; percent <= 100; percent += 25) {
      const double y = Y(percent / 100.0);
      svg += Line(kLeft, y, kLeft + kAcross, y, "stroke=\"#dddddd\"");
      svg += SvgText(kLeft - 8, static_cast<std::size_t>(y) + 4, std::to_string(percent) + " %",
                     SvgAnchor::End);
    }
    for (int decade = firstDecade; decade <= lastDecade; ++decade) {
      for (const int step : {1, 2, 5}) {
        if (decade == lastDecade && step > 1) continue;
        const double x = X(step * std::pow(10, decade));
        svg +=
            Line(x, kTop, x, kTop + kDown, step == 1 ? "stroke=\"#bbbbbb\"" : "stroke=\"#eeeeee\"");
      }
      svg += SvgText(static_cast<std::size_t>(X(std::pow(10, decade))), kTop + kDown + 18,
                     TimeText(decade), SvgAnchor::Middle);
    }
    return svg + SvgText(kLeft + kAcross / 2, kTop + kDown + 36,
                         "from press to key, share of the presses", SvgAnchor::Middle);
  }

  std::string Curve(const LatencyWay& way) const {
    const double all = static_cast<double>(way.read.size() + static_cast<std::size_t>(way.lost));
    std::string path = "M" + Number(X(way.read.front()), 1) + " " + Number(Y(0), 1);
    for (std::size_t i = 0; i < way.read.size(); ++i) {
      path +=
          "H" + Number(X(way.read[i]), 1) + "V" + Number(Y(static_cast<double>(i + 1) / all), 1);
    }
    return "<path d=\"" + path + "\" fill=\"none\" " + StrokeText(way.kind) + "/>\n";
  }

  const std::vector<LatencyWay>& ways;
  int firstDecade = 0;  // powers of ten, from 1 us on
  int lastDecade = 1;
};

}  // namespace

std::string LatencyName(const LatencyWay& way) {
  switch (way.kind) {
    case Kind::Machine:
      return "the machine alone";
    case Kind::Interval:
      return "Kelvaro, each " + std::to_string(way.interval) + " ms";
    default:
      return "Kelvaro, at once (--wake)";
  }
}

std::string LatencyText(const std::vector<LatencyWay>& ways) {
  std::vector<std::vector<std::string>> rows = {{"From press to key, in microseconds"}};
  for (const auto& each : kShares) rows[0].push_back(Right(each.head));
  rows[0].push_back(Right("lost"));
  std::string taps;
  for (const LatencyWay& way : ways) {
    rows.push_back({LatencyName(way)});
    for (const auto& each : kShares) {
      rows.back().push_back(
          Right(way.read.empty() ? "-" : Number(Percentile(way.read, each.share), 0)));
    }
    rows.back().push_back(Right(std::to_string(way.lost)));
    if (way.tapsLost) taps += TapsText(way);
  }
  return TextTable(rows) + (taps.empty() ? "" : "\n  Taps of 1 to 4 ms that gave no key\n" + taps);
}

std::string LatencyJson(const std::vector<LatencyWay>& ways) {
  std::string lines;
  for (const LatencyWay& way : ways) {
    lines +=
        std::string("{\"way\":\"") + JsonName(way.kind) +
        "\",\"interval\":" + (way.kind == Kind::Machine ? "null" : std::to_string(way.interval)) +
        ",\"presses\":" + std::to_string(way.read.size() + static_cast<std::size_t>(way.lost)) +
        ",\"lost\":" + std::to_string(way.lost) + ",\"kernel\":" + JsonTimes(way.kernel) +
        ",\"read\":" + JsonTimes(way.read) + ",\"taps\":" + std::to_string(way.taps) +
        ",\"tapsLost\":" + (way.tapsLost ? std::to_string(*way.tapsLost) : "null") + "}\n";
  }
  return lines;
}

std::string LatencySvg(const std::vector<LatencyWay>& ways) { return Plot(ways).Svg(); }

}  // namespace kelvaro::console
